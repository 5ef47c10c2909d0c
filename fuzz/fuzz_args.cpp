// The command line of a whole DC run: the bytes are split into words at NUL
// bytes and newlines, "DC" is put in front, and DC's main entry runs them,
// from reading the options to the closing allocation report.
//
// Files: while DC runs, the working directory is a scratch folder holding a
// small structure (a.pdb) and two coupling tables for it (a.tab without,
// c.tab with chain and segment columns), so an input can name them. Inputs
// with a word that contains "/" are rejected, which keeps every file an input
// can read or write inside that folder. Output files the input names are
// deleted after each run, and a fixture that a run overwrote is written anew,
// so that every input starts from the same folder.
//
// The fuzzer's own directory is entered again after each run, so relative
// corpus paths keep working, and the places where crash files go are made
// absolute at start-up, since a crash happens inside the scratch folder.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "app/dc_main.h"
#include "fuzz/fixtures.h"
#include "fuzz/fuzz_support.h"
#include "pdb/modes.h"
#include "util/alloc.h"
#include "util/args.h"
#include "util/levels.h"

namespace {

// More words than this cannot be checked by the argument map anyway.
constexpr size_t kMaxWords = 256;

struct Fixture {
    const char* name;
    const char* text;
    struct stat written;
};

Fixture fixtures[] = {
    {"a.pdb", fuzz::kPeptidePDB, {}},
    {"a.tab", fuzz::kCouplingTable, {}},
    {"c.tab", fuzz::kChainCouplingTable, {}},
};

void writeFixture(Fixture& f) {
    fuzz::writeFile(f.name, f.text);
    stat(f.name, &f.written);
}

bool unchanged(const Fixture& f) {
    struct stat now;
    if (stat(f.name, &now) != 0) return false;
    return now.st_size == f.written.st_size && now.st_mtim.tv_sec == f.written.st_mtim.tv_sec &&
           now.st_mtim.tv_nsec == f.written.st_mtim.tv_nsec && now.st_ino == f.written.st_ino;
}

bool isFixture(const std::string& name) {
    for (const Fixture& f : fixtures) {
        if (name == f.name) return true;
    }
    return false;
}

// Brings the scratch folder back to the fixtures alone.
void restoreFolder() {
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(".", ignored)) {
        if (!isFixture(entry.path().filename().string())) {
            std::filesystem::remove_all(entry.path(), ignored);
        }
    }
    for (Fixture& f : fixtures) {
        if (!unchanged(f)) writeFixture(f);
    }
}

// The directory the fuzzer was started in.
int home = -1;

void enterScratch() {
    if (chdir(fuzz::scratchDir().c_str()) != 0) {
        dprintf(2, "dc fuzz: cannot enter the scratch folder\n");
        std::abort();
    }
}

void leaveScratch() {
    if (fchdir(home) != 0) {
        dprintf(2, "dc fuzz: cannot return to the working directory\n");
        std::abort();
    }
}

// Switches a run can leave behind for the next one (-dbg, -verb, -ignore).
void resetProcessState() {
    setDbgFlag(0);
    setVerbose(0);
    setAlloc(0);
    resetPDBModes();
    nullArgs();
}

// Rewrites libFuzzer's own options before it reads them: a relative
// -artifact_prefix or -exact_artifact_path is made absolute, and without an
// -artifact_prefix the starting directory is given as one.
void anchorArtifactPaths(int* argc, char*** argv) {
    static std::vector<std::string> rewritten;
    static std::vector<char*> pointers;
    std::string here = std::filesystem::current_path().string() + "/";
    bool havePrefix = false;
    for (int i = 0; i < *argc; i++) {
        std::string arg = (*argv)[i];
        for (const char* option : {"-artifact_prefix=", "-exact_artifact_path="}) {
            size_t length = std::strlen(option);
            if (arg.compare(0, length, option) != 0) continue;
            if (arg.size() == length || arg[length] != '/') arg.insert(length, here);
            if (option[1] == 'a') havePrefix = true;
        }
        rewritten.push_back(arg);
    }
    if (!havePrefix) rewritten.push_back("-artifact_prefix=" + here);
    for (std::string& arg : rewritten) pointers.push_back(arg.data());
    pointers.push_back(nullptr);
    *argc = static_cast<int>(rewritten.size());
    *argv = pointers.data();
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    anchorArtifactPaths(argc, argv);
    fuzz::quietStreams();
    // The environment settings an option can override; argument checking is
    // switched on so that its report runs too.
    unsetenv("PDBH_DIR");
    unsetenv("PDBH_LIST");
    unsetenv("SURF_DIR");
    setenv("NMR_CHECKARGS", "ALL", 1);
    home = open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (home < 0) {
        dprintf(2, "dc fuzz: cannot open the working directory\n");
        std::abort();
    }
    enterScratch();
    for (Fixture& f : fixtures) writeFixture(f);
    leaveScratch();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::vector<std::string> words{"DC"};
    std::string word;
    for (size_t i = 0; i <= size; i++) {
        if (i == size || data[i] == '\0' || data[i] == '\n') {
            if (word.find('/') != std::string::npos) return -1;
            words.push_back(word);
            if (words.size() > kMaxWords) return -1;
            word.clear();
        } else {
            word.push_back(static_cast<char>(data[i]));
        }
    }
    // No bytes give no word, and a trailing newline ends the last word rather
    // than starting an empty one.
    if (size == 0 || data[size - 1] == '\n') words.pop_back();

    std::vector<char*> argv;
    for (std::string& w : words) argv.push_back(w.data());
    argv.push_back(nullptr);

    int64_t start = fuzz::bytesInUse();
    enterScratch();
    dcMain(static_cast<int>(words.size()), argv.data());
    resetProcessState();
    fuzz::checkBalance(start, "argument list");
    restoreFolder();
    leaveScratch();
    return 0;
}
