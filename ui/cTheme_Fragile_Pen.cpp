#include "ui/cTheme_Fragile_Pen.h"

#include "render/cRender.h"
#include "ui/cThemeText.h"
#include "ui/cTheme_Fragile.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace trellis {

using Colors = cTheme_Fragile_Colors;

namespace {

float Round(float v) {
    return std::floor(v + 0.5f);
}

/// The points of a bar's segment, and its radius.
struct Spine {
    explicit Spine(const cRect& rect) : Radius(std::min(rect.Width(), rect.Height()) / 2) {
        const cVec2 middle = rect.Center();
        IsHorizontal = rect.Width() >= rect.Height();
        const cVec2 half = IsHorizontal ? cVec2(rect.Width() / 2 - Radius, 0) : cVec2(0, rect.Height() / 2 - Radius);
        From = middle - half;
        To = middle + half;
    }
    cVec2 From, To;
    float Radius;
    bool IsHorizontal;
};

/// The parts of a window are told that it is active, too.
bool TakesFocus(cTheme::Parts::Enum part) {
    using Parts = cTheme::Parts;
    return (part >= Parts::Button && part <= Parts::ComboBox) || part == Parts::Edit || part == Parts::Panel;
}

/// A rectangle less its round corners. Whole pixels throughout: pieces meet between pixels, and none is drawn twice.
struct Core {
    Core(const cRect& rect, float corner) : Whole(Round(rect.x0), Round(rect.y0), Round(rect.x1), Round(rect.y1)) {
        Radius = std::floor(std::min({corner, Whole.Width() / 2, Whole.Height() / 2}));
        Inner = {Whole.x0 + Radius, Whole.y0 + Radius, Whole.x1 - Radius, Whole.y1 - Radius};
    }
    cRect Whole, Inner;
    float Radius;
};

float AlphaOf(const cTheme::DrawArgs& args) {
    const float alpha = args.Alpha * args.FormAlpha * args.CurVisible * args.Shown;
    return alpha > 0 ? std::min(alpha, 1.0f) : 0; // also for what is no number
}

} // namespace

cTheme_Fragile_Pen::cTheme_Fragile_Pen(const cTheme_Fragile& theme, const Args& args)
    : Theme(theme), A(args), Hot(args.Pressed ? 1.0f : std::clamp(args.Hot, 0.0f, 1.0f)),
      Enable(std::clamp(args.CurEnabled, 0.0f, 1.0f)), HasFocus(args.Active && args.Enabled && TakesFocus(args.Part)),
      m_Alpha(AlphaOf(args)), m_Transformed(args.Transform != cMat4()) {
    cRender::PushClipRect();
    cRender::SetClipRect(args.Clip);
    if (m_Transformed) {
        cRender::SetWorldMatrix(args.Transform);
    }
}

cTheme_Fragile_Pen::~cTheme_Fragile_Pen() {
    if (m_Transformed) {
        cRender::SetWorldMatrix(cMat4::Identity);
    }
    cRender::PopClipRect();
}

float cTheme_Fragile_Pen::R(float v) const {
    return Theme.R(v);
}

cColor cTheme_Fragile_Pen::Ink() const {
    return Able(Colors::Text, Colors::TextOff);
}

// ---- Clips

bool cTheme_Fragile_Pen::SetPiece(const cRect& rect) const {
    cRect piece = rect;
    if (m_Transformed) { // the device clips by pixels of the screen
        const cVec3 a = cVec3(rect.x0, rect.y0, 0) * A.Transform, b = cVec3(rect.x1, rect.y1, 0) * A.Transform;
        piece = {a.x, a.y, b.x, b.y};
    }
    if (!A.Clip.IsEmpty()) {
        piece = cRect::Intersect(piece, A.Clip);
    }
    if (piece.IsEmpty()) { // would be no clip at all
        return false;
    }
    cRender::SetClipRect(piece);
    return true;
}

void cTheme_Fragile_Pen::EndPiece() const {
    cRender::SetClipRect(A.Clip);
}

// ---- Bars

void cTheme_Fragile_Pen::Bar(const cRect& rect, float share, float power, const cColor& center,
                             const cColor& bound) const {
    if (rect.IsEmpty()) {
        return;
    }
    const Spine s(rect);
    cRender::FillSegmentRadialGradient(s.From, s.To, s.Radius * share, s.Radius, power, s.IsHorizontal, Faded(center),
                                       Faded(bound));
}

void cTheme_Fragile_Pen::BarRim(const cRect& rect, float width, const cColor& color) const {
    if (rect.IsEmpty()) {
        return;
    }
    const Spine s(rect);
    cRender::FillSegmentRadialGradient(s.From, s.To, s.Radius - width, s.Radius, 0.5f, s.IsHorizontal,
                                       Colors::WithAlpha(color, 0), Faded(color));
}

void cTheme_Fragile_Pen::BarGlow(const cRect& rect, float reach, const cColor& color) const {
    if (rect.IsEmpty()) {
        return;
    }
    const Spine s(rect);
    // A root falls off steeply at first, as light does.
    cRender::FillSegmentRadialGradient(s.From, s.To, s.Radius - 1, s.Radius + reach, 0.6f, s.IsHorizontal, Faded(color),
                                       Colors::WithAlpha(color, 0));
}

void cTheme_Fragile_Pen::Disc(const cVec2& at, float share, float radius, float power, const cColor& center,
                              const cColor& bound) const {
    cRender::FillCircleRadialGradient(at, radius * share, radius, power, Faded(center), Faded(bound));
}

void cTheme_Fragile_Pen::Stroke(const cVec2& a, const cVec2& b, float radius, const cColor& color) const {
    cRender::FillSegmentRadialGradient(a, b, radius, radius, 1, 0, Faded(color), Faded(color));
}

void cTheme_Fragile_Pen::Strokes(const cVec2& at, float size, float radius, const float (*strokes)[4], int count,
                                 const cColor& color) const {
    const cVec2 origin = at - cVec2(size, size) * 0.5f;
    for (int i = 0; i < count; i++) {
        const float* s = strokes[i];
        Stroke(origin + cVec2(s[0], s[1]) * size, origin + cVec2(s[2], s[3]) * size, radius, color);
    }
}

// ---- Rectangles with round corners

void cTheme_Fragile_Pen::Rounded(const cRect& rect, float corner, float segRadius, float gradRadius, float power,
                                 const cColor& center, const cColor& bound) const {
    const Core c(rect, corner);
    const cRect& core = c.Inner;
    if (c.Whole.IsEmpty()) {
        return;
    }
    const float reach = std::ceil(gradRadius) + 1;
    const struct {
        cRect Piece;
        cVec2 From, To;
        bool IsHorizontal;
    } pieces[] = {
        {{core.x0 - reach, core.y1, core.x1 + reach, core.y1 + reach}, {core.x0, core.y1}, {core.x1, core.y1}, true},
        {{core.x0 - reach, core.y0 - reach, core.x1 + reach, core.y0}, {core.x0, core.y0}, {core.x1, core.y0}, true},
        {{core.x0 - reach, core.y0, core.x0, core.y1}, {core.x0, core.y0}, {core.x0, core.y1}, false},
        {{core.x1, core.y0, core.x1 + reach, core.y1}, {core.x1, core.y0}, {core.x1, core.y1}, false},
    };
    for (const auto& p : pieces) {
        if (SetPiece(p.Piece)) {
            cRender::FillSegmentRadialGradient(p.From, p.To, segRadius, gradRadius, power, p.IsHorizontal,
                                               Faded(center), Faded(bound));
        }
    }
    EndPiece();
    if (center.a > 0) {
        Fill(core, center);
    }
}

void cTheme_Fragile_Pen::Plate(const cRect& rect, float corner, const cColor& center, const cColor& bound) const {
    const float radius = Core(rect, corner).Radius;
    Rounded(rect, radius, 0, radius, 2, center, bound);
}

void cTheme_Fragile_Pen::PlateRim(const cRect& rect, float corner, const cColor& top, const cColor& bottom) const {
    const Core c(rect, corner);
    const cRect &whole = c.Whole, &core = c.Inner;
    const float r = c.Radius;
    if (whole.IsEmpty()) {
        return;
    }
    const float power = 0.5f;
    if (SetPiece({whole.x0, core.y1, whole.x1, whole.y1})) {
        cRender::FillSegmentRadialGradient({core.x0, core.y1}, {core.x1, core.y1}, r - 1, r, power, 1,
                                           Colors::WithAlpha(top, 0), Faded(top));
    }
    if (SetPiece({whole.x0, whole.y0, whole.x1, core.y0})) {
        cRender::FillSegmentRadialGradient({core.x0, core.y0}, {core.x1, core.y0}, r - 1, r, power, 1,
                                           Colors::WithAlpha(bottom, 0), Faded(bottom));
    }
    EndPiece();
    // The sides are one pixel of what the caps have half a pixel inside their edge.
    const float share = std::pow(0.5f, power);
    const cRect sides[] = {{whole.x0, core.y0, whole.x0 + 1, core.y1}, {whole.x1 - 1, core.y0, whole.x1, core.y1}};
    cRender::FillRectanglesLinearGradient(sides, 2, Colors::WithAlpha(Faded(top), Faded(top).a * share),
                                          Colors::WithAlpha(Faded(bottom), Faded(bottom).a * share),
                                          cRender::LinearGradient::TopToBottom);
}

void cTheme_Fragile_Pen::PlateGlow(const cRect& rect, float corner, float reach, const cColor& color) const {
    const float radius = Core(rect, corner).Radius;
    Rounded(rect, radius, radius - 1, radius + reach, 0.6f, color, Colors::WithAlpha(color, 0));
}

void cTheme_Fragile_Pen::Fill(const cRect& rect, const cColor& color) const {
    cRender::FillRectangleSolid(rect, Faded(color));
}

void cTheme_Fragile_Pen::Fade(const cRect& rect, const cColor& left, const cColor& right) const {
    cRender::FillRectangleLinearGradient(rect, Faded(left), Faded(right), cRender::LinearGradient::LeftToRight);
}

// ---- What parts have in common

void cTheme_Fragile_Pen::Glass(const cRect& rect, const cColor& center, const cColor& bound) const {
    if (rect.IsEmpty()) {
        return;
    }
    cRect under = rect;
    under.Translate({R(0.5f), -R(1)});
    BarGlow(under, R(2.5f), Colors::WithAlpha(Colors::Shade, 0.30f * (0.4f + 0.6f * Enable)));
    Bar(rect, 0.15f, A.Pressed ? 3 : 1.6f, center, bound);
    BarRim(rect, R(1), Colors::WithAlpha(Colors::Rim, Enable * (0.35f + 0.45f * Hot) + 0.10f));
    if (!A.Pressed) { // the sky, mirrored in the upper half
        const float h = std::min(rect.Width(), rect.Height());
        const float shift = h * 0.04f; // the light comes from the left as well
        const cRect sky(rect.x0 + h * 0.16f - shift, rect.y1 - h * 0.56f, rect.x1 - h * 0.16f - shift,
                        rect.y1 - h * 0.04f);
        Bar(sky, 0, 1.3f, Colors::WithAlpha(Colors::Light, 0.04f + 0.09f * Enable + 0.04f * Hot),
            Colors::WithAlpha(Colors::Light, 0));
    }
    FocusRim(rect);
}

void cTheme_Fragile_Pen::Well(const cRect& rect) const {
    const cColor edge = cColor::Lerp(Colors::SunkEdge, Colors::RaisedEdge, 0.5f * Hot * Enable);
    Bar(rect, 0.35f, 2, Able(Colors::Sunk, Colors::SunkOff), Able(edge, Colors::SunkOff));
    BarRim(rect, R(1), Colors::WithAlpha(Colors::Rim, Enable * (0.28f + 0.37f * Hot) + 0.10f));
    FocusRim(rect);
}

void cTheme_Fragile_Pen::Focus(const cRect& rect) const {
    if (HasFocus) {
        BarGlow(rect, R(4), Colors::WithAlpha(Colors::Accent, 0.70f * (0.3f + 0.7f * Enable)));
    }
}

void cTheme_Fragile_Pen::FocusRim(const cRect& rect) const {
    if (HasFocus) {
        BarRim(rect, R(1.5f), Colors::WithAlpha(Colors::Accent, 0.9f * (0.3f + 0.7f * Enable)));
    }
}

void cTheme_Fragile_Pen::Chevron(const cVec2& at, float size, bool up, const cColor& color) const {
    static constexpr float s_Down[][4] = {{0, 0.75f, 0.5f, 0.25f}, {0.5f, 0.25f, 1, 0.75f}};
    static constexpr float s_Up[][4] = {{0, 0.25f, 0.5f, 0.75f}, {0.5f, 0.75f, 1, 0.25f}};
    Strokes(at, size, std::max(size * 0.11f, 0.8f), up ? s_Up : s_Down, 2, color);
}

void cTheme_Fragile_Pen::Caption(int font) const {
    Text(font, A.Text.Text(), A.LabelRect, cRect::RightMiddle, Ink());
}

// ---- Text

void cTheme_Fragile_Pen::Text(int font, const char* text, const cRect& box, int align, const cColor& color) const {
    if (!*text || box.IsEmpty()) {
        return;
    }
    text = cThemeText::Shortened(font, text, box.Width() + 0.5f);
    if (!text) {
        return;
    }
    const auto width = [&] { return cThemeText::Width(font, text); };
    const float x = align == cRect::LeftMiddle    ? box.x0
                    : align == cRect::RightMiddle ? box.x1 - width()
                                                  : box.Center().x - width() / 2;
    Line(font, text, {x, box.Center().y}, color);
}

void cTheme_Fragile_Pen::Line(int font, const char* text, const cVec2& at, const cColor& color) const {
    cRender::DrawString(font, text, at, cRender::CenterY, Faded(color));
}

} // namespace trellis
