#include "tests/ui/UiFixture.h"
#include "ui/cBindButton.h"
#include "ui/cButton.h"
#include "ui/cCheckBox.h"

#include <gtest/gtest.h>

using namespace trellis;

namespace {

using Parts = cTheme::Parts;
constexpr cVec2 s_In(150, 380), s_Out(300, 200); // of a button of 75 by 23 at (110, 390)

class Buttons : public Ui {
protected:
    cButton* NewButton(const char* text = "Apply") {
        return Add(Root, new cButton(Root, text, 10, -10, cRect::LeftTop, true, true));
    }
    UiRoot* Root = NewRoot(&Classic);
};

TEST_F(Buttons, PressCycle) {
    enum Change { None, Disable, Hide, Minimise, MinimiseHeld, OtherUp };
    const struct {
        const char* Name;
        int Code;
        bool HasFocus;
        cVec2 DownAt, UpAt;
        Change What;
        bool Captures;
        const char* Messages;
    } rows[] = {
        {"inside", cInput::LeftButton, false, s_In, s_In, None, true, "0 "},
        {"released outside", cInput::LeftButton, false, s_In, s_Out, None, true, ""},
        {"pressed outside", cInput::LeftButton, true, s_Out, s_In, None, false, ""},
        {"right button", cInput::RightButton, false, s_In, s_In, None, false, ""},
        {"Enter", cInput::Enter, true, s_Out, s_Out, None, true, "0 "},
        {"Space", cInput::Space, true, s_Out, s_Out, None, true, "0 "},
        {"gamepad", cInput::ButtonA, true, s_Out, s_Out, None, true, "0 "},
        {"another key", cInput::B, true, s_In, s_In, None, false, ""},
        {"a key without the focus", cInput::Enter, false, s_In, s_In, None, false, ""},
        {"disabled", cInput::LeftButton, false, s_In, s_In, Disable, false, ""},
        {"parent hidden", cInput::LeftButton, false, s_In, s_In, Hide, false, ""},
        {"minimised", cInput::Enter, true, s_In, s_In, Minimise, false, ""},
        {"minimised while held", cInput::LeftButton, false, s_In, s_In, MinimiseHeld, true, ""},
        {"minimised while a key holds", cInput::Enter, true, s_In, s_In, MinimiseHeld, true, "0 "},
        {"another key goes up", cInput::LeftButton, false, s_In, s_Out, OtherUp, true, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        Root = NewRoot(&Classic);
        Root->Active = false;
        cButton* b = NewButton();
        Root->Focus = row.HasFocus ? b : nullptr;
        b->m_Enabled = row.What != Disable;
        Root->m_Visible = row.What != Hide;
        Root->State = row.What != Minimise;
        MoveTo(row.DownAt.x, row.DownAt.y);
        Down(row.Code);
        EXPECT_EQ(cWidgets::IsCaptured(b), row.Captures);
        EXPECT_TRUE(Root->Active || !row.Captures);
        EXPECT_EQ(Root->Focus == b, row.HasFocus || row.Captures || row.Code == cInput::RightButton);
        if (row.What == MinimiseHeld) {
            Root->State = 0;
            Root->m_ClientBounds = cRect::Empty;
        } else if (row.What == OtherUp) {
            EXPECT_TRUE(b->OnButtonUp(cInput::Enter));
        }
        MoveTo(row.UpAt.x, row.UpAt.y);
        EXPECT_EQ(Root->TakeMessages(), "");
        Up(row.Code);
        EXPECT_FALSE(cWidgets::IsCaptured());
        EXPECT_EQ(Root->TakeMessages(), row.Messages);
        EXPECT_EQ(b->m_PressCode, row.Captures && !*row.Messages ? row.Code : -1); // stays until the next press
        cWidgets::FreeWidget(Root, false);
    }
}

TEST_F(Buttons, HeldKeysAreNobodyElses) {
    cButton* button = NewButton();
    for (const int code : {int(cInput::Enter), int(cInput::ButtonA)}) {
        Root->Focus = button;
        Down(code);
        for (int i = 0; i < 20; i++) {
            Frame(100); // the key repeats
        }
        Press(cInput::Tab);
        EXPECT_EQ(Root->TakeMessages(), "");
        Up(code);
        EXPECT_EQ(Root->TakeMessages(), "0 ");
    }
    Root->Focus = nullptr;
    Down(cInput::ButtonA);
    Root->Focus = button; // what the press has brought up
    Frame(1000);
    Up(cInput::ButtonA);
    EXPECT_EQ(Root->TakeMessages(), "");
}

TEST_F(Buttons, FocusFollowsTheMouseOnceItMoves) {
    UiRoot* root = NewRoot(&Fragile);
    auto* a = Add(root, new cButton(root, "A", 10, -10, cRect::LeftTop, true, true));
    auto* b = Add(root, new cButton(root, "B", 10, -80, cRect::LeftTop, true, true));
    MoveTo(a->m_BaseBounds.Center().x, a->m_BaseBounds.Center().y);
    EXPECT_EQ(root->Focus, a);
    root->Focus = b; // by the keys
    Frame();
    EXPECT_EQ(root->Focus, b);
    MoveTo(s_Mouse.Position.x + 1, s_Mouse.Position.y);
    EXPECT_EQ(root->Focus, a);
    MoveTo(450, 120);
    root->Focus = b;
    cWidgets::SetCapture(root);
    MoveTo(a->m_BaseBounds.Center().x, a->m_BaseBounds.Center().y);
    EXPECT_EQ(root->Focus, b);
    cWidgets::ReleaseCapture(); // now it may
    Frame();
    EXPECT_EQ(root->Focus, a);
}

TEST_F(Buttons, SizesAndTips) {
    EXPECT_EQ(NewButton("Apply")->m_ValueRect, cRect(110, 367, 185, 390));
    EXPECT_EQ(NewButton("Apply to everything")->m_ValueRect, cRect(110, 367, 110 + 19 * 6 + 10, 390));
    for (const bool arrow : {false, true}) {
        auto* icon = new cButton(Root, cTheme::ToolBarIcon::Save, arrow, "Save", 200, -10, cRect::LeftTop, true, true);
        EXPECT_EQ(Add(Root, icon)->m_RelBounds.Size(), arrow ? cVec2(29, 23) : cVec2(32, 30));
        cStr text;
        const cTheme* theme = nullptr;
        icon->m_Hot.Cur = 0.99f;
        EXPECT_FALSE(icon->OnSetToolTip(&text, &theme));
        icon->m_Hot.Cur = 1;
        EXPECT_TRUE(icon->OnSetToolTip(&text, &theme) && text == "Save" && theme == &Classic);
        Click(310, 380);
        EXPECT_EQ(Root->TakeMessages(), "0 ");
        EXPECT_EQ(Root->Focus, nullptr);
    }
}

TEST_F(Buttons, GrowUnderTheMouse) {
    Root = NewRoot(&Fragile);
    cButton* b = NewButton();
    const float hot = Fragile.ButtonHotGrow;
    EXPECT_EQ(b->m_Bounds.x0, 110);
    EXPECT_NEAR(b->m_ClippedBounds.x0, 110 - hot, 0.01f); // touched over the size that it swells to
    MoveTo(110 - hot + 1, 380);
    Frame(1000);
    EXPECT_NEAR(b->m_Bounds.x0, 110 - hot, 0.01f);
    Down(cInput::LeftButton);
    EXPECT_NEAR(b->m_Bounds.x0, 110 - Fragile.ButtonPressGrow, 0.01f);
    EXPECT_EQ(Fragile.Find(Parts::Button)->Rect.x0, 110);
    Up(cInput::LeftButton);
    EXPECT_EQ(b->m_CurGrow, hot);
}

TEST_F(Buttons, ListenerGoesFirstAndMayFreeAnything) {
    static cButton* s_Button;
    UiRoot* listener = NewRoot(&Classic);
    listener->OnMessage = [] { cWidgets::FreeWidget(s_Button, false); };
    for (const bool isThere : {true, false}) {
        s_Button = NewButton();
        s_Button->m_Listener = listener;
        s_Button->m_PressCode = cInput::Enter;
        cWidgets::SetCapture(s_Button);
        EXPECT_TRUE(s_Button->OnButtonUp(cInput::Enter));
        EXPECT_EQ(Root->TakeMessages(), isThere ? "" : "0 ");
        EXPECT_EQ(cWidgets::GetWidgetID(s_Button) == -1, isThere);
        cWidgets::FreeWidget(isThere ? listener : nullptr, false);
    }
}

TEST_F(Buttons, CheckBox) {
    bool value = false;
    auto* box = Add(Root, new cCheckBox(Root, &value, "On", 10, -10, cRect::LeftTop, true, true));
    EXPECT_EQ(box->m_Bounds, cRect(110, 373, 110 + 13 + 5 + 12, 390));
    EXPECT_EQ(box->m_ValueRect, cRect(110, 375, 123, 388));
    EXPECT_EQ(box->m_LabelRect, cRect(128, 373, 140, 390));
    Click(135, 380);
    EXPECT_TRUE(Classic.Find(Parts::CheckBox)->Toggled);
    Press(cInput::Space);
    box->Unbind();
    Press(cInput::Space);
    EXPECT_EQ(Root->TakeMessages(), "2:on 2:off ");
}

TEST_F(Buttons, BindButtonTakesTheNextCode) {
    const struct {
        const char* Name;
        int Code;
        cBindButton::State Then;
        int Value; // X before
    } rows[] = {
        {"key", cInput::J, cBindButton::WaitForRelease, cInput::J},
        {"the same key", cInput::X, cBindButton::WaitForRelease, cInput::X},
        {"mouse", cInput::LeftButton, cBindButton::WaitForRelease, cInput::LeftButton},
        {"gamepad", cInput::ButtonA, cBindButton::WaitForRelease, cInput::ButtonA},
        {"wheel, which is not released", cInput::WheelDown, cBindButton::Idle, cInput::WheelDown},
        {"Esc", cInput::Esc, cBindButton::Idle, cInput::X},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        int value = cInput::X;
        auto* b = Add(Root, new cBindButton(Root, &value, "Jump", 50, -10, cRect::LeftTop, true, true));
        EXPECT_EQ(b->m_ValueRect, cRect(150, 367, 215, 390));
        MoveTo(160, 380);
        Down(cInput::LeftButton);
        EXPECT_EQ(b->m_State, cBindButton::Held);
        Up(cInput::LeftButton);
        EXPECT_TRUE(b->m_State == cBindButton::WaitForKey && Classic.Find(Parts::BindButton)->Toggled);
        EXPECT_TRUE(b->OnChar('j', cInput::J) && b->OnButtonUp(cInput::J)); // was down before
        MoveTo(s_Out.x, s_Out.y);
        row.Code == cInput::WheelDown ? Wheel(-1) : Down(row.Code);
        EXPECT_EQ(value, row.Value);
        EXPECT_EQ(b->m_State, row.Then);
        EXPECT_EQ(cWidgets::IsCaptured(b), row.Then != cBindButton::Idle);
        const std::string message = "1:" + std::to_string(cInput::X) + ">" + std::to_string(value) + " ";
        EXPECT_EQ(Root->TakeMessages(), row.Code == cInput::Esc ? "" : message);
        row.Code == cInput::WheelDown ? Frame() : Up(row.Code);
        EXPECT_TRUE(b->m_State == cBindButton::Idle && !cWidgets::IsCaptured());
        EXPECT_EQ(Classic.Find(Parts::BindButton)->Value, cInput::ToString(value));
        cWidgets::FreeWidget(b, false);
    }
}

TEST_F(Buttons, BindButtonLetsGo) {
    int value = cInput::X;
    auto* b = Add(Root, new cBindButton(Root, &value, "", 10, -10, cRect::LeftTop, true, true));
    MoveTo(s_In.x, s_In.y);
    Down(cInput::LeftButton);
    MoveTo(s_Out.x, s_Out.y);
    Up(cInput::LeftButton);
    EXPECT_EQ(b->m_State, cBindButton::Idle);
    Click(s_In.x, s_In.y);
    Root->m_Visible = false; // while it waits: the next code is somebody else's
    EXPECT_FALSE(b->OnButtonDown(cInput::J) || cWidgets::IsCaptured());
    Root->m_Visible = true;
    Click(s_In.x, s_In.y);
    cWidgets::ReleaseCapture(); // taken away
    EXPECT_FALSE(b->OnButtonDown(cInput::J));
    EXPECT_EQ(value, cInput::X);
    Press(cInput::Enter);
    b->Unbind();
    Press(cInput::Enter);
    EXPECT_EQ(b->m_State, cBindButton::Idle);
    EXPECT_EQ(Root->TakeMessages(), "");
}

} // namespace
