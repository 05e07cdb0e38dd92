// Catches what a test writes to the list file.
#pragma once

#include "state/messages.hpp"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <unistd.h>

class ListCapture {
  public:
    ListCapture() {
        static int count = 0; // names of one process
        name_ =
            testing::TempDir() + "vorda_list_" + std::to_string(::getpid()) + "_" + std::to_string(++count);
        if (failed(LISOPN(name_)))
            ADD_FAILURE() << "no list file " << name_;
    }
    ~ListCapture() { std::remove(name_.c_str()); }
    ListCapture(const ListCapture &) = delete;
    ListCapture &operator=(const ListCapture &) = delete;

    std::string text() const {
        std::ifstream in(name_);
        std::stringstream all;
        all << in.rdbuf();
        return all.str();
    }
    // How often a whole line of this text stands in the list file.
    int count(const std::string &line) const {
        std::istringstream in(text());
        std::string found;
        int n = 0;
        while (std::getline(in, found))
            n += found == line ? 1 : 0;
        return n;
    }

  private:
    std::string name_;
};
