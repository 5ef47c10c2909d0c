// The tensor fit: dispatch by the tensor's method.
#pragma once

struct PDBData;
struct DTab;

// Fits the tensor of dTab on the structures (the table must be mapped onto
// them). Methods 1 (SVD) and 2, 6, 7 (given Saupe values) solve the order
// matrix; 3, 4 and 5 are the nonlinear route. Returns the number of
// couplings fitted, 0 for missing arguments.
int fitDN(PDBData** pdbs, int count, DTab* dTab, int retries, int verbosity);
int fitD(PDBData* pdb, DTab* dTab, int retries, int verbosity);
