// Surface builder speed: builds the whole surface directory from the shift
// training data, as the build does, and compares its time with the minute a
// build may spend on it; for scale, reading the training data alone.
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

#include "tools/surfaces/surface_directory.h"
#include "tools/surfaces/training_set.h"

namespace {

double seconds(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace

int main() {
    const std::string data = DC_SHIFT_DATA;
    const std::string out = "/tmp/dc_bench_surfaces";
    constexpr double kTarget = 60.0;

    auto start = std::chrono::steady_clock::now();
    std::vector<TrainingResidue> residues;
    int status = readTraining((data + "/training.csv").c_str(), &residues);
    double readTime = seconds(start);

    start = std::chrono::steady_clock::now();
    std::string report;
    status |= buildSurfaceDirectory(data, out, &report);
    double buildTime = seconds(start);

    bool met = status == 0 && buildTime < kTarget;
    std::printf("surface_build: %zu training residues\n", residues.size());
    std::printf("  read training data  %7.2f s\n", readTime);
    std::printf("  build directory     %7.2f s (target under %.0f s)\n", buildTime, kTarget);
    std::printf("  targets: %s\n", met ? "met" : "MISSED");
    return met ? 0 : 1;
}
