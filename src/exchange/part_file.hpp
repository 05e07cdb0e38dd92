// Files that are there as a whole or not at all: written as NAME.part, which becomes NAME when all of it is
// on the disk.
#pragma once

#include <cstdio>
#include <string>

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
