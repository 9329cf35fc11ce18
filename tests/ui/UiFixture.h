// Widgets under test: a theme that writes down what it is asked to draw, input by hand, and frames as a host runs them.
//
// All glyphs advance by 6 and are 13 high, whatever the font.
#pragma once

#include "foundation/cTimer.h"
#include "tests/foundation/FakeClock.h"
#include "tests/ui/FontFolders.h"
#include "ui/cTheme_Fragile.h"
#include "ui/cTheme_WindowsStandard.h"
#include "ui/cWidgets.h"
#include "ui/cWnd.h"

#include <algorithm>
#include <string>
#include <vector>

namespace trellis {

/// One of the two themes by its numbers.
class UiTheme : public cTheme {
public:
    explicit UiTheme(const cTheme& like) : cTheme(like) {}

    void Draw(const DrawArgs& args) const override {
        if (Recording) {
            Drawn.push_back(args);
        }
    }
    /// What was drawn last as that part; null when it was not.
    const DrawArgs* Find(Parts::Enum part) const {
        const auto at =
            std::find_if(Drawn.rbegin(), Drawn.rend(), [part](const DrawArgs& args) { return args.Part == part; });
        return at == Drawn.rend() ? nullptr : &*at;
    }

    mutable std::vector<DrawArgs> Drawn; ///< In the last frame.
    bool Recording = true;
};

/// In place of a form: always active, keeps the focus, writes down the messages.
class UiRoot : public cWnd {
public:
    UiRoot(const cTheme* theme, const cRect& bounds) : cWnd(nullptr, theme) {
        m_Visible = m_Enabled = true;
        m_Bounds = m_ClientBounds = bounds;
    }
    ~UiRoot() override { s_Alive--; }

    void OnRender() override {
        CalcTends();
        CalcRects();
    }
    void Activate() override { Active = true; }
    bool IsActive() override { return Active; }
    int GetFormState() override { return State; }
    bool HasFocus(cWnd* wnd) override { return wnd == Focus && wnd->IsEnabled(); }
    bool HasFocusNoEnabled(cWnd* wnd) override { return wnd == Focus; }
    void SetFocus(cWnd* wnd) override { Focus = wnd; }
    void ClearFocus(cWnd* wnd) override { Focus = Focus == wnd ? nullptr : Focus; }
    void GoTab(bool forward) override { Messages += forward ? "tab " : "back "; }
    void MsgProc(int id, int msg, const void* before, const void* after) override;

    std::string TakeMessages() { return std::exchange(Messages, {}); }

    bool Active = true;
    int State = 2;
    cWnd* Focus = nullptr;
    std::string Messages;          ///< "6:10>25 8:abc>abd 0 "
    void (*OnMessage)() = nullptr; ///< Called after the message was written down.
    static inline int s_Alive = 0;
};

inline void UiRoot::MsgProc(int, int msg, const void* before, const void* after) {
    const auto number = [](float v) {
        char text[32];
        std::snprintf(text, sizeof(text), "%g", double(v));
        return std::string(text);
    };
    Messages += std::to_string(msg);
    switch (msg) {
    case 1:
    case 3:
    case 5:
    case 6:
        Messages += ":" + std::to_string(*static_cast<const int*>(before)) + ">" +
                    std::to_string(*static_cast<const int*>(after));
        break;
    case 2:
        Messages += *static_cast<const bool*>(before) ? ":on" : ":off";
        break;
    case 4:
    case 7:
        Messages += ":" + number(*static_cast<const float*>(before)) + ">" + number(*static_cast<const float*>(after));
        break;
    case 8:
    case 10:
        Messages += std::string(":") + static_cast<const char*>(before) + ">" + static_cast<const char*>(after);
        break;
    }
    Messages += " ";
    if (OnMessage) {
        OnMessage();
    }
}

class Ui : public FontFolders {
protected:
    Ui() {
        for (const char* name :
             {"Tahoma 8", "Tahoma B8", "Calibri 11", "Calibri 16", "Calibri B24", "Comic Sans MS BI24"}) {
            PutFont(name, 13, 6, 255);
        }
        cRender::ResetStates();
        Device.Quiet = true;
        static const UiTheme s_Classic{cTheme_WindowsStandard()}, s_Fragile{cTheme_Fragile()}; // fonts stay
        Classic = s_Classic;
        Fragile = s_Fragile;

        s_Mouse = {};
        s_Keys = {};
        s_Chars.Clear();
        cInput::Samplers samplers;
        samplers.Mouse = [](cInput::MouseState* out) { *out = s_Mouse; };
        samplers.Keyboard = [](cInput::KeyboardState* out) { *out = s_Keys; };
        samplers.Gamepad = [](cInput::GamepadState* out) { *out = s_Gamepad; };
        samplers.Chars = [](cList<cInput::CharPress>* out) { *out = s_Chars; };
        cInput::SetSamplers(samplers);
        cTimer::Reset();
        cTimer::Acquire();
    }
    ~Ui() override {
        cWidgets::ReleaseCapture();
        cWidgets::FreeAll();
        s_Mouse = {};
        s_Keys = {};
        s_Gamepad = {};
        cInput::Acquire();
        cInput::FreeEvents();
        cInput::SetSamplers({});
    }

    /// A root of 400 by 300, its left top corner at (100, 400), so that the client's (0, 0) is there.
    UiRoot* NewRoot(const cTheme* theme) {
        auto* root = new UiRoot(theme, {100, 100, 500, 400});
        UiRoot::s_Alive++;
        cWidgets::AddWidget(root, 3);
        return root;
    }

    /// Adds a control, and runs a frame.
    template <class T> T* Add(cWnd* parent, T* control) {
        parent->AddChild(control);
        Frame();
        return control;
    }

    /// Input, then drawing. The clock goes on first.
    void Frame(int ms = 10) {
        Clock.Advance(ms * 1000LL);
        cTimer::Acquire();
        cInput::Acquire();
        s_Chars.Clear();
        s_Mouse.Wheel = 0;
        s_Mouse.DoubleClick = false;
        cWidgets::HandleInputEvents();
        cInput::FreeEvents();
        Classic.Drawn.clear();
        Fragile.Drawn.clear();
        cWidgets::Render(-1);
    }

    // Each runs a frame.
    void MoveTo(float x, float y) {
        s_Mouse.Position = {x, y};
        Frame();
    }
    void Down(int code) { Set(code, true); }
    void Up(int code) { Set(code, false); }
    void Press(int code) {
        Down(code);
        Up(code);
    }
    void Click(float x, float y, int code = cInput::LeftButton) {
        MoveTo(x, y);
        Press(code);
    }
    void DoubleClick(float x, float y) {
        MoveTo(x, y);
        s_Mouse.DoubleClick = true;
        Press(cInput::LeftButton);
    }
    void Wheel(int notches) {
        s_Mouse.Wheel = notches;
        Frame();
    }
    void Type(const char* ascii) {
        for (; *ascii; ascii++) {
            s_Chars.Add({*ascii, -1});
            Frame();
        }
    }

    cFakeClock Clock;
    UiTheme Classic{BareTheme()}, Fragile{BareTheme()}; ///< With their fonts.

    static inline cInput::MouseState s_Mouse;
    static inline cInput::KeyboardState s_Keys;
    static inline cInput::GamepadState s_Gamepad;
    static inline cList<cInput::CharPress> s_Chars;

private:
    class BareTheme : public cTheme {
        void Draw(const DrawArgs&) const override {}
    };

    void Set(int code, bool down) {
        if (cInput::IsKeyboardCode(code)) {
            s_Keys.IsDown[code] = down;
        } else if (cInput::IsGamepadCode(code)) {
            s_Gamepad.IsDown[code - cInput::DpadUp] = down;
        } else {
            s_Mouse.IsDown[code - cInput::LeftButton] = down;
        }
        Frame();
    }
};

} // namespace trellis
