#pragma once
#include "Host.h"
#include "Store.h"

namespace ql {

inline const QString kCatalogueFileName = QStringLiteral("Atari.mdb");

struct StartupResult {
    bool proceed = false; // false: the program ends (the user has been told why)
    QString cataloguePath;
    QString windowsVersion;
    QString atariDir;
};

// Finds Atari.mdb in the given folder, reads Config, and on the first start asks for the
// location, stores it and moves the stored drive letters to it.
StartupResult startUp(Host& host, const QString& currentFolder);

// The count shown as "Total: ": the rows of the whole-tree pass, or every row when there are none.
int catalogueTotal(Catalogue& catalogue);

// The main form's operations that other forms call when they change the catalogue.
class MainFormOps {
public:
    virtual ~MainFormOps() = default;
    virtual void loadTabs() = 0;
    virtual void GeneralInit() = 0;
    virtual void CategoryTabs_TabActivate(int tabToActivate) = 0;
    virtual QString cataloguePath() const = 0;
};

} // namespace ql
