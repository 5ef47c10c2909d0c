// The manual page: it renders without a warning, and it explains every
// option that -help lists.
#include <gtest/gtest.h>

#include <cstdio>
#include <set>
#include <sstream>
#include <string>

#include "support/run_dc.h"

namespace {

const std::string kManual = DC_MANUAL_PAGE;

// What a shell command writes to standard output, and its exit status.
std::string commandOutput(const std::string& command, int* status) {
    std::string out;
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return out;
    char buffer[4096];
    for (size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) out.append(buffer, n);
    *status = pclose(pipe);
    return out;
}

TEST(Manual, RendersWithoutWarnings) {
    int status = -1;
    std::string warnings =
        commandOutput("groff -man -Tutf8 -ww '" + kManual + "' 2>&1 >/dev/null", &status);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(warnings, "");
    std::string text =
        commandOutput("groff -man -Tutf8 -ww -P-cbou '" + kManual + "' 2>/dev/null", &status);
    for (const char* section : {"NAME", "SYNOPSIS", "DESCRIPTION", "OPTIONS", "ENVIRONMENT",
                                "FILES", "EXIT STATUS", "EXAMPLES"})
        EXPECT_NE(text.find(std::string("\n") + section + "\n"), std::string::npos) << section;
}

TEST(Manual, ExplainsEveryOptionOfHelp) {
    std::string page = readFile(kManual);
    DCResult help = runDC({"-help"});
    std::istringstream lines(help.err);
    std::set<std::string> missing;
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind(" -", 0) != 0) continue;
        std::string option = line.substr(1, line.find_first_of(" \t", 1) - 1);
        std::string roff = "\\" + option;  // a minus sign in roff is written \-
        size_t at = page.find(roff);
        while (at != std::string::npos &&
               std::isalnum(static_cast<unsigned char>(page[at + roff.size()])))
            at = page.find(roff, at + 1);
        if (at == std::string::npos) missing.insert(option);
    }
    std::string list;
    for (const std::string& option : missing) list += option + " ";
    EXPECT_EQ(list, "");
}

}  // namespace
