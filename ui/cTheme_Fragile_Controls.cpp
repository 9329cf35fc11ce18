#include "foundation/cTimer.h"
#include "render/cRender.h"
#include "ui/cThemeText.h"
#include "ui/cTheme_Fragile.h"
#include "ui/cTheme_Fragile_Icons.h"
#include "ui/cTheme_Fragile_Pen.h"

#include <algorithm>
#include <cmath>

namespace trellis {

using Colors = cTheme_Fragile_Colors;

namespace {

using Pen = cTheme_Fragile_Pen;

cRect Inset(const cRect& r, float x, float y) {
    return {r.x0 + x, r.y0 + y, r.x1 - x, r.y1 - y};
}

cRect SquareAt(const cVec2& at, float size) {
    return {at.x - size / 2, at.y - size / 2, at.x + size / 2, at.y + size / 2};
}

/// What is drawn of a control: a little less, so that rows stand apart and shadows have room.
cRect Face(const Pen& pen, const cRect& rect) {
    return Inset(rect, pen.R(1), std::min(pen.R(2), rect.Height() / 4));
}

/// A raised bar in the colours of its state. @param chosen  0 to 1: in the accent's colour
void Raised(const Pen& pen, const cRect& rect, float chosen = 0) {
    cColor center = cColor::Lerp(Colors::Raised, Colors::RaisedHot, pen.Hot);
    cColor bound = cColor::Lerp(Colors::RaisedEdge, Colors::RaisedHotEdge, pen.Hot);
    center = cColor::Lerp(center, cColor::FromRgb(0x4288D8), chosen);
    bound = cColor::Lerp(bound, cColor::FromRgb(0x24599C), chosen);
    if (pen.A.Pressed) {
        center = Colors::Pressed;
        bound = Colors::PressedEdge;
    }
    pen.Focus(rect);
    pen.Glass(rect, pen.Able(center, Colors::RaisedOff), pen.Able(bound, Colors::RaisedOffEdge));
}

} // namespace

void cTheme_Fragile::DrawButton(const Pen& pen) {
    const cTheme& theme = pen.Theme;
    const cRect& rect = pen.A.Rect;
    const cRect face = Face(pen, rect);
    Raised(pen, face, pen.A.Toggled);
    const cColor ink = pen.Ink();
    const float arrow = pen.A.Arrow ? std::min(pen.R(14), rect.Width() / 3) : 0;
    if (pen.A.Arrow) {
        pen.Chevron({face.x1 - arrow, face.Center().y - pen.R(0.5f)}, pen.R(7), false, ink);
    }
    cRect inner = Inset(face, theme.ButtonPadding, 0);
    inner.x1 -= arrow * 0.6f;
    if (pen.A.Icon >= 0) {
        const float size = std::floor(std::min(face.Width(), face.Height()) * 0.44f);
        cTheme_Fragile_DrawIcon(pen, pen.A.Icon, inner.Center(), size, ink);
    } else {
        pen.Text(theme.ButtonFont, pen.A.Text.Text(), inner, cRect::CenterMiddle, ink);
    }
}

void cTheme_Fragile::DrawBindButton(const Pen& pen) {
    const cTheme& theme = pen.Theme;
    const cRect face = Face(pen, pen.A.ValueRect);
    pen.Caption(theme.BindButtonFont);
    if (pen.A.Toggled) {
        pen.BarGlow(face, pen.R(4), Colors::WithAlpha(Colors::Accent, 0.5f * pen.Enable));
    }
    Raised(pen, face, pen.A.Toggled);
    pen.Text(theme.BindButtonFont, pen.A.Value.Text(), Inset(face, theme.BindButtonPadding, 0), cRect::CenterMiddle,
             pen.Ink());
}

void cTheme_Fragile::DrawSlider(const Pen& pen) {
    const cTheme& theme = pen.Theme;
    const cRect& track = pen.A.ValueRect;
    pen.Caption(theme.SliderFont);
    cRect groove = Inset(track, pen.R(2), 0);
    groove.SetHeight(cRect::CenterMiddle, std::min(pen.R(9), track.Height()));
    pen.Focus(groove);
    pen.Well(groove);
    if (pen.A.ThumbRect.IsEmpty()) {
        return;
    }
    const cVec2 at(pen.A.ThumbRect.Center().x, groove.Center().y);
    const float half = groove.Height() / 2;
    cRect done = groove;
    done.x1 = std::max(at.x, groove.x0 + 2 * half);
    pen.Bar(Inset(done, pen.R(2), pen.R(2)), 0, 1.5f, pen.Able(Colors::Accent, Colors::TextOff),
            pen.Able(cColor::FromRgb(0x2F70BC), Colors::RaisedOff));

    const float radius = std::min(pen.A.ThumbRect.Width(), pen.A.ThumbRect.Height()) / 2 - pen.R(1) * (1 - pen.Hot);
    if (pen.Hot > 0) {
        pen.BarGlow(SquareAt(at, 2 * radius), pen.R(4),
                    Colors::WithAlpha(Colors::Accent, 0.40f * pen.Hot * pen.Enable));
    }
    cColor center = cColor::Lerp(cColor::FromRgb(0x8AA6D2), cColor::FromRgb(0xB4D4FF), pen.Hot);
    cColor bound = cColor::Lerp(cColor::FromRgb(0x4A6490), cColor::FromRgb(0x4F86CC), pen.Hot);
    if (pen.A.Pressed) {
        center = cColor::FromRgb(0x5C93DA);
        bound = cColor::FromRgb(0xA5CCFF);
    }
    pen.Glass(SquareAt(at, 2 * radius), pen.Able(center, cColor::FromRgb(0x4A5568)),
              pen.Able(bound, cColor::FromRgb(0x384357)));
}

void cTheme_Fragile::DrawCheckBox(const Pen& pen) {
    static constexpr float s_Check[][4] = {{0.05f, 0.48f, 0.38f, 0.14f}, {0.38f, 0.14f, 0.98f, 0.90f}};
    const cTheme& theme = pen.Theme;
    const cRect& box = pen.A.ValueRect;
    const float corner = std::floor(box.Height() * 0.3f), on = pen.A.Toggled;
    if (pen.HasFocus) {
        pen.PlateGlow(box, corner, pen.R(4), Colors::WithAlpha(Colors::Accent, 0.70f * (0.3f + 0.7f * pen.Enable)));
    }
    cColor center = cColor::Lerp(Colors::Sunk, cColor::FromRgb(0x4288D8), on);
    cColor bound = cColor::Lerp(Colors::SunkEdge, cColor::FromRgb(0x24599C), on);
    center = cColor::Lerp(center, cColor::Lerp(Colors::RaisedEdge, Colors::Accent, on), 0.55f * pen.Hot);
    bound = cColor::Lerp(bound, Colors::RaisedHotEdge, 0.6f * pen.Hot);
    if (pen.A.Pressed) {
        center = Colors::Pressed;
        bound = Colors::PressedEdge;
    }
    pen.Plate(box, corner, pen.Able(center, Colors::SunkOff), pen.Able(bound, Colors::SunkOff));
    const cColor rim = pen.HasFocus ? Colors::Accent : Colors::Rim;
    const float edge = std::min(pen.Enable * (pen.HasFocus ? 0.75f : 0.35f + 0.35f * pen.Hot) + 0.35f, 1.0f);
    pen.PlateRim(box, corner, Colors::WithAlpha(rim, edge), Colors::WithAlpha(rim, edge * 0.75f));
    if (pen.A.Toggled) {
        pen.Strokes(box.Center(), std::floor(box.Height() * 0.52f), std::max(box.Height() * 0.062f, 0.8f), s_Check, 2,
                    pen.Able(Colors::Light, Colors::TextOff));
    }
    pen.Text(theme.CheckBoxFont, pen.A.Text.Text(),
             {box.x1 + theme.CheckBoxPadding, pen.A.Rect.y0, pen.A.Rect.x1, pen.A.Rect.y1}, cRect::LeftMiddle,
             pen.Ink());
}

void cTheme_Fragile::DrawComboBox(const Pen& pen) {
    const cTheme& theme = pen.Theme;
    const cRect face = Face(pen, pen.A.ValueRect);
    pen.Caption(theme.ComboFont);
    pen.Focus(face);
    pen.Well(face);

    // The button lies in the round end.
    const float size = face.Height() - 2 * pen.R(2);
    const cRect button = SquareAt({face.x1 - face.Height() / 2, face.Center().y}, size);
    const float chosen = pen.A.Toggled;
    cColor center = cColor::Lerp(Colors::Raised, Colors::RaisedHot, pen.Hot);
    cColor bound = cColor::Lerp(Colors::RaisedEdge, Colors::RaisedHotEdge, pen.Hot);
    center = cColor::Lerp(center, Colors::Pressed, pen.A.Pressed ? 1.0f : chosen);
    bound = cColor::Lerp(bound, Colors::PressedEdge, pen.A.Pressed ? 1.0f : chosen);
    pen.Glass(button, pen.Able(center, Colors::RaisedOff), pen.Able(bound, Colors::RaisedOffEdge));
    pen.Chevron(button.Center() + cVec2(0, (pen.A.Toggled ? 0.5f : -0.5f) * pen.R(1)), std::floor(size * 0.42f),
                pen.A.Toggled, pen.Ink());
    pen.Text(theme.ComboFont, pen.A.Value.Text(),
             {face.x0 + theme.ComboPadding, face.y0, button.x0 - pen.R(4), face.y1}, cRect::LeftMiddle, pen.Ink());
}

void cTheme_Fragile::DrawDropDown(const Pen& pen) {
    const cTheme& theme = pen.Theme;
    const cRect& rect = pen.A.Rect;
    const float corner = pen.R(6), row = theme.ComboItemHeight;
    cRect under = rect;
    under.Translate({pen.R(1), -pen.R(2)});
    pen.PlateGlow(under, corner, pen.R(6), Colors::WithAlpha(Colors::Shade, 0.40f));
    pen.Plate(rect, corner, cColor::FromRgb(0x1B2638, 1), cColor::FromRgb(0x24324A, 1));
    pen.PlateRim(rect, corner, Colors::WithAlpha(Colors::Rim, 0.60f), Colors::WithAlpha(Colors::Rim, 0.35f));
    if (row <= 0) {
        return;
    }
    const cRect inner = Inset(rect, 1, 1);
    for (int i = 0; i < pen.A.Items.Count(); i++) {
        const float top = rect.y1 + pen.A.ScrollX - float(i) * row;
        const cRect line(inner.x0, top - row, inner.x1, top);
        if (line.y0 >= rect.y1 || line.y1 <= rect.y0 || !pen.SetPiece(cRect::Intersect(line, inner))) {
            continue;
        }
        const bool isOff = i < pen.A.ItemFlags.Count() && (pen.A.ItemFlags[i] & 1);
        if (i == pen.A.SelStart) {
            // A circle as wide as the row, of which the row is the middle: it fades to both ends.
            const cColor color = isOff ? Colors::Rim : Colors::Accent;
            cRender::FillCircleRadialGradient(line.Center(), 0, line.Width() / 2, 2.2f,
                                              pen.Faded(Colors::WithAlpha(color, isOff ? 0.20f : 0.55f)),
                                              pen.Faded(Colors::WithAlpha(color, isOff ? 0.02f : 0.08f)));
        }
        pen.Text(theme.ComboFont, pen.A.Items[i].Text(), Inset(line, theme.ComboPadding, 0), cRect::LeftMiddle,
                 isOff ? Colors::TextOff : pen.Ink());
    }
    pen.EndPiece();
}

void cTheme_Fragile::DrawToolTip(const Pen& pen) {
    const cTheme& theme = pen.Theme;
    const cRect text = cRender::MeasureStringCells(theme.ToolTipFont, pen.A.Text.Text());
    if (text.IsEmpty()) {
        return;
    }
    const float pad = theme.ToolTipPadding;
    cRect tip(0, 0, text.Width() + 4 * pad, text.Height() + 2 * pad);
    tip.AlignPoint(pen.A.Align, std::floor(pen.A.Position.x + 0.5f), std::floor(pen.A.Position.y + 0.5f));
    cRect under = tip;
    under.Translate({pen.R(1), -pen.R(1)});
    const float corner = pen.R(6);
    pen.PlateGlow(under, corner, pen.R(5), Colors::WithAlpha(Colors::Shade, 0.40f));
    pen.Plate(tip, corner, cColor::FromRgb(0xDCE6F5), cColor::FromRgb(0xBFD0EA));
    pen.PlateRim(tip, corner, Colors::WithAlpha(Colors::Light, 0.9f), Colors::WithAlpha(Colors::Shade, 0.35f));
    pen.Text(theme.ToolTipFont, pen.A.Text.Text(), tip, cRect::CenterMiddle, cColor::FromRgb(0x15202F));
}

void cTheme_Fragile::DrawEdit(const Pen& pen) {
    const cTheme& theme = pen.Theme;
    const Pen::Args& a = pen.A;
    const cRect face = Face(pen, a.ValueRect);
    pen.Caption(theme.EditFont);
    pen.Focus(face);
    pen.Well(face);
    if (a.Toggled) {
        pen.BarRim(face, pen.R(1.5f), Colors::WithAlpha(Colors::Accent, 0.25f + 0.60f * pen.Enable));
    }
    cRect view = a.TextRect;
    if (view.IsEmpty()) {
        view = {a.ValueRect.x0 + theme.EditPaddingLeft, a.ValueRect.y0, a.ValueRect.x1 - theme.EditPaddingRight,
                a.ValueRect.y1};
    }
    const char* text = a.Value.Text();
    const float x = view.x0 + a.ScrollX, y = face.Center().y;
    if (!a.Toggled) {
        pen.Text(theme.EditFont, text, {view.x0, face.y0, view.x1, face.y1}, cRect::LeftMiddle, pen.Ink());
        return;
    }
    const float half = pen.R(9); // of the marked row, and of the caret
    const float caret = std::max(pen.R(1), 1.0f);
    if (!pen.SetPiece({view.x0 - caret, face.y0, view.x1 + caret, face.y1})) {
        return;
    }
    if (a.SelLen > 0) {
        const float from = x + cThemeText::WidthBefore(theme.EditFont, text, a.SelStart);
        const float to = x + cThemeText::WidthBefore(theme.EditFont, text, a.GetSelEnd());
        pen.Fill({from, std::floor(y - half), to, std::floor(y + half)}, Colors::WithAlpha(Colors::Accent, 0.42f));
    }
    pen.Line(theme.EditFont, text, {x, y}, pen.Ink());
    const float blink = theme.EditCaretBlinkSec, since = cTimer::GetSystemTimeSec() - a.CaretTime;
    if (blink <= 0 || since < 0 || std::fmod(since, 2 * blink) < blink) {
        const float at = std::floor(x + cThemeText::WidthBefore(theme.EditFont, text, a.Caret) + 0.5f);
        pen.Fill({at, std::floor(y - half), at + caret, std::floor(y + half)}, Colors::Light);
    }
    pen.EndPiece();
}

void cTheme_Fragile::DrawPanel(const Pen& pen) {
    const cTheme& theme = pen.Theme;
    const cRect& rect = pen.A.Rect;
    const bool hasHeader = !pen.A.LabelRect.IsEmpty();
    if (pen.A.Toggled || !hasHeader) {
        const float corner = pen.R(17);
        pen.Plate(rect, corner, Colors::WithAlpha(Colors::Raised, 0.13f), Colors::WithAlpha(Colors::Raised, 0.20f));
        pen.PlateRim(rect, corner, Colors::WithAlpha(Colors::Rim, 0.30f), Colors::WithAlpha(Colors::Rim, 0.15f));
    }
    if (!hasHeader) {
        return;
    }
    const float height = std::min(theme.PanelHeaderHeight > 0 ? theme.PanelHeaderHeight : rect.Height(), rect.Height());
    const cRect bar = Inset(cRect(rect.x0, rect.y1 - height, rect.x1, rect.y1), pen.R(2), pen.R(2));
    pen.Focus(bar);
    const float hot = pen.A.Hovered ? std::max(pen.Hot, 0.35f) : pen.Hot;
    cColor center = cColor::Lerp(cColor::FromRgb(0x3A4E70), cColor::FromRgb(0x507CB8), hot);
    cColor bound = cColor::Lerp(cColor::FromRgb(0x2B3A55), cColor::FromRgb(0x35598C), hot);
    if (pen.A.Pressed) {
        center = Colors::Pressed;
        bound = Colors::PressedEdge;
    }
    pen.Glass(bar, pen.Able(center, Colors::RaisedOff), pen.Able(bound, Colors::RaisedOffEdge));

    const float text = std::max(pen.A.LabelRect.x0, bar.x0 + bar.Height() * 0.35f);
    const bool hasArrow = !pen.A.ThumbRect.IsEmpty();
    pen.Text(theme.PanelFont, pen.A.Text.Text(),
             {text, bar.y0, hasArrow ? pen.A.ThumbRect.x0 - pen.R(4) : bar.x1 - pen.R(8), bar.y1}, cRect::LeftMiddle,
             pen.Ink());
    if (hasArrow) {
        const float size = std::min(pen.A.ThumbRect.Width(), pen.A.ThumbRect.Height());
        const cVec2 at(std::min(pen.A.ThumbRect.Center().x, bar.x1 - bar.Height() / 2), bar.Center().y);
        pen.Disc(at, 0.9f, size * 0.62f, 1, Colors::WithAlpha(Colors::Shade, 0.30f),
                 Colors::WithAlpha(Colors::Shade, 0.22f));
        pen.Chevron(at + cVec2(0, (pen.A.Toggled ? 0.5f : -0.5f) * pen.R(1)), std::floor(size * 0.62f), pen.A.Toggled,
                    pen.Ink());
    }
}

void cTheme_Fragile::DrawSeparator(const Pen& pen) {
    const cTheme& theme = pen.Theme;
    const cRect& rect = pen.A.Rect;
    const cColor color = Colors::WithAlpha(Colors::Rim, 0.20f + 0.30f * pen.Enable);
    const float width = std::max(std::floor(pen.R(1)), 1.0f);
    if (rect.Height() > rect.Width()) {
        cRect line = Inset(rect, 0, std::floor(rect.Height() * 0.18f));
        line.SetWidth(cRect::CenterMiddle, 2 * width);
        pen.Bar(line, 0.5f, 1, color, Colors::WithAlpha(color, 0));
        return;
    }
    float left = rect.x0;
    if (!pen.A.Text.IsEmpty()) {
        const float text = cRender::MeasureStringCells(theme.SeparatorFont, pen.A.Text.Text()).Width();
        left = std::min(rect.x0 + pen.R(8), rect.x1);
        pen.Text(theme.SeparatorFont, pen.A.Text.Text(), {left, rect.y0, rect.x1, rect.y1}, cRect::LeftMiddle,
                 pen.Able(Colors::TextDim, Colors::TextOff));
        left += text > 0 ? text + pen.R(8) : 0;
    }
    const float y = std::floor(rect.Center().y);
    if (left < rect.x1) {
        pen.Fade({left, y - width, rect.x1, y}, color, Colors::WithAlpha(color, 0.05f));
    }
}

void cTheme_Fragile::DrawLabel(const Pen& pen) {
    const cTheme& theme = pen.Theme;
    pen.Caption(theme.LabelFont);
    if (!pen.A.ValueRect.IsEmpty()) {
        const cRect face = Face(pen, pen.A.ValueRect);
        pen.Bar(face, 0, 1, Colors::WithAlpha(Colors::Sunk, 0.35f), Colors::WithAlpha(Colors::Sunk, 0.20f));
        pen.Text(theme.LabelFont, pen.A.Value.Text(), Inset(face, theme.LabelPadding, 0), cRect::LeftMiddle,
                 pen.Able(Colors::TextDim, Colors::TextOff));
    }
}

void cTheme_Fragile::DrawImageSwatch(const Pen& pen) {
    const cTheme& theme = pen.Theme;
    const cRect& rect = pen.A.ValueRect;
    pen.Caption(theme.LabelFont);
    if (rect.IsEmpty()) {
        return;
    }
    const float corner = pen.R(5), border = pen.R(4);
    pen.Plate(rect, corner, Colors::Sunk, Colors::SunkEdge);
    pen.PlateRim(rect, corner, Colors::WithAlpha(Colors::Rim, 0.35f + 0.4f * pen.Hot),
                 Colors::WithAlpha(Colors::Rim, 0.30f));
    cRect picture = Inset(rect, border, border);
    const int width = cRender::GetTextureWidth(pen.A.Texture), height = cRender::GetTextureHeight(pen.A.Texture);
    if (pen.A.Texture == -1 || width < 1 || height < 1) {
        cRender::DrawNoPreview(picture, pen.Faded(Colors::WithAlpha(Colors::Rim, 0.45f)));
    } else {
        picture = cRect::Inscribe({0, 0, float(width), float(height)}, picture);
        cRender::FillRectangleTexturedArgs args;
        const float alpha = pen.Faded(Colors::Light).a * (0.45f + 0.55f * pen.Enable);
        if (alpha < 1) {
            args.Alpha = alpha;
        }
        cRender::FillRectangleTextured(picture, pen.A.Texture, args);
    }
    // Lines about the image, over its lower edge.
    const float line = cRender::MeasureStringCells(theme.ToolTipFont, "0").Height();
    int lines = 0;
    for (const cStr& text : pen.A.Extra) {
        lines += !text.IsEmpty();
    }
    const cRect inner = Inset(rect, border, border);
    float y = inner.y0 + float(lines) * line;
    if (lines > 0 && line > 0) {
        pen.Fill({inner.x0, inner.y0, inner.x1, std::min(y, inner.y1)}, Colors::WithAlpha(Colors::Shade, 0.62f));
    }
    for (const cStr& text : pen.A.Extra) {
        if (!text.IsEmpty()) {
            pen.Text(theme.ToolTipFont, text.Text(), {inner.x0 + pen.R(3), y - line, inner.x1 - pen.R(3), y},
                     cRect::LeftMiddle, pen.Ink());
            y -= line;
        }
    }
}

void cTheme_Fragile::DrawColorSwatch(const Pen& pen) {
    const cTheme& theme = pen.Theme;
    const cRect face = Face(pen, pen.A.ValueRect);
    pen.Caption(theme.LabelFont);
    pen.Well(face);
    const cRect fill = Inset(face, pen.R(2), pen.R(2));
    if (fill.IsEmpty()) {
        return;
    }
    // A translucent colour fills the left half; the right one shows it over light and over dark.
    const cColor& color = pen.A.Color;
    const bool isWhole = color.a >= 1;
    const float x = isWhole ? fill.x1 : std::floor(fill.Center().x), y = std::floor(fill.Center().y);
    const struct {
        cRect Piece;
        cColor Color;
    } pieces[] = {{{fill.x0, fill.y0, x, fill.y1}, color},
                  {{x, y, fill.x1, fill.y1}, cColor::Lerp(Colors::Light, color, color.a)},
                  {{x, fill.y0, fill.x1, y}, cColor::Lerp(Colors::Shade, color, color.a)}};
    for (int i = 0; i < (isWhole ? 1 : 3); i++) {
        if (pen.SetPiece(pieces[i].Piece)) {
            const cColor paint = Colors::WithAlpha(pieces[i].Color, 0.35f + 0.65f * pen.Enable);
            pen.Bar(fill, 0, 1, paint, paint);
        }
    }
    pen.EndPiece();
    const float h = fill.Height();
    pen.Bar({fill.x0 + h * 0.3f, fill.y1 - h * 0.42f, fill.x1 - h * 0.3f, fill.y1 - h * 0.06f}, 0, 1,
            Colors::WithAlpha(Colors::Light, 0.22f), Colors::WithAlpha(Colors::Light, 0));
}

} // namespace trellis
