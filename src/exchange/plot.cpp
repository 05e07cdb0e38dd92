#include "exchange/plot.hpp"
#include "exchange/part_file.hpp"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

bool has_gnuplot() {
    return std::system("gnuplot --version >/dev/null 2>&1") == 0;
}

// One process draws all figures.
bool draw(const std::string &script) {
    std::FILE *gnuplot = popen("gnuplot >/dev/null 2>&1", "w");
    if (gnuplot == nullptr)
        return false;
    const bool sent = std::fwrite(script.data(), 1, script.size(), gnuplot) == script.size();
    return pclose(gnuplot) == 0 && sent;
}

// gnuplot does not tell of a full disk: the end of the picture does.
bool is_whole(const std::filesystem::path &file, bool png) {
    std::ifstream in(file, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(in), {}};
    const std::string end = png ? "IEND" : "</svg>";
    constexpr std::size_t TAIL = 16;
    return text.size() > TAIL && text.find(end, text.size() - TAIL) != std::string::npos;
}

} // namespace

bool write_plots(const DataSet &data, PlotRequest &request, std::string &error) {
    for (const int b : request.headings)
        if (b < 1 || b > data.p2f->NBETA || data.headings.empty()) {
            error = "the run has no heading " + std::to_string(b) + ", it has " +
                    std::to_string(data.headings.size());
            return false;
        }
    std::signal(SIGPIPE, SIG_IGN); // what gnuplot does not take is a message, too
    if (!has_gnuplot()) {
        error = "pictures are drawn by the program gnuplot: install gnuplot-nox";
        return false;
    }
    PartFolder folder(request.folder);
    if (!folder.make(error))
        return false;
    const std::filesystem::path &made = folder.part();
    const std::vector<PlotFigure> figures = figures_of(data, request);
    std::string script;
    std::vector<std::string> names;
    for (const PlotFigure &figure : figures) {
        names.push_back(figure.name + (request.png ? ".png" : ".svg"));
        script += "reset\n" + gnuplot_script(figure, request, (made / names.back()).string());
    }
    bool good = draw(script);
    for (const std::string &name : names)
        good = good && is_whole(made / name, request.png);
    if (!good)
        error = "the pictures cannot be written to " + made.string() + ": no space left, or gnuplot failed";
    return good && folder.keep(names, request.written, error);
}
