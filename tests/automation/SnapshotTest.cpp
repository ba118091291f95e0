// The picture flows against the recording host: what reaches the emulator's window, in what order,
// and what is left on disk.
#include "Snapshot.h"
#include "TestWorld.h"

#include <QFile>
#include <gtest/gtest.h>

using namespace ql;
using namespace ql::test;

namespace {

// The main form as the flows see it: a list of programs, a tab, and the launches it makes.
class FakeForm : public SnapshotForm {
public:
    FakeForm(TestWorld& world, std::vector<int> codes, std::vector<QString> names)
        : world_(world), codes_(std::move(codes)), names_(std::move(names)) {}
    QString cataloguePath() const override { return world_.path("Atari.mdb"); }
    QString currentTabCaption() const override { return caption; }
    QString lastProgramName() const override { return last; }
    int selectedProgramCode() const override { return index >= 0 ? codes_[index] : 0; }
    void prgList_Click() override { world_.fake().journal.push_back("click"); }
    void prgList_DblClick() override {
        world_.fake().journal.push_back("launch " + names_[index]);
        last = names_[index];
        world_.fake().windows.titles = {kEmulatorTitle + " " + names_[index]};
    }
    int listIndex() const override { return index; }
    void setListIndex(int i) override { index = i; }
    int listCount() const override { return static_cast<int>(codes_.size()); }

    QString caption = "Games";
    QString last;
    int index = 0;

private:
    TestWorld& world_;
    std::vector<int> codes_;
    std::vector<QString> names_;
};

struct World {
    TestWorld world;
    std::vector<int> codes;
    std::unique_ptr<FakeForm> form;

    explicit World(const std::vector<QString>& files) {
        world.makeCatalogue();
        QDir().mkpath(world.path("ProgramImages"));
        auto c = world.open();
        std::vector<QString> names;
        for (const QString& file : files) {
            names.push_back(GetFileNameOf(file));
            codes.push_back(c->addProgram(program("Games", names.back(), world.path(file))));
        }
        form = std::make_unique<FakeForm>(world, codes, names);
        world.fake().associations.programs["IrfanView"] = "convert-it";
    }
    static QString GetFileNameOf(const QString& file) { return file.section('/', -1).section('.', 0, 0); }
    FakeHost& fake() { return world.fake(); }
    QString dir() { return world.root() + "/"; }
    // The emulator writes the file typed into its prompt when Enter follows.
    void emulatorWritesPictures() {
        fake().keyboard.onSendKeys = [this](const QString& keys) {
            if (keys == "{ENTER}" && fake().keyboard.sent.size() >= 2)
                world.writeFile(fake().keyboard.sent[fake().keyboard.sent.size() - 2].mid(dir().size()),
                                "PNG");
        };
    }
    QStringList conversion(const QString& source, const QString& jpeg) {
        return {"-c", "convert-it \"$1\" \"$2\"", "sh", dir() + source, "/convert=" + dir() + jpeg};
    }
};

} // namespace

TEST(SnapRunningPicture, KeysConversionAndFailures) {
    const QString title = kEmulatorTitle + " Star Raiders.atr";
    const struct {
        const char* name;
        bool window, writes, staleFile, converterStarts;
        std::vector<QString> journal;
        bool converted;
    } cases[] = {
        {"picture taken",
         true,
         true,
         false,
         true,
         {"activate " + kEmulatorTitle, "keys {F10}", "keys SNAP", "keys {ENTER}", "start /bin/sh", "click"},
         true},
        {"emulator wrote nothing, old file gone",
         true,
         false,
         true,
         true,
         {"activate " + kEmulatorTitle, "keys {F10}", "keys SNAP", "keys {ENTER}", "click"},
         false},
        {"no emulator window", false, false, false, true, {}, false},
        {"converter cannot start",
         true,
         true,
         false,
         false,
         {"activate " + kEmulatorTitle, "keys {F10}", "keys SNAP", "keys {ENTER}"},
         false},
    };
    for (const auto& c : cases) {
        World w({"Games/Star Raiders.atr"});
        w.form->last = "Star Raiders";
        if (c.window) w.fake().windows.titles = {title};
        if (c.writes) w.emulatorWritesPictures();
        if (c.staleFile) w.world.writeFile("snapshot.png", "old");
        if (!c.converterStarts) w.fake().processes.failuresToGo = 1;
        SnapRunningPicture(w.fake().host(), *w.form);
        std::vector<QString> expected = c.journal;
        for (QString& line : expected)
            line.replace("SNAP", w.dir() + "snapshot.png");
        EXPECT_EQ(w.fake().journal, expected) << c.name;
        EXPECT_TRUE(QDir(w.world.path("ProgramImages/Games")).exists()) << c.name;
        EXPECT_EQ(QFile::exists(w.world.path("snapshot.png")), c.writes) << c.name;
        if (c.converted) {
            EXPECT_EQ(w.fake().processes.started.back().args,
                      w.conversion("snapshot.png", "ProgramImages/Games/Star Raiders.jpg"));
        }
    }
}

TEST(SnapProgramPicture, LaunchesWaitsSnapsAndEndsTheEmulator) {
    World w({"Games/Star Raiders.atr"});
    w.emulatorWritesPictures();
    const double before = w.fake().clock.time;
    EXPECT_EQ(SnapProgramPicture(w.fake().host(), *w.form, 13), SnapOutcome::Continue);
    const std::vector<QString> expected = {"click",
                                           "launch Star Raiders",
                                           "activate " + kEmulatorTitle,
                                           "keys {F10}",
                                           "keys " + w.dir() + "snapshot.png",
                                           "keys {ENTER}",
                                           "start /bin/sh",
                                           "activate " + kEmulatorTitle,
                                           "keys %FE"};
    EXPECT_EQ(w.fake().journal, expected);
    EXPECT_GE(w.fake().clock.time - before, 13.5);
    EXPECT_EQ(w.fake().processes.started.back().args,
              w.conversion("snapshot.png", "ProgramImages/Games/Star Raiders.jpg"));
}

TEST(SnapProgramPicture, BasicListingTakesTheAtari800RoadAndEndsTheProgram) {
    for (bool pictureLeft : {true, false}) {
        World w({"Basic/Hello.bas"});
        w.fake().windows.titles = {"Atari800 1.0"};
        if (pictureLeft)
            w.fake().keyboard.onSendKeys = [&](const QString& keys) {
                if (keys == "%{F4}") w.world.writeFile("atari000.pcx", "PCX");
            };
        EXPECT_EQ(SnapProgramPicture(w.fake().host(), *w.form, 2), SnapOutcome::EndProgram);
        std::vector<QString> expected = {
            "click",   "launch Hello",    "activate Atari800", "beep",     "keys(wait) {F10}",
            "tap 121", "keys {F10}",      "keys(wait) {F1}",   "keys 121", "tap 112",
            "beep",    "keys(wait) %{F4}"};
        if (pictureLeft) expected.push_back("start /bin/sh");
        EXPECT_EQ(w.fake().journal, expected);
        EXPECT_EQ(w.fake().dialogs.messages,
                  pictureLeft ? std::vector<QString>{"fuck it worked!"} : std::vector<QString>{});
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
    const struct {
        const char* answer;
        int start;
        bool stopAfterFirst;
        int launches;
    } cases[] = {
        {"1", 0, false, 3},    {"1", 2, false, 1},     {"", 0, false, 0},
        {"soon", 0, false, 0}, {"99999", 0, false, 0}, {"1", 0, true, 1},
    };
    for (const auto& c : cases) {
        World w({"A/One.atr", "A/Two.atr", "A/Three.a26"});
        w.emulatorWritesPictures();
        w.form->index = c.start;
        w.fake().dialogs.inputAnswers = {c.answer};
        AutomaticPictureRun run;
        if (c.stopAfterFirst)
            w.fake().clock.onPump = [&] {
                // A second right click while the run is going stops it.
                if (w.form->last == "One" && run.running()) run.rightClick(w.fake().host(), *w.form);
            };
        EXPECT_EQ(run.rightClick(w.fake().host(), *w.form), SnapOutcome::Continue);
        EXPECT_FALSE(run.running());
        int launches = 0;
        for (const QString& line : w.fake().journal)
            launches += line.startsWith("launch ");
        EXPECT_EQ(launches, c.launches) << c.answer << " from " << c.start;
        EXPECT_EQ(w.fake().dialogs.prompts, std::vector<QString>{"Enter delay value:"});
    }
}
