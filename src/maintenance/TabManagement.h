#pragma once
// The names and source folders of the 25 form rows, as the Tabs table keeps them (TabCode = row + 1).

#include "Rebuild.h"

#include <QString>
#include <array>

namespace ql {

struct TabRow {
    QString name;
    QString source;
};
using TabRows = std::array<TabRow, kFormRows>;

// The rows as a new form shows them before the catalogue is read.
TabRows defaultTabRows();
// Overwrites each row that has a Tabs record; the others keep what they hold.
void loadTabMgmt(const QString& cataloguePath, TabRows& rows);
// Writes every row's name and folder as typed, all or none.
void saveTabMgmt(const QString& cataloguePath, const TabRows& rows);

} // namespace ql
