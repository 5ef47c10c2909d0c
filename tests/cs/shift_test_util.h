// Shared pieces of the shift-table tests: a fixture that starts from a null
// table and checks that every test gives back all the memory it took, shift
// tables and structures written to scratch files.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <string>

#include "cs/cs_tab.h"
#include "cs/read_cs.h"
#include "cs/surface.h"
#include "cs/surface_list.h"
#include "pdb/lookup.h"
#include "pdb/modes.h"
#include "pdb/reader.h"
#include "pdb/structure.h"
#include "support/checks.h"
#include "support/run_dc.h"

namespace cstest {

// A surface of a 2 x 2 grid over the whole phi/psi plane: cell 0 holds the
// helix (-57, -47), cell 2 the sheet (-119, 113), cell 3 the coil (84, 1).
struct GridSpec {
    const char* name;
    int kind;
    float value[4], density[4], dev[4];
    float bound, threshold;
};

inline float* grid(const float (&cells)[4]) {
    float* values = fltMalloc64("cs", 4);
    for (int k = 0; k < 4; k++) values[k] = cells[k];
    return values;
}

// Makes the loaded surface list hold these surfaces, in order.
inline void loadSurfaces(std::initializer_list<GridSpec> specs) {
    ASSERT_EQ(surfListAlloc(static_cast<int>(specs.size())), 0);
    for (const GridSpec& spec : specs) {
        Surface s;
        surfNull(&s);
        copyName(s.name, spec.name);
        s.kind = spec.kind;
        s.nx = s.ny = 2;
        s.xmin = s.ymin = -180.0f;
        s.xmax = s.ymax = 180.0f;
        s.bound = spec.bound;
        s.threshold = spec.threshold;
        s.value = grid(spec.value);
        if (spec.kind == kSurfShiftKind) {
            s.density = grid(spec.density);
            s.dev = grid(spec.dev);
        }
        ASSERT_EQ(surfListAdd(&s), 0);
    }
}

class ShiftTableTest : public testing::Test {
  protected:
    void SetUp() override {
        surfFree();
        resetPDBModes();
        resetAtomLookup();
        setPDBWarn(1);
        start_ = bytesInUse();
        csTabNull(&table);
        pdbNull(&pdb);
    }
    void TearDown() override {
        csTabFree(&table);
        pdbFree(&pdb);
        surfFree();
        EXPECT_EQ(table.rows, nullptr);
        EXPECT_EQ(table.ignoreChain, 1);
        EXPECT_EQ(table.ignoreSeg, 1);
        EXPECT_EQ(bytesInUse(), start_) << "allocation balance";
        resetPDBModes();
    }

    // Writes text as a shift table in a scratch folder and reads it.
    int readText(const std::string& text) {
        path = scratchDir("shift_table") + "/in.tab";
        writeFile(path, text);
        return readCS(path.c_str(), &table);
    }
    void loadPDB(const std::string& text) {
        std::string file = scratchDir("shift_structure") + "/in.pdb";
        writeFile(file, text);
        ASSERT_EQ(readPDB(file.c_str(), &pdb, nullptr), 0);
    }
    CSValue& row(int i) { return table.rows[i]; }

    CSTab table;
    PDBData pdb;
    std::string path;

  private:
    int64_t start_ = 0;
};

}  // namespace cstest
