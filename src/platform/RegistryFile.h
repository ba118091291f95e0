#pragma once
// The per-user registry as a REGEDIT4 text file, so that the type of every value stays visible:
//
//   REGEDIT4
//
//   [HKEY_CURRENT_USER\Software\Atari800WinPLus]
//   "sysTVMode"=dword:00000106
//   "pathDiskDrive1"="Off"
//
// Keys and values keep the order in which they were first written.

#include "Host.h"

#include <QString>
#include <cstdint>
#include <optional>
#include <variant>
#include <vector>

namespace ql {

using RegistryData = std::variant<std::uint32_t, QString>;

class RegistryFile {
public:
    // Parses REGEDIT4 text. Lines it does not understand (comments, hex values, defaults) are kept
    // as they stand and written back in their place, so a hand-edited file never stops the
    // program and loses nothing.
    static RegistryFile parse(const QString& text);
    // Reads the file; a missing file gives an empty registry. A file that is there but cannot be
    // read throws std::runtime_error, so that no write replaces what it holds.
    static RegistryFile load(const QString& path);

    QString text() const;
    // Writes the whole text to a temporary file beside it and renames it over the old one, so a
    // reader never sees half a file. Throws std::runtime_error on failure.
    void save(const QString& path) const;

    void set(const QString& keyPath, const QString& name, const RegistryData& value);
    std::optional<RegistryData> value(const QString& keyPath, const QString& name) const;
    // The value as text: a DWORD in decimal; empty when missing.
    QString text(const QString& keyPath, const QString& name) const;
    std::optional<std::uint32_t> dword(const QString& keyPath, const QString& name) const;

private:
    struct Value {
        QString name;
        RegistryData data;
        QString verbatim; // a line kept as it stood; name and data are unused then
    };
    struct Key {
        QString path;
        std::vector<Value> values;
    };
    Key* find(const QString& keyPath);
    const Key* find(const QString& keyPath) const;
    std::vector<QString> preamble_; // lines before the first key, other than the header
    std::vector<Key> keys_;
};

// $XDG_CONFIG_HOME/quaylight/registry.reg
QString registryFilePath();

// Each write reads the file, changes the one value and writes the file whole.
class LinuxRegistry : public Registry {
public:
    void setDword(const QString& keyPath, const QString& name, std::uint32_t value) override;
    void setString(const QString& keyPath, const QString& name, const QString& value) override;
};

} // namespace ql
