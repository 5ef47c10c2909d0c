// The tensor report: Saupe values, principal values, Euler solutions (with
// their mirror images on request), the rotation matrix, Da, Dr and derived
// magnitudes, as DATA lines of a table header.
#pragma once

#include <cstdio>

struct DTab;

int reportTensor(FILE* out, const DTab* dTab, int mirror);
