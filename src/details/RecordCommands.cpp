#include "RecordCommands.h"
#include "Store.h"

#include <QVariantMap>

namespace ql {

RecordOutcome recordCommand(const QString& cataloguePath, int index, int programCode) {
    if (programCode == 0 || index < 0 || index > 2) return RecordOutcome::Nothing;
    Catalogue catalogue(cataloguePath);
    switch (static_cast<RecordCommand>(index)) {
    case RecordCommand::AddToFavourites:
        // Only the category moves: TabNumber stays, so a rebuild of the old tab still takes it.
        return catalogue.setProgramFields(programCode, {{QStringLiteral("Category"), kFavourites}})
                   ? RecordOutcome::Done
                   : RecordOutcome::Nothing;
    case RecordCommand::Delete:
        if (!catalogue.programFields(programCode, {})) return RecordOutcome::Nothing;
        catalogue.deleteProgram(programCode);
        return RecordOutcome::Done;
    case RecordCommand::Edit:
        return catalogue.programFields(programCode, {}) ? RecordOutcome::OpenEditor : RecordOutcome::Nothing;
    }
    return RecordOutcome::Nothing;
}

std::optional<QStringList> readProgramTexts(const QString& cataloguePath, int programCode,
                                            const QStringList& fieldNames) {
    Catalogue catalogue(cataloguePath);
    const auto fields = catalogue.programFields(programCode, fieldNames);
    if (!fields) return std::nullopt;
    QStringList texts;
    for (const QString& name : fieldNames) {
        const QVariant value = fields->value(name);
        texts << (value.isNull() ? QString() : value.toString());
    }
    return texts;
}

bool writeProgramTexts(const QString& cataloguePath, int programCode, const QStringList& fieldNames,
                       const QStringList& texts) {
    QVariantMap fields;
    for (int i = 0; i < fieldNames.size() && i < texts.size(); ++i) {
        // Names match columns ignoring case, so an earlier spelling of the same field gives way.
        for (auto it = fields.begin(); it != fields.end();)
            it = it.key().compare(fieldNames[i], Qt::CaseInsensitive) == 0 ? fields.erase(it) : std::next(it);
        fields.insert(fieldNames[i], texts[i]);
    }
    Catalogue catalogue(cataloguePath);
    return catalogue.setProgramFields(programCode, fields);
}

} // namespace ql
