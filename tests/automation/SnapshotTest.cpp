// The picture flows against the recording host: what reaches the emulator's window, in what order,
// and what is left on disk.
#include "Snapshot.h"
#include "TestWorld.h"

#include <QFile>
#include <gtest/gtest.h>

using namespace ql;
using namespace ql::test;

namespace {

// A world and the main form as the flows see it: a list of programs, a tab, and the launches it makes.
struct World : SnapshotForm {
    TestWorld world;
    std::vector<int> codes;
    std::vector<QString> names;
    QString last;
    int index = 0;

    explicit World(const std::vector<QString>& files) {
        world.makeCatalogue();
        QDir().mkpath(world.path("ProgramImages"));
        auto c = world.open();
        for (const QString& file : files) {
            names.push_back(file.section('/', -1).section('.', 0, 0));
            codes.push_back(c->addProgram(program("Games", names.back(), world.path(file))));
        }
        fake().associations.programs["IrfanView"] = "convert-it";
    }
    QString cataloguePath() const override { return world.path("Atari.mdb"); }
    QString currentTabCaption() const override { return "Games"; }
    QString lastProgramName() const override { return last; }
    int selectedProgramCode() const override { return codes[index]; }
    void prgList_Click() override { fake().journal.push_back("click"); }
    void prgList_DblClick() override {
        fake().journal.push_back("launch " + names[index]);
        last = names[index];
        fake().windows.titles = {kEmulatorTitle + " " + names[index]};
    }
    int listIndex() const override { return index; }
    void setListIndex(int i) override { index = i; }
    int listCount() const override { return static_cast<int>(codes.size()); }

    FakeHost& fake() { return world.fake(); }
    QString dir() { return world.root() + "/"; }
    // The journal of a picture taken in the emulator's window, between what comes before and after.
    std::vector<QString> snapped(std::vector<QString> lines, const std::vector<QString>& after) {
        lines.insert(lines.end(), {"activate " + kEmulatorTitle, "keys {F10}",
                                   "keys " + dir() + "snapshot.png", "keys {ENTER}"});
        lines.insert(lines.end(), after.begin(), after.end());
        return lines;
    }
    // The emulator writes the file typed into its prompt when Enter follows.
    void emulatorWritesPictures() {
        fake().keyboard.onSendKeys = [this](const QString& keys) {
            if (keys == "{ENTER}" && fake().keyboard.sent.size() >= 2)
                world.writeFile(fake().keyboard.sent[fake().keyboard.sent.size() - 2].mid(dir().size()),
                                "PNG");
        };
    }
};

} // namespace

TEST(SnapRunningPicture, KeysConversionAndFailures) {
    const struct {
        const char* name;
        bool window, writes, staleFile, converterFails;
        std::vector<QString> afterKeys;
    } cases[] = {
        {"picture taken", true, true, false, false, {"start /bin/sh", "click"}},
        {"emulator wrote nothing, old file gone", true, false, true, false, {"click"}},
        {"no emulator window", false, false, false, false, {}},
        {"converter cannot start", true, true, false, true, {}},
    };
    for (const auto& c : cases) {
        World w({"Games/Star Raiders.atr"});
        w.last = "Star Raiders";
        if (c.window) w.fake().windows.titles = {kEmulatorTitle + " Star Raiders.atr"};
        if (c.writes) w.emulatorWritesPictures();
        if (c.staleFile) w.world.writeFile("snapshot.png", "old");
        if (c.converterFails) w.fake().processes.failuresToGo = 1;
        SnapRunningPicture(w.fake().host(), w);
        EXPECT_EQ(w.fake().journal, c.window ? w.snapped({}, c.afterKeys) : std::vector<QString>{}) << c.name;
        EXPECT_TRUE(QDir(w.world.path("ProgramImages/Games")).exists()) << c.name;
        EXPECT_EQ(QFile::exists(w.world.path("snapshot.png")), c.writes) << c.name;
    }
}

TEST(SnapProgramPicture, LaunchesWaitsSnapsAndEndsTheEmulator) {
    World w({"Games/Star Raiders.atr"});
    w.emulatorWritesPictures();
    const double before = w.fake().clock.time;
    EXPECT_EQ(SnapProgramPicture(w.fake().host(), w, 13), SnapOutcome::Continue);
    EXPECT_EQ(w.fake().journal, w.snapped({"click", "launch Star Raiders"},
                                          {"start /bin/sh", "activate " + kEmulatorTitle, "keys %FE"}));
    EXPECT_GE(w.fake().clock.time - before, 13.5);
    EXPECT_EQ(w.fake().processes.started.back().args,
              (QStringList{"-c", "convert-it \"$1\" \"$2\"", "sh", w.dir() + "snapshot.png",
                           "/convert=" + w.dir() + "ProgramImages/Games/Star Raiders.jpg"}));
}

TEST(SnapProgramPicture, BasicListingTakesTheAtari800RoadAndEndsTheProgram) {
    for (bool pictureLeft : {true, false}) {
        World w({"Basic/Hello.bas"});
        w.fake().windows.titles = {"Atari800 1.0"};
        if (pictureLeft)
            w.fake().keyboard.onSendKeys = [&](const QString& keys) {
                if (keys == "%{F4}") w.world.writeFile("atari000.pcx", "PCX");
            };
        EXPECT_EQ(SnapProgramPicture(w.fake().host(), w, 2), SnapOutcome::EndProgram);
        std::vector<QString> expected = {
            "click",   "launch Hello",    "activate Atari800", "beep",     "keys(wait) {F10}",
            "tap 121", "keys {F10}",      "keys(wait) {F1}",   "keys 121", "tap 112",
            "beep",    "keys(wait) %{F4}"};
        if (pictureLeft) expected.push_back("start /bin/sh");
        EXPECT_EQ(w.fake().journal, expected);
        EXPECT_EQ(w.fake().dialogs.messages.size(), pictureLeft ? 1u : 0u);
        // cSendKeys: {F10} and "{" flagged extended, the digits, then two plain F10 taps.
        std::vector<KeyEventRecord> keys;
        for (int vk : {121, 219, 49, 50, 49})
            keys.insert(keys.end(), {{std::uint8_t(vk), true, true}, {std::uint8_t(vk), false, true}});
        keys.insert(keys.end(),
                    {{121, true, false}, {121, false, false}, {121, true, false}, {121, false, false}});
        EXPECT_EQ(w.fake().keyboard.events, keys);
    }
}

TEST(AutomaticPictureRun, RunsFromTheSelectionToTheEnd) {
    // The delay typed, the row to start at, a second right click after the first program, launches.
    const std::tuple<const char*, int, bool, int> cases[] = {
        {"1", 0, false, 3}, {"1", 2, false, 1}, {"", 0, false, 0}, {"99999", 0, false, 0}, {"1", 0, true, 1},
    };
    for (const auto& [answer, start, stopAfterFirst, launches] : cases) {
        World w({"A/One.atr", "A/Two.atr", "A/Three.a26"});
        w.emulatorWritesPictures();
        w.index = start;
        w.fake().dialogs.inputAnswers = {answer};
        AutomaticPictureRun run;
        if (stopAfterFirst)
            w.fake().clock.onPump = [&] {
                // A second right click while the run is going stops it, and asks nothing.
                if (w.last == "One" && run.running()) run.rightClick(w.fake().host(), w);
            };
        EXPECT_EQ(run.rightClick(w.fake().host(), w), SnapOutcome::Continue);
        EXPECT_FALSE(run.running());
        EXPECT_EQ(std::count_if(w.fake().journal.begin(), w.fake().journal.end(),
                                [](const QString& line) { return line.startsWith("launch "); }),
                  launches)
            << answer << " from " << start;
        EXPECT_EQ(w.fake().dialogs.prompts.size(), 1u);
    }
}
