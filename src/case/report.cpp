#include "case/report.hpp"

#include "case/html.hpp"
#include "case/judgement.hpp"
#include "case/mesh_view.hpp"
#include "case/refinement.hpp"
#include "exchange/export.hpp"
#include "exchange/plot.hpp"
#include "post/result_tables.hpp"

#include <algorithm>
#include <cstdio>
#include <filesystem>

namespace {

constexpr std::size_t MOST_ROWS = 400; // of a table in the page

using Named = std::vector<std::pair<std::string, std::string>>; // figure: its name and its SVG

std::string brief(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", value);
    return text;
}

std::string waves_text(const RunCase &run) {
    const auto [low, high] = std::minmax_element(run.waves.begin(), run.waves.end());
    const char *unit = run.measure == WaveMeasure::period      ? " s"
                       : run.measure == WaveMeasure::frequency ? " rad/s"
                                                               : " rad/m";
    return std::to_string(run.waves.size()) + " from " + brief(*low) + " to " + brief(*high) + unit +
           (run.limits ? ", zero and infinite frequency" : "");
}

std::string computed(const ReportOf &of) {
    const RunCase &run = *of.run;
    const P2fFile &p2f = *of.data->p2f;
    std::string bodies, headings;
    for (std::size_t b = 0; b < run.bodies.size(); ++b) {
        const RunBody &body = run.bodies[b];
        bodies += (b == 0 ? "" : "; ") + body.called(b) + " at " + brief(body.place[0]) + ", " +
                  brief(body.place[1]) + ", " + brief(body.place[2]) + " m" +
                  (body.heading != 0 ? ", turned by " + brief(body.heading) + " deg" : "");
    }
    for (std::size_t k = 0; k < run.headings.size(); ++k)
        headings += (k == 0 ? "" : ", ") + brief(run.headings[k]);
    return facts({{"Water", "depth " + (run.depth > 0 ? brief(run.depth) + " m" : "infinite") + ", density " +
                                brief(of.data->of_case.scales.density) + " kg/m^3, gravity " +
                                brief(run.gravity) + " m/s^2"},
                  {"Waves", waves_text(run)},
                  {"Headings", headings + " deg"},
                  {"Bodies", bodies},
                  {"Panels", std::to_string(p2f.NEQN) + " with those made, in each of " +
                                 std::to_string(p2f.NSYMG) + " classes of symmetry"}});
}

std::string treatment(const ReportOf &of) {
    const CasePlan &plan = of.findings->plan;
    const P2fFile &p2f = *of.data->p2f;
    const int inside = p2f.NEQN - plan.panels;
    return facts(
        {{"Irregular frequencies",
          plan.IRR == 0   ? "left"
          : plan.IRR == 3 ? "removed by panels made on the free surface inside, " + std::to_string(inside)
                          : "removed by the panels of the mesh on the free surface inside"},
         {"Sources and velocities", plan.ISOR == 1 ? "solved" : "not solved"},
         {"Solver", plan.ISOLVE == 1 ? "direct" : "iterative"},
         {"Settings", "IRR=" + std::to_string(p2f.IRR) + ", ISOR=" + std::to_string(p2f.ISOR) +
                          ", ISOLVE=" + std::to_string(p2f.ISOLVE) + ", ILOG=" + std::to_string(p2f.ILOG) +
                          "; docs/input.md explains them"}});
}

std::string provenance(const ReportOf &of) {
    std::vector<std::pair<std::string, std::string>> rows = of.data->provenance.texts();
    rows.emplace_back("case_file", hash_line(of.run->name));
    for (std::size_t b = 0; b < of.run->bodies.size(); ++b)
        rows.emplace_back("mesh", hash_line(of.run->run_folder() + "/" + mesh_name(b)));
    rows.emplace_back("convention", Convention().note());
    return facts(rows) +
           folded("Report of the solver", "<pre>" + escaped(of.findings->solver_list) + "</pre>\n") +
           folded("Case file", "<pre>" + escaped(text_of(of.run->name)) + "</pre>\n");
}

// The figures, drawn in a folder that goes again. False: there are none, and the reason is in `why`.
bool draw(const ReportOf &of, Named &figures, std::string &why) {
    namespace fs = std::filesystem;
    PlotRequest request;
    request.folder = of.run->run_folder() + "/figures.part";
    request.over_frequency = has_even_frequencies(*of.data);
    std::error_code ignored;
    fs::remove_all(request.folder, ignored);
    const bool good = write_plots(*of.data, request, why);
    for (const std::string &name : request.written)
        figures.emplace_back(fs::path(name).stem().string(),
                             inlined(text_of(name), "f" + std::to_string(figures.size() + 1) + "_"));
    fs::remove_all(request.folder, ignored);
    return good;
}

// What the run with finer meshes tells.
std::string refinement(const ReportOf &of) {
    if (of.fine == nullptr)
        return "";
    std::string html = html_of(refinement_table(*of.data, *of.fine), MOST_ROWS);
    for (const Table &table :
         {refined_radiation_table(*of.data, *of.fine), refined_exciting_table(*of.data, *of.fine)})
        if (!table.rows.empty())
            html += folded("Table: " + table.title, html_of(table, MOST_ROWS));
    return html;
}

// Figures whose names begin so, and the tables of a command, folded or open.
class Sections {
  public:
    Sections(const ReportOf &of, Named figures)
        : tables_(tables_of(*of.data)), figures_(std::move(figures)) {}
    std::string figures(const std::string &begin) const {
        std::string html;
        for (const auto &[name, svg] : figures_)
            if (name.rfind(begin, 0) == 0)
                html += svg;
        return html;
    }
    std::string open(const std::string &command, const std::string &name) const {
        return tables(command, name, false);
    }
    std::string folded_up(const std::string &command, const std::string &name) const {
        return tables(command, name, true);
    }

  private:
    std::string tables(const std::string &command, const std::string &name, bool fold) const {
        std::string html;
        for (const NamedTable &item : tables_)
            if (item.command == command && item.table.name == name)
                html += fold ? folded("Table: " + item.table.title, html_of(item.table, MOST_ROWS))
                             : html_of(item.table, MOST_ROWS);
        return html;
    }
    std::vector<NamedTable> tables_;
    Named figures_;
};

void add_section(std::string &body, std::string &links, const std::string &name, const std::string &html) {
    if (html.empty())
        return;
    const std::string id = "s" + std::to_string(std::count(links.begin(), links.end(), '#') + 1);
    links += "<a href=\"#" + id + "\">" + escaped(name) + "</a>\n";
    body += "<h2 id=\"" + id + "\">" + escaped(name) + "</h2>\n" + html;
}

std::string warnings_box(const std::vector<std::string> &warnings) {
    return warnings.empty()
               ? "<div class=\"well\">" + paragraph("No warnings.") + "</div>\n"
               : "<div class=\"warnings\"><p><b>Warnings</b></p>" + list_of(warnings) + "</div>\n";
}

} // namespace

bool write_report(const ReportOf &of, std::string &error) {
    namespace fs = std::filesystem;
    Named figures;
    std::string why;
    std::vector<std::string> warnings = warnings_of(of);
    if (!draw(of, figures, why))
        warnings.push_back("No figures: " + why + ".");
    for (const std::string &warning : warnings)
        std::printf("warning    %s\n", warning.c_str());
    const Sections of_results(of, std::move(figures));
    const DataSet &data = *of.data;
    std::string body, links;
    add_section(body, links, "What was computed", computed(of));
    add_section(body, links, "Mesh",
                mesh_view(*data.p2f, data.of_case.scales.length) +
                    folded("Findings and measures of the meshes as given",
                           "<pre>" + escaped(of.findings->mesh_report) + "</pre>\n"));
    add_section(body, links, "Hydrostatics",
                of_results.open("hydrostatics", "particulars") +
                    of_results.folded_up("hydrostatics", "stiffness"));
    add_section(body, links, "Natural periods", of_results.open("motions", "natural"));
    add_section(body, links, "Added mass and damping",
                of_results.figures("radiation") + of_results.folded_up("forces", "radiation"));
    add_section(body, links, "Exciting forces",
                of_results.figures("exciting") + of_results.folded_up("forces", "exciting"));
    add_section(body, links, "Motions",
                of_results.figures("rao") + of_results.folded_up("motions", "raos") +
                    of_results.folded_up("motions", "points") + of_results.open("motions", "seas"));
    add_section(body, links, "Mean drift",
                of_results.figures("drift") + of_results.folded_up("drift", "drift") +
                    of_results.folded_up("drift", "bodies") + of_results.folded_up("drift", "energy"));
    add_section(body, links, "Impulse responses", of_results.folded_up("impulse", "check"));
    add_section(body, links, "Treatment", treatment(of));
    add_section(body, links, "How good it is",
                list_of(convergence_hints(of)) + html_of(difference_table(data), MOST_ROWS) + refinement(of));
    add_section(body, links, "Where it comes from", provenance(of));
    const std::string title = "Report of " + fs::path(of.run->name).filename().string();
    return write_text(of.run->run_folder() + "/report.html",
                      page_of(title, "<h1>" + escaped(title) + "</h1>\n" + warnings_box(warnings) + "<nav>" +
                                         links + "</nav>\n" + body),
                      error);
}
