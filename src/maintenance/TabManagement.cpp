#include "TabManagement.h"
#include "Store.h"

namespace ql {

TabRows defaultTabRows() {
    TabRows rows;
    rows[kCartridgeRow].name = QStringLiteral("Resident Cartridges");
    return rows;
}

void loadTabMgmt(const QString& cataloguePath, TabRows& rows) {
    Catalogue catalogue(cataloguePath);
    for (const TabRecord& tab : catalogue.tabs()) {
        const int row = tab.tabCode - 1;
        if (row < 0 || row >= kFormRows) continue;
        rows[static_cast<size_t>(row)] = {tab.tabName, tab.tabSource};
    }
}

void saveTabMgmt(const QString& cataloguePath, const TabRows& rows) {
    Catalogue catalogue(cataloguePath);
    Transaction transaction(catalogue);
    for (int i = 0; i < kFormRows; ++i)
        catalogue.updateTab(i + 1, rows[static_cast<size_t>(i)].name, rows[static_cast<size_t>(i)].source);
    transaction.commit();
}

} // namespace ql
