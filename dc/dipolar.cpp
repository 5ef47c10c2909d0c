#include "dc/dipolar.h"

#include <strings.h>

#include <cstdio>
#include <cstdint>
#include <cstring>

#include "dc/dtab.h"
#include "math/least_squares.h"
#include "pdb/atom_list.h"
#include "pdb/pdb_types.h"
#include "util/alloc.h"

namespace {

// mu0 * hbar / (4 pi^2), with distances in Angstrom, giving DI in Hz.
constexpr float kDipolarK = 3.356809e-12f;
constexpr float kMinDistance = 0.01f;

float fixedDistance(int bondType) {
    switch (bondType) {
        case kBondHN: return 1.041f;
        case kBondCAHA: return 1.107f;
        case kBondCAC: return 1.525f;
        case kBondNCA: return 1.458f;
        case kBondMethyl: return 1.117f;
        case kBondCH: return 2.055f;
        case kBondCN: return 1.329f;
        default: return 0.0f;
    }
}

bool hasFixedGeometry(int bondType) { return fixedDistance(bondType) > 0.0f; }

bool is(const char* name, const char* text) { return std::strcmp(name, text) == 0; }
bool begins(const char* name, const char* prefix) {
    return std::strncmp(name, prefix, std::strlen(prefix)) == 0;
}
bool isAmideH(const char* name) { return is(name, "HN") || is(name, "H"); }
bool isLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

// The nucleus letter: the first character, or the second when the first is
// not a letter (1HB is a proton).
bool ratioOf(const char* atom, float* ratio) {
    char letter = atom[0] && !isLetter(atom[0]) ? atom[1] : atom[0];
    switch (letter) {
        case 'H': *ratio = 2.6752e8f; return true;
        case 'C': *ratio = 6.7283e7f; return true;
        case 'N': *ratio = -2.7116e7f; return true;
        case 'P': *ratio = 1.0829e8f; return true;
        case 'F': *ratio = 2.517e8f; return true;
        case 'D': *ratio = 4.1066e7f; return true;
        default: *ratio = 1.0f; return false;
    }
}

int sameResidueType(const char* resName, const char* a, const char* b) {
    if ((isAmideH(a) && is(b, "N")) || (is(a, "N") && isAmideH(b))) return kBondHN;
    if (begins(a, "HA") && is(b, "CA")) return kBondCAHA;
    if ((begins(a, "HA") && begins(b, "HB")) || (begins(a, "HB") && begins(b, "HA"))) {
        return kBondHAHB;
    }
    if ((begins(a, "CA") && begins(b, "CB")) || (begins(a, "CB") && begins(b, "CA"))) {
        return kBondCACB;
    }
    if (is(a, "CA") && begins(b, "HA")) return kBondCAHA;
    if ((is(a, "CA") && is(b, "N")) || (is(a, "N") && is(b, "CA"))) return kBondNCA;
    if ((is(a, "CA") && is(b, "C")) || (is(a, "C") && is(b, "CA"))) return kBondCAC;
    if (isDCMethyl(resName, a, b)) return kBondMethyl;
    return kBondOther;
}

int classifyPair(int residI, const char* resNameI, const char* a, int residJ, const char* b) {
    if (residI == residJ) return sameResidueType(resNameI, a, b);
    // Neighbours are found in 64 bits: residue numbers may lie at the ends
    // of the int range.
    int64_t step = static_cast<int64_t>(residJ) - residI;
    if (step == 1) {
        if (!is(a, "C")) return kBondOther;
        if (isAmideH(b)) return kBondCH;
        return is(b, "N") ? kBondCN : kBondOther;
    }
    if (step == -1 && is(b, "C")) {
        if (isAmideH(a)) return kBondCH;
        if (is(a, "N")) return kBondCN;
    }
    return kBondOther;
}

float inverseCube(float r) {
    float cube = r * r * r;
    return static_cast<float>(1.0 / static_cast<double>(cube));
}

struct MethylPair {
    const char* resName;
    const char* carbon;
    const char* protonAfterCarbon;
    const char* protonBeforeCarbon;
};

// The ILE CD row names its proton-first partner "HD1", which holds no "#"
// and so never matches.
const MethylPair kMethyls[] = {
    {"ALA", "CB", "HB#", "HB#"},    {"ILE", "CD", "HD#", "HD1"},    {"ILE", "CD1", "HD1#", "HD1#"},
    {"ILE", "CG2", "HG2#", "HG2#"}, {"LEU", "CD1", "HD1#", "HD1#"}, {"LEU", "CD2", "HD2#", "HD2#"},
    {"MET", "CE", "HE#", "HE#"},    {"THR", "CG2", "HG2#", "HG2#"}, {"VAL", "CG1", "HG1#", "HG1#"},
    {"VAL", "CG2", "HG2#", "HG2#"},
};

bool isPseudoProton(const char* name) {
    std::size_t length = std::strlen(name);
    return name[0] == 'H' && length >= 3 && (name[2] == '#' || (length >= 4 && name[3] == '#'));
}

struct DipolarWorkspace {
    float* design = nullptr;
    float* values = nullptr;
    int size = 0;
};

DipolarWorkspace workspace;

int64_t designBytes(int size) { return 5 * (static_cast<int64_t>(size) + 1) * sizeof(float); }
int64_t valueBytes(int size) { return (static_cast<int64_t>(size) + 1) * sizeof(float); }

}  // namespace

int isDCMethyl(const char* resName, const char* atomI, const char* atomJ) {
    if (!resName || !atomI || !atomJ) return 0;
    bool carbonFirst = atomI[0] == 'C';
    if (!carbonFirst && atomI[0] != 'H') return 0;
    if (atomJ[0] != (carbonFirst ? 'H' : 'C')) return 0;
    const char* carbon = carbonFirst ? atomI : atomJ;
    const char* proton = carbonFirst ? atomJ : atomI;
    if (!isPseudoProton(proton)) return 0;
    for (const MethylPair& pair : kMethyls) {
        if (strcasecmp(pair.resName, resName) != 0 || !is(carbon, pair.carbon)) continue;
        if (is(proton, carbonFirst ? pair.protonAfterCarbon : pair.protonBeforeCarbon)) return 1;
    }
    return 0;
}

int findVariableDI(int residI, const char* resNameI, const char* atomI, int residJ,
                   const char* resNameJ, const char* atomJ, float* di, int* fixedFlag,
                   int* bondType, int useFixed, float distance) {
    *fixedFlag = 1;
    *di = 0.0f;
    *bondType = classifyPair(residI, resNameI ? resNameI : "", atomI, residJ, atomJ);
    float factor;
    if (hasFixedGeometry(*bondType) && useFixed == 1) {
        factor = inverseCube(fixedDistance(*bondType));
    } else {
        *fixedFlag = 0;
        factor = distance < kMinDistance ? 1.0e6f : inverseCube(distance);
    }
    int status = 0;
    float ratioI, ratioJ;
    if (!ratioOf(atomI, &ratioI)) {
        std::fprintf(stderr, "Dipolar Interaction - Unknown atom %s.\n", atomI);
        status = 1;
    }
    if (!ratioOf(atomJ, &ratioJ)) {
        std::fprintf(stderr, "Dipolar Interaction - Unknown atom %s.\n", atomJ);
        status = 1;
    }
    *di = ((ratioI * kDipolarK) * ratioJ) * factor;
    return status;
}

int findFixedDI(int residI, const char* resNameI, const char* atomI, int residJ,
                const char* resNameJ, const char* atomJ, float* di, int* bondType, int* fixedFlag) {
    return findVariableDI(residI, resNameI, atomI, residJ, resNameJ, atomJ, di, fixedFlag, bondType,
                          1, 0.0f);
}

int findDCDI(DCValue* v, int residI, int residJ, int useFixed) {
    v->di = v->diTable;
    if (v->diFixed && useFixed == 1) return 0;
    if (v->countI < 1 || v->countJ < 1 || !v->atomsI[0] || !v->atomsJ[0]) return 0;
    float distance;
    findAtomListRad(v->atomsI, v->countI, v->atomsJ, v->countJ, &distance);
    const PDBAtom* a = v->atomsI[0];
    const PDBAtom* b = v->atomsJ[0];
    findVariableDI(residI, a->resName, a->atomName, residJ, b->resName, b->atomName, &v->di,
                   &v->diFixed, &v->bondType, useFixed, distance);
    return 0;
}

void dipolarNull() { workspace = DipolarWorkspace{}; }

int dipolarInit(int count) {
    int size = count > 5 ? count : 5;
    if (workspace.size > size) return 0;
    dipolarFree();
    workspace.design = static_cast<float*>(voidMalloc64("dipolar", designBytes(size)));
    workspace.values = static_cast<float*>(voidMalloc64("dipolar", valueBytes(size)));
    workspace.size = size;
    if (!workspace.design || !workspace.values) {
        std::fprintf(stderr, "TESSERA Error Allocating Dipolar Workspace.\n");
        dipolarFree();
        return 1;
    }
    return 0;
}

void dipolarFree() {
    // The cached least-squares workspace goes with it, so that a run always
    // ends with nothing in use.
    svdPolyFree();
    unAlloc64("dipolar", workspace.design, designBytes(workspace.size));
    unAlloc64("dipolar", workspace.values, valueBytes(workspace.size));
    workspace = DipolarWorkspace{};
}

float* dipolarDesign() { return workspace.design; }
float* dipolarValues() { return workspace.values; }
int dipolarSize() { return workspace.size; }
