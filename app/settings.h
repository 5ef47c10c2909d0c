// The settings of one DC run, with the defaults main sets before any option
// is read. Kept in one record so that getparams fills them through a single
// pointer instead of one argument per setting.
#pragma once

constexpr int kTextSize = 1024;
// A residue setting below this counts as not given.
constexpr int kUnsetLimit = -99999;
constexpr int kUnset = -999999;
constexpr int kDefaultRetries = 17;

enum InclusionMode {
    kInclExclusive = 1,  // both residues in range
    kInclAll = 2,        // either residue in range
    kInclMin = 3,        // the smaller residue number in range
    kInclMax = 4,        // the larger residue number in range
};

struct RunSettings {
    char inName[kTextSize];
    char inTitle[kTextSize];
    char csName[kTextSize];
    char csTitle[kTextSize];
    char outName[kTextSize];
    char outCSName[kTextSize];
    char outSName[kTextSize];
    char listName[kTextSize];
    char pdbDir[kTextSize];
    char pdbName[kTextSize];
    char pdbTitle[kTextSize];
    char refName[kTextSize];
    char surfDir[kTextSize];
    char selectText[kTextSize];
    char rcSurfName[kTextSize];
    char homoSurfName[kTextSize];
    int res1;
    int resN;
    int segID;
    int segStep;
    int aRes1;
    int inclMode;
    int bbFlag;
    int fixedDI;
    int keepDI;
    int mirror;
    int constRMS;
    int storedShift;
    int retries;
    float* weights;  // tag "listArg"
    int weightCount;
    int* skipList;  // tag "listArg"
    int skipCount;
    float csThresh;
    float vcThresh;
};

void runSettingsNull(RunSettings* settings);
// Releases the weight and skip lists.
void runSettingsFree(RunSettings* settings);
inline bool isUnset(int residue) { return residue < kUnsetLimit; }
