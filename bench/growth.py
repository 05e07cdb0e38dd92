#!/usr/bin/env python3
"""How time and memory of a run grow with its panels: growth.py BUILD [--largest N] [--document FILE --picture FILE].

Hemispheres of 484 panels and up, six modes and one heading, four periods, two at a time: whole, halves and quarters, direct and
iterative, deep water and a depth of three radii. Times of the phases are those that the solver tells on a terminal; the largest
resident memory is the system's. Beside them stands a model whose three rates are taken from the runs of ANCHOR panels:
pairs of panels, bytes that the sweeps read, operations of the decomposition. Prints the table, or puts it between the marks of the
document, and draws the picture by gnuplot."""
import argparse
import os
import pty
import re
import resource
import subprocess
import tempfile

HALVES = {"full": 1, "half-x": 2, "quarter": 4}  # images of the part that is given
SIDES = [11, 16, 22, 32, 44, 55, 64, 77]         # panels along the quarter's sides: 484 to 23716 in all
PERIODS = 4
ANCHOR = 4096
MARKS = ("<!-- growth: begin, made by scripts/bench --growth -->\n", "<!-- growth: end -->\n")


def run(build, m, part, direct, depth):
    """Phases [s], wall time [s], largest memory [MB] and the sum of iterations of a run."""
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run([f"{build}/vorda-mesh", "hemisphere", "--part", part, "--nu", str(m), "--nv", str(m), "-o", "run.gdf"],
                       cwd=folder, check=True, stdout=subprocess.DEVNULL)
        with open(f"{folder}/fnames.vrd", "w") as f:
            f.write("run.gdf\nrun.pot\n")
        with open(f"{folder}/config.vrd", "w") as f:
            f.write(f"MAXSCR=30000\nISOLVE={1 if direct else 0}\n")
        waves = " ".join(f"{2 + 0.4 * k:.1f}" for k in range(PERIODS))
        with open(f"{folder}/run.pot", "w") as f:
            f.write(f"growth\n0\n0\n0\n{depth} 0 0 0 0\n0 0 0\n1 1\n1 1 1 1 1 1\n{PERIODS}\n{waves}\n1\n0.0\n")
        ours, theirs = pty.openpty()
        child = subprocess.Popen([f"{build}/vorda"], cwd=folder, stdout=subprocess.DEVNULL, stderr=theirs)
        os.close(theirs)
        text = b""
        while True:
            try:
                piece = os.read(ours, 4096)
            except OSError:
                break
            if not piece:
                break
            text += piece
        os.close(ours)
        _, status, used = os.wait4(child.pid, 0)
        if status != 0 or not os.path.exists(f"{folder}/run.p2f"):
            raise SystemExit(f"the run of {m} x {m} {part} left no result")
        told = re.search(r"times \[s\]: (.*)", text.decode()).group(1)
        phases = {name: float(value) for name, value in re.findall(r"(\w+) ([0-9.]+)", told)}
        with open(f"{folder}/vorda.lis") as f:
            counts = re.findall(r"^ +\d+ +\d+ +[0-9.]+ +\S+ +(-?\d+)[ (].*?(-?\d+)(?: |\(|$)", f.read(), re.M)
        sweeps = sum(max(0, int(a)) + max(0, int(b)) for a, b in counts)
        return phases, sum(phases.values()), used.ru_maxrss / 1024, sweeps


def measured(build, m, part, direct, depth):
    """The quickest run of three, of large ones of two: memory that the system has to fetch first can cost as much again."""
    runs = [run(build, m, part, direct, depth) for _ in range(3 if 4 * m * m <= (5000 if direct else 8000) else 2)]
    least = min(r[1] for r in runs)
    return next(r for r in runs if r[1] == least)


class Model:
    """Seconds of assembly and solution of a run of n unknowns in each of c classes, by rates of runs that were measured."""

    def __init__(self):
        self.pair, self.byte, self.flop = {}, {}, None

    def take(self, n, c, direct, depth, phases, sweeps):
        if direct:
            self.flop = phases["solve"] / (PERIODS * c * 8 / 3 * n**3)
        else:
            self.pair[depth] = phases["assembly"] / (PERIODS * c * n * n)
            self.byte[depth] = phases["solve"] / (sweeps * c * 8 * n * n)

    def seconds(self, n, c, direct, depth, sweeps):
        pairs = self.pair[depth] * PERIODS * c * n * n
        return pairs + (self.flop * PERIODS * c * 8 / 3 * n**3 if direct else self.byte[depth] * sweeps * c * 8 * n * n)


def all_runs(build, largest, largest_direct):
    rows, model = [], Model()
    kinds = [(False, 0), (False, 3), (True, 3)]
    for part, images in HALVES.items():
        for direct, depth in kinds:
            if direct and part == "half-x":
                continue
            for m in SIDES:
                total = 4 * m * m
                if total > largest or (direct and total / images > largest_direct):
                    continue
                phases, wall, memory, sweeps = measured(build, m, part, direct, depth)
                n = total // images
                if part == "full" and total == ANCHOR:
                    model.take(n, images, direct, depth, phases, sweeps)
                rows.append((part, images, direct, depth, n, phases, wall, memory, sweeps))
    return rows, model


def table(rows, model):
    yield "| panels, with images | part | solver | depth | Rankine [s] | assembly [s] | solution [s] | both by the model [s] | whole run [s] | memory [MB] |"
    yield "|---|---|---|---|---|---|---|---|---|---|"
    for part, images, direct, depth, n, phases, wall, memory, sweeps in rows:
        said = model.seconds(n, images, direct, depth, sweeps)
        yield (f"| {n * images} | {part} | {'direct' if direct else 'iterative'} | {depth or 'infinite'} | {phases['Rankine']:.3f} | "
               f"{phases['assembly']:.3f} | {phases['solve']:.3f} | {said:.3f} | {wall:.3f} | {memory:.0f} |")


def text_of(rows, model):
    lines = list(table(rows, model))
    lines += ["", f"Rates of the model, two periods at a time, from {ANCHOR} panels: "
              f"{2e9 * model.pair[0]:.1f} ns a coefficient in deep water and {2e9 * model.pair[3]:.1f} ns in finite depth, each on "
              f"one core; the sweeps read {1e-9 / model.byte[3]:.0f} GB/s, the decompositions work "
              f"{1e-9 / model.flop:.0f} Gflop/s, both on two cores."]
    return "\n".join(lines) + "\n"


def draw(rows, model, picture):
    series = {}
    for part, images, direct, depth, n, phases, wall, memory, sweeps in rows:
        name = f"{part}, {'direct' if direct else 'iterative'}, {'depth 3' if depth else 'deep'}"
        series.setdefault(name, []).append((n * images, wall, model.seconds(n, images, direct, depth, sweeps)))
    script = [f"set terminal svg size 760,520 font 'sans,12'; set output '{picture}'; set logscale xy; set key left top",
              "set xlabel 'panels, with images'; set ylabel 'seconds of a run of four periods'; set grid; set xrange [400:30000]"]
    plots = []
    for k, name in enumerate(series, 1):
        data = "\n".join(" ".join(f"{v:.6g}" for v in row) for row in series[name])
        script.append(f"$d{k} << EOD\n{data}\nEOD")
        plots.append(f"$d{k} using 1:2 with points pt {k} lc {k} title '{name}', $d{k} using 1:3 with lines lc {k} dt 2 notitle")
    script.append("plot " + ", ".join(plots))
    subprocess.run(["gnuplot"], input="\n".join(script), text=True, check=True)


def main():
    options = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    options.add_argument("build")
    options.add_argument("--largest", type=int, default=24000, help="panels, with images")
    options.add_argument("--largest-direct", type=int, default=12500, help="unknowns of a class in the direct solution")
    options.add_argument("--document")
    options.add_argument("--picture")
    given = options.parse_args()
    if given.largest < ANCHOR:
        options.error(f"--largest is {ANCHOR} at least: the rates of the model are taken there")
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    rows, model = all_runs(os.path.abspath(given.build), given.largest, given.largest_direct)
    text = text_of(rows, model)
    if given.document:
        with open(given.document) as f:
            whole = f.read()
        head, tail = whole.split(MARKS[0])[0], whole.split(MARKS[1])[1]
        with open(given.document, "w") as f:
            f.write(head + MARKS[0] + text + MARKS[1] + tail)
    else:
        print(text, end="")
    if given.picture:
        draw(rows, model, given.picture)


main()
