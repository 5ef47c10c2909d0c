// Small PDB texts built column by column, a fixture that reads them and
// checks that every test gives back all the memory it took, and independent
// double-precision geometry for checking measured angles.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <string>
#include <utility>

#include "pdb/lookup.h"
#include "pdb/modes.h"
#include "pdb/reader.h"
#include "pdb/structure.h"
#include "support/checks.h"
#include "support/run_dc.h"
#include "util/alloc.h"

struct AtomSpec {
    int serial;
    const char* name;  // columns 13-16 as written, e.g. " CA " or "HD21"
    const char* resName;
    char chain;
    int resID;
    float x = 0, y = 0, z = 0;
    const char* record = "ATOM  ";
    char altLoc = ' ';
    const char* seg = "";
    const char* element = "";
};

// Writes text at the 0-based column, right-justified in width.
inline void put(std::string& line, int column, std::string text, int width = 0) {
    if (width > static_cast<int>(text.size())) text.insert(0, width - text.size(), ' ');
    line.replace(column, text.size(), text);
}

inline std::string atomLine(const AtomSpec& a) {
    std::string line(80, ' ');
    put(line, 0, a.record);
    put(line, 6, std::to_string(a.serial), 5);
    put(line, 12, a.name);
    line[16] = a.altLoc;
    put(line, 17, a.resName);
    line[21] = a.chain;
    put(line, 22, std::to_string(a.resID), 4);
    char xyz[64];
    std::snprintf(xyz, sizeof xyz, "%8.3f%8.3f%8.3f  1.00  0.00", a.x, a.y, a.z);
    put(line, 30, xyz);
    put(line, 72, a.seg);
    put(line, 76, a.element, 2);
    return line + "\n";
}

inline std::string pdbText(std::initializer_list<AtomSpec> atoms) {
    std::string text;
    for (const AtomSpec& a : atoms) text += atomLine(a);
    return text;
}

// One ATOM line per name, serial numbers from serial on; names shorter than
// four characters are written from column 14.
inline std::string residueText(int serial, const char* resName, char chain, int resID,
                               std::initializer_list<std::string> names) {
    std::string text;
    for (std::string name : names) {
        if (name.size() < 4) name = (" " + name + "   ").substr(0, 4);
        text += atomLine({serial++, name.c_str(), resName, chain, resID});
    }
    return text;
}

// Every field the reader fills, on one line.
inline std::string describe(const PDBAtom& a) {
    char text[512];
    std::snprintf(text, sizeof text,
                  "%d|%s|%s|%s|%s|%d|%s|%.3f %.3f %.3f|%.2f %.2f|%s|%s|%s|m%d h%d", a.atomID,
                  a.atomName, a.locID, a.resName, a.chain, a.resID, a.icode, a.x, a.y, a.z,
                  a.occupancy, a.tempFactor, a.seg, a.element, a.charge, a.model, a.isHetAtm);
    return text;
}

class PDBTest : public ::testing::Test {
  protected:
    void SetUp() override {
        resetPDBModes();
        resetAtomLookup();
        pdbNull(&pdb);
        start = bytesInUse();
    }
    void TearDown() override {
        pdbFree(&pdb);
        EXPECT_EQ(bytesInUse(), start) << "allocation balance";
        resetPDBModes();
    }
    static std::string path(const char* name = "in.pdb") {
        static const std::string dir = scratchDir("pdb");
        return dir + "/" + name;
    }
    int read(const std::string& text, const PDBSelect* selection = nullptr,
             PDBData* into = nullptr) {
        writeFile(path(), text);
        return readPDB(path().c_str(), into ? into : &pdb, selection);
    }
    // hafp_a.pdb with every occurrence of each first text replaced by the second.
    int readShared(std::initializer_list<std::pair<std::string, std::string>> edits = {}) {
        std::string text = readFile(DC_SHARED_DATA "/hafp_a.pdb");
        for (const auto& [from, to] : edits) {
            for (size_t at = 0; (at = text.find(from, at)) != std::string::npos;) {
                text.replace(at, from.size(), to);
            }
        }
        return read(text);
    }

    PDBData pdb;
    int64_t start = 0;
};

// Reference geometry in double precision: the atan2 form of the dihedral
// (IUPAC sign) and the plain bend angle, in degrees.
constexpr double kDegrees = 57.29577951308232;

struct V3 {
    double x, y, z;
    V3 operator-(V3 b) const { return {x - b.x, y - b.y, z - b.z}; }
    V3 operator+(V3 b) const { return {x + b.x, y + b.y, z + b.z}; }
    V3 operator*(double s) const { return {s * x, s * y, s * z}; }
};

inline double dot(V3 a, V3 b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline V3 cross(V3 a, V3 b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline V3 at(const PDBAtom* a) { return {a->x, a->y, a->z}; }

inline double torsion(V3 p1, V3 p2, V3 p3, V3 p4) {
    V3 b1 = p2 - p1, b2 = p3 - p2, b3 = p4 - p3;
    double y = std::sqrt(dot(b2, b2)) * dot(b1, cross(b2, b3));
    return std::atan2(y, dot(cross(b1, b2), cross(b2, b3))) * kDegrees;
}
inline double torsion(const PDBAtom* a, const PDBAtom* b, const PDBAtom* c, const PDBAtom* d) {
    return torsion(at(a), at(b), at(c), at(d));
}
inline double bend(V3 a, V3 b, V3 c) {
    V3 u = a - b, w = c - b;
    return std::acos(dot(u, w) / std::sqrt(dot(u, u) * dot(w, w))) * kDegrees;
}
