#include "ui/cToolBar.h"

#include "ui/cForm.h"
#include "ui/cTheme.h"
#include "ui/cWidgets.h"

#include <algorithm>
#include <cmath>

namespace trellis {

cToolBar::cToolBar(cForm* form, bool visible, bool enabled) : cWnd(form) {
    m_Visible = visible;
    m_Enabled = enabled;
    m_CurVisible = m_TargetVisible = IsVisible() ? 1.0f : 0.0f;
    m_CurEnabled = m_TargetEnabled = IsEnabled() ? 1.0f : 0.0f;
}

// ---- Layout

void cToolBar::CalcRects() {
    if (!m_Parent || m_Parent->m_ClippedClient.IsEmpty()) {
        EmptyRects();
        return;
    }
    const cRect &form = m_Parent->m_Bounds, &inset = m_Theme->FormClientInset;
    const float top = form.y1 + inset.y1;
    const cRect row(form.x0 + inset.x0, top - m_Theme->ToolBarHeight, form.x1 + inset.x1, top);
    if (row.IsEmpty()) {
        EmptyRects();
        return;
    }
    // It lies beside the form's client, whose clip is not its own.
    m_Bounds = m_ClippedBounds = m_ClientBounds = m_Client = m_AbsClient = m_ClippedClient = m_ScrollClip = row;
    m_RelClient = {0, -row.Height(), row.Width(), 0};
}

void cToolBar::AlignChildren() {
    if (m_AbsClient.IsEmpty()) {
        return;
    }
    const float height = std::floor(m_AbsClient.y1 + 0.5f) - std::floor(m_AbsClient.y0 + 0.5f);
    m_Cursor = {m_Scroll, -height / 2};
    m_AlignedScroll = m_Scroll;
    for (cWnd* child : m_Children) {
        if (child->m_Visible) {
            child->m_Pos = m_Cursor;
            child->m_Align = cRect::LeftMiddle;
            m_Cursor.x += child->GetWithinToolBarWidth();
        }
    }
    if (!cWidgets::IsCaptured(this)) {
        const float gap = m_Client.Width() - m_Cursor.x; // negative: that much is beyond the right end
        m_MinScroll = m_Scroll + std::min(gap, 0.0f);
        m_Scroll = std::min(m_Scroll + std::max(gap, 0.0f), 0.0f);
    }
}

void cToolBar::OnRender() {
    CalcTends();
    CalcRects();
    AlignChildren();
}

// ---- Input

bool cToolBar::IsHot(bool covered) {
    return !covered && cWidgets::IsCaptured(this);
}

bool cToolBar::OnSetCursor(cInput::Cursor::Enum* cursor) {
    if (!cWidgets::IsCaptured(this)) {
        return false;
    }
    *cursor = cInput::Cursor::Hand;
    return true;
}

bool cToolBar::OnButtonDown(int code) {
    if (!IsVisible() || !IsEnabled() || GetFormState() == 0) {
        return false;
    }
    if (cWidgets::IsCaptured(this)) {
        return true;
    }
    const cVec2 mouse = cInput::GetMousePositionOrient();
    if (code != cInput::MiddleButton || (m_Scroll == 0 && m_MinScroll == 0) || !IsInside(m_ClippedBounds, mouse)) {
        return false;
    }
    cWidgets::SetCapture(this);
    if (cWidgets::IsCaptured(this)) {
        m_DragStartScroll = m_Scroll;
        m_DragStartMouse = mouse.x;
    }
    Activate(); // last: it may free the tool bar
    return true;
}

bool cToolBar::OnMouseMove() {
    if (!cWidgets::IsCaptured(this)) {
        return false;
    }
    const float to = m_DragStartScroll + cInput::GetMousePositionOrient().x - m_DragStartMouse;
    m_Scroll = std::min(std::max(to, m_MinScroll), 0.0f);
    return true;
}

bool cToolBar::OnButtonUp(int code) {
    if (!cWidgets::IsCaptured(this)) {
        return false;
    }
    if (code == cInput::MiddleButton) {
        cWidgets::ReleaseCapture();
    }
    return true;
}

} // namespace trellis
