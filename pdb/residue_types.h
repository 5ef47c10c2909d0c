// The canonical residue table: amino acids and nucleotides with their
// one-letter codes, type numbers and classes, ending at the "None" entry.
#pragma once

struct PDBResidue;

enum ResClass {
    kResClassNone = 0,
    kResClassAminoAcid = 1,
    kResClassNucleic = 2,
    kResClassDeoxy = 3,
    kResClassRibo = 4,
};

struct ResType {
    char name[16];
    char code;
    int type;
    int resClass;
};

// The entry whose name equals the residue's (or the given) name, ignoring
// case, or the terminating "None" entry.
const ResType* findResType(const PDBResidue* residue);
const ResType* findResTypeByName(const char* name);
int isAminoAcid(const char* name);
// One-letter code of an amino acid, else "?"; a static text.
const char* getResName1(const char* name);
// Three-letter name of an amino acid given by name or one-letter code, else
// "None"; a static text.
const char* getResName3(const char* name);
