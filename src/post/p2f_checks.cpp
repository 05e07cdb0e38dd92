#include "post/p2f_checks.hpp"

#include <cmath>
#include <numeric>

namespace {

// Collects the first value that is out of its range.
class Ranges {
  public:
    void one(const char *record, std::int64_t value, std::int64_t least, std::int64_t most) {
        if (fault.empty() && (value < least || value > most))
            fault = std::string("record ") + record + " holds " + std::to_string(value) + ", not " +
                    std::to_string(least) + " to " + std::to_string(most);
    }
    void list(const char *record, const int *values, std::int64_t n, std::int64_t least, std::int64_t most) {
        for (std::int64_t i = 0; fault.empty() && i < n; ++i)
            one(record, values[i], least, most);
    }
    void sum(const char *record, const int *values, std::int64_t n, std::int64_t wanted) {
        if (fault.empty() && std::accumulate(values, values + n, std::int64_t{0}) != wanted)
            fault =
                std::string("the values of record ") + record + " do not add up to " + std::to_string(wanted);
    }
    void positive(const char *record, const f32 *values, std::int64_t n) {
        for (std::int64_t i = 0; fault.empty() && i < n; ++i)
            if (!(values[i] > 0) || !std::isfinite(values[i]))
                fault = std::string("record ") + record + " holds a value that is not positive";
    }
    std::string fault;
};

} // namespace

std::string wrong_head(const P2fFile &p, std::int64_t file_length) {
    constexpr int MANY = 1 << 30;
    Ranges r;
    r.one("sizes (NEQN)", p.NEQN, 1, MANY);
    r.one("sizes (NBODY)", p.NBODY, 1, p.NEQN);
    r.one("sizes (NMODES)", p.NMODES, 6 * std::int64_t{p.NBODY}, MANY);
    r.one("sizes (NSYMD)", p.NSYMD, 0, p.NMODES);
    r.one("IWADD", p.IWADD, 0, 1);
    r.one("IWADD (NFSP)", p.NFSP, 0, MANY);
    r.one("symmetry and problem (ISX)", p.ISX, -1, 1);
    r.one("symmetry and problem (ISY)", p.ISY, -1, 1);
    r.one("symmetry and problem (IRAD)", p.IRAD, -1, 1);
    r.one("symmetry and problem (IDIFF)", p.IDIFF, -1, 1);
    r.one("symmetry and problem (NPER)", p.NPER, 0, MANY);
    r.one("symmetry and problem (NBETA)", p.NBETA, 0, MANY);
    r.one("images and classes (NSYMG)", p.NSYMG, 1, 4);
    r.one("images and classes (NCLS)", p.NCLS, 1, 4);
    r.one("images and classes (NSYMR)", p.NSYMR, 0, p.NCLS);
    r.list("images and classes (ICLS)", p.ICLS + 1, p.NSYMR, 1, 4);
    r.one("class lists (NDCLS)", p.NDCLS, 0, 4);
    r.one("class lists (NDCLS times NSYMR)", std::int64_t{p.NDCLS} * p.NSYMR, 0, 4);
    r.list("class lists (IDCLS)", p.IDCLS + 1, p.NDCLS * p.NSYMR, 1, 4);
    r.list("class lists (NMCLS)", p.NMCLS + 1, p.NSYMR, 0, p.NMODES);
    r.sum("class lists (NMCLS)", p.NMCLS + 1, p.NSYMR, p.NSYMD);
    r.one("options (ISOR)", p.ISOR, 0, 1);
    r.one("options (IDIPOL)", p.IDIPOL, 0, 1);
    r.positive("gravity and depth", &p.GRAV, 1);
    if (!r.fault.empty())
        return r.fault;
    // 79 values and the normal velocities a panel, the stiffness matrix, and the solutions. As reals: the
    // products do not fit into any integer when the sizes are wild.
    const double panels = p.NEQN, modes = p.NMODES, periods = p.NPER, headings = std::max(p.NBETA, 1);
    const double least =
        4 * (79 * panels + modes * panels + modes * modes + 66.0 * p.NFSP) +
        8 * periods * panels * ((p.IRAD >= 0 ? p.NSYMD : 0) + (p.IDIFF >= 0 ? headings * p.NSYMR : 0.0));
    if (least > static_cast<double>(file_length))
        return "it is too short for the sizes that it names";
    return {};
}

std::string wrong_bodies(const P2fFile &p) {
    Ranges r;
    r.positive("ULEN", p.ULEN.data(), p.NBODY);
    r.list("NEQNB", p.NEQNB.data(), p.NBODY, 0, p.NEQN);
    r.sum("NEQNB", p.NEQNB.data(), p.NBODY, p.NEQN);
    r.list("NEWMDS", p.NEWMDS.data(), p.NBODY, 0, p.NMODES);
    r.sum("NEWMDS", p.NEWMDS.data(), p.NBODY, p.NMODES - 6 * std::int64_t{p.NBODY});
    r.list("MODLST", p.MODLST.data(), p.NSYMD, 1, p.NMODES);
    for (int s = 1; s <= p.NSYMR; ++s)
        r.list("MODCLS", p.MODCLS.slice(s).data(), p.NMCLS[s], 1, p.NMODES);
    r.list("MODPOS", p.MODPOS.data(), p.NMODES, 0, p.NSYMD);
    return r.fault;
}

std::string wrong_lists(const P2fFile &p) {
    Ranges r;
    for (int b = 1; b <= p.NBODY; ++b)
        r.one("NWLB", p.NWLB(b), 0, p.NEQNB(b));
    r.list("IWLP", p.IWLP.data(), p.IWLP.size(), 1, p.NEQN);
    r.list("IWLE", p.IWLE.data(), p.IWLE.size(), 1, 4);
    if (!p.IWLP.empty())
        r.sum("NWLB", p.NWLB.data(), p.NBODY, p.IWLP.size());
    if (p.IWADD == 1) {
        for (const int *map : {p.WCLS1, p.WCLS2, p.WCLS3})
            r.list("WCLS", map + 1, p.NSYMR, 0, p.NSYMR);
        r.list("WMODC", p.WMODC + 1, 4, 0, p.NMODES);
        r.list("WMODM", p.WMODM.data(), p.WMODM.size(), 0, p.NMODES);
        r.list("WMODP", p.WMODP.data(), p.WMODP.size(), 0, p.NMODES);
    }
    return r.fault;
}
