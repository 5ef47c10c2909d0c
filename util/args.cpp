#include "util/args.h"

#include <strings.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "util/alloc.h"
#include "util/token.h"

namespace {

constexpr int kMapSize = 1024;
constexpr int kTextSize = 1024;

struct ArgState {
    char argMap[kMapSize];
    int badFlag = 0;
    const char* progName = nullptr;
    int argc = 0;
    int checkMode = 0;
    unsigned checksum = 0;
    char strValue[kTextSize] = {0};

    ArgState() { clearMap(); }
    void clearMap() {
        std::memset(argMap, '0', kMapSize - 1);
        argMap[kMapSize - 1] = '\0';
    }
};

ArgState args;

void markUsed(int i) {
    if (i >= 0 && i < kMapSize - 1) args.argMap[i] = '1';
}

bool isUsed(int i) { return i >= 0 && i < kMapSize - 1 && args.argMap[i] == '1'; }

// Index of the option's value argument, marked consumed; -1 (and badFlag)
// when the option is absent or is the last argument.
int valueLoc(int argc, char** argv, const char* name) {
    int loc = flagLoc(argc, argv, name);
    if (args.badFlag) return -1;
    if (loc + 1 >= argc || !argv[loc + 1]) {
        args.badFlag = 1;
        return -1;
    }
    markUsed(loc + 1);
    return loc + 1;
}

void copyText(char* dst, const char* src, int capacity) {
    std::size_t length = std::strlen(src);
    if (length > static_cast<std::size_t>(capacity - 1)) length = capacity - 1;
    std::memcpy(dst, src, length);
    dst[length] = '\0';
}

// Base-10 integer of a text's leading digits, clamped to the int range.
int toInt(const char* text) {
    long value = std::strtol(text, nullptr, 10);
    if (value > INT_MAX) return INT_MAX;
    if (value < INT_MIN) return INT_MIN;
    return static_cast<int>(value);
}

double toDouble(const char* text) {
    double value = 0;
    std::sscanf(text, "%lf", &value);
    return value;
}

// The value arguments of a list option: first index and one past the last.
// Each is marked consumed. False (badFlag set) when the option is absent.
bool listRange(int argc, char** argv, const char* name, int* first, int* end) {
    int loc = flagLoc(argc, argv, name);
    if (args.badFlag) return false;
    *first = loc + 1;
    *end = nextFlag(argc, argv, loc);
    for (int i = *first; i < *end; i++) markUsed(i);
    return true;
}

// Calls visit(start, length) for each white-space token of text, in one pass.
template <class Visit>
void forEachToken(const char* text, Visit visit) {
    const char* p = text;
    while (p && *p) {
        while (*p && isWhiteChar(*p)) p++;
        if (!*p) break;
        const char* start = p;
        while (*p && !isWhiteChar(*p)) p++;
        visit(start, static_cast<int>(p - start));
    }
}

int countTokens(char** argv, int first, int end) {
    int total = 0;
    for (int i = first; i < end; i++) total += cntToken(argv[i]);
    return total;
}

template <class Visit>
void forEachListToken(char** argv, int first, int end, Visit visit) {
    for (int i = first; i < end; i++) forEachToken(argv[i], visit);
}

char* copySpan(const char* tag, const char* start, int length) {
    char* copy = charMalloc64(tag, static_cast<int64_t>(length) + 1);
    if (!copy) return nullptr;
    std::memcpy(copy, start, length);
    copy[length] = '\0';
    return copy;
}

// Allocates a "listArg" array of count elements, converting each token.
template <class T, class Convert>
T* tokenArray(char** argv, int first, int end, int* count, Convert convert) {
    int total = countTokens(argv, first, end);
    if (total == 0) return nullptr;
    T* values = static_cast<T*>(voidMalloc64("listArg", static_cast<int64_t>(total) * sizeof(T)));
    if (!values) {
        *count = -1;
        args.badFlag = 0;
        return nullptr;
    }
    int n = 0;
    forEachListToken(argv, first, end,
                     [&](const char* start, int) { values[n++] = convert(start); });
    *count = total;
    return values;
}

float toFloat(const char* text) { return static_cast<float>(std::strtod(text, nullptr)); }

void reportRun(char** argv, int first, int last) {
    std::fprintf(stderr, "Warning from %s:\n", getProgName());
    if (first == last) {
        std::fprintf(stderr, "  Argument %d may be unknown or unused:\n", first);
    } else {
        std::fprintf(stderr, "  Arguments %d to %d may be unknown or unused:\n", first, last);
    }
    std::fprintf(stderr, "  '");
    for (int i = first; i <= last; i++) std::fprintf(stderr, " %s", argv[i]);
    std::fprintf(stderr, " '\n");
}

unsigned argChecksum(int argc, char** argv) {
    unsigned sum = 0;
    for (int i = 0; i < argc && argv; i++) {
        for (const char* p = argv[i]; p && *p; p++) sum += static_cast<unsigned char>(*p);
    }
    return sum;
}

bool isBlankArg(const char* arg) {
    if (!arg) return true;
    for (const char* p = arg; *p; p++) {
        if (!isWhiteChar(*p)) return false;
    }
    return true;
}

int modeFromEnvironment() {
    const char* value = std::getenv("NMR_CHECKARGS");
    if (!value) return 0;
    if (strcasecmp(value, "FLAGS") == 0) return 1;
    if (strcasecmp(value, "DEBUG") == 0) return 3;
    return 2;
}

void printDebugMap(int argc, char** argv, unsigned finalChecksum) {
    std::fprintf(stderr, "Debug Info from %s. Original Checksum: %d Final Checksum: %d.\n",
                 getProgName(), static_cast<int>(args.checksum), static_cast<int>(finalChecksum));
    int limit = argc < kMapSize - 1 ? argc : kMapSize - 1;
    for (int i = 0; i < limit; i++) {
        const char* arg = argv[i];
        std::fprintf(stderr, "%3d. %c %3d Characters: '%s'\n", i, args.argMap[i],
                     arg ? static_cast<int>(std::strlen(arg)) : -1, arg ? arg : "(None)");
    }
}

}  // namespace

int isFlag(const char* s) {
    if (!s || s[0] != '-') return 0;
    char second = s[1];
    return !((second >= '0' && second <= '9') || second == '.');
}

int isNumber(const char* s) {
    float value;
    return s && std::sscanf(s, "%f", &value) == 1;
}

int flagLoc(int argc, char** argv, const char* name) {
    if (argc < 0 || !argv || !name) {
        args.badFlag = 1;
        return 0;
    }
    for (int i = 0; i < argc; i++) {
        if (argv[i] && std::strcmp(argv[i], name) == 0) {
            markUsed(i);
            args.badFlag = 0;
            return i;
        }
    }
    args.badFlag = 1;
    return 0;
}

int nextFlag(int argc, char** argv, int i) {
    for (int j = i + 1; j < argc; j++) {
        if (isFlag(argv[j])) return j;
    }
    return argc;
}

int nextFlagTerminator(int argc, char** argv, int i) {
    for (int j = i + 1; j < argc; j++) {
        if (argv[j] && std::strcmp(argv[j], "--") == 0) return j;
    }
    return argc;
}

char* getNthArg(int argc, char** argv, int n) {
    if (!argv || n < 0 || n >= argc) return nullptr;
    markUsed(n);
    return argv[n];
}

const char* getProgName() { return args.progName ? args.progName : "program"; }

int badFlag() { return args.badFlag; }

bool argPresent(int argc, char** argv, const char* name) {
    flagLoc(argc, argv, name);
    return !args.badFlag;
}

int intArg(int argc, char** argv, const char* name) {
    int loc = valueLoc(argc, argv, name);
    return loc < 0 ? 0 : toInt(argv[loc]);
}

float fltArg(int argc, char** argv, const char* name) {
    int loc = valueLoc(argc, argv, name);
    return loc < 0 ? 0.0f : static_cast<float>(toDouble(argv[loc]));
}

double dblArg(int argc, char** argv, const char* name) {
    int loc = valueLoc(argc, argv, name);
    return loc < 0 ? 0.0 : toDouble(argv[loc]);
}

char* strArg(int argc, char** argv, const char* name) {
    int loc = valueLoc(argc, argv, name);
    if (loc < 0) return nullptr;
    copyText(args.strValue, argv[loc], kTextSize);
    return args.strValue;
}

char* ptrArg(int argc, char** argv, const char* name) {
    int loc = valueLoc(argc, argv, name);
    return loc < 0 ? nullptr : argv[loc];
}

int intArgD(int argc, char** argv, const char* name, int* value) {
    int loc = valueLoc(argc, argv, name);
    if (loc < 0) return 0;
    if (value) *value = toInt(argv[loc]);
    return 1;
}

int fltArgD(int argc, char** argv, const char* name, float* value) {
    int loc = valueLoc(argc, argv, name);
    if (loc < 0) return 0;
    if (value) *value = static_cast<float>(toDouble(argv[loc]));
    return 1;
}

int dblArgD(int argc, char** argv, const char* name, double* value) {
    int loc = valueLoc(argc, argv, name);
    if (loc < 0) return 0;
    if (value) *value = toDouble(argv[loc]);
    return 1;
}

int strArgD(int argc, char** argv, const char* name, char* value) {
    int loc = valueLoc(argc, argv, name);
    if (loc < 0) return 0;
    if (value) copyText(value, argv[loc], kTextSize);
    return 1;
}

int ptrArgD(int argc, char** argv, const char* name, char** value) {
    int loc = valueLoc(argc, argv, name);
    if (loc < 0) return 0;
    if (value) *value = argv[loc];
    return 1;
}

int nmrIntArgD(int argc, char** argv, const char* name, int64_t* value) {
    int loc = valueLoc(argc, argv, name);
    if (loc < 0) return 0;
    if (value) *value = static_cast<int64_t>(std::strtoll(argv[loc], nullptr, 10));
    return 1;
}

int logArgD(int argc, char** argv, const char* name, int* value) {
    flagLoc(argc, argv, name);
    if (args.badFlag) return 0;
    if (value) *value = 1;
    return 1;
}

int notLogArgD(int argc, char** argv, const char* name, int* value) {
    flagLoc(argc, argv, name);
    if (args.badFlag) return 0;
    if (value) *value = 0;
    return 1;
}

int* iListArg(int argc, char** argv, const char* name, int* count) {
    *count = 0;
    int first, end;
    if (!listRange(argc, argv, name, &first, &end)) return nullptr;
    return tokenArray<int>(argv, first, end, count, toInt);
}

float* rListArg(int argc, char** argv, const char* name, int* count) {
    *count = 0;
    int first, end;
    if (!listRange(argc, argv, name, &first, &end)) return nullptr;
    return tokenArray<float>(argv, first, end, count, toFloat);
}

float* rListArg2(int argc, char** argv, const char* name, int* count) {
    *count = 0;
    int loc = valueLoc(argc, argv, name);
    if (loc < 0) return nullptr;
    return tokenArray<float>(argv, loc, loc + 1, count, toFloat);
}

char** sListArg(int argc, char** argv, const char* name, int* count) {
    *count = 0;
    int first, end;
    if (!listRange(argc, argv, name, &first, &end)) return nullptr;
    int total = countTokens(argv, first, end);
    if (total == 0) return nullptr;
    char** list =
        static_cast<char**>(voidMallocNull64("strDup", (static_cast<int64_t>(total) + 1) * 8));
    if (!list) {
        *count = -1;
        args.badFlag = 0;
        return nullptr;
    }
    int n = 0;
    forEachListToken(argv, first, end, [&](const char* start, int length) {
        list[n++] = copySpan("strDup", start, length);
    });
    *count = total;
    return list;
}

char** strListArg(int argc, char** argv, const char* name, int* count) {
    *count = 0;
    int first, end;
    if (!listRange(argc, argv, name, &first, &end)) return nullptr;
    int total = end - first;
    if (total <= 0) return nullptr;
    char** list =
        static_cast<char**>(voidMallocNull64("strListArg", (static_cast<int64_t>(total) + 1) * 8));
    if (!list) {
        *count = -1;
        args.badFlag = 0;
        return nullptr;
    }
    for (int i = 0; i < total; i++) {
        list[i] = strDup2("strListArg", argv[first + i]);
        if (!list[i]) std::fprintf(stderr, "StrList Error allocating string.\n");
    }
    *count = total;
    return list;
}

char** ptrListArg(int argc, char** argv, const char* name, int* count) {
    *count = 0;
    int first, end;
    if (!listRange(argc, argv, name, &first, &end)) return nullptr;
    if (end <= first) return nullptr;
    *count = end - first;
    return argv + first;
}

int intArgDN(int argc, char** argv, const char* name, int* values, int capacity) {
    int first, end;
    if (!values || capacity < 0 || !listRange(argc, argv, name, &first, &end)) return -1;
    int n = 0;
    forEachListToken(argv, first, end, [&](const char* start, int) {
        if (n < capacity) values[n++] = toInt(start);
    });
    return n;
}

int fltArgDN(int argc, char** argv, const char* name, float* values, int capacity) {
    int first, end;
    if (!values || capacity < 0 || !listRange(argc, argv, name, &first, &end)) return -1;
    int n = 0;
    forEachListToken(argv, first, end, [&](const char* start, int) {
        if (n < capacity) values[n++] = toFloat(start);
    });
    return n;
}

namespace {

// Joins arguments first..end-1 with blanks into text, stopping before the
// capacity is reached; returns how many were joined.
int joinArgs(char** argv, int first, int end, char* text, int capacity) {
    if (capacity < 1) return 0;
    text[0] = '\0';
    std::size_t length = 0;
    int joined = 0;
    for (int i = first; i < end; i++) {
        std::size_t add = std::strlen(argv[i]) + (joined ? 1 : 0);
        if (length + add >= static_cast<std::size_t>(capacity)) break;
        if (joined) text[length++] = ' ';
        std::memcpy(text + length, argv[i], add - (joined ? 1 : 0) + 1);
        length += add - (joined ? 1 : 0);
        joined++;
    }
    return joined;
}

}  // namespace

int charListArg(int argc, char** argv, const char* name, char* text, int capacity) {
    int loc = flagLoc(argc, argv, name);
    if (args.badFlag || !text) return 0;
    int end = nextFlag(argc, argv, loc);
    int joined = joinArgs(argv, loc + 1, end, text, capacity);
    for (int i = loc + 1; i < loc + 1 + joined; i++) markUsed(i);
    return joined;
}

int strListArgDEnd(int argc, char** argv, const char* name, char* text, int capacity) {
    int loc = flagLoc(argc, argv, name);
    if (args.badFlag || !text) return 0;
    int joined = joinArgs(argv, loc + 1, argc, text, capacity);
    for (int i = loc + 1; i < loc + 1 + joined; i++) markUsed(i);
    return joined;
}

int parseLocList(int argc, char** argv, const char* name, int* flags, int size, int onValue,
                 int offValue) {
    if (!flags || size < 1) return 0;
    for (int i = 0; i < size; i++) flags[i] = offValue;
    int first, end;
    if (!listRange(argc, argv, name, &first, &end)) return 0;
    forEachListToken(argv, first, end, [&](const char* start, int length) {
        const char* dash = static_cast<const char*>(std::memchr(start + 1, '-', length - 1));
        long a = std::strtol(start, nullptr, 10);
        long b = dash ? std::strtol(dash + 1, nullptr, 10) : a;
        if (a > b) std::swap(a, b);
        for (long n = a < 1 ? 1 : a; n <= b && n <= size; n++) flags[n - 1] = onValue;
    });
    int marked = 0;
    for (int i = 0; i < size; i++) marked += flags[i] == onValue;
    return marked;
}

char** copyArgv(int argc, char** argv, const char* name) {
    if (argc < 1 || !argv) return nullptr;
    char** copy =
        static_cast<char**>(voidMallocNull64("copyarg", (static_cast<int64_t>(argc) + 1) * 8));
    if (!copy) return nullptr;
    copy[0] = strDup2("copyarg", name ? name : "");
    for (int i = 1; i < argc; i++) copy[i] = strDup2("copyarg", argv[i]);
    return copy;
}

void freeArgv(char** argv, int argc) { freeStrList2("copyarg", argv, argc); }

int envIsTrue(const char* name) {
    const char* value = name ? std::getenv(name) : nullptr;
    if (!value) return 0;
    return strcasecmp(value, "1") == 0 || strcasecmp(value, "true") == 0 ||
           strcasecmp(value, "yes") == 0;
}

int getFmtCount(const char* format) {
    if (!format) return 0;
    int count = 0;
    for (std::size_t i = 0; format[i] && format[i + 1]; i++) {
        if (format[i] != '%') continue;
        if (format[i + 1] == '%') {
            i++;
        } else {
            count++;
        }
    }
    return count;
}

int isZFmt(const char* format) { return getFmtCount(format) == 1; }

int isAZFmt(const char* format) { return getFmtCount(format) == 2; }

void safe_strcpy(char* dst, const char* src) {
    if (!dst) return;
    if (src) {
        std::strcpy(dst, src);
    } else {
        dst[0] = '\0';
    }
}

void nullArgs() {
    args.clearMap();
    args.badFlag = 0;
    args.progName = nullptr;
    args.argc = 0;
    args.checkMode = 0;
    args.checksum = 0;
    args.strValue[0] = '\0';
}

void initArgs(int argc, char** argv, int mode) {
    args.clearMap();
    args.argMap[0] = '1';
    args.progName = argc > 0 && argv ? argv[0] : nullptr;
    args.argc = argc;
    args.checksum = 0;
    if (mode == 4) mode = modeFromEnvironment();
    args.checkMode = mode;
    if (mode == 0) return;
    for (int i = 1; i < argc && argv; i++) {
        if (argv[i] && std::strcmp(argv[i], "-help") == 0) {
            std::fprintf(stderr, "Program %s, argument checking enabled.\n", getProgName());
            break;
        }
    }
    if (argc >= kMapSize) {
        std::fprintf(stderr, "Warning from %s: not all arguments will be checked.\n",
                     getProgName());
    }
    args.checksum = argChecksum(argc, argv);
}

int checkArgs(int argc, char** argv) {
    if (argc < 2 || args.checkMode == 0 || !argv) {
        nullArgs();
        return 0;
    }
    unsigned finalChecksum = argChecksum(argc, argv);
    int mode = args.checkMode;
    if (mode == 3) {
        printDebugMap(argc, argv, finalChecksum);
        mode = 2;
    }
    if (finalChecksum != args.checksum || argc != args.argc) {
        std::fprintf(stderr, "Warning from %s: argument checking may not be valid.\n",
                     getProgName());
    }
    int limit = argc < kMapSize - 1 ? argc : kMapSize - 1;
    for (int i = 1; i < limit; i++) {
        if (isBlankArg(argv[i])) markUsed(i);
    }
    int reports = 0;
    for (int i = 1; i < limit; i++) {
        if (isUsed(i)) continue;
        if (mode == 1) {
            if (isFlag(argv[i])) {
                reportRun(argv, i, i);
                reports++;
            }
            continue;
        }
        int last = i;
        while (last + 1 < limit && !isUsed(last + 1)) last++;
        reportRun(argv, i, last);
        reports++;
        i = last;
    }
    nullArgs();
    return reports;
}
