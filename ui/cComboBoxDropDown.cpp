#include "ui/cComboBoxDropDown.h"

#include "render/cRender.h"
#include "ui/cComboBox.h"
#include "ui/cThemeText.h"
#include "ui/cWidgets.h"
#include "view/cViewer.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace trellis {

namespace {

using Parts = cTheme::Parts;

constexpr cVec2 Nowhere(cMath::FloatMaxValue, cMath::FloatMaxValue);

cRect Screen() {
    const cViewer* viewer = cRender::GetViewer();
    return viewer ? viewer->Viewport : cRect(0, 0, 640, 480);
}

} // namespace

cComboBoxDropDown::cComboBoxDropDown(cComboBox* box)
    : cWnd(nullptr, box->m_Theme), m_Items(box->m_Items), m_Box(box), m_BoxID(cWidgets::GetWidgetID(box)),
      m_SeenMouse(cInput::GetMousePositionOrient()) {
    if (box->m_Value && *box->m_Value >= 0 && *box->m_Value < m_Items.Count()) {
        m_CurSel = *box->m_Value;
    }
    Init();
}

cComboBoxDropDown::cComboBoxDropDown(void (*report)(int), const cList<cStr>& items, float x, float y,
                                     const cTheme* theme, int currentItem)
    : cWnd(nullptr, theme), m_Items(items), m_Report(report), m_At(x, y), m_SeenMouse(Nowhere) {
    m_CurSel = currentItem >= 0 && currentItem < items.Count() ? currentItem : -1;
    Init();
}

void cComboBoxDropDown::Init() {
    m_Visible = m_Enabled = true;
    m_CurVisible = m_CurEnabled = m_CurActivity = 1; // at once: it does not fade in
    m_WheelEnabled = m_WheelAnywhere = m_WheelWhileCaptured = true;
    m_ItemsWidth = 0;
    for (const cStr& item : m_Items) {
        m_ItemsWidth = std::max(m_ItemsWidth, cThemeText::Width(m_Theme->ComboFont, item));
    }
    m_RelClient = cRect::Zero;
    cComboBoxDropDown::CalcRects();
    ScrollToCurSel();
    cComboBoxDropDown::CalcRects();
}

// ---- The box

cComboBox* cComboBoxDropDown::GetBox() const {
    return m_Box && cWidgets::GetWidget(m_BoxID) == m_Box ? m_Box : nullptr;
}

bool cComboBoxDropDown::IsBoxLive() const {
    cComboBox* box = GetBox();
    return box && box->IsVisible() && box->IsEnabled() && box->GetFormState() != 0 && !box->m_ClippedBounds.IsEmpty();
}

void cComboBoxDropDown::Hide() {
    m_Visible = false;
    m_PressCode = -1;
    m_DragPart = 0;
    if (cWidgets::IsCaptured(this)) {
        cWidgets::ReleaseCapture();
    }
}

void cComboBoxDropDown::Cancel() {
    Hide();
    if (const auto report = std::exchange(m_Report, nullptr)) {
        report(-1);
    }
}

void cComboBoxDropDown::Choose(int row) {
    Hide();
    if (cComboBox* box = GetBox()) {
        box->SelectedItem(row);
    } else if (const auto report = std::exchange(m_Report, nullptr)) {
        report(row);
    }
}

bool cComboBoxDropDown::IsDead() {
    return !m_Visible && !cWidgets::IsCaptured(this);
}

// ---- Layout

void cComboBoxDropDown::CalcPreRects() {
    const float row = std::max(m_Theme->ComboItemHeight, 1.0f);
    const cRect screen = Screen();
    const auto rowsIn = [row](float room) { return int(std::clamp(room / row, 0.0f, 1000.0f)); };
    int rows = std::min(m_Items.Count(), std::max(m_Theme->ComboMaxVisibleItems, 1));
    bool isBelow = true;
    cRect at(m_At.x, m_At.y, m_At.x, m_At.y);
    int room = rowsIn(screen.Height());
    if (const cComboBox* box = GetBox()) {
        at = box->m_ValueRect;
        const int below = rowsIn(at.y0 - screen.y0), above = rowsIn(screen.y1 - at.y1);
        isBelow = below >= std::min(rows, above);
        room = isBelow ? below : above;
    }
    rows = std::min(rows, std::max(room, 1));

    constexpr float Frame = 2; // of the plate, on either side of the rows
    const bool isLong = rows < m_Items.Count();
    const float bar = m_Theme->ScrollBarsInsideClient ? m_Theme->ScrollBarWidth : m_Theme->VScrollBarOffset.x;
    const float needed = m_ItemsWidth + 2 * (m_Theme->ComboPadding + Frame) + (isLong ? bar : 0);
    const float width = std::max(at.Width(), std::min(std::ceil(needed), screen.Width())), height = float(rows) * row;
    m_Bounds = isBelow ? cRect(at.x0, at.y0 - height, at.x0 + width, at.y0)
                       : cRect(at.x0, at.y1, at.x0 + width, at.y1 + height);
    m_Bounds.AlignInside(screen);
    EnableArrowScroll();
    m_ClientBounds = m_Bounds;
    if (m_VScroll && !m_Theme->ScrollBarsInsideClient) { // the bar stands beside the rows
        m_ClientBounds.x1 = std::max(m_ClientBounds.x1 - m_Theme->VScrollBarOffset.x, m_ClientBounds.x0);
    }
}

void cComboBoxDropDown::EnableArrowScroll() {
    const float content = float(m_Items.Count()) * m_Theme->ComboItemHeight;
    m_VScroll = content > m_Bounds.Height();
    m_RelClient.y0 = m_RelClient.y1 - content;
}

void cComboBoxDropDown::CalcRects() {
    CalcPreRects();
    cWnd::CalcRects();
}

void cComboBoxDropDown::ScrollToCurSel() {
    if (m_CurSel < 0 || !m_VScroll) {
        return;
    }
    const float row = m_Theme->ComboItemHeight, top = float(m_CurSel) * row;
    const float least = top + row - m_Client.Height();
    const float scroll = std::min(std::max(m_RelClient.y1, least), top);
    m_RelClient.Translate({0, scroll - m_RelClient.y1});
}

// ---- Rows

bool cComboBoxDropDown::IsChoice(int row) const {
    return row >= 0 && row < m_Items.Count() && !(row < m_ItemFlags.Count() && (m_ItemFlags[row] & 1));
}

int cComboBoxDropDown::RowUnderMouse() const {
    const cVec2& mouse = cInput::GetMousePositionOrient();
    if (!IsInside(m_Client, mouse) || m_Theme->ComboItemHeight <= 0) {
        return -1;
    }
    const int row = int(std::floor((m_AbsClient.y1 - mouse.y) / m_Theme->ComboItemHeight));
    return row >= 0 && row < m_Items.Count() ? row : -1;
}

int cComboBoxDropDown::GetMouseOver() {
    if (!m_Visible) {
        return Parts::None;
    }
    if (const int part = cWnd::GetMouseOver()) {
        return part;
    }
    const int row = RowUnderMouse();
    const cVec2 mouse = cInput::GetMousePositionOrient();
    const bool moved = std::exchange(m_SeenMouse, mouse) != mouse;
    if (row == -1) {
        return Parts::None;
    }
    if (moved) {
        m_CurSel = row;
    }
    m_EdgeScroll = true; // not before: a list that opens is held from outside
    return Parts::DropDown;
}

/// To the next row that can be chosen; without one it stays.
void cComboBoxDropDown::MoveCurSel(int by) {
    for (int row = m_CurSel + by; row >= 0 && row < m_Items.Count(); row += by) {
        if (IsChoice(row)) {
            m_CurSel = row;
            ScrollToCurSel();
            return;
        }
    }
}

// ---- Input

void cComboBoxDropDown::Hold(int code) {
    m_PressCode = code;
    cWidgets::SetCapture(this);
    m_DragPart = cWidgets::IsCaptured(this) ? Parts::DropDown : 0;
}

bool cComboBoxDropDown::IsHot(bool covered) {
    if (!m_Visible) {
        return false;
    }
    const bool isUncovered = !covered || cWidgets::IsCaptured(GetBox());
    cWnd::IsHot(!isUncovered);
    return isUncovered;
}

bool cComboBoxDropDown::OnButtonDown(int code) {
    if (!m_Visible) {
        return false;
    }
    switch (code) {
    case cInput::Esc:
    case cInput::ButtonB:
        Cancel();
        return true;
    case cInput::Enter:
    case cInput::ButtonA:
    case cInput::Space:
        if (m_DragPart == 0) {
            m_PressCode = code;
        }
        return true;
    case cInput::WheelUp:
    case cInput::WheelDown:
        m_SeenMouse = Nowhere; // another row comes under the mouse
        return cWnd::OnButtonDown(code);
    }
    if (!cInput::IsMouseButtonCode(code)) {
        return true;
    }
    const cVec2& mouse = cInput::GetMousePositionOrient();
    if (IsInside(m_ClippedBounds, mouse)) {
        cWnd::OnButtonDown(code); // of the scroll bar
        if (code == cInput::LeftButton && m_DragPart == 0 && RowUnderMouse() != -1) {
            m_CurSel = RowUnderMouse();
            Hold(code);
        }
        return true;
    }
    if (cWidgets::IsCaptured(this)) {
        return true;
    }
    const cComboBox* box = GetBox();
    const bool isOnBox = box && IsInside(box->m_ClippedBounds, mouse); // which would open again
    Cancel();
    return isOnBox;
}

bool cComboBoxDropDown::OnButtonUp(int code) {
    if (!m_Visible || code != m_PressCode) {
        return cWnd::OnButtonUp(code);
    }
    m_PressCode = -1;
    m_DragPart = 0;
    if (cWidgets::IsCaptured(this)) {
        cWidgets::ReleaseCapture();
    }
    const int row = code == cInput::LeftButton ? RowUnderMouse() : m_CurSel;
    if (IsChoice(row)) {
        Choose(row);
    }
    return true;
}

bool cComboBoxDropDown::OnChar(int, int code) {
    if (!m_Visible) {
        return false;
    }
    switch (code) {
    case cInput::Up:
    case cInput::LeftThumbUp:
    case cInput::RightThumbUp:
        MoveCurSel(-1);
        break;
    case cInput::Down:
    case cInput::LeftThumbDown:
    case cInput::RightThumbDown:
        MoveCurSel(1);
        break;
    case cInput::Tab:
        IsChoice(m_CurSel) ? Choose(m_CurSel) : Cancel();
        break;
    }
    return true;
}

// ---- Drawing

void cComboBoxDropDown::OnRender() {
    if (m_Visible && m_Box && !IsBoxLive()) {
        Hide();
    }
    if (!m_Visible) {
        return;
    }
    CalcRects();
    CalcTends();
    cTheme::DrawArgs args;
    args.Part = Parts::DropDown;
    args.Clip = Screen();
    args.Rect = m_Bounds;
    args.Active = true;
    args.Activity = m_CurActivity;
    args.SelStart = m_CurSel;
    args.ScrollX = m_AbsClient.y1 - m_Bounds.y1;
    // Lent, since a copy would be made in every frame.
    std::swap(args.Items, m_Items);
    std::swap(args.ItemFlags, m_ItemFlags);
    m_Theme->Draw(args);
    std::swap(args.Items, m_Items);
    std::swap(args.ItemFlags, m_ItemFlags);
    cWnd::OnRender();
}

} // namespace trellis
