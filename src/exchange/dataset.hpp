// All results of a hand-over file, dimensional, formed once for every format.
#pragma once

#include "exchange/provenance.hpp"
#include "post/drift_far.hpp"
#include "post/drift_near.hpp"
#include "post/impulse.hpp"
#include "post/loaded_case.hpp"
#include "post/natural.hpp"

// What a format takes beside coefficients, forces and motions.
struct DataWants {
    bool drift = false, impulse = false;
};

// Results of the modes of the file, in its order of periods and headings: `order` and `headings` sort them.
// An array is empty where the file does not tell it; `notes` say why. Units are those of the file: SI with
// gravity in m/s^2.
struct DataSet {
    const P2fFile *p2f = nullptr; // outlives it
    Provenance provenance;
    LoadedCase of_case;

    std::vector<int> order;    // periods by rising frequency, limits too; of equal ones the first
    std::vector<int> waves;    // those with waves
    std::vector<int> headings; // by rising angle; none without diffraction
    std::vector<int> modes;    // that were solved

    Array<double, 2> M, C;                   // mass, stiffness of water and weight (NMODES,NMODES)
    Array<double, 2> C_external, B_external; // of the case file, likewise
    RadiationForces R;
    ExcitingForces X;
    Array<c64, 3> xi; // motions per wave amplitude (NMODES,NBETA,NPER), NaN at limits
    std::vector<NaturalMode> natural;
    std::vector<std::vector<FarDrift>> far;                // of each period and heading
    std::vector<std::vector<std::vector<NearDrift>>> near; // of each period, heading and body
    ImpulseResponses impulse;
    std::vector<std::string> notes;

    Motions motions(int t) const { return xi.empty() ? Motions() : Motions(xi.slice(t)); }
};

// Fills data.order and what follows; p2f, provenance and of_case are there. False, with the reason in
// `error`, for a file without solutions, or when memory is refused. What else cannot be formed becomes a
// note.
[[nodiscard]] bool form_data_set(const DataWants &wants, DataSet &data, std::string &error);
