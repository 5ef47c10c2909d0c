#include "support/run_dc.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <regex>
#include <sstream>
#include <vector>

extern char** environ;

namespace {

bool isDCVariable(const char* entry) {
    static const char* const names[] = {"PDBH_DIR=", "PDBH_LIST=", "SURF_DIR=", "NMR_CHECKARGS="};
    for (const char* name : names) {
        if (std::strncmp(entry, name, std::strlen(name)) == 0) return true;
    }
    return false;
}

}  // namespace

DCResult runDC(const std::vector<std::string>& args, const std::vector<std::string>& env,
               const std::string& dir) {
    std::string base = scratchDir("run_dc_capture");
    std::string outPath = base + "/out", errPath = base + "/err";

    std::vector<std::string> envCopy;
    for (char** e = environ; *e; e++) {
        if (!isDCVariable(*e)) envCopy.emplace_back(*e);
    }
    for (const std::string& e : env) envCopy.push_back(e);

    std::vector<char*> argv{const_cast<char*>(DC_BINARY)};
    for (const std::string& a : args) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    std::vector<char*> envp;
    for (std::string& e : envCopy) envp.push_back(e.data());
    envp.push_back(nullptr);

    pid_t pid = fork();
    if (pid == 0) {
        int out = open(outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        int err = open(errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        dup2(out, 1);
        dup2(err, 2);
        if (!dir.empty() && chdir(dir.c_str()) != 0) _exit(127);
        execve(DC_BINARY, argv.data(), envp.data());
        _exit(127);
    }
    int wstatus = 0;
    waitpid(pid, &wstatus, 0);
    DCResult result;
    result.status = WIFEXITED(wstatus) ? WEXITSTATUS(wstatus) : -1;
    result.out = readFile(outPath);
    result.err = readFile(errPath);
    std::system(("rm -rf '" + base + "'").c_str());
    return result;
}

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

void writeFile(const std::string& path, const std::string& text) {
    std::ofstream out(path, std::ios::binary);
    out << text;
}

namespace {

// Scratch directories of this test process, removed when it ends (set
// DC_KEEP_SCRATCH to keep them for a look after a failure).
std::vector<std::string>& scratchDirs() {
    static std::vector<std::string> dirs;
    return dirs;
}

void removeScratchDirs() {
    if (std::getenv("DC_KEEP_SCRATCH")) return;
    for (const std::string& dir : scratchDirs()) std::system(("rm -rf '" + dir + "'").c_str());
}

}  // namespace

std::string scratchDir(const std::string& name) {
    std::string path = std::string("scratch_") + std::to_string(getpid()) + "_" + name;
    std::string command = "rm -rf '" + path + "' && mkdir -p '" + path + "'";
    if (std::system(command.c_str()) != 0) return ".";
    if (scratchDirs().empty()) std::atexit(removeScratchDirs);
    scratchDirs().push_back(path);
    char resolved[4096];
    return realpath(path.c_str(), resolved) ? std::string(resolved) : path;
}

namespace {
const std::regex kAllocLine("REMARK Memory Allocation Status\\. Reused: \\d+ In Use: 0\n$");
}  // namespace

bool endsBalanced(const std::string& err) { return std::regex_search(err, kAllocLine); }

std::string errBody(const DCResult& r) {
    std::smatch m;
    if (!std::regex_search(r.err, m, kAllocLine)) return "no allocation line:\n" + r.err;
    return r.err.substr(0, m.position(0));
}
