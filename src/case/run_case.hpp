// The case file of vorda-run: water, waves, bodies, treatment and outputs of a run, with their places in the
// file for what is found wrong later. Masses, springs and seas of the same file are read with the results.
#pragma once

#include <array>
#include <string>
#include <vector>

struct RunBody {
    std::string mesh, maker;        // one of them
    std::vector<std::string> sizes; // of the maker, as options
    double scale = 1, draught = 0, size = 0;
    bool recombine = false;
    std::string part = "auto";
    std::array<double, 3> place{};
    double heading = 0; // [deg]
    int wall = 0;       // in x = 0: 1, in y = 0: 2, none: 0
    int line = 0, mesh_line = 0, place_line = 0;
    // "body 2 (hull.stl)", b counted from 0.
    std::string called(std::size_t b) const;
};
enum class WaveMeasure { period, frequency, wave_number };
struct RunCase {
    std::string name, folder; // the file and the folder that it stands in, "." when it is none
    double depth = 0;         // [m]; 0: infinite
    double gravity = 9.80665;
    WaveMeasure measure = WaveMeasure::period;
    std::vector<double> waves, headings;
    bool limits = false;
    std::vector<RunBody> bodies;
    std::string irregular = "auto", sources = "auto", solver = "auto";
    double memory = 0; // [GB]; 0: what there is
    int threads = 0;
    bool report = true, netcdf = false, hdf5 = false, vtu = false, csv = false, drift = true, impulse = false;
    std::vector<std::array<double, 3>> points;
    std::vector<double> grid; // six numbers, or empty
    double level = 0;
    bool wants_sources() const; // by treatment.sources and the outputs
    // "CASE.run" beside the file.
    std::string run_folder() const;
    double shortest_period() const; // [s], in deep water
    // "file, line n: why".
    std::string at(int line, const std::string &why) const;
};

// Reads the file. False, with file, line, what was found and what to do in `error`.
[[nodiscard]] bool read_run_case(const std::string &name, RunCase &run, std::string &error);
