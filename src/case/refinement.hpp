// A case once more with each panel in four, and what that tells of the errors of its results.
#pragma once

#include "case/decks.hpp"
#include "case/made_from.hpp"
#include "exchange/dataset.hpp"
#include "post/table.hpp"

struct Refinement {
    CasePlan plan; // of the finer meshes
};
// Makes the finer meshes in the folder fine/ of the run's folder, where they changed, and plans their run,
// which it tells. False with the reason in `error`.
[[nodiscard]] bool prepare_refinement(const RunCase &run, MadeFrom &made, Refinement &refinement,
                                      std::string &error);

// Richardson's estimate with errors as the size of the panels, which is the order at edges: the error of the
// run is twice its difference to the finer one. Smooth hulls are of a higher order, and the estimate then too
// large. "refinement": the largest of each kind over the largest coefficient of that kind.
// "refinement_radiation" and "refinement_exciting": each coefficient, its value by the finer mesh, and its
// error.
Table refinement_table(const DataSet &data, const DataSet &fine);
Table refined_radiation_table(const DataSet &data, const DataSet &fine);
Table refined_exciting_table(const DataSet &data, const DataSet &fine);
