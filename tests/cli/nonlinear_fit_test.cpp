// The nonlinear tensor methods from the command line on ubiquitin's N-H
// couplings: -fit reaches the SVD solution, -fixed with the SVD tensor gives
// back the SVD couplings, and the progress lines under -verb 2.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "support/run_dc.h"

namespace {

const std::string kPdb = DC_EXAMPLES "/ubq/1ubq_h.pdb";
const std::string kTable = DC_EXAMPLES "/ubq/ubq_nh.tab";

struct Fitted {
    std::map<std::string, std::vector<double>> data;  // DATA lines by name
    std::vector<double> couplings;                    // the D column of the rows
    std::string err, text;
};

// Runs DC on ubiquitin with the options and reads back the output table.
Fitted runFit(const std::vector<std::string>& options) {
    std::string out = scratchDir("nonlinear") + "/out.tab";
    std::vector<std::string> args = {"-pdb", kPdb, "-inD", kTable, "-outD", out};
    args.insert(args.end(), options.begin(), options.end());
    DCResult r = runDC(args);
    EXPECT_EQ(r.status, 0);
    EXPECT_TRUE(endsBalanced(r.err)) << r.err;
    Fitted f{{}, {}, r.err, readFile(out)};
    std::istringstream in(f.text);
    for (std::string line; std::getline(in, line);) {
        std::istringstream words(line);
        std::vector<std::string> w;
        for (std::string word; words >> word;) w.push_back(word);
        if (w.size() > 2 && w[0] == "DATA") {
            for (size_t i = 2; i < w.size(); i++) f.data[w[1]].push_back(std::atof(w[i].c_str()));
        } else if (w.size() == 10 && std::isdigit(static_cast<unsigned char>(w[0][0]))) {
            f.couplings.push_back(std::atof(w[7].c_str()));
        }
    }
    return f;
}

double value(const Fitted& f, const std::string& name) {
    auto it = f.data.find(name);
    return it == f.data.end() || it->second.empty() ? NAN : it->second[0];
}

TEST(NonlinearFit, UbiquitinFitsReachTheSvdSolution) {
    Fitted svd = runFit({});
    ASSERT_EQ(svd.couplings.size(), 63u);
    for (const std::vector<std::string>& options :
         {std::vector<std::string>{"-fit", "-auto"}, {"-fit", "-retry", "17"}, {"-fit"}}) {
        Fitted nl = runFit(options);
        EXPECT_NE(nl.text.find("DATA TENSOR_MODE FIT_NONLIN"), std::string::npos);
        EXPECT_NEAR(value(nl, "RMS"), value(svd, "RMS"), 0.005) << options[1];
        EXPECT_NEAR(value(nl, "Da"), value(svd, "Da"), 0.01 * value(svd, "Da"));
        EXPECT_NEAR(value(nl, "Rhombicity"), value(svd, "Rhombicity"),
                    0.01 * value(svd, "Rhombicity"));
        EXPECT_EQ(value(nl, "N_SVD"), 63);
    }
    // -auto starts from the SVD tensor's first Euler solution.
    const std::vector<double>& angles = svd.data["EULER_ANGLES"];
    ASSERT_GE(angles.size(), 3u);
    char line[96];
    std::snprintf(line, sizeof line, "Tensor 1 Auto-Initialization: % 8.2f % 8.2f % 8.2f\n",
                  angles[0], angles[1], angles[2]);
    EXPECT_NE(runFit({"-fit", "-auto", "-retry", "0", "-verb", "2"}).err.find(line),
              std::string::npos)
        << line;
}

TEST(NonlinearFit, FixedSvdTensorGivesBackTheSvdCouplings) {
    Fitted svd = runFit({});
    ASSERT_EQ(svd.couplings.size(), 63u);
    const std::vector<double>& angles = svd.data["EULER_ANGLES"];
    ASSERT_GE(angles.size(), 3u);
    char da[32], dr[32];
    std::snprintf(da, sizeof da, "%.7e", value(svd, "Da"));
    std::snprintf(dr, sizeof dr, "%.7e", value(svd, "Dr"));
    Fitted fixed = runFit({"-fixed", "-da", da, "-dr", dr, "-psi", std::to_string(angles[0]),
                           "-theta", std::to_string(angles[1]), "-phi", std::to_string(angles[2])});
    EXPECT_NE(fixed.text.find("DATA TENSOR_MODE FIXED (Fixed Da and Dr, Fixed Rotations)\n"),
              std::string::npos);
    ASSERT_EQ(fixed.couplings.size(), svd.couplings.size());
    for (size_t i = 0; i < svd.couplings.size(); i++)
        EXPECT_NEAR(fixed.couplings[i], svd.couplings[i], 0.01) << i;
}

TEST(NonlinearFit, ProgressLinesUnderVerb2) {
    Fitted f = runFit({"-fit", "-verb", "2", "-retry", "17"});
    // Trial 1 is the start as given; trial 2 takes orientation 1 of the start
    // table and draws Da and Dr from the first two values of random().
    const std::string firstTrials =
        "Trial:    1 CType:  4: Init:      45.00 Min:    -180.00 Max:     180.00\n"
        "Trial:    1 CType:  5: Init:      45.00 Min:    -180.00 Max:     180.00\n"
        "Trial:    1 CType:  6: Init:      45.00 Min:    -180.00 Max:     180.00\n"
        "Trial:    1 CType:  1: Init:  1.000e-04 Min: -1.000e-02 Max:  1.000e-02\n"
        "Trial:    1 CType:  2: Init:  1.000e-05 Min: -1.000e-02 Max:  1.000e-02\n";
    const std::string secondTrial =
        "Trial:    2 CType:  4: Init:       0.00 Min:    -180.00 Max:     180.00\n"
        "Trial:    2 CType:  5: Init:       0.00 Min:    -180.00 Max:     180.00\n"
        "Trial:    2 CType:  6: Init:       0.00 Min:    -180.00 Max:     180.00\n"
        "Trial:    2 CType:  1: Init:  6.804e-03 Min: -1.000e-02 Max:  1.000e-02\n"
        "Trial:    2 CType:  2: Init: -2.112e-03 Min: -1.000e-02 Max:  1.000e-02\n";
    EXPECT_NE(f.err.find("Couplings: 63 Structures: 1 Atoms Per Structure Selected: 126\n"),
              std::string::npos);
    EXPECT_NE(f.err.find(firstTrials), std::string::npos);
    EXPECT_NE(f.err.find(secondTrial), std::string::npos);
    // Trial 17 (orientation 16: 90, 45, 90) is the last one.
    EXPECT_NE(
        f.err.find("Trial:   17 CType:  4: Init:      90.00 Min:    -180.00 Max:     180.00\n"
                   "Trial:   17 CType:  5: Init:      45.00 Min:    -180.00 Max:     180.00\n"
                   "Trial:   17 CType:  6: Init:      90.00 Min:    -180.00 Max:     180.00\n"),
        std::string::npos);
    EXPECT_EQ(f.err.find("Trial:   18"), std::string::npos);
    // Trials 2 to 17 start from the sixteen tabulated orientations.
    std::string orientations;
    std::regex rotation("Trial: +(\\d+) CType:  [456]: Init: +(-?\\d+)\\.00 ");
    for (std::sregex_iterator it(f.err.begin(), f.err.end(), rotation), end; it != end; ++it)
        if ((*it)[1] != "1")
            orientations +=
                (*it)[2].str() + ((*it)[0].str().find(":  6:") != std::string::npos ? "|" : " ");
    EXPECT_EQ(orientations,
              "0 0 0|0 45 0|0 90 0|90 0 0|90 45 0|90 90 0|0 0 45|0 45 45|0 90 45|90 0 45|90 45 45|"
              "90 90 45|0 0 90|0 45 90|90 0 90|90 45 90|");
    std::smatch best;
    ASSERT_TRUE(
        std::regex_search(f.text, best, std::regex("DATA BEST_ITER   ( {7}[1-9]| {6}1[0-7])\n")));

    Fitted rh = runFit({"-fit", "-verb", "2", "-retry", "2", "-rhMode"});
    EXPECT_NE(
        rh.err.find("Trial:    1 CType:  3: Init:     0.1000 Min:     0.0000 Max:     0.6667\n"),
        std::string::npos);

    Fitted grid = runFit({"-grid", "-gridStep", "60", "-verb", "2"});
    // No Y is visited at X = -180 and -120 (cos X < 0): the first point lies at X = -60.
    EXPECT_TRUE(
        std::regex_search(grid.err, std::regex("\nDC 1 Grid ZXY Search     1\\.   0  2  0\\.   "
                                               "-180\\.0 -60\\.0   0\\.0  [- ]\\d\\.\\d{3}e-0\\d "
                                               "[- ]\\d\\.\\d{3}e-0\\d +\\d+\\.\\d{3}\n")));
    EXPECT_TRUE(
        std::regex_search(grid.err, std::regex("\nDC 1 Grid Search Best:  ZXY: [- \\d.]{17,} XYZ: "
                                               "[- \\d.]{17,} RMS: +\\d+\\.\\d{3}\n")));
}

}  // namespace
