// The soft theme over the recording device, with fonts of made-up glyphs: 18 and 26 high, so that its scale is 13 / 9.
#include "ui/cTheme_Fragile.h"

#include "render/cRender.h"
#include "tests/render/Allocations.h"
#include "tests/ui/FontFolders.h"
#include "tests/ui/ThemeMetrics.h"
#include "tests/ui/ThemeParts.h"

#include <cstdio>
#include <memory>
#include <set>
#include <sstream>

using namespace trellis;

namespace {

using Args = cTheme::DrawArgs;
using Parts = cTheme::Parts;

constexpr float GlyphWidth = 10;

/// What a part needs to show something.
void Furnish(Args* args, int part) {
    args->Part = Parts::Enum(part);
    args->Clip = {0, 0, 640, 480};
    args->Rect = {20, 100, 420, 149};
    args->LabelRect = {20, 100, 170, 149};
    args->ValueRect = {180, 100, 420, 149};
    args->ThumbRect = {380, 110, 410, 140};
    args->Text = "Text";
    args->Value = "Value";
    args->Items.Add(cStr("One"));
    args->Items.Add(cStr("Two"));
    args->SelStart = 1;
}

class Fragile : public FontFolders {
protected:
    Fragile() {
        PutFont("Calibri 11", 18, GlyphWidth);
        PutFont("Calibri 16", 26, GlyphWidth);
        PutFont("Calibri B24", 39, GlyphWidth);
        Theme = std::make_unique<cTheme_Fragile>();
        cRender::ResetStates();
        Forget();
    }

    void Forget() {
        Device.Take();
        Device.TakeDraws();
    }
    std::vector<RecordingDevice::Draw> Draw(const Args& args) {
        Forget();
        Theme->Draw(args);
        return Device.TakeDraws();
    }
    int GlyphsOf(const Args& args) {
        int vertices = 0;
        for (const auto& draw : Draw(args)) {
            vertices += draw.Shader == "Font" ? draw.VertexCount : 0;
        }
        return vertices / 4;
    }

    std::unique_ptr<cTheme_Fragile> Theme;
};

} // namespace

// The first of the file: fonts that have been loaded stay for the process.
TEST(BareFragile, HasNoSizeWithoutItsFontsAndStillDraws) {
    RecordingDevice& device = RecordingDevice::Install();
    const cTheme_Fragile bare;
    EXPECT_EQ(bare.Scale, 0);
    EXPECT_EQ(bare.ButtonHeight, 0);
    EXPECT_EQ(bare.HotTendSpeed, 0);
    EXPECT_EQ(bare.FocusMargin, 10);
    EXPECT_TRUE(bare.TabWraps);
    for (int part = Parts::None; part < Parts::Count; part++) {
        Args args;
        Furnish(&args, part);
        args.Toggled = true;
        bare.Draw(args);
    }
    EXPECT_FALSE(device.TakeDraws().empty());
    RecordingDevice::Uninstall();
}

TEST_F(Fragile, SizesGrowWithTheFonts) {
    const cTheme& t = *Theme;
    CheckMetrics(t);
    const struct {
        const char* Name;
        float Value, Expected; // floor(v * 13 / 9 + 0.5) of the plain lengths
    } rows[] = {
        {"Scale", t.Scale, 26.0f / 18},
        {"press", t.ButtonPressGrow, -9},
        {"idle", t.ButtonIdleGrow, 0},
        {"hot", t.ButtonHotGrow, 12},
        {"grow speed", t.ButtonGrowSpeed, 289},
        {"hot speed", t.HotTendSpeed, 5},
        {"activity speed", t.ActivityTendSpeed, 12},
        {"rows", t.RowSpacing, 14},
        {"small rows", t.SmallRowSpacing, 7},
        {"inset", t.RowInsets.x, 9},
        {"inset", t.RowInsets.y, 7},
        {"focus", t.FocusMargin, 2 * 14 + 49},
        {"bar", t.ScrollBarWidth, 29},
        {"no arrows", t.ScrollArrowLength, 0},
        {"thumb", t.ScrollThumbMinLength, 58},
        {"arrow step", t.ArrowScrollSpeed, 26},
        {"wheel", t.WheelScrollSpeed, 58},
        {"right of the client", t.VScrollBarOffset.x, 29},
        {"under the client", t.HScrollBarOffset.y, -29},
        {"border", t.SizingBorderWidth, 12},
        {"corner", t.SizingCornerSize, 12 + 29},
        {"drag", t.DragAlpha, 1},
        {"form", t.FormMinSize.y, 289},
        {"minimised", t.FormMinimizedSize.x, 231},
        {"close", t.CloseButtonOffset.x, -14},
        {"title", t.FormTitleInset.y0, -52},
        {"client", t.FormClientInset.y1, -58},
        {"button", t.ButtonMinWidth, 142},
        {"button", t.ButtonHeight, 49},
        {"item", t.ComboItemHeight, 38},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.Value, row.Expected) << row.Name;
    }
    EXPECT_TRUE(t.FocusFollowsMouse && t.ComboCapturesOnPress && t.PanelToggleOnRelease && t.CenterRows);
    EXPECT_FALSE(t.TabWraps || t.ScrollBarsInsideClient || t.PanelArrowAtLeft);
    EXPECT_EQ(t.SliderSteps, 20);
    EXPECT_EQ(t.ToolTipFont, cRender::GetFontID("Calibri 11"));
    EXPECT_EQ(t.EditFont, cRender::GetFontID("Calibri 16"));
    EXPECT_EQ(t.FormTitleFont, cRender::GetFontID("Calibri B24"));
}

TEST_F(Fragile, EveryPartDrawsAndLeavesNoTrace) {
    CheckEveryPart(*Theme, Device);
    ForEachPart(*Theme, [&](Args args) {
        args.Shown = 0;
        EXPECT_TRUE(Draw(args).empty());
    });
}

TEST_F(Fragile, PiecesStayInsideTheClip) {
    Args args;
    Furnish(&args, Parts::FormBody);
    args.Clip = {10, 110, 60, 120}; // over the left side, at a distance from the caps
    Forget();
    Theme->Draw(args);
    std::istringstream lines(Device.Take());
    int clips = 0;
    for (std::string line; std::getline(lines, line);) {
        cRect r;
        if (std::sscanf(line.c_str(), "SetClipRect %f,%f,%f,%f", &r.x0, &r.y0, &r.x1, &r.y1) == 4) {
            EXPECT_TRUE(r.x0 >= 10 && r.y0 >= 110 && r.x1 <= 60 && r.y1 <= 120) << line;
            clips++;
        }
    }
    EXPECT_GT(clips, 2) << "the pieces' own";
}

TEST_F(Fragile, StatesLookDifferent) {
    for (Parts::Enum part : {Parts::Button, Parts::CheckBox, Parts::ComboBox, Parts::Edit, Parts::Slider,
                             Parts::BindButton, Parts::Panel, Parts::HScrollThumb, Parts::FormClose}) {
        std::set<std::string> seen;
        for (int state = 0; state < 4; state++) {
            Args args;
            Furnish(&args, part);
            args.Hot = state == 1;
            args.Pressed = state == 2 && part != Parts::Edit;
            args.Toggled = state == 2 && part == Parts::Edit;
            args.CurEnabled = state == 3 && part != Parts::HScrollThumb && part != Parts::FormClose ? 0 : 1;
            Forget();
            Theme->Draw(args);
            seen.insert(Device.Take());
        }
        EXPECT_GE(seen.size(), part == Parts::HScrollThumb || part == Parts::FormClose ? 3u : 4u) << part;
    }
}

TEST_F(Fragile, WideTextEndsInAnEllipsis) {
    Args args;
    args.Part = Parts::Label;
    args.Text = "0123456789";
    constexpr struct {
        float Width;
        int Glyphs;
    } s_Rows[] = {{100, 10}, {99, 9}, {60, 6}, {31, 3}, {20, 0}}; // cells of 10, three of them the dots
    for (const auto& row : s_Rows) {
        args.LabelRect = {0, 0, row.Width, 30};
        EXPECT_EQ(GlyphsOf(args), row.Glyphs) << row.Width;
    }
    args.Text = "\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9"; // cut between sequences, not in them
    args.LabelRect = {0, 0, 49, 30};
    EXPECT_EQ(GlyphsOf(args), 4);
    args.Text = std::string(500, 'x').c_str();
    args.LabelRect = {0, 0, 3000, 30};
    EXPECT_EQ(GlyphsOf(args), 300);
    args.Text = (std::string(20, 'x') + "\xE9" + std::string(50, 'y')).c_str(); // what follows a bad byte is not shown
    args.LabelRect = {0, 0, 100, 30};
    EXPECT_EQ(GlyphsOf(args), 10);
}

TEST_F(Fragile, CaretStandsBehindUtf16AndBlinks) {
    Args args;
    Furnish(&args, Parts::Edit);
    args.Toggled = true;
    args.TextRect = {200, 100, 400, 149};
    args.Value = "\xF0\x9F\x98\x80\xC3\xA9z"; // two codes, one, one
    args.Caret = 3;
    args.ScrollX = -5;
    const auto draws = Draw(args);
    ASSERT_EQ(draws.back().Shader, "SolidUI");
    EXPECT_EQ(draws.back().As<cVertex::PositionColored>()->Pos.x, 200 - 5 + 3 * GlyphWidth);
    args.CaretTime = -0.75f; // of 0.5 seconds each, the second one
    EXPECT_EQ(Draw(args).back().Shader, "Font");
}

TEST_F(Fragile, DropDownDrawsTheRowsInSight) {
    Args args;
    args.Part = Parts::DropDown;
    args.Rect = {0, 0, 200, 2 * Theme->ComboItemHeight};
    args.SelStart = -1;
    for (int i = 0; i < 100; i++) {
        args.Items.Add(cStr("xx"));
    }
    EXPECT_EQ(GlyphsOf(args), 2 * 2);
    args.ScrollX = 5;
    EXPECT_EQ(GlyphsOf(args), 3 * 2);
}

TEST_F(Fragile, NothingIsAllocatedInTheSteadyState) {
    Device.Quiet = true;
    for (int part = Parts::None; part < Parts::Count; part++) {
        Args args;
        Furnish(&args, part);
        args.Toggled = true;
        Theme->Draw(args);
        const int before = AllocationCount();
        Theme->Draw(args);
        EXPECT_EQ(AllocationCount(), before) << part;
    }
}

TEST_F(Fragile, InitTwiceMakesNothingNew) {
    cTheme::Init();
    const cTheme *first = cTheme::Fragile, *other = cTheme::WindowsStandard;
    const int lookups = Device.Lookups;
    cTheme::Init();
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(cTheme::Fragile, first);
    EXPECT_EQ(cTheme::WindowsStandard, other);
    EXPECT_EQ(Device.Lookups, lookups);
}
