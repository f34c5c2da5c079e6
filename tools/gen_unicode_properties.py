#!/usr/bin/env python3
"""Writes the compiled-in Unicode 3.2.0 character property tables of the bidi subsystem.

Usage:
    python3 tools/gen_unicode_properties.py [--output DIR]

Writes two files into DIR (default: src/bidi of this source tree):

    unicode_property_tables.h    declarations, page counts and the layout of the property byte
    unicode_property_tables.cpp  the tables

The source data is Python's unicodedata.ucd_3_2_0, for U+0000 to U+FFFF. Joining types and the
mirror pairs are not part of that data; they are listed below. The output depends on nothing but
the data and this script, so running it again gives the same bytes; a test of the bidi suite
compares the committed files with a fresh run.

The tables are two-stage: a 256-entry index by the high byte selects a page of 256 entries by the
low byte, and identical pages are stored once. The script checks the sizes the library relies on
(distinct pages per table, mirrored characters, mirror list) and stops with an error if the data
does not give them.
"""

import argparse
import os
import sys
import unicodedata

UCD = unicodedata.ucd_3_2_0
GENERATOR = "tools/gen_unicode_properties.py"
HEADER_NAME = "unicode_property_tables.h"
SOURCE_NAME = "unicode_property_tables.cpp"

# The sizes the library and its tests rely on.
EXPECTED_PAGES = {"category": 54, "property": 40, "decomposition": 37}
EXPECTED_MIRRORED = 492
EXPECTED_MIRROR_ENTRIES = 316

CATEGORIES = {
    "Cn": 0, "Mn": 1, "Mc": 2, "Me": 3, "Nd": 4, "Nl": 5, "No": 6, "Zs": 7,
    "Zl": 8, "Zp": 9, "Cc": 10, "Cf": 11, "Cs": 12, "Co": 13,
    "Lu": 15, "Ll": 16, "Lt": 17, "Lm": 18, "Lo": 19,
    "Pc": 20, "Pd": 21, "Ps": 22, "Pe": 23, "Pi": 24, "Pf": 25, "Po": 26,
    "Sm": 27, "Sc": 28, "Sk": 29, "So": 30,
}

CLASSES = {
    "ON": 0, "L": 1, "R": 2, "AN": 3, "EN": 4, "AL": 5, "NSM": 6, "CS": 7, "ES": 8, "ET": 9,
    "BN": 10, "S": 11, "WS": 12, "B": 13, "RLE": 14, "RLO": 15, "LRO": 16, "LRE": 17, "PDF": 18,
}

# Where the library's classes differ from the data: unassigned characters are L, U+001D is a
# segment separator, and the Hebrew letters and punctuation are L.
CLASS_OVERRIDES = [
    ((0x001D, 0x001D), "S"),
    ((0x05BE, 0x05BE), "L"),
    ((0x05C0, 0x05C0), "L"),
    ((0x05C3, 0x05C3), "L"),
    ((0x05D0, 0x05EA), "L"),
    ((0x05F0, 0x05F4), "L"),
]

JOINING_DUAL = 1
JOINING_RIGHT = 2
JOINING_CAUSING = 3
JOINING = {
    JOINING_DUAL: [
        (0x0626, 0x0626), (0x0628, 0x0628), (0x062A, 0x062E), (0x0633, 0x063A),
        (0x0641, 0x0647), (0x0649, 0x064A), (0x066E, 0x066F), (0x0678, 0x0687),
        (0x069A, 0x06BF), (0x06C1, 0x06C1), (0x06CC, 0x06CC), (0x06CE, 0x06CE),
        (0x06D0, 0x06D1), (0x06FA, 0x06FC), (0x0712, 0x0714), (0x071A, 0x071D),
        (0x071F, 0x0727), (0x0729, 0x0729), (0x072B, 0x072B),
    ],
    JOINING_RIGHT: [
        (0x0622, 0x0625), (0x0627, 0x0627), (0x0629, 0x0629), (0x062F, 0x0632),
        (0x0648, 0x0648), (0x0671, 0x0673), (0x0675, 0x0677), (0x0688, 0x0699),
        (0x06C0, 0x06C0), (0x06C2, 0x06CB), (0x06CD, 0x06CD), (0x06CF, 0x06CF),
        (0x06D2, 0x06D3), (0x06D5, 0x06D5), (0x0710, 0x0710), (0x0715, 0x0719),
        (0x071E, 0x071E), (0x0728, 0x0728), (0x072A, 0x072A), (0x072C, 0x072C),
    ],
    JOINING_CAUSING: [(0x0640, 0x0640), (0x200D, 0x200D)],
}

# Mirrored characters and their partners, ordered by the first of each pair.
MIRROR_PAIRS = [
    (0x0028, 0x0029), (0x003C, 0x003E), (0x005B, 0x005D), (0x007B, 0x007D), (0x00AB, 0x00BB),
    (0x2039, 0x203A), (0x2045, 0x2046), (0x207D, 0x207E), (0x208D, 0x208E), (0x2208, 0x220B),
    (0x2209, 0x220C), (0x220A, 0x220D), (0x2215, 0x29F5), (0x223C, 0x223D), (0x2243, 0x22CD),
    (0x2252, 0x2253), (0x2254, 0x2255), (0x2264, 0x2265), (0x2266, 0x2267), (0x2268, 0x2269),
    (0x226A, 0x226B), (0x226E, 0x226F), (0x2270, 0x2271), (0x2272, 0x2273), (0x2274, 0x2275),
    (0x2276, 0x2277), (0x2278, 0x2279), (0x227A, 0x227B), (0x227C, 0x227D), (0x227E, 0x227F),
    (0x2280, 0x2281), (0x2282, 0x2283), (0x2284, 0x2285), (0x2286, 0x2287), (0x2288, 0x2289),
    (0x228A, 0x228B), (0x228F, 0x2290), (0x2291, 0x2292), (0x2298, 0x29B8), (0x22A2, 0x22A3),
    (0x22A6, 0x2ADE), (0x22A8, 0x2AE4), (0x22A9, 0x2AE3), (0x22AB, 0x2AE5), (0x22B0, 0x22B1),
    (0x22B2, 0x22B3), (0x22B4, 0x22B5), (0x22B6, 0x22B7), (0x22C9, 0x22CA), (0x22CB, 0x22CC),
    (0x22D0, 0x22D1), (0x22D6, 0x22D7), (0x22D8, 0x22D9), (0x22DA, 0x22DB), (0x22DC, 0x22DD),
    (0x22DE, 0x22DF), (0x22E0, 0x22E1), (0x22E2, 0x22E3), (0x22E4, 0x22E5), (0x22E6, 0x22E7),
    (0x22E8, 0x22E9), (0x22EA, 0x22EB), (0x22EC, 0x22ED), (0x22F0, 0x22F1), (0x22F2, 0x22FA),
    (0x22F3, 0x22FB), (0x22F4, 0x22FC), (0x22F6, 0x22FD), (0x22F7, 0x22FE), (0x2308, 0x2309),
    (0x230A, 0x230B), (0x2329, 0x232A), (0x2768, 0x2769), (0x276A, 0x276B), (0x276C, 0x276D),
    (0x276E, 0x276F), (0x2770, 0x2771), (0x2772, 0x2773), (0x2774, 0x2775), (0x27D5, 0x27D6),
    (0x27DD, 0x27DE), (0x27E2, 0x27E3), (0x27E4, 0x27E5), (0x27E6, 0x27E7), (0x27E8, 0x27E9),
    (0x27EA, 0x27EB), (0x2983, 0x2984), (0x2985, 0x2986), (0x2987, 0x2988), (0x2989, 0x298A),
    (0x298B, 0x298C), (0x298D, 0x2990), (0x298E, 0x298F), (0x2991, 0x2992), (0x2993, 0x2994),
    (0x2995, 0x2996), (0x2997, 0x2998), (0x29C0, 0x29C1), (0x29C4, 0x29C5), (0x29CF, 0x29D0),
    (0x29D1, 0x29D2), (0x29D4, 0x29D5), (0x29D8, 0x29D9), (0x29DA, 0x29DB), (0x29F8, 0x29F9),
    (0x29FC, 0x29FD), (0x2A2B, 0x2A2C), (0x2A34, 0x2A35), (0x2A3C, 0x2A3D), (0x2A64, 0x2A65),
    (0x2A79, 0x2A7A), (0x2A7D, 0x2A7E), (0x2A7F, 0x2A80), (0x2A81, 0x2A82), (0x2A83, 0x2A84),
    (0x2A8B, 0x2A8C), (0x2A91, 0x2A92), (0x2A93, 0x2A94), (0x2A95, 0x2A96), (0x2A97, 0x2A98),
    (0x2A99, 0x2A9A), (0x2A9B, 0x2A9C), (0x2AA1, 0x2AA2), (0x2AA6, 0x2AA7), (0x2AA8, 0x2AA9),
    (0x2AAA, 0x2AAB), (0x2AAC, 0x2AAD), (0x2AAF, 0x2AB0), (0x2AB3, 0x2AB4), (0x2ABB, 0x2ABC),
    (0x2ABD, 0x2ABE), (0x2ABF, 0x2AC0), (0x2AC1, 0x2AC2), (0x2AC3, 0x2AC4), (0x2AC5, 0x2AC6),
    (0x2ACD, 0x2ACE), (0x2ACF, 0x2AD0), (0x2AD1, 0x2AD2), (0x2AD3, 0x2AD4), (0x2AD5, 0x2AD6),
    (0x2AEC, 0x2AED), (0x2AF7, 0x2AF8), (0x2AF9, 0x2AFA), (0x3008, 0x3009), (0x300A, 0x300B),
    (0x300C, 0x300D), (0x300E, 0x300F), (0x3010, 0x3011), (0x3014, 0x3015), (0x3016, 0x3017),
    (0x3018, 0x3019), (0x301A, 0x301B), (0xFF08, 0xFF09), (0xFF1C, 0xFF1E), (0xFF3B, 0xFF3D),
    (0xFF5B, 0xFF5D), (0xFF5F, 0xFF60), (0xFF62, 0xFF63),
]

# Decomposition tags; a decomposition without a tag is canonical.
TAGS = {
    "canonical": 1, "<font>": 2, "<noBreak>": 3, "<initial>": 4, "<medial>": 5, "<final>": 6,
    "<isolated>": 7, "<circle>": 8, "<super>": 9, "<sub>": 10, "<vertical>": 11, "<wide>": 12,
    "<narrow>": 13, "<small>": 14, "<square>": 15, "<compat>": 16, "<fraction>": 17,
}

CLASS_BITS = 0x1F
JOINING_SHIFT = 5
JOINING_BITS = 0x3
MIRRORED_BIT = 0x80


class DataError(Exception):
    pass


def check(condition, message):
    if not condition:
        raise DataError(message)


def characters():
    return range(0x10000)


def category_values():
    values = []
    for c in characters():
        name = UCD.category(chr(c))
        check(name in CATEGORIES, "U+%04X: unknown category %r" % (c, name))
        values.append(CATEGORIES[name])
    return values


def class_names():
    names = []
    for c in characters():
        name = UCD.bidirectional(chr(c))
        if name == "":
            check(UCD.category(chr(c)) == "Cn", "U+%04X: assigned but without class" % c)
            name = "L"
        check(name in CLASSES, "U+%04X: unknown class %r" % (c, name))
        names.append(name)
    for (first, last), name in CLASS_OVERRIDES:
        for c in range(first, last + 1):
            names[c] = name
    # The Hebrew block keeps nothing right-to-left but its marks as NSM.
    for c in range(0x0590, 0x0600):
        check(names[c] in ("L", "NSM"), "U+%04X: class %s in the Hebrew block" % (c, names[c]))
    return names


def joining_types():
    types = [0] * 0x10000
    for value, ranges in JOINING.items():
        for first, last in ranges:
            for c in range(first, last + 1):
                check(types[c] == 0, "U+%04X: two joining types" % c)
                types[c] = value
    return types


def property_values():
    classes = class_names()
    joining = joining_types()
    values = []
    mirrored = 0
    for c in characters():
        value = CLASSES[classes[c]] | (joining[c] << JOINING_SHIFT)
        if UCD.mirrored(chr(c)):
            mirrored += 1
            check(value == 0, "U+%04X: mirrored, but class %s, joining %d"
                  % (c, classes[c], joining[c]))
            value |= MIRRORED_BIT
        values.append(value)
    check(mirrored == EXPECTED_MIRRORED,
          "%d mirrored characters, expected %d" % (mirrored, EXPECTED_MIRRORED))
    return values


def mirror_list():
    entries = [c for pair in MIRROR_PAIRS for c in pair]
    check(len(entries) == EXPECTED_MIRROR_ENTRIES,
          "%d mirror list entries, expected %d" % (len(entries), EXPECTED_MIRROR_ENTRIES))
    check(len(set(entries)) == len(entries), "a character occurs twice on the mirror list")
    firsts = [first for first, _ in MIRROR_PAIRS]
    check(firsts == sorted(firsts), "mirror pairs out of order")
    for c in entries:
        check(UCD.mirrored(chr(c)), "U+%04X on the mirror list but not mirrored" % c)
    return entries


def decomposition_tables():
    """Gives the per-character pool indices and the pool of records (tag, character,
    decomposition, 0), which starts with a 0 that belongs to no record."""
    pool = [0]
    indices = [0] * 0x10000
    for c in characters():
        fields = UCD.decomposition(chr(c)).split()
        if not fields:
            continue
        tag = "canonical"
        if fields[0].startswith("<"):
            tag = fields.pop(0)
        check(tag in TAGS, "U+%04X: unknown decomposition tag %s" % (c, tag))
        parts = [int(f, 16) for f in fields]
        check(parts and all(0 < p <= 0xFFFF for p in parts),
              "U+%04X: decomposition beyond 16 bits" % c)
        indices[c] = len(pool)
        pool.extend([TAGS[tag], c] + parts + [0])
    check(len(pool) <= 0x10000, "decomposition pool of %d entries needs more than 16 bits"
          % len(pool))
    check(indices[0xAC00] == 0, "Hangul syllables have a decomposition record")
    return indices, pool


def split_pages(values, name):
    """Gives the index by high byte and the distinct pages in order of first use."""
    pages = []
    seen = {}
    index = []
    for high in range(256):
        page = tuple(values[high * 256:(high + 1) * 256])
        if page not in seen:
            seen[page] = len(pages)
            pages.append(page)
        index.append(seen[page])
    check(len(pages) == EXPECTED_PAGES[name],
          "%d distinct %s pages, expected %d" % (len(pages), name, EXPECTED_PAGES[name]))
    return index, pages


BANNER = """\
// Generated by {generator} from the Unicode 3.2.0 character database
// of Python's unicodedata (ucd_3_2_0). Not edited by hand: change the generator and run it again.
"""


def high_bytes(index, page):
    """Names the high bytes that use a page, with runs shortened: 00, 0A-0C."""
    users = [h for h, p in enumerate(index) if p == page]
    runs = []
    for h in users:
        if runs and runs[-1][1] == h - 1:
            runs[-1][1] = h
        else:
            runs.append([h, h])
    return ", ".join("%02X" % a if a == b else "%02X-%02X" % (a, b) for a, b in runs)


def format_rows(items, width, indent="    "):
    lines = []
    for start in range(0, len(items), width):
        lines.append(indent + ", ".join(items[start:start + width]) + ",")
    return lines


def emit_index(out, type_name, name, index):
    out.append("const %s %s[256] = {" % (type_name, name))
    out.extend(format_rows(["%2d" % p for p in index], 16))
    out.append("};")
    out.append("")


def emit_pages(out, type_name, name, index, pages, fmt, width):
    out.append("const %s %s[%d][256] = {" % (type_name, name, len(pages)))
    for number, page in enumerate(pages):
        users = high_bytes(index, number)
        plural = "s" if "," in users or "-" in users else ""
        out.append("    // %d, for the high byte%s %s" % (number, plural, users))
        out.append("    {")
        out.extend(format_rows([fmt % v for v in page], width, "        "))
        out.append("    },")
    out.append("};")
    out.append("")


def emit_pool(out, pool):
    out.append("const WORD kDecompositionPool[%d] = {" % len(pool))
    out.append("    0,")
    position = 1
    while position < len(pool):
        end = pool.index(0, position + 2)
        tag, char, parts = pool[position], pool[position + 1], pool[position + 2:end]
        items = ["%2d" % tag, "0x%04X" % char] + ["0x%04X" % p for p in parts] + ["0"]
        out.extend(format_rows(items, 12))
        position = end + 1
    out.append("};")
    out.append("")


def make_header(counts, pool_size):
    return BANNER.format(generator=GENERATOR) + """\

// The Unicode 3.2.0 property tables of U+0000 to U+FFFF. Each table is two-stage: the index by
// the high byte gives the number of a page, the page holds the entries of the 256 characters with
// that high byte. Pages that would be equal are stored once.
#ifndef ZEL_BIDI_UNICODE_PROPERTY_TABLES_H
#define ZEL_BIDI_UNICODE_PROPERTY_TABLES_H

#include <zel/wintypes.h>

namespace zelbidi {{

constexpr int kCategoryPageCount = {category};
constexpr int kPropertyPageCount = {property};
constexpr int kDecompositionPageCount = {decomposition};
constexpr int kDecompositionPoolSize = {pool_size};
constexpr int kMirrorListSize = {mirrors};

// The property byte: class in bits 0 to 4, joining type in bits 5 and 6, mirrored flag in bit 7.
constexpr unsigned kClassBits = 0x{class_bits:02X};
constexpr unsigned kJoiningShift = {joining_shift};
constexpr unsigned kJoiningBits = 0x{joining_bits:X};
constexpr unsigned kMirroredShift = 7;

// General category, 0 to 30.
extern const BYTE kCategoryIndex[256];
extern const BYTE kCategoryPages[kCategoryPageCount][256];

// The property byte.
extern const BYTE kPropertyIndex[256];
extern const BYTE kPropertyPages[kPropertyPageCount][256];

// Index of the character's record in the pool, 0 for none. A record is the tag, the character,
// its decomposition and a closing 0; the pool starts with a 0 that belongs to no record, so the
// tag read at index 0 is 0.
extern const BYTE kDecompositionIndex[256];
extern const WORD kDecompositionPages[kDecompositionPageCount][256];
extern const WORD kDecompositionPool[kDecompositionPoolSize];

// Mirror pairs stored flat, ordered by the first of each pair.
extern const WCHAR kMirrorList[kMirrorListSize];

}}  // namespace zelbidi

#endif  // ZEL_BIDI_UNICODE_PROPERTY_TABLES_H
""".format(category=counts["category"], property=counts["property"],
           decomposition=counts["decomposition"], pool_size=pool_size,
           mirrors=EXPECTED_MIRROR_ENTRIES, class_bits=CLASS_BITS, joining_shift=JOINING_SHIFT,
           joining_bits=JOINING_BITS)


def make_source():
    check(MIRRORED_BIT == 1 << 7, "mirrored flag moved")
    category_index, category_pages = split_pages(category_values(), "category")
    property_index, property_pages = split_pages(property_values(), "property")
    decomposition_indices, pool = decomposition_tables()
    decomposition_index, decomposition_pages = split_pages(decomposition_indices, "decomposition")
    mirrors = mirror_list()

    out = [BANNER.format(generator=GENERATOR).rstrip("\n"),
           '#include "bidi/unicode_property_tables.h"', "", "namespace zelbidi {", ""]
    emit_index(out, "BYTE", "kCategoryIndex", category_index)
    emit_pages(out, "BYTE", "kCategoryPages", category_index, category_pages, "%2d", 16)
    emit_index(out, "BYTE", "kPropertyIndex", property_index)
    emit_pages(out, "BYTE", "kPropertyPages", property_index, property_pages, "0x%02X", 8)
    emit_index(out, "BYTE", "kDecompositionIndex", decomposition_index)
    emit_pages(out, "WORD", "kDecompositionPages", decomposition_index, decomposition_pages,
               "%5d", 8)
    emit_pool(out, pool)
    out.append("const WCHAR kMirrorList[%d] = {" % len(mirrors))
    out.extend(format_rows(["0x%04X" % c for c in mirrors], 10))
    out.append("};")
    out.append("")
    out.append("}  // namespace zelbidi")
    counts = {"category": len(category_pages), "property": len(property_pages),
              "decomposition": len(decomposition_pages)}
    return make_header(counts, len(pool)), "\n".join(out) + "\n"


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--output", default=os.path.join(here, "..", "src", "bidi"),
                        help="directory to write %s and %s into" % (HEADER_NAME, SOURCE_NAME))
    args = parser.parse_args()
    check(UCD.unidata_version == "3.2.0", "unicodedata.ucd_3_2_0 is %s" % UCD.unidata_version)
    header, source = make_source()
    os.makedirs(args.output, exist_ok=True)
    for name, text in ((HEADER_NAME, header), (SOURCE_NAME, source)):
        with open(os.path.join(args.output, name), "w", encoding="ascii", newline="\n") as f:
            f.write(text)
    return 0


if __name__ == "__main__":
    try:
        sys.exit(main())
    except DataError as error:
        sys.stderr.write("gen_unicode_properties: %s\n" % error)
        sys.exit(1)
