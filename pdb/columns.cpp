#include "pdb/columns.h"

#include <cstdint>

#include "util/number_text.h"

namespace {

// The white space of the tokenizer: blank, tab, newline, vertical tab, form
// feed and return.
inline bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

inline bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Exact powers of ten: each is a double without rounding.
constexpr double kPowersOfTen[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                   1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

// The longest digit string whose value a double holds exactly.
constexpr int kExactDigits = 15;
// The longest digit string an int holds whatever the digits.
constexpr int kSafeIntDigits = 9;

// Numeric fields are cut to this many columns.
constexpr int kNumberColumns = 32;

int lastNumberColumn(int first, int last) {
    return last - first < kNumberColumns ? last : first + kNumberColumns - 1;
}

// One past the last column of a field that the line holds.
int fieldEnd(int length, int last) { return last < length ? last + 1 : length; }

int skipBlanks(const char* line, int i, int end) {
    while (i < end && isBlank(line[i])) i++;
    return i;
}

// The text route, for every field the quick paths do not take.
float realByText(const char* line, int length, int first, int last) {
    char text[kNumberColumns + 1];
    columnText(text, line, length, first, last);
    return Atof2(text);
}

int intByText(const char* line, int length, int first, int last) {
    char text[kNumberColumns + 1];
    columnText(text, line, length, first, last);
    return Atoi2(text);
}

}  // namespace

int columnText(char* destination, const char* line, int length, int first, int last) {
    destination[0] = '\0';
    if (first >= length) return 1;
    int n = 0;
    for (int i = first; i <= last && i < length; i++) {
        if (!isBlank(line[i])) destination[n++] = line[i];
    }
    destination[n] = '\0';
    return 0;
}

// A plain decimal "[sign]digits[.digits]" of at most 15 digits is an exact
// integer divided by an exact power of ten, and that one correctly rounded
// division gives the correctly rounded value strtod finds. Anything else
// (exponents, trailing text, long digit strings) takes the text route.
float columnReal(const char* line, int length, int first, int last) {
    last = lastNumberColumn(first, last);
    int end = fieldEnd(length, last);
    int i = skipBlanks(line, first, end);
    bool negative = i < end && line[i] == '-';
    if (i < end && (line[i] == '-' || line[i] == '+')) i++;
    uint64_t mantissa = 0;
    int digits = 0, decimals = 0;
    bool point = false;
    for (; i < end; i++) {
        char c = line[i];
        if (isDigit(c)) {
            mantissa = mantissa * 10 + static_cast<uint64_t>(c - '0');
            digits++;
            decimals += point;
        } else if (c == '.' && !point) {
            point = true;
        } else if (!isBlank(c)) {
            return realByText(line, length, first, last);
        }
    }
    if (digits == 0 || digits > kExactDigits) return realByText(line, length, first, last);
    double value = static_cast<double>(mantissa) / kPowersOfTen[decimals];
    return static_cast<float>(negative ? -value : value);
}

// Like strtol, reading stops at the first character that is not a digit.
int columnInt(const char* line, int length, int first, int last) {
    last = lastNumberColumn(first, last);
    int end = fieldEnd(length, last);
    int i = skipBlanks(line, first, end);
    bool negative = i < end && line[i] == '-';
    if (i < end && (line[i] == '-' || line[i] == '+')) i++;
    int value = 0, digits = 0;
    for (; i < end; i++) {
        char c = line[i];
        if (isBlank(c)) continue;
        if (!isDigit(c)) break;
        if (digits == kSafeIntDigits) return intByText(line, length, first, last);
        value = value * 10 + (c - '0');
        digits++;
    }
    return negative ? -value : value;
}
