// Input files out of order: the input stage reads them or tells a fault. The files of a deck follow each
// other, each behind a line "=NAME".
#include "input/input.hpp"
#include "state/messages.hpp"
#include "state/state.hpp"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <unistd.h>

namespace {

void write_deck(const std::string &deck) {
    for (const auto &entry : std::filesystem::directory_iterator("."))
        std::filesystem::remove_all(entry.path());
    std::ofstream("fnames.vrd") << "run.gdf\nrun.pot\n\n\nrun.fdf\n";
    std::istringstream in(deck);
    std::ofstream file;
    std::string line;
    while (std::getline(in, line)) {
        bool known = false;
        for (const char *name : {"config.vrd", "fnames.vrd", "run.gdf", "run.pot", "run.mod", "body.gdf"}) {
            if (line != std::string("=") + name)
                continue;
            file = std::ofstream(name);
            known = true;
        }
        if (!known)
            file << line << '\n';
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
    std::string folder = (std::filesystem::temp_directory_path() / "vorda_fuzz_XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr || chdir(folder.c_str()) != 0)
        std::abort();
    return std::freopen("/dev/null", "r", stdin) == nullptr ? 1 : 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    write_deck(std::string(reinterpret_cast<const char *>(data), size));
    const auto run = std::make_unique<RunState>();
    if (!failed(LISOPN(run->files.list)) && !failed(GETIP1(*run)) && !failed(INECHO(*run)))
        (void)INCHK(*run);
    close_list();
    return 0;
}
