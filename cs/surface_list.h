// The loader's side of the process-wide surface list: the list is made once
// with room for every surface the directory holds, then filled in reading
// order. Readers outside the loader use the accessors of cs/surface.h.
#pragma once

#include "cs/surface.h"

// Releases any earlier list and makes room for capacity records (none for
// 0): 0, or 1 when the memory cannot be had.
int surfListAlloc(int capacity);
// Moves the record's arrays into the next free slot and counts it by kind:
// 0, or 1 when the list is full (the record is then left as it was).
int surfListAdd(Surface* surface);

// Whether each grid file is announced while it is read.
void surfSetVerbose(int verbose);
int surfVerbose();
