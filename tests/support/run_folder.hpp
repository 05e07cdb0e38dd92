// A temporary folder that a test works in as a run does: it is the working directory while the object lives,
// and a list file is open in it.
#pragma once

#include "state/messages.hpp"
#include "temporary_folder.hpp"

#include <iostream>
#include <sstream>

class RunFolder : public TemporaryFolder {
  public:
    RunFolder() : before_(std::filesystem::current_path()) {
        std::filesystem::current_path(path());
        close_list();
        if (failed(LISOPN("vorda.lis")))
            ADD_FAILURE() << "no list file in " << path();
    }
    ~RunFolder() {
        std::cin.rdbuf(console_before_);
        std::cin.clear();
        close_list();
        std::filesystem::current_path(before_);
    }
    // What standard input gives from here on.
    void answer(const std::string &text) {
        console_.str(text);
        console_.clear();
        std::cin.rdbuf(console_.rdbuf());
        std::cin.clear();
    }

    std::string list_text() const { return read("vorda.lis"); }
    // True when the list file has the message, a line with a blank and the text, value included.
    bool told(const std::string &text) const { return list_has("\n \n " + text + "\n \n"); }
    bool list_has(const std::string &part) const { return list_text().find(part) != std::string::npos; }
    // How often a whole line of this text stands in the list file.
    int count(const std::string &line) const {
        std::istringstream in(list_text());
        int n = 0;
        for (std::string found; std::getline(in, found);)
            n += found == line ? 1 : 0;
        return n;
    }

  private:
    std::filesystem::path before_;
    std::istringstream console_;
    std::streambuf *console_before_ = std::cin.rdbuf();
};
