// Running the built DC program from a test and capturing what it writes.
#pragma once

#include <string>
#include <utility>
#include <vector>

struct DCResult {
    std::string out;
    std::string err;
    int status = -1;
};

// Runs DC with the given arguments in dir (the test's working directory when
// empty). env holds NAME=VALUE entries added to a clean environment, where
// the DC variables PDBH_DIR, PDBH_LIST, SURF_DIR and NMR_CHECKARGS are unset.
DCResult runDC(const std::vector<std::string>& args, const std::vector<std::string>& env = {},
               const std::string& dir = "");

std::string readFile(const std::string& path);
void writeFile(const std::string& path, const std::string& text);
// A fresh empty directory for one test.
std::string scratchDir(const std::string& name);

// Standard error before the closing allocation line, which must read
// "In Use: 0"; the whole text after a note when it does not.
std::string errBody(const DCResult& r);
// Whether standard error ends with the allocation line reading "In Use: 0".
bool endsBalanced(const std::string& err);
