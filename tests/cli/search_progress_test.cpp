// The search's progress line: shown, updated and erased on a terminal
// (standard error on a pseudo-terminal), with every summary line intact on
// a line of its own; never written when standard error is not a terminal.
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <vector>

#include "support/run_dc.h"

namespace {

// Runs DC in dir with all three standard streams on a new pseudo-terminal;
// returns what it wrote there.
std::string runOnTerminal(const std::string& dir, const std::vector<std::string>& args) {
    int master = -1;
    pid_t pid = forkpty(&master, nullptr, nullptr, nullptr);
    if (pid < 0) return "forkpty failed";
    if (pid == 0) {
        if (chdir(dir.c_str()) != 0) _exit(127);
        std::vector<char*> argv{const_cast<char*>("DC")};
        for (const std::string& a : args) argv.push_back(const_cast<char*>(a.c_str()));
        argv.push_back(nullptr);
        execv(DC_BINARY, argv.data());
        _exit(127);
    }
    std::string out;
    char buffer[4096];
    for (;;) {
        ssize_t n = read(master, buffer, sizeof buffer);
        if (n > 0) out.append(buffer, static_cast<size_t>(n));
        if (n == 0 || (n < 0 && errno != EINTR)) break;  // EIO once DC has gone
    }
    int status = 0;
    waitpid(pid, &status, 0);
    close(master);
    return out;
}

TEST(SearchProgress, UpdatingLineOnATerminalOnly) {
    std::string dir = scratchDir("progress");
    writeFile(dir + "/ubq.pdb", readFile(DC_EXAMPLES "/ubq/1ubq_h.pdb"));
    writeFile(dir + "/list", "ubq.pdb\nmissing.pdb\nubq.pdb\n");
    std::vector<std::string> args = {"-inD",  DC_EXAMPLES "/ubq/ubq_nh.tab",
                                     "-r1",   "20",
                                     "-rN",   "39",
                                     "-list", "list",
                                     "-path", ".",
                                     "-outS", "report.txt"};
    std::string tty = runOnTerminal(dir, args);
    const std::string erase = "\r\033[K";
    EXPECT_NE(tty.find(erase + "DC search: 1 of 3 structures, "), std::string::npos) << tty;
    EXPECT_NE(tty.find(erase + "DC search: 3 of 3 structures, "), std::string::npos) << tty;
    EXPECT_NE(tty.find(" offsets/s, "), std::string::npos);
    // The first summary comes before any progress; every later line of
    // standard error starts on an erased line.
    EXPECT_EQ(tty.rfind("ubq.pdb         1   20   39   20   39 ", 0), 0u) << tty;
    EXPECT_NE(tty.find(erase + "PDB Error opening PDB file ./missing.pdb"), std::string::npos)
        << tty;
    EXPECT_NE(tty.find(erase + "ubq.pdb         2   20   39   20   39 "), std::string::npos) << tty;
    // The last update is erased before the allocation line.
    EXPECT_NE(tty.find(" left" + erase + "REMARK Memory Allocation Status."), std::string::npos)
        << tty;

    DCResult piped = runDC(args, {}, dir);
    EXPECT_EQ(piped.err.find("DC search:"), std::string::npos);
    EXPECT_EQ(piped.err.find('\r'), std::string::npos);
}

}  // namespace
