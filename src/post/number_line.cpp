#include "post/number_line.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>

bool numbers_of(std::string line, std::vector<double> &values) {
    line.resize(std::min(line.find('#'), line.size()));
    const char *at = line.data(), *const end = at + line.size();
    const auto skip = [&] {
        while (at < end && (*at == ' ' || *at == '\t' || *at == ',' || *at == '\r' || *at == '+'))
            ++at;
    };
    for (skip(); at < end; skip()) {
        double value = 0;
        const auto [next, fault] = std::from_chars(at, end, value);
        if (fault != std::errc() || !std::isfinite(value))
            return false;
        values.push_back(value);
        at = next;
    }
    return true;
}
