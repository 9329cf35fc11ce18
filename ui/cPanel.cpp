#include "ui/cPanel.h"

#include "ui/cControl.h"
#include "ui/cTheme.h"
#include "ui/cWidgets.h"

#include <algorithm>
#include <cmath>

namespace trellis {

namespace {

float Round(float v) {
    return std::floor(v + 0.5f);
}

bool IsPanel(const cWnd* wnd) {
    return wnd->GetType() == cWnd::PanelType;
}

} // namespace

cPanel::cPanel(cWnd* parent, const char* title, float x, float y, bool visible, bool enabled)
    : cWnd(parent), m_Title(title), m_Root(GetTopLevelParent()), m_Level(GetLevel()) {
    m_Pos = {x, y};
    m_Visible = visible;
    m_Enabled = enabled;
    m_Headless = m_Expanded = m_Level < 2;
    m_CurVisible = m_TargetVisible = IsVisible() ? 1.0f : 0.0f;
    m_CurEnabled = m_TargetEnabled = IsEnabled() ? 1.0f : 0.0f;
    m_CurGrow = m_TargetGrow = m_Theme->ButtonIdleGrow;
}

void cPanel::SetSimple(bool simple) {
    m_Simple = simple;
    m_Expanded = m_Expanded || simple;
}

// ---- Layout

void cPanel::CalcRelBounds() {
    AlignChildren();
    const cTheme& theme = *m_Theme;
    const float width = GetParentClient().Width(), header = m_Headless ? 0 : theme.PanelHeaderHeight;
    float height = header;
    if (m_Expanded) {
        float rows = 2 * theme.RowSpacing;
        for (cWnd* child : m_Children) {
            const cRect r = child->m_Visible ? child->GetRelBounds() : cRect::Empty;
            if (!r.IsEmpty()) {
                rows = std::fabs(r.y0) + (IsPanel(child) ? 0 : theme.RowSpacing);
            }
        }
        height += rows;
    }
    const float top = m_Pos.y;
    m_RelBounds = {0, top - height, width, top};
    if (m_Headless) {
        m_RelTitle = m_RelArrow = cRect::Empty;
        return;
    }
    // A header is too low for the upper and lower insets, which are those of a tool bar's row.
    const cVec4& insets = theme.RowInsets;
    m_RelTitle = {insets.x, top - header, std::max(width - insets.z, insets.x), top};
    const cVec2& arrow = theme.PanelArrowSize;
    const float x = theme.PanelArrowAtLeft ? insets.x : width - insets.z - arrow.x;
    const float y = top - std::floor((header - arrow.y) / 2);
    m_RelArrow = {x, y - arrow.y, x + arrow.x, y};
}

void cPanel::CalcRects() {
    CalcRelBounds();
    const cRect client = GetParentClient();
    m_Bounds2 = m_Title2 = m_Arrow2 = cRect::Empty;
    if (client.IsEmpty()) {
        EmptyRects();
        return;
    }
    const auto toScreen = [&](cRect r) {
        if (!r.IsEmpty()) {
            r.Translate({client.x0, client.y1});
        }
        return r;
    };
    m_Bounds = m_Bounds2 = toScreen(m_RelBounds);
    m_Title2 = toScreen(m_RelTitle);
    m_Arrow2 = toScreen(m_RelArrow);
    m_ClientBounds = cRect::Empty;
    if (m_Expanded) {
        const float indent = m_Headless ? 0 : m_Theme->PanelIndent;
        const cRect r(m_Bounds.x0 + indent, m_Bounds.y0, m_Bounds.x1 - indent,
                      m_Bounds.y1 - (m_Headless ? 0 : m_Theme->PanelHeaderHeight));
        m_ClientBounds = r.IsEmpty() ? cRect::Empty : r;
    }
    cWnd::CalcRects();
}

void cPanel::AlignChildren() {
    m_Root = GetTopLevelParent(); // the panel may have gone elsewhere
    if (!m_Expanded) {
        return;
    }
    const cTheme& theme = *m_Theme;
    float x;
    if (theme.CenterRows) {
        x = m_AbsClient.IsEmpty() ? 0 : Round((Round(m_AbsClient.x1) - Round(m_AbsClient.x0)) / 2);
    } else {
        // One column throughout the form, however deep the panel is. The form may have gone before what is in it.
        const float width = m_Root ? m_Root->m_Client.Width() : 0;
        const float a = theme.LabelColumnWidth, sum = a + theme.ValueColumnWidth;
        const float indent = m_Headless ? 0 : theme.PanelIndent;
        x = std::max(a, sum > 0 ? Round(width * a / sum) : 0) - float(m_Level - 1) * indent;
    }
    float y = -theme.RowSpacing;
    const cWnd* before = nullptr;
    for (cWnd* child : m_Children) {
        if (!child->m_Visible) {
            continue;
        }
        if (IsPanel(child)) { // flush with the top, and with another panel
            y += !before ? theme.RowSpacing : IsPanel(before) ? theme.SmallRowSpacing : 0;
        }
        const int align = theme.CenterRows ? cRect::CenterTop : cRect::LeftTop;
        if (child->m_Pos != cVec2(x, y) || child->m_Align != align) {
            child->m_Pos = {x, y};
            child->m_Align = align;
            child->CalcRelBounds();
        }
        const cRect r = child->GetRelBounds();
        if (!r.IsEmpty()) {
            y -= r.Height() + theme.SmallRowSpacing;
        }
        before = child;
    }
}

// ---- Frame

void cPanel::OnRender() {
    Tend(&m_CurGrow, m_TargetGrow, m_Theme->ButtonGrowSpeed);
    Tend(&m_Hot.Cur, m_Hot.Target, m_Theme->HotTendSpeed);
    CalcTends();
    CalcRects();
    if (m_Bounds.IsEmpty()) {
        return;
    }
    AlignChildren();
    if (m_CurVisible <= 0 || m_ClippedBounds.IsEmpty()) {
        return;
    }
    cTheme::DrawArgs args;
    args.Part = cTheme::Parts::Panel;
    args.Clip = m_Parent->m_ClippedClient;
    args.Rect = m_Bounds2;
    args.LabelRect = m_Title2;
    args.ThumbRect = m_Arrow2;
    if (!m_Arrow2.IsEmpty() && m_CurGrow != 0) { // a row has no room to grow; its arrow does so by half
        args.ThumbRect.SetWidth(cRect::CenterMiddle, std::max(m_Arrow2.Width() + m_CurGrow, 0.0f));
        args.ThumbRect.SetHeight(cRect::CenterMiddle, std::max(m_Arrow2.Height() + m_CurGrow, 0.0f));
    }
    args.Text = m_Title;
    args.Toggled = m_Expanded;
    args.Pressed = cWidgets::IsCaptured(this) && (m_PressCode != cInput::LeftButton || IsOverRow());
    args.Hovered = m_Hot.Target > 0;
    args.Hot = m_Hot.Cur;
    args.Active = HasFocus(this);
    args.Enabled = IsEnabled();
    args.Visible = IsVisible();
    args.CurEnabled = m_CurEnabled;
    args.CurVisible = m_CurVisible;
    args.Activity = GetCurActivity();
    args.FormAlpha = GetCurAlpha();
    m_Theme->Draw(args);
    cWnd::OnRender();
}

// ---- Input. What is not the row belongs to the form behind.

bool cPanel::IsOverRow() const {
    const cVec2& mouse = cInput::GetMousePositionOrient();
    return IsInside(m_ClippedBounds, mouse) && (IsInside(m_Title2, mouse) || IsInside(m_Arrow2, mouse));
}

bool cPanel::IsHot(bool covered) {
    const bool captured = cWidgets::IsCaptured(this);
    const bool hot = !covered && !m_Headless && IsVisible() && IsEnabled() && (captured || IsOverRow());
    m_Hot.Target = hot ? 1.0f : 0.0f;
    m_TargetGrow = hot ? m_Theme->ButtonHotGrow : m_Theme->ButtonIdleGrow;
    return hot;
}

bool cPanel::OnChar(int, int) {
    return cWidgets::IsCaptured(this); // a key that holds it lets no other move the focus
}

bool cPanel::OnButtonDown(int code) {
    if (m_Headless || !IsVisible() || !IsEnabled() || GetFormState() == 0 || GetParentClient().IsEmpty()) {
        return false;
    }
    if (cWidgets::IsCaptured(this)) {
        return true;
    }
    const bool isKey = code == cInput::Enter || code == cInput::Space || code == cInput::ButtonA;
    if (code == cInput::RightButton && IsOverRow()) {
        SetFocus(this);
        return true;
    }
    if (isKey ? !HasFocus(this) : code != cInput::LeftButton || !IsOverRow()) {
        return false;
    }
    cWidgets::SetCapture(this);
    if (!cWidgets::IsCaptured(this)) {
        return true;
    }
    m_PressCode = code;
    const Guard guard(this);
    if (!IsActive()) {
        Activate();
    }
    if (!guard.IsGone()) {
        SetFocus(this);
    }
    if (!guard.IsGone() && !m_Theme->PanelToggleOnRelease) {
        Toggle();
    }
    return true;
}

bool cPanel::OnButtonUp(int code) {
    if (!cWidgets::IsCaptured(this)) {
        return false;
    }
    if (code == m_PressCode) {
        m_PressCode = -1;
        cWidgets::ReleaseCapture();
        if (m_Theme->PanelToggleOnRelease && (code != cInput::LeftButton || IsOverRow())) {
            Toggle();
        }
    }
    return true;
}

bool cPanel::OnMouseMove() {
    return cWidgets::IsCaptured(this);
}

void cPanel::Toggle() {
    if (m_Simple) {
        return;
    }
    m_Expanded = !m_Expanded;
    if (m_Parent) {
        m_Parent->MsgProc(cWidgets::GetWidgetID(this), cControl::PanelToggled, nullptr, nullptr);
    }
}

} // namespace trellis
