// Opens forms with every control on the software device, plays a script of input, and saves pictures of it.
//
//     widget_gallery DATA WindowsStandard|Fragile SCRIPT FOLDER      DATA holds Fonts/ and Textures/
//
// The script is that of InputScript.h; FOLDER receives NAME.bmp for each of its pictures.
#include "host/ScriptedHost.h"
#include "host/WidgetGallery.h"
#include "image/cImage.h"
#include "render/cRender.h"

#include <cstdio>
#include <cstring>

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

} // namespace

int main(int argc, char** argv) {
    if (argc != 5) {
        std::fprintf(stderr, "usage: widget_gallery DATA WindowsStandard|Fragile SCRIPT FOLDER\n");
        return 2;
    }
    ScriptedHost host(argv[1]);
    const cTheme* theme = std::strcmp(argv[2], "Fragile") == 0           ? cTheme::Fragile
                          : std::strcmp(argv[2], "WindowsStandard") == 0 ? cTheme::WindowsStandard
                                                                         : nullptr;
    if (!theme) {
        std::fprintf(stderr, "widget_gallery: no such theme\n");
        return 2;
    }
    WidgetGallery gallery;
    const auto open = [&] { gallery.Open(theme, host.Viewer.Viewport.Size(), cRender::AddTexture(Rings(), -1)); };
    return host.Play(argv[3], argv[4], open) ? 0 : 1;
}
