#include "base/record_file.hpp"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

bool RecordFile::complain() {
    error_ = "unit " + std::to_string(unit_) + ": " + (errno != 0 ? std::strerror(errno) : "unexpected end of file");
    return false;
}

bool RecordFile::create(const std::string &path) {
    close();
    errno = 0;
    file_ = std::fopen(path.c_str(), "w+b");
    return file_ != nullptr || complain();
}

bool RecordFile::open(const std::string &path) {
    close();
    errno = 0;
    file_ = std::fopen(path.c_str(), "rb");
    return file_ != nullptr || complain();
}

bool RecordFile::open_scratch() {
    close();
    errno = 0;
    char name[] = "SCRATCHXXXXXX";
    const int descriptor = mkstemp(name);
    if (descriptor < 0)
        return complain();
    unlink(name);
    file_ = fdopen(descriptor, "w+b");
    if (file_ == nullptr) {
        ::close(descriptor);
        return complain();
    }
    return true;
}

bool RecordFile::write(std::initializer_list<Bytes> parts) {
    std::uint64_t total = 0;
    for (const Bytes &part : parts)
        total += part.size;
    errno = 0;
    if (file_ == nullptr || total > UINT32_MAX) {
        errno = file_ == nullptr ? EBADF : EFBIG;
        return complain();
    }
    const std::uint32_t frame = static_cast<std::uint32_t>(total);
    bool good = std::fwrite(&frame, 1, sizeof frame, file_) == sizeof frame;
    for (const Bytes &part : parts)
        good = good && (part.size == 0 || std::fwrite(part.data, 1, part.size, file_) == part.size);
    good = good && std::fwrite(&frame, 1, sizeof frame, file_) == sizeof frame;
    return good || complain();
}

std::int64_t RecordFile::next_length() {
    std::uint32_t frame = 0;
    errno = 0;
    if (file_ == nullptr || std::fread(&frame, 1, sizeof frame, file_) != sizeof frame)
        return -1;
    if (std::fseek(file_, -static_cast<long>(sizeof frame), SEEK_CUR) != 0)
        return -1;
    return frame;
}

bool RecordFile::read(std::initializer_list<Target> parts) {
    std::uint64_t total = 0;
    for (const Target &part : parts)
        total += part.size;
    std::uint32_t before = 0;
    std::uint32_t after = 0;
    errno = 0;
    bool good = file_ != nullptr && std::fread(&before, 1, sizeof before, file_) == sizeof before && before == total;
    for (const Target &part : parts)
        good = good && (part.size == 0 || std::fread(part.data, 1, part.size, file_) == part.size);
    good = good && std::fread(&after, 1, sizeof after, file_) == sizeof after && after == before;
    return good || complain();
}

bool RecordFile::rewind() {
    errno = 0;
    if (file_ == nullptr || std::fflush(file_) != 0 || std::fseek(file_, 0, SEEK_SET) != 0)
        return complain();
    return true;
}

bool RecordFile::flush() {
    errno = 0;
    return (file_ != nullptr && std::fflush(file_) == 0) || complain();
}

bool RecordFile::close() {
    if (file_ == nullptr)
        return true;
    errno = 0;
    const bool good = std::fclose(file_) == 0;
    file_ = nullptr;
    return good || complain();
}
