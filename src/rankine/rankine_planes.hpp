// Where the terms of a pair go: the planes of the Rankine matrices, per class and level.
#pragma once

#include "rankine/rankine_pair.hpp"

// What a plane holds: a term of the pairs in one class and level.
struct PlaneTerm {
    int term, level, cls; // class from 1
};

// Which planes there are, in the order of the store: per class and level the dipole, source and
// normal-derivative influence and three components of the gradient, those that are kept.
struct Planes {
    std::vector<PlaneTerm> list;
    int levels;

    Planes(const Options &opt, const Symmetry &sym);
    int all() const { return static_cast<int>(list.size()); }
};

// One element of all planes: the place in the first plane, and the distance from plane to plane.
struct PlaneElement {
    f32 *at;
    std::int64_t plane;
};

// Where the pairs of a chunk go: their elements in the first plane, the distance from plane to plane, and the
// right-hand sides (NSYMD,0:1) of the field panels; null: no radiation.
struct PairTargets {
    std::int64_t plane;
    f32 *element[PairChunk::SIZE];
    f32 *rhs[PairChunk::SIZE];
};

// The normal velocities by the places of their modes among the right-hand sides, and the signs of the modes
// at the images. Dipole panels have none.
class ModeFeed {
  public:
    explicit ModeFeed(const RankineInput &in);
    // Adds velocity times source influence of the pairs to the right-hand sides, in the order of the pairs.
    void add(const PairChunk &chunk, int levels, const PairTargets &to) const;

  private:
    int modes_, padded_;        // NSYMD; that in blocks of eight
    std::vector<f32> velocity_; // (padded,NEQN)
    std::vector<f32> sign_;     // (padded,0:4): image of the list
};

// Adds the terms of the pairs to their elements in all planes.
void scatter_terms(const RankineInput &in, const Planes &planes, const PairChunk &chunk,
                   const PairTargets &to);

// The half solid angle that a panel has of itself; one in z = 0 or a dipole panel has none.
void add_half_solid_angle(const Planes &planes, PlaneElement to);

// Two panels in the free surface need the logarithm's level. Failed: ILOG=0 and there are such panels; the
// messages name the first one.
[[nodiscard]] Status surface_panels_allowed(const RankineInput &in);
