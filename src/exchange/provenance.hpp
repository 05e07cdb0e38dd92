// Where a file came from, told in every file of results.
#pragma once

#include <string>
#include <utility>
#include <vector>

struct Provenance {
    std::string program; // name and version
    std::string file;    // the hand-over file, without its folder
    std::string sha256;  // of the hand-over file, as sha256sum prints it; empty when it cannot be told
    std::string date;    // of the export, UTC: 2026-01-31T12:00:00Z
    std::string command; // as typed
    // As named texts: source, input_file, input_sha256, date_created, history.
    std::vector<std::pair<std::string, std::string>> texts() const;
};

// Now, of this file. The hash needs libcrypto and is empty without it.
Provenance provenance_of(const std::string &program, const std::string &file, const std::string &command);
