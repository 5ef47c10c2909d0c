// Reading and indexing PDB files of several shapes, all generated here in a
// scratch directory: protein-like single models of 100,000, 250,000 and
// 1,000,000 atoms (many chains, every chain/residue/atom key distinct), a
// 20-model ensemble, a file whose every atom has a segment of its own, and a
// file that opens with one 32 MB REMARK line. For each file: the best wall
// time of readPDB (pdbFree timed apart), the time per atom, the ratio to a
// plain pass that only splits the file into lines, and the tracked bytes the
// structure holds. Exits 1 when a target is missed or tracked memory is not
// given back, 2 when a file cannot be written or is not read as written.
// With --keep DIR the files are written into DIR and left there.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "pdb/modes.h"
#include "pdb/pdb_types.h"
#include "pdb/reader.h"
#include "pdb/structure.h"
#include "util/alloc.h"
#include "util/growstr.h"

namespace {

constexpr int kRepeats = 3;
constexpr double kAllowedSpread = 2.0;        // slowest / fastest time per atom
constexpr double kMillionLimit = 1.0;         // seconds for the 1,000,000-atom file
constexpr double kSegmentBytesLimit = 100e6;  // tracked bytes for the one-atom segments
constexpr double kLongLineLimit = 0.5;        // seconds for the long REMARK file
constexpr long kRemarkBytes = 32L << 20;
constexpr int kEnsembleModels = 20, kEnsembleAtoms = 5000;
constexpr int kSegmentAtoms = 20000;

// A residue is N H CA HA, a side chain of 6, 9 or 12 atoms, then C O: 12, 15
// or 18 atoms, 15 on average. Names are in their columns 13-16 already.
const char* const kBackbone[] = {" N  ", " H  ", " CA ", " HA "};
const char* const kSideChain[] = {" CB ", " HB1", " HB2", " HB3", " CG ", " HG1",
                                  " HG2", " CD ", " HD1", " HD2", "HD21", "HD22"};
const char* const kCarbonyl[] = {" C  ", " O  "};
const char* const kResidueNames[] = {"VAL", "LEU", "LYS"};  // by side-chain size
const char kChainIDs[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
constexpr int kChainIDCount = sizeof kChainIDs - 1;
// Chains of 40-160 residues. Each pass through the 62 chain IDs numbers its
// residues from a new multiple of 500, so a chain ID met again never repeats
// a residue number and every key stays distinct, up to residue 9999.
constexpr int kMinChain = 40, kChainSpread = 121, kRoundStep = 500, kMaxResID = 9999;

// Atom a of a residue with a side chain of the given size.
const char* residueAtom(int a, int side) {
    if (a < 4) return kBackbone[a];
    if (a < 4 + side) return kSideChain[a - 4];
    return kCarbonyl[a - 4 - side];
}

double seconds(std::chrono::steady_clock::time_point since) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

// What a file holds, as written; the read must find the same.
struct Layout {
    long atoms = 0;
    int models = 0;
    int residues = 0;
    int groups = 0;  // distinct chain and segment pairs: the chain and segment records
};

// Writes ATOM lines in the fixed columns: serial 7-11 (wrapped at 99999, as
// large files do), name 13-16, residue 18-20, chain 22, residue number 23-26,
// coordinates 31-54, occupancy, temperature factor, segment 73-76, element 77-78.
class AtomWriter {
  public:
    explicit AtomWriter(FILE* out) : out_(out) {}
    bool atom(const char* name, const char* resName, char chain, int resID, double x, double y,
              double z, const char* seg) {
        char element[3] = {name[0] == ' ' ? name[1] : name[0], '\0', '\0'};
        serial_ = serial_ % 99999 + 1;
        return std::fprintf(
                   out_, "ATOM  %5ld %-4s %-3s %c%4d    %8.3f%8.3f%8.3f%6.2f%6.2f      %-4s%2s\n",
                   serial_, name, resName, chain, resID, x, y, z, 1.0,
                   0.01 * static_cast<double>(serial_ % 5000), seg, element) > 0;
    }

  private:
    FILE* out_;
    long serial_ = 0;
};

// Writes one protein-like model of exactly `atoms` atoms (the last residue
// may be cut short); false when the residue numbers would pass 9999.
bool writeProtein(FILE* out, long atoms, Layout* layout) {
    AtomWriter writer(out);
    long written = 0;
    for (int block = 0; written < atoms; block++) {
        char chain = kChainIDs[block % kChainIDCount];
        int firstResID = (block / kChainIDCount) * kRoundStep + 1;
        int length = kMinChain + (block * 37) % kChainSpread;
        if (firstResID + length - 1 > kMaxResID) return false;
        if (block < kChainIDCount) layout->groups++;
        // Each chain a helix of its own on a grid, its atoms 2.3-5.9 A off the axis.
        double cx = (block % 10) * 50.0 - 250, cy = (block / 10 % 10) * 50.0 - 250;
        double cz = (block / 100) * 250.0 - 800;
        for (int r = 0; r < length && written < atoms; r++) {
            int side = 6 + 3 * ((block + r) % 3);
            double angle = r * 100.0 * M_PI / 180;
            for (int a = 0; a < side + 6 && written < atoms; a++, written++) {
                double reach = 2.3 + 0.9 * static_cast<double>(a % 5);
                if (!writer.atom(residueAtom(a, side), kResidueNames[(side - 6) / 3], chain,
                                 firstResID + r, cx + reach * std::cos(angle + 0.3 * a),
                                 cy + reach * std::sin(angle + 0.3 * a), cz + 1.5 * r + 0.1 * a,
                                 "")) {
                    return false;
                }
            }
            layout->residues++;
        }
    }
    layout->atoms += written;
    return true;
}

bool writeProteinFile(const char* path, long atoms, Layout* layout) {
    FILE* out = std::fopen(path, "w");
    if (!out) return false;
    bool ok = writeProtein(out, atoms, layout) && std::fprintf(out, "END\n") > 0;
    layout->models = 1;
    return std::fclose(out) == 0 && ok;
}

// The same protein model in every MODEL/ENDMDL block, as an NMR ensemble is:
// each model's atoms repeat the keys of the first (the index keeps the first).
bool writeEnsembleFile(const char* path, Layout* layout) {
    FILE* out = std::fopen(path, "w");
    if (!out) return false;
    bool ok = true;
    for (int model = 1; model <= kEnsembleModels && ok; model++) {
        Layout one;
        ok = std::fprintf(out, "MODEL     %4d\n", model) > 0 &&
             writeProtein(out, kEnsembleAtoms, &one) && std::fprintf(out, "ENDMDL\n") > 0;
        layout->atoms += one.atoms;
        layout->residues = one.residues;  // the models share their residues
        layout->groups = one.groups;
    }
    ok = ok && std::fprintf(out, "END\n") > 0;
    layout->models = kEnsembleModels;
    return std::fclose(out) == 0 && ok;
}

// Protein-like atoms of one chain, each with its own segment (a 4-digit hex
// number): every atom is then a residue, chain and segment of its own.
bool writeSegmentFile(const char* path, Layout* layout) {
    FILE* out = std::fopen(path, "w");
    if (!out) return false;
    AtomWriter writer(out);
    bool ok = true;
    for (int i = 0; i < kSegmentAtoms && ok; i++) {
        char seg[8];
        std::snprintf(seg, sizeof seg, "%04X", i);
        const char* name = i % 15 < 4 ? kBackbone[i % 15] : kSideChain[i % 15 - 4];
        ok = writer.atom(name, "LEU", 'A', 1 + i / 15, 0.01 * (i % 1000), 0.02 * (i % 777),
                         0.03 * (i % 555), seg);
    }
    ok = ok && std::fprintf(out, "END\n") > 0;
    *layout = {kSegmentAtoms, 1, kSegmentAtoms, kSegmentAtoms};
    return std::fclose(out) == 0 && ok;
}

// One REMARK line of 32 MB, then a single short chain.
bool writeLongLineFile(const char* path, Layout* layout) {
    FILE* out = std::fopen(path, "w");
    if (!out) return false;
    std::vector<char> text(1 << 16);
    for (size_t i = 0; i < text.size(); i++) text[i] = "REMARK long text "[i % 17];
    bool ok = std::fputs("REMARK 999 ", out) >= 0;
    for (long left = kRemarkBytes; left > 0 && ok;) {
        size_t n = left < static_cast<long>(text.size()) ? static_cast<size_t>(left) : text.size();
        ok = std::fwrite(text.data(), 1, n, out) == n;
        left -= static_cast<long>(n);
    }
    ok = ok && std::fputc('\n', out) != EOF && writeProtein(out, 45, layout) &&
         std::fprintf(out, "END\n") > 0;
    layout->models = 1;
    return std::fclose(out) == 0 && ok;
}

// Splits the file into lines with the same growing line reader the PDB
// reader uses; returns the number of lines, or -1.
long splitLines(const char* path) {
    FILE* in = std::fopen(path, "r");
    if (!in) return -1;
    char fixed[1024], chunk[1024];
    char* line;
    int capacity = sizeof fixed;
    strAllocInit(&line, fixed, sizeof fixed);
    long count = 0;
    while (fgetsAlloc(&line, &capacity, in, chunk, sizeof chunk, fixed, sizeof fixed)) count++;
    strAllocFree(&line, fixed, sizeof fixed, &capacity);
    std::fclose(in);
    return count;
}

struct FileFigures {
    double read = 1e30, free = 1e30, split = 1e30;  // best seconds
    long lines = 0;
    int64_t trackedBytes = 0;  // held by the structure after readPDB
    bool readOk = true, balanced = true;
    Layout found;
    int segments = 0;
};

// Best of `repeats` runs of the line split, readPDB and pdbFree, each timed alone.
FileFigures measure(const char* path, int repeats) {
    FileFigures f;
    for (int r = 0; r < repeats; r++) {
        auto start = std::chrono::steady_clock::now();
        f.lines = splitLines(path);
        double split = seconds(start);
        if (split < f.split) f.split = split;

        int64_t before = 0, held = 0, after = 0, reused = 0;
        getMemUsed(&before, &reused);
        PDBData pdb;
        pdbNull(&pdb);
        start = std::chrono::steady_clock::now();
        int status = readPDB(path, &pdb, nullptr);
        double read = seconds(start);
        getMemUsed(&held, &reused);
        f.trackedBytes = held - before;
        f.found = {pdb.atomCount, pdb.modelCount, pdb.resCount, pdb.chainCount};
        f.segments = pdb.segCount;
        start = std::chrono::steady_clock::now();
        pdbFree(&pdb);
        double freed = seconds(start);
        getMemUsed(&after, &reused);
        if (read < f.read) f.read = read;
        if (freed < f.free) f.free = freed;
        if (after != before) f.balanced = false;
        if (status != 0 || f.lines < 0) f.readOk = false;
    }
    return f;
}

// A figure of /proc/self/status in kB, or -1.
long procStatusKB(const char* field) {
    FILE* in = std::fopen("/proc/self/status", "r");
    if (!in) return -1;
    char line[256];
    long kb = -1;
    size_t n = std::strlen(field);
    while (std::fgets(line, sizeof line, in)) {
        if (std::strncmp(line, field, n) == 0 && line[n] == ':') kb = std::atol(line + n + 1);
    }
    std::fclose(in);
    return kb;
}

struct PeakFigures {
    long beforeKB = -1, peakKB = -1;
    int exact = 0;  // 1 when the peak was reset before the read
};

// The peak resident size of reading the file, measured in a child process:
// the kernel's high-water mark is reset there just before readPDB (where
// /proc/self/clear_refs allows it), so the figure is the read's own peak over
// the process as it stood, not the largest size this process ever had.
PeakFigures peakOfRead(const char* path) {
    PeakFigures p;
    int fds[2];
    if (pipe(fds) != 0) return p;
    pid_t child = fork();
    if (child == 0) {
        close(fds[0]);
        PeakFigures c;
        c.beforeKB = procStatusKB("VmRSS");
        int clear = open("/proc/self/clear_refs", O_WRONLY);
        if (clear >= 0) {
            c.exact = write(clear, "5", 1) == 1;
            close(clear);
        }
        PDBData pdb;
        pdbNull(&pdb);
        if (readPDB(path, &pdb, nullptr) == 0) {
            c.peakKB = procStatusKB("VmHWM");
            if (c.peakKB < 0) {
                struct rusage usage;
                getrusage(RUSAGE_SELF, &usage);
                c.peakKB = usage.ru_maxrss;
                c.exact = 0;
            }
        }
        pdbFree(&pdb);
        bool sent = write(fds[1], &c, sizeof c) == static_cast<ssize_t>(sizeof c);
        _exit(sent ? 0 : 1);
    }
    close(fds[1]);
    if (child > 0) {
        if (read(fds[0], &p, sizeof p) != static_cast<ssize_t>(sizeof p)) p = PeakFigures();
        waitpid(child, nullptr, 0);
    }
    close(fds[0]);
    return p;
}

struct BenchFile {
    const char* name;
    bool (*write)(const char* path, Layout* layout);
    int repeats;
    std::string path;
    Layout layout;
    FileFigures figures;
};

bool writeProtein100k(const char* path, Layout* l) { return writeProteinFile(path, 100000, l); }
bool writeProtein250k(const char* path, Layout* l) { return writeProteinFile(path, 250000, l); }
bool writeProtein1m(const char* path, Layout* l) { return writeProteinFile(path, 1000000, l); }

double mb(double bytes) { return bytes / 1e6; }

bool sameLayout(const Layout& a, const Layout& b) {
    return a.atoms == b.atoms && a.models == b.models && a.residues == b.residues &&
           a.groups == b.groups;
}

bool report(const char* what, bool met) {
    std::printf("%-70s %s\n", what, met ? "met" : "MISSED");
    return met;
}

void removeFiles(const std::vector<BenchFile>& files, const char* dir) {
    for (const BenchFile& file : files) std::remove(file.path.c_str());
    rmdir(dir);
}

}  // namespace

int main(int argc, char** argv) {
    const char* keep = nullptr;
    if (argc == 3 && std::strcmp(argv[1], "--keep") == 0) {
        keep = argv[2];
    } else if (argc != 1) {
        std::fprintf(stderr, "usage: bench_pdb_read [--keep DIR]\n");
        return 2;
    }
    char scratch[] = "/tmp/dc_bench_pdb_readXXXXXX";
    bool made = keep ? mkdir(keep, 0777) == 0 || errno == EEXIST : mkdtemp(scratch) != nullptr;
    const char* dir = keep ? keep : scratch;
    if (!made) {
        std::fprintf(stderr, "bench_pdb_read: cannot make a directory for the files\n");
        return 2;
    }
    setPDBWarn(0);  // the ensemble's models 2-20 repeat the keys of model 1

    std::vector<BenchFile> files = {
        {"protein_100k.pdb", writeProtein100k, kRepeats, {}, {}, {}},
        {"protein_250k.pdb", writeProtein250k, kRepeats, {}, {}, {}},
        {"protein_1m.pdb", writeProtein1m, kRepeats, {}, {}, {}},
        {"ensemble_20x5000.pdb", writeEnsembleFile, kRepeats, {}, {}, {}},
        {"segments_20000.pdb", writeSegmentFile, kRepeats, {}, {}, {}},
        {"remark_32mb.pdb", writeLongLineFile, kRepeats, {}, {}, {}},
    };
    auto start = std::chrono::steady_clock::now();
    for (BenchFile& file : files) {
        file.path = std::string(dir) + "/" + file.name;
        if (!file.write(file.path.c_str(), &file.layout)) {
            std::fprintf(stderr, "bench_pdb_read: cannot write %s\n", file.path.c_str());
            if (!keep) removeFiles(files, dir);
            return 2;
        }
    }

    std::printf("%zu files written to %s in %.1f s\n", files.size(), dir, seconds(start));

    // The peak resident size first, while this process is still small.
    BenchFile& segments = files[4];
    PeakFigures peak = peakOfRead(segments.path.c_str());

    int64_t startBytes = 0, reused = 0;
    getMemUsed(&startBytes, &reused);
    bool readOk = true, balanced = true;
    std::printf("best of %d; wall time of readPDB alone, pdbFree timed apart\n", kRepeats);
    for (BenchFile& file : files) {
        FileFigures& f = file.figures = measure(file.path.c_str(), file.repeats);
        struct stat info;
        double size = stat(file.path.c_str(), &info) == 0 ? static_cast<double>(info.st_size) : 0;
        bool asWritten =
            f.readOk && sameLayout(f.found, file.layout) && f.segments == file.layout.groups;
        std::printf(
            "%-21s %7ld atoms, %d model(s), %d residues, %d chains, %d segments, %.1f MB\n"
            "  read %.3f s, %.3f us/atom, %.1f x the split (%.3f s, %ld lines); free %.3f s; "
            "holds %.1f MB tracked%s\n",
            file.name, f.found.atoms, f.found.models, f.found.residues, f.found.groups, f.segments,
            mb(size), f.read, 1e6 * f.read / static_cast<double>(file.layout.atoms),
            f.read / f.split, f.split, f.lines, f.free, mb(static_cast<double>(f.trackedBytes)),
            f.balanced ? "" : "; tracked bytes NOT back to their start after pdbFree");
        if (!asWritten) {
            std::printf(
                "  READ FAILED: expected %ld atoms, %d model(s), %d residues, %d chains and "
                "segments\n",
                file.layout.atoms, file.layout.models, file.layout.residues, file.layout.groups);
        }
        readOk = readOk && asWritten;
        balanced = balanced && f.balanced;
    }
    int64_t endBytes = 0;
    getMemUsed(&endBytes, &reused);
    balanced = balanced && endBytes == startBytes;
    if (peak.peakKB >= 0) {
        std::printf(
            "%s: peak resident size %.1f MiB in a child process (%.1f MiB before the read; %s)\n",
            segments.name, peak.peakKB / 1024.0, peak.beforeKB / 1024.0,
            peak.exact ? "peak reset just before readPDB"
                       : "process-wide peak, not reset before the read");
    } else {
        std::printf("%s: peak resident size not measured\n", segments.name);
    }

    double fastest = 1e30, slowest = 0;
    for (int i = 0; i < 3; i++) {
        double perAtom = files[i].figures.read / static_cast<double>(files[i].layout.atoms);
        if (perAtom < fastest) fastest = perAtom;
        if (perAtom > slowest) slowest = perAtom;
    }
    char what[160];
    bool met = true;
    std::snprintf(what, sizeof what,
                  "us/atom of the 3 protein files: %.3f-%.3f, spread %.2f x (under %.0f x)",
                  1e6 * fastest, 1e6 * slowest, slowest / fastest, kAllowedSpread);
    met = report(what, slowest / fastest < kAllowedSpread) && met;
    std::snprintf(what, sizeof what, "%ld atoms: read in %.3f s (under %.1f s)",
                  files[2].layout.atoms, files[2].figures.read, kMillionLimit);
    met = report(what, files[2].figures.read < kMillionLimit) && met;
    double segmentBytes = static_cast<double>(segments.figures.trackedBytes);
    std::snprintf(what, sizeof what, "%d one-atom segments: %.1f MB tracked (under %.0f MB)",
                  kSegmentAtoms, mb(segmentBytes), mb(kSegmentBytesLimit));
    met = report(what, segmentBytes < kSegmentBytesLimit) && met;
    std::snprintf(what, sizeof what, "%ld MB REMARK line: read in %.3f s (under %.1f s)",
                  kRemarkBytes >> 20, files[5].figures.read, kLongLineLimit);
    met = report(what, files[5].figures.read < kLongLineLimit) && met;
    std::snprintf(what, sizeof what, "tracked bytes back to their start after every pdbFree");
    met = report(what, balanced) && met;

    if (keep) {
        std::printf("files kept in %s\n", dir);
    } else {
        removeFiles(files, dir);
    }
    if (!readOk) return 2;
    return met ? 0 : 1;
}
