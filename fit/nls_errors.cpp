#include "fit/nls_errors.h"

#include <cstdio>
#include <cstring>

#include "fit/nls_state.h"

namespace {

constexpr int kMaxDepth = 64;
constexpr int kNameSize = 32;
constexpr int kTextSize = 2048;
constexpr int kWrapColumn = 70;

struct ErrorState {
    char names[kMaxDepth][kNameSize] = {};
    int depth = 0;
    int pendingType = 0;
    bool userCode = false;
    int64_t ints[3] = {};
    float reals[2] = {};
    char texts[2][kNameSize * 4] = {};
    int printLevel[8] = {0, 0, 0, 1, 1, 1, 1, 1};
};

ErrorState errs;

const char* typeName(int type) {
    switch (type) {
        case kNlsNote: return "NOTE";
        case kNlsAlert: return "ALERT";
        case kNlsWarning:
        case kNlsWarningFixed: return "WARNING";
        case kNlsFatal:
        case kNlsFatalFixed: return "FATAL";
        default: return "TERMINAL";
    }
}

// Replaces each %(Xk) by its registered value.
void fillPlaceholders(const char* text, char* out, int size) {
    int used = 0;
    for (const char* p = text; *p && used < size - 1;) {
        int k = (p[0] == '%' && p[1] == '(' && p[2] && p[3] >= '1' && p[3] <= '3' && p[4] == ')')
                    ? p[3] - '1'
                    : -1;
        char value[160] = "";
        if (k >= 0 && p[2] == 'I') {
            std::snprintf(value, sizeof value, "%lld", static_cast<long long>(errs.ints[k]));
        } else if (k >= 0 && k < 2 && p[2] == 'R') {
            std::snprintf(value, sizeof value, "%g", static_cast<double>(errs.reals[k]));
        } else if (k >= 0 && k < 2 && p[2] == 'L') {
            std::snprintf(value, sizeof value, "%s", errs.texts[k]);
        } else {
            out[used++] = *p++;
            continue;
        }
        used += std::snprintf(out + used, size - used, "%s", value);
        if (used > size - 1) used = size - 1;
        p += 5;
    }
    out[used] = '\0';
}

// Writes the message in lines of at most 70 columns, broken at blanks.
void printWrapped(const char* text) {
    const char* indent = " ***          ";
    int width = kWrapColumn - static_cast<int>(std::strlen(indent));
    int len = static_cast<int>(std::strlen(text));
    for (int pos = 0; pos < len;) {
        int take = len - pos;
        if (take > width) {
            take = width;
            while (take > 0 && text[pos + take] != ' ') take--;
            if (take == 0) take = width;
        }
        std::fprintf(stderr, "%s%.*s\n", indent, take, text + pos);
        pos += take;
        while (pos < len && text[pos] == ' ') pos++;
    }
}

void issue(int type, int64_t code, const char* routine, const char* text) {
    setFitStatus(code);
    if (type <= kNlsTerminal && type > errs.pendingType) errs.pendingType = type;
    if (type < 1 || type > 7 || errs.printLevel[type] < 1 || nlsSilentErr()) return;
    char filled[kTextSize];
    fillPlaceholders(text, filled, kTextSize);
    std::fprintf(stderr, "\n *** %s ERROR %lld from %s.\n", typeName(type),
                 static_cast<long long>(code), routine);
    printWrapped(filled);
}

}  // namespace

void e1psh(const char* name) {
    if (errs.depth >= kMaxDepth) {
        e1sti(1, kMaxDepth);
        issue(kNlsTerminal, 1, "E1PSH ",
              "Error condition in E1PSH.  Push would cause stack level to exceed %(I1). ");
        return;
    }
    if (errs.depth == 0) errs.pendingType = 0;
    std::snprintf(errs.names[errs.depth++], kNameSize, "%s", name);
}

void e1pop(const char* name) {
    e1stl(1, name);
    if (errs.depth == 0) {
        issue(kNlsTerminal, 1, "E1POP ",
              "Error condition in E1POP.  Cannot pop from %(L1) because stack is empty.");
        return;
    }
    if (std::strcmp(errs.names[errs.depth - 1], name) != 0) {
        e1stl(2, errs.names[errs.depth - 1]);
        issue(kNlsTerminal, 2, "E1POP ",
              "Error condition in E1POP.  %(L1) does not match the name %(L2) in the stack.");
        return;
    }
    errs.depth--;
}

void e1sti(int index, int64_t value) {
    if (index >= 1 && index <= 3) errs.ints[index - 1] = value;
}

void e1str(int index, float value) {
    if (index >= 1 && index <= 2) errs.reals[index - 1] = value;
}

void e1stl(int index, const char* text) {
    if (index >= 1 && index <= 2) {
        std::snprintf(errs.texts[index - 1], sizeof errs.texts[0], "%s", text ? text : "");
    }
}

void e1mes(int type, int64_t code, const char* text) {
    const char* routine = errs.userCode ? "USER" : errs.depth > 0 ? errs.names[errs.depth - 1] : "";
    issue(type, code, routine, text);
}

void e1usr_(const char* onOff) {
    if (std::strcmp(onOff, "ON") == 0) {
        errs.userCode = true;
    } else if (std::strcmp(onOff, "OFF") == 0) {
        errs.userCode = false;
    } else {
        e1stl(1, onOff);
        issue(kNlsTerminal, 1, "E1USR ",
              "Invalid value for SWITCH in call to E1USR.  SWITCH must be set to 'ON' or 'OFF'.  "
              "SWITCH = '%(L1)' ");
    }
}

int n1rty() { return errs.pendingType; }

int setNlsPrintLevel(int type, int level) {
    if (type < 1 || type > 7) return 0;
    int old = errs.printLevel[type];
    errs.printLevel[type] = level;
    return old;
}

void resetNlsErrors() { errs = ErrorState{}; }
