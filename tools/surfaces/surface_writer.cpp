#include "tools/surfaces/surface_writer.h"

#include "cs/surface_file.h"

const Grid kConformationGrid = {36, 12.0f};

namespace {

SurfHeader headerOf(const Grid& g, float bound, float threshold) {
    return {g.n, g.n, -180.0f, 180.0f, -180.0f, 180.0f, 1, bound, threshold};
}

// The three grids of one shift surface.
struct SurfaceArrays {
    std::vector<float> value, density, dev;
    explicit SurfaceArrays(int cells) : value(cells), density(cells), dev(cells) {}
    void set(int cell, const CellEstimate& e) {
        value[cell] = e.value;
        density[cell] = e.density;
        dev[cell] = e.dev;
    }
};

bool writeSet(const std::string& dir, const std::string& name, const SurfaceArrays& a,
              const SurfHeader& header) {
    std::string base = dir + "/" + name;
    return surfWrite2D((base + ".dat").c_str(), a.value.data(), header) == 0 &&
           surfWrite2D((base + ".d.dat").c_str(), a.density.data(), header) == 0 &&
           surfWrite2D((base + ".q.dat").c_str(), a.dev.data(), header) == 0;
}

// The class whose data a class's surfaces are made from: cys and his are
// copies of CYS and HIS.
int sourceClass(int cls) {
    std::string name = kShiftClasses[cls];
    if (name == "cys") return shiftClassIndex("CYS");
    if (name == "his") return shiftClassIndex("HIS");
    return cls;
}

}  // namespace

int writeShiftSurfaces(const std::string& dir, const SurfaceChoice& choice,
                       const std::vector<TrainingResidue>& residues,
                       const std::vector<int>& foldOf) {
    int excluded = 0;
    std::vector<Observation> observations =
        collectObservations(residues, foldOf, choice.atom, choice.position, &excluded);
    AtomSurfaces surfaces(choice.grid, kFolds, observations);
    const Grid& g = choice.grid;
    SurfHeader header = headerOf(g, static_cast<float>(choice.cv.rms), choice.threshold);
    std::string atom = kAtomKindNames[choice.atom];
    std::string suffix = positionSuffix(choice.position);
    int written = 0;
    for (int cls = 0; cls < kShiftClassCount; cls++) {
        int source = sourceClass(cls);
        if (!surfaces.hasData(source)) continue;
        SurfaceArrays arrays(g.n * g.n);
        for (int cell = 0; cell < g.n * g.n; cell++) {
            arrays.set(cell, surfaces.estimate(source, cell, -1, choice.prior));
        }
        if (!writeSet(dir, atom + "." + kShiftClasses[cls] + suffix, arrays, header)) return -1;
        written += 3;
    }
    SurfaceArrays shared(g.n * g.n);
    for (int cell = 0; cell < g.n * g.n; cell++)
        shared.set(cell, surfaces.sharedEstimate(cell, -1));
    if (!writeSet(dir, atom + suffix, shared, header)) return -1;
    return written + 3;
}

std::vector<float> conformationSurface(const std::vector<TrainingResidue>& residues,
                                       const std::string& cls) {
    const Grid& g = kConformationGrid;
    KernelSums sums(g.n * g.n);
    std::string source = cls == "cys" ? "CYS" : cls == "his" ? "HIS" : cls;
    for (const TrainingResidue& r : residues) {
        if (conformationClass(r) == source) addObservation(&sums, g, r.phi, r.psi, 0.0f);
    }
    double mean = 0;
    for (double w : sums.w) mean += w;
    mean /= static_cast<double>(sums.w.size());
    std::vector<float> values(sums.w.size(), 1.0f);
    if (mean <= 0) return values;
    for (std::size_t i = 0; i < values.size(); i++) {
        values[i] = static_cast<float>((sums.w[i] + 0.01 * mean) / (1.01 * mean));
    }
    return values;
}

int writeConformationSurfaces(const std::string& dir,
                              const std::vector<TrainingResidue>& residues) {
    SurfHeader header = headerOf(kConformationGrid, 0.0f, 0.0f);
    for (const char* cls : kShiftClasses) {
        std::vector<float> values = conformationSurface(residues, cls);
        if (surfWrite2D((dir + "/" + cls + ".dat").c_str(), values.data(), header) != 0) return -1;
    }
    return kShiftClassCount;
}
