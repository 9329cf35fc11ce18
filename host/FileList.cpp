#include "host/FileList.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace trellis {

FileList::FileList(cWnd* parent) : cControl(parent, "", 0, 0, cRect::LeftTop, true, true) {
    m_TabStop = true;
    m_VScroll = m_WheelEnabled = m_WheelAnywhere = true;
    m_RelClient = cRect::Zero;
}

float FileList::GetRowHeight() const {
    return std::max(m_Theme->ComboItemHeight, 1.0f);
}

// ---- Rows

void FileList::SetRows(cList<cStr> rows) {
    m_Rows = std::move(rows);
    m_Selected = -1;
    m_RelClient = cRect::Zero;
}

void FileList::Select(int row) {
    const int before = std::exchange(m_Selected, row >= 0 && row < m_Rows.Count() ? row : -1);
    ScrollTo(m_Selected);
    const Guard guard(this);
    SetFocus(this);
    if (!guard.IsGone()) {
        Send(Selected, &before, &m_Selected);
    }
}

void FileList::ScrollTo(int row) {
    if (row < 0 || m_Client.IsEmpty()) {
        return;
    }
    const float top = float(row) * GetRowHeight(), least = top + GetRowHeight() - m_Client.Height();
    m_RelClient.Translate({0, std::min(std::max(m_RelClient.y1, least), top) - m_RelClient.y1});
}

int FileList::CountOnPage() const {
    return std::max(int(m_Client.Height() / GetRowHeight()), 1);
}

int FileList::RowUnderMouse() const {
    const cVec2& mouse = cInput::GetMousePositionOrient();
    if (!IsInside(m_ClippedClient, mouse)) {
        return -1;
    }
    const int row = int(std::floor((m_AbsClient.y1 - mouse.y) / GetRowHeight()));
    return row >= 0 && row < m_Rows.Count() ? row : -1;
}

bool FileList::Find(const std::string& text, cVec2* position) const {
    for (int row = 0; row < m_Rows.Count(); row++) {
        const float y = m_AbsClient.y1 - (float(row) + 0.5f) * GetRowHeight();
        const cVec2 at(m_ClippedClient.Center().x, y);
        if (text == m_Rows[row].Text() && IsInside(m_ClippedClient, at)) {
            *position = at;
            return true;
        }
    }
    return false;
}

// ---- Input

bool FileList::OnButtonDown(int code) {
    if (!IsLive()) {
        return false;
    }
    const Guard guard(this);
    if (!cWnd::OnButtonDown(code)) {
        return false;
    }
    if (guard.IsGone() || code != cInput::LeftButton || m_DragPart != 0) {
        return true;
    }
    const int row = RowUnderMouse();
    if (row != -1) {
        Select(row);
        if (!guard.IsGone() && cInput::IsDoubleClick()) {
            Send(Pressed, nullptr, nullptr);
        }
    }
    return true;
}

bool FileList::OnKey(int code) {
    const int last = m_Rows.Count() - 1, page = std::max(CountOnPage() - 1, 1);
    int row = m_Selected;
    switch (code) {
    case cInput::Up:
        row--;
        break;
    case cInput::Down:
        row++;
        break;
    case cInput::PageUp:
        row -= page;
        break;
    case cInput::PageDown:
        row = std::max(row, 0) + page;
        break;
    case cInput::Home:
        row = 0;
        break;
    case cInput::End:
        row = last;
        break;
    default:
        return false;
    }
    if (last >= 0) {
        Select(std::clamp(row, 0, last));
    }
    return true;
}

// ---- Layout, drawing

void FileList::CalcRects() {
    CalcRelBounds();
    const cRect parent = GetParentClient();
    m_ClientBounds = parent.IsEmpty() ? cRect::Empty : m_RelBounds;
    if (!m_ClientBounds.IsEmpty()) {
        m_ClientBounds.Translate({parent.x0, parent.y1});
        const float content = float(m_Rows.Count()) * GetRowHeight();
        m_RelClient.y0 = m_RelClient.y1 - content;
        if (!m_Theme->ScrollBarsInsideClient && content > m_ClientBounds.Height()) { // the bar stands beside the rows
            m_ClientBounds.x1 = std::max(m_ClientBounds.x1 - m_Theme->VScrollBarOffset.x, m_ClientBounds.x0);
        }
    }
    cControl::CalcRects();
}

void FileList::OnRender() {
    CalcTends();
    CalcRects();
    if (m_CurVisible <= 0 || m_ClippedBounds.IsEmpty()) {
        return;
    }
    const float row = GetRowHeight(), scrolled = std::max(m_AbsClient.y1 - m_Client.y1, 0.0f);
    const int first = std::min(int(scrolled / row), m_Rows.Count());
    const int count = std::min(CountOnPage() + 2, m_Rows.Count() - first);

    cTheme::DrawArgs args;
    args.Part = cTheme::Parts::DropDown;
    args.Clip = m_ClippedBounds;
    args.Rect = m_Client;
    args.Active = HasFocus(this);
    args.Activity = m_Parent->GetCurActivity();
    args.FormAlpha = m_Parent->GetCurAlpha();
    args.CurVisible = m_CurVisible;
    args.CurEnabled = m_CurEnabled;
    args.SelStart = m_Selected - first;
    args.ScrollX = scrolled - float(first) * row;
    // Lent, and only those in sight: copies would be made in every frame, and a folder may hold thousands.
    m_Lent.SetCount(count);
    const auto swap = [&] { std::swap_ranges(m_Lent.begin(), m_Lent.end(), m_Rows.begin() + first); };
    swap();
    std::swap(args.Items, m_Lent);
    m_Theme->Draw(args);
    std::swap(args.Items, m_Lent);
    swap();
    cWnd::OnRender();
}

} // namespace trellis
