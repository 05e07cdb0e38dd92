#include "export.hpp"

#include "gdf_file.hpp"

#include "exchange/mesh_write.hpp"

#include <cstdio>
#include <filesystem>
#include <memory>

namespace {

struct ExportRequest {
    std::string file, output;
    bool lids = false, given = false;
};

int run_export(const ExportRequest &r) {
    std::vector<GdfBody> bodies;
    if (!read_gdf(r.file, r.lids, bodies))
        return 1;
    std::vector<NamedMesh> meshes;
    std::size_t panels = 0;
    for (GdfBody &body : bodies) {
        for (const int axis : {0, 1})
            if (!r.given && is_mirrored(body, axis))
                add_images(body, axis);
        put_in_place(body);
        std::string name = std::filesystem::path(body.name).stem().string();
        if (bodies.size() > 1)
            name = std::to_string(meshes.size() + 1) + "_" + name;
        meshes.push_back({name, mesh_of(body)});
        panels += meshes.back().mesh.of_panel.size();
    }
    std::string error;
    if (!write_mesh(r.output, meshes, error)) {
        std::fprintf(stderr, "vorda-mesh: %s\n", error.c_str());
        return 1;
    }
    std::printf("%s: bodies %zu, panels %zu\n", r.output.c_str(), meshes.size(), panels);
    return 0;
}

} // namespace

std::function<int()> add_export(CLI::App &app) {
    const auto r = std::make_shared<ExportRequest>();
    CLI::App *command =
        app.add_subcommand("export", "writes the panels of a geometry file for other programs");
    command->add_option("FILE", r->file, "geometry file, or global geometry file: all bodies in place")
        ->required();
    command
        ->add_option("-o,--output", r->output,
                     "name of the file, its extension one of " + written_extensions())
        ->required();
    command->add_flag("--given", r->given, "only the panels that are given, without their images");
    command->add_flag("--lids", r->lids, "the global file holds BDTYP and FSDMP (IFSLID)");
    return [=] { return command->parsed() ? run_export(*r) : -1; };
}
