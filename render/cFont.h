// Glyph table of a bitmap font. Its picture is a texture beside it.
//
//     +-- pen, Y upward ----------------------- the line's top
//     |  OffsetX, OffsetY (downward)
//     |     +---------+ V0                      the quad, Padding wider than the ink on every side
//     |     |  glyph  |
//     |--Ascent-------|------------------------ baseline
//     |     +---------+ V1
//     +---------------------------------------- Height below the top
//
// A file is "cf" | version 0 (1) | Ascent (4) | LineGap (4) | Height (4) | count (4) | glyphs (42 each) | Padding (4),
// little-endian; a glyph is its code (2) and the ten floats in the order of the fields.
#pragma once

#include "foundation/cList.h"

namespace trellis {

class cFile;

class cFont {
public:
    struct Glyph {
        unsigned short Code; ///< UTF-16.
        float U0, V0, U1, V1;
        float OffsetX, OffsetY;
        float Width, Height;
        float AdvanceX, AdvanceY;

        static int Compare(const Glyph* a, const Glyph* b) { return int(a->Code) - int(b->Code); }
    };

    /// Clears, then reads. @return false for another magic or version, more than `MaxGlyphs`, and an early end
    bool Read(const cFile& file);
    void Write(cFile* file) const; ///< The glyphs go out sorted.
    void Clear();

    const Glyph* Find(unsigned short code) const { ///< Null when there is none.
        const Glyph* glyphs = Glyphs.Data();       // most codes stand in the run that a table begins with
        const int index = glyphs ? int(code) - int(glyphs->Code) : -1;
        return index >= 0 && index < Glyphs.Count() && glyphs[index].Code == code ? glyphs + index : FindSlowly(code);
    }
    /// The glyph of a code, else the placeholder; null where the table is too short to have one.
    const Glyph* FindOrPlaceholder(unsigned short code) const {
        const Glyph* glyph = Find(code);
        return glyph ? glyph : Glyphs.Count() > Placeholder ? &Glyphs[Placeholder] : nullptr;
    }

    static constexpr int MaxGlyphs = 65536;
    static constexpr int Placeholder = 31; ///< Index of the glyph that stands for what a font lacks.

    int Ascent = 0;
    int LineGap = 0;     ///< Kept for the file; drawing does not use it.
    int Height = 0;      ///< Of a line; also how fonts are compared in size.
    cList<Glyph> Glyphs; ///< Ascending by code.
    int Padding = 0;

private:
    const Glyph* FindSlowly(unsigned short code) const;
};

} // namespace trellis
