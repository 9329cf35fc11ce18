#include "ui/cPressControl.h"

#include "ui/cWidgets.h"

namespace trellis {

cPressControl::cPressControl(cWnd* parent, const char* text, float x, float y, int align, bool visible, bool enabled)
    : cControl(parent, text, x, y, align, visible, enabled) {
    m_TabStop = m_Grows = true;
}

bool cPressControl::OnButtonDown(int code) {
    if (!IsLive()) {
        return false;
    }
    if (cWidgets::IsCaptured(this)) {
        return true;
    }
    if (code == cInput::RightButton && IsMouseInside()) {
        if (TakesFocus()) {
            SetFocus(this);
        }
        return true;
    }
    if (code == cInput::LeftButton ? !IsMouseInside() : !IsPressKey(code)) {
        return false;
    }
    if (!Capture(code)) {
        return true;
    }
    m_CurGrow = m_TargetGrow = m_Theme->ButtonPressGrow;
    if (TakesFocus()) {
        SetFocus(this);
    }
    return true;
}

bool cPressControl::OnChar(int, int) {
    return cWidgets::IsCaptured(this);
}

bool cPressControl::OnButtonUp(int code) {
    if (!cWidgets::IsCaptured(this)) {
        return false;
    }
    if (code == m_PressCode) {
        cWidgets::ReleaseCapture();
        if (code != cInput::LeftButton || IsMouseInside()) { // a key has no position
            m_PressCode = -1;
            m_CurGrow = m_TargetGrow = m_Theme->ButtonHotGrow;
            OnPressed();
        }
        // After a release elsewhere the code stays, until the next press writes over it.
    }
    return true;
}

} // namespace trellis
