#include "RegistryFile.h"
#include "LinuxHost.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <stdexcept>

namespace ql {

namespace {

// Registry names and key paths compare without regard to case, as the registry's do.
bool sameName(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

QString escaped(const QString& text) {
    QString out;
    out.reserve(text.size() + 2);
    for (QChar c : text) {
        if (c == QLatin1Char('\\') || c == QLatin1Char('"')) out += QLatin1Char('\\');
        if (c == QLatin1Char('\n')) {
            out += QLatin1String("\\n");
            continue;
        }
        out += c;
    }
    return out;
}

// Reads a quoted text starting at from (at the opening quote); gives the text and the index
// behind the closing quote, or nothing when it is not closed.
std::optional<std::pair<QString, qsizetype>> quoted(const QString& line, qsizetype from) {
    if (from >= line.size() || line[from] != QLatin1Char('"')) return std::nullopt;
    QString out;
    for (qsizetype i = from + 1; i < line.size(); ++i) {
        const QChar c = line[i];
        if (c == QLatin1Char('"')) return std::make_pair(out, i + 1);
        if (c == QLatin1Char('\\') && i + 1 < line.size()) {
            const QChar next = line[++i];
            out += next == QLatin1Char('n') ? QLatin1Char('\n') : next;
            continue;
        }
        out += c;
    }
    return std::nullopt;
}

} // namespace

RegistryFile RegistryFile::parse(const QString& text) {
    RegistryFile file;
    Key* key = nullptr;
    bool header = true;
    for (QString line : text.split(QLatin1Char('\n'))) {
        if (line.endsWith(QLatin1Char('\r'))) line.chop(1);
        if (line.trimmed().isEmpty()) continue; // blank lines are written anew between keys
        if (header) {
            header = false;
            if (line == QLatin1String("REGEDIT4")) continue;
        }
        if (line.startsWith(QLatin1Char('[')) && line.endsWith(QLatin1Char(']'))) {
            const QString path = line.mid(1, line.size() - 2);
            key = file.find(path);
            if (!key) {
                file.keys_.push_back({path, {}});
                key = &file.keys_.back();
            }
            continue;
        }
        const auto keep = [&] {
            if (key)
                key->values.push_back({QString(), RegistryData(), line});
            else
                file.preamble_.push_back(line);
        };
        const auto name = quoted(line, 0);
        if (!key || !name || name->second >= line.size() || line[name->second] != QLatin1Char('=')) {
            keep();
            continue;
        }
        const QString rest = line.mid(name->second + 1);
        bool understood = false;
        if (rest.startsWith(QLatin1String("dword:"))) {
            const std::uint32_t number = rest.mid(6).toUInt(&understood, 16);
            if (understood) file.set(key->path, name->first, number);
        } else if (const auto value = quoted(rest, 0); value && value->second == rest.size()) {
            file.set(key->path, name->first, value->first);
            understood = true;
        }
        if (!understood) keep();
    }
    return file;
}

RegistryFile RegistryFile::load(const QString& path) {
    QFile file(path);
    if (!file.exists()) return {};
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error("Cannot read the settings file " + path.toStdString() + ": " +
                                 file.errorString().toStdString() + ". It is left as it is.");
    return parse(QString::fromUtf8(file.readAll()));
}

QString RegistryFile::text() const {
    QString out = QStringLiteral("REGEDIT4\n");
    for (const QString& line : preamble_)
        out += line + QLatin1Char('\n');
    for (const Key& key : keys_) {
        out += QLatin1String("\n[") + key.path + QLatin1String("]\n");
        for (const Value& v : key.values) {
            if (!v.verbatim.isEmpty()) {
                out += v.verbatim + QLatin1Char('\n');
                continue;
            }
            out += QLatin1Char('"') + escaped(v.name) + QLatin1String("\"=");
            if (const auto* number = std::get_if<std::uint32_t>(&v.data))
                out += QStringLiteral("dword:%1").arg(*number, 8, 16, QLatin1Char('0'));
            else
                out += QLatin1Char('"') + escaped(std::get<QString>(v.data)) + QLatin1Char('"');
            out += QLatin1Char('\n');
        }
    }
    return out;
}

void RegistryFile::save(const QString& path) const {
    QDir().mkpath(QFileInfo(path).path());
    QSaveFile file(path);
    const QByteArray bytes = text().toUtf8();
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        throw std::runtime_error("Cannot write " + path.toStdString() + ": " +
                                 file.errorString().toStdString());
}

RegistryFile::Key* RegistryFile::find(const QString& keyPath) {
    for (Key& key : keys_)
        if (sameName(key.path, keyPath)) return &key;
    return nullptr;
}

const RegistryFile::Key* RegistryFile::find(const QString& keyPath) const {
    return const_cast<RegistryFile*>(this)->find(keyPath);
}

void RegistryFile::set(const QString& keyPath, const QString& name, const RegistryData& value) {
    Key* key = find(keyPath);
    if (!key) {
        keys_.push_back({keyPath, {}});
        key = &keys_.back();
    }
    for (Value& v : key->values) {
        if (v.verbatim.isEmpty() && sameName(v.name, name)) {
            v.data = value;
            return;
        }
    }
    key->values.push_back({name, value, QString()});
}

std::optional<RegistryData> RegistryFile::value(const QString& keyPath, const QString& name) const {
    if (const Key* key = find(keyPath))
        for (const Value& v : key->values)
            if (v.verbatim.isEmpty() && sameName(v.name, name)) return v.data;
    return std::nullopt;
}

QString RegistryFile::text(const QString& keyPath, const QString& name) const {
    const auto v = value(keyPath, name);
    if (!v) return QString();
    if (const auto* number = std::get_if<std::uint32_t>(&*v)) return QString::number(*number);
    return std::get<QString>(*v);
}

std::optional<std::uint32_t> RegistryFile::dword(const QString& keyPath, const QString& name) const {
    const auto v = value(keyPath, name);
    if (!v) return std::nullopt;
    if (const auto* number = std::get_if<std::uint32_t>(&*v)) return *number;
    return std::nullopt;
}

QString registryFilePath() {
    return configFolder() + QStringLiteral("/registry.reg");
}

void LinuxRegistry::setDword(const QString& keyPath, const QString& name, std::uint32_t value) {
    const QString path = registryFilePath();
    RegistryFile file = RegistryFile::load(path);
    file.set(keyPath, name, value);
    file.save(path);
}

void LinuxRegistry::setString(const QString& keyPath, const QString& name, const QString& value) {
    const QString path = registryFilePath();
    RegistryFile file = RegistryFile::load(path);
    file.set(keyPath, name, value);
    file.save(path);
}

} // namespace ql
