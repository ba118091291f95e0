#include "Archives.h"
#include "TestWorld.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <archive.h>
#include <archive_entry.h>
#include <clocale>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace ql;
using ql::test::TestWorld;

namespace {

struct ZipItem {
    QByteArray path;
    QByteArray data;
    QByteArray linkTarget = {}; // set: a symbolic link entry
};

void writeZip(const QString& file, const std::vector<ZipItem>& items) {
    QDir().mkpath(QFileInfo(file).path());
    archive* a = archive_write_new();
    archive_write_set_format_zip(a);
    ASSERT_EQ(archive_write_open_filename(a, QFile::encodeName(file).constData()), ARCHIVE_OK);
    for (const ZipItem& item : items) {
        archive_entry* e = archive_entry_new();
        archive_entry_set_pathname(e, item.path.constData());
        archive_entry_set_filetype(e, item.linkTarget.isEmpty() ? AE_IFREG : AE_IFLNK);
        archive_entry_set_perm(e, 0644);
        if (!item.linkTarget.isEmpty()) archive_entry_set_symlink(e, item.linkTarget.constData());
        archive_entry_set_size(e, item.linkTarget.isEmpty() ? item.data.size() : 0);
        ASSERT_EQ(archive_write_header(a, e), ARCHIVE_OK) << item.path.constData();
        archive_write_data(a, item.data.constData(), item.data.size());
        archive_entry_free(e);
    }
    archive_write_close(a);
    archive_write_free(a);
}

// An ARC archive made by Debian's arc from files written for it, saved under any name.
void writeArc(TestWorld& world, const QString& archive, const QStringList& files) {
    const QString work = world.path("arcwork");
    QDir(work).removeRecursively();
    QStringList args{"a", "made.arc"};
    for (const QString& f : files)
        args << QFileInfo(world.writeFile("arcwork/" + f, f.toUtf8())).fileName();
    QProcess arc;
    arc.setWorkingDirectory(work);
    arc.start("arc", args);
    ASSERT_TRUE(arc.waitForFinished(30000) && arc.exitCode() == 0) << arc.readAllStandardError().constData();
    QDir().mkpath(QFileInfo(archive).path());
    ASSERT_TRUE(QFile::rename(work + "/made.arc", archive));
}

bool exists(const QString& path) {
    return QFileInfo::exists(path) || QFileInfo(path).isSymLink();
}

} // namespace

TEST(Archives, ZipsUnpackBesideThemselvesAndGoUnlessTheNameHoldsABracket) {
    TestWorld world;
    const struct {
        QString name;
        bool kept;
    } rows[] = {
        {"PACK1.ZIP", false}, {"PACK (1).zip", true}, {"sub/pack2.Zip", false}, {"PACK 2).zip", false}};
    for (int i = 0; i < 4; ++i)
        writeZip(world.path("z/" + rows[i].name), {{QByteArray::number(i) + ".txt", "data"}});
    // An old DOS ZIP: a name in a one-byte code page, without the UTF-8 flag, keeps its bytes.
    const std::string locale = setlocale(LC_CTYPE, nullptr);
    setlocale(LC_CTYPE, "C");
    writeZip(world.path("z/dos.zip"), {{"caf\x82.txt", "data"}});
    setlocale(LC_CTYPE, locale.c_str());
    const ToolCounts counts =
        unpackArchives(world.path("z/"), "*.zip", "", "arcx", world.fake().host().fileSystem);
    EXPECT_EQ(counts.unpacked, 5);
    EXPECT_EQ(counts.deleted, 4);
    const QByteArray dosName = QFile::encodeName(world.root()) + "/z/caf\x82.txt";
    EXPECT_EQ(::access(dosName.constData(), F_OK), 0);
    ::unlink(dosName.constData()); // a name the temporary folder's clean-up cannot spell
    EXPECT_EQ(counts.failed, 0) << counts.problems.join('\n').toStdString();
    for (int i = 0; i < 4; ++i) {
        const QString folder = QFileInfo(world.path("z/" + rows[i].name)).path();
        EXPECT_TRUE(exists(folder + "/" + QString::number(i) + ".txt")) << rows[i].name.toStdString();
        EXPECT_EQ(exists(world.path("z/" + rows[i].name)), rows[i].kept) << rows[i].name.toStdString();
    }
}

TEST(Archives, HostileZipEntriesAreSkippedAndNothingLandsOutside) {
    TestWorld world;
    const QByteArray outside = QFile::encodeName(world.path("outside"));
    QDir().mkpath(world.path("outside"));
    QDir().mkpath(world.path("in"));
    ASSERT_TRUE(QFile::link(world.path("outside"), world.path("in/trap")));
    writeZip(world.path("in/evil.zip"), {{"good.txt", "fine"},
                                         {outside + "/abs.txt", "x"},
                                         {"../escaped.txt", "x"},
                                         {"link", {}, outside},
                                         {"link/through.txt", "x"},
                                         {"sub/up", {}, "../../outside"},
                                         {"trap/x.txt", "x"},
                                         {"sub/ok", {}, "../good.txt"}});
    const ToolCounts counts =
        unpackArchives(world.path("in/"), "*.zip", "", "arcx", world.fake().host().fileSystem);
    EXPECT_EQ(counts.skipped, 6);
    EXPECT_EQ(counts.problems.size(), 6) << counts.problems.join('\n').toStdString();
    EXPECT_EQ(counts.unpacked, 1);
    EXPECT_EQ(counts.deleted, 0); // not all of it is on disk
    EXPECT_TRUE(exists(world.path("in/evil.zip")));
    QFile ok(world.path("in/sub/ok"));
    ASSERT_TRUE(ok.open(QIODevice::ReadOnly));
    EXPECT_EQ(ok.readAll(), "fine");
    EXPECT_TRUE(QDir(world.path("outside")).isEmpty());
    EXPECT_FALSE(exists(world.path("escaped.txt")));
    EXPECT_FALSE(exists(world.path("in/link")));
    EXPECT_FALSE(exists(world.path("in/sub/up")));
}

TEST(Archives, ArcFilesGetAFolderNamedByTheArchiveAndGo) {
    const struct {
        QString name;
        bool folderThere;
        bool shellText; // arcx named by a command line, as an association gives it
        bool broken;
    } rows[] = {{"GAMES.ARC", false, false, false},
                {"GAMES.ARC", true, false, false},
                {"x $(touch pwned).arc", false, true, false},
                {"BAD.ARC", false, false, true}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name.toStdString());
        TestWorld world;
        const QString archive = world.path("a/" + row.name);
        const QString folder = archive.chopped(4);
        if (row.broken)
            world.writeFile("a/" + row.name, "not an archive");
        else
            writeArc(world, archive, {"one.xex", "Two.Atr"});
        if (row.folderThere) world.writeFile("a/GAMES/old.txt");
        const QString arcx = row.shellText ? "'" ARCX "'" : ARCX;
        const ToolCounts counts =
            expandArcFiles(world.path("a/"), "*.arc", "", arcx, world.fake().host().fileSystem);
        EXPECT_EQ(counts.failed, row.broken ? 1 : 0) << counts.problems.join('\n').toStdString();
        EXPECT_EQ(exists(archive), row.broken);
        EXPECT_EQ(exists(folder + "/one.xex") && exists(folder + "/Two.Atr"), !row.broken);
        EXPECT_EQ(exists(folder + "/old.txt"), row.folderThere);
        EXPECT_FALSE(exists(world.path("a/pwned")) || exists(folder + "/pwned"));
        EXPECT_EQ(counts.problems.value(0).contains(row.name), row.broken);
    }
}

TEST(Archives, UnpackArchivesRunsArcInPlaceAndKeepsIt) {
    TestWorld world;
    writeArc(world, world.path("n/GAMES.ARC"), {"one.xex"});
    world.writeFile("n/readme.txt");
    const ToolCounts counts = unpackArchives(world.path("n/"), "*", "", ARCX, world.fake().host().fileSystem);
    EXPECT_EQ(counts.scanned, 2);
    EXPECT_EQ(counts.unpacked, 1);
    EXPECT_EQ(counts.deleted, 0);
    EXPECT_TRUE(exists(world.path("n/one.xex")));
    EXPECT_TRUE(exists(world.path("n/GAMES.ARC")));
    EXPECT_TRUE(exists(world.path("n/readme.txt")));
}

TEST(Archives, WalkEntersFoldersItMadeButNoDotOrLinkedFolder) {
    TestWorld world;
    writeZip(world.path("inner.zip"), {{"deep.txt", "x"}});
    QFile inner(world.path("inner.zip"));
    ASSERT_TRUE(inner.open(QIODevice::ReadOnly));
    writeZip(world.path("w/outer.zip"), {{"made/inner.zip", inner.readAll()}});
    writeZip(world.path("w/.dot/a.zip"), {{"dot.txt", "x"}});
    writeZip(world.path("w/real/b.zip"), {{"b.txt", "x"}});
    writeZip(world.path("elsewhere/c.zip"), {{"c.txt", "x"}});
    ASSERT_TRUE(QFile::link(world.path("elsewhere"), world.path("w/lnk")));
    const ToolCounts counts =
        unpackArchives(world.path("w/"), "*.zip", "", "arcx", world.fake().host().fileSystem);
    EXPECT_EQ(counts.unpacked, 3);
    EXPECT_TRUE(exists(world.path("w/made/deep.txt")));
    EXPECT_FALSE(exists(world.path("w/made/inner.zip")));
    EXPECT_TRUE(exists(world.path("w/real/b.txt")));
    EXPECT_FALSE(exists(world.path("w/.dot/dot.txt")));
    EXPECT_FALSE(exists(world.path("elsewhere/c.txt")));

    // A name filter keeps the names that hold it exactly, case and all.
    writeZip(world.path("f/keep.zip"), {{"k.txt", "x"}});
    writeZip(world.path("f/KEEP2.zip"), {{"k2.txt", "x"}});
    EXPECT_EQ(
        unpackArchives(world.path("f/"), "*.zip", "keep", "arcx", world.fake().host().fileSystem).scanned, 1);
}

TEST(Archives, AStopWhileTheToolRunsEndsTheToolAndKeepsTheArchive) {
    TestWorld world;
    world.writeFile("s/A.ARC");
    int calls = 0;
    QElapsedTimer clock;
    clock.start();
    // The first call comes at the file, the next ones while the tool runs.
    const ToolProgressFn stopSecond = [&](const QString&, int) {
        if (++calls == 2) throw std::runtime_error("stopped");
    };
    EXPECT_THROW(expandArcFiles(world.path("s/"), "*.arc", "", "exec sleep 60 #",
                                world.fake().host().fileSystem, stopSecond),
                 std::runtime_error);
    EXPECT_LT(clock.elapsed(), 20000);
    EXPECT_TRUE(exists(world.path("s/A.ARC")));
}

TEST(Archives, ArcxCommandComesFromTheAssociationsFirst) {
    TestWorld world;
    auto& programs = world.fake().associations.programs;
    programs["arcx"] = "/opt/dos/arcx --quiet";
    EXPECT_EQ(arcxCommand(world.fake().associations), "/opt/dos/arcx --quiet");
    programs["arcx"] = "  ";
    EXPECT_EQ(arcxCommand(world.fake().associations), "arcx"); // none beside the test program
}
