#include "ProgramListModel.h"

namespace ql {

void ProgramListModel::setRows(std::vector<ListRow> rows) {
    beginResetModel();
    rows_ = std::move(rows);
    endResetModel();
}

int ProgramListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant ProgramListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= static_cast<int>(rows_.size())) return {};
    const ListRow& row = rows_[static_cast<size_t>(index.row())];
    if (role == Qt::DisplayRole) return row.name;
    if (role == Qt::UserRole) return row.programCode;
    return {};
}

int ProgramListModel::programCode(int row) const {
    return row >= 0 && row < static_cast<int>(rows_.size()) ? rows_[static_cast<size_t>(row)].programCode : 0;
}

} // namespace ql
