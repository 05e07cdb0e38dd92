// Truth: the layouts of the records, built here byte by byte; devices and folders that refuse.
#include "assembly/scratch_rows.hpp"
#include "assembly/scratch_store.hpp"

#include "run_folder.hpp"

#include <csignal>
#include <cstring>
#include <gtest/gtest.h>

namespace {

// Framed records as they should stand in a file.
struct Expected {
    std::string bytes;
    template <class T> void record(const std::vector<T> &values) {
        const std::uint32_t length = static_cast<std::uint32_t>(values.size() * sizeof(T));
        const auto add = [this](const void *data, std::size_t size) {
            bytes.append(static_cast<const char *>(data), size);
        };
        add(&length, 4);
        add(values.data(), length);
        add(&length, 4);
    }
};

constexpr int N = 5;

// Element (I,J) of class s.
c32 element(int I, int J, int s) {
    return {static_cast<f32>(100 * s + 10 * I + J), static_cast<f32>(I - J) + 0.5f};
}

std::vector<c32> row_part(int I, int first, int last, int s) {
    std::vector<c32> values;
    for (int J = first; J <= last; ++J)
        values.push_back(element(I, J, s));
    return values;
}
std::vector<c32> column_part(int I, int first, int last, int s) {
    std::vector<c32> values;
    for (int J = first; J <= last; ++J)
        values.push_back(element(J, I, s));
    return values;
}
std::vector<c32> row_record(int I, int s, bool reciprocal) {
    std::vector<c32> values = row_part(I, 1, I, s);
    if (reciprocal)
        values.back() = c32(1.0 / std::complex<double>(values.back()));
    const std::vector<c32> column = column_part(I, 1, I - 1, s);
    values.insert(values.end(), column.begin(), column.end());
    return values;
}
std::string row_records(int first, int last, int s, bool reciprocal) {
    Expected file;
    for (int I = first; I <= last; ++I)
        file.record(row_record(I, s, reciprocal));
    return file.bytes;
}

RunState two_classes(int ISOLVE, int ISOLVN, int NCORE) {
    RunState run;
    run.mesh.NEQN = N;
    run.sym.NSYMR = 2;
    run.opt.ISOLVE = ISOLVE;
    run.opt.ISOLVN = ISOLVN;
    run.opt.NCORE = NCORE;
    run.opt.NBLKSZ = 2;
    run.opt.NBLKLS = 1;
    return run;
}

Status store_all(RowStore &store) {
    if (failed(open_rows(store)))
        return Status::failed;
    f32 parts[8][N];
    for (int I = 1; I <= N; ++I) {
        Split ROW[5], COL[5];
        for (int s = 1; s <= store.run.sym.NSYMR; ++s) {
            f32(*p)[N] = parts + 4 * ((s - 1) % 2);
            for (int J = 1; J <= I; ++J) {
                p[0][J - 1] = element(I, J, s).real();
                p[1][J - 1] = element(I, J, s).imag();
                p[2][J - 1] = element(J, I, s).real();
                p[3][J - 1] = element(J, I, s).imag();
            }
            ROW[s] = {p[0], p[1]};
            COL[s] = {p[2], p[3]};
        }
        if (failed(store_row(store, I, ROW, COL)))
            return Status::failed;
    }
    return close_rows(store);
}

TEST(ScratchStore, PackedRowsGoToMemoryAndTwoGroupsOfUnits) {
    const RunFolder folder;
    const RunState run = two_classes(0, 0, 2);
    ScratchStore scratch;
    std::vector<c32> AMAT(4);
    RowStore store{run, scratch.IUL, AMAT.data(), 1, {}};
    ASSERT_EQ(store_all(store), Status::ok);
    EXPECT_EQ(AMAT[0], row_record(1, 1, true)[0]);
    for (std::size_t k = 0; k < 3; ++k)
        EXPECT_EQ(AMAT[1 + k], row_record(2, 1, true)[k]);
    EXPECT_FALSE(folder.exists("SCRATCH@"));
    EXPECT_EQ(folder.read("SCRATCHA"), row_records(1, 2, 2, true));
    EXPECT_EQ(folder.read("SCRATCHB"), row_records(3, N, 1, true));
    EXPECT_EQ(folder.read("SCRATCHC"), row_records(3, N, 2, true));

    RowStore source{run, scratch.IUE, nullptr, 1, {}};
    ASSERT_EQ(store_all(source), Status::ok);
    EXPECT_EQ(folder.read("SCRATCHH"), row_records(1, 2, 1, true));
    EXPECT_EQ(folder.read("SCRATCHI"), row_records(1, 2, 2, true));
    EXPECT_EQ(folder.read("SCRATCHJ"), row_records(3, N, 1, true));
    EXPECT_EQ(folder.read("SCRATCHK"), row_records(3, N, 2, true));
}

TEST(ScratchStore, FullMatricesKeepTheirDiagonal) {
    for (const int ISOLVE : {0, 1}) {
        const RunFolder folder;
        const RunState run = two_classes(ISOLVE, 0, N);
        ScratchStore scratch;
        Array<c32, 2> AMAT, back;
        ASSERT_TRUE(AMAT.alloc(N, N) && back.alloc(N, N));
        RowStore store{run, scratch.IUL, AMAT.data(), 1, {}};
        ASSERT_EQ(store_all(store), Status::ok);
        EXPECT_EQ(folder.read("SCRATCHA"), row_records(1, N, 2, false));
        OPEN1(scratch.IUL(2));
        ASSERT_EQ(RDROWS(scratch.IUL(2), back, N), Status::ok);
        ASSERT_EQ(CLOSE1(scratch.IUL(2), false), Status::ok);
        EXPECT_FALSE(folder.exists("SCRATCHA"));
        for (int I = 1; I <= N; ++I) {
            for (int J = 1; J <= N; ++J) {
                EXPECT_EQ(AMAT(I, J), element(I, J, 1));
                EXPECT_EQ(back(I, J), element(I, J, 2));
            }
        }
    }
}

TEST(ScratchStore, BlocksAndWhatIsBesideThem) {
    const RunFolder folder;
    const RunState run = two_classes(3, 0, 2);
    ScratchStore scratch;
    std::vector<c32> AMAT(4);
    RowStore store{run, scratch.IUL, AMAT.data(), 1, {}};
    ASSERT_EQ(store_all(store), Status::ok);
    Expected rows, columns, blocks;
    for (int I = 3; I <= N; ++I) {
        const int L = I < 5 ? 2 : 4;
        rows.record(row_part(I, 1, L, 1));
        columns.record(column_part(I, 1, L, 1));
    }
    for (const int L : {0, 2})
        blocks.record<c32>({element(L + 1, L + 1, 1), element(L + 2, L + 1, 1), element(L + 1, L + 2, 1),
                            element(L + 2, L + 2, 1)});
    blocks.record<c32>({element(5, 5, 1)});
    EXPECT_EQ(folder.read("SCRATCHA"), row_records(1, N, 2, false));
    EXPECT_EQ(folder.read("SCRATCHB"), rows.bytes);
    EXPECT_EQ(folder.read("SCRATCHC"), columns.bytes);
    EXPECT_EQ(folder.read("SCRATCHD"), blocks.bytes);
}

TEST(ScratchStore, SavedFactorsGoRowByRow) {
    const RunFolder folder;
    UnitList units(64);
    constexpr int ORDER = 40; // more than are turned around together
    Array<c32, 2> A, back;
    ASSERT_TRUE(A.alloc(ORDER, ORDER) && back.alloc(ORDER, ORDER));
    std::vector<int> IPIV(ORDER), pivots(ORDER);
    Expected file;
    for (int i = 1; i <= ORDER; ++i) {
        std::vector<c32> row;
        for (int j = 1; j <= ORDER; ++j)
            row.push_back(A(i, j) = element(i, j, 3));
        file.record(row);
        IPIV[static_cast<std::size_t>(i - 1)] = ORDER - i;
    }
    file.record(IPIV);
    OPEN1(units(2));
    ASSERT_EQ(WRLU(units(2), A, IPIV.data(), ORDER), Status::ok);
    ASSERT_EQ(CLOSE1(units(2), true), Status::ok);
    EXPECT_EQ(folder.read("SCRATCHA"), file.bytes);
    OPEN1(units(2));
    ASSERT_EQ(RDLU(units(2), back, pivots.data(), ORDER), Status::ok);
    ASSERT_EQ(CLOSE1(units(2), false), Status::ok);
    EXPECT_EQ(pivots, IPIV);
    EXPECT_EQ(std::memcmp(back.data(), A.data(), sizeof(c32) * ORDER * ORDER), 0);
}

TEST(ScratchStore, VelocityRecords) {
    const RunFolder folder;
    Array<c32, 3> VROW, VCOL;
    ASSERT_TRUE(VROW.alloc(N, 3, 2) && VCOL.alloc(N, 3, 2));
    for (int s = 1; s <= 2; ++s)
        for (int k = 1; k <= 3; ++k)
            for (int j = 1; j <= N; ++j) {
                VROW(j, k, s) = element(j, k, s);
                VCOL(j, k, s) = element(k, j, s);
            }
    RecordFile unit(62);
    ASSERT_TRUE(unit.create("velocity"));
    Expected file;
    for (const int I : {1, 3}) {
        ASSERT_EQ(VWRITE(unit, VROW, VCOL, I, 2), Status::ok);
        for (int s = 1; s <= 2; ++s) {
            std::vector<c32> row, column;
            for (int k = 1; k <= 3; ++k)
                for (int j = 1; j <= I; ++j) {
                    row.push_back(element(j, k, s));
                    if (j < I)
                        column.push_back(element(k, j, s));
                }
            file.record(row);
            file.record(column);
        }
    }
    ASSERT_TRUE(unit.close());
    EXPECT_EQ(folder.read("velocity"), file.bytes);
    ASSERT_TRUE(unit.create("/dev/full"));
    Status status = Status::ok;
    for (int k = 0; k < 1000 && !failed(status); ++k) // until the buffer goes out
        status = VWRITE(unit, VROW, VCOL, N, 2);
    EXPECT_EQ(status, Status::failed);
    EXPECT_TRUE(folder.told(" Error writing scratch file from WAVEGR and VWRITE, UNIT=62"));
    EXPECT_TRUE(folder.told(" Check disk space and maximum number of files opened"));
}

TEST(ScratchStore, RankineRecordsOfTwoPlanes) {
    const RunFolder folder;
    Expected file;
    file.record<f32>({});     // I = 1: no column
    file.record<f32>({5});    // its row
    file.record<f32>({1, 2}); // I = 3, plane 0
    file.record<f32>({3, 4, 5});
    file.record<f32>({10, 20}); // plane 1
    file.record<f32>({30, 40, 50});
    file.record<f32>({1, 2, 3, 4, 5, 6}); // velocity, I = 3, plane 0: two values of each component
    file.record<f32>({1, 2, 3, 4, 5, 6, 7, 8, 9});
    folder.write("rankine", file.bytes);
    RecordFile unit(60);
    ASSERT_TRUE(unit.open("rankine"));
    f32 buffer[9], part[12][3];
    for (auto &values : part)
        std::fill_n(values, 3, -7.0f);
    const Split COL{part[0], part[1]}, ROW{part[2], part[3]};
    ASSERT_EQ(RANLH(unit, COL, ROW, 1, 0, 2, buffer), Status::ok);
    EXPECT_EQ(ROW.re[0], 5);
    EXPECT_EQ(ROW.im[0], 0);
    EXPECT_EQ(COL.re[0], -7) << "there is no column yet";
    ASSERT_EQ(RANLH(unit, COL, ROW, 3, 0, 2, buffer), Status::ok);
    ASSERT_EQ(RANLH(unit, COL, ROW, 3, 1, 2, buffer), Status::ok);
    EXPECT_EQ(COL.re[1], 2 + 2 * 20);
    EXPECT_EQ(ROW.re[2], 5 + 2 * 50);
    EXPECT_EQ(ROW.im[2], 0);
    const Split VCOL[3] = {{part[0], part[1]}, {part[2], part[3]}, {part[4], part[5]}};
    const Split VROW[3] = {{part[6], part[7]}, {part[8], part[9]}, {part[10], part[11]}};
    ASSERT_EQ(RANVEL(unit, VCOL, VROW, 3, 0, 2, buffer), Status::ok);
    EXPECT_EQ(VCOL[1].re[0], 3);
    EXPECT_EQ(VROW[2].re[1], 8);
    EXPECT_EQ(VROW[2].im[1], 0);
    EXPECT_EQ(RANVEL(unit, VCOL, VROW, 3, 0, 2, buffer), Status::failed);
    EXPECT_EQ(RANLH(unit, COL, ROW, 3, 0, 2, buffer), Status::failed);
    EXPECT_TRUE(folder.told(" Error reading scratch file for Rankine velocity, UNIT=60"));
    EXPECT_TRUE(folder.told(" Error reading scratch file for Rankine LHS, UNIT=60"));
}

// A disk that is full when the records reach it: at the write, once a buffer is full, or at the close.
TEST(ScratchStore, AFullDiskIsTold) {
    const std::vector<c32> values(100000);
    const auto full = [](UnitList &units, int k) {
        const std::string name = std::string("SCRATCH") + static_cast<char>(units(k).unit());
        std::filesystem::create_symlink("/dev/full", name);
        OPEN1(units(k));
    };
    const RunFolder folder;
    UnitList units(64);
    for (int k = 1; k <= 5; ++k)
        full(units, k);
    EXPECT_EQ(WRROW(units(1), values.data(), values.data(), 100000), Status::failed);
    EXPECT_TRUE(folder.told("Unable to write in scratch LHS file, UNIT=64"));
    EXPECT_EQ(WROFFD(units(2), units(3), values.data(), values.data(), 100000), Status::failed);
    EXPECT_TRUE(folder.told("Error writing scratch LHS file, UNIT=65"));
    EXPECT_EQ(WRBLK(units(3), values.data(), 300), Status::failed);
    EXPECT_TRUE(folder.told("Error writing scratch LHS file, UNIT=66"));
    Array<c32, 2> A;
    ASSERT_TRUE(A.alloc(300, 300));
    EXPECT_EQ(WRLU(units(4), A, nullptr, 300), Status::failed);
    EXPECT_TRUE(folder.told("Unable to write scratch LHS file, UNIT=67"));
    ASSERT_EQ(WRROW(units(5), values.data(), values.data(), 3), Status::ok);
    EXPECT_EQ(CLOSE1(units(5), true), Status::failed);
    EXPECT_TRUE(folder.told("Error writing scratch LHS file, UNIT=68"));
    EXPECT_TRUE(folder.list_has("No space left on device"));
    EXPECT_EQ(CLOSSC(units, 1, 5, false), Status::ok);
}

TEST(ScratchStore, AUnitThatCannotBeOpenedFailsAtItsFirstUse) {
    const RunFolder folder;
    UnitList units(72);
    std::filesystem::create_directory("SCRATCHI");
    OPENSC(units, 2, 1);
    EXPECT_TRUE(folder.told(" Unable to open scratch file, UNIT =73"));
    const c32 value = 1;
    EXPECT_EQ(WRROW(units(2), &value, nullptr, 1), Status::failed);
    EXPECT_TRUE(folder.told("Unable to write in scratch LHS file, UNIT=73"));
}

void open_units() {
    UnitList units(64);
    OPENSC(units, 2, 3);
    (void)CLOSE1(units(3), true);
}
class Ends : public testing::TestWithParam<int> {};
TEST_P(Ends, ASignalLeavesNoFile) {
    const RunFolder folder;
    const auto end = [] {
        open_units();
        raise(GetParam());
    };
    EXPECT_EXIT(end(), testing::KilledBySignal(GetParam()), "");
    for (const char *name : {"SCRATCHA", "SCRATCHB", "SCRATCHC"})
        EXPECT_FALSE(folder.exists(name));
}
INSTANTIATE_TEST_SUITE_P(ScratchStore, Ends, testing::Values(SIGINT, SIGTERM, SIGHUP));

TEST(ScratchStore, TheStopRoutineLeavesNoFile) {
    const RunFolder folder;
    const auto end = [] {
        open_units();
        if (access("SCRATCHB", F_OK) == 0) // kept until here
            STOPRN(0);
    };
    EXPECT_EXIT(end(), testing::ExitedWithCode(0), "");
    for (const char *name : {"SCRATCHA", "SCRATCHB", "SCRATCHC"})
        EXPECT_FALSE(folder.exists(name));
}

} // namespace
