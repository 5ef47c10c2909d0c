// Surface files: the writer's layout, the directory loader's list, lookups,
// byte-swapped and refused files; the random-coil and homology tables.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

#include "cs/homology.h"
#include "cs/random_coil.h"
#include "cs/surface.h"
#include "cs/surface_file.h"
#include "support/checks.h"
#include "support/run_dc.h"

namespace {

// 4 x 3 grids over phi -180..180 (90 degrees a cell), psi -90..90 (60 a
// cell); cell i holds offset + i.
const SurfHeader kHeader{4, 3, -180.0f, 180.0f, -90.0f, 90.0f, 7, 1.5f, 0.25f};

std::vector<float> grid(float offset, int cells = 12) {
    std::vector<float> v(cells);
    for (int i = 0; i < cells; i++) v[i] = offset + static_cast<float>(i);
    return v;
}

void writeGrid(const std::string& path, float offset, const SurfHeader& h = kHeader) {
    ASSERT_EQ(surfWrite2D(path.c_str(), grid(offset, h.nx * h.ny).data(), h), 0);
}

// Value, density (+100) and deviation (+200) grids, so a mixed-up array shows.
void writeShift(const std::string& dir, const std::string& name) {
    for (auto [ending, offset] : {std::pair{".dat", 0.0f}, {".d.dat", 100.0f}, {".q.dat", 200.0f}})
        writeGrid(dir + "/" + name + ending, offset);
}

void writeConformations(const std::string& dir) {
    for (const char* r : kSurfResNames) writeGrid(dir + "/" + r + ".dat", 1000.0f);
}

std::string swapped(std::string bytes) {
    for (size_t i = 0; i + 3 < bytes.size(); i += 4) {
        std::swap(bytes[i], bytes[i + 3]);
        std::swap(bytes[i + 1], bytes[i + 2]);
    }
    return bytes;
}

// The words of the file as written on this machine: 512 header words, in
// which only the loader's words are set, then the grid with phi fastest.
TEST(SurfaceFile, HeaderWordsThenTheGrid) {
    std::string path = scratchDir("surface_file") + "/s.dat";
    const float values[6] = {0.25f, 1.25f, 2.25f, 10.25f, 11.25f, 12.25f};
    const SurfHeader h{3, 2, -180, 180, -170, 175, 7, 1.25f, 0.5f};
    ASSERT_EQ(surfWrite2D(path.c_str(), values, h), 0);
    std::string bytes = readFile(path);
    std::vector<float> words(bytes.size() / 4), expected(512, 0.0f);
    std::memcpy(words.data(), bytes.data(), words.size() * 4);
    const std::pair<int, float> set[] = {{2, 2.345f},  {99, 3},    {219, 2},  {70, -180},
                                         {71, 180},    {72, -170}, {73, 175}, {74, 7},
                                         {153, 1.25f}, {199, 0.5f}};
    for (auto [word, value] : set) expected[word] = value;
    expected.insert(expected.end(), values, values + 6);
    EXPECT_EQ(words, expected);

    path = scratchDir("surface_bad") + "/no/such/dir.dat";
    EXPECT_EQ(stderrOf([&] { EXPECT_EQ(surfWrite2D(path.c_str(), values, h), 1); }),
              "TESSERA Error writing surface " + path + "\n");
}

class SurfaceRead : public testing::Test {
  protected:
    void SetUp() override { start = bytesInUse(); }
    void TearDown() override {
        surfFree();
        EXPECT_EQ(bytesInUse(), start);
    }
    // surfRead of the test's directory: its status, and what it printed.
    std::string read(int status, const char* rc = "None", const char* homo = "None",
                     int verbose = 0) {
        return stderrOf([&] { EXPECT_EQ(surfRead(dir.c_str(), rc, homo, verbose), status); });
    }
    // surfRead2D of one file; the grid lands in got and is released.
    std::string readOne(const std::string& path, Surface* s) {
        surfNull(s);
        float* values = nullptr;
        std::string err = stderrOf([&] { values = surfRead2D(path.c_str(), "S", s, 1); });
        got.assign(values, values ? values + s->nx * s->ny : values);
        unAlloc64("cs", values, s->nx * s->ny * 4);
        return err;
    }
    std::string header(const std::string& path) {
        return "CS Error reading header in Phi/Psi Surface " + path + "\n";
    }
    int64_t start = 0;
    std::string dir = scratchDir("surface_read");
    std::vector<float> got;
};

// Shift surfaces pass by pass (.prev, .next, own), residue types before the
// residue-independent ones; then the conformation surfaces; "zero" last.
TEST_F(SurfaceRead, ListOrderPositionsHeaderValuesAndLookup) {
    for (const char* n : {"CA", "CA.ALA", "HN.next", "HA.GLY.prev", "CA.ALA.prev"})
        writeShift(dir, n);
    writeConformations(dir);
    writeGrid(dir + "/zero.dat", 0.0f);
    ASSERT_EQ(read(0), "");
    std::vector<std::string> expected = {"CA.ALA.prev", "HA.GLY.prev", "HN.next", "CA.ALA", "CA"};
    expected.insert(expected.end(), kSurfResNames, kSurfResNames + kSurfResTypes);
    expected.push_back("zero");
    const Surface* list = getSurfList();
    ASSERT_EQ(getSurfCount(), 29);
    for (int i = 0; i < 29; i++) EXPECT_EQ(list[i].name, expected[i]);
    EXPECT_EQ(getShiftSurfCount() * 100 + getConfSurfCount(), 523);
    for (int i = 0; i < 5; i++) EXPECT_EQ(list[i].position, i < 2 ? -1 : i == 2) << i;
    EXPECT_EQ(list[28].kind, kSurfNullKind);

    const Surface& s = list[3];
    EXPECT_EQ(std::vector<float>({s.xmin, s.xmax, s.ymin, s.ymax, s.bound, s.threshold}),
              std::vector<float>({-180, 180, -90, 90, 1.5f, 0.25f}));
    EXPECT_EQ(s.order, 7);
    // Statistics of the last array read, the deviation grid 200 .. 211.
    EXPECT_EQ(std::vector<float>({s.min, s.max, s.avg}), std::vector<float>({200, 211, 205.5f}));
    auto at = [&](float phi, float psi) {
        float v = -1, d = -1, q = -1;
        getSurfVal(&s, &v, &d, &q, phi, psi);
        return std::vector<float>{v, d, q};
    };
    EXPECT_EQ(at(100.0f, 0.0f), std::vector<float>({7, 107, 207}));  // column 3, row 1
    // Cells begin at their lower edge; angles beyond the grid take the edge cells.
    EXPECT_EQ(at(-90.0f, -30.0f)[0] + at(180.0f, 90.0f)[0] + at(-200.0f, 0.0f)[0], 5.0f + 11 + 4);
    EXPECT_EQ(at(NAN, NAN)[0], 0.0f);
    float v = -1, d = -1;  // a conformation surface has no density to give
    getSurfVal(list + 5, &v, &d, nullptr, 0.0f, 0.0f);
    EXPECT_EQ(std::vector<float>({v, d}), std::vector<float>({1006, -1}));
}

TEST_F(SurfaceRead, EmptyDirectoryTablesAndVerboseLines) {
    ASSERT_EQ(read(0, "None", "nOnE"), "");
    EXPECT_EQ(getSurfCount() + rcLoaded() + homoLoaded(), 0);
    EXPECT_EQ(getSurfList(), nullptr);
    std::string rc = dir + "/rc.tab";
    EXPECT_EQ(read(1, "rc.tab"), "RdTable File open error: " + rc +
                                     ".\nCS Error reading random coil table " + rc + "\n");
    writeFile(rc, "VARS RESNAME ATOMNAME TYPE OFFSET SHIFT\nFORMAT %s %s %s %d %f\nA CA RC 0 1\n");
    writeFile(dir + "/homo.tab", "VARS NAME\nFORMAT %s\nALA\n");
    EXPECT_EQ(
        read(1, "rc.tab", "homo.tab"),
        "HOMO Error: missing RESNAME.\nCS Error reading homology table " + dir + "/homo.tab\n");
    EXPECT_EQ(rcLoaded(), 1);  // what was read before the failure stays

    writeShift(dir, "HN.TRP.prev");
    writeConformations(dir);
    std::string base = dir + "/HN.TRP.prev.dat";
    EXPECT_TRUE(read(0, "None", "None", 1)
                    .starts_with("TESSERA Surface: " + base + "\nTESSERA Reading surface " + base));
}

// A failure stops the read with status 1 and the message of what failed.
TEST_F(SurfaceRead, MissingOrBrokenFilesAreReportedWithTheirPaths) {
    writeShift(dir, "N.ALA");
    writeConformations(dir);
    std::string path = dir + "/zero.dat";
    writeFile(path, "");
    EXPECT_EQ(read(1), header(path) + "TESSERA Error reading null surface " + path + "\n");
    std::filesystem::remove(path);

    for (auto [ending, what] :
         {std::pair{".d.dat", "density"}, {".q.dat", "dev"}, {".dat", "shift"}}) {
        path = dir + "/N.ALA" + ending;
        std::string bytes = readFile(path);
        writeFile(path, bytes.substr(0, 100));
        EXPECT_EQ(read(1),
                  header(path) + "TESSERA Error reading " + what + " surface " + path + "\n");
        writeFile(path, bytes);
    }
    // Grids of another size or range cannot be looked up together.
    SurfHeader other = kHeader;
    other.nx = 3;
    writeGrid(dir + "/N.ALA.d.dat", 100.0f, other);
    EXPECT_EQ(read(1), "TESSERA Error reading density surface " + dir + "/N.ALA.d.dat\n");
}

// Refused before any memory is taken for the grid.
TEST_F(SurfaceRead, BadHeadersAndDataAreRefused) {
    std::string path = dir + "/s.dat";
    std::string data = "CS Error reading data in Phi/Psi Surface " + path + "\n";
    // Header words first, then words the header passes but the data cannot meet.
    const std::pair<int, float> words[] = {
        {0, 1},    {2, 2.5f},          {2, 0},         {99, 0},    {99, 4.5f},       {99, NAN},
        {219, -3}, {70, 180},          {73, INFINITY}, {153, NAN}, {199, -INFINITY}, {74, NAN},
        {99, 5},   {219, 16777216.0f}, {512 + 5, NAN}};
    for (int k = 0; k < 15; k++) {
        auto [word, value] = words[k];
        writeGrid(path, 0.0f);
        std::string bytes = readFile(path);
        std::memcpy(bytes.data() + 4 * word, &value, 4);
        writeFile(path, bytes);
        Surface s;
        int64_t allocs = getAllocCount();
        EXPECT_EQ(readOne(path, &s), k < 12 ? header(path) : data) << word << " " << value;
        if (word < 512) {
            EXPECT_EQ(getAllocCount(), allocs) << word;
        }
    }
    writeGrid(path, 0.0f);
    std::string whole = readFile(path);
    Surface s;
    for (size_t length : {size_t{0}, size_t{2047}, size_t{2048}, whole.size() - 1}) {
        writeFile(path, whole.substr(0, length));
        EXPECT_EQ(readOne(path, &s), length < 2048 ? header(path) : data) << length;
    }
    writeFile(path, swapped(whole).substr(0, whole.size() - 4));
    EXPECT_EQ(readOne(path, &s), data);
    writeFile(path, whole + "tail");  // bytes after the grid are not part of it
    EXPECT_EQ(readOne(path, &s), "");
    EXPECT_EQ(got, grid(0.0f));
    // A byte-swapped file reads the same, header and grid.
    Surface t;
    writeFile(path, swapped(whole));
    EXPECT_EQ(readOne(path, &t), "");
    EXPECT_EQ(got, grid(0.0f));
    EXPECT_EQ(std::memcmp(&s, &t, sizeof s), 0);
    for (const std::string& p : {dir, dir + "/missing.dat"}) EXPECT_EQ(readOne(p, &s), header(p));
}

// Exact binary fractions, so every sum below is exact in single precision.
const char* kRandomCoil =
    "VARS RESNAME ATOMNAME TYPE OFFSET SHIFT\nFORMAT %s %s %s %d %f\nNULLVALUE -9999\n"
    "A CA RC 0 50.0\nA CA ADJ 0 0.5\nL CA ADJ -2 0.25\nK CA ADJ -1 -1.0\nP CA ADJ 1 -2.0\n"
    "E CA ADJ 2 0.125\nK CA RC 0 56.0\nG HA3 RC 0 3.75\nG HA1 RC 0 4.5\nG HA3 ADJ -1 0.25\ngly HA3 "
    "RC 0 3.0\n";

float rc(const char* p2, const char* p, const char* c, const char* n, const char* n2,
         const char* atom, int flag = 1, int found = 1) {
    float value = -1.0f;
    EXPECT_EQ(getRandCoilShift(p2, p, c, n, n2, atom, &value, flag), found) << c << " " << atom;
    return value;
}

TEST_F(SurfaceRead, RandomCoilShiftIsTheCentreValuePlusEveryNeighbourCorrection) {
    EXPECT_EQ(rc(nullptr, nullptr, "A", nullptr, nullptr, "CA", 1, 0), 9999.0f);  // no table
    writeFile(dir + "/rc.tab", kRandomCoil);
    ASSERT_EQ(surfReadRC((dir + "/rc.tab").c_str()), 0);
    // 50 + 0.5 (own) + 0.25 (two before) - 1 (before) - 2 (after) + 0.125 (two after)
    EXPECT_EQ(rc("L", "K", "A", "P", "E", "CA"), 47.875f);
    // A correction counts only at its own offset; absent and empty names add nothing.
    EXPECT_EQ(rc("K", "L", "A", nullptr, "", "CA"), 50.5f);
    // No random-coil value of the centre (or a name in another case): not found.
    EXPECT_EQ(rc("L", "K", "P", "P", "E", "CA", 1, 0), 9999.0f);
    EXPECT_EQ(rc(nullptr, nullptr, nullptr, nullptr, nullptr, "CA", 1, 0), 9999.0f);
    // Glycine HA1 is HA3 with flag 0 ("G" or "GLY", any case), with HA3's
    // corrections; flag 1 keeps HA1.
    EXPECT_EQ(rc(nullptr, "G", "G", nullptr, nullptr, "HA1", 0), 4.0f);
    EXPECT_EQ(rc(nullptr, "G", "G", nullptr, nullptr, "HA1", 1), 4.5f);
    EXPECT_EQ(rc(nullptr, nullptr, "gly", nullptr, nullptr, "HA1", 0), 3.0f);

    // A failed read drops the table read before it.
    writeFile(dir + "/a.tab", "VARS RESNAME TYPE OFFSET SHIFT\nFORMAT %s %s %d %f\nA RC 0 1\n");
    EXPECT_EQ(stderrOf([&] { EXPECT_EQ(surfReadRC((dir + "/a.tab").c_str()), 1); }),
              "TESSERA RC Error: missing RESNAME/ATOMNAME.\n");
    EXPECT_EQ(rcLoaded(), 0);
}

// Values by row and column name. A null cell holds a value the homology
// score leaves out; a pair not in the table, a name in another case or a
// text column is not found.
TEST_F(SurfaceRead, HomologyValuesByRowAndColumnName) {
    float v = 0.0f;
    EXPECT_EQ(getHomoVal("ALA", "GLY", &v), 0);  // no table
    EXPECT_EQ(v, 777777.0f);
    writeFile(dir + "/h.tab",
              "VARS RESNAME ALA GLY NOTE\nFORMAT %s %f %f %s\n"
              "NULLVALUE -9999\nALA 0.0 3.5 x\nGLY 1.25 -9999 y\n");
    ASSERT_EQ(surfReadHomo((dir + "/h.tab").c_str()), 0);
    const std::tuple<const char*, const char*, int, float> cases[] = {
        {"ALA", "GLY", 1, 3.5f},      {"GLY", "ALA", 1, 1.25f},     {"GLY", "GLY", 1, 999999.0f},
        {"ALA", "TRP", 0, 777777.0f}, {"ala", "GLY", 0, 777777.0f}, {"ALA", "NOTE", 0, 777777.0f}};
    for (auto [a, b, found, value] : cases) {
        EXPECT_EQ(getHomoVal(a, b, &v), found) << a << "," << b;
        EXPECT_EQ(v, value) << a << "," << b;
    }
    // A table without rows loads empty.
    writeFile(dir + "/e.tab", "VARS RESNAME ALA\n");
    EXPECT_EQ(stderrOf([&] { EXPECT_EQ(surfReadHomo((dir + "/e.tab").c_str()), 0); }), "");
    EXPECT_EQ(getHomoVal("ALA", "GLY", &v) + homoLoaded(), 1);
}

}  // namespace
