#include "DemoCollection.h"
#include "LinuxHost.h"
#include "Rebuild.h"
#include "Startup.h"
#include "StringFuncs.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <stdexcept>

namespace ql {

namespace {

struct DemoFile {
    const char* folder; // tab source below the collection, "" for none
    const char* name;
    int size;
};

// Names as collections really hold them: brackets, commas, apostrophes, two-letter extensions.
const DemoFile kFiles[] = {
    {"Games", "Star Raiders (1979)(Atari)[!].atr", 92176},
    {"Games", "Miner 2049er.xex", 16384},
    {"Games", "Boulder Dash [cr Fox].atr", 92176},
    {"Games", "M.U.L.E. (1983)(EA).atr", 92176},
    {"Games", "Archon, The Light and the Dark.xex", 32768},
    {"Games", "Drol (Broderbund).xfd", 92160},
    {"Games", "Jumpman Junior.dcm", 48000},
    {"Games", "Rescue on Fractalus!.atr", 133136},
    {"Games", "Alternate Reality - The City (Disk 1 of 4).atr", 133136},
    {"Games", "Alternate Reality - The City (Disk 2 of 4).atr", 133136},
    {"Games", "Mr. Do!.rom", 16384},
    {"Games", "Zaxxon (US).cas", 24000},
    {"Games", "readme.zip", 4096},
    {"Demos", "Numen (Taquart).xex", 65536},
    {"Demos", "Bitter Reality.atr", 133136},
    {"Demos", "Joyride - Demo 'Mad Team'.xex", 40960},
    {"Utilities", "DOS 2.5.atr", 92176},
    {"Utilities", "SpartaDOS X 4.49.rom", 131072},
    {"Utilities", "Turbo Basic XL.xex", 18000},
    {"Utilities", "Atariwriter+.atz", 50000},
    {"BASIC", "Lunar Lander.bas", 3200},
    {"BASIC", "Biorhythm (Basic).lst", 2100},
    {"BASIC", "Hangman basic.bas", 2800},
    {"Atari ST", "Dungeon Master.st", 737280},
    {"Atari ST", "Oids (FTL).msa", 401408},
    {"2600", "Pitfall! (1982)(Activision).a26", 4096},
    {"2600", "Adventure (1980)(Atari).a26", 4096},
    {"2600", "Yars' Revenge.a26", 4096},
    {"5200", "Star Raiders (5200).a52", 8192},
    {"5200", "Pac-Man (5200).a52", 8192},
    {"7800", "Ms. Pac-Man (7800).a78", 49280},
    {"Lynx", "California Games.lnx", 262208},
    {"Jaguar", "Tempest 2000.jag", 2097152},
    {"Resident Cartridges", "Atari BASIC Rev. C.rom", 8192},
    {"Resident Cartridges", "Action!.rom", 16384},
};

// The tab each folder of the demo stands for, by TabCode.
const std::pair<const char*, int> kTabs[] = {
    {"Games", 1},
    {"Demos", 2},
    {"Utilities", 3},
    {"BASIC", 6},
    {"Atari ST", 9},
    {"2600", 10},
    {"5200", 11},
    {"7800", 12},
    {"Lynx", 13},
    {"Jaguar", 14},
    {"Resident Cartridges", 25},
};

QByteArray content(const DemoFile& f, quint32 seed) {
    QByteArray bytes(f.size, Qt::Uninitialized);
    QRandomGenerator rng(seed);
    rng.fillRange(reinterpret_cast<quint32*>(bytes.data()), bytes.size() / 4);
    const QString ext = GetExtension(QString::fromUtf8(f.name)).toLower();
    if (ext == QLatin1String("atr")) { // the ATR signature and a paragraph count
        bytes[0] = char(0x96);
        bytes[1] = char(0x02);
    } else if (ext == QLatin1String("xex")) {
        bytes[0] = char(0xFF);
        bytes[1] = char(0xFF);
    } else if (ext == QLatin1String("bas") || ext == QLatin1String("lst")) {
        QByteArray listing;
        for (int line = 10; listing.size() < f.size; line += 10)
            listing += QByteArray::number(line) + " PRINT \"" + f.name + "\"\n";
        return listing.left(f.size);
    }
    return bytes;
}

} // namespace

void writeDemoCollection(const QString& folder) {
    QDir root(folder);
    if (!root.mkpath(QStringLiteral("."))) throw std::runtime_error("Cannot create " + folder.toStdString());
    const QString base = WithTrailingSeparator(root.absolutePath());
    const QString cataloguePath = root.absoluteFilePath(kCatalogueFileName);
    Catalogue::create(cataloguePath);
    {
        Catalogue catalogue(cataloguePath);
        Transaction t(catalogue);
        catalogue.addConfig({QStringLiteral("XP"), base});
        for (const auto& [tabFolder, code] : kTabs)
            catalogue.updateTab(code, Catalogue::defaultTabNames()[code - 1],
                                base + QString::fromUtf8(tabFolder) + "/");
        t.commit();
    }

    quint32 seed = 1979;
    for (const DemoFile& f : kFiles) {
        const QString dir = base + QString::fromUtf8(f.folder);
        QDir().mkpath(dir);
        const QString path = dir + "/" + QString::fromUtf8(f.name);
        const QByteArray bytes = content(f, ++seed);
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            throw std::runtime_error("Cannot write " + path.toStdString());
    }

    // The rows come from the rebuild, as a user's would: every tab with a folder, the resident
    // cartridges and Everything.
    LinuxFileSystem fileSystem;
    rebuildCatalogue(savedTabsRequest(cataloguePath, {}, true, true), fileSystem);
}

} // namespace ql
