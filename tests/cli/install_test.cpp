// An installed DC: it finds the shift surfaces installed beside it, also
// after the whole installation has been moved, with neither -sPath nor
// SURF_DIR; the manual page is installed with it.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "support/run_dc.h"

namespace {

const std::string kUbq = DC_EXAMPLES "/ubq";

// Standard error (with standard output) of a shell command, and its status.
std::string run(const std::string& command, int* status) {
    std::string out;
    FILE* pipe = popen((command + " 2>&1").c_str(), "r");
    if (!pipe) return out;
    char buffer[4096];
    for (size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) out.append(buffer, n);
    *status = pclose(pipe);
    return out;
}

std::string shiftLine(const std::string& output) {
    size_t at = output.find("REMARK CS_N:");
    return at == std::string::npos ? "" : output.substr(at, output.find('\n', at) - at);
}

bool exists(const std::string& path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0;
}

TEST(Install, InstalledDCFindsItsOwnSurfaces) {
    std::string prefix = scratchDir("install") + "/prefix";
    int status = -1;
    std::string log = run(std::string("'") + DC_CMAKE + "' --install '" + DC_BUILD_DIR +
                              "' --prefix '" + prefix + "'",
                          &status);
    ASSERT_EQ(status, 0) << log;
    EXPECT_TRUE(exists(prefix + "/share/man/man1/DC.1"));
    EXPECT_TRUE(exists(prefix + "/share/dc/surfaces/rc.tab"));

    const std::string job = " -pdb '" + kUbq + "/1ubq_h.pdb' -inCS '" + kUbq + "/ubq_cs.tab'";
    const std::string clean = "env -u SURF_DIR ";
    std::string built =
        shiftLine(runDC({"-pdb", kUbq + "/1ubq_h.pdb", "-inCS", kUbq + "/ubq_cs.tab"}).err);
    ASSERT_NE(built, "");
    std::string moved = prefix + "-moved";
    ASSERT_EQ(std::rename(prefix.c_str(), moved.c_str()), 0);
    EXPECT_EQ(shiftLine(run(clean + "'" + moved + "/bin/DC'" + job, &status)), built);
    EXPECT_EQ(status, 0);

    // With its own random-coil table gone it stops, so those were the ones read.
    ASSERT_EQ(std::remove((moved + "/share/dc/surfaces/rc.tab").c_str()), 0);
    run(clean + "'" + moved + "/bin/DC'" + job, &status);
    EXPECT_NE(status, 0);
}

}  // namespace
