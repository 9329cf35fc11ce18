// Draws every part of a theme in its states into a picture. Windows in use are shown by widget_gallery.
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
        DrawParts(page);
    }

private:
    void Caption(const char* text, float x, float y) const {
        const bool isDark = &m_Theme == cTheme::Fragile;
        cRender::DrawString(m_Font, text, x, y, isDark ? cColor(0.9f, 0.65f, 0.4f) : cColor(0.45f, 0.2f, 0.1f));
    }

    /// One block for each part, its states side by side, in rows.
    void DrawParts(const cRect& page) const {
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
    }

    const cTheme& m_Theme;
    int m_Font, m_Texture;
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
    s_Height = isClassic ? 1320 : 1900;
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
