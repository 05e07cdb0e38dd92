"""Reader of VORDA's hand-over files: vorda.read("barge.p2f") gives the arrays by their names.

Shapes are those of docs/output.md, indices count from 0: PHIR[panel, column, period]. Lengths are in units of ULEN,
potentials those of Re(... exp(+i omega t)). Needs numpy alone.
"""

import os
import struct

import numpy as np

F, I, C = np.dtype("<f4"), np.dtype("<i4"), np.dtype("<c8")


class _Records:
    """The framed records of a file, in their order."""

    def __init__(self, name):
        self.name = name
        with open(name, "rb") as file:
            self.data = file.read()
        self.at = 0

    def fail(self, why):
        raise ValueError(f"{self.name}: {why}")

    def next_length(self):
        if self.at + 4 > len(self.data):
            return -1
        return struct.unpack_from("<i", self.data, self.at)[0]

    def record(self, what, length):
        """The next record; it has this length [bytes]."""
        n = self.next_length()
        end = self.at + 4 + n
        if n != length or end + 4 > len(self.data) or struct.unpack_from("<i", self.data, end)[0] != n:
            self.fail(f"record {what} is missing or of another length")
        part = self.data[self.at + 4 : end]
        self.at = end + 4
        return part

    def array(self, what, kind, *shape):
        part = self.record(what, int(np.prod(shape)) * kind.itemsize)
        return np.frombuffer(part, kind).reshape(shape, order="F")

    def numbers(self, what, kinds):
        return struct.unpack("<" + kinds, self.record(what, struct.calcsize("<" + kinds)))


class P2f:
    """What a hand-over file holds. Arrays that the run does not have are None."""

    def __repr__(self):
        return f"<run of {self.NEQN} panels, {self.NBODY} bodies, {self.NPER} periods, {self.NBETA} headings>"

    def _class_of(self, mode):
        """Symmetry class of a mode, from 0; -1 when it was not solved."""
        for s in range(self.NSYMR):
            if mode + 1 in self.MODCLS[: self.NMCLS[s], s]:
                return s
        return -1

    def coefficients(self):
        """A, B (mode, mode, period) and X (mode, heading, period) from the pressures, without dimension:
        A over rho ULEN^k, B over rho omega ULEN^k, X over rho g ULEN^k per unit of wave amplitude."""
        images = (2 if self.ISX == 1 else 1) * (2 if self.ISY == 1 else 1)
        area = self.PMOM[0].astype(float) * images
        if self.IDIP is not None:
            area[self.IDIP == 3] = 0  # plates that are no part of the moving body
        weight = self.VEL.astype(float) * area
        n = self.NMODES
        A, B = np.zeros((n, n, self.NPER)), np.zeros((n, n, self.NPER))
        X = np.zeros((n, self.NBETA, self.NPER), complex)
        classes = [self._class_of(i) for i in range(n)]
        for i, s in enumerate(classes):
            if s < 0:
                continue
            for j in range(n):
                if self.PHIR is not None and classes[j] == s:
                    value = weight[i] @ self.PHIR[:, self.MODPOS[j] - 1, :].astype(complex)
                    A[i, j], B[i, j] = value.real, -value.imag
            if self.PHID is not None:
                X[i] = np.einsum("p,pbt->bt", weight[i], self.PHID[:, : self.NBETA, s, :].astype(complex))
        return A, B, X


def _head(f, p):
    (version,) = f.numbers("version", "f")
    if version != 5.5:
        f.fail(f"its format version is {version:.2f}, not 5.50")
    p.NEQN, p.NBODY, p.NSYMD, p.NMODES = f.numbers("sizes", "iiii")
    p.IWADD, p.NFSP = f.numbers("IWADD", "ii")
    p.ISX, p.ISY, p.IRAD, p.IDIFF, p.NPER, p.NBETA = f.numbers("symmetry and problem", "6i")
    images = f.numbers("images and classes", "15i")
    p.NSYMG, p.NCLS, p.NSYMR, p.ICLS = images[0], images[9], images[10], images[11:]
    lists = f.numbers("class lists", "9i")
    p.NDCLS, p.IDCLS, p.NMCLS = lists[0], lists[1:5], lists[5:]
    p.ISOR, p.IQUAD, p.ILOG, p.IDIAG, p.IDIPOL = f.numbers("options", "5i")
    p.GRAV, p.HBOT = f.numbers("gravity and depth", "ff")
    if min(p.NEQN, p.NBODY) < 1 or min(p.NMODES, p.NSYMD, p.NPER, p.NBETA, p.NFSP) < 0 or not 1 <= p.NSYMR <= 4:
        f.fail("its sizes make no sense")


def _arrays(f, p):
    n, b, m = p.NEQN, p.NBODY, p.NMODES
    p.ULEN = f.array("ULEN", F, b)
    p.NEQNB, p.NPANS = f.array("NEQNB", I, b, 2).T
    p.NEWMDS = f.array("NEWMDS", I, b)
    p.XBODY = f.array("XBODY", F, 4, b)
    p.PER, p.WVNH = f.array("PER", F, p.NPER, 2).T
    p.BETA, p.SINBET, p.COSBET = f.array("BETA", F, p.NBETA, 3).T
    p.MODLST = f.array("MODLST", I, m)
    p.MODCLS = f.array("MODCLS", I, m, 4)
    p.MODPOS = f.array("MODPOS", I, m)
    for name, shape in (
        ("XIV", (4,)), ("ETV", (4,)), ("XCT", (3,)), ("XVER", (4, 3)), ("TRM", (3, 3)), ("PMOM", (13,)),
        ("SIDE", (4,)), ("XGP", (4, 3)), ("GJAC", (4,)), ("RXNG", (12,)),
    ):
        setattr(p, name, f.array(name, F, *shape, n))
    p.VEL = f.array("VEL", F, m, n)
    volumes = f.array("volumes", F, 6 * b + m * m)
    p.VOL, p.XCB = np.split(volumes[: 6 * b].reshape((6, b), order="F"), 2)
    p.CHYD = volumes[6 * b :].reshape((m, m), order="F")
    p.PSIZ = f.array("PSIZ", F, 2, n)


def _options(f, p):
    n = p.NEQN
    p.NWLB = f.array("NWLB", I, p.NBODY)
    p.IWLP = p.IWLE = p.IFSP = p.IRRP = p.IDIP = p.DPORA = p.DPORB = None
    if p.ISOR == 1:
        (sides,) = f.numbers("NWL", "i")
        p.IWLP, p.IWLE = f.array("IWLP", I, sides), f.array("IWLE", I, sides)
    p.ISOLVE, _, _, _, p.ISCATT, p.IRR = f.numbers("solver", "6i")
    if p.IRR > 0 or (f.next_length() == 4 * n and n != 3):
        p.IFSP = f.array("IFSP", I, n)
    if p.IRR > 0:
        p.IRRP = f.array("IRRP", I, n)
    p.I2ND = f.numbers("I2ND", "3i")[0]
    if p.IWADD == 1:
        _drift(f, p)
    if p.IDIPOL == 1:
        p.IDIP, p.DPORA, p.DPORB = f.array("IDIP", I, n), f.array("DPORA", F, n), f.array("DPORB", F, n)


def _drift(f, p):
    """What a run with IWADD=1 has in the head."""
    n, m = p.NEQN, p.NFSP
    for name in ("WCLS1", "WCLS2", "WCLS3"):
        setattr(p, name, f.array(name, I, p.NSYMR))
    p.WMODC = f.array("WMODC", I, 4)
    p.WMODM, p.WMODP = f.array("WMODM", I, p.NMODES, 4), f.array("WMODP", I, p.NMODES)
    for name, shape in (
        ("XIVF", (4, m)), ("ETVF", (4, m)), ("XCTF", (3, m)), ("TRMF", (3, 3, m)), ("PMOMF", (13, m)), ("SIDEF", (4, m)),
        ("XGPF", (4, 3, m)), ("GJACF", (4, m)), ("PSIZF", (2, m)), ("STB1", (n, 3)), ("STB2", (n, 3)), ("STB3", (n, 3, 3)),
        ("STF1", (m, 2)), ("STF2", (m, 2, 3)), ("STF3", (m, 3)),
    ):
        setattr(p, name, f.array(name, F, *shape))


def _period_records(p):
    """Names and shapes of the solutions of a period, in their order."""
    n, m, columns, b, s = p.NEQN, p.NFSP, p.NSYMD, max(p.NBETA, 1), p.NSYMR
    records = []
    if p.IRAD >= 0:
        records.append(("PHIR", (n, columns)))
        if p.ISOR == 1:
            records += [("SRCR", (n, max(columns, 3) if p.IWADD == 1 else columns)), ("VELR", (n, 3 * columns))]
        if p.IWADD == 1:
            records += [(k, (n, columns)) for k in ("W2R0", "W2R1", "W2R2", "W2R3")]
            records += [(k, (m, columns)) for k in ("FSR1", "FSR2", "FSR3")]
    if p.IDIFF >= 0 and not (p.IWADD == 1 and p.IDIFF != 1):
        records.append(("PHID", (n, b, s)))
        if p.ISOR == 1:
            records += [("SRCD", (n, b, s)), ("VELD", (n, 3 * b, s))]
        if p.IWADD == 1:
            records += [(k, (n, b, s)) for k in ("W2D0", "PHID2", "W2D0B", "SRCD2")] + [("VELD2", (n, 3 * b, s))]
            records += [(k, (n, b, s)) for k in ("W2D1", "W2D2", "W2D3")]
            records += [(k, (m, b, s)) for k in ("FSD1", "FSD2", "FSD3", "FSD4", "FSD5")]
    return records


def read(name):
    """The hand-over file `name`. ValueError: it is none, of another version, or cut short."""
    f, p = _Records(os.fspath(name)), P2f()
    if f.next_length() != 4:
        f.fail("no hand-over file: its first record is not the format version")
    _head(f, p)
    _arrays(f, p)
    _options(f, p)
    p.text = []
    while not p.text or p.text[-1] != "*":
        p.text.append(f.record("text block", 72).decode("latin-1").strip())
    p.text.pop()
    p.PHIR = p.PHID = p.SRCR = p.VELR = p.SRCD = p.VELD = None
    records = _period_records(p)
    periods = [[f.array(what, C, *shape) for what, shape in records] for _ in range(p.NPER)]
    for k, (what, _) in enumerate(records):
        setattr(p, what, np.stack([period[k] for period in periods], axis=-1) if periods else None)
    if f.next_length() >= 0:
        f.fail("it goes on behind its last period")
    return p
