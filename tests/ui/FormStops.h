// A form that writes down its messages, and controls of 80 by 20 that take the focus.
#pragma once

#include "ui/cControl.h"
#include "ui/cForm.h"

#include <functional>
#include <string>

namespace trellis {

struct TestForm : cForm {
    TestForm(cWnd* parent, const cRect& bounds, const cTheme* theme) : cForm(parent, "Title", bounds, theme) {
        s_Alive++;
    }
    ~TestForm() override { s_Alive--; }
    void MsgProc(int, int msg, const void*, const void*) override {
        Messages += std::to_string(msg) + " ";
        if (const auto act = OnMessage) {
            act();
        }
    }
    std::string Messages;
    std::function<void()> OnMessage;
    static inline int s_Alive = 0;
};

struct Stop : cControl {
    explicit Stop(cWnd* parent, float y = 0) : cControl(parent, "", 0, y, cRect::LeftTop, true, true) {
        m_TabStop = true;
    }
    void CalcRelBounds() override { LayOut(m_Theme->ButtonFont, 0, {80, 20}); }
    bool OnButtonDown(int code) override { return code == cInput::LeftButton && IsMouseInside() && Capture(code); }
};

} // namespace trellis
