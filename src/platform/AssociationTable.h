#pragma once
// The user's file associations, $XDG_CONFIG_HOME/quaylight/associations.ini:
//
//   [Associations]
//   atr=/usr/games/quaylight-emu %f
//   a26=stella %f
//   [Programs]
//   Atari800=/usr/games/quaylight-emu
//
// Each command line is shell text written by the user; %f stands for the file, which the caller
// quotes (without %f the file goes at the end). A command that passes its text to a second shell
// (sh -c, eval) must take the file as that shell's argument, "$1", for a quoted name would be read
// as code there. A program entry is the command alone: the caller adds its arguments. Lines
// starting with ; or # are comments.

#include "Host.h"

#include <QMap>
#include <QString>

namespace ql {

class AssociationTable {
public:
    static AssociationTable parse(const QString& text);
    // A missing or unreadable file gives an empty table.
    static AssociationTable load(const QString& path);

    // By extension without the dot, in any case.
    QString commandFor(const QString& extension) const;
    QString program(const QString& name) const;

private:
    QMap<QString, QString> extensions_; // lower-case extension -> command line
    QMap<QString, QString> programs_;   // lower-case name -> command line
};

// $XDG_CONFIG_HOME/quaylight/associations.ini
QString associationFilePath();

// Reads the table at each question, so that an edit by the user counts at the next launch.
class LinuxAssociations : public Associations {
public:
    QString commandFor(const QString& extension) override;
    QString program(const QString& name) override;
};

} // namespace ql
