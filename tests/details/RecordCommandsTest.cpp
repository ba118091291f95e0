#include "RecordCommands.h"
#include "TestWorld.h"
#include "frmEditProgram.h"

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QSqlQuery>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

using namespace ql;
using namespace ql::test;

namespace {

// Every field of a row as text, so that one comparison covers "nothing else changed".
QStringList allFields(const ProgramRecord& r) {
    QStringList texts{r.category,  r.name,      r.fileName1, r.fileName2,
                      r.fileName3, r.fileName4, r.crc,       r.description.toString()};
    for (int n : {r.tabNumber, r.type, r.rating, r.machineType, int(r.basic), r.video, r.memory, r.artifact,
                  r.stretch})
        texts << QString::number(n);
    return texts;
}

class RecordCommandsTest : public ::testing::Test {
protected:
    void SetUp() override { path = world.makeCatalogue(); }
    int add(const QString& category, int tab, const QString& name = "Star Raiders") {
        ProgramRecord r = program(category, name, "/atari/Games/sr.atr");
        r.tabNumber = tab;
        r.crc = "-123";
        r.rating = 4;
        r.description = "Space";
        return world.open()->addProgram(r);
    }
    ProgramRecord row(int code) { return *world.open()->programByCode(code); }
    int count() { return world.open()->countPrograms(); }
    // An editor on the row, shown as the program shows it.
    std::unique_ptr<frmEditProgram> editor(int code) {
        auto form = std::make_unique<frmEditProgram>(path, world.fake().dialogs);
        form->ProgramCode->setText(QString::number(code));
        form->show();
        return form;
    }
    TestWorld world;
    QString path;
};

TEST_F(RecordCommandsTest, EachCommandTouchesItsRowAlone) {
    const int kept = add("Games", 7);
    const int favourite = add("Favourites", 0);
    const int gone = add("Games", 0, "Gone");
    world.open()->deleteProgram(gone);
    QStringList expected = allFields(row(kept));
    for (int index : {0, 1, 2})
        for (int code : {0, gone})
            EXPECT_EQ(recordCommand(path, index, code), RecordOutcome::Nothing) << index << " " << code;
    EXPECT_EQ(recordCommand(path, 3, kept), RecordOutcome::Nothing);
    EXPECT_EQ(recordCommand(path, 2, kept), RecordOutcome::OpenEditor);
    EXPECT_EQ(allFields(row(kept)), expected);

    // Favourites moves the category alone: the tab stays, so a rebuild of the old tab still takes it.
    EXPECT_EQ(recordCommand(path, 0, kept), RecordOutcome::Done);
    expected[0] = "Favourites";
    EXPECT_EQ(allFields(row(kept)), expected);
    EXPECT_EQ(recordCommand(path, 1, favourite), RecordOutcome::Done);
    EXPECT_FALSE(world.open()->programByCode(favourite));
    EXPECT_EQ(count(), 1);
}

TEST_F(RecordCommandsTest, RefusedWritesRaiseAndChangeNothing) {
    const int code = add("Games", 0);
    const QStringList before = allFields(row(code));
    {
        const auto catalogue = world.open();
        QSqlQuery q(catalogue->database());
        for (const char* when : {"UPDATE", "DELETE"})
            ASSERT_TRUE(q.exec(QString("CREATE TRIGGER Refuse%1 BEFORE %1 ON Programs "
                                       "BEGIN SELECT RAISE(ABORT, 'read-only'); END")
                                   .arg(when)));
    }
    for (int index : {0, 1})
        EXPECT_THROW(recordCommand(path, index, code), StoreError) << index;
    const auto form = editor(code);
    form->txtField[0]->setText("Changed");
    QTest::mouseClick(form->cmdSave, Qt::LeftButton);
    EXPECT_EQ(world.fake().dialogs.messages.size(), 1u) << "the user learns the save failed";
    EXPECT_EQ(allFields(row(code)), before);
}

TEST_F(RecordCommandsTest, FieldsByNameAreCheckedAgainstTheColumns) {
    const int code = add("Games", 0);
    const QStringList before = allFields(row(code));
    const QList<QVariantMap> refused = {
        {{"Nope", "x"}},      {{"Name = 'x', Category", "y"}}, {{"Name\"", "x"}},
        {{"ProgramCode", 5}}, {{"Name", "a"}, {"NAME", "b"}},
    };
    for (const QVariantMap& fields : refused)
        EXPECT_THROW(world.open()->setProgramFields(code, fields), StoreError)
            << fields.firstKey().toStdString();
    EXPECT_THROW(world.open()->programFields(code, {"Name", "Nope"}), StoreError);
    EXPECT_EQ(allFields(row(code)), before);

    EXPECT_TRUE(world.open()->setProgramFields(code, {{"filename2", "/b.atr"}, {"Rating", 2}}));
    EXPECT_EQ(row(code).fileName2, "/b.atr");
    EXPECT_EQ(row(code).rating, 2);
    EXPECT_FALSE(world.open()->setProgramFields(code + 1, {{"Name", "x"}}));
    EXPECT_EQ(count(), 1);
}

TEST_F(RecordCommandsTest, EditorRoundTripThroughTheForm) {
    const int code = add("Games", 0);
    const int other = add("Games", 0, "Other");
    const QStringList untouched = allFields(row(other));
    frmEditProgram form(path, world.fake().dialogs);
    // A box with a Tag is a field: this one shows and saves CRC.
    auto* crc = new QLineEdit(&form);
    crc->setProperty("Tag", "CRC");
    form.txtField.push_back(crc);
    form.ProgramCode->setText(QString::number(code));
    form.show();
    QStringList shown;
    for (auto* box : form.txtField)
        shown << box->text();
    EXPECT_EQ(shown, QStringList({"Star Raiders", "/atari/Games/sr.atr", " ", " ", " ", "-123"}));

    form.txtField[0]->clear();
    QTest::keyClicks(form.txtField[0], "Star Raiders II");
    crc->setText("77");
    QTest::mouseClick(form.cmdSave, Qt::LeftButton);
    const ProgramRecord saved = row(code);
    EXPECT_EQ(QStringList({saved.name, saved.crc, saved.fileName2}),
              QStringList({"Star Raiders II", "77", " "}))
        << "a blank stays one blank";
    EXPECT_EQ(allFields(row(other)), untouched);

    // A row deleted meanwhile is not made again; a missing row leaves the boxes empty.
    world.open()->deleteProgram(code);
    QTest::mouseClick(form.cmdSave, Qt::LeftButton);
    EXPECT_EQ(count(), 1);
    EXPECT_TRUE(form.isVisible());
    EXPECT_TRUE(world.fake().dialogs.messages.empty());
    EXPECT_EQ(editor(code)->txtField[0]->text(), "");
    QTest::mouseClick(form.cmdClose, Qt::LeftButton);
    EXPECT_FALSE(form.isVisible());
}

TEST_F(RecordCommandsTest, EditOpensTheRecordCentredAndModal) {
    const int code = add("Games", 0);
    QString name;
    QPoint expected, actual;
    QTimer::singleShot(0, [&] {
        auto* form = qobject_cast<frmEditProgram*>(QApplication::activeModalWidget());
        ASSERT_TRUE(form);
        name = form->txtField[0]->text();
        const QRect screen = QGuiApplication::primaryScreen()->geometry();
        expected = {(screen.width() - form->width()) / 2, (screen.height() - form->height()) / 2};
        actual = form->pos();
        form->cmdClose->click();
    });
    openProgramEditor(path, code, world.fake().dialogs);
    EXPECT_EQ(name, "Star Raiders");
    EXPECT_EQ(actual, expected);
}

} // namespace
