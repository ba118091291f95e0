#pragma once
// Small makers of the controls the forms share: named widgets and pictures drawn from SVG.

#include <QLabel>
#include <QPushButton>
#include <QSize>
#include <QString>

namespace ql {

template <typename T> T* named(T* widget, const QString& name) {
    widget->setObjectName(name);
    return widget;
}

// A picture drawn once at the size it is shown, in a label of that size.
QLabel* pictureLabel(QWidget* parent, const QString& name, const QString& resource, const QSize& size);
// A push button that stays down when set, as the option boxes are.
QPushButton* checkButton(QWidget* parent, const QString& name, const QString& caption);

inline const QSize kMachineSize(200, 120);
inline const QSize kDriveSize(96, 56);
// picAtari 0 to 8: the three 8-bit machines, then ST, 2600, 5200, 7800, Jaguar and Lynx.
inline const char* const kMachinePictures[9] = {
    ":/machines/atari400.svg",  ":/machines/atari800.svg",  ":/machines/atarixl.svg",
    ":/machines/atarist.svg",   ":/machines/atari2600.svg", ":/machines/atari5200.svg",
    ":/machines/atari7800.svg", ":/machines/jaguar.svg",    ":/machines/lynx.svg"};

} // namespace ql
