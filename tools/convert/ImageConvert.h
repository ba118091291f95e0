#pragma once
// Turns a screenshot (PNG, PCX, anything Qt reads) into a JPEG, whole or not at all.

#include <QString>

namespace ql {

// Writes the picture at source as a JPEG at destination, through a temporary file in the destination's
// folder. Returns an empty text when done, otherwise one line naming the file and the cause; on failure
// the destination is neither created nor changed. Magick must be initialised before the first call.
QString convertToJpeg(const QString& source, const QString& destination, int quality = 90);

} // namespace ql
