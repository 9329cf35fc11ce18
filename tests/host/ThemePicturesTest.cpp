// Every part of both themes, at rest, on the software device, beside small pictures that a person has looked at: what
// changes by accident is noticed. With TRELLIS_WRITE_REFERENCES set the pictures are written instead.
#include "files/cFile.h"
#include "host/ThemeSamples.h"
#include "host/cSoftwareDevice.h"
#include "image/cImage.h"
#include "render/cFont.h"
#include "tests/files/Folders.h"
#include "ui/cTheme_Fragile.h"
#include "ui/cTheme_WindowsStandard.h"

#include <cmath>
#include <cstdlib>

namespace trellis {

namespace {

using Parts = cTheme::Parts;

constexpr int Cell = 160, Columns = 8, Rows = 6, Shrink = 8;
constexpr int Width = Cell * Columns, Height = Cell * Rows;

class ThemePictures : public Folders {
protected:
    ThemePictures() {
        if (!cRender::GetInstance()) {
            cRender::SetFactory([](int) -> cRender::Stub* { return new cSoftwareDevice(Width, Height); });
            EXPECT_TRUE(cRender::Init(3));
        }
        Device().SetSize(Width, Height);
        cRender::ResetStates();
        const cRect all(0, 0, Width, Height);
        Device().SetViewport(&all);
        for (const auto& [name, height] :
             {std::pair("Tahoma 8", 13), std::pair("Tahoma B8", 13), std::pair("Calibri 11", 18),
              std::pair("Calibri 16", 26), std::pair("Calibri B24", 39)}) {
            PutFont(name, height);
        }
    }
    ~ThemePictures() override { Device().SetSize(64, 48); }

    static cSoftwareDevice& Device() { return static_cast<cSoftwareDevice&>(*cRender::GetInstance()); }

    /// Letters are boxes; what counts here is where text stands.
    void PutFont(const std::string& name, int height) {
        cFont font;
        font.Ascent = height * 4 / 5;
        font.Height = height;
        for (int code = 32; code <= 126; code++) {
            const float w = float(height) / 3, h = float(height) / 2;
            font.Glyphs.Add({static_cast<unsigned short>(code), 0, 1, 1, 0, 0, float(font.Ascent) - std::floor(h),
                             std::floor(w), std::floor(h), std::floor(w) + 1, 0});
        }
        cFile file;
        font.Write(&file);
        const std::string base = "Fonts/" + name;
        Put(Read(base + ".cFont"),
            std::string(reinterpret_cast<const char*>(file.GetBytes().Data()), size_t(file.GetSize())));
        cImage white(cFormat::R8, 4, 4, 1, 1);
        std::fill_n(white.GetPixels(), 16, static_cast<unsigned char>(255));
        cIO::SetDefaultSourceWriteFolder(nullptr);
        EXPECT_TRUE(cIO::SaveImage((base + ".bmp").c_str(), white));
    }

    /// The averages of blocks of pixels.
    static cImage Shrunk() {
        cImage small(cFormat::Rgb8, Width / Shrink, Height / Shrink, 1, 1);
        const unsigned char* pixels = Device().GetBackBuffer().GetPixels();
        for (int i = 0; i < small.GetWidth() * small.GetHeight() * 3; i++) {
            const int channel = i % 3, x = i / 3 % small.GetWidth(), y = i / 3 / small.GetWidth();
            int sum = 0;
            for (int k = 0; k < Shrink * Shrink; k++) {
                sum += pixels[((y * Shrink + k / Shrink) * Width + x * Shrink + k % Shrink) * 4 + channel];
            }
            small.GetPixels()[i] = static_cast<unsigned char>(sum / (Shrink * Shrink));
        }
        return small;
    }

    static void Compare(const cTheme& theme, const char* name) {
        cRender::Clear(true, true, cColor(0.5f, 0.5f, 0.55f), 1);
        for (int part = 1; part < Parts::Count; part++) {
            const int x = part % Columns * Cell, y = Height - part / Columns * Cell;
            cTheme::DrawArgs args = ThemeSamples::Of(theme, Parts::Enum(part), {float(x + 8), float(y - 8)});
            args.Clip = cRect(float(x), float(y - Cell), float(x + Cell), float(y));
            theme.Draw(args);
        }
        const cImage picture = Shrunk();
        const std::string path = std::string(TRELLIS_REFERENCES) + "/theme_" + name + ".bmp";
        if (std::getenv("TRELLIS_WRITE_REFERENCES")) {
            ASSERT_TRUE(cIO::SaveImage(path.c_str(), picture));
            return;
        }
        cImage reference;
        ASSERT_TRUE(cIO::LoadImage(path.c_str(), &reference));
        ASSERT_EQ(reference.GetWidth(), picture.GetWidth());
        ASSERT_EQ(reference.GetHeight(), picture.GetHeight());
        double sum = 0;
        int largest = 0;
        const int count = picture.GetWidth() * picture.GetHeight() * 3;
        for (int i = 0; i < count; i++) {
            const int difference = std::abs(int(picture.GetPixels()[i]) - int(reference.GetPixels()[i]));
            sum += difference;
            largest = std::max(largest, difference);
        }
        EXPECT_LE(sum / count, 0.25) << "on the whole";
        EXPECT_LE(largest, 10) << "somewhere";
    }
};

} // namespace

TEST_F(ThemePictures, WindowsStandard) {
    Compare(cTheme_WindowsStandard(), "WindowsStandard");
}

TEST_F(ThemePictures, Fragile) {
    Compare(cTheme_Fragile(), "Fragile");
}

} // namespace trellis
