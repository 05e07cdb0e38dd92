#include "post/p2f_reader.hpp"

#include "base/record_file.hpp"
#include "base/text.hpp"
#include "post/p2f_checks.hpp"

#include <algorithm>
#include <filesystem>

namespace {

using Target = RecordFile::Target;

template <class T> Target into(T &value) {
    return {&value, sizeof(T)};
}
template <class T, int R> Target into(Array<T, R> &array) {
    return {array.data(), static_cast<std::size_t>(array.size()) * sizeof(T)};
}

// Reads the parts of the file in order; the first fault ends it.
class Reader {
  public:
    Reader(P2fFile &p2f, RecordFile &file, std::int64_t length) : p(p2f), file_(file), length_(length) {}
    std::string fault;

    bool head() {
        if (!next("version", {into(p.version)}))
            return false;
        if (p.version != 5.5f)
            return refuse("its format version is " + trimmed(fixed(8, 2, p.version)) + ", not 5.50");
        int images[9] = {};
        return next("sizes", {into(p.NEQN), into(p.NBODY), into(p.NSYMD), into(p.NMODES)}) &&
               next("IWADD", {into(p.IWADD), into(p.NFSP)}) &&
               next("symmetry and problem",
                    {into(p.ISX), into(p.ISY), into(p.IRAD), into(p.IDIFF), into(p.NPER), into(p.NBETA)}) &&
               next("images and classes",
                    {into(p.NSYMG), {images, 8 * sizeof(int)}, into(p.NCLS), into(p.NSYMR), list(p.ICLS)}) &&
               next("class lists", {into(p.NDCLS), list(p.IDCLS), list(p.NMCLS)}) &&
               next("options", {into(p.ISOR), into(p.IQUAD), into(p.ILOG), into(p.IDIAG), into(p.IDIPOL)}) &&
               next("gravity and depth", {into(p.GRAV), into(p.HBOT)}) && sound(wrong_head(p, length_));
    }

    bool arrays() {
        p.NBETAM = std::max(p.NBETA, 1);
        Array<f32, 2> volumes;
        const bool made = p.ULEN.alloc(p.NBODY) && p.NEQNB.alloc(p.NBODY) && p.NPANS.alloc(p.NBODY) &&
                          p.NEWMDS.alloc(p.NBODY) && p.XBODY.alloc(4, p.NBODY) && p.PER.alloc(p.NPER) &&
                          p.WVNH.alloc(p.NPER) && p.BETA.alloc(p.NBETA) && p.SINBET.alloc(p.NBETA) &&
                          p.COSBET.alloc(p.NBETA) && p.MODLST.alloc(p.NMODES) && p.MODPOS.alloc(p.NMODES) &&
                          p.MODCLS.alloc(p.NMODES, 4) && p.XVER.alloc(4, 3, p.NEQN) &&
                          p.XCT.alloc(3, p.NEQN) && p.XIV.alloc(4, p.NEQN) && p.ETV.alloc(4, p.NEQN) &&
                          p.TRM.alloc(3, 3, p.NEQN) && p.SIDE.alloc(4, p.NEQN) && p.XGP.alloc(4, 3, p.NEQN) &&
                          p.GJAC.alloc(4, p.NEQN) && p.PSIZ.alloc(2, p.NEQN) && p.PMOM.alloc(13, p.NEQN) &&
                          p.VEL.alloc(p.NMODES, p.NEQN) && p.VOL.alloc(3, p.NBODY) &&
                          p.XCB.alloc(3, p.NBODY) && p.CHYD.alloc(p.NMODES, p.NMODES) &&
                          volumes.alloc(6, p.NBODY);
        if (!made)
            return refuse("there is not enough memory for its arrays");
        const std::size_t n = static_cast<std::size_t>(p.NEQN) * sizeof(f32);
        const bool good =
            next("ULEN", {into(p.ULEN)}) && next("NEQNB", {into(p.NEQNB), into(p.NPANS)}) &&
            next("NEWMDS", {into(p.NEWMDS)}) && next("XBODY", {into(p.XBODY)}) &&
            next("PER", {into(p.PER), into(p.WVNH)}) &&
            next("BETA", {into(p.BETA), into(p.SINBET), into(p.COSBET)}) &&
            next("MODLST", {into(p.MODLST)}) && next("MODCLS", {into(p.MODCLS)}) &&
            next("MODPOS", {into(p.MODPOS)}) && next("XIV", {into(p.XIV)}) && next("ETV", {into(p.ETV)}) &&
            next("XCT", {into(p.XCT)}) && next("XVER", {into(p.XVER)}) && next("TRM", {into(p.TRM)}) &&
            next("PMOM", {into(p.PMOM)}) && next("SIDE", {into(p.SIDE)}) && next("XGP", {into(p.XGP)}) &&
            next("GJAC", {into(p.GJAC)}) && skip("RXNG", 12 * n) && next("VEL", {into(p.VEL)}) &&
            next("volumes", {into(volumes), into(p.CHYD)}) && next("PSIZ", {into(p.PSIZ)});
        if (!good || !sound(wrong_bodies(p)))
            return false;
        for (int b = 1; b <= p.NBODY; ++b) {
            for (int c = 1; c <= 3; ++c) {
                p.VOL(c, b) = volumes(c, b);
                p.XCB(c, b) = volumes(c + 3, b);
            }
        }
        return true;
    }

    bool options() {
        const std::size_t n = static_cast<std::size_t>(p.NEQN) * sizeof(f32);
        int isolvn = 0, iusescr = 0, ntrd = 0, nblksz = 0, nblkls = 0;
        bool good = p.NWLB.alloc(p.NBODY) && next("NWLB", {into(p.NWLB)}) && (p.ISOR != 1 || waterline());
        good = good && next("solver", {into(p.ISOLVE), into(isolvn), into(iusescr), into(ntrd),
                                       into(p.ISCATT), into(p.IRR)});
        // A run with lid bodies has IFSP as well. Only the length of its next record tells that, and for
        // three panels not even that: such a file is refused.
        if (good && (p.IRR > 0 || (next_length() == n && n != 3 * sizeof(int))))
            good = p.IFSP.alloc(p.NEQN) && next("IFSP", {into(p.IFSP)});
        if (good && p.IRR > 0)
            good = p.IRRP.alloc(p.NEQN) && next("IRRP", {into(p.IRRP)});
        good = good && next("I2ND", {into(p.I2ND), into(nblksz), into(nblkls)});
        if (p.IWADD == 1)
            good = good && drift();
        if (good && p.IDIPOL == 1)
            good = p.IDIP.alloc(p.NEQN) && p.DPORA.alloc(p.NEQN) && p.DPORB.alloc(p.NEQN) &&
                   next("IDIP", {into(p.IDIP)}) && next("DPORA", {into(p.DPORA)}) &&
                   next("DPORB", {into(p.DPORB)});
        return good && sound(wrong_lists(p));
    }

    bool text_block() {
        for (;;) {
            char line[72];
            if (!next("text block", {{line, sizeof line}}))
                return false;
            const std::string text = trimmed(std::string_view(line, sizeof line));
            if (text == "*")
                return true;
            p.text.push_back(text);
        }
    }

    bool periods() {
        if (!allocate_periods())
            return refuse("there is not enough memory for its solutions");
        for (int i = 1; i <= p.NPER; ++i) {
            if (p.IWADD == 1) {
                if (!block(i))
                    return false;
                continue;
            }
            if (p.IRAD >= 0 &&
                !(period("PHIR", p.PHIR, i) &&
                  (p.ISOR != 1 || (period("radiation sources", p.SRCR, i) && period("VELR", p.VELR, i)))))
                return false;
            if (p.IDIFF >= 0 && !(period("PHID", p.PHID, i) &&
                                  (p.ISOR != 1 || (period("SRCD", p.SRCD, i) && period("VELD", p.VELD, i)))))
                return false;
        }
        return file_.next_length() < 0 || refuse("it goes on behind its last period");
    }

  private:
    // What a run with IWADD=1 has in the head.
    bool drift() {
        const int n = p.NEQN, m = p.NFSP;
        const bool made = p.WMODM.alloc(p.NMODES, 4) && p.WMODP.alloc(p.NMODES) && p.XIVF.alloc(4, m) &&
                          p.ETVF.alloc(4, m) && p.XCTF.alloc(3, m) && p.TRMF.alloc(3, 3, m) &&
                          p.PMOMF.alloc(13, m) && p.STB1.alloc(n, 3) && p.STB2.alloc(n, 3) &&
                          p.STB3.alloc(n, 3, 3) && p.STF1.alloc(m, 2) && p.STF2.alloc(m, 2, 3) &&
                          p.STF3.alloc(m, 3);
        if (!made)
            return refuse("there is not enough memory for its arrays");
        const std::size_t column = static_cast<std::size_t>(m) * sizeof(f32);
        const std::size_t classes = static_cast<std::size_t>(p.NSYMR) * sizeof(int);
        return next("WCLS1", {{p.WCLS1 + 1, classes}}) && next("WCLS2", {{p.WCLS2 + 1, classes}}) &&
               next("WCLS3", {{p.WCLS3 + 1, classes}}) && next("WMODC", {list(p.WMODC)}) &&
               next("WMODM", {into(p.WMODM)}) && next("WMODP", {into(p.WMODP)}) &&
               next("XIVF", {into(p.XIVF)}) && next("ETVF", {into(p.ETVF)}) && next("XCTF", {into(p.XCTF)}) &&
               next("TRMF", {into(p.TRMF)}) && next("PMOMF", {into(p.PMOMF)}) && skip("SIDEF", 4 * column) &&
               skip("XGPF", 12 * column) && skip("GJACF", 4 * column) && skip("PSIZF", 2 * column) &&
               next("STB1", {into(p.STB1)}) && next("STB2", {into(p.STB2)}) && next("STB3", {into(p.STB3)}) &&
               next("STF1", {into(p.STF1)}) && next("STF2", {into(p.STF2)}) && next("STF3", {into(p.STF3)});
    }

    // Period i of a run with IWADD=1.
    bool block(int i) {
        if (p.IRAD >= 0 &&
            !(period("PHIR", p.PHIR, i) && period("SRCR", p.SRCR, i) && period("VELR", p.VELR, i) &&
              period("W2R0", p.W2R0, i) && period("W2R1", p.W2R1, i) && period("W2R2", p.W2R2, i) &&
              period("W2R3", p.W2R3, i) && period("FSR1", p.FSR1, i) && period("FSR2", p.FSR2, i) &&
              period("FSR3", p.FSR3, i)))
            return false;
        return p.IDIFF != 1 ||
               (period("PHID", p.PHID, i) && period("SRCD", p.SRCD, i) && period("VELD", p.VELD, i) &&
                period("W2D0", p.W2D0, i) && period("PHID2", p.PHID2, i) && period("W2D0B", p.W2D0B, i) &&
                period("SRCD2", p.SRCD2, i) && period("VELD2", p.VELD2, i) && period("W2D1", p.W2D1, i) &&
                period("W2D2", p.W2D2, i) && period("W2D3", p.W2D3, i) && period("FSD1", p.FSD1, i) &&
                period("FSD2", p.FSD2, i) && period("FSD3", p.FSD3, i) && period("FSD4", p.FSD4, i) &&
                period("FSD5", p.FSD5, i));
    }

    bool allocate_second_order() {
        bool made = true;
        for (Array<c32, 3> *set : {&p.W2R0, &p.W2R1, &p.W2R2, &p.W2R3})
            made = made && (p.IRAD < 0 || set->alloc(p.NEQN, p.NSYMD, p.NPER));
        for (Array<c32, 3> *set : {&p.FSR1, &p.FSR2, &p.FSR3})
            made = made && (p.IRAD < 0 || set->alloc(p.NFSP, p.NSYMD, p.NPER));
        for (Array<c32, 4> *set : {&p.PHID2, &p.SRCD2, &p.W2D0, &p.W2D0B, &p.W2D1, &p.W2D2, &p.W2D3})
            made = made && (p.IDIFF < 0 || set->alloc(p.NEQN, p.NBETAM, p.NSYMR, p.NPER));
        for (Array<c32, 4> *set : {&p.FSD1, &p.FSD2, &p.FSD3, &p.FSD4, &p.FSD5})
            made = made && (p.IDIFF < 0 || set->alloc(p.NFSP, p.NBETAM, p.NSYMR, p.NPER));
        return made && (p.IDIFF < 0 || p.VELD2.alloc(p.NEQN, 3 * p.NBETAM, p.NSYMR, p.NPER));
    }

    static Target list(int (&values)[5]) { return {values + 1, 4 * sizeof(int)}; }
    std::size_t next_length() {
        return static_cast<std::size_t>(std::max<std::int64_t>(0, file_.next_length()));
    }

    bool waterline() {
        int NWL = 0;
        if (!next("NWL", {into(NWL)}))
            return false;
        if (NWL < 0 || NWL > p.NEQN)
            return refuse("record NWL holds " + std::to_string(NWL) + ", not 0 to NEQN");
        return p.IWLP.alloc(NWL) && p.IWLE.alloc(NWL) && next("IWLP", {into(p.IWLP)}) &&
               next("IWLE", {into(p.IWLE)});
    }

    bool allocate_periods() {
        const bool sources = p.ISOR == 1;
        bool made = p.IRAD < 0 || p.PHIR.alloc(p.NEQN, p.NSYMD, p.NPER);
        made = made && (p.IDIFF < 0 || p.PHID.alloc(p.NEQN, p.NBETAM, p.NSYMR, p.NPER));
        if (sources && p.IRAD >= 0)
            made = made && p.SRCR.alloc(p.NEQN, p.IWADD == 1 ? std::max(p.NSYMD, 3) : p.NSYMD, p.NPER) &&
                   p.VELR.alloc(p.NEQN, 3 * p.NSYMD, p.NPER);
        if (sources && p.IDIFF >= 0)
            made = made && p.SRCD.alloc(p.NEQN, p.NBETAM, p.NSYMR, p.NPER) &&
                   p.VELD.alloc(p.NEQN, 3 * p.NBETAM, p.NSYMR, p.NPER);
        if (p.IWADD == 1)
            made = made && allocate_second_order();
        return made;
    }

    template <int R> bool period(const char *what, Array<c32, R> &array, int i) {
        const auto part = array.slice(i);
        return next(what, {{part.data(), static_cast<std::size_t>(part.size()) * sizeof(c32)}});
    }

    // Passes on what a check found.
    bool sound(const std::string &wrong) { return wrong.empty() || refuse(wrong); }

    bool next(const char *what, std::initializer_list<Target> parts) {
        return file_.read(parts) ||
               refuse(std::string("record ") + what + " is missing or of another length");
    }

    bool skip(const char *what, std::size_t length) {
        std::vector<char> buffer(length);
        return next(what, {{buffer.data(), length}});
    }

    bool refuse(const std::string &why) {
        fault = why;
        return false;
    }

    P2fFile &p;
    RecordFile &file_;
    std::int64_t length_; // of the file [bytes]
};

} // namespace

bool read_p2f(const std::string &name, P2fFile &p2f, std::string &error) {
    RecordFile file(3);
    if (!file.open(name)) {
        error = name + " cannot be opened: " + file.error();
        return false;
    }
    if (file.next_length() != sizeof(f32)) {
        error = name + " is no hand-over file: its first record is not the format version";
        return false;
    }
    std::error_code none;
    const std::uintmax_t length = std::filesystem::file_size(name, none);
    Reader reader(p2f, file, none ? 0 : static_cast<std::int64_t>(length));
    if (reader.head() && reader.arrays() && reader.options() && reader.text_block() && reader.periods())
        return true;
    error = name + ": " + reader.fault;
    return false;
}
