#include "ui/cButton.h"

#include "render/cRender.h"
#include "ui/cWidgets.h"

#include <algorithm>

namespace trellis {

cButton::cButton(cWnd* parent, const char* text, float x, float y, int align, bool visible, bool enabled)
    : cPressControl(parent, text, x, y, align, visible, enabled) {}

cButton::cButton(cWnd* parent, cTheme::ToolBarIcon::Enum icon, bool arrow, const char* text, float x, float y,
                 int align, bool visible, bool enabled)
    : cPressControl(parent, text, x, y, align, visible, enabled), m_Icon(icon), m_Arrow(arrow) {}

void cButton::CalcRelBounds() {
    if (m_Icon != -1) {
        LayOut(m_Arrow ? m_Theme->ButtonArrowSize : m_Theme->ButtonIconSize);
        return;
    }
    const float text = cRender::MeasureStringCells(m_Theme->ButtonFont, m_Text).Width();
    LayOut({std::max(m_Theme->ButtonMinWidth, text) + 2 * m_Theme->ButtonPadding, m_Theme->ButtonHeight});
}

bool cButton::OnSetToolTip(cStr* text, const cTheme** theme) {
    if (m_Icon == -1 || m_Hot.Cur != 1) { // not while it still lights up
        return false;
    }
    *text = m_Text;
    *theme = m_Theme;
    return true;
}

bool cButton::FillDrawArgs(cTheme::DrawArgs* args) {
    args->Part = cTheme::Parts::Button;
    args->Icon = m_Icon;
    args->Arrow = m_Arrow;
    return true;
}

void cButton::OnPressed() {
    if (cWidgets::GetWidgetID(m_Listener) != -1) { // it may have gone: nobody tells the button
        const Guard guard(this);
        m_Listener->MsgProc(cWidgets::GetWidgetID(this), Pressed, nullptr, nullptr);
        if (guard.IsGone()) {
            return;
        }
    }
    Send(Pressed, nullptr, nullptr);
}

} // namespace trellis
