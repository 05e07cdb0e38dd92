// Writing the results of a hand-over file for other programs.
#pragma once

#include "exchange/dataset.hpp"

#include <optional>

// A wave of one period and heading, both counted from 1, moving.
struct AnimationOf {
    int period = 1, heading = 1;
    double amplitude = 0; // 0: what shows well
};

struct ExportRequest {
    std::string out;                      // by its extension; without one or with .csv a folder
    std::vector<int> periods;             // of panel values, from 1; empty: the first one with waves
    std::optional<AnimationOf> animation; // instead of panel values
    // Told by the writer: names of the files that are there now, and what is left out of them.
    std::vector<std::string> written, notes;
};

// A kind of file that results are written as.
struct ExportFormat {
    const char *extension;      // with its dot; empty: a folder
    const char *name, *package; // package: the library it needs, else null
    const char *what;
    DataWants wants;
    // False with the reason in `error`; nothing is left then.
    bool (*write)(const DataSet &, ExportRequest &, std::string &error);
};
const std::vector<ExportFormat> &export_formats();
// The format of a file name; null, with the formats there are in `error`.
const ExportFormat *export_format_of(const std::string &out, std::string &error);

// The message of a format of the table whose library was not there when the program was built.
std::string message_without_library(const char *extension);

// What stands in the table.
[[nodiscard]] bool write_netcdf(const DataSet &data, ExportRequest &request, std::string &error);
[[nodiscard]] bool write_hdf5(const DataSet &data, ExportRequest &request, std::string &error);
[[nodiscard]] bool write_hull_vtu(const DataSet &data, ExportRequest &request, std::string &error);
[[nodiscard]] bool write_json(const DataSet &data, ExportRequest &request, std::string &error);
[[nodiscard]] bool write_csv_folder(const DataSet &data, ExportRequest &request, std::string &error);
