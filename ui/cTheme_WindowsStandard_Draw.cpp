// How the classic look paints each part.
#include "foundation/cImmortal.h"
#include "foundation/cTimer.h"
#include "render/cRender.h"
#include "ui/cThemeText.h"
#include "ui/cTheme_WindowsStandard.h"
#include "ui/cTheme_WindowsStandard_Colors.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace trellis {

using namespace WindowsStandardColors;

namespace {

using Args = cTheme::DrawArgs;
using Decal = WindowsStandardDecal;
using Look = WindowsStandardFill;
using Parts = cTheme::Parts;
using Tone = WindowsStandardTone;

constexpr float TextGap = 5;
constexpr int IconCell = 32;

cRect Inset(const cRect& r, float by) {
    return {r.x0 + by, r.y0 + by, r.x1 - by, r.y1 - by};
}

cRect Shift(cRect r, float by) {
    r.Translate({by, -by});
    return r;
}

/// The middle pixel; of an even count the left or the upper one.
cVec2 MiddleOf(const cRect& r) {
    return {std::floor((r.x0 + r.x1 - 1) / 2), std::floor((r.y0 + r.y1) / 2)};
}

/// Paints one part.
class Painter {
public:
    Painter(const cTheme_WindowsStandard& theme, const Args& args, float alpha)
        : m_Theme(theme), m_Args(args), m_Alpha(alpha), m_Enabled(std::clamp(args.CurEnabled, 0.0f, 1.0f)),
          m_Hot(std::clamp(args.Hot, 0.0f, 1.0f)), m_HasFocus(args.Active && args.Enabled) {}

    void Paint();

private:
    // ---- Pieces
    Tone Plain() const { return {m_Alpha, 0, m_Enabled}; }
    Tone Lit() const { return {m_Alpha, m_Args.Pressed ? 0 : m_Hot * m_Enabled, m_Enabled}; }
    void Fill(const cRect& r, Look look, const Tone& tone) const {
        cTheme_WindowsStandard::FillRectangleWindowsStandard(r, look, tone);
    }
    void Solid(const cRect& r, const cColor& c) const { cRender::FillRectangleSolid(r, Fade(c, m_Alpha)); }
    void Outline(const cRect& r, const cColor& c) const { cRender::DrawRectangle(r, Fade(c, m_Alpha)); }
    void Dither(const cRect& r, const cColor& a, const cColor& b) const {
        cRender::FillRectangleDither(r, cVec2::Zero, Fade(a, m_Alpha), Fade(b, m_Alpha));
    }
    void Focus(const cRect& r, const cColor& color = cColor::Black) const {
        if (m_HasFocus) {
            cRender::DrawRectangleDot(r, Fade(color, m_Alpha));
        }
    }
    void Glyph(const cVec2& at, Decal decal, const cColor& color = Text) const;
    template <class F> void Clipped(const cRect& r, F paint) const;

    void Write(int font, const cStr& text, const cRect& room, bool isCentered, const cColor& color,
               float enabled) const;
    void Caption(int font, const cStr& text) const { Write(font, text, m_Args.LabelRect, false, Text, m_Enabled); }
    void FieldBox(const cRect& r) const;
    void Groove(float x0, float x1, float y) const;

    // ---- Parts
    void ScrollTrack() const;
    void ScrollPage() const;
    void ScrollThumb(const cRect& r) const;
    void ScrollArrow(Decal decal) const;
    void TitleButton(Decal decal) const;
    void FormClient() const;
    void FormGrip() const;
    void FormTitleBar() const;
    void FormTitle() const;
    void DockRegion() const;
    void Button() const;
    void IconButton() const;
    void PushButton(const cRect& r, int font, const cStr& text) const;
    void BindButton() const;
    void Slider() const;
    void CheckBox() const;
    void ComboBox() const;
    void DropDown() const;
    void ToolTip() const;
    void Edit() const;
    void Panel() const;
    void Separator() const;
    void Board(const cRect& r) const;
    cRect SwatchFrame() const;
    void ImageSwatch() const;
    void ColorSwatch() const;
    void Label() const;

    const cTheme_WindowsStandard& m_Theme;
    const Args& m_Args;
    float m_Alpha, m_Enabled, m_Hot;
    bool m_HasFocus;
};

// ---- Text

/// Top of a line that stands in the middle of a row.
float LineTop(int font, const cStr& text, const cRect& room) {
    return std::floor((room.y0 + room.y1 + cRender::MeasureStringCells(font, text).Height()) / 2);
}

void Painter::Write(int font, const cStr& text, const cRect& room, bool isCentered, const cColor& color,
                    float enabled) const {
    const char* shown = room.IsEmpty() ? nullptr : cThemeText::Shortened(font, text, room.Width());
    if (!shown) {
        return;
    }
    const float left = isCentered ? std::floor((room.Width() - cThemeText::Width(font, shown)) / 2) : 0;
    const cVec2 at(room.x0 + left, LineTop(font, text, room));
    if (enabled < 1) {
        cRender::DrawString(font, shown, at.x + 1, at.y - 1, Fade(Light, m_Alpha * (1 - enabled)));
    }
    cRender::DrawString(font, shown, at, Fade(Mix(GreyText, color, enabled), m_Alpha));
}

// ---- Pieces

void Painter::Glyph(const cVec2& at, Decal decal, const cColor& color) const {
    if (m_Enabled < 1) {
        cTheme_WindowsStandard::DrawDecalWindowsStandard({at.x + 1, at.y - 1}, decal,
                                                         Fade(Light, m_Alpha * (1 - m_Enabled)));
    }
    cTheme_WindowsStandard::DrawDecalWindowsStandard(at, decal, Fade(Mix(GreyText, color, m_Enabled), m_Alpha));
}

/// Paints with the clip narrowed to a rectangle of the part, which its transform moves as well.
template <class F> void Painter::Clipped(const cRect& r, F paint) const {
    cRect inner = r;
    if (m_Args.Transform != cMat4::Zero) {
        const cVec3 a = cVec3(r.x0, r.y0, 0) * m_Args.Transform, b = cVec3(r.x1, r.y1, 0) * m_Args.Transform;
        inner = {a.x, a.y, b.x, b.y};
    }
    const cRect clip = m_Args.Clip.IsEmpty() ? inner : cRect::Intersect(inner, m_Args.Clip);
    if (clip.IsEmpty()) { // the device would take it for no clip
        return;
    }
    cRender::SetClipRect(clip);
    paint();
    cRender::SetClipRect(m_Args.Clip);
}

/// What values are written into; lit by a line inside its edge.
void Painter::FieldBox(const cRect& r) const {
    Fill(r, Look::Field, Plain());
    if (m_Hot > 0) {
        cRender::DrawRectangle(Inset(r, 2), Fade(TitleEnd, m_Alpha * m_Hot * m_Enabled));
    }
}

void Painter::Groove(float x0, float x1, float y) const {
    Solid({x0, y, x1, y + 1}, Shadow);
    Solid({x0, y - 1, x1, y}, Light);
}

// ---- Scroll bars

void Painter::ScrollTrack() const {
    Dither(m_Args.Rect, Face, Light);
}

void Painter::ScrollPage() const {
    if (m_Args.Pressed) {
        Dither(m_Args.Rect, Shadow, DarkShadow);
    } else {
        Dither(m_Args.Rect, Face, Mix(Light, Face, m_Hot * 0.6f));
    }
}

void Painter::ScrollThumb(const cRect& r) const {
    Fill(r, m_Enabled < 0.5f ? Look::ThinUp : Look::Raised, Lit());
    if (m_Args.Pressed) {
        Dither(Inset(r, 2), Face, Light);
    }
}

void Painter::ScrollArrow(Decal decal) const {
    Fill(m_Args.Rect, m_Args.Pressed ? Look::ThinDown : Look::Raised, Lit());
    Glyph(MiddleOf(Shift(m_Args.Rect, m_Args.Pressed)), decal);
}

// ---- Forms

void Painter::TitleButton(Decal decal) const {
    Fill(m_Args.Rect, m_Args.Pressed ? Look::Pressed : Look::Raised, Lit());
    Glyph(MiddleOf(Shift(m_Args.Rect, m_Args.Pressed)), decal);
}

void Painter::FormClient() const {
    Fill(Inset(m_Args.Rect, -2), Look::Sunken, {m_Alpha, 0, 1}); // the frame lies around what scrolls
}

void Painter::FormGrip() const {
    const cVec2 at(m_Args.Rect.x1 - 7, m_Args.Rect.y0 + 6);
    const auto ridges = [this](const cVec2& p, const cColor& c) {
        cTheme_WindowsStandard::DrawDecalWindowsStandard(p, Decal::Grip, Fade(c, m_Alpha));
    };
    ridges({at.x - 1, at.y}, Light);
    ridges(at, m_Args.Pressed ? DarkShadow : Mix(Shadow, Selection, m_Hot));
}

void Painter::FormTitleBar() const {
    const float activity = std::clamp(m_Args.Activity, 0.0f, 1.0f);
    cRender::FillRectangleLinearGradient(m_Args.Rect, Fade(Mix(IdleTitle, Title, activity), m_Alpha),
                                         Fade(Mix(IdleTitleEnd, TitleEnd, activity), m_Alpha),
                                         cRender::LinearGradient::LeftToRight);
}

void Painter::FormTitle() const {
    cRect room = m_Args.Rect;
    const float buttons = m_Theme.FormTitleInset.x1 - m_Theme.MinimizeButtonOffset.x + m_Theme.MinimizeButtonSize.x;
    room.x0 += 4;
    room.x1 -= buttons + 2;
    Write(m_Theme.FormTitleFont, m_Args.Text, room, false, Mix(IdleTitleText, SelectedText, m_Args.Activity), 1);
}

void Painter::DockRegion() const {
    Solid(m_Args.Rect, Fade(Selection, 0.2f));
    cRender::DrawRectangleDot(m_Args.Rect, Fade(Selection, m_Alpha));
}

// ---- Buttons

void Painter::PushButton(const cRect& rect, int font, const cStr& text) const {
    cRect r = rect;
    if (m_HasFocus) {
        Outline(r, DarkShadow);
        r = Inset(r, 1);
    }
    Fill(r, m_Args.Pressed ? Look::Pressed : Look::Raised, Lit());
    const cRect inner = Inset(rect, 4);
    Write(font, text, Shift(inner, m_Args.Pressed), true, Text, m_Enabled);
    Focus(inner);
}

void Painter::IconButton() const {
    cRect r = m_Args.Rect;
    const bool isDown = m_Args.Pressed || m_Args.Toggled;
    if (isDown) {
        Fill(r, Look::ThinDown, Plain());
        if (m_Args.Toggled && !m_Args.Pressed) {
            Dither(Inset(r, 1), Face, Light);
        }
    } else if (m_Hot > 0) {
        Fill(r, Look::ThinUp, {m_Alpha * m_Hot, 1, 1});
    }
    Focus(Inset(r, 2));
    r = Shift(r, isDown);
    float side = float(IconCell);
    if (m_Args.Arrow) {
        Glyph({m_Args.Icon < 0 ? MiddleOf(r).x : r.x1 - 7, MiddleOf(r).y}, Decal::ArrowDown);
        r.x1 -= 9;
        side /= 2; // each pixel is the mean of four
    }
    if (m_Args.Icon < 0) {
        return;
    }
    if (m_Theme.ToolBarTexture == -1) {
        Write(m_Theme.ButtonFont, m_Args.Text, Inset(r, 1), true, Text, m_Enabled);
        return;
    }
    const float x = std::floor((r.x0 + r.x1 - side) / 2), y = std::floor((r.y0 + r.y1 - side) / 2);
    const auto state = m_Enabled < 0.5f ? cRender::IconState::Disabled
                       : m_Hot > 0.5f   ? cRender::IconState::Hot
                                        : cRender::IconState::Normal;
    cRender::DrawIcon({x, y, x + side, y + side}, m_Theme.ToolBarTexture, m_Args.Icon, state, m_Alpha, IconCell,
                      IconCell);
}

void Painter::Button() const {
    if (m_Args.Icon >= 0 || (m_Args.Arrow && m_Args.Text.IsEmpty())) {
        IconButton();
        return;
    }
    PushButton(m_Args.Rect, m_Theme.ButtonFont, m_Args.Text);
    if (m_Args.Arrow) {
        const cRect r = Shift(m_Args.Rect, m_Args.Pressed);
        Glyph({r.x1 - 10, MiddleOf(r).y}, Decal::ArrowDown);
    }
}

void Painter::BindButton() const {
    Caption(m_Theme.BindButtonFont, m_Args.Text);
    if (!m_Args.Toggled) {
        PushButton(m_Args.ValueRect, m_Theme.BindButtonFont, m_Args.Value);
        return;
    }
    const cRect& r = m_Args.ValueRect;
    Fill(r, Look::Field, Plain());
    Solid(Inset(r, 2), Mix(Face, Selection, m_Enabled));
    cTheme_WindowsStandard::DrawDecalWindowsStandard(MiddleOf(r), Decal::Dots, Fade(SelectedText, m_Alpha));
    Focus(Inset(r, 3), TitleEnd);
}

// ---- Values

void Painter::Slider() const {
    Caption(m_Theme.SliderFont, m_Args.Text);
    const cRect& r = m_Args.ValueRect;
    const float middle = std::floor((r.y0 + r.y1) / 2);
    Fill({r.x0 + 2, middle - 2, r.x1 - 2, middle + 2}, Look::Field, Plain());
    Focus(r);
    const cRect& thumb = m_Args.ThumbRect;
    ScrollThumb({thumb.x0, thumb.y0 + 1, thumb.x1, thumb.y1 - 1});
}

void Painter::CheckBox() const {
    const cRect& box = m_Args.ValueRect;
    if (m_Args.Pressed) {
        Fill(box, Look::Sunken, Plain());
    } else {
        FieldBox(box);
    }
    if (m_Args.Toggled) {
        cTheme_WindowsStandard::DrawDecalWindowsStandard(MiddleOf(box), Decal::CheckMark,
                                                         Fade(Mix(GreyText, Text, m_Enabled), m_Alpha));
    }
    cRect room = m_Args.LabelRect;
    if (room.IsEmpty()) {
        room = {box.x1 + m_Theme.CheckBoxPadding, m_Args.Rect.y0, m_Args.Rect.x1, m_Args.Rect.y1};
    }
    Write(m_Theme.CheckBoxFont, m_Args.Text, room, false, Text, m_Enabled);
    Focus({room.x0 - 2, room.y0, room.x1 + 2, room.y1});
}

void Painter::ComboBox() const {
    Caption(m_Theme.ComboFont, m_Args.Text);
    const cRect& r = m_Args.ValueRect;
    FieldBox(r);
    const cRect button(r.x1 - 2 - m_Theme.ComboButtonWidth, r.y0 + 2, r.x1 - 2, r.y1 - 2);
    const bool isDown = m_Args.Pressed || m_Args.Toggled;
    Fill(button, isDown ? Look::ThinDown : Look::Raised, isDown ? Plain() : Lit());
    Glyph(MiddleOf(Shift(button, isDown)), Decal::ArrowDown);
    const cRect value(r.x0 + 3, r.y0 + 3, button.x0 - 1, r.y1 - 3);
    const bool isSelected = m_HasFocus && !m_Args.Toggled;
    if (isSelected) {
        Solid(value, Selection);
        Focus(value, TitleEnd);
    }
    Write(m_Theme.ComboFont, m_Args.Value, {value.x0 + 2, value.y0, value.x1 - 1, value.y1}, false,
          isSelected ? SelectedText : Text, m_Enabled);
}

void Painter::DropDown() const {
    const cRect& r = m_Args.Rect;
    Solid(r, Field);
    const float height = m_Theme.ComboItemHeight;
    Clipped(Inset(r, 1), [&] {
        for (int i = 0; i < m_Args.Items.Count(); i++) {
            const float top = r.y1 + m_Args.ScrollX - float(i) * height;
            if (top <= r.y0 || top - height >= r.y1) {
                continue;
            }
            const bool isDisabled = i < m_Args.ItemFlags.Count() && (m_Args.ItemFlags[i] & 1) != 0;
            const bool isSelected = i == m_Args.SelStart && !isDisabled;
            const cRect row(r.x0 + 1, top - height, r.x1 - 1, top);
            if (isSelected) {
                Solid(row, Selection);
            }
            Write(m_Theme.ComboFont, m_Args.Items[i], {row.x0 + 4, row.y0, row.x1 - 3, row.y1}, false,
                  isSelected   ? SelectedText
                  : isDisabled ? GreyText
                               : Text,
                  1);
        }
    });
    Outline(r, cColor::Black);
}

void Painter::ToolTip() const {
    const cRect text = cRender::MeasureStringCells(m_Theme.ToolTipFont, m_Args.Text);
    const float padding = m_Theme.ToolTipPadding;
    cRect r(0, 0, text.Width() + 2 * padding, text.Height() + 2 * (padding - 1));
    r.AlignPoint(m_Args.Align, std::floor(m_Args.Position.x), std::floor(m_Args.Position.y));
    r = {std::floor(r.x0), std::floor(r.y0), std::floor(r.x1), std::floor(r.y1)};
    Solid(r, TipField);
    Outline(r, cColor::Black);
    Write(m_Theme.ToolTipFont, m_Args.Text, {r.x0 + padding, r.y0, r.x1 - padding, r.y1}, false, Text, 1);
}

void Painter::Edit() const {
    const int font = m_Theme.EditFont;
    const cStr& text = m_Args.Value;
    Caption(font, m_Args.Text);
    FieldBox(m_Args.ValueRect);
    cRect room = m_Args.TextRect;
    if (room.IsEmpty()) {
        room = m_Args.ValueRect;
        room.x0 += m_Theme.EditPaddingLeft;
        room.x1 -= m_Theme.EditPaddingRight;
    }
    if (!m_Args.Toggled) {
        Write(font, text, room, false, Text, m_Enabled);
        Focus(Inset(m_Args.ValueRect, 3));
        return;
    }
    const float left = room.x0 + m_Args.ScrollX, top = LineTop(font, text, room);
    const auto xOf = [&](int index) { return left + cThemeText::WidthBefore(font, text, index); };
    const auto line = [&](const cColor& color) {
        cRender::DrawString(font, text, left, top, Fade(Mix(GreyText, color, m_Enabled), m_Alpha));
    };
    const float y0 = m_Args.ValueRect.y0 + 3, y1 = m_Args.ValueRect.y1 - 3;
    Clipped({room.x0, y0, room.x1 + 1, y1}, [&] { line(Text); });
    if (m_Args.SelLen > 0) {
        const cRect selected(xOf(m_Args.SelStart), y0, xOf(m_Args.GetSelEnd()), y1);
        const cRect shown = cRect::Intersect(selected, {room.x0, y0, room.x1 + 1, y1});
        Clipped(shown, [&] {
            Solid(shown, Selection);
            line(SelectedText);
        });
    }
    const float blink = m_Theme.EditCaretBlinkSec, since = cTimer::GetSystemTimeSec() - m_Args.CaretTime;
    if (std::fmod(std::max(since, 0.0f), 2 * blink) < blink) {
        const float x = xOf(m_Args.Caret);
        Clipped({room.x0, y0, room.x1 + 2, y1}, [&] { Solid({x, y0, x + 1, y1}, Text); });
    }
}

// ---- Rows

void Painter::Panel() const {
    const cRect &title = m_Args.LabelRect, &arrow = m_Args.ThumbRect;
    if (title.IsEmpty()) { // without a header there is nothing to see
        return;
    }
    cRect bar = title, room = title;
    if (!arrow.IsEmpty()) {
        bar.x0 = std::min(bar.x0, arrow.x0);
        bar.x1 = std::max(bar.x1, arrow.x1);
        (m_Theme.PanelArrowAtLeft ? room.x0 : room.x1) = m_Theme.PanelArrowAtLeft ? arrow.x1 : arrow.x0;
    }
    Fill(bar, m_Args.Pressed ? Look::ThinDown : Look::ThinUp, Lit());
    if (!arrow.IsEmpty()) {
        const cVec2 middle = MiddleOf(arrow);
        Solid({middle.x - 4, middle.y - 4, middle.x + 5, middle.y + 5}, Mix(Face, Field, m_Enabled));
        Glyph(middle, Decal::Box, Shadow);
        Glyph(middle, m_Args.Toggled ? Decal::Minus : Decal::Plus);
    }
    room = {room.x0 + TextGap, room.y0, room.x1 - TextGap, room.y1};
    Write(m_Theme.PanelFont, m_Args.Text, room, false, Text, m_Enabled);
    Focus({room.x0 - 2, bar.y0 + 3, bar.x1 - 3, bar.y1 - 3});
}

void Painter::Separator() const {
    const cRect& r = m_Args.Rect;
    if (r.Height() > r.Width()) { // on a tool bar
        const float x = std::floor((r.x0 + r.x1) / 2);
        Solid({x - 1, r.y0 + 3, x, r.y1 - 3}, Shadow);
        Solid({x, r.y0 + 3, x + 1, r.y1 - 3}, Light);
        return;
    }
    Write(m_Theme.SeparatorFont, m_Args.Text, r, false, Text, m_Enabled);
    const float width = cThemeText::Width(m_Theme.SeparatorFont, m_Args.Text);
    const float left = r.x0 + (width > 0 ? width + TextGap : 0);
    if (left < r.x1) {
        Groove(left, r.x1, std::floor((r.y0 + r.y1) / 2));
    }
}

/// A chessboard that tells how much shows through what is drawn over it.
void Painter::Board(const cRect& r) const {
    constexpr int MaxSide = 16;
    cRect squares[MaxSide * MaxSide / 2];
    int count = 0;
    const float side = std::max(8.0f, std::ceil(std::max(r.Width(), r.Height()) / MaxSide));
    for (int y = 0; y < MaxSide && r.y0 + float(y) * side < r.y1; y++) { // rounding may see one more
        for (int x = y & 1; x < MaxSide && r.x0 + float(x) * side < r.x1; x += 2) {
            const cVec2 at(r.x0 + float(x) * side, r.y0 + float(y) * side);
            squares[count++] = cRect::Intersect({at.x, at.y, at.x + side, at.y + side}, r);
        }
    }
    Solid(r, Field);
    cRender::FillRectanglesSolid(squares, count, Fade(IdleTitleEnd, m_Alpha));
}

/// @return what is left inside the frame
cRect Painter::SwatchFrame() const {
    Caption(m_Theme.LabelFont, m_Args.Text);
    Fill(m_Args.ValueRect, Look::Field, Plain());
    Focus({m_Args.LabelRect.x0 - 1, m_Args.LabelRect.y0, m_Args.LabelRect.x1 + 1, m_Args.LabelRect.y1});
    return Inset(m_Args.ValueRect, 2);
}

void Painter::ImageSwatch() const {
    const cRect r = SwatchFrame();
    if (r.IsEmpty()) {
        return;
    }
    if (m_Args.Texture == -1 || cRender::GetTextureWidth(m_Args.Texture) < 1) {
        cRender::DrawNoPreview(Inset(r, 4), Fade(IdleTitleEnd, m_Alpha));
    } else {
        cRender::FillRectangleTexturedArgs texture;
        if (m_Alpha < 1) { // what fades does so as a whole, which leaves no room for the image's own alpha
            texture.Alpha = m_Alpha;
        }
        Board(r);
        cRender::FillRectangleTextured(r, m_Args.Texture, texture);
        Solid(r, Fade(Face, (1 - m_Enabled) * 0.6f));
    }
    int lines = 0;
    for (const cStr& line : m_Args.Extra) {
        lines += !line.IsEmpty();
    }
    const float height = cRender::MeasureStringCells(m_Theme.LabelFont, "M").Height() + 1;
    if (lines == 0 || height <= 1) {
        return;
    }
    float y = r.y0 + float(lines) * height + 2;
    Solid({r.x0, r.y0, r.x1, y}, Fade(TipField, 0.85f));
    y -= 1;
    for (const cStr& line : m_Args.Extra) {
        if (!line.IsEmpty()) {
            Write(m_Theme.LabelFont, line, {r.x0 + 3, y - height, r.x1 - 3, y}, false, Text, m_Enabled);
            y -= height;
        }
    }
}

void Painter::ColorSwatch() const {
    const cRect r = SwatchFrame();
    if (r.IsEmpty()) {
        return;
    }
    // The colour as it is, and as it looks through its alpha.
    const float middle = std::floor((r.x0 + r.x1) / 2);
    const cColor& c = m_Args.Color;
    const float shown = 0.35f + 0.65f * m_Enabled;
    Board({middle, r.y0, r.x1, r.y1});
    Solid({r.x0, r.y0, middle, r.y1}, {c.r, c.g, c.b, shown});
    Solid({middle, r.y0, r.x1, r.y1}, {c.r, c.g, c.b, std::clamp(c.a, 0.0f, 1.0f) * shown});
}

void Painter::Label() const {
    Caption(m_Theme.LabelFont, m_Args.Text);
    if (m_Args.ValueRect.IsEmpty()) {
        return;
    }
    Fill(m_Args.ValueRect, Look::ThinDown, Plain());
    const cRect& r = m_Args.ValueRect;
    Write(m_Theme.LabelFont, m_Args.Value, {r.x0 + 4, r.y0, r.x1 - 4, r.y1}, false, Text, m_Enabled);
}

void Painter::Paint() {
    switch (m_Args.Part) {
    case Parts::VScrollTrack:
    case Parts::HScrollTrack:
        return ScrollTrack();
    case Parts::VScrollThumb:
    case Parts::HScrollThumb:
        return ScrollThumb(m_Args.Rect);
    case Parts::VScrollPageUp:
    case Parts::VScrollPageDown:
    case Parts::HScrollPageLeft:
    case Parts::HScrollPageRight:
        return ScrollPage();
    case Parts::VScrollArrowUp:
        return ScrollArrow(Decal::ArrowUp);
    case Parts::VScrollArrowDown:
        return ScrollArrow(Decal::ArrowDown);
    case Parts::HScrollArrowLeft:
        return ScrollArrow(Decal::ArrowLeft);
    case Parts::HScrollArrowRight:
        return ScrollArrow(Decal::ArrowRight);
    case Parts::FormBody:
        return Fill(m_Args.Rect, Look::Window, {m_Alpha, 0, 1});
    case Parts::FormGrip:
        return FormGrip();
    case Parts::FormClose:
        return TitleButton(Decal::Close);
    case Parts::FormClient:
        return FormClient();
    case Parts::FormTitleBar:
        return FormTitleBar();
    case Parts::FormMinimize:
        return TitleButton(Decal::Minimize);
    case Parts::FormMaximize:
        return TitleButton(Decal::Maximize);
    case Parts::FormRestoreMinimized:
        return TitleButton(Decal::RestoreUp);
    case Parts::FormRestoreMaximized:
        return TitleButton(Decal::Restore);
    case Parts::FormTitle:
        return FormTitle();
    case Parts::DockRegion:
        return DockRegion();
    case Parts::Button:
        return Button();
    case Parts::BindButton:
        return BindButton();
    case Parts::Slider:
        return Slider();
    case Parts::CheckBox:
        return CheckBox();
    case Parts::ComboBox:
        return ComboBox();
    case Parts::DropDown:
        return DropDown();
    case Parts::ToolTip:
        return ToolTip();
    case Parts::Edit:
        return Edit();
    case Parts::Panel:
        return Panel();
    case Parts::Separator:
        return Separator();
    case Parts::ImageSwatch:
        return ImageSwatch();
    case Parts::ColorSwatch:
        return ColorSwatch();
    case Parts::Label:
        return Label();
    case Parts::SizeLeft:
    case Parts::SizeTop:
    case Parts::SizeRight:
    case Parts::SizeBottom:
    case Parts::SizeLeftTop:
    case Parts::SizeRightTop:
    case Parts::SizeRightBottom:
    case Parts::SizeLeftBottom:
    case Parts::None:
    case Parts::Count:
        return;
    }
}

} // namespace

void cTheme_WindowsStandard::Draw(const DrawArgs& args) const {
    const bool isScrollBar = args.Part >= Parts::VScrollTrack && args.Part <= Parts::HScrollArrowRight;
    const float alpha = args.Alpha * args.FormAlpha * args.CurVisible * (isScrollBar ? args.Shown : 1);
    const bool isBorder = args.Part >= Parts::SizeLeft && args.Part <= Parts::SizeRightTop; // felt, not seen
    if (!(alpha > 0) || isBorder || args.Part == Parts::None || args.Part == Parts::Count) {
        return;
    }
    const cRect outer = cRender::GetClipRect();
    const bool isMoved = args.Transform != cMat4::Zero;
    cRender::SetClipRect(args.Clip);
    if (isMoved) {
        cRender::SetWorldMatrix(args.Transform);
    }
    Painter(*this, args, alpha).Paint();
    if (isMoved) {
        cRender::SetWorldMatrix(cMat4::Identity);
    }
    cRender::SetClipRect(outer);
}

} // namespace trellis
