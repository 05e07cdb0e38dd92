#include "exchange/mesh_write.hpp"

#include "exchange/part_file.hpp"
#include "exchange/vtu_file.hpp"
#include "mesh/vectors.hpp"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>

namespace {

using Bodies = std::vector<NamedMesh>;

std::size_t corners_of(const std::array<int, 4> &corners) {
    return is_triangle(corners) ? 3 : 4;
}

void put_float(std::FILE *file, const BodyPoint &p) {
    for (const double v : p) {
        const float value = static_cast<float>(v);
        std::fwrite(&value, sizeof value, 1, file);
    }
}

// Binary; a quadrilateral is cut along its shorter diagonal.
void write_stl(std::FILE *file, const Bodies &bodies) {
    char head[80] = "panels, outward normals";
    std::uint32_t count = 0;
    for (const NamedMesh &body : bodies)
        for (const std::array<int, 4> &corners : body.mesh.of_panel)
            count += is_triangle(corners) ? 1 : 2;
    std::fwrite(head, sizeof head, 1, file);
    std::fwrite(&count, sizeof count, 1, file);
    const auto triangle = [&](const BodyPoint &a, const BodyPoint &b, const BodyPoint &c) {
        BodyPoint normal = cross(minus(b, a), minus(c, a));
        const double size = length(normal);
        for (double &v : normal)
            v = size > 0 ? v / size : 0;
        for (const BodyPoint &p : {normal, a, b, c})
            put_float(file, p);
        const std::uint16_t none = 0;
        std::fwrite(&none, sizeof none, 1, file);
    };
    for (const NamedMesh &body : bodies)
        for (std::size_t p = 0; p < body.mesh.of_panel.size(); ++p) {
            const auto &at = panel_of(body.mesh, p).at;
            if (is_triangle(body.mesh.of_panel[p])) {
                triangle(at[0], at[1], at[2]);
                continue;
            }
            const std::size_t s = distance(at[0], at[2]) <= distance(at[1], at[3]) ? 0 : 1;
            triangle(at[s], at[s + 1], at[s + 2]);
            triangle(at[s], at[s + 2], at[(s + 3) % 4]);
        }
}

void write_obj(std::FILE *file, const Bodies &bodies) {
    int first = 1;
    for (const NamedMesh &body : bodies) {
        std::fprintf(file, "g %s\n", body.name.c_str());
        for (const BodyPoint &p : body.mesh.points)
            std::fprintf(file, "v %.9g %.9g %.9g\n", p[0], p[1], p[2]);
        for (const std::array<int, 4> &corners : body.mesh.of_panel) {
            std::fputs("f", file);
            for (std::size_t v = 0; v < corners_of(corners); ++v)
                std::fprintf(file, " %d", first + corners[v]);
            std::fputs("\n", file);
        }
        first += static_cast<int>(body.mesh.points.size());
    }
}

// Gmsh's format 4.1: one surface and one physical group for each body.
void write_msh(std::FILE *file, const Bodies &bodies) {
    std::size_t points = 0, panels = 0, blocks = 0;
    for (const NamedMesh &body : bodies) {
        const auto triangles = static_cast<std::size_t>(
            std::count_if(body.mesh.of_panel.begin(), body.mesh.of_panel.end(), is_triangle));
        points += body.mesh.points.size();
        panels += body.mesh.of_panel.size();
        blocks += (triangles > 0 ? 1 : 0) + (triangles < body.mesh.of_panel.size() ? 1 : 0);
    }
    std::fprintf(file, "$MeshFormat\n4.1 0 8\n$EndMeshFormat\n$PhysicalNames\n%zu\n", bodies.size());
    for (std::size_t b = 0; b < bodies.size(); ++b)
        std::fprintf(file, "2 %zu \"%s\"\n", b + 1, bodies[b].name.c_str());
    std::fprintf(file, "$EndPhysicalNames\n$Entities\n0 0 %zu 0\n", bodies.size());
    for (std::size_t b = 0; b < bodies.size(); ++b) {
        BodyPoint low{1e300, 1e300, 1e300}, high{-1e300, -1e300, -1e300};
        for (const BodyPoint &p : bodies[b].mesh.points)
            for (std::size_t c = 0; c < 3; ++c) {
                low[c] = std::min(low[c], p[c]);
                high[c] = std::max(high[c], p[c]);
            }
        std::fprintf(file, "%zu %.9g %.9g %.9g %.9g %.9g %.9g 1 %zu 0\n", b + 1, low[0], low[1], low[2],
                     high[0], high[1], high[2], b + 1);
    }
    std::fprintf(file, "$EndEntities\n$Nodes\n%zu %zu 1 %zu\n", bodies.size(), points, points);
    std::size_t tag = 0;
    for (std::size_t b = 0; b < bodies.size(); ++b) {
        const auto &list = bodies[b].mesh.points;
        std::fprintf(file, "2 %zu 0 %zu\n", b + 1, list.size());
        for (std::size_t i = 0; i < list.size(); ++i)
            std::fprintf(file, "%zu\n", ++tag);
        for (const BodyPoint &p : list)
            std::fprintf(file, "%.9g %.9g %.9g\n", p[0], p[1], p[2]);
    }
    std::fprintf(file, "$EndNodes\n$Elements\n%zu %zu 1 %zu\n", blocks, panels, panels);
    std::size_t element = 0, first = 1;
    for (std::size_t b = 0; b < bodies.size(); ++b) {
        const auto &list = bodies[b].mesh.of_panel;
        for (const std::size_t corners : {3u, 4u}) {
            const auto is_of = [&](const std::array<int, 4> &p) { return corners_of(p) == corners; };
            const auto count = std::count_if(list.begin(), list.end(), is_of);
            if (count == 0)
                continue;
            std::fprintf(file, "2 %zu %d %td\n", b + 1, corners == 3 ? 2 : 3, count);
            for (const std::array<int, 4> &panel : list) {
                if (!is_of(panel))
                    continue;
                std::fprintf(file, "%zu", ++element);
                for (std::size_t v = 0; v < corners; ++v)
                    std::fprintf(file, " %zu", first + static_cast<std::size_t>(panel[v]));
                std::fputs("\n", file);
            }
        }
        first += bodies[b].mesh.points.size();
    }
    std::fputs("$EndElements\n", file);
}

bool write_panels_vtu(const std::string &name, const Bodies &bodies, std::string &error) {
    VtuFile vtu;
    std::vector<std::int32_t> number;
    int first = 0;
    for (std::size_t b = 0; b < bodies.size(); ++b) {
        const MergedVertices &mesh = bodies[b].mesh;
        for (const BodyPoint &p : mesh.points)
            vtu.points.insert(vtu.points.end(), p.begin(), p.end());
        for (const std::array<int, 4> &corners : mesh.of_panel) {
            for (std::size_t v = 0; v < corners_of(corners); ++v)
                vtu.corners.push_back(first + corners[v]);
            vtu.ends.push_back(static_cast<std::int32_t>(vtu.corners.size()));
            number.push_back(static_cast<std::int32_t>(b) + 1);
        }
        first += static_cast<int>(mesh.points.size());
    }
    vtu.on_cells.push_back({"body", "", 1, std::move(number)});
    return write_vtu(name, vtu, error);
}

struct Writer {
    const char *extension;
    void (*write)(std::FILE *, const Bodies &); // null: by write_vtu
};
constexpr Writer WRITERS[] = {
    {".stl", write_stl}, {".obj", write_obj}, {".vtu", nullptr}, {".msh", write_msh}};

} // namespace

std::string written_extensions() {
    std::string text;
    for (const Writer &writer : WRITERS)
        text += (text.empty() ? "" : ", ") + std::string(writer.extension + 1);
    return text;
}

bool write_mesh(const std::string &file, const Bodies &bodies, std::string &error) {
    const std::string extension = std::filesystem::path(file).extension().string();
    for (const Writer &writer : WRITERS) {
        if (extension != writer.extension)
            continue;
        if (writer.write == nullptr)
            return write_panels_vtu(file, bodies, error);
        PartFile part(file);
        std::FILE *out = part.open(error);
        if (out == nullptr)
            return false;
        writer.write(out, bodies);
        return part.keep(error);
    }
    error = file + ": the extension is none of " + written_extensions();
    return false;
}
