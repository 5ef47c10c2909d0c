// Table file speed: writes and reads a 200,000-row, 10-column table and
// compares reading it with merely splitting the same file into tokens. The
// reader must reach at least a third of the tokenizer's speed.
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "util/alloc.h"
#include "util/growstr.h"
#include "util/table.h"
#include "util/token.h"

namespace {

constexpr int kRows = 200000;
constexpr int kRepeats = 3;

double seconds(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

struct Table {
    TabVar* vars = nullptr;
    int columns = 0;
    std::vector<float> values;
};

// RESID, two text columns of amino-acid and atom names, seven real columns.
void buildTable(Table* t) {
    addTabVar(&t->vars, &t->columns, "RESID", "%5d", kTabInt, 0.0f);
    addTabVar(&t->vars, &t->columns, "RESNAME", "%4s", kTabText, 0.0f);
    addTabVar(&t->vars, &t->columns, "ATOMNAME", "%4s", kTabText, 0.0f);
    const char* reals[] = {"D", "DD", "W", "DI", "X", "Y", "Z"};
    for (const char* name : reals) addTabVar(&t->vars, &t->columns, name, "%9.3f", kTabReal, 0.0f);
    const char* residues[] = {"ALA", "GLY", "PHE", "ILE", "GLU", "TRP", "THR", "MET"};
    const char* atoms[] = {"N", "H", "CA", "HA", "C"};
    for (const char* r : residues) mapText(&t->vars[1], r);
    for (const char* a : atoms) mapText(&t->vars[2], a);
    t->values.resize(static_cast<std::size_t>(kRows) * t->columns);
    unsigned state = 1;
    for (int r = 0; r < kRows; r++) {
        float* row = &t->values[static_cast<std::size_t>(r) * t->columns];
        row[0] = static_cast<float>(r + 1);
        row[1] = static_cast<float>(r % 8);
        row[2] = static_cast<float>(r % 5);
        for (int c = 3; c < t->columns; c++) {
            state = state * 1103515245u + 12345u;
            row[c] = static_cast<float>(static_cast<int>(state >> 8) % 200000 - 100000) / 1000.0f;
        }
    }
}

// The baseline: every line split into all its tokens with the tokenizer.
long tokenizeFile(const char* path) {
    FILE* file = std::fopen(path, "r");
    if (!file) return -1;
    char fixed[1024], chunk[1024];
    char* line;
    int capacity = sizeof fixed;
    strAllocInit(&line, fixed, sizeof fixed);
    long characters = 0;
    while (fgetsAlloc(&line, &capacity, file, chunk, sizeof chunk, fixed, sizeof fixed)) {
        int count = cntToken(line);
        for (int n = 1; n <= count; n++)
            characters += static_cast<long>(std::strlen(getToken(n, line)));
    }
    strAllocFree(&line, fixed, sizeof fixed, &capacity);
    std::fclose(file);
    return characters;
}

bool sameValues(const Table& t, const TabData& read) {
    if (read.rows != kRows || read.columns != t.columns) return false;
    for (std::size_t i = 0; i < t.values.size(); i++) {
        if (read.values[i] != t.values[i]) return false;
    }
    return true;
}

}  // namespace

int main() {
    char path[] = "/tmp/dc_table_io_XXXXXX";
    int fd = mkstemp(path);
    if (fd < 0) {
        std::fprintf(stderr, "table_io: cannot make a scratch file\n");
        return 1;
    }
    close(fd);

    Table t;
    buildTable(&t);
    double writeTime = 1e30, tokenTime = 1e30, readTime = 1e30;
    bool ok = true;
    for (int k = 0; k < kRepeats && ok; k++) {
        auto start = std::chrono::steady_clock::now();
        ok = wrTable(path, t.values.data(), t.columns, kRows, t.vars, -9999, nullptr) == 0;
        double elapsed = seconds(start);
        if (elapsed < writeTime) writeTime = elapsed;
    }
    for (int k = 0; k < kRepeats && ok; k++) {
        auto start = std::chrono::steady_clock::now();
        ok = tokenizeFile(path) > 0;
        double elapsed = seconds(start);
        if (elapsed < tokenTime) tokenTime = elapsed;
    }
    for (int k = 0; k < kRepeats && ok; k++) {
        TabData read{nullptr, 0, 0, nullptr};
        auto start = std::chrono::steady_clock::now();
        ok = rdTable2(path, &read, nullptr, -9999.0f, 0, 1) == 0;
        double elapsed = seconds(start);
        if (elapsed < readTime) readTime = elapsed;
        ok = ok && sameValues(t, read);
        freeTab(&read);
    }
    freeTab(nullptr, t.vars, t.columns, 0);
    freeToken();
    std::remove(path);
    if (!ok) {
        std::fprintf(stderr, "table_io: the table did not read back as written\n");
        return 1;
    }

    int64_t inUse = 0;
    getMemUsed(&inUse, nullptr);
    double writeRate = kRows / writeTime, tokenRate = kRows / tokenTime,
           readRate = kRows / readTime;
    double ratio = readRate / tokenRate;
    std::printf("table_io: %d rows x %d columns, best of %d\n", kRows, t.columns, kRepeats);
    std::printf("  write     %10.0f rows/s (%.3f s)\n", writeRate, writeTime);
    std::printf("  tokenize  %10.0f rows/s (%.3f s)\n", tokenRate, tokenTime);
    std::printf("  read      %10.0f rows/s (%.3f s)\n", readRate, readTime);
    std::printf("  read/tokenize speed %.2f (target at least 0.33): %s\n", ratio,
                ratio >= 1.0 / 3.0 ? "met" : "MISSED");
    std::printf("  bytes still in use: %ld\n", static_cast<long>(inUse));
    return ratio >= 1.0 / 3.0 && inUse == 0 ? 0 : 1;
}
