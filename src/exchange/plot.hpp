// Pictures of the results, drawn by gnuplot.
#pragma once

#include "exchange/dataset.hpp"

struct PlotRequest {
    std::string folder;               // made when it is not there
    bool png = false;                 // else SVG
    bool over_frequency = false;      // else over the period
    std::vector<int> headings;        // counted from 1; empty: all, evenly chosen when there are many
    std::vector<std::string> written; // told: the files that are there now
};

// A curve, its points in the order of x; no number in y leaves a gap. Limits stand at the ends of the axis.
struct PlotCurve {
    std::string name;
    std::vector<std::pair<double, double>> points;
    bool marks_only = false;
    double at_zero, at_infinity; // value at these frequencies; no number: none
};
// One pair of axes.
struct PlotPanel {
    std::string quantity, unit; // of y
    std::vector<PlotCurve> curves;
    enum class Range { any, from_zero, degrees } range = Range::any;
};
struct PlotFigure {
    std::string name, title; // name of the file without extension
    std::size_t columns = 2; // panels of a row; they fill row by row
    std::vector<PlotPanel> panels;
    std::string note; // beneath
};

// True: the run asks for many frequencies of equal step, which a time-domain program needs; over the period
// they crowd at one end.
bool has_even_frequencies(const DataSet &data);

// Added mass and damping of groups of modes with all bodies, the largest couplings; force and motion of each
// body with the headings as curves; drift.
std::vector<PlotFigure> figures_of(const DataSet &data, const PlotRequest &request);

// What gnuplot draws a figure by, into `file`.
std::string gnuplot_script(const PlotFigure &figure, const PlotRequest &request, const std::string &file);

// Draws all figures into the folder. False, with the reason in `error`: gnuplot is missing, a heading that
// the run does not have, a file that cannot be written; then nothing new is in the folder.
[[nodiscard]] bool write_plots(const DataSet &data, PlotRequest &request, std::string &error);
