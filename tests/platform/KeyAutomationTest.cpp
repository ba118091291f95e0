// The SendKeys text as keystrokes, and the X11 keyboard and window activation against a real
// window on the test's X server.
#include "LinuxHost.h"
#include "SendKeysText.h"

#include <QElapsedTimer>
#include <gtest/gtest.h>

#include <X11/Xlib.h>
#include <X11/Xutil.h>

using namespace ql;

namespace {
const auto ch = [](char32_t c, int m = 0) { return KeyStroke{m, 0, c}; };
const auto vk = [](std::uint8_t code, int m = 0) { return KeyStroke{m, code, 0}; };
constexpr int S = KeyStroke::Shift, C = KeyStroke::Ctrl, A = KeyStroke::Alt;

// The text of the HostError a call raises.
QString errorOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const HostError& e) {
        return QString::fromUtf8(e.what());
    }
    return "no error";
}
} // namespace

TEST(SendKeysText, Strokes) {
    const struct {
        const char* keys;
        std::vector<KeyStroke> strokes;
    } cases[] = {
        {"^%{DEL}E", {vk(46, C | A), ch('E')}},
        {"{f10}~{ENTER}", {vk(121), vk(13), vk(13)}},
        {"%(+(x)y)z", {ch('x', A | S), ch('y', A), ch('z')}},
        {"{TAB 3}{F1 0}", {vk(9), vk(9), vk(9)}},
        {"{+}{%}{~}{(}{)}{{}{}}", {ch('+'), ch('%'), ch('~'), ch('('), ch(')'), ch('{'), ch('}')}},
        {"/ é😀", {ch('/'), ch(' '), ch(U'é'), ch(U'😀')}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(parseSendKeys(QString::fromUtf8(c.keys)), c.strokes) << c.keys;
}

TEST(SendKeysText, BadTextsNamePosition) {
    for (const auto& [keys, message] :
         {std::pair<const char*, const char*>{"ab)", "unmatched ) at position 3"},
          {"+(ab", "unmatched ( at position 2"},
          {"x{", "{ without its closing } at position 2"},
          {"{ab", "{ without its closing } at position 1"},
          {"{F99}", "unknown key {F99} at position 1"},
          {"{TAB x}", "bad repeat count in {TAB x} at position 1"},
          {"a%", "a modifier with no key behind it at position 2"}})
        EXPECT_EQ(errorOf([&] { parseSendKeys(QString::fromUtf8(keys)); }),
                  QString("Invalid key text: ") + message);
}

TEST(X11Automation, WithoutADisplayEveryFacilityNamesTheCause) {
    const QByteArray saved = qgetenv("DISPLAY"), savedWayland = qgetenv("WAYLAND_DISPLAY");
    qunsetenv("DISPLAY");
    LinuxKeyboard keyboard;
    LinuxWindows windows;
    const std::function<void()> calls[] = {
        [&] { windows.activate("Atari800"); }, [&] { keyboard.sendKeys("{F10}", false); },
        [&] { keyboard.tapVirtualKey(121); }, [&] { keyboard.keyEvent(65, true, true); },
        [&] { keyboard.beep(); }};
    for (const char* wayland : {"", "wayland-0"}) {
        qputenv("WAYLAND_DISPLAY", wayland);
        for (const auto& call : calls)
            EXPECT_TRUE(errorOf(call).contains(*wayland ? "Wayland session without X" : "No X display"))
                << errorOf(call).toStdString();
    }
    EXPECT_EQ(keyboard.keyScan(u'A'), 0x141); // a lookup still answers
    qputenv("WAYLAND_DISPLAY", savedWayland);
    if (!saved.isEmpty()) qputenv("DISPLAY", saved);
}

TEST(X11Automation, ActivatesByTitleAndTypesWithShift) {
    if (qEnvironmentVariableIsEmpty("DISPLAY")) GTEST_SKIP() << "needs an X server";
    // A plain X window of the test's own, which reads back the characters typed into it; it goes
    // with its connection.
    const std::unique_ptr<Display, int (*)(Display*)> x(XOpenDisplay(nullptr), XCloseDisplay);
    Display* dpy = x.get();
    const char* title = "Atari800Win Plus 4.0: Star Raiders.atr";
    const Window window = XCreateSimpleWindow(dpy, DefaultRootWindow(dpy), 0, 0, 200, 100, 0, 0, 0);
    Xutf8SetWMProperties(dpy, window, title, title, nullptr, 0, nullptr, nullptr, nullptr);
    XSelectInput(dpy, window, KeyPressMask | StructureNotifyMask);
    XMapRaised(dpy, window);
    for (XEvent e; XWindowEvent(dpy, window, StructureNotifyMask, &e), e.type != MapNotify;) {
    }
    // What has been typed, "<A>" before a character typed with Alt held, "<F10>" for a key without
    // a character; waits for count keys.
    const auto typed = [&](int count) {
        QString text;
        QElapsedTimer clock;
        clock.start();
        for (XEvent e; count > 0 && clock.elapsed() < 5000;) {
            if (!XPending(dpy)) {
                XSync(dpy, False);
                continue;
            }
            XNextEvent(dpy, &e);
            if (e.type != KeyPress) continue;
            XKeyEvent plain = e.xkey; // the character without Alt
            plain.state &= ~Mod1Mask;
            char buffer[16] = {};
            KeySym sym = 0;
            const int n = XLookupString(&plain, buffer, sizeof buffer, &sym, nullptr);
            if (IsModifierKey(sym)) continue;
            text += QString(e.xkey.state & Mod1Mask ? "<A>" : "") +
                    (n > 0 ? QString::fromLatin1(buffer, n) : QString("<%1>").arg(XKeysymToString(sym)));
            --count;
        }
        return text;
    };

    LinuxWindows windows;
    LinuxKeyboard keyboard;
    windows.activate("Atari800Win Plus 4.0:");
    keyboard.sendKeys("{F10}/tmp/My Games_{(}1{)}~%1%FE", true);
    keyboard.tapVirtualKey(121);
    EXPECT_EQ(typed(23), "<F10>/tmp/My Games_(1)\r<A>1<A>FE<F10>");
    EXPECT_EQ(keyboard.keyScan(u'_'), 0x1bd); // Shift and the minus key on a US layout

    EXPECT_THROW(windows.activate("Atari800Win Plus 4.0: Other"), HostError);
    EXPECT_THROW(windows.activate(""), HostError);
    EXPECT_THROW(keyboard.sendKeys("+(a", false), HostError);
}
