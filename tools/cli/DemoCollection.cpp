#include "DemoCollection.h"
#include "LinuxHost.h"
#include "Rebuild.h"
#include "Startup.h"
#include "StringFuncs.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
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

// A few programs come with what a user adds over time: a description, their own machine settings
// and a picture, so that the demo shows every part of the selection view.
struct DemoDetails {
    int tabNumber; // the tab's row, TabCode - 1
    const char* tab;
    const char* name;
    const char* description;
    int machineType; // 0 400/800 A, 1 400/800 B, 2 XL/XE
    bool basic;
    int video;  // 262 NTSC, 312 PAL
    int memory; // K
    QRgb sky, ground, ship;
};

const DemoDetails kDetails[] = {
    {0, "Games", "Star Raiders (1979)(Atari)[!]",
     "Doug Neubauer's space combat classic. Clear each sector of Zylon fighters before your "
     "starbases fall; the galactic chart is on G, long-range scan on L.",
     1, false, 262, 48, qRgb(8, 10, 40), qRgb(30, 30, 90), qRgb(240, 200, 60)},
    {0, "Games", "Jumpman Junior", "Twelve new floors of girders, ladders and bombs. Needs an XL or XE.", 2,
     false, 312, 64, qRgb(20, 20, 20), qRgb(170, 90, 30), qRgb(90, 220, 120)},
    {5, "BASIC", "Lunar Lander",
     "Type-in listing: land the module gently by pressing the trigger to fire the thrusters.", 1, true, 262,
     48, qRgb(0, 0, 0), qRgb(120, 120, 120), qRgb(230, 230, 230)},
    {9, "2600", "Pitfall! (1982)(Activision)", "Pitfall Harry's jungle run: 20 minutes, 32 treasures.", 1,
     false, 262, 48, qRgb(40, 120, 40), qRgb(150, 110, 40), qRgb(230, 60, 60)},
};

// A simple scene in the emulator's 320 x 192 screen: a sky with stars, the ground and a ship.
QImage demoPicture(const DemoDetails& d, quint32 seed) {
    QImage image(320, 192, QImage::Format_RGB32);
    QPainter p(&image);
    QLinearGradient sky(0, 0, 0, 140);
    sky.setColorAt(0, QColor(d.sky));
    sky.setColorAt(1, QColor(d.sky).lighter(180));
    p.fillRect(0, 0, 320, 140, sky);
    QRandomGenerator rng(seed);
    p.setPen(Qt::white);
    for (int i = 0; i < 40; ++i)
        p.drawPoint(rng.bounded(320), rng.bounded(130));
    p.fillRect(0, 140, 320, 52, QColor(d.ground));
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(d.ship));
    p.drawPolygon(QPolygon({QPoint(160, 70), QPoint(140, 120), QPoint(180, 120)}));
    p.drawEllipse(QPoint(160, 128), 26, 6);
    return image;
}

void addDemoDetails(const QString& cataloguePath, const QString& base) {
    Catalogue catalogue(cataloguePath);
    Transaction t(catalogue);
    quint32 seed = 2600;
    for (const DemoDetails& d : kDetails) {
        bool found = false;
        for (ProgramRecord r : catalogue.programsByTabNumber(d.tabNumber)) {
            if (r.name != QString::fromUtf8(d.name)) continue;
            found = true;
            r.description = QString::fromUtf8(d.description);
            r.machineType = d.machineType;
            r.basic = d.basic;
            r.video = d.video;
            r.memory = d.memory;
            catalogue.updateProgram(r);
        }
        if (!found) throw std::runtime_error(std::string("The demo has no program ") + d.name);
        const QString folder = base + QStringLiteral("ProgramImages/") + QString::fromUtf8(d.tab);
        QDir().mkpath(folder);
        const QString picture = folder + "/" + QString::fromUtf8(d.name) + ".jpg";
        if (!demoPicture(d, ++seed).save(picture, "JPG", 90))
            throw std::runtime_error("Cannot write " + picture.toStdString());
    }
    t.commit();
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
    addDemoDetails(cataloguePath, base);
}

} // namespace ql
