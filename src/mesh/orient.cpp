#include "mesh/orient.hpp"

#include "mesh/rays.hpp"
#include "mesh/vectors.hpp"

#include <algorithm>
#include <cstdlib>

namespace {

// Directions of the rays: downwards, and along no plane or line that a hull is likely to have.
constexpr BodyPoint DIRECTIONS[] = {
    {0.3713, 0.5519, -0.7467}, {-0.6131, 0.2273, -0.7565}, {0.1877, -0.6619, -0.7257}};

// For each piece the panel that looks most squarely along the direction.
std::vector<int> best_panels(const MergedVertices &mesh, const MeshPieces &pieces,
                             const BodyPoint &direction) {
    std::vector<int> best(static_cast<std::size_t>(pieces.pieces), -1);
    std::vector<double> value(best.size(), -1);
    for (std::size_t p = 0; p < mesh.of_panel.size(); ++p) {
        const PanelShape shape = shape_of(panel_of(mesh, p));
        const double v = shape.area * std::fabs(dot(shape.normal, direction));
        const std::size_t piece = static_cast<std::size_t>(pieces.piece[p]);
        if (v > value[piece]) {
            value[piece] = v;
            best[piece] = static_cast<int>(p);
        }
    }
    return best;
}

} // namespace

OrientCounts orient(MergedVertices &mesh) {
    OrientCounts counts;
    const std::vector<bool> all(mesh.of_panel.size(), true);
    const MeshPieces pieces = pieces_of(edges_of(mesh, all), all);
    counts.parts = pieces.pieces;
    std::vector<int> against(static_cast<std::size_t>(pieces.pieces)), members(against.size());
    for (std::size_t p = 0; p < mesh.of_panel.size(); ++p) {
        const std::size_t piece = static_cast<std::size_t>(pieces.piece[p]);
        ++members[piece];
        if (pieces.sense[p] < 0) {
            ++against[piece];
            reverse(mesh.of_panel[p]);
        }
    }
    for (std::size_t k = 0; k < against.size(); ++k)
        counts.turned += std::min(against[k], members[k] - against[k]);
    counts.one_sided = !edges_of(mesh, all).same_sense.empty();
    if (counts.one_sided)
        return counts;

    std::vector<int> wrong(members.size()), inside(members.size()); // votes
    for (const BodyPoint &direction : DIRECTIONS) {
        const Rays rays(mesh, direction);
        const std::vector<int> best = best_panels(mesh, pieces, direction);
        for (std::size_t k = 0; k < best.size(); ++k) {
            const std::size_t p = static_cast<std::size_t>(best[k]);
            // The normal of the program points into the body: against the side that the vertices are
            // anti-clockwise from.
            const bool into_water = dot(shape_of(panel_of(mesh, p)).normal, direction) < 0;
            const std::vector<std::size_t> crossed = rays.crossed(p);
            wrong[k] += (crossed.size() % 2 == 0) == into_water ? -1 : 1;
            const auto others = std::count_if(crossed.begin(), crossed.end(), [&](std::size_t q) {
                return pieces.piece[q] != static_cast<int>(k);
            });
            inside[k] += others % 2 == 1 ? 1 : -1;
        }
    }
    for (std::size_t p = 0; p < mesh.of_panel.size(); ++p)
        if (wrong[static_cast<std::size_t>(pieces.piece[p])] > 0)
            reverse(mesh.of_panel[p]);
    for (std::size_t k = 0; k < members.size(); ++k) {
        counts.parts_turned += wrong[k] > 0 ? 1 : 0;
        counts.inner += inside[k] > 0 ? 1 : 0;
    }
    return counts;
}

std::vector<int> crowded_panels(const MergedVertices &mesh) {
    std::vector<int> panels;
    for (const std::vector<PanelSide> &sides :
         edges_of(mesh, std::vector<bool>(mesh.of_panel.size(), true)).crowded)
        for (const PanelSide &side : sides)
            panels.push_back(side.panel);
    std::sort(panels.begin(), panels.end());
    panels.erase(std::unique(panels.begin(), panels.end()), panels.end());
    return panels;
}
