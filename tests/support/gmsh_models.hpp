// Meshes and CAD files of simple hulls, made by Gmsh's own geometry and writer.
#pragma once

#include "exchange/loaded_library.hpp"
#include "exchange/mesh_read.hpp"

#include <string>

#if __has_include(<gmshc.h>)
#include <gmshc.h>

#include <vector>

// Gmsh in this process; false when it is not there.
class GmshModels {
  public:
    GmshModels() : library_(gmsh_library() == nullptr ? "" : gmsh_library()) {
        auto *initialize = get<decltype(gmshInitialize)>("gmshInitialize");
        if (initialize == nullptr)
            return;
        initialize(0, nullptr, 0, &fault);
        number("General.Terminal", 0);
        there = true;
    }
    ~GmshModels() {
        if (auto *end = get<decltype(gmshFinalize)>("gmshFinalize"))
            end(&fault);
    }
    int box(double x, double y, double z, double dx, double dy, double dz) {
        auto *add = get<decltype(gmshModelOccAddBox)>("gmshModelOccAddBox");
        return add(x, y, z, dx, dy, dz, -1, &fault);
    }
    void cut(int object, int tool) {
        auto *subtract = get<decltype(gmshModelOccCut)>("gmshModelOccCut");
        int from[2] = {3, object}, what[2] = {3, tool}, *out = nullptr, **map = nullptr;
        std::size_t n = 0, *sizes = nullptr, m = 0;
        subtract(from, 2, what, 2, &out, &n, &map, &sizes, &m, -1, 1, 1, &fault);
    }
    // Takes off the edges with those numbers.
    void chamfer(int object, std::vector<int> edges, std::vector<int> faces, double size) {
        auto *take_off = get<decltype(gmshModelOccChamfer)>("gmshModelOccChamfer");
        int *out = nullptr;
        std::size_t n = 0;
        std::vector<double> sizes(edges.size(), size);
        take_off(&object, 1, edges.data(), edges.size(), faces.data(), faces.size(), sizes.data(),
                 sizes.size(), &out, &n, 1, &fault);
    }
    // Ends the geometry; with a size the surfaces are covered with triangles, or quadrilaterals.
    void finish(double size, bool quadrilaterals) {
        auto *synchronize = get<decltype(gmshModelOccSynchronize)>("gmshModelOccSynchronize");
        synchronize(&fault);
        if (size <= 0)
            return;
        number("Mesh.MeshSizeMin", size);
        number("Mesh.MeshSizeMax", size);
        number("Mesh.RecombineAll", quadrilaterals ? 1 : 0);
        auto *generate = get<decltype(gmshModelMeshGenerate)>("gmshModelMeshGenerate");
        generate(2, &fault);
    }
    void write(const std::string &file) {
        auto *save = get<decltype(gmshWrite)>("gmshWrite");
        save(file.c_str(), &fault);
    }
    void number(const char *option, double value) {
        auto *set = get<decltype(gmshOptionSetNumber)>("gmshOptionSetNumber");
        set(option, value, &fault);
    }
    bool there = false;
    int fault = 0;

  private:
    template <class F> F *get(const char *name) const {
        F *function = nullptr;
        library_.find(name, function);
        return function;
    }
    LoadedLibrary library_;
};

#else

// The same without Gmsh: never there.
struct GmshModels {
    int box(double, double, double, double, double, double) { return 0; }
    void cut(int, int) {}
    void chamfer(int, std::initializer_list<int>, std::initializer_list<int>, double) {}
    void finish(double, bool) {}
    void write(const std::string &) {}
    void number(const char *, double) {}
    bool there = false;
    int fault = 1;
};

#endif
