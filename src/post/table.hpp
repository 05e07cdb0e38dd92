// Results as tables: named columns with units, rows of numbers and words, for people and for other programs.
#pragma once

#include <cstdio>
#include <string>
#include <variant>
#include <vector>

// How people see the numbers of a column; words stand as they are.
enum class Look {
    count,      // whole number
    fixed,      // some digits behind the point
    scientific, // seven significant digits
};

struct Column {
    std::string name;        // without a comma
    std::string unit;        // empty: a word, a count or a ratio
    Look look = Look::count; // of its numbers
    int decimals = 4;        // Look::fixed only
};

using Cell = std::variant<double, std::string>;

struct Table {
    std::string name;  // one lower-case word, by which a user asks for the table
    std::string title; // what it shows
    std::vector<Column> columns;
    std::vector<std::vector<Cell>> rows; // each as long as `columns`
    bool leave_out_zeros = false;        // people do not see rows whose scientific numbers are all 0
    std::vector<std::string> notes;      // what a reader has to know beside the numbers, a line each
};

// The rows as people see them, without those of zeros where the table wants that.
std::vector<std::vector<std::string>> shown_rows(const Table &table);

// Title, head of two lines (names, units), rows and notes. Columns are as wide as what they hold; "inf" and
// "-" (no number) stand for values that are not finite; 0 has no sign.
void print_table(std::FILE *out, const Table &table);

// One header line, "name [unit]" by column, and all rows: comma-separated values with nine significant
// digits; a word with a comma or a quote in it stands in quotes.
void print_csv(std::FILE *out, const Table &table);
