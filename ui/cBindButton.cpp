#include "ui/cBindButton.h"

#include "render/cRender.h"
#include "ui/cWidgets.h"

#include <algorithm>

namespace trellis {

cBindButton::cBindButton(cWnd* parent, int* value, const char* text, float x, float y, int align, bool visible,
                         bool enabled)
    : cPressControl(parent, text, x, y, align, visible, enabled), m_Value(value) {}

void cBindButton::CalcRelBounds() {
    const cTheme& theme = *m_Theme;
    const float key =
        m_Value ? cRender::MeasureStringCells(theme.BindButtonFont, cInput::ToString(*m_Value)).Width() : 0;
    LayOut(theme.BindButtonFont, theme.BindButtonPadding,
           {std::max(theme.BindButtonMinWidth, key + 2 * theme.BindButtonPadding), theme.BindButtonHeight});
}

bool cBindButton::FillDrawArgs(cTheme::DrawArgs* args) {
    args->Part = cTheme::Parts::BindButton;
    args->Toggled = m_State == WaitForKey && cWidgets::IsCaptured(this);
    if (m_Value) {
        args->Value = cInput::ToString(*m_Value);
    }
    return true;
}

bool cBindButton::OnButtonDown(int code) {
    if (!cWidgets::IsCaptured(this)) {
        m_State = Idle; // the capture may have been taken away meanwhile
        const Guard guard(this);
        const bool consumed = cPressControl::OnButtonDown(code);
        if (!guard.IsGone() && cWidgets::IsCaptured(this)) {
            m_State = Held;
        }
        return consumed;
    }
    if (m_State == Held && code != cInput::Esc) {
        return cPressControl::OnButtonDown(code);
    }
    // Nothing can be bound that is out of sight: it would keep the whole input to itself.
    const bool live = IsLive();
    if (!live || code == cInput::Esc) {
        m_State = Idle;
        m_PressCode = -1;
        cWidgets::ReleaseCapture();
        return live;
    }
    if (m_State != WaitForKey) {
        return true;
    }
    // A notch of the wheel is never released.
    if (code == cInput::WheelUp || code == cInput::WheelDown) {
        m_State = Idle;
        m_PressCode = -1;
        cWidgets::ReleaseCapture();
    } else {
        m_State = WaitForRelease;
        m_PressCode = code;
    }
    if (m_Value) {
        const int former = *m_Value;
        *m_Value = code;
        Send(BindChanged, &former, m_Value);
    }
    return true;
}

bool cBindButton::OnButtonUp(int code) {
    if (!cWidgets::IsCaptured(this)) {
        return false;
    }
    if (m_State == Held) {
        cPressControl::OnButtonUp(code); // calls nobody but `OnPressed`
        if (!cWidgets::IsCaptured(this)) {
            m_State = Idle;
        }
    } else if (m_State == WaitForRelease && code == m_PressCode) {
        m_State = Idle;
        m_PressCode = -1;
        cWidgets::ReleaseCapture();
    }
    return true;
}

void cBindButton::OnPressed() {
    if (IsLive()) {
        cWidgets::SetCapture(this);
        m_State = WaitForKey;
    }
}

} // namespace trellis
