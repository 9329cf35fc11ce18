#include "math/cRect.h"

#include <algorithm>
#include <cmath>

namespace trellis {

namespace {

int ColumnOf(int align) {
    return align & 3;
}

/// The same places seen along one axis, from the low end: left, centre, right, or bottom, middle, top.
int LevelOf(int align) {
    return 2 - align / 4;
}

/// Keeps the low end, the middle or the high end of [low, high] and gives it that size.
void SetSize(float* low, float* high, int place, float size) {
    switch (place) {
    case 0:
        *high = *low + size;
        break;
    case 1: {
        const float middle = (*low + *high) * 0.5f;
        *low = middle - size * 0.5f;
        *high = *low + size;
        break;
    }
    case 2:
        *low = *high - size;
        break;
    }
}

/// One axis of the docking: where [a0, a1] lies nearest in the container [low, high].
int NearestPlace(float low, float high, float a0, float a1, bool highFirst) {
    const float lowGap = a0 - low;
    const float highGap = high - a1;
    const float centerGap = std::fabs((low + high) * 0.5f - (a0 + a1) * 0.5f);
    const float first = highFirst ? highGap : lowGap;
    const float last = highFirst ? lowGap : highGap;
    if (first <= centerGap && first <= last) {
        return highFirst ? 2 : 0;
    }
    return centerGap <= last ? 1 : highFirst ? 0 : 2;
}

/// One axis of a docking zone, for something of that size.
void Zone(float low, float high, float size, int place, float* zoneLow, float* zoneHigh) {
    const float quarter = (high - low) * 0.25f;
    const float reach = quarter - std::min(quarter, size * 0.25f);
    const float middle = (low + high) * 0.5f;
    *zoneLow = place == 0 ? low : place == 1 ? middle - reach : high - reach;
    *zoneHigh = place == 0 ? low + reach : place == 1 ? middle + reach : high;
}

} // namespace

cVec2 cRect::GetPoint(int align) const {
    if (!IsAnchor(align)) {
        return cVec2::Zero;
    }
    const float xs[] = {x0, (x0 + x1) * 0.5f, x1};
    const float ys[] = {y0, (y0 + y1) * 0.5f, y1};
    return {xs[ColumnOf(align)], ys[LevelOf(align)]};
}

void cRect::SetWidth(int align, float w) {
    if (IsAnchor(align)) {
        SetSize(&x0, &x1, ColumnOf(align), w);
    }
}

void cRect::SetHeight(int align, float h) {
    if (IsAnchor(align)) {
        SetSize(&y0, &y1, LevelOf(align), h);
    }
}

void cRect::AlignPoint(int align, float x, float y) {
    if (IsAnchor(align)) {
        Translate(cVec2(x, y) - GetPoint(align));
    }
}

void cRect::AlignPoint(int align, const cRect& r) {
    const cVec2 point = r.GetPoint(align);
    AlignPoint(align, point.x, point.y);
}

void cRect::AlignInside(const cRect& r) {
    if (x1 > r.x1) {
        Translate({r.x1 - x1, 0});
    }
    if (y0 < r.y0) {
        Translate({0, r.y0 - y0});
    }
    if (x0 < r.x0) {
        Translate({r.x0 - x0, 0});
    }
    if (y1 > r.y1) {
        Translate({0, r.y1 - y1});
    }
}

cRect cRect::Inscribe(const cRect& inner, const cRect& outer) {
    const cVec2 size = inner.Size();
    if (!(size.x > 0 && size.y > 0)) {
        return Zero;
    }
    const float scale = std::min(outer.Width() / size.x, outer.Height() / size.y);
    const cVec2 half = size * (scale * 0.5f);
    const cVec2 center = outer.Center();
    return {center.x - half.x, center.y - half.y, center.x + half.x, center.y + half.y};
}

int cRect::GetDockingAlign(const cRect& r, cRect* zone, cVec2* point) const {
    const int level = NearestPlace(y0, y1, r.y0, r.y1, false);
    const int column = NearestPlace(x0, x1, r.x0, r.x1, true);
    const int align = (2 - level) * 4 + column;
    if (zone) {
        *zone = GetDockingRegion(r, align);
    }
    if (point) {
        *point = GetPoint(align);
    }
    return align;
}

int cRect::GetDockingAlign(const cVec2& p, cRect* zone, cVec2* point) const {
    return GetDockingAlign(cRect(p.x, p.y, p.x, p.y), zone, point);
}

cRect cRect::GetDockingRegion(const cRect& r, int align) const {
    if (!IsAnchor(align)) {
        return Empty;
    }
    cRect zone;
    Zone(x0, x1, r.Width(), ColumnOf(align), &zone.x0, &zone.x1);
    Zone(y0, y1, r.Height(), LevelOf(align), &zone.y0, &zone.y1);
    return zone;
}

cRect cRect::GetDockingRegion(const cVec2& p, int align) const {
    return GetDockingRegion(cRect(p.x, p.y, p.x, p.y), align);
}

} // namespace trellis
