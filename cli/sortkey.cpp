// zel sortkey: the sort keys of Hangul text, one a character, and lines sorted by them.
#include <zel/codetables.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <cstdio>
#include <string>
#include <vector>

#include "commands.h"
#include "input.h"
#include "report.h"
#include "text.h"
#include "system.h"

const char kSortKeyUsage[] =
    "Usage: zel sortkey [TEXT | -]\n"
    "       zel sortkey --sort [FILE | -]\n\n"
    "Without --sort: each character of the text on a line of its own, with its code point and\n"
    "its sort key in hexadecimal, or - where it has none. A key is 01, then the places of the\n"
    "initial, medial and final in the order of Jamo, so modern and old Hangul sort alike.\n\n"
    "--sort  writes the lines of the file or standard input sorted by the keys of their\n"
    "        characters; characters without a key come after all Hangul, by code point. A long\n"
    "        input is sorted in runs in the temporary directory, so memory stays bounded; a line\n"
    "        may hold 1 MiB at most.\n\n"
    "Text is UTF-8 on the command line and on standard input and output.\n";

namespace {

constexpr DWORD kNoKey = 0xFFFFFFFF;

bool TablesReady() {
    if (LoadUnicodeTbl() == 2) return true;
    Fail("the code tables in ${Common}\\Code could not be read");
    return false;
}

std::vector<DWORD> KeysOf(const std::u16string& text) {
    std::vector<DWORD> keys(text.size() + 1);
    const int count = ZelUnicodeToSortIndex(0, text.c_str(), -1, keys.data(), static_cast<int>(keys.size()));
    keys.resize(static_cast<size_t>(count));
    return keys;
}

// A character as it can be shown on its own line: lone surrogate halves and controls are not.
std::string Shown(WCHAR c) {
    if (c < 0x20 || c == 0x7F || (c >= 0xD800 && c <= 0xDFFF)) return " ";
    const WCHAR one[2] = {c, 0};
    return ToUtf8(one);
}

int ListKeys(const std::u16string& text) {
    const std::vector<DWORD> keys = KeysOf(text);
    for (size_t i = 0; i < keys.size(); ++i) {
        const unsigned code = text[i];
        if (keys[i] == kNoKey) printf("%s U+%04X -\n", Shown(text[i]).c_str(), code);
        else printf("%s U+%04X %08X\n", Shown(text[i]).c_str(), code, static_cast<unsigned>(keys[i]));
    }
    return 0;
}

// A line with its order: per unit the sort key above and the code unit below, so that equal keys
// (no key at all, or the same Jamo in another form) order by code unit.
struct Line {
    std::string bytes;
    std::vector<uint64_t> order;
};

bool Before(const Line& a, const Line& b) { return a.order < b.order; }

Line MakeLine(std::string bytes) {
    Line line;
    line.bytes = std::move(bytes);
    const std::u16string text = FromUtf8(line.bytes);
    const std::vector<DWORD> keys = KeysOf(text);
    line.order.reserve(keys.size());
    for (size_t i = 0; i < keys.size(); ++i) line.order.push_back(uint64_t{keys[i]} << 16 | text[i]);
    return line;
}

// What a line takes in memory, roughly: its bytes, its order, and the bookkeeping.
size_t Footprint(const Line& line) {
    return sizeof(Line) + line.bytes.capacity() + line.order.capacity() * sizeof(uint64_t) + 32;
}

// Past this much memory the lines read so far are sorted and put aside in a temporary file.
constexpr size_t kRunMemory = size_t{16} << 20;
constexpr size_t kLongestLine = size_t{1} << 20;

// Lines of a file or standard input, one at a time, without their line ends.
class LineSource {
public:
    explicit LineSource(FILE* file) : file_(file) {}
    // False at the end or on an error (error() tells).
    bool Next(std::string& line) {
        line.clear();
        int c;
        while ((c = getc(file_)) != EOF && c != '\n') {
            if (line.size() == kLongestLine) return tooLong_ = true, false;
            line.push_back(static_cast<char>(c));
        }
        if (c == EOF && line.empty()) return false;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        return true;
    }
    std::string error() const {
        if (tooLong_) return "a line is longer than 1 MiB, the longest that --sort takes";
        if (ferror(file_)) return strerror(errno);
        return {};
    }

private:
    FILE* file_;
    bool tooLong_ = false;
};

// A sorted run put aside in an unnamed temporary file, read back a line at a time.
struct Run {
    FILE* file = nullptr;
    Line head;
    bool Advance() {
        std::string bytes;
        LineSource source(file);
        if (!source.Next(bytes)) return false;
        head = MakeLine(std::move(bytes));
        return true;
    }
};

bool PutAside(std::vector<Line>& lines, std::vector<Run>& runs) {
    std::stable_sort(lines.begin(), lines.end(), Before);
    FILE* file = tmpfile();
    if (!file) return false;
    for (const Line& line : lines) {
        fwrite(line.bytes.data(), 1, line.bytes.size(), file);
        putc('\n', file);
    }
    lines.clear();
    lines.shrink_to_fit();
    if (fflush(file) != 0 || ferror(file)) return fclose(file), false;
    rewind(file);
    runs.push_back({file, {}});
    return true;
}

// Merges the runs in order; among equal heads the earlier run goes first, as a stable sort would.
void Merge(std::vector<Run>& runs) {
    std::vector<Run*> live;
    for (Run& run : runs)
        if (run.Advance()) live.push_back(&run);
    while (!live.empty()) {
        size_t best = 0;
        for (size_t i = 1; i < live.size(); ++i)
            if (Before(live[i]->head, live[best]->head)) best = i;
        fwrite(live[best]->head.bytes.data(), 1, live[best]->head.bytes.size(), stdout);
        putc('\n', stdout);
        if (!live[best]->Advance()) live.erase(live.begin() + static_cast<long>(best));
    }
}

int SortLines(FILE* input) {
    std::vector<Line> lines;
    std::vector<Run> runs;
    size_t memory = 0;
    LineSource source(input);
    std::string bytes;
    bool asideOk = true;
    while (source.Next(bytes)) {
        lines.push_back(MakeLine(std::move(bytes)));
        memory += Footprint(lines.back());
        if (memory >= kRunMemory) {
            if (!(asideOk = PutAside(lines, runs))) break;
            memory = 0;
        }
    }
    std::string problem = source.error();
    if (!asideOk) problem = std::string("cannot put a sorted run aside: ") + strerror(errno);
    if (problem.empty() && !lines.empty() && !runs.empty() && !PutAside(lines, runs))
        problem = std::string("cannot put a sorted run aside: ") + strerror(errno);
    if (problem.empty() && runs.empty()) {
        std::stable_sort(lines.begin(), lines.end(), Before);
        for (const Line& line : lines) printf("%s\n", line.bytes.c_str());
    } else if (problem.empty()) {
        Merge(runs);
        for (Run& run : runs)
            if (ferror(run.file)) problem = std::string("cannot read a sorted run back: ") + strerror(errno);
    }
    for (Run& run : runs) fclose(run.file);
    return problem.empty() ? 0 : Fail(problem);
}

}  // namespace

int RunSortKey(const Args& args) {
    if (!args.empty() && args[0] == "--sort") {
        if (args.size() > 2) return Misuse("--sort takes one input at most");
        const std::string file = args.size() == 2 ? args[1] : "-";
        if (!TablesReady()) return 1;
        if (file == "-") return SortLines(stdin);
        if (!NotADirectory(file)) return 1;
        FILE* input = OpenStreamByName(file, "rb");
        if (!input) return Fail("cannot read " + file + ": " + strerror(errno));
        const int status = SortLines(input);
        fclose(input);
        return status;
    }
    if (!args.empty() && args[0].size() > 1 && args[0][0] == '-') return Misuse("unknown option " + args[0]);
    if (!TablesReady()) return 1;
    auto input = LineArgument(args, 0);
    if (!input) return 1;
    return ListKeys(FromUtf8(*input));
}
