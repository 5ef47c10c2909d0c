#include "pdb/reader.h"

#include <strings.h>

#include <cstdio>
#include <cstring>

#include "pdb/index.h"
#include "pdb/lists.h"
#include "pdb/modes.h"
#include "pdb/names.h"
#include "pdb/records.h"
#include "pdb/select.h"
#include "pdb/structure.h"
#include "util/growstr.h"
#include "util/number_text.h"
#include "util/token.h"

namespace {

struct ReadCounts {
    int blockAtoms = 0;
    int model = 0;
    int lineCount = 0;
    int stored = 0;
};

bool isAtomRecord(const char* word, const PDBSelect* selection, bool* hetatm) {
    *hetatm = strcasecmp(word, "HETATM") == 0;
    if (*hetatm) return selection && selection->hetAtmRec;
    return strcasecmp(word, "ATOM") == 0;
}

// Fills the identifying fields the selection test needs.
void readIdentity(PDBAtom* atom, const char* line) {
    char field[kNameSize];
    getSubStr0(field, line, 22, 25);
    atom->resID = Atoi2(field);
    getSubStr0(atom->atomName, line, 12, 15);
    getSubStr0(atom->resName, line, 17, 20);
    getSubStr0(atom->locID, line, 16, 16);
    getSubStr0(atom->chain, line, 21, 21);
    getSubStr0(atom->seg, line, 72, 75);
    getSubStr0(atom->icode, line, 26, 26);
}

float realField(const char* line, int first, int last) {
    char field[kNameSize];
    getSubStr0(field, line, first, last);
    return Atof2(field);
}

void readRest(PDBAtom* atom, const char* line, const ReadCounts& counts) {
    if (getPDBUniqMode()) {
        atom->atomID = counts.lineCount;
    } else {
        char field[kNameSize];
        getSubStr0(field, line, 6, 10);
        atom->atomID = Atoi2(field);
    }
    atom->model = counts.model;
    atom->x = realField(line, 30, 37);
    atom->y = realField(line, 38, 45);
    atom->z = realField(line, 46, 53);
    atom->occupancy = realField(line, 54, 59);
    atom->tempFactor = realField(line, 60, 65);
    getSubStr0(atom->element, line, 76, 77);
    getSubStr0(atom->charge, line, 78, 79);
}

// Handles one atom line; false when the atom list cannot grow.
bool readAtomLine(PDBData* pdb, PDBAtom* work, const char* line, bool hetatm,
                  const PDBSelect* selection, ReadCounts* counts) {
    if (pdb->firstAtom < 0) pdb->firstAtom = counts->stored;
    if (counts->stored > pdb->lastAtom) pdb->lastAtom = counts->stored;
    // The working record is reused and this mark is never cleared, so every
    // atom after the first HETATM line is marked too.
    if (hetatm) work->isHetAtm = 1;
    if (counts->blockAtoms == 0) counts->model++;
    counts->blockAtoms++;
    counts->lineCount++;
    readIdentity(work, line);
    if (!pdbSelectTest(counts->stored, work, selection)) return true;
    readRest(work, line, *counts);
    PDBAtom* atom = getNextAtom(pdb);
    if (!atom) return false;
    setAtomInfo(pdb, atom, work, counts->stored);
    counts->stored++;
    return true;
}

// Reads every line of the stream; false when memory runs out.
bool readLines(FILE* stream, PDBData* pdb, const PDBSelect* selection, ReadCounts* counts) {
    PDBAtom work;
    atomNull(&work);
    char fixed[1024], chunk[1024];
    char* line;
    int capacity = sizeof fixed;
    strAllocInit(&line, fixed, sizeof fixed);
    bool ok = true;
    while (ok && fgetsAlloc(&line, &capacity, stream, chunk, sizeof chunk, fixed, sizeof fixed)) {
        const char* word = getToken(1, line);
        if (badToken()) continue;
        std::size_t length = std::strlen(line);
        if (length > 0 && line[length - 1] == '\n') line[length - 1] = '\0';
        if (strcasecmp(word, "END") == 0 || strcasecmp(word, "ENDMDL") == 0) {
            counts->blockAtoms = 0;
            continue;
        }
        bool hetatm;
        if (!isAtomRecord(word, selection, &hetatm)) continue;
        ok = readAtomLine(pdb, &work, line, hetatm, selection, counts);
    }
    strAllocFree(&line, fixed, sizeof fixed, &capacity);
    return ok;
}

}  // namespace

int readPDB(const char* path, PDBData* pdb, const PDBSelect* selection) {
    pdbNull(pdb);
    if (pdbInit(pdb) != 0) {
        std::fprintf(stderr, "PDB Error creating object tables.\n");
        return 1;
    }
    bool useStdin = !path || !path[0];
    FILE* stream = useStdin ? stdin : std::fopen(path, "r");
    if (!stream) {
        std::fprintf(stderr, "PDB Error opening PDB file %s\n", path);
        return 1;
    }
    ReadCounts counts;
    bool ok = readLines(stream, pdb, selection, &counts);
    if (!useStdin) std::fclose(stream);
    if (!ok) return 1;
    pdb->modelCount = counts.model;
    int status = indexPDB(pdb);
    if (status != 0) {
        std::fprintf(stderr, "PDB Error Indexing PDB File %s\n", useStdin ? "(stdin)" : path);
    }
    return status;
}
