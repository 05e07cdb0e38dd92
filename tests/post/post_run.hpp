// A run solved for the tests of what follows from it, with its forces and its motions by a case file.
#pragma once

#include "../cases/case_folder.hpp"
#include "post/motions.hpp"
#include "post/natural.hpp"

constexpr double RHO = 1025;

struct PostRun {
    SolvedRun run;
    Scales scales;
    std::vector<BodyHydrostatics> bodies;
    ExcitingForces X;
    RadiationForces R;

    explicit PostRun(SolvedRun solved_run) : run(std::move(solved_run)), scales(scales_of(run.p2f, RHO)) {
        std::string error;
        EXPECT_TRUE(form_hydrostatics(run.p2f, bodies, error) && form_exciting(run.p2f, scales, X, error) &&
                    form_radiation(run.p2f, scales, R, error))
            << error;
    }
    const P2fFile &p2f() const { return run.p2f; }
    CaseFile read(const std::string &toml, std::string &error) const {
        const CaseFolder folder;
        folder.write("case.toml", toml);
        CaseFile file;
        error.clear();
        const bool good = read_case((folder.path() / "case.toml").string(), run.p2f, file, error);
        EXPECT_EQ(good, error.empty());
        return file;
    }
    MotionSystem system(const std::string &toml) const {
        std::string error;
        const CaseFile file = read(toml, error);
        MotionSystem made;
        EXPECT_EQ(error, "");
        EXPECT_TRUE(form_system(run.p2f, file, bodies, R, scales, made, error)) << error;
        return made;
    }
    Array<c64, 3> motions(const std::string &toml) const {
        Array<c64, 3> xi;
        std::string error;
        EXPECT_TRUE(form_motions(run.p2f, system(toml), R, X.pressure, xi, error)) << error;
        return xi;
    }
    std::vector<NaturalMode> natural(const std::string &toml) const {
        std::vector<NaturalMode> modes;
        std::vector<std::string> notes;
        std::string error;
        EXPECT_TRUE(form_natural(run.p2f, system(toml), R, modes, notes, error)) << error;
        return modes;
    }
};

inline PostRun post_run(const std::string &mesh, const std::string &PER, int NPER, const std::string &BETA,
                        int NBETA, const std::string &more_config = "") {
    Pot pot;
    pot.NPER = NPER;
    pot.PER = PER;
    pot.NBETA = NBETA;
    pot.BETA = BETA;
    return PostRun(solve_mesh(mesh, pot, more_config));
}
