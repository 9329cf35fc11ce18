#include "foundation/cTimer.h"
#include "tests/foundation/FakeClock.h"
#include "tests/render/Allocations.h"
#include "tests/view/FakeInput.h"
#include "ui/cTheme.h"
#include "ui/cToolBar.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>

using namespace trellis;

namespace {

using Parts = cTheme::Parts;

class FakeTheme : public cTheme {
public:
    FakeTheme() {
        ScrollBarWidth = ScrollArrowLength = ArrowScrollSpeed = 16;
        ScrollThumbMinLength = 8;
        ScrollRepeatDelaySec = 0.5f;
        ScrollRepeatRateSec = 0.125f;
        ScrollBarsInsideClient = true;
        WheelScrollSpeed = 40;
        SizingBorderWidth = 4;
        SizingCornerSize = 22;
        HotTendSpeed = VisibleTendSpeed = 4;
        EnabledTendSpeed = ActivityTendSpeed = Immediate;
    }
    void Draw(const DrawArgs& args) const override { Drawn += std::to_string(args.Part) + (args.Pressed ? "! " : " "); }
    mutable std::string Drawn;
};

/// Counts itself, is active once activated, and does in a callback what a test has given it.
class Window : public cWnd {
public:
    explicit Window(cWnd* parent, const cTheme* theme = nullptr) : cWnd(parent, theme) {
        s_Alive++;
        m_Visible = m_Enabled = true;
    }
    ~Window() override { s_Alive--; }

    void Activate() override {
        Active = true;
        Call();
    }
    bool IsActive() override { return m_Parent ? cWnd::IsActive() : Active; }
    void OnBringToFront() override {
        s_Log += Name;
        Act ? Call() : cWnd::OnBringToFront();
    }
    void ClearFocus(cWnd* wnd) override {
        Cleared += m_Parent ? 0 : 1;
        if (const auto act = OnClearFocus) {
            act();
        }
        cWnd::ClearFocus(wnd);
    }
    bool HasFocus(cWnd* wnd) override { return m_Parent ? cWnd::HasFocus(wnd) : wnd == Focus; }
    void SetFocus(cWnd* wnd) override { m_Parent ? cWnd::SetFocus(wnd) : void(Focus = wnd); }
    bool IsCollapsed() const override { return Collapsed; }

    bool Active = false, Collapsed = false;
    int Cleared = 0;
    cWnd* Focus = nullptr;
    char Name = '-';
    std::function<void()> Act, OnClearFocus;
    static inline int s_Alive = 0;
    static inline std::string s_Log;

private:
    void Call() {
        if (const auto act = Act) {
            act();
        }
    }
};

/// One window of 120 by 140 with a client of 100 by 120 and a content of 200 by 300. With both bars the client is
/// (10, 26, 94, 130), and the content can move by 116 and 196; a point of it is 64 / 300 on the track, and 44 / 200.
class Wnd : public FakeInput {
protected:
    Wnd() {
        cTimer::Reset();
        cTimer::Acquire();
        W->Name = 'w';
        W->m_Bounds = {0, 0, 120, 140};
        W->m_ClientBounds = {10, 10, 110, 130};
        W->m_VScroll = W->m_HScroll = W->m_Sizable = W->m_WheelEnabled = W->m_MiddlePan = true;
        cWidgets::AddWidget(W, 5);
        Scroll(0, 0);
    }
    ~Wnd() override {
        cWidgets::ReleaseCapture();
        cWidgets::FreeAll();
        EXPECT_EQ(Window::s_Alive, 0);
    }

    void Scroll(float left, float top) {
        W->m_RelClient = {left, top - 300, left + 200, top};
        W->CalcRects();
        W->CalcRects();
    }
    cVec2 LeftTop() const { return W->m_RelClient.GetPoint(cRect::LeftTop); }
    void Mouse(float x, float y) {
        s_Mouse.Position = {x, y};
        cInput::Acquire();
        cInput::FreeEvents();
        W->OnMouseMove();
        W->IsHot(false);
    }
    void Press(float x, float y, int code = cInput::LeftButton) {
        Mouse(x, y);
        EXPECT_TRUE(W->OnButtonDown(code));
    }
    void Wait(long long ms) {
        Clock.Advance(ms * 1000);
        cTimer::Acquire();
        W->HandleScrolling();
    }
    Window* Child(cWnd* parent) {
        auto* child = new Window(parent);
        parent->AddChild(child);
        return child;
    }

    cFakeClock Clock;
    FakeTheme Theme;
    Window* W = new Window(nullptr, &Theme);
};

TEST_F(Wnd, BarsFollowTheContent) {
    EXPECT_EQ(W->m_Client, cRect(10, 26, 94, 130));
    EXPECT_EQ(W->m_VBar, cRect(94, 26, 110, 130));
    EXPECT_EQ(W->m_HBar, cRect(10, 10, 94, 26));
    EXPECT_EQ(W->m_VArrows[0], cRect(94, 114, 110, 130));
    EXPECT_EQ(W->m_HArrows[1], cRect(78, 10, 94, 26));
    EXPECT_FLOAT_EQ(W->m_VThumbExact.y0, 114 - (8 + 104 / 300.0f * 64));
    const struct {
        const char* Name;
        float Left, Top, ThumbBottom, ThumbLeft; // thumbs of 30 and 26
    } rows[] = {
        {"at the start", 0, 0, 84, 26},
        {"in the middle, rounded from the start", -58, 98, 63, 39}, // 20.9 and 12.8 from the first arrow
        {"past it, rounded from the end", -60, 99, 63, 40},         // 20.7 and 12.3 from the last
        {"at the end", -116, 196, 42, 52},
        {"beyond the end", -500, 500, 42, 52},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        Scroll(row.Left, row.Top);
        EXPECT_EQ(W->m_VThumb, cRect(94, row.ThumbBottom, 110, row.ThumbBottom + 30));
        EXPECT_EQ(W->m_HThumb, cRect(row.ThumbLeft, 10, row.ThumbLeft + 26, 26));
        EXPECT_EQ(W->m_VPage[1], cRect(94, 42, 110, row.ThumbBottom));
        EXPECT_EQ(W->m_HPage[0], cRect(26, 10, row.ThumbLeft, 26));
    }
    W->m_ClientBounds.y1 = 150; // a client that grows leaves nothing hanging
    W->CalcRects();
    EXPECT_EQ(W->m_RelClient.y1, 176);

    Theme.ScrollBarsInsideClient = false;
    Theme.VScrollBarOffset = {20, -1, 2};
    Theme.HScrollBarOffset = {3, -20, -4};
    W->CalcRects();
    EXPECT_EQ(W->m_Client, W->m_ClientBounds);
    EXPECT_EQ(W->m_VBar, cRect(114, 12, 130, 149));
    EXPECT_EQ(W->m_HBar, cRect(13, -10, 106, 6));
}

TEST_F(Wnd, ContentThatNeedsNoBars) {
    W->m_RelClient = {-5, -50, 45, 10};
    W->CalcRects();
    W->CalcRects();
    EXPECT_FALSE(W->m_VBarShown || W->m_HBarShown);
    EXPECT_EQ(W->m_RelClient, cRect(0, -60, 50, 0));
    W->m_RelClient = cRect::Empty;
    W->CalcRects();
    EXPECT_EQ(W->m_RelClient, cRect::Zero);
    EXPECT_EQ(W->m_VScale, 1);
    W->m_FitWidth = true;
    W->m_MinFitWidth = 150;
    W->CalcRects();
    EXPECT_EQ(W->m_RelClient, cRect(0, 0, 150, 0));
    EXPECT_TRUE(W->m_HBarShown);
    W->m_VScroll = W->m_HScroll = false;
    W->CalcRects();
    EXPECT_EQ(W->m_RelClient, cRect(0, -120, 100, 0));
    W->m_VScroll = W->m_HScroll = true;
    for (const cRect& tiny : {cRect(10, 10, 10, 10), cRect(10, 10, 15, 12)}) {
        W->m_ClientBounds = tiny;
        Scroll(0, 0);
        EXPECT_FALSE(W->m_Client.IsEmpty());
        Press(100, 12); // wherever the bars are now, nothing runs away
        Mouse(100, -50);
        W->CalcRects();
        EXPECT_TRUE(std::isfinite(W->m_RelClient.x0) && std::isfinite(W->m_RelClient.y1));
    }
}

TEST_F(Wnd, ChildrenAreClipped) {
    Window* child = Child(W);
    child->m_Bounds = child->m_ClientBounds = {0, 100, 50, 200};
    child->CalcRects();
    EXPECT_EQ(child->m_ClippedBounds, cRect(10, 100, 50, 130));
    EXPECT_EQ(child->m_ScrollClip, cRect(10, 100, 50, 130));
    child->m_Bounds = {0, 0, 5, 5};
    child->CalcRects();
    EXPECT_EQ(child->m_ClippedBounds, cRect::Empty);
    W->m_ClientBounds = cRect::Empty;
    W->CalcRects();
    child->m_Bounds = {20, 20, 50, 50};
    child->CalcRects();
    EXPECT_EQ(child->m_ClippedBounds, cRect::Empty);
    Mouse(100, 100);
    EXPECT_EQ(W->m_HotPart, 0) << "no client, no bars";
}

TEST_F(Wnd, WhatIsUnderTheMouse) {
    const struct {
        float X, Y;
        int Part, Cursor;
    } rows[] = {
        {100, 100, 3, -1}, {94, 114, 3, -1}, {100, 50, 6, -1},  {100, 120, 9, -1},  {100, 30, 10, -1},
        {30, 20, 4, -1},   {60, 20, 8, -1},  {20, 20, 11, -1},  {85, 20, 12, -1},   {118, 60, 26, 2},
        {2, 60, 24, 2},    {50, 138, 25, 3}, {50, 2, 27, 3},    {3.9f, 125, 29, 5}, {4, 125, 0, -1},
        {118, 2, 28, 5},   {2, 2, 30, 4},    {118, 138, 31, 4}, {50, 80, 0, -1},    {120, 140, 31, 4},
        {115, 125, 0, -1}, {115, 15, 0, -1}, {5, 15, 0, -1},    {121, 60, 0, -1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.X << ' ' << row.Y);
        Mouse(row.X, row.Y);
        EXPECT_EQ(W->m_HotPart, row.Part);
        EXPECT_EQ(W->IsHot(false), row.X <= 120);
        auto cursor = cInput::Cursor::Default;
        EXPECT_EQ(W->OnSetCursor(&cursor), row.Cursor != -1);
        EXPECT_EQ(cursor, row.Cursor);
    }
    EXPECT_FALSE(W->IsHot(true));
}

TEST_F(Wnd, EveryPartOfABarSteps) {
    const struct {
        float X, Y;
        int Part;
        float Left, Top;
    } rows[] = {
        {100, 105, 5, -50, 0},  {100, 50, 6, -50, 196},  {30, 20, 7, 0, 100},    {70, 20, 8, -116, 100},
        {100, 120, 9, -50, 84}, {100, 30, 10, -50, 116}, {20, 20, 11, -34, 100}, {85, 20, 12, -66, 100},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Part);
        Scroll(-50, 100);
        Press(row.X, row.Y);
        EXPECT_EQ(W->m_DragPart, row.Part);
        EXPECT_EQ(LeftTop(), cVec2(row.Left, row.Top));
        EXPECT_TRUE(W->OnButtonUp(cInput::RightButton) && cWidgets::IsCaptured(W));
        EXPECT_TRUE(W->OnButtonUp(cInput::LeftButton)) << "it was captured";
        EXPECT_FALSE(W->OnButtonUp(cInput::LeftButton) || W->m_DragPart != 0);
    }
}

TEST_F(Wnd, HeldPartsRepeat) {
    Press(100, 30); // the lower arrow
    Wait(400);
    EXPECT_EQ(W->m_RelClient.y1, 16);
    Wait(150);
    EXPECT_EQ(W->m_RelClient.y1, 32);
    Wait(150);
    Mouse(50, 80);
    Wait(1000);
    EXPECT_EQ(W->m_RelClient.y1, 48);
    EXPECT_EQ(W->m_RepeatTimeSec, -1);
    Mouse(100, 30);
    Wait(1);
    EXPECT_EQ(W->m_RelClient.y1, 64) << "coming back steps at once";
    cWidgets::ReleaseCapture();
    Wait(1000);
    EXPECT_EQ(W->m_RelClient.y1, 64) << "held only while captured";

    Scroll(0, 0);
    Press(100, 50); // a page at a time, until the thumb is under the mouse
    EXPECT_EQ(W->m_RelClient.y1, 104);
    for (int i = 0; i < 3; i++) {
        Wait(600);
        EXPECT_EQ(W->m_RelClient.y1, 196);
    }
    EXPECT_EQ(W->m_DragPart, 6);
    EXPECT_EQ(W->m_RepeatTimeSec, -1);
}

TEST_F(Wnd, ThumbsArePulledToBothEnds) {
    Press(100, 100);
    Mouse(0, 90);
    EXPECT_NEAR(W->m_RelClient.y1, 46.875f, 1e-3f); // 10 / (64 / 300)
    Mouse(100, -900);
    EXPECT_NEAR(W->m_RelClient.y1, 196, 1e-3f);
    Mouse(100, 900);
    EXPECT_NEAR(W->m_RelClient.y1, 0, 1e-3f);
    W->OnButtonUp(cInput::LeftButton);
    Scroll(0, 0);
    Press(30, 20);
    Mouse(900, 900);
    EXPECT_NEAR(W->m_RelClient.x0, -116, 1e-3f);
}

TEST_F(Wnd, WheelAndPan) {
    Scroll(-116, 100);
    s_Mouse.Wheel = 2; // up
    W->Active = true;
    Press(50, 80, cInput::WheelUp);
    EXPECT_EQ(W->m_RelClient.y1, 20);
    Press(50, 20, cInput::WheelUp); // on the lower track: sideways
    EXPECT_EQ(W->m_RelClient.x0, -36);
    Mouse(500, 80);
    EXPECT_FALSE(W->OnButtonDown(cInput::WheelUp));
    W->m_WheelAnywhere = true;
    Press(500, 80, cInput::WheelUp);
    EXPECT_EQ(W->m_RelClient.y1, -60) << "the next layout brings it back";
    W->Active = false;
    EXPECT_FALSE(W->OnButtonDown(cInput::WheelUp));

    Scroll(-50, 100);
    Press(50, 80, cInput::MiddleButton);
    EXPECT_TRUE(W->Active);
    EXPECT_TRUE(W->OnButtonDown(cInput::WheelUp)) << "held: consumed";
    Mouse(40, 100);
    EXPECT_EQ(W->m_RelClient, cRect(-60, -180, 140, 120));
    auto cursor = cInput::Cursor::Default;
    EXPECT_TRUE(W->OnSetCursor(&cursor) && cursor == cInput::Cursor::Hand);
    W->OnButtonUp(cInput::LeftButton);
    EXPECT_EQ(W->m_DragPart, 16) << "not this button";
    W->OnButtonUp(cInput::MiddleButton);
    EXPECT_EQ(W->m_DragPart, 0);
    Press(2, 60, cInput::MiddleButton); // outside the client
    Press(2, 60, cInput::RightButton);
    EXPECT_FALSE(cWidgets::IsCaptured());
}

TEST_F(Wnd, BordersFollowTheMouse) {
    const struct {
        int Part;
        float X, Y;
        cRect Bounds; // after (-5, +7)
    } rows[] = {
        {24, 2, 60, {-5, 0, 120, 140}}, {25, 50, 138, {0, 0, 120, 147}},  {26, 118, 60, {0, 0, 115, 140}},
        {27, 50, 2, {0, 7, 120, 140}},  {28, 118, 2, {0, 7, 115, 140}},   {29, 2, 130, {-5, 0, 120, 147}},
        {30, 2, 2, {-5, 7, 120, 140}},  {31, 118, 138, {0, 0, 115, 147}},
    };
    for (const auto& row : rows) {
        W->m_Bounds = {0, 0, 120, 140};
        W->CalcRects();
        Press(row.X, row.Y);
        EXPECT_EQ(W->m_DragPart, row.Part);
        Mouse(row.X - 5, row.Y + 7);
        EXPECT_EQ(W->m_Bounds, row.Bounds) << row.Part;
        W->OnButtonUp(cInput::LeftButton);
    }
}

TEST_F(Wnd, DragsBeyondTheClientScroll) {
    W->m_EdgeScroll = true;
    const struct {
        float X, Y;
        int Part;
        float Left, Top; // from (-50, 100), after two steps
    } rows[] = {
        {50, 131, 9, -50, 68},
        {200, 25, 10, -50, 132},
        {95, 80, 12, -82, 100},
        {9, 80, 11, -18, 100},
    };
    cWidgets::SetCapture(W);
    W->m_DragPart = 100; // a subclass's own
    for (const auto& row : rows) {
        Scroll(-50, 100);
        Mouse(row.X, row.Y);
        Wait(0);
        EXPECT_EQ(W->m_EdgeScrollPart, row.Part);
        Wait(130);
        EXPECT_EQ(LeftTop(), cVec2(row.Left, row.Top)) << row.Part;
        Mouse(50, 80);
        Wait(0);
        EXPECT_EQ(W->m_EdgeScrollPart, 0);
    }
}

TEST_F(Wnd, DrawsItsBars) {
    W->OnRender();
    EXPECT_EQ(Theme.Drawn, "") << "not shown yet";
    W->CalcTends();
    Press(100, 30);
    W->OnRender();
    EXPECT_EQ(std::exchange(Theme.Drawn, {}), "1 5 6 3 9 10! 2 7 8 4 11 12 ");
    W->OnButtonUp(cInput::LeftButton);
    Press(100, 90);
    Mouse(0, 90);
    W->OnRender();
    EXPECT_EQ(std::exchange(Theme.Drawn, {}), "1 5 6 3! 9 10 2 7 8 4 11 12 ")
        << "a thumb also when the mouse is off it";
    Theme.Drawn.reserve(1000);
    const int allocations = AllocationCount();
    W->CalcRects();
    W->OnRender();
    EXPECT_EQ(AllocationCount(), allocations);
    Theme.Drawn.clear();
    W->m_ClippedBounds = cRect::Empty;
    W->OnRender();
    EXPECT_EQ(Theme.Drawn, "");
}

TEST_F(Wnd, ChainsAndTends) {
    Window* panel = Child(W);
    Window* control = Child(panel);
    EXPECT_EQ(control->m_Theme, &Theme);
    EXPECT_EQ(cWidgets::GetWidgetLayer(control), 5);
    EXPECT_EQ(control->GetLevel(), 2);
    EXPECT_TRUE(control->GetTopLevelParent() == W && !W->GetTopLevelParent());
    Window* last = Child(W);
    cList<cWnd*> all;
    W->ListChildren(&all, true);
    ASSERT_EQ(all.Count(), 3);
    EXPECT_TRUE(all[0] == panel && all[1] == control && all[2] == last);
    panel->Collapsed = true;
    W->ListChildren(&all, true);
    EXPECT_EQ(all.Count(), 5);

    control->OnTabStop();
    EXPECT_EQ(W->Focus, control);
    EXPECT_TRUE(control->HasFocus(control));
    Wait(125);
    control->CalcTends();
    EXPECT_EQ(control->m_CurVisible, 0.5f); // 4 a second
    EXPECT_EQ(control->m_CurEnabled, 1);
    panel->m_Visible = panel->m_Enabled = false;
    EXPECT_FALSE(control->IsVisible() || control->IsEnabled() || control->OnButtonDown(cInput::LeftButton));
    Wait(0);
    control->CalcTends();
    EXPECT_EQ(control->m_CurVisible, 0.5f) << "no time has passed";
    EXPECT_EQ(control->m_CurEnabled, 0) << "a jump needs none";
}

TEST_F(Wnd, WindowsGoInCallbacks) {
    Window* panel = Child(W);
    Child(Child(panel));
    const int bar = W->SetToolBar(new cToolBar(nullptr, true, true));
    Window* gone = Child(W);
    gone->Name = 'g';
    Child(W)->Name = 'l';
    panel->Name = 'p';
    Window::s_Log.clear();
    gone->Act = [&] { cWidgets::FreeWidget(gone, false); };
    cWidgets::BringToFront(W);
    EXPECT_EQ(Window::s_Log, "wp--gl");
    const cList<int>& order = cWidgets::GetLayerOrder(5);
    EXPECT_EQ(order[order.Count() - 1], bar & 0xFFFF) << "in front of the children";
    EXPECT_EQ(W->m_Children.Count(), 2);
    cWidgets::FreeWidget(panel, false);
    EXPECT_EQ(W->Cleared, 1 + 3) << "the form hears of all that go";
    EXPECT_EQ(Window::s_Alive, 2);

    Mouse(50, 80);
    W->Act = [&] { cWidgets::FreeWidget(W, false); }; // from its own press, with all its children
    EXPECT_TRUE(W->OnButtonDown(cInput::LeftButton));
    EXPECT_EQ(Window::s_Alive, 0);
    EXPECT_EQ(cWidgets::GetWidget(bar), nullptr);

    auto* root = new Window(nullptr, &Theme);
    cWidgets::AddWidget(root, 5);
    Window* child = Child(root);
    child->Act = [&] { cWidgets::FreeWidget(root, false); };
    cWidgets::BringToFront(root);
    EXPECT_EQ(Window::s_Alive, 0);
}

// A form must not keep the focus of what has left it.
TEST_F(Wnd, WhoLeavesGivesTheFocusUp) {
    auto* bar = new cToolBar(nullptr, true, true);
    W->SetToolBar(bar);
    Window* button = Child(bar);
    W->Focus = button;
    W->SetToolBar(new cToolBar(nullptr, true, true));
    EXPECT_EQ(W->Cleared, 2) << "the bar, and what is on it";

    Window* panel = Child(W);
    Window* edit = Child(panel);
    auto* other = new Window(nullptr, &Theme);
    cWidgets::AddWidget(other, 5);
    W->Cleared = 0;
    other->AddChild(panel);
    EXPECT_EQ(W->Cleared, 2);
    EXPECT_EQ(W->m_Children.Count(), 0);
    EXPECT_EQ(edit->GetTopLevelParent(), other);

    EXPECT_EQ(edit->AddChild(other), -1) << "nobody is beneath himself";
    EXPECT_EQ(edit->AddChild(edit), -1);
    Window* guest = Child(other);
    auto* host = new Window(nullptr, &Theme);
    cWidgets::AddWidget(host, 5);
    other->OnClearFocus = [&] { cWidgets::FreeWidget(host, false); }; // while it takes the guest in
    EXPECT_EQ(host->AddChild(guest), -1);
    EXPECT_EQ(guest->m_Parent, nullptr);
    other->OnClearFocus = nullptr;

    W->AddChild(W->m_ToolBar);
    EXPECT_EQ(W->m_ToolBar, nullptr) << "in one place";
    EXPECT_EQ(W->m_Children.Count(), 1);
}

TEST_F(Wnd, ContentWithinTheClientLeavesTheThumbOnTheTrack) {
    W->m_RelClient = {0, -50, 50, 0};
    W->m_HBarShown = W->m_VBarShown = false;
    W->CalcRects();
    EXPECT_EQ(W->m_VThumb, cRect(94, 26, 110, 114)); // of the whole track
    EXPECT_EQ(W->m_HThumb, cRect(26, 10, 94, 26));
    const float nan = std::nanf("");
    W->m_RelClient = {nan, 0, 50, nan};
    W->CalcRects();
    EXPECT_EQ(W->m_RelClient, cRect::Zero);
}

TEST_F(Wnd, NothingIsHeldWithoutTheCapture) {
    Window* other = Child(W);
    cWidgets::SetCapture(other);
    Press(100, 30);
    EXPECT_EQ(W->m_DragPart, 0);
    EXPECT_TRUE(cWidgets::IsCaptured(other));
}

} // namespace
