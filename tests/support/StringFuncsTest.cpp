#include "StringFuncs.h"
#include "QtPrinters.h"

#include <QProcess>
#include <gtest/gtest.h>

using namespace ql;

// A path with a slash is a Linux one, where "\" and ":" are parts of names; one without is Windows'.
TEST(PathRoutines, TakeApartPathsAndEndFolders) {
    const struct {
        const char *path, *fileName, *folder, *extension, *withSeparator;
    } cases[] = {
        {"D:\\atari\\games\\", "", "D:\\atari\\games\\", "D:\\atari\\games\\", "D:\\atari\\games\\"},
        {"C:game.atr", "C:game.atr", "C:", "atr", "C:game.atr\\"},
        {"e:", "e:", "e:", "e:", "e:\\"},
        {"1:x", "1:x", "", "1:x", "1:x/"}, // no drive letter
        {"C:\\a.b\\c", "c", "C:\\a.b\\", "b\\c", "C:\\a.b\\c\\"},
        {"", "", "", "", ""},
        {"Atari", "Atari", "", "Atari", "Atari/"},
        {"/atari/Star Wars: ROTJ.atr", "Star Wars: ROTJ.atr", "/atari/", "atr",
         "/atari/Star Wars: ROTJ.atr/"},
        {"/atari/AC\\DC.atr", "AC\\DC.atr", "/atari/", "atr", "/atari/AC\\DC.atr/"},
    };
    for (const auto& c : cases) {
        const QString path = QString::fromUtf8(c.path);
        EXPECT_EQ(QStringList({GetFileName(path), GetFolderPath(path), GetExtension(path),
                               WithTrailingSeparator(path)}),
                  QStringList({c.fileName, c.folder, c.extension, c.withSeparator}))
            << c.path;
    }
}

TEST(StringFuncs, ReplaceScansTheSourceOnlyAndBlanksAreEmptyWhenTrimmed) {
    const struct {
        const char *source, *find, *replacement, *result;
    } cases[] = {
        {"aaa", "aa", "b", "ba"}, {"abcab", "ab", "", "c"}, {"a", "a", "aa", "aa"},
        {"ABC", "b", "x", "ABC"}, {"abc", "", "x", "abc"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ReplaceString(c.source, c.find, c.replacement), QString(c.result)) << c.source;
    for (const auto& [value, blank] : {std::pair{QVariant(), true},
                                       {QVariant(QString("   ")), true},
                                       {QVariant(0), false},
                                       {QVariant(QString(" x ")), false}})
        EXPECT_EQ(IsBlank(value), blank) << value.toString().toStdString();
}

// A quoted word must come out of a real shell exactly as it went in, and run nothing.
TEST(ShellQuote, HostileNamesStayWords) {
    for (const QString name :
         {"it's.atr", "$(touch pwned).atr", "`touch pwned`.atr", "a;touch pwned.atr", "\"double\" q.atr",
          "back\\slash.atr", "new\nline.atr", "-n", "*.atr", "$HOME", "'"}) {
        QProcess sh;
        sh.start("/bin/sh", {"-c", "printf '%s' " + ShellQuote(name)});
        ASSERT_TRUE(sh.waitForFinished(10000));
        EXPECT_EQ(QString::fromUtf8(sh.readAllStandardOutput()), name);
    }
}
