// Drawing of the interface through the front end on the software device, pixel by pixel.
#include "files/cFile.h"
#include "host/cSoftwareDevice.h"
#include "render/cFont.h"
#include "render/cRender.h"
#include "tests/files/Folders.h"

#include <array>
#include <cmath>
#include <set>

namespace trellis {

namespace {

constexpr int Width = 64, Height = 48;

/// One device for the program: what draws keeps the ids that it has looked up.
class Interface : public Folders {
protected:
    Interface() {
        if (!cRender::GetInstance()) {
            cRender::SetFactory([](int) -> cRender::Stub* { return new cSoftwareDevice(Width, Height); });
            EXPECT_TRUE(cRender::Init(3));
        }
        cRender::ResetStates();
        const cRect all(0, 0, Width, Height);
        cRender::GetInstance()->SetViewport(&all);
        Wipe();
    }

    static void Wipe() { cRender::Clear(true, true, cColor(0, 0, 0, 1), 1); }

    static std::array<int, 3> Pixel(int x, int y) {
        const cImage& image = static_cast<cSoftwareDevice*>(cRender::GetInstance())->GetBackBuffer();
        const unsigned char* p = image.GetPixels() + (y * image.GetWidth() + x) * 4;
        return {p[0], p[1], p[2]};
    }
    static int Gray(int x, int y) { return Pixel(x, y)[0]; }

    /// Rows from the top; '#' lit, '.' not.
    static std::string Rows(int width, int height) {
        std::string rows;
        for (int y = height - 1; y >= 0; y--) {
            for (int x = 0; x < width; x++) {
                rows += Gray(x, y) ? '#' : '.';
            }
            rows += '\n';
        }
        return rows;
    }
};

} // namespace

TEST_F(Interface, OutlinesAndDots) {
    cRender::DrawRectangle(1, 1, 6, 5, cColor::White);
    EXPECT_EQ(Rows(8, 6), "........\n"
                          ".#####..\n"
                          ".#...#..\n"
                          ".#...#..\n"
                          ".#####..\n"
                          "........\n");
    Wipe();
    cRender::DrawRectangle(1, 1, 6, 5, cColor(1, 1, 1, 0.5f));
    EXPECT_EQ(Gray(1, 1), Gray(3, 1)) << "corners are blended once";
    EXPECT_EQ(Gray(5, 4), Gray(1, 2));
    for (const auto& [w, h] : {std::pair(1, 6), std::pair(2, 6), std::pair(3, 3), std::pair(6, 1), std::pair(6, 2)}) {
        Wipe();
        cRender::DrawRectangle(2, 2, 2 + w, 2 + h, cColor(1, 1, 1, 0.5f));
        for (int y = 0; y < 10; y++) {
            for (int x = 0; x < 10; x++) {
                const bool inside = x >= 2 && x < 2 + w && y >= 2 && y < 2 + h;
                const bool inner = x > 2 && x < 1 + w && y > 2 && y < 1 + h;
                EXPECT_NEAR(Gray(x, y), inside && !inner ? 128 : 0, 1) << w << "x" << h << " at " << x << " " << y;
            }
        }
    }
    Wipe();
    cRender::DrawRectangle(5, 2, 5, 8, cColor::White);
    cRender::DrawRectangleDot(cRect(5, 2, 5, 8), cColor::White);
    EXPECT_EQ(Rows(8, 2), "........\n........\n") << "no width, no pixels";
    cRender::DrawRectangleDot(cRect(10, 0, 1e30f, 10), cColor::White); // within the time that the test has
    Wipe();
    cRender::DrawRectangleDot(cRect(0, 0, 6, 5), cColor::White);
    EXPECT_EQ(Rows(7, 6), ".......\n"
                          "#.#.#..\n"
                          ".....#.\n"
                          "#......\n"
                          ".....#.\n"
                          "#.#.#..\n");
    Wipe();
    cRender::FillRectangleSolid(2, 1, 5, 4, cColor::White);
    EXPECT_EQ(Rows(7, 5), ".......\n"
                          "..###..\n"
                          "..###..\n"
                          "..###..\n"
                          ".......\n");
    Wipe();
    cRender::FillRectangleDither(cRect(0, 0, 4, 3), cVec2(1, 0), cColor::White, cColor::Black);
    EXPECT_EQ(Rows(5, 3), ".#.#.\n"
                          "#.#..\n"
                          ".#.#.\n");
}

TEST_F(Interface, GradientsRunFromColourToColour) {
    using Gradient = cRender::LinearGradient;
    const cRect rect(0, 0, 32, 32);
    for (int kind = 0; kind < 4; kind++) {
        SCOPED_TRACE(kind);
        cRender::FillRectangleLinearGradient(rect, cColor::Black, cColor::White, Gradient::Enum(kind));
        // Steps along which each gradient grows, and along which it stays.
        constexpr struct {
            int X, Y;
        } s_Along[] = {{1, 0}, {0, -1}, {1, -1}, {1, 1}}, s_Across[] = {{0, 1}, {1, 0}, {1, 1}, {1, -1}};
        for (int y = 1; y < 31; y++) {
            for (int x = 1; x < 31; x++) {
                const int here = Gray(x, y);
                EXPECT_GT(Gray(x + s_Along[kind].X, y + s_Along[kind].Y), here) << x << " " << y;
                EXPECT_NEAR(Gray(x + s_Across[kind].X, y + s_Across[kind].Y), here, 1) << x << " " << y;
            }
        }
    }
}

TEST_F(Interface, SegmentsFadeAtTheirRim) {
    cRender::FillSegmentRadialGradient(cVec2(16.5f, 20.5f), cVec2(40.5f, 20.5f), 2, 8, 1, 1, cColor::White,
                                       cColor(0.5f, 0.5f, 0.5f));
    EXPECT_EQ(Gray(16, 20), 255);
    EXPECT_EQ(Gray(30, 22), 255) << "up to the inner radius";
    EXPECT_NEAR(Gray(30, 25), 191, 1) << "half way: d = 5";
    EXPECT_NEAR(Gray(30, 28), 64, 1) << "the rim covers half of its pixel";
    EXPECT_EQ(Gray(30, 29), 0);
    EXPECT_NEAR(Gray(10, 20), Gray(16, 26), 1) << "round ends";
    EXPECT_EQ(Gray(7, 20), 0);
    for (int y = 0; y < 9; y++) {
        EXPECT_EQ(Gray(30, 20 + y), Gray(30, 20 - y));
        EXPECT_EQ(Gray(40 + y, 20 + y), Gray(16 - y, 20 + y)) << "both ends are round";
    }

    // The general shader draws the same for a segment along X.
    std::vector<int> horizontal;
    for (int i = 0; i < Width * Height; i++) {
        horizontal.push_back(Gray(i % Width, i / Width));
    }
    Wipe();
    cRender::FillSegmentRadialGradient(cVec2(16.5f, 20.5f), cVec2(40.5f, 20.5f), 2, 8, 1, 0, cColor::White,
                                       cColor(0.5f, 0.5f, 0.5f));
    for (int i = 0; i < Width * Height; i++) {
        ASSERT_NEAR(Gray(i % Width, i / Width), horizontal[size_t(i)], 1);
    }
}

TEST_F(Interface, CavesAreBittenOut) {
    cRender::DrawCaveCaveCorner(cRect(0, 0, 40, 20), 10, 5, cColor::White, cColor(0.5f, 0.5f, 0.5f));
    EXPECT_EQ(Gray(2, 10), 0) << "inside the bite";
    EXPECT_EQ(Gray(37, 10), 0);
    EXPECT_EQ(Gray(20, 10), 255);
    EXPECT_LT(Gray(11, 10), 200) << "the rim has the bound's colour";
    EXPECT_GT(Gray(0, 0), 0) << "the corner is outside of the circle";
}

TEST_F(Interface, CubesUnfoldAndIconsAreCells) {
    cImage cube(cFormat::R8, 2, 2, 0, 1);
    for (int i = 0; i < 24; i++) {
        cube.GetPixels()[i] = static_cast<unsigned char>(40 * (i / 4 + 1)); // a level for each face
    }
    const int texture = cRender::AddTexture(cube, -1);
    cRender::FillRectangleTexturedArgs args;
    args.CubeFace = 6;
    cRender::FillRectangleTextured(cRect(0, 0, 40, 30), texture, args);
    const int expected[3][4] = {{0, 120, 0, 0}, {80, 200, 40, 240}, {0, 160, 0, 0}}; // from the top
    for (int row = 0; row < 3; row++) {
        for (int column = 0; column < 4; column++) {
            EXPECT_EQ(Gray(column * 10 + 5, 25 - row * 10), expected[row][column]) << row << " " << column;
        }
    }

    cImage sheet(cFormat::R8, 4, 2, 1, 1); // cells of one pixel: 10 20 30 40 on top, 50 60 70 80 below
    for (int i = 0; i < 8; i++) {
        sheet.GetPixels()[i] = static_cast<unsigned char>(i < 4 ? 50 + 10 * i : 10 * (i - 3));
    }
    const int icons = cRender::AddTexture(sheet, -1);
    for (int i = 0; i < 8; i++) {
        cRender::DrawIcon(cRect(0, 0, 1, 1), icons, i, cRender::IconState::Normal, 1, 1, 1);
        EXPECT_EQ(Gray(0, 0), 10 * (i + 1));
    }
    Wipe();
    cRender::DrawIcon(cRect(0, 0, 1, 1), icons, 7, cRender::IconState::Disabled, 1, 1, 1);
    EXPECT_EQ(Gray(0, 0), 40) << "half of its alpha over black";
    cRender::DrawIcon(cRect(0, 0, 1, 1), icons, 7, cRender::IconState::Hot, 1, 1, 1);
    EXPECT_NEAR(Gray(0, 0), 80 + (255 - 80) / 4, 1);
}

TEST_F(Interface, TexturesByKindAndAlpha) {
    cImage volume(cFormat::R8, 1, 1, 2, 1);
    volume.GetPixels()[0] = 100;
    volume.GetPixels()[1] = 200;
    cRender::FillRectangleTexturedArgs args;
    args.SamplerState =
        cRender::GetSamplerStateID(cFilter::Nearest, cAddressMode::Clamp, cAddressMode::Clamp, cAddressMode::Clamp);
    const int texture = cRender::AddTexture(volume, -1);
    for (float slice : {0.25f, 0.75f}) {
        args.DepthSlice = slice;
        cRender::FillRectangleTextured(cRect(0, 0, 2, 2), texture, args);
        EXPECT_EQ(Gray(1, 1), slice < 0.5f ? 100 : 200);
    }

    cImage flat(cFormat::Rgba8, 1, 2, 1, 1);
    const unsigned char pixels[8] = {200, 0, 0, 128, 100, 0, 0, 255}; // the lower one is half transparent
    std::copy(pixels, pixels + 8, flat.GetPixels());
    const int plain = cRender::AddTexture(flat, -1);
    args.DepthSlice = 0;
    Wipe();
    cRender::FillRectangleTextured(cRect(0, 0, 2, 2), plain, args);
    EXPECT_NEAR(Gray(0, 0), 100, 1);
    EXPECT_EQ(Gray(0, 1), 100);
    args.AlphaChannelAsColor = true;
    cRender::FillRectangleTextured(cRect(0, 0, 2, 2), plain, args);
    EXPECT_EQ(Pixel(0, 0), (std::array<int, 3>{128, 128, 128}));
    args.Alpha = 0.5f;
    args.AlphaChannelAsColor = false;
    Wipe();
    cRender::FillRectangleTextured(cRect(0, 0, 2, 2), plain, args);
    EXPECT_NEAR(Gray(0, 0), 100, 1);
    EXPECT_NEAR(Gray(0, 1), 50, 1);
}

TEST_F(Interface, TextIsTheGlyphsPixelByPixel) {
    // A font of 32 equal glyphs of 2 by 3 pixels of ink with one pixel around; its picture is 4 by 8.
    cFont font;
    font.Ascent = 4;
    font.Height = 5;
    font.Padding = 1;
    for (int code = 33; code < 65; code++) {
        font.Glyphs.Add({static_cast<unsigned short>(code), 0, 1, 1, 0.375f, -1, 0, 4, 5, 3, 0});
    }
    cImage picture(cFormat::R8, 4, 8, 1, 1);
    std::fill_n(picture.GetPixels(), 32, static_cast<unsigned char>(0));
    const int levels[3][2] = {{255, 100}, {0, 200}, {50, 255}}; // from the top
    for (int y = 0; y < 3; y++) {
        for (int x = 0; x < 2; x++) {
            picture.GetPixels()[(6 - y) * 4 + 1 + x] = static_cast<unsigned char>(levels[y][x]);
        }
    }
    cFile file;
    font.Write(&file);
    std::filesystem::create_directories(Read("Fonts"));
    cIO::SetDefaultSourceWriteFolder(nullptr);
    ASSERT_TRUE(cIO::SaveFile("Fonts/Pixels.cFont", file));
    ASSERT_TRUE(cIO::SaveImage("Fonts/Pixels.bmp", picture));
    const int id = cRender::GetFontID("Pixels");
    ASSERT_NE(id, -1);
    EXPECT_EQ(cRender::DrawString(id, "!!", 10.3f, 29.8f, cColor::White), cRect(10, 25, 16, 30));
    for (int glyph = 0; glyph < 2; glyph++) {
        for (int y = 0; y < 3; y++) {
            for (int x = 0; x < 2; x++) {
                EXPECT_NEAR(Gray(10 + glyph * 3 + x, 28 - y), levels[y][x], 1) << glyph << x << y;
            }
        }
    }
    EXPECT_EQ(Gray(12, 28), 0) << "between the glyphs";
}

} // namespace trellis
