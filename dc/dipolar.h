// Dipolar interaction values: the coupling a pair of nuclei would show at
// full alignment along their internuclear vector, DI = K gI gJ / r^3 in Hz,
// from a fixed bond geometry for common backbone and methyl pairs or from
// the distance measured in the structure. Also the small workspace of the
// order-matrix fit.
#pragma once

struct DCValue;

// DI of a pair by names (and distance, Angstrom); returns 1 when a nucleus
// letter is unknown (its ratio is then taken as 1.0), else 0.
int findVariableDI(int residI, const char* resNameI, const char* atomI, int residJ,
                   const char* resNameJ, const char* atomJ, float* di, int* fixedFlag,
                   int* bondType, int useFixed, float distance);
// The fixed-geometry form; note the output order: bond type before fixed flag.
int findFixedDI(int residI, const char* resNameI, const char* atomI, int residJ,
                const char* resNameJ, const char* atomJ, float* di, int* bondType, int* fixedFlag);
// Sets DI in use, the DI fixed flag and the bond type of a mapped coupling.
int findDCDI(DCValue* value, int residI, int residJ, int useFixed);
// 1 for a methyl carbon with its pseudo-proton (either order) in residue resName.
int isDCMethyl(const char* resName, const char* atomI, const char* atomJ);

void dipolarNull();
int dipolarInit(int count);
void dipolarFree();
// The workspace arrays: 5 x (size + 1) and (size + 1) floats.
float* dipolarDesign();
float* dipolarValues();
int dipolarSize();
