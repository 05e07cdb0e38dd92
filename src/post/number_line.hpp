// Lines of numbers of text files of users.
#pragma once

#include <string>
#include <vector>

// The numbers of a line, parted by blanks or commas, up to a #; false where something else stands.
[[nodiscard]] bool numbers_of(std::string line, std::vector<double> &values);
