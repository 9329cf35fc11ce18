// Scrolling: bars and their held parts, the wheel, and drags that leave the client.
#include "foundation/cTimer.h"
#include "ui/cTheme.h"
#include "ui/cWidgets.h"
#include "ui/cWnd.h"

#include <algorithm>

namespace trellis {

namespace {

using Parts = cTheme::Parts;

constexpr float AtOnce = -1; // for m_RepeatTimeSec

constexpr bool IsStepping(int part) {
    return part >= Parts::VScrollPageUp && part <= Parts::HScrollArrowRight;
}

/// Whether the mouse is beyond the side of `clip` that an arrow scrolls towards.
bool IsBeyond(int arrow, const cRect& clip, const cVec2& mouse) {
    if (clip.IsEmpty()) {
        return false; // nothing of the client is to be seen
    }
    switch (arrow) {
    case Parts::VScrollArrowUp:
        return mouse.y > clip.y1;
    case Parts::VScrollArrowDown:
        return mouse.y < clip.y0;
    case Parts::HScrollArrowLeft:
        return mouse.x < clip.x0;
    case Parts::HScrollArrowRight:
        return mouse.x > clip.x1;
    }
    return false;
}

} // namespace

float cWnd::GetArrowScrollSpeed() {
    return m_Theme->ArrowScrollSpeed;
}

float cWnd::GetWheelScrollSpeed() {
    return m_Theme->WheelScrollSpeed;
}

/// One step of a page or an arrow. Content that moves down shows what lies above.
bool cWnd::Step(int part) {
    const float width = m_Client.Width(), height = m_Client.Height(), arrow = GetArrowScrollSpeed();
    const cVec2 steps[] = {
        // indexed by part - VScrollPageUp
        {0, -height}, {0, height}, {width, 0}, {-width, 0}, {0, -arrow}, {0, arrow}, {arrow, 0}, {-arrow, 0},
    };
    static_assert(std::size(steps) == Parts::HScrollArrowRight - Parts::VScrollPageUp + 1);
    m_RelClient.Translate(steps[part - Parts::VScrollPageUp]);
    const Guard guard(this);
    CalcRects();
    return !guard.IsGone();
}

bool cWnd::OnWheel() {
    const bool captured = cWidgets::IsCaptured(this);
    if (captured && (!m_WheelWhileCaptured || IsWndPartDrag() || m_EdgeScrollPart != 0)) {
        return true;
    }
    const cVec2& mouse = cInput::GetMousePositionOrient();
    if (!IsActive() || !m_WheelEnabled || (!m_WheelAnywhere && !IsInside(m_ClippedBounds, mouse))) {
        return captured;
    }
    const float by = float(cInput::GetWheelDelta()) * GetWheelScrollSpeed();
    if (m_HBarShown && IsInside(m_HBar, mouse)) {
        m_RelClient.Translate({by, 0});
    } else if (m_VBarShown) {
        m_RelClient.Translate({0, -by});
    }
    return true;
}

// ---- Thumbs

/// The mouse's way: as far from where it is as the thumb can still go on either side.
void cWnd::HoldThumb(const cVec2& mouse, bool vertical) {
    const float arrow = m_Theme->ScrollArrowLength;
    float before, after;
    if (vertical) {
        before = m_VBar.y1 - arrow - m_VThumbExact.y1;
        after = m_VThumbExact.y0 - m_VBar.y0 - arrow;
    } else {
        before = m_HThumbExact.x0 - m_HBar.x0 - arrow;
        after = m_HBar.x1 - arrow - m_HThumbExact.x1;
    }
    before = std::max(before, 0.0f);
    after = std::max(after, 0.0f);
    const cVec3 along = vertical ? cVec3(0, -1, 0) : cVec3(1, 0, 0), at(mouse.x, mouse.y, 0);
    m_ThumbSeg.SetFromEnds(at - along * before, at + along * after, cMath::Epsilon);
}

void cWnd::DragThumb(const cVec2& mouse) {
    const auto project = [this](const cVec2& p) {
        return m_ThumbSeg.ProjectPoint(cSeg::Segment, cVec3(p.x, p.y, 0)) * m_ThumbSeg.length;
    };
    const bool vertical = m_DragPart == Parts::VScrollThumb;
    const float scale = vertical ? m_VScale : m_HScale;
    if (scale <= 0) {
        return; // the track is too short for its thumb to travel
    }
    const float by = (project(mouse) - project(m_LastMouse)) / scale;
    m_RelClient.Translate(vertical ? cVec2(0, by) : cVec2(-by, 0));
}

// ---- Repeats and edges

void cWnd::HandleScrolling() {
    DropLostPart();
    if (RepeatHeldPart() && m_EdgeScroll) {
        ScrollAtEdges();
    }
}

/// @return false when the layout has freed the window
bool cWnd::RepeatHeldPart() {
    int part = IsStepping(m_DragPart) ? m_DragPart : 0;
    if (IsStepping(m_EdgeScrollPart) && (part == 0 || m_EdgeScrollPart < part)) {
        part = m_EdgeScrollPart;
    }
    if (part == 0) {
        return true;
    }
    if (m_EdgeScrollPart != part && GetMouseOver() != part) {
        m_RepeatTimeSec = AtOnce;
        return true;
    }
    const float now = cTimer::GetSystemTimeSec();
    if (m_RepeatTimeSec == AtOnce || now >= m_RepeatTimeSec) {
        if (!Step(part)) {
            return false;
        }
        m_RepeatTimeSec = now + m_Theme->ScrollRepeatRateSec;
    }
    return true;
}

void cWnd::ScrollAtEdges() {
    if (m_DragPart == 0 || IsWndPartDrag()) {
        m_EdgeScrollPart = 0;
        return;
    }
    const cVec2& mouse = cInput::GetMousePositionOrient();
    const auto start = [&](bool shown, int arrow) {
        if (m_EdgeScrollPart != 0 || !shown || !IsBeyond(arrow, m_ScrollClip, mouse)) {
            return true;
        }
        m_EdgeScrollPart = arrow;
        m_RepeatTimeSec = cTimer::GetSystemTimeSec() + m_Theme->ScrollRepeatRateSec;
        return Step(arrow);
    };
    if (!start(m_VBarShown, Parts::VScrollArrowUp) || !start(m_VBarShown, Parts::VScrollArrowDown) ||
        !start(m_HBarShown, Parts::HScrollArrowRight) || !start(m_HBarShown, Parts::HScrollArrowLeft)) {
        return;
    }
    if (!IsBeyond(m_EdgeScrollPart, m_ScrollClip, mouse)) {
        m_EdgeScrollPart = 0;
    }
}

// ---- Drawing

void cWnd::OnRender() {
    const Guard guard(this);
    HandleScrolling();
    if (guard.IsGone() || m_ClippedBounds.IsEmpty()) { // an empty clip would be none
        return;
    }
    if (m_VScroll) {
        DrawBar(true);
    }
    if (m_HScroll) {
        DrawBar(false);
    }
}

void cWnd::DrawBar(bool vertical) {
    const BarAmounts& amounts = vertical ? m_VBarAmounts : m_HBarAmounts;
    if (amounts.Shown.Cur == 0) {
        return;
    }
    cTheme::DrawArgs args;
    args.Clip = m_ClippedBounds;
    args.Shown = amounts.Shown.Cur;
    args.Active = IsActive();
    args.Activity = GetCurActivity();
    args.FormAlpha = GetCurAlpha();
    args.CurVisible = m_CurVisible;
    const auto draw = [&](int part, const cRect& rect, float hot, bool pressed) {
        if (!rect.IsEmpty()) {
            args.Part = Parts::Enum(part);
            args.Rect = rect;
            args.Hot = hot;
            args.Pressed = pressed;
            m_Theme->Draw(args);
        }
    };
    const auto isPressed = [this](int part) { return m_DragPart == part && m_HotPart == part; };
    const int track = vertical ? Parts::VScrollTrack : Parts::HScrollTrack;
    const int page = vertical ? Parts::VScrollPageUp : Parts::HScrollPageLeft;
    const int thumb = vertical ? Parts::VScrollThumb : Parts::HScrollThumb;
    const int arrow = vertical ? Parts::VScrollArrowUp : Parts::HScrollArrowLeft;
    const cRect* pages = vertical ? m_VPage : m_HPage;
    const cRect* arrows = vertical ? m_VArrows : m_HArrows;
    draw(track, vertical ? m_VBar : m_HBar, 0, false);
    draw(page, pages[0], 0, isPressed(page));
    draw(page + 1, pages[1], 0, isPressed(page + 1));
    draw(thumb, vertical ? m_VThumb : m_HThumb, amounts.Thumb.Cur, m_DragPart == thumb); // also off the thumb
    draw(arrow, arrows[0], amounts.Arrows[0].Cur, isPressed(arrow));
    draw(arrow + 1, arrows[1], amounts.Arrows[1].Cur, isPressed(arrow + 1));
}

} // namespace trellis
