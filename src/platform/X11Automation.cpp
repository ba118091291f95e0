// Keys and windows on X11: synthetic XTest events go to the window that has the focus, and windows
// are found by their title as a window manager shows it.
#include "LinuxHost.h"
#include "SendKeysText.h"
#include "VirtualKeys.h"

#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace ql {

namespace {

// The default handler ends the process on BadWindow, which a target window closing between two
// requests causes; such a request simply has no effect.
int ignoreXErrors(Display*, XErrorEvent*) {
    return 0;
}

// One connection for the life of the process, opened at first use and again if DISPLAY changes.
Display* display() {
    static Display* dpy = nullptr;
    static QByteArray openedName;
    const QByteArray name = qgetenv("DISPLAY");
    if (dpy && name == openedName) return dpy;
    if (dpy) XCloseDisplay(dpy);
    dpy = nullptr;
    if (name.isEmpty()) {
        if (!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
            throw HostError("This is a Wayland session without X (DISPLAY is not set): emulator windows "
                            "are reached through X11 only. Start Quaylight in an X11 session or with "
                            "XWayland.");
        throw HostError("No X display (DISPLAY is not set): emulator windows cannot be reached.");
    }
    Display* opened = XOpenDisplay(name.constData());
    if (!opened) throw HostError("Cannot open the X display " + name.toStdString() + ".");
    int event = 0, error = 0, major = 0, minor = 0;
    if (!XTestQueryExtension(opened, &event, &error, &major, &minor)) {
        XCloseDisplay(opened);
        throw HostError("The X display " + name.toStdString() + " has no XTEST extension, which keys need.");
    }
    XSetErrorHandler(ignoreXErrors);
    dpy = opened;
    openedName = name;
    return dpy;
}

void sleepMs(int ms) {
    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

// --- keys ---

// A key that types the keysym: its keycode, and whether Shift must be held for it.
struct KeyFor {
    KeyCode code = 0;
    bool shift = false;
};

KeyFor keyFor(Display* dpy, KeySym sym) {
    const KeyCode code = XKeysymToKeycode(dpy, sym);
    if (code == 0) return {};
    if (XkbKeycodeToKeysym(dpy, code, 0, 0) == sym) return {code, false};
    if (XkbKeycodeToKeysym(dpy, code, 0, 1) == sym) return {code, true};
    return {}; // only on a third level (AltGr): typed through a spare key instead
}

// A keycode that the layout leaves empty, for characters that no key types.
KeyCode spareKeycode(Display* dpy) {
    int low = 0, high = 0;
    XDisplayKeycodes(dpy, &low, &high);
    int perCode = 0;
    KeySym* map = XGetKeyboardMapping(dpy, static_cast<KeyCode>(low), high - low + 1, &perCode);
    KeyCode spare = 0;
    for (int code = high; code >= low && spare == 0; --code) {
        bool empty = true;
        for (int i = 0; i < perCode; ++i)
            if (map[(code - low) * perCode + i] != NoSymbol) empty = false;
        if (empty) spare = static_cast<KeyCode>(code);
    }
    XFree(map);
    return spare;
}

void fakeKey(Display* dpy, KeyCode code, bool down) {
    XTestFakeKeyEvent(dpy, code, down ? True : False, CurrentTime);
}

// Taps a keysym, holding Shift when the layout needs it and Shift is not held already. A keysym
// that no key gives is put on a spare key for the moment of the tap.
void tapKeysym(Display* dpy, KeySym sym, bool shiftHeld) {
    if (sym == 0) return;
    KeyFor key = keyFor(dpy, sym);
    KeyCode borrowed = 0;
    if (key.code == 0) {
        borrowed = spareKeycode(dpy);
        if (borrowed == 0) throw HostError("No free key to type a character with on this keyboard.");
        KeySym both[2] = {sym, sym};
        XChangeKeyboardMapping(dpy, borrowed, 2, both, 1);
        XSync(dpy, False);
        key = {borrowed, false};
    }
    const KeyCode shift = XKeysymToKeycode(dpy, XK_Shift_L);
    const bool addShift = key.shift && !shiftHeld && shift != 0;
    if (addShift) fakeKey(dpy, shift, true);
    fakeKey(dpy, key.code, true);
    fakeKey(dpy, key.code, false);
    if (addShift) fakeKey(dpy, shift, false);
    if (borrowed) {
        XSync(dpy, False);
        KeySym none[2] = {NoSymbol, NoSymbol};
        XChangeKeyboardMapping(dpy, borrowed, 2, none, 1);
    }
    XFlush(dpy);
}

// The keycode of a key given by Windows virtual-key code; 0 when this keyboard has none.
KeyCode keycodeForVirtualKey(Display* dpy, std::uint8_t vk) {
    const KeySym sym = keysymForVirtualKey(vk);
    return sym ? XKeysymToKeycode(dpy, sym) : 0;
}

// --- windows ---

std::string textProperty(Display* dpy, Window w, Atom property, Atom type) {
    Atom actualType = None;
    int format = 0;
    unsigned long count = 0, after = 0;
    unsigned char* data = nullptr;
    std::string text;
    if (XGetWindowProperty(dpy, w, property, 0, 4096, False, type, &actualType, &format, &count, &after,
                           &data) == Success &&
        data) {
        if (format == 8) text.assign(reinterpret_cast<const char*>(data), count);
        XFree(data);
    }
    return text;
}

struct TitleAtoms {
    Atom netName;
    Atom utf8;
};

QString titleOf(Display* dpy, Window w, const TitleAtoms& atoms) {
    const std::string name = textProperty(dpy, w, atoms.netName, atoms.utf8);
    if (!name.empty()) return QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
    const std::string legacy = textProperty(dpy, w, XA_WM_NAME, AnyPropertyType);
    return QString::fromLocal8Bit(legacy.data(), static_cast<qsizetype>(legacy.size()));
}

bool viewable(Display* dpy, Window w) {
    XWindowAttributes attributes{};
    return XGetWindowAttributes(dpy, w, &attributes) && attributes.map_state == IsViewable;
}

// Every named, viewable window, topmost first, as a window list is ordered.
void collect(Display* dpy, Window w, const TitleAtoms& atoms, std::vector<std::pair<Window, QString>>& out) {
    Window root = 0, parent = 0;
    Window* children = nullptr;
    unsigned int count = 0;
    if (!XQueryTree(dpy, w, &root, &parent, &children, &count)) return;
    for (unsigned int i = count; i-- > 0;) {
        const Window child = children[i];
        if (!viewable(dpy, child)) continue;
        const QString title = titleOf(dpy, child, atoms);
        if (!title.isEmpty()) out.emplace_back(child, title);
        collect(dpy, child, atoms, out);
    }
    if (children) XFree(children);
}

bool holdsFocus(Display* dpy, Window w) {
    Window focus = 0;
    int revert = 0;
    XGetInputFocus(dpy, &focus, &revert);
    // The focus may sit on a child of the window, or the window may sit inside a frame.
    for (Window at = focus; at != 0 && at != PointerRoot;) {
        if (at == w) return true;
        Window root = 0, parent = 0;
        Window* children = nullptr;
        unsigned int count = 0;
        if (!XQueryTree(dpy, at, &root, &parent, &children, &count)) return false;
        if (children) XFree(children);
        if (at == root) return false;
        at = parent;
    }
    return false;
}

bool windowManagerActivates(Display* dpy) {
    const Atom supported = XInternAtom(dpy, "_NET_SUPPORTED", False);
    const Atom active = XInternAtom(dpy, "_NET_ACTIVE_WINDOW", False);
    Atom type = None;
    int format = 0;
    unsigned long count = 0, after = 0;
    unsigned char* data = nullptr;
    bool found = false;
    if (XGetWindowProperty(dpy, DefaultRootWindow(dpy), supported, 0, 4096, False, XA_ATOM, &type, &format,
                           &count, &after, &data) == Success &&
        data) {
        const auto* atoms = reinterpret_cast<const Atom*>(data);
        for (unsigned long i = 0; i < count; ++i)
            if (atoms[i] == active) found = true;
        XFree(data);
    }
    return found;
}

constexpr int kFocusWaitMs = 2000;

} // namespace

void LinuxKeyboard::keyEvent(std::uint8_t vk, bool down, bool) {
    Display* dpy = display();
    KeyCode code = keycodeForVirtualKey(dpy, vk);
    if (code == 0) return; // a key this keyboard does not have: Windows drops it as well
    fakeKey(dpy, code, down);
    XFlush(dpy);
}

void LinuxKeyboard::tapVirtualKey(std::uint8_t vk) {
    keyEvent(vk, true, false);
    keyEvent(vk, false, false);
}

int LinuxKeyboard::keyScan(char16_t character) {
    Display* dpy = nullptr;
    try {
        dpy = display();
    } catch (const HostError&) {
        return usLayoutKeyScan(character); // a lookup needs no window: answer as a US keyboard would
    }
    const KeySym sym = keysymForCharacter(character);
    const KeyCode code = XKeysymToKeycode(dpy, sym);
    if (code == 0) return -1;
    const KeySym base = XkbKeycodeToKeysym(dpy, code, 0, 0);
    const std::uint8_t vk = virtualKeyForKeysym(base);
    if (vk == 0) return -1;
    int state = 0;
    if (base != sym) state = XkbKeycodeToKeysym(dpy, code, 0, 1) == sym ? 1 : 6; // Shift, or AltGr
    return state << 8 | vk;
}

void LinuxKeyboard::sendKeys(const QString& keys, bool wait) {
    const std::vector<KeyStroke> strokes = parseSendKeys(keys); // a bad text sends nothing
    Display* dpy = display();
    struct Modifier {
        int flag;
        KeySym sym;
    };
    const Modifier modifiers[] = {
        {KeyStroke::Ctrl, XK_Control_L}, {KeyStroke::Alt, XK_Alt_L}, {KeyStroke::Shift, XK_Shift_L}};
    for (const KeyStroke& stroke : strokes) {
        for (const Modifier& m : modifiers)
            if (stroke.modifiers & m.flag) fakeKey(dpy, XKeysymToKeycode(dpy, m.sym), true);
        const KeySym sym = stroke.vk ? keysymForVirtualKey(stroke.vk) : keysymForCharacter(stroke.character);
        try {
            tapKeysym(dpy, sym, stroke.modifiers & KeyStroke::Shift);
        } catch (...) {
            for (const Modifier& m : modifiers)
                if (stroke.modifiers & m.flag) fakeKey(dpy, XKeysymToKeycode(dpy, m.sym), false);
            XFlush(dpy);
            throw;
        }
        for (auto m = std::rbegin(modifiers); m != std::rend(modifiers); ++m)
            if (stroke.modifiers & m->flag) fakeKey(dpy, XKeysymToKeycode(dpy, m->sym), false);
    }
    if (wait)
        XSync(dpy, False);
    else
        XFlush(dpy);
}

void LinuxKeyboard::beep() {
    Display* dpy = display();
    XBell(dpy, 0);
    XFlush(dpy);
}

void LinuxWindows::activate(const QString& title) {
    Display* dpy = display();
    if (title.isEmpty()) throw HostError("No window title given.");
    const TitleAtoms atoms{XInternAtom(dpy, "_NET_WM_NAME", False), XInternAtom(dpy, "UTF8_STRING", False)};
    std::vector<std::pair<Window, QString>> windows;
    collect(dpy, DefaultRootWindow(dpy), atoms, windows);
    Window target = 0;
    for (const auto& [w, t] : windows)
        if (target == 0 && t == title) target = w;
    for (const auto& [w, t] : windows)
        if (target == 0 && t.startsWith(title)) target = w;
    if (target == 0) throw HostError("No window titled " + title.toStdString());

    if (windowManagerActivates(dpy)) {
        XEvent event{};
        event.xclient.type = ClientMessage;
        event.xclient.window = target;
        event.xclient.message_type = XInternAtom(dpy, "_NET_ACTIVE_WINDOW", False);
        event.xclient.format = 32;
        event.xclient.data.l[0] = 2; // asked for by the user's tool, so no focus-stealing rule applies
        event.xclient.data.l[1] = CurrentTime;
        XSendEvent(dpy, DefaultRootWindow(dpy), False, SubstructureRedirectMask | SubstructureNotifyMask,
                   &event);
    }
    XRaiseWindow(dpy, target);
    XSetInputFocus(dpy, target, RevertToParent, CurrentTime);
    XSync(dpy, False);
    for (int waited = 0; !holdsFocus(dpy, target); waited += 5) {
        if (waited >= kFocusWaitMs)
            throw HostError("The window " + title.toStdString() + " did not take the focus.");
        sleepMs(5);
        XSetInputFocus(dpy, target, RevertToParent, CurrentTime);
        XSync(dpy, False);
    }
}

} // namespace ql
