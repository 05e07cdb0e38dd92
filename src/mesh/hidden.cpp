#include "mesh/hidden.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <queue>

namespace {

constexpr double SAME = 1e-9; // difference of two nearnesses that is none, over their range

struct Fragment {
    int cell, panel;
    double nearness;
};

double middle(const SeenPanel &p) {
    return (p.nearness[0] + p.nearness[1] + p.nearness[2] + p.nearness[3]) / 4;
}

// Adds a fragment for each cell whose middle lies in the triangle of the corners a, b, c.
void add_triangle(const SeenPanel &p, int number, const std::array<std::size_t, 3> &corner, int width,
                  int height, std::vector<Fragment> &fragments) {
    const auto &[ax, ay] = p.at[corner[0]];
    const auto &[bx, by] = p.at[corner[1]];
    const auto &[cx, cy] = p.at[corner[2]];
    const double area = (bx - ax) * (cy - ay) - (by - ay) * (cx - ax);
    if (std::fabs(area) < 1e-12)
        return;
    const int first = std::max(0, static_cast<int>(std::ceil(std::min({ay, by, cy}) - 0.5))),
              last = std::min(height - 1, static_cast<int>(std::floor(std::max({ay, by, cy}) - 0.5)));
    for (int j = first; j <= last; ++j) {
        const double y = j + 0.5;
        double low = 1e300, high = -1e300;
        for (std::size_t side = 0; side < 3; ++side) {
            const auto &[x0, y0] = p.at[corner[side]];
            const auto &[x1, y1] = p.at[corner[(side + 1) % 3]];
            if ((y0 <= y) == (y1 <= y))
                continue;
            const double x = x0 + (x1 - x0) * (y - y0) / (y1 - y0);
            low = std::min(low, x);
            high = std::max(high, x);
        }
        if (low > high)
            continue;
        const int from = std::max(0, static_cast<int>(std::ceil(low - 0.5))),
                  to = std::min(width - 1, static_cast<int>(std::ceil(high - 0.5)) - 1);
        for (int i = from; i <= to; ++i) {
            const double x = i + 0.5;
            const double u = ((x - ax) * (cy - ay) - (y - ay) * (cx - ax)) / area,
                         v = ((bx - ax) * (y - ay) - (by - ay) * (x - ax)) / area;
            fragments.push_back({j * width + i, number,
                                 (1 - u - v) * p.nearness[corner[0]] + u * p.nearness[corner[1]] +
                                     v * p.nearness[corner[2]]});
        }
    }
}

std::vector<Fragment> fragments_of(const std::vector<SeenPanel> &panels, int width, int height) {
    std::vector<Fragment> fragments;
    for (std::size_t k = 0; k < panels.size(); ++k) {
        const SeenPanel &p = panels[k];
        const std::size_t before = fragments.size();
        add_triangle(p, static_cast<int>(k), {0, 1, 2}, width, height, fragments);
        add_triangle(p, static_cast<int>(k), {0, 2, 3}, width, height, fragments);
        if (fragments.size() > before)
            continue;
        // On edge or smaller than a cell: it is judged by its middle.
        double x = 0, y = 0;
        for (const auto &corner : p.at) {
            x += corner[0] / 4;
            y += corner[1] / 4;
        }
        const int i = std::clamp(static_cast<int>(x), 0, width - 1),
                  j = std::clamp(static_cast<int>(y), 0, height - 1);
        fragments.push_back({j * width + i, static_cast<int>(k), middle(p)});
    }
    return fragments;
}

// The fragments of each cell together, the farthest first.
std::vector<Fragment> by_cells(const std::vector<Fragment> &fragments, std::size_t cells) {
    std::vector<std::size_t> first(cells + 1);
    for (const Fragment &f : fragments)
        ++first[static_cast<std::size_t>(f.cell) + 1];
    for (std::size_t c = 0; c < cells; ++c)
        first[c + 1] += first[c];
    std::vector<Fragment> sorted(fragments.size());
    std::vector<std::size_t> next(first.begin(), first.end() - 1);
    for (const Fragment &f : fragments)
        sorted[next[static_cast<std::size_t>(f.cell)]++] = f;
    for (std::size_t c = 0; c < cells; ++c)
        std::sort(sorted.begin() + static_cast<std::ptrdiff_t>(first[c]),
                  sorted.begin() + static_cast<std::ptrdiff_t>(first[c + 1]),
                  [](const Fragment &f, const Fragment &g) { return f.nearness < g.nearness; });
    return sorted;
}

// What the cells say: pairs of a panel (upper 32 bits) and one that is painted after it, sorted; and which
// panels are on top somewhere.
struct Overlaps {
    std::vector<std::uint64_t> pairs;
    std::vector<bool> seen;
};
Overlaps overlaps_of(const std::vector<Fragment> &fragments, std::size_t panels, double same) {
    Overlaps o{{}, std::vector<bool>(panels)};
    for (std::size_t k = 0; k < fragments.size(); ++k) {
        const Fragment &f = fragments[k];
        if (k + 1 == fragments.size() || fragments[k + 1].cell != f.cell) {
            // Those in the same place as the top one are seen as well.
            for (std::size_t i = k + 1;
                 i-- > 0 && fragments[i].cell == f.cell && f.nearness - fragments[i].nearness <= same;)
                o.seen[static_cast<std::size_t>(fragments[i].panel)] = true;
        } else if (const Fragment &g = fragments[k + 1];
                   g.nearness - f.nearness > same && g.panel != f.panel) {
            const std::uint64_t pair =
                static_cast<std::uint64_t>(f.panel) << 32 | static_cast<std::uint64_t>(g.panel);
            if (o.pairs.empty() || o.pairs.back() != pair)
                o.pairs.push_back(pair);
        }
    }
    std::sort(o.pairs.begin(), o.pairs.end());
    o.pairs.erase(std::unique(o.pairs.begin(), o.pairs.end()), o.pairs.end());
    return o;
}
std::size_t after(std::uint64_t pair) {
    return static_cast<std::size_t>(pair & 0xffffffffu);
}

} // namespace

std::vector<int> painting_order(const std::vector<SeenPanel> &panels, int width, int height) {
    const std::size_t n = panels.size();
    double low = 1e300, high = -1e300;
    for (const SeenPanel &p : panels)
        for (const double v : p.nearness) {
            low = std::min(low, v);
            high = std::max(high, v);
        }
    const std::size_t cells = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    const Overlaps overlaps =
        overlaps_of(by_cells(fragments_of(panels, width, height), cells), n, SAME * (high - low));
    const auto &pairs = overlaps.pairs;
    std::vector<int> left(n), by_middle, order; // left: panels that must be painted before and are not
    std::vector<double> nearness;
    for (const SeenPanel &p : panels) {
        by_middle.push_back(static_cast<int>(nearness.size()));
        nearness.push_back(middle(p));
    }
    for (const std::uint64_t pair : pairs)
        ++left[after(pair)];
    const auto nearer = [&](int a, int b) {
        return nearness[static_cast<std::size_t>(a)] > nearness[static_cast<std::size_t>(b)];
    };
    std::sort(by_middle.begin(), by_middle.end(), [&](int a, int b) { return nearer(b, a); });
    // The farthest of those that have nothing left behind them; when a circle stops that, the farthest of
    // all.
    std::priority_queue<int, std::vector<int>, decltype(nearer)> ready(nearer);
    for (const int k : by_middle)
        if (left[static_cast<std::size_t>(k)] == 0)
            ready.push(k);
    std::vector<bool> painted(n);
    for (std::size_t next = 0; next < n;) {
        if (ready.empty())
            ready.push(by_middle[next++]);
        const int k = ready.top();
        ready.pop();
        if (painted[static_cast<std::size_t>(k)])
            continue;
        painted[static_cast<std::size_t>(k)] = true;
        if (overlaps.seen[static_cast<std::size_t>(k)])
            order.push_back(k);
        const std::uint64_t first = static_cast<std::uint64_t>(k) << 32;
        for (auto pair = std::lower_bound(pairs.begin(), pairs.end(), first);
             pair != pairs.end() && *pair >> 32 == first >> 32; ++pair)
            if (--left[after(*pair)] == 0)
                ready.push(static_cast<int>(after(*pair)));
    }
    return order;
}
