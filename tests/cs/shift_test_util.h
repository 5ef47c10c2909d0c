// Shared pieces of the shift-table tests: a fixture that starts from a null
// table and checks that every test gives back all the memory it took, shift
// tables and structures written to scratch files.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "cs/cs_tab.h"
#include "cs/read_cs.h"
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
