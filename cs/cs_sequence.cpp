#include "cs/cs_sequence.h"

#include <strings.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "pdb/residue_types.h"
#include "util/alloc.h"
#include "util/residue_number.h"
#include "util/table.h"
#include "util/token.h"

namespace {

constexpr int kLettersPerLine = 50;
constexpr int kLettersPerGroup = 10;

// The next blank-separated word of text after *p, or length 0 at the end.
const char* nextWord(const char** p, int64_t* length) {
    const char* q = *p;
    while (*q && isWhiteChar(*q)) q++;
    const char* start = q;
    while (*q && !isWhiteChar(*q)) q++;
    *p = q;
    *length = q - start;
    return start;
}

bool wordIs(const char* word, int64_t length, const char* text) {
    return length == static_cast<int64_t>(std::strlen(text)) &&
           strncasecmp(word, text, static_cast<std::size_t>(length)) == 0;
}

// The letters of a "DATA SEQUENCE ..." line (the rest of the line after its
// first two words), or null for any other line.
const char* sequenceText(const char* line) {
    int64_t length;
    const char* word = nextWord(&line, &length);
    if (!wordIs(word, length, "DATA")) return nullptr;
    word = nextWord(&line, &length);
    return wordIs(word, length, "SEQUENCE") ? line : nullptr;
}

// Appends the non-blank characters of text to letters (when given) and
// returns how many there are.
int64_t collectLetters(const char* text, char* letters) {
    int64_t count = 0;
    for (; *text; text++) {
        if (isWhiteChar(*text)) continue;
        if (letters) letters[count] = *text;
        count++;
    }
    return count;
}

int64_t sequenceLength(const TabHeader* hdr) {
    int64_t length = 0;
    for (; hdr && hdr->text; hdr = hdr->next) {
        const char* text = sequenceText(hdr->text);
        if (text) length += collectLetters(text, nullptr);
    }
    return length;
}

// DATA FIRST_RESID as a residue number; 1 when the line is absent or holds
// no number.
int firstResid(const TabHeader* hdr) {
    const char* text = getTabData(hdr, "FIRST_RESID");
    if (!text) return 1;
    char* end = nullptr;
    long long value = std::strtoll(text, &end, 10);
    if (end == text) return 1;
    return clampResid(value);
}

}  // namespace

int readCSSeqInfo(const TabHeader* hdr, CSSeqInfo* seq) {
    freeCSSeqInfo(seq);
    seq->firstResid = firstResid(hdr);
    int64_t length = sequenceLength(hdr);
    if (length == 0) return 0;
    // The length is kept as an int.
    if (length >= INT_MAX) {
        std::fprintf(stderr, "TESSERA Error Allocating CS SeqInfo Structure.\n");
        return 1;
    }
    seq->letters = charMalloc64("cs", length + 1);
    if (!seq->letters) {
        std::fprintf(stderr, "TESSERA Error Allocating CS SeqInfo Structure.\n");
        return 1;
    }
    int64_t at = 0;
    for (; hdr && hdr->text; hdr = hdr->next) {
        const char* text = sequenceText(hdr->text);
        if (text) at += collectLetters(text, seq->letters + at);
    }
    seq->letters[at] = '\0';
    seq->length = static_cast<int>(at);
    return 0;
}

void freeCSSeqInfo(CSSeqInfo* seq) {
    if (!seq) return;
    unAlloc64("cs", seq->letters, seq->letters ? static_cast<int64_t>(seq->length) + 1 : 0);
    seq->letters = nullptr;
    seq->length = 0;
}

void writeCSSeqInfo(FILE* out, const CSSeqInfo* seq) {
    if (!seq || !seq->letters || seq->length < 1) return;
    std::fprintf(out, "DATA FIRST_RESID %d\n", seq->firstResid);
    for (int line = 0; line < seq->length; line += kLettersPerLine) {
        std::fprintf(out, "DATA SEQUENCE");
        int end = std::min(seq->length, line + kLettersPerLine);
        for (int group = line; group < end; group += kLettersPerGroup) {
            int size = std::min(end - group, kLettersPerGroup);
            std::fprintf(out, " %.*s", size, seq->letters + group);
        }
        std::fprintf(out, "\n");
    }
}

int makeCSResIndex(const CSValue* rows, int count, CSResIndex* index) {
    *index = CSResIndex{rows, nullptr, 0};
    if (!rows || count < 1) return 0;
    index->order = intMalloc64("cs", count);
    if (!index->order) {
        std::fprintf(stderr, "DC Error Allocating CS Workspaces.\n");
        return 1;
    }
    index->count = count;
    for (int i = 0; i < count; i++) index->order[i] = i;
    std::sort(index->order, index->order + count, [rows](int a, int b) {
        return rows[a].resID != rows[b].resID ? rows[a].resID < rows[b].resID : a < b;
    });
    return 0;
}

void freeCSResIndex(CSResIndex* index) {
    unAlloc64("cs", index->order, static_cast<int64_t>(index->count) * sizeof(int));
    index->order = nullptr;
    index->count = 0;
}

int firstCSResRow(const CSResIndex* index, int64_t resid) {
    if (!index->order) return -1;
    const CSValue* rows = index->rows;
    const int* begin = index->order;
    const int* end = begin + index->count;
    const int* at = std::lower_bound(begin, end, resid,
                                     [rows](int row, int64_t r) { return rows[row].resID < r; });
    if (at == end || rows[*at].resID != resid) return -1;
    return static_cast<int>(at - index->order);
}

void csResName(const CSSeqInfo* seq, const CSResIndex* index, int64_t resid, char* name) {
    // A residue number beyond what a table may hold names no residue.
    if (resid > kResidLimit || resid < -kResidLimit) {
        copyText(name, kNameSize, "None");
        return;
    }
    if (seq && seq->letters) {
        int64_t at = resid - seq->firstResid;
        if (at >= 0 && at < seq->length) {
            name[0] = seq->letters[at];
            name[1] = '\0';
            return;
        }
    }
    int first = firstCSResRow(index, resid);
    if (first < 0) {
        copyText(name, kNameSize, "None");
        return;
    }
    // getResName1 and getResName3 share one static text: copy between them.
    char name3[kNameSize];
    copyName(name3, getResName3(index->rows[index->order[first]].resName));
    copyText(name, kNameSize, getResName1(name3));
}
