// A mouse and a keyboard that a test holds in its hands, before a widget manager that is empty again in the end.
#pragma once

#include "ui/cWidgets.h"
#include "view/cInput.h"

#include <gtest/gtest.h>

namespace trellis {

class FakeInput : public testing::Test {
protected:
    FakeInput() {
        s_Mouse = {};
        s_Keys = {};
        cInput::Samplers samplers;
        samplers.Mouse = [](cInput::MouseState* out) { *out = s_Mouse; };
        samplers.Keyboard = [](cInput::KeyboardState* out) { *out = s_Keys; };
        cInput::SetSamplers(samplers);
    }
    ~FakeInput() override {
        cWidgets::ReleaseCapture();
        cWidgets::FreeAll();
        s_Mouse = {}; // the position outlives the test
        s_Keys = {};
        Frame();
        cInput::SetSamplers({});
    }

    void Frame() {
        cInput::Acquire();
        s_Mouse.Wheel = 0;
        cWidgets::HandleInputEvents();
        cInput::FreeEvents();
    }
    /// Runs a frame. @param code  of the keyboard or the mouse
    void Set(int code, bool down) {
        (cInput::IsKeyboardCode(code) ? s_Keys.IsDown[code] : s_Mouse.IsDown[code - cInput::LeftButton]) = down;
        Frame();
    }

    static inline cInput::MouseState s_Mouse;
    static inline cInput::KeyboardState s_Keys;
};

} // namespace trellis
