// A temporary folder that a test works in as a run does: it is the working directory while the object lives,
// a list file is open in it, and all is removed with it.
#pragma once

#include "state/messages.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

class RunFolder {
  public:
    RunFolder() : before_(std::filesystem::current_path()) {
        std::string name = testing::TempDir() + "vorda_run_XXXXXX";
        if (mkdtemp(name.data()) == nullptr)
            ADD_FAILURE() << "no folder " << name;
        folder_ = name;
        std::filesystem::current_path(folder_);
        close_list();
        if (failed(LISOPN("vorda.lis")))
            ADD_FAILURE() << "no list file in " << name;
    }
    ~RunFolder() {
        std::cin.rdbuf(console_before_);
        std::cin.clear();
        close_list();
        std::filesystem::current_path(before_);
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    RunFolder(const RunFolder &) = delete;
    RunFolder &operator=(const RunFolder &) = delete;

    void write(const std::string &name, const std::string &text) const {
        std::ofstream(name, std::ios::binary) << text;
    }
    std::string read(const std::string &name) const {
        std::ifstream in(name, std::ios::binary);
        std::ostringstream text;
        text << in.rdbuf();
        return text.str();
    }
    bool exists(const std::string &name) const { return std::filesystem::exists(name); }
    // What standard input gives from here on.
    void answer(const std::string &text) {
        console_.str(text);
        console_.clear();
        std::cin.rdbuf(console_.rdbuf());
        std::cin.clear();
    }

    std::string list_text() const { return read("vorda.lis"); }
    // True when the list file has the message, a line with a blank and the text, value included.
    bool told(const std::string &text) const {
        std::string wanted = "\n \n ";
        wanted.append(text).append("\n \n");
        return list_text().find(wanted) != std::string::npos;
    }
    bool list_has(const std::string &part) const { return list_text().find(part) != std::string::npos; }

  private:
    std::filesystem::path before_;
    std::filesystem::path folder_;
    std::istringstream console_;
    std::streambuf *console_before_ = std::cin.rdbuf();
};
