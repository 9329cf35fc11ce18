// Draws every part of a theme in its states, and windows made of them, into a picture.
//
//     theme_sheet DATA WindowsStandard|Fragile OUT.bmp      DATA holds Fonts/ and Textures/
#include "files/SourceFolder.h"
#include "files/cIO.h"
#include "host/ThemeSamples.h"
#include "host/cSoftwareDevice.h"
#include "image/cImage.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

using namespace trellis;

namespace {

using Parts = cTheme::Parts;
using Args = cTheme::DrawArgs;

/// A state that a part is shown in, by the letter that the table below names it with.
struct State {
    char Letter;
    const char* Name;
    void (*Set)(Args*);
};
constexpr State s_States[] = {
    {'n', "normal", [](Args*) {}},
    {'h', "hot",
     [](Args* a) {
         a->Hot = 1;
         a->Hovered = true;
     }},
    {'p', "held",
     [](Args* a) {
         a->Hot = 1;
         a->Pressed = a->Hovered = true;
     }},
    {'f', "focus", [](Args* a) { a->Active = true; }},
    {'t', "on", [](Args* a) { a->Toggled = true; }},
    {'e', "edited",
     [](Args* a) {
         a->Active = a->Toggled = true;
         a->Caret = a->SelStart + a->SelLen;
     }},
    {'s', "selected",
     [](Args* a) {
         a->Active = a->Toggled = true;
         a->SelStart = 3;
         a->SelLen = a->Caret = 4;
         a->Caret += a->SelStart;
     }},
    {'d', "grey",
     [](Args* a) {
         a->Enabled = false;
         a->CurEnabled = 0;
     }},
    {'x', "grey, on",
     [](Args* a) {
         a->Enabled = false;
         a->Toggled = true;
         a->CurEnabled = 0;
     }},
    {'i', "idle form", [](Args* a) { a->Activity = 0; }},
    {'a', "half", [](Args* a) { a->Hot = a->Alpha = a->CurEnabled = a->Activity = 0.5f; }},
};

constexpr struct {
    Parts::Enum Part;
    const char* Name;
    const char* States;
} s_Parts[] = {
    {Parts::VScrollTrack, "Track", "na"},
    {Parts::VScrollThumb, "Thumb", "nhpa"},
    {Parts::VScrollPageUp, "Page up", "nhp"},
    {Parts::VScrollPageDown, "Page down", "nhp"},
    {Parts::VScrollArrowUp, "Arrow up", "nhpda"},
    {Parts::VScrollArrowDown, "Arrow down", "nhp"},
    {Parts::HScrollTrack, "Track", "n"},
    {Parts::HScrollThumb, "Thumb", "nhp"},
    {Parts::HScrollPageLeft, "Page left", "nhp"},
    {Parts::HScrollPageRight, "Page right", "nhp"},
    {Parts::HScrollArrowLeft, "Arrow left", "nhp"},
    {Parts::HScrollArrowRight, "Arrow right", "nhp"},
    {Parts::FormBody, "Form", "nia"},
    {Parts::FormClient, "Client", "npi"},
    {Parts::FormTitleBar, "Title bar", "nia"},
    {Parts::FormTitle, "Title", "ni"},
    {Parts::FormMinimize, "Minimise", "nhpi"},
    {Parts::FormMaximize, "Maximise", "nhpi"},
    {Parts::FormRestoreMinimized, "Restore", "nhpi"},
    {Parts::FormRestoreMaximized, "Restore", "nhpi"},
    {Parts::FormClose, "Close", "nhpia"},
    {Parts::FormGrip, "Grip", "nhpi"},
    {Parts::DockRegion, "Dock region", "na"},
    {Parts::Button, "Button", "nhpfda"},
    {Parts::BindButton, "Bind button", "nhpftd"},
    {Parts::CheckBox, "Check box", "nhpftdxa"},
    {Parts::ComboBox, "Combo box", "nhpftd"},
    {Parts::Slider, "Slider", "nhpfda"},
    {Parts::Edit, "Edit", "nhfesda"},
    {Parts::Label, "Label", "nda"},
    {Parts::Separator, "Separator", "nd"},
    {Parts::ColorSwatch, "Colour swatch", "nhfd"},
    {Parts::Panel, "Panel", "nhpftd"},
    {Parts::DropDown, "Drop-down", "npa"},
    {Parts::ToolTip, "Tool tip", "na"},
    {Parts::ImageSwatch, "Image swatch", "nhda"},
};

/// A disc that fades toward its rim, so that what lies under it shows.
cImage Disc() {
    constexpr int Side = 64;
    cImage image(cFormat::Rgba8, Side, Side, 1, 1);
    for (int y = 0; y < Side; y++) {
        for (int x = 0; x < Side; x++) {
            const float d = std::hypot(float(x) - 31.5f, float(y) - 31.5f) / 31.5f;
            unsigned char* p = image.GetPixels() + (y * Side + x) * 4;
            p[0] = static_cast<unsigned char>(x * 4);
            p[1] = static_cast<unsigned char>(y * 4);
            p[2] = 160;
            p[3] = static_cast<unsigned char>(255 * std::clamp(4 - 4 * d, 0.0f, 1.0f));
        }
    }
    return image;
}

class Sheet {
public:
    Sheet(const cTheme& theme, int font) : m_Theme(theme), m_Font(font), m_Texture(cRender::AddTexture(Disc(), -1)) {}

    void Draw(const cRect& page) {
        Args ground;
        ground.Part = Parts::FormClient; // what most parts stand on
        ground.Rect = page;
        ground.Activity = 1;
        m_Theme.Draw(ground);
        const float bottom = DrawParts(page);
        cRender::FillRectangleSolid(cRect(page.x0, page.y0, page.x1, bottom), cColor(0.25f, 0.35f, 0.45f));
        DrawForms({page.x0 + 20, bottom - 20});
    }

private:
    float R(float v) const { return std::floor(v * ThemeSamples::ScaleOf(m_Theme) + 0.5f); }

    void Caption(const char* text, float x, float y) const {
        const bool isDark = &m_Theme == cTheme::Fragile;
        cRender::DrawString(m_Font, text, x, y, isDark ? cColor(0.9f, 0.65f, 0.4f) : cColor(0.45f, 0.2f, 0.1f));
    }

    /// One block for each part, its states side by side, in rows. @return the bottom of the last row
    float DrawParts(const cRect& page) const {
        constexpr float Gap = 14, Captions = 28;
        float x = page.x0 + Gap, y = page.y1 - Gap, rowHeight = 0;
        for (const auto& part : s_Parts) {
            const Args sample = ThemeSamples::Of(m_Theme, part.Part, cVec2::Zero, m_Texture);
            const float cell = std::max(sample.Rect.Width(), 44.0f) + Gap;
            const float width = cell * float(std::strlen(part.States));
            if (x + width + Gap > page.x1) {
                x = page.x0 + Gap;
                y -= rowHeight + Captions + Gap;
                rowHeight = 0;
            }
            Caption(part.Name, x, y);
            for (const char* letter = part.States; *letter; letter++, x += cell) {
                const State* state = std::find_if(std::begin(s_States), std::end(s_States),
                                                  [&](const State& s) { return s.Letter == *letter; });
                Caption(state->Name, x, y - 12);
                Args args = ThemeSamples::Of(m_Theme, part.Part, {x, y - Captions}, m_Texture);
                state->Set(&args);
                m_Theme.Draw(args);
            }
            x += Gap;
            rowHeight = std::max(rowHeight, sample.Rect.Height());
        }
        return y - rowHeight - Captions - Gap;
    }

    // ---- Windows in use

    /// @param change  called with the arguments before they are drawn; may be null
    void Put(Parts::Enum part, const cRect& rect, void (*change)(Args*) = nullptr) const {
        Args args = ThemeSamples::Of(m_Theme, part, {rect.x0, rect.y1}, m_Texture);
        args.Rect = rect;
        args.Clip = m_Form;
        args.Activity = m_Activity;
        if (change) {
            change(&args);
        }
        m_Theme.Draw(args);
    }

    cRect Button(const cVec2& size, const cVec2& offset) const {
        const cVec2 corner(m_Form.x1 + offset.x, m_Form.y1 + offset.y);
        return {corner.x - size.x, corner.y - size.y, corner.x, corner.y};
    }

    /// The frame of a window. @return its client
    cRect Frame(const cRect& form, bool isActive, bool hasToolBar) {
        const cTheme& t = m_Theme;
        m_Form = form;
        m_Activity = isActive ? 1.0f : 0.0f;
        const cRect title(form.x0 + t.FormTitleInset.x0, form.y1 + t.FormTitleInset.y0, form.x1 + t.FormTitleInset.x1,
                          form.y1 + t.FormTitleInset.y1);
        cRect client(form.x0 + t.FormClientInset.x0, form.y0 + t.FormClientInset.y0, form.x1 + t.FormClientInset.x1,
                     form.y1 + t.FormClientInset.y1);
        Put(Parts::FormBody, form);
        Put(Parts::FormTitleBar, title);
        Put(Parts::FormTitle, title);
        Put(Parts::FormClose, Button(t.CloseButtonSize, t.CloseButtonOffset));
        Put(Parts::FormMinimize, Button(t.MinimizeButtonSize, t.MinimizeButtonOffset));
        Put(Parts::FormMaximize, Button(t.MaximizeButtonSize, t.MaximizeButtonOffset));
        if (hasToolBar) {
            ToolBar({client.x0, client.y1 - t.ToolBarHeight, client.x1, client.y1});
            client.y1 -= 2 * t.ToolBarMargin + t.ToolBarHeight;
        }
        Put(Parts::FormClient, client);
        const cVec2 grip(form.x1 + t.FormGripOffset.x, form.y0 + t.FormGripOffset.y);
        Put(Parts::FormGrip, {grip.x - t.FormGripSize.x, grip.y, grip.x, grip.y + t.FormGripSize.y});
        return client;
    }

    void ToolBar(const cRect& bar) const {
        const cTheme& t = m_Theme;
        const float middle = (bar.y0 + bar.y1) / 2;
        float x = bar.x0;
        const auto next = [&](const cVec2& size) {
            const cRect rect(x, std::floor(middle - size.y / 2), x + size.x, std::floor(middle - size.y / 2) + size.y);
            x += size.x;
            return rect;
        };
        static int s_Icon;
        for (s_Icon = 0; s_Icon < cTheme::ToolBarIcon::Count; s_Icon++) {
            if (s_Icon == 2 || s_Icon == 4 || s_Icon == 6) {
                Put(Parts::Separator, next({t.ToolBarSeparatorWidth, bar.Height()}), [](Args* a) { a->Text = ""; });
            }
            Put(Parts::Button, next(t.ButtonIconSize), [](Args* a) {
                a->Text = "Icon";
                a->Icon = s_Icon;
                a->Hot = s_Icon == 1 || s_Icon == 3 ? 1.0f : 0.0f;
                a->Pressed = s_Icon == 3;
                a->Enabled = s_Icon != 5 && s_Icon != 7;
                a->CurEnabled = a->Enabled ? 1.0f : 0.0f;
            });
        }
        Put(Parts::Button, next(t.ButtonArrowSize), [](Args* a) {
            a->Text = "";
            a->Icon = cTheme::ToolBarIcon::Add;
            a->Arrow = true;
        });
        Put(Parts::Button, next(t.ButtonArrowSize), [](Args* a) {
            a->Text = "";
            a->Arrow = true;
            a->Hot = 1;
        });
    }

    void ScrollBars(const cRect& client) const {
        const cTheme& t = m_Theme;
        const float w = t.ScrollBarWidth, arrow = t.ScrollArrowLength, inner = t.ScrollBarsInsideClient ? w : 0;
        const float right = client.x1 + t.VScrollBarOffset.x;
        const cRect v(right - w, client.y0 + t.VScrollBarOffset.z + inner, right, client.y1 + t.VScrollBarOffset.y);
        const float top = v.y1 - arrow - std::floor(v.Height() * 0.15f), low = v.y0 + arrow + v.Height() * 0.3f;
        const float thumb = std::floor(low);
        Put(Parts::VScrollTrack, v);
        Put(Parts::VScrollPageUp, {v.x0, top, v.x1, v.y1 - arrow});
        Put(Parts::VScrollPageDown, {v.x0, v.y0 + arrow, v.x1, thumb});
        Put(Parts::VScrollThumb, {v.x0, thumb, v.x1, top}, [](Args* a) { a->Hot = 1; });
        if (arrow > 0) {
            Put(Parts::VScrollArrowUp, {v.x0, v.y1 - arrow, v.x1, v.y1});
            Put(Parts::VScrollArrowDown, {v.x0, v.y0, v.x1, v.y0 + arrow});
        }
        const float low2 = client.y0 + t.HScrollBarOffset.y;
        const cRect h(client.x0 + t.HScrollBarOffset.x, low2, client.x1 + t.HScrollBarOffset.z - inner, low2 + w);
        const float end = std::floor(h.x0 + h.Width() * 0.7f);
        Put(Parts::HScrollTrack, h);
        Put(Parts::HScrollPageRight, {end, h.y0, h.x1 - arrow, h.y1});
        Put(Parts::HScrollThumb, {h.x0 + arrow, h.y0, end, h.y1});
        if (arrow > 0) {
            Put(Parts::HScrollArrowLeft, {h.x0, h.y0, h.x0 + arrow, h.y1});
            Put(Parts::HScrollArrowRight, {h.x1 - arrow, h.y0, h.x1, h.y1});
        }
    }

    /// A row of a panel: the control's value stands at the column of values, or the whole in the middle.
    void Row(Parts::Enum part, const cRect& client, float* y, void (*change)(Args*)) const {
        const cTheme& t = m_Theme;
        const Args sample = ThemeSamples::Of(t, part, cVec2::Zero, m_Texture);
        const float width = sample.Rect.Width(), height = sample.Rect.Height();
        const float label = part == Parts::CheckBox || part == Parts::Button ? 0 : width - sample.ValueRect.Width();
        const float column = client.x0 + R(110);
        const float x = t.CenterRows ? std::floor((client.x0 + client.x1 - width) / 2) : column - label;
        Args args = ThemeSamples::Of(t, part, {x, *y}, m_Texture);
        args.Clip = client;
        change(&args);
        m_Theme.Draw(args);
        *y -= height + t.SmallRowSpacing;
    }

    void Panel(const cRect& client, float* y, const char* title, bool isExpanded) const {
        const float right = client.x1 - (m_Theme.ScrollBarsInsideClient ? m_Theme.ScrollBarWidth : 0);
        const cRect header(client.x0, *y - m_Theme.PanelHeaderHeight, right, *y);
        const float shift = right - client.x0 - R(180);
        Args args = ThemeSamples::Of(m_Theme, Parts::Panel, {header.x0, header.y1});
        args.Rect = args.LabelRect = header;
        args.Rect.y0 = isExpanded ? client.y0 : header.y0;
        if (!m_Theme.PanelArrowAtLeft) {
            args.ThumbRect.Translate({shift, 0});
        }
        args.Clip = client;
        args.Text = title;
        args.Toggled = isExpanded;
        m_Theme.Draw(args);
        *y = header.y0 - m_Theme.RowSpacing;
    }

    void Rows(const cRect& client) const {
        float y = client.y1 - m_Theme.RowSpacing;
        const cRect room(client.x0, client.y0 + (m_Theme.ScrollBarsInsideClient ? m_Theme.ScrollBarWidth : 0),
                         client.x1 - (m_Theme.ScrollBarsInsideClient ? m_Theme.ScrollBarWidth : 0), client.y1);
        Panel(client, &y, "Transform", false);
        y += m_Theme.RowSpacing - m_Theme.SmallRowSpacing;
        Panel(client, &y, "Surface", true);
        Row(Parts::Edit, room, &y, [](Args*) {});
        Row(Parts::Edit, room, &y, [](Args* a) {
            a->Text = "Mass";
            a->Value = "12.500";
            a->Active = a->Toggled = true;
            a->SelLen = a->Caret = 6;
        });
        Row(Parts::Slider, room, &y, [](Args* a) { a->Hot = 1; });
        Row(Parts::CheckBox, room, &y, [](Args* a) { a->Toggled = true; });
        Row(Parts::CheckBox, room, &y, [](Args* a) {
            a->Enabled = false;
            a->CurEnabled = 0;
        });
        Row(Parts::ComboBox, room, &y, [](Args*) {});
        Row(Parts::ColorSwatch, room, &y, [](Args*) {});
        Row(Parts::BindButton, room, &y, [](Args*) {});
        Row(Parts::Label, room, &y, [](Args*) {});
        Row(Parts::Button, room, &y, [](Args* a) { a->Hot = 1; });
        Row(Parts::ImageSwatch, room, &y, [](Args*) {});
    }

    void DrawForms(const cVec2& leftTop) {
        const float w = R(360), h = R(400);
        const cRect behind(leftTop.x + w + R(20), leftTop.y - h, leftTop.x + 2 * w + R(20), leftTop.y);
        const cRect client = Frame(behind, false, false);
        ScrollBars(client);
        Rows(client);
        const cRect front(leftTop.x, leftTop.y - h - R(30), leftTop.x + R(530), leftTop.y - R(30));
        const cRect body = Frame(front, true, true);
        Rows(body);
        ScrollBars(body);
        m_Form = cRect::Empty;
        const cVec2 at(front.x1 + R(80), front.y0 + R(130));
        Put(Parts::DropDown, {at.x, at.y - 4 * m_Theme.ComboItemHeight, at.x + m_Theme.ComboMinWidth, at.y});
        Put(Parts::ToolTip, {at.x + R(20), at.y + R(30), at.x + R(120), at.y + R(52)});
        Put(Parts::DockRegion, {at.x - R(10), at.y - R(120), at.x + R(220), at.y + R(10)});
        const float left = behind.x1 + R(20);
        m_Form = {left, behind.y1 - m_Theme.FormMinimizedSize.y, left + m_Theme.FormMinimizedSize.x, behind.y1};
        Minimized();
    }

    void Minimized() {
        const cTheme& t = m_Theme;
        const auto minimized = [](Args* a) { a->Minimized = true; };
        const cRect title(m_Form.x0 + t.FormTitleInset.x0, m_Form.y1 + t.FormTitleInset.y0,
                          m_Form.x1 + t.FormTitleInset.x1, m_Form.y1 + t.FormTitleInset.y1);
        m_Activity = 0;
        Put(Parts::FormBody, m_Form, minimized);
        Put(Parts::FormTitleBar, title, minimized);
        Put(Parts::FormTitle, title, [](Args* a) {
            a->Minimized = true;
            a->Text = "A title that is too long";
        });
        Put(Parts::FormClose, Button(t.CloseButtonSize, t.CloseButtonOffset));
        Put(Parts::FormRestoreMinimized, Button(t.MinimizeButtonSize, t.MinimizeButtonOffset));
        Put(Parts::FormRestoreMaximized, Button(t.MaximizeButtonSize, t.MaximizeButtonOffset));
    }

    const cTheme& m_Theme;
    int m_Font, m_Texture;
    cRect m_Form = cRect::Empty; // the window that is being drawn
    float m_Activity = 1;
};

std::string Absolute(const char* path) {
    if (path[0] == '/') {
        return path;
    }
    char folder[4096];
    return std::string(getcwd(folder, sizeof(folder)) ? folder : "") + "/" + path;
}

} // namespace

int main(int argc, char** argv) {
    const bool isClassic = argc > 2 && std::strcmp(argv[2], "WindowsStandard") == 0;
    if (argc != 4 || (!isClassic && std::strcmp(argv[2], "Fragile") != 0)) {
        std::fprintf(stderr, "usage: theme_sheet DATA WindowsStandard|Fragile OUT.bmp\n");
        return 2;
    }
    static_cast<SourceFolder*>(cIO::GetSourcesMutable()[0])->SetPath(Absolute(argv[1]).c_str());

    static int s_Width, s_Height;
    s_Width = isClassic ? 1280 : 1940;
    s_Height = isClassic ? 1800 : 2600;
    cRender::SetFactory([](int) -> cRender::Stub* { return new cSoftwareDevice(s_Width, s_Height); });
    if (!cRender::Init(0)) {
        return 1;
    }
    cTheme::Init();
    cRender::BeginFrame();
    cRender::Clear(true, true, cColor(0.25f, 0.35f, 0.45f), 1);
    const cTheme& theme = isClassic ? *cTheme::WindowsStandard : *cTheme::Fragile;
    Sheet(theme, cRender::GetFontID("Tahoma 8")).Draw({8, 8, float(s_Width) - 8, float(s_Height) - 8});
    cRender::EndFrame();

    cImage picture;
    cRender::ScreenShot(&picture);
    const bool ok = cIO::SaveImage(Absolute(argv[3]).c_str(), picture);
    cRender::Free();
    return ok ? 0 : 1;
}
