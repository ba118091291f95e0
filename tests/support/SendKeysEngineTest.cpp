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

// The events a command sends, then " / number description" of its error. A failure releases
// every modifier held.
TEST(SendKeysEngine, SendsTheEventsOfACommand) {
    const QString bad = " Invalid sendkeys command";
    const struct {
        const char* keys;
        QString result;
        const char* hostFailure = "";
    } cases[] = {
        {"A?\u00e9", "65d 65u 191d 191u 255d 255u"}, // the shift state is dropped; no key is 255
        {"+(a%(x)b)", "16d 65d 65u 18d 88d 88u 18u 66d 66u 16u"},
        {"{~}~", "13d 13u 13d 13u"},
        {"a+", "65d 65u 16d 16u"},
        {"{F1 0}{F1 -2}", ""},
        {"{}}{{}(}", "221d 221u 219d 219u 57d 57u 221d 221u"},
        {"{f16}{F17}", "127d 127u 70d 70u"}, // a name the table lacks is the key of its first letter
        {"{x  2}{x +1.}{x .6}{x 1.5 }", "88d 88u 88d 88u 88d 88u 88d 88u 88d 88u 88d 88u"},
        {"+(a))", "16d 65d 65u 16u / 0" + bad + ": unmatched ) at position 5"},
        {"+(%(x", "16d 18d 88d 88u 18u 16u / 0" + bad + ": more open brackets than close brackets."},
        {"a{", "65d 65u / 0" + bad + "; opening { without content or closing } at position 2"},
        {"{ab", " / 0" + bad + "; opening { without closing } at position 1"},
        {"+({F1 })", "16d 16u / 0" + bad + "; key repetitions '' is invalid near position 8"},
        {"{F1 1x}", " / 0" + bad + "; key repetitions '1x' is invalid near position 8"},
        {"^(a{ 3}", "17d 65d 65u 17u / 9 Subscript out of range"},
        {"%({x 2147483647.5})", "18d 18u / 6 Overflow"},
        {"%(+(q))", "18d 16d 16u 18u / 9 Key q could not be interpreted."},
        {"+(a)", " / 5 no display", "no display"}, // the host's own fault
    };
    for (const auto& c : cases) {
        NoQKeyboard keyboard;
        keyboard.failure = c.hostFailure;
        cSendKeys engine(keyboard);
        QString error;
        try {
            engine.SendKeys(QString::fromUtf8(c.keys), true);
        } catch (const SendKeysError& e) {
            error = QStringLiteral(" / %1 %2").arg(e.number).arg(e.description);
            EXPECT_EQ(e.source, "support_tests.cSendKeys") << c.keys;
        }
        EXPECT_EQ(trace(keyboard.events) + error, c.result) << c.keys;
    }
}

TEST(SendKeysEngine, DirectCalls) {
    FakeKeyboard keyboard;
    cSendKeys engine(keyboard);
    EXPECT_THROW(engine.KeyDown(256), SendKeysError);
    EXPECT_THROW(engine.KeyUp(-1), SendKeysError);
    engine.KeyPress("{F10}", 1); // not a table name: the key of "{"
    engine.SendKeyF10();
    EXPECT_EQ(trace(keyboard.events), "219d 219u 121d! 121u!");
}
