#include "render/cRender.h"
#include "ui/cTheme_Fragile.h"
#include "ui/cTheme_Fragile_Pen.h"

#include <algorithm>
#include <cmath>

namespace trellis {

using Colors = cTheme_Fragile_Colors;
using Parts = cTheme::Parts;

namespace {

cRect Grown(const cRect& r, float by) {
    return {r.x0 - by, r.y0 - by, r.x1 + by, r.y1 + by};
}

/// A bar in the middle of the rectangle, `width` thick.
cRect Along(const cRect& rect, float width, bool isVertical) {
    cRect bar = rect;
    if (isVertical) {
        bar.SetWidth(cRect::CenterMiddle, std::min(width, rect.Width()));
    } else {
        bar.SetHeight(cRect::CenterMiddle, std::min(width, rect.Height()));
    }
    return bar;
}

bool IsVertical(Parts::Enum part) {
    return part == Parts::VScrollTrack || part == Parts::VScrollThumb || part == Parts::VScrollPageUp ||
           part == Parts::VScrollPageDown;
}

} // namespace

void cTheme_Fragile::Draw(const DrawArgs& args) const {
    const Pen pen(*this, args);
    if (pen.IsClear()) {
        return;
    }
    switch (args.Part) {
    case Parts::None:
    case Parts::SizeLeft:
    case Parts::SizeTop:
    case Parts::SizeRight:
    case Parts::SizeBottom:
    case Parts::SizeLeftTop:
    case Parts::SizeRightTop:
    case Parts::SizeRightBottom:
    case Parts::SizeLeftBottom:
    case Parts::Count:
        return;
    case Parts::VScrollTrack:
    case Parts::HScrollTrack:
        return DrawScrollTrack(pen);
    case Parts::VScrollThumb:
    case Parts::HScrollThumb:
        return DrawScrollThumb(pen);
    case Parts::VScrollPageUp:
    case Parts::VScrollPageDown:
    case Parts::HScrollPageLeft:
    case Parts::HScrollPageRight:
        return DrawScrollPage(pen);
    case Parts::VScrollArrowUp:
    case Parts::VScrollArrowDown:
    case Parts::HScrollArrowLeft:
    case Parts::HScrollArrowRight:
        return DrawScrollArrow(pen);
    case Parts::FormBody:
        return DrawFormBody(pen);
    case Parts::FormClient:
        return DrawFormClient(pen);
    case Parts::FormTitleBar:
        return DrawFormTitleBar(pen);
    case Parts::FormTitle:
        return DrawFormTitle(pen);
    case Parts::FormClose:
    case Parts::FormMinimize:
    case Parts::FormMaximize:
    case Parts::FormRestoreMinimized:
    case Parts::FormRestoreMaximized:
        return DrawFormButton(pen);
    case Parts::FormGrip:
        return DrawFormGrip(pen);
    case Parts::DockRegion:
        return DrawDockRegion(pen);
    case Parts::Button:
        return DrawButton(pen);
    case Parts::BindButton:
        return DrawBindButton(pen);
    case Parts::Slider:
        return DrawSlider(pen);
    case Parts::CheckBox:
        return DrawCheckBox(pen);
    case Parts::ComboBox:
        return DrawComboBox(pen);
    case Parts::DropDown:
        return DrawDropDown(pen);
    case Parts::ToolTip:
        return DrawToolTip(pen);
    case Parts::Edit:
        return DrawEdit(pen);
    case Parts::Panel:
        return DrawPanel(pen);
    case Parts::Separator:
        return DrawSeparator(pen);
    case Parts::ImageSwatch:
        return DrawImageSwatch(pen);
    case Parts::ColorSwatch:
        return DrawColorSwatch(pen);
    case Parts::Label:
        return DrawLabel(pen);
    }
}

// ---- Scroll bars

void cTheme_Fragile::DrawScrollTrack(const Pen& pen) {
    const cRect bar = Along(pen.A.Rect, pen.R(12), IsVertical(pen.A.Part));
    pen.Bar(bar, 0.2f, 2, Colors::WithAlpha(Colors::Sunk, 0.75f), Colors::WithAlpha(Colors::SunkEdge, 0.75f));
    pen.BarRim(bar, pen.R(1), Colors::WithAlpha(Colors::Rim, 0.22f));
}

void cTheme_Fragile::DrawScrollPage(const Pen& pen) {
    const cRect line = Along(pen.A.Rect, pen.R(2), IsVertical(pen.A.Part));
    const float light = 0.16f + 0.25f * pen.Hot + (pen.A.Pressed ? 0.4f : 0.0f);
    const cColor color = cColor::Lerp(Colors::Rim, Colors::Accent, pen.Hot);
    pen.Bar(Grown(line, -pen.R(2)), 1, 1, Colors::WithAlpha(color, light), Colors::WithAlpha(color, light));
    pen.Bar(line, 0, 1, Colors::WithAlpha(color, light), Colors::WithAlpha(color, 0));
}

void cTheme_Fragile::DrawScrollThumb(const Pen& pen) {
    const bool isVertical = IsVertical(pen.A.Part);
    cRect bar = Along(pen.A.Rect, pen.R(8) + std::floor(pen.R(3) * pen.Hot + 0.5f), isVertical);
    const float end = pen.R(1.5f); // within the track's ends
    bar = isVertical ? cRect(bar.x0, bar.y0 + end, bar.x1, bar.y1 - end)
                     : cRect(bar.x0 + end, bar.y0, bar.x1 - end, bar.y1);
    const cColor center = cColor::Lerp(Colors::Raised, pen.A.Pressed ? Colors::Accent : Colors::RaisedHot, pen.Hot);
    const cColor bound = cColor::Lerp(Colors::RaisedEdge, Colors::RaisedHotEdge, pen.Hot);
    pen.Bar(bar, 0.1f, 1.5f, center, bound);
    pen.BarRim(bar, pen.R(1), Colors::WithAlpha(Colors::Rim, 0.45f + 0.45f * pen.Hot));
    // The light comes from the top left: a streak along the left, or the upper, side.
    const float width = isVertical ? bar.Width() : bar.Height();
    cRect streak =
        isVertical
            ? cRect(bar.x0 + width * 0.12f, bar.y0 + width * 0.35f, bar.x0 + width * 0.55f, bar.y1 - width * 0.35f)
            : cRect(bar.x0 + width * 0.35f, bar.y1 - width * 0.55f, bar.x1 - width * 0.35f, bar.y1 - width * 0.12f);
    pen.Bar(streak, 0, 1, Colors::WithAlpha(Colors::Light, 0.22f), Colors::WithAlpha(Colors::Light, 0));
}

void cTheme_Fragile::DrawScrollArrow(const Pen& pen) {
    const cRect& rect = pen.A.Rect;
    const float radius = std::min(rect.Width(), rect.Height()) / 2;
    const cVec2 at = rect.Center();
    if (radius <= 0) {
        return;
    }
    const cColor center = cColor::Lerp(Colors::Raised, pen.A.Pressed ? Colors::Pressed : Colors::RaisedHot, pen.Hot);
    const cColor bound =
        cColor::Lerp(Colors::RaisedEdge, pen.A.Pressed ? Colors::PressedEdge : Colors::RaisedHotEdge, pen.Hot);
    pen.Glass({at.x - radius, at.y - radius, at.x + radius, at.y + radius}, pen.Able(center, Colors::RaisedOff),
              pen.Able(bound, Colors::RaisedOffEdge));
    const bool isVertical = pen.A.Part == Parts::VScrollArrowUp || pen.A.Part == Parts::VScrollArrowDown;
    if (isVertical) {
        pen.Chevron(at, radius * 0.9f, pen.A.Part == Parts::VScrollArrowUp, pen.Ink());
        return;
    }
    static constexpr float s_Left[][4] = {{0.7f, 0, 0.2f, 0.5f}, {0.2f, 0.5f, 0.7f, 1}};
    static constexpr float s_Right[][4] = {{0.3f, 0, 0.8f, 0.5f}, {0.8f, 0.5f, 0.3f, 1}};
    pen.Strokes(at, radius * 0.9f, std::max(radius * 0.1f, 0.8f),
                pen.A.Part == Parts::HScrollArrowLeft ? s_Left : s_Right, 2, pen.Ink());
}

// ---- Forms

namespace {

/// Radius of a form's corners: that of the title's bar, and the gap around it.
float FormCorner(const cTheme_Fragile_Pen& pen) {
    return pen.R(18);
}

/// The bar behind the title and the buttons. Its right end has one centre with the close button, whose insets it
/// repeats on all sides.
cRect TitleBarOf(const cTheme_Fragile_Pen& pen) {
    const cTheme& theme = pen.Theme;
    const float pad = pen.R(4);
    const cVec2 corner(pen.A.Rect.x1 - theme.FormTitleInset.x1, pen.A.Rect.y1 - theme.FormTitleInset.y1);
    const float top = corner.y + theme.CloseButtonOffset.y + pad;
    const float left = pen.A.Rect.x0 - theme.FormTitleInset.x0;
    const float right = corner.x + theme.CloseButtonOffset.x + pad;
    const float height = theme.CloseButtonSize.y + 2 * pad;
    return {left + (corner.x - right), top - height, right, top};
}

} // namespace

void cTheme_Fragile::DrawFormBody(const Pen& pen) {
    const float corner = FormCorner(pen);
    const cRect& rect = pen.A.Rect;
    cRect under = rect;
    under.Translate({pen.R(1), -pen.R(3)});
    pen.PlateGlow(under, corner, pen.R(12), Colors::WithAlpha(Colors::Shade, 0.30f + 0.20f * pen.A.Activity));
    pen.Plate(rect, corner, Colors::Form, Colors::FormEdge);
    const float rim = 0.35f + 0.35f * pen.A.Activity;
    pen.PlateRim(rect, corner, Colors::WithAlpha(cColor::Lerp(Colors::Rim, Colors::Light, 0.35f), rim),
                 Colors::WithAlpha(Colors::Rim, rim * 0.5f));
}

void cTheme_Fragile::DrawFormTitleBar(const Pen& pen) {
    const cRect bar = TitleBarOf(pen);
    if (bar.IsEmpty()) {
        return;
    }
    const float active = std::clamp(pen.A.Activity, 0.0f, 1.0f);
    pen.Bar(bar, 0.1f, 1.6f, cColor::Lerp(cColor::FromRgb(0x34425A), cColor::FromRgb(0x3C5F96), active),
            cColor::Lerp(cColor::FromRgb(0x2B374B), cColor::FromRgb(0x2A4370), active));
    pen.BarRim(bar, pen.R(1), Colors::WithAlpha(Colors::Rim, 0.20f + 0.25f * active));
    const float h = bar.Height();
    pen.Bar({bar.x0 + h * 0.12f, bar.y1 - h * 0.56f, bar.x1 - h * 0.2f, bar.y1 - h * 0.04f}, 0, 1.3f,
            Colors::WithAlpha(Colors::Light, 0.06f + 0.05f * active), Colors::WithAlpha(Colors::Light, 0));

    // Wells for the three buttons, each joined to the next by a neck.
    const cTheme& theme = pen.Theme;
    const float corner = pen.A.Rect.x1 - theme.FormTitleInset.x1;
    const float radius = theme.CloseButtonSize.x / 2 + pen.R(1), y = bar.Center().y;
    const cColor dark = Colors::WithAlpha(Colors::Shade, 0.28f);
    const float centers[] = {corner + theme.MinimizeButtonOffset.x - theme.MinimizeButtonSize.x / 2,
                             corner + theme.MaximizeButtonOffset.x - theme.MaximizeButtonSize.x / 2,
                             corner + theme.CloseButtonOffset.x - theme.CloseButtonSize.x / 2};
    for (int i = 0; i < 3; i++) {
        pen.Disc({centers[i], y}, 1, radius, 1, dark, dark);
    }
    for (int i = 0; i < 2; i++) {
        const float reach = pen.R(3);
        cRender::DrawCaveCaveCorner({centers[i], y - reach, centers[i + 1], y + reach}, radius, 1, pen.Faded(dark),
                                    pen.Faded(dark));
    }
}

void cTheme_Fragile::DrawFormTitle(const Pen& pen) {
    const cRect bar = TitleBarOf(pen);
    const cTheme& theme = pen.Theme;
    const float right =
        pen.A.Rect.x1 - theme.FormTitleInset.x1 + theme.MinimizeButtonOffset.x - theme.MinimizeButtonSize.x - pen.R(6);
    const float active = std::clamp(pen.A.Activity, 0.0f, 1.0f);
    pen.Text(theme.FormTitleFont, pen.A.Text.Text(), {bar.x0 + bar.Height() * 0.42f, bar.y0, right, bar.y1},
             cRect::LeftMiddle, cColor::Lerp(Colors::TextDim, Colors::Text, active));
}

void cTheme_Fragile::DrawFormButton(const Pen& pen) {
    static constexpr float s_Close[][4] = {{0.1f, 0.1f, 0.9f, 0.9f}, {0.1f, 0.9f, 0.9f, 0.1f}};
    static constexpr float s_Minimize[][4] = {{0.05f, 0.15f, 0.95f, 0.15f}};
    static constexpr float s_Maximize[][4] = {{0.08f, 0.08f, 0.92f, 0.08f},
                                              {0.92f, 0.08f, 0.92f, 0.92f},
                                              {0.92f, 0.92f, 0.08f, 0.92f},
                                              {0.08f, 0.92f, 0.08f, 0.08f}};
    static constexpr float s_RestoreMinimized[][4] = {{0.0f, 0.3f, 0.5f, 0.8f}, {0.5f, 0.8f, 1, 0.3f}};
    static constexpr float s_RestoreMaximized[][4] = {
        {0, 0, 0.7f, 0}, {0.7f, 0, 0.7f, 0.7f},        {0.7f, 0.7f, 0, 0.7f},
        {0, 0.7f, 0, 0}, {0.35f, 1.02f, 1.02f, 1.02f}, {1.02f, 1.02f, 1.02f, 0.35f}};
    const cRect& rect = pen.A.Rect;
    const float radius = std::min(rect.Width(), rect.Height()) / 2;
    const cVec2 at = rect.Center();
    const cColor glow = pen.A.Part == Parts::FormClose ? Colors::Danger : Colors::Accent;
    cColor center = cColor::Lerp(Colors::Raised, cColor::Lerp(Colors::RaisedEdge, glow, 0.75f), pen.Hot);
    cColor bound = cColor::Lerp(Colors::RaisedEdge, cColor::Lerp(Colors::RaisedEdge, glow, 0.40f), pen.Hot);
    if (pen.A.Pressed) {
        std::swap(center, bound);
        center = cColor::Lerp(center, Colors::Shade, 0.25f);
    }
    pen.Glass(Grown(cRect(at.x - radius, at.y - radius, at.x + radius, at.y + radius), -pen.R(1)), center, bound);

    const float size = std::floor(radius * 0.72f), width = std::max(radius * 0.075f, 0.75f);
    const cColor ink = cColor::Lerp(Colors::Text, Colors::Light, pen.Hot);
    const auto glyph = [&](const auto& strokes) {
        pen.Strokes(at, size, width, strokes, int(std::size(strokes)), ink);
    };
    if (pen.A.Part == Parts::FormClose) {
        glyph(s_Close);
    } else if (pen.A.Part == Parts::FormMinimize) {
        glyph(s_Minimize);
    } else if (pen.A.Part == Parts::FormMaximize) {
        glyph(s_Maximize);
    } else if (pen.A.Part == Parts::FormRestoreMinimized) {
        glyph(s_RestoreMinimized);
    } else {
        glyph(s_RestoreMaximized);
    }
}

void cTheme_Fragile::DrawFormClient(const Pen& pen) {
    const float corner = pen.R(6);
    pen.Plate(pen.A.Rect, corner, Colors::WithAlpha(Colors::Sunk, 0.62f), Colors::WithAlpha(Colors::Shade, 0.62f));
    pen.PlateRim(pen.A.Rect, corner, Colors::WithAlpha(Colors::Shade, 0.55f), Colors::WithAlpha(Colors::Rim, 0.30f));
}

void cTheme_Fragile::DrawFormGrip(const Pen& pen) {
    // Three lines across the corner, which wake under the hand.
    const cRect& rect = pen.A.Rect;
    const float size = std::min(rect.Width(), rect.Height());
    const cColor color = cColor::Lerp(Colors::WithAlpha(Colors::Rim, 0.55f), Colors::Accent, pen.Hot);
    if (pen.Hot > 0) {
        pen.Disc({rect.x1 - size * 0.42f, rect.y0 + size * 0.42f}, 0, size * 0.6f, 0.7f,
                 Colors::WithAlpha(Colors::Accent, 0.30f * pen.Hot), Colors::WithAlpha(Colors::Accent, 0));
    }
    for (float way : {0.28f, 0.52f, 0.76f}) {
        pen.Stroke({rect.x1 - size * (way + 0.06f), rect.y0 + size * 0.12f},
                   {rect.x1 - size * 0.12f, rect.y0 + size * (way + 0.06f)}, std::max(size * 0.04f, 0.8f), color);
    }
}

void cTheme_Fragile::DrawDockRegion(const Pen& pen) {
    const float corner = FormCorner(pen);
    pen.Plate(pen.A.Rect, corner, Colors::WithAlpha(Colors::Accent, 0.10f), Colors::WithAlpha(Colors::Accent, 0.28f));
    pen.PlateRim(pen.A.Rect, corner, Colors::WithAlpha(Colors::Accent, 0.8f), Colors::WithAlpha(Colors::Accent, 0.8f));
}

} // namespace trellis
