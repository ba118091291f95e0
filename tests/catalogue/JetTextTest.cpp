#include "JetText.h"

#include <QString>
#include <gtest/gtest.h>

using namespace ql;

// Any case; "#" a digit; an unclosed bracket and one inside a class are plain; "%" and "_" too.
TEST(JetLike, Patterns) {
    const std::pair<const char*, const char*> matches[] = {
        {"Star Raiders", "*star*"}, {"", "**"},
        {"Pitfall II", "*?all I*"}, {"Summer Games 2", "*#*"},
        {"Boulder", "[a-c]*"},      {"O'Riley's", "*'riley'S*"},
        {"Archon [cr]", "*[*"},     {"Archon [cr]", "*[[]cr]*"},
        {"Mississippi", "*ss*ss*"}, {"aaab", "*aab"},
        {"ÄRGER", "*ärg*"},         {"a%b", "*%*"}};
    const std::pair<const char*, const char*> misses[] = {
        {"Star Raiders", "Raiders*"},  {"", "?"},
        {"Pitfall II", "Pitfal?"},     {"Summer Games", "*#*"},
        {"Zaxxon", "[!xyz]*"},         {"Drol", "[a-c]*"},
        {"Mississippi", "*ss*ss*ss*"}, {"axb", "a_b"}};
    const auto expect = [](const auto& cases, bool match) {
        for (const auto& [text, pattern] : cases)
            EXPECT_EQ(jetLike(QString::fromUtf8(text), QString::fromUtf8(pattern)), match)
                << text << " LIKE " << pattern;
    };
    expect(matches, true);
    expect(misses, false);
}

TEST(JetCompare, IgnoresCaseAndOrdersByLetters) {
    EXPECT_EQ(jetCompare("Äpfel", "äPFEL"), 0);
    EXPECT_LT(jetCompare("alpha", "Beta"), 0) << "not by code point";
    EXPECT_GT(jetCompare("Zaxxon", "archon"), 0);
    EXPECT_LT(jetCompare("Star", "Star Raiders"), 0);
}
