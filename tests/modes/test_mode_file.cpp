// Truth: what is wrong with each file, and the line that it stands in; the table of keys.
#include "mode_folder.hpp"

#include <sstream>

namespace {

struct Fault {
    std::string text;
    std::vector<const char *> told; // each is in the message
};
std::vector<Fault> faults() {
    const std::string mode = "[[mode]]\n", heave = "[[mode]]\ntype = 'polynomial'\ndz = [[1, 0, 0, 0]]\n";
    return {
        {"gravty = 9\n" + heave, {"line 1", "unknown key gravty", "nearest one is gravity"}},
        {"title = 'none'\n", {"there is no mode", "[[mode]]"}},
        {mode + "from = 1\n", {"line 1", "type in [[mode]] must be given"}},
        {mode + "type = 'free'\n", {"line 2", "free-free, cantilever, polynomial, hinge, points"}},
        {mode + "type = 'free-free'\nfrom = 1\n", {"line 1", "to in [[mode]] must be given"}},
        {mode + "type = 'free-free'\nfrom = 1\nto = -1\n", {"line 1", "to has to lie before from"}},
        {mode + "type = 'cantilever'\nfrom = 0\nto = 1\nnumber = 0\n", {"line 1", "from 1 to 100"}},
        {mode + "type = 'hinge'\nat = [0, 0, 0]\nto = 3\n",
         {"line 4", "does not go with the type hinge", "axis"}},
        {mode + "type = 'hinge'\nat = [0, 0, 0]\naft = 1\n", {"line 1", "rigid mode"}},
        {mode + "type = 'polynomial'\n", {"line 1", "needs dx, dy or dz"}},
        {mode + "type = 'polynomial'\ndx = [[1, 0.5, 0, 0]]\n", {"line 3", "dx in [[mode]] has to be terms"}},
        {mode + "type = 'points'\nfile = 'none.csv'\n", {"line 1", "none.csv cannot be opened"}},
        {mode + "type = 'points'\nfile = 'short.csv'\n", {"short.csv, line 3", "three displacements"}},
        {mode + "type = 'points'\nfile = 'few.csv'\n", {"few.csv has 2 points", "four"}},
        {"place = [1, 0, 0]\n" + heave, {"panel", "place and heading", "XBODY"}},
        {mode + "type = 'polynomial'\ndx = [[1e33, 20, 0, 0]]\n", {"line 1", "too large"}},
        {mode + "type = 'polynomial'\ndx = [[0, 1, 0, 0]]\n", {"line 1", "moves no panel"}},
        {heave + "[[part]]\nmass = 3\n", {"line 4", "from in [[part]] must be given"}},
        {heave + "[[beam]]\nfrom = 3\nto = 2\n", {"line 6", "behind from"}},
    };
}

} // namespace

TEST(FaultyModes, AreToldWithLineAndRemedy) {
    const ModeFolder folder;
    folder.write("short.csv", "x,y,z,ux,uy,uz\n0,0,0,1,1,1\n0,0,1,2\n");
    folder.write("few.csv", "0,0,0,1,1,1\n0,0,1,2,2,2\n");
    for (const Fault &fault : faults()) {
        std::string error;
        EXPECT_FALSE(folder.make(fault.text, error)) << fault.text;
        for (const char *part : fault.told)
            EXPECT_NE(error.find(part), std::string::npos) << part << " is not in " << error << "\n"
                                                           << fault.text;
        EXPECT_FALSE(folder.exists("box.mod"));
    }
    std::string error;
    const std::string heave = "[[mode]]\ntype = 'polynomial'\ndz = [[1, 0, 0, 0]]\n";
    EXPECT_FALSE(folder.make(heave, error, true));
    EXPECT_NE(error.find("needs the mass of the body as tables [[part]]"), std::string::npos) << error;
    folder.write("box.pre", box_pre().substr(0, 3000));
    EXPECT_FALSE(folder.make(heave, error));
    EXPECT_NE(error.find("is not whole, panel"), std::string::npos) << error;
    EXPECT_FALSE(folder.exists("box.mod"));
}

TEST(ModeKeys, StandInTheDocument) {
    std::ifstream in(VORDA_SOURCE_DIR "/docs/modes.md");
    const std::string text{std::istreambuf_iterator<char>(in), {}};
    EXPECT_NE(text.find(KEY_HEAD + key_rows(mode_keys())), std::string::npos)
        << "docs/modes.md needs these rows:\n"
        << KEY_HEAD << key_rows(mode_keys());
    EXPECT_NE(text.find(mode_type_rows()), std::string::npos) << mode_type_rows();
}
