#include "pdb/atom_list.h"

#include <cmath>

namespace {

bool hasEmptySlot(PDBAtom* const* list, int n) {
    for (int i = 0; list && i < n; i++) {
        if (!list[i]) return true;
    }
    return false;
}

}  // namespace

int findAtomInList(const PDBAtom* atom, PDBAtom* const* list, int n) {
    if (atom || !list) return -1;
    for (int i = 0; i < n; i++) {
        if (!list[i]) return i;
    }
    return -1;
}

int incrAtomList(PDBAtom* atom, PDBAtom** list, int* count) {
    if (!atom || !list || !count || *count < 0) return 0;
    for (int i = 0; i < *count; i++) {
        if (list[i] == atom) return 0;
    }
    list[(*count)++] = atom;
    return 1;
}

int atomListExclTest(PDBAtom* const* list1, int n1, PDBAtom* const* list2, int n2) {
    return hasEmptySlot(list1, n1) && hasEmptySlot(list2, n2) ? 1 : 0;
}

int findAtomListPos(PDBAtom* const* list, int n, float* x, float* y, float* z) {
    *x = *y = *z = 0.0f;
    if (!list || n < 1) return 0;
    float sx = 0.0f, sy = 0.0f, sz = 0.0f;
    for (int i = 0; i < n; i++) {
        if (!list[i]) continue;
        sx += list[i]->x;
        sy += list[i]->y;
        sz += list[i]->z;
    }
    *x = sx / n;
    *y = sy / n;
    *z = sz / n;
    return n;
}

int findAtomListRad(PDBAtom* const* list1, int n1, PDBAtom* const* list2, int n2, float* r) {
    *r = 0.0f;
    int pairs = 0;
    float sum = 0.0f;
    for (int i = 0; list1 && i < n1; i++) {
        for (int j = 0; list2 && j < n2; j++) {
            pairs++;
            const PDBAtom* a = list1[i];
            const PDBAtom* b = list2[j];
            if (!a || !b) continue;
            float dx = a->x - b->x, dy = a->y - b->y, dz = a->z - b->z;
            sum += static_cast<float>(std::sqrt(static_cast<double>(dx * dx + dy * dy + dz * dz)));
        }
    }
    if (pairs > 0) *r = sum / pairs;
    return pairs;
}
