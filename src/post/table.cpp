#include "post/table.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace {

std::string printed(const char *format, int digits, double value) {
    char text[64];
    std::snprintf(text, sizeof text, format, digits, value);
    return text;
}

std::string not_finite(double value) {
    return std::isnan(value) ? "-" : value > 0 ? "inf" : "-inf";
}

// What rounds to 0 has no sign either.
std::string without_sign_of_zero(const std::string &number) {
    return number.find_first_of("123456789") == std::string::npos && number[0] == '-' ? number.substr(1)
                                                                                      : number;
}

std::string shown(const Cell &cell, const Column &column) {
    if (const auto *word = std::get_if<std::string>(&cell))
        return *word;
    const double value = std::get<double>(cell) + 0.0; // no -0
    if (!std::isfinite(value))
        return not_finite(value);
    switch (column.look) {
    case Look::count:
        return without_sign_of_zero(printed("%.*f", 0, value));
    case Look::fixed:
        return without_sign_of_zero(printed("%.*f", column.decimals, value));
    case Look::scientific:
        break;
    }
    return printed("%.*E", 6, value);
}

// What is no number says nothing either.
bool all_zero(const std::vector<Cell> &row, const std::vector<Column> &columns) {
    for (std::size_t k = 0; k < columns.size(); ++k) {
        const double *value = columns[k].look == Look::scientific ? std::get_if<double>(&row[k]) : nullptr;
        if (value != nullptr && *value != 0 && !std::isnan(*value))
            return false;
    }
    return true;
}

std::string quoted(const std::string &word) {
    if (word.find_first_of(",\"\n") == std::string::npos)
        return word;
    std::string text = "\"";
    for (char c : word)
        text += c == '"' ? std::string("\"\"") : std::string(1, c);
    return text + '"';
}

// Adds a cell as other programs read it.
void add_exact(std::string &line, const Cell &cell) {
    if (const auto *word = std::get_if<std::string>(&cell)) {
        line += quoted(*word);
        return;
    }
    const double value = std::get<double>(cell) + 0.0; // no -0
    if (std::isnan(value))
        return;
    if (std::isinf(value)) {
        line += not_finite(value);
        return;
    }
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::general, 9);
    line.append(text, end.ptr);
}

} // namespace

std::vector<std::vector<std::string>> shown_rows(const Table &table) {
    std::vector<std::vector<std::string>> rows;
    for (const auto &row : table.rows) {
        if (table.leave_out_zeros && all_zero(row, table.columns))
            continue;
        rows.emplace_back();
        for (std::size_t k = 0; k < table.columns.size(); ++k)
            rows.back().push_back(shown(row[k], table.columns[k]));
    }
    return rows;
}

void print_table(std::FILE *out, const Table &table) {
    const std::size_t n = table.columns.size();
    std::vector<std::vector<std::string>> lines(2);
    bool units = false;
    for (const Column &column : table.columns) {
        lines[0].push_back(column.name);
        lines[1].push_back(column.unit.empty() ? "" : "[" + column.unit + "]");
        units = units || !column.unit.empty();
    }
    if (!units)
        lines.pop_back();
    const std::size_t head = lines.size();
    const auto rows = shown_rows(table);
    const bool left_out = rows.size() < table.rows.size();
    lines.insert(lines.end(), rows.begin(), rows.end());
    std::vector<std::size_t> width(n, 0);
    std::vector<bool> words(n, false);
    for (const auto &line : lines)
        for (std::size_t k = 0; k < n; ++k)
            width[k] = std::max(width[k], line[k].size());
    for (std::size_t k = 0; k < n && !table.rows.empty(); ++k)
        words[k] = std::holds_alternative<std::string>(table.rows.front()[k]);
    std::fprintf(out, "%s\n", table.title.c_str());
    for (std::size_t l = 0; l < lines.size(); ++l) {
        std::string text;
        for (std::size_t k = 0; k < n; ++k) {
            const std::string &cell = lines[l][k];
            const std::string blanks(width[k] - cell.size(), ' ');
            text += "  " + (words[k] ? cell + blanks : blanks + cell);
        }
        text.erase(text.find_last_not_of(' ') + 1);
        std::fprintf(out, "%s\n", text.c_str());
        if (l + 1 == head && lines.size() == head)
            std::fprintf(out, "  (none)\n");
    }
    if (left_out)
        std::fprintf(out, "Rows of zeros are left out.\n");
    for (const std::string &note : table.notes)
        std::fprintf(out, "%s\n", note.c_str());
}

void print_csv(std::FILE *out, const Table &table) {
    for (std::size_t k = 0; k < table.columns.size(); ++k) {
        const Column &column = table.columns[k];
        const std::string name = column.unit.empty() ? column.name : column.name + " [" + column.unit + "]";
        std::fprintf(out, "%s%s", k == 0 ? "" : ",", quoted(name).c_str());
    }
    std::fprintf(out, "\n");
    std::string line;
    for (const auto &row : table.rows) {
        line.clear();
        for (const Cell &cell : row) {
            add_exact(line, cell);
            line += ',';
        }
        line.back() = '\n';
        std::fwrite(line.data(), 1, line.size(), out);
    }
}
