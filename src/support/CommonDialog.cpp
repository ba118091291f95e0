#include "CommonDialog.h"
#include "StringFuncs.h"

#include <QFileDialog>

namespace ql {

QString cCommonDialog::buildFilter(const QString& filter) {
    QString built = filter;
    for (QChar& c : built)
        if (c == QLatin1Char('|') || c == QLatin1Char(':')) c = QChar(0);
    return built + QChar(0) + QChar(0);
}

std::vector<std::pair<QString, QString>> cCommonDialog::filterPairs(const QString& built) {
    std::vector<std::pair<QString, QString>> pairs;
    const QStringList parts = built.split(QChar(0));
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        if (parts[i].isEmpty() && parts[i + 1].isEmpty()) break; // the closing pair of zeros
        pairs.emplace_back(parts[i], parts[i + 1]);
    }
    return pairs;
}

bool cCommonDialog::VBGetOpenFileName(QString& Filename, QString& FileTitle, bool FileMustExist,
                                      bool MultiSelect, bool& ReadOnly, bool HideReadOnly, QString& Filter,
                                      int& FilterIndex, const QString& InitDir, const QString& DlgTitle,
                                      const QString& DefaultExt, QWidget* Owner, int& flags) {
    apiReturn_ = 0;
    extendedError_ = 0;
    OpenFileRequest request;
    request.flags = (FileMustExist ? ofn::FileMustExist : 0) | (MultiSelect ? ofn::AllowMultiSelect : 0) |
                    (ReadOnly ? ofn::ReadOnly : 0) | (HideReadOnly ? ofn::HideReadOnly : 0) |
                    (flags & ~(ofn::EnableHook | ofn::EnableTemplate));
    request.owner = Owner;
    request.initialDir = InitDir;
    request.defaultExt = DefaultExt;
    request.title = DlgTitle;
    request.filters = filterPairs(buildFilter(Filter));
    request.filterIndex = FilterIndex;
    request.fileName = Filename;

    const std::optional<OpenFileAnswer> answer = dialogs_.getOpenFileName(request);
    apiReturn_ = answer && !answer->files.isEmpty() ? 1 : 0;
    if (apiReturn_ != 1) {
        Filename.clear();
        FileTitle.clear();
        Filter.clear();
        flags = 0;
        FilterIndex = -1;
        return false;
    }
    if (answer->files.size() == 1) {
        Filename = answer->files.front();
        FileTitle = GetFileName(Filename);
    } else {
        QStringList parts{GetFolderPath(answer->files.front())};
        for (const QString& f : answer->files)
            parts << GetFileName(f);
        Filename = parts.join(QChar(0));
        FileTitle = GetFileName(answer->files.front());
    }
    flags = request.flags | (answer->readOnly ? ofn::ReadOnly : 0);
    FilterIndex = answer->filterIndex;
    const auto pairs = request.filters;
    Filter = FilterIndex >= 1 && FilterIndex <= static_cast<int>(pairs.size())
                 ? pairs[FilterIndex - 1].first + QChar(0) + pairs[FilterIndex - 1].second
                 : QString();
    if (flags & ofn::ReadOnly) ReadOnly = true;
    return true;
}

namespace {
// "All (*.*)" with " *.*" becomes "All (*.*) (*)": here a name without a dot is a file too.
QString qtFilter(const std::pair<QString, QString>& pair) {
    QStringList patterns;
    for (QString p : pair.second.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
        p = p.trimmed();
        if (!p.isEmpty()) patterns << (p == QLatin1String("*.*") ? QStringLiteral("*") : p);
    }
    if (patterns.isEmpty()) patterns << QStringLiteral("*");
    return QStringLiteral("%1 (%2)").arg(pair.first, patterns.join(QLatin1Char(' ')));
}
} // namespace

std::optional<OpenFileAnswer> QtFileDialogs::getOpenFileName(const OpenFileRequest& request) {
    QFileDialog dialog(request.owner);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode((request.flags & ofn::AllowMultiSelect) ? QFileDialog::ExistingFiles
                       : (request.flags & ofn::FileMustExist)  ? QFileDialog::ExistingFile
                                                               : QFileDialog::AnyFile);
    if (!request.title.isEmpty()) dialog.setWindowTitle(request.title);
    if (!request.initialDir.isEmpty()) dialog.setDirectory(request.initialDir);
    if (!request.defaultExt.isEmpty()) dialog.setDefaultSuffix(request.defaultExt);
    if (!request.fileName.isEmpty()) dialog.selectFile(request.fileName);
    QStringList filters;
    for (const auto& pair : request.filters)
        filters << qtFilter(pair);
    if (!filters.isEmpty()) {
        dialog.setNameFilters(filters);
        if (request.filterIndex >= 1 && request.filterIndex <= filters.size())
            dialog.selectNameFilter(filters[request.filterIndex - 1]);
    }
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
    OpenFileAnswer answer;
    answer.files = dialog.selectedFiles();
    const qsizetype chosen = filters.indexOf(dialog.selectedNameFilter());
    answer.filterIndex = chosen >= 0 ? static_cast<int>(chosen) + 1 : request.filterIndex;
    return answer;
}

} // namespace ql
