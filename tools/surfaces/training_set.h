// The training residues of the shift surfaces: observed backbone shifts with
// the torsions of a crystal structure, one per residue (training.csv).
#pragma once

#include <string>
#include <vector>

// The atom kinds DC predicts, in the order of its surface lists.
constexpr int kAtomKinds = 8;
extern const char* const kAtomKindNames[kAtomKinds];  // HA HA2 HA3 CA CB C N HN
enum AtomKind { kHA, kHA2, kHA3, kCA, kCB, kC, kN, kHN };

struct TrainingResidue {
    int bmrb = 0;       // entries of one protein share it: folds keep them together
    std::string entry;  // BMRB, PDB code and chain: one chain of one structure
    int resnum = 0;
    std::string name, prev, next;  // three-letter names; prev/next empty at a chain end
    // Names of the residues two before and two after, found by residue number
    // in the same entry; empty when that residue is not in the set.
    std::string prev2, next2;
    float phi = 0, psi = 0;
    float prevPsi = 0, nextPhi = 0;  // NaN when undefined
    float shift[kAtomKinds];         // observed, NaN when not measured
    float randomCoil[kAtomKinds];    // NaN when the table has no value
    float secondary[kAtomKinds];     // shift - random coil, NaN when either is missing
};

// Reads the CSV file: 0, or 1 after a message. Glycine alpha protons are
// ordered as prediction names them: HA2 the larger shift, HA3 the smaller; a
// glycine with only one of them keeps neither, as it cannot be named.
int readTraining(const char* path, std::vector<TrainingResidue>* residues);

// Fills prev2 and next2 from the other residues of the same entry.
void findSecondNeighbours(std::vector<TrainingResidue>* residues);

// The residue class of a shift surface: "xPRO" for a residue other than
// glycine followed by proline, as shift tables name it, else its own name.
std::string shiftClass(const TrainingResidue& r);
// The class of a conformation surface: "xPRO" for a residue other than
// proline and glycine followed by proline, as structures name it.
std::string conformationClass(const TrainingResidue& r);

// Splits one CSV line at its commas (no quoting is used in these files).
std::vector<std::string> splitCsv(const std::string& line);
