#include "tests/render/Allocations.h"
#include "tests/ui/FormStops.h"
#include "tests/ui/UiFixture.h"
#include "ui/cLabel.h"
#include "ui/cPanel.h"
#include "ui/cSeparator.h"
#include "ui/cToolBar.h"

#include <gtest/gtest.h>

using namespace trellis;

namespace {

/// A form whose client is (106, 126, 494, 435), 388 by 309, in the classic theme.
class Panel : public Ui {
protected:
    TestForm* New(const cTheme* theme) {
        auto* form = new TestForm(nullptr, {100, 100, 500, 460}, theme);
        form->m_FitWidth = true;
        cWidgets::AddWidget(form, 3);
        Frame();
        return form;
    }
    void Settle() {
        for (int i = 0; i < 4; i++) {
            Frame();
        }
    }
};

TEST_F(Panel, StacksItsRows) {
    TestForm* form = New(&Classic);
    auto* outer = Add(form, new cPanel(form, "", 0, 0, true, true));
    Stop* a = Add(outer, new Stop(outer));
    Add(outer, new Stop(outer))->m_Visible = false;
    auto* q = Add(outer, new cPanel(outer, "Q", 0, 0, true, true));
    auto* r = Add(outer, new cPanel(outer, "R", 0, 0, true, true));
    Stop* b = Add(outer, new Stop(outer));
    Stop* c = Add(q, new Stop(q));
    Settle();
    EXPECT_TRUE(outer->m_Headless && outer->m_Expanded && !q->m_Headless && !q->m_Expanded);
    EXPECT_EQ(a->m_RelBounds, cRect(172, -30, 252, -10)); // 388 * 160 / 360
    EXPECT_EQ(q->m_RelBounds, cRect(0, -61, 388, -40));
    EXPECT_EQ(r->m_RelBounds, cRect(0, -82, 388, -61)) << "flush with the other";
    EXPECT_EQ(b->m_RelBounds, cRect(172, -112, 252, -92));
    EXPECT_EQ(outer->m_RelBounds, cRect(0, -122, 388, 0));
    EXPECT_EQ(q->m_Title2, cRect(112, 374, 489, 395));
    EXPECT_EQ(q->m_Arrow2, cRect(112, 378, 125, 391));
    EXPECT_TRUE(c->m_Bounds.IsEmpty()) << "hidden beneath a closed panel";
    Classic.Recording = false;
    Frame();
    const int allocations = AllocationCount();
    cWidgets::Render(3);
    EXPECT_EQ(AllocationCount(), allocations);

    q->SetSimple(true);
    r->m_Expanded = true;
    Settle();
    EXPECT_EQ(q->m_RelBounds.Height(), 21 + 10 + 20 + 10);
    EXPECT_EQ(r->m_RelBounds.Height(), 21 + 2 * 10) << "without rows";
    EXPECT_EQ(c->m_Bounds.x0, a->m_Bounds.x0) << "one column at all levels";
    cWidgets::FreeWidget(b, false);
    Settle();
    EXPECT_EQ(outer->m_RelBounds.y0, r->m_RelBounds.y0) << "a panel is the last row";
    Classic.CenterRows = true;
    Settle();
    EXPECT_EQ(a->m_RelBounds, cRect(154, -30, 234, -10));
    EXPECT_EQ(c->m_RelBounds, cRect(138, -30, 218, -10)); // of 388 - 2 * 16
}

TEST_F(Panel, OpensAndCloses) {
    enum Where { OnRow, Beside };
    const struct {
        const char* Name;
        bool Focused, Simple;
        int Code;
        Where Press, Release;
        bool Classic, Fragile, Focus; // whether it opens, and has the focus then
    } rows[] = {
        {"click", false, false, cInput::LeftButton, OnRow, OnRow, true, true, true},
        {"released beside", false, false, cInput::LeftButton, OnRow, Beside, true, false, true},
        {"pressed beside", false, false, cInput::LeftButton, Beside, OnRow, false, false, false},
        {"right button", false, false, cInput::RightButton, OnRow, OnRow, false, false, true},
        {"key", true, false, cInput::Space, Beside, Beside, true, true, true},
        {"other key", true, false, cInput::Tilde, Beside, Beside, false, false, true},
        {"key without the focus", false, false, cInput::Enter, Beside, Beside, false, false, false},
        {"simple", false, true, cInput::LeftButton, OnRow, OnRow, false, false, true},
    };
    for (UiTheme* theme : {&Classic, &Fragile}) {
        theme->FocusFollowsMouse = false;
        for (const auto& row : rows) {
            SCOPED_TRACE(row.Name);
            TestForm* form = New(theme);
            auto* outer = Add(form, new cPanel(form, "", 0, 0, true, true));
            auto* panel = Add(outer, new cPanel(outer, "P", 0, 0, true, true));
            Settle();
            panel->m_Simple = row.Simple;
            form->SetFocus(row.Focused ? panel : nullptr);
            const cVec2 middle = panel->m_Title2.Center();
            const auto go = [&](Where where) { MoveTo(middle.x, where == OnRow ? middle.y : 150); };
            go(row.Press);
            Down(row.Code);
            EXPECT_EQ(panel->m_Expanded, row.Classic && theme == &Classic);
            go(row.Release);
            Up(row.Code);
            const bool opens = theme == &Classic ? row.Classic : row.Fragile;
            EXPECT_EQ(panel->m_Expanded, opens);
            EXPECT_EQ(form->Messages, opens ? "9 " : "");
            EXPECT_EQ(form->m_Focus == panel, row.Focus);
            EXPECT_FALSE(cWidgets::IsCaptured());
            form->OnMessage = [&] { cWidgets::FreeWidget(form, false); };
            panel->m_Simple = false;
            go(OnRow);
            Press(cInput::LeftButton); // it goes in its own message
            EXPECT_EQ(TestForm::s_Alive, 0);
            cWidgets::ReleaseCapture();
        }
    }
}

TEST_F(Panel, ToolBarSlides) {
    TestForm* form = New(&Classic);
    auto* bar = new cToolBar(form, true, true);
    form->SetToolBar(bar);
    auto* line = Add(bar, new cSeparator(bar, "", true));
    Stop* stops[5];
    for (Stop*& stop : stops) {
        stop = Add(bar, new Stop(bar)); // 80 and the insets of 6 and 5
    }
    Settle();
    EXPECT_EQ(bar->m_Bounds, cRect(106, 403, 494, 435));
    EXPECT_EQ(form->m_ClientBounds, cRect(106, 126, 494, 399));
    EXPECT_EQ(line->m_Bounds, cRect(106, 403, 114, 435));
    EXPECT_EQ(stops[1]->m_Pos, cVec2(99, -16));
    EXPECT_EQ(bar->m_MinScroll, 388 - (8 + 5 * 91));
    const struct { float Travel, Scroll; } rows[] = {{-30, -30}, {-500, -75}, {20, -55}, {500, 0}};
    for (const auto& row : rows) {
        MoveTo(300, 420);
        Down(cInput::MiddleButton);
        MoveTo(300 + row.Travel, 50);
        EXPECT_EQ(bar->m_Scroll, row.Scroll);
        EXPECT_EQ(cInput::GetCursor(), cInput::Cursor::Hand);
        Up(cInput::MiddleButton);
    }
    Settle();
    form->SetFocus(stops[4]);
    form->ScrollToFocusedControl();
    EXPECT_EQ(bar->m_Scroll, -80) << "with a margin";
    Settle();
    EXPECT_EQ(bar->m_Scroll, -75) << "no gap";
    stops[0]->m_Visible = false;
    Settle();
    EXPECT_EQ(bar->m_Scroll, 0);
    MoveTo(300, 420);
    Down(cInput::MiddleButton);
    EXPECT_FALSE(cWidgets::IsCaptured()) << "there is room for all";
    Up(cInput::MiddleButton);
    form->Minimize();
    Frame();
    EXPECT_TRUE(bar->m_ClippedBounds.IsEmpty() && stops[1]->m_ClippedBounds.IsEmpty());
}

TEST_F(Panel, PassiveRows) {
    TestForm* form = New(&Classic);
    const cStr value("5");
    auto* line = Add(form, new cSeparator(form, "Limits", true));
    auto* label = Add(form, new cLabel(form, &value, "Faces", 100, -40, cRect::LeftTop, true, true));
    Frame();
    EXPECT_EQ(line->m_Bounds, cRect(106, 418, 494, 435));
    EXPECT_EQ(label->m_RelBounds, cRect(100 - 5 - 30, -57, 220, -40)); // five glyphs of 6
    const auto* drawn = Classic.Find(cTheme::Parts::Label);
    ASSERT_TRUE(drawn && Classic.Find(cTheme::Parts::Separator));
    EXPECT_TRUE(drawn->Value == "5" && drawn->Text == "Faces");
    EXPECT_EQ(drawn->ValueRect, cRect(206, 378, 326, 395));
    label->Unbind();
    Frame();
    EXPECT_TRUE(Classic.Find(cTheme::Parts::Label)->ValueRect.IsEmpty());
    label->m_Text = "";
    Frame();
    EXPECT_EQ(label->m_RelBounds, cRect(100, -57, 220, -40));
    MoveTo(210, 380);
    EXPECT_FALSE(label->OnButtonDown(cInput::LeftButton) || label->IsHot(false));
}

} // namespace
