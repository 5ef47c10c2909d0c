#include "pdb/regex.h"

#include <climits>
#include <cstdio>
#include <cstring>

#include "util/alloc.h"

namespace {

const char* const kTag = "regex";
constexpr uint32_t kMagic = 0x44435245;  // "DCRE"
// Largest program (nodes and pool) a pattern may compile to.
constexpr int64_t kMaxProgramBytes = 65536;
// Largest table of visited choice points the matcher keeps, in bits.
constexpr int64_t kMaxSeenBits = int64_t{1} << 26;

// Characters that end a literal run.
const char* const kMeta = "^$.[()|?+*\\";

char lastError[1024];

bool isRepeatOp(char c) { return c == '*' || c == '+' || c == '?'; }

// ---------------------------------------------------------------------------
// Compiler. The pattern is parsed twice: the first pass only counts nodes and
// pool bytes so that the program can be taken as one block of exact size, the
// second pass writes it. Links between nodes are relative offsets, so a node
// can be inserted in front of the piece just written without touching them.

// Properties of a compiled piece.
constexpr int kHasWidth = 1;    // never matches the empty text
constexpr int kSimple = 2;      // matches exactly one character: can be starred directly
constexpr int kEndsBranch = 4;  // a bare $: nothing but | or ) may follow it

struct Compiler {
    const char* parse = nullptr;
    int groups = 1;
    bool sizing = true;
    bool failed = false;
    int nodeCount = 0;
    int poolSize = 0;
    RegNode* node = nullptr;
    char* pool = nullptr;
};

int fail(Compiler& c, const char* text) {
    strRegError(text);
    c.failed = true;
    return -1;
}

bool tooBig(const Compiler& c) {
    return static_cast<int64_t>(c.nodeCount) * static_cast<int64_t>(sizeof(RegNode)) + c.poolSize >
           kMaxProgramBytes;
}

int emit(Compiler& c, RegOp op) {
    if (c.sizing) {
        c.nodeCount++;
        return tooBig(c) ? fail(c, "Regexp too big") : c.nodeCount - 1;
    }
    c.node[c.nodeCount] = RegNode{op, 0, 0, 0, 0};
    return c.nodeCount++;
}

// Reserves bytes in the pool and returns their offset.
int reservePool(Compiler& c, int bytes) {
    int offset = c.poolSize;
    c.poolSize += bytes;
    if (c.sizing && tooBig(c)) return fail(c, "Regexp too big");
    return offset;
}

// Puts a new node in front of the node at index at, moving it and everything after it.
void insertNode(Compiler& c, RegOp op, int at) {
    if (!c.sizing) {
        std::memmove(&c.node[at + 1], &c.node[at], sizeof(RegNode) * (c.nodeCount - at));
        c.node[at] = RegNode{op, 0, 0, 0, 0};
    }
    c.nodeCount++;
    if (c.sizing && tooBig(c)) fail(c, "Regexp too big");
}

// Sets the link at the end of the chain starting at from to point at target.
void linkTail(Compiler& c, int from, int target) {
    if (c.sizing || c.failed) return;
    int scan = from;
    while (c.node[scan].next != 0) scan += c.node[scan].next;
    c.node[scan].next = target - scan;
}

// As linkTail, for the operand of a branch node.
void linkOperandTail(Compiler& c, int branch, int target) {
    if (c.sizing || c.failed || c.node[branch].op != kRegBranch) return;
    linkTail(c, branch + 1, target);
}

int compileAlternatives(Compiler& c, bool inGroup, int* flags);

int compileSet(Compiler& c) {
    unsigned char bits[32] = {};
    auto add = [&bits](unsigned v) { bits[v >> 3] |= static_cast<unsigned char>(1u << (v & 7)); };
    bool negate = *c.parse == '^';
    if (negate) c.parse++;
    int last = -1;
    // A ] or - first in the set stands for itself.
    if (*c.parse == ']' || *c.parse == '-') {
        last = static_cast<unsigned char>(*c.parse++);
        add(static_cast<unsigned>(last));
    }
    while (*c.parse != '\0' && *c.parse != ']') {
        if (*c.parse == '-' && last >= 0 && c.parse[1] != ']' && c.parse[1] != '\0') {
            int high = static_cast<unsigned char>(c.parse[1]);
            if (last > high) return fail(c, "invalid [] range");
            for (int v = last; v <= high; v++) add(static_cast<unsigned>(v));
            last = high;
            c.parse += 2;
        } else {
            last = static_cast<unsigned char>(*c.parse++);
            add(static_cast<unsigned>(last));
        }
    }
    if (*c.parse != ']') return fail(c, "unmatched []");
    c.parse++;
    if (negate) {
        for (unsigned char& b : bits) b = static_cast<unsigned char>(~b);
        bits[0] &= 0xFE;  // the end of the text is never a member
    }
    int at = emit(c, kRegAnyOf);
    int offset = reservePool(c, 32);
    if (c.failed) return -1;
    if (!c.sizing) {
        c.node[at].data = offset;
        std::memcpy(c.pool + offset, bits, 32);
    }
    return at;
}

int compileLiteral(Compiler& c, const char* text, int length) {
    int at = emit(c, kRegExactly);
    int offset = reservePool(c, length);
    if (c.failed) return -1;
    if (!c.sizing) {
        c.node[at].data = offset;
        c.node[at].length = length;
        std::memcpy(c.pool + offset, text, static_cast<size_t>(length));
    }
    return at;
}

int compileAtom(Compiler& c, int* flags) {
    *flags = 0;
    char ch = *c.parse++;
    switch (ch) {
        case '^': return emit(c, kRegBol);
        case '$': *flags = kEndsBranch; return emit(c, kRegEol);
        case '.': *flags = kHasWidth | kSimple; return emit(c, kRegAny);
        case '[': *flags = kHasWidth | kSimple; return compileSet(c);
        case '(': {
            int inner = 0;
            int at = compileAlternatives(c, true, &inner);
            *flags = inner & kHasWidth;
            return at;
        }
        case '\0':
        case '|':
        case ')': return fail(c, "internal urp");  // the caller stops before these
        case '?':
        case '+':
        case '*': return fail(c, "?+* follows nothing");
        case '\\':
            if (*c.parse == '\0') return fail(c, "trailing \\");
            *flags = kHasWidth | kSimple;
            return compileLiteral(c, c.parse++, 1);
        default: {
            c.parse--;
            int length = static_cast<int>(std::strcspn(c.parse, kMeta));
            if (length <= 0) return fail(c, "internal disaster");
            // The last character of a run followed by an operator is the operand alone.
            if (length > 1 && isRepeatOp(c.parse[length])) length--;
            *flags = kHasWidth | (length == 1 ? kSimple : 0);
            int at = compileLiteral(c, c.parse, length);
            c.parse += length;
            return at;
        }
    }
}

// An atom with an optional *, + or ?. Loops over an operand that is more
// than one character are built from branches: x* is (x then back | nothing),
// x+ is x then (back to x | nothing), x? is (x | nothing).
int compilePiece(Compiler& c, int* flags) {
    int operand = 0;
    int start = compileAtom(c, &operand);
    if (c.failed) return -1;
    char op = *c.parse;
    if (!isRepeatOp(op)) {
        *flags = operand;
        return start;
    }
    if (!(operand & kHasWidth) && op != '?') return fail(c, "*+ operand could be empty");
    *flags = op == '+' ? kHasWidth : 0;

    if (op == '*' && (operand & kSimple)) {
        insertNode(c, kRegStar, start);
    } else if (op == '*') {
        insertNode(c, kRegBranch, start);
        linkOperandTail(c, start, emit(c, kRegBack));
        linkOperandTail(c, start, start);
        linkTail(c, start, emit(c, kRegBranch));
        linkTail(c, start, emit(c, kRegNothing));
    } else if (op == '+' && (operand & kSimple)) {
        insertNode(c, kRegPlus, start);
    } else if (op == '+') {
        int loop = emit(c, kRegBranch);
        linkTail(c, start, loop);
        linkTail(c, emit(c, kRegBack), start);
        linkTail(c, loop, emit(c, kRegBranch));
        linkTail(c, start, emit(c, kRegNothing));
    } else {
        insertNode(c, kRegBranch, start);
        linkTail(c, start, emit(c, kRegBranch));
        int empty = emit(c, kRegNothing);
        linkTail(c, start, empty);
        linkOperandTail(c, start, empty);
    }
    if (c.failed) return -1;
    c.parse++;
    if (isRepeatOp(*c.parse)) return fail(c, "nested *?+");
    return start;
}

bool endsBranch(char ch) { return ch == '\0' || ch == '|' || ch == ')'; }

// One alternative: a branch node followed by its pieces in order.
int compileBranch(Compiler& c, int* flags) {
    *flags = 0;
    int at = emit(c, kRegBranch);
    int chain = -1;
    while (!c.failed && !endsBranch(*c.parse)) {
        int piece = 0;
        int latest = compilePiece(c, &piece);
        if (c.failed) return -1;
        *flags |= piece & kHasWidth;
        if (chain >= 0) linkTail(c, chain, latest);
        chain = latest;
        if ((piece & kEndsBranch) && !endsBranch(*c.parse)) return fail(c, "junk on end");
    }
    if (chain < 0) emit(c, kRegNothing);
    return c.failed ? -1 : at;
}

// The whole pattern, or a parenthesised group: branches separated by |.
int compileAlternatives(Compiler& c, bool inGroup, int* flags) {
    *flags = kHasWidth;
    int group = 0;
    int start = -1;
    if (inGroup) {
        if (c.groups >= kRegSubExp) return fail(c, "too many ()");
        group = c.groups++;
        start = emit(c, kRegOpen);
        if (!c.sizing && start >= 0) c.node[start].arg = static_cast<uint8_t>(group);
    }
    for (bool first = true; first || *c.parse == '|'; first = false) {
        if (!first) c.parse++;
        int branchFlags = 0;
        int branch = compileBranch(c, &branchFlags);
        if (c.failed) return -1;
        if (start < 0) {
            start = branch;
        } else {
            linkTail(c, start, branch);
        }
        if (!(branchFlags & kHasWidth)) *flags &= ~kHasWidth;
    }
    int ender = emit(c, inGroup ? kRegClose : kRegEnd);
    if (c.failed) return -1;
    if (!c.sizing && inGroup) c.node[ender].arg = static_cast<uint8_t>(group);
    linkTail(c, start, ender);
    if (!c.sizing) {
        // Each alternative's last piece leads to the node after the alternation.
        int scan = inGroup ? start + c.node[start].next : start;
        while (c.node[scan].op == kRegBranch) {
            linkOperandTail(c, scan, ender);
            scan += c.node[scan].next;
        }
    }
    if (inGroup && *c.parse++ != ')') return fail(c, "unmatched ()");
    if (!inGroup && *c.parse != '\0') {
        return fail(c, *c.parse == ')' ? "unmatched ()" : "junk on end");
    }
    return start;
}

bool compilePass(Compiler& c, const char* pattern) {
    c.parse = pattern;
    c.groups = 1;
    c.nodeCount = 0;
    c.poolSize = 0;
    int flags = 0;
    compileAlternatives(c, false, &flags);
    return !c.failed;
}

// Each branch, star and plus node gets its own row in the matcher's table of
// visited positions.
void numberChoices(RegProgram* program) {
    int slot = 0;
    for (int i = 0; i < program->nodeCount; i++) {
        RegOp op = static_cast<RegOp>(program->node[i].op);
        if (op == kRegBranch || op == kRegStar || op == kRegPlus) program->node[i].data = slot++;
    }
    program->choiceCount = slot;
}

// A single alternative that begins with ^ can only match at the start.
bool isAnchored(const RegProgram* program) {
    const RegNode* first = program->node;
    return program->nodeCount > 1 && first[0].op == kRegBranch &&
           first[first[0].next].op == kRegEnd && first[1].op == kRegBol;
}

// ---------------------------------------------------------------------------
// Matcher. A depth-first search over the program in the order that prefers
// the earlier alternative and the longer repetition. Pending choices and the
// group positions to restore are kept on a stack, in the matcher itself for
// short names and on the heap when it grows.
//
// Every loop consumes at least one character per turn (the compiler refuses
// empty loop bodies), so whether the rest of the pattern can match from a
// choice node depends only on the node and the text position. A choice
// reached a second time at the same position has therefore already failed and
// is skipped; this keeps patterns such as (a+)+b from taking exponential time.

enum BacktrackKind : uint8_t { kAlternative, kRetry, kRestoreStart, kRestoreEnd };

struct Backtrack {
    uint8_t kind;
    uint8_t group;
    int32_t pc;
    int32_t count;  // next repeat count to try, or the position to restore
    int32_t pos;
};

// Room kept inside the matcher, so matching short names needs no heap.
constexpr int64_t kInlineStack = 64;
constexpr int64_t kInlineSeenBytes = 256;

struct Matcher {
    Backtrack inlineStack[kInlineStack];
    unsigned char inlineSeen[kInlineSeenBytes];
    RegProgram* program = nullptr;
    const char* text = nullptr;
    int32_t length = 0;
    bool lineStart = true;
    Backtrack* stack = nullptr;
    int64_t depth = 0;
    int64_t capacity = 0;
    unsigned char* seen = nullptr;
    int64_t seenBytes = 0;
    int32_t start[kRegSubExp];
    int32_t end[kRegSubExp];
};

bool onHeap(const Matcher& m) { return m.stack && m.stack != m.inlineStack; }

bool growStack(Matcher& m) {
    if (!m.stack) {
        m.stack = m.inlineStack;
        m.capacity = kInlineStack;
        return true;
    }
    int64_t grown = m.capacity * 2;
    int64_t entry = static_cast<int64_t>(sizeof(Backtrack));
    void* block = onHeap(m) ? voidReMalloc64(kTag, m.stack, grown * entry, m.capacity * entry)
                            : voidMalloc64(kTag, grown * entry);
    if (!block) {
        strRegError("out of space");
        return false;
    }
    if (!onHeap(m)) std::memcpy(block, m.inlineStack, sizeof m.inlineStack);
    m.stack = static_cast<Backtrack*>(block);
    m.capacity = grown;
    return true;
}

bool push(Matcher& m, Backtrack entry) {
    if (m.depth == m.capacity && !growStack(m)) return false;
    m.stack[m.depth++] = entry;
    return true;
}

// Marks a choice node as visited at pos; false when it already was.
bool firstVisit(Matcher& m, const RegNode& n, int32_t pos) {
    if (!m.seen) return true;
    int64_t bit = static_cast<int64_t>(n.data) * (m.length + 1) + pos;
    unsigned char mask = static_cast<unsigned char>(1u << (bit & 7));
    if (m.seen[bit >> 3] & mask) return false;
    m.seen[bit >> 3] |= mask;
    return true;
}

// The node linked from pc, or -1 after an error when there is none.
int32_t follow(Matcher& m, int32_t pc) {
    int32_t offset = m.program->node[pc].next;
    int64_t target = static_cast<int64_t>(pc) + offset;
    if (offset == 0 || target < 0 || target >= m.program->nodeCount) {
        strRegError("corrupted pointers");
        return -1;
    }
    return static_cast<int32_t>(target);
}

bool inSet(const Matcher& m, const RegNode& n, char ch) {
    unsigned v = static_cast<unsigned char>(ch);
    return (m.program->pool[n.data + (v >> 3)] >> (v & 7)) & 1;
}

// How many characters from pos the single-character node matches in a row; -1 on error.
int32_t countRun(const Matcher& m, const RegNode& operand, int32_t pos) {
    const char* p = m.text + pos;
    const char* stop = m.text + m.length;
    const char* q = p;
    switch (operand.op) {
        case kRegAny: return m.length - pos;
        case kRegExactly:
            while (q < stop && *q == m.program->pool[operand.data]) q++;
            break;
        case kRegAnyOf:
            while (q < stop && inSet(m, operand, *q)) q++;
            break;
        default: strRegError("internal foulup"); return -1;
    }
    return static_cast<int32_t>(q - p);
}

// Continues a star or plus at pc that started at pos with the largest count
// not above count that can lead on. Sets pc and pos; 0 when no count is
// left, -1 on error.
int repeatFrom(Matcher& m, int32_t& pc, int32_t& pos, int32_t count) {
    const RegNode& n = m.program->node[pc];
    int32_t least = n.op == kRegPlus ? 1 : 0;
    int32_t next = follow(m, pc);
    if (next < 0) return -1;
    const RegNode& after = m.program->node[next];
    // A literal after the loop tells which counts are worth trying.
    char wanted = after.op == kRegExactly ? m.program->pool[after.data] : '\0';
    while (count >= least && wanted != '\0' && m.text[pos + count] != wanted) count--;
    if (count < least) return 0;
    if (count > least && !push(m, Backtrack{kRetry, 0, pc, count - 1, pos})) return -1;
    pos += count;
    pc = next;
    return 1;
}

// Enters a star or plus node. A later entry inside the same run would only
// try continuations that this entry tries, so those positions are marked as
// visited too. Conversely, when a later position of the run was entered
// before, the continuations from there on are known to fail and only the
// shorter counts are left to try.
int enterRepeat(Matcher& m, int32_t& pc, int32_t& pos) {
    const RegNode& n = m.program->node[pc];
    if (pc + 1 >= m.program->nodeCount) {
        strRegError("corrupted pointers");
        return -1;
    }
    if (!firstVisit(m, n, pos)) return 0;
    int32_t run = countRun(m, m.program->node[pc + 1], pos);
    if (run < 0) return -1;
    int32_t fresh = 1;
    while (fresh <= run && firstVisit(m, n, pos + fresh)) fresh++;
    int32_t least = n.op == kRegPlus ? 1 : 0;
    int32_t most = fresh - 1 + least < run ? fresh - 1 + least : run;
    return repeatFrom(m, pc, pos, most);
}

// Resumes the most recent pending choice; 0 when none is left, -1 on error.
int backtrack(Matcher& m, int32_t& pc, int32_t& pos) {
    while (m.depth > 0) {
        Backtrack e = m.stack[--m.depth];
        switch (e.kind) {
            case kRestoreStart: m.start[e.group] = e.count; break;
            case kRestoreEnd: m.end[e.group] = e.count; break;
            case kAlternative:
                pc = e.pc;
                pos = e.pos;
                return 1;
            case kRetry: {
                pc = e.pc;
                pos = e.pos;
                int r = repeatFrom(m, pc, pos, e.count);
                if (r != 0) return r;
                break;
            }
        }
    }
    return 0;
}

// Matches the program at position begin. 1 on a match (end[0] set), 0 when
// none starts there, -1 on error.
int matchAt(Matcher& m, int32_t begin) {
    const RegProgram* p = m.program;
    for (int i = 0; i < kRegSubExp; i++) m.start[i] = m.end[i] = -1;
    m.depth = 0;
    int32_t pc = 0;
    int32_t pos = begin;
    for (;;) {
        if (pc < 0 || pc >= p->nodeCount) {
            strRegError("corrupted pointers");
            return -1;
        }
        const RegNode& n = p->node[pc];
        int ok = 1;
        switch (n.op) {
            case kRegEnd:
                m.start[0] = begin;
                m.end[0] = pos;
                return 1;
            case kRegBol: ok = pos == 0 && m.lineStart; break;
            case kRegEol: ok = pos == m.length; break;
            case kRegAny:
                ok = pos < m.length;
                pos += ok;
                break;
            case kRegAnyOf:
                ok = pos < m.length && inSet(m, n, m.text[pos]);
                pos += ok;
                break;
            case kRegExactly:
                ok = n.length <= m.length - pos && std::memcmp(m.text + pos, p->pool + n.data,
                                                               static_cast<size_t>(n.length)) == 0;
                if (ok) pos += n.length;
                break;
            case kRegNothing:
            case kRegBack: break;
            case kRegOpen:
            case kRegClose: {
                if (n.arg >= kRegSubExp) {
                    strRegError("memory corruption");
                    return -1;
                }
                bool open = n.op == kRegOpen;
                int32_t& slot = open ? m.start[n.arg] : m.end[n.arg];
                if (!push(m, Backtrack{open ? kRestoreStart : kRestoreEnd, n.arg, 0, slot, 0}))
                    return -1;
                slot = pos;
                break;
            }
            case kRegBranch: {
                int32_t alternative = follow(m, pc);
                if (alternative < 0) return -1;
                if (p->node[alternative].op == kRegBranch) {
                    ok = firstVisit(m, n, pos);
                    if (ok && !push(m, Backtrack{kAlternative, 0, alternative, 0, pos})) return -1;
                }
                if (ok) {
                    pc++;
                    continue;
                }
                break;
            }
            case kRegStar:
            case kRegPlus:
                ok = enterRepeat(m, pc, pos);
                if (ok < 0) return -1;
                if (ok) continue;
                break;
            default: strRegError("memory corruption"); return -1;
        }
        if (ok) {
            pc = follow(m, pc);
            if (pc < 0) return -1;
            continue;
        }
        int r = backtrack(m, pc, pos);
        if (r <= 0) return r;
    }
}

bool prepare(Matcher& m, RegProgram* program, const char* text, int lineStart) {
    size_t length = std::strlen(text);
    if (length >= static_cast<size_t>(INT32_MAX)) {
        strRegError("out of space");
        return false;
    }
    m.program = program;
    m.text = text;
    m.length = static_cast<int32_t>(length);
    m.lineStart = lineStart != 0;
    int64_t bits = static_cast<int64_t>(program->choiceCount) * (m.length + 1);
    if (bits > 0 && bits <= kMaxSeenBits) {
        m.seenBytes = (bits + 7) / 8;
        if (m.seenBytes <= kInlineSeenBytes) {
            std::memset(m.inlineSeen, 0, static_cast<size_t>(m.seenBytes));
            m.seen = m.inlineSeen;
            return true;
        }
        m.seen = static_cast<unsigned char*>(voidMallocNull64(kTag, m.seenBytes));
        if (!m.seen) {
            strRegError("out of space");
            return false;
        }
    }
    return true;
}

void release(Matcher& m) {
    if (onHeap(m)) unAlloc64(kTag, m.stack, m.capacity * static_cast<int64_t>(sizeof(Backtrack)));
    if (m.seen != m.inlineSeen) unAlloc64(kTag, m.seen, m.seenBytes);
}

}  // namespace

namespace {

// Lays the compiled program out in block (bytes long, sized by sizing).
RegProgram* writeProgram(const char* pattern, const Compiler& sizing, char* block, int64_t bytes) {
    std::memset(block, 0, static_cast<size_t>(bytes));
    int64_t nodeBytes = static_cast<int64_t>(sizing.nodeCount) * sizeof(RegNode);
    auto* program = reinterpret_cast<RegProgram*>(block);
    program->node = reinterpret_cast<RegNode*>(block + sizeof(RegProgram));
    char* pool = block + sizeof(RegProgram) + nodeBytes;

    Compiler writing;
    writing.sizing = false;
    writing.node = program->node;
    writing.pool = pool;
    compilePass(writing, pattern);  // the same pattern parsed the same way cannot fail now

    program->magic = kMagic;
    program->nodeCount = writing.nodeCount;
    program->bytes = bytes;
    program->pool = pool;
    numberChoices(program);
    program->anchored = isAnchored(program);
    return program;
}

// Bytes of the compiled program, or -1 (with the error text) for a bad pattern.
int64_t programBytes(const char* pattern, Compiler* sizing) {
    if (!pattern) {
        strRegError("NULL argument");
        return -1;
    }
    if (!compilePass(*sizing, pattern)) return -1;
    int64_t nodeBytes = static_cast<int64_t>(sizing->nodeCount) * sizeof(RegNode);
    return static_cast<int64_t>(sizeof(RegProgram)) + nodeBytes + sizing->poolSize;
}

}  // namespace

RegProgram* strRegComp(const char* pattern) {
    Compiler sizing;
    int64_t bytes = programBytes(pattern, &sizing);
    if (bytes < 0) return nullptr;
    auto* block = static_cast<char*>(voidMallocNull64(kTag, bytes));
    if (!block) {
        strRegError("out of space");
        return nullptr;
    }
    return writeProgram(pattern, sizing, block, bytes);
}

RegProgram* strRegCompInto(const char* pattern, void* buffer, int64_t size) {
    Compiler sizing;
    int64_t bytes = programBytes(pattern, &sizing);
    if (bytes < 0 || bytes > size) return nullptr;
    return writeProgram(pattern, sizing, static_cast<char*>(buffer), bytes);
}

void strRegFree(RegProgram* program) {
    if (program) unAlloc64(kTag, program, program->bytes);
}

int strRegExec2(RegProgram* program, const char* text, int lineStart) {
    if (!program || !text) {
        strRegError("NULL parameter");
        return 0;
    }
    if (program->magic != kMagic) {
        strRegError("corrupted program");
        return 0;
    }
    if (program->anchored && !lineStart) return 0;
    Matcher m;
    if (!prepare(m, program, text, lineStart)) return 0;
    int found = 0;
    int32_t lastStart = program->anchored ? 0 : m.length;
    for (int32_t begin = 0; begin <= lastStart && found == 0; begin++) found = matchAt(m, begin);
    if (found == 1) {
        for (int i = 0; i < kRegSubExp; i++) {
            bool set = m.start[i] >= 0 && m.end[i] >= 0;
            program->startp[i] = set ? text + m.start[i] : nullptr;
            program->endp[i] = set ? text + m.end[i] : nullptr;
        }
    }
    release(m);
    return found == 1;
}

int strRegExec(RegProgram* program, const char* text) { return strRegExec2(program, text, 1); }

int strMatchRegex(const char* text, const char* pattern) {
    RegProgram* program = strRegComp(pattern);
    if (!program) return 0;
    int found = strRegExec(program, text);
    strRegFree(program);
    return found;
}

void strRegError(const char* text) {
    std::snprintf(lastError, sizeof(lastError), "%s", text ? text : "");
}

const char* strGetRegError() { return lastError; }

void resetRegError() { lastError[0] = '\0'; }
