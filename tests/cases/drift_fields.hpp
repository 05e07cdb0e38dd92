// Runs for wave drift damping and their results as fields that can be compared.
#pragma once

#include "base/text.hpp"
#include "case_folder.hpp"

#include <cmath>

namespace drift {

using Vertices = std::array<std::array<double, 2>, 4>;

// Panels of an FDF file.
inline std::vector<Vertices> read_fdf(const CaseFolder &folder) {
    FreeReader in;
    std::string title;
    f32 radius = 0;
    int n = 0, other = 0;
    EXPECT_TRUE(in.open((folder.path() / "run.fdf").string()) && in.line(title, 72) && in.read(radius) &&
                in.read(n, other) && in.read(other));
    std::vector<Vertices> panels(static_cast<std::size_t>(n));
    for (Vertices &panel : panels) {
        f32 xy[8];
        EXPECT_TRUE(in.read_array(xy, 8));
        for (std::size_t v = 0; v < 4; ++v)
            panel[v] = {xy[v], xy[v + 4]};
    }
    return panels;
}

// The file of these panels and their images in the planes that are not planes of symmetry any more.
inline void write_fdf(const CaseFolder &folder, const std::vector<Vertices> &panels, bool mirror_x,
                      bool mirror_y) {
    std::ostringstream out;
    const std::size_t images = (mirror_x ? 2 : 1) * (mirror_y ? 2 : 1);
    out << "images\n0\n" << images * panels.size() << " 0\n0\n";
    for (const double sx : {1, -1}) {
        for (const double sy : {1, -1}) {
            if ((sx < 0 && !mirror_x) || (sy < 0 && !mirror_y))
                continue;
            for (const Vertices &panel : panels) {
                for (const std::size_t c : {0, 1}) {
                    for (std::size_t v = 0; v < 4; ++v) // an image runs the other way
                        out << (c == 0 ? sx : sy) * panel[sx * sy > 0 ? v : 3 - v][c] << ' ';
                }
                out << '\n';
            }
        }
    }
    folder.write("run.fdf", out.str());
}

inline Pot drift_pot() {
    Pot pot;
    pot.ISOR = 1;
    pot.PER = "0.9";
    pot.BETA = "30.0";
    return pot;
}
inline void prepare_drift(const CaseFolder &folder, const Pot &pot, const std::string &mesh,
                          const std::string &config = "MAXSCR=5000\nISOLVE=1\n") {
    prepare(folder, pot);
    folder.write("config.vrd", "IPERIO=3\nIWADD=1\n" + config);
    folder.write("fnames.vrd", "run.gdf\nrun.pot\n\n\nrun.fdf\n");
    make_mesh(folder, mesh);
}
inline const std::string CYLINDER = "cylinder --radius 1 --draft 1 --nu 4 --nv 3 --nw 2 --part ";
inline const std::string BOX = "box --length 2.4 --beam 1.4 --draft 0.7 --nu 4 --nv 3 --nw 2 --part ";
inline void run_drift(const CaseFolder &folder, P2fFile &p2f) {
    Coefficients c;
    folder.solve();
    folder.results(p2f, c);
}

// A run by its own, with the free-surface panels of the text or those that it makes.
inline P2fFile drift_run(const Pot &pot, const std::string &mesh, const char *fdf = nullptr) {
    CaseFolder folder;
    P2fFile p;
    prepare_drift(folder, pot, mesh);
    if (fdf != nullptr)
        folder.write("run.fdf", fdf);
    run_drift(folder, p);
    return p;
}
inline const char *const NO_PANELS = "none\n0\n0 0\n0\n";

// Values of an array of a period on the panels: one column of numbers for each mode and component,
// diffraction summed over the classes.
struct Field {
    std::string name;
    bool surface; // on free-surface panels, not on the hull
    std::vector<std::vector<c32>> columns;
};

template <class T> std::vector<c32> column_of(const T *values, std::int64_t n) {
    return {values, values + n};
}
inline std::vector<Field> fields_of(const P2fFile &p, int t = 1) {
    std::vector<Field> fields;
    Field waterline{"STB1", false, {{}, {}}};
    for (int d = 1; d <= 2; ++d) {
        std::vector<c32> &column = waterline.columns[static_cast<std::size_t>(d - 1)];
        column.resize(static_cast<std::size_t>(p.NEQN));
        for (int u = 1; u <= p.NWLB(1); ++u)
            column[static_cast<std::size_t>(p.IWLP(u) - 1)] = p.STB1(u, d);
    }
    fields.push_back(waterline);
    const auto real = [&](const char *name, const auto &array) {
        Field field{name, name[2] == 'F', {}};
        const std::int64_t n = array.dim(1);
        for (std::int64_t c = 0; n > 0 && c < array.size() / n; ++c)
            field.columns.push_back(column_of(array.data() + c * n, n));
        fields.push_back(field);
    };
    // By mode, empty for a mode that is off, each of `parts` components.
    const auto radiation = [&](const char *name, const Array<c32, 3> &array, int parts = 1) {
        if (array.size() == 0)
            return;
        Field field{name, array.dim(1) != p.NEQN, {}};
        for (int mode = 1; mode <= 6; ++mode)
            for (int a = 1 - parts; a <= 0; ++a) {
                const int last = parts * p.MODPOS(mode);
                field.columns.push_back(last == 0 ? std::vector<c32>()
                                                  : column_of(&array(1, last + a, t), array.dim(1)));
            }
        fields.push_back(field);
    };
    const auto diffraction = [&](const char *name, const Array<c32, 4> &array) {
        if (array.size() == 0)
            return;
        Field field{name, array.dim(1) != p.NEQN, {}};
        for (std::int64_t c = 1; c <= array.dim(2); ++c) {
            std::vector<c32> sum(static_cast<std::size_t>(array.dim(1)));
            for (int s = 1; s <= p.NSYMR; ++s)
                for (std::size_t i = 0; i < sum.size(); ++i)
                    sum[i] += (&array(1, c, s, t))[i];
            field.columns.push_back(sum);
        }
        fields.push_back(field);
    };
    real("STB2", p.STB2), real("STB3", p.STB3);
    real("STF1", p.STF1), real("STF2", p.STF2), real("STF3", p.STF3);
    radiation("PHIR", p.PHIR), radiation("SRCR", p.SRCR), radiation("VELR", p.VELR, 3);
    radiation("W2R0", p.W2R0), radiation("W2R1", p.W2R1);
    radiation("W2R2", p.W2R2), radiation("W2R3", p.W2R3);
    radiation("FSR1", p.FSR1), radiation("FSR2", p.FSR2), radiation("FSR3", p.FSR3);
    diffraction("PHID", p.PHID), diffraction("SRCD", p.SRCD), diffraction("VELD", p.VELD);
    diffraction("PHID2", p.PHID2), diffraction("SRCD2", p.SRCD2), diffraction("VELD2", p.VELD2);
    diffraction("W2D0", p.W2D0), diffraction("W2D0B", p.W2D0B);
    diffraction("W2D1", p.W2D1), diffraction("W2D2", p.W2D2), diffraction("W2D3", p.W2D3);
    diffraction("FSD1", p.FSD1), diffraction("FSD2", p.FSD2), diffraction("FSD3", p.FSD3);
    diffraction("FSD4", p.FSD4), diffraction("FSD5", p.FSD5);
    return fields;
}

// For each centroid of `few` the nearest of `many`, from 0.
inline std::vector<std::size_t> matches(const Array<f32, 2> &few, const Array<f32, 2> &many) {
    std::vector<std::size_t> place;
    for (int i = 1; i <= few.dim(2); ++i) {
        std::int64_t best = 1;
        const auto squared = [&](std::int64_t j) {
            f32 sum = 0;
            for (int c = 1; c <= 3; ++c)
                sum += (few(c, i) - many(c, j)) * (few(c, i) - many(c, j));
            return sum;
        };
        for (std::int64_t j = 1; j <= many.dim(2); ++j)
            best = squared(j) < squared(best) ? j : best;
        EXPECT_LT(squared(best), 1e-8f);
        place.push_back(static_cast<std::size_t>(best - 1));
    }
    return place;
}

inline const Field &named(const std::vector<Field> &fields, const std::string &name) {
    for (const Field &field : fields)
        if (field.name == name)
            return field;
    ADD_FAILURE() << name;
    return fields.front();
}
// Largest difference of each array that `few` has, on its panels, as part of its largest value.
inline void expect_same(const P2fFile &few, const P2fFile &many, double tolerance) {
    const auto a = fields_of(few), whole = fields_of(many);
    const auto hull = matches(few.XCT, many.XCT), surface = matches(few.XCTF, many.XCTF);
    for (const Field &field : a) {
        const Field &other = named(whole, field.name);
        const auto &place = field.surface ? surface : hull;
        double worst = 0, largest = 0;
        ASSERT_EQ(field.columns.size(), other.columns.size()) << field.name;
        for (std::size_t c = 0; c < field.columns.size(); ++c) {
            for (std::size_t i = 0; !field.columns[c].empty() && i < place.size(); ++i) {
                const c32 value = other.columns[c][place[i]];
                worst = std::max(worst, static_cast<double>(std::abs(field.columns[c][i] - value)));
                largest = std::max(largest, static_cast<double>(std::abs(value)));
            }
        }
        EXPECT_LT(worst, tolerance * largest) << field.name;
        EXPECT_GT(largest, 0) << field.name;
    }
}

// Root mean square of the difference as part of that of the second, columns of `a` from its first, of `b`
// from `first` in steps of `stride`.
inline double rms(const Field &a, const Field &b, std::size_t first = 0, std::size_t stride = 1) {
    double difference = 0, size = 0;
    for (std::size_t c = first; c < b.columns.size(); c += stride)
        for (std::size_t i = 0; i < b.columns[c].size(); ++i) {
            difference += std::norm(a.columns[c][i] - b.columns[c][i]);
            size += std::norm(b.columns[c][i]);
        }
    return std::sqrt(difference / size);
}

} // namespace drift
