// Meshes and CAD models by Gmsh's library.
#include "exchange/formats.hpp"
#include "exchange/mesh_read.hpp"

#ifdef VORDA_WITH_GMSH

#include "exchange/loaded_library.hpp"

#include <algorithm>
#include <cstring>
#include <gmshc.h>
#include <unordered_map>

namespace {

constexpr double PANELS_ALONG = 40; // of a CAD model whose panel size is not given

// Types of surface elements with their nodes; the first ones are the corners.
struct ElementType {
    int type, nodes, corners;
};
constexpr ElementType SURFACES[] = {{2, 3, 3}, {3, 4, 4}, {9, 6, 3}, {10, 9, 4}, {16, 8, 4}};

struct Gmsh {
    decltype(gmshInitialize) *initialize;
    decltype(gmshOptionSetNumber) *set_number;
    decltype(gmshLoggerStart) *log;
    decltype(gmshLoggerGet) *logged;
    decltype(gmshOpen) *open;
    decltype(gmshModelGetBoundingBox) *box;
    decltype(gmshModelMeshGenerate) *generate;
    decltype(gmshModelMeshGetNodes) *nodes;
    decltype(gmshModelMeshGetElementsByType) *elements;

    explicit Gmsh(const LoadedLibrary &library) {
        library.find("gmshInitialize", initialize);
        library.find("gmshOptionSetNumber", set_number);
        library.find("gmshLoggerStart", log);
        library.find("gmshLoggerGet", logged);
        library.find("gmshOpen", open);
        library.find("gmshModelGetBoundingBox", box);
        library.find("gmshModelMeshGenerate", generate);
        library.find("gmshModelMeshGetNodes", nodes);
        library.find("gmshModelMeshGetElementsByType", elements);
    }
    bool complete() const {
        return initialize != nullptr && set_number != nullptr && log != nullptr && logged != nullptr &&
               open != nullptr && box != nullptr && generate != nullptr && nodes != nullptr &&
               elements != nullptr;
    }
    // The first error of the log; empty: none.
    std::string fault() const {
        char **lines = nullptr;
        std::size_t n = 0;
        int failed = 0;
        logged(&lines, &n, &failed);
        for (std::size_t i = 0; failed == 0 && i < n; ++i)
            if (std::strncmp(lines[i], "Error: ", 7) == 0)
                return lines[i] + 7;
        return "";
    }
};

// Covers the surfaces of a CAD model with panels.
void make_panels(const Gmsh &gmsh, double wanted, double unit, ReadMesh &result, int &failed) {
    double low[3], high[3], extent = 0;
    gmsh.box(-1, -1, &low[0], &low[1], &low[2], &high[0], &high[1], &high[2], &failed);
    for (std::size_t c = 0; c < 3; ++c)
        extent = std::max(extent, high[c] - low[c]);
    const double size = wanted > 0 ? wanted / unit : extent / PANELS_ALONG;
    char text[120];
    std::snprintf(text, sizeof text, "surfaces covered with panels of size %.4g%s", size * unit,
                  unit == 1 ? "" : ", lengths in metres");
    result.notes.push_back(text);
    gmsh.set_number("Mesh.MeshSizeMin", size, &failed);
    gmsh.set_number("Mesh.MeshSizeMax", size, &failed);
    gmsh.set_number("Mesh.RecombineAll", 1, &failed);
    gmsh.generate(2, &failed);
}

bool take_panels(const Gmsh &gmsh, double unit, ReadMesh &result) {
    int failed = 0;
    std::size_t *tags = nullptr, n = 0, at_n = 0, unused_n = 0;
    double *at = nullptr, *unused = nullptr;
    gmsh.nodes(&tags, &n, &at, &at_n, &unused, &unused_n, -1, -1, 0, 0, &failed);
    if (failed != 0 || at_n != 3 * n)
        return false;
    std::unordered_map<std::size_t, int> number;
    number.reserve(n);
    for (std::size_t i = 0; i < n; ++i) {
        number[tags[i]] = static_cast<int>(i);
        result.mesh.points.push_back({unit * at[3 * i], unit * at[3 * i + 1], unit * at[3 * i + 2]});
    }
    bool curved = false;
    for (const ElementType &type : SURFACES) {
        std::size_t *elements = nullptr, count = 0, *nodes = nullptr, node_count = 0;
        gmsh.elements(type.type, &elements, &count, &nodes, &node_count, -1, 0, 1, &failed);
        const std::size_t each = static_cast<std::size_t>(type.nodes);
        if (failed != 0 || node_count != count * each)
            return false;
        curved = curved || (count > 0 && type.nodes > type.corners);
        for (std::size_t e = 0; e < count; ++e) {
            std::array<int, 4> corners;
            for (std::size_t v = 0; v < 4; ++v) {
                const std::size_t node = std::min<std::size_t>(v, static_cast<std::size_t>(type.corners) - 1);
                const auto found = number.find(nodes[e * each + node]);
                corners[v] = found == number.end() ? -1 : found->second;
            }
            result.mesh.of_panel.push_back(corners);
        }
    }
    if (curved)
        result.notes.push_back("curved panels: their corners are taken, nodes on their sides are not");
    return true;
}

} // namespace

const char *gmsh_library() {
    return VORDA_GMSH_LIBRARY;
}

bool read_by_gmsh(const MeshFormat &format, const MeshReadRequest &request, ReadMesh &result,
                  std::string &error) {
    const LoadedLibrary library(gmsh_library());
    const Gmsh gmsh(library);
    if (!gmsh.complete()) {
        error =
            message_of_missing("Gmsh, VTK, UNV, MED and CAD", "libgmsh-dev") + " (" + library.error() + ")";
        return false;
    }
    int failed = 0;
    gmsh.initialize(0, nullptr, 0, &failed);
    gmsh.set_number("General.Terminal", 0, &failed);
    gmsh.log(&failed);
    gmsh.open(request.file.c_str(), &failed);
    error = gmsh.fault();
    if (failed == 0 && error.empty() && format.cad) {
        make_panels(gmsh, request.size, format.unit, result, failed);
        error = gmsh.fault();
    }
    if (error.empty() && (failed != 0 || !take_panels(gmsh, format.unit, result)))
        error = "it cannot be read";
    return error.empty();
}

#else

const char *gmsh_library() {
    return nullptr;
}

bool read_by_gmsh(const MeshFormat &, const MeshReadRequest &, ReadMesh &, std::string &error) {
    error = message_of_missing("Gmsh, VTK, UNV, MED and CAD", "libgmsh-dev");
    return false;
}

#endif
