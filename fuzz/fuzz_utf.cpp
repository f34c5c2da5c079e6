// The six UTF converters on arbitrary input. The first byte chooses the converter and the flags,
// the second the target room of a run in steps, the third where a UTF-8 source is cut; the rest is
// the source. Every buffer is a heap block of exactly its size, so that the address sanitizer sees
// any step over an end. Checked: both pointers stay in their buffers; a run stopped for want of
// room and resumed with more gives what one run gives; a UTF-8 source cut anywhere and resumed
// from where the converter stopped gives the same as well. The converters that take plain text in
// blocks are held to their scalar twins with every kernel the processor runs, on the source and on
// mostly plain text made from it.
#include <zel/strings.h>

#include "strings/utf_blocks.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

namespace {

#define CHECK(condition)                                                        \
    do {                                                                        \
        if (!(condition)) {                                                     \
            std::fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, #condition); \
            std::abort();                                                       \
        }                                                                       \
    } while (0)

template <typename From, typename To>
using Converter = ZelConvResult (*)(const From**, const From*, To**, To*, DWORD);

template <typename T>
struct Exact {
    explicit Exact(size_t count) : size(count), data(new T[count]) {}
    Exact(const T* from, size_t count) : Exact(count) { std::copy(from, from + count, data.get()); }
    T* begin() const { return data.get(); }
    T* end() const { return data.get() + size; }
    size_t size;
    std::unique_ptr<T[]> data;
};

template <typename To>
struct Outcome {
    ZelConvResult status;
    size_t consumed;
    std::vector<To> out;
};

template <typename From, typename To>
Outcome<To> RunOnce(Converter<From, To> convert, const From* in, size_t count, size_t room, DWORD flags) {
    const Exact<From> source(in, count);
    const Exact<To> target(room);
    const From* src = source.begin();
    To* tgt = target.begin();
    const ZelConvResult status = convert(&src, source.end(), &tgt, target.end(), flags);
    CHECK(status >= ZelConvOk && status <= ZelConvSourceIllegal);
    CHECK(src >= source.begin() && src <= source.end());
    CHECK(tgt >= target.begin() && tgt <= target.end());
    return {status, size_t(src - source.begin()), std::vector<To>(target.begin(), tgt)};
}

// Units of the target per unit of the source at the most: a UTF-16 unit takes three bytes, a
// UTF-32 value four bytes or two units; everything else shrinks or keeps its count.
template <typename From, typename To>
constexpr size_t kWorstGrowth = sizeof(To) == 1 ? (sizeof(From) == 2 ? 3 : 4) : sizeof(To) < sizeof(From) ? 2 : 1;

// The most target units one character takes.
template <typename To>
constexpr size_t kLongestCharacter = sizeof(To) == 1 ? 4 : sizeof(To) == 2 ? 2 : 1;

template <typename From, typename To>
void Check(Converter<From, To> convert, const std::vector<From>& in, DWORD flags, size_t room, size_t cut) {
    const Outcome<To> whole = RunOnce(convert, in.data(), in.size(), in.size() * kWorstGrowth<From, To>, flags);
    CHECK(whole.status != ZelConvTargetExhausted);
    CHECK(whole.status != ZelConvSourceExhausted || sizeof(From) == 1);
    if (whole.status == ZelConvOk) CHECK(whole.consumed == in.size());
    if (whole.status == ZelConvSourceExhausted) CHECK(in.size() - whole.consumed <= 5);

    // The strict run from UTF-32 to UTF-16 reports values it passed over only at its end, and
    // one of its runs in steps may not have met them.
    const bool reportsLate = sizeof(From) == 4 && sizeof(To) == 2 && flags == ZelConvStrict &&
                             whole.status == ZelConvSourceIllegal && whole.consumed == in.size();

    // In steps: each with `room` places, one more after a step that made no progress.
    Outcome<To> steps{ZelConvOk, 0, {}};
    for (size_t grant = room;;) {
        const Outcome<To> step = RunOnce(convert, in.data() + steps.consumed, in.size() - steps.consumed, grant, flags);
        steps.consumed += step.consumed;
        steps.out.insert(steps.out.end(), step.out.begin(), step.out.end());
        steps.status = step.status;
        if (step.status != ZelConvTargetExhausted) break;
        const bool progress = step.consumed != 0;
        CHECK(progress || grant < kLongestCharacter<To>);
        grant = progress ? room : grant + 1;
    }
    CHECK(steps.out == whole.out);
    CHECK(steps.consumed == whole.consumed);
    CHECK(steps.status == whole.status || (reportsLate && steps.status == ZelConvOk));

    // A UTF-8 source cut short, then given the rest from where the converter stopped.
    if constexpr (sizeof(From) == 1) {
        Outcome<To> head = RunOnce(convert, in.data(), cut, cut * kWorstGrowth<From, To>, flags);
        CHECK(head.status != ZelConvTargetExhausted);
        if (head.status == ZelConvSourceIllegal) {
            CHECK(head.consumed == whole.consumed && head.out == whole.out && whole.status == ZelConvSourceIllegal);
            return;
        }
        CHECK(head.status == ZelConvOk ? head.consumed == cut : cut - head.consumed <= 5);
        const size_t rest = in.size() - head.consumed;
        const Outcome<To> tail =
            RunOnce(convert, in.data() + head.consumed, rest, rest * kWorstGrowth<From, To>, flags);
        head.out.insert(head.out.end(), tail.out.begin(), tail.out.end());
        CHECK(head.out == whole.out);
        CHECK(head.consumed + tail.consumed == whole.consumed);
        CHECK(tail.status == whole.status);
    }
}

// The block converter and the scalar one give the same status, stop at the same places and leave
// the same target buffer, behind the target pointer included: whole, cut, and with a target that
// runs out `room` units before what the whole needs.
template <typename From, typename To>
void CheckBlocks(Converter<From, To> blocks, Converter<From, To> scalar, const std::vector<From>& in, DWORD flags,
                 size_t room, size_t cut) {
    struct Run {
        ZelConvResult status;
        size_t consumed, written;
        std::vector<To> target;
    };
    auto run = [&in, flags](Converter<From, To> convert, size_t count, size_t space) {
        const Exact<From> source(in.data(), count);
        const Exact<To> target(space);
        std::fill(target.begin(), target.end(), To(0xA5));
        const From* src = source.begin();
        To* tgt = target.begin();
        const ZelConvResult status = convert(&src, source.end(), &tgt, target.end(), flags);
        return Run{status, size_t(src - source.begin()), size_t(tgt - target.begin()),
                   std::vector<To>(target.begin(), target.end())};
    };
    auto same = [&run, blocks, scalar](size_t count, size_t space) {
        const Run expected = run(scalar, count, space), actual = run(blocks, count, space);
        CHECK(actual.status == expected.status);
        CHECK(actual.consumed == expected.consumed);
        CHECK(actual.written == expected.written);
        CHECK(actual.target == expected.target);
        return expected.written;
    };
    zel::utf::LimitBlockLevel(2);
    for (int level = zel::utf::BlockLevel(); level >= 1; --level) {
        zel::utf::LimitBlockLevel(level);
        const size_t worst = in.size() * kWorstGrowth<From, To>;
        const size_t needed = same(in.size(), worst);
        same(cut, worst);
        same(in.size(), needed - std::min(needed, room));
    }
    zel::utf::LimitBlockLevel(2);
}

// Mostly plain text from the fuzzer's bytes, so that the blocks have runs to take: each byte gives
// a run of 1 to 8 ASCII letters, Hangul syllables or two-byte characters or, now and then, one
// unit that stops a block.
std::vector<ZelUTF16> PlainText(const uint8_t* data, size_t size) {
    static constexpr ZelUTF16 kStops[] = {0xD800, 0xDC00, 0xD83D, 0xDE00, 0x7F, 0x80, 0x7FF, 0x800, 0xFFFF, 0};
    std::vector<ZelUTF16> text;
    for (size_t i = 0; i < size; ++i) {
        const unsigned b = data[i], run = 1 + (b >> 5);
        for (unsigned k = 0; k < run; ++k) {
            switch (b % 8) {
                case 0: case 1: case 2: text.push_back(ZelUTF16(0x20 + (b + k) % 0x5F)); break;
                case 3: case 4: case 5: text.push_back(ZelUTF16(0xAC00 + (b + k) * 43)); break;
                case 6: text.push_back(ZelUTF16(0x80 + (b + k) * 7)); break;
                default: text.push_back(kStops[(b / 8 + k) % std::size(kStops)]); k = run; break;
            }
        }
    }
    return text;
}

std::vector<ZelUTF8> Utf8Of(const std::vector<ZelUTF16>& text) {
    std::vector<ZelUTF8> bytes(text.size() * 3);
    const ZelUTF16* src = text.data();
    ZelUTF8* tgt = bytes.data();
    zel::utf::ScalarUTF16toUTF8(&src, src + text.size(), &tgt, bytes.data() + bytes.size(), ZelConvLenient);
    bytes.resize(size_t(tgt - bytes.data()));
    return bytes;
}

template <typename From>
std::vector<From> Units(const uint8_t* data, size_t size) {
    std::vector<From> units(size / sizeof(From));
    if (!units.empty()) std::memcpy(units.data(), data, units.size() * sizeof(From));
    if constexpr (sizeof(From) == 4) {
        // Keep most values in the code space, where the interesting cases are.
        for (From& u : units)
            if (!(u >> 31)) u %= 0x110000;
    }
    return units;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 3) return 0;
    const DWORD flags = (data[0] & 0x80) ? DWORD(data[0]) : ZelConvStrict;
    const size_t room = 1 + data[1] % 16;
    const uint8_t cutByte = data[2];
    data += 3;
    size -= 3;
    const size_t cut = size * cutByte / 256;
    switch (data[-3] % 6) {
        case 0: {
            const std::vector<ZelUTF8> in = Units<ZelUTF8>(data, size);
            Check(&ZelConvertUTF8toUTF16, in, flags, room, cut);
            CheckBlocks(&ZelConvertUTF8toUTF16, &zel::utf::ScalarUTF8toUTF16, in, flags, room, cut);
            const std::vector<ZelUTF8> plain = Utf8Of(PlainText(data, size));
            CheckBlocks(&ZelConvertUTF8toUTF16, &zel::utf::ScalarUTF8toUTF16, plain, flags, room,
                        plain.size() * cutByte / 256);
            break;
        }
        case 2: {
            const std::vector<ZelUTF16> in = Units<ZelUTF16>(data, size);
            Check(&ZelConvertUTF16toUTF8, in, flags, room, 0);
            CheckBlocks(&ZelConvertUTF16toUTF8, &zel::utf::ScalarUTF16toUTF8, in, flags, room, in.size() * cutByte / 256);
            const std::vector<ZelUTF16> plain = PlainText(data, size);
            CheckBlocks(&ZelConvertUTF16toUTF8, &zel::utf::ScalarUTF16toUTF8, plain, flags, room,
                        plain.size() * cutByte / 256);
            break;
        }
        case 1: Check(&ZelConvertUTF8toUTF32, Units<ZelUTF8>(data, size), flags, room, cut); break;
        case 3: Check(&ZelConvertUTF16toUTF32, Units<ZelUTF16>(data, size), flags, room, 0); break;
        case 4: Check(&ZelConvertUTF32toUTF8, Units<ZelUTF32>(data, size), flags, room, 0); break;
        default: Check(&ZelConvertUTF32toUTF16, Units<ZelUTF32>(data, size), flags, room, 0); break;
    }
    return 0;
}
