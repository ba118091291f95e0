#include "StringFuncs.h"
#include "QtPrinters.h"

#include <QProcess>
#include <gtest/gtest.h>

using namespace ql;

TEST(PathRoutines, TakeApartPaths) {
    struct Case {
        const char* path;
        const char* fileName;
        const char* folder;
        const char* extension;
    };
    const Case cases[] = {
        {"D:\\atari\\games\\demo.atr", "demo.atr", "D:\\atari\\games\\", "atr"},
        {"/home/u/atari/games/demo.atr", "demo.atr", "/home/u/atari/games/", "atr"},
        {"D:\\atari\\games\\", "", "D:\\atari\\games\\", "D:\\atari\\games\\"},
        {"C:game.atr", "C:game.atr", "C:", "atr"},
        {"readme", "readme", "", "readme"},
        {"C:\\a.b\\c", "c", "C:\\a.b\\", "b\\c"},
        {"name.", "name.", "", ""},
        {"", "", "", ""},
        {"/atari/Star Wars: ROTJ.atr", "Star Wars: ROTJ.atr", "/atari/", "atr"},
        {"/atari/AC\\DC.atr", "AC\\DC.atr", "/atari/", "atr"},
        {"D:", "D:", "D:", "D:"},
    };
    for (const Case& c : cases) {
        const QString path = QString::fromUtf8(c.path);
        EXPECT_EQ(GetFileName(path), QString::fromUtf8(c.fileName)) << c.path;
        EXPECT_EQ(GetFolderPath(path), QString::fromUtf8(c.folder)) << c.path;
        EXPECT_EQ(GetExtension(path), QString::fromUtf8(c.extension)) << c.path;
    }
}

TEST(ReplaceString, ScansTheSourceOnly) {
    struct Case {
        const char *source, *find, *replacement, *result;
    };
    const Case cases[] = {
        {"aaa", "aa", "b", "ba"}, {"abcab", "ab", "", "c"}, {"a", "a", "aa", "aa"},
        {"ABC", "b", "x", "ABC"}, {"abc", "", "x", "abc"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(ReplaceString(c.source, c.find, c.replacement), QString::fromUtf8(c.result)) << c.source;
}

TEST(IsBlank, NullAndBlanks) {
    EXPECT_TRUE(IsBlank(QVariant()));
    EXPECT_TRUE(IsBlank(QVariant(QString())));
    EXPECT_TRUE(IsBlank(QStringLiteral("   ")));
    EXPECT_FALSE(IsBlank(QVariant(0)));
    EXPECT_FALSE(IsBlank(QStringLiteral(" x ")));
}

TEST(FolderTexts, TrailingSeparatorAndDrives) {
    EXPECT_EQ(WithTrailingSeparator("D:\\Atari"), "D:\\Atari\\");
    EXPECT_EQ(WithTrailingSeparator("/home/u/Atari/"), "/home/u/Atari/");
    EXPECT_EQ(WithTrailingSeparator("e:"), "e:\\");
    EXPECT_EQ(WithTrailingSeparator("/atari/AC\\"), "/atari/AC\\/") << "a backslash ends a Linux name";
    EXPECT_EQ(WithTrailingSeparator("Atari"), "Atari/");
    EXPECT_TRUE(HasDriveLetter("e:\\x"));
    EXPECT_FALSE(HasDriveLetter("/e:/x"));
    EXPECT_FALSE(HasDriveLetter("1:\\x"));
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
