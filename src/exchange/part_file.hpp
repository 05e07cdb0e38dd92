// Files that are there as a whole or not at all: written as NAME.part, which becomes NAME when all of it is
// on the disk.
#pragma once

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

class PartFile {
  public:
    explicit PartFile(const std::string &name);
    PartFile(const PartFile &) = delete;
    PartFile &operator=(const PartFile &) = delete;
    // Without keep() nothing is left, nor when a signal ends the process.
    ~PartFile();

    // Opens the unfinished file to be written; a library that opens files itself takes part() instead. Null
    // with the reason in `error`.
    [[nodiscard]] std::FILE *open(std::string &error);
    const std::string &part() const { return part_; }
    // Closes what open() gave and gives the file its name. False, with the reason in `error`, when the disk
    // had no room for it.
    [[nodiscard]] bool keep(std::string &error);

  private:
    std::string name_, part_;
    std::FILE *file_ = nullptr;
    bool kept_ = false;
};

// The same for the files of a folder: they are written in a folder beside the wanted one and take their
// places in that, where files of other names stay.
class PartFolder {
  public:
    explicit PartFolder(const std::string &name);
    PartFolder(const PartFolder &) = delete;
    PartFolder &operator=(const PartFolder &) = delete;
    ~PartFolder();

    [[nodiscard]] bool make(std::string &error);
    const std::filesystem::path &part() const { return part_; }
    // Moves the files of these names and tells where they are. False, with the reason in `error`.
    [[nodiscard]] bool keep(const std::vector<std::string> &names, std::vector<std::string> &written,
                            std::string &error);

  private:
    std::filesystem::path folder_, part_;
};

// Writes a text as such a file. False with the reason in `error`.
[[nodiscard]] bool write_whole(const std::string &name, const std::string &text, std::string &error);
