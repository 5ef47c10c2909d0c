// The homology table (homo.tab of the surface directory): a float per pair
// of residue names, kept process-wide under "nameA,nameB".
#pragma once

// Reads the table: 0, or 1 after its message.
int surfReadHomo(const char* path);
// 1 with the pair's value, or 0 with *value 777777.0 when the pair or the
// table is missing.
int getHomoVal(const char* nameA, const char* nameB, float* value);
int homoLoaded();
void homoFree();
