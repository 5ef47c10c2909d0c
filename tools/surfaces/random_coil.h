// Random-coil shifts with neighbour corrections (random_coil.csv), kept in a
// symbol table under the keys DC's shift reader uses for rc.tab:
// "residue,atom,type,offset", type RC (offset 0) for the residue's own value
// and ADJ (offsets -2, -1, 1, 2) for what a residue adds to its neighbour's
// atom from that position. Residue names are one-letter codes.
#pragma once

#include <string>
#include <vector>

struct HSymTab;
struct TrainingResidue;

struct RandomCoilRow {
    std::string residue, atom, type;
    int offset;
    float shift;
};

struct RandomCoilTable {
    HSymTab* symbols = nullptr;
    std::vector<RandomCoilRow> rows;
};

// Reads the CSV file into rows and symbols: 0, or 1 after a message.
// Glycine's HA value is also given as HA2 and HA3, and so is every
// residue's correction to a neighbour's HA.
int readRandomCoil(const char* path, RandomCoilTable* table);
void freeRandomCoil(RandomCoilTable* table);

// Writes rc.tab: 0, or 1 after the table writer's message.
int writeRandomCoil(const char* path, const RandomCoilTable& table);

// The random-coil shift of an atom of the centre residue with its
// neighbours (one-letter codes, empty when absent): NaN when the centre has
// no value for the atom.
float randomCoilShift(const RandomCoilTable& table, const std::string names[5], const char* atom);

// Random-coil values and secondary shifts of a training residue.
void setSecondaryShifts(const RandomCoilTable& table, TrainingResidue* r);
