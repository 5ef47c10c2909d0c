#include "cs/structure_scores.h"

#include <strings.h>

#include <cmath>
#include <cstdint>

#include "cs/homology.h"
#include "cs/surface.h"
#include "pdb/lookup.h"
#include "pdb/pdb_types.h"
#include "util/residue_number.h"

namespace {

constexpr float kHomologyMissing = 666666.0f;  // table values above this do not count
constexpr float kAngleLimit = 999.0f;          // angles above this are unmeasured
constexpr float kNoRatio = 1e17f;

bool isNamed(const char* name, const char* wanted) { return strcasecmp(name, wanted) == 0; }

// A residue other than proline and glycine takes the name xPRO before a proline.
bool beforeProline(const char* name, const char* nextName) {
    return !isNamed(name, "PRO") && !isNamed(name, "GLY") && nextName && isNamed(nextName, "PRO");
}

Surface* conformationSurface(const char* name) {
    Surface* list = getSurfList();
    for (int i = 0; list && i < getSurfCount(); i++) {
        if (list[i].kind == kSurfConformationKind && isNamed(list[i].name, name)) return list + i;
    }
    return nullptr;
}

// One residue of A and its partner in B, with the names they are scored under.
struct ResiduePair {
    PDBResidue* a;
    PDBResidue* b;
    const char* nameA;
    const char* nameB;
};

// The name of a residue of a structure: xPRO with the flag before a proline.
const char* scoredName(const PDBData* pdb, const PDBResidue* r, int xproFlag) {
    if (!xproFlag) return r->resName;
    int next;
    if (!shiftResid(r->resID, 1, &next)) return r->resName;
    const PDBResidue* after = findRes(pdb, next, r->chain, r->seg);
    return after && beforeProline(r->resName, after->resName) ? "xPRO" : r->resName;
}

// Calls visit for every residue r from first to last of A (chain and segment
// A) whose partner firstB + r - first exists in B (chain and segment B).
template <class Visit>
void forEachPair(PDBData* a, PDBData* b, int first, int last, const char* chainA, const char* segA,
                 int firstB, const char* chainB, const char* segB, int xproFlag, Visit visit) {
    // Only A's own residue range can hold a residue.
    int64_t from = first > a->resMin ? first : a->resMin;
    int64_t to = last < a->resMax ? last : a->resMax;
    int64_t shift = static_cast<int64_t>(firstB) - first;
    for (int64_t r = from; r <= to; r++) {
        int partner;
        if (!shiftResid(static_cast<int>(r), shift, &partner)) continue;
        PDBResidue* ra = findRes(a, static_cast<int>(r), chainA, segA);
        PDBResidue* rb = findRes(b, partner, chainB, segB);
        if (!ra || !rb) continue;
        visit(ResiduePair{ra, rb, scoredName(a, ra, xproFlag), scoredName(b, rb, xproFlag)});
    }
}

// The conformation score of a value v on a surface whose largest value is m.
float conformationScore(float v, float m) {
    double score = m != 0.0f && v >= 1.0f / m ? -std::log(static_cast<double>(v) / m)
                                              : std::log(static_cast<double>(m));
    return static_cast<float>(score > 0.0 ? score : 0.0);
}

}  // namespace

int setPhiPsiSurf(PDBResidue* residues, int count, int xproFlag) {
    for (int i = 0; residues && i < count; i++) {
        PDBResidue* r = residues + i;
        r->surface = nullptr;
        if (r->atomCount < 1) continue;
        bool xpro = xproFlag && i < count - 1 && beforeProline(r->resName, residues[i + 1].resName);
        r->surface = conformationSurface(xpro ? "xPRO" : r->resName);
    }
    return 0;
}

int updatePDBSurf(PDBData* pdb, int first, int last) {
    for (int i = 0; pdb && i < pdb->resCount; i++) {
        PDBResidue* r = pdb->residues + i;
        if (r->resID < first || r->resID > last || !r->surface) continue;
        float v = 0.0f, density = 0.0f, dev = 0.0f;
        getSurfVal(r->surface, &v, &density, &dev, r->phi, r->psi);
        r->score = v != 0.0f ? static_cast<float>(r->surface->order) / v : v;
    }
    return 0;
}

int getStatHomo(PDBData* a, PDBData* b, int first, int last, const char* chainA, const char* segA,
                int firstB, int spare, const char* chainB, const char* segB, int xproFlag,
                float* rms, float* last1, int* count) {
    *rms = 0.0f;
    *last1 = 0.0f;
    *count = 0;
    if (!a || !b || !homoLoaded()) return 0;
    double sum = 0.0;
    forEachPair(a, b, first, last, chainA, segA, firstB, chainB, segB, xproFlag,
                [&](const ResiduePair& p) {
                    float value;
                    getHomoVal(p.nameA, p.nameB, &value);
                    p.a->score = p.b->score = value;
                    if (value > kHomologyMissing) return;
                    sum += static_cast<double>(value) * value;
                    *last1 = value;
                    (*count)++;
                });
    if (*count > 0) *rms = static_cast<float>(std::sqrt(sum / *count));
    return 0;
}

int getStatSurf(PDBData* a, PDBData* b, int first, int last, const char* chainA, const char* segA,
                int firstB, int spare, const char* chainB, const char* segB, int xproFlag,
                float* mean, float* last1, float* minRatio, int* count) {
    *mean = 0.0f;
    *last1 = 0.0f;
    *minRatio = kNoRatio;
    *count = 0;
    if (!a || !b) return 0;
    double sum = 0.0;
    forEachPair(a, b, first, last, chainA, segA, firstB, chainB, segB, xproFlag,
                [&](const ResiduePair& p) {
                    if (p.b->phi > kAngleLimit || p.b->psi > kAngleLimit || !p.a->surface) return;
                    // Without the flag a residue before a proline is scored as itself.
                    if (!xproFlag && isNamed(p.a->surface->name, "xPRO")) setPhiPsiSurf(p.a, 1, 0);
                    const Surface* s = p.a->surface;
                    if (!s || s->order == 0) return;
                    float v = 0.0f, d = 0.0f, dev = 0.0f;
                    getSurfVal(s, &v, &d, &dev, p.b->phi, p.b->psi);
                    float ratio = d == 0.0f ? v : v / d;
                    if (ratio < *minRatio) *minRatio = ratio;
                    float score = conformationScore(v, s->max);
                    p.a->score = p.b->score = score;
                    sum += score;
                    *last1 = score;
                    (*count)++;
                });
    if (*count > 0) *mean = static_cast<float>(sum / *count);
    return 0;
}
