#include "pdb/measures.h"

#include <gtest/gtest.h>

#include <cmath>

#include "pdb/records.h"
#include "pdb/structure.h"

namespace {

PDBAtom makeAtom(const char* name, int het = 0, const char* element = "") {
    PDBAtom atom;
    atomNull(&atom);
    copyName(atom.atomName, name);
    copyName(atom.element, element);
    atom.isHetAtm = het;
    return atom;
}

TEST(Measures, CentreExtentAndGyrationOfMarkedAtoms) {
    PDBAtom atoms[5];
    const float xyz[5][3] = {{0, 0, 0}, {2, 0, 0}, {0, 4, 0}, {2, 4, 6}, {100, -100, 50}};
    for (int i = 0; i < 5; i++) {
        atoms[i] = makeAtom("CA");
        atoms[i].x = xyz[i][0];
        atoms[i].y = xyz[i][1];
        atoms[i].z = xyz[i][2];
        atoms[i].selected = i < 4 ? 1 : 2;
    }
    PDBData pdb;
    pdbNull(&pdb);
    pdb.atoms = atoms;
    pdb.atomCount = 5;

    float x, y, z;
    ASSERT_EQ(getPDBCenter(&pdb, 1, &x, &y, &z), 4);
    EXPECT_FLOAT_EQ(x, 1.0f);
    EXPECT_FLOAT_EQ(y, 2.0f);
    EXPECT_FLOAT_EQ(z, 1.5f);
    float lo[3], hi[3];
    ASSERT_EQ(getPDBExtent(&pdb, 1, lo, hi, lo + 1, hi + 1, lo + 2, hi + 2), 4);
    EXPECT_FLOAT_EQ(lo[0], 0.0f);
    EXPECT_FLOAT_EQ(hi[1], 4.0f);
    EXPECT_FLOAT_EQ(hi[2], 6.0f);
    // Squared distances from (1, 2, 1.5): 7.25 three times and 25.25, mean 11.75.
    float radius;
    ASSERT_EQ(getPDBRadGyr(&pdb, 1, &radius), 4);
    EXPECT_FLOAT_EQ(radius, static_cast<float>(std::sqrt(11.75)));
    EXPECT_EQ(getPDBCenter(&pdb, 7, &x, &y, &z), 0);
    EXPECT_FLOAT_EQ(x, 0.0f);
    EXPECT_EQ(getPDBRadGyr(&pdb, 7, &radius), 0);

    EXPECT_FLOAT_EQ(getPDBMass(&pdb, 1), 48.0f);
    EXPECT_FLOAT_EQ(atoms[0].mass, 12.0f);
    atoms[0].mass = 100.0f;  // a computed mass is kept
    EXPECT_FLOAT_EQ(getPDBMass(&pdb, 1), 136.0f);
}

TEST(Measures, MassesByNameOrByElementOfHetAtoms) {
    struct Case {
        PDBAtom atom;
        float mass;
        float radius;
    } cases[] = {
        {makeAtom("CA"), 12, 1.7f},          {makeAtom("1HB"), 1, 1.2f},
        {makeAtom("N"), 14, 1.55f},          {makeAtom("OD1"), 16, 1.52f},
        {makeAtom("SG"), 32, 1.8f},          {makeAtom("P"), 31, 1.8f},
        {makeAtom("FE"), 1, 2.0f},           {makeAtom("ca"), 1, 2.0f},
        {makeAtom("FE", 0, "FE"), 1, 2.0f},  {makeAtom("FE", 1, "FE"), 56, 2.0f},
        {makeAtom("ZN", 1, "zn"), 65, 2.0f}, {makeAtom("X", 1, "XX"), 1, 2.0f},
        {makeAtom("C1", 1, "C"), 12, 2.0f},  {makeAtom("K", 1, "k"), 39, 2.0f},
        {makeAtom("Q", 1, "Q"), 1, 2.0f},    {makeAtom("HOH", 1, "O"), 18, 1.5f},
        {makeAtom("WAT", 1, "O"), 18, 1.5f}, {makeAtom("wat", 1, "O"), 16, 2.0f},
        {makeAtom("OW", 1, ""), 16, 1.52f},  {makeAtom("BR", 1, "BR"), 80, 2.0f},
    };
    for (const Case& c : cases) {
        EXPECT_FLOAT_EQ(getPDBAtomMass(&c.atom), c.mass) << c.atom.atomName << c.atom.element;
        EXPECT_FLOAT_EQ(getPDBVDWRadius(&c.atom), c.radius) << c.atom.atomName;
    }
}

}  // namespace
