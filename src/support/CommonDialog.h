#pragma once
// The open-file dialog behind a small interface, so that tests can answer it, and the class that
// turns the classic call's arguments (flag bits, "|"-separated filter) into a request and back.

#include <QString>
#include <QStringList>
#include <optional>
#include <utility>
#include <vector>

class QWidget;

namespace ql {

// Flag bits of the classic open-file record.
namespace ofn {
constexpr int ReadOnly = 0x1;
constexpr int HideReadOnly = 0x4;
constexpr int EnableHook = 0x20;
constexpr int EnableTemplate = 0x40;
constexpr int AllowMultiSelect = 0x200;
constexpr int FileMustExist = 0x1000;
} // namespace ofn

struct OpenFileRequest {
    QWidget* owner = nullptr; // none
    QString title;            // empty: the dialog's own
    QString initialDir;       // empty: the dialog's own
    QString defaultExt;
    QString fileName;                                 // proposed name
    std::vector<std::pair<QString, QString>> filters; // name, pattern(s) separated by ";"
    int filterIndex = 1;                              // counted from 1
    int flags = 0;
};

struct OpenFileAnswer {
    QStringList files; // full paths, one unless multiple selection was asked for
    int filterIndex = 1;
    bool readOnly = false;
};

class FileDialogs {
public:
    virtual ~FileDialogs() = default;
    // Nothing when the user cancels.
    virtual std::optional<OpenFileAnswer> getOpenFileName(const OpenFileRequest& request) = 0;
};

// QFileDialog, modal over the owner.
class QtFileDialogs : public FileDialogs {
public:
    std::optional<OpenFileAnswer> getOpenFileName(const OpenFileRequest& request) override;
};

class cCommonDialog {
public:
    explicit cCommonDialog(FileDialogs& dialogs) : dialogs_(dialogs) {}

    int APIReturn() const { return apiReturn_; }
    int ExtendedError() const { return extendedError_; }

    // True when a file was chosen: Filename is its full path (with several chosen: the folder,
    // then each name, separated by zero characters), FileTitle its name, Filter the chosen
    // "name\0pattern" pair, FilterIndex its number. On a cancel Filename, FileTitle and Filter
    // become empty, flags 0 and FilterIndex -1. "|" and ":" both separate the parts of Filter.
    // The caller's hook and template bits (0x20, 0x40) are always cleared.
    bool VBGetOpenFileName(QString& Filename, QString& FileTitle, bool FileMustExist, bool MultiSelect,
                           bool& ReadOnly, bool HideReadOnly, QString& Filter, int& FilterIndex,
                           const QString& InitDir, const QString& DlgTitle, const QString& DefaultExt,
                           QWidget* Owner, int& flags);

    // The filter as the dialog record takes it: every "|" and ":" a zero character, two at the end.
    static QString buildFilter(const QString& filter);
    // The name and pattern pairs of a built filter.
    static std::vector<std::pair<QString, QString>> filterPairs(const QString& built);

private:
    FileDialogs& dialogs_;
    int apiReturn_ = 0;
    int extendedError_ = 0;
};

} // namespace ql
