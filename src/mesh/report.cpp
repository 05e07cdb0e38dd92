#include "mesh/report.hpp"

#include <cstdarg>
#include <cstdio>

namespace {

[[gnu::format(printf, 1, 2)]] std::string line(const char *format, ...) {
    char text[200];
    va_list values;
    va_start(values, format);
    std::vsnprintf(text, sizeof text, format, values);
    va_end(values);
    return text;
}

} // namespace

std::vector<std::string> mesh_report(const std::string &name, const MeshMeasures &m, const BodyMesh &mesh,
                                     double ULEN) {
    const double L = ULEN, L2 = L * L, L3 = L2 * L;
    std::vector<std::string> lines = {"Mesh of " + name};
    lines.push_back(line("  panels given            %8d   with images %d, interior %d, dipole %d, made %d",
                         m.given, m.with_images, m.interior, m.plates, m.made));
    if (!mesh.tank)
        lines.push_back(line("  waterline panels        %8d", m.waterline));
    lines.push_back(line("  extent x, y, z          %12.5g to %.5g, %.5g to %.5g, %.5g to %.5g", L * m.low[0],
                         L * m.high[0], L * m.low[1], L * m.high[1], L * m.low[2], L * m.high[2]));
    if (!mesh.tank)
        lines.push_back(line("  draught                 %12.5g", -L * m.low[2]));
    lines.push_back(line("  volume by x, y, z       %12.5g, %.5g, %.5g", L3 * m.volume[0], L3 * m.volume[1],
                         L3 * m.volume[2]));
    lines.push_back(line("  centre of buoyancy      %12.5g, %.5g, %.5g", L * m.buoyancy[0], L * m.buoyancy[1],
                         L * m.buoyancy[2]));
    if (!mesh.tank)
        lines.push_back(line("  waterplane              %12.5g   centre %.5g, %.5g", L2 * m.waterplane,
                             L * m.waterplane_x, L * m.waterplane_y));
    lines.push_back(line("  wetted surface          %12.5g", L2 * m.surface));
    lines.push_back(line("  panel side              %12.5g   longest; mean %.5g", L * m.longest, L * m.mean));
    lines.push_back(line("  worst aspect, warp      %12.3g, %.2g per cent", m.aspect, 100 * m.warp));
    return lines;
}
