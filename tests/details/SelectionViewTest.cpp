#include "SelectionView.h"
#include "LinuxHost.h"
#include "TestWorld.h"

#include <gtest/gtest.h>

using namespace ql;
using namespace ql::test;

TEST(SelectionFamily, ByTheLastThreeCharacters) {
    using enum Family;
    const std::pair<const char*, std::optional<Family>> cases[] = {
        {"x.ATR", Atari8Bit}, {"x.msa", AtariST},   {"X.ST", AtariST}, {"x.a26", Atari2600},
        {"x.a52", Atari5200}, {"x.a78", Atari7800}, {"x.jag", Jaguar}, {"x.lnx", Lynx},
        {"x.txt", {}},        {"x.lst", {}},        {"pst", {}},
    };
    for (const auto& [file, family] : cases)
        EXPECT_EQ(familyOf(file), family) << file;
}

class SelectionViewTest : public ::testing::Test {
protected:
    void SetUp() override { world.makeCatalogue(); }
    std::optional<SelectionView> view(const ProgramRecord& r, const QString& tab = "Games") {
        return selectionView(world.path("Atari.mdb"), world.open()->addProgram(r), tab, *fileSystem);
    }
    TestWorld world;
    std::unique_ptr<FileSystem> fileSystem = std::make_unique<LinuxFileSystem>();
};

TEST_F(SelectionViewTest, PictureGoesByTabAndName) {
    const QString picture = world.writeFile("ProgramImages/Games/Star Raiders.jpg");
    EXPECT_EQ(view(program("Favourites", "Star Raiders", "/a/sr.atr"))->picturePath, picture);
    EXPECT_EQ(view(program("Games", "Zaxxon", "/a/z.atr"))->picturePath, "") << "the stock picture";
    EXPECT_EQ(view(program("Games", "Star Raiders", "/a/sr.atr"), "Favourites")->picturePath, "")
        << "the folder goes by the tab";
}

// Values outside the boxes' lists show their first row; a machine outside the three boxes, or
// another family, leaves the machine box as it stands.
TEST_F(SelectionViewTest, FieldsAndRefusedValues) {
    const struct {
        const char* file;
        int machine, video, artifact, stretch;
        std::optional<int> osTypeBox;
        bool ntsc;
        int artifactIndex, stretchIndex, machinePicture;
        bool snap;
    } cases[] = {
        {"/a/x.XEX", 0, 312, 4, 2, 0, false, 4, 2, -1, false},
        {"/a/x.xex", 2, 262, 5, -1, 2, true, 0, 0, -1, false},
        {"/a/x.atr", 9, 0, -1, 3, std::nullopt, false, 0, 0, -1, false},
        {"/a/x.msa", 1, 262, 0, 0, std::nullopt, true, 0, 0, 3, false},
        {"/a/x.a52", 1, 262, 0, 0, std::nullopt, true, 0, 0, 5, true},
    };
    for (const auto& c : cases) {
        ProgramRecord r = program("Games", "Archon", c.file);
        r.machineType = c.machine, r.video = c.video, r.artifact = c.artifact, r.stretch = c.stretch;
        const auto v = view(r);
        ASSERT_TRUE(v);
        EXPECT_EQ(v->osTypeBox, c.osTypeBox) << c.file;
        EXPECT_EQ(v->ntsc, c.ntsc) << c.file;
        EXPECT_EQ(v->artifactIndex, c.artifactIndex) << c.file;
        EXPECT_EQ(v->stretchIndex, c.stretchIndex) << c.file;
        EXPECT_EQ(v->machinePicture, c.machinePicture) << c.file;
        EXPECT_EQ(v->snapPicture1, c.snap) << c.file;
    }
    ProgramRecord r = program("Games", "Archon", "/a/x.xex");
    r.description = QVariant();
    EXPECT_EQ(view(r)->description, "") << "a null description";
}

TEST_F(SelectionViewTest, GoneRowGivesNothing) {
    const int code = world.open()->addProgram(program("Games", "Gone", "/a/g.atr"));
    world.open()->deleteProgram(code);
    EXPECT_EQ(selectionView(world.path("Atari.mdb"), code, "Games", *fileSystem), std::nullopt);
}
