#include "render/cRender.h"
#include "tests/render/Allocations.h"
#include "tests/ui/UiFixture.h"
#include "ui/cComboBox.h"
#include "ui/cComboBoxDropDown.h"
#include "view/cViewer.h"

using namespace trellis;

namespace {

cList<cStr> Items(int count) {
    cList<cStr> items;
    for (int i = 0; i < count; i++) {
        items.Add(cStr::Format("%d", i));
    }
    return items;
}

/// In the classic theme the box is (100, 379, 220, 400), and a row of its list 15 high.
class Combo : public Ui {
public:
    cComboBox* Box(const UiTheme& theme, int items, float y = 0) {
        Root = NewRoot(&theme);
        return B = Add(Root, new cComboBox(Root, &Value, Items(items), "", 0, y, 0, true, true));
    }
    cComboBoxDropDown* List() const {
        auto* list = dynamic_cast<cComboBoxDropDown*>(cWidgets::GetWidget(B->m_DropDownID));
        return list && list->IsOpenFor(B) ? list : nullptr;
    }
    static cVec2 Row(const cComboBoxDropDown* list, int row) {
        const float height = list->m_Theme->ComboItemHeight;
        return {list->m_Client.x0 + 5, list->m_AbsClient.y1 - (float(row) + 0.5f) * height};
    }
    void MoveTo(const cVec2& p) { Ui::MoveTo(p.x, p.y); }
    /// Places of the mouse, and keys: "+" down, "-" up, neither for both.
    void Do(const std::string& steps) {
        for (size_t at = 0; at < steps.size();) {
            const size_t end = std::min(steps.find(' ', at), steps.size());
            const std::string step = steps.substr(at, end - at), code = step.substr(step[0] == '+' || step[0] == '-');
            at = end + 1;
            const auto of = [](const std::string& name) {
                return name == "Mouse" ? cInput::LeftButton : cInput::ToCode(name.c_str());
            };
            if (step == "Box") {
                MoveTo(B->m_ValueRect.Center());
            } else if (step == "Out") {
                MoveTo({450, 120});
            } else if (step.starts_with("Row")) {
                MoveTo(Row(List(), step[3] - '0'));
            } else if (step[0] == '+') {
                Down(of(code));
            } else if (step[0] == '-') {
                Up(of(code));
            } else {
                Press(of(code));
            }
        }
    }

    UiRoot* Root = nullptr;
    cComboBox* B = nullptr;
    int Value = 1;
};

} // namespace

TEST_F(Combo, OpensAndChooses) {
    // Steps, and the value then; "open" when the list is.
    cList<cStr> rows;
    cStr::Split("Box +Mouse Row2 -Mouse = 2; Box Mouse Row0 Mouse = 0; Box Mouse Row1 Mouse = 1; "
                "Box +Mouse Out -Mouse = 1 open; Box Mouse Row0 +Mouse Out -Mouse = 1 open; "
                "Box Mouse Box Mouse = 1; Box Mouse Out Mouse = 1; Box Mouse Out RightButton = 1; "
                "Box RightButton = 1; Box Mouse Row0 Esc = 1; Box +Mouse Row0 Esc -Mouse = 1; Box Mouse (B) = 1; "
                "+Enter -Enter = 1 open; Enter Down +Enter = 1 open; Enter Down Enter = 2; Space Up Space = 0; "
                "(A) Up (A) = 0; +Enter Row2 Mouse = 2; Enter Up Tab = 0; Enter Down Down Down Enter = 2; "
                "Enter Up Up Up Enter = 0; Enter Row0 Down Enter = 1; Enter A Left Right PageDown Start = 1 open; "
                "Right = 2; Left Left = 0; Enter Esc Enter = 1 open; Enter LeftThumbDown Enter = 2; RightThumbLeft = 0",
                &rows, ";");
    for (const UiTheme* theme : {&Classic, &Fragile}) {
        for (const cStr& text : rows) {
            const std::string row = text.Text() + (text[0] == ' ');
            SCOPED_TRACE(row + (theme == &Fragile ? ", fragile" : ", classic"));
            const size_t then = row.find(" = ");
            const int value = row[then + 3] - '0';
            const bool isOpen = row.ends_with("open");
            Value = 1;
            Box(*theme, 3);
            Ui::MoveTo(450, 120);
            Root->Focus = B;
            Do(row.substr(0, then));
            EXPECT_EQ(Value, value);
            EXPECT_EQ(Root->TakeMessages(), value == 1 ? "" : "3:1>" + std::to_string(value) + " ");
            EXPECT_EQ(List() != nullptr, isOpen);
            EXPECT_EQ(theme->Find(cTheme::Parts::ComboBox)->Toggled, isOpen);
            Do("-Mouse -Enter");
            EXPECT_EQ(Root->Focus, B);
            EXPECT_FALSE(cWidgets::IsCaptured());
            cWidgets::FreeWidget(Root, false);
            Frame();
            EXPECT_EQ(cWidgets::GetLayerOrder(cWidgets::ToolTipLayer).Count(), 0) << "no list is left";
        }
    }
}

TEST_F(Combo, WhoCaptures) {
    const struct {
        const UiTheme* Theme;
        int Code;
        bool Box;
    } rows[] = {{&Classic, cInput::LeftButton, false},
                {&Fragile, cInput::LeftButton, true},
                {&Classic, cInput::Enter, true},
                {&Classic, cInput::ButtonA, true},
                {&Fragile, cInput::Space, true}};
    for (const auto& row : rows) {
        Box(*row.Theme, 3);
        Root->Focus = B;
        Root->Active = false;
        Do("Box");
        Down(row.Code);
        EXPECT_TRUE(Root->Active);
        EXPECT_TRUE(List()->IsHot(true) == row.Box) << "although the box is, too";
        EXPECT_EQ(cWidgets::IsCaptured(B), row.Box);
        EXPECT_EQ(cWidgets::IsCaptured(List()), !row.Box);
        EXPECT_EQ(List()->m_DragPart, row.Box ? 0 : int(cTheme::Parts::DropDown));
        Do("Row2");
        EXPECT_EQ(List()->m_CurSel, 2);
        EXPECT_EQ(row.Theme->Find(cTheme::Parts::DropDown)->SelStart, 2);
        Frame(600); // a key repeats
        Up(row.Code);
        EXPECT_EQ(List() != nullptr, row.Code != cInput::LeftButton) << "the key that has opened it does not choose";
        cWidgets::FreeWidget(Root, false);
    }
}

TEST_F(Combo, ClosedBoxRepeats) {
    Box(Classic, 9);
    Root->Focus = B;
    Down(cInput::Right);
    Frame(450);
    EXPECT_EQ(Root->TakeMessages(), "3:1>2 3:2>3 ");
    EXPECT_TRUE(cWidgets::IsCaptured(B));
    EXPECT_FALSE(B->HandleSelection(cInput::Down));
    Up(cInput::Right);
    EXPECT_FALSE(cWidgets::IsCaptured());
    for (const int code : {cInput::LeftThumbRight, cInput::RightThumbRight}) {
        EXPECT_TRUE(B->HandleSelection(code));
    }
    for (const int code : {cInput::LeftThumbLeft, cInput::RightThumbLeft, cInput::Left}) {
        EXPECT_TRUE(B->HandleSelection(code));
    }
    EXPECT_EQ(Value, 2);
    Value = 1 << 30;
    B->HandleSelection(cInput::Right);
    EXPECT_EQ(Value, 8);
    Value = -5;
    Frame();
    EXPECT_EQ(Classic.Find(cTheme::Parts::ComboBox)->Value, "");
    B->Unbind();
    Do("Enter Down Enter Left");
    B->SetItems({});
    Do("Enter Left");
    EXPECT_TRUE(!List() && Value == -5);
    EXPECT_EQ(B->m_RelBounds, cRect(0, -21, 120, 0));
}

TEST_F(Combo, PlacesTheList) {
    const struct {
        const char* Name;
        cRect Viewport;
        int Items;
        cRect Bounds;
        float Scroll; // by which the last row but one is seen
    } rows[] = {{"below", {0, 0, 640, 480}, 3, {100, 334, 220, 379}, 0},
                {"longer than it shows", {0, 0, 640, 480}, 20, {100, 259, 220, 379}, 165},
                {"above", {0, 350, 640, 480}, 3, {100, 400, 220, 445}, 0},
                {"little room on either side", {0, 340, 640, 480}, 9, {100, 400, 220, 475}, 45},
                {"at the right edge", {0, 0, 210, 480}, 3, {90, 334, 210, 379}, 0},
                {"no room", {0, 375, 640, 410}, 3, {100, 375, 220, 390}, 15}};
    cViewer viewer;
    cRender::SetViewer(&viewer);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        viewer.Viewport = row.Viewport;
        Value = row.Items - 2;
        Box(Classic, row.Items);
        Root->Focus = B;
        Do("Enter");
        EXPECT_EQ(List()->m_Bounds, row.Bounds);
        EXPECT_EQ(List()->m_RelClient.y1, row.Scroll);
        EXPECT_EQ(List()->m_VBarShown, row.Bounds.Height() < float(row.Items) * 15);
        EXPECT_EQ(Classic.Find(cTheme::Parts::DropDown)->ScrollX, row.Scroll);
        cWidgets::FreeWidget(Root, false);
    }
    viewer.Viewport = {0, 0, 640, 480};
    Box(Fragile, 20);
    B->m_Items[0] = "a caption of forty characters, as it seems";
    Do("Box Mouse");
    EXPECT_GT(List()->m_Bounds.Width(), 42 * 6 + Fragile.VScrollBarOffset.x);
    EXPECT_EQ(List()->m_VBar.x1, List()->m_Bounds.x1) << "beside the rows";
    const int before = AllocationCount();
    Fragile.Recording = false;
    List()->OnRender();
    EXPECT_EQ(AllocationCount(), before);
    EXPECT_EQ(List()->m_Items.Count(), 20) << "lent to the theme, and back";
    cRender::SetViewer(nullptr);
}

TEST_F(Combo, Scrolls) {
    Value = 0;
    Box(Classic, 20);
    Do("Box Mouse Row3");
    Wheel(-1);
    Frame();
    EXPECT_EQ(List()->m_RelClient.y1, Classic.WheelScrollSpeed);
    EXPECT_EQ(List()->m_CurSel, 3 + int(std::floor((Classic.WheelScrollSpeed + 7.5f) / 15)));
    Wheel(1);
    MoveTo(List()->m_VArrows[1].Center());
    Do("Mouse");
    EXPECT_EQ(List()->m_RelClient.y1, Classic.ArrowScrollSpeed) << "and it stays open";
    Do("Row5 +Mouse");
    Ui::MoveTo(110, 100); // below the list
    Frame(1000);
    EXPECT_GT(List()->m_RelClient.y1, Classic.ArrowScrollSpeed);
    Do("-Mouse Esc Box +Mouse");
    List()->m_RelClient.Translate({0, 30});
    Frame(1000);
    EXPECT_EQ(List()->m_RelClient.y1, 30) << "held from the box, which is above";
    Do("-Mouse");
    for (int i = 0; i < 8; i++) {
        Do("Down");
    }
    EXPECT_EQ(List()->m_CurSel, 8);
    EXPECT_EQ(List()->m_RelClient.y1, 15) << "row 1 at the top, and row 8 in view";
    Do("Down Down");
    EXPECT_EQ(List()->m_RelClient.y1, 45) << "row 10 at the bottom";
}

TEST_F(Combo, ListGoesWithItsBox) {
    const struct {
        const char* Name;
        void (*Act)(Combo*);
    } rows[] = {{"freed", [](Combo* c) { cWidgets::FreeWidget(c->B, false); }},
                {"its root freed", [](Combo* c) { cWidgets::FreeWidget(c->Root, false); }},
                {"other items", [](Combo* c) { c->B->SetItems(Items(2)); }},
                {"hidden", [](Combo* c) { c->Root->m_Visible = false; }},
                {"disabled", [](Combo* c) { c->B->m_Enabled = false; }},
                {"minimised", [](Combo* c) { c->Root->State = 0; }},
                {"out of sight", [](Combo* c) { c->Root->m_ClientBounds = cRect::Empty; }},
                {"freed by its message", [](Combo* c) {
                     static cComboBox* s_Box;
                     s_Box = c->B;
                     c->Root->OnMessage = [] { cWidgets::FreeWidget(s_Box, false); };
                     c->Do("Row2 Mouse");
                 }}};
    for (const UiTheme* theme : {&Classic, &Fragile}) {
        for (const auto& row : rows) {
            SCOPED_TRACE(row.Name);
            Box(*theme, 3);
            Do("Box +Mouse");
            ASSERT_TRUE(List());
            row.Act(this);
            Frame();
            Up(cInput::LeftButton);
            Frame();
            EXPECT_EQ(cWidgets::GetLayerOrder(cWidgets::ToolTipLayer).Count(), 0);
            EXPECT_FALSE(cWidgets::IsCaptured());
            cWidgets::FreeAll();
        }
    }
}

TEST_F(Combo, Menu) {
    static std::string s_Reports;
    const struct {
        const char* Name;
        void (*Act)(Combo*, cComboBoxDropDown*);
        const char* Reports;
    } rows[] = {
        {"chosen by mouse", [](Combo* c, cComboBoxDropDown* m) { c->MoveTo(Row(m, 2)), c->Do("Mouse"); }, "2 "},
        {"by keys, over one that is disabled", [](Combo* c, cComboBoxDropDown*) { c->Do("Down Down Enter"); }, "2 "},
        {"a disabled one", [](Combo* c, cComboBoxDropDown* m) { c->MoveTo(Row(m, 1)), c->Do("Mouse Enter"); }, ""},
        {"Esc, once", [](Combo* c, cComboBoxDropDown*) { c->Do("Esc Esc"); }, "-1 "},
        {"press elsewhere", [](Combo* c, cComboBoxDropDown*) { c->Do("Out Mouse"); }, "-1 "},
        {"Tab without a row", [](Combo* c, cComboBoxDropDown*) { c->Do("Tab"); }, "-1 "}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        s_Reports.clear();
        Ui::MoveTo(10, 10);
        auto* menu = new cComboBoxDropDown([](int item) { s_Reports += std::to_string(item) + " "; }, Items(3), 630, 20,
                                           &Classic);
        menu->m_ItemFlags.Add(0);
        menu->m_ItemFlags.Add(1);
        cWidgets::AddWidget(menu, cWidgets::ToolTipLayer);
        Frame();
        EXPECT_EQ(menu->m_Bounds.y0, 0);
        EXPECT_EQ(menu->m_Bounds.x1, 640);
        row.Act(this, menu);
        EXPECT_EQ(s_Reports, row.Reports);
        cWidgets::FreeAll();
    }
}
