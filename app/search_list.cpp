#include "app/search_list.h"

#include "util/token.h"

bool isListEntry(const char* line) { return line[0] != '#' && cntToken(line) > 0; }
