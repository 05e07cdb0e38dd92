#include "case/mesh_view.hpp"

#include "case/html.hpp"

#include <algorithm>
#include <cstdio>

namespace {

constexpr std::size_t MOST = 20000; // panels, of some 80 bytes each

// Panels are painted from the back to the front, which suffices for hulls. Dragging or the arrow keys turn,
// the wheel zooms, a double click goes back.
constexpr const char *SCRIPT = R"JS(
(function () {
  'use strict';
  const view = document.getElementById('mesh'), pen = view.getContext('2d');
  const P = MESH.points, C = MESH.cells;
  const colours = [[78,121,167],[225,140,60],[89,161,79],[176,122,161],[118,183,178],[156,117,95]];
  let azimuth, elevation, zoom;
  let lo = [Infinity, Infinity, Infinity], hi = [-Infinity, -Infinity, -Infinity];
  for (let i = 0; i < P.length; i++) { lo[i % 3] = Math.min(lo[i % 3], P[i]); hi[i % 3] = Math.max(hi[i % 3], P[i]); }
  const mid = [0, 1, 2].map(k => (lo[k] + hi[k]) / 2);
  const size = Math.hypot(hi[0] - lo[0], hi[1] - lo[1], hi[2] - lo[2]) || 1;
  function reset() { azimuth = 40; elevation = -20; zoom = 1; }
  function draw() {
    const a = azimuth * Math.PI / 180, e = elevation * Math.PI / 180;
    const ca = Math.cos(a), sa = Math.sin(a), ce = Math.cos(e), se = Math.sin(e);
    const scale = zoom * Math.min(view.width, view.height) / size;
    // right, up and towards the eye
    const r = [-sa, ca, 0], u = [-se * ca, -se * sa, ce], t = [ce * ca, ce * sa, se];
    const dot = (v, x, y, z) => v[0] * x + v[1] * y + v[2] * z;
    const n = P.length / 3, X = new Float32Array(n), Y = new Float32Array(n), Z = new Float32Array(n);
    for (let i = 0; i < n; i++) {
      const x = P[3 * i] - mid[0], y = P[3 * i + 1] - mid[1], z = P[3 * i + 2] - mid[2];
      X[i] = view.width / 2 + scale * dot(r, x, y, z);
      Y[i] = view.height / 2 - scale * dot(u, x, y, z);
      Z[i] = dot(t, x, y, z);
    }
    const depth = C.map(c => { let s = 0; for (let k = 2; k < c.length; k++) s += Z[c[k]]; return s / (c.length - 2); });
    const order = C.map((c, i) => i).sort((i, k) => depth[i] - depth[k]);
    pen.fillStyle = '#fff';
    pen.fillRect(0, 0, view.width, view.height);
    pen.lineWidth = 0.6;
    for (const i of order) {
      const c = C[i], p = c[2], q = c[3], s = c[c.length - 1];
      const area = (X[q] - X[p]) * (Y[s] - Y[p]) - (Y[q] - Y[p]) * (X[s] - X[p]);
      const ax = P[3*q]-P[3*p], ay = P[3*q+1]-P[3*p+1], az = P[3*q+2]-P[3*p+2];
      const bx = P[3*s]-P[3*p], by = P[3*s+1]-P[3*p+1], bz = P[3*s+2]-P[3*p+2];
      const nx = ay*bz-az*by, ny = az*bx-ax*bz, nz = ax*by-ay*bx, l = Math.hypot(nx, ny, nz) || 1;
      const light = 0.55 + 0.45 * Math.abs(dot(t, nx, ny, nz)) / l;
      let rgb = c[1] >= 2 ? [150, 190, 220] : colours[(c[0] + 5) % 6];
      if (c[1] === 0 && area > 0) rgb = rgb.map(v => 0.5 * v + 90); // the dry side
      pen.fillStyle = 'rgb(' + rgb.map(v => Math.round(v * light)).join(',') + ')';
      pen.strokeStyle = 'rgba(20,30,40,0.55)';
      pen.beginPath();
      for (let k = 2; k < c.length; k++) pen[k === 2 ? 'moveTo' : 'lineTo'](X[c[k]], Y[c[k]]);
      pen.closePath();
      pen.fill();
      pen.stroke();
    }
    pen.lineWidth = 1.5;
    pen.font = '14px sans-serif';
    [['x', '#c00'], ['y', '#080'], ['z', '#00c']].forEach(([name, colour], k) => {
      const v = [0, 0, 0], x0 = 45, y0 = view.height - 45;
      v[k] = 32;
      pen.strokeStyle = pen.fillStyle = colour;
      pen.beginPath();
      pen.moveTo(x0, y0);
      pen.lineTo(x0 + dot(r, v[0], v[1], v[2]), y0 - dot(u, v[0], v[1], v[2]));
      pen.stroke();
      pen.fillText(name, x0 + 1.25 * dot(r, v[0], v[1], v[2]) - 3, y0 - 1.25 * dot(u, v[0], v[1], v[2]) + 4);
    });
    view.dataset.azimuth = azimuth.toFixed(1);
    view.dataset.elevation = elevation.toFixed(1);
  }
  function turn(da, de) {
    azimuth = (azimuth + da) % 360;
    elevation = Math.max(-90, Math.min(90, elevation + de));
    draw();
  }
  let from = null;
  view.addEventListener('pointerdown', e => { from = [e.clientX, e.clientY]; });
  addEventListener('pointerup', () => { from = null; });
  view.addEventListener('pointermove', e => {
    if (!from) return;
    turn(-0.5 * (e.clientX - from[0]), 0.5 * (e.clientY - from[1]));
    from = [e.clientX, e.clientY];
  });
  view.addEventListener('wheel', e => { e.preventDefault(); zoom *= Math.exp(-0.001 * e.deltaY); draw(); }, { passive: false });
  view.addEventListener('dblclick', () => { reset(); draw(); });
  view.addEventListener('keydown', e => {
    const step = { ArrowLeft: [5, 0], ArrowRight: [-5, 0], ArrowUp: [0, -5], ArrowDown: [0, 5] }[e.key];
    if (step) { e.preventDefault(); turn(step[0], step[1]); }
  });
  reset();
  draw();
})();
)JS";

std::string short_number(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.5g", value + 0.0);
    return text;
}

} // namespace

std::string mesh_view(const P2fFile &p2f, double length) {
    std::vector<HullCell> cells = hull_cells(p2f, length);
    std::string note;
    const std::size_t all = cells.size();
    if (all > MOST)
        cells.erase(std::remove_if(cells.begin(), cells.end(), [](const HullCell &c) { return c.image > 1; }),
                    cells.end());
    if (cells.size() > MOST)
        cells.resize(MOST);
    if (cells.size() < all)
        note = " " + std::to_string(cells.size()) + " of " + std::to_string(all) + " panels are shown.";
    std::string points, polygons;
    std::size_t next = 0;
    for (const HullCell &cell : cells) {
        polygons += (polygons.empty() ? "[" : ",[") + std::to_string(cell.body) + "," +
                    std::to_string(static_cast<int>(cell.kind));
        for (const Vector3 &corner : cell.corners) {
            for (const double x : corner)
                points += (points.empty() ? "" : ",") + short_number(x);
            polygons += "," + std::to_string(next++);
        }
        polygons += "]";
    }
    return "<canvas id=\"mesh\" width=\"900\" height=\"520\" tabindex=\"0\"></canvas>\n" +
           paragraph(
               "Drag, or use the arrow keys, to turn; the wheel zooms; a double click goes back. Bodies have "
               "colours of their own, free surface inside a body is light blue." +
               note) +
           "<script>\nconst MESH={points:[" + points + "],cells:[" + polygons + "]};" + SCRIPT +
           "</script>\n";
}
