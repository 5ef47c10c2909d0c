#include "dc/order_matrix.h"

#include <cmath>

#include "dc/dipolar.h"
#include "math/least_squares.h"
#include "pdb/pdb_types.h"

namespace {

constexpr float kShortVector = 0.01f;

// Offsets of the workspace blocks, in units of nv = structures x NVEC.
enum Block { kX = 0, kY = 1, kZ = 2, kDICopy = 3, kDI = 4, kDObs = 5, kDD = 6 };

int structureCount(const DTab* dTab) { return dTab->pdbCount > 1 ? dTab->pdbCount : 1; }

float* block(DTab* dTab, Block which) {
    return dTab->realWork + static_cast<long>(which) * structureCount(dTab) * dTab->nvec;
}

struct Vector3 {
    float x, y, z;
};

// The unit vector from b to a; a vector shorter than 0.01 Angstrom is
// scaled by 100 instead of normalised.
Vector3 unitVector(const PDBAtom& a, const PDBAtom& b) {
    float x = a.x - b.x, y = a.y - b.y, z = a.z - b.z;
    float r = static_cast<float>(std::sqrt(static_cast<double>(x * x + y * y + z * z)));
    if (r < kShortVector) return {x * 100.0f, y * 100.0f, z * 100.0f};
    return {x / r, y / r, z / r};
}

// The five basis terms of a unit vector.
void basis(float x, float y, float z, float b[5]) {
    b[0] = 0.5f * (3.0f * z * z - 1.0f);
    b[1] = 0.5f * (x * x - y * y);
    b[2] = 2.0f * x * y;
    b[3] = 2.0f * x * z;
    b[4] = 2.0f * y * z;
}

float dot5(const float c[5], const float b[5]) {
    return c[0] * b[0] + c[1] * b[1] + c[2] * b[2] + c[3] * b[3] + c[4] * b[4];
}

// Whether the workspace can hold the couplings of the current mapping: the
// couplings are mapped onto at least one structure and the workspaces were
// sized. Every step that visits used couplings asks this first, so that all
// of them agree on which couplings are used.
bool hasMapping(const DTab* dTab) {
    return dTab->pdbCount > 0 && dTab->pdbs && dTab->realWork && dTab->intWork;
}

// Calls visit(k, v, firstSlot, slotCount) for the used couplings in order,
// at most `limit` of them and never more than the workspace holds.
template <class Visit>
void forEachUsed(DTab* dTab, int limit, Visit visit) {
    if (!hasMapping(dTab)) return;
    if (limit > dTab->workCount) limit = dTab->workCount;
    int k = 0, slot = 0;
    for (int i = 0; i < dTab->count && k < limit; i++) {
        DCValue& v = dTab->couplings[i];
        if (!isUsedDC(v)) continue;
        int slots = dTab->intWork[k] * structureCount(dTab);
        visit(k, v, slot, slots);
        slot += slots;
        k++;
    }
}

int storeVectors(DTab* dTab, const DCValue& v, int slot) {
    float* xs = block(dTab, kX);
    float* ys = block(dTab, kY);
    float* zs = block(dTab, kZ);
    const PDBData* first = dTab->pdbs[0];
    int structures = dTab->pdbCount > 0 ? dTab->pdbCount : 1;
    for (int a = 0; a < v.countI; a++) {
        for (int b = 0; b < v.countJ; b++) {
            long indexA = v.atomsI[a] - first->atoms;
            long indexB = v.atomsJ[b] - first->atoms;
            for (int s = 0; s < structures; s++) {
                const PDBData* pdb = dTab->pdbs[s];
                Vector3 u = unitVector(pdb->atoms[indexA], pdb->atoms[indexB]);
                xs[slot] = u.x;
                ys[slot] = u.y;
                zs[slot] = u.z;
                slot++;
            }
        }
    }
    return slot;
}

float methylScale(int vectorsPerStructure) {
    return vectorsPerStructure == 3 ? kMethylFactor : 1.0f;
}

}  // namespace

bool isUsedDC(const DCValue& v) {
    return v.use && isPresent(v.dObs) && v.wTable != 0.0f && v.countI > 0 && v.countJ > 0;
}

void initDCSaupe(DTab* dTab, int* usedCount, int* vectorCount) {
    int used = 0, slot = 0;
    if (hasMapping(dTab)) {
        for (int i = 0; i < dTab->count; i++) {
            const DCValue& v = dTab->couplings[i];
            if (!isUsedDC(v)) continue;
            dTab->intWork[used] = v.countI * v.countJ;
            block(dTab, kDICopy)[used] = v.di;
            block(dTab, kDI)[used] = v.di;
            block(dTab, kDObs)[used] = v.dObs;
            block(dTab, kDD)[used] = v.dd;
            slot = storeVectors(dTab, v, slot);
            used++;
        }
    }
    dTab->workCount = used;
    *usedCount = used;
    *vectorCount = slot;
}

int findS(DTab* dTab, float c[5], float cErr[5], int usedCount) {
    for (int i = 0; i < 5; i++) c[i] = cErr[i] = 0.0f;
    int rows = usedCount > 5 ? usedCount : 5;
    if (dipolarSize() < rows && dipolarInit(rows) != 0) return 1;
    float* design = dipolarDesign();
    float* rhs = dipolarValues();
    for (int i = 0; i < 5 * rows; i++) design[i] = 0.0f;
    for (int i = 0; i < rows; i++) rhs[i] = 0.0f;
    const float* xs = block(dTab, kX);
    const float* ys = block(dTab, kY);
    const float* zs = block(dTab, kZ);
    const float* dis = block(dTab, kDI);
    const float* dObs = block(dTab, kDObs);
    const float* dds = block(dTab, kDD);
    int structures = structureCount(dTab);
    forEachUsed(dTab, usedCount, [&](int k, const DCValue&, int slot, int slots) {
        float absDI = std::fabs(dis[k]);
        float s = absDI != 0.0f ? 1.0f / absDI : 0.0f;
        rhs[k] = dObs[k] * s;
        float t = s * dds[k];
        float f = 1.0f;
        if (t != 0.0f) {
            f = 1.0f / t;
            rhs[k] *= f;
        }
        f /= static_cast<float>(structures);
        f *= methylScale(dTab->intWork[k]);
        float* row = design + 5 * k;
        for (int n = slot; n < slot + slots; n++) {
            float b[5];
            basis(xs[n], ys[n], zs[n], b);
            for (int i = 0; i < 5; i++) row[i] += b[i] * f;
        }
    });
    float x[5], cov[25];
    if (svdLSMat(design, rhs, rows, 5, x, cov, 1) != 0) return 1;
    for (int i = 0; i < 5; i++) {
        c[i] = x[i];
        cErr[i] = static_cast<float>(std::sqrt(static_cast<double>(cov[6 * i])));
    }
    return 0;
}

void findD(DTab* dTab, const float c[5], const float cErr[5], int usedCount) {
    const float* xs = block(dTab, kX);
    const float* ys = block(dTab, kY);
    const float* zs = block(dTab, kZ);
    float* dis = block(dTab, kDI);
    float* dOut = block(dTab, kDObs);
    float* eOut = block(dTab, kDD);
    forEachUsed(dTab, usedCount, [&](int k, const DCValue&, int slot, int slots) {
        float d = 0.0f, e2 = 0.0f;
        for (int n = slot; n < slot + slots; n++) {
            float b[5];
            basis(xs[n], ys[n], zs[n], b);
            d += dot5(c, b);
            for (int i = 0; i < 5; i++) e2 += (b[i] * cErr[i]) * (b[i] * cErr[i]);
        }
        float absDI = std::fabs(dis[k]);
        float scale = methylScale(dTab->intWork[k]);
        dOut[k] = d * absDI * scale;
        eOut[k] = static_cast<float>(std::sqrt(static_cast<double>(e2))) * absDI * scale;
    });
}

int getSaupeD(DTab* dTab) {
    const float* dOut = block(dTab, kDObs);
    float structures = static_cast<float>(structureCount(dTab));
    int copied = 0;
    forEachUsed(dTab, dTab->workCount, [&](int k, DCValue& v, int, int) {
        v.dCalc = dOut[k] / structures;
        copied++;
    });
    return copied;
}

int getSaupeS(DTab* dTab) {
    const float* design = dipolarDesign();
    if (!design) return 0;
    int copied = 0;
    forEachUsed(dTab, dipolarSize(), [&](int k, DCValue& v, int, int) {
        for (int i = 0; i < 5; i++) v.result[i] = design[5 * k + i];
        v.result[5] = static_cast<float>(dTab->intWork[k]);
        copied++;
    });
    return copied;
}

void updateD(DTab* dTab, const float c[5]) {
    for (int i = 0; i < dTab->count; i++) dTab->couplings[i].dCalc = kMissingValue;
    for (int i = 0; i < dTab->count; i++) {
        DCValue& v = dTab->couplings[i];
        if (!isUsedDC(v)) continue;
        float d = 0.0f;
        for (int a = 0; a < v.countI; a++) {
            for (int b = 0; b < v.countJ; b++) {
                Vector3 u = unitVector(*v.atomsJ[b], *v.atomsI[a]);
                float terms[5];
                basis(u.x, u.y, u.z, terms);
                d += dot5(c, terms);
            }
        }
        v.dCalc = std::fabs(v.di) * d * methylScale(v.countI * v.countJ);
        v.result[5] += 1.0f;
        v.mapped = 1;
    }
}
