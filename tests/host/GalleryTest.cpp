#include "host/FormParts.h"
#include "host/InputScript.h"
#include "host/WidgetGallery.h"
#include "tests/render/Allocations.h"
#include "tests/ui/UiFixture.h"
#include "ui/cComboBox.h"
#include "ui/cEdit.h"
#include "ui/cForm.h"
#include "ui/cFpsDisplay.h"
#include "ui/cPanel.h"
#include "ui/cSlider.h"
#include "ui/cToolBar.h"
#include "view/cViewer.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>

using namespace trellis;

namespace {

void (*s_Mischief)() = nullptr;

/// A form whose callbacks may do anything.
class WildForm : public cForm {
public:
    using cForm::cForm;
    void MsgProc(int, int, const void*, const void*) override { Act(); }
    void SetFocus(cWnd* wnd) override {
        cForm::SetFocus(wnd);
        Act();
    }
    void Activate() override {
        const Guard guard(this);
        cForm::Activate();
        if (!guard.IsGone()) {
            Act();
        }
    }

private:
    static void Act() {
        if (s_Mischief) {
            s_Mischief();
        }
    }
};

class WildGallery : public WidgetGallery {
    cForm* NewForm(const char* title, const cRect& bounds, const cTheme* theme) override {
        return new WildForm(nullptr, title, bounds, theme);
    }
};

class Gallery : public Ui {
public:
    Gallery() {
        Viewer.Update(false);
        cRender::SetViewer(&Viewer);
        Classic.Recording = Fragile.Recording = false;
    }
    ~Gallery() override {
        s_Mischief = nullptr;
        cWidgets::ReleaseCapture();
        cWidgets::FreeAll();
        cRender::SetViewer(nullptr);
    }

    static std::vector<cWidget*> Widgets() {
        std::vector<cWidget*> widgets;
        for (int layer = 0; layer < cWidgets::LayerCount; layer++) {
            for (const int slot : cWidgets::GetLayerOrder(layer)) {
                if (cWidget* widget = cWidgets::GetLayer(layer)[slot]) {
                    widgets.push_back(widget);
                }
            }
        }
        return widgets;
    }

    cViewer Viewer;
    WildGallery Shown;
};

bool Contains(const cRect& outer, const cRect& inner) {
    return inner.IsEmpty() ||
           (outer.x0 <= inner.x0 && outer.y0 <= inner.y0 && inner.x1 <= outer.x1 && inner.y1 <= outer.y1);
}

/// What must hold after any frame. @return what does not; empty when all does
std::string Broken(const std::vector<cWidget*>& widgets) {
    bool holderLives = !cWidgets::IsCaptured();
    for (cWidget* widget : widgets) {
        holderLives = holderLives || cWidgets::IsCaptured(widget);
        const auto* wnd = dynamic_cast<cWnd*>(widget);
        if (!wnd) {
            continue;
        }
        if (wnd->m_Parent && std::find(widgets.begin(), widgets.end(), wnd->m_Parent) == widgets.end()) {
            return "the parent has gone";
        }
        const bool isToolBar = wnd->GetType() == cWnd::ToolBarType; // it lies above the client
        if (wnd->m_Parent && !Contains(isToolBar ? wnd->m_Parent->m_ClippedBounds : wnd->m_Parent->m_ClippedClient,
                                       wnd->m_ClippedBounds)) {
            return "it sticks out of its parent: type " + std::to_string(wnd->GetType());
        }
        const cRect& content = wnd->m_RelClient;
        if (wnd->m_Visible && !wnd->m_ClientBounds.IsEmpty() && wnd->m_DragPart != cTheme::Parts::FormClient &&
            (content.x0 > 0 || content.y1 < 0 || (content.x0 < -0.01f && content.x1 < wnd->m_Client.Width() - 0.01f) ||
             (content.y1 > 0.01f && content.y0 > 0.01f - wnd->m_Client.Height()))) {
            return cStr::Format("scrolled out of its range: type %d, content %g %g %g %g in %g by %g", wnd->GetType(),
                                double(content.x0), double(content.y0), double(content.x1), double(content.y1),
                                double(wnd->m_Client.Width()), double(wnd->m_Client.Height()))
                .Text();
        }
        if (wnd->m_DragPart != 0 && !cWidgets::IsCaptured(wnd)) {
            return "a part is held without capture";
        }
        if (const auto* form = dynamic_cast<const cForm*>(wnd); form && form->m_Focus) {
            cList<cWnd*> inside;
            const_cast<cForm*>(form)->ListChildren(&inside, false);
            if (form->m_ToolBar) {
                const_cast<cToolBar*>(form->m_ToolBar)->ListChildren(&inside, false);
            }
            if (inside.IndexOf(form->m_Focus) == -1) {
                return "the focus is outside its form";
            }
        }
        if (const auto* edit = dynamic_cast<const cEdit*>(wnd);
            edit && cWidgets::IsCaptured(edit) &&
            (edit->m_Caret < 0 || edit->m_Caret > edit->m_Buffer.Length() || edit->m_SelStart < 0 ||
             edit->m_SelLen < 0 || edit->m_SelStart + edit->m_SelLen > edit->m_Buffer.Length() ||
             (edit->m_SelLen == 0 && edit->m_SelStart != 0) || edit->m_ScrollX > 0)) {
            return "caret, selection or scrolling of an edit";
        }
    }
    return holderLives ? "" : "the capture's holder has gone";
}

} // namespace

// Random input, and callbacks that free, close, hide and resize whatever they find.
TEST_F(Gallery, BearsAnything) {
    const char* count = std::getenv("TRELLIS_RANDOM_EVENTS");
    const long long toDo = count ? std::atoll(count) : 20'000;
    static std::mt19937 s_Random;
    s_Random.seed(20'261'123);
    static Gallery* s_Test;
    s_Test = this;
    const auto upTo = [](int n) { return int(s_Random() % unsigned(n)); };
    static const auto s_UpTo = upTo;

    static const auto s_Mess = [](bool inCallback) {
        const std::vector<cWidget*> widgets = Widgets();
        if (widgets.empty()) {
            return;
        }
        cWidget* widget = widgets[size_t(s_UpTo(int(widgets.size())))];
        auto* wnd = dynamic_cast<cWnd*>(widget);
        auto* form = dynamic_cast<cForm*>(widget);
        auto* panel = dynamic_cast<cPanel*>(widget);
        auto* control = dynamic_cast<cControl*>(widget);
        switch (s_UpTo(16)) {
        case 0:
            return s_UpTo(4) == 0 ? cWidgets::FreeWidget(widget, inCallback) : void();
        case 1:
            return form && s_UpTo(3) == 0 ? form->Close() : void();
        case 2:
            return wnd ? void(wnd->m_Visible = !wnd->m_Visible) : void();
        case 3:
            return wnd ? void(wnd->m_Enabled = !wnd->m_Enabled) : void();
        case 4:
        case 5: // back to use, or soon all would be hidden
            return wnd ? void(wnd->m_Visible = wnd->m_Enabled = true) : void();
        case 6:
            return control && s_UpTo(4) == 0 ? control->Unbind() : void();
        case 7:
            return form ? form->Minimize() : void();
        case 8:
            return form ? form->Maximize() : void();
        case 9: {
            if (!wnd || control || wnd->GetType() == cWnd::ComboBoxDropDownType) {
                return;
            }
            auto* edit = new cEdit(wnd, &s_Test->Shown.Name, "More", 20, -20, 0, true, true);
            if (wnd->AddChild(edit) == -1) {
                delete edit;
            }
            return;
        }
        case 10: {
            constexpr float sides[] = {0, 1, 90, 640, 1600};
            s_Test->Viewer.Viewport = {0, 0, sides[s_UpTo(5)], sides[s_UpTo(5)]};
            return s_Test->Viewer.Update(false);
        }
        case 11:
            return panel ? void(panel->m_Expanded = !panel->m_Expanded) : void();
        case 12:
            if (auto* box = dynamic_cast<cComboBox*>(widget)) {
                box->SetItems(cList<cStr>());
            }
            return;
        case 13:
            return wnd ? cWidgets::BringToFront(wnd) : void();
        case 14:
            return wnd && form && s_UpTo(8) == 0
                       ? void(wnd->AddChild(new WildForm(wnd, "Child", {0, 0, 300, 200}, nullptr)))
                       : void();
        default:
            return s_UpTo(8) == 0 ? cWidgets::ReleaseCapture() : void();
        }
    };
    s_Mischief = [] {
        if (s_UpTo(6) == 0) {
            s_Mess(true);
        }
    };

    const cTheme* theme = &Classic;
    long long done = 0;
    for (int frame = 0; done < toDo; frame++) {
        if (frame % 2000 == 0 || cForm::s_Forms.Count() == 0) {
            cWidgets::ReleaseCapture();
            cWidgets::FreeAll();
            theme = theme == &Classic ? &Fragile : &Classic;
            Viewer.Viewport = {0, 0, 1024, 768};
            Viewer.Update(false);
            Shown.Open(theme, {1024, 768}, -1);
            ASSERT_EQ(cForm::s_Forms.Count(), 2);
        }
        const std::vector<cWidget*> widgets = Widgets();
        const auto* wnd = dynamic_cast<cWnd*>(widgets[size_t(upTo(int(widgets.size())))]);
        if (upTo(3) == 0 && wnd && !wnd->m_ClippedBounds.IsEmpty()) {
            constexpr int points[] = {0, 1, 2, 4, 5, 6, 8, 9, 10};
            s_Mouse.Position = wnd->m_ClippedBounds.GetPoint(points[upTo(9)]);
        } else if (upTo(2) == 0) {
            s_Mouse.Position += cVec2(float(upTo(41) - 20), float(upTo(41) - 20));
        }
        if (upTo(3) == 0) {
            bool& down = s_Mouse.IsDown[upTo(8) == 0 ? upTo(3) : 0];
            down = !down;
        }
        s_Mouse.DoubleClick = upTo(10) == 0;
        s_Mouse.Wheel = upTo(10) == 0 ? upTo(7) - 3 : 0;
        using I = cInput;
        constexpr int keys[] = {I::Tab, I::Up,   I::Down, I::Left,      I::Right,  I::Enter, I::Space,
                                I::Esc, I::Home, I::End,  I::BackSpace, I::Delete, I::Shift, I::Control,
                                I::A,   I::C,    I::V,    I::X,         I::Z,      I::PageUp};
        if (upTo(2) == 0) {
            bool& down = s_Keys.IsDown[keys[upTo(int(std::size(keys)))]];
            down = !down;
        }
        if (upTo(4) == 0) {
            bool& down = s_Gamepad.IsDown[upTo(cInput::GamepadCount)];
            down = !down;
        }
        constexpr int chars[] = {'1', '.', '-', 'x', ' ', 0xE9, 0x1F600, 0xD800, 0x110000, -2, 7};
        if (upTo(4) == 0) {
            s_Chars.Add({chars[upTo(int(std::size(chars)))], -1});
        }
        if (upTo(30) == 0) {
            s_Mess(false);
        }

        Clock.Advance(upTo(40) * 1000LL);
        cTimer::Acquire();
        cInput::Acquire();
        s_Chars.Clear();
        done += cInput::GetEvents().Count();
        cWidgets::HandleInputEvents();
        cInput::FreeEvents();
        cWidgets::Render(-1);
        const std::string broken = Broken(Widgets());
        ASSERT_EQ(broken, "") << "in frame " << frame;
    }
}

// The pictures' script finds all that it points to, in both themes.
TEST_F(Gallery, PlaysItsScript) {
    std::ifstream file(TRELLIS_SCRIPTS "/widgets.txt", std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    for (const cTheme* theme : {static_cast<const cTheme*>(&Classic), static_cast<const cTheme*>(&Fragile)}) {
        cWidgets::FreeAll();
        WidgetGallery gallery;
        InputScript script;
        std::string error, saved;
        ASSERT_TRUE(script.Parse(text, &error)) << error;
        const InputScript::Listener listener{
            [&](int width, int height) {
                Viewer.Viewport = {0, 0, float(width), float(height)};
                Viewer.Update(false);
                if (cForm::s_Forms.Count() == 0) {
                    gallery.Open(theme, Viewer.Viewport.Size(), -1);
                }
            },
            FindInForms,
            [&](const std::string& name) {
                saved += name + " ";
                return true;
            },
        };
        EXPECT_TRUE(script.Play(
            listener,
            [&] {
                Clock.Advance(16'666);
                cTimer::Acquire();
                cWidgets::HandleInputEvents();
                cWidgets::Render(-1);
            },
            &error))
            << error;
        EXPECT_EQ(saved, "start selection typed slider scrolled panel list dragged sized docked minimised maximised ");
        EXPECT_EQ(gallery.Mass, 12.75f);
        EXPECT_GT(gallery.Gain, 0.6f);
        EXPECT_EQ(gallery.Mode, 3);
        EXPECT_EQ(cForm::s_Forms[cForm::s_Forms.Count() - 1]->m_State, cForm::Maximized);
        cWidgets::FreeAll();
    }
}

TEST_F(Gallery, FramesAllocateNothing) {
    for (const cTheme* theme : {static_cast<const cTheme*>(&Classic), static_cast<const cTheme*>(&Fragile)}) {
        cWidgets::FreeAll();
        Shown.Open(theme, {640, 480}, -1);
        for (int i = 0; i < 60; i++) {
            Frame();
        }
        const int before = AllocationCount();
        for (int i = 0; i < 20; i++) {
            cTimer::Acquire();
            cWidgets::HandleInputEvents();
            cWidgets::Render(-1);
        }
        EXPECT_EQ(AllocationCount(), before);
    }
}

TEST(InputScripts, ToldWhatIsWrong) {
    const struct {
        const char *Text, *Error;
    } rows[] = {
        {"# only a comment\n\n 3 move 1 2 # and one behind\n", ""},
        {"x move 1 2", "line 1: not a frame and an event"},
        {"1", "line 1: not a frame and an event"},
        {"-1 wheel 2", "line 1: not a frame and an event"},
        {"2 wheel 2\n1 wheel 2", "line 2: the frames go back"},
        {"1 jump 3", "line 1: no such event"},
        {"1 move 3", "line 1: a number is missing"},
        {"1 save", "line 1: a name is missing"},
        {"1 press Elbow", "line 1: no such code"},
    };
    for (const auto& row : rows) {
        std::string error;
        const bool ok = InputScript().Parse(row.Text, &error);
        EXPECT_EQ(error, row.Error);
        EXPECT_EQ(ok, error.empty());
    }
}

TEST(InputScripts, BecomeInput) {
    InputScript script;
    std::string error;
    ASSERT_TRUE(
        script.Parse("0 move 10 20\n1 down LeftButton\n1 drag 30 -10 2\n4 up LeftButton\n5 press A\n5 wheel -2\n"
                     "7 type ab\n8 save last\n",
                     &error));
    std::string log;
    const InputScript::Listener listener{nullptr, nullptr, [&](const std::string& name) {
                                             log += name;
                                             return false;
                                         }};
    EXPECT_FALSE(script.Play(
        listener,
        [&] {
            for (const cInput::Event* e : cInput::GetEvents()) {
                log += e->Type == cInput::MouseMoveEvent
                           ? std::to_string(int(e->Position.x)) + "," + std::to_string(int(e->Position.y))
                       : e->Type == cInput::CharEvent
                           ? std::string("char") + std::to_string(e->Char)
                           : cInput::ToString(e->Code).Text() + std::string(e->Down ? "+" : "-");
                log += " ";
            }
            log += "| ";
        },
        &error));
    EXPECT_EQ(error, "line 8: cannot save last");
    EXPECT_EQ(log, "10,20 | LeftButton+ 25,15 | 40,10 | | LeftButton- | A+ WheelDown+ char-1 | A- | char97 | "
                   "char98 | last");
    cInput::FreeEvents();
}
