#include "app/settings.h"

#include <cstdio>
#include <cstring>

#include "app/surface_location.h"
#include "util/alloc.h"

void runSettingsNull(RunSettings* s) {
    std::memset(s, 0, sizeof *s);
    std::strcpy(s->listName, "pdb.list");
    std::strcpy(s->rcSurfName, "rc.tab");
    std::strcpy(s->homoSurfName, "homo.tab");
    // The surfaces installed or built with DC, unless SURF_DIR or -sPath
    // name others.
    defaultSurfaceDir(s->surfDir, sizeof s->surfDir);
    s->res1 = kUnset;
    s->resN = kUnset;
    s->segID = 1;
    s->segStep = 0;
    s->aRes1 = kUnset;
    s->inclMode = kInclMax;
    s->fixedDI = 1;
    s->retries = kDefaultRetries;
    s->csThresh = 2.0f;
    s->vcThresh = 0.95f;
}

void runSettingsFree(RunSettings* s) {
    unAlloc64("listArg", s->weights, static_cast<int64_t>(s->weightCount) * 4);
    unAlloc64("listArg", s->skipList, static_cast<int64_t>(s->skipCount) * 4);
    s->weights = nullptr;
    s->skipList = nullptr;
    s->weightCount = 0;
    s->skipCount = 0;
}
