// The fields of the records of the run state, listed once: what goes to other processes and what a checkpoint
// is compared by are made from these lists. A field that a list lacks does not compile.
#pragma once

#include "state/state.hpp"

#include <concepts>
#include <type_traits>

template <class R, class T>
concept RecordOf = std::same_as<std::remove_const_t<R>, T>;

// Each calls fields(a, b, ...) with all fields of the record, in the order of their declaration.
template <RecordOf<Options> R, class F> void each_field(R &record, F &&fields) {
    auto &[a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q, r, s, t, u, v, w, x, y, z, A, B, C, D] = record;
    fields(a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q, r, s, t, u, v, w, x, y, z, A, B, C, D);
}
template <RecordOf<Files> R, class F> void each_field(R &record, F &&fields) {
    auto &[config, names, list, checkpoint, HEADER, FILNAM] = record;
    fields(config, names, list, checkpoint, HEADER.entry, FILNAM.entry);
}
template <RecordOf<Bodies> R, class F> void each_field(R &record, F &&fields) {
    auto &[a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q] = record;
    fields(a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q);
}
template <RecordOf<Mesh> R, class F> void each_field(R &record, F &&fields) {
    auto &[a, b, c, d, e, f, g, h, i, j, k, l, m, n, o] = record;
    fields(a, b, c, d, e, f, g, h, i, j, k, l, m, n, o);
}
template <RecordOf<Waterline> R, class F> void each_field(R &record, F &&fields) {
    auto &[NWL, IWLP, IWLE] = record;
    fields(NWL, IWLP, IWLE);
}
template <RecordOf<Strips> R, class F> void each_field(R &record, F &&fields) {
    auto &[IRRP, head] = record;
    fields(IRRP, head);
}
template <RecordOf<Dipoles> R, class F> void each_field(R &record, F &&fields) {
    auto &[IDIPOL, IDIP, DPORA, DPORB, DTHK, DEPS] = record;
    fields(IDIPOL, IDIP, DPORA, DPORB, DTHK, DEPS);
}
template <RecordOf<Symmetry> R, class F> void each_field(R &record, F &&fields) {
    auto &[a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q, r, s, t, u, v, w, x] = record;
    fields(a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q, r, s, t, u, v, w, x);
}
template <RecordOf<Periods> R, class F> void each_field(R &record, F &&fields) {
    auto &[a, b, c, d, e, f, g, h, i] = record;
    fields(a, b, c, d, e, f, g, h, i);
}
template <RecordOf<SurfaceMesh> R, class F> void each_field(R &record, F &&fields) {
    auto &[a, b, c, d, e, f, g, h, i, j] = record;
    fields(a, b, c, d, e, f, g, h, i, j);
}
template <RecordOf<SteadyFlow> R, class F> void each_field(R &record, F &&fields) {
    auto &[STB1, STB2, STB3, STF1, STF2, STF3] = record;
    fields(STB1, STB2, STB3, STF1, STF2, STF3);
}
