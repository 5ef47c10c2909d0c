#include "pdb/measures.h"

#include <cctype>
#include <cmath>
#include <cstring>

namespace {

bool marked(const PDBAtom& atom, int mark) { return atom.selected == mark; }

bool isWaterName(const char* name) {
    return std::strcmp(name, "HOH") == 0 || std::strcmp(name, "H2O") == 0 ||
           std::strcmp(name, "WAT") == 0;
}

// Element symbols are looked up by HETATM atoms that carry one.
bool usesElement(const PDBAtom* atom) { return atom->isHetAtm && atom->element[0]; }

char firstNonDigit(const char* name) {
    while (*name >= '0' && *name <= '9') name++;
    return *name;
}

float massOfElement(const char* element) {
    struct Mass {
        const char* symbol;
        float mass;
    };
    static const Mass kOneLetter[] = {{"H", 1},  {"B", 10}, {"C", 12}, {"N", 14}, {"O", 16},
                                      {"F", 19}, {"P", 31}, {"S", 32}, {"K", 39}, {"I", 127}};
    static const Mass kTwoLetter[] = {{"LI", 7},  {"NA", 23}, {"BE", 9},   {"MG", 24}, {"CA", 40},
                                      {"CR", 52}, {"MN", 56}, {"FE", 56},  {"CO", 59}, {"NI", 59},
                                      {"CU", 64}, {"ZN", 65}, {"HG", 201}, {"AL", 27}, {"SI", 28},
                                      {"SE", 79}, {"CL", 35}, {"BR", 80}};
    char upper[3] = {0, 0, 0};
    for (int i = 0; i < 2 && element[i]; i++) {
        upper[i] = static_cast<char>(std::toupper(static_cast<unsigned char>(element[i])));
    }
    if (!upper[1]) {
        for (const Mass& m : kOneLetter) {
            if (m.symbol[0] == upper[0]) return m.mass;
        }
        return 1.0f;
    }
    for (const Mass& m : kTwoLetter) {
        if (std::strcmp(m.symbol, upper) == 0) return m.mass;
    }
    return 1.0f;
}

float massOfName(const char* name) {
    switch (firstNonDigit(name)) {
        case 'C': return 12.0f;
        case 'N': return 14.0f;
        case 'O': return 16.0f;
        case 'P': return 31.0f;
        case 'S': return 32.0f;
        default: return 1.0f;
    }
}

}  // namespace

int getPDBCenter(const PDBData* pdb, int mark, float* x, float* y, float* z) {
    *x = *y = *z = 0.0f;
    float sx = 0.0f, sy = 0.0f, sz = 0.0f;
    int n = 0;
    for (int i = 0; pdb && i < pdb->atomCount; i++) {
        const PDBAtom& atom = pdb->atoms[i];
        if (!marked(atom, mark)) continue;
        sx += atom.x;
        sy += atom.y;
        sz += atom.z;
        n++;
    }
    if (n == 0) return 0;
    *x = sx / n;
    *y = sy / n;
    *z = sz / n;
    return n;
}

int getPDBExtent(const PDBData* pdb, int mark, float* xMin, float* xMax, float* yMin, float* yMax,
                 float* zMin, float* zMax) {
    *xMin = *xMax = *yMin = *yMax = *zMin = *zMax = 0.0f;
    int n = 0;
    for (int i = 0; pdb && i < pdb->atomCount; i++) {
        const PDBAtom& atom = pdb->atoms[i];
        if (!marked(atom, mark)) continue;
        if (n == 0 || atom.x < *xMin) *xMin = atom.x;
        if (n == 0 || atom.x > *xMax) *xMax = atom.x;
        if (n == 0 || atom.y < *yMin) *yMin = atom.y;
        if (n == 0 || atom.y > *yMax) *yMax = atom.y;
        if (n == 0 || atom.z < *zMin) *zMin = atom.z;
        if (n == 0 || atom.z > *zMax) *zMax = atom.z;
        n++;
    }
    return n;
}

int getPDBRadGyr(const PDBData* pdb, int mark, float* radius) {
    *radius = 0.0f;
    float cx, cy, cz;
    int n = getPDBCenter(pdb, mark, &cx, &cy, &cz);
    if (n == 0) return 0;
    float sum = 0.0f;
    for (int i = 0; i < pdb->atomCount; i++) {
        const PDBAtom& atom = pdb->atoms[i];
        if (!marked(atom, mark)) continue;
        float dx = atom.x - cx, dy = atom.y - cy, dz = atom.z - cz;
        sum += dx * dx + dy * dy + dz * dz;
    }
    *radius = static_cast<float>(std::sqrt(static_cast<double>(sum / n)));
    return n;
}

float getPDBMass(PDBData* pdb, int mark) {
    float total = 0.0f;
    for (int i = 0; pdb && i < pdb->atomCount; i++) {
        PDBAtom& atom = pdb->atoms[i];
        if (!marked(atom, mark)) continue;
        if (atom.mass == 0.0f) atom.mass = getPDBAtomMass(&atom);
        total += atom.mass;
    }
    return total;
}

float getPDBAtomMass(const PDBAtom* atom) {
    if (usesElement(atom)) {
        // The water test reads the atom name, not the residue name.
        if (isWaterName(atom->atomName)) return 18.0f;
        return massOfElement(atom->element);
    }
    return massOfName(atom->atomName);
}

float getPDBVDWRadius(const PDBAtom* atom) {
    if (usesElement(atom)) return isWaterName(atom->atomName) ? 1.5f : 2.0f;
    switch (firstNonDigit(atom->atomName)) {
        case 'C': return 1.7f;
        case 'H': return 1.2f;
        case 'N': return 1.55f;
        case 'O': return 1.52f;
        case 'P': return 1.8f;
        case 'S': return 1.8f;
        default: return 2.0f;
    }
}
