#include <gtest/gtest.h>

#include <random>
#include <regex>
#include <string>

#include "pdb/name_match.h"
#include "pdb/regex.h"
#include "util/alloc.h"

namespace {

struct MatchCase {
    const char* text;
    const char* pattern;
    int expected;
};

TEST(Glob, WildcardsSetsEscapesAndMalformedPatterns) {
    const MatchCase cases[] = {
        {"HB12", "HB*", 1}, {"CB", "*B", 1},       {"", "*", 1},          {"HBG1", "*B*1", 1},
        {"abcb", "*b", 1},  {"HB12", "*1", 0},     {"HA", "H?", 1},       {"H", "H?", 0},
        {"HAB", "H?", 0},   {"HB1", "H[A-C]1", 1}, {"HD1", "H[A-C]1", 0}, {"HD", "H[AB-D]", 1},
        {"H-", "H[-A]", 1}, {"]", "[\\]]", 1},     {"H*", "H\\*", 1},     {"HA", "H\\*", 0},
        {"HB", "HB1", 0},   {"hb", "HB", 0},       {"H12", "H[0-9]", 0},  {"[", "[", 0},
        {"HA", "H[A", 0},   {"]", "[]", 0},        {"H]", "*[]", 0},      {"H\\", "H\\", 0},
    };
    for (const MatchCase& c : cases) {
        EXPECT_EQ(strMatchGlob(c.text, c.pattern), c.expected) << c.pattern << " on " << c.text;
    }
    EXPECT_EQ(strMatchGlob(nullptr, "*"), 0);
    EXPECT_EQ(strMatchGlob("H", nullptr), 0);
}

TEST(AtomMatch, NumeralAndRunConventionsAnchoredAtBothEnds) {
    const MatchCase cases[] = {
        {"HB1", "HB#", 1},   {"HB12", "HB#", 0},   {"1HB1", "HB#", 0}, {"HBA", "HB#", 0},
        {"HB12", "HB##", 1}, {"1HB", "#HB", 1},    {"HG", "HG*", 1},   {"HG12", "HG*", 1},
        {"HD1", "HG*", 0},   {"1HG", "HG*", 0},    {"H9", "H#", 1},    {"H", "H#", 0},
        {"hb1", "HB#", 0},   {"HB2", "HB[23]", 1},
    };
    for (const MatchCase& c : cases) {
        EXPECT_EQ(atomMatch(c.text, c.pattern), c.expected) << c.pattern << " on " << c.text;
    }
    EXPECT_EQ(atomMatch(nullptr, "HB#"), 0);
}

TEST(StrMatch, ModesAndCase) {
    EXPECT_EQ(strMatch("ca", "CA", kMatchExact, 1), 0);
    EXPECT_EQ(strMatch("ca", "CA", kMatchExact, 0), 1);
    EXPECT_EQ(strMatch("CA1", "CA", kMatchExact, 0), 0);
    EXPECT_EQ(strMatch("ca", "^CA$", kMatchRegex, 0), 1);
    EXPECT_EQ(strMatch("ca", "^CA$", kMatchRegex, 1), 0);
    EXPECT_EQ(strMatch("xCAy", "CA", kMatchRegex, 1), 1);  // a search, not anchored
    EXPECT_EQ(strMatch("hb12", "HB*", kMatchGlob, 0), 1);
    EXPECT_EQ(strMatch("hb12", "HB*", kMatchGlob, 1), 0);
    EXPECT_EQ(strMatch("CA", "CA", 0, 1), 0);
    EXPECT_EQ(strMatch(nullptr, "CA", kMatchExact, 1), 0);
    // A bad expression gives no match and leaves its reason.
    resetRegError();
    EXPECT_EQ(strMatch("CA", "(CA", kMatchRegex, 0), 0);
    EXPECT_STREQ(strGetRegError(), "unmatched ()");
}

TEST(AtomExpr, NumeralMarksBecomeDigitSets) {
    char text[kAtomExprSize] = "#H#";
    EXPECT_EQ(adjAtomExpr(text), 2);
    EXPECT_STREQ(text, "[0-9]H[0-9]");
    char small[8] = "H##";  // no room: left alone
    EXPECT_EQ(adjAtomExpr(small, sizeof(small)), -1);
    EXPECT_STREQ(small, "H##");
}

// Compiles pattern; the error text, empty when it compiles.
std::string compileError(const char* pattern) {
    resetRegError();
    RegProgram* program = strRegComp(pattern);
    strRegFree(program);
    return program ? "" : strGetRegError();
}

// The span of group g of the last match, as text.
std::string span(const RegProgram* p, int g) {
    return p->startp[g] ? std::string(p->startp[g], p->endp[g]) : "<unset>";
}

TEST(Regex, EachOperatorMatchesAndRejects) {
    const MatchCase cases[] = {
        {"XCAY", "CA", 1},      {"1CA", "^CA", 0},      {"CA1", "CA$", 0},
        {"CXB", "C.B", 1},      {"HD1", "H[BG]1", 0},   {"H2", "H[1-3]", 1},
        {"H2", "H[^1-3]$", 0},  {"]", "[]x]", 1},       {"H-", "H[-1]", 1},
        {"H1", "^HB?1$", 1},    {"HBBB1", "^HB*1$", 1}, {"H1", "^HB+1$", 0},
        {"CB", "^(CA|CB)$", 1}, {"HBH", "^(HB)+$", 0},  {"ABABC", "^(AB)?C$", 0},
        {"CXA", "C\\.A", 0},    {"*", "^\\*$", 1},      {"xa", "^a|b$", 0},
        {" ", "^$", 0},
    };
    for (const MatchCase& c : cases) {
        EXPECT_EQ(strMatchRegex(c.text, c.pattern), c.expected) << c.pattern << " on " << c.text;
    }
    // Alternatives are tried in order and repetition is greedy.
    RegProgram* p = strRegComp("(a|ab)(c|bcd)(d*)");
    ASSERT_EQ(strRegExec(p, "xabcd"), 1);
    EXPECT_EQ(span(p, 0), "abcd");
    EXPECT_EQ(span(p, 1), "a");
    EXPECT_EQ(span(p, 2), "bcd");
    EXPECT_EQ(span(p, 4), "<unset>");
    strRegFree(p);
}

TEST(Regex, CompileErrorsKeepTheirText) {
    const char* cases[][2] = {
        {"(a)(b)(c)(d)(e)(f)(g)(h)(i)(j)", "too many ()"},
        {"(ab", "unmatched ()"},
        {"ab)", "unmatched ()"},
        {"a$b", "junk on end"},
        {"(a*)*", "*+ operand could be empty"},
        {"(a|)+", "*+ operand could be empty"},
        {"a**", "nested *?+"},
        {"[z-a]", "invalid [] range"},
        {"[a-c", "unmatched []"},
        {"*a", "?+* follows nothing"},
        {"a|+b", "?+* follows nothing"},
        {"ab\\", "trailing \\"},
        {"(a)(b)(c)(d)(e)(f)(g)(h)(i)", ""},
        {"(a$)|b$", ""},
    };
    for (const auto& c : cases) EXPECT_EQ(compileError(c[0]), c[1]) << c[0];
    EXPECT_EQ(compileError(nullptr), "NULL argument");
    EXPECT_EQ(compileError(std::string(70000, 'a').c_str()), "Regexp too big");
}

TEST(Regex, ExecutionErrorsGiveNoMatch) {
    resetRegError();
    EXPECT_EQ(strRegExec(nullptr, "a"), 0);
    EXPECT_STREQ(strGetRegError(), "NULL parameter");
    // Damaged programs are refused instead of being followed.
    RegProgram* p = strRegComp("ab*c");
    p->magic ^= 1;
    EXPECT_EQ(strRegExec(p, "abc"), 0);
    EXPECT_STREQ(strGetRegError(), "corrupted program");
    p->magic ^= 1;
    ASSERT_EQ(p->node[2].op, kRegStar);
    p->node[3].op = kRegBol;
    EXPECT_EQ(strRegExec(p, "abc"), 0);
    EXPECT_STREQ(strGetRegError(), "internal foulup");
    p->node[3].op = kRegExactly;
    p->node[1].op = 0;
    EXPECT_EQ(strRegExec(p, "abc"), 0);
    EXPECT_STREQ(strGetRegError(), "memory corruption");
    p->node[1].op = kRegExactly;
    p->node[1].next = 0;
    EXPECT_EQ(strRegExec(p, "abc"), 0);
    EXPECT_STREQ(strGetRegError(), "corrupted pointers");
    strRegFree(p);
    EXPECT_EQ(strMatchRegex("abc", "x"), 0);  // a failed match is not an error
    EXPECT_STREQ(strGetRegError(), "corrupted pointers");
}

TEST(Regex, LongTextsAndNestedLoopsStayFast) {
    std::string as(100000, 'a');
    EXPECT_EQ(strMatchRegex(as.c_str(), "(a+)+b"), 0);
    EXPECT_EQ(strMatchRegex(as.c_str(), ".*.*.*x"), 0);
    EXPECT_EQ(strMatchRegex((as + "b").c_str(), "((a+)+)+b$"), 1);
    // Too many choice points for the table of visited positions: plain search.
    std::string many = "x";
    for (int i = 0; i < 700; i++) many += "|b" + std::to_string(i) + "z";
    as.replace(1000, 4, "b699");
    as.replace(3000, 5, "b699z");
    RegProgram* p = strRegComp(many.c_str());
    ASSERT_EQ(strRegExec(p, as.c_str()), 1);
    EXPECT_EQ(p->startp[0] - as.c_str(), 3000);
    strRegFree(p);
}

// Result, whole-match span and first group against the standard library's
// ECMAScript engine, on random patterns over the shared operators.
TEST(Regex, AgreesWithAnIndependentEngine) {
    std::mt19937 rng(11);
    const char* atoms[] = {"a", "b", "c", ".", "[ab]", "[^a]", "(a|b)", "(ab|c)", "(a*)b"};
    const char* ops[] = {"", "", "*", "+", "?", "|"};
    int compared = 0;
    for (int i = 0; i < 3000; i++) {
        std::string pattern = rng() % 3 == 0 ? "^" : "";
        for (int k = rng() % 4 + 1; k > 0; k--)
            pattern += std::string(atoms[rng() % 9]) + ops[rng() % 6];
        if (rng() % 3 == 0) pattern += "$";
        RegProgram* p = strRegComp(pattern.c_str());
        if (!p) continue;
        std::regex reference(pattern);
        for (int t = 0; t < 4; t++) {
            std::string text;
            for (int n = rng() % 8; n > 0; n--) text += "abc"[rng() % 3];
            std::smatch m;
            bool expected = std::regex_search(text, m, reference);
            ASSERT_EQ(strRegExec(p, text.c_str()), expected ? 1 : 0) << pattern << " on " << text;
            if (!expected) continue;
            EXPECT_EQ(p->startp[0] - text.c_str(), m.position(0)) << pattern << " on " << text;
            EXPECT_EQ(span(p, 0), m.str(0)) << pattern << " on " << text;
            if (m.size() > 1) {
                EXPECT_EQ(span(p, 1), m[1].matched ? m.str(1) : "<unset>") << pattern;
            }
            compared++;
        }
        strRegFree(p);
    }
    EXPECT_GT(compared, 1000);
}

TEST(NameMatch, ExpressionsGiveBackTheirMemory) {
    int64_t before = 0, after = 0;
    getMemUsed(&before, nullptr);
    EXPECT_EQ(strMatch("hb1", "^HB[0-9]$", kMatchRegex, 0), 1);
    EXPECT_EQ(strMatch("hb1", "HB?", kMatchGlob, 0), 1);
    EXPECT_EQ(strMatch("hb1", "(", kMatchRegex, 0), 0);
    EXPECT_EQ(atomMatch("HG12", "HG*"), 1);
    EXPECT_EQ(strMatchRegex(std::string(5000, 'a').c_str(), "(a|b)*c"), 0);
    getMemUsed(&after, nullptr);
    EXPECT_EQ(after, before);
}

}  // namespace
