#include "pdb/chi.h"

#include <cstdio>

#include "pdb/lookup.h"
#include "pdb/measure_atoms.h"
#include "pdb/residue_types.h"

namespace {

constexpr const char* kBackbone = "N HN HA C O";
constexpr const char* kBetaSide = "HB1 HB2 CA N HN HA C O";

constexpr ChiDef kChiTable[kChiTableRows + 1] = {
    {1, "ALA", 1, {"N", "CA", "CB", "HB1"}, 0, kBackbone},
    {2, "ARG", 1, {"N", "CA", "CB", "CG"}, 0, kBackbone},
    {2, "ARG", 2, {"CA", "CB", "CG", "CD"}, 0, kBetaSide},
    {2, "ARG", 3, {"CB", "CG", "CD", "NE"}, 0, "HG1 HG2 CB HB1 HB2 CA N HN HA C O"},
    {2, "ARG", 4, {"CG", "CD", "NE", "CZ"}, 1, "HE CZ NH1 HH11 HH12 NH2 HH21 HH22"},
    {2, "ARG", 5, {"CD", "NE", "CZ", "NH1"}, 1, "NH1 HH11 HH12 NH2 HH21 HH22"},
    {2, "ARG", 6, {"NE", "CZ", "NH1", "HH11"}, 1, "HH11 HH12"},
    {2, "ARG", 7, {"NE", "CZ", "NH2", "HH21"}, 1, "HH21 HH22"},
    {3, "ASN", 1, {"N", "CA", "CB", "CG"}, 0, kBackbone},
    {3, "ASN", 2, {"CA", "CB", "CG", "OD1"}, 1, "OD1 ND2 HD21 HD22"},
    {3, "ASN", 3, {"CB", "CG", "ND2", "HD21"}, 1, "HD21 HD22"},
    {4, "ASP", 1, {"N", "CA", "CB", "CG"}, 0, kBackbone},
    {4, "ASP", 2, {"CA", "CB", "CG", "OD1"}, 0, kBetaSide},
    {5, "CYS", 1, {"N", "CA", "CB", "SG"}, 0, kBackbone},
    {5, "CYS", 2, {"CA", "CB", "SG", "HG"}, 1, "HG"},
    {6, "GLN", 1, {"N", "CA", "CB", "CG"}, 0, kBackbone},
    {6, "GLN", 2, {"CA", "CB", "CG", "CD"}, 0, kBetaSide},
    {6, "GLN", 3, {"CB", "CG", "CD", "OE1"}, 1, "OE1 NE2 HE21 HE22"},
    {6, "GLN", 4, {"CG", "CD", "NE2", "HE21"}, 1, "HE21 HE22"},
    {7, "GLU", 1, {"N", "CA", "CB", "CG"}, 0, kBackbone},
    {7, "GLU", 2, {"CA", "CB", "CG", "CD"}, 0, kBetaSide},
    {7, "GLU", 3, {"CB", "CG", "CD", "OE1"}, 0, kBetaSide},
    {9, "HIS", 1, {"N", "CA", "CB", "CG"}, 0, kBackbone},
    {9, "HIS", 2, {"CA", "CB", "CG", "ND1"}, 0, kBetaSide},
    {10, "ILE", 1, {"N", "CA", "CB", "CG1"}, 0, kBackbone},
    {10, "ILE", 2, {"CA", "CB", "CG1", "CD|CD1"}, 1, "CD|CD1 HD1|HD11 HD2|HD12 HD3|HD13"},
    {10, "ILE", 3, {"CB", "CG1", "CD|CD1", "HD1|HD11"}, 1, "HD1|HD11 HD2|HD12 HD3|HD13"},
    {11, "LEU", 1, {"N", "CA", "CB", "CG"}, 0, kBackbone},
    {11, "LEU", 2, {"CA", "CB", "CG", "CD1"}, 0, kBetaSide},
    {11, "LEU", 3, {"CB", "CG", "CD1", "HD11"}, 1, "HD11 HD12 HD13"},
    {11, "LEU", 4, {"CB", "CG", "CD2", "HD21"}, 1, "HD21 HD22 HD23"},
    {12, "LYS", 1, {"N", "CA", "CB", "CG"}, 0, kBackbone},
    {12, "LYS", 2, {"CA", "CB", "CG", "CD"}, 0, kBetaSide},
    {12, "LYS", 3, {"CB", "CG", "CD", "CE"}, 0, "HG1 HG2 CG HB1 HB2 CA N HN HA C O"},
    {12, "LYS", 4, {"CG", "CD", "CE", "NZ"}, 1, "HE1 HE2 NZ HZ1 HZ2 HZ3"},
    {12, "LYS", 5, {"CD", "CE", "NZ", "HZ1"}, 1, "HZ1 HZ2 HZ3"},
    {13, "MET", 1, {"N", "CA", "CB", "CG"}, 0, kBackbone},
    {13, "MET", 2, {"CA", "CB", "CG", "SD"}, 0, kBetaSide},
    {13, "MET", 3, {"CB", "CG", "SD", "CE"}, 1, "CE HE1 HE2 HE3"},
    {13, "MET", 4, {"CG", "SD", "CE", "HE1"}, 1, "HE1 HE2 HE3"},
    {14, "PHE", 1, {"N", "CA", "CB", "CG"}, 0, kBackbone},
    {14, "PHE", 2, {"CA", "CB", "CG", "CD1"}, 0, kBetaSide},
    {15, "PRO", 1, {"N", "CA", "CB", "CG"}, 1, "HB1 HB2 CG HG1 HG2"},
    {15, "PRO", 2, {"CA", "CB", "CG", "CD"}, 1, "HG1 HG2 CD HD2 HD1"},
    {15, "PRO", 3, {"CB", "CG", "CD", "N"}, 1, "HD2 HD1"},
    {15, "PRO", 4, {"CG", "CD", "N", "CA"}, 1, "HA CA"},
    {16, "SER", 1, {"N", "CA", "CB", "OG"}, 0, kBackbone},
    {16, "SER", 2, {"CA", "CB", "OG", "HG"}, 1, "HG"},
    {17, "THR", 1, {"N", "CA", "CB", "OG1"}, 0, kBackbone},
    {17, "THR", 2, {"CA", "CB", "OG1", "HG1"}, 1, "HG1"},
    {17, "THR", 3, {"CA", "CB", "CG2", "HG21"}, 1, "HG21 HG22 HG23"},
    {18, "TRP", 1, {"N", "CA", "CB", "CG"}, 0, kBackbone},
    {18, "TRP", 2, {"CA", "CB", "CG", "CD1"}, 0, kBetaSide},
    {19, "TYR", 1, {"N", "CA", "CB", "CG"}, 0, kBackbone},
    {19, "TYR", 2, {"CA", "CB", "CG", "CD1"}, 0, kBetaSide},
    {20, "VAL", 1, {"N", "CA", "CB", "CG1"}, 0, kBackbone},
    {20, "VAL", 2, {"CA", "CB", "CG1", "HG11"}, 1, "HG11 HG12 HG13"},
    {20, "VAL", 3, {"CA", "CB", "CG2", "HG21"}, 1, "HG21 HG22 HG23"},
    {0, "", 0, {"", "", "", ""}, 0, ""},
};

struct ChiMeasure {
    const PDBData* pdb;
    int resID;
    const char* chain;
    const char* seg;
    float* values;
    const ChiDef** rows;
    int taken = 0;
    int mask = 0;

    // Measures one row into the next value slot; slots past the last are
    // not written, so a long wanted list cannot overrun the outputs.
    void take(const ChiDef& row) {
        if (taken >= kMaxChiValues) return;
        PDBAtom* atoms[4];
        for (int k = 0; k < 4; k++) atoms[k] = findAtomN(pdb, resID, row.atoms[k], chain, seg);
        if (rows) rows[taken] = &row;
        values[taken++] = pdbDihedral(atoms[0], atoms[1], atoms[2], atoms[3]);
        if (atoms[0] && atoms[1] && atoms[2] && atoms[3]) mask |= 1 << (row.chi - 1);
    }
};

}  // namespace

const ChiDef* chiTable() { return kChiTable; }

int getPDBChi(const PDBData* pdb, int resID, const char* chain, const char* seg, float* values,
              const ChiDef** rows, const int* wanted, int* count) {
    if (!values || !count) return 0;
    for (int i = 0; i < kMaxChiValues; i++) values[i] = kAngleUndefined;
    const PDBResidue* residue = findRes(pdb, resID, chain, seg);
    const ResType* type = residue ? residue->resType : nullptr;
    if (!type || type->type == 0) {
        *count = 0;
        return 0;
    }
    ChiMeasure measure{pdb, resID, chain, seg, values, rows};
    if (*count < 0) {
        for (const ChiDef* row = kChiTable; row->type != 0; row++) {
            if (row->type == type->type) measure.take(*row);
        }
    } else {
        for (int w = 0; w < *count && wanted; w++) {
            for (const ChiDef* row = kChiTable; row->type != 0; row++) {
                if (row->type == type->type && row->chi == wanted[w]) measure.take(*row);
            }
        }
    }
    *count = measure.taken;
    return measure.mask;
}

int showPDBChiDef() {
    for (int i = 0; kChiTable[i].type != 0; i++) {
        const ChiDef& row = kChiTable[i];
        if (row.chi == 1 && i > 0) std::fprintf(stderr, "\n");
        std::fprintf(stderr, " %2d. %s Chi%d %6s %6s %6s %6s\n", i + 1, row.resName, row.chi,
                     row.atoms[0], row.atoms[1], row.atoms[2], row.atoms[3]);
    }
    return 0;
}
