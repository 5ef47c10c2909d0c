#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <string>
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

TEST_F(SurfaceRead, BuiltDirectoryLoadsEverySurfaceAndBothTables) {
    dir = DC_SURFACE_DIR;
    int shiftFiles = 0;
    for (const auto& e : std::filesystem::directory_iterator(dir))
        shiftFiles += e.path().filename().string().ends_with(".d.dat");
    ASSERT_EQ(read(0, "rc.tab", "homo.tab"), "");
    EXPECT_EQ(getShiftSurfCount(), shiftFiles);
    EXPECT_EQ(getConfSurfCount(), kSurfResTypes);
    EXPECT_EQ(getSurfCount(), shiftFiles + kSurfResTypes);
    const Surface* list = getSurfList();
    for (const char* atom : kSurfAtomNames) {
        int surfaces = 0;
        for (int i = 0; i < shiftFiles; i++)
            surfaces +=
                std::string(list[i].name + std::string(".")).starts_with(atom + std::string("."));
        EXPECT_GT(surfaces, 0) << atom;
    }
    for (int r = 0; r < kSurfResTypes; r++)
        EXPECT_STREQ(list[shiftFiles + r].name, kSurfResNames[r]);
    float value = 0.0f;
    EXPECT_EQ(getHomoVal("TRP", "TRP", &value), 1);
    EXPECT_EQ(value, 0.0f);  // a residue type is no different from itself
    EXPECT_EQ(getRandCoilShift("G", "A", "A", "A", "G", "CA", &value, 1), 1);
    EXPECT_NEAR(value, 52.5f, 1.0f);
}

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
    EXPECT_EQ(getShiftSurfCount(), 5);
    EXPECT_EQ(getConfSurfCount(), 23);
    const int positions[5] = {-1, -1, 1, 0, 0};
    for (int i = 0; i < 5; i++) EXPECT_EQ(list[i].position, positions[i]) << list[i].name;
    EXPECT_EQ(list[5].kind, kSurfConformationKind);
    EXPECT_EQ(list[5].density, nullptr);
    EXPECT_EQ(list[28].kind, kSurfNullKind);

    const Surface& s = list[3];
    EXPECT_EQ(s.kind, kSurfShiftKind);
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
    EXPECT_EQ(at(-90.0f, -30.0f)[0], 5.0f);  // a cell begins at its lower edge
    EXPECT_EQ(at(180.0f, 90.0f)[0], 11.0f);  // phi 180: the last column
    EXPECT_EQ(at(-200.0f, 0.0f)[0], 4.0f);   // phi -200: the first, no wrap-around
    EXPECT_EQ(at(1e30f, -1e30f)[0], 3.0f);
    EXPECT_EQ(at(NAN, NAN)[0], 0.0f);
    float v = -1, d = -1;  // a conformation surface has no density to give
    getSurfVal(list + 5, &v, &d, nullptr, 0.0f, 0.0f);
    EXPECT_EQ(std::vector<float>({v, d}), std::vector<float>({1006, -1}));
}

TEST_F(SurfaceRead, EmptyDirectoryAndOnlyAPreviousNeighbourSurface) {
    ASSERT_EQ(read(0, "None", "nOnE"), "");
    EXPECT_EQ(getSurfCount(), 0);
    EXPECT_EQ(getSurfList(), nullptr);
    EXPECT_EQ(rcLoaded() + homoLoaded(), 0);
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
    ASSERT_EQ(read(0), "");
    EXPECT_EQ(getShiftSurfCount(), 1);
    EXPECT_STREQ(getSurfList()[0].name, "HN.TRP.prev");
    EXPECT_EQ(getSurfList()[0].position, -1);
    std::string verbose = read(0, "None", "None", 1);
    std::string base = dir + "/HN.TRP.prev";
    EXPECT_TRUE(verbose.starts_with("TESSERA Surface: " + base + ".dat\nTESSERA Reading surface " +
                                    base + ".dat\nTESSERA Reading surface " + base + ".d.dat\n"));
    EXPECT_TRUE(verbose.ends_with("TESSERA Reading surface " + dir + "/xPRO.dat\n"));
}

// A failure stops the read with status 1; what was read before stays listed.
TEST_F(SurfaceRead, MissingOrBrokenFilesAreReportedWithTheirPaths) {
    writeShift(dir, "N.ALA");
    std::string path = dir + "/ALA.dat";
    EXPECT_EQ(read(1), header(path) + "TESSERA Error reading conformation surface " + path + "\n");
    EXPECT_EQ(getSurfCount(), 1);
    writeConformations(dir);
    path = dir + "/zero.dat";
    writeFile(path, "");
    EXPECT_EQ(read(1), header(path) + "TESSERA Error reading null surface " + path + "\n");
    EXPECT_EQ(getSurfCount(), 24);
    std::filesystem::remove(path);

    for (auto [ending, what] :
         {std::pair{".d.dat", "density"}, {".q.dat", "dev"}, {".dat", "shift"}}) {
        path = dir + "/N.ALA" + ending;
        std::string bytes = readFile(path);
        writeFile(path, bytes.substr(0, 100));
        EXPECT_EQ(read(1),
                  header(path) + "TESSERA Error reading " + what + " surface " + path + "\n");
        EXPECT_EQ(getSurfCount(), 0);
        writeFile(path, bytes);
    }
    // Grids of another size or range cannot be looked up together.
    SurfHeader other = kHeader;
    other.nx = 3;
    writeGrid(dir + "/N.ALA.d.dat", 100.0f, other);
    EXPECT_EQ(read(1), "TESSERA Error reading density surface " + dir + "/N.ALA.d.dat\n");
    other = kHeader;
    other.ymax = 180.0f;
    writeGrid(dir + "/N.ALA.d.dat", 100.0f);
    writeGrid(dir + "/N.ALA.q.dat", 200.0f, other);
    EXPECT_EQ(read(1), "TESSERA Error reading dev surface " + dir + "/N.ALA.q.dat\n");
}

TEST_F(SurfaceRead, ByteSwappedFileReadsTheSame) {
    writeGrid(dir + "/native.dat", -5.5f);
    writeFile(dir + "/swapped.dat", swapped(readFile(dir + "/native.dat")));
    Surface a, b;
    EXPECT_EQ(readOne(dir + "/native.dat", &a), "");
    EXPECT_EQ(got, grid(-5.5f));
    EXPECT_EQ(readOne(dir + "/swapped.dat", &b), "");
    EXPECT_EQ(got, grid(-5.5f));
    EXPECT_EQ(std::memcmp(&a, &b, sizeof a), 0);
    EXPECT_EQ(std::vector<float>({b.min, b.max, b.avg, b.threshold}),
              std::vector<float>({-5.5f, 5.5f, 0, 0.25f}));
    EXPECT_EQ(b.nx * 10 + b.ny, 43);
}

// Refused before any memory is taken for the grid; the record stays clear.
TEST_F(SurfaceRead, BadHeadersAndDataAreRefused) {
    std::string path = dir + "/s.dat";
    std::string data = "CS Error reading data in Phi/Psi Surface " + path + "\n";
    struct Case {
        int word;
        float value;
        bool inHeader;
    };
    for (Case c : {Case{0, 1, true},
                   {2, 2.5f, true},
                   {2, 0, true},
                   {99, 0, true},
                   {99, 4.5f, true},
                   {99, NAN, true},
                   {219, -3, true},
                   {70, 180, true},
                   {73, INFINITY, true},
                   {153, NAN, true},
                   {199, -INFINITY, true},
                   {74, NAN, true},
                   {99, 5, false},
                   {219, 16777216.0f, false},
                   {512 + 5, NAN, false}}) {
        writeGrid(path, 0.0f);
        std::string bytes = readFile(path);
        std::memcpy(bytes.data() + 4 * c.word, &c.value, 4);
        writeFile(path, bytes);
        Surface s;
        int64_t allocs = getAllocCount();
        EXPECT_EQ(readOne(path, &s), c.inHeader ? header(path) : data) << c.word << " " << c.value;
        EXPECT_EQ(s.nx, 0);
        if (c.word < 512) {
            EXPECT_EQ(getAllocCount(), allocs) << c.word;
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
    for (const std::string& p : {dir, dir + "/missing.dat"}) EXPECT_EQ(readOne(p, &s), header(p));
}

}  // namespace
