// Fonts by name, and text: one string is one draw, and measuring is the same routine without the vertices.
#include "files/cFile.h"
#include "files/cIO.h"
#include "foundation/cImmortal.h"
#include "foundation/cLog.h"
#include "math/cRect.h"
#include "render/cFont.h"
#include "render/cRender.h"
#include "render/cRender_Internal.h"
#include "view/cViewer.h"

#include <algorithm>
#include <cmath>

namespace trellis {

namespace {

struct cRender_FONT {
    cStr Name;
    cFont Font;
    int TextureID = -1;
};

using Vertex = cVertex::PositionColoredTextured;

constinit cImmortal<cList<cRender_FONT>> s_FontStore;
constinit cList<cRender_FONT>& cRender_Fonts = s_FontStore.Value;

// Scratch lists: the storage is kept from call to call.
constinit cImmortal<cStr> s_TextStore;
constinit cImmortal<cList<unsigned short>> s_CodeStore;
constinit cImmortal<cList<Vertex>> s_VertexStore;
constinit cImmortal<cList<int>> s_IndexStore;
constinit cList<unsigned short>& s_Codes = s_CodeStore.Value;
constinit cList<Vertex>& s_Vertices = s_VertexStore.Value;
constinit cList<int>& s_Indices = s_IndexStore.Value;

/// The whole pixel that a coordinate belongs to, to the nearest.
float Snap(float v) {
    return std::floor(v + 0.5f);
}

void Grow(cRect* box, const cRect& by) {
    *box = {std::min(box->x0, by.x0), std::min(box->y0, by.y0), std::max(box->x1, by.x1), std::max(box->y1, by.y1)};
}

void SetGlyph(Vertex* corners, const cFont::Glyph& glyph, const cRect& quad, unsigned int color) {
    cRender_SetQuad(corners, quad);
    corners[0].TexCoord = {glyph.U0, glyph.V0};
    corners[1].TexCoord = {glyph.U0, glyph.V1};
    corners[2].TexCoord = {glyph.U1, glyph.V1};
    corners[3].TexCoord = {glyph.U1, glyph.V0};
    for (int i = 0; i < 4; i++) {
        corners[i].Color = color;
    }
}

/// Walks the pen over `s_Codes`. Fills the scratch lists unless it only measures. @return the box to be aligned
cRect LayOut(const cFont& font, float x, float y, int flags, unsigned int color) {
    const bool tight = flags & cRender::TightBox;
    const bool draws = !(flags & cRender::MeasureOnly);
    const float padding = float(font.Padding);
    cRect ink = cRect::Empty;
    cVec2 pen(x, y);
    s_Vertices.SetCount(draws ? 4 * s_Codes.Count() : 0); // at most
    Vertex* corners = s_Vertices.Data();
    for (unsigned short code : s_Codes) {
        const cFont::Glyph* glyph = font.FindOrPlaceholder(code);
        if (!glyph) {
            continue;
        }
        if (code != ' ' && (tight || draws)) {
            const float left = pen.x + glyph->OffsetX, top = pen.y - glyph->OffsetY;
            const cRect quad(left, top - glyph->Height, left + glyph->Width, top);
            if (tight) {
                Grow(&ink, cRect(quad.x0 + padding, quad.y0 + padding, quad.x1 - padding, quad.y1 - padding));
            }
            if (draws) {
                SetGlyph(corners, *glyph, quad, color);
                corners += 4;
            }
        }
        pen += cVec2(glyph->AdvanceX, glyph->AdvanceY);
    }
    if (draws) {
        s_Vertices.SetCount(int(corners - s_Vertices.Data()));
    }
    return tight ? ink : cRect(x, y - float(font.Height), pen.x, y);
}

/// How far a box must move to stand at (x, y) as the flags tell.
cVec2 ShiftOf(const cFont& font, const cRect& box, float x, float y, int flags) {
    cVec2 shift(0, 0);
    if (flags & cRender::CenterX) {
        shift.x = x - std::floor((box.x0 + box.x1) / 2);
    } else if (flags & cRender::RightX) {
        shift.x = x - box.x1;
    } else if (flags & cRender::TightBox) {
        shift.x = x - box.x0;
    }
    if (flags & cRender::CenterY) {
        shift.y = y - std::floor((box.y0 + box.y1) / 2);
    } else if (flags & cRender::BaselineY) {
        shift.y = float(font.Ascent);
    } else if (flags & cRender::BottomY) {
        shift.y = y - box.y0;
    } else if (flags & cRender::TightBox) {
        shift.y = y - box.y1;
    }
    return shift;
}

/// Of the quads, which are the same for all texts.
const int* QuadIndices(int quads) {
    for (int quad = s_Indices.Count() / 6; quad < quads; quad++) {
        for (const int index : cRender_QuadIndices) {
            s_Indices.Add(quad * 4 + index);
        }
    }
    return s_Indices.Data();
}

void DrawGlyphs(int texture) {
    static const int s_Shader = cRender::GetShaderID("Font", Vertex::FormatID);
    static const int s_Glyphs = cRender::GetSamplerID(s_Shader, "s_Glyphs");
    static const int s_SamplerState =
        cRender::GetSamplerStateID(cFilter::Linear, cAddressMode::Clamp, cAddressMode::Clamp, cAddressMode::Clamp);
    const bool wireframe = cRender::GetWireframe();
    cRender::SetWireframe(false);
    cRender_SetShapeState(s_Shader);
    cRender::SetTexture(s_Glyphs, texture, s_SamplerState);
    const int quads = s_Vertices.Count() / 4;
    cRender::DrawIndexed(cTopology::TriangleList, s_Vertices.Data(), s_Vertices.Count(), QuadIndices(quads), quads * 6,
                         4);
    cRender::SetWireframe(wireframe);
}

/// Place of a point of the world in the viewport. A parallel lens has no eye to be behind of.
///
/// @return false for one at or behind the eye, and without a viewer
bool Project(const cVec3& p, cVec2* out) {
    const cViewer* viewer = cRender::GetViewer();
    if (!viewer) {
        return false;
    }
    const cVec4 clip = cVec4(p.x, p.y, p.z, 1) * viewer->ViewProjection;
    if (!(clip.w > 0)) {
        return false;
    }
    const cVec3 at = cVec3(clip.x / clip.w, clip.y / clip.w, 0) * viewer->ScreenInverse;
    *out = at.ToVec2();
    return true;
}

} // namespace

int cRender::GetFontID(const char* name) {
    if (!name || !*name) {
        return -1;
    }
    for (int i = 0; i < cRender_Fonts.Count(); i++) {
        if (cRender_Fonts[i].Name == name) {
            return i;
        }
    }
    cLog::Message(" - Loading font \"%s\"...", name);
    const cStr fontPn = cStr::Format("Fonts/%s.cFont", name);
    const cStr texturePn = cStr::Format("Fonts/%s.bmp", name);
    cFile file;
    if (!cIO::LoadFile(fontPn, &file)) {
        return -1;
    }
    cRender_FONT font;
    if (!font.Font.Read(file)) {
        cLog::Warning("Font format file \"%s\" has wrong size.", fontPn.Text());
        return -1;
    }
    cLog::Message("Loaded font format file \"%s\"", fontPn.Text());
    font.TextureID = GetTextureID(texturePn, -1);
    if (font.TextureID == -1) {
        return -1;
    }
    font.Name = name;
    return cRender_Fonts.Add(font);
}

const cFont* cRender::GetFont(int id) {
    return id >= 0 && id < cRender_Fonts.Count() ? &cRender_Fonts[id].Font : nullptr;
}

int cRender::GetFontTextureID(int id) {
    return id >= 0 && id < cRender_Fonts.Count() ? cRender_Fonts[id].TextureID : -1;
}

cRect cRender::DrawString(int fontID, const char* text, float x, float y, int flags, const cColor* color) {
    const cFont* font = GetFont(fontID);
    s_Codes.Clear();
    if (!font || !text || !*text) {
        return cRect::Empty;
    }
    s_TextStore.Value = text;
    s_TextStore.Value.DecodeUTF8(&s_Codes);
    if (s_Codes.IsEmpty()) {
        return cRect::Empty;
    }
    x = Snap(x);
    y = Snap(y);
    cRect box = LayOut(*font, x, y, flags, (color ? *color : cColor::Black).ToDword());
    if (box.IsEmpty() && s_Vertices.IsEmpty()) {
        return cRect::Empty;
    }
    const cVec2 shift = ShiftOf(*font, box, x, y, flags);
    if (std::fabs(shift.x) > 0.001f || std::fabs(shift.y) > 0.001f) {
        box.Translate(shift);
        for (Vertex& vertex : s_Vertices) {
            vertex.Pos += cVec3(shift, 0);
        }
    }
    if (!s_Vertices.IsEmpty()) {
        DrawGlyphs(GetFontTextureID(fontID));
    }
    return box;
}

cRect cRender::DrawString(int font, const char* text, float x, float y, const cColor& color) {
    return DrawString(font, text, x, y, 0, &color);
}

cRect cRender::DrawString(int font, const char* text, float x, float y, int flags, const cColor& color) {
    return DrawString(font, text, x, y, flags, &color);
}

cRect cRender::DrawString(int font, const char* text, const cVec2& at, const cColor& color) {
    return DrawString(font, text, at.x, at.y, 0, &color);
}

cRect cRender::DrawString(int font, const char* text, const cVec2& at, int flags, const cColor& color) {
    return DrawString(font, text, at.x, at.y, flags, &color);
}

cRect cRender::DrawString(int font, const char* text, const cVec3& at, const cColor& color) {
    return DrawString(font, text, at, 0, color);
}

cRect cRender::DrawString(int font, const char* text, const cVec3& at, int flags, const cColor& color) {
    cVec2 place;
    return Project(at, &place) ? DrawString(font, text, place, flags, color) : cRect::Empty;
}

cRect cRender::MeasureStringCells(int font, const char* text) {
    return DrawString(font, text, 0, 0, MeasureOnly, nullptr);
}

cRect cRender::MeasureStringTightRect(int font, const char* text) {
    return DrawString(font, text, 0, 0, MeasureOnly | TightBox, nullptr);
}

void cRender::EnsurePrintable(int fontID, cStr* text) {
    const cFont* font = GetFont(fontID);
    if (!font) {
        return;
    }
    cStr kept;
    kept.ReserveMore(text->Length());
    cStr& character = s_TextStore.Value;
    for (int i = 0; i < text->Length();) {
        const int length = std::min(cStr::UTF8LengthOf((*text)[i]), text->Length() - i);
        character.Copy(text->Text() + i, 0, length);
        if (!character.DecodeUTF8(&s_Codes)) {
            i++; // one bad byte takes nothing with it
            continue;
        }
        if (std::all_of(s_Codes.begin(), s_Codes.end(), [&](unsigned short c) { return font->Find(c); })) {
            kept.Append(character);
        }
        i += length;
    }
    *text = kept;
}

} // namespace trellis
