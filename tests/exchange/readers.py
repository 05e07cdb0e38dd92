"""Reads the exported files of a run as other programs do and compares them with the tables of vorda-p2f.

readers.py CHECK,CHECK... BODIES MODES: in the folder of the run; BODIES bodies of MODES modes each.
"""
import csv
import sys
import xml.etree.ElementTree as ET

import numpy as np

CHECKS, BODIES, MODES = sys.argv[1].split(","), int(sys.argv[2]), int(sys.argv[3])
ALL = BODIES * MODES
RHO, G = 1000.0, 9.80665
TABLE = 1e-6  # of the largest value: tables have nine digits; what is less than this they show as 0
FILE = 1e-6  # of the largest force: values in VTK files and in the run have single precision
RIGID = ["surge", "sway", "heave", "roll", "pitch", "yaw"]
NAMES = RIGID + ["mode %d" % k for k in range(7, 20)]


def rows(name):
    with open(name) as table:
        return [{key.split(" [")[0]: value for key, value in row.items()} for row in csv.DictReader(table)]


def mode(row, body="body", name="mode"):
    return (int(row[body]) - 1) * MODES + NAMES.index(row[name])


def polar(row, name, phase):
    return float(row[name]) * np.exp(1j * np.radians(float(row[phase])))


def same(a, b, size, tolerance, what):
    assert np.shape(a) == np.shape(b), (what, np.shape(a), np.shape(b))
    worst = np.max(np.abs(np.asarray(a) - b)) / size
    assert worst <= tolerance, (what, worst)


def turns(m):
    return 3 <= m % MODES < 6


def tables(omega, headings, name, column, phase, scale=lambda row: 1):
    """A complex quantity of a table by omega, heading and mode."""
    made = np.full((len(omega), len(headings), ALL), np.nan, complex)
    for row in rows(name):
        k = np.flatnonzero(np.isclose(omega, float(row["omega"]), rtol=1e-8, equal_nan=True))
        b = np.argmin(np.abs(headings - float(row["heading"])))
        made[k, b, mode(row)] = scale(row) * polar(row, column, phase)
    return made


def pairs(omega, whole=False):
    """Added mass and damping, symmetric; whole: with what the mesh leaves between (i,j) and (j,i)."""
    A = np.full((len(omega), ALL, ALL), np.nan)
    B = A.copy()
    for row in rows("radiation.csv"):
        k = np.flatnonzero(np.isclose(omega, float(row["omega"]), rtol=1e-8))
        i, j = mode(row, "body i", "mode i"), mode(row, "body j", "mode j")
        half = 0.5 if whole else 0
        A[k, i, j] = float(row["added mass"]) + half * float(row["its asymmetry"])
        B[k, i, j] = float(row["damping"]) + half * float(row["asymmetry"])
    return A, B


def by_kind(a, b, tolerance, what):
    """Compares over the largest value of translations and of rotations apart; modes come last."""
    for kind in (False, True):
        own = [m for m in range(ALL) if turns(m) == kind]
        same(a[..., own], b[..., own], np.max(np.abs(b[..., own])), tolerance, what)


def netcdf():
    import xarray

    d = xarray.open_dataset("r.nc")
    w = d.omega
    # The motions as a user forms them.
    S = d.hydrostatic_stiffness + d.external_stiffness - w**2 * (d.inertia_matrix + d.added_mass)
    S = S - 1j * w * (d.radiation_damping + d.external_damping)
    X = d.excitation_force.sel(complex="re") + 1j * d.excitation_force.sel(complex="im")
    waves = (w.values > 0) & (w.values < np.inf)
    S = S.transpose("omega", "influenced_dof", "radiating_dof").values[waves]
    xi = np.linalg.solve(S, X.transpose("omega", "influenced_dof", "wave_direction").values[waves]).transpose(0, 2, 1)

    headings = np.degrees(d.wave_direction.values)
    assert list(headings) == sorted(headings) and np.all(np.diff(w) > 0)
    unit = lambda row: np.radians(1) if row["unit"].startswith("deg") else 1
    raos = tables(w.values[waves], headings, "raos.csv", "modulus", "phase", unit)  # of exp(-i omega t)
    by_kind(xi, raos, TABLE, "motions from the matrices")
    by_kind((d.rao[0] + 1j * d.rao[1]).values[waves], raos, TABLE, "rao")
    assert np.isnan(d.rao.values[:, ~waves]).all()

    A, B = pairs(w.values)
    for i in range(ALL):
        for j in range(ALL):
            size = np.sqrt(np.max(np.abs(A[:, i, i])) * np.max(np.abs(A[:, j, j])))
            same(d.added_mass.values[:, i, j], A[:, i, j], size, TABLE, "added mass")
            same(d.radiation_damping.values[:, i, j], B[:, i, j], size, TABLE, "damping")
    forces = tables(w.values, headings, "forces.csv", "pressure", "pressure phase")
    by_kind(np.conj(X.transpose("omega", "wave_direction", "influenced_dof").values), forces, TABLE, "force")
    sums = d.Froude_Krylov_force + d.diffraction_force
    by_kind((sums[0] + 1j * sums[1]).values, X.values, 1e-12, "parts of the force")
    # Limits: the waterplane's force of a raised level, and nothing.
    assert w[0] == 0 and np.isinf(w[-1]) and not d.radiation_damping[[0, -1]].any()
    heave = [m for m in range(ALL) if m % MODES == 2]
    for m in heave:
        same(d.excitation_force[0, 0, :, m], 0 * headings + float(d.hydrostatic_stiffness[m, m]),
             float(d.hydrostatic_stiffness[m, m]), 1e-6, "level")
    assert not d.excitation_force[:, -1].any()

    assert d.attrs["source"].startswith("VORDA") and "exp(-i omega t)" in d.attrs["convention"]
    assert d.attrs["input_sha256"] == open("sum.txt").read().split()[0]
    names = [n.title().replace(" ", "") for n in NAMES[:MODES]]
    if BODIES > 1:
        names = ["body%d__%s" % (b + 1, n) for b in range(BODIES) for n in names]
    assert list(d.radiating_dof.values) == names == list(d.influenced_dof.values)
    assert str(d.body_name.values) == "+".join("body%d" % (b + 1) for b in range(BODIES))
    assert ("body" in d.dims) == (BODIES > 1) and d.center_of_mass.shape == ((BODIES, 3) if BODIES > 1 else (3,))
    assert (float(d.rho), float(d.forward_speed)) == (RHO, 0) and abs(float(d.g) - G) < 1e-6
    assert np.isinf(float(d.water_depth))
    for name, one in d.data_vars.items():
        assert "long_name" in one.attrs and ("units" in one.attrs or one.dtype.kind in "OUS"), name


def hdf5():
    import h5py

    f = h5py.File("r.h5")
    w = f["simulation_parameters/w"][:]
    headings = f["simulation_parameters/wave_dir"][:]
    n, m, d, t = MODES, ALL, len(headings), f["body1/hydro_coeffs/radiation_damping/impulse_response_fun/t"].shape[0]
    shapes = {"bem_data/code": (), "simulation_parameters/water_depth": ()}
    for name in ("scaled", "g", "rho"):
        shapes["simulation_parameters/" + name] = (1,)
    for name, shape in (("T", w.shape), ("w", (5,)), ("wave_dir", (2,))):
        shapes["simulation_parameters/" + name] = shape
    for b in range(1, BODIES + 1):
        here = {"name": ()}
        here.update({name: (1,) for name in ("body_number", "dof", "dof_start", "dof_end", "disp_vol")})
        here.update({"cb": (3,), "cg": (3,)})
        if MODES > 6:
            here.update({name: (n - 6, n - 6) for name in ("mass", "stiffness", "damping")})
        shapes.update({"body%d/properties/%s" % (b, k): v for k, v in here.items()})
        here = {"linear_restoring_stiffness": (6, 6), "added_mass/all": (n, m, 5), "added_mass/inf_freq": (n, m)}
        here["radiation_damping/all"] = (n, m, 5)
        for path, shape in (("radiation_damping", (n, m, t)), ("excitation", (n, d, 2 * t - 1))):
            here[path + "/impulse_response_fun/" + ("K" if path[0] == "r" else "f")] = shape
            here[path + "/impulse_response_fun/t"] = shape[-1:]
            here[path + "/impulse_response_fun/w"] = (5,)
        for part in ("", "scattering/", "froude-krylov/"):
            here.update({"excitation/" + part + k: (n, d, 5) for k in ("re", "im", "mag", "phase")})
        if BODIES == 1:
            here["mean_drift/momentum_conservation/val"] = (n, d, 5)
        if MODES == 6:
            here["mean_drift/pressure_integration/val"] = (n, d, 5)
        shapes.update({"body%d/hydro_coeffs/%s" % (b, k): v for k, v in here.items()})
    found = {}
    f.visititems(lambda name, one: found.update({name: one.shape} if isinstance(one, h5py.Dataset) else {}))
    assert found == shapes, sorted(set(found.items()) ^ set(shapes.items()))
    for name in found:
        assert set(f[name].attrs) == {"units", "description"}, name

    A, B = pairs(np.append(w, np.inf))
    forces = tables(w, headings, "forces.csv", "pressure", "pressure phase").transpose(2, 1, 0)
    kernel, drift = rows("kernel.csv"), rows("drift.csv")
    for b in range(BODIES):
        c, p = f["body%d/hydro_coeffs" % (b + 1)], f["body%d/properties" % (b + 1)]
        own = slice(n * b, n * (b + 1))
        assert (p["dof_start"][0], p["dof_end"][0], p["dof"][0]) == (n * b + 1, n * b + n, n)
        a = A[:, own].transpose(1, 2, 0)
        same(RHO * c["added_mass/all"][:], a[..., :-1], np.max(np.abs(A)), TABLE, "added mass")
        same(RHO * c["added_mass/inf_freq"][:], a[..., -1], np.max(np.abs(A)), TABLE, "limit")
        same(RHO * w * c["radiation_damping/all"][:], B[:-1, own].transpose(1, 2, 0), np.max(B), TABLE, "damping")
        x = c["excitation"]
        same(RHO * G * (x["re"][:] + 1j * x["im"][:]), forces[own], np.max(np.abs(forces)), TABLE, "force")
        same(x["mag"][:] * np.exp(1j * x["phase"][:]), x["re"][:] + 1j * x["im"][:], 1, 1e-12, "polar")
        same(x["scattering/re"][:] + x["froude-krylov/re"][:], x["re"][:], np.max(x["mag"][:]), 1e-12, "parts")
        K = c["radiation_damping/impulse_response_fun/K"][:]
        largest = max(abs(float(row["K"])) for row in kernel)
        for row in kernel:
            if int(row["body i"]) == b + 1:
                k = np.argmin(np.abs(c["radiation_damping/impulse_response_fun/t"][:] - float(row["time"])))
                i, j = mode(row, "body i", "mode i") - n * b, mode(row, "body j", "mode j")
                same(RHO * K[i, j, k], float(row["K"]), largest, TABLE, "K")
        for row in drift if BODIES == 1 else []:
            i, k = RIGID.index(row["component"]), np.argmin(np.abs(w - float(row["omega"])))
            value = c["mean_drift/momentum_conservation/val"][i, np.argmin(np.abs(headings - float(row["heading"]))), k]
            same(RHO * G * value, float(row["far"]), RHO * G, TABLE, "drift")


def vtu():
    import meshio

    mesh = meshio.read("r.vtu")
    data = {name: np.concatenate(blocks) for name, blocks in mesh.cell_data.items()}
    assert sum(len(block.data) for block in mesh.cells) == len(data["area"]) == int(open("panels.txt").read())
    omega = 2 * np.pi / float(ET.fromstring(head("r.vtu")).attrib["period"].split()[0])
    A, B = pairs(np.array([omega]), True)
    forces = tables(np.array([omega]), np.array([0.0, 40.0]), "forces.csv", "pressure", "pressure phase")[0]
    hull = data["kind"] < 2
    # Body axes: the second of two bodies is turned about.
    normal = data["normal"] * np.where((data["body"] == 2)[:, None], [-1, -1, 1], [1, 1, 1])

    def force(load, body):
        p = data["pressure_%s_re" % load] + 1j * data["pressure_%s_im" % load]
        own = hull & (data["body"] == body + 1)
        return np.sum((p * data["area"])[own, None] * normal[own], axis=0)

    for body in range(BODIES):
        own = slice(MODES * body, MODES * body + 3)
        for b, heading in enumerate(("0", "40")):
            same(force("waves_" + heading, body), forces[b, own], np.max(np.abs(forces[:, own])), FILE, "force")
        for j in range(ALL):
            name = NAMES[j % MODES].replace(" ", "")
            name = "body%d_%s" % (j // MODES + 1, name) if BODIES > 1 else name
            of_mode = omega**2 * A[0, own, j] - 1j * omega * B[0, own, j]
            same(force(name, body), of_mode, omega**2 * np.max(np.abs(A[0, own])), FILE, name)
    phi = data["potential_waves_0_re"] + 1j * data["potential_waves_0_im"]
    p = data["pressure_waves_0_re"] + 1j * data["pressure_waves_0_im"]
    same(-1j * RHO * omega * phi[hull], p[hull], np.max(np.abs(p[hull])), FILE, "potential")
    # The bodies at rest let nothing through.
    v = data["velocity_waves_0_re"] + 1j * data["velocity_waves_0_im"]
    assert np.max(np.abs(np.sum(v * data["normal"], axis=1)[hull])) < 1e-5 * omega


def surface():
    """Panels of the hull and of the free surface around it: areas by the corners are those of the run."""
    import meshio

    mesh = meshio.read("r.vtu")
    data = {name: np.concatenate(blocks) for name, blocks in mesh.cell_data.items()}
    whole = []
    for block in mesh.cells:
        corner = [mesh.points[block.data[:, k]] for k in range(block.data.shape[1])]
        fan = [np.cross(b - corner[0], c - corner[0]) / 2 for b, c in zip(corner[1:], corner[2:])]
        whole.append(sum(fan))
    whole = np.concatenate(whole)
    same(np.linalg.norm(whole, axis=1), data["area"], np.max(data["area"]), 1e-6, "area")
    turned = np.sum(whole * data["normal"], axis=1) / data["area"]
    assert np.all(np.abs(np.abs(turned) - 1) < 1e-5) and np.all(turned * turned[0] > 0)
    outside = data["kind"] == 3
    assert outside.sum() == int(open("surface.txt").read()) and (~outside).sum() == int(open("panels.txt").read())
    assert np.all(data["body"][outside] == 0) and np.all(np.isnan(data["pressure_waves_0_re"]) == outside)


def head(name):
    """The text of a VTK file up to its binary data, as a whole document."""
    text = open(name, "rb").read()
    return text[: text.index(b"<AppendedData")].decode() + "</VTKFile>"


def animation():
    import meshio

    series = ET.parse("a.pvd").getroot()
    steps = [(float(s.attrib["timestep"]), s.attrib["file"]) for s in series.iter("DataSet")]
    assert len(steps) == 48 and steps[2][0] > 0
    period, amplitude = 24 * steps[2][0], 1e-3
    omega = 2 * np.pi / period
    hulls = [meshio.read(name) for _, name in steps[0::2]]
    waves = [meshio.read(name) for _, name in steps[1::2]]
    # First harmonic of what moves: value(t) = Re(X exp(i omega t)).
    turn = np.exp(-2j * np.pi * np.arange(24) / 24) / 12 / amplitude
    harmonic = lambda values: np.tensordot(turn, np.array(values), 1)
    pressure = harmonic([np.concatenate(mesh.cell_data["pressure"]) for mesh in hulls])
    still = meshio.read("r.vtu")
    data = {name: np.concatenate(blocks) for name, blocks in still.cell_data.items()}
    total = (data["pressure_total_40_re"] + 1j * data["pressure_total_40_im"])[data["kind"] < 2]
    same(pressure, total, np.max(np.abs(total)), FILE, "pressure")
    unit = lambda row: np.radians(1) if row["unit"].startswith("deg") else 1
    xi = tables(np.array([omega]), np.array([0.0, 40.0]), "raos_plus.csv", "modulus", "phase", unit)[0, 1]
    moved = harmonic([mesh.points for mesh in hulls])
    r = still.points[: len(moved)]
    rigid = xi[:3] + np.cross(xi[3:6], r)
    same(moved, rigid, np.max(np.abs(rigid)), 1e-5, "motion")  # turns of 1e-3 rad are not quite linear
    # The wave at points of its grid, against the field there.
    heights = harmonic([mesh.points[:, 2] for mesh in waves])
    same(heights, harmonic([mesh.point_data["elevation"] for mesh in waves]), 1, 1e-4, "elevation")
    for row in rows("field.csv"):
        distance = np.hypot(waves[0].points[:, 0] - float(row["x"]), waves[0].points[:, 1] - float(row["y"]))
        assert np.min(distance) < 1e-6
        same(heights[np.argmin(distance)], polar(row, "head", "head phase"), 1, 1e-5, "wave")


def points():
    """Some points of the grid of the wave, for the table of the field."""
    import meshio

    for x, y, _ in meshio.read("a_phases/wave_00.vtu").points[::997]:
        print("%.15g %.15g" % (x, y))


def vtk():
    from vtkmodules.vtkIOXML import vtkXMLUnstructuredGridReader

    reader = vtkXMLUnstructuredGridReader()
    reader.SetFileName("r.vtu")
    reader.Update()
    grid = reader.GetOutput()
    assert grid.GetNumberOfCells() == int(open("panels.txt").read())
    area = grid.GetCellData().GetArray("area")
    assert area.GetInformation().Get(area.UNITS_LABEL()) == "m^2"
    assert grid.GetCellData().GetArray("velocity_waves_40_im").GetNumberOfComponents() == 3


def json():
    import json as parser

    import xarray

    with open("r.json") as file:
        made = parser.load(file)
    assert "exp(+i omega t)" in made["convention"] and made["input_file"] == "run.p2f"
    d = xarray.open_dataset("r.nc")
    number = np.vectorize(lambda v: np.nan if v is None else float(v), otypes=[float])
    for name, one in made["variables"].items():
        if name not in d.variables:
            raise AssertionError(name)
        there = d[name].values
        assert list(d[name].dims) == one["dimensions"], name
        if there.dtype.kind in "OUS":
            assert list(np.ravel(one["values"])) == [str(v) for v in np.ravel(there)], name
            continue
        assert d[name].attrs["units"] == one["unit"], name
        values = number(one["values"])
        if one["dimensions"][:1] == ["complex"]:
            values[1] = -values[1]  # the other time factor
        np.testing.assert_array_equal(values, there, name)
    assert set(d.variables) == set(made["variables"])


def reader():
    """The reader for Python users against the tables of the run."""
    import os

    sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../python"))
    import vorda

    p = vorda.read("run.p2f")
    waves = np.flatnonzero(p.PER > 0)
    omega = 2 * np.pi / p.PER[waves].astype(float)
    order = np.argsort(omega)
    A, B, X = p.coefficients()
    assert p.NBODY == BODIES and p.XVER.shape == (4, 3, p.NEQN)
    lines = np.unique([float(row["omega"]) for row in rows("forces.csv") if 0 < float(row["omega"]) < np.inf])
    a, b = pairs(lines)
    half = [(0.5 * RHO * (v + v.transpose(1, 0, 2)))[..., waves[order]].transpose(2, 0, 1) for v in (A, B)]
    same(half[0], np.nan_to_num(a), np.nanmax(a), TABLE, "added mass")
    same(half[1] * omega[order, None, None], np.nan_to_num(b), np.nanmax(b), TABLE, "damping")
    forces = tables(lines, p.BETA, "forces.csv", "pressure", "pressure phase")
    same(RHO * G * X[..., waves[order]].transpose(2, 1, 0), forces, np.max(np.abs(forces)), TABLE, "force")
    with open("run.p2f", "rb") as whole, open("cut.p2f", "wb") as cut:
        cut.write(whole.read()[:-100])
    for name in ("cut.p2f", "run.gdf"):
        try:
            vorda.read(name)
        except ValueError as fault:
            assert name in str(fault)
        else:
            raise AssertionError(name)


for check in CHECKS:
    globals()[check]()
