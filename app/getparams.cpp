#include "app/getparams.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "app/usage.h"
#include "app/version.h"
#include "dc/tensor_options.h"
#include "pdb/modes.h"
#include "util/args.h"
#include "util/levels.h"
#include "util/residue_number.h"

namespace {

// An option whose integer value may be left out: the value when the next
// argument is not a flag, else the fallback. False when the option is absent.
bool optionalIntArg(int argc, char** argv, const char* name, int fallback, int* value) {
    int loc = flagLoc(argc, argv, name);
    if (badFlag()) return false;
    if (loc + 1 < argc && !isFlag(argv[loc + 1])) {
        *value = static_cast<int>(std::strtol(getNthArg(argc, argv, loc + 1), nullptr, 10));
    } else {
        *value = fallback;
    }
    return true;
}

void readEnvironment(RunSettings* s) {
    struct EnvSetting {
        const char* name;
        char* destination;
    };
    const EnvSetting settings[] = {
        {"PDBH_DIR", s->pdbDir}, {"PDBH_LIST", s->listName}, {"SURF_DIR", s->surfDir}};
    for (const EnvSetting& setting : settings) {
        const char* value = std::getenv(setting.name);
        if (!value) continue;
        std::snprintf(setting.destination, kTextSize, "%s", value);
    }
}

// An option naming a file that also gives the file's title.
void readNameAndTitle(int argc, char** argv, const char* name, char* file, char* title) {
    if (strArgD(argc, argv, name, file)) std::memcpy(title, file, kTextSize);
}

void readFileNames(int argc, char** argv, RunSettings* s) {
    readNameAndTitle(argc, argv, "-pdb", s->pdbName, s->pdbTitle);
    strArgD(argc, argv, "-pdbTitle", s->pdbTitle);
    strArgD(argc, argv, "-in", s->inName);
    readNameAndTitle(argc, argv, "-inD", s->inName, s->inTitle);
    strArgD(argc, argv, "-inDTitle", s->inTitle);
    readNameAndTitle(argc, argv, "-inCS", s->csName, s->csTitle);
    strArgD(argc, argv, "-inCSTitle", s->csTitle);
    strArgD(argc, argv, "-out", s->outName);
    strArgD(argc, argv, "-outD", s->outName);
    strArgD(argc, argv, "-outS", s->outSName);
    strArgD(argc, argv, "-outCS", s->outCSName);
    strArgD(argc, argv, "-ref", s->refName);
    strArgD(argc, argv, "-path", s->pdbDir);
    strArgD(argc, argv, "-list", s->listName);
    strArgD(argc, argv, "-sPath", s->surfDir);
}

void readResidueRange(int argc, char** argv, RunSettings* s) {
    intArgD(argc, argv, "-dStep", &s->segStep);
    intArgD(argc, argv, "-sStep", &s->segStep);
    intArgD(argc, argv, "-d1", &s->res1);
    intArgD(argc, argv, "-dN", &s->resN);
    intArgD(argc, argv, "-s1", &s->res1);
    intArgD(argc, argv, "-sN", &s->resN);
    intArgD(argc, argv, "-r1", &s->res1);
    intArgD(argc, argv, "-rN", &s->resN);
    intArgD(argc, argv, "-sID", &s->segID);
    intArgD(argc, argv, "-a1", &s->aRes1);
    // Residue numbers beyond what a table may hold are taken as that limit,
    // so that the offset aRes1 - res1 and every residue shifted by it fit.
    for (int* resid : {&s->res1, &s->resN, &s->aRes1}) *resid = clampResid(*resid);
    fltArgD(argc, argv, "-csThresh", &s->csThresh);
    fltArgD(argc, argv, "-vcThresh", &s->vcThresh);
}

void readSwitches(int argc, char** argv, RunSettings* s) {
    struct Switch {
        const char* name;
        int* destination;
        int value;
    };
    const Switch switches[] = {
        {"-excl", &s->inclMode, kInclExclusive},
        {"-incl", &s->inclMode, kInclAll},
        {"-inclAll", &s->inclMode, kInclAll},
        {"-inclMin", &s->inclMode, kInclMin},
        {"-inclMax", &s->inclMode, kInclMax},
        {"-constRMS", &s->constRMS, 1},
        {"-noconstRMS", &s->constRMS, 0},
        {"-mirror", &s->mirror, 1},
        {"-nomirror", &s->mirror, 0},
        {"-bb", &s->bbFlag, 1},
        {"-nobb", &s->bbFlag, 0},
        {"-fixedDI", &s->fixedDI, 1},
        {"-nofixedDI", &s->fixedDI, 0},
        {"-keepDI", &s->keepDI, 1},
        {"-nokeepDI", &s->keepDI, 0},
    };
    for (const Switch& option : switches) {
        if (argPresent(argc, argv, option.name)) *option.destination = option.value;
    }
    if (argPresent(argc, argv, "-ignore")) {
        setPDBChainMode(1);
        setPDBSegMode(1);
    }
}

void readLevels(int argc, char** argv, RunSettings* s) {
    optionalIntArg(argc, argv, "-retry", kDefaultRetries, &s->retries);
    if (argPresent(argc, argv, "-noretry")) s->retries = 0;
    int level;
    if (optionalIntArg(argc, argv, "-dbg", 1, &level)) setDbgFlag(level);
    if (optionalIntArg(argc, argv, "-verb", 1, &level)) setVerbose(level);
}

}  // namespace

void readSelectText(int argc, char** argv, char* selectText) {
    int loc = flagLoc(argc, argv, "-select");
    if (badFlag()) return;
    std::size_t length = std::strlen(selectText);
    for (int i = loc + 1; i < argc; i++) {
        const char* word = argv[i];
        // A lone "-" is a word of the selection, not a flag.
        if (isFlag(word) && std::strcmp(word, "-") != 0) break;
        std::size_t wordLength = std::strlen(word);
        if (length + wordLength + 1 > static_cast<std::size_t>(kTextSize - 1)) {
            std::fprintf(stderr, "DC Error: Too many items for -select option.\n");
            break;
        }
        getNthArg(argc, argv, i);
        if (length > 0) selectText[length++] = ' ';
        std::memcpy(selectText + length, word, wordLength + 1);
        length += wordLength;
    }
}

int getparams(int argc, char** argv, RunSettings* s, DTab* dTab) {
    if (argPresent(argc, argv, "-rversion")) {
        showVersion("REMARK ");
        return kParamsVersion;
    }
    if (argPresent(argc, argv, "-version")) {
        showVersion("# ");
        return kParamsVersion;
    }
    if (argPresent(argc, argv, "-help")) {
        showUsage();
        getDTensorParams(argc, argv, &dTab->tensor);
        return kParamsUsage;
    }
    argPresent(argc, argv, "-graph");
    argPresent(argc, argv, "-nograph");
    s->bbFlag = argPresent(argc, argv, "-pdb") ? 1 : 0;
    dTab->tensor.euler = s->bbFlag;  // the tensor defaults below set it back to 1
    getDTensorParams(argc, argv, &dTab->tensor);
    readSelectText(argc, argv, s->selectText);
    readLevels(argc, argv, s);
    readEnvironment(s);
    s->weights = rListArg(argc, argv, "-w", &s->weightCount);
    s->skipList = iListArg(argc, argv, "-skip", &s->skipCount);
    readFileNames(argc, argv, s);
    readResidueRange(argc, argv, s);
    readSwitches(argc, argv, s);
    return kParamsOk;
}
