// Shift and conformation surfaces over the backbone torsions (phi, psi),
// read once from a surface directory into one process-wide list: per atom
// kind and residue type a surface of secondary shift with its density and
// deviation (for the residue itself, or indexed by a neighbour's angle), per
// residue type a conformation surface, optionally a null surface.
#pragma once

#include "util/fixed_text.h"

enum SurfaceKind { kSurfNullKind = 0, kSurfShiftKind = 1, kSurfConformationKind = 2 };

struct Surface {
    char name[kNameSize];
    float* value;    // nx*ny, phi (x) fastest: value[iy * nx + ix]; tag "cs"
    float* density;  // shift surfaces only
    float* dev;      // shift surfaces only
    float min, max, avg;  // of the last array read
    float bound;          // error bound of the statistics (clipping, -constRMS)
    float threshold;      // density below which a surface predicts nothing
    int kind;             // SurfaceKind
    int position;         // shift surfaces: -1 .prev, 1 .next, 0 the residue's own
    int order;
    int nx, ny;
    float xmin, xmax, ymin, ymax;
};

// The built-in lists, in the order the loader reads them.
constexpr int kSurfAtomKinds = 8;
extern const char* const kSurfAtomNames[kSurfAtomKinds];  // HA HA2 HA3 CA CB C N HN
constexpr int kSurfResTypes = 23;
extern const char* const kSurfResNames[kSurfResTypes];  // ALA ... VAL xPRO

// Reads every surface of the directory, then rc.tab and homo.tab unless
// their names are "None": 0, or 1 after the message of what failed.
int surfRead(const char* dir, const char* rcName, const char* homoName, int verbose);
// Reads the shift, density and deviation grids of one shift surface.
int surfReadCS(const char* dir, const char* name, Surface* surface);
// Reads one grid file into a new array (the record's header values are
// set); null after a message.
float* surfRead2D(const char* path, const char* name, Surface* surface, int kind);

// The cell holding (phi, psi), clamped at the edges, without wrap-around;
// outputs of arrays the surface lacks are left untouched.
void getSurfVal(const Surface* surface, float* value, float* density, float* dev, float phi,
                float psi);

// The loaded list and its counts.
Surface* getSurfList();
int getSurfCount();
int getShiftSurfCount();
int getConfSurfCount();

// A cleared record.
void surfNull(Surface* surface);
// Releases one record's arrays and clears it.
void surfNull2(Surface* surface);
// Releases every surface, the list, the random-coil and homology tables.
void surfFree();
