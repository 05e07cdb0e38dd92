// Truth: what docs/input.md shows is what a user may copy. Blocks headed deck:NAME/FILE are the files of a
// run; what a deck does not show is that of the first one, its mesh is made as the text before it says.
#include "case_folder.hpp"

#include <map>

namespace {

struct Deck {
    std::string mesh; // arguments of vorda-mesh, empty when the deck has its geometry file
    std::map<std::string, std::string> files;
};

std::map<std::string, Deck> decks_of(const std::string &document) {
    std::map<std::string, Deck> decks;
    std::ifstream in(document);
    std::string line, mesh, *file = nullptr;
    while (std::getline(in, line)) {
        const std::size_t command = line.find("`vorda-mesh ");
        if (line.rfind("## ", 0) == 0) {
            mesh.clear();
        } else if (command != std::string::npos && line.find(" -o hull.gdf`") != std::string::npos) {
            mesh = line.substr(command + 12, line.find('`', command + 1) - command - 12);
        } else if (line.rfind("```deck:", 0) == 0) {
            const std::size_t slash = line.find('/');
            Deck &deck = decks[line.substr(8, slash - 8)];
            deck.mesh = mesh;
            file = &deck.files[line.substr(slash + 1)];
        } else if (line == "```") {
            file = nullptr;
        } else if (file != nullptr) {
            *file += line + "\n";
        }
    }
    return decks;
}

TEST(Documents, DecksOfTheInputDocumentRun) {
    auto decks = decks_of(VORDA_SOURCE_DIR "/docs/input.md");
    ASSERT_EQ(decks.size(), 5u);
    const Deck first = decks["barge"];
    for (const auto &[name, deck] : decks) {
        SCOPED_TRACE(name);
        const CaseFolder folder;
        for (const auto &[file, text] : first.files)
            folder.write(file, text);
        for (const auto &[file, text] : deck.files)
            folder.write(file, text);
        if (name == "two")
            folder.write("fnames.vrd", "two.gdf\nhull.pot\n");
        if (!deck.mesh.empty()) {
            ASSERT_EQ(folder.shell("vorda-mesh " + deck.mesh), 0) << folder.read("stderr.txt");
        }
        folder.solve();
        EXPECT_TRUE(folder.lists("VORDA module run completed"));
        for (const char *fault : {"turned", "do not meet", "no other panel", "given twice", "volumes differ"})
            EXPECT_EQ(folder.list().find(fault), std::string::npos) << folder.list();
        EXPECT_EQ(folder.shell("vorda-p2f coef hull.p2f --density 1025"), 0);
        EXPECT_NE(folder.read("stdout.txt").find("heave"), std::string::npos);
    }
}

} // namespace
