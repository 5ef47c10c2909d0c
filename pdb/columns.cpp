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

// Walks the non-blank characters of a field, as columnText would copy them.
class FieldReader {
  public:
    FieldReader(const char* line, int length, int first, int last)
        : line_(line), i_(first), end_(last < length ? last + 1 : length) {
        skip();
    }
    char peek() const { return i_ < end_ ? line_[i_] : '\0'; }
    void next() {
        i_++;
        skip();
    }

  private:
    void skip() {
        while (i_ < end_ && isBlank(line_[i_])) i_++;
    }
    const char* line_;
    int i_;
    int end_;
};

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
    FieldReader field(line, length, first, last);
    bool negative = field.peek() == '-';
    if (field.peek() == '-' || field.peek() == '+') field.next();
    uint64_t mantissa = 0;
    int digits = 0, decimals = 0;
    for (; isDigit(field.peek()); field.next(), digits++) {
        mantissa = mantissa * 10 + (field.peek() - '0');
    }
    if (field.peek() == '.') {
        for (field.next(); isDigit(field.peek()); field.next(), digits++, decimals++) {
            mantissa = mantissa * 10 + (field.peek() - '0');
        }
    }
    if (field.peek() != '\0' || digits == 0 || digits > kExactDigits) {
        return realByText(line, length, first, last);
    }
    double value = static_cast<double>(mantissa) / kPowersOfTen[decimals];
    return static_cast<float>(negative ? -value : value);
}

// Like strtol, reading stops at the first character that is not a digit.
int columnInt(const char* line, int length, int first, int last) {
    last = lastNumberColumn(first, last);
    FieldReader field(line, length, first, last);
    bool negative = field.peek() == '-';
    if (field.peek() == '-' || field.peek() == '+') field.next();
    int value = 0;
    for (int digits = 0; isDigit(field.peek()); field.next(), digits++) {
        if (digits == kSafeIntDigits) return intByText(line, length, first, last);
        value = value * 10 + (field.peek() - '0');
    }
    return negative ? -value : value;
}
