#include "pdb/backbone.h"

#include <cstdio>

#include "pdb/lookup.h"
#include "pdb/measure_atoms.h"
#include "pdb/records.h"

namespace {

bool inRange(const PDBData* pdb, int resID) {
    return pdb && resID >= pdb->resMin && resID <= pdb->resMax;
}

struct ResidueRef {
    const PDBData* pdb;
    const char* chain;
    const char* seg;

    PDBAtom* atom(int resID, const char* name) const {
        return findAtom(pdb, resID, name, chain, seg);
    }
};

// Measures one angle whose atoms all exist; an undefined angle is reported.
int reportDihedral(PDBAtom* a, PDBAtom* b, PDBAtom* c, PDBAtom* d, const char* name, int resID,
                   float* value) {
    if (!a || !b || !c || !d) return 0;
    if (atomDihedral(a, b, c, d, value) != 0) std::fprintf(stderr, "%s error at %d\n", name, resID);
    return 1;
}

void updateResidue(const PDBData* pdb, PDBResidue* residue, int first, int last) {
    if (residue->resID < first - 1 || residue->resID > last + 1) return;
    getPDBPhiPsi(pdb, residue->resID, residue->chain, residue->seg, &residue->phi, &residue->psi);
}

}  // namespace

int getPDBPhiPsi(const PDBData* pdb, int resID, const char* chain, const char* seg, float* phi,
                 float* psi) {
    *phi = kAngleUndefined;
    *psi = kAngleUndefined;
    if (!inRange(pdb, resID)) return 0;
    ResidueRef r{pdb, chain, seg};
    PDBAtom* previousC = r.atom(resID - 1, "C");
    PDBAtom* n = r.atom(resID, "N");
    PDBAtom* ca = r.atom(resID, "CA");
    PDBAtom* c = r.atom(resID, "C");
    PDBAtom* nextN = r.atom(resID + 1, "N");
    int mask = 0;
    if (previousC && n && ca && c) {
        *phi = pdbDihedral(previousC, n, ca, c);
        mask |= kPhiMeasured;
    }
    if (n && ca && c && nextN) {
        *psi = pdbDihedral(n, ca, c, nextN);
        mask |= kPsiMeasured;
    }
    return mask;
}

int updatePhiPsi(PDBData* pdb, int first, int last) {
    if (!pdb) return 0;
    for (int i = 0; i < pdb->resCount; i++) updateResidue(pdb, pdb->residues + i, first, last);
    // The scan also takes in one slot past the last residue, a cleared
    // record with residue number 0. Its angles are never read, but when 0
    // lies in the range its atoms are looked up (blank chain and segment),
    // which the lookup state and the debug trace show. A fresh record stands
    // in for that slot, so nothing beyond the residue count is touched.
    PDBResidue spare;
    resNull(&spare);
    updateResidue(pdb, &spare, first, last);
    return 0;
}

int getPDBOmega(const PDBData* pdb, int resID, const char* chain, const char* seg, float* value) {
    *value = kAngleUndefined;
    if (!inRange(pdb, resID)) return 0;
    ResidueRef r{pdb, chain, seg};
    PDBAtom* previousCA = r.atom(resID - 1, "CA");
    PDBAtom* previousC = r.atom(resID - 1, "C");
    PDBAtom* n = r.atom(resID, "N");
    PDBAtom* ca = r.atom(resID, "CA");
    return reportDihedral(previousCA, previousC, n, ca, "omega", resID, value);
}

int getPDBAlpha(const PDBData* pdb, int resID, const char* chain, const char* seg, float* value) {
    *value = kAngleUndefined;
    if (!inRange(pdb, resID)) return 0;
    ResidueRef r{pdb, chain, seg};
    PDBAtom* ca0 = r.atom(resID - 1, "CA");
    PDBAtom* ca1 = r.atom(resID, "CA");
    PDBAtom* ca2 = r.atom(resID + 1, "CA");
    PDBAtom* ca3 = r.atom(resID + 2, "CA");
    return reportDihedral(ca0, ca1, ca2, ca3, "alpha", resID, value);
}

int getPDBKappa(const PDBData* pdb, int resID, const char* chain, const char* seg, float* value) {
    *value = kAngleUndefined;
    if (!inRange(pdb, resID)) return 0;
    ResidueRef r{pdb, chain, seg};
    PDBAtom* before = r.atom(resID - 2, "CA");
    PDBAtom* centre = r.atom(resID, "CA");
    PDBAtom* after = r.atom(resID + 2, "CA");
    if (!before || !centre || !after) return 0;
    if (atomAngle(before, centre, after, value) != 0) {
        std::fprintf(stderr, "kappa error at %d\n", resID);
    }
    return 1;
}
