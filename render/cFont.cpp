#include "render/cFont.h"

#include "files/cFile.h"

#include <algorithm>

namespace trellis {

namespace {

constexpr unsigned short Magic = 0x6663;
constexpr unsigned char Version = 0;
constexpr int GlyphBytes = 42; // two of the code, ten floats

constexpr float cFont::Glyph::*s_Floats[] = {
    &cFont::Glyph::U0,       &cFont::Glyph::V0,       &cFont::Glyph::U1,    &cFont::Glyph::V1,
    &cFont::Glyph::OffsetX,  &cFont::Glyph::OffsetY,  &cFont::Glyph::Width, &cFont::Glyph::Height,
    &cFont::Glyph::AdvanceX, &cFont::Glyph::AdvanceY,
};
static_assert(sizeof(short) + std::size(s_Floats) * sizeof(float) == GlyphBytes);

bool ReadGlyph(const cFile& file, cFont::Glyph* glyph) {
    if (!file.ReadWord(&glyph->Code)) {
        return false;
    }
    return std::all_of(std::begin(s_Floats), std::end(s_Floats),
                       [&](auto member) { return file.ReadFloat(&(glyph->*member)); });
}

} // namespace

void cFont::Clear() {
    Ascent = LineGap = Height = Padding = 0;
    Glyphs.Clear();
}

bool cFont::Read(const cFile& file) {
    Clear();
    unsigned short magic;
    unsigned char version;
    int count;
    if (!file.ReadWord(&magic) || magic != Magic || file.ReadBytes(&version, 1) != 1 || version != Version ||
        !file.ReadInt(&Ascent) || !file.ReadInt(&LineGap) || !file.ReadInt(&Height) || !file.ReadInt(&count)) {
        return false;
    }
    if (count < 0 || count > MaxGlyphs || (long long)count * GlyphBytes > file.GetSize() - file.GetPos()) {
        return false;
    }
    Glyphs.SetCount(count);
    return std::all_of(Glyphs.begin(), Glyphs.end(), [&](Glyph& glyph) { return ReadGlyph(file, &glyph); }) &&
           file.ReadInt(&Padding);
}

void cFont::Write(cFile* file) const {
    cList<Glyph> sorted = Glyphs;
    sorted.Sort(Glyph::Compare);
    file->WriteWord(Magic);
    file->WriteBytes(&Version, 1);
    file->WriteInt(Ascent);
    file->WriteInt(LineGap);
    file->WriteInt(Height);
    file->WriteInt(sorted.Count());
    for (const Glyph& glyph : sorted) {
        file->WriteWord(glyph.Code);
        for (auto member : s_Floats) {
            file->WriteFloat(glyph.*member);
        }
    }
    file->WriteInt(Padding);
}

const cFont::Glyph* cFont::FindSlowly(unsigned short code) const {
    const Glyph* glyph = std::lower_bound(Glyphs.begin(), Glyphs.end(), code,
                                          [](const Glyph& g, unsigned short c) { return g.Code < c; });
    return glyph != Glyphs.end() && glyph->Code == code ? glyph : nullptr;
}

} // namespace trellis
