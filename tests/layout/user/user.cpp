// A program of someone else on top of the reader of hand-over files.
#include <cstdio>
#include <post/p2f_reader.hpp>

int main(int, char **argv) {
    P2fFile p2f;
    std::string error;
    const bool good = read_p2f(argv[1], p2f, error);
    std::printf("%s\n", good ? "read" : error.c_str());
}
