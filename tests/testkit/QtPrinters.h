#pragma once
// Readable gtest output for Qt texts.
#include <QString>
#include <ostream>

inline void PrintTo(const QString& s, std::ostream* os) {
    *os << '"' << s.toStdString() << '"';
}
