// Truth: what is seen of convex bodies, and of panels in front of each other, is known; a fault planted is
// red.
#include "../cases/case_folder.hpp"
#include "mesh/hidden.hpp"
#include "mesh/picture.hpp"

namespace {

// A rectangle of the picture whose left and right side have their own nearness.
SeenPanel rectangle(double left, double right, double low, double high, double near_left, double near_right) {
    return {{{{left, low}, {right, low}, {right, high}, {left, high}}},
            {near_left, near_right, near_right, near_left}};
}
int count(const std::string &text, const std::string &what) {
    int n = 0;
    for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; ++at)
        ++n;
    return n;
}

TEST(PaintingOrder, IsThatOfThePlacesNotOfTheMiddles) {
    // A long panel that leans away, its middle behind the small one that it covers in part on the left.
    const SeenPanel leaning = rectangle(0, 100, 0, 20, 10, 0), small = rectangle(5, 20, 5, 30, 7, 7);
    EXPECT_EQ(painting_order({leaning, small}, 100, 40), (std::vector<int>{1, 0}));
    EXPECT_EQ(painting_order({small, leaning}, 100, 40), (std::vector<int>{0, 1}));
    // A circle of three that lean over each other does not stop the others.
    const std::vector<SeenPanel> circle{rectangle(0, 30, 0, 10, 0, 3), rectangle(20, 60, 0, 10, 1, 9),
                                        rectangle(0, 60, 5, 8, 2, 5), rectangle(0, 60, 0, 12, -1, -1)};
    EXPECT_EQ(painting_order(circle, 60, 12).size(), 4u);
    EXPECT_EQ(painting_order(circle, 60, 12).front(), 3);
    // Hidden as a whole, unless in the same place.
    EXPECT_EQ(painting_order({rectangle(10, 20, 10, 20, 1, 1), rectangle(0, 30, 0, 30, 2, 2)}, 30, 30),
              (std::vector<int>{1}));
    EXPECT_EQ(painting_order({small, small}, 100, 40).size(), 2u);
    EXPECT_TRUE(painting_order({}, 10, 10).empty());
    // Smaller than a cell: by its middle.
    EXPECT_EQ(painting_order({rectangle(10.1, 10.2, 3.1, 3.2, 1, 1), rectangle(0, 30, 0, 30, 2, 2)}, 30, 30),
              (std::vector<int>{1}));
    EXPECT_EQ(painting_order({rectangle(10.1, 10.2, 3.1, 3.2, 3, 3), rectangle(0, 30, 0, 30, 2, 2)}, 30, 30),
              (std::vector<int>{1, 0}));
}

TEST(Show, LeavesOutWhatABoxHides) {
    const CaseFolder folder;
    make_mesh(folder, "closed-box --length 3 --beam 2 --height 1 --nu 3 --nv 2 --nw 3");
    // Three faces of 6 x 4, 6 x 3 and 4 x 3 panels, from any of the eight corners.
    for (const char *from : {"40 25", "130 25", "220 -30", "-50 -30"}) {
        ASSERT_EQ(folder.shell(std::string("vorda-mesh show --view perspective --from ") + from +
                               " run.gdf -o run.svg"),
                  0);
        EXPECT_EQ(count(folder.read("run.svg"), "<polygon"), 24 + 18 + 12) << from;
    }
    ASSERT_EQ(folder.shell("vorda-mesh show run.gdf -o run.svg --no-images --view perspective"), 0);
    EXPECT_EQ(count(folder.read("run.svg"), "<polygon"), 6 + 9 + 6); // an open corner: the same three faces
    EXPECT_EQ(folder.files(), (std::vector<std::string>{"run.gdf", "run.svg", "stderr.txt", "stdout.txt"}));
}

TEST(Show, FaultsAreRedAndTold) {
    const CaseFolder folder;
    make_mesh(folder, "box --length 4 --beam 2 --part full --nu 2 --nv 2 --nw 2");
    ASSERT_EQ(folder.shell("vorda-mesh show run.gdf -o run.svg"), 0);
    for (const char *text : {"faulty", "class=\"r\"", "class=\"f\""})
        EXPECT_EQ(count(folder.read("run.svg"), text), 0) << text;
    // A panel of the end x = 2 is turned: its vertices stand in lines 5 to 8.
    ASSERT_EQ(
        folder.shell("sed -e '5{h;d};6,7{H;d};8{p;x;s/\\(.*\\)\\n\\(.*\\)\\n\\(.*\\)/\\3\\n\\2\\n\\1/}' "
                     "run.gdf >bad.gdf"),
        0);
    ASSERT_EQ(folder.shell("vorda-mesh check bad.gdf"), 2);
    ASSERT_EQ(folder.shell("vorda-mesh show bad.gdf -o run.svg --view front"), 0);
    const std::string front = folder.read("run.svg");
    EXPECT_EQ(count(front, "faulty panels 1<"), 1);
    EXPECT_EQ(count(front, "turned against their neighbours: panel 1;"), 1);
    EXPECT_EQ(count(front, "class=\"f\""), 0);
    // From behind and below it is hidden, its outline is not.
    ASSERT_EQ(folder.shell("vorda-mesh show bad.gdf -o run.svg --view perspective --from 180 -30"), 0);
    EXPECT_EQ(count(folder.read("run.svg"), "class=\"f\""), 1);
}

TEST(Show, DrawsBodiesInPlaceAndEndsInOrder) {
    const CaseFolder folder;
    make_mesh(folder, "box --nu 1 --nv 1 --nw 1 --part half-y", "hull.gdf");
    folder.write(
        "two.gdf",
        "two\n0 9.80665\n2\nhull.gdf\n-5 0 0 0\n0 0\n1 1 1 1 1 1\nhull.gdf\n4 0 0 90\n0 0\n1 1 1 1 1 1\n");
    ASSERT_EQ(folder.shell("vorda-mesh show two.gdf -o two.svg --view top"), 0);
    // 10 long: from x = -5.5 to 4.5 on 852 units of the page, of which 1 is the unit.
    const std::string two = folder.read("two.svg");
    EXPECT_NE(two.find("length 1"), std::string::npos);
    EXPECT_EQ(count(two, ", 8 panels and 8 images"), 0) << "the half has more panels than that";
    folder.write("point.gdf", "p\n1 9.8\n0 0\n 1\n 1 1 -1 1 1 -1 1 1 -1 1 1 -1\n");
    folder.write("short.fdf", "t\n1.0\n3 1\n0 0 0 0\n1 1 2 2 0 1 1 0\n");
    for (const char *arguments : {"none.gdf -o x.svg", "point.gdf -o x.svg", "short.fdf -o x.svg",
                                  "two.gdf -o no/such/x.svg", "two.gdf -o x.svg --view below", "two.gdf"}) {
        EXPECT_GT(folder.shell(std::string("vorda-mesh show ") + arguments), 0) << arguments;
        EXPECT_FALSE(folder.read("stderr.txt").empty());
        EXPECT_FALSE(folder.exists("x.svg"));
    }
    EXPECT_EQ(folder.shell("cp two.gdf 'a<&.gdf' && vorda-mesh show 'a<&.gdf' -o x.svg"), 0);
    EXPECT_EQ(count(folder.read("x.svg"), "a&lt;&amp;.gdf"), 1);
}

} // namespace
