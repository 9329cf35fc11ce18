#include "ui/cControl.h"

#include "render/cRender.h"
#include "ui/cWidgets.h"

#include <algorithm>

namespace trellis {

namespace {

constexpr cVec2 Nowhere(cMath::FloatMaxValue, cMath::FloatMaxValue);

} // namespace

cControl::cControl(cWnd* parent, const char* text, float x, float y, int align, bool visible, bool enabled)
    : cWnd(parent), m_Text(text) {
    m_Pos = {x, y};
    m_Align = align;
    m_Visible = visible;
    m_Enabled = enabled;
    // At once as it will be: a control does not fade in.
    m_CurVisible = m_TargetVisible = IsVisible() ? 1.0f : 0.0f;
    m_CurEnabled = m_TargetEnabled = IsEnabled() ? 1.0f : 0.0f;
    m_CurGrow = m_TargetGrow = m_Theme->ButtonIdleGrow;
}

float cControl::GetWithinToolBarWidth() {
    return m_RelBounds.Width() + m_Theme->RowInsets.x + m_Theme->RowInsets.z;
}

void cControl::Send(Msg msg, const void* before, const void* after) {
    if (m_Parent) {
        m_Parent->MsgProc(cWidgets::GetWidgetID(this), msg, before, after);
    }
}

// ---- Layout

void cControl::LayOut(const cVec2& valueSize) {
    const float w = m_Size.x != 0 ? m_Size.x : valueSize.x, h = m_Size.y != 0 ? m_Size.y : valueSize.y;
    m_RelValue = {0, -h, w, 0};
    m_RelValue.AlignPoint(m_Align, m_Pos.x, m_Pos.y);
    m_RelLabel = cRect::Empty;
    m_RelBounds = m_RelValue;
}

void cControl::LayOut(int font, float padding, const cVec2& valueSize) {
    LayOut(valueSize);
    if (!m_Text.IsEmpty()) {
        const float right = m_RelValue.x0 - padding;
        m_RelLabel = {right - cRender::MeasureStringCells(font, m_Text).Width(), m_RelValue.y0, right, m_RelValue.y1};
        m_RelBounds.x0 = m_RelLabel.x0;
    }
    if (m_Parent && m_Parent->GetType() == ToolBarType) { // side by side, not in a column
        const cVec2 by(m_Pos.x + m_Theme->RowInsets.x - m_RelBounds.x0, 0);
        for (cRect* r : {&m_RelValue, &m_RelBounds}) {
            r->Translate(by);
        }
        if (!m_Text.IsEmpty()) {
            m_RelLabel.Translate(by);
        }
    }
}

void cControl::CalcRects() {
    CalcRelBounds();
    const cRect client = GetParentClient();
    if (client.IsEmpty() || m_RelBounds.IsEmpty()) {
        EmptyRects();
        return;
    }
    const cVec2 corner(client.x0, client.y1);
    const auto toScreen = [&](const cRect& rel, cRect* out) {
        *out = rel;
        if (!rel.IsEmpty()) {
            out->Translate(corner);
        }
    };
    toScreen(m_RelBounds, &m_BaseBounds);
    toScreen(m_RelLabel, &m_LabelRect);
    toScreen(m_RelValue, &m_ValueRect);

    const float side = std::max(m_BaseBounds.Width(), m_BaseBounds.Height());
    const cVec2 center = m_BaseBounds.Center();
    const auto grown = [&](float factor) {
        const cVec2 half = m_BaseBounds.Size() * (0.5f * factor);
        return cRect(center.x - half.x, center.y - half.y, center.x + half.x, center.y + half.y);
    };
    const auto factorOf = [side](float grow) { return side > 0 ? (2 * grow + side) / side : 1.0f; };
    const float factor = factorOf(m_CurGrow);
    m_Transform = cMat4::ScalingAt({center.x, center.y, 0}, {factor, factor, 1});
    m_Bounds = factor == 1 ? m_BaseBounds : grown(factor);
    cWnd::CalcRects();
    // It is touched over the size that it swells to.
    const cRect hit = m_Grows ? grown(factorOf(m_Theme->ButtonHotGrow)) : m_BaseBounds;
    const cRect clipped = cRect::Intersect(hit, m_Parent->m_ClippedClient);
    m_ClippedBounds = clipped.IsEmpty() ? cRect::Empty : clipped;
}

// ---- Frame

void cControl::OnRender() {
    Tend(&m_CurGrow, m_TargetGrow, m_Theme->ButtonGrowSpeed);
    Tend(&m_Hot.Cur, m_Hot.Target, m_Theme->HotTendSpeed);
    CalcTends();
    if (GetParentClient().IsEmpty()) {
        EmptyRects();
        return;
    }
    CalcRects();
    if (m_CurVisible <= 0 || m_ClippedBounds.IsEmpty()) {
        return;
    }
    cTheme::DrawArgs args;
    args.Clip = m_Parent->m_ClippedClient;
    args.Rect = m_BaseBounds;
    args.LabelRect = m_LabelRect;
    args.ValueRect = m_ValueRect;
    args.Text = m_Text;
    if (m_CurGrow != 0) {
        args.Transform = m_Transform;
    }
    args.Pressed = cWidgets::IsCaptured(this) && (m_PressCode != cInput::LeftButton || IsMouseInside());
    args.Active = HasFocus(this);
    args.Hot = m_Hot.Cur;
    args.Hovered = m_Hot.Target > 0;
    args.Enabled = IsEnabled();
    args.Visible = IsVisible();
    args.CurEnabled = m_CurEnabled;
    args.CurVisible = m_CurVisible;
    args.Activity = m_Parent->GetCurActivity();
    args.FormAlpha = m_Parent->GetCurAlpha();
    if (FillDrawArgs(&args)) {
        m_Theme->Draw(args);
    }
}

// ---- Input

bool cControl::IsMouseInside() const {
    return IsInside(m_ClippedBounds, cInput::GetMousePositionOrient());
}

bool cControl::IsLive() {
    return IsVisible() && IsEnabled() && GetFormState() != 0 && !GetParentClient().IsEmpty();
}

int cControl::StepOf(int code) {
    switch (code) {
    case cInput::Left:
    case cInput::LeftThumbLeft:
    case cInput::RightThumbLeft:
        return -1;
    case cInput::Right:
    case cInput::LeftThumbRight:
    case cInput::RightThumbRight:
        return 1;
    }
    return 0;
}

bool cControl::IsPressKey(int code) {
    return (code == cInput::Enter || code == cInput::Space || code == cInput::ButtonA) && HasFocus(this);
}

bool cControl::Capture(int code) {
    cWidgets::SetCapture(this);
    if (!cWidgets::IsCaptured(this)) {
        return false;
    }
    m_PressCode = code;
    const Guard guard(this);
    if (!IsActive()) {
        Activate();
    }
    return !guard.IsGone();
}

bool cControl::TrackHot(bool covered) {
    const bool captured = cWidgets::IsCaptured(this);
    const bool hot = !covered && IsVisible() && IsEnabled() && (captured || IsMouseInside());
    m_Hot.Target = hot ? 1.0f : 0.0f;
    m_TargetGrow = !m_Grows   ? 0
                   : captured ? m_Theme->ButtonPressGrow
                   : hot      ? m_Theme->ButtonHotGrow
                              : m_Theme->ButtonIdleGrow;
    // Once for each place of the mouse: at rest it does not take back what the keys have moved on.
    const cVec2 mouse = hot ? cInput::GetMousePositionOrient() : Nowhere;
    if (!hot) {
        m_TookFocusAt = Nowhere;
    } else if (m_TabStop && m_Theme->FocusFollowsMouse && m_TookFocusAt != mouse && !cWidgets::IsCaptured() &&
               IsActive()) {
        m_TookFocusAt = mouse;
        if (!HasFocus(this)) {
            SetFocus(this);
        }
    }
    return hot;
}

} // namespace trellis
