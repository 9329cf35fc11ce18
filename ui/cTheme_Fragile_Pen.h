// What the soft look is drawn with: its colours, and shapes that fade with the part.
//
//     Rounded, by the distance from a core:       Bar:
//      ---------- cap                              (==============)   one segment, round ends
//     | |  core  | |  sides: segments too
//      ---------- cap
#pragma once

#include "ui/cTheme.h"

namespace trellis {

class cTheme_Fragile;

/// Lives as long as a part is drawn: sets its clip and its matrix, and restores them. A width or a radius is in points.
class cTheme_Fragile_Pen {
public:
    using Args = cTheme::DrawArgs;

    cTheme_Fragile_Pen(const cTheme_Fragile& theme, const Args& args);
    ~cTheme_Fragile_Pen();
    cTheme_Fragile_Pen(const cTheme_Fragile_Pen&) = delete;
    cTheme_Fragile_Pen& operator=(const cTheme_Fragile_Pen&) = delete;

    const cTheme_Fragile& Theme;
    const Args& A;
    const float Hot;     ///< The part's own, but 1 while it is pressed.
    const float Enable;  ///< From 0 to 1.
    const bool HasFocus; ///< Of the keyboard. Windows' own parts, and what shows only, never have it.

    bool IsClear() const { return m_Alpha < 1.0f / 512; } ///< Nothing would be seen.
    float R(float v) const;
    /// A colour for the enabled and one for the greyed state, mixed.
    cColor Able(const cColor& enabled, const cColor& greyed) const { return cColor::Lerp(greyed, enabled, Enable); }
    cColor Ink() const; ///< Of captions.

    // ---- Shapes; the alpha of colours is multiplied by the part's
    /// A bar with round ends along the longer side. @param share  of the radius that has the colour of the centre
    void Bar(const cRect& rect, float share, float power, const cColor& center, const cColor& bound) const;
    void BarRim(const cRect& rect, float width, const cColor& color) const;
    void BarGlow(const cRect& rect, float reach, const cColor& color) const; ///< Around it and under it.
    void Disc(const cVec2& at, float share, float radius, float power, const cColor& center, const cColor& bound) const;
    void Stroke(const cVec2& a, const cVec2& b, float radius, const cColor& color) const;
    /// A glyph of strokes in the unit square, laid into a square about `at`.
    void Strokes(const cVec2& at, float size, float radius, const float (*strokes)[4], int count,
                 const cColor& color) const;

    /// A rectangle with round corners, by the distance from its core as of `cRender::FillSegmentRadialGradient`.
    void Rounded(const cRect& rect, float corner, float segRadius, float gradRadius, float power, const cColor& center,
                 const cColor& bound) const;
    void Plate(const cRect& rect, float corner, const cColor& center, const cColor& bound) const;
    void PlateRim(const cRect& rect, float corner, const cColor& top, const cColor& bottom) const;
    void PlateGlow(const cRect& rect, float corner, float reach, const cColor& color) const;
    void Fill(const cRect& rect, const cColor& color) const;
    void Fade(const cRect& rect, const cColor& left, const cColor& right) const;

    // ---- What several parts have in common
    void Glass(const cRect& rect, const cColor& center, const cColor& bound) const; ///< A raised bar.
    void Well(const cRect& rect) const;                                             ///< A sunk bar, for values.
    void Focus(const cRect& rect) const;    ///< Around a bar that has the focus; drawn under it.
    void FocusRim(const cRect& rect) const; ///< On its edge; glass and wells have it.
    void Chevron(const cVec2& at, float size, bool up, const cColor& color) const;
    void Caption(int font) const; ///< The text beside the control, next to it.

    // ---- Text
    /// One line, cut with an ellipsis where it is too wide. @param align  the left, center or right one of the middle
    void Text(int font, const char* text, const cRect& box, int align, const cColor& color) const;
    /// From a point at the left of its middle, uncut.
    void Line(int font, const char* text, const cVec2& at, const cColor& color) const;

    /// Narrows the clip; the matrix applies to the rectangle. False when nothing is left to draw.
    bool SetPiece(const cRect& rect) const;
    void EndPiece() const;

    cColor Faded(const cColor& c) const { return {c.r, c.g, c.b, c.a * m_Alpha}; }

private:
    float m_Alpha;
    bool m_Transformed;
};

/// Colours of the soft look: calm blues on dark slate, light writing.
struct cTheme_Fragile_Colors {
    static constexpr cColor WithAlpha(const cColor& c, float alpha) { return {c.r, c.g, c.b, alpha}; }

    static constexpr cColor Text = cColor::FromRgb(0xEAF0F9), TextDim = cColor::FromRgb(0xA9B9D0),
                            TextOff = cColor::FromRgb(0x66748B);
    static constexpr cColor Accent = cColor::FromRgb(0x6DB8FF), Danger = cColor::FromRgb(0xF0706A);
    static constexpr cColor Shade = cColor::FromRgb(0x04070C), Light = cColor::FromRgb(0xFFFFFF);
    static constexpr cColor Form = cColor::FromRgb(0x222D3F, 1), FormEdge = cColor::FromRgb(0x31405A, 1);
    static constexpr cColor Raised = cColor::FromRgb(0x506C98), RaisedEdge = cColor::FromRgb(0x354A6E);
    static constexpr cColor RaisedHot = cColor::FromRgb(0x5682C8), RaisedHotEdge = cColor::FromRgb(0x335C98);
    static constexpr cColor Pressed = cColor::FromRgb(0x29456F), PressedEdge = cColor::FromRgb(0x4A7DC2);
    static constexpr cColor RaisedOff = cColor::FromRgb(0x323D50), RaisedOffEdge = cColor::FromRgb(0x2B3547);
    static constexpr cColor Sunk = cColor::FromRgb(0x131A27), SunkEdge = cColor::FromRgb(0x1E283A),
                            SunkOff = cColor::FromRgb(0x202939);
    static constexpr cColor Rim = cColor::FromRgb(0x7E9AC8);
};

} // namespace trellis
