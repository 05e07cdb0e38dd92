#include "case/html.hpp"

#include <algorithm>
#include <variant>

std::string escaped(const std::string &text) {
    std::string out;
    for (const char c : text) {
        if (c == '&')
            out += "&amp;";
        else if (c == '<')
            out += "&lt;";
        else if (c == '>')
            out += "&gt;";
        else if (c == '"')
            out += "&quot;";
        else
            out += c;
    }
    return out;
}

std::string paragraph(const std::string &text) {
    return "<p>" + escaped(text) + "</p>\n";
}

std::string list_of(const std::vector<std::string> &items) {
    std::string html = "<ul>\n";
    for (const std::string &item : items)
        html += "<li>" + escaped(item) + "</li>\n";
    return html + "</ul>\n";
}

std::string facts(const std::vector<std::pair<std::string, std::string>> &rows) {
    std::string html = "<table class=\"facts\">\n";
    for (const auto &[name, text] : rows)
        html += "<tr><th>" + escaped(name) + "</th><td>" + escaped(text) + "</td></tr>\n";
    return html + "</table>\n";
}

std::string html_of(const Table &table, std::size_t most) {
    std::string html = "<table>\n<caption>" + escaped(table.title) + "</caption>\n<thead><tr>";
    std::vector<bool> words(table.columns.size(), false);
    for (std::size_t k = 0; k < words.size() && !table.rows.empty(); ++k)
        words[k] = std::holds_alternative<std::string>(table.rows.front()[k]);
    for (const Column &column : table.columns)
        html += (words[static_cast<std::size_t>(&column - table.columns.data())] ? "<th class=w>" : "<th>") +
                escaped(column.name) + (column.unit.empty() ? "" : "<br>[" + escaped(column.unit) + "]") +
                "</th>";
    html += "</tr></thead>\n<tbody>\n";
    const auto rows = shown_rows(table);
    for (std::size_t n = 0; n < std::min(most, rows.size()); ++n) {
        html += "<tr>";
        for (std::size_t k = 0; k < words.size(); ++k)
            html += (words[k] ? "<td class=w>" : "<td>") + escaped(rows[n][k]);
        html += "</tr>\n";
    }
    html += "</tbody></table>\n";
    std::vector<std::string> notes = table.notes;
    if (rows.empty())
        notes.emplace_back("No rows.");
    if (rows.size() > most)
        notes.push_back("The first " + std::to_string(most) + " of " + std::to_string(rows.size()) +
                        " rows; csv = true in [outputs] writes all.");
    if (rows.size() < table.rows.size())
        notes.emplace_back("Rows of zeros are left out.");
    for (const std::string &note : notes)
        html += "<p class=\"note\">" + escaped(note) + "</p>\n";
    return html;
}

std::string folded(const std::string &title, const std::string &html) {
    return "<details><summary>" + escaped(title) + "</summary>\n" + html + "</details>\n";
}

std::string inlined(const std::string &svg, const std::string &prefix) {
    const std::size_t begin = svg.find("<svg");
    if (begin == std::string::npos)
        return "";
    std::string out;
    const std::string_view marks[] = {" id=\"", " id='", "href=\"#", "href='#", "url(#"};
    for (std::size_t at = begin; at < svg.size();) {
        const std::string_view rest = std::string_view(svg).substr(at);
        const auto mark = std::find_if(std::begin(marks), std::end(marks),
                                       [rest](std::string_view m) { return rest.substr(0, m.size()) == m; });
        if (mark == std::end(marks)) {
            out += svg[at++];
            continue;
        }
        out += std::string(*mark) + prefix;
        at += mark->size();
    }
    return "<figure>\n" + out + "</figure>\n";
}

std::string page_of(const std::string &title, const std::string &body) {
    return "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">\n"
           "<meta name=\"viewport\" content=\"width=device-width\">\n<title>" +
           escaped(title) +
           "</title>\n<style>\n"
           "body{font:15px/1.45 sans-serif;color:#222;max-width:72em;margin:1.5em auto;padding:0 1em}\n"
           "h1{font-size:1.6em}h2{font-size:1.25em;border-bottom:1px solid #bbb;margin-top:2em}\n"
           "table{border-collapse:collapse;margin:1em "
           "0;font-size:.87em}caption{text-align:left;font-weight:bold}\n"
           "td,th{border-bottom:1px solid #ddd;padding:.15em "
           ".6em;text-align:right;font-variant-numeric:tabular-nums}\n"
           "td.w,th.w,.facts td,.facts th{text-align:left}th{background:#f3f5f7;vertical-align:bottom}\n"
           "details{margin:.6em "
           "0}details>*{max-width:100%;overflow-x:auto}summary{cursor:pointer;color:#124a80}\n"
           ".note{color:#555;font-size:.87em;margin:.2em 0}figure{display:inline-block;margin:.5em 0}\n"
           "figure "
           "svg{max-width:100%;height:auto}pre{background:#f6f6f6;padding:.7em;overflow-x:auto;font-size:."
           "82em}\n"
           ".warnings{border:2px solid #b3261e;background:#fdf1f0;padding:.2em 1em;border-radius:4px}\n"
           ".well{border:1px solid #3b7d3b;background:#f1f8f1;padding:.2em 1em;border-radius:4px}\n"
           "canvas{border:1px solid #ccc;max-width:100%;touch-action:none;cursor:grab}\n"
           "nav a{margin-right:1em}\n"
           "@media print{body{max-width:none}nav,summary{display:none}h2,figure,canvas{break-inside:avoid}}\n"
           "</style></head>\n<body>\n" +
           body + "</body></html>\n";
}
