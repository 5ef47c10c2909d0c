// Shared pieces of the coupling-table tests: the dipolar formula worked out
// independently, tables and structures read from scratch files, and the
// allocation balance.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <string>

#include "dc/dtab.h"
#include "dc/read_dc.h"
#include "pdb/modes.h"
#include "pdb/reader.h"
#include "pdb/structure.h"
#include "support/run_dc.h"
#include "util/alloc.h"

namespace dctest {

constexpr float kK = 3.356809e-12f;
constexpr float kGammaH = 2.6752e8f;
constexpr float kGammaC = 6.7283e7f;
constexpr float kGammaN = -2.7116e7f;

// K gI gJ / r^3 in single precision, the reciprocal of r^3 taken in double.
inline float formulaDI(float gammaI, float gammaJ, float r) {
    float cube = r * r * r;
    return ((gammaI * kK) * gammaJ) * static_cast<float>(1.0 / static_cast<double>(cube));
}

inline int64_t inUse() {
    int64_t bytes;
    getMemUsed(&bytes, nullptr);
    return bytes;
}

// Resets the structure library's switches and remembers the balance; the
// test fails when it does not return to it.
class CouplingTest : public testing::Test {
  protected:
    void SetUp() override {
        resetPDBModes();
        setPDBWarn(1);
        start_ = inUse();
        dTabNull(&table);
        for (PDBData& p : pdbs) pdbNull(&p);
    }
    void TearDown() override {
        dTabFree(&table);
        for (PDBData& p : pdbs) pdbFree(&p);
        EXPECT_EQ(inUse(), start_);
    }

    // Writes text as a table file in a scratch folder and reads it.
    int readText(const std::string& text, int keepDI = 0) {
        std::string path = scratchDir("coupling") + "/in.tab";
        writeFile(path, text);
        return readDC(path.c_str(), &table, keepDI);
    }
    // Reads structure slot k from a file, or from PDB text written to a file.
    PDBData* load(int k, const std::string& pathOrText, bool isText = false) {
        std::string path = pathOrText;
        if (isText) {
            path = scratchDir("structure") + "/in.pdb";
            writeFile(path, pathOrText);
        }
        EXPECT_EQ(readPDB(path.c_str(), &pdbs[k], nullptr), 0) << path;
        return &pdbs[k];
    }

    DTab table;
    PDBData pdbs[3];

  private:
    int64_t start_ = 0;
};

inline const std::string kRealTable = DC_SHARED_DATA "/hafp_nh_caha.tab";
inline const std::string kModelA = DC_SHARED_DATA "/hafp_a.pdb";

}  // namespace dctest
