#include "pdb/keys.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "pdb/columns.h"
#include "pdb/modes.h"
#include "pdb/records.h"
#include "util/number_text.h"

namespace {

char orBlank(const char* text) {
    return text[0] ? text[0] : ' ';
}

// Atom and residue keys as their printf formats give them, in every key mode.
TEST(Keys, MatchTheirPrintfFormsInEveryMode) {
    const char* names[] = {"", "CA", "HD21", "ABCDEFGHIJKLMNO"};
    const char* ids[][3] = {{"", "", "A"}, {"A", "", "B"}, {"", "", ""}, {"AB", "CD", "E"}};
    for (int mode = 0; mode < 4; mode++) {  // normal, no chains, no segments, full atom
        resetPDBModes();
        setPDBChainMode(mode == 1);
        setPDBSegMode(mode == 2);
        setPDBAtomMode(mode == 3);
        const char* seg = mode == 2 ? "" : "SG";
        for (const char* name : names) {
            for (const auto& id : ids) {
                for (int resID : {1, -12, INT_MIN}) {
                    PDBAtom atom;
                    atomNull(&atom);
                    atom.resID = resID;
                    copyName(atom.atomName, name);
                    copyName(atom.locID, id[0]);
                    copyName(atom.icode, id[1]);
                    copyName(atom.chain, id[2]);
                    copyName(atom.seg, "SG");
                    char field[64], expected[kKeySize], key[kKeySize];
                    std::string joined = mode == 1 ? "" : std::string(id[0]) + id[1] + id[2];
                    std::snprintf(field, sizeof field, "%3s", joined.c_str());
                    if (mode == 3) {
                        std::snprintf(field, sizeof field, "%c%c%c", orBlank(id[0]), orBlank(id[1]),
                                      orBlank(id[2]));
                    }
                    std::snprintf(expected, sizeof expected, "%d %-4s %s %-4s", resID, name, field,
                                  seg);
                    atomKey(key, &atom);
                    EXPECT_STREQ(key, expected) << mode;
                    std::snprintf(expected, sizeof expected, "%d %-2s %-4s", resID,
                                  mode == 1 ? "" : id[2], seg);
                    resKey(key, resID, id[2], "SG");
                    EXPECT_STREQ(key, expected);
                }
            }
        }
    }
    resetPDBModes();
    char key[kKeySize];  // lookups may be handed names of any length: cut like snprintf
    atomLookupKey(key, 1, std::string(300, 'N').c_str(), "A", "");
    EXPECT_EQ(std::strlen(key), kKeySize - 1);
}

// Numeric columns read exactly as Atof2 and Atoi2 read the field's text.
TEST(Columns, NumbersAgreeWithTheGeneralParsers) {
    std::mt19937 random(7);
    const char alphabet[] = " 0123456789.-+eEx\t";
    std::uniform_int_distribution<int> pick(0, sizeof alphabet - 2), size(0, 8);
    std::uniform_real_distribution<float> value(-9999.0f, 9999.0f);
    std::vector<std::string> fields = {"-0.000",
                                       "1234567890",
                                       "-2147483648",
                                       "16777217",
                                       "1e40",
                                       "-.5",
                                       "5.",
                                       ".",
                                       "9007199254740993",
                                       "  1 2 . 5",
                                       "0.1000000000000000055511151231257827"};
    for (int i = 0; i < 20000; i++) {
        char field[32];
        std::snprintf(field, sizeof field, "%8.3f", value(random));
        if (i % 2) {
            field[size(random)] = '\0';
            for (char* c = field; *c; c++) *c = alphabet[pick(random)];
        }
        fields.push_back(field);
    }
    for (const std::string& field : fields) {
        std::string text = field.substr(0, 32);  // numeric fields are cut at 32 columns
        std::erase_if(text, [](char c) { return c == ' ' || c == '\t'; });
        int length = static_cast<int>(field.size());
        float real = columnReal(field.c_str(), length, 0, length - 1);
        EXPECT_EQ(std::bit_cast<uint32_t>(real), std::bit_cast<uint32_t>(Atof2(text.c_str())))
            << "|" << field << "|";
        EXPECT_EQ(columnInt(field.c_str(), length, 0, length - 1), Atoi2(text.c_str())) << field;
    }
    EXPECT_EQ(columnInt("ATOM", 4, 6, 13), 0);
}

}  // namespace
