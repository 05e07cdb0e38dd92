#include "moving.hpp"

#include "post/motions.hpp"

namespace {

bool choose(const std::vector<int> &wanted, int count, const char *what, std::vector<int> &chosen,
            std::string &error) {
    chosen = wanted;
    for (int k = 1; wanted.empty() && k <= count; ++k)
        chosen.push_back(k);
    for (const int k : chosen)
        if (k < 1 || k > count) {
            error = std::string("the run has no ") + what + " " + std::to_string(k) + ", it has " +
                    std::to_string(count);
            return false;
        }
    return true;
}

bool solve_motions(const P2fFile &p2f, MovingBodies &bodies, std::string &error) {
    ExcitingForces X;
    RadiationForces R;
    MotionSystem system;
    const LoadedCase &of = bodies.of_case;
    if (!form_radiation(p2f, of.scales, R, error) ||
        !form_system(p2f, of.file, of.bodies, R, of.scales, system, error) ||
        !form_exciting(p2f, of.scales, X, error) ||
        !form_motions(p2f, system, R, X.pressure, bodies.xi, error)) {
        error += "; --fixed holds the bodies";
        return false;
    }
    bodies.notes.insert(bodies.notes.end(), system.notes.begin(), system.notes.end());
    return true;
}

} // namespace

std::shared_ptr<MovingRequest> add_moving(CLI::App &app) {
    auto request = std::make_shared<MovingRequest>();
    request->of_case = add_case(app);
    app.add_flag("--fixed", request->fixed, "the bodies are held: no motions");
    app.add_option("--period", request->periods, "these periods alone, counted from 1")->default_str("all");
    app.add_option("--heading", request->headings, "these headings alone, counted from 1")
        ->default_str("all");
    return request;
}

bool move_bodies(const MovingRequest &request, const P2fFile &p2f, MovingBodies &bodies, std::string &error) {
    std::vector<int> periods;
    if (!choose(request.periods, p2f.NPER, "period", periods, error) ||
        !choose(request.headings, p2f.NBETA, "heading", bodies.headings, error) ||
        !load_case(*request.of_case, p2f, bodies.of_case, error))
        return false;
    if (p2f.IDIFF < 0) {
        error = "the file has no diffraction: set IDIFF=1 in the run";
        return false;
    }
    for (const int t : periods)
        if (has_waves(p2f, t))
            bodies.periods.push_back(t);
    if (bodies.periods.empty() || bodies.headings.empty()) {
        error = bodies.headings.empty() ? "the run has no heading" : "limit frequencies alone have no waves";
        return false;
    }
    if (bodies.periods.size() < periods.size())
        bodies.notes.emplace_back("Limit frequencies have no waves and are left out.");
    if (request.fixed) {
        bodies.notes.emplace_back("The bodies are held fixed.");
        return true;
    }
    if (!solve_motions(p2f, bodies, error))
        return false;
    if (request.of_case->file.empty())
        bodies.notes.emplace_back(NO_CASE_NOTE);
    return true;
}
