#pragma once
// The key-command engine: a small key language ("+(ab)", "{TAB 3}") turned into low-level key events
// for whatever window holds the focus. The caller activates the target first.

#include "Host.h"

#include <QHash>
#include <QString>
#include <stdexcept>

namespace ql {

// An error raised by cSendKeys, with the number and source a caller can tell apart. what() is the
// description.
class SendKeysError : public std::runtime_error {
public:
    SendKeysError(int number, QString source, QString description);
    int number;
    QString source;
    QString description;
};

class cSendKeys {
public:
    explicit cSendKeys(Keyboard& keyboard);

    // "+" Shift, "^" Ctrl, "%" Alt: with "(" behind them they hold until the matching ")", alone they
    // are tapped by themselves. "~" is Enter, "{NAME}" and "{NAME n}" named keys, anything else the
    // key of the character. Wait changes nothing: the call returns once every event is sent. A bad
    // command raises a SendKeysError after every held modifier is released; keys sent before the
    // fault stay sent.
    void SendKeys(const QString& sKeys, bool Wait = false);
    // Presses the named key (a table name or the key of its first character) lCount times.
    void KeyPress(const QString& sKey, int lCount);
    // One key down or up by virtual-key code (0 to 255), always flagged as an extended key.
    void KeyDown(int vKey);
    void KeyUp(int vKey);
    // The virtual-key code of the first character on the current layout; 255 when no key types it.
    // The shift state the character needs is dropped.
    int KeyCode(const QString& sChar);
    // F10 down and up as a plain (not extended) key.
    void SendKeyF10();

private:
    // The character behind position lPos (counted from 1), or an empty text; lLen 0 means the whole text.
    QString NextChar(const QString& sText, int lPos, int lLen) const;

    Keyboard& keyboard_;
    QHash<QString, int> colKeys; // upper-case key name -> virtual-key code
};

} // namespace ql
