#include "assembly/scratch_store.hpp"

#include "base/platform.hpp"
#include "state/messages.hpp"

#include <algorithm>

namespace {

constexpr int HEIGHT = 16; // rows that are turned into columns together

std::string file_name(const RecordFile &unit) {
    return std::string("SCRATCH") + static_cast<char>(unit.unit());
}

Status fault(const char *text, const RecordFile &unit) {
    return MSGOUT_with(text, unit.unit(), unit.error());
}

template <class T> RecordFile::Target target(T *data, std::int64_t n) {
    return {data, static_cast<std::size_t>(n) * sizeof(T)};
}

// One part of a coefficient pair, n values in each of `components`.
bool read_part(RecordFile &unit, const Split *part, int components, int n, int plane, f32 NUL, f32 *buffer) {
    if (!unit.read({target(buffer, std::int64_t{n} * components)}))
        return false;
    for (int k = 0; k < components; ++k) {
        const f32 *from = buffer + std::int64_t{k} * n;
        if (plane == 0) {
            std::copy_n(from, n, part[k].re);
            std::fill_n(part[k].im, n, 0.0f);
        } else {
            for (int j = 0; j < n; ++j)
                part[k].re[j] += NUL * from[j];
        }
    }
    return true;
}

} // namespace

void OPEN1(RecordFile &unit) {
    const std::string name = file_name(unit);
    if (!remove_at_end(name) || !unit.open_or_create(name))
        (void)fault(" Unable to open scratch file, UNIT =", unit);
}

Status CLOSE1(RecordFile &unit, bool KEEP) {
    const std::string name = file_name(unit);
    const bool good = unit.close();
    if (KEEP)
        return good ? Status::ok : fault("Error writing scratch LHS file, UNIT=", unit);
    std::remove(name.c_str());
    forget_at_end(name);
    return Status::ok;
}

void OPENSC(UnitList &units, int first, int count) {
    for (int k = first; k < first + count; ++k)
        OPEN1(units(k));
}

Status CLOSSC(UnitList &units, int first, int count, bool KEEP) {
    Status status = Status::ok;
    for (int k = first; k < first + count; ++k) {
        if (failed(CLOSE1(units(k), KEEP)))
            status = Status::failed;
    }
    return status;
}

Status RANLH(RecordFile &unit, Split COL, Split ROW, int I, int plane, f32 NUL, f32 *buffer) {
    const bool good = read_part(unit, &COL, 1, I - 1, plane, NUL, buffer) &&
                      read_part(unit, &ROW, 1, I, plane, NUL, buffer);
    return good ? Status::ok : fault(" Error reading scratch file for Rankine LHS, UNIT=", unit);
}

Status RANVEL(RecordFile &unit, const Split (&COL)[3], const Split (&ROW)[3], int I, int plane, f32 NUL,
              f32 *buffer) {
    const bool good =
        read_part(unit, COL, 3, I - 1, plane, NUL, buffer) && read_part(unit, ROW, 3, I, plane, NUL, buffer);
    return good ? Status::ok : fault(" Error reading scratch file for Rankine velocity, UNIT=", unit);
}

Status WRROW(RecordFile &unit, const c32 *ROW, const c32 *COL, int I) {
    return unit.write({bytes_of(ROW, I), bytes_of(COL, I - 1)})
               ? Status::ok
               : fault("Unable to write in scratch LHS file, UNIT=", unit);
}

Status WROFFD(RecordFile &rows, RecordFile &columns, const c32 *ROW, const c32 *COL, int L) {
    if (!rows.write({bytes_of(ROW, L)}))
        return fault("Error writing scratch LHS file, UNIT=", rows);
    return columns.write({bytes_of(COL, L)}) ? Status::ok
                                             : fault("Error writing scratch LHS file, UNIT=", columns);
}

Status WRBLK(RecordFile &unit, const c32 *A, int B) {
    return unit.write({bytes_of(A, std::int64_t{B} * B)})
               ? Status::ok
               : fault("Error writing scratch LHS file, UNIT=", unit);
}

void PUTBRD(c32 *A, const c32 *ROW, const c32 *COL, int n, int LD) {
    const std::int64_t lead = LD;
    for (int j = 0; j < n; ++j)
        A[n - 1 + lead * j] = ROW[j];
    std::copy_n(COL, n - 1, A + lead * (n - 1));
}

Status RDROWS(RecordFile &unit, View<c32, 2> A, int N) {
    Array<c32, 2> rows;
    if (!rows.alloc(2 * std::int64_t{N}, HEIGHT))
        return MSGOUT(" RAM too small. Allocation error in SOLVE ");
    for (int first = 1; first <= N; first += HEIGHT) {
        const int height = std::min(HEIGHT, N - first + 1);
        for (int a = 1; a <= height; ++a) {
            const int I = first + a - 1;
            if (!unit.read({target(&rows(1, a), I), target(&A(1, I), I - 1)}))
                return fault(" Error reading scratch file for LHS from SOLVE, UNIT=", unit);
        }
        // The rows reach to their own diagonals; what is behind them belongs to columns that are read later.
        for (int j = 1; j < first + height; ++j) {
            for (int a = std::max(1, j - first + 1); a <= height; ++a)
                A(first + a - 1, j) = rows(j, a);
        }
    }
    return Status::ok;
}

Status WRLU(RecordFile &unit, View<const c32, 2> A, const int *IPIV, int N) {
    Array<c32, 2> rows;
    if (!rows.alloc(N, HEIGHT))
        return MSGOUT(" RAM too small. Allocation error in SOLVE ");
    bool good = unit.rewind();
    for (int first = 1; good && first <= N; first += HEIGHT) {
        const int height = std::min(HEIGHT, N - first + 1);
        for (int j = 1; j <= N; ++j) {
            for (int a = 1; a <= height; ++a)
                rows(j, a) = A(first + a - 1, j);
        }
        for (int a = 1; good && a <= height; ++a)
            good = unit.write({bytes_of(&rows(1, a), N)});
    }
    good = good && (IPIV == nullptr || unit.write({bytes_of(IPIV, N)}));
    return good ? Status::ok : fault("Unable to write scratch LHS file, UNIT=", unit);
}

Status RDLU(RecordFile &unit, View<c32, 2> A, int *IPIV, int N) {
    Array<c32, 2> rows;
    if (!rows.alloc(N, HEIGHT))
        return MSGOUT(" RAM too small. Allocation error in SOLVE ");
    bool good = unit.rewind();
    for (int first = 1; good && first <= N; first += HEIGHT) {
        const int height = std::min(HEIGHT, N - first + 1);
        for (int a = 1; good && a <= height; ++a)
            good = unit.read({target(&rows(1, a), N)});
        for (int j = 1; good && j <= N; ++j) {
            for (int a = 1; a <= height; ++a)
                A(first + a - 1, j) = rows(j, a);
        }
    }
    good = good && (IPIV == nullptr || unit.read({target(IPIV, N)}));
    return good ? Status::ok : fault("Unable to read scratch LHS file, UNIT=", unit);
}

Status VWRITE(RecordFile &unit, View<const c32, 3> VROW, View<const c32, 3> VCOL, int I, int NSYMR) {
    bool good = true;
    for (int s = 1; good && s <= NSYMR; ++s) {
        good = unit.write(
                   {bytes_of(&VROW(1, 1, s), I), bytes_of(&VROW(1, 2, s), I), bytes_of(&VROW(1, 3, s), I)}) &&
               unit.write({bytes_of(&VCOL(1, 1, s), I - 1), bytes_of(&VCOL(1, 2, s), I - 1),
                           bytes_of(&VCOL(1, 3, s), I - 1)});
    }
    if (good)
        return Status::ok;
    (void)fault(" Error writing scratch file from WAVEGR and VWRITE, UNIT=", unit);
    return MSGOUT(" Check disk space and maximum number of files opened");
}

Status rewind_unit(RecordFile &unit) {
    return unit.rewind() ? Status::ok : fault("Error writing scratch LHS file, UNIT=", unit);
}
