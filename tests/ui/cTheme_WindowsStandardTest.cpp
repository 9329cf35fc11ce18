#include "ui/cTheme_WindowsStandard.h"

#include "foundation/cTimer.h"
#include "tests/render/Allocations.h"
#include "tests/ui/FontFolders.h"
#include "tests/ui/ThemeMetrics.h"
#include "tests/ui/ThemeParts.h"

#include <set>

using namespace trellis;

namespace {

using Args = cTheme::DrawArgs;
using Decal = WindowsStandardDecal;
using Fill = WindowsStandardFill;
using Parts = cTheme::Parts;
using Pixel = std::pair<int, int>;

/// The classic theme with fonts whose glyphs all advance by 6.
class Classic : public FontFolders {
protected:
    Classic() {
        PutFont("Tahoma 8", 13, 6);
        PutFont("Tahoma B8", 13, 6);
        Device.Textures.push_back({"Textures/WindowsStandard/ToolBar.bmp", 256, 64, 1, 0, 1, 0});
        cRender::ResetStates();
    }

    std::vector<RecordingDevice::Draw> Draw(const cTheme& theme, const Args& args) {
        Device.TakeDraws();
        theme.Draw(args);
        return Device.TakeDraws();
    }

    /// Pixels of the lines that were drawn last, both ends included, with their colour.
    std::map<Pixel, unsigned int> LinePixels() {
        std::map<Pixel, unsigned int> pixels;
        for (const auto& draw : Device.TakeDraws()) {
            const auto* v = draw.As<cVertex::PositionColored>();
            for (int i = 0; draw.Topology == cTopology::LineList && i < draw.VertexCount; i += 2) {
                const int x0 = int(v[i].Pos.x), y0 = int(v[i].Pos.y), x1 = int(v[i + 1].Pos.x),
                          y1 = int(v[i + 1].Pos.y);
                const int steps = std::max(std::abs(x1 - x0), std::abs(y1 - y0));
                for (int k = 0; k <= steps; k++) {
                    pixels[{x0 + (x1 - x0) * k / std::max(steps, 1), y0 + (y1 - y0) * k / std::max(steps, 1)}] =
                        v[i].Color;
                }
            }
        }
        return pixels;
    }
};

} // namespace

// The first of the file: fonts that have been loaded stay for the process.
TEST(BareClassic, DrawsWithoutFontsAndTextures) {
    RecordingDevice& device = RecordingDevice::Install();
    const cTheme_WindowsStandard bare;
    EXPECT_EQ(bare.ToolBarTexture, -1);
    EXPECT_EQ(bare.ButtonFont, -1);
    ForEachPart(bare, [&](Args args) {
        args.Toggled = args.Active = true;
        args.CurEnabled = 0.5f;
        args.Icon = 0;
        device.TakeDraws();
        bare.Draw(args);
        // A title is nothing but its text.
        EXPECT_EQ(device.TakeDraws().empty(), !IsDrawnPart(args.Part) || args.Part == Parts::FormTitle);
    });
    RecordingDevice::Uninstall();
}

TEST_F(Classic, MetricsAsInTheTable) {
    CheckMetrics(cTheme_WindowsStandard());
    EXPECT_EQ(cTheme::ToolTipDelaySec, 0.5f);
    EXPECT_EQ(cTheme::CharRepeatDelaySec, 0.4f);
    EXPECT_EQ(cTheme::CharRepeatRateSec, 0.04f);
    EXPECT_EQ(cTheme::GamepadRepeatDelaySec, 0.3f);
    EXPECT_EQ(cTheme::GamepadRepeatRateSec, 0.12f);
}

TEST_F(Classic, SwatchesAnywhere) { // a corner at which the rounding sees one square more than there is room for
    Args args;
    args.Part = Parts::ImageSwatch;
    args.Texture = int(Device.Textures.size()) - 1;
    args.ValueRect = args.Rect = cRect(1154.98669f, 15.2842798f, 1286.98669f, 147.2842798f);
    EXPECT_FALSE(Draw(cTheme_WindowsStandard(), args).empty());
}

TEST_F(Classic, Metrics) {
    const cTheme_WindowsStandard t;
    EXPECT_NE(t.ToolBarTexture, -1);
    EXPECT_EQ(t.FormTitleFont, cRender::GetFontID("Tahoma B8"));
    EXPECT_EQ(t.EditFont, cRender::GetFontID("Tahoma 8"));
    for (float speed :
         {t.HotTendSpeed, t.VisibleTendSpeed, t.EnabledTendSpeed, t.ActivityTendSpeed, t.ButtonGrowSpeed}) {
        EXPECT_EQ(speed, FLT_MAX);
    }
    const struct {
        const char* Name;
        float Value, Expected;
    } rows[] = {
        {"hover", float(t.FocusFollowsMouse), 0},
        {"grow", t.ButtonHotGrow, 0},
        {"press", t.ButtonPressGrow, 0},
        {"rows", t.RowSpacing, 10},
        {"small rows", t.SmallRowSpacing, 10},
        {"row left", t.RowInsets.x, 6},
        {"row top", t.RowInsets.y, 5},
        {"row right", t.RowInsets.z, 5},
        {"row bottom", t.RowInsets.w, 6},
        {"margin", t.FocusMargin, 10},
        {"wraps", float(t.TabWraps), 1},
        {"bar", t.ScrollBarWidth, 16},
        {"arrow", t.ScrollArrowLength, 16},
        {"thumb", t.ScrollThumbMinLength, 8},
        {"arrow step", t.ArrowScrollSpeed, 16},
        {"delay", t.ScrollRepeatDelaySec, 0.4f},
        {"rate", t.ScrollRepeatRateSec, 0.06f},
        {"inside", float(t.ScrollBarsInsideClient), 1},
        {"wheel", t.WheelScrollSpeed, 40},
        {"border", t.SizingBorderWidth, 4},
        {"corner", t.SizingCornerSize, 22},
        {"reserved", t.Reserved, 0.5f},
        {"drag", t.DragAlpha, 0.5f},
        {"form", t.FormMinSize.y, 180},
        {"minimised", t.FormMinimizedSize.x, 160},
        {"minimised", t.FormMinimizedSize.y, 26},
        {"close", t.CloseButtonOffset.x, -6},
        {"minimise", t.MinimizeButtonOffset.x, -40},
        {"maximise", t.MaximizeButtonOffset.x, -24},
        {"close", t.CloseButtonSize.y, 14},
        {"title bottom", t.FormTitleInset.y0, -22},
        {"title top", t.FormTitleInset.y1, -4},
        {"client bottom", t.FormClientInset.y0, 26},
        {"client top", t.FormClientInset.y1, -25},
        {"grip", t.FormGripOffset.y, 4},
        {"padding", t.ButtonPadding, 5},
        {"width", t.ButtonMinWidth, 65},
        {"height", t.ButtonHeight, 23},
        {"icon", t.ButtonIconSize.y, 30},
        {"arrow", t.ButtonArrowSize.x, 29},
        {"steps", t.SliderSteps, 20},
        {"items", float(t.ComboMaxVisibleItems), 8},
        {"scale", t.Scale, 0},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.Value, row.Expected) << row.Name;
    }
}

TEST_F(Classic, EveryPart) {
    CheckEveryPart(cTheme_WindowsStandard(), Device);
}

TEST_F(Classic, AnInitMakesTheThemesOnce) {
    cTheme::Init();
    const cTheme *classic = cTheme::WindowsStandard, *soft = cTheme::Fragile;
    ASSERT_TRUE(classic && soft);
    cTheme::Init();
    EXPECT_EQ(cTheme::WindowsStandard, classic);
    EXPECT_EQ(cTheme::Fragile, soft);
}

TEST_F(Classic, StatesLookDifferent) {
    const cTheme_WindowsStandard theme;
    for (Parts::Enum part : {Parts::Button, Parts::CheckBox, Parts::ComboBox, Parts::BindButton, Parts::Panel,
                             Parts::FormClose, Parts::VScrollThumb, Parts::VScrollPageUp}) {
        SCOPED_TRACE(part);
        std::set<std::string> pictures;
        for (int state = 0; state < 4; state++) {
            Args args = ThemeSamples::Of(theme, part, {40, 400});
            args.Hot = state == 1;
            args.Pressed = state == 2;
            args.CurEnabled = state == 3 ? 0.0f : 1.0f;
            std::string picture;
            Device.Take();
            for (const auto& draw : Draw(theme, args)) {
                picture.append(reinterpret_cast<const char*>(draw.Vertices.data()), draw.Vertices.size());
            }
            pictures.insert(picture + Device.Take());
        }
        EXPECT_EQ(pictures.size(), part == Parts::VScrollPageUp ? 3u : 4u) << "a page is never greyed";
    }
}

TEST_F(Classic, LongTextEndsInDots) {
    const cTheme_WindowsStandard theme;
    Args args = ThemeSamples::Of(theme, Parts::Button, {40, 400});
    const auto glyphs = [&] {
        int count = 0;
        for (const auto& draw : Draw(theme, args)) {
            count += draw.Shader == "Font" ? draw.VertexCount / 4 : 0;
        }
        return count;
    };
    args.Rect = {0, 0, 8 + 60, 23}; // 4 of edge on each side, and ten glyphs
    args.Text = "0123456789";
    EXPECT_EQ(glyphs(), 10);
    args.Text = "0123456789A";
    EXPECT_EQ(glyphs(), 10) << "seven and the dots";
    args.Text = "\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4";
    EXPECT_EQ(glyphs(), 10) << "a letter of two bytes is not cut";
    args.Rect = {0, 0, 8 + 17, 23};
    EXPECT_EQ(glyphs(), 0) << "no room for the dots";
}

TEST_F(Classic, TheCaretStandsBehindItsTextAndCountsUtf16) {
    const cTheme_WindowsStandard theme;
    Args args = ThemeSamples::Of(theme, Parts::Edit, {40, 400});
    args.Toggled = true;
    args.Value = "a\xF0\x9F\x99\x82z"; // the middle one is a surrogate pair
    args.Caret = 3;
    args.CaretTime = cTimer::GetSystemTimeSec(); // other tests move the clock
    args.ScrollX = -2;
    const auto draws = Draw(theme, args);
    const auto* caret = draws.back().As<cVertex::PositionColored>();
    EXPECT_EQ(draws.back().Shader, "SolidUI");
    EXPECT_EQ(caret[0].Pos.x, args.TextRect.x0 - 2 + 3 * 6); // the font shows both halves by its placeholder
    EXPECT_EQ(caret[2].Pos.x - caret[0].Pos.x, 1);
}

TEST_F(Classic, BevelsMeetWithoutAPixelTwice) {
    cTheme_WindowsStandard::DrawRectangleWindowsStandard({2, 3, 6, 6}, cColor::White, cColor::Black);
    const auto pixels = LinePixels();
    EXPECT_EQ(pixels.size(), 10u); // all but the two in the middle
    for (const auto& [at, color] : pixels) {
        const bool isDark = at.first == 5 || at.second == 3;
        EXPECT_EQ(color, isDark ? 0xFF000000 : 0xFFFFFFFF) << at.first << " " << at.second;
    }
    cTheme_WindowsStandard::DrawRectangleWindowsStandard({2, 3, 3, 6}, cColor::White, cColor::Black);
    EXPECT_TRUE(Device.TakeDraws().empty());
}

TEST_F(Classic, LinesEndOneFurtherWhereTheirEndIsLost) {
    for (int type : {3, 1}) {
        Device.Type = type;
        cTheme_WindowsStandard::DrawRectangleWindowsStandard({2, 3, 6, 6}, cColor::White, cColor::Black);
        cTheme_WindowsStandard::DrawDecalWindowsStandard({20, 20}, Decal::Minus, cColor::Black);
        const auto draws = Device.TakeDraws();
        const float further = type == 1 ? 1.0f : 0.0f;
        EXPECT_EQ(draws[0].As<cVertex::PositionColored>()[5].Pos.x, 5 + further); // of the bottom
        EXPECT_EQ(draws[1].As<cVertex::PositionColored>()[1].Pos.x, 22 + further);
    }
}

TEST_F(Classic, GlyphsAreOneCallOfLines) {
    std::set<std::map<Pixel, unsigned int>> glyphs;
    for (int i = 0; i < int(Decal::Count); i++) {
        cTheme_WindowsStandard::DrawDecalWindowsStandard({10.9f, 10.5f}, Decal(i), cColor::Black);
        const auto draws = Device.TakeDraws();
        ASSERT_EQ(draws.size(), 1u);
        cTheme_WindowsStandard::DrawDecalWindowsStandard({10.9f, 10.5f}, Decal(i), cColor::Black);
        const auto pixels = LinePixels();
        for (const auto& [at, color] : pixels) {
            EXPECT_TRUE(std::abs(at.first - 10) <= 4 && std::abs(at.second - 10) <= 4) << i;
        }
        const auto* v = draws[0].As<cVertex::PositionColored>();
        for (int k = 0; k < draws[0].VertexCount; k += 2) {
            EXPECT_TRUE(v[k].Pos != v[k + 1].Pos) << i << ": a line of no length shows nothing on some devices";
        }
        glyphs.insert(pixels);
    }
    EXPECT_EQ(int(Decal::Count), 16);
    EXPECT_EQ(glyphs.size(), 16u);
    cTheme_WindowsStandard::DrawDecalWindowsStandard({10, 10}, Decal::ArrowUp, cColor::Black);
    const auto up = LinePixels();
    EXPECT_EQ(up.size(), 16u); // 1 + 3 + 5 + 7
    EXPECT_TRUE(up.count({10, 11}) && up.count({7, 8}) && !up.count({7, 11}));
}

TEST_F(Classic, DrawingAllocatesNothingInTheEnd) {
    const cTheme_WindowsStandard theme;
    ForEachPart(theme, [&](Args args) {
        args.Toggled = true;
        args.Clip = {0, 0, 640, 480};
        args.Text = "A text that is much too long for whatever is to show it";
        theme.Draw(args);
        Device.Quiet = true;
        const int before = AllocationCount();
        theme.Draw(args);
        EXPECT_EQ(AllocationCount(), before);
        Device.Quiet = false;
    });
}
