#include "Startup.h"
#include "Shell.h"
#include "StringFuncs.h"

#include <QDir>

namespace ql {

StartupResult startUp(Host& host, const QString& currentFolder) {
    StartupResult result;
    result.cataloguePath = QDir(currentFolder).absoluteFilePath(kCatalogueFileName);
    // A folder by that name is no catalogue either (folders carry more than the directory flag here).
    const auto attributes = host.fileSystem.attributes(result.cataloguePath);
    if (!attributes || (*attributes & attr::Directory)) {
        host.dialogs.message(QStringLiteral(
            "Error! - Cannot locate Atari.mdb - please check the properties of this shortcut"));
        return result;
    }
    Catalogue catalogue(result.cataloguePath);
    if (auto config = catalogue.config()) {
        result.windowsVersion = config->windowsVersion.trimmed();
        result.atariDir = config->atariDir.trimmed();
        result.proceed = true;
        return result;
    }

    // First start. Windows versions mean nothing here: the launch line takes the "XP" form.
    result.windowsVersion = QStringLiteral("XP");
    const QString answer = host.dialogs.inputBox(
        QStringLiteral("Please enter the drive letter and path of where your Atari files are located"),
        QDir::toNativeSeparators(currentFolder));
    if (IsBlank(answer)) {
        host.dialogs.message(QStringLiteral("Fatal Error! - You must supply a location!"));
        return result;
    }
    const QString trimmed = answer.trimmed();
    const bool endsInSeparator = trimmed.endsWith(QLatin1Char('\\')) || trimmed.endsWith(QLatin1Char('/'));
    result.atariDir = endsInSeparator ? answer : WithTrailingSeparator(trimmed);

    Transaction t(catalogue);
    catalogue.addConfig({result.windowsVersion, result.atariDir});
    // A drive letter in the answer moves every stored drive letter to it; a Linux path has none.
    if (HasDriveLetter(result.atariDir)) catalogue.relocateDrive(result.atariDir[0]);
    t.commit();
    result.proceed = true;
    return result;
}

int catalogueTotal(Catalogue& catalogue) {
    const int everything = catalogue.countCategory(kEverything);
    return everything > 0 ? everything : catalogue.countPrograms();
}

} // namespace ql
