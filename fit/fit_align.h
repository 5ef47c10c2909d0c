// The nonlinear route of the tensor fit (fit, grid search, fixed tensor):
// chooses the atoms and couplings that take part, gathers their coordinates
// from every structure, runs the grid search or the refinement, and turns
// every fitted tensor into its order matrix and Euler angles.
#pragma once

struct DTab;
struct PDBData;

// One tensor; stores the number of couplings used in the table's
// used-coupling count and returns it (0 on any failure).
int fitDCAlign(PDBData** pdbs, int count, DTab* dTab, int retries, int verbose);
// Several tensors fitted together against the same structures: tables is a
// list of kDTabListSize slots, filled from the first, ending at a null one.
int fitDCAlignN(PDBData** pdbs, int count, DTab* const* tables, int retries, int verbose);
// The common body: the number of couplings fitted, 0 when there is nothing
// to fit, -1 after an error message.
int fitDCAlignI();
