// Writing the surface directory: the chosen shift surfaces of each atom
// kind, built from every training residue, and the conformation surfaces.
#pragma once

#include <string>
#include <vector>

#include "tools/surfaces/tuning.h"

// A.R<suffix>.dat, .d.dat and .q.dat for every residue class with data for
// the atom kind (cys and his as copies of CYS and HIS), and the
// residue-independent A<suffix>.dat set. Returns the number of files
// written, or -1 after a message.
int writeShiftSurfaces(const std::string& dir, const SurfaceChoice& choice,
                       const std::vector<TrainingResidue>& residues,
                       const std::vector<int>& foldOf);

// The conformation surfaces R.dat of every residue class, and their grid.
extern const Grid kConformationGrid;
// The phi/psi density of a class's residues relative to the mean over the
// grid, with a floor of 1 % of that mean so that no region scores as
// impossible: the largest value marks the most common conformation. Order 1.
std::vector<float> conformationSurface(const std::vector<TrainingResidue>& residues,
                                       const std::string& cls);
int writeConformationSurfaces(const std::string& dir, const std::vector<TrainingResidue>& residues);
