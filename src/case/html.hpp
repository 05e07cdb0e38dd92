// Pieces of an HTML page.
#pragma once

#include "post/table.hpp"

#include <string>
#include <utility>
#include <vector>

std::string escaped(const std::string &text);
std::string paragraph(const std::string &text);
std::string list_of(const std::vector<std::string> &items);
// Rows of a name and a text, no head.
std::string facts(const std::vector<std::pair<std::string, std::string>> &rows);
// The table with title and notes; of more rows than `most` the first ones, and a note tells.
std::string html_of(const Table &table, std::size_t most);
// What opens on a click.
std::string folded(const std::string &title, const std::string &html);
// An SVG file as part of the page; its names become those of `prefix`, since names are the page's.
std::string inlined(const std::string &svg, const std::string &prefix);
// The whole page.
std::string page_of(const std::string &title, const std::string &body);
