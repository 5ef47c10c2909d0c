// Which shift surface predicts a row: the surface named for the row's atom
// kind and residue type (a residue before a proline has its own type,
// "xPRO"), looked for as the previous-residue, next-residue and own-residue
// surface in turn, then the residue-independent ones of the atom kind.
#pragma once

#include "cs/cs_tab.h"

// Sets row->surface to the first shift surface of the loaded list whose name
// equals, without regard to case, "atom.res.prev", "atom.res.next",
// "atom.res", "atom.prev", "atom.next" or "atom", tried in that order; null
// when none does or the atom is no predicted kind. A glycine alpha proton
// with a partner is named by its observed shift: HA2 when larger than the
// partner's, HA3 when smaller. next is the name of the following residue.
// Returns the surface.
Surface* getCSSurface(CSValue* row, const char* next);
