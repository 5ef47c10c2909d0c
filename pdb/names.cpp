#include "pdb/names.h"

#include <strings.h>

#include <cstring>

#include "pdb/columns.h"

namespace {

int emptyIfNullName(char* name) {
    if (!name) return 0;
    if (std::strcmp(name, "{}") == 0 || strcasecmp(name, "none") == 0 ||
        strcasecmp(name, "(Null)") == 0) {
        name[0] = '\0';
        return 1;
    }
    return 0;
}

}  // namespace

int fixAtomName(char* name) { return emptyIfNullName(name); }
int fixResName(char* name) { return emptyIfNullName(name); }
int fixChainName(char* name) { return emptyIfNullName(name); }
int fixSegName(char* name) { return emptyIfNullName(name); }

int isProton(const char* name) {
    if (!name) return 0;
    while (*name >= '0' && *name <= '9') name++;
    return *name == 'H' || *name == 'h';
}

int getSubStr0(char* destination, const char* line, int first, int last) {
    return columnText(destination, line, static_cast<int>(std::strlen(line)), first, last);
}
