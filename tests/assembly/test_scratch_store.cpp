// Truth: devices and folders that refuse, and a folder without files at the end.
#include "assembly/scratch_rows.hpp"
#include "assembly/scratch_store.hpp"

#include "run_folder.hpp"

#include <gtest/gtest.h>

namespace {

// Records that no run can be made to lose at will; what they hold is seen in tests/cases, where every store
// must give the solution of the matrices in memory.
TEST(ScratchStore, VelocitiesOnAFullDiskAreTold) {
    const RunFolder folder;
    constexpr int N = 5;
    Array<c32, 3> VROW, VCOL;
    ASSERT_TRUE(VROW.alloc(N, 3, 2) && VCOL.alloc(N, 3, 2));
    RecordFile unit(62);
    ASSERT_TRUE(unit.create("/dev/full"));
    Status status = Status::ok;
    for (int k = 0; k < 1000 && !failed(status); ++k) // until the buffer goes out
        status = VWRITE(unit, VROW, VCOL, N, 2);
    EXPECT_EQ(status, Status::failed);
    EXPECT_TRUE(folder.told(" Error writing scratch file from WAVEGR and VWRITE, UNIT=62"));
    EXPECT_TRUE(folder.told(" Check disk space and maximum number of files opened"));
}

TEST(ScratchStore, MissingRankineRecordsAreTold) {
    const RunFolder folder;
    RecordFile unit(60);
    ASSERT_TRUE(unit.create("rankine") && unit.rewind());
    f32 buffer[9], part[3];
    const Split P{part, part}, V[3] = {P, P, P};
    EXPECT_EQ(RANVEL(unit, V, V, 3, 0, 2, buffer), Status::failed);
    EXPECT_EQ(RANLH(unit, P, P, 3, 0, 2, buffer), Status::failed);
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

TEST(ScratchStore, TheStopRoutineLeavesNoFile) {
    const RunFolder folder;
    const auto end = [] {
        UnitList units(64);
        OPENSC(units, 2, 3);
        (void)CLOSE1(units(3), true);
        if (access("SCRATCHB", F_OK) == 0) // kept until here
            STOPRN(0);
    };
    EXPECT_EXIT(end(), testing::ExitedWithCode(0), "");
    for (const char *name : {"SCRATCHA", "SCRATCHB", "SCRATCHC"})
        EXPECT_FALSE(folder.exists(name));
}

} // namespace
