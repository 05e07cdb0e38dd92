// The table of the infinite-depth wave function.
#pragma once

#include "base/types.hpp"

constexpr int FTAB_ROWS = 48;  // rows 1 to 40 serve X > 3, rows 41 to 48 X <= 3
constexpr int FTAB_TERMS = 31; // coefficients of a row
// First term and degree in t of the polynomials p_0 to p_6 of a row.
constexpr int FTAB_FIRST[7] = {0, 6, 12, 17, 22, 26, 29};
constexpr int FTAB_DEGREE[7] = {5, 5, 4, 4, 3, 2, 1};

// Piecewise polynomials, (31,48) with the first index fastest, counted from 0; src/green/tables/ftab.cpp
// tells more.
extern const f32 FTAB[FTAB_ROWS][FTAB_TERMS];

// The same by terms, for processors that pick a coefficient of many points from registers of 16: the rows of
// Y < 4 come first, so that two registers of the three hold all of them, and two those of Y >= 4. Of either
// half the first four places are those of X <= 3.
constexpr int place_in_term(int row) { // both from 0
    return row < 40 ? 4 + row + 4 * (row / 20) : row - 40 + 20 * ((row - 40) / 4);
}
struct FtabByTerm {
    alignas(64) f32 value[FTAB_TERMS][FTAB_ROWS];
};
extern const FtabByTerm FTAB_BY_TERM;

constexpr FtabByTerm by_term(const f32 (&rows)[FTAB_ROWS][FTAB_TERMS]) {
    FtabByTerm table{};
    for (int row = 0; row < FTAB_ROWS; ++row) {
        for (int term = 0; term < FTAB_TERMS; ++term)
            table.value[term][place_in_term(row)] = rows[row][term];
    }
    return table;
}
