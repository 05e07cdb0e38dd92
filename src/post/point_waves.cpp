#include "post/point_waves.hpp"

#include "post/coefficients.hpp"
#include "post/field.hpp"
#include "post/motions.hpp"

#include <algorithm>
#include <limits>

PointWaves form_point_waves(const P2fFile &p2f, const CaseFile &file, const Array<c64, 3> &xi) {
    PointWaves waves;
    if (file.points.empty())
        return waves;
    constexpr double NONE = std::numeric_limits<double>::quiet_NaN();
    const double L = static_cast<double>(p2f.ULEN(1));
    FieldRequest at;
    for (const CasePoint &point : file.points) {
        const Vec3 place = global_place(p2f, point.body, point.at);
        at.points.push_back({place[0] / L, place[1] / L, 0});
    }
    at.mark = mark_points(p2f, at.points);
    const int count = static_cast<int>(at.points.size());
    if (!waves.elevation.alloc(count, p2f.NBETA, p2f.NPER)) {
        waves.none = "not enough memory";
        return waves;
    }
    std::fill_n(waves.elevation.data(), waves.elevation.size(), c64(NONE, NONE));
    for (int t = 1; t <= p2f.NPER; ++t) {
        Field field;
        if (frequency_kind(p2f, t) != Frequency::wave)
            continue;
        if (!form_field(p2f, t, Motions(xi.slice(t)), at, field, waves.none))
            break;
        for (int b = 1; b <= p2f.NBETA; ++b)
            for (int i = 1; i <= count; ++i)
                if (at.mark[static_cast<std::size_t>(i - 1)] == PointMark::fluid)
                    waves.elevation(i, b, t) = field.total(i, b);
    }
    return waves;
}
