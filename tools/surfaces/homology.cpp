#include "tools/surfaces/homology.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>

#include "pdb/residue_types.h"
#include "util/alloc.h"
#include "util/table.h"

namespace {

constexpr const char* kAminoAcids = "ARNDCQEGHILKMFPSTWYV";

using Scores = std::map<char, std::map<char, int>>;

bool readScores(const char* path, Scores* scores) {
    std::ifstream in(path);
    std::string line;
    std::vector<char> columns;
    while (std::getline(in, line)) {
        std::istringstream words(line);
        std::string first;
        if (!(words >> first) || first[0] == '#') continue;
        if (columns.empty()) {
            columns.push_back(first[0]);
            for (std::string w; words >> w;) columns.push_back(w[0]);
            continue;
        }
        int score;
        for (char column : columns) {
            if (!(words >> score)) break;
            (*scores)[first[0]][column] = score;
        }
    }
    for (const char* a = kAminoAcids; *a; a++) {
        for (const char* b = kAminoAcids; *b; b++) {
            if (!scores->count(*a) || !(*scores)[*a].count(*b)) return false;
        }
    }
    return true;
}

}  // namespace

int readHomology(const char* path, HomologyTable* table) {
    Scores s;
    if (!readScores(path, &s)) {
        std::fprintf(stderr, "make_surfaces: cannot read the 20 amino acids from %s\n", path);
        return 1;
    }
    std::string codes = kAminoAcids;
    int n = static_cast<int>(codes.size());
    table->names.clear();
    for (char c : codes) table->names.push_back(getResName3(std::string(1, c).c_str()));
    table->names.push_back("xPRO");
    table->d.assign(n + 1, std::vector<float>(n + 1, 0.0f));
    for (int i = 0; i < n; i++) {
        for (int j = 0; j < n; j++) {
            char a = codes[i], b = codes[j];
            table->d[i][j] =
                0.5f * static_cast<float>(s[a][a] + s[b][b]) - static_cast<float>(s[a][b]);
        }
    }
    // xPRO: the mean over the types that can stand before a proline and be
    // named so (all but glycine and proline).
    for (int j = 0; j < n; j++) {
        float sum = 0.0f;
        int members = 0;
        for (int i = 0; i < n; i++) {
            if (codes[i] == 'G' || codes[i] == 'P') continue;
            sum += table->d[i][j];
            members++;
        }
        table->d[n][j] = table->d[j][n] = sum / static_cast<float>(members);
    }
    table->d[n][n] = 0.0f;
    return 0;
}

int writeHomology(const char* path, const HomologyTable& table) {
    TabVar* vars = nullptr;
    int columns = 0;
    addTabVar(&vars, &columns, "RESNAME", "%-4s", kTabText, 0.0f);
    for (const std::string& name : table.names)
        addTabVar(&vars, &columns, name.c_str(), "%5.2f", kTabReal, 0.0f);
    int rows = static_cast<int>(table.names.size());
    float* values = fltMalloc64("table", static_cast<int64_t>(rows) * columns);
    for (int r = 0; r < rows; r++) {
        float* cells = values + static_cast<int64_t>(r) * columns;
        cells[0] = static_cast<float>(mapText(vars, table.names[r].c_str()));
        for (int c = 0; c < rows; c++) cells[c + 1] = table.d[r][c];
    }
    TabHeader* hdr = hdrInit();
    addHdrLine(
        "REMARK Residue dissimilarity d(a,b) = (s(a,a) + s(b,b))/2 - s(a,b) from the BLOSUM62",
        hdr);
    addHdrLine("REMARK scores s (Henikoff & Henikoff, PNAS 89:10915, 1992; public domain); xPRO, a",
               hdr);
    addHdrLine("REMARK residue before a proline, is the mean over all types but GLY and PRO.", hdr);
    int status = wrTable(path, values, columns, rows, vars, -9999, hdr);
    freeHdr(hdr);
    freeTab(values, vars, columns, rows);
    return status;
}
