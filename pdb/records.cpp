#include "pdb/records.h"

#include <cstring>

#include "pdb/lists.h"

void atomNull(PDBAtom* atom) {
    std::memset(atom, 0, sizeof *atom);
    atom->occupancy = 1.0f;
    atom->weight = 1.0f;
    for (float& value : atom->property) value = kPropertyNotSet;
}

void resNull(PDBResidue* residue) {
    std::memset(residue, 0, sizeof *residue);
    residue->phi = kAngleUndefined;
    residue->psi = kAngleUndefined;
    residue->omega = kOmegaNotComputed;
}

namespace {

void groupNull(PDBGroup* group) {
    std::memset(group, 0, sizeof *group);
    group->undefinedMark = kOmegaNotComputed;
}

int appendGroupAtom(PDBGroup* group, PDBAtom* atom) {
    PDBAtom** slot = getNextAtomPtr(&group->atoms, &group->atomCount, &group->atomCapacity,
                                    kAtomListFirst, kAtomListStep);
    if (!slot) return 1;
    *slot = atom;
    copyNameField(group->chain, atom->chain);
    copyNameField(group->seg, atom->seg);
    return 0;
}

}  // namespace

void chainNull(PDBChain* chain) { groupNull(chain); }
void segNull(PDBSegment* seg) { groupNull(seg); }

void setAtomInfo(PDBData* pdb, PDBAtom* destination, const PDBAtom* source, int index) {
    *destination = *source;
    keepResidueRange(pdb, destination, index);
}

void keepResidueRange(PDBData* pdb, const PDBAtom* atom, int index) {
    if (index == 0) {
        pdb->resMin = pdb->resMax = atom->resID;
        return;
    }
    if (atom->resID < pdb->resMin) pdb->resMin = atom->resID;
    if (atom->resID > pdb->resMax) pdb->resMax = atom->resID;
}

int setResInfo(PDBResidue* residue, PDBAtom* atom) {
    residue->resID = atom->resID;
    copyNameField(residue->resName, atom->resName);
    copyNameField(residue->chain, atom->chain);
    copyNameField(residue->seg, atom->seg);
    PDBAtom** slot = getNextAtomPtr(&residue->atoms, &residue->atomCount, &residue->atomCapacity,
                                    kResAtomPtrFirst, kResAtomPtrStep);
    if (!slot) return 1;
    *slot = atom;
    return 0;
}

int setChainAtomInfo(PDBChain* chain, PDBAtom* atom) { return appendGroupAtom(chain, atom); }
int setSegAtomInfo(PDBSegment* seg, PDBAtom* atom) { return appendGroupAtom(seg, atom); }
