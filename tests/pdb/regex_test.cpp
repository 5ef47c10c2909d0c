#include "pdb/regex.h"

#include <gtest/gtest.h>

#include <random>
#include <regex>
#include <string>

#include "util/alloc.h"

namespace {

// Compiles pattern; null with the error text in error.
std::string compileError(const char* pattern) {
    resetRegError();
    RegProgram* program = strRegComp(pattern);
    strRegFree(program);
    return program ? "" : strGetRegError();
}

// The span of group g of the last match, as text.
std::string span(const RegProgram* p, int g) {
    if (!p->startp[g]) return "<unset>";
    return std::string(p->startp[g], p->endp[g]);
}

TEST(Regex, EachOperatorMatchesAndRejects) {
    struct Case {
        const char* pattern;
        const char* yes;
        const char* no;
    } cases[] = {
        {"CA", "XCAY", "CB"},          {"^CA", "CA1", "1CA"},
        {"CA$", "NCA", "CA1"},         {"C.B", "CXB", "CB"},
        {"H[BG]1", "HG1", "HD1"},      {"H[1-3]", "H2", "H4"},
        {"H[^1-3]$", "HA", "H2"},      {"[]x]", "]", "y"},
        {"H[-1]", "H-", "H2"},         {"^HB?1$", "H1", "HBB1"},
        {"^HB*1$", "HBBB1", "HC1"},    {"^HB+1$", "HB1", "H1"},
        {"^(CA|CB)$", "CB", "CG"},     {"^(HB)+$", "HBHB", "HBH"},
        {"^(HB)*$", "", "HA"},         {"^(AB)?C$", "ABC", "ABABC"},
        {"C\\.A", "C.A", "CXA"},       {"^\\*$", "*", "a"},
        {"^a|b$", "ax", "xa"},         {"^$", "", " "},
        {"^.*$", "any text", nullptr},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(strMatchRegex(c.yes, c.pattern), 1) << c.pattern << " on " << c.yes;
        if (c.no) {
            EXPECT_EQ(strMatchRegex(c.no, c.pattern), 0) << c.pattern << " on " << c.no;
        }
    }
}

TEST(Regex, ReportsLeftmostSpanAndGroups) {
    RegProgram* p = strRegComp("(H[A-Z])([0-9]+)");
    ASSERT_NE(p, nullptr);
    ASSERT_EQ(strRegExec(p, "xx HB12 HG3"), 1);
    EXPECT_EQ(span(p, 0), "HB12");
    EXPECT_EQ(span(p, 1), "HB");
    EXPECT_EQ(span(p, 2), "12");
    EXPECT_EQ(span(p, 3), "<unset>");
    // Alternatives are tried in order and repetition is greedy.
    RegProgram* q = strRegComp("(a|ab)(c|bcd)(d*)");
    ASSERT_EQ(strRegExec(q, "abcd"), 1);
    EXPECT_EQ(span(q, 0), "abcd");
    EXPECT_EQ(span(q, 1), "a");
    EXPECT_EQ(span(q, 2), "bcd");
    strRegFree(p);
    strRegFree(q);
}

TEST(Regex, StartOfLineOnlyWhenTheTextBeginsOne) {
    RegProgram* p = strRegComp("^CA");
    EXPECT_EQ(strRegExec2(p, "CA", 1), 1);
    EXPECT_EQ(strRegExec2(p, "CA", 0), 0);
    strRegFree(p);
    RegProgram* q = strRegComp("x|^CA");
    EXPECT_EQ(strRegExec2(q, "CA", 0), 0);
    EXPECT_EQ(strRegExec2(q, "CAx", 0), 1);
    strRegFree(q);
}

TEST(Regex, CompileErrorsKeepTheirText) {
    EXPECT_EQ(compileError(nullptr), "NULL argument");
    EXPECT_EQ(compileError(std::string(70000, 'a').c_str()), "Regexp too big");
    EXPECT_EQ(compileError("(a)(b)(c)(d)(e)(f)(g)(h)(i)"), "");
    EXPECT_EQ(compileError("(a)(b)(c)(d)(e)(f)(g)(h)(i)(j)"), "too many ()");
    EXPECT_EQ(compileError("(ab"), "unmatched ()");
    EXPECT_EQ(compileError("ab)"), "unmatched ()");
    EXPECT_EQ(compileError("a$b"), "junk on end");
    EXPECT_EQ(compileError("(a$)|b$"), "");
    EXPECT_EQ(compileError("(a*)*"), "*+ operand could be empty");
    EXPECT_EQ(compileError("(a|)+"), "*+ operand could be empty");
    EXPECT_EQ(compileError("^*"), "*+ operand could be empty");
    EXPECT_EQ(compileError("(a*)?"), "");
    EXPECT_EQ(compileError("a**"), "nested *?+");
    EXPECT_EQ(compileError("(ab)+?"), "nested *?+");
    EXPECT_EQ(compileError("[z-a]"), "invalid [] range");
    EXPECT_EQ(compileError("[a-c"), "unmatched []");
    EXPECT_EQ(compileError("[]"), "unmatched []");
    EXPECT_EQ(compileError("*a"), "?+* follows nothing");
    EXPECT_EQ(compileError("a|+b"), "?+* follows nothing");
    EXPECT_EQ(compileError("(?a)"), "?+* follows nothing");
    EXPECT_EQ(compileError("ab\\"), "trailing \\");
}

TEST(Regex, ExecutionErrorsGiveNoMatch) {
    resetRegError();
    EXPECT_EQ(strRegExec(nullptr, "a"), 0);
    EXPECT_STREQ(strGetRegError(), "NULL parameter");
    RegProgram* p = strRegComp("ab*c");
    resetRegError();
    EXPECT_EQ(strRegExec(p, nullptr), 0);
    EXPECT_STREQ(strGetRegError(), "NULL parameter");

    // Damaged programs are refused instead of being followed.
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

    // A failed match is not an error: the last error text stays.
    EXPECT_EQ(strMatchRegex("abc", "x"), 0);
    EXPECT_STREQ(strGetRegError(), "corrupted pointers");
    resetRegError();
    EXPECT_STREQ(strGetRegError(), "");
}

TEST(Regex, LongTextsAndNestedLoopsStayFast) {
    std::string as(100000, 'a');
    std::string abs;
    for (int i = 0; i < 50000; i++) abs += "ab";
    EXPECT_EQ(strMatchRegex(abs.c_str(), "^(a|b)*$"), 1);
    EXPECT_EQ(strMatchRegex(abs.c_str(), "(ab)+c"), 0);
    EXPECT_EQ(strMatchRegex(as.c_str(), "(a+)+b"), 0);
    EXPECT_EQ(strMatchRegex(as.c_str(), ".*.*.*x"), 0);
    EXPECT_EQ(strMatchRegex(as.c_str(), "(a|aa)*$"), 1);
    EXPECT_EQ(strMatchRegex((as + "b").c_str(), "((a+)+)+b$"), 1);
    // Too many choice points for the table of visited positions: plain search.
    std::string many = "x";
    for (int i = 0; i < 700; i++) many += "|b" + std::to_string(i) + "z";
    std::string late = as;
    late.replace(1000, 4, "b699");
    late.replace(3000, 5, "b699z");
    RegProgram* p = strRegComp(many.c_str());
    ASSERT_EQ(strRegExec(p, late.c_str()), 1);
    EXPECT_EQ(p->startp[0] - late.c_str(), 3000);
    strRegFree(p);
}

// Boolean result, whole-match span and first group against the standard
// library's ECMAScript engine, on random patterns over the shared operators.
TEST(Regex, AgreesWithAnIndependentEngine) {
    std::mt19937 rng(11);
    const char* atoms[] = {"a",    "b",     "c",      ".",     "[ab]",
                           "[^a]", "(a|b)", "(ab|c)", "(a*)b", "(a|bc)"};
    const char* ops[] = {"", "", "*", "+", "?"};
    int compared = 0;
    for (int i = 0; i < 3000; i++) {
        std::string pattern = rng() % 3 == 0 ? "^" : "";
        for (int k = rng() % 4 + 1; k > 0; k--) {
            pattern += atoms[rng() % 10];
            pattern += ops[rng() % 5];
            if (rng() % 8 == 0) pattern += "|";
        }
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
            EXPECT_EQ(span(p, 0), m.str(0)) << pattern << " on " << text;
            EXPECT_EQ(p->startp[0] - text.c_str(), m.position(0)) << pattern << " on " << text;
            if (m.size() > 1) {
                EXPECT_EQ(span(p, 1), m[1].matched ? m.str(1) : "<unset>") << pattern;
            }
            compared++;
        }
        strRegFree(p);
    }
    EXPECT_GT(compared, 1000);
}

TEST(Regex, ProgramsAndSearchesGiveBackTheirMemory) {
    int64_t before = 0;
    int64_t after = 0;
    getMemUsed(&before, nullptr);
    RegProgram* p = strRegComp("^(H[A-Z]+|C.)([0-9]*)$");
    EXPECT_EQ(strRegExec(p, "HB12"), 1);
    strRegFree(p);
    EXPECT_EQ(strMatchRegex(std::string(5000, 'a').c_str(), "(a|b)*c"), 0);
    EXPECT_EQ(strMatchRegex("x", "(x"), 0);
    getMemUsed(&after, nullptr);
    EXPECT_EQ(after, before);
}

}  // namespace
