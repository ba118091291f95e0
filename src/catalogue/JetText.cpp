#include "JetText.h"

#include <QChar>
#include <QString>
#include <sqlite3.h>
#include <string>
#include <vector>

namespace ql {

namespace {

char32_t fold(char32_t c) {
    if (c < 128) return (c >= 'A' && c <= 'Z') ? c + 32 : c;
    return QChar::toCaseFolded(c);
}

// Decodes one UTF-8 code point at i and advances i; a malformed byte stands for itself.
char32_t next(std::string_view s, size_t& i) {
    const auto b0 = static_cast<unsigned char>(s[i++]);
    if (b0 < 0x80) return b0;
    int extra = b0 >= 0xF0 ? 3 : b0 >= 0xE0 ? 2 : b0 >= 0xC0 ? 1 : 0;
    char32_t c = extra == 3 ? (b0 & 0x07) : extra == 2 ? (b0 & 0x0F) : (b0 & 0x1F);
    if (extra == 0 || i + extra > s.size()) return b0;
    for (int k = 0; k < extra; ++k) {
        const auto b = static_cast<unsigned char>(s[i + k]);
        if ((b & 0xC0) != 0x80) return b0;
        c = (c << 6) | (b & 0x3F);
    }
    i += extra;
    return c;
}

void decodeFolded(std::string_view s, std::u32string& out) {
    out.clear();
    for (size_t i = 0; i < s.size();)
        out.push_back(fold(next(s, i)));
}

struct Token {
    enum Kind { Literal, AnyOne, Digit, AnyRun, Class } kind = Literal;
    char32_t ch = 0;
    bool negated = false;
    std::vector<std::pair<char32_t, char32_t>> ranges;
};

using Pattern = std::vector<Token>;

Token token(Token::Kind kind, char32_t ch = 0) {
    Token t;
    t.kind = kind;
    t.ch = ch;
    return t;
}

Pattern compile(const std::u32string& p) {
    Pattern out;
    for (size_t i = 0; i < p.size(); ++i) {
        const char32_t c = p[i];
        if (c == U'*') {
            if (out.empty() || out.back().kind != Token::AnyRun) out.push_back(token(Token::AnyRun));
        } else if (c == U'?') {
            out.push_back(token(Token::AnyOne));
        } else if (c == U'#') {
            out.push_back(token(Token::Digit));
        } else if (c == U'[') {
            const size_t close = p.find(U']', i + 1);
            if (close == std::u32string::npos) {
                out.push_back(token(Token::Literal, c));
                continue;
            }
            Token t = token(Token::Class);
            size_t j = i + 1;
            if (j < close && p[j] == U'!') {
                t.negated = true;
                ++j;
            }
            for (; j < close; ++j) {
                if (j + 2 < close && p[j + 1] == U'-') {
                    t.ranges.emplace_back(p[j], p[j + 2]);
                    j += 2;
                } else {
                    t.ranges.emplace_back(p[j], p[j]);
                }
            }
            out.push_back(std::move(t));
            i = close;
        } else {
            out.push_back(token(Token::Literal, c));
        }
    }
    return out;
}

bool matchOne(const Token& t, char32_t c) {
    switch (t.kind) {
    case Token::Literal:
        return t.ch == c;
    case Token::AnyOne:
        return true;
    case Token::Digit:
        return c >= U'0' && c <= U'9';
    case Token::Class: {
        bool in = false;
        for (const auto& [lo, hi] : t.ranges)
            in = in || (c >= lo && c <= hi);
        return in != t.negated;
    }
    case Token::AnyRun:
        break;
    }
    return false;
}

// Wildcard match with one backtrack point: the last "*" seen is re-tried one character further.
bool match(const Pattern& p, const std::u32string& s) {
    size_t pi = 0, si = 0, starP = SIZE_MAX, starS = 0;
    while (si < s.size()) {
        if (pi < p.size() && p[pi].kind == Token::AnyRun) {
            starP = ++pi;
            starS = si;
        } else if (pi < p.size() && matchOne(p[pi], s[si])) {
            ++pi;
            ++si;
        } else if (starP != SIZE_MAX) {
            pi = starP;
            si = ++starS;
        } else {
            return false;
        }
    }
    while (pi < p.size() && p[pi].kind == Token::AnyRun)
        ++pi;
    return pi == p.size();
}

// 1: match, 0: no match, -1: the text is not plain ASCII, decide the long way.
int asciiContains(std::string_view text, const std::string& needle) {
    for (unsigned char ch : text)
        if (ch >= 0x80) return -1;
    if (needle.size() > text.size()) return 0;
    const size_t last = text.size() - needle.size();
    for (size_t i = 0; i <= last; ++i) {
        size_t k = 0;
        while (k < needle.size() &&
               static_cast<char>(fold(static_cast<unsigned char>(text[i + k]))) == needle[k])
            ++k;
        if (k == needle.size()) return 1;
    }
    return 0;
}

void likeFunction(sqlite3_context* ctx, int argc, sqlite3_value** argv) {
    if (argc < 2 || sqlite3_value_type(argv[0]) == SQLITE_NULL ||
        sqlite3_value_type(argv[1]) == SQLITE_NULL) {
        sqlite3_result_null(ctx);
        return;
    }
    // The pattern is the same for every row of a statement: compile it once.
    auto* pattern = static_cast<JetPattern*>(sqlite3_get_auxdata(ctx, 0));
    if (!pattern) {
        const auto* p = reinterpret_cast<const char*>(sqlite3_value_text(argv[0]));
        pattern = new JetPattern(std::string_view(p, sqlite3_value_bytes(argv[0])));
        sqlite3_set_auxdata(ctx, 0, pattern, [](void* v) { delete static_cast<JetPattern*>(v); });
        pattern = static_cast<JetPattern*>(sqlite3_get_auxdata(ctx, 0));
        if (!pattern) {
            sqlite3_result_error_nomem(ctx);
            return;
        }
    }
    const auto* t = reinterpret_cast<const char*>(sqlite3_value_text(argv[1]));
    sqlite3_result_int(ctx, pattern->matches(std::string_view(t, sqlite3_value_bytes(argv[1]))) ? 1 : 0);
}

int collate(void*, int lenA, const void* a, int lenB, const void* b) {
    return jetCompare(std::string_view(static_cast<const char*>(a), lenA),
                      std::string_view(static_cast<const char*>(b), lenB));
}

} // namespace

int jetCompare(std::string_view a, std::string_view b) {
    size_t i = 0, j = 0;
    while (i < a.size() && j < b.size()) {
        const auto ca = static_cast<unsigned char>(a[i]);
        const auto cb = static_cast<unsigned char>(b[j]);
        char32_t fa, fb;
        if (ca < 0x80 && cb < 0x80) {
            fa = fold(ca);
            fb = fold(cb);
            ++i;
            ++j;
        } else {
            fa = fold(next(a, i));
            fb = fold(next(b, j));
        }
        if (fa != fb) return fa < fb ? -1 : 1;
    }
    if (i < a.size()) return 1;
    if (j < b.size()) return -1;
    return 0;
}

// A filter is nearly always "*text*" with plain ASCII text: then a case-insensitive substring
// search over the bytes decides, as long as the row's text is ASCII too.
struct JetPattern::Impl {
    Pattern pattern;
    std::string asciiNeedle; // folded; used only when substring is set
    bool substring = false;
};

JetPattern::JetPattern(std::string_view patternUtf8) {
    auto impl = std::make_shared<Impl>();
    std::u32string folded;
    decodeFolded(patternUtf8, folded);
    impl->pattern = compile(folded);
    const Pattern& p = impl->pattern;
    if (p.size() >= 2 && p.front().kind == Token::AnyRun && p.back().kind == Token::AnyRun) {
        impl->substring = true;
        for (size_t i = 1; i + 1 < p.size() && impl->substring; ++i) {
            impl->substring = p[i].kind == Token::Literal && p[i].ch < 128;
            impl->asciiNeedle.push_back(static_cast<char>(p[i].ch));
        }
    }
    impl_ = std::move(impl);
}

bool JetPattern::matches(std::string_view textUtf8) const {
    if (impl_->substring) {
        const int quick = asciiContains(textUtf8, impl_->asciiNeedle);
        if (quick >= 0) return quick == 1;
    }
    thread_local std::u32string text;
    decodeFolded(textUtf8, text);
    return match(impl_->pattern, text);
}

bool jetLike(std::string_view text, std::string_view pattern) {
    return JetPattern(pattern).matches(text);
}

bool jetLike(QStringView text, QStringView pattern) {
    return jetLike(std::string_view(text.toUtf8()), std::string_view(pattern.toUtf8()));
}

void registerJetFunctions(sqlite3* db) {
    sqlite3_create_collation_v2(db, "JET", SQLITE_UTF8, nullptr, collate, nullptr);
    // Replacing the built-in like() makes the LIKE operator itself follow these rules.
    sqlite3_create_function_v2(db, "like", 2, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr, likeFunction,
                               nullptr, nullptr, nullptr);
}

} // namespace ql
