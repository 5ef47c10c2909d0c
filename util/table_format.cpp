#include "util/table_format.h"

#include <climits>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

// Fields are printed into 1024-byte texts.
constexpr int kFieldLimit = 1024;

const char* skipFlags(const char* p) {
    while (*p && std::strchr("-+ #0", *p)) p++;
    return p;
}

// Skips a width or precision; null when it is larger than a printed field
// can hold, which also keeps it far from the limits of printf.
const char* skipNumber(const char* p) {
    int number = 0;
    while (*p >= '0' && *p <= '9') {
        number = number * 10 + (*p++ - '0');
        if (number >= kFieldLimit) return nullptr;
    }
    return p;
}

// Skips a size modifier (h, hh, l, ll, L): the column's type comes from the
// conversion character after it.
const char* skipSizeModifier(const char* p) {
    if ((p[0] == 'h' || p[0] == 'l') && p[1] == p[0]) return p + 2;
    if (p[0] == 'h' || p[0] == 'l' || p[0] == 'L') return p + 1;
    return p;
}

int typeOfConversion(char c) {
    switch (c) {
        case 's': return kTabText;
        case 'd': return kTabInt;
        case 'e':
        case 'f':
        case 'g': return kTabReal;
        default: return 0;
    }
}

}  // namespace

int getTabVarType(const char* format) {
    if (!format) return 0;
    int type = 0;
    for (const char* p = format; *p; p++) {
        if (*p != '%') continue;
        if (p[1] == '%') {
            p++;
            continue;
        }
        if (type) return 0;  // a second conversion
        p = skipNumber(skipFlags(p + 1));
        if (p && *p == '.') p = skipNumber(p + 1);
        if (!p) return 0;
        p = skipSizeModifier(p);
        type = typeOfConversion(*p);
        if (!type || p[1] != '\0') return 0;
    }
    return type;
}

void fmtFromFile(char* format) {
    for (char* p = format; p && *p; p++) {
        if (*p == '_') *p = ' ';
    }
}

int tabFloatToInt(float value) {
    if (std::isnan(value)) return 0;
    if (value >= 2147483647.0f) return INT_MAX;
    if (value <= -2147483648.0f) return INT_MIN;
    return static_cast<int>(value);
}

int tabTextIndex(const TabVar* var, float value) {
    if (std::isnan(value) || value < 0.0f || value >= static_cast<float>(var->textCount)) return -1;
    int index = static_cast<int>(value);
    return var->texts && var->texts[index] ? index : -1;
}

namespace {

// The format as printf is handed it: a size modifier is dropped, so that a
// column read as %9.3lf or %ld prints its value as %9.3f or %d would. Null
// when the format is too long to be rewritten in plain.
const char* plainFormat(const char* format, char* plain, std::size_t size) {
    const char* percent = std::strchr(format, '%');
    while (percent && percent[1] == '%') percent = std::strchr(percent + 2, '%');
    if (!percent) return format;
    const char* p = skipNumber(skipFlags(percent + 1));
    if (p && *p == '.') p = skipNumber(p + 1);
    if (!p || skipSizeModifier(p) == p) return format;
    std::size_t head = static_cast<std::size_t>(p - format);
    const char* tail = skipSizeModifier(p);
    if (head + std::strlen(tail) + 1 > size) return nullptr;
    std::memcpy(plain, format, head);
    std::strcpy(plain + head, tail);
    return plain;
}

}  // namespace

int printTabField(char* field, int size, const TabVar* var, float value, const int* nullValue) {
    int written = 0;
    field[0] = '\0';
    // A format that does not fit the column's type would hand printf the
    // wrong argument; such a column counts as one of unknown type.
    if (getTabVarType(var->format) != var->type) return 2;
    char plain[kFieldLimit];
    const char* format = plainFormat(var->format, plain, sizeof plain);
    if (!format) return 2;
    switch (var->type) {
        case kTabInt: written = std::snprintf(field, size, format, tabFloatToInt(value)); break;
        case kTabReal:
            written = std::snprintf(field, size, format, static_cast<double>(value));
            break;
        case kTabText: {
            if (nullValue && value == static_cast<float>(*nullValue)) {
                written = std::snprintf(field, size, format, kTabNullText);
                break;
            }
            int index = tabTextIndex(var, value);
            if (index < 0) return 1;
            written = std::snprintf(field, size, format, var->texts[index]);
            break;
        }
        default: return 2;
    }
    if (written < 0) field[0] = '\0';
    return 0;
}
