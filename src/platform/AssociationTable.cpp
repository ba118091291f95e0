#include "AssociationTable.h"
#include "LinuxHost.h"

#include <QFile>

namespace ql {

AssociationTable AssociationTable::parse(const QString& text) {
    AssociationTable table;
    QMap<QString, QString>* section = nullptr;
    for (const QString& raw : text.split(QLatin1Char('\n'))) {
        const QString line = raw.trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char(';')) || line.startsWith(QLatin1Char('#')))
            continue;
        if (line.startsWith(QLatin1Char('[')) && line.endsWith(QLatin1Char(']'))) {
            const QString name = line.mid(1, line.size() - 2).trimmed().toLower();
            section = name == QLatin1String("associations") ? &table.extensions_
                      : name == QLatin1String("programs")   ? &table.programs_
                                                            : nullptr;
            continue;
        }
        const qsizetype equals = line.indexOf(QLatin1Char('='));
        if (!section || equals <= 0) continue;
        QString key = line.left(equals).trimmed().toLower();
        if (key.startsWith(QLatin1Char('.'))) key.remove(0, 1);
        section->insert(key, line.mid(equals + 1).trimmed());
    }
    return table;
}

AssociationTable AssociationTable::load(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return {};
    return parse(QString::fromUtf8(file.readAll()));
}

QString AssociationTable::commandFor(const QString& extension) const {
    return extensions_.value(extension.toLower());
}

QString AssociationTable::program(const QString& name) const {
    return programs_.value(name.toLower());
}

QString associationFilePath() {
    return configFolder() + QStringLiteral("/associations.ini");
}

QString LinuxAssociations::commandFor(const QString& extension) {
    return AssociationTable::load(associationFilePath()).commandFor(extension);
}

QString LinuxAssociations::program(const QString& name) {
    return AssociationTable::load(associationFilePath()).program(name);
}

} // namespace ql
