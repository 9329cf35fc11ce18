#include "tests/ui/FormStops.h"
#include "tests/ui/UiFixture.h"
#include "ui/cEdit.h"
#include "ui/cPanel.h"
#include "ui/cToolBar.h"
#include "view/cViewer.h"

#include <gtest/gtest.h>

using namespace trellis;

namespace {

class Form : public Ui {
protected:
    ~Form() override {
        cWidgets::ReleaseCapture();
        cWidgets::FreeAll();
        cRender::SetViewer(nullptr);
        EXPECT_EQ(TestForm::s_Alive, 0);
        EXPECT_EQ(cForm::s_Forms.Count(), 0);
    }
    TestForm* New(const cRect& bounds) {
        auto* form = new TestForm(nullptr, bounds, &Classic);
        cWidgets::AddWidget(form, 3);
        Frame();
        return form;
    }
    void Resize(float width, float height) {
        Viewer.Viewport = {0, 0, width, height};
        cRender::SetViewer(&Viewer);
        Frame();
    }
    void Drag(const cVec2& from, const cVec2& to) {
        MoveTo(from.x, from.y);
        Down(cInput::LeftButton);
        MoveTo(to.x, to.y);
    }
    std::string DrawnParts() const {
        std::string parts;
        for (const auto& args : Classic.Drawn) {
            parts += std::to_string(args.Part) + " ";
        }
        return parts;
    }

    cViewer Viewer;
};

TEST_F(Form, CornersKeepTheirDistances) {
    struct Step {
        float W, H;
        cRect Bounds;
    };
    const struct {
        const char* Name;
        cRect Bounds; // in 640 by 480
        std::vector<Step> Steps;
    } rows[] = {
        {"lower right", {400, 20, 620, 220}, {{500, 400, {260, 20, 480, 220}}, {640, 480, {400, 20, 620, 220}}}},
        {"centre", {210, 140, 430, 340}, {{500, 400, {140, 100, 360, 300}}, {800, 600, {290, 200, 510, 400}}}},
        {"two corners: stretched", {20, 20, 620, 460}, {{500, 400, {20, 20, 480, 380}}}},
        {"no room: into the regions", {20, 20, 620, 460}, {{300, 250, {20, 18, 280, 233}}}}, // 17.5 of the 20
        {"smaller than the least size",
         {20, 20, 620, 460},
         {{100, 100, {0, -80, 200, 100}}, {640, 480, {0, 0, 640, 480}}}},
        {"a hidden window", {20, 20, 620, 460}, {{0, 0, {20, 20, 620, 460}}, {640, 480, {20, 20, 620, 460}}}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        Resize(640, 480);
        TestForm* form = New(row.Bounds);
        EXPECT_EQ(form->m_Bounds, row.Bounds);
        for (const auto& step : row.Steps) {
            Resize(step.W, step.H);
            EXPECT_EQ(form->m_Bounds, step.Bounds) << step.W;
        }
        cWidgets::FreeWidget(form, false);
    }
}

TEST_F(Form, IsMovedAndSized) {
    const struct {
        const char* Name;
        cVec2 From, To;
        int Part;
        cRect Bounds;
        const char* Regions;
    } rows[] = {
        // from {100, 100, 400, 400}; the least size is 200 by 180
        {"title", {200, 387}, {230, 347}, 17, {130, 60, 430, 360}, "23 23 "},
        {"grip", {385, 110}, {415, 90}, 14, {100, 80, 430, 400}, "23 "},
        {"right, past the least", {398, 250}, {150, 250}, 26, {100, 100, 300, 400}, "23 "},
        {"left, past the least", {102, 250}, {390, 250}, 24, {200, 100, 400, 400}, "23 "},
        {"top, past the least", {250, 398}, {250, 110}, 25, {100, 100, 400, 280}, "23 "},
        {"bottom, past the least", {250, 102}, {250, 390}, 27, {100, 220, 400, 400}, "23 "},
        {"left and bottom, past both", {101, 101}, {390, 390}, 30, {200, 220, 400, 400}, "23 "},
        {"right and top, past both", {399, 399}, {110, 110}, 31, {100, 100, 300, 280}, "23 "},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        TestForm* form = New({100, 100, 400, 400});
        Drag(row.From, row.From);
        EXPECT_EQ(form->m_DragPart, row.Part);
        EXPECT_EQ(form->GetCurAlpha(), 0.5f);
        EXPECT_EQ(DrawnParts(), row.Regions + std::string("13 17 22 15 18 19 16 14 "));
        s_Mouse.Position = row.To; // moved and released in one frame
        cInput::Acquire();
        cInput::FreeEvents();
        form->OnMouseMove();
        form->OnButtonUp(cInput::LeftButton);
        EXPECT_EQ(form->m_Bounds, row.Bounds);
        Up(cInput::LeftButton);
        EXPECT_EQ(form->m_Bounds, row.Bounds) << "when the drag is over";
        EXPECT_TRUE(form->GetCurAlpha() == 1 && !cWidgets::IsCaptured());
        cWidgets::FreeWidget(form, false);
    }
    New({100, 100, 400, 400});
    MoveTo(385, 110);
    Frame();
    EXPECT_EQ(cInput::GetCursor(), cInput::Cursor::OtherDiagonal) << "over the grip";
}

TEST_F(Form, States) {
    const cRect normal(100, 100, 400, 400), small(240, 374, 400, 400), large(-4, -4, 644, 484);
    TestForm* form = New(normal);
    Click(352, 387); // minimise
    EXPECT_EQ(form->m_Bounds, small);
    EXPECT_EQ(DrawnParts(), "13 17 22 15 20 19 ");
    DoubleClick(260, 387);
    EXPECT_EQ(form->m_Bounds, normal);
    DoubleClick(260, 387);
    EXPECT_EQ(form->m_Bounds, large);
    EXPECT_EQ(DrawnParts(), "13 17 22 15 18 21 16 ");
    EXPECT_FALSE(form->m_Sizable || cWidgets::IsCaptured());
    Drag({300, 470}, {200, 300});
    EXPECT_EQ(form->m_Bounds, large) << "it cannot be moved";
    Up(cInput::LeftButton);
    form->Minimize();
    DoubleClick(260, 387);
    EXPECT_EQ(form->m_Bounds, large) << "back to where it came from";
    form->Minimize();
    Drag({260, 387}, {20, 20});
    EXPECT_EQ(DrawnParts(), "23 13 17 22 15 20 19 ");
    Up(cInput::LeftButton);
    Resize(500, 400);
    EXPECT_EQ(form->m_Bounds, cRect(0, 7, 160, 33)) << "now docked to the lower left";

    TestForm fresh(nullptr, normal, &Classic); // before its first frame
    fresh.Minimize();
    fresh.Minimize();
    EXPECT_EQ(fresh.m_Bounds, normal);
}

TEST_F(Form, Closes) {
    TestForm* form = New({100, 100, 400, 400});
    auto* child = new TestForm(form, {150, 150, 350, 350}, nullptr);
    form->AddChild(child);
    Stop* stop = Add(form, new Stop(form));
    Drag({386, 387}, {300, 300});
    Up(cInput::LeftButton);
    EXPECT_FALSE(form->m_Closed) << "released elsewhere";
    MoveTo(110, 370);
    Down(cInput::LeftButton);
    child->Close();
    EXPECT_TRUE(cWidgets::IsCaptured(stop)) << "it is not of that form";
    form->Close();
    EXPECT_FALSE(cWidgets::IsCaptured() || form->IsActive() || stop->IsVisible());
    Frame();
    EXPECT_EQ(TestForm::s_Alive, 0);
    form = New({100, 100, 400, 400});
    Drag({200, 387}, {220, 387});
    form->Close();
    Frame();
    EXPECT_TRUE(TestForm::s_Alive == 0 && !cWidgets::IsCaptured());
}

TEST_F(Form, ClicksRaiseTheChain) {
    const cRect bounds(110, 130, 380, 370);
    TestForm* first = New({100, 100, 400, 400});
    first->m_VScroll = first->m_HScroll = false;
    auto* child = new TestForm(first, bounds, nullptr);
    first->AddChild(child);
    Stop* stop = Add(child, new Stop(child));
    Add(first, new Stop(first));
    TestForm* second = New({410, 100, 630, 400});
    EXPECT_TRUE(second->IsActive() && !first->IsActive() && !child->IsActive());
    child->SetFocus(stop);
    EXPECT_FALSE(child->HasFocus(stop)) << "not active";
    Click(stop->m_Bounds.x0 + 5, stop->m_Bounds.y0 + 5);
    EXPECT_TRUE(child->IsActive() && first->IsActive() && !second->IsActive());
    EXPECT_TRUE(child->HasFocus(stop) && !first->HasFocus(stop) && !child->HasFocus(nullptr));
    const cList<int>& order = cWidgets::GetLayerOrder(3);
    EXPECT_EQ(cWidgets::GetWidget(3 << 16 | order[order.Count() - 1]), stop);
    stop->m_Enabled = false;
    EXPECT_TRUE(!child->HasFocus(stop) && child->HasFocusNoEnabled(stop));
    cWidgets::ReleaseCapture();
    first->Minimize();
    Frame();
    EXPECT_TRUE(child->m_ClippedBounds.IsEmpty() && stop->m_Bounds.IsEmpty());
    first->Minimize();
    Frame();
    EXPECT_EQ(child->m_Bounds, bounds);
    cWidgets::FreeWidget(stop, false);
    EXPECT_EQ(child->m_Focus, nullptr);
}

TEST_F(Form, Tabbing) {
    TestForm* form = New({100, 100, 400, 400});
    auto* bar = new cToolBar(form, true, true);
    form->SetToolBar(bar);
    Stop* a = Add(form, new Stop(form));
    auto* headless = Add(form, new cPanel(form, "", 0, 0, true, true));
    auto* panel = Add(headless, new cPanel(headless, "Panel", 0, 0, true, true));
    Stop *b = Add(panel, new Stop(panel)), *e = Add(form, new Stop(form, -900));
    Add(form, new Stop(form))->m_Visible = false;
    Add(form, new Stop(form, -2000))->m_Enabled = false;
    Stop* t = Add(bar, new Stop(bar));
    const struct {
        bool Wraps, Expanded;
        cWnd* From;
        int Code;
        cWnd* To;
    } rows[] = {
        // in this order: t, a, panel, b, e
        {false, true, nullptr, cInput::Tab, t},   {false, true, nullptr, cInput::Up, nullptr},
        {false, true, t, cInput::Tab, a},         {false, true, panel, cInput::Down, b},
        {false, false, panel, cInput::Tab, e},    {false, true, e, cInput::Tab, e},
        {false, true, e, cInput::LeftThumbUp, b}, {false, false, e, cInput::Up, panel},
        {false, true, t, cInput::Up, t},          {true, true, e, cInput::LeftThumbDown, t},
        {true, true, t, cInput::RightThumbUp, e}, {true, true, nullptr, cInput::Up, e},
    };
    for (const auto& row : rows) {
        Classic.TabWraps = row.Wraps;
        panel->m_Expanded = row.Expanded;
        form->SetFocus(row.From);
        EXPECT_TRUE(form->OnChar(-1, row.Code));
        EXPECT_EQ(form->m_Focus, row.To) << "row " << &row - rows;
    }
    EXPECT_FALSE(form->OnChar('x', cInput::X));
    panel->m_Enabled = false;
    form->SetFocus(a);
    form->GoTab(true);
    EXPECT_EQ(form->m_Focus, panel) << "a disabled panel, and nothing beneath it";
    form->GoTab(true);
    Frame();
    EXPECT_EQ(e->m_Bounds.y0, form->m_Client.y0 + 10) << "scrolled to";
    s_Gamepad.IsDown[cInput::LeftThumbLeft - cInput::DpadUp] = true;
    Frame();
    EXPECT_FALSE(form->OnChar(-1, cInput::RightThumbDown));
    New({410, 100, 630, 400});
    EXPECT_FALSE(form->OnChar(-1, cInput::Tab)) << "not active";
}

// What is opened before the first frame comes out where it was asked to be.
TEST_F(Form, OpensInOneFrame) {
    auto* parent = new TestForm(nullptr, {0, 0, 640, 480}, &Classic);
    cWidgets::AddWidget(parent, 3);
    parent->m_FitWidth = true;
    auto* panel = new cPanel(parent, "", 0, 0, true, true);
    parent->AddChild(panel);
    for (int i = 0; i < 13; i++) {
        panel->AddChild(new Stop(panel));
    }
    const cRect wanted(110, 150, 380, 370);
    auto* child = new TestForm(parent, wanted, nullptr);
    parent->AddChild(child);
    auto* folded = new TestForm(parent, wanted, nullptr);
    parent->AddChild(folded);
    folded->Minimize(); // ahead of its base
    for (int i = 0; i < 3; i++) {
        Frame();
        EXPECT_EQ(child->m_Bounds, wanted);
    }
    folded->Minimize();
    EXPECT_EQ(folded->m_Bounds, wanted);

    Resize(0, 0);
    TestForm* hidden = New({50, 50, 400, 350});
    for (int i = 0; i < 3; i++) {
        hidden->Maximize();
        Frame();
    }
    Resize(640, 480);
    EXPECT_EQ(hidden->m_Bounds, cRect(-4, -4, 644, 484));
    hidden->Maximize();
    EXPECT_EQ(hidden->m_Bounds, cRect(50, 50, 400, 350));
}

TEST_F(Form, ChildFormsHaveTheirOwnTabs) {
    TestForm* parent = New({0, 0, 640, 480});
    Stop* a = Add(parent, new Stop(parent));
    auto* child = new TestForm(nullptr, {20, 20, 300, 300}, &Classic); // a root form at first
    EXPECT_EQ(cForm::s_Forms.Count(), 2);
    parent->AddChild(child);
    EXPECT_EQ(cForm::s_Forms.Count(), 1);
    Stop* inner = Add(child, new Stop(child));
    Stop* other = Add(child, new Stop(child, -30));
    Stop* b = Add(parent, new Stop(parent, -30));
    parent->Activate();
    for (const Stop* next : {a, b, a}) {
        Press(cInput::Tab);
        EXPECT_EQ(parent->m_Focus, next);
    }
    child->Activate();
    for (const Stop* next : {inner, other, inner}) {
        Press(cInput::Tab);
        EXPECT_EQ(child->m_Focus, next);
    }
    EXPECT_EQ(parent->m_Focus, a);
    cStr text;
    auto* edit = Add(child, new cEdit(child, &text, "", 0, -60, 0, true, true));
    edit->OnTabStop();
    Press(cInput::Tab); // within its own form
    EXPECT_EQ(child->m_Focus, inner);
    parent->Minimize();
    Frame();
    Press(cInput::Tab); // nothing is to be seen
    EXPECT_EQ(child->m_Focus, inner);
}

TEST_F(Form, ScrollsByTwoTabsOfOneFrame) {
    TestForm* form = New({0, 0, 240, 240});
    auto* bar = new cToolBar(form, true, true);
    form->SetToolBar(bar);
    for (int i = 0; i < 5; i++) {
        bar->AddChild(new Stop(bar));
    }
    Frame();
    Frame();
    for (int i = 0; i < 4; i++) {
        form->GoTab(true);
    }
    const float at = bar->m_Scroll;
    EXPECT_LT(at, 0);
    Frame();
    form->ScrollToFocusedControl();
    EXPECT_EQ(bar->m_Scroll, at);
}

} // namespace
