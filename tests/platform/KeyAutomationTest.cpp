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
KeyStroke ch(char32_t c, int m = 0) {
    return {m, 0, c};
}
KeyStroke vk(std::uint8_t code, int m = 0) {
    return {m, code, 0};
}
constexpr int S = KeyStroke::Shift, C = KeyStroke::Ctrl, A = KeyStroke::Alt;
} // namespace

TEST(SendKeysText, Strokes) {
    const struct {
        const char* keys;
        std::vector<KeyStroke> strokes;
    } cases[] = {
        {"", {}},
        {"%FE", {ch('F', A), ch('E')}},
        {"%1", {ch('1', A)}},
        {"{F10}~{ENTER}", {vk(121), vk(13), vk(13)}},
        {"+(ab)c", {ch('a', S), ch('b', S), ch('c')}},
        {"^%{DEL}", {vk(46, C | A)}},
        {"%(+(x)y)", {ch('x', A | S), ch('y', A)}},
        {"{TAB 3}{F1 0}", {vk(9), vk(9), vk(9)}},
        {"{+}{%}{~}{(}{)}{{}{}}", {ch('+'), ch('%'), ch('~'), ch('('), ch(')'), ch('{'), ch('}')}},
        {"{f10}{pgdn}", {vk(121), vk(34)}},
        {"/tmp/a b_é",
         {ch('/'), ch('t'), ch('m'), ch('p'), ch('/'), ch('a'), ch(' '), ch('b'), ch('_'), ch(U'é')}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(parseSendKeys(QString::fromUtf8(c.keys)), c.strokes) << c.keys;
}

TEST(SendKeysText, BadTextsNamePosition) {
    const struct {
        const char* keys;
        const char* message;
    } cases[] = {
        {"ab)", "unmatched ) at position 3"},
        {"+(ab", "unmatched ( at position 2"},
        {"x{", "{ without its closing } at position 2"},
        {"{ab", "{ without its closing } at position 1"},
        {"{F99}", "unknown key {F99} at position 1"},
        {"{TAB x}", "bad repeat count in {TAB x} at position 1"},
        {"a%", "a modifier with no key behind it at position 2"},
    };
    for (const auto& c : cases) {
        try {
            parseSendKeys(QString::fromUtf8(c.keys));
            ADD_FAILURE() << c.keys;
        } catch (const HostError& e) {
            EXPECT_TRUE(QString::fromUtf8(e.what()).endsWith(c.message)) << c.keys << ": " << e.what();
        }
    }
}

TEST(X11Automation, WithoutADisplayEveryFacilityNamesTheCause) {
    const QByteArray saved = qgetenv("DISPLAY");
    const QByteArray savedWayland = qgetenv("WAYLAND_DISPLAY");
    qunsetenv("DISPLAY");
    LinuxKeyboard keyboard;
    LinuxWindows windows;
    for (const char* wayland : {"", "wayland-0"}) {
        qputenv("WAYLAND_DISPLAY", wayland);
        const std::string cause = *wayland ? "Wayland session without X" : "No X display";
        const std::function<void()> calls[] = {
            [&] { windows.activate("Atari800"); }, [&] { keyboard.sendKeys("{F10}", false); },
            [&] { keyboard.tapVirtualKey(121); }, [&] { keyboard.keyEvent(65, true, true); },
            [&] { keyboard.beep(); }};
        for (const auto& call : calls) {
            try {
                call();
                ADD_FAILURE() << "no error";
            } catch (const HostError& e) {
                EXPECT_NE(std::string(e.what()).find(cause), std::string::npos) << e.what();
            }
        }
        EXPECT_EQ(keyboard.keyScan(u'A'), 0x141); // a lookup still answers
    }
    qputenv("WAYLAND_DISPLAY", savedWayland);
    if (!saved.isEmpty()) qputenv("DISPLAY", saved);
}

namespace {
// A plain X window of the test's own, which reads back the characters typed into it.
class KeyTarget {
public:
    explicit KeyTarget(const char* title) : dpy_(XOpenDisplay(nullptr)) {
        window_ = XCreateSimpleWindow(dpy_, DefaultRootWindow(dpy_), 0, 0, 200, 100, 0, 0, 0);
        Xutf8SetWMProperties(dpy_, window_, title, title, nullptr, 0, nullptr, nullptr, nullptr);
        XSelectInput(dpy_, window_, KeyPressMask | StructureNotifyMask);
        XMapRaised(dpy_, window_);
        for (XEvent e; XWindowEvent(dpy_, window_, StructureNotifyMask, &e), e.type != MapNotify;) {
        }
    }
    ~KeyTarget() {
        XDestroyWindow(dpy_, window_);
        XCloseDisplay(dpy_);
    }
    // What has been typed, with "<A>" before a character typed with Alt held; waits for count keys.
    QString typed(int count) {
        QString text;
        QElapsedTimer clock;
        clock.start();
        while (count > 0 && clock.elapsed() < 5000) {
            if (!XPending(dpy_)) {
                XSync(dpy_, False);
                continue;
            }
            XEvent e;
            XNextEvent(dpy_, &e);
            if (e.type != KeyPress) continue;
            char buffer[16] = {};
            KeySym sym = 0;
            XKeyEvent plain = e.xkey;
            plain.state &= ~Mod1Mask;
            const int n = XLookupString(&plain, buffer, sizeof buffer, &sym, nullptr);
            const QString key = sym == XK_Return ? QStringLiteral("<Enter>")
                                : sym == XK_F10  ? QStringLiteral("<F10>")
                                                 : QString::fromLatin1(buffer, n);
            if (key.isEmpty()) continue; // a modifier going down
            text += (e.xkey.state & Mod1Mask ? QStringLiteral("<A>") : QString()) + key;
            --count;
        }
        return text;
    }
    Window window() const { return window_; }

private:
    Display* dpy_;
    Window window_ = 0;
};
} // namespace

TEST(X11Automation, ActivatesByTitleAndTypesWithShift) {
    if (qEnvironmentVariableIsEmpty("DISPLAY")) GTEST_SKIP() << "needs an X server";
    KeyTarget target("Atari800Win Plus 4.0: Star Raiders.atr");
    LinuxWindows windows;
    LinuxKeyboard keyboard;
    windows.activate("Atari800Win Plus 4.0:");
    keyboard.sendKeys("{F10}/tmp/My Games_{(}1{)}~%1%FE", true);
    EXPECT_EQ(target.typed(22), "<F10>/tmp/My Games_(1)<Enter><A>1<A>FE");
    keyboard.tapVirtualKey(121);
    EXPECT_EQ(target.typed(1), "<F10>");
    EXPECT_EQ(keyboard.keyScan(u'_'), 0x1bd); // Shift and the minus key on a US layout

    EXPECT_THROW(windows.activate("Atari800Win Plus 4.0: Other"), HostError);
    EXPECT_THROW(windows.activate(""), HostError);
    EXPECT_THROW(keyboard.sendKeys("+(a", false), HostError);
}
