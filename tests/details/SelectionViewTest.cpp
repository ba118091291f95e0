#include "SelectionView.h"
#include "LinuxHost.h"
#include "TestWorld.h"

#include <gtest/gtest.h>

using namespace ql;
using namespace ql::test;

TEST(SelectionFamily, ByTheLastThreeCharacters) {
    struct Case {
        const char* file;
        std::optional<Family> family;
        int picture;
    } cases[] = {
        {"x.xex", Family::Atari8Bit, -1}, {"x.ATR", Family::Atari8Bit, -1}, {"x.pro", Family::Atari8Bit, -1},
        {"x.bas", Family::Atari8Bit, -1}, {"x.msa", Family::AtariST, 3},    {"x.st", Family::AtariST, 3},
        {"X.ST", Family::AtariST, 3},     {"x.a26", Family::Atari2600, 4},  {"x.a52", Family::Atari5200, 5},
        {"x.a78", Family::Atari7800, 6},  {"x.jag", Family::Jaguar, 7},     {"x.lnx", Family::Lynx, 8},
        {"x.txt", std::nullopt, -1},      {"x.lst", std::nullopt, -1},      {"pst", std::nullopt, -1},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(familyOf(c.file), c.family) << c.file;
        if (c.family) {
            EXPECT_EQ(machinePictureOf(*c.family), c.picture) << c.file;
        }
    }
}

class SelectionViewTest : public ::testing::Test {
protected:
    void SetUp() override { world.makeCatalogue(); }
    int add(ProgramRecord r) { return world.open()->addProgram(r); }
    std::optional<SelectionView> view(int code, const QString& tab = "Games") {
        return selectionView(world.path("Atari.mdb"), code, tab, *fileSystem);
    }
    TestWorld world;
    std::unique_ptr<FileSystem> fileSystem = std::make_unique<LinuxFileSystem>();
};

TEST_F(SelectionViewTest, PictureGoesByTabAndName) {
    const int withPicture = add(program("Games", "Star Raiders", "/a/sr.atr"));
    const int twin = add(program("Games", "Star Raiders", "/a/sr2.atr"));
    const int without = add(program("Games", "Zaxxon", "/a/z.atr"));
    const int odd = add(program("Games", "Dots.", "/a/d.atr"));
    const QString picture = world.writeFile("ProgramImages/Games/Star Raiders.jpg");
    EXPECT_EQ(view(withPicture)->picturePath, picture);
    EXPECT_EQ(view(twin)->picturePath, picture) << "one name, one picture";
    EXPECT_EQ(view(without)->picturePath, "") << "the stock picture";
    EXPECT_EQ(view(odd)->picturePath, "");
    EXPECT_EQ(view(withPicture, "Favourites")->picturePath, "") << "the folder goes by the tab";
}

TEST_F(SelectionViewTest, FieldsAndRefusedValues) {
    ProgramRecord r = program("Games", "Archon", "/a/archon.XEX");
    r.machineType = 0;
    r.basic = true;
    r.video = 312;
    r.memory = 64;
    r.artifact = 4;
    r.stretch = 2;
    r.description = "Chess with fights";
    const auto v = view(add(r));
    ASSERT_TRUE(v);
    EXPECT_EQ(v->family, Family::Atari8Bit);
    EXPECT_EQ(v->osTypeBox, 0);
    EXPECT_TRUE(v->basic);
    EXPECT_FALSE(v->ntsc);
    EXPECT_EQ(v->memory, 64);
    EXPECT_EQ(v->artifactIndex, 4);
    EXPECT_EQ(v->stretchIndex, 2);
    EXPECT_EQ(v->description, "Chess with fights");
    EXPECT_EQ(v->name, "Archon");

    r.machineType = 9;
    r.artifact = 5;
    r.stretch = -1;
    r.video = 0;
    r.description = QVariant();
    const auto refused = view(add(r));
    EXPECT_EQ(refused->osTypeBox, std::nullopt) << "an unknown machine leaves the boxes";
    EXPECT_EQ(refused->artifactIndex, 0);
    EXPECT_EQ(refused->stretchIndex, 0);
    EXPECT_FALSE(refused->ntsc);
    EXPECT_EQ(refused->description, "");

    const auto st = view(add(program("Atari ST", "Oids", "/a/oids.msa")));
    EXPECT_EQ(st->osTypeBox, std::nullopt) << "other families leave the boxes alone";
    EXPECT_EQ(st->machinePicture, 3);
    EXPECT_FALSE(st->snapPicture1);
    EXPECT_TRUE(view(add(program("5200", "Pac-Man", "/a/pm.a52")))->snapPicture1);
}

TEST_F(SelectionViewTest, GoneRowGivesNothing) {
    const int code = add(program("Games", "Gone", "/a/g.atr"));
    world.open()->deleteProgram(code);
    EXPECT_EQ(view(code), std::nullopt);
}
