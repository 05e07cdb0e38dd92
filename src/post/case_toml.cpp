#include "post/case_toml.hpp"

#include <algorithm>
#include <cmath>
#include <string_view>

double number(const toml::node &node) {
    return node.value<double>().value_or(0);
}

namespace {

using Kind = CaseKey::Kind;

bool is_number(const toml::node &node) {
    const std::optional<double> value = node.value<double>();
    return (node.is_integer() || node.is_floating_point()) && std::isfinite(*value);
}
bool are_numbers(const toml::node &node, std::size_t n) {
    const toml::array *list = node.as_array();
    return list != nullptr && list->size() == n && std::all_of(list->begin(), list->end(), is_number);
}

// The last three of the four numbers of a term are small whole numbers.
bool are_powers(const toml::array &term) {
    for (std::size_t k = 1; k < 4; ++k)
        if (!term.get(k)->is_integer() || number(*term.get(k)) < 0 || number(*term.get(k)) > 20)
            return false;
    return true;
}

// {from, to} with a count, a whole number of two at least, and even steps or equal ratios.
bool is_range(const toml::table &table) {
    for (const auto &[key, node] : table) {
        const bool known = key == "from" || key == "to" || key == "count" || key == "spacing";
        if (!known ||
            (key == "spacing" ? node.value<std::string>() != "even" && node.value<std::string>() != "ratio"
                              : !is_number(node)))
            return false;
    }
    const toml::node *count = table.get("count");
    return table.get("from") != nullptr && table.get("to") != nullptr && count != nullptr &&
           count->is_integer() && number(*count) >= 2 && number(*count) <= 10000;
}
// Whether a word stands in "auto, on, off".
bool is_choice(const std::string &word, std::string_view choices) {
    while (!choices.empty()) {
        const std::size_t end = std::min(choices.find(", "), choices.size());
        if (word == choices.substr(0, end))
            return true;
        choices.remove_prefix(std::min(end + 2, choices.size()));
    }
    return false;
}

// Whether a value is of its kind, whatever it means.
bool fits(const toml::node &node, const CaseKey &key) {
    const toml::array *list = node.as_array();
    const auto all = [&](auto test) {
        return list != nullptr && !list->empty() && std::all_of(list->begin(), list->end(), test);
    };
    switch (key.kind) {
    case Kind::number:
        return is_number(node);
    case Kind::positive:
        return is_number(node) && number(node) > 0;
    case Kind::not_negative:
        return is_number(node) && number(node) >= 0;
    case Kind::count:
        return node.is_integer() && number(node) >= 0 && number(node) < 1e6;
    case Kind::three:
        return are_numbers(node, 3);
    case Kind::six:
        return are_numbers(node, 6);
    case Kind::square:
        return all([list](const toml::node &row) { return are_numbers(row, list->size()); });
    case Kind::word:
        return node.is_string();
    case Kind::modes:
        return list != nullptr && std::all_of(list->begin(), list->end(),
                                              [](const toml::node &word) { return word.is_string(); });
    case Kind::fractions:
        return node.is_table() &&
               std::all_of(node.as_table()->begin(), node.as_table()->end(), [](const auto &item) {
                   return is_number(item.second) && number(item.second) >= 0;
               });
    case Kind::pairs:
        return all([](const toml::node &pair) { return are_numbers(pair, 2); });
    case Kind::triples:
        return all([](const toml::node &triple) { return are_numbers(triple, 3); });
    case Kind::terms:
        return all(
            [](const toml::node &term) { return are_numbers(term, 4) && are_powers(*term.as_array()); });
    case Kind::flag:
        return node.is_boolean();
    case Kind::choice:
        return node.is_string() && is_choice(*node.value<std::string>(), key.choices);
    case Kind::series:
        return node.is_table() ? is_range(*node.as_table()) : all(is_number);
    case Kind::sizes:
        return node.is_table() &&
               std::all_of(node.as_table()->begin(), node.as_table()->end(), [](const auto &item) {
                   const toml::node &value = item.second;
                   return is_number(value) || value.is_string() || value.value<bool>() == true;
               });
    }
    return false;
}

// Letters to change, take out or put in until one word is the other.
std::size_t distance(const std::string &a, const std::string &b) {
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        row[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t corner = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t changed = corner + (a[i - 1] == b[j - 1] ? 0 : 1);
            corner = row[j];
            row[j] = std::min({changed, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row.back();
}

std::vector<CaseKey> all_keys() {
    std::vector<CaseKey> keys = case_keys();
    keys.insert(keys.end(), run_keys().begin(), run_keys().end());
    return keys;
}

// Holds the tables of a file to the keys; the first fault ends it.
class Check {
  public:
    Check(const std::string &name, const std::vector<CaseKey> &keys, const char *listed)
        : name_(name), keys_(keys), listed_(listed) {}
    std::string fault;

    bool file(const toml::table &top) {
        if (!table(top, ""))
            return false;
        for (const auto &[key, node] : top) {
            const std::string kind(key.str());
            if (node.is_table() && !table(*node.as_table(), kind))
                return false;
            for (std::size_t n = 0; node.is_array_of_tables() && n < node.as_array()->size(); ++n)
                if (!table(*node.as_array()->get(n)->as_table(), kind))
                    return false;
        }
        return true;
    }

  private:
    bool refuse(const toml::source_region &where, const std::string &why) {
        fault = at_line(name_, where, why);
        return false;
    }
    bool is_table(const std::string &word) const {
        return std::any_of(keys_.begin(), keys_.end(),
                           [&](const CaseKey &k) { return *k.table != '\0' && word == k.table; });
    }
    // "; the nearest key is radii": of the same table, or of tables when it is the top.
    std::string nearest(const std::string &word, const std::string &kind) const {
        std::string best;
        std::size_t least = 1 + word.size() / 2;
        const auto look_at = [&](const std::string &key) {
            if (const std::size_t d = distance(word, key); d < least) {
                least = d;
                best = key;
            }
        };
        for (const CaseKey &key : keys_) {
            if (kind == key.table)
                look_at(key.key);
            else if (kind.empty())
                look_at(key.table);
        }
        if (!best.empty())
            return "; the nearest one is " + best;
        for (const CaseKey &key : keys_)
            if (word == key.key)
                return "; it belongs to " + (*key.table == '\0' ? "the top of the file" : named(key.table));
        return std::string("; see ") + listed_;
    }
    static std::string named(const std::string &kind) {
        return stands_once(kind) ? "[" + kind + "]" : "[[" + kind + "]]";
    }

    // Each key of the table is one of the list and has a value of its kind.
    bool table(const toml::table &table, const std::string &kind) {
        const std::string where = kind.empty() ? "" : " in " + named(kind);
        for (const auto &[key, node] : table) {
            const std::string word(key.str());
            if (kind.empty() && is_table(word)) {
                if (stands_once(word) ? !node.is_table() : !node.is_array_of_tables())
                    return refuse(node.source(), word + " has to be a table " + named(word));
                continue;
            }
            const auto row = std::find_if(keys_.begin(), keys_.end(),
                                          [&](const CaseKey &k) { return kind == k.table && word == k.key; });
            if (row == keys_.end())
                return refuse(key.source(), "unknown key " + word + where + nearest(word, kind));
            if (!fits(node, *row))
                return refuse(node.source(), word + where + " has to be " + wanted(*row));
        }
        return true;
    }

    const std::string &name_;
    const std::vector<CaseKey> &keys_;
    const char *listed_;
};

} // namespace

std::string wanted(const CaseKey &key) {
    switch (key.kind) {
    case Kind::number:
        return "a number";
    case Kind::positive:
        return "a number above 0";
    case Kind::not_negative:
        return "a number, not negative";
    case Kind::count:
        return "a whole number, not negative";
    case Kind::three:
        return "three numbers in brackets";
    case Kind::six:
        return "six numbers in brackets";
    case Kind::square:
        return "a square matrix, row by row in brackets";
    case Kind::word:
        return "a word in quotes";
    case Kind::modes:
        return "names of modes, in quotes and brackets";
    case Kind::fractions:
        return "modes with numbers that are not negative, as {roll = 0.05}";
    case Kind::pairs:
        return "pairs of numbers in brackets";
    case Kind::triples:
        return "triples of numbers in brackets";
    case Kind::terms:
        return "terms of a factor and the powers of x, y, z, as [[0.5, 2, 0, 0], [-1, 0, 0, 1]]";
    case Kind::flag:
        return "true or false";
    case Kind::choice:
        return "one of the words " + std::string(key.choices) + " in quotes";
    case Kind::series:
        return "numbers in brackets, or a range as {from = 4, to = 20, count = 17}, also with spacing = "
               "\"ratio\"";
    case Kind::sizes:
        return "options of the maker, as {radius = 5, nu = 12, lid = true}";
    }
    return "";
}

std::string at_line(const std::string &name, const toml::source_region &where, const std::string &why) {
    return name + ", line " + std::to_string(where.begin.line) + ": " + why;
}

bool parse_case(const std::string &name, toml::table &top, std::string &error) {
    return parse_keyed(name, all_keys(), "vorda-run --keys", top, error);
}

bool parse_keyed(const std::string &name, const std::vector<CaseKey> &keys, const char *listed,
                 toml::table &top, std::string &error) {
    toml::parse_result parsed = toml::parse_file(name);
    if (!parsed) {
        const toml::parse_error &fault = parsed.error();
        const std::string why(fault.description());
        error = fault.source().begin.line == 0 ? name + ": " + why : at_line(name, fault.source(), why);
        return false;
    }
    top = std::move(parsed).table();
    Check check(name, keys, listed);
    if (check.file(top))
        return true;
    error = check.fault;
    return false;
}
