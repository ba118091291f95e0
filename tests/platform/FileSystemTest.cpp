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

TEST(LinuxFileSystem, AttributeWordsListingAndFileExists) {
    TestWorld world;
    const auto native = [&](const char* name) { return QFile::encodeName(world.path(name)); };
    world.writeFile("tree/game.atr");
    world.writeFile("tree/.hidden.atr");
    ::chmod(QFile::encodeName(world.writeFile("tree/Locked.atr")).constData(), 0444);
    QDir().mkpath(world.path("tree/sub"));
    ASSERT_EQ(::symlink(native("tree/sub").constData(), native("tree/link").constData()), 0);
    ASSERT_EQ(::symlink("/nonexistent/target", native("tree/dangling").constData()), 0);

    LinuxFileSystem fs;
    const std::pair<const char*, std::optional<int>> cases[] = {
        {"tree/game.atr", 0},       {"tree/.hidden.atr", 2}, {"tree/Locked.atr", 1}, {"tree/sub/", 8208},
        {"tree/link", 8208 + 1024}, {"tree/dangling", {}},   {"tree/missing", {}},
    };
    for (const auto& [name, word] : cases) {
        EXPECT_EQ(fs.attributes(world.path(name)), word) << name;
        // A folder has the not-indexed bit too, so it is not the bare 16 that is no file.
        EXPECT_EQ(FileExists(fs, world.path(name)), word.has_value()) << name;
    }
    EXPECT_FALSE(FileExists(fs, "   "));

    QStringList names;
    for (const DirEntry& e : fs.list(world.path("tree")))
        names << e.name;
    EXPECT_EQ(names.join(' '), ".hidden.atr game.atr link Locked.atr sub") << "by name, ignoring case";
    EXPECT_TRUE(fs.list(world.path("missing")).empty());
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
