#pragma once
#include "Store.h"

#include <QAbstractListModel>
#include <vector>

namespace ql {

// The rows of prgList: the Name as text, the ProgramCode as item data (Qt::UserRole). Replacing
// the rows is one model reset, so refilling 32,767 rows costs no per-row widget work.
class ProgramListModel : public QAbstractListModel {
    Q_OBJECT
public:
    using QAbstractListModel::QAbstractListModel;
    void setRows(std::vector<ListRow> rows);
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    int programCode(int row) const;

private:
    std::vector<ListRow> rows_;
};

} // namespace ql
