// Opens forms with every control on the software device, plays a script of input, and saves pictures of it.
//
//     widget_gallery DATA WindowsStandard|Fragile SCRIPT FOLDER      DATA holds Fonts/ and Textures/
//
// The script is that of InputScript.h; FOLDER receives NAME.bmp for each of its pictures.
#include "files/SourceFolder.h"
#include "files/cIO.h"
#include "foundation/cTimer.h"
#include "host/InputScript.h"
#include "host/WidgetGallery.h"
#include "host/cSoftwareDevice.h"
#include "image/cImage.h"
#include "render/cRender.h"
#include "tests/foundation/FakeClock.h"
#include "ui/cTheme.h"
#include "ui/cWidgets.h"
#include "view/cViewer.h"

#include <cstdio>
#include <cstring>
#include <filesystem>

using namespace trellis;

namespace {

/// Rings, so that the image swatch has something to show.
cImage Rings() {
    constexpr int Side = 128;
    cImage image(cFormat::Rgba8, Side, Side, 1, 1);
    for (int y = 0; y < Side; y++) {
        for (int x = 0; x < Side; x++) {
            const int d = (x - 64) * (x - 64) + (y - 64) * (y - 64);
            unsigned char* p = image.GetPixels() + (y * Side + x) * 4;
            p[0] = static_cast<unsigned char>(d / 24);
            p[1] = static_cast<unsigned char>(64 + x);
            p[2] = static_cast<unsigned char>(255 - y);
            p[3] = 255;
        }
    }
    return image;
}

class Program {
public:
    Program(const char* theme) : m_Theme(std::strcmp(theme, "Fragile") == 0 ? cTheme::Fragile : nullptr) {
        if (std::strcmp(theme, "WindowsStandard") == 0) {
            m_Theme = cTheme::WindowsStandard;
        }
    }

    bool Play(const char* scriptPn, const std::string& folder, std::string* error) {
        InputScript script;
        if (!m_Theme) {
            *error = "no such theme";
            return false;
        }
        if (!script.Load(scriptPn, error)) {
            return false;
        }
        cRender::SetViewer(&m_Viewer);
        const InputScript::Listener listener{
            [this](int width, int height) { Resize(width, height); },
            [this](const std::string& name, cVec2* position) { return m_Gallery.Find(name, position); },
            InputScript::SaverTo(folder),
        };
        const bool ok = script.Play(
            listener, [this] { Frame(); }, error);
        cWidgets::FreeAll();
        cRender::SetViewer(nullptr);
        return ok;
    }

private:
    void Resize(int width, int height) {
        s_Device->SetSize(width, height);
        m_Viewer.Viewport = {0, 0, float(width), float(height)};
        m_Viewer.Update(false);
        if (!m_IsOpen) {
            m_Gallery.Open(m_Theme, m_Viewer.Viewport.Size(), cRender::AddTexture(Rings(), -1));
            m_IsOpen = true;
        }
    }

    void Frame() {
        m_Clock.Advance(1'000'000 / 60);
        cTimer::Acquire();
        cWidgets::HandleInputEvents();
        cRender::BeginFrame();
        cRender::Clear(true, true, cColor(0.25f, 0.35f, 0.45f), 1);
        cRender::SetViewer(&m_Viewer);
        for (int layer = 0; layer < cWidgets::LayerCount; layer++) {
            cWidgets::Render(layer);
        }
        cRender::EndFrame();
    }

public:
    static inline cSoftwareDevice* s_Device = nullptr; // the front end's

private:
    cFakeClock m_Clock;
    const cTheme* m_Theme;
    cViewer m_Viewer;
    WidgetGallery m_Gallery;
    bool m_IsOpen = false;
};

} // namespace

int main(int argc, char** argv) {
    if (argc != 5) {
        std::fprintf(stderr, "usage: widget_gallery DATA WindowsStandard|Fragile SCRIPT FOLDER\n");
        return 2;
    }
    const auto absolute = [](const char* path) { return std::filesystem::absolute(path).string(); };
    static_cast<SourceFolder*>(cIO::GetSourcesMutable()[0])->SetPath(absolute(argv[1]).c_str());
    cRender::SetFactory([](int) -> cRender::Stub* { return Program::s_Device = new cSoftwareDevice(640, 480); });
    if (!cRender::Init(0)) {
        return 1;
    }
    cTheme::Init();
    std::string error;
    const bool ok = Program(argv[2]).Play(argv[3], absolute(argv[4]), &error);
    if (!ok) {
        std::fprintf(stderr, "widget_gallery: %s\n", error.c_str());
    }
    cRender::Free();
    return ok ? 0 : 1;
}
