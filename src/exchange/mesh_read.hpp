// Meshes and CAD models of other programs, as panels.
#pragma once

#include "exchange/apart.hpp"

struct MeshReadRequest {
    std::string file;
    double size = 0; // of the panels of a CAD model, in metres or, without a unit, lengths of the file; 0: a
                     // fortieth of its largest extent
};

// A number behind a word at the start of a line that says how many items follow.
struct MeshPromise {
    const char *word;
    int first, last; // which of the numbers behind it, from 1; they may stand on the next line
};
struct MeshFormat {
    const char *extension; // small letters, with its dot
    const char *name;
    const char *package; // what to install when its library is missing
    bool cad;            // surfaces, to be covered with panels
    double unit;         // of the lengths that the library gives, in metres; 1: as in the file
    bool (*read)(const MeshFormat &, const MeshReadRequest &, ReadMesh &, std::string &error);
    std::vector<MeshPromise> promises;
    const char *end; // what a whole file has near its end or, when it is empty, anything
};
// The formats that can be read, one row for each extension.
const std::vector<MeshFormat> &mesh_formats();
// Extensions with their names for a help text: "stl, obj, ...".
std::string mesh_extensions();

// Reads the panels of a file by its extension. False with the reason in `error`: no such file or format,
// library missing, the file is broken, it holds no panels, or a coordinate is no finite number.
[[nodiscard]] bool read_mesh(const MeshReadRequest &request, ReadMesh &result, std::string &error);

// What is not to be believed of a file, before a library takes memory for what its head promises; empty:
// nothing.
std::string header_fault(const MeshFormat &format, const std::string &path);

// The file of Gmsh's library; null when the program was built without it.
const char *gmsh_library();
// By the libraries; each is the missing one's message when the program was built without it.
[[nodiscard]] bool read_by_gmsh(const MeshFormat &format, const MeshReadRequest &request, ReadMesh &result,
                                std::string &error);
[[nodiscard]] bool read_by_assimp(const MeshFormat &format, const MeshReadRequest &request, ReadMesh &result,
                                  std::string &error);
