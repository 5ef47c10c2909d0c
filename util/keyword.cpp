#include "util/keyword.h"

#include <strings.h>

#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "util/args.h"

namespace {

constexpr int kTextSize = 1024;

bool isEnd(const KeyValue* entry) { return !entry->name || !entry->name[0]; }

bool startsWithLetter(const char* text) {
    char c = text[0];
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

const KeyValue* findName(const KeyValue* table, const char* text) {
    for (const KeyValue* entry = table; entry && !isEnd(entry); entry++) {
        if (strcasecmp(entry->name, text) == 0) return entry;
    }
    return nullptr;
}

void reportMissingValue(const char* option) {
    std::fprintf(stderr, "Keyword Error: bad or missing value for");
    std::fprintf(stderr, " '%s'\n", option ? option : "");
}

void reportValidNames(const char* option, const KeyValue* table) {
    std::fprintf(stderr, "Keyword Error: bad value for");
    std::fprintf(stderr, " '%s'; Valid Options:\n\n", option ? option : "");
    std::fprintf(stderr, "%-14s %s\n\n", "Code Name", "Numerical Value");
    for (const KeyValue* entry = table; entry && !isEnd(entry); entry++) {
        std::fprintf(stderr, " %-14s % 2.0f\n", entry->name, static_cast<double>(entry->value));
    }
}

bool readReal(const char* text, float* value) {
    char* end = nullptr;
    float number = std::strtof(text, &end);
    if (end == text) return false;
    *value = number;
    return true;
}

void copyText(char* dst, const char* src) {
    std::size_t length = std::strlen(src);
    if (length > kTextSize - 1) length = kTextSize - 1;
    std::memcpy(dst, src, length);
    dst[length] = '\0';
}

int clampToInt(float number) {
    if (std::isnan(number)) return 0;
    if (number >= 2147483647.0f) return INT_MAX;
    if (number <= -2147483648.0f) return INT_MIN;
    return static_cast<int>(number);
}

// The option's value text (marked as used), or null when the option is the
// last argument; false when the option is absent.
bool optionValue(int argc, char** argv, const char* option, const char** text) {
    int loc = flagLoc(argc, argv, option);
    if (badFlag()) return false;
    *text = loc + 1 < argc ? getNthArg(argc, argv, loc + 1) : nullptr;
    return true;
}

}  // namespace

int getValByName(const char* option, const char* valueText, const KeyValue* table, float* value) {
    if (!valueText || !valueText[0]) {
        reportMissingValue(option);
        return -1;
    }
    // A value that does not begin with a letter is a number, read as far as
    // it goes: "_3" holds none and reads as 0.
    if (!startsWithLetter(valueText)) {
        float number;
        if (!readReal(valueText, &number)) number = 0.0f;
        if (value) *value = number;
        return 1;
    }
    const KeyValue* entry = findName(table, valueText);
    if (!entry) {
        reportValidNames(option, table);
        return -1;
    }
    if (value) *value = entry->value;
    return 0;
}

int getNameByVal(char* name, const KeyValue* table, float value) {
    int count = 0;
    if (name) name[0] = '\0';
    for (const KeyValue* entry = table; entry && !isEnd(entry); entry++) {
        if (entry->value != value) continue;
        count++;
        if (name) copyText(name, entry->name);
    }
    return count;
}

const char* getNameStrByVal(const KeyValue* table, float value) {
    for (const KeyValue* entry = table; entry && !isEnd(entry); entry++) {
        if (entry->value == value) return entry->name;
    }
    return "";
}

int fltStrArgD(int argc, char** argv, const char* option, const KeyValue* table, float* value) {
    const char* text = nullptr;
    if (!optionValue(argc, argv, option, &text)) return 2;
    return getValByName(option, text, table, value);
}

int intStrArgD(int argc, char** argv, const char* option, const KeyValue* table, int* value) {
    float number = 0.0f;
    int result = fltStrArgD(argc, argv, option, table, &number);
    if ((result == 0 || result == 1) && value) *value = clampToInt(number);
    return result;
}

int strStrArgD(int argc, char** argv, const char* option, const KeyValue* table, char* value) {
    const char* text = nullptr;
    if (!optionValue(argc, argv, option, &text)) return 2;
    if (!text || !text[0]) {
        reportMissingValue(option);
        return -1;
    }
    const KeyValue* entry = findName(table, text);
    if (!entry) {
        reportValidNames(option, table);
        return -1;
    }
    if (value) copyText(value, entry->name);
    return 0;
}
