#include "app/residue_range.h"

void applyResidueRangeDefaults(RunSettings* s, int dFirst, int dLast, int csFirst, int csLast) {
    bool haveShifts = s->csName[0] != '\0';
    if (s->inName[0] != '\0') {
        if (isUnset(s->res1)) s->res1 = haveShifts && csFirst < dFirst ? csFirst : dFirst;
        if (isUnset(s->resN)) s->resN = haveShifts && csLast > dLast ? csLast : dLast;
    } else {
        if (isUnset(s->res1)) s->res1 = csFirst;
        if (isUnset(s->resN)) s->resN = csLast;
    }
    if (s->res1 > s->resN) {
        int swap = s->res1;
        s->res1 = s->resN;
        s->resN = swap;
    }
    if (isUnset(s->aRes1)) s->aRes1 = s->res1;
}
