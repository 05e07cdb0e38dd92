#include "exchange/mesh_read.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>

namespace {

constexpr double LARGEST = 1e9;          // coordinate that can be meant
constexpr unsigned READING_SECONDS = 30; // for a file of no size, without meshing
constexpr double BYTES_PER_SECOND = 1e6; // on top of that
constexpr std::size_t MOST_PANELS = 20'000'000;

} // namespace

// clang-format off
const std::vector<MeshFormat> &mesh_formats() {
    static const std::vector<MeshFormat> formats = {
        {".stl", "STL", "libassimp-dev", false, 1, read_by_assimp, {}, ""},
        {".obj", "OBJ", "libassimp-dev", false, 1, read_by_assimp, {}, ""},
        {".ply", "PLY", "libassimp-dev", false, 1, read_by_assimp,
         {{"element vertex", 1, 1}, {"element face", 1, 1}}, "end_header"},
        {".off", "OFF", "libassimp-dev", false, 1, read_by_assimp, {{"OFF", 1, 3}}, ""},
        {".msh", "Gmsh", "libgmsh-dev", false, 1, read_by_gmsh,
         {{"$Nodes", 1, 2}, {"$Elements", 1, 2}, {"$Entities", 1, 4}, {"$PhysicalNames", 1, 1}}, "$EndElements"},
        {".vtk", "VTK", "libgmsh-dev", false, 1, read_by_gmsh,
         {{"POINTS", 1, 1}, {"CELLS", 1, 2}, {"POLYGONS", 1, 2}, {"CELL_TYPES", 1, 1}}, ""},
        {".unv", "UNV", "libgmsh-dev", false, 1, read_by_gmsh, {}, ""},
        {".med", "MED", "libgmsh-dev", false, 1, read_by_gmsh, {}, ""},
        {".step", "STEP", "libgmsh-dev", true, 1e-3, read_by_gmsh, {}, "END-ISO-10303-21"},
        {".stp", "STEP", "libgmsh-dev", true, 1e-3, read_by_gmsh, {}, "END-ISO-10303-21"},
        {".iges", "IGES", "libgmsh-dev", true, 1e-3, read_by_gmsh, {}, ""},
        {".igs", "IGES", "libgmsh-dev", true, 1e-3, read_by_gmsh, {}, ""},
        {".brep", "BREP", "libgmsh-dev", true, 1, read_by_gmsh,
         {{"Locations", 1, 1}, {"Curve2ds", 1, 1}, {"Curves", 1, 1}, {"Polygon3D", 1, 1},
          {"PolygonOnTriangulations", 1, 1}, {"Surfaces", 1, 1}, {"Triangulations", 1, 2}, {"TShapes", 1, 1}}, ""},
    };
    return formats;
}
// clang-format on

std::string mesh_extensions() {
    std::string text;
    for (const MeshFormat &format : mesh_formats())
        text += (text.empty() ? "" : ", ") + std::string(format.extension + 1);
    return text;
}

bool read_mesh(const MeshReadRequest &request, ReadMesh &result, std::string &error) {
    std::error_code fault;
    const std::filesystem::path path(request.file);
    if (!std::filesystem::is_regular_file(path, fault)) {
        error = request.file + ": no such file";
        return false;
    }
    std::string extension = path.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    const auto &formats = mesh_formats();
    const auto format = std::find_if(formats.begin(), formats.end(),
                                     [&](const MeshFormat &f) { return extension == f.extension; });
    if (format == formats.end()) {
        error = request.file + ": the extension is none of " + mesh_extensions();
        return false;
    }
    error = header_fault(*format, request.file);
    const double bytes = static_cast<double>(std::filesystem::file_size(path, fault));
    const unsigned seconds =
        format->cad ? 0 : READING_SECONDS + static_cast<unsigned>(std::min(1e6, bytes / BYTES_PER_SECOND));
    const auto reader = [&](ReadMesh &mesh, std::string &why) {
        return format->read(*format, request, mesh, why);
    };
    if (!error.empty() || !read_apart(reader, seconds, result, error)) {
        error = request.file + ": " + error;
        return false;
    }
    const MergedVertices &mesh = result.mesh;
    if (mesh.of_panel.empty())
        error = "no triangles or quadrilaterals in it";
    else if (mesh.of_panel.size() > MOST_PANELS)
        error = "more panels than can be meant: " + std::to_string(mesh.of_panel.size());
    for (std::size_t i = 0; i < mesh.points.size() && error.empty(); ++i)
        for (const double v : mesh.points[i])
            if (!std::isfinite(v) || std::fabs(v) > LARGEST)
                error = "a coordinate of vertex " + std::to_string(i + 1) + " is " +
                        (std::isfinite(v) ? "above 1e9" : "no finite number");
    for (const std::array<int, 4> &corners : mesh.of_panel)
        for (const int c : corners)
            if (c < 0 || static_cast<std::size_t>(c) >= mesh.points.size())
                error = "a panel has a vertex that is not there";
    if (!error.empty())
        error = request.file + ": " + error;
    return error.empty();
}
