// HDF5 files for programs in the time domain. Time factor exp(+i omega t), as ours; normalised: A over rho, B
// over rho omega, forces over rho g, stiffness over rho g. Angles in degrees but for phases.
#include "exchange/export.hpp"
#include "exchange/named_arrays.hpp"
#include "exchange/part_file.hpp"

#ifdef VORDA_WITH_HDF5
#include <hdf5.h>

#include <cmath>
#include <functional>
#include <limits>

namespace {

constexpr double NONE = std::numeric_limits<double>::quiet_NaN();
std::size_t at(int k) {
    return static_cast<std::size_t>(k - 1);
}

// A file in memory, since the library does not survive a full disk; a fault of any call stays.
class Hdf5File {
  public:
    Hdf5File() {
        constexpr std::size_t STEP = 1 << 20;        // that the memory grows by
        H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr); // the message is ours
        const hid_t access = H5Pcreate(H5P_FILE_ACCESS);
        H5Pset_fapl_core(access, STEP, false);
        file_ = H5Fcreate("memory", H5F_ACC_TRUNC, H5P_DEFAULT, access);
        H5Pclose(access);
        links_ = H5Pcreate(H5P_LINK_CREATE);
        good_ = file_ >= 0 && H5Pset_create_intermediate_group(links_, 1) >= 0;
    }
    Hdf5File(const Hdf5File &) = delete;
    Hdf5File &operator=(const Hdf5File &) = delete;
    ~Hdf5File() {
        H5Pclose(links_);
        H5Fclose(file_);
    }

    struct About {
        std::string unit, meaning;
    };
    // The last index runs fastest.
    void numbers(const std::string &path, const std::vector<std::size_t> &shape, const About &about,
                 const std::vector<double> &values) {
        const std::vector<hsize_t> size(shape.begin(), shape.end());
        const hid_t space = H5Screate_simple(static_cast<int>(size.size()), size.data(), nullptr);
        put(path, H5T_NATIVE_DOUBLE, space, about, values.data());
    }
    void number(const std::string &path, const About &about, double value) {
        numbers(path, {1}, about, {value});
    }
    void word(const std::string &path, const std::string &meaning, const std::string &text) {
        const hid_t type = text_type(text);
        put(path, type, H5Screate(H5S_SCALAR), {"", meaning}, text.c_str());
        H5Tclose(type);
    }
    void attribute(const std::string &name, const std::string &text) { attribute(file_, name, text); }

    // What stands in the file; empty after a fault.
    std::vector<char> image() {
        if (!good_ || H5Fflush(file_, H5F_SCOPE_LOCAL) < 0)
            return {};
        const ssize_t size = H5Fget_file_image(file_, nullptr, 0);
        std::vector<char> bytes(size > 0 ? static_cast<std::size_t>(size) : 0);
        if (size <= 0 || H5Fget_file_image(file_, bytes.data(), bytes.size()) != size)
            return {};
        return bytes;
    }

  private:
    static hid_t text_type(const std::string &text) {
        const hid_t type = H5Tcopy(H5T_C_S1);
        H5Tset_size(type, text.empty() ? 1 : text.size());
        H5Tset_cset(type, H5T_CSET_UTF8);
        return type;
    }
    void attribute(hid_t of, const std::string &name, const std::string &text) {
        const hid_t type = text_type(text), space = H5Screate(H5S_SCALAR);
        const hid_t made = H5Acreate2(of, name.c_str(), type, space, H5P_DEFAULT, H5P_DEFAULT);
        good_ = good_ && made >= 0 && H5Awrite(made, type, text.c_str()) >= 0;
        H5Aclose(made);
        H5Sclose(space);
        H5Tclose(type);
    }
    // Takes the space.
    void put(const std::string &path, hid_t type, hid_t space, const About &about, const void *values) {
        const hid_t set = H5Dcreate2(file_, path.c_str(), type, space, links_, H5P_DEFAULT, H5P_DEFAULT);
        good_ = good_ && set >= 0 && H5Dwrite(set, type, H5S_ALL, H5S_ALL, H5P_DEFAULT, values) >= 0;
        attribute(set, "units", about.unit);
        attribute(set, "description", about.meaning);
        H5Dclose(set);
        H5Sclose(space);
    }

    hid_t file_ = -1, links_ = -1;
    bool good_ = false;
};

// Puts the data set into the file.
class Layout {
  public:
    Layout(const DataSet &data, Hdf5File &file)
        : d(data), p(*data.p2f), s(data.of_case.scales), out(file), W(data.waves.size()),
          D(data.headings.size()), M(static_cast<std::size_t>(p.NMODES)) {}

    void write() {
        out.attribute("title", "Hydrodynamic coefficients of floating bodies");
        for (const auto &[name, text] : d.provenance.texts())
            out.attribute(name, text);
        out.attribute("convention", convention_text(TimeFactor::plus));
        std::string notes;
        for (const std::string &note : d.notes)
            notes += (notes.empty() ? "" : " ") + note;
        if (!notes.empty())
            out.attribute("comment", notes);
        out.word("bem_data/code", "program that made the coefficients", d.provenance.program);
        parameters();
        for (int b = 1; b <= p.NBODY; ++b)
            body(b);
    }

  private:
    // Solved modes have values, the others none.
    double known(int i, int j, double value) const {
        return p.MODPOS(i) > 0 && p.MODPOS(j) > 0 ? value : NONE;
    }

    void parameters() {
        const std::string in = "simulation_parameters/";
        const std::string &l = s.names.length;
        out.number(in + "scaled", {"", "0: coefficients are normalised by rho, rho omega, rho g"}, 0);
        out.number(in + "g", {l + "/s^2", "gravity"}, s.gravity);
        out.number(in + "rho", {s.names.mass + "/" + l + "^3", "density of the water"}, s.density);
        out.numbers(in + "w", {W}, {"rad/s", "frequencies, rising, without the limits"}, frequencies());
        std::vector<double> periods, directions;
        for (const int t : d.waves)
            periods.push_back(period_of(p, t));
        for (const int b : d.headings)
            directions.push_back(static_cast<double>(p.BETA(b)));
        out.numbers(in + "T", {W}, {"s", "periods of these frequencies"}, periods);
        out.numbers(in + "wave_dir", {D}, {"deg", "direction the waves travel to"}, directions);
        if (p.HBOT > 0)
            out.number(in + "water_depth", {l, "water depth"}, static_cast<double>(p.HBOT) * s.length);
        else
            out.word(in + "water_depth", "water depth", "infinite");
    }
    std::vector<double> frequencies() const {
        std::vector<double> w;
        for (const int t : d.waves)
            w.push_back(omega_of(p, t));
        return w;
    }

    void body(int b) {
        const std::string in = "body" + std::to_string(b) + "/";
        first_ = modes_before(p, b);
        n_ = 6 + p.NEWMDS(b);
        properties(b, in + "properties/");
        coefficients(b, in + "hydro_coeffs/");
    }

    void properties(int b, const std::string &in) {
        const BodyHydrostatics &body = d.of_case.bodies[at(b)];
        const Vec3 centre = global_place(p, b, d.of_case.masses[at(b)].centre);
        const std::string &l = s.names.length;
        out.word(in + "name", "name of the body", body_name(b));
        out.number(in + "body_number", {"", "number of the body, from 1"}, b);
        out.number(in + "dof", {"", "degrees of freedom"}, n_);
        out.number(in + "dof_start", {"", "first of them among those of all bodies, from 1"}, first_ + 1);
        out.number(in + "dof_end", {"", "last of them"}, first_ + n_);
        out.number(in + "disp_vol", {l + "^3", "displaced volume"}, body.volume);
        out.numbers(in + "cb", {3}, {l, "centre of buoyancy, global axes"},
                    {body.buoyancy_global.begin(), body.buoyancy_global.end()});
        out.numbers(in + "cg", {3}, {l, "centre of gravity, global axes"}, {centre.begin(), centre.end()});
        if (n_ == 6)
            return;
        const std::size_t extra = static_cast<std::size_t>(n_ - 6);
        const auto block = [&](const std::function<double(int, int)> &value) {
            std::vector<double> values;
            for (int i = first_ + 7; i <= first_ + n_; ++i)
                for (int j = first_ + 7; j <= first_ + n_; ++j)
                    values.push_back(value(i, j));
            return values;
        };
        out.numbers(in + "mass", {extra, extra}, {s.names.mass, "mass matrix of the extra modes"},
                    block([&](int i, int j) { return d.M(i, j); }));
        out.numbers(
            in + "stiffness", {extra, extra},
            {s.names.force + "/" + l, "stiffness of the extra modes: of the water and of the case file"},
            block([&](int i, int j) { return d.C(i, j) + d.C_external(i, j); }));
        out.numbers(in + "damping", {extra, extra},
                    {s.names.force + " s/" + l, "damping of the extra modes by the case file"},
                    block([&](int i, int j) { return d.B_external(i, j); }));
    }

    void coefficients(int b, const std::string &in) {
        std::vector<double> C;
        for (int i = first_ + 1; i <= first_ + 6; ++i)
            for (int j = first_ + 1; j <= first_ + 6; ++j)
                C.push_back(d.C(i, j) / (s.density * s.gravity));
        out.numbers(in + "linear_restoring_stiffness", {6, 6},
                    {powers(2), "stiffness of waterplane, buoyancy and weight over rho g"}, C);
        if (!d.R.A.empty())
            radiation(in);
        if (!d.headings.empty())
            excitation(in + "excitation/");
        if (!d.far.empty() || !d.near.empty())
            drift(b, in + "mean_drift/");
    }

    // Unit of a length to the power k and above, by the rotations concerned.
    std::string powers(int k) const {
        return s.names.length + "^" + std::to_string(k) + "; one power more for each rotation";
    }
    // n x m x w, or n x m of one period.
    std::vector<double> of_pairs(const std::function<double(int, int, int)> &value,
                                 const std::vector<int> &periods) const {
        std::vector<double> values;
        for (int i = first_ + 1; i <= first_ + n_; ++i)
            for (int j = 1; j <= p.NMODES; ++j)
                for (const int t : periods)
                    values.push_back(known(i, j, value(i, j, t)));
        return values;
    }

    void radiation(const std::string &in) {
        const std::size_t n = static_cast<std::size_t>(n_);
        out.numbers(in + "added_mass/all", {n, M, W}, {powers(3), "added mass over rho"},
                    of_pairs([&](int i, int j, int t) { return d.R.A(i, j, t) / s.density; }, d.waves));
        const int last = d.order.empty() ? 0 : d.order.back();
        const bool limit = last > 0 && frequency_kind(p, last) == Frequency::infinite;
        out.numbers(in + "added_mass/inf_freq", {n, M},
                    {powers(3),
                     limit ? "added mass at infinite frequency of the run, over rho"
                           : "added mass at infinite frequency from that of the frequencies and the impulse "
                             "responses, over rho; no value without them"},
                    of_pairs([&](int i, int j,
                                 int t) { return limit ? d.R.A(i, j, t) / s.density : from_impulse(i, j); },
                             {limit ? last : 1}));
        out.numbers(
            in + "radiation_damping/all", {n, M, W}, {powers(3), "damping over rho omega"},
            of_pairs([&](int i, int j, int t) { return d.R.B(i, j, t) / (s.density * omega_of(p, t)); },
                     d.waves));
        if (d.impulse.times.empty())
            return;
        const std::string at_time = in + "radiation_damping/impulse_response_fun/";
        const std::size_t T = d.impulse.times.size();
        std::vector<double> K(n * M * T);
        for (int i = 1; i <= n_; ++i)
            for (int j = 1; j <= p.NMODES; ++j) {
                const std::size_t from = (at(i) * M + at(j)) * T;
                const RadiationResponse *pair = pair_of(first_ + i, j);
                for (std::size_t k = 0; k < T; ++k)
                    K[from + k] = known(first_ + i, j, pair == nullptr ? 0 : pair->K[k] / s.density);
            }
        out.numbers(at_time + "K", {n, M, T},
                    {powers(3) + "; /s^2", "impulse response of the damping over rho"}, K);
        out.numbers(at_time + "t", {T}, {"s", "times"}, d.impulse.times);
        out.numbers(at_time + "w", {W}, {"rad/s", "frequencies that the damping was splined over"},
                    frequencies());
    }
    const RadiationResponse *pair_of(int i, int j) const {
        for (const RadiationResponse &pair : d.impulse.radiation)
            if ((pair.i == i && pair.j == j) || (pair.i == j && pair.j == i))
                return &pair;
        return nullptr;
    }
    double from_impulse(int i, int j) const {
        const RadiationResponse *pair = pair_of(i, j);
        if (d.impulse.times.empty())
            return NONE;
        // Without damping the added mass is that of every frequency.
        return (pair == nullptr ? d.R.A(i, j, d.waves.back()) : pair->added_mass_B) / s.density;
    }

    void four(const std::string &in, const std::string &what, const Array<c64, 3> &X) {
        const struct {
            const char *name;
            double (*of)(const c64 &);
        } PARTS[] = {{"re", [](const c64 &v) { return v.real(); }},
                     {"im", [](const c64 &v) { return v.imag(); }},
                     {"mag", [](const c64 &v) { return std::abs(v); }},
                     {"phase", [](const c64 &v) { return std::arg(v); }}};
        for (const auto &part : PARTS) {
            std::vector<double> values;
            for (int i = first_ + 1; i <= first_ + n_; ++i)
                for (const int b : d.headings)
                    for (const int t : d.waves)
                        values.push_back(known(i, i, part.of(X(i, b, t) / (s.density * s.gravity))));
            const bool phase = std::string(part.name) == "phase";
            out.numbers(
                in + part.name, {static_cast<std::size_t>(n_), D, W},
                {phase ? "rad" : powers(2), what + (phase ? ", phase" : " over rho g per unit amplitude")},
                values);
        }
    }

    void excitation(const std::string &in) {
        four(in, "exciting force", d.X.pressure);
        four(in + "scattering/", "force of the scattered wave", d.X.scattering);
        four(in + "froude-krylov/", "force of the incident wave", d.X.froude_krylov);
        if (d.impulse.both_times.empty())
            return;
        const std::size_t T = d.impulse.both_times.size(), n = static_cast<std::size_t>(n_);
        std::vector<double> f(n * D * T);
        for (int i = 1; i <= n_; ++i)
            for (std::size_t k = 0; k < D; ++k) {
                const double nothing = known(first_ + i, first_ + i, 0);
                for (std::size_t l = 0; l < T; ++l)
                    f[(at(i) * D + k) * T + l] = nothing;
                for (const ExcitingResponse &x : d.impulse.exciting)
                    for (std::size_t l = 0; x.mode == first_ + i && x.heading == d.headings[k] && l < T; ++l)
                        f[(at(i) * D + k) * T + l] = x.f[l] / (s.density * s.gravity);
            }
        const std::string at_time = in + "impulse_response_fun/";
        out.numbers(at_time + "f", {n, D, T},
                    {powers(2) + "; /s", "impulse response of the exciting force over rho g"}, f);
        out.numbers(at_time + "t", {T}, {"s", "times, of both signs"}, d.impulse.both_times);
        out.numbers(at_time + "w", {W}, {"rad/s", "frequencies that the force was splined over"},
                    frequencies());
    }

    // Those of one body are about its origin, in global axes.
    void drift(int b, const std::string &in) {
        const double L = s.length;
        const auto all = [&](const std::function<double(int, int, std::size_t)> &value) {
            std::vector<double> values;
            for (std::size_t c = 0; c < static_cast<std::size_t>(n_); ++c)
                for (const int h : d.headings)
                    for (const int t : d.waves)
                        values.push_back(c < 6 ? L * (c < 3 ? 1 : L) * value(t, h, c) : NONE);
            return values;
        };
        const std::vector<std::size_t> shape = {static_cast<std::size_t>(n_), D, W};
        const std::string unit = powers(1);
        if (!d.far.empty() && p.NBODY == 1)
            out.numbers(in + "momentum_conservation/val", shape,
                        {unit,
                         "mean drift over rho g amplitude^2 by the waves far away, global axes; surge, sway "
                         "and yaw alone"},
                        all([&](int t, int h, std::size_t c) {
                            const FarDrift &far = d.far[at(t)][at(h)];
                            const double yaw = far.yaw - static_cast<double>(p.XBODY(1, b)) * far.sway +
                                               static_cast<double>(p.XBODY(2, b)) * far.surge;
                            return c == 0 ? far.surge : c == 1 ? far.sway : c == 5 ? yaw : NONE;
                        }));
        if (!d.near.empty())
            out.numbers(
                in + "pressure_integration/val", shape,
                {unit, "mean drift over rho g amplitude^2 by the pressures, global axes"},
                all([&](int t, int h, std::size_t c) { return d.near[at(t)][at(h)][at(b)].total(c); }));
    }

    const DataSet &d;
    const P2fFile &p;
    const Scales &s;
    Hdf5File &out;
    std::size_t W, D, M;    // numbers of frequencies, headings and modes of all bodies
    int first_ = 0, n_ = 0; // modes before those of the body, and how many it has
};

} // namespace

bool write_hdf5(const DataSet &data, ExportRequest &request, std::string &error) {
    Hdf5File file;
    Layout(data, file).write();
    const std::vector<char> image = file.image();
    if (image.empty()) {
        error = request.out + " cannot be written: not enough memory";
        return false;
    }
    PartFile part(request.out);
    std::FILE *out = part.open(error);
    if (out == nullptr)
        return false;
    std::fwrite(image.data(), 1, image.size(), out);
    request.written.push_back(request.out);
    return part.keep(error);
}

#else
bool write_hdf5(const DataSet &, ExportRequest &, std::string &error) {
    error = message_without_library(".h5");
    return false;
}
#endif
