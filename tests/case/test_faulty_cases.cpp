// Truth: what is wrong with each file, and the line that it stands in.
#include "program.hpp"

namespace {

constexpr const char *WAVES = "[waves]\nperiods = [3, 4]\n";                               // lines 1 and 2
constexpr const char *BOX = "[[body]]\nmaker = 'box'\nsizes = {nu = 4, nv = 2, nw = 2}\n"; // 2 x 2 x 1 m

struct Fault {
    std::string text;
    std::vector<const char *> told; // each is in the message
};

std::vector<Fault> faults() {
    const std::string waves = WAVES, box = BOX, body = "[[body]]\n";
    return {
        {"depth = '30 m'\n" + waves + box, {"line 1", "depth has to be a number"}},
        {"deph = 30\n" + waves + box, {"line 1", "unknown key deph", "the nearest one is depth"}},
        {waves + body + "mesh = 'hull.stl'\n", {"line 4", "there is no mesh", "hull.stl", "folder"}},
        {"[waves]\nperiods = [3,\n 0]\n" + box, {"line 3", "has 0", "limits = true"}},
        {"[waves]\nperiods = [3, 3.0]\n" + box, {"line 2", "has 3 twice", "leave one out"}},
        {waves + "headings = [0, 90, 360]\n" + box, {"line 3", "has 360 twice", "leave one out"}},
        {waves + "frequencies = [1]\n" + box, {"line 3", "beside periods", "one of them"}},
        {"[waves]\nheadings = [0]\n" + box, {"line 1", "needs periods, frequencies or wave_numbers"}},
        {"[waves]\nperiods = {from = 3, to = 9}\n" + box, {"line 2", "{from = 4, to = 20, count = 17}"}},
        {box, {"[waves] is missing"}},
        {waves, {"there is no body", "[[body]]"}},
        {waves + "[body]\nmaker = 'box'\n", {"line 3", "[[body]]"}},
        {waves + body + "maker = 'boks'\n", {"line 4", "boks"}},
        {waves + box + "place = [0, 0, 0.5]\n", {"line 6", "0.5 m above the free surface", "place lower"}},
        {"depth = 0.8\n" + waves + box, {"line 4", "reaches 1 m down", "below the bottom in 0.8 m"}},
        {waves + box + box + "place = [0.6, 0, 0]\n",
         {"line 9", "body 2 (box) lies in body 1 (box)", "move it"}},
        {waves + box + box, {"line 6", "body 2 (box) lies in body 1 (box)"}},
        {waves + body + "mesh = 'turned.gdf'\n", {"line 4", "make numbers wrong", "panel 3", "--force"}},
        {waves + body + "mesh = 'other.gdf'\n", {"line 4", "gravity of 1", "set gravity"}},
        {waves + body + "mesh = 'broken.gdf'\n", {"line 4", "broken.gdf, line 10", "vorda-mesh check"}},
        {waves + box + "mass = -1\n", {"line 6", "mass in [[body]] has to be a number above 0"}},
        {waves + box + "fixed = ['rol']\n", {"line 6", "rol is no mode"}},
        {waves + box + "number = 2\n", {"line 6", "it is body 1 of the run", "leave it out"}},
        {waves + box + "[treatment]\nsolver = 'fast'\n", {"line 7", "auto, direct, iterative"}},
        {waves + box + "[treatment]\nirregular = 'given'\n",
         {"line 4", "no panels in the free surface", "--lid"}},
        {waves + box + "[outputs]\npoints = [[0, 0, 1]]\n", {"line 7", "z is 0 or less"}},
        {waves + box + "[outputs]\nimpulse = true\n", {"line 7", "need four frequencies"}},
        {waves + box + "wall = 'x'\nplace = [1.5, 0, 0]\n",
         {"line 3", "beside the wall", "set part to full"}},
        {"depth = \n" + waves + box, {"line 1"}},
    };
}

} // namespace

TEST(FaultyCase, IsToldWithLineAndRemedy) {
    const TemporaryFolder folder;
    ASSERT_EQ(command(folder, "vorda-mesh box --nu 4 --nv 2 --nw 2 -o turned.gdf && "
                              "vorda-mesh box --gravity 1 -o other.gdf")
                  .code,
              0);
    std::string text = folder.read("turned.gdf");
    folder.write("broken.gdf", text.substr(0, text.find('\n', 90)) + "\n 1 2 x\n");
    // Panel 3 with its corners the other way round: lines 13 to 16.
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    std::swap(lines[13], lines[15]);
    text.clear();
    for (const std::string &line : lines)
        text += line + "\n";
    folder.write("turned.gdf", text);
    for (const Fault &fault : faults()) {
        folder.write("case.toml", fault.text);
        const Answer answer = command(folder, "vorda-run case.toml --dry");
        EXPECT_EQ(answer.code, 1) << fault.text;
        EXPECT_NE(answer.text.find("case.toml"), std::string::npos) << fault.text << "gives\n" << answer.text;
        for (const char *part : fault.told)
            EXPECT_NE(answer.text.find(part), std::string::npos) << part << " is not in what\n"
                                                                 << fault.text << "gives\n"
                                                                 << answer.text;
        EXPECT_FALSE(folder.exists("case.run/case.p2f"));
    }
    folder.write("case.toml", std::string(WAVES) + "[[body]]\nmesh = 'turned.gdf'\n");
    EXPECT_EQ(command(folder, "vorda-run case.toml --dry --force").code, 0);
}
