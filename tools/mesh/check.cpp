#include "check.hpp"

#include "mesh/report.hpp"

#include <cstdio>
#include <memory>

namespace {

struct CheckRequest {
    std::string file;
    Surroundings around;
    double wave_length = 0; // shortest wave [length], 0: none
    bool lids = false;      // a global file with body types (IFSLID)
    bool treated = false;   // interior panels may be wanted
};

// Prints the report of one body; true when something is wrong.
bool print_body(const CheckRequest &request, const BodyFile &file) {
    const double L = static_cast<double>(file.head.ULEN);
    const BodyMesh mesh = mesh_of(file, request.around);
    const MeshMeasures measures = measure(mesh);
    for (const std::string &line : mesh_report(file.name, measures, mesh, L))
        std::puts(line.c_str());
    bool wrong = false;
    const std::vector<MeshFinding> findings =
        check_mesh(mesh, {request.wave_length / L, request.treated || measures.interior > 0});
    for (const MeshFinding &finding : findings) {
        std::printf("%s %s\n", finding.wrong ? "WARNING:" : "note:", told(finding).c_str());
        wrong = wrong || finding.wrong;
    }
    if (findings.empty())
        std::puts("nothing found");
    return wrong;
}

int check(const CheckRequest &request, const std::vector<BodyFile> &bodies) {
    bool wrong = false;
    for (const BodyFile &body : bodies)
        wrong = print_body(request, body) || wrong;
    return wrong ? 2 : 0;
}

} // namespace

int check_bodies(const std::vector<BodyFile> &bodies, bool treated) {
    CheckRequest request;
    request.treated = treated;
    return check(request, bodies);
}

std::function<int()> add_check(CLI::App &app) {
    const auto r = std::make_shared<CheckRequest>();
    CLI::App *command = app.add_subcommand("check", "says what is wrong with the mesh of a geometry file");
    command->add_option("FILE", r->file, "geometry file, or global geometry file")->required();
    command->add_option("--depth", r->around.depth, "water depth; 0: infinite");
    command->add_option("--wave-length", r->wave_length, "shortest wave, to judge the panels by");
    command->add_flag("--tank", r->around.tank, "a filled tank: normals out of the fluid");
    command->add_flag("--lids", r->lids, "the global file holds BDTYP and FSDMP (IFSLID)");
    return [=] {
        std::vector<BodyFile> bodies;
        if (!command->parsed())
            return -1;
        return read_body_files(r->file, r->lids, bodies) ? check(*r, bodies) : 1;
    };
}
