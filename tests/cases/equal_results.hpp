// Hand-over files byte for byte, but for what a run tells of itself: dates, times and numbers of threads.
#pragma once

#include "case_folder.hpp"

#include <cstring>
#include <regex>

// The records of a file of 4-byte frames; what follows a broken frame is one record.
inline std::vector<std::string> framed_records(const std::string &bytes) {
    std::vector<std::string> records;
    for (std::size_t at = 0; at < bytes.size();) {
        std::uint32_t n = 0;
        std::memcpy(&n, bytes.data() + at, std::min<std::size_t>(4, bytes.size() - at));
        const bool whole = at + 8 + n <= bytes.size();
        records.push_back(whole ? bytes.substr(at + 4, n) : bytes.substr(at));
        at = whole ? at + 8 + n : bytes.size();
    }
    return records;
}

inline std::vector<std::string> comparable(const std::string &p2f) {
    static const std::regex row(R"(^( *\d+) +\d+( +-?[\d.*]+ +)\d\d:\d\d:\d\d( .*)$)"),
        date(R"((.*)\d\d-\w{3}-\d{4}(.*)\d\d:\d\d:\d\d(.*))");
    std::vector<std::string> records = framed_records(p2f);
    for (std::string &record : records) {
        if (record.size() != 72)
            continue;
        record = std::regex_replace(record, row, "$1 thread$2time$3");
        record = std::regex_replace(record, date, "$1day$2time$3");
    }
    return records;
}

// Two hand-over files hold the same bytes.
inline testing::AssertionResult equal_results(const std::string &one, const std::string &other) {
    const std::vector<std::string> a = comparable(one), b = comparable(other);
    if (one.empty() || a.size() != b.size())
        return testing::AssertionFailure() << a.size() << " records and " << b.size();
    for (std::size_t r = 0; r < a.size(); ++r)
        if (a[r] != b[r])
            return testing::AssertionFailure() << "record " << r + 1 << " of " << a.size()
                                               << (a[r].size() == 72 ? ": " + a[r] + b[r] : "");
    return testing::AssertionSuccess();
}
