// Truth: the result of the run that nothing stopped.
#include "drift_fields.hpp"
#include "equal_results.hpp"

namespace {

constexpr const char *MESH = "hemisphere --nu 8 --nv 8";
constexpr int PERIODS = 12;

Pot twelve_waves() {
    Pot pot;
    pot.NPER = PERIODS;
    pot.PER = "0.3 0.4 0.5 0.6 0.7 0.8 0.9 1.0 1.1 1.2 1.3 1.4";
    pot.NBETA = 2;
    pot.BETA = "0 30";
    return pot;
}

// Runs what is in the folder with CHECKP=1. Returns the checkpoint as it stood behind the first `taken`
// periods of `all`, each of `records` records.
std::string checkpoint_behind(int taken, int all, int records, const CaseFolder &folder) {
    folder.write("kept.vck", ""); // a second name of the file, which outlives the run
    EXPECT_EQ(folder.shell("ln kept.vck run.vck && vorda"), 0);
    const std::string bytes = folder.read("kept.vck");
    const std::vector<std::string> found = framed_records(bytes);
    EXPECT_EQ(static_cast<int>(found.size()), 1 + all * records);
    std::size_t length = 0;
    for (int r = 0; r < 1 + taken * records && r < static_cast<int>(found.size()); ++r)
        length += found[static_cast<std::size_t>(r)].size() + 8;
    return bytes.substr(0, length);
}

int taken_over(const CaseFolder &folder) {
    const std::string list = folder.list(), text = "taken over from the checkpoint: ";
    const std::size_t at = list.find(text);
    return at == std::string::npos ? -1 : std::atoi(list.c_str() + at + text.size());
}

// A folder with that run, and the result of a run without a checkpoint.
class Restart : public testing::Test {
  protected:
    void SetUp() override {
        prepare(folder_, twelve_waves());
        make_mesh(folder_, MESH);
        folder_.solve();
        whole_ = folder_.read("run.p2f");
        ASSERT_FALSE(whole_.empty()) << folder_.list();
        prepare(folder_, twelve_waves(), "CHECKP=1\n");
    }
    // Head, radiation, diffraction of each.
    std::string checkpoint_of(int periods) { return checkpoint_behind(periods, PERIODS, 3, folder_); }
    // The run goes on, ends with the same bytes and takes the checkpoint away.
    void expect_the_whole_result() {
        folder_.solve();
        EXPECT_TRUE(equal_results(whole_, folder_.read("run.p2f"))) << folder_.list();
        EXPECT_FALSE(folder_.exists("run.vck"));
    }
    int taken() const { return taken_over(folder_); }
    CaseFolder folder_;
    std::string whole_;
};

TEST_F(Restart, TakesOverWhatIsFinished) {
    expect_the_whole_result();
    EXPECT_EQ(taken(), -1);
    const std::string checkpoint = checkpoint_of(5);
    folder_.write("run.vck", checkpoint);
    expect_the_whole_result();
    EXPECT_EQ(taken(), 5);
    // Its last record lost bytes, or holds others.
    folder_.write("run.vck", checkpoint.substr(0, checkpoint.size() - 100));
    expect_the_whole_result();
    EXPECT_EQ(taken(), 4);
    std::string changed = checkpoint;
    changed[changed.size() - 100] ^= 1;
    folder_.write("run.vck", changed);
    expect_the_whole_result();
    EXPECT_EQ(taken(), 4);
}

TEST_F(Restart, StartsAnewWithOtherInputAndSaysWhy) {
    const std::string checkpoint = checkpoint_of(2);
    const struct {
        const char *file, *what, *by, *told;
    } rows[] = {{"run.pot", "0.3 0.4", "0.31 0.4", "the periods or headings changed"},
                {"run.pot", "test run", "another run", "the names or titles of the files changed"},
                {"config.vrd", "ISOLVE=1", "ISOLVE=0", "the settings changed"},
                {"run.gdf", "", "", "the panels or bodies changed"},
                {"run.vck", "", "", "run.vck is no checkpoint of this program"}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.told);
        prepare(folder_, twelve_waves(), "CHECKP=1\n");
        make_mesh(folder_, MESH);
        folder_.write("run.vck", checkpoint);
        std::string text = folder_.read(row.file);
        if (row.file == std::string("run.gdf"))
            make_mesh(folder_, "hemisphere --nu 8 --nv 8 --radius 1.1");
        else if (row.file == std::string("run.vck"))
            folder_.write(row.file, "anything");
        else
            folder_.write(row.file, text.replace(text.find(row.what), std::strlen(row.what), row.by));
        folder_.solve();
        EXPECT_TRUE(folder_.lists(row.told));
        EXPECT_TRUE(folder_.exists("run.p2f"));
        EXPECT_EQ(taken(), -1);
    }
    prepare(folder_, twelve_waves(), "NTRD=1\nCHECKP=1\n");
    make_mesh(folder_, MESH);
    folder_.write("run.vck", checkpoint);
    folder_.solve();
    EXPECT_EQ(taken(), 2) << "the number of threads does not matter";
}

TEST(Checkpoint, HoldsAllThatAPeriodOfADriftRunLeaves) {
    CaseFolder folder;
    Pot pot = drift::drift_pot();
    pot.NPER = 2;
    pot.PER = "0.9 1.4";
    drift::prepare_drift(folder, pot, drift::BOX + "quarter");
    folder.solve(); // makes the panels of the free surface
    folder.solve();
    const std::string whole = folder.read("run.p2f");
    folder.write("config.vrd", folder.read("config.vrd") + "CHECKP=1\n");
    const std::string checkpoint = checkpoint_behind(1, 2, 27, folder);
    folder.write("run.vck", checkpoint);
    folder.solve();
    EXPECT_EQ(taken_over(folder), 1);
    EXPECT_TRUE(equal_results(whole, folder.read("run.p2f")));
}

TEST(Checkpoint, AFullDiskUnderItDoesNotEndTheRun) {
    SmallDisk folder("32k");
    if (!folder.mounted)
        GTEST_SKIP() << "a small file system cannot be mounted here";
    prepare(folder, twelve_waves(), "CHECKP=1\n");
    make_mesh(folder, MESH);
    folder.shell("ln -s small/run.vck run.vck; vorda");
    EXPECT_TRUE(folder.lists("WARNING: the checkpoint cannot be written, the run goes on without"));
    EXPECT_TRUE(folder.lists("No space left on device"));
    EXPECT_TRUE(folder.lists("run completed"));
    EXPECT_TRUE(folder.exists("run.p2f"));
    EXPECT_FALSE(folder.exists("run.vck"));
}

} // namespace
