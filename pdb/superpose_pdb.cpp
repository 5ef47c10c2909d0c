#include "pdb/superpose_pdb.h"

#include <cstdio>
#include <cstring>

#include "pdb/lookup.h"
#include "pdb/superpose.h"
#include "util/alloc.h"
#include "util/levels.h"

namespace {

constexpr int kMaxNames = 16;
constexpr int kNameLength = 16;

struct AtomPair {
    const PDBAtom* reference;
    const PDBAtom* target;
};
using PairList = TrackedVector<AtomPair, "align">;

struct NameSet {
    char names[kMaxNames][kNameLength];
    int count = 0;
};

NameSet splitNames(const char* text) {
    NameSet set;
    while (text && *text && set.count < kMaxNames) {
        text += std::strspn(text, " \t,");
        size_t length = std::strcspn(text, " \t,");
        if (length == 0) break;
        size_t kept = length < kNameLength ? length : kNameLength - 1;
        std::memcpy(set.names[set.count], text, kept);
        set.names[set.count++][kept] = '\0';
        text += length;
    }
    return set;
}

void showAtom(const char* label, const PDBAtom* a) {
    std::fprintf(stderr, "  %s %3d %4s %4s %s %4s\n", label, a->resID, a->resName, a->atomName,
                 a->chain, a->seg);
}

// Pairs residue r of the reference with residue r + shift of the target.
// Returns how many reference atoms were found.
int pairResidue(const PDBData* ref, const PDBData* target, int r, int shift, const char* refChain,
                const char* targetChain, const NameSet& names, int* targetFound, PairList* pairs) {
    int found = 0;
    for (int k = 0; k < names.count; k++) {
        const PDBAtom* a = findAtom(ref, r, names.names[k], refChain, "*");
        const PDBAtom* b = findAtom(target, r + shift, names.names[k], targetChain, "*");
        found += a != nullptr;
        *targetFound += b != nullptr;
        if (!a || !b) continue;
        if (dbgFlag() > 1) {
            std::fprintf(stderr, " Adding Map:\n");
            showAtom("Reference", a);
            showAtom("Target   ", b);
        }
        pairs->push_back({a, b});
    }
    return found;
}

// Fills the workspace with the pairs and runs the fit; 0 or 1.
int superimposePairs(const PairList& pairs, int distanceMode, int verbose) {
    if (verbose > 1)
        std::fprintf(stderr, "%d Atom Pairs in Current Selection.\n",
                     static_cast<int>(pairs.size()));
    if (pairs.empty()) return 0;
    if (fitAlignAlloc(static_cast<int>(pairs.size())) != 0) {
        std::fprintf(stderr, "TESSERA Error initializing alignment workspaces.\n");
        return 1;
    }
    for (const AtomPair& p : pairs) {
        float r[3] = {p.reference->x, p.reference->y, p.reference->z};
        float t[3] = {p.target->x, p.target->y, p.target->z};
        if (fitAlignFill(r, t) != 0) return 1;
    }
    if (distanceMode) return fitAlignM();
    fitAlignStartClosedForm();
    if (fitAlign2() != 0) {
        std::fprintf(stderr, "TESSERA Error finding alignment.\n");
        return 1;
    }
    return 0;
}

}  // namespace

int fitAlignPDB(PDBData* reference, PDBData* target, int refRes1, int refResN, int targetRes1,
                const char* atomNames, int distanceMode, int verbose) {
    if (!reference || !target) return 1;
    fitAlignInit(dbgFlag());
    NameSet names = splitNames(atomNames);
    PairList pairs;
    int refFound = 0, targetFound = 0;
    for (int r = refRes1; r <= refResN; r++)
        refFound += pairResidue(reference, target, r, targetRes1 - refRes1, "*", "*", names,
                                &targetFound, &pairs);
    if (verbose > 1) {
        std::fprintf(stderr, "%d Atoms Selected from Reference.\n", refFound);
        std::fprintf(stderr, "%d Atoms Selected from Target.\n", targetFound);
    }
    return superimposePairs(pairs, distanceMode, verbose);
}

int fitAlignPDBN(PDBData* reference, PDBData* target, const char* const* refChains,
                 const char* const* targetChains, int chainCount, const char* atomNames,
                 int distanceMode, int verbose) {
    if (!reference || !target) return 1;
    fitAlignInit(dbgFlag());
    NameSet names = splitNames(atomNames);
    PairList pairs;
    int refFound = 0, targetFound = 0;
    for (int c = 0; c < chainCount; c++) {
        const PDBChain* chain = findChain(reference, refChains[c], "*");
        if (!chain) continue;
        for (int i = 0; i < chain->resCount; i++)
            refFound += pairResidue(reference, target, chain->residues[i]->resID, 0, refChains[c],
                                    targetChains[c], names, &targetFound, &pairs);
    }
    if (verbose > 1) {
        std::fprintf(stderr, "Multi-Chain Alignment: %d Atoms Selected from Reference.\n",
                     refFound);
        std::fprintf(stderr, "Multi-Chain Alignment: %d Atoms Selected from Target.\n",
                     targetFound);
        std::fprintf(stderr, "%d Atoms in Final Selection.\n", static_cast<int>(pairs.size()));
    }
    return superimposePairs(pairs, distanceMode, verbose);
}

int fitAlignCoords(const float* reference, const float* target, int n, int distanceMode) {
    fitAlignInit(dbgFlag());
    if (n < 1) return 0;
    if (fitAlignAlloc(n) != 0) {
        std::fprintf(stderr, "TESSERA Error initializing alignment workspaces.\n");
        return 1;
    }
    for (int i = 0; i < n; i++)
        if (fitAlignFill(&reference[3 * i], &target[3 * i]) != 0) return 1;
    if (distanceMode) return fitAlignM();
    fitAlignStartClosedForm();
    return fitAlign2();
}
