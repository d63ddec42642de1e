#!/usr/bin/env python3
"""Writes a font as the C++ source that figures take it from. Takes the path of the font."""

import base64
import io
import sys

from fontTools import subset
from fontTools.ttLib import TTFont

# What names, labels and titles of Western, Greek and mathematical texts need.
RANGES = [
    (0x20, 0x7E), (0xA0, 0x17F), (0x391, 0x3C9), (0x2013, 0x2014), (0x2018, 0x201E),
    (0x2020, 0x2022), (0x2026, 0x2026), (0x2032, 0x2033), (0x2190, 0x2193), (0x2212, 0x2212),
    (0x2264, 0x2265),
]  # fmt: skip
# The licence reserves the font's own name for its unchanged form.
FAMILY = "Figure Sans"


def reduced(path):
    """The font with the characters of the ranges alone, under another name."""
    font = TTFont(path)
    del font["FFTM"]
    options = subset.Options()
    options.layout_features = []
    options.hinting = False
    options.name_IDs = [0, 1, 2, 4, 6, 13, 14]
    options.flavor = "woff2"
    subsetter = subset.Subsetter(options)
    subsetter.populate(unicodes=[code for a, b in RANGES for code in range(a, b + 1)])
    subsetter.subset(font)
    for record in font["name"].names:
        if record.nameID in (1, 4):
            record.string = FAMILY
        elif record.nameID == 6:
            record.string = FAMILY.replace(" ", "")
    return font, options


def widths(font):
    """Runs of code points and their advances, in thousandths of the font's size."""
    map_ = font.getBestCmap()
    units = font["head"].unitsPerEm
    for code in sorted(map_):
        yield code, round(1000 * font["hmtx"][map_[code]][0] / units)


def lines(text, length, indent):
    return "\n".join(
        f'{indent}"{text[at : at + length]}"' for at in range(0, len(text), length)
    )


def main():
    font, options = reduced(sys.argv[1])
    table = ", ".join(f"{{0x{code:x}, {width}}}" for code, width in widths(font))
    data = io.BytesIO()
    subset.save_font(font, data, options)
    text = base64.b64encode(data.getvalue()).decode()
    print(f"""// Made by scripts/figure-font; see plots/THIRD_PARTY.md for the font and its licence.
// clang-format off
#include "plots/figure_font.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace ovik {{

namespace {{

struct Advance {{
    std::uint16_t code;
    std::uint16_t width;
}};

/// Sorted by code point.
constexpr Advance kAdvances[] = {{
{wrapped(table)}}};

}}  // namespace

std::string_view figure_font_woff2() {{
    static constexpr char kFont[] =
{lines(text, 90, "        ")};
    return {{kFont, sizeof kFont - 1}};
}}

std::optional<int> figure_font_advance(std::uint32_t code) {{
    const auto* const end = std::end(kAdvances);
    const auto* const found = std::lower_bound(
        std::begin(kAdvances), end, code, [](const Advance& a, std::uint32_t b) {{ return a.code < b; }});
    if (found == end || found->code != code) {{
        return std::nullopt;
    }}
    return found->width;
}}

}}  // namespace ovik""")


def wrapped(table):
    import textwrap

    return textwrap.indent(textwrap.fill(table, 92), "    ") + "\n"


if __name__ == "__main__":
    main()
