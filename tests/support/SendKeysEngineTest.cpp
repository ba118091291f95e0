#include "FakeHost.h"
#include "QtPrinters.h"
#include "cSendKeys.h"

#include <gtest/gtest.h>

using namespace ql;
using namespace ql::test;

namespace {

// "16d 65d 65u 16u"; a plain (not extended) event is marked with "!".
QString trace(const std::vector<KeyEventRecord>& events) {
    QStringList parts;
    for (const KeyEventRecord& e : events)
        parts << QString::number(e.vk) + (e.down ? "d" : "u") + (e.extended ? "" : "!");
    return parts.join(' ');
}

// A layout where "q" gives a code of 0 and so has no key for the engine.
class NoQKeyboard : public FakeKeyboard {
public:
    int keyScan(char16_t c) override { return c == u'q' ? 0x100 : FakeKeyboard::keyScan(c); }
};

} // namespace

TEST(SendKeysEngine, SendsTheEventsOfACommand) {
    const struct {
        const char* keys;
        const char* events;
    } cases[] = {
        {"", ""},
        {"{F10}", "121d 121u"},
        {"{f10}", "121d 121u"},
        {"ab", "65d 65u 66d 66u"},
        {"A?", "65d 65u 191d 191u"}, // the shift state is dropped
        {"+(ab)", "16d 65d 65u 66d 66u 16u"},
        {"%f", "18d 18u 70d 70u"},
        {"^(a)^a", "17d 65d 65u 17u 17d 17u 65d 65u"},
        {"{TAB 3}", "9d 9u 9d 9u 9d 9u"},
        {"+(%(x))", "16d 18d 88d 88u 18u 16u"},
        {"{~}~", "13d 13u 13d 13u"},
        {"121", "49d 49u 50d 50u 49d 49u"},
        {"a+", "65d 65u 16d 16u"},
        {"{F1 0}{F1 -2}", ""},
        {"{}}{{}(}", "221d 221u 219d 219u 57d 57u 221d 221u"},
        {"{F17}", "70d 70u"},
        {"{prtsc}{Bksp}{F16}{ScrollLock}{help}", "42d 42u 8d 8u 127d 127u 145d 145u 47d 47u"},
        {"{x  2}{x +1.}{x .6}{x 1.5 }", "88d 88u 88d 88u 88d 88u 88d 88u 88d 88u 88d 88u"},
    };
    for (const auto& c : cases) {
        FakeKeyboard keyboard;
        cSendKeys engine(keyboard);
        engine.SendKeys(QString::fromUtf8(c.keys), true);
        EXPECT_EQ(trace(keyboard.events), c.events) << c.keys;
    }
}

TEST(SendKeysEngine, FailsReleasingEveryHeldModifier) {
    const QString bad = "Invalid sendkeys command";
    const struct {
        const char* keys;
        const char* events;
        int number;
        QString description;
    } cases[] = {
        {")", "", 0, bad + ": unmatched ) at position 1"},
        {"+(a))", "16d 65d 65u 16u", 0, bad + ": unmatched ) at position 5"},
        {"+(", "16d 16u", 0, bad + ": more open brackets than close brackets."},
        {"+(%(x", "16d 18d 88d 88u 18u 16u", 0, bad + ": more open brackets than close brackets."},
        {"{}", "", 0, bad + "; opening { without content or closing } at position 1"},
        {"{a", "", 0, bad + "; opening { without content or closing } at position 1"},
        {"a{", "65d 65u", 0, bad + "; opening { without content or closing } at position 2"},
        {"{ab", "", 0, bad + "; opening { without closing } at position 1"},
        {"{F1 x}", "", 0, bad + "; key repetitions 'x' is invalid near position 7"},
        {"+({F1 })", "16d 16u", 0, bad + "; key repetitions '' is invalid near position 8"},
        {"{F1 1x}", "", 0, bad + "; key repetitions '1x' is invalid near position 8"},
        {"^(a{ 3}", "17d 65d 65u 17u", 9, "Subscript out of range"},
        {"%({x 99999999999})", "18d 18u", 6, "Overflow"},
        {"{x 2147483647.5}", "", 6, "Overflow"},
        {"%(+(q))", "18d 16d 16u 18u", 9, "Key q could not be interpreted."},
    };
    for (const auto& c : cases) {
        NoQKeyboard keyboard;
        cSendKeys engine(keyboard);
        try {
            engine.SendKeys(QString::fromUtf8(c.keys));
            ADD_FAILURE() << "no error for " << c.keys;
        } catch (const SendKeysError& e) {
            EXPECT_EQ(e.number, c.number) << c.keys;
            EXPECT_EQ(e.description, c.description) << c.keys;
            EXPECT_EQ(QString::fromStdString(e.what()), c.description) << c.keys;
            EXPECT_EQ(e.source, "support_tests.cSendKeys") << c.keys;
        }
        EXPECT_EQ(trace(keyboard.events), c.events) << c.keys;
    }
}

TEST(SendKeysEngine, HostFailureLeavesAsAnEngineError) {
    FakeKeyboard keyboard;
    keyboard.failure = "no display";
    cSendKeys engine(keyboard);
    try {
        engine.SendKeys("+(a)");
        ADD_FAILURE() << "no error";
    } catch (const SendKeysError& e) {
        EXPECT_EQ(e.number, 5);
        EXPECT_EQ(e.description, "no display");
        EXPECT_EQ(e.source, "support_tests.cSendKeys");
    }
}

TEST(SendKeysEngine, DirectCallsRaiseWithoutSource) {
    NoQKeyboard keyboard;
    cSendKeys engine(keyboard);
    const auto raises = [](auto call, int number, const QString& description) {
        try {
            call();
            ADD_FAILURE() << "no error for " << description.toStdString();
        } catch (const SendKeysError& e) {
            EXPECT_EQ(e.number, number);
            EXPECT_EQ(e.description, description);
            EXPECT_TRUE(e.source.isEmpty());
        }
    };
    raises([&] { engine.KeyPress("q", 1); }, 9, "Key q could not be interpreted.");
    raises([&] { engine.KeyCode(""); }, 9, "Subscript out of range");
    raises([&] { engine.KeyDown(256); }, 6, "Overflow");
    raises([&] { engine.KeyUp(-1); }, 6, "Overflow");
    EXPECT_TRUE(keyboard.events.empty());

    EXPECT_EQ(engine.KeyCode("a"), 65);
    EXPECT_EQ(engine.KeyCode("Ab"), 65);
    EXPECT_EQ(engine.KeyCode(QStringLiteral("\u00e9")), 255); // no key on the layout

    engine.KeyPress("{F10}", 1); // not a table name: the key of "{"
    engine.KeyPress("TAB", 0);
    engine.KeyPress("TAB", -3);
    engine.KeyDown(255);
    engine.SendKeyF10();
    EXPECT_EQ(trace(keyboard.events), "219d 219u 255d 121d! 121u!");
}
