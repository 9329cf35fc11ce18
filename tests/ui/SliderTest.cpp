#include "files/cIO.h"
#include "tests/ui/UiFixture.h"
#include "ui/cButton.h"
#include "ui/cColorSwatch.h"
#include "ui/cEdit.h"
#include "ui/cEditSlider.h"
#include "ui/cEditVec.h"
#include "ui/cFilePn.h"
#include "ui/cFpsDisplay.h"
#include "ui/cImageSwatch.h"
#include "ui/cSlider.h"
#include "ui/cSliderRanged.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>

using namespace trellis;

namespace {

using Parts = cTheme::Parts;

class Values : public Ui {
protected:
    template <class T> cSlider* NewSlider(T* value, const T* min, const T* max, const char* text = "") {
        return Add(Root, new cSlider(Root, value, min, max, text, 10, -10, cRect::LeftTop, true, true));
    }
    UiRoot* Root = NewRoot(&Classic);
};

// The bar is (110, 369, 230, 390); the middle of the thumb of 11 travels from 115.5 to 224.5.
TEST_F(Values, SliderFollowsTheMouse) {
    const float nan = std::nanf("");
    const struct {
        const char* Name;
        float X;
        float Value, Min, Max, Slid;
        float Thumb; // its left edge afterwards; 0: none
        const char* Messages;
    } rows[] = {
        {"middle", 170, 1, 0, 10, 5, 165, "4:1>5 "},
        {"the thumb's own place", 170, 5, 0, 10, 5, 165, ""},
        {"far to the left", -500, 1, 0, 10, 0, 110, "4:1>0 "},
        {"far to the right", 900, 1, 0, 10, 10, 219, "4:1>10 "},
        {"inverted", 900, 1, 10, -10, -10, 219, "4:1>-10 "},
        {"no range", 170, 7, 5, 5, 5, 110, "4:7>5 "},
        {"widest range", 900, 1, -FLT_MAX, FLT_MAX, FLT_MAX, 219, "4:1>3.40282e+38 "},
        {"a limit is no number", 170, 1, 0, nan, 1, 0, ""},
        {"a limit is infinite", 170, 1, 0, INFINITY, 1, 110, ""},
        {"value is no number", 170, nan, 0, 10, 5, 165, "4:nan>5 "},
        {"value stays no number", 170, nan, 0, nan, nan, 0, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        float value = row.Value;
        cSlider* slider = NewSlider(&value, &row.Min, &row.Max);
        MoveTo(150, 380);
        s_Mouse.Position = {row.X, 380};
        EXPECT_TRUE(slider->OnButtonDown(cInput::LeftButton) && cWidgets::IsCaptured(slider));
        Frame();
        EXPECT_TRUE(value == row.Slid || (std::isnan(value) && std::isnan(row.Slid))) << value;
        EXPECT_EQ(slider->m_ThumbRect, row.Thumb == 0 ? cRect::Empty : cRect(row.Thumb, 369, row.Thumb + 11, 390));
        EXPECT_EQ(Root->TakeMessages(), "");
        EXPECT_TRUE(slider->OnButtonUp(cInput::LeftButton) && !cWidgets::IsCaptured());
        EXPECT_EQ(Root->TakeMessages(), row.Messages);
        cWidgets::FreeWidget(slider, false);
    }
}

// Held for the press, and for two repeats.
TEST_F(Values, SliderKeys) {
    const struct {
        const char* Name;
        int Code;
        int Value, Min, Max;
        int Int[3];
        float Float[3];
        const char *IntMessages, *FloatMessages;
    } rows[] = {
        {"right", cInput::Right, 50, 0, 100, {55, 60, 65}, {55, 60, 65}, "5:50>65 ", "4:50>65 "},
        {"left, to the end", cInput::Left, 8, 0, 100, {3, 0, 0}, {3, 0, 0}, "5:8>0 ", "4:8>0 "},
        {"inverted", cInput::Right, 50, 100, 0, {45, 40, 35}, {45, 40, 35}, "5:50>35 ", "4:50>35 "},
        {"small range", cInput::Right, 1, 0, 5, {2, 3, 4}, {1.25f, 1.5f, 1.75f}, "5:1>4 ", "4:1>1.75 "},
        {"the same inverted", cInput::Right, 4, 5, 0, {3, 2, 1}, {3.75f, 3.5f, 3.25f}, "5:4>1 ", "4:4>3.25 "},
        {"from outside", cInput::Right, 500, 0, 100, {100, 100, 100}, {100, 100, 100}, "5:500>100 ", "4:500>100 "},
        {"no range", cInput::Right, 5, 5, 5, {5, 5, 5}, {5, 5, 5}, "", ""},
        {"left thumb", cInput::LeftThumbRight, 50, 0, 100, {55, 60, 65}, {55, 60, 65}, "5:50>65 ", "4:50>65 "},
        {"right thumb", cInput::RightThumbLeft, 50, 0, 100, {45, 40, 35}, {45, 40, 35}, "5:50>35 ", "4:50>35 "},
        {"Home", cInput::Home, 50, -7, 100, {-7, -7, -7}, {-7, -7, -7}, "", ""},
        {"End", cInput::End, 50, 0, INT_MAX, {INT_MAX, INT_MAX, INT_MAX}, {0x1p31f, 0x1p31f, 0x1p31f}, "", ""},
        {"another", cInput::Up, 50, 0, 100, {50, 50, 50}, {50, 50, 50}, "", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        const bool isGamepad = cInput::IsGamepadCode(row.Code);
        int value = row.Value;
        float real = float(row.Value), min = float(row.Min), max = float(row.Max);
        for (cSlider* slider : {NewSlider(&value, &row.Min, &row.Max), NewSlider(&real, &min, &max)}) {
            const bool isInt = std::holds_alternative<int*>(slider->m_Value);
            const auto expect = [&](int i) {
                EXPECT_EQ(isInt ? float(value) : real, isInt ? float(row.Int[i]) : row.Float[i]) << i;
            };
            Root->Focus = slider;
            Down(row.Code);
            expect(0);
            Frame(isGamepad ? 310 : 410);
            expect(1);
            Frame(isGamepad ? 130 : 50);
            expect(2);
            EXPECT_EQ(Root->TakeMessages(), "");
            Up(row.Code);
            EXPECT_EQ(Root->TakeMessages(), isInt ? row.IntMessages : row.FloatMessages);
            EXPECT_FALSE(cWidgets::IsCaptured());
            cWidgets::FreeWidget(slider, false);
        }
    }
}

TEST_F(Values, SliderLetsGo) {
    int value = 5, min = INT_MIN, max = INT_MAX;
    cSlider* slider = NewSlider(&value, &min, &max, "Gain");
    EXPECT_EQ(slider->m_LabelRect, cRect(81, 369, 105, 390));
    EXPECT_EQ(slider->m_ClippedBounds, cRect(100, 369, 230, 390));
    for (const auto& [x, code] : {std::pair(102.0f, cInput::LeftButton), std::pair(170.0f, cInput::RightButton)}) {
        Root->Focus = nullptr;
        MoveTo(x, 380);
        Down(code); // on the caption, and with the other button: the focus alone
        EXPECT_EQ(Root->Focus, slider);
        EXPECT_FALSE(cWidgets::IsCaptured());
        Up(code);
    }
    MoveTo(170, 380);
    Down(cInput::LeftButton);
    MoveTo(900, 380);
    EXPECT_TRUE(slider->OnChar(-1, cInput::Left)); // the mouse has it
    Root->m_Enabled = false;
    MoveTo(-900, 380);
    EXPECT_EQ(value, INT_MAX);
    Root->m_Enabled = true;
    slider->Unbind();
    Up(cInput::LeftButton);
    Press(cInput::Right);
    Press(cInput::End);
    EXPECT_EQ(Root->TakeMessages(), "");

    static cSlider* s_Slider;
    s_Slider = NewSlider(&value, &min, &max);
    Root->OnMessage = [] { cWidgets::FreeWidget(s_Slider, false); };
    MoveTo(120, 380);
    s_Slider->OnButtonDown(cInput::LeftButton);
    Frame();
    EXPECT_TRUE(s_Slider->OnButtonUp(cInput::LeftButton));
    EXPECT_EQ(cWidgets::GetWidgetID(s_Slider), -1);
}

TEST_F(Values, CompositesLayTheirPartsOut) {
    float v[4] = {5, 0, 10, 0};
    auto* pair = Add(Root, new cEditSlider(Root, v, v + 1, v + 2, "ab", 100, -10, cRect::LeftTop, false, true));
    EXPECT_EQ(pair->m_Bounds, cRect(200 - 5 - 12, 369, 385, 390));
    EXPECT_EQ(pair->m_Edit->m_LabelRect, cRect(183, 369, 195, 390));
    EXPECT_EQ(pair->m_Edit->m_ValueRect, cRect(200, 369, 260, 390));
    EXPECT_EQ(pair->m_Slider->m_ValueRect, cRect(265, 369, 385, 390));
    EXPECT_EQ(pair->m_ClippedClient, Root->m_ClippedClient); // parts may grow
    EXPECT_FALSE(pair->m_Slider->IsVisible());
    pair->m_Visible = true;
    Frame();
    EXPECT_TRUE(pair->m_Slider->IsVisible());
    Root->Focus = pair->m_Slider;
    Press(cInput::Right);
    EXPECT_EQ(Root->TakeMessages(), "4:5>5.5 "); // through the composite
    pair->Unbind();
    EXPECT_EQ(pair->m_Edit->m_FloatValue, nullptr);

    auto* vec = Add(Root, new cEditVec(Root, v, 9, "", 0, -50, cRect::LeftTop, true, true));
    EXPECT_EQ(vec->GetType(), cWnd::EditVec4Type);
    for (int i = 0; i < 4; i++) {
        EXPECT_EQ(vec->m_Edits[i]->m_ValueRect.x0, 100 + i * 64.0f);
        EXPECT_EQ(vec->m_Edits[i]->m_FloatValue, v + i);
    }
    Root->m_ClientBounds = cRect::Empty;
    Frame();
    EXPECT_TRUE(vec->m_Edits[3]->m_Bounds.IsEmpty());
    delete new cEditVec(Root, v, 2, "", 0, 0, cRect::LeftTop, true, true); // never added
    Frame();
}

TEST_F(Values, EndsOfARangePushEachOther) {
    int values[3] = {5, 0, 10};
    auto* range = Add(Root, new cSliderRanged(Root, values, "", 0, -10, cRect::LeftTop, true, true));
    EXPECT_EQ(range->m_Slider->m_ValueRect.x0, 165);
    EXPECT_EQ(range->m_Upper->m_ValueRect, cRect(290, 369, 350, 390));
    range->m_Lower->m_Buffer = "20";
    range->m_Lower->SetValueFromBuffer();
    EXPECT_EQ(values[2], 21);
    range->m_Upper->m_Buffer = "-3";
    range->m_Upper->SetValueFromBuffer();
    EXPECT_EQ(Root->TakeMessages(), "6:0>20 6:21>-3 ");
    EXPECT_EQ(values[1], -4);
    Frame();
    EXPECT_EQ(range->m_Slider->m_ThumbRect.x1, 285); // 5 is beyond the upper end
}

TEST_F(Values, FileNameFromTheDialogOfItsKind) {
    static std::string s_Asked;
    static cFilePn* s_Control;
    static void (*s_Meanwhile)();
    static const auto s_Browse = [] {
        s_Control->MsgProc(cWidgets::GetWidgetID(s_Control->m_Button), cControl::Pressed, nullptr, nullptr);
    };
    cIO::Host host;
    host.ShowLoadFile = [](const cIO::FileDialog& dialog, cStr* filePn) {
        s_Asked = std::string(dialog.Title) + "|" + dialog.InitialPath + "|" + dialog.InitialFile;
        *filePn = "/new/b.x";
        s_Meanwhile();
        return true;
    };
    cIO::SetHost(host);
    cStr value;
    const auto make = [&](int type, const char* text, void (*meanwhile)()) {
        value = text;
        s_Asked.clear();
        s_Meanwhile = meanwhile;
        s_Control = Add(Root, new cFilePn(Root, type, &value, "", 0, -10, cRect::LeftTop, true, true));
    };
    int type = 0;
    for (const char* title : {"Image", "Model", "Animation", "Camera", "BSP", "Sound", "Xml"}) {
        make(type++, "/old/dir/a.x", [] {});
        Click(100 + 120 + 4 + 12, 380);
        EXPECT_EQ(s_Asked, std::string("Load ") + title + "|/old/dir|a.x");
        EXPECT_EQ(Root->TakeMessages(), "10:/old/dir/a.x>/new/b.x ");
        EXPECT_EQ(s_Control->m_Edit->m_Buffer, "/new/b.x");
        cWidgets::FreeWidget(s_Control, false);
    }
    make(type, "", [] { FAIL(); });
    s_Browse(); // no such type
    for (void (*meanwhile)() : {+[] { s_Control->Unbind(); }, +[] { cWidgets::FreeWidget(s_Control, false); },
                                +[] { s_Browse(), s_Control->Unbind(); }}) {
        make(cFilePn::Xml, "", meanwhile);
        s_Browse();
        EXPECT_EQ(value, "");
        EXPECT_EQ(Root->TakeMessages(), "");
    }
    cIO::SetHost({});
}

TEST_F(Values, Swatches) {
    Device.Textures.push_back({"Textures/wall.dds", 64, 32, 1, cFormat::Dxt1, 7, 0});
    int texture = int(Device.Textures.size()) - 1;
    const float color[] = {1, 0.5f, 0.25f, 0.75f};
    Add(Root, new cImageSwatch(Root, &texture, "Map", 50, -10, cRect::LeftTop, true, true));
    auto* tint = Add(Root, new cColorSwatch(Root, color, "", 50, -150, cRect::LeftTop, true, true));
    const auto* args = Classic.Find(Parts::ImageSwatch);
    EXPECT_EQ(args->Texture, texture);
    EXPECT_EQ(args->Extra[0] + "|" + args->Extra[1] + "|" + args->Extra[2], "64 x 32, Dxt1|7 levels|wall.dds");
    EXPECT_EQ(args->ValueRect, cRect(150, 262, 278, 390));
    EXPECT_EQ(Classic.Find(Parts::ColorSwatch)->Color, cColor(1, 0.5f, 0.25f, 0.75f));
    texture = -1;
    tint->Unbind();
    Frame();
    EXPECT_EQ(Classic.Find(Parts::ImageSwatch)->Texture, -1);
    EXPECT_EQ(Classic.Find(Parts::ImageSwatch)->Extra[0], "");
    EXPECT_EQ(Classic.Find(Parts::ColorSwatch)->Color, cColor::Zero);
}

TEST_F(Values, FrameRateIsShownAndDragged) {
    auto* display = new cFpsDisplay;
    cWidgets::AddWidget(display, 4);
    const auto frames = [this](int count, int ms) {
        while (count-- > 0) {
            Frame(ms);
        }
    };
    const auto isShown = [&](float x, int letters) { // by where the mouse finds it
        MoveTo(x + float(letters) * 6 - 1, 465);
        const bool isLast = display->IsHot(false);
        MoveTo(x + float(letters) * 6 + 1, 465);
        return isLast && !display->IsHot(false);
    };
    EXPECT_TRUE(isShown(10, 6)); // "Paused"
    frames(101, 10);
    EXPECT_TRUE(isShown(10, 7)); // "100 FPS"
    frames(200, 1);
    EXPECT_TRUE(isShown(10, 7)); // on its way up
    frames(4000, 1);
    EXPECT_TRUE(isShown(10, 8)); // "1000 FPS"
    MoveTo(12, 468);
    Down(cInput::LeftButton);
    MoveTo(212, 463);
    Up(cInput::LeftButton);
    EXPECT_TRUE(isShown(210, 8) && !cWidgets::IsCaptured());
}

} // namespace
