// A large random corpus through every operation that resolves, reorders or shapes a line, in the
// orders a caller uses them (one line through BidiString and ShapeString in turn, with the same or
// other flags, and a line that differs in one unit right after it), hashed into one digest. The
// digest was taken from the straightforward implementation, before the line operations were made
// fast; any change of any output, including a unit written past a terminator, changes it.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include <zel/bidi.h>

#include "bidi/bidi_reference.h"
#include "sha256.h"

namespace {

class Random {
public:
    explicit Random(uint64_t seed) : state_(seed) {}
    uint32_t Next(uint32_t bound) {
        state_ = state_ * 6364136223846793005ull + 1442695040888963407ull;
        return static_cast<uint32_t>((state_ >> 33) % bound);
    }

private:
    uint64_t state_;
};

// Characters of every class, the letters of every joining type, the lam-alef pairs, marks, white
// space, separators and the formatting controls.
constexpr WCHAR kPool[] = {
    u'a', u'Z', 0x05D0, 0x00C0, 0xAC00, 0x3042,                    // L
    0xFB1D, 0xFB21, 0xFB4F, 0x05BE,                                // R, and a Hebrew letter kept L
    0x0627, 0x0628, 0x062A, 0x062F, 0x0644, 0x0647, 0x0648, 0x064A, 0x0649, 0x0621, 0x0622, 0x0623,
    0x0625, 0x0626, 0x0629, 0x067C, 0x0679, 0x06A9, 0x06CC, 0x06D2, 0x0640, 0x0710, 0x0712,  // AL
    0x0660, 0x0665, 0x066B, 0x066C,                                // AN
    u'0', u'7', 0x06F1, 0x00B2,                                    // EN
    0x064E, 0x0651, 0x0300, 0x0670,                                // NSM
    u',', u':', u'/', 0x060C, u'+', u'-', u'$', u'%', u'#', 0x066A, u'.',  // CS, ES, ET, full stop
    u' ', 0x2003, u'\t', 0x001F, u'\n', 0x2029, 0x000D,            // WS, S, B
    0x200B, 0x200C, 0x200D, 0x200E, 0x200F, 0x202A, 0x202B, 0x202C, 0x202D, 0x202E, 0x00AD,  // BN, controls
    u'(', u')', u'<', u'>', u'[', u']', 0x2201, 0x2208, 0x226E, 0xFF62, u'!', u'"', 0x00AB,   // ON, mirrored
};

std::u16string RandomLine(Random& random) {
    // Mostly short lines, some around the stack scratch space, a few up to 2000 units.
    const uint32_t band = random.Next(10);
    const uint32_t length = band < 5 ? 1 + random.Next(24) : band < 8 ? 1 + random.Next(300)
                                                              : band < 9 ? 1000 + random.Next(50)
                                                                         : 1 + random.Next(2000);
    // A flavour per line, so that some lines are mostly Arabic, some mostly Latin, some anything.
    const uint32_t flavour = random.Next(4);
    std::u16string line;
    while (line.size() < length) {
        const uint32_t pick = random.Next(100);
        if (pick < 6) {
            line += u'\u0644';
            if (random.Next(4) == 0) line += u'\u064E';
            static constexpr WCHAR kAlefs[] = {0x0622, 0x0623, 0x0625, 0x0627, 0x0624};
            line += kAlefs[random.Next(5)];
        } else if (pick < 10) {
            line += static_cast<WCHAR>(random.Next(0x10000));
        } else if (flavour == 1 && pick < 70) {
            line += static_cast<WCHAR>(0x0620 + random.Next(0xE0));
        } else if (flavour == 2 && pick < 70) {
            line += static_cast<WCHAR>(u'a' + random.Next(26));
        } else {
            line += kPool[random.Next(sizeof kPool / sizeof kPool[0])];
        }
    }
    line.resize(length);
    return line;
}

// The operations the corpus goes through: the library's, or the straightforward ones.
struct Operations {
    DWORD (*bidiString)(WCHAR*, DWORD, WORD*, WORD*, int, int);
    DWORD (*shapeString)(WCHAR*, const WCHAR*, DWORD, WORD*, WORD*, int, int);
    DWORD (*bidiAlgorithm)(LONG, DWORD, WORD*, WORD*, DWORD*);
    void (*resolveWhitespace)(WORD, const WORD*, WORD*, DWORD);
};

const Operations kLibrary = {
    BidiString, ShapeString,
    [](LONG base, DWORD count, WORD* classes, WORD* levels, DWORD* raised) {
        return BidiAlgorithm(base, nullptr, count, classes, levels, raised);
    },
    BidiResolveWhitespace,
};

const Operations kReference = {
    zelbidi::reference::BidiString, zelbidi::reference::ShapeString, zelbidi::reference::BidiAlgorithm,
    zelbidi::reference::ResolveWhitespace,
};

template <typename T>
void AddArray(Sha256& digest, const std::vector<T>& values) {
    digest.AddValue(static_cast<uint64_t>(values.size()));
    digest.Add(values.data(), values.size() * sizeof(T));
}

struct Flags {
    int mirror, direction;
    bool classes, levels;
};

Flags RandomFlags(Random& random) {
    static constexpr int kDirections[] = {1, 1, 0, 2, -1};
    static constexpr int kMirrors[] = {0, 1, 7};
    return {kMirrors[random.Next(3)], kDirections[random.Next(5)], random.Next(2) == 0, random.Next(3) != 0};
}

void RunBidiString(const Operations& op, Sha256& digest, const std::u16string& line, Flags flags) {
    const auto count = static_cast<DWORD>(line.size());
    std::vector<WCHAR> text(line.begin(), line.end());
    std::vector<WORD> classes(count, 0x5A5A), levels(count, 0xA5A5);
    digest.AddValue(op.bidiString(text.data(), count, flags.classes ? classes.data() : nullptr,
                               flags.levels ? levels.data() : nullptr, flags.mirror, flags.direction));
    AddArray(digest, text);
    AddArray(digest, classes);
    AddArray(digest, levels);
}

void RunShapeString(const Operations& op, Sha256& digest, const std::u16string& line, Flags flags) {
    const auto count = static_cast<DWORD>(line.size());
    std::vector<WCHAR> out(count + 1, 0xBEEF);
    std::vector<WORD> classes(count, 0x5A5A), levels(count, 0xA5A5);
    digest.AddValue(op.shapeString(out.data(), line.data(), count, flags.classes ? classes.data() : nullptr,
                                flags.levels ? levels.data() : nullptr, flags.mirror, flags.direction));
    AddArray(digest, out);
    AddArray(digest, classes);
    AddArray(digest, levels);
}

// BidiAlgorithm and BidiResolveWhitespace on classes of their own, some skipped, any base level.
void RunClasses(const Operations& op, Sha256& digest, Random& random, size_t count) {
    std::vector<WORD> classes(count), levels(count);
    for (size_t i = 0; i < count; ++i) {
        const uint32_t pick = random.Next(40);
        classes[i] = pick < 19 ? static_cast<WORD>(pick) : pick < 21 ? WORD{0xFFFF} : static_cast<WORD>(pick % 19);
        levels[i] = static_cast<WORD>(random.Next(7));
    }
    const std::vector<WORD> raw = classes;
    static constexpr LONG kBases[] = {0, 1, 2, 3, -1, 0x10001, 62};
    const LONG base = kBases[random.Next(7)];
    DWORD raised = 0xDEAD;
    const bool withRaised = random.Next(4) != 0;
    digest.AddValue(op.bidiAlgorithm(base, static_cast<DWORD>(count), classes.data(), levels.data(),
                                     withRaised ? &raised : nullptr));
    digest.AddValue(raised);
    AddArray(digest, classes);
    AddArray(digest, levels);
    op.resolveWhitespace(static_cast<WORD>(base), raw.data(), levels.data(), static_cast<DWORD>(count));
    AddArray(digest, levels);
}

std::string CorpusDigest(const Operations& op) {
    Random random(0x5EEDB1D1ull);
    Sha256 digest;
    for (int n = 0; n < 4000; ++n) {
        const std::u16string line = RandomLine(random);
        const Flags first = RandomFlags(random);
        // Mostly the same direction and mirroring for both calls, as a caller that wants the
        // display order and the shapes of one line asks; sometimes other flags.
        Flags second = random.Next(4) == 0 ? RandomFlags(random) : first;
        second.classes = random.Next(2) == 0;
        second.levels = random.Next(2) == 0;
        if (random.Next(2) == 0) {
            RunBidiString(op, digest, line, first);
            RunShapeString(op, digest, line, second);
            RunShapeString(op, digest, line, second);
        } else {
            RunShapeString(op, digest, line, first);
            RunBidiString(op, digest, line, second);
            RunBidiString(op, digest, line, first);
        }
        // The same line with one unit changed, right behind it.
        std::u16string other = line;
        other[random.Next(static_cast<uint32_t>(other.size()))] = kPool[random.Next(sizeof kPool / sizeof kPool[0])];
        RunShapeString(op, digest, other, first);
        RunBidiString(op, digest, other, first);
        RunClasses(op, digest, random, 1 + random.Next(random.Next(8) == 0 ? 1500 : 40));
    }
    return digest.Hex();
}

constexpr char kDigest[] = "20ef2ce72bbfb3e14e21f1403325fe913df736e1864ae8f2ae3a7fb475734bea";

TEST(BidiCorpus, DigestOfAllOutputs) { EXPECT_EQ(CorpusDigest(kLibrary), kDigest); }

// The straightforward operations, which the fuzz targets hold the library to, give the same.
TEST(BidiCorpus, ReferenceGivesTheSameDigest) { EXPECT_EQ(CorpusDigest(kReference), kDigest); }

}  // namespace
