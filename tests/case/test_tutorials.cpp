// Truth: what each page of docs/tutorials promises. The test takes the page as its reader does: a block
// headed by a language and a name is a file, a block headed sh is typed, and what a block headed text shows
// stands, in this order, in what the commands before it printed; lines of three points leave something out.
// Pictures of the page are made by it.
#include "program.hpp"

#include <cmath>
#include <sstream>

namespace {

// Numbers of results hold to a share, so that other processors have the same page.
constexpr double SHARE = 0.004;

std::vector<std::string> pages() {
    std::vector<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(VORDA_SOURCE_DIR "/docs/tutorials"))
        if (entry.path().extension() == ".md" && entry.path().stem() != "README")
            names.push_back(entry.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

// A number of the page and one of the program are the same within the share or half the last digit that is
// shown.
bool same_number(const std::string &shown, const std::string &found) {
    char *end_shown = nullptr, *end_found = nullptr;
    const double a = std::strtod(shown.c_str(), &end_shown), b = std::strtod(found.c_str(), &end_found);
    if (end_shown == shown.c_str() || std::string(end_shown) != end_found)
        return false;
    const std::size_t point = shown.find('.');
    const std::size_t digits =
        point == std::string::npos ? 0 : shown.find_first_not_of("0123456789", point + 1);
    const std::size_t behind = point == std::string::npos ? 0 : std::min(digits, shown.size()) - point - 1;
    const bool exponent = shown.find_first_of("eE") != std::string::npos;
    const double last = exponent ? 0 : std::pow(10, -static_cast<double>(behind));
    return std::fabs(a - b) <= std::max(SHARE * std::fabs(a), 1.01 * last);
}
bool same_line(const std::string &shown, const std::string &found) {
    std::istringstream a(shown), b(found);
    std::string x, y;
    while (a >> x)
        if (!(b >> y) || (x != y && !same_number(x, y)))
            return false;
    return !(b >> y);
}

// The lines of `shown` that are not in `printed`, in this order.
std::string missing(const std::string &shown, const std::string &printed) {
    std::istringstream wanted(shown), in(printed);
    std::string line, found;
    while (std::getline(wanted, line)) {
        if (line == "..." || line.empty())
            continue;
        bool there = false;
        while (!there && std::getline(in, found))
            there = same_line(line, found);
        if (!there)
            return line;
    }
    return "";
}

bool was_made(const TemporaryFolder &folder, const std::string &name) {
    for (const auto &entry : std::filesystem::recursive_directory_iterator(folder.path()))
        if (entry.path().filename() == name && std::filesystem::file_size(entry.path()) > 2000)
            return true;
    return false;
}

class Tutorial : public testing::TestWithParam<std::string> {};
INSTANTIATE_TEST_SUITE_P(Pages, Tutorial, testing::ValuesIn(pages()),
                         [](const auto &page) { return page.param; });

} // namespace

TEST_P(Tutorial, KeepsItsPromises) {
    const TemporaryFolder folder;
    if (command(folder, "gnuplot --version").code != 0)
        GTEST_SKIP() << "no gnuplot";
    std::ifstream in(VORDA_SOURCE_DIR "/docs/tutorials/" + GetParam() + ".md");
    std::string line, head, block, printed;
    std::vector<std::string> pictures;
    int results = 0, number = 0, first = 0;
    bool open = false;
    while (std::getline(in, line)) {
        ++number;
        if (line.rfind("![", 0) == 0)
            pictures.push_back(line.substr(line.find('(') + 1, line.find(')') - line.find('(') - 1));
        if (line.rfind("```", 0) != 0) {
            block += open ? line + "\n" : "";
            continue;
        }
        open = !open;
        if (open) {
            head = line.substr(3);
            block.clear();
            first = number;
            continue;
        }
        SCOPED_TRACE(GetParam() + ".md, line " + std::to_string(first));
        if (const std::size_t blank = head.find(' '); blank != std::string::npos) {
            folder.write(head.substr(blank + 1), block);
        } else if (head == "sh") {
            const Answer answer = command(folder, "set -e\n" + block);
            if (answer.text.find("install it and build again") != std::string::npos)
                GTEST_SKIP() << answer.text;
            ASSERT_EQ(answer.code, 0) << answer.text;
            printed = answer.text;
        } else {
            ASSERT_EQ(head, "text");
            EXPECT_EQ(missing(block, printed), "") << "is not in\n" << printed;
            ++results;
        }
    }
    EXPECT_FALSE(open);
    EXPECT_GE(results, 2);
    EXPECT_GE(pictures.size(), 1u);
    for (const std::string &picture : pictures) {
        EXPECT_TRUE(std::filesystem::exists(VORDA_SOURCE_DIR "/docs/tutorials/" + picture)) << picture;
        EXPECT_TRUE(was_made(folder, picture)) << picture;
    }
}
