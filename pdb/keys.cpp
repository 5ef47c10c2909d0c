#include "pdb/keys.h"

#include <charconv>
#include <cstdio>
#include <cstring>
#include <initializer_list>

#include "pdb/modes.h"
#include "pdb/pdb_types.h"

namespace {

const char* chainPart(const char* chain) { return getPDBChainMode() ? "" : chain; }
const char* segPart(const char* seg) { return getPDBSegMode() ? "" : seg; }

char firstOrBlank(const char* text) { return text[0] ? text[0] : ' '; }

// Builds key texts without the printf machinery (the indexer makes one for
// every atom of a file); like snprintf it cuts a text at kKeySize - 1
// characters, since lookups may be handed names of any length.
class KeyWriter {
  public:
    explicit KeyWriter(char* key) : p_(key), end_(key + kKeySize - 1) {}
    ~KeyWriter() { *p_ = '\0'; }
    KeyWriter(const KeyWriter&) = delete;
    KeyWriter& operator=(const KeyWriter&) = delete;

    void number(int value) {
        char digits[16];
        char* last = std::to_chars(digits, digits + sizeof digits, value).ptr;
        copy(digits, static_cast<std::size_t>(last - digits));
    }
    void character(char c) {
        if (p_ < end_) *p_++ = c;
    }
    void blank() { character(' '); }
    // "%-<width>s": the text, then blanks up to width.
    void left(const char* text, std::size_t width) {
        std::size_t n = std::strlen(text);
        copy(text, n);
        pad(n, width);
    }
    // "%<width>s" of the texts joined: blanks first, then the texts.
    void right(std::initializer_list<const char*> texts, std::size_t width) {
        std::size_t n = 0;
        for (const char* text : texts) n += std::strlen(text);
        pad(n, width);
        for (const char* text : texts) copy(text, std::strlen(text));
    }

  private:
    void copy(const char* text, std::size_t n) {
        std::size_t room = static_cast<std::size_t>(end_ - p_);
        if (n > room) n = room;
        std::memcpy(p_, text, n);
        p_ += n;
    }
    void pad(std::size_t n, std::size_t width) {
        for (; n < width; n++) character(' ');
    }

    char* p_;
    char* end_;
};

// The three-character identifier field of an atom key: alt-loc, insertion
// code and chain, right-justified together (or one column each in full-atom
// mode); all blank when chains are ignored, so alt-locs are ignored too.
void idField(KeyWriter& key, const char* locID, const char* icode, const char* chain) {
    if (getPDBChainMode()) {
        key.right({}, 3);
    } else if (getPDBAtomMode()) {
        key.character(firstOrBlank(locID));
        key.character(firstOrBlank(icode));
        key.character(firstOrBlank(chain));
    } else {
        key.right({locID, icode, chain}, 3);
    }
}

// "%d %-4s %s %-4s": residue number, atom name, identifier field, segment.
void normalAtomKey(char* key, int resID, const char* atomName, const char* locID, const char* icode,
                   const char* chain, const char* seg) {
    KeyWriter out(key);
    out.number(resID);
    out.blank();
    out.left(atomName, 4);
    out.blank();
    idField(out, locID, icode, chain);
    out.blank();
    out.left(segPart(seg), 4);
}

const char* valueOrNone(const char* text) { return text[0] ? text : "None"; }

void uniqueAtomKey(char* key, const PDBAtom* atom) {
    std::snprintf(
        key, kKeySize, "atomID=%d resID=%d atomName=%s model=%d chain=%s seg=%s locID=%s icode=%s",
        atom->atomID, atom->resID, atom->atomName, atom->model, valueOrNone(chainPart(atom->chain)),
        valueOrNone(segPart(atom->seg)), valueOrNone(atom->locID), valueOrNone(atom->icode));
}

}  // namespace

void resKey(char* key, int resID, const char* chain, const char* seg) {
    KeyWriter out(key);
    out.number(resID);
    out.blank();
    out.left(chainPart(chain), 2);
    out.blank();
    out.left(segPart(seg), 4);
}

void chainKey(char* key, const char* chain, const char* seg) {
    std::snprintf(key, kKeySize, "%-2s %-4s", chainPart(chain), segPart(seg));
}

void segKey(char* key, const char* seg, const char* chain) {
    std::snprintf(key, kKeySize, "%-4s %-2s", segPart(seg), chainPart(chain));
}

void atomKey(char* key, const PDBAtom* atom) {
    if (getPDBUniqMode()) {
        uniqueAtomKey(key, atom);
        return;
    }
    normalAtomKey(key, atom->resID, atom->atomName, atom->locID, atom->icode, atom->chain,
                  atom->seg);
}

void atomLookupKey(char* key, int resID, const char* atomName, const char* chain, const char* seg) {
    normalAtomKey(key, resID, atomName, "", "", chain, seg);
}
