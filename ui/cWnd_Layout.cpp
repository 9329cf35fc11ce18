// Layout of windows: the rectangles of one frame, and what is under the mouse.
#include "ui/cTheme.h"
#include "ui/cWnd.h"

#include <algorithm>
#include <cmath>

namespace trellis {

namespace {

/// Disjoint rectangles give `Empty`, so that everything derived from it is empty as well.
cRect Clip(const cRect& a, const cRect& b) {
    const cRect r = cRect::Intersect(a, b);
    return r.IsEmpty() ? cRect::Empty : r;
}

float Round(float v) {
    return std::floor(v + 0.5f);
}

/// An axis of a content that is not there yet, or is no number, has no length: sliding the largest floats would leave
/// no numbers either.
void EnsureContent(float* from, float* to) {
    if (!(*from <= *to) || !std::isfinite(*from) || !std::isfinite(*to)) {
        *from = *to = 0;
    }
}

/// One bar along its track: offsets from the track's start, its top or its left.
struct BarLayout {
    float Scale;
    bool Shown;
    float ExactOffset, ExactLength;
    float Length;
    float Offset; // of the thumb from the first arrow, or, with FromEnd, of its end from the last one
    bool FromEnd;
};

/// @param before, after  content beyond the client on either side
BarLayout LayOutBar(const cTheme& theme, float track, float client, float content, float before, float after) {
    const float free = track - 2 * theme.ScrollArrowLength - theme.ScrollThumbMinLength;
    BarLayout bar{};
    float ratio = 1;
    bar.Scale = 1;
    if (content > 0) {
        ratio = std::clamp(client / content, 0.0f, 1.0f);
        bar.Scale = std::clamp(free / content, 0.0f, 1.0f);
        bar.Shown = 1 - ratio > cMath::Epsilon;
    }
    bar.ExactLength = theme.ScrollThumbMinLength + ratio * free;
    bar.ExactOffset = theme.ScrollArrowLength + before * bar.Scale;
    before = std::max(before, 0.0f); // content that ends within the client lacks nothing there
    after = std::max(after, 0.0f);
    bar.Length = Round(ratio * free) + theme.ScrollThumbMinLength;
    // Rounded from the nearer end: at either end of its travel the thumb touches the arrow exactly.
    bar.FromEnd = before > after;
    bar.Offset = Round((bar.FromEnd ? after : before) * bar.Scale);
    return bar;
}

} // namespace

bool cWnd::IsInside(const cRect& rect, const cVec2& p) {
    return rect.x0 <= p.x && p.x <= rect.x1 && rect.y0 <= p.y && p.y <= rect.y1;
}

cRect cWnd::GetParentClient() const {
    if (!m_Parent || m_Parent->m_AbsClient.IsEmpty()) {
        return cRect::Empty;
    }
    const cRect& r = m_Parent->m_AbsClient;
    return {Round(r.x0), Round(r.y0), Round(r.x1), Round(r.y1)};
}

void cWnd::EmptyRects() {
    m_Bounds = m_ClippedBounds = cRect::Empty;
    m_ClientBounds = m_Client = m_AbsClient = m_ClippedClient = m_ScrollClip = cRect::Empty;
}

void cWnd::CalcRects() {
    m_ClippedBounds = m_Parent ? Clip(m_Bounds, m_Parent->m_ClippedClient) : m_Bounds;
    if (m_ClientBounds.IsEmpty()) {
        m_Client = m_AbsClient = m_ClippedClient = m_ScrollClip = cRect::Empty;
        // Without their rectangles bars and borders are neither drawn nor touched. The bars' flags stay: a window that
        // gets its client back would otherwise lay it out without bars for a frame, and lose its place.
        for (cRect* r : {&m_VBar, &m_VThumb, &m_VThumbExact, &m_HBar, &m_HThumb, &m_HThumbExact}) {
            *r = cRect::Empty;
        }
        for (cRect* pair : {m_VPage, m_VArrows, m_HPage, m_HArrows}) {
            std::fill_n(pair, 2, cRect::Empty);
        }
        for (cRect* four : {m_Edges, m_Corners, m_CornerHoles}) {
            std::fill_n(four, 4, cRect::Empty);
        }
        return;
    }
    EnsureContent(&m_RelClient.x0, &m_RelClient.x1);
    EnsureContent(&m_RelClient.y0, &m_RelClient.y1);

    m_Client = m_ClientBounds;
    if (m_Theme->ScrollBarsInsideClient) { // by the last frame's flags; a bar takes no more than there is
        if (m_VBarShown) {
            m_Client.x1 = std::max(m_Client.x1 - m_Theme->ScrollBarWidth, m_Client.x0);
        }
        if (m_HBarShown) {
            m_Client.y0 = std::min(m_Client.y0 + m_Theme->ScrollBarWidth, m_Client.y1);
        }
    }
    if (m_FitWidth) {
        m_RelClient.x1 = m_RelClient.x0 + std::max(m_MinFitWidth, m_Client.Width());
    }
    m_ClippedClient = m_ScrollClip = m_Parent ? Clip(m_Client, m_Parent->m_ClippedClient) : m_Client;

    if (!m_VScroll) {
        m_RelClient.y1 = 0;
        m_RelClient.y0 = -m_ClientBounds.Height();
    }
    if (!m_HScroll) {
        m_RelClient.x0 = 0;
        m_RelClient.x1 = m_ClientBounds.Width();
    }
    if (m_VScroll || m_HScroll) {
        RestrictRelClientToScrollRect();
    }
    m_AbsClient = m_RelClient;
    m_AbsClient.Translate({m_ClientBounds.x0, m_ClientBounds.y1});
    CalcScrollBars();
    CalcSizing();
}

void cWnd::RestrictRelClientToScrollRect() {
    cRect& r = m_RelClient;
    EnsureContent(&r.x0, &r.x1);
    EnsureContent(&r.y0, &r.y1);
    const float width = m_Client.Width(), height = m_Client.Height();
    if (width > r.x1) {
        r.x0 += width - r.x1;
        r.x1 = width;
    }
    if (r.y0 > -height) {
        r.y1 += -height - r.y0;
        r.y0 = -height;
    }
    if (r.x0 > 0) {
        r.x1 -= r.x0;
        r.x0 = 0;
    }
    if (r.y1 < 0) {
        r.y0 -= r.y1;
        r.y1 = 0;
    }
}

void cWnd::CalcScrollBars() {
    const cTheme& theme = *m_Theme;
    const float width = theme.ScrollBarWidth, arrow = theme.ScrollArrowLength;
    const cRect& client = m_ClientBounds;
    if (m_VScroll) {
        cRect& bar = m_VBar;
        bar.x1 = client.x1 + theme.VScrollBarOffset.x;
        bar.x0 = bar.x1 - width;
        bar.y1 = client.y1 + theme.VScrollBarOffset.y;
        bar.y0 = client.y0 + theme.VScrollBarOffset.z + (theme.ScrollBarsInsideClient && m_HBarShown ? width : 0);
        const BarLayout at = LayOutBar(theme, bar.y1 - bar.y0, m_Client.Height(), m_AbsClient.y1 - m_AbsClient.y0,
                                       m_AbsClient.y1 - m_Client.y1, m_Client.y0 - m_AbsClient.y0);
        m_VScale = at.Scale;
        m_VBarShown = at.Shown;
        m_VArrows[0] = {bar.x0, bar.y1 - arrow, bar.x1, bar.y1};
        m_VArrows[1] = {bar.x0, bar.y0, bar.x1, bar.y0 + arrow};
        const float exactTop = bar.y1 - at.ExactOffset;
        m_VThumbExact = {bar.x0, exactTop - at.ExactLength, bar.x1, exactTop};
        const float bottom = m_VArrows[1].y1 + at.Offset, top = m_VArrows[0].y0 - at.Offset;
        m_VThumb = at.FromEnd ? cRect(bar.x0, bottom, bar.x1, bottom + at.Length)
                              : cRect(bar.x0, top - at.Length, bar.x1, top);
        m_VPage[0] = {bar.x0, m_VThumb.y1, bar.x1, m_VArrows[0].y0};
        m_VPage[1] = {bar.x0, m_VArrows[1].y1, bar.x1, m_VThumb.y0};
    } else {
        m_VBarShown = false;
        m_VBar = m_VThumb = m_VThumbExact = m_VPage[0] = m_VPage[1] = m_VArrows[0] = m_VArrows[1] = cRect::Empty;
    }
    if (m_HScroll) {
        cRect& bar = m_HBar;
        bar.x0 = client.x0 + theme.HScrollBarOffset.x;
        bar.x1 = client.x1 + theme.HScrollBarOffset.z - (theme.ScrollBarsInsideClient && m_VBarShown ? width : 0);
        bar.y0 = client.y0 + theme.HScrollBarOffset.y;
        bar.y1 = bar.y0 + width;
        const BarLayout at = LayOutBar(theme, bar.x1 - bar.x0, m_Client.Width(), m_AbsClient.x1 - m_AbsClient.x0,
                                       m_Client.x0 - m_AbsClient.x0, m_AbsClient.x1 - m_Client.x1);
        m_HScale = at.Scale;
        m_HBarShown = at.Shown;
        m_HArrows[0] = {bar.x0, bar.y0, bar.x0 + arrow, bar.y1};
        m_HArrows[1] = {bar.x1 - arrow, bar.y0, bar.x1, bar.y1};
        const float exactLeft = bar.x0 + at.ExactOffset;
        m_HThumbExact = {exactLeft, bar.y0, exactLeft + at.ExactLength, bar.y1};
        const float left = m_HArrows[0].x1 + at.Offset, right = m_HArrows[1].x0 - at.Offset;
        m_HThumb = at.FromEnd ? cRect(right - at.Length, bar.y0, right, bar.y1)
                              : cRect(left, bar.y0, left + at.Length, bar.y1);
        m_HPage[0] = {m_HArrows[0].x1, bar.y0, m_HThumb.x0, bar.y1};
        m_HPage[1] = {m_HThumb.x1, bar.y0, m_HArrows[1].x0, bar.y1};
    } else {
        m_HBarShown = false;
        m_HBar = m_HThumb = m_HThumbExact = m_HPage[0] = m_HPage[1] = m_HArrows[0] = m_HArrows[1] = cRect::Empty;
    }
}

void cWnd::CalcSizing() {
    if (!m_Sizable) {
        return;
    }
    const cRect& b = m_Bounds;
    const float side = m_Theme->SizingCornerSize, border = m_Theme->SizingBorderWidth;
    m_Corners[0] = {b.x0, b.y1 - side, b.x0 + side, b.y1};
    m_Corners[1] = {b.x1 - side, b.y1 - side, b.x1, b.y1};
    m_Corners[2] = {b.x1 - side, b.y0, b.x1, b.y0 + side};
    m_Corners[3] = {b.x0, b.y0, b.x0 + side, b.y0 + side};
    m_CornerHoles[0] = {b.x0 + border, b.y1 - side, b.x0 + side, b.y1 - border};
    m_CornerHoles[1] = {b.x1 - side, b.y1 - side, b.x1 - border, b.y1 - border};
    m_CornerHoles[2] = {b.x1 - side, b.y0 + border, b.x1 - border, b.y0 + side};
    m_CornerHoles[3] = {b.x0 + border, b.y0 + border, b.x0 + side, b.y0 + side};
    m_Edges[0] = {b.x0, b.y0 + side, b.x0 + border, b.y1 - side};
    m_Edges[1] = {b.x0 + side, b.y1 - border, b.x1 - side, b.y1};
    m_Edges[2] = {b.x1 - border, b.y0 + side, b.x1, b.y1 - side};
    m_Edges[3] = {b.x0 + side, b.y0, b.x1 - side, b.y0 + border};
}

int cWnd::GetMouseOver() {
    const cVec2& mouse = cInput::GetMousePositionOrient();
    if (!IsInside(m_ClippedBounds, mouse)) {
        return cTheme::Parts::None;
    }
    struct Row {
        bool Live;
        const cRect& Rect;
        const cRect* Hole;
        int Part;
    };
    using Parts = cTheme::Parts;
    // The first that holds the mouse decides.
    const Row rows[] = {
        {m_VBarShown, m_VThumb, nullptr, Parts::VScrollThumb},
        {m_VBarShown, m_VPage[0], nullptr, Parts::VScrollPageUp},
        {m_VBarShown, m_VPage[1], nullptr, Parts::VScrollPageDown},
        {m_VBarShown, m_VArrows[0], nullptr, Parts::VScrollArrowUp},
        {m_VBarShown, m_VArrows[1], nullptr, Parts::VScrollArrowDown},
        {m_HBarShown, m_HThumb, nullptr, Parts::HScrollThumb},
        {m_HBarShown, m_HPage[0], nullptr, Parts::HScrollPageLeft},
        {m_HBarShown, m_HPage[1], nullptr, Parts::HScrollPageRight},
        {m_HBarShown, m_HArrows[0], nullptr, Parts::HScrollArrowLeft},
        {m_HBarShown, m_HArrows[1], nullptr, Parts::HScrollArrowRight},
        {m_Sizable, m_Edges[2], nullptr, cTheme::Parts::SizeRight},
        {m_Sizable, m_Edges[0], nullptr, cTheme::Parts::SizeLeft},
        {m_Sizable, m_Edges[1], nullptr, cTheme::Parts::SizeTop},
        {m_Sizable, m_Edges[3], nullptr, cTheme::Parts::SizeBottom},
        {m_Sizable, m_Corners[0], &m_CornerHoles[0], cTheme::Parts::SizeLeftTop},
        {m_Sizable, m_Corners[2], &m_CornerHoles[2], cTheme::Parts::SizeRightBottom},
        {m_Sizable, m_Corners[3], &m_CornerHoles[3], cTheme::Parts::SizeLeftBottom},
        {m_Sizable, m_Corners[1], &m_CornerHoles[1], cTheme::Parts::SizeRightTop},
    };
    for (const Row& row : rows) {
        if (row.Live && IsInside(row.Rect, mouse) && !(row.Hole && IsInside(*row.Hole, mouse))) {
            return row.Part;
        }
    }
    return cTheme::Parts::None;
}

} // namespace trellis
