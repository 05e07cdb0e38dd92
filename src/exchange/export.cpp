#include "exchange/export.hpp"

#include "exchange/formats.hpp"

#include <algorithm>
#include <filesystem>

const std::vector<ExportFormat> &export_formats() {
    static const std::vector<ExportFormat> FORMATS = {
        {".nc",
         "NetCDF",
         "libnetcdf-dev",
         "all coefficients, forces, motions and drift forces",
         {.drift = true},
         write_netcdf},
        {".h5",
         "HDF5",
         "libhdf5-dev",
         "the same and impulse responses, for programs in the time domain",
         {.drift = true, .impulse = true},
         write_hdf5},
        {".vtu", "VTK", nullptr, "panels with pressures, potentials and velocities", {}, write_hull_vtu},
        {".json", "JSON", nullptr, "what .nc has, as text", {.drift = true}, write_json},
        {".csv",
         "CSV",
         nullptr,
         "a folder of all tables, a file each",
         {.drift = true, .impulse = true},
         write_csv_folder},
    };
    return FORMATS;
}

const ExportFormat *export_format_of(const std::string &out, std::string &error) {
    std::string extension = std::filesystem::path(out).extension().string();
    if (extension.empty())
        extension = ".csv";
    const auto &formats = export_formats();
    const auto found = std::find_if(formats.begin(), formats.end(),
                                    [&](const ExportFormat &f) { return f.extension == extension; });
    if (found != formats.end())
        return &*found;
    error = "there is no format " + extension + ":";
    for (const ExportFormat &format : formats)
        error += std::string(&format == &formats.front() ? " " : ", ") + format.extension;
    return nullptr;
}

std::string message_without_library(const char *extension) {
    std::string error;
    const ExportFormat *format = export_format_of(std::string("x") + extension, error);
    return format == nullptr ? error : message_of_missing(format->name, format->package);
}
