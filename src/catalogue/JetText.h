#pragma once
// Text comparison as the catalogue has always done it: equality and order ignore case, and LIKE
// patterns use "*" (any run), "?" (one character), "#" (one digit), "[abc]", "[a-z]", "[!abc]".

#include <QStringView>
#include <memory>
#include <string_view>

struct sqlite3;

namespace ql {

// Case-insensitive three-way comparison of two UTF-8 texts.
int jetCompare(std::string_view a, std::string_view b);

// True when text matches the pattern, case ignored. A "[" without its "]" is an ordinary character.
bool jetLike(std::string_view text, std::string_view pattern);
bool jetLike(QStringView text, QStringView pattern);

// A LIKE pattern compiled once, for matching many texts.
class JetPattern {
public:
    explicit JetPattern(std::string_view patternUtf8);
    bool matches(std::string_view textUtf8) const;

private:
    struct Impl;
    std::shared_ptr<const Impl> impl_;
};

// Registers the collation JET and the Jet LIKE operator on a connection.
void registerJetFunctions(sqlite3* db);

} // namespace ql
