#include "cs/predict_cs.h"

#include "cs/cs_tab.h"
#include "cs/map_cs.h"
#include "cs/surface.h"
#include "pdb/lookup.h"
#include "pdb/pdb_types.h"
#include "util/residue_number.h"

namespace {

constexpr float kAbsentAbove = 900.0f;
constexpr float kAngleLimit = 999.0f;

bool present(float value) { return value <= kAbsentAbove; }

void clearPrediction(CSValue* row) {
    row->pred = row->secondary = row->surfaceValue = row->spareValue = kCSMissing;
    row->sigma = kCSMissing;
    row->residue = nullptr;
    row->atomCount = 0;
    row->compared = 0;
}

// The angles a surface of the row's position is indexed by: -1 phi of the
// residue with psi of the one before, 1 phi of the one after with psi of the
// residue, 0 the residue's own. False when a neighbour needed is missing or
// an angle is unmeasured.
bool surfaceAngles(const CSValue* row, float* phi, float* psi) {
    const PDBResidue* r = row->residue;
    int position = row->surface->position;
    const PDBResidue* phiOf = position > 0 ? r->next : r;
    const PDBResidue* psiOf = position < 0 ? r->prev : r;
    if (!phiOf || !psiOf) return false;
    *phi = phiOf->phi;
    *psi = psiOf->psi;
    return *phi < kAngleLimit && *psi < kAngleLimit;
}

}  // namespace

int findSurfCS(CSValue* row, int constRMS) {
    if (!row || !row->surface || !row->residue) return 0;
    const Surface* s = row->surface;
    float phi, psi;
    if (!surfaceAngles(row, &phi, &psi)) {
        // Without the angles the residue is taken as random coil.
        row->secondary = 0.0f;
        row->sigma = s->bound;
        if (!present(row->rc)) return 0;
        row->pred = row->rc;
        return 1;
    }
    float value = kCSMissing, density = 0.0f, dev = kCSMissing;
    getSurfVal(s, &value, &density, &dev, phi, psi);
    if (constRMS) dev = s->bound;
    if (density < s->threshold) return 0;
    row->secondary = row->surfaceValue = value;
    row->sigma = dev;
    if (!present(value) || !present(row->rc)) return 0;
    row->pred = value + row->rc;
    return 1;
}

int findStoredCS(PDBData* pdb, CSTab* cs, CSValue* row, int resID) {
    const char* chain = cs->ignoreChain ? pdb->defaultChain : row->chain;
    const char* seg = cs->ignoreSeg ? pdb->defaultSeg : row->seg;
    PDBAtom* atoms[kCSMaxAtoms];
    int count = findBestAtoms(pdb, resID, row->resName, row->atomName, chain, seg, atoms);
    double secondary = 0.0, sigma = 0.0;
    int used = 0, sigmas = 0;
    for (int i = 0; i < count; i++) {
        // Stored on the atom: observed shift, sigma, random-coil shift.
        const float* stored = atoms[i]->property;
        if (!present(stored[0]) || !present(stored[2])) continue;
        secondary += stored[0] - stored[2];
        used++;
        if (present(stored[1])) {
            sigma += stored[1];
            sigmas++;
        }
    }
    if (used == 0) return 0;
    row->secondary = static_cast<float>(secondary / used);
    if (sigmas > 0) row->sigma = static_cast<float>(sigma / sigmas);
    if (!present(row->rc)) return 0;
    row->pred = row->secondary + row->rc;
    return 1;
}

int buildCS(PDBData* pdb, CSTab* cs, int offset, int storedOption, int constRMS) {
    if (!cs) return 0;
    cs->mapped = 0;
    if (!pdb || !cs->rows || cs->count < 1) return 0;
    int predicted = 0;
    for (int i = 0; i < cs->count; i++) {
        CSValue* row = cs->rows + i;
        clearPrediction(row);
        if (!row->listed) continue;
        int resID;
        if (!shiftResid(row->resID, offset, &resID)) {
            row->mapped = 0;
            continue;
        }
        findCSRes(pdb, cs, row, resID, 0);
        if (!row->residue) continue;
        if (row->surface) findSurfCS(row, constRMS);
        if (storedOption) findStoredCS(pdb, cs, row, resID);
        if (!present(row->pred)) continue;
        predicted++;
        if (present(row->obs)) row->compared = 1;
    }
    cs->mapped = predicted;
    return predicted;
}
