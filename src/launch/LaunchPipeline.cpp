#include "LaunchPipeline.h"
#include "MachineOptions.h"
#include "StringFuncs.h"
#include "basRegistry.h"

namespace ql {

namespace {

const QString kRun5200 = QStringLiteral("run5200.bin");

// A command line of the association table with the file in place of each %f. Outside quotes the
// file goes in as one quoted word. Inside quotes, as in "%f" or '--file=%f', a quoted word would
// be taken apart again, so there the file goes in as the parameter $1 of the line, set first:
// the shell expands a parameter but never reads it as code.
QString withFile(const QString& command, const QString& file) {
    const QString quoted = ShellQuote(file);
    if (!command.contains(QLatin1String("%f"))) return command + QLatin1Char(' ') + quoted;
    QString line;
    QChar quote; // the quote character that is open, null outside quotes
    bool usesParameter = false;
    for (qsizetype i = 0; i < command.size(); ++i) {
        const QChar c = command[i];
        if (c == QLatin1Char('%') && i + 1 < command.size() && command[i + 1] == QLatin1Char('f')) {
            ++i;
            if (quote.isNull()) {
                line += quoted;
            } else {
                usesParameter = true;
                // Within single quotes nothing expands: close them around the parameter.
                line += quote == QLatin1Char('"') ? QStringLiteral("$1") : QStringLiteral("'\"$1\"'");
            }
            continue;
        }
        line += c;
        const bool escapes = c == QLatin1Char('\\') && quote != QLatin1Char('\'');
        if (escapes && i + 1 < command.size()) {
            line += command[++i];
        } else if (quote.isNull() && (c == QLatin1Char('\'') || c == QLatin1Char('"'))) {
            quote = c;
        } else if (c == quote) {
            quote = QChar();
        }
    }
    return usesParameter ? QStringLiteral("set -- ") + quoted + QStringLiteral("; ") + line : line;
}

// Opening a data file the way the desktop would: the association table, else xdg-open.
QString openLine(Associations& associations, const QString& file) {
    QString command = associations.commandFor(GetExtension(file));
    if (command.trimmed().isEmpty()) command = QStringLiteral("xdg-open %f");
    return withFile(command, file);
}

// "start" of the batch form: the line runs in the background and the script goes on.
QString started(const QString& line, const QString& windowsVersion) {
    return windowsVersion == QLatin1String("98") ? line + QStringLiteral(" &") : line;
}

QString cdLine(const QString& atariDir) {
    return QStringLiteral("cd -- ") + ShellQuote(atariDir);
}

} // namespace

LaunchClass launchClassOf(const QString& fileName1) {
    const QString ending = fileName1.right(4).toLower();
    if (ending == QLatin1String(".bas") || ending == QLatin1String(".lst")) return LaunchClass::BasicListing;
    if (ending == QLatin1String(".a52")) return LaunchClass::Image5200;
    return LaunchClass::General;
}

void writeLaunchRegistry(Registry& registry, const ProgramRecord& record, const LaunchControls& controls) {
    auto save = [&](const QString& name, const QVariant& value) { SaveEmulatorValue(registry, name, value); };
    switch (launchClassOf(record.fileName1)) {
    case LaunchClass::BasicListing:
        return;
    case LaunchClass::Image5200:
        save(QStringLiteral("sysDisableBasic"), 1);
        save(QStringLiteral("sysMachineType"), 3);
        save(QStringLiteral("sysCartType"), 7);
        return;
    case LaunchClass::General:
        break;
    }
    // The field says BASIC on; the emulator's value says BASIC disabled.
    save(QStringLiteral("sysDisableBasic"), record.basic ? 0 : 1);
    save(QStringLiteral("sysMachineType"), record.machineType);
    if (record.type > 1) {
        // A disk set: drives 1 to 4 from the row, an empty field leaves its drive off. A blank
        // field, as a rebuild leaves it, is not empty: it is trimmed to an empty path.
        const QString files[] = {record.fileName1, record.fileName2, record.fileName3, record.fileName4};
        for (int i = 0; i < 4; ++i)
            save(QStringLiteral("pathDiskDrive%1").arg(i + 1),
                 files[i].isEmpty() ? QStringLiteral("Off") : files[i]);
    } else {
        // A single file reaches the emulator through the script alone.
        for (int i = 1; i <= 8; ++i)
            save(QStringLiteral("pathDiskDrive%1").arg(i), QStringLiteral("Off"));
    }
    save(QStringLiteral("sysTVMode"), record.video);
    // A machine type the program never writes has no memory value name; its memory is not handed on.
    if (const QString ramName = ramValueName(record.machineType); !ramName.isEmpty())
        save(ramName, record.memory);
    save(QStringLiteral("screenArtifactMode"), controls.artifactIndex);
    save(QStringLiteral("screenStretchMode"), controls.stretchIndex);
    if (controls.resCartIndex <= 0) {
        save(QStringLiteral("fileRomCartridge"), QString());
        save(QStringLiteral("fileRomCurrent"), QString());
        save(QStringLiteral("sysCartType"), 0);
    }
    save(QStringLiteral("fileTape"), QString());
}

QStringList launchScriptLines(const ProgramRecord& record, const QString& atariDir,
                              const QString& windowsVersion, Associations& associations) {
    const QString dir = WithTrailingSeparator(atariDir);
    const QString& file = record.fileName1;
    // The batch form's drive change and "cls" mean nothing to sh; they stay as empty lines so that
    // each line still stands for its batch line.
    const QString driveChange;
    QStringList lines;
    switch (launchClassOf(file)) {
    case LaunchClass::BasicListing: {
        QString emulator = associations.program(QStringLiteral("Atari800"));
        if (emulator.trimmed().isEmpty()) emulator = QStringLiteral("./Atari800");
        lines << driveChange << cdLine(dir) << emulator + QStringLiteral(" -windowed ") + ShellQuote(file);
        break;
    }
    case LaunchClass::Image5200:
        lines << driveChange
              << QStringLiteral("cp -- ") + ShellQuote(file) + QLatin1Char(' ') + ShellQuote(dir + kRun5200)
              << cdLine(dir) << started(openLine(associations, kRun5200), windowsVersion);
        break;
    case LaunchClass::General: {
        // The row's Name stands in for the file's base name when it is not part of the path, so a
        // renamed row runs under its new name.
        const QString target = file.contains(record.name) ? file
                                                          : GetFolderPath(file) + record.name +
                                                                QLatin1Char('.') + GetExtension(file);
        lines << started(openLine(associations, target), windowsVersion);
        break;
    }
    }
    const QString clearScreen;
    lines << QStringLiteral("exit") << QString() << QString() << clearScreen << QString();
    return lines;
}

QByteArray launchScriptText(const QStringList& lines) {
    QByteArray text;
    for (const QString& line : lines)
        text += line.toUtf8() + '\n';
    return text;
}

std::optional<QString> launchProgram(Host& host, const QString& cataloguePath, int programCode,
                                     const LaunchControls& controls, const QString& windowsVersion) {
    Catalogue catalogue(cataloguePath);
    const auto config = catalogue.config();
    const QString atariDir = config ? config->atariDir : QString();
    const auto record = catalogue.programByCode(programCode);
    if (!record) return std::nullopt;
    // Every value is in place before the emulator can start and read them.
    writeLaunchRegistry(host.registry, *record, controls);
    const QString script = host.scripts.write(
        kLaunchScriptName,
        launchScriptText(launchScriptLines(*record, atariDir, windowsVersion, host.associations)));
    host.processes.startDetached(QStringLiteral("/bin/sh"), {script}, host.scripts.folder());
    return record->name;
}

} // namespace ql
