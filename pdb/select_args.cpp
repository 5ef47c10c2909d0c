#include <cstdio>

#include "pdb/select.h"
#include "util/alloc.h"
#include "util/args.h"

namespace {

void readNameList(int argc, char** argv, const char* name, NameList* list) {
    int count = 0;
    char** names = sListArg(argc, argv, name, &count);
    if (!names) return;
    freeStrList(list->names, list->count);
    list->names = names;
    list->count = count;
}

void setMode(int argc, char** argv, const char* name, int mode, NameList* const lists[],
             int listCount) {
    if (!argPresent(argc, argv, name)) return;
    for (int i = 0; i < listCount; i++) lists[i]->mode = mode;
}

void readMatchModes(int argc, char** argv, PDBSelect* s) {
    NameList* all[] = {&s->atomNames, &s->resNames, &s->chainNames, &s->segNames};
    setMode(argc, argv, "-exact", kMatchExact, all, 4);
    setMode(argc, argv, "-regex", kMatchRegex, all, 4);
    setMode(argc, argv, "-glob", kMatchGlob, all, 4);
    struct Single {
        const char* prefix;
        NameList* list;
    };
    const Single singles[] = {
        {"-a", &s->atomNames}, {"-r", &s->resNames}, {"-c", &s->chainNames}, {"-s", &s->segNames}};
    const char* const suffixes[] = {"Exact", "Regex", "Glob"};
    const int modes[] = {kMatchExact, kMatchRegex, kMatchGlob};
    for (const Single& single : singles) {
        NameList* one[] = {single.list};
        for (int m = 0; m < 3; m++) {
            char name[32];
            std::snprintf(name, sizeof name, "%s%s", single.prefix, suffixes[m]);
            setMode(argc, argv, name, modes[m], one, 1);
        }
    }
}

void readSpace(int argc, char** argv, PDBSelect* s) {
    fltArgD(argc, argv, "-within", &s->radius);
    fltArgD(argc, argv, "-near", &s->radius);
    fltArgD(argc, argv, "-x", &s->x0);
    fltArgD(argc, argv, "-y", &s->y0);
    fltArgD(argc, argv, "-z", &s->z0);
    fltArgD(argc, argv, "-x1", &s->x1);
    fltArgD(argc, argv, "-xn", &s->xn);
    fltArgD(argc, argv, "-y1", &s->y1);
    fltArgD(argc, argv, "-yn", &s->yn);
    fltArgD(argc, argv, "-z1", &s->z1);
    fltArgD(argc, argv, "-zn", &s->zn);
}

void readRecordTypes(int argc, char** argv, PDBSelect* s) {
    logArgD(argc, argv, "-useType", &s->useType);
    notLogArgD(argc, argv, "-nouseType", &s->useType);
    logArgD(argc, argv, "-atomrec", &s->atomRec);
    notLogArgD(argc, argv, "-noatomrec", &s->atomRec);
    logArgD(argc, argv, "-hetatmrec", &s->hetAtmRec);
    logArgD(argc, argv, "-hetatm", &s->hetAtmRec);
    notLogArgD(argc, argv, "-nohetatmrec", &s->hetAtmRec);
    notLogArgD(argc, argv, "-nohetatm", &s->hetAtmRec);
    logArgD(argc, argv, "-water", &s->water);
    notLogArgD(argc, argv, "-nowater", &s->water);
}

}  // namespace

void showPDBSelectUsage() {
    static const char* const lines[] = {
        " -res      resID  Single Residue for Selection.\n",
        " -r1       res1   First Residue in Segment.\n",
        " -rN       resN   Last Residue in Segment.\n",
        " -e1       ae1    First Atom Entry in Segment.\n",
        " -eN       aeN    Last Atom Entry in Segment.\n",
        " -atomName aList  Atom Name List  (also -atom).\n",
        " -resName  rList  Res Name List   (Default: *).\n",
        " -chain    cList  Chain Name List (Default: *).\n",
        " -seg      sList  Seg Name List   (Default: *).\n",
        " -id       sID    Selection ID.\n",
        " -inv             Invert Selection.\n",
        "Special Class Selection:\n",
        " -protein        Select Only Canonical Amino Acids.\n",
        "Selection Within Coord Sphere:\n",
        " -near     rad    Selection Radius (Angstroms).\n",
        " -x        x0     Center X Coord (Angstroms).\n",
        " -y        y0     Center Y Coord (Angstroms).\n",
        " -z        z0     Center Z Coord (Angstroms).\n",
        "Selection Within Coord Region (Also -y... -z...) :\n",
        " -x1       x1     Region X1 Limit (Angstroms).\n",
        " -xn       xn     Region XN Limit (Angstroms).\n",
        "Reset Selection; No Other Selection Performed:\n",
        " -clear          Clear Selection for All Atoms.\n",
        " -set            Set Selection for All Atoms.\n",
        "Name Matching Modes:\n",
        " -exact        Match Names Exactly (Default).\n",
        " -regex        Regular Expression Pattern Matching.\n",
        " -glob         Glob-style Pattern Matching, and\n",
        "               with # for numerals in atom names.\n",
        "Selection Based on Record Type:\n",
        " -useType      Use ATOM/HETATM Record Type Selection.\n",
        " -atomrec      Select ATOM records (Default).\n",
        " -noatomrec    No ATOM records.\n",
        " -hetatm       Select HETATM records (Also: -hetatmrec).\n",
        " -nohetatm     No HETATMs (Default, Also: -nohetatmrec).\n",
        " -nowater      No HOH or WAT HETATMs.\n",
    };
    for (const char* line : lines) std::fputs(line, stderr);
}

int getPDBSelectArgs(int argc, char** argv, PDBSelect* s) {
    if (argPresent(argc, argv, "-help")) {
        showPDBSelectUsage();
        return 0;
    }
    intArgD(argc, argv, "-res", &s->resID);
    intArgD(argc, argv, "-r1", &s->res1);
    intArgD(argc, argv, "-rN", &s->resN);
    intArgD(argc, argv, "-e1", &s->ae1);
    intArgD(argc, argv, "-eN", &s->aeN);
    readNameList(argc, argv, "-atom", &s->atomNames);
    readNameList(argc, argv, "-atomName", &s->atomNames);
    readNameList(argc, argv, "-resName", &s->resNames);
    readNameList(argc, argv, "-chain", &s->chainNames);
    readNameList(argc, argv, "-seg", &s->segNames);
    intArgD(argc, argv, "-id", &s->selectID);
    logArgD(argc, argv, "-inv", &s->invert);
    if (argPresent(argc, argv, "-protein")) s->specialClass = kSpecialAminoAcids;
    readSpace(argc, argv, s);
    logArgD(argc, argv, "-clear", &s->clear);
    logArgD(argc, argv, "-set", &s->set);
    readMatchModes(argc, argv, s);
    readRecordTypes(argc, argv, s);
    logArgD(argc, argv, "-dbg", &s->dbg);
    logArgD(argc, argv, "-verb", &s->verb);
    pdbSelectAdjust(s);
    return 0;
}
