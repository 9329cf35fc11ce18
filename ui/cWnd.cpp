#include "ui/cWnd.h"

#include "foundation/cTimer.h"
#include "ui/cTheme.h"
#include "ui/cToolBar.h"
#include "ui/cWidgets.h"

#include <cmath>

namespace trellis {

namespace {

constexpr int FormLayer = 3;

struct SizingInfo {
    bool Left, Top, Right, Bottom;
    cInput::Cursor::Enum Cursor;
};
constexpr SizingInfo s_Sizing[] = {
    // indexed by part - SizeLeft
    {true, false, false, false, cInput::Cursor::Horizontal},   {false, true, false, false, cInput::Cursor::Vertical},
    {false, false, true, false, cInput::Cursor::Horizontal},   {false, false, false, true, cInput::Cursor::Vertical},
    {false, false, true, true, cInput::Cursor::OtherDiagonal}, // SizeRightBottom
    {true, true, false, false, cInput::Cursor::OtherDiagonal}, {true, false, false, true, cInput::Cursor::Diagonal},
    {false, true, true, false, cInput::Cursor::Diagonal},
};
static_assert(std::size(s_Sizing) == cTheme::Parts::SizeRightTop - cTheme::Parts::SizeLeft + 1);

constexpr bool IsSizing(int part) {
    return part >= cTheme::Parts::SizeLeft && part <= cTheme::Parts::SizeRightTop;
}

} // namespace

cWnd::cWnd(cWnd* parent, const cTheme* theme) : m_Theme(theme), m_Parent(parent) {
    for (cWnd* w = parent; w; w = w->m_Parent) {
        m_Theme = w->m_Theme;
    }
}

cWnd::~cWnd() {
    Leave();
    for (Guard* guard = Guard::s_Innermost; guard; guard = guard->m_Outer) {
        if (guard->m_Wnd == this) {
            guard->m_Wnd = nullptr;
        }
    }
    cList<cWnd*> children = std::move(m_Children);
    if (cWnd* toolBar = std::exchange(m_ToolBar, nullptr)) {
        children.Add(toolBar);
    }
    for (cWnd* child : children) {
        child->m_Parent = nullptr;
    }
    for (const cWnd* child : children) { // one may have freed another; an unknown pointer is ignored
        cWidgets::FreeWidget(child, true);
    }
}

/// Out of the parent's hands, and the form's: it keeps no focus on what is no longer beneath it. That is told while the
/// way up is still there. Whoever is told may free anything.
void cWnd::Leave() {
    if (!m_Parent) {
        return;
    }
    const Guard guard(this);
    ClearFocusBeneath(this);
    if (guard.IsGone() || !m_Parent) {
        return;
    }
    cWnd* parent = m_Parent;
    const Guard parentGuard(parent);
    parent->Detach(this);
    if (!parentGuard.IsGone()) {
        parent->ClearFocus(this);
    }
    if (!guard.IsGone()) {
        m_Parent = nullptr;
    }
}

/// No window beneath `wnd` keeps the focus.
void cWnd::ClearFocusBeneath(cWnd* wnd) {
    const Guard guard(wnd);
    const auto clear = [&](cWnd* child) {
        const Guard childGuard(child);
        ClearFocusBeneath(child);
        if (!childGuard.IsGone() && !guard.IsGone()) {
            wnd->ClearFocus(child);
        }
    };
    // A child may go, or change its place: each is looked at anew, and none is waited for.
    int at = 0;
    for (int left = wnd->m_Children.Count(); left > 0 && at < wnd->m_Children.Count(); left--) {
        cWnd* child = wnd->m_Children[at];
        clear(child);
        if (guard.IsGone()) {
            return;
        }
        at += at < wnd->m_Children.Count() && wnd->m_Children[at] == child;
    }
    if (wnd->m_ToolBar) {
        clear(wnd->m_ToolBar);
    }
}

void cWnd::Detach(const cWnd* wnd) {
    const int at = m_Children.IndexOf(const_cast<cWnd*>(wnd));
    if (at != -1) {
        m_Children.RemoveAt(at);
    }
    if (m_ToolBar == wnd) {
        m_ToolBar = nullptr;
    }
}

// ---- The tree

/// Nobody can be taken in by what is beneath himself.
bool cWnd::IsBeneath(const cWnd* wnd) const {
    const cWnd* w = this;
    while (w && w != wnd) {
        w = w->m_Parent;
    }
    return w;
}

/// In the layer of the root. @return the id, also of a window that the manager already has; -1: refused, or one of the
/// two has gone in a callback
int cWnd::AddToManager(cWnd* wnd) {
    if (!wnd) {
        return -1;
    }
    if (IsBeneath(wnd)) {
        return -1;
    }
    int id = cWidgets::GetWidgetID(wnd);
    if (id == -1) {
        const cWnd* root = GetTopLevelParent();
        const int layer = cWidgets::GetWidgetLayer(root ? root : this);
        id = cWidgets::AddWidget(wnd, layer == -1 ? FormLayer : layer);
    }
    if (id == -1) {
        return -1;
    }
    const Guard guard(this), wndGuard(wnd);
    if (wnd->m_Parent != this) {
        wnd->Leave(); // a callback may do anything
    }
    if (guard.IsGone() || wndGuard.IsGone() || IsBeneath(wnd)) {
        return -1;
    }
    wnd->m_Parent = this;
    wnd->OnNewParent();
    if (wnd->m_Children.Count() != 0) {
        cWidgets::BringToFront(wnd); // it came with children, which belong in front of it
    }
    return guard.IsGone() || wndGuard.IsGone() ? -1 : id;
}

int cWnd::AddChild(cWnd* child, bool layOut) {
    const int id = AddToManager(child);
    if (id != -1 && m_Children.IndexOf(child) == -1) {
        Detach(child); // it may have been the tool bar
        m_Children.Add(child);
    }
    if (id != -1) { // rows, and the panels that hold them, have their heights before their first frame
        child->CalcRelBounds();
        for (cWnd* w = layOut ? this : nullptr; w; w = w->m_Parent) {
            w->CalcRelBounds();
        }
    }
    return id;
}

int cWnd::SetToolBar(cToolBar* toolBar) {
    if (m_ToolBar && m_ToolBar != toolBar && !FreeChild(m_ToolBar)) {
        return -1;
    }
    const int id = AddToManager(toolBar);
    if (id != -1) {
        Detach(toolBar); // it may have been a child
        m_ToolBar = toolBar;
    }
    return id;
}

bool cWnd::FreeChild(cWnd* child) {
    const Guard guard(this), childGuard(child);
    child->Leave();
    if (!childGuard.IsGone()) {
        cWidgets::FreeWidget(child, true);
    }
    return !guard.IsGone();
}

int cWnd::GetLevel() const {
    int level = 0;
    for (const cWnd* w = m_Parent; w; w = w->m_Parent) {
        level++;
    }
    return level;
}

cWnd* cWnd::GetTopLevelParent() {
    cWnd* root = m_Parent;
    while (root && root->m_Parent) {
        root = root->m_Parent;
    }
    return root;
}

void cWnd::ListChildren(cList<cWnd*>* out, bool skipCollapsed) {
    if (skipCollapsed && IsCollapsed()) {
        return;
    }
    for (cWnd* child : m_Children) {
        out->Add(child);
        child->ListChildren(out, skipCollapsed);
    }
}

bool cWnd::IsVisible() const {
    const cWnd* w = this;
    while (w && w->m_Visible) {
        w = w->m_Parent;
    }
    return !w;
}

bool cWnd::IsEnabled() const {
    const cWnd* w = this;
    while (w && w->m_Enabled) {
        w = w->m_Parent;
    }
    return !w;
}

void cWnd::OnBringToFront() {
    const Guard guard(this);
    // A child may go, or change its place: each is looked at anew, and none is waited for.
    int at = 0;
    for (int left = m_Children.Count(); left > 0 && at < m_Children.Count(); left--) {
        cWnd* child = m_Children[at];
        cWidgets::BringToFront(child);
        if (guard.IsGone()) {
            return;
        }
        at += at < m_Children.Count() && m_Children[at] == child;
    }
    if (m_ToolBar) {
        cWidgets::BringToFront(m_ToolBar);
    }
}

// ---- What the form answers

void cWnd::MsgProc(int id, int msg, const void* before, const void* after) {
    if (m_Parent) {
        m_Parent->MsgProc(id, msg, before, after);
    }
}

void cWnd::Activate() {
    if (m_Parent) {
        m_Parent->Activate();
    }
}

bool cWnd::IsActive() {
    return m_Parent && m_Parent->IsActive();
}

int cWnd::GetFormState() {
    return m_Parent ? m_Parent->GetFormState() : 0;
}

float cWnd::GetCurActivity() {
    return m_Parent ? m_Parent->GetCurActivity() : m_CurActivity;
}

float cWnd::GetCurAlpha() {
    return m_Parent ? m_Parent->GetCurAlpha() : 1;
}

cRect cWnd::GetRelBounds() {
    return cRect::Empty;
}

bool cWnd::HasFocus(cWnd* control) {
    return m_Parent && m_Parent->HasFocus(control);
}

bool cWnd::HasFocusNoEnabled(cWnd* control) {
    return m_Parent && m_Parent->HasFocusNoEnabled(control);
}

void cWnd::SetFocus(cWnd* control) {
    if (m_Parent) {
        m_Parent->SetFocus(control);
    }
}

void cWnd::ClearFocus(cWnd* control) {
    if (m_Parent) {
        m_Parent->ClearFocus(control);
    }
}

// ---- Animation

void cWnd::Tend(float* current, float target, float speed) {
    const float distance = target - *current;
    const float step = cTimer::GetSystemFrameTimeSec() * speed;
    if (speed == cTheme::Immediate || std::fabs(distance) <= step) {
        *current = target;
    } else {
        *current += std::copysign(step, distance);
    }
}

void cWnd::CalcTends() {
    m_TargetVisible = IsVisible() ? 1.0f : 0.0f;
    m_TargetEnabled = IsEnabled() ? 1.0f : 0.0f;
    m_TargetActivity = IsActive() ? 1.0f : 0.0f;
    Tend(&m_CurVisible, m_TargetVisible, m_Theme->VisibleTendSpeed);
    Tend(&m_CurEnabled, m_TargetEnabled, m_Theme->EnabledTendSpeed);
    Tend(&m_CurActivity, m_TargetActivity, m_Theme->ActivityTendSpeed);
    if (m_VScroll) {
        CalcBarTends(&m_VBarAmounts, m_VBarShown, cTheme::Parts::VScrollThumb, cTheme::Parts::VScrollArrowUp);
    }
    if (m_HScroll) {
        CalcBarTends(&m_HBarAmounts, m_HBarShown, cTheme::Parts::HScrollThumb, cTheme::Parts::HScrollArrowLeft);
    }
}

void cWnd::CalcBarTends(BarAmounts* amounts, bool shown, int thumb, int firstArrow) const {
    const auto tend = [](Amount& amount, bool on, float speed) {
        amount.Target = on ? 1.0f : 0.0f;
        Tend(&amount.Cur, amount.Target, speed);
    };
    const auto isHotOrHeld = [this](int part) { return m_HotPart == part || m_DragPart == part; };
    tend(amounts->Thumb, isHotOrHeld(thumb), m_Theme->HotTendSpeed);
    tend(amounts->Arrows[0], isHotOrHeld(firstArrow), m_Theme->HotTendSpeed);
    tend(amounts->Arrows[1], isHotOrHeld(firstArrow + 1), m_Theme->HotTendSpeed);
    tend(amounts->Shown, shown, m_Theme->EnabledTendSpeed);
}

// ---- The mouse

bool cWnd::IsSizingBorderDrag() const {
    return IsSizing(m_DragPart);
}

bool cWnd::IsScrollBarDrag() const {
    return m_DragPart >= cTheme::Parts::VScrollThumb && m_DragPart <= cTheme::Parts::HScrollArrowRight;
}

bool cWnd::IsWndPartDrag() const {
    return IsSizingBorderDrag() || IsScrollBarDrag() || m_DragPart == cTheme::Parts::FormClient;
}

/// Captures. Another widget may hold the capture and have let the press through: then nothing is held, as the release
/// would never be seen.
void cWnd::Hold(int part) {
    cWidgets::SetCapture(this);
    m_DragPart = cWidgets::IsCaptured(this) ? part : 0;
}

bool cWnd::OnButtonDown(int code) {
    if (!IsVisible() || !IsEnabled()) {
        return false;
    }
    if (code == cInput::WheelUp || code == cInput::WheelDown) {
        return OnWheel();
    }
    if (cWidgets::IsCaptured(this)) {
        return true;
    }
    const cVec2 mouse = cInput::GetMousePositionOrient();
    if (!cInput::IsMouseButtonCode(code) || !IsInside(m_ClippedBounds, mouse)) {
        return false;
    }
    const Guard guard(this);
    if (!IsActive()) {
        Activate();
        if (guard.IsGone()) {
            return true;
        }
    }
    if (m_MiddlePan && code == cInput::MiddleButton) {
        if ((m_VScroll || m_HScroll) && IsInside(m_Client, mouse)) {
            m_Grab = mouse;
            m_SavedRelClient = m_RelClient;
            Hold(cTheme::Parts::FormClient);
        }
        return true;
    }
    if (code != cInput::LeftButton) {
        return true;
    }

    using Parts = cTheme::Parts;
    const int part = GetMouseOver();
    if (part == Parts::VScrollThumb || part == Parts::HScrollThumb) {
        HoldThumb(mouse, part == Parts::VScrollThumb);
    } else if (part >= Parts::VScrollPageUp && part <= Parts::HScrollArrowRight) {
        if (!Step(part)) {
            return true;
        }
        m_RepeatTimeSec = cTimer::GetSystemTimeSec() + m_Theme->ScrollRepeatDelaySec;
    } else if (IsSizing(part)) {
        const SizingInfo& moves = s_Sizing[part - cTheme::Parts::SizeLeft];
        // A side that is alone goes with the corner at its end: left and top, or right and bottom.
        const bool left = moves.Left || (moves.Top && !moves.Right), top = moves.Top || (moves.Left && !moves.Bottom);
        m_Grab = cVec2(left ? m_Bounds.x0 : m_Bounds.x1, top ? m_Bounds.y1 : m_Bounds.y0) - mouse;
    } else {
        return true;
    }
    m_LastMouse = mouse;
    Hold(part);
    return true;
}

bool cWnd::OnMouseMove() {
    if (!cWidgets::IsCaptured(this)) {
        return false;
    }
    const cVec2 mouse = cInput::GetMousePositionOrient();
    if (m_DragPart == cTheme::Parts::FormClient) {
        m_RelClient = m_SavedRelClient;
        m_RelClient.Translate(mouse - m_Grab);
        return true;
    }
    if (m_DragPart == cTheme::Parts::VScrollThumb || m_DragPart == cTheme::Parts::HScrollThumb) {
        DragThumb(mouse);
    } else if (IsSizingBorderDrag()) {
        const Guard guard(this);
        DragBorder(mouse);
        if (guard.IsGone()) {
            return true;
        }
    }
    m_LastMouse = mouse;
    return true;
}

void cWnd::DragBorder(const cVec2& mouse) {
    const SizingInfo& moves = s_Sizing[m_DragPart - cTheme::Parts::SizeLeft];
    const cVec2 to = mouse + m_Grab;
    if (moves.Left) {
        m_Bounds.x0 = to.x;
    }
    if (moves.Top) {
        m_Bounds.y1 = to.y;
    }
    if (moves.Right) {
        m_Bounds.x1 = to.x;
    }
    if (moves.Bottom) {
        m_Bounds.y0 = to.y;
    }
    CalcRects();
}

bool cWnd::OnButtonUp(int code) {
    if (!cWidgets::IsCaptured(this)) {
        return false;
    }
    if (code == (m_DragPart == cTheme::Parts::FormClient ? cInput::MiddleButton : cInput::LeftButton)) {
        m_DragPart = 0;
        cWidgets::ReleaseCapture();
    }
    return true;
}

/// The capture may have been taken away; then the release will not be seen.
void cWnd::DropLostPart() {
    if (m_DragPart != 0 && !cWidgets::IsCaptured(this)) {
        m_DragPart = 0;
    }
}

bool cWnd::IsHot(bool covered) {
    DropLostPart();
    if (covered || !IsVisible() || !IsEnabled()) {
        m_HotPart = 0;
        return false;
    }
    const int over = GetMouseOver();
    if (m_DragPart != 0) {
        m_HotPart = over == m_DragPart ? over : 0;
        return true;
    }
    m_HotPart = over;
    return IsInside(m_ClippedBounds, cInput::GetMousePositionOrient());
}

bool cWnd::OnSetCursor(cInput::Cursor::Enum* cursor) {
    if (m_DragPart == cTheme::Parts::FormClient) {
        *cursor = cInput::Cursor::Hand;
        return true;
    }
    const int part = IsSizing(m_DragPart) ? m_DragPart : m_HotPart;
    if (!IsSizing(part)) {
        return false;
    }
    *cursor = s_Sizing[part - cTheme::Parts::SizeLeft].Cursor;
    return true;
}

} // namespace trellis
