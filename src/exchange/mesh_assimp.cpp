// Triangles and polygons by assimp's library.
#include "exchange/formats.hpp"
#include "exchange/mesh_read.hpp"

#ifdef VORDA_WITH_ASSIMP

#include "exchange/loaded_library.hpp"

#include <assimp/cimport.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>

namespace {

struct Counted {
    unsigned largest = 0; // corners of a face
    std::size_t thin = 0; // faces of fewer than three corners: points and lines
};

Counted take_panels(const aiScene &scene, MergedVertices &mesh) {
    Counted counted;
    for (unsigned m = 0; m < scene.mNumMeshes; ++m) {
        const aiMesh &part = *scene.mMeshes[m];
        const int first = static_cast<int>(mesh.points.size());
        for (unsigned v = 0; v < part.mNumVertices; ++v) {
            const aiVector3D &p = part.mVertices[v];
            mesh.points.push_back(
                {static_cast<double>(p.x), static_cast<double>(p.y), static_cast<double>(p.z)});
        }
        for (unsigned f = 0; f < part.mNumFaces; ++f) {
            const aiFace &face = part.mFaces[f];
            counted.largest = std::max(counted.largest, face.mNumIndices);
            if (face.mNumIndices < 3) {
                ++counted.thin;
                continue;
            }
            std::array<int, 4> corners;
            for (std::size_t v = 0; v < 4; ++v)
                corners[v] =
                    first + static_cast<int>(face.mIndices[std::min<std::size_t>(v, face.mNumIndices - 1)]);
            mesh.of_panel.push_back(corners);
        }
    }
    return counted;
}

} // namespace

bool read_by_assimp(const MeshFormat &, const MeshReadRequest &request, ReadMesh &result,
                    std::string &error) {
    const LoadedLibrary library(VORDA_ASSIMP_LIBRARY);
    decltype(aiImportFile) *import = nullptr;
    decltype(aiGetErrorString) *reason = nullptr;
    library.find("aiImportFile", import);
    library.find("aiGetErrorString", reason);
    if (import == nullptr || reason == nullptr) {
        error = message_of_missing("STL, OBJ, PLY and OFF", "libassimp-dev") + " (" + library.error() + ")";
        return false;
    }
    const aiScene *scene = import(request.file.c_str(), 0);
    if (scene == nullptr) {
        error = reason();
        return false;
    }
    Counted counted = take_panels(*scene, result.mesh);
    if (counted.largest > 4) {
        result.notes.push_back("polygons of more than four corners: all are cut into triangles");
        result.mesh = {};
        scene = import(request.file.c_str(), aiProcess_Triangulate);
        if (scene == nullptr) {
            error = reason();
            return false;
        }
        counted = take_panels(*scene, result.mesh);
    }
    if (counted.thin > 0)
        result.notes.push_back(std::to_string(counted.thin) + " points and lines left out");
    return true;
}

#else

bool read_by_assimp(const MeshFormat &, const MeshReadRequest &, ReadMesh &, std::string &error) {
    error = message_of_missing("STL, OBJ, PLY and OFF", "libassimp-dev");
    return false;
}

#endif
