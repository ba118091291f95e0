#include "JetText.h"

#include <QString>
#include <gtest/gtest.h>

using namespace ql;

TEST(JetLike, Patterns) {
    struct Case {
        const char* text;
        const char* pattern;
        bool match;
    };
    const Case cases[] = {
        {"Star Raiders", "*star*", true}, // any case
        {"Star Raiders", "Star*", true},
        {"Star Raiders", "Raiders*", false},
        {"", "*", true},
        {"", "**", true},
        {"", "?", false},
        {"Pitfall II", "*?all I*", true},
        {"Pitfall II", "Pitfal?", false},
        {"Summer Games 2", "*#*", true},
        {"Summer Games", "*#*", false},
        {"Zaxxon", "[xyz]*", true},
        {"Zaxxon", "[!xyz]*", false},
        {"Boulder", "[a-c]*", true},
        {"Drol", "[a-c]*", false},
        {"It's Magic", "*'s*", true},
        {"O'Riley's Mine", "*'riley'S*", true},
        {"Archon [cr]", "*[*", true},      // an unclosed bracket is a plain character
        {"Archon [cr]", "*[[]cr]*", true}, // a bracket inside a class is literal
        {"Mississippi", "*ss*ss*", true},
        {"Mississippi", "*ss*ss*ss*", false},
        {"aaab", "*aab", true},
        {"Ärger", "*ärg*", true},
        {"ÄRGER", "*ärg*", true},
        {"a%b", "*%*", true},
        {"axb", "a_b", false},
    };
    for (const Case& c : cases)
        EXPECT_EQ(jetLike(QString::fromUtf8(c.text), QString::fromUtf8(c.pattern)), c.match)
            << c.text << " LIKE " << c.pattern;
}

TEST(JetCompare, IgnoresCaseAndOrdersByLetters) {
    EXPECT_EQ(jetCompare("Äpfel", "äPFEL"), 0);
    EXPECT_LT(jetCompare("alpha", "Beta"), 0) << "not by code point";
    EXPECT_GT(jetCompare("Zaxxon", "archon"), 0);
    EXPECT_LT(jetCompare("Star", "Star Raiders"), 0);
}
