#include "pdb/lists.h"

#include <climits>
#include <cstdint>
#include <cstdio>

#include "pdb/modes.h"
#include "pdb/records.h"
#include "util/alloc.h"

namespace {

// A pointer list of a chain or segment starts this small when nobody
// watches the growth: a structure with thousands of one-atom segments would
// otherwise hold thousands of 4096-slot lists.
constexpr int kQuietFirstCapacity = 16;

// The next capacity, or 0 when it would not fit an int. In verbose mode the
// list grows by its stated first size and step, each growth reported; else
// it grows by a quarter of itself (at least the step), so that reading n
// atoms copies the list a bounded number of times per atom. The first steps
// are the same either way for lists that start at their stated size.
int grownCapacity(int capacity, int first, int step) {
    if (capacity < 1) return first;
    int64_t grown = static_cast<int64_t>(capacity) + step;
    if (!getPDBVerb() && capacity / 4 > step) grown = static_cast<int64_t>(capacity) + capacity / 4;
    if (grown > INT_MAX)
        grown = capacity < INT_MAX - step ? static_cast<int64_t>(capacity) + step : 0;
    return static_cast<int>(grown);
}

// Grows a record array so that one more record fits. The new slots are left
// as they are: each is made fresh when it is handed out, so a small
// structure does not pay for the whole first allocation. Returns false after
// the failure message.
template <class Record>
bool growRecords(Record** array, int count, int* capacity, int first, int step,
                 const char* verboseLine, const char* failure) {
    if (count < *capacity) return true;
    int grown = grownCapacity(*capacity, first, step);
    if (grown == 0) {
        std::fprintf(stderr, "%s", failure);
        return false;
    }
    if (getPDBVerb()) std::fprintf(stderr, verboseLine, grown);
    // Resized in place where the heap allows (large blocks are remapped, not
    // copied); the allocation report counts what the lists hold, not each move.
    void* block = voidGrow64("pdb", *array, static_cast<int64_t>(grown) * sizeof(Record),
                             static_cast<int64_t>(*capacity) * sizeof(Record));
    if (!block) {
        std::fprintf(stderr, "%s", failure);
        return false;
    }
    *array = static_cast<Record*>(block);
    *capacity = grown;
    return true;
}

template <class Record>
Record* nextRecord(Record** array, int* count, int* capacity, int first, int step,
                   const char* verboseLine, const char* failure, void (*makeNull)(Record*)) {
    if (!growRecords(array, *count, capacity, first, step, verboseLine, failure)) return nullptr;
    Record* record = *array + (*count)++;
    makeNull(record);
    return record;
}

template <class T>
void nullPointer(T** slot) {
    *slot = nullptr;
}

}  // namespace

PDBAtom* getNextAtom(PDBData* pdb) {
    return nextRecord(&pdb->atoms, &pdb->atomCount, &pdb->atomCapacity, kAtomListFirst,
                      kAtomListStep, "REMARK Expanding Atom List: %d atoms max.\n",
                      "PDB Error Allocating Atom memory.\n", atomNull);
}

PDBResidue* getNextRes(PDBData* pdb) {
    return nextRecord(&pdb->residues, &pdb->resCount, &pdb->resCapacity, kResListFirst,
                      kResListStep, "REMARK Expanding Res List: %d residues max.\n",
                      "PDB Error Allocating Residue memory.\n", resNull);
}

PDBChain* getNextChain(PDBData* pdb) {
    return nextRecord(&pdb->chains, &pdb->chainCount, &pdb->chainCapacity, kGroupListFirst,
                      kGroupListStep, "REMARK Expanding Chain List: %d chains max.\n",
                      "PDB Error Allocating Chain memory.\n", chainNull);
}

PDBSegment* getNextSeg(PDBData* pdb) {
    return nextRecord(&pdb->segs, &pdb->segCount, &pdb->segCapacity, kGroupListFirst,
                      kGroupListStep, "REMARK Expanding Seg List: %d segs max.\n",
                      "PDB Error Allocating Seg memory.\n", segNull);
}

PDBAtom** getNextAtomPtr(PDBAtom*** list, int* count, int* capacity, int firstCapacity, int step) {
    if (!getPDBVerb() && firstCapacity > kQuietFirstCapacity) firstCapacity = kQuietFirstCapacity;
    return nextRecord(list, count, capacity, firstCapacity, step,
                      "REMARK Expanding Atom Index List: %d atoms max.\n",
                      "PDB Error Allocating Atom Index memory.\n", nullPointer<PDBAtom>);
}

PDBResidue** getNextResPtr(PDBResidue*** list, int* count, int* capacity, int firstCapacity,
                           int step) {
    if (!getPDBVerb() && firstCapacity > kQuietFirstCapacity) firstCapacity = kQuietFirstCapacity;
    return nextRecord(list, count, capacity, firstCapacity, step,
                      "REMARK Expanding Res Index List: %d residues max.\n",
                      "PDB Error Allocating Residue Index memory.\n", nullPointer<PDBResidue>);
}
