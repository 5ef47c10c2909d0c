#include "pdb/writer.h"

#include <strings.h>

#include <cstdio>
#include <cstring>

#include "pdb/modes.h"
#include "pdb/select.h"

namespace {

char firstOrBlank(const char* text) { return text[0] ? text[0] : ' '; }

// The atom line: short names start one column later than four-letter names.
int formatAtom(char* text, std::size_t size, const PDBAtom* atom, const char* end) {
    const char* record = atom->isHetAtm ? "HETATM" : "ATOM  ";
    const char* format =
        std::strlen(atom->atomName) < 4
            ? "%s%5d  %-3s%1c%-4s%1c%4d%1c   % 8.3f% 8.3f% 8.3f%6.2f%6.2f      %4s%2s%2s%s"
            : "%s%5d %-4s%1c%-4s%1c%4d%1c   % 8.3f% 8.3f% 8.3f%6.2f%6.2f      %4s%2s%2s%s";
    return std::snprintf(text, size, format, record, atom->atomID, atom->atomName,
                         firstOrBlank(atom->locID), atom->resName, firstOrBlank(atom->chain),
                         atom->resID, firstOrBlank(atom->icode), atom->x, atom->y, atom->z,
                         atom->occupancy, atom->tempFactor, atom->seg, atom->element, atom->charge,
                         end);
}

void writeHeader(FILE* out, const char* remark) {
    if (remark && strcasecmp(remark, "None") == 0) return;
    std::fprintf(out, "REMARK TESSERA %s Rev %s\n", DC_PDB_LIB_VERSION, DC_REVISION);
    if (remark) std::fprintf(out, "REMARK %s\n", remark);
}

void writeAtoms(FILE* out, const PDBData* pdb, const PDBSelect* selection, bool framed) {
    int lastModel = 0;
    bool written = false, sinceModel = false;
    char line[512];
    for (int i = 0; i < pdb->atomCount; i++) {
        const PDBAtom* atom = pdb->atoms + i;
        if (!pdbSelectTest(i, atom, selection)) continue;
        if (framed && (!written || atom->model != lastModel)) {
            if (sinceModel) std::fprintf(out, "ENDMDL\n");
            std::fprintf(out, "MODEL     %4d\n", atom->model);
            sinceModel = false;
        }
        formatAtom(line, sizeof line, atom, "\n");
        std::fputs(line, out);
        lastModel = atom->model;
        written = sinceModel = true;
    }
}

}  // namespace

int getPDBAtomStr(const PDBAtom* atom, char* text) { return formatAtom(text, 512, atom, ""); }

int writePDB(const char* path, const PDBData* pdb, const PDBSelect* selection, int endFlag,
             const char* remark) {
    if (!pdb) return 0;
    bool useStdout = !path || !path[0];
    FILE* out = useStdout ? stdout : std::fopen(path, "w");
    if (!out) {
        std::fprintf(stderr, "PDB Error opening PDB file %s\n", path);
        return 1;
    }
    writeHeader(out, remark);
    bool framed = getPDBUniqMode() && pdb->modelCount > 1;
    writeAtoms(out, pdb, selection, framed);
    if (framed) std::fprintf(out, "ENDMDL\n");
    if (endFlag) std::fprintf(out, "END\n");
    if (!useStdout) std::fclose(out);
    return 0;
}
