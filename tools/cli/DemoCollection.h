#pragma once
#include <QString>

namespace ql {
// Writes a small, realistic collection under folder (files of every family, awkward names) and a
// catalogue Atari.mdb that lists it, configured so the program starts straight into it.
void writeDemoCollection(const QString& folder);
} // namespace ql
