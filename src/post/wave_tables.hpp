// Drift, fields, panels and section loads as tables, dimensional.
#pragma once

#include "post/drift_far.hpp"
#include "post/drift_near.hpp"
#include "post/field.hpp"
#include "post/panels.hpp"
#include "post/section_loads.hpp"
#include "post/table_cells.hpp"
#include "post/waterline.hpp"

// A period and heading of a run, and what its rows begin with: period, omega, wave number, heading.
struct WaveCase {
    int t, b;
};
void add_wave_columns(std::vector<Column> &columns, const Scales &scales);
void add_wave_cells(std::vector<Cell> &cells, const P2fFile &p2f, const Scales &scales, WaveCase wave);

// Empty tables with their columns and notes, to which a period at a time is added.
// "drift": surge, sway and yaw on all bodies, of the waves far away and of the pressures. "bodies": six
// components of each body and their terms. "energy": power taken, and what the balance of the waves lacks.
Table drift_table(const Scales &scales);
Table body_drift_table(const Scales &scales);
Table energy_table(const Scales &scales);
// `near` may be empty.
void add_drift_rows(Table &table, const P2fFile &p2f, const Scales &scales, int t,
                    const std::vector<FarDrift> &far, const std::vector<std::vector<NearDrift>> &near);
void add_body_drift_rows(Table &table, const P2fFile &p2f, const Scales &scales, int t,
                         const std::vector<std::vector<NearDrift>> &near);
void add_energy_rows(Table &table, const P2fFile &p2f, const Scales &scales, int t,
                     const std::vector<FarDrift> &far);

// "wave": elevation or head, pressure and potential at points. "velocity": of the whole wave there.
Table field_table(const Scales &scales, const Convention &convention);
Table field_velocity_table(const Scales &scales, const Convention &convention);
void add_field_rows(Table &table, const P2fFile &p2f, const Scales &scales, WaveCase wave,
                    const FieldRequest &request, const Field &field, const Convention &convention);
void add_field_velocity_rows(Table &table, const P2fFile &p2f, const Scales &scales, WaveCase wave,
                             const FieldRequest &request, const Field &field, const Convention &convention);

// "panels": pressure and velocity of each panel and image; `load` names what makes them. "waterline":
// elevations beside the hulls, and over the moving hull. "sections": loads per amplitude; "calm": those in
// still water.
Table panel_table(const Scales &scales, const Convention &convention, bool of_mode);
void add_panel_rows(Table &table, const P2fFile &p2f, const Scales &scales, WaveCase wave,
                    const std::string &load, const PanelValues &values, const Convention &convention);
Table waterline_table(const Scales &scales, const Convention &convention);
void add_waterline_rows(Table &table, const P2fFile &p2f, const Scales &scales, WaveCase wave, Motions xi,
                        const HullState &state, const SurfaceGradient &gradient,
                        const Convention &convention);
Table section_table(const Scales &scales, const Convention &convention);
void add_section_rows(Table &table, const P2fFile &p2f, const Scales &scales, WaveCase wave, int body,
                      const std::vector<SectionLoad> &loads, const Convention &convention);
Table calm_table(const Scales &scales);
void add_calm_rows(Table &table, int body, const std::vector<SectionLoad> &loads);
