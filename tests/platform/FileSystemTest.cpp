#include "LinuxHost.h"
#include "Shell.h"
#include "TestWorld.h"
#include "VirtualKeys.h"

#include <QFile>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace ql;
using namespace ql::test;

TEST(LinuxFileSystem, AttributeWords) {
    TestWorld world;
    world.writeFile("tree/game.atr");
    world.writeFile("tree/.hidden.atr");
    const QString ro = world.writeFile("tree/locked.atr");
    ::chmod(QFile::encodeName(ro).constData(), 0444);
    QDir().mkpath(world.path("tree/sub"));
    QDir().mkpath(world.path("tree/.dotdir"));
    ASSERT_EQ(::symlink(QFile::encodeName(world.path("tree/sub")).constData(),
                        QFile::encodeName(world.path("tree/link")).constData()),
              0);
    ASSERT_EQ(::symlink("/nonexistent/target", QFile::encodeName(world.path("tree/dangling")).constData()),
              0);

    LinuxFileSystem fs;
    struct Case {
        const char* name;
        std::optional<int> word;
    };
    const Case cases[] = {
        {"tree/game.atr", 0},       {"tree/.hidden.atr", 2}, {"tree/locked.atr", 1},
        {"tree/sub", 8208},         {"tree/sub/", 8208},     {"tree/.dotdir", 8210},
        {"tree/link", 8208 + 1024}, {"tree/dangling", {}},   {"tree/missing", {}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(fs.attributes(world.path(c.name)), c.word) << c.name;

    std::vector<QString> names;
    for (const DirEntry& e : fs.list(world.path("tree")))
        names.push_back(e.name);
    EXPECT_EQ(names,
              (std::vector<QString>{".dotdir", ".hidden.atr", "game.atr", "link", "locked.atr", "sub"}));
    EXPECT_TRUE(fs.list(world.path("missing")).empty());
}

TEST(FileExists, PathsFoldersAndBlanks) {
    TestWorld world;
    const QString file = world.writeFile("a.atr");
    LinuxFileSystem fs;
    EXPECT_TRUE(FileExists(fs, file));
    EXPECT_FALSE(FileExists(fs, world.path("b.atr")));
    EXPECT_FALSE(FileExists(fs, ""));
    EXPECT_FALSE(FileExists(fs, "   "));
    // A folder here carries the not-indexed flag as well, so it is not the bare 16 that fails.
    EXPECT_TRUE(FileExists(fs, world.root()));
}

TEST(LinuxScripts, PrivateFolderAndWholeFiles) {
    TestWorld world;
    LinuxScripts scripts;
    const QString path = scripts.write("rundos.sh", "echo hi\n");
    EXPECT_EQ(path, world.path("state/quaylight/rundos.sh"));
    struct stat st {};
    ASSERT_EQ(::stat(QFile::encodeName(world.path("state/quaylight")).constData(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0700u);
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(f.readAll(), "echo hi\n");
    EXPECT_TRUE(scripts.remove(path));
    EXPECT_FALSE(QFile::exists(path));
}

TEST(VirtualKeys, RoundTrip) {
    for (int vk : {13, 16, 17, 18, 27, 32, 48, 57, 65, 90, 112, 121, 135, 190, 191})
        EXPECT_EQ(virtualKeyForKeysym(keysymForVirtualKey(static_cast<std::uint8_t>(vk))), vk) << vk;
    EXPECT_EQ(keysymForVirtualKey(7), 0u);
}
