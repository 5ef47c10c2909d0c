#include "pdb/reader.h"

#include <strings.h>
#include <sys/stat.h>

#include <cmath>
#include <cstdio>
#include <cstring>

#include "pdb/columns.h"
#include "pdb/index.h"
#include "pdb/lists.h"
#include "pdb/modes.h"
#include "pdb/records.h"
#include "pdb/select.h"
#include "pdb/structure.h"
#include "util/growstr.h"
#include "util/token.h"

namespace {

struct ReadCounts {
    const char* source;  // the file name in messages
    int lineNumber = 0;  // of the line being read, from 1
    int blockAtoms = 0;
    int model = 0;
    int lineCount = 0;
    int stored = 0;
    bool hetatmSeen = false;
};

// The record name: the line's first white-space-delimited word, looked at in
// place, so that a line of any length costs no copy and leaves nothing behind.
struct Word {
    const char* start;
    std::size_t length;
};

Word firstWord(const char* line) {
    while (*line && isWhiteChar(*line)) line++;
    const char* end = line;
    while (*end && !isWhiteChar(*end)) end++;
    return {line, static_cast<std::size_t>(end - line)};
}

bool wordIs(const Word& word, const char* keyword) {
    return word.length == std::strlen(keyword) &&
           strncasecmp(word.start, keyword, word.length) == 0;
}

bool isAtomRecord(const Word& word, const PDBSelect* selection, bool* hetatm) {
    *hetatm = wordIs(word, "HETATM");
    if (*hetatm) return selection && selection->hetAtmRec;
    return wordIs(word, "ATOM");
}

// One atom line and its length, so that no field has to measure the line again.
struct Line {
    const char* text;
    int length;

    void field(char* destination, int first, int last) const {
        columnText(destination, text, length, first, last);
    }
    int intField(int first, int last) const { return columnInt(text, length, first, last); }
    float realField(int first, int last) const { return columnReal(text, length, first, last); }
};

// Fills the identifying fields the selection test needs.
void readIdentity(PDBAtom* atom, const Line& line) {
    atom->resID = line.intField(22, 25);
    line.field(atom->atomName, 12, 15);
    line.field(atom->resName, 17, 20);
    line.field(atom->locID, 16, 16);
    line.field(atom->chain, 21, 21);
    line.field(atom->seg, 72, 75);
    line.field(atom->icode, 26, 26);
}

// A coordinate that is not a finite number would turn every fit that uses
// the atom into not-a-number: such a line stops the read. False after the
// message.
bool readCoordinate(float* value, const Line& line, int first, int last, const ReadCounts& counts) {
    *value = line.realField(first, last);
    if (std::isfinite(*value)) return true;
    char text[64];
    line.field(text, first, last);
    std::fprintf(stderr, "PDB Error: bad number %s in line %d of %s.\n", text, counts.lineNumber,
                 counts.source);
    return false;
}

// False after a message when a coordinate cannot be right.
bool readRest(PDBAtom* atom, const Line& line, const ReadCounts& counts) {
    atom->atomID = getPDBUniqMode() ? counts.lineCount : line.intField(6, 10);
    atom->model = counts.model;
    if (!readCoordinate(&atom->x, line, 30, 37, counts) ||
        !readCoordinate(&atom->y, line, 38, 45, counts) ||
        !readCoordinate(&atom->z, line, 46, 53, counts)) {
        return false;
    }
    atom->occupancy = line.realField(54, 59);
    atom->tempFactor = line.realField(60, 65);
    line.field(atom->element, 76, 77);
    line.field(atom->charge, 78, 79);
    return true;
}

// Handles one atom line, read straight into the next slot of the atom list
// (given back when the selection rejects the atom); false when the list
// cannot grow or the line holds a coordinate that cannot be right.
bool readAtomLine(PDBData* pdb, const Line& line, bool hetatm, const PDBSelect* selection,
                  ReadCounts* counts) {
    if (pdb->firstAtom < 0) pdb->firstAtom = counts->stored;
    if (counts->stored > pdb->lastAtom) pdb->lastAtom = counts->stored;
    // This mark is never cleared once set, so every atom after the first
    // HETATM line is marked too.
    if (hetatm) counts->hetatmSeen = true;
    if (counts->blockAtoms == 0) counts->model++;
    counts->blockAtoms++;
    counts->lineCount++;
    PDBAtom* atom = getNextAtom(pdb);
    if (!atom) return false;
    atom->isHetAtm = counts->hetatmSeen ? 1 : 0;
    readIdentity(atom, line);
    if (!pdbSelectTest(counts->stored, atom, selection)) {
        pdb->atomCount--;
        return true;
    }
    if (!readRest(atom, line, *counts)) return false;
    keepResidueRange(pdb, atom, counts->stored);
    counts->stored++;
    return true;
}

// Reads every line of the stream; false when memory runs out.
bool readLines(FILE* stream, PDBData* pdb, const PDBSelect* selection, ReadCounts* counts) {
    char fixed[1024], chunk[1024];
    char* line;
    int capacity = sizeof fixed;
    strAllocInit(&line, fixed, sizeof fixed);
    bool ok = true;
    while (ok && fgetsAlloc(&line, &capacity, stream, chunk, sizeof chunk, fixed, sizeof fixed)) {
        counts->lineNumber++;
        Word word = firstWord(line);
        if (word.length == 0) continue;
        int length = static_cast<int>(std::strlen(line));
        if (length > 0 && line[length - 1] == '\n') line[--length] = '\0';
        if (wordIs(word, "END") || wordIs(word, "ENDMDL")) {
            counts->blockAtoms = 0;
            continue;
        }
        bool hetatm;
        if (!isAtomRecord(word, selection, &hetatm)) continue;
        ok = readAtomLine(pdb, Line{line, length}, hetatm, selection, counts);
    }
    strAllocFree(&line, fixed, sizeof fixed, &capacity);
    return ok;
}

// A directory opens for reading on some systems but holds no lines: it is
// refused like a file that cannot be opened.
FILE* openRegularFile(const char* path) {
    struct stat info;
    if (stat(path, &info) == 0 && S_ISDIR(info.st_mode)) return nullptr;
    return std::fopen(path, "r");
}

}  // namespace

int readPDB(const char* path, PDBData* pdb, const PDBSelect* selection) {
    pdbNull(pdb);
    if (pdbInit(pdb) != 0) {
        std::fprintf(stderr, "PDB Error creating object tables.\n");
        return 1;
    }
    bool useStdin = !path || !path[0];
    FILE* stream = useStdin ? stdin : openRegularFile(path);
    if (!stream) {
        std::fprintf(stderr, "PDB Error opening PDB file %s\n", path);
        return 1;
    }
    ReadCounts counts{useStdin ? "(stdin)" : path};
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
