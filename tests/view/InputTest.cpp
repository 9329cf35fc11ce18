#include "editor/cSettings.h"
#include "foundation/cMain.h"
#include "foundation/cTimer.h"
#include "tests/foundation/FakeClock.h"
#include "ui/cTheme.h"
#include "view/cInput.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

using namespace trellis;

namespace {

/// Devices that a test holds in its hands.
struct Hands {
    cInput::KeyboardState Keys;
    cList<cInput::CharPress> Chars;
    cInput::MouseState Mouse;
    cInput::GamepadState Pad;
    std::string Motors;
};
Hands s_Hands;

class Input : public testing::Test {
protected:
    Input() {
        s_Hands = Hands();
        cInput::Samplers samplers;
        samplers.Keyboard = [](cInput::KeyboardState* out) { *out = s_Hands.Keys; };
        samplers.Chars = [](cList<cInput::CharPress>* out) { *out = std::exchange(s_Hands.Chars, {}); };
        samplers.Mouse = [](cInput::MouseState* out) {
            *out = s_Hands.Mouse;
            s_Hands.Mouse.Wheel = 0;
            s_Hands.Mouse.DoubleClick = false;
        };
        samplers.Gamepad = [](cInput::GamepadState* out) { *out = s_Hands.Pad; };
        samplers.SetVibration = [](float left, float right) {
            s_Hands.Motors = cStr::Format("%g %g", double(left), double(right)).Text();
        };
        cInput::SetSamplers(samplers);
        cTimer::Reset();
        cTimer::Acquire();
        Frame();
    }
    ~Input() override {
        s_Hands = Hands();
        cInput::Acquire(); // all is released
        cInput::FreeEvents();
        cInput::SetSamplers({});
    }

    /// A frame some time later. @return its events: +A a press, -A a release, ~ a repeat, c65:A a character, mx,y a
    /// move
    std::string Frame(float seconds = 0.01f) {
        m_Clock.Advance((long long)(seconds * 1e6f + 0.5f));
        cTimer::Acquire();
        cInput::Acquire();
        return Drain();
    }

    static std::string Drain() {
        cStr text;
        while (const std::unique_ptr<cInput::Event> e{cInput::GetEvent()}) {
            text += e->Repeat ? "~" : "";
            if (e->Type == cInput::ButtonEvent) {
                text += e->Down ? "+" : "-";
                text += cInput::ToString(e->Code);
            } else if (e->Type == cInput::CharEvent) {
                text.AppendFormat("c%d:%s", e->Char, cInput::ToString(e->Code).Text());
            } else if (e->Type == cInput::MouseMoveEvent) {
                text.AppendFormat("m%g,%g", double(e->Delta.x), double(e->Delta.y));
            }
            text += " ";
        }
        return text.Text();
    }

    cFakeClock m_Clock;
};

} // namespace

TEST_F(Input, CodesAndNames) {
    constexpr struct {
        int Code;
        const char* Name;
    } s_Rows[] = {{0, "Esc"},
                  {12, "F12"},
                  {13, "0"},
                  {23, "-"},
                  {38, "\\"},
                  {39, "Enter"},
                  {50, "Space"},
                  {51, "~"},
                  {77, "Z"},
                  {78, "NumPad0"},
                  {92, "Decimal"},
                  {93, "LeftButton"},
                  {96, "WheelUp"},
                  {99, "XButton2"},
                  {100, "DpadUp"},
                  {110, "LeftThumbRight"},
                  {116, "LeftShoulder"},
                  {118, "(A)"},
                  {123, "RightTrigger"}};
    for (const auto& row : s_Rows) {
        EXPECT_STREQ(cInput::ToString(row.Code), row.Name);
        EXPECT_EQ(cInput::ToCode(row.Name), row.Code);
    }
    EXPECT_EQ(cInput::ToCode("lEfTbUtToN"), 93);
    EXPECT_EQ(cInput::ToCode("nothing"), -1);
    EXPECT_EQ(cInput::ToCode(nullptr), -1);
    for (int code : {-1, 124}) {
        EXPECT_TRUE(cInput::ToString(code).IsEmpty());
        EXPECT_FALSE(cInput::IsDown(code));
    }
    EXPECT_FALSE(cInput::IsMouseButtonCode(96));
    EXPECT_TRUE(cInput::IsMouseButtonCode(98));
    EXPECT_TRUE(cInput::IsKeyboardCode(92));
    EXPECT_FALSE(cInput::IsKeyboardCode(93));
    EXPECT_FALSE(cInput::IsGamepadCode(99));
    EXPECT_TRUE(cInput::IsGamepadCode(123));
    EXPECT_EQ(cInput::GetDownTimeSec(200), 0);
}

TEST_F(Input, ChangesBecomeEvents) {
    s_Hands.Keys.IsDown[cInput::A] = true;
    s_Hands.Chars.Add({'a', cInput::A});
    s_Hands.Mouse.Position = {30, 40};
    s_Hands.Mouse.IsDown[0] = true;
    EXPECT_EQ(Frame(), "+A +LeftButton c97:A m30,40 ");
    EXPECT_TRUE(cInput::IsDown(cInput::A));
    EXPECT_TRUE(cInput::IsDown(cInput::LeftButton));
    EXPECT_EQ(cInput::GetMousePosition(), cVec2(30, 40));
    EXPECT_EQ(cInput::GetDownTimeSec(cInput::A), cTimer::GetTimeSec());
    EXPECT_EQ(Frame(), "");
    s_Hands.Keys.IsDown[cInput::A] = false;
    s_Hands.Keys.IsDown[cInput::Tab] = true;
    s_Hands.Mouse.IsDown[0] = false;
    s_Hands.Mouse.Wheel = -2;
    s_Hands.Mouse.DoubleClick = true;
    EXPECT_EQ(Frame(), "+Tab -A -LeftButton +WheelDown c-1:Tab ") << "a key that prints nothing";
    EXPECT_EQ(cInput::GetWheelDelta(), -2);
    EXPECT_TRUE(cInput::IsDoubleClick());
    EXPECT_FALSE(cInput::IsDown(cInput::WheelDown));
    EXPECT_EQ(Frame(), "");
    EXPECT_EQ(cInput::GetWheelDelta(), 0);
    EXPECT_FALSE(cInput::IsDoubleClick());
}

TEST_F(Input, HeldKeysRepeat) {
    s_Hands.Keys.IsDown[cInput::B] = true;
    s_Hands.Chars.Add({'b', cInput::B});
    EXPECT_EQ(Frame(), "+B c98:B ");
    EXPECT_EQ(Frame(cTheme::CharRepeatDelaySec - 0.01f), "");
    EXPECT_EQ(Frame(0.02f), "~c98:B ");
    EXPECT_EQ(Frame(0.02f), "");
    EXPECT_EQ(Frame(cTheme::CharRepeatRateSec), "~c98:B ");
    EXPECT_EQ(Frame(5), "~c98:B ") << "one after a stall";
    EXPECT_EQ(Frame(0.01f), "");
    s_Hands.Keys.IsDown[cInput::Left] = true; // the last key repeats
    EXPECT_EQ(Frame(), "+Left c-1:Left ");
    EXPECT_EQ(Frame(cTheme::CharRepeatDelaySec + 0.01f), "~c-1:Left ");
    s_Hands.Keys.IsDown[cInput::Left] = false;
    EXPECT_EQ(Frame(), "-Left ");
    EXPECT_EQ(Frame(1), "") << "and no other afterwards";

    s_Hands.Keys.IsDown[cInput::C] = true;
    s_Hands.Chars.Add({'c', cInput::C});
    Frame();
    s_Hands.Chars.Add({'d', cInput::D}); // let go before it is sampled
    EXPECT_EQ(Frame(), "c100:D ");
    EXPECT_EQ(Frame(cTheme::CharRepeatDelaySec), "~c99:C ") << "the held key goes on";
    cTimer::Reset(); // the clock is at 0 again
    cTimer::Acquire();
    Frame();
    EXPECT_EQ(Frame(cTheme::CharRepeatDelaySec + 0.01f), "~c99:C ");
    s_Hands.Keys.IsDown[cInput::C] = false;
    Frame();

    s_Hands.Pad.IsDown[0] = true;
    EXPECT_EQ(Frame(), "+DpadUp c-1:DpadUp ");
    EXPECT_EQ(Frame(cTheme::GamepadRepeatDelaySec - 0.01f), "");
    EXPECT_EQ(Frame(0.02f), "~c-1:DpadUp ");
    EXPECT_EQ(Frame(cTheme::GamepadRepeatRateSec), "~c-1:DpadUp ");
}

TEST_F(Input, DevicesThatGoLetGo) {
    s_Hands.Mouse.IsDown[0] = true;
    s_Hands.Mouse.Position = {3, 4};
    Frame();
    cInput::SetSamplers({});
    EXPECT_EQ(Frame(), "-LeftButton ");
    EXPECT_EQ(cInput::GetMousePosition(), cVec2(3, 4));
}

TEST_F(Input, FedEvents) {
    cInput::AddEvent(nullptr);
    const std::unique_ptr<cInput::Event> refused(new cInput::Event);
    refused->Type = cInput::ButtonEvent;
    refused->Code = 124;
    cInput::AddEvent(refused.get());
    EXPECT_TRUE(cInput::GetEvents().IsEmpty());
    for (int code : {int(cInput::A), int(cInput::B)}) {
        auto* e = new cInput::Event;
        e->Type = cInput::ButtonEvent;
        e->Code = code;
        cInput::AddEvent(e, code == cInput::B);
    }
    EXPECT_EQ(cInput::GetEvents().Count(), 2);
    EXPECT_EQ(Drain(), "-B -A ");
    EXPECT_EQ(cInput::GetEvent(), nullptr);
}

TEST_F(Input, AFingerActsAsTheMouse) {
    const auto touch = [](int id, bool down, float dx, float dy) {
        cInput::Event e;
        e.Type = cInput::TouchEvent;
        e.Id = id;
        e.Down = down;
        e.Delta = {dx, dy};
        cInput::SimulateMouseEventWithMultitouchEvent(e);
        return Drain();
    };
    EXPECT_EQ(touch(7, false, 0, 0), "");
    EXPECT_EQ(touch(7, true, 0, 0), "+LeftButton ");
    EXPECT_EQ(touch(7, true, 0.001f, -0.001f), "");
    EXPECT_EQ(touch(7, true, 0, 0.002f), "m0,0.002 ");
    EXPECT_EQ(touch(8, true, 5, 5), "") << "a second finger";
    EXPECT_EQ(touch(8, false, 0, 0), "");
    EXPECT_EQ(touch(7, false, 0, 0), "-LeftButton ");
    EXPECT_EQ(touch(8, true, 0, 0), "+LeftButton ");
    EXPECT_EQ(touch(8, false, 0, 0), "-LeftButton ");
}

TEST_F(Input, FingersAreKept) {
    const auto add = [](int id, bool down, const cVec2& position) {
        auto* e = new cInput::Event;
        e->Type = cInput::TouchEvent;
        e->Id = id;
        e->Down = down;
        e->Position = position;
        e->Delta = {1, 2};
        cInput::AddEvent(e);
    };
    add(3, true, {10, 20});
    add(4, true, {30, 40});
    add(3, false, {11, 21});
    EXPECT_FALSE(cInput::GetMultitouchIsDown(3));
    EXPECT_TRUE(cInput::GetMultitouchIsDown(4));
    EXPECT_EQ(cInput::GetMultitouchPosition(4), cVec2(30, 40));
    EXPECT_EQ(cInput::GetMultitouchDelta(4), cVec2(1, 2));
    EXPECT_EQ(cInput::GetMultitouchPosition(3), cVec2(0, 0));
    cList<cVec2> positions;
    cInput::GetMultitouchPositions(&positions);
    EXPECT_EQ(positions.Count(), 1);
    add(4, false, {30, 40});
    cInput::FreeEvents();
}

TEST_F(Input, TurnedDevices) {
    constexpr struct {
        bool OnTheRight, OnTheLeft;
        cVec2 P, D; ///< Where (10, 20) and a step of (1, 2) come out.
    } s_Rows[] = {
        {false, false, {10, 20}, {1, 2}}, {true, false, {460, 10}, {-2, 1}}, {false, true, {20, 630}, {2, -1}}};
    for (const auto& row : s_Rows) {
        g_Settings.HomeButtonOnTheRight = row.OnTheRight;
        g_Settings.HomeButtonOnTheLeft = row.OnTheLeft;
        const cVec2 p = cInput::GetPosOrient(cVec2(10, 20)); // without a viewer the device is 640 by 480
        EXPECT_EQ(p, row.P);
        EXPECT_EQ(cInput::GetPosUnorient(p), cVec2(10, 20));
        EXPECT_EQ(cInput::GetDeltaOrient(cVec2(1, 2)), row.D);
        s_Hands.Mouse.Position = {10, 20};
        Frame();
        EXPECT_EQ(cInput::GetMousePositionOrient(), row.P);
        EXPECT_EQ(cInput::GetMousePositionAcquire(), cVec2(10, 20));
    }
    g_Settings.HomeButtonOnTheRight = g_Settings.HomeButtonOnTheLeft = false;
}

TEST_F(Input, VibrationsAddUp) {
    cInput::AddVibration(0.5f, 0.25f, 1);
    cInput::AddVibration(0.75f, 0.25f, 2);
    Frame();
    EXPECT_EQ(s_Hands.Motors, "1 0.5");
    Frame(1.5f);
    EXPECT_EQ(s_Hands.Motors, "0.75 0.25");
    cTimer::Reset(); // stops them
    EXPECT_EQ(s_Hands.Motors, "0 0");
}

TEST_F(Input, Tablet) {
    cLinuxMain_Tablet::CurPressure = 12;
    cLinuxMain_Tablet::PenPressed = true;
    int pressure = 0, last = 0;
    bool pen = false, eraser = true;
    cMain_GetTabletState(&pressure, &pen, &eraser, &last);
    EXPECT_EQ(pressure, 12);
    EXPECT_TRUE(pen);
    EXPECT_FALSE(eraser);
    EXPECT_EQ(last, -1);
    cMain_GetTabletState(nullptr, nullptr, nullptr, nullptr);
    cLinuxMain_Tablet::CurPressure = 0;
    cLinuxMain_Tablet::PenPressed = false;
}
