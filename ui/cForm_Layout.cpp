// Layout of forms: the three states and the dock points, the content, the title and its buttons.
#include "ui/cForm.h"
#include "ui/cToolBar.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace trellis {

namespace {

using Parts = cTheme::Parts;

cRect Rounded(const cRect& r) {
    const auto round = [](float v) { return std::floor(v + 0.5f); };
    return {round(r.x0), round(r.y0), round(r.x1), round(r.y1)};
}

/// The base of a host's window that is hidden is none: forms keep their places until it is back.
bool HasArea(const cRect& base) {
    return base.Width() > 0 && base.Height() > 0;
}

cRect Docked(const cRect& base, const cVec2& size, int align, const cVec2& offset) {
    cRect r(0, 0, size.x, size.y);
    r.AlignPoint(align, base);
    r.Translate(offset);
    return r;
}

/// Brings the offset into the region of its dock point: the base may have changed.
void ClampOffset(const cRect& base, const cVec2& size, int align, cRect* region, cVec2* offset) {
    *region = base.GetDockingRegion(Docked(base, size, align, cVec2::Zero), align);
    const cVec2 anchor = base.GetPoint(align);
    offset->x = std::min(std::max(offset->x, region->x0 - anchor.x), region->x1 - anchor.x);
    offset->y = std::min(std::max(offset->y, region->y0 - anchor.y), region->y1 - anchor.y);
}

void Dock(const cRect& base, const cRect& r, int* align, cRect* region, cVec2* offset) {
    cVec2 anchor;
    *align = base.GetDockingAlign(r, region, &anchor);
    *offset = r.GetPoint(*align) - anchor;
}

} // namespace

void cForm::SetNormalStateRels() {
    const cRect base = GetBaseRect();
    if (!HasArea(base)) {
        return;
    }
    const cVec2& size = m_Theme->FormMinSize;
    const cRect& b = m_Bounds;
    Dock(base, {b.x0, b.y1 - size.y, b.x0 + size.x, b.y1}, &m_Align0, &m_Region0, &m_Offset0);
    Dock(base, {b.x1 - size.x, b.y0, b.x1, b.y0 + size.y}, &m_Align1, &m_Region1, &m_Offset1);
}

void cForm::CalcNormalStateBounds() {
    const cRect base = GetBaseRect();
    if (!HasArea(base)) {
        return;
    }
    const cVec2& size = m_Theme->FormMinSize;
    const bool isByHand = IsMovedOrSized();
    if (m_Align0 == -1 && m_NormalBounds != cRect::Empty) {
        m_Bounds = std::exchange(m_NormalBounds, cRect::Empty);
    }
    if (m_Align0 == -1 || isByHand) {
        SetNormalStateRels();
    } else {
        ClampOffset(base, size, m_Align0, &m_Region0, &m_Offset0);
        ClampOffset(base, size, m_Align1, &m_Region1, &m_Offset1);
    }
    cRect a = Docked(base, size, m_Align0, m_Offset0), b = Docked(base, size, m_Align1, m_Offset1);

    // At least the smallest size: the corner that is dragged stops. Without a drag it is the lower right one that
    // gives.
    const auto isDragged = [this](std::initializer_list<int> parts) {
        return std::find(parts.begin(), parts.end(), m_DragPart) != parts.end();
    };
    const float dx = a.x1 - b.x1, dy = a.y1 - b.y1;
    if (dx > 0) {
        isDragged({Parts::SizeLeft, Parts::SizeLeftTop, Parts::SizeLeftBottom}) ? a.Translate({-dx, 0})
                                                                                : b.Translate({dx, 0});
    }
    if (dy < 0) {
        isDragged({Parts::SizeTop, Parts::SizeLeftTop, Parts::SizeRightTop}) ? a.Translate({0, -dy})
                                                                             : b.Translate({0, dy});
    }
    m_Bounds = Rounded({std::min(a.x0, b.x0), std::min(a.y0, b.y0), std::max(a.x1, b.x1), std::max(a.y1, b.y1)});
    if (isByHand && (dx > 0 || dy < 0)) {
        SetNormalStateRels(); // a release before the next frame would leave the anchors beyond each other
    }
}

void cForm::CalcMaxStateBounds() {
    const float border = m_Theme->SizingBorderWidth; // out of sight
    const cRect base = GetBaseRect();
    if (!HasArea(base)) {
        return;
    }
    m_Bounds = {base.x0 - border, base.y0 - border, base.x1 + border, base.y1 + border};
}

/// Where the title's buttons are now, there they are in the small form.
void cForm::DockMinimized(const cRect& base) {
    m_Bounds.SetWidth(cRect::RightTop, m_Theme->FormMinimizedSize.x);
    m_Bounds.SetHeight(cRect::RightTop, m_Theme->FormMinimizedSize.y);
    Dock(base, m_Bounds, &m_MinAlign, &m_MinRegion, &m_MinOffset);
}

void cForm::CalcMinStateBounds() {
    const cRect base = GetBaseRect();
    if (!HasArea(base)) {
        return;
    }
    const cVec2& size = m_Theme->FormMinimizedSize;
    if (m_MinAlign == -1) {
        DockMinimized(base);
    }
    if (m_DragPart == Parts::FormTitleBar) {
        Dock(base, Docked(base, size, m_MinAlign, m_MinOffset), &m_MinAlign, &m_MinRegion, &m_MinOffset);
    } else {
        ClampOffset(base, size, m_MinAlign, &m_MinRegion, &m_MinOffset);
    }
    m_Bounds = Rounded(Docked(base, size, m_MinAlign, m_MinOffset));
}

void cForm::CalcRects() {
    if (m_Closed) {
        return;
    }
    if (m_Parent && GetParentClient().IsEmpty()) {
        Vanish();
        return;
    }
    m_Sizable = m_State == Normal;
    if (m_State == Minimized) {
        CalcMinStateBounds();
        m_ClientBounds = cRect::Empty;
    } else {
        m_State == Maximized ? CalcMaxStateBounds() : CalcNormalStateBounds();
        const cRect& inset = m_Theme->FormClientInset;
        cRect& c = m_ClientBounds;
        c = {m_Bounds.x0 + inset.x0, m_Bounds.y0 + inset.y0, m_Bounds.x1 + inset.x1, m_Bounds.y1 + inset.y1};
        if (m_ToolBar && m_ToolBar->m_Visible) {
            c.y1 -= 2 * m_Theme->ToolBarMargin + m_Theme->ToolBarHeight;
        }
        if (c.IsEmpty()) {
            c = cRect::Empty;
        }
    }
    CalcContent();
    cWnd::CalcRects();
    CalcParts();
}

/// As large as the controls reach.
void cForm::CalcContent() {
    float right = 0, bottom = 0;
    bool isFirst = true;
    for (cWnd* child : m_Children) {
        const cRect r = child->GetRelBounds();
        if (r.IsEmpty()) {
            continue;
        }
        right = isFirst ? r.x1 : std::max(right, r.x1);
        bottom = isFirst ? r.y0 : std::min(bottom, r.y0);
        isFirst = false;
    }
    if (!m_FitWidth) {
        m_RelClient.x1 = m_RelClient.x0 + std::max(right, 0.0f);
    }
    m_RelClient.y0 = m_RelClient.y1 - std::fabs(bottom);
}

void cForm::CalcParts() {
    const cTheme& theme = *m_Theme;
    const cRect &inset = theme.FormTitleInset, &b = m_Bounds;
    m_TitleRect = {b.x0 + inset.x0, b.y1 + inset.y0, b.x1 + inset.x1, b.y1 + inset.y1};
    const auto at = [&](int align, const cVec2& size, const cVec2& offset) {
        cRect r(0, 0, size.x, size.y);
        r.AlignPoint(align, b);
        r.Translate(offset);
        return r;
    };
    m_CloseRect = at(cRect::RightTop, theme.CloseButtonSize, theme.CloseButtonOffset);
    m_MinimizeRect = at(cRect::RightTop, theme.MinimizeButtonSize, theme.MinimizeButtonOffset);
    m_MaximizeRect = at(cRect::RightTop, theme.MaximizeButtonSize, theme.MaximizeButtonOffset);
    m_GripRect = m_State == Minimized ? cRect::Empty : at(cRect::RightBottom, theme.FormGripSize, theme.FormGripOffset);
}

} // namespace trellis
