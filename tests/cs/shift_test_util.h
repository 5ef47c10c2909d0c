// The fixture of the shift-table tests: a null table, no surfaces, and a
// check that every test gives back all the memory it took.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "cs/read_cs.h"
#include "cs/surface.h"
#include "pdb/lookup.h"
#include "pdb/modes.h"
#include "pdb/reader.h"
#include "pdb/structure.h"
#include "support/checks.h"
#include "support/run_dc.h"

namespace cstest {

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
        EXPECT_EQ(bytesInUse(), start_) << "allocation balance";
    }
    // Writes text as a shift table in a scratch folder and reads it.
    int readText(const std::string& text) {
        path = scratchDir("shift_table") + "/in.tab";
        writeFile(path, text);
        return readCS(path.c_str(), &table);
    }
    CSValue& row(int i) { return table.rows[i]; }

    CSTab table;
    PDBData pdb;
    std::string path;

  private:
    int64_t start_ = 0;
};

}  // namespace cstest
