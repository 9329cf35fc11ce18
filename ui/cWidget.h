// Base of everything that receives frames and input: windows, controls, viewers, manipulators.
#pragma once

#include "view/cInput.h"

namespace trellis {

class cTheme;

/// Has no data of its own. The manager, `cWidgets`, owns every widget that is added to it. An `On...` that answers true
/// has consumed the event.
class cWidget {
public:
    virtual ~cWidget() = default;

    virtual bool OnButtonDown(int code) { ///< Of keys, mouse and gamepad.
        (void)code;
        return false;
    }
    virtual bool OnButtonUp(int code) {
        (void)code;
        return false;
    }
    virtual bool OnMouseMove() { return false; } ///< The position is `cInput`'s.
    virtual bool OnChar(int c, int code) {       ///< `c` is -1 for a key or a gamepad button that prints nothing.
        (void)c, (void)code;
        return false;
    }
    virtual void OnMultitouchDown(int id) { (void)id; }
    virtual void OnMultitouchUp(int id) { (void)id; }
    virtual void OnMultitouchMove(int id) { (void)id; }
    virtual void OnGestureDown(cGestureType::Enum type, const cVec2& position) { (void)type, (void)position; }
    virtual void OnGestureMove(const cVec2& position, const cVec2& delta, float scale, float angle) {
        (void)position, (void)delta, (void)scale, (void)angle;
    }
    virtual void OnGestureUp() {}
    virtual void OnRender() {}              ///< Draws, and advances what changes from frame to frame.
    virtual bool IsDead() { return false; } ///< True asks the manager to delete the widget; it must not be captured.

    /// Called once a frame: whether the mouse is over this widget. @param covered  by a widget in front
    virtual bool IsHot(bool covered) {
        (void)covered;
        return false;
    }
    virtual bool OnSetCursor(cInput::Cursor::Enum* cursor) { ///< True chooses the cursor.
        (void)cursor;
        return false;
    }
    virtual bool OnSetToolTip(cStr* text, const cTheme** theme) { ///< True shows a tip.
        (void)text, (void)theme;
        return false;
    }
    virtual void OnBringToFront() {} ///< The widget has come to the front of its layer.
};

} // namespace trellis
