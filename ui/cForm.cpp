#include "ui/cForm.h"

#include "render/cRender.h"
#include "ui/cToolBar.h"
#include "ui/cWidgets.h"
#include "view/cViewer.h"

#include <algorithm>

namespace trellis {

namespace {

using Parts = cTheme::Parts;

template <class T> bool MoveToEnd(cList<T*>* list, T* item) {
    const int at = list->IndexOf(item);
    if (at == -1) {
        return false;
    }
    list->RemoveAt(at);
    list->Add(item);
    return true;
}

bool HoldsCapture(const cWnd* wnd) {
    return wnd && (cWidgets::IsCaptured(wnd) || HoldsCapture(wnd->m_ToolBar) ||
                   std::any_of(wnd->m_Children.Data(), wnd->m_Children.Data() + wnd->m_Children.Count(), HoldsCapture));
}

} // namespace

cForm::cForm(cWnd* parent, const char* title, const cRect& bounds, const cTheme* theme)
    : cWnd(parent, theme), m_Title(title) {
    m_Visible = m_Enabled = true;
    m_VScroll = m_HScroll = m_WheelEnabled = m_MiddlePan = true;
    m_Bounds = bounds;
    m_RelClient = cRect::Zero;
    if (!parent) {
        s_Forms.Add(this);
    }
}

cForm::~cForm() {
    cForm::OnNewParent();
}

cRect cForm::GetBaseRect() const {
    if (m_Parent) {
        const cRect content = GetParentClient();
        // A parent without controls has no content: then what is to be seen of it.
        return content.Width() > 0 && content.Height() > 0 ? content : m_Parent->m_Client;
    }
    const cViewer* viewer = cRender::GetViewer();
    return viewer ? viewer->Viewport : cRect(0, 0, 640, 480);
}

// ---- States

/// What a form that was never laid out comes back to: there may be no base yet to take anchors from.
void cForm::KeepNormal() {
    if (m_State == Normal && m_Align0 == -1) {
        m_NormalBounds = m_NormalBounds == cRect::Empty ? m_Bounds : m_NormalBounds;
    }
}

void cForm::OnNewParent() {
    const int at = s_Forms.IndexOf(this);
    if (at != -1) {
        s_Forms.RemoveAt(at);
    }
}

void cForm::Minimize() {
    LetGo();
    if (m_State == Minimized) {
        m_State = m_PrevState;
    } else {
        KeepNormal();
        m_PrevState = m_State;
        m_State = Minimized;
    }
    CalcRects();
}

void cForm::Maximize() {
    LetGo();
    KeepNormal();
    m_State = m_State == Maximized ? Normal : Maximized;
    CalcRects();
}

void cForm::Close() {
    if (m_Closed) {
        return;
    }
    m_Closed = true;
    m_Visible = false;
    m_DragPart = 0;
    if (HoldsCapture(this)) {
        cWidgets::ReleaseCapture(); // the manager deletes this form soon, and would go on sending to it
    }
    Vanish();
    Leave(); // last: whoever hears of it may free the form
}

/// Neither the form nor what is in it is drawn or touched. It remembers where it was.
void cForm::Vanish() {
    const cRect bounds = m_Bounds;
    EmptyRects();
    m_Bounds = bounds;
}

/// Ends what the mouse does to the form.
void cForm::LetGo() {
    m_DragPart = 0;
    if (cWidgets::IsCaptured(this)) {
        cWidgets::ReleaseCapture();
    }
}

// ---- Stacking and focus

void cForm::Activate() {
    if (m_Closed) {
        return;
    }
    if (m_Parent) {
        MoveToEnd(&m_Parent->m_Children, static_cast<cWnd*>(this));
        m_Parent->Activate();
    } else if (MoveToEnd(&s_Forms, this)) {
        cWidgets::BringToFront(this);
    }
}

bool cForm::IsActive() {
    if (m_Closed) {
        return false;
    }
    const auto isLast = [](const auto& list, const cWnd* item) {
        return list.Count() > 0 && list[list.Count() - 1] == item;
    };
    return m_Parent ? isLast(m_Parent->m_Children, this) && m_Parent->IsActive() : isLast(s_Forms, this);
}

float cForm::GetCurAlpha() {
    return IsMovedOrSized() ? m_Theme->DragAlpha : 1;
}

bool cForm::HasFocus(cWnd* control) {
    return HasFocusNoEnabled(control) && control->IsEnabled();
}

bool cForm::HasFocusNoEnabled(cWnd* control) {
    return control && control == m_Focus && IsActive() && control->IsVisible();
}

void cForm::ClearFocus(cWnd* control) {
    if (control && control == m_Focus) {
        SetFocus(nullptr); // a subclass may watch it
    }
}

bool cForm::OnChar(int, int code) {
    if (cWidgets::IsCaptured(this) || m_State == Minimized || !IsActive() ||
        (m_Parent && GetParentClient().IsEmpty())) {
        return false;
    }
    // Both sticks at once would go two controls a push.
    const bool isLeftHeld = cInput::IsDown(cInput::LeftThumbUp) || cInput::IsDown(cInput::LeftThumbDown) ||
                            cInput::IsDown(cInput::LeftThumbLeft) || cInput::IsDown(cInput::LeftThumbRight);
    const bool isForward = code == cInput::Tab || code == cInput::Down || code == cInput::LeftThumbDown ||
                           (code == cInput::RightThumbDown && !isLeftHeld);
    const bool isBack =
        code == cInput::Up || code == cInput::LeftThumbUp || (code == cInput::RightThumbUp && !isLeftHeld);
    if (!isForward && !isBack) {
        return false;
    }
    GoTab(isForward);
    return true;
}

void cForm::GoTab(bool forward) {
    cList<cWnd*> stops;
    if (m_ToolBar) {
        m_ToolBar->ListChildren(&stops, true);
    }
    ListChildren(&stops, true);

    // A disabled panel stays a stop: it says what is beneath it.
    const auto isEligible = [this](cWnd* w) {
        const cWnd* form = w->m_Parent; // what is in a child form takes that form's focus
        while (form && form != this && form->GetType() != FormType) {
            form = form->m_Parent;
        }
        return form == this && w->IsVisible() && (w->IsEnabled() || w->GetType() == PanelType) && w->GetTabStop();
    };
    const int count = stops.Count(), at = stops.IndexOf(m_Focus), step = forward ? 1 : -1;
    cWnd* next = nullptr;
    cWnd* first = nullptr;
    for (int i = forward ? 0 : count - 1; i >= 0 && i < count && !next; i += step) {
        if (!isEligible(stops[i])) {
            continue;
        }
        first = first ? first : stops[i];
        if (forward ? i > at : i < at) { // without a focus, everything is ahead and nothing behind
            next = stops[i];
        }
    }
    if (!next && m_Theme->TabWraps) {
        next = first;
    }
    if (!next) {
        return;
    }
    const Guard guard(this);
    next->OnTabStop();
    if (!guard.IsGone()) {
        ScrollToFocusedControl();
    }
}

void cForm::ScrollToFocusedControl() {
    if (!m_Focus || m_Focus->m_Bounds.IsEmpty()) {
        return;
    }
    cRect r = m_Focus->m_Bounds;
    const float margin = m_Theme->FocusMargin;
    const cWnd* w = m_Focus;
    while (w && w != m_ToolBar) {
        w = w->m_Parent;
    }
    if (w) {
        const cRect& bar = m_ToolBar->m_Client;
        r.Translate({m_ToolBar->m_Scroll - m_ToolBar->m_AlignedScroll, 0}); // since the last layout
        if (r.x0 - margin < bar.x0) {
            m_ToolBar->m_Scroll += bar.x0 - (r.x0 - margin);
        } else if (r.x1 + margin > bar.x1) {
            m_ToolBar->m_Scroll += bar.x1 - (r.x1 + margin);
        }
        m_ToolBar->m_Scroll = std::min(m_ToolBar->m_Scroll, 0.0f);
        return;
    }
    if (m_Client.IsEmpty()) {
        return;
    }
    if (m_Focus->GetType() == PanelType) {
        r.y0 = r.y1 - m_Theme->PanelTitleHeight;
    }
    r = {r.x0 - margin, r.y0 - margin, r.x1 + margin, r.y1 + margin};
    // The control is where the last layout has put it; what was scrolled since comes on top.
    const cVec2 origin = m_ClientBounds.GetPoint(cRect::LeftTop) + m_RelClient.GetPoint(cRect::LeftTop);
    r.Translate(origin - m_AbsClient.GetPoint(cRect::LeftTop));
    const cVec2 from = r.GetPoint(cRect::LeftTop);
    r.AlignInside(m_Client);
    m_RelClient.Translate(r.GetPoint(cRect::LeftTop) - from);
}

// ---- The mouse

bool cForm::IsMovedOrSized() const {
    return m_DragPart == Parts::FormTitleBar || m_DragPart == Parts::FormGrip || IsSizingBorderDrag();
}

int cForm::GetMouseOver() {
    const cVec2 mouse = cInput::GetMousePositionOrient();
    if (!IsInside(m_ClippedBounds, mouse)) {
        return Parts::None;
    }
    m_Sizable = m_State == Normal;
    if (IsInside(m_CloseRect, mouse)) {
        return Parts::FormClose;
    }
    if (IsInside(m_MinimizeRect, mouse)) {
        return Parts::FormMinimize;
    }
    if (IsInside(m_MaximizeRect, mouse)) {
        return Parts::FormMaximize;
    }
    if (IsInside(m_TitleRect, mouse)) {
        return Parts::FormTitleBar;
    }
    const int part = m_State == Minimized ? int(Parts::None) : cWnd::GetMouseOver();
    if (part == Parts::None && m_State == Normal && IsInside(m_GripRect, mouse)) {
        return Parts::FormGrip;
    }
    return part;
}

/// Another widget may hold the capture: then nothing is held.
void cForm::Hold(int part) {
    cWidgets::SetCapture(this);
    m_DragPart = cWidgets::IsCaptured(this) ? part : 0;
}

bool cForm::OnButtonDown(int code) {
    m_WheelEnabled = m_State != Minimized;
    const Guard guard(this);
    if (!cWnd::OnButtonDown(code)) {
        return false;
    }
    if (guard.IsGone() || m_Closed || m_DragPart != 0 || code != cInput::LeftButton) {
        return true;
    }
    const cVec2 mouse = cInput::GetMousePositionOrient();
    const int part = GetMouseOver();
    switch (part) {
    case Parts::FormTitleBar:
        if (cInput::IsDoubleClick()) {
            m_State == Minimized ? Minimize() : Maximize();
            return true;
        }
        if (m_State == Maximized) {
            return true;
        }
        break;
    case Parts::FormGrip:
        m_Grab = m_Bounds.GetPoint(cRect::RightBottom) - mouse;
        break;
    case Parts::FormClose:
    case Parts::FormMinimize:
    case Parts::FormMaximize:
        break;
    default:
        return true;
    }
    m_LastMouse = mouse;
    Hold(part);
    return true;
}

bool cForm::OnMouseMove() {
    const cVec2 last = m_LastMouse;
    const Guard guard(this);
    if (!cWnd::OnMouseMove()) {
        return false;
    }
    if (guard.IsGone()) {
        return true;
    }
    const cVec2 mouse = cInput::GetMousePositionOrient();
    if (m_DragPart == Parts::FormGrip) {
        m_Bounds.x1 = mouse.x + m_Grab.x;
        m_Bounds.y0 = mouse.y + m_Grab.y;
    } else if (m_DragPart != Parts::FormTitleBar) {
        return true;
    } else if (m_State == Minimized) {
        m_MinOffset += mouse - last;
    } else {
        m_Bounds.Translate(mouse - last);
    }
    CalcRects();
    return true;
}

bool cForm::OnButtonUp(int code) {
    const int held = m_DragPart;
    if (!cWnd::OnButtonUp(code)) {
        return false;
    }
    if (held == 0 || m_DragPart != 0 || GetMouseOver() != held) {
        return true;
    }
    if (held == Parts::FormClose) {
        Close();
    } else if (held == Parts::FormMinimize) {
        Minimize();
    } else if (held == Parts::FormMaximize) {
        Maximize();
    }
    return true;
}

bool cForm::OnSetCursor(cInput::Cursor::Enum* cursor) {
    if (m_DragPart != Parts::FormGrip) {
        if (cWnd::OnSetCursor(cursor)) {
            return true;
        }
        if (m_HotPart != Parts::FormGrip) {
            return false;
        }
    }
    *cursor = cInput::Cursor::OtherDiagonal;
    return true;
}

// ---- Drawing

void cForm::OnRender() {
    if (m_Closed) {
        return;
    }
    const Guard guard(this);
    CalcRects();
    if (guard.IsGone()) {
        return;
    }
    CalcTends();
    const auto tend = [this](Amount* amount, int part) {
        amount->Target = m_HotPart == part || m_DragPart == part ? 1.0f : 0.0f;
        Tend(&amount->Cur, amount->Target, m_Theme->HotTendSpeed);
    };
    tend(&m_GripHot, Parts::FormGrip);
    tend(&m_CloseHot, Parts::FormClose);
    tend(&m_MinimizeHot, Parts::FormMinimize);
    tend(&m_MaximizeHot, Parts::FormMaximize);

    cTheme::DrawArgs args;
    args.Clip = GetBaseRect();
    if (m_CurVisible <= 0 || m_ClippedBounds.IsEmpty() || args.Clip.Width() <= 0 || args.Clip.Height() <= 0) {
        return; // an empty clip would be none
    }
    args.Text = m_Title;
    args.Minimized = m_State == Minimized;
    args.Active = IsActive();
    args.Activity = GetCurActivity();
    args.FormAlpha = GetCurAlpha();
    args.Enabled = IsEnabled();
    args.Visible = IsVisible();
    args.CurEnabled = m_CurEnabled;
    args.CurVisible = m_CurVisible;
    DrawDockRegions(&args);
    DrawParts(&args);
    if (m_State != Minimized) {
        cWnd::OnRender();
    }
}

/// Where the corners that follow the mouse keep their dock points.
void cForm::DrawDockRegions(cTheme::DrawArgs* args) const {
    args->Part = Parts::DockRegion;
    const auto draw = [&](const cRect& region) {
        if (!region.IsEmpty()) {
            args->Rect = region;
            m_Theme->Draw(*args);
        }
    };
    if (m_State == Minimized && m_DragPart == Parts::FormTitleBar) {
        draw(m_MinRegion);
    } else if (m_State == Normal && IsMovedOrSized()) {
        const bool isLeftTop =
            m_DragPart == Parts::SizeLeft || m_DragPart == Parts::SizeTop || m_DragPart == Parts::SizeLeftTop;
        if (isLeftTop || m_DragPart == Parts::FormTitleBar) {
            draw(m_Region0);
        }
        if (!isLeftTop) {
            draw(m_Region1);
        }
    }
}

void cForm::DrawParts(cTheme::DrawArgs* args) const {
    const auto draw = [&](Parts::Enum part, const cRect& rect, float hot = 0, int held = Parts::None) {
        if (!rect.IsEmpty()) {
            args->Part = part;
            args->Rect = rect;
            args->Hot = hot;
            args->Pressed = held != Parts::None && m_DragPart == held && m_HotPart == held;
            m_Theme->Draw(*args);
        }
    };
    draw(Parts::FormBody, m_Bounds);
    draw(Parts::FormTitleBar, m_TitleRect);
    draw(Parts::FormTitle, m_TitleRect);
    draw(Parts::FormClose, m_CloseRect, m_CloseHot.Cur, Parts::FormClose);
    draw(m_State == Minimized ? Parts::FormRestoreMinimized : Parts::FormMinimize, m_MinimizeRect, m_MinimizeHot.Cur,
         Parts::FormMinimize);
    draw(m_State == Maximized ? Parts::FormRestoreMaximized : Parts::FormMaximize, m_MaximizeRect, m_MaximizeHot.Cur,
         Parts::FormMaximize);
    if (m_State != Minimized) {
        draw(Parts::FormClient, m_ClientBounds);
    }
    if (m_State == Normal) {
        draw(Parts::FormGrip, m_GripRect, m_GripHot.Cur, Parts::FormGrip);
    }
}

} // namespace trellis
