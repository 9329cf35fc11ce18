// One example of each part of the interface, for the sheet of a theme and for the tests of the themes.
#pragma once

#include "render/cRender.h"
#include "ui/cTheme.h"

#include <cmath>

namespace trellis {

/// The arguments of a part as a window would hand them over, at rest, of an active form, without a clip.
class ThemeSamples {
public:
    /// @param leftTop  where the part's rectangle goes
    /// @param texture  for a swatch
    static cTheme::DrawArgs Of(const cTheme& theme, cTheme::Parts::Enum part, const cVec2& leftTop, int texture = -1) {
        ThemeSamples s{theme, part, leftTop, {}};
        s.Fill(texture);
        return std::move(s.m_Args);
    }

    static float ScaleOf(const cTheme& theme) { return theme.Scale > 0 ? theme.Scale : 1; }

private:
    using Parts = cTheme::Parts;

    ThemeSamples(const cTheme& theme, Parts::Enum part, const cVec2& at, cTheme::DrawArgs args)
        : m_Theme(theme), m_At(at), m_Args(std::move(args)) {
        m_Args.Part = part;
        m_Args.Activity = 1;
    }

    float R(float v) const { return std::floor(v * ScaleOf(m_Theme) + 0.5f); }
    cRect Box(float x, float y, float w, float h) const {
        return {m_At.x + x, m_At.y - y - h, m_At.x + x + w, m_At.y - y};
    }
    void Size(float w, float h) { m_Args.Rect = Box(0, 0, w, h); }
    void Size(const cVec2& size) { Size(size.x, size.y); }

    /// A caption at the left of a value.
    void Labelled(int font, const char* text, float padding, float w, float h, const char* value = "") {
        m_Args.Text = text;
        m_Args.Value = value;
        const float label = cRender::MeasureStringCells(font, text).Width() + padding;
        Size(label + w, h);
        m_Args.LabelRect = Box(0, 0, label - padding, h);
        m_Args.ValueRect = Box(label, 0, w, h);
    }

    void Fill(int texture) {
        const cTheme& t = m_Theme;
        cTheme::DrawArgs& a = m_Args;
        const float bar = t.ScrollBarWidth, arrow = t.ScrollArrowLength > 0 ? t.ScrollArrowLength : bar;
        const float title = t.FormTitleInset.y1 - t.FormTitleInset.y0;
        switch (a.Part) {
        case Parts::VScrollTrack:
            return Size(bar, R(90));
        case Parts::HScrollTrack:
            return Size(R(90), bar);
        case Parts::VScrollThumb:
            return Size(bar, R(50));
        case Parts::HScrollThumb:
            return Size(R(50), bar);
        case Parts::VScrollPageUp:
        case Parts::VScrollPageDown:
            return Size(bar, R(40));
        case Parts::HScrollPageLeft:
        case Parts::HScrollPageRight:
            return Size(R(40), bar);
        case Parts::VScrollArrowUp:
        case Parts::VScrollArrowDown:
            return Size(bar, arrow);
        case Parts::HScrollArrowLeft:
        case Parts::HScrollArrowRight:
            return Size(arrow, bar);
        case Parts::FormBody:
            return Size(R(130), R(90));
        case Parts::FormGrip:
            return Size(t.FormGripSize);
        case Parts::FormClose:
            return Size(t.CloseButtonSize);
        case Parts::FormClient:
            return Size(R(110), R(60));
        case Parts::FormMinimize:
        case Parts::FormRestoreMinimized:
            return Size(t.MinimizeButtonSize);
        case Parts::FormMaximize:
        case Parts::FormRestoreMaximized:
            return Size(t.MaximizeButtonSize);
        case Parts::FormTitleBar:
            return Size(R(190), title);
        case Parts::FormTitle:
            a.Text = "Properties";
            return Size(R(190), title);
        case Parts::DockRegion:
            return Size(R(90), R(60));
        case Parts::Button:
            a.Text = "Apply";
            return Size(t.ButtonMinWidth + 2 * t.ButtonPadding, t.ButtonHeight);
        case Parts::BindButton:
            return Labelled(t.BindButtonFont, "Jump", t.BindButtonPadding, t.BindButtonMinWidth, t.BindButtonHeight,
                            "Space");
        case Parts::Slider:
            Labelled(t.SliderFont, "Gain", t.SliderPadding, t.SliderMinWidth, t.SliderHeight);
            a.ThumbRect = a.ValueRect;
            a.ThumbRect.x0 += std::floor((t.SliderMinWidth - t.SliderThumbWidth) * 0.4f);
            a.ThumbRect.x1 = a.ThumbRect.x0 + t.SliderThumbWidth;
            return;
        case Parts::CheckBox: {
            a.Text = "Visible";
            const float text = cRender::MeasureStringCells(t.CheckBoxFont, a.Text).Width();
            const float box = t.CheckBoxBoxSize, left = box + t.CheckBoxPadding;
            Size(left + text, t.CheckBoxHeight);
            a.ValueRect = Box(0, std::floor((t.CheckBoxHeight - box) / 2), box, box);
            a.LabelRect = Box(left, 0, text, t.CheckBoxHeight);
            return;
        }
        case Parts::ComboBox:
            return Labelled(t.ComboFont, "Mode", t.ComboPadding, t.ComboMinWidth, t.ComboHeight, "Bilinear");
        case Parts::DropDown:
            for (const char* item : {"Nearest", "Bilinear", "Trilinear", "Anisotropic"}) {
                a.Items.Add(item);
                a.ItemFlags.Add(a.Items.Count() == 3);
            }
            a.SelStart = 1;
            return Size(t.ComboMinWidth, 4 * t.ComboItemHeight);
        case Parts::ToolTip:
            a.Text = "Save the scene";
            a.Position = m_At;
            a.Align = cRect::LeftTop;
            return Size(R(100), R(22));
        case Parts::Edit:
            Labelled(t.EditFont, "Name", t.EditPadding, t.EditMinWidth, t.EditHeight, "lantern_03");
            a.TextRect = a.ValueRect;
            a.TextRect.x0 += t.EditPaddingLeft;
            a.TextRect.x1 -= t.EditPaddingRight;
            return;
        case Parts::Panel: {
            a.Text = "Surface";
            Size(R(180), t.PanelHeaderHeight);
            const cVec2 size = t.PanelArrowSize;
            const float y = std::floor((t.PanelHeaderHeight - size.y) / 2);
            a.LabelRect = a.Rect;
            a.ThumbRect = Box(t.PanelArrowAtLeft ? y : R(180) - size.x - y, y, size.x, size.y);
            return;
        }
        case Parts::Separator:
            a.Text = "Limits";
            return Size(R(150), t.SeparatorHeight);
        case Parts::ImageSwatch:
            Labelled(t.LabelFont, "Map", t.LabelPadding, t.ImageSwatchSize.x, t.ImageSwatchSize.y);
            a.Texture = texture;
            a.Extra[0] = "64 x 64, RGBA8";
            a.Extra[1] = "7 levels";
            return;
        case Parts::ColorSwatch:
            Labelled(t.LabelFont, "Tint", t.LabelPadding, t.ColorSwatchSize.x, t.ColorSwatchSize.y);
            a.Color = cColor(0.16f, 0.42f, 0.75f, 0.6f);
            return;
        case Parts::Label:
            return Labelled(t.LabelFont, "Faces", t.LabelPadding, t.LabelValueSize.x, t.LabelValueSize.y, "12480");
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
            return Size(R(20), R(20));
        }
    }

    const cTheme& m_Theme;
    cVec2 m_At;
    cTheme::DrawArgs m_Args;
};

} // namespace trellis
