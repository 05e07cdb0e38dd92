#include "input/config.hpp"

#include "base/text.hpp"
#include "state/messages.hpp"

#include <algorithm>
#include <numeric>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::size_t LINE_LENGTH = 80; // columns of a line that count
constexpr const char *READ_FAULT = " Error in reading input file CONFIG.VRD";

// A keyword, its place in KFLAG (0: none) and the switch that it sets; XBODY and NEWMDS set arrays.
struct Keyword {
    std::string_view word;
    int flag;
    int Options::*value;
};
// In the order in which they are tried: a longer word that begins with a keyword counts as that keyword.
constexpr Keyword KEYWORDS[] = {
    {"MAXSCR", 1, &Options::MAXSCR},  {"ISOLVE", 2, &Options::ISOLVE}, {"ISOR", 3, &Options::ISOR},
    {"IRR", 4, &Options::IRR},        {"XBODY", 6, nullptr},           {"IQUAD", 7, &Options::IQUAD},
    {"ILOG", 8, &Options::ILOG},      {"IDIAG", 9, &Options::IDIAG},   {"NEWMDS", 10, nullptr},
    {"ISCATT", 11, &Options::ISCATT}, {"IPERIO", 0, &Options::IPERIO}, {"I2ND", 13, &Options::I2ND},
    {"IWADD", 0, &Options::IWADD},    {"IFSLID", 0, &Options::IFSLID}, {"IUSESCR", 0, &Options::IUSESCR},
    {"NTRD", 0, &Options::NTRD},      {"CHECKP", 0, &Options::CHECKP},
};

// The text before the first "=" without the blanks in front, the letters a to z in capitals; empty when the
// line is no setting.
std::string keyword_text(const std::string &line, std::size_t equals) {
    const std::size_t first = line.find_first_not_of(" \t");
    if (equals == std::string::npos || first >= equals)
        return {};
    std::string word = line.substr(first, equals - first);
    for (char &c : word) {
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
    }
    return word;
}

// Body of NEWMDS(N), 1 without the parentheses; false when what stands in them is no body number.
bool body_number(const std::string &word, FreeReader &text, const std::string &name, int line, int &body) {
    body = 1;
    const std::size_t open = word.find('(');
    const std::size_t close = word.find(')');
    if (open == std::string::npos || close == std::string::npos || close < open + 2)
        return true;
    text.open_text(name, word.substr(open + 1, close - open - 1), line);
    return text.read(body) && body >= 1;
}

Status read_new_modes(std::map<int, int> &NEWMDS, const std::string &word, FreeReader &value,
                      const std::string &name, int line) {
    FreeReader index;
    int body = 1;
    if (!body_number(word, index, name, line, body)) {
        const std::string detail =
            index.fault().empty() ? name + ", line " + std::to_string(line) + ": bodies are numbered from 1"
                                  : index.fault();
        return MSGOUT_with(READ_FAULT, 0, detail);
    }
    if (!value.read(NEWMDS[body]))
        return MSGOUT_with(READ_FAULT, 0, value.fault());
    return Status::ok;
}

// What settings go to.
struct Settings {
    Options &opt;
    TypedInput &typed;
};

// One setting: its keyword as typed, in capitals, and the text behind it, from `place`.
struct Setting {
    std::string word;
    FreeReader value;
    std::string place;
    int line;
};

Status read_setting(const Settings &to, const Keyword &key, Setting &setting) {
    if (key.flag != 0)
        to.opt.KFLAG[static_cast<std::size_t>(key.flag)] = false;
    FreeReader &value = setting.value;
    if (key.word == "NEWMDS")
        return read_new_modes(to.typed.NEWMDS, setting.word, value, setting.place, setting.line);
    const bool good =
        key.value != nullptr ? value.read(to.opt.*key.value) : value.read_array(to.typed.XBODY.data(), 4);
    return good ? Status::ok : MSGOUT_with(READ_FAULT, 0, value.fault());
}

// Number of letters to change, add or leave out from one word to the other.
std::size_t edits(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t above = row[j];
            row[j] = std::min({above + 1, row[j - 1] + 1, diagonal + (a[i - 1] == b[j - 1] ? 0 : 1)});
            diagonal = above;
        }
    }
    return row.back();
}

// A line with "=" behind one word that is no keyword. What begins with another sign or has several words
// is a comment.
void warn_of_keyword(const std::string &typed, const std::string &name, int line) {
    const std::string word = trimmed(typed);
    if (word.empty() || word[0] < 'A' || word[0] > 'Z' || word.find_first_of(" \t") != std::string::npos)
        return;
    const Keyword &nearest =
        *std::min_element(std::begin(KEYWORDS), std::end(KEYWORDS), [&](const Keyword &a, const Keyword &b) {
            return edits(word, a.word) < edits(word, b.word);
        });
    message("WARNING: unknown keyword in the configuration file: " + word);
    message_detail(name + ", line " + std::to_string(line) + "; the nearest is " + std::string(nearest.word));
}

} // namespace

Status RDCONF(const std::string &name, Options &opt, TypedInput &typed) {
    opt.KFLAG.fill(true);
    FreeReader in;
    if (!in.open(name)) {
        // A file that is there and cannot be read is not the same as none: its settings would be lost unseen.
        if (access(name.c_str(), F_OK) != 0)
            return Status::ok;
        return MSGOUT_with(READ_FAULT, 0, in.fault());
    }
    std::string line;
    while (true) {
        const int number = in.line_number();
        if (!in.line(line, std::string::npos))
            return Status::ok;
        if (line.size() > LINE_LENGTH && line.find_first_not_of(" \t", LINE_LENGTH) != std::string::npos) {
            message("WARNING: text behind column 80 of the configuration file does not count");
            message_detail(name + ", line " + std::to_string(number));
        }
        line.resize(std::min(line.size(), LINE_LENGTH));
        const std::size_t equals = line.find('=');
        Setting setting{keyword_text(line, equals), {}, "the setting in " + name, number};
        bool known = setting.word.empty();
        for (const Keyword &key : KEYWORDS) {
            if (setting.word.compare(0, key.word.size(), key.word) != 0)
                continue;
            setting.value.open_text(setting.place, line.substr(equals + 1), number);
            if (failed(read_setting({opt, typed}, key, setting)))
                return Status::failed;
            known = true;
            break;
        }
        if (!known)
            warn_of_keyword(setting.word, name, number);
    }
}
