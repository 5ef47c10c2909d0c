// A homology search split into shards (dc-search) and merged
// (dc-search-merge) gives what one DC process over the whole list gives,
// byte for byte: report rows with their odd layout and file indices, and the
// summaries and messages of standard error; a shard that failed is named.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <string>
#include <vector>

#include "support/run_dc.h"

namespace {

const std::string kScript = DC_SOURCE_DIR "/tools/dc-search";
const std::string kSearch =
    " -inD '" DC_EXAMPLES "/ubq/ubq_nh.tab' -r1 20 -rN 39 -path . -ref ubq.pdb -bb";

struct ShellRun {
    std::string out, err;
    int status = -1;
};

// Runs a shell command in dir with DC and dc-search-merge of this build.
ShellRun shell(const std::string& dir, const std::string& command) {
    std::string full = "cd '" + dir +
                       "' && DC='" DC_BINARY "' DC_SEARCH_MERGE='" DC_SEARCH_MERGE "' " + command +
                       " 2>err.txt";
    ShellRun r;
    FILE* pipe = popen(full.c_str(), "r");
    char buffer[4096];
    for (size_t n; pipe && (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;)
        r.out.append(buffer, n);
    int status = pipe ? pclose(pipe) : -1;
    r.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    r.err = readFile(dir + "/err.txt");
    return r;
}

// Standard error without the allocation line and blank lines: what the
// merged run reproduces.
std::string messages(const std::string& err) {
    std::string out;
    size_t start = 0;
    while (start < err.size()) {
        size_t end = err.find('\n', start);
        std::string line = err.substr(start, end - start);
        if (!line.empty() && line.rfind("REMARK Memory Allocation", 0) != 0) out += line + "\n";
        start = end == std::string::npos ? err.size() : end + 1;
    }
    return out;
}

// 36 structure lines (a missing file, a structure shorter than the segment,
// lines limited to residues) between comments and blank lines.
std::string stage(const std::string& name, bool missingLast) {
    std::string dir = scratchDir(name);
    writeFile(dir + "/ubq.pdb", readFile(DC_EXAMPLES "/ubq/1ubq_h.pdb"));
    writeFile(dir + "/pep.pdb", readFile(DC_EXAMPLES "/ubq/hafp_a.pdb"));
    writeFile(dir + "/short.pdb", readFile(DC_TEST_DATA "/simulation/peptide.pdb"));
    std::string list = "# a list of 36 structures\n";
    for (int i = 1; i <= 11; i++) {
        list += "ubq.pdb\npep.pdb\n";
        if (i == 4) list += "missing.pdb\n\n   \nshort.pdb\n#comment\n";
        list += "ubq.pdb 10 60\n";
    }
    if (missingLast) list += "missing.pdb\n";
    writeFile(dir + "/list", list);
    return dir;
}

TEST(ShardedSearch, ParallelShardsGiveTheSingleSearchByteForByte) {
    std::string dir = stage("sharded", false);
    ShellRun single = shell(dir, "'" DC_BINARY "'" + kSearch + " -list list -outS single.txt");
    ASSERT_EQ(single.status, 0) << single.err;
    ShellRun merged = shell(dir, "'" + kScript + "' --engine parallel --shards 4" + kSearch +
                                     " -list list -outS merged.txt");
    EXPECT_EQ(merged.status, 0) << merged.err;
    std::string report = readFile(dir + "/single.txt");
    ASSERT_GT(report.size(), 1000u);
    EXPECT_NE(report.back(), '\n');
    EXPECT_EQ(readFile(dir + "/merged.txt"), report);
    EXPECT_EQ(messages(merged.err), messages(single.err));
    EXPECT_NE(single.err.find("ubq.pdb        34   20   39   20   39 "), std::string::npos);

    // Rows to standard output: no summaries, as with one process.
    ShellRun singleOut = shell(dir, "'" DC_BINARY "'" + kSearch + " -list list");
    ShellRun mergedOut =
        shell(dir, "'" + kScript + "' --engine local --shards 3" + kSearch + " -list list");
    EXPECT_EQ(mergedOut.out, singleOut.out);
    EXPECT_EQ(messages(mergedOut.err), messages(singleOut.err));
    EXPECT_EQ(mergedOut.out, report);
}

TEST(ShardedSearch, StatusOfTheLastFileAndFailedShards) {
    std::string dir = stage("sharded_status", true);
    ShellRun single = shell(dir, "'" DC_BINARY "'" + kSearch + " -list list -outS None");
    ShellRun merged = shell(
        dir, "'" + kScript + "' --engine local --shards 5" + kSearch + " -list list -outS None");
    EXPECT_NE(single.status, 0);
    EXPECT_EQ(merged.status, single.status);
    EXPECT_EQ(messages(merged.err), messages(single.err));

    // Shards run by hand, as the README tells: the merge numbers the files.
    shell(dir, "'" DC_SEARCH_MERGE "' --split list 3 work");
    for (int k = 1; k <= 3; k++) {
        std::string shard = "work/shard." + std::to_string(k);
        shell(dir, "'" DC_BINARY "'" + kSearch + " -list " + shard + "/list -outS " + shard +
                       "/report.txt 2>" + shard + "/stderr.txt; echo $? >" + shard + "/status");
    }
    shell(dir, "'" DC_BINARY "'" + kSearch + " -list list -outS single.txt");
    ShellRun byHand = shell(dir, "'" DC_SEARCH_MERGE "' --out merged.txt work 3");
    EXPECT_EQ(byHand.status, single.status);
    EXPECT_EQ(readFile(dir + "/merged.txt"), readFile(dir + "/single.txt"));
    EXPECT_EQ(messages(byHand.err), messages(single.err));

    // A shard whose search never finished is named, and nothing is written.
    std::remove((dir + "/work/shard.2/report.txt").c_str());
    ShellRun broken = shell(dir, "'" DC_SEARCH_MERGE "' --out again.txt work 3");
    EXPECT_EQ(broken.status, 1);
    EXPECT_EQ(broken.err, "dc-search-merge Error: shard 2 (work/shard.2) failed: no report.\n");
    EXPECT_EQ(readFile(dir + "/again.txt"), "");
}

}  // namespace
