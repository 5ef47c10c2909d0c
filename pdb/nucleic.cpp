#include "pdb/nucleic.h"

#include "pdb/lookup.h"
#include "pdb/measure_atoms.h"

namespace {

// One atom of a torsion: a name in residue i + offset.
struct AtomRef {
    int offset;
    const char* name;
};

struct Torsion {
    AtomRef atoms[4];
};

// The glycosidic torsion uses N9/C4 in purines and N1/C2 in pyrimidines;
// it is filled in per residue.
constexpr int kChiIndex = 6;
constexpr int kTorsionCount = 12;

constexpr Torsion kTorsions[kTorsionCount] = {
    {{{-1, "O3'"}, {0, "P"}, {0, "O5'"}, {0, "C5'"}}},
    {{{0, "P"}, {0, "O5'"}, {0, "C5'"}, {0, "C4'"}}},
    {{{0, "O5'"}, {0, "C5'"}, {0, "C4'"}, {0, "C3'"}}},
    {{{0, "C5'"}, {0, "C4'"}, {0, "C3'"}, {0, "O3'"}}},
    {{{0, "C4'"}, {0, "C3'"}, {0, "O3'"}, {1, "P"}}},
    {{{0, "C3'"}, {0, "O3'"}, {1, "P"}, {1, "O5'"}}},
    {{{0, "O4'"}, {0, "C1'"}, {0, "N9"}, {0, "C4"}}},
    {{{0, "C4'"}, {0, "O4'"}, {0, "C1'"}, {0, "C2'"}}},
    {{{0, "O4'"}, {0, "C1'"}, {0, "C2'"}, {0, "C3'"}}},
    {{{0, "C1'"}, {0, "C2'"}, {0, "C3'"}, {0, "C4'"}}},
    {{{0, "C2'"}, {0, "C3'"}, {0, "C4'"}, {0, "O4'"}}},
    {{{0, "C3'"}, {0, "C4'"}, {0, "O4'"}, {0, "C1'"}}},
};

}  // namespace

int getPDBNAAngles(const PDBData* pdb, int resID, const char* chain, const char* seg, float* alpha,
                   float* beta, float* gamma, float* delta, float* epsilon, float* zeta, float* chi,
                   float* nu0, float* nu1, float* nu2, float* nu3, float* nu4) {
    float* outputs[kTorsionCount] = {alpha, beta, gamma, delta, epsilon, zeta,
                                     chi,   nu0,  nu1,   nu2,   nu3,     nu4};
    for (float* output : outputs) {
        if (output) *output = kAngleUndefined;
    }
    Torsion glycosidic = kTorsions[kChiIndex];
    if (!findAtom(pdb, resID, "N9", chain, seg)) {
        glycosidic.atoms[2].name = "N1";
        glycosidic.atoms[3].name = "C2";
    }
    int mask = 0;
    for (int t = 0; t < kTorsionCount; t++) {
        if (!outputs[t]) continue;
        const Torsion& torsion = t == kChiIndex ? glycosidic : kTorsions[t];
        PDBAtom* atoms[4];
        for (int k = 0; k < 4; k++) {
            atoms[k] =
                findAtom(pdb, resID + torsion.atoms[k].offset, torsion.atoms[k].name, chain, seg);
        }
        if (!atoms[0] || !atoms[1] || !atoms[2] || !atoms[3]) continue;
        *outputs[t] = pdbDihedral(atoms[0], atoms[1], atoms[2], atoms[3]);
        mask |= 1 << t;
    }
    return mask;
}
