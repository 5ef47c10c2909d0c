// The random-coil table (rc.tab of the surface directory): random-coil
// shifts (type RC, offset 0) and neighbour corrections (type ADJ, offsets
// -2, -1, 1, 2, and 0 for the residue's own), kept process-wide in a symbol
// table under "residue,atom,type,offset".
#pragma once

// Reads the table: 0, or 1 after its message.
int surfReadRC(const char* path);
// Whether a random-coil table is loaded.
int rcLoaded();
// The random-coil shift of atom of the centre residue with its neighbours
// (names as the table uses them; null or empty when absent): the RC entry of
// the centre plus every ADJ entry that exists. 1 with *value set, or 0 with
// *value 9999.0 when the centre has no RC entry for the atom. With flag 0,
// a glycine's HA1 is looked up as HA3.
int getRandCoilShift(const char* prev2, const char* prev, const char* centre, const char* next,
                     const char* next2, const char* atom, float* value, int flag);
void rcFree();
