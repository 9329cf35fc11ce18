#include "host/cSoftwareRaster.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace trellis {

namespace {

constexpr int s_One = 256, s_Half = s_One / 2; // a pixel, and its centre
constexpr float s_ToPixels = 1.0f / s_One;
constexpr float s_LeastW = 0.000001f; // nearer to the eye than any near plane
constexpr unsigned s_NotFinite = 1u << 31;
const Float4 s_Steps = Float4::Load(cVec4(0, 1, 2, 3));

/// Rounded down; `d` is above 0. 64-bit divisions are slow on the target, and small triangles need none.
int64_t FloorDiv(int64_t n, int64_t d) {
    if (n == int32_t(n) && d == int32_t(d)) {
        const auto n32 = int32_t(n), d32 = int32_t(d);
        return n32 / d32 - (n32 % d32 < 0);
    }
    return n / d - (n % d < 0);
}

/// The first row, or column, whose centre is not below a place in 1/256 pixels.
int FirstCentre(int at) {
    return (at + s_Half - 1) >> 8;
}

/// How far a corner lies from the origin of the target, which is near every pixel.
int64_t Farness(const cSoftwareRaster::Corner& a) {
    return std::abs(int64_t(a.X)) + std::abs(int64_t(a.Y));
}

float CentreFrom(int pixel, int reference) {
    return float(pixel * s_One + s_Half - reference) * s_ToPixels;
}

struct Less {
    int operator()(Float4 a, Float4 b) const { return Float4::Less(a, b); }
    bool operator()(float a, float b) const { return a < b; }
};
struct LessEqual {
    int operator()(Float4 a, Float4 b) const { return Float4::LessEqual(a, b); }
    bool operator()(float a, float b) const { return a <= b; }
};
struct Equal {
    int operator()(Float4 a, Float4 b) const { return Float4::Equal(a, b); }
    bool operator()(float a, float b) const { return a == b; }
};

/// @return a bit for each pixel that passes
template <class Passes> uint64_t CompareRun(const float* a, const float* b, int count) {
    constexpr Passes passes;
    uint64_t keep = 0;
    int i = 0;
    for (; i + 4 <= count; i += 4) {
        keep |= uint64_t(passes(Float4::Load(a + i), Float4::Load(b + i))) << i;
    }
    for (; i < count; i++) {
        keep |= uint64_t(passes(a[i], b[i])) << i;
    }
    return keep;
}

uint64_t TestDepths(cDepthFunc::Enum func, const float* z, const float* depths, int count) {
    switch (func) {
    case cDepthFunc::Never:
        return 0;
    case cDepthFunc::Less:
        return CompareRun<Less>(z, depths, count);
    case cDepthFunc::Equal:
        return CompareRun<Equal>(z, depths, count);
    case cDepthFunc::LessEqual:
        return CompareRun<LessEqual>(z, depths, count);
    case cDepthFunc::Greater:
        return CompareRun<Less>(depths, z, count);
    case cDepthFunc::NotEqual:
        return CompareRun<Equal>(z, depths, count) ^ cSoftwareMerge::AllOf(count);
    case cDepthFunc::GreaterEqual:
        return CompareRun<LessEqual>(depths, z, count);
    case cDepthFunc::Always:
    case cDepthFunc::Count:
        break;
    }
    return cSoftwareMerge::AllOf(count);
}

/// Whole numbers below 1 << 24, rounded down.
int Floor(float v) {
    const int whole = int(v);
    return whole - (v < float(whole));
}

} // namespace

/// Where an edge cuts the rows of pixels: for each row the first pixel whose centre is not to its left. Whole numbers
/// throughout, and the same for the triangles on both sides.
class cSoftwareRaster::Edge {
public:
    /// @param low, high  in this order from below, and not level
    Edge(const Corner& low, const Corner& high, int row) {
        const int64_t dx = high.X - low.X, dy = high.Y - low.Y;
        m_Scale = dy * s_One;
        const int64_t place = (low.X - s_Half) * dy + int64_t(row * s_One + s_Half - low.Y) * dx + m_Scale - 1;
        const int64_t x = FloorDiv(place, m_Scale);
        m_X = int(x);
        m_Rest = place - x * m_Scale;
        const int64_t step = FloorDiv(dx, dy);
        m_Step = int(step);
        m_RestStep = (dx - step * dy) * s_One;
    }

    int X() const { return m_X; }
    void Up() {
        m_X += m_Step;
        m_Rest += m_RestStep;
        if (m_Rest >= m_Scale) {
            m_Rest -= m_Scale;
            m_X++;
        }
    }

private:
    int64_t m_Scale, m_Rest, m_RestStep;
    int m_X, m_Step;
};

void cSoftwareRaster::Begin(const State& state, int y0, int y1) {
    m_State = state;
    m_State.Clip.Y0 = std::max(state.Clip.Y0, y0);
    m_State.Clip.Y1 = std::min(state.Clip.Y1, y1);
    m_Stage = state.Shader->GetPixelStage();
    m_Merge.Begin(state.Surface, state.Blend);
    const bool isCommon = m_Stage == cSoftwareShader::PixelStage::Color && m_Merge.IsPlain() && m_State.Depths;
    m_ColorRow = !isCommon || !state.Depth.Test              ? nullptr
                 : state.Depth.Func == cDepthFunc::Less      ? &cSoftwareRaster::ColorRow<Less>
                 : state.Depth.Func == cDepthFunc::LessEqual ? &cSoftwareRaster::ColorRow<LessEqual>
                                                             : nullptr;
    m_Guard[0] = 2 * MaxPlace / state.View.Width;
    m_Guard[1] = 2 * MaxPlace / state.View.Height;
    if (!state.Depth.Test && !state.Depth.Write) {
        m_State.Depths = nullptr;
    }
}

// Clipping

/// At least 0 on the inner side.
float cSoftwareRaster::Distance(const Vertex& v, int plane) const {
    const cVec4& p = v.Clip;
    switch (plane) {
    case 0:
        return p.w - s_LeastW;
    case 1:
        return p.w + p.z;
    case 2:
        return p.w - p.z;
    case 3:
        return p.w * m_Guard[0] + p.x;
    case 4:
        return p.w * m_Guard[0] - p.x;
    case 5:
        return p.w * m_Guard[1] + p.y;
    default:
        return p.w * m_Guard[1] - p.y;
    }
}

/// A bit for each plane that the vertex is outside of.
unsigned cSoftwareRaster::OutCode(const Vertex& v) const {
    const cVec4& p = v.Clip;
    if ((p.x + p.y + p.z + p.w) * 0.0f != 0.0f) { // infinite or no number
        return s_NotFinite;
    }
    unsigned code = 0;
    for (int i = 0; i < s_ClipPlanes; i++) {
        code |= unsigned(!(Distance(v, i) >= 0)) << i;
    }
    return code;
}

/// From the inner one to the outer one, so that both triangles at an edge get the same vertex.
static cSoftwareShader::Vertex Cut(const cSoftwareShader::Vertex& in, const cSoftwareShader::Vertex& out,
                                   float inDistance, float outDistance, int varyings) {
    const float t = inDistance / (inDistance - outDistance);
    cSoftwareShader::Vertex v;
    v.Clip = in.Clip + (out.Clip - in.Clip) * t;
    for (int i = 0; i < varyings; i++) {
        v.Varyings[i] = in.Varyings[i] + (out.Varyings[i] - in.Varyings[i]) * t;
    }
    return v;
}

/// Sutherland and Hodgman, "Reentrant Polygon Clipping", on the triangle in `m_Polygon[0]`.
/// @return the number of corners, which are there again
int cSoftwareRaster::ClipPolygon(unsigned planes) {
    const int varyings = m_State.Shader->GetVaryingCount();
    int count = 3;
    for (int plane = 0; plane < s_ClipPlanes; plane++) {
        if (!(planes >> plane & 1)) {
            continue;
        }
        int kept = 0;
        for (int i = 0; i < count && kept + 2 <= s_MaxCorners; i++) {
            const Vertex &a = m_Polygon[0][i], &b = m_Polygon[0][i + 1 < count ? i + 1 : 0];
            const float da = Distance(a, plane), db = Distance(b, plane);
            const bool isIn = da >= 0, isNextIn = db >= 0;
            if (isIn) {
                m_Polygon[1][kept++] = a;
            }
            if (isIn != isNextIn) {
                m_Polygon[1][kept++] = isIn ? Cut(a, b, da, db, varyings) : Cut(b, a, db, da, varyings);
            }
        }
        count = kept;
        std::copy_n(m_Polygon[1], count, m_Polygon[0]);
    }
    return count;
}

/// @param vertices, ends  receive the two ends. @return whether there is anything to draw
bool cSoftwareRaster::ClipLine(const Corner& a, const Corner& b, Vertex* vertices, Corner* ends) const {
    const int varyings = m_State.Shader->GetVaryingCount();
    vertices[0] = *a.From;
    vertices[1] = *b.From;
    for (int plane = 0; plane < s_ClipPlanes; plane++) {
        const float da = Distance(vertices[0], plane), db = Distance(vertices[1], plane);
        if (!(da >= 0) && !(db >= 0)) {
            return false;
        }
        if (!(da >= 0)) {
            vertices[0] = Cut(vertices[1], vertices[0], db, da, varyings);
        } else if (!(db >= 0)) {
            vertices[1] = Cut(vertices[0], vertices[1], da, db, varyings);
        }
    }
    Place(vertices[0], &ends[0]);
    Place(vertices[1], &ends[1]);
    return !(ends[0].Out | ends[1].Out);
}

void cSoftwareRaster::Place(const Vertex& v, Corner* out) const {
    float p[4];
    (Float4::Load(v.Clip) / Float4::All(v.Clip.w)).Store(p);
    const float x = m_State.View.X + (p[0] * 0.5f + 0.5f) * m_State.View.Width;
    const float y = m_State.View.Y + (p[1] * 0.5f + 0.5f) * m_State.View.Height;
    constexpr float limit = 4 * MaxPlace; // clipping keeps to 3 of them, but for rounding
    if (!(std::fabs(x) < limit && std::fabs(y) < limit)) {
        out->Out = s_NotFinite;
        return;
    }
    out->X = Floor(x * s_One + 0.5f);
    out->Y = Floor(y * s_One + 0.5f);
    out->Z = p[2];
    out->InvW = 1 / v.Clip.w;
    out->From = &v;
    out->Out = 0;
}

void cSoftwareRaster::Project(const Vertex* vertices, int count, Corner* out) const {
    for (int i = 0; i < count; i++) {
        out[i].From = &vertices[i];
        out[i].Out = OutCode(vertices[i]);
        if (!out[i].Out) {
            Place(vertices[i], &out[i]);
        }
    }
}

// Primitives

void cSoftwareRaster::Point(const Corner& a) {
    if (a.Out) {
        return;
    }
    std::fill_n(m_Grad, 4, 0.0f);
    m_RefX = a.X;
    m_RefY = a.Y;
    SetPlanes(a, a, a);
    Run(a.Y >> 8, a.X >> 8, (a.X >> 8) + 1);
}

bool cSoftwareRaster::HasLine(const Corner& a, const Corner& b) const {
    if ((a.Out & b.Out) || ((a.Out | b.Out) & s_NotFinite)) {
        return false;
    }
    Vertex vertices[2];
    Corner ends[2];
    return !(a.Out | b.Out) || ClipLine(a, b, vertices, ends);
}

void cSoftwareRaster::Line(const Corner& a, const Corner& b, bool skipFirst) {
    if ((a.Out & b.Out) || ((a.Out | b.Out) & s_NotFinite)) {
        return;
    }
    Vertex vertices[2];
    Corner ends[2];
    if (!(a.Out | b.Out)) {
        DrawLine(a, b, skipFirst);
    } else if (ClipLine(a, b, vertices, ends)) {
        DrawLine(ends[0], ends[1], skipFirst && !a.Out);
    }
}

/// Bresenham's line between pixels, from the lower end to the upper one of the longer axis: its way back is the same.
void cSoftwareRaster::DrawLine(const Corner& a, const Corner& b, bool skipFirst) {
    const int ends[2][2] = {{a.X >> 8, a.Y >> 8}, {b.X >> 8, b.Y >> 8}};
    const int dx = ends[1][0] - ends[0][0], dy = ends[1][1] - ends[0][1];
    const int major = std::abs(dx) >= std::abs(dy) ? 0 : 1;
    const int length = std::max(std::abs(dx), std::abs(dy));

    const int near = Farness(a) <= Farness(b) ? 0 : 1; // as of triangles
    m_RefX = ends[near][0] * s_One + s_Half;
    m_RefY = ends[near][1] * s_One + s_Half;
    std::fill_n(m_Grad, 4, 0.0f);
    if (length > 0) {
        m_Grad[major == 0 ? 0 : 2] = 1 / float((major == 0 ? dx : dy) * (near == 0 ? 1 : -1));
    }
    const Corner &reference = near == 0 ? a : b, &other = near == 0 ? b : a;
    SetPlanes(reference, other, reference);

    const int low = ends[0][major] <= ends[1][major] ? 0 : 1, first = ends[low][major];
    const int minor = ends[low][1 - major], slope = ends[1 - low][1 - major] - minor;
    const Bounds& clip = m_State.Clip;
    int from = std::max(0, (major == 0 ? clip.X0 : clip.Y0) - first);
    int to = std::min(length, (major == 0 ? clip.X1 : clip.Y1) - 1 - first);
    if (skipFirst && low == 0) {
        from = std::max(from, 1);
    } else if (skipFirst) {
        to = std::min(to, length - 1);
    }

    const int64_t scale = std::max(2 * length, 1), place = int64_t(2) * from * slope + length;
    int at = int(FloorDiv(place, scale));
    int64_t rest = place - at * scale;
    int start = first + from; // of the run of pixels in one row
    for (int i = from; i <= to; i++) {
        const int here = minor + at;
        rest += 2 * slope;
        const int move = rest >= scale ? 1 : rest < 0 ? -1 : 0;
        rest -= move * scale;
        at += move;
        if (major == 1) {
            Run(first + i, here, here + 1);
        } else if (move != 0 || i == to) {
            Run(here, start, first + i + 1);
            start = first + i + 1;
        }
    }
}

bool cSoftwareRaster::IsCulled(double area) const {
    return (m_State.Cull == cCullMode::Front && area > 0) || (m_State.Cull == cCullMode::Back && area < 0);
}

void cSoftwareRaster::Triangle(const Corner& a, const Corner& b, const Corner& c) {
    const unsigned any = a.Out | b.Out | c.Out;
    if ((a.Out & b.Out & c.Out) || (any & s_NotFinite)) {
        return;
    }
    if (m_State.IsWireframe) {
        // The sign of this determinant is the side of the triangle even where a corner lies behind the eye.
        const cVec4 &p = a.From->Clip, &q = b.From->Clip, &r = c.From->Clip;
        const double area = double(p.x) * (double(q.y) * r.w - double(r.y) * q.w) -
                            double(p.y) * (double(q.x) * r.w - double(r.x) * q.w) +
                            double(p.w) * (double(q.x) * r.y - double(r.x) * q.y);
        if (!IsCulled(area)) {
            Line(a, b, false);
            Line(b, c, false);
            Line(c, a, false);
        }
        return;
    }
    if (!any) {
        Fill(a, b, c);
        return;
    }
    m_Polygon[0][0] = *a.From;
    m_Polygon[0][1] = *b.From;
    m_Polygon[0][2] = *c.From;
    Corner corners[s_MaxCorners];
    const int count = ClipPolygon(any);
    for (int i = 0; i < count; i++) {
        Place(m_Polygon[0][i], &corners[i]);
        if (corners[i].Out) {
            return;
        }
    }
    for (int i = 2; i < count; i++) {
        Fill(corners[0], corners[i - 1], corners[i]);
    }
}

void cSoftwareRaster::Fill(const Corner& first, const Corner& second, const Corner& third) {
    // Values are extrapolated from `a`: from a corner at the edge of the guard band, where w may be next to nothing,
    // they would arrive without a digit left.
    const int64_t farness[3] = {Farness(first), Farness(second), Farness(third)};
    const bool isFirst = farness[0] <= farness[1] && farness[0] <= farness[2], isSecond = farness[1] <= farness[2];
    const Corner& a = isFirst ? first : isSecond ? second : third;
    const Corner& b = isFirst ? second : isSecond ? third : first;
    const Corner& c = isFirst ? third : isSecond ? first : second;
    const int64_t x1 = b.X - a.X, y1 = b.Y - a.Y, x2 = c.X - a.X, y2 = c.Y - a.Y;
    const int64_t area = x1 * y2 - x2 * y1;
    if (area == 0 || IsCulled(double(area))) {
        return;
    }
    const Corner* v[3] = {&a, &b, &c}; // from below
    if (v[1]->Y < v[0]->Y) {
        std::swap(v[0], v[1]);
    }
    if (v[2]->Y < v[1]->Y) {
        std::swap(v[1], v[2]);
        if (v[1]->Y < v[0]->Y) {
            std::swap(v[0], v[1]);
        }
    }
    const Bounds& clip = m_State.Clip;
    int y = std::max(FirstCentre(v[0]->Y), clip.Y0);
    const int turn = std::min(FirstCentre(v[1]->Y), clip.Y1), end = std::min(FirstCentre(v[2]->Y), clip.Y1);
    const int left = std::min({a.X, b.X, c.X}), right = std::max({a.X, b.X, c.X});
    if (y >= end || FirstCentre(left) >= clip.X1 || FirstCentre(right) <= clip.X0) {
        return;
    }

    const float scale = 256 / float(area); // area has 1/65536 pixels
    m_Grad[0] = float(y2) * scale;
    m_Grad[1] = -float(y1) * scale;
    m_Grad[2] = -float(x2) * scale;
    m_Grad[3] = float(x1) * scale;
    m_RefX = a.X;
    m_RefY = a.Y;
    SetPlanes(a, b, c);

    const bool isLongLeft =
        int64_t(v[1]->X - v[0]->X) * (v[2]->Y - v[0]->Y) > int64_t(v[1]->Y - v[0]->Y) * (v[2]->X - v[0]->X);
    Edge whole(*v[0], *v[2], y);
    for (int half = 0; half < 2; half++) {
        const int stop = half == 0 ? turn : end;
        if (y >= stop) {
            continue;
        }
        for (Edge part(*v[half], *v[half + 1], y); y < stop; y++, part.Up(), whole.Up()) {
            Run(y, isLongLeft ? whole.X() : part.X(), isLongLeft ? part.X() : whole.X());
        }
    }
}

// Values over a primitive

/// Through the values at three corners.
template <class T> cSoftwareRaster::Plane<T> cSoftwareRaster::Solve(T a, T b, T c, const T (&grad)[4]) {
    const T e1 = b - a, e2 = c - a;
    return {a, e1 * grad[0] + e2 * grad[1], e1 * grad[2] + e2 * grad[3]};
}

/// The corner of the reference comes first, and again in place of those that a line and a point have not.
void cSoftwareRaster::SetPlanes(const Corner& a, const Corner& b, const Corner& c) {
    const int varyings = m_State.Shader->GetVaryingCount();
    const auto isLikeFirst = [&](const Corner& other) {
        return std::memcmp(other.From->Varyings, a.From->Varyings, sizeof(cVec4) * size_t(varyings)) == 0;
    };
    m_HasColor = false;
    m_IsFlat = m_Stage != cSoftwareShader::PixelStage::Own && isLikeFirst(b) && isLikeFirst(c);
    m_IsAffine = a.InvW == b.InvW && a.InvW == c.InvW;
    if (m_State.Depths) {
        m_Z = Solve(a.Z, b.Z, c.Z, m_Grad);
    }
    if (m_IsFlat) {
        for (int k = 0; k < varyings; k++) {
            m_Varyings[k].Value = Float4::Load(a.From->Varyings[k]);
        }
        return;
    }
    m_InvW = Solve(a.InvW, b.InvW, c.InvW, m_Grad);
    m_LeastInvW = std::min({a.InvW, b.InvW, c.InvW});
    m_MostInvW = std::max({a.InvW, b.InvW, c.InvW});
    const Float4 grad[] = {Float4::All(m_Grad[0]), Float4::All(m_Grad[1]), Float4::All(m_Grad[2]),
                           Float4::All(m_Grad[3])};
    for (int k = 0; k < varyings; k++) {
        const auto value = [&](const Corner& corner) {
            return Float4::Load(corner.From->Varyings[k]) * Float4::All(m_IsAffine ? 1.0f : corner.InvW);
        };
        m_Varyings[k] = Solve(value(a), value(b), value(c), grad);
    }
}

/// w of four pixels by its inverse, which on a sliver may leave the range of the corners, and even reach 0.
Float4 cSoftwareRaster::PerspectiveAt(Float4 inverse) const {
    return Float4::All(1) / Float4::Min(Float4::Max(inverse, Float4::All(m_LeastInvW)), Float4::All(m_MostInvW));
}

/// Leaves the varyings in the span; for `PixelStage::Color` the colours.
void cSoftwareRaster::Interpolate(int y, int x0, int count) {
    const float dy = CentreFrom(y, m_RefY);
    const bool isColor = m_Stage == cSoftwareShader::PixelStage::Color;
    const int varyings = isColor ? 1 : m_State.Shader->GetVaryingCount();
    m_Span.X = x0;
    m_Span.Y = y;
    m_Span.Count = count;
    const float first = CentreFrom(x0, m_RefX); // exact, and so are the whole numbers that are added to it
    alignas(16) float w[cSoftwareShader::Span::MaxCount];
    if (!m_IsAffine) {
        const Float4 row = Float4::All(m_InvW.Value + m_InvW.Dy * dy), dx = Float4::All(m_InvW.Dx);
        for (int i = 0; i < count; i += 4) { // up to the end of the array
            PerspectiveAt(row + dx * (Float4::All(first + float(i)) + s_Steps)).Store(&w[i]);
        }
    }
    for (int k = 0; k < varyings; k++) {
        const Float4 row = m_Varyings[k].Value + m_Varyings[k].Dy * Float4::All(dy);
        const Float4 dx = m_Varyings[k].Dx, one = Float4::All(1);
        cVec4* out = isColor ? m_Span.Colors : m_Span.Varyings[k];
        Float4 x = Float4::All(first);
        if (m_IsAffine) {
            for (int i = 0; i < count; i++, x = x + one) {
                (row + dx * x).Store(&out[i]);
            }
        } else {
            for (int i = 0; i < count; i++, x = x + one) {
                ((row + dx * x) * Float4::All(w[i])).Store(&out[i]);
            }
        }
    }
}

// Pixels

/// Draws what is inside the bounds of the pixels of a row from `x0` to before `x1`.
void cSoftwareRaster::Run(int y, int x0, int x1) {
    const Bounds& clip = m_State.Clip;
    x0 = std::max(x0, clip.X0);
    x1 = std::min(x1, clip.X1);
    if (x0 >= x1 || y < clip.Y0 || y >= clip.Y1) {
        return;
    }
    if (m_IsFlat && !m_HasColor) {
        m_Span.X = x0;
        m_Span.Y = y;
        m_Span.Count = 1;
        for (int k = 0; k < m_State.Shader->GetVaryingCount(); k++) {
            m_Varyings[k].Value.Store(&m_Span.Varyings[k][0]);
        }
        m_State.Shader->Pixels(m_Span);
        m_Color = m_Span.Colors[0];
        m_HasColor = true;
    }
    if (m_IsFlat && !m_State.Depths) {
        m_Merge.Fill(x0, y, x1 - x0, m_Color);
        return;
    }
    if (m_ColorRow && !m_IsFlat) {
        return (this->*m_ColorRow)(y, x0, x1);
    }
    for (int x = x0; x < x1; x += cSoftwareShader::Span::MaxCount) {
        Piece(y, x, std::min(x1 - x, cSoftwareShader::Span::MaxCount));
    }
}

/// What `Piece` does, in one go, for the commonest of all: interpolated colours that replace what is there.
template <class Passes> void cSoftwareRaster::ColorRow(int y, int x0, int x1) {
    constexpr Passes passes;
    const float dy = CentreFrom(y, m_RefY), first = CentreFrom(x0, m_RefX);
    const auto rowOf = [dy](const Plane<float>& plane) { return Float4::All(plane.Value + plane.Dy * dy); };
    const Float4 depthRow = rowOf(m_Z), depthDx = Float4::All(m_Z.Dx);
    const Float4 inverseRow = rowOf(m_InvW), inverseDx = Float4::All(m_InvW.Dx);
    const Float4 row = m_Varyings[0].Value + m_Varyings[0].Dy * Float4::All(dy), dx = m_Varyings[0].Dx;
    unsigned* target = m_State.Surface.Bytes + size_t(y) * size_t(m_State.Surface.Width) + size_t(x0);
    float* depths = m_State.Depths + size_t(y) * size_t(m_State.DepthPitch) + size_t(x0);
    for (int left = x1 - x0, i = 0; left > 0; left -= 4, i += 4) {
        const Float4 x = Float4::All(first + float(i)) + s_Steps, z = depthRow + depthDx * x;
        int keep;
        if (left >= 4) {
            keep = passes(z, Float4::Load(depths + i));
        } else {
            float old[4] = {};
            std::copy_n(depths + i, left, old); // what lies behind may be another thread's
            keep = passes(z, Float4::Load(old)) & ((1 << left) - 1);
        }
        if (keep == 0) {
            continue;
        }
        Float4 c[4] = {row + dx * x.Spread<0>(), row + dx * x.Spread<1>(), row + dx * x.Spread<2>(),
                       row + dx * x.Spread<3>()};
        if (!m_IsAffine) {
            const Float4 w = PerspectiveAt(inverseRow + inverseDx * x);
            c[0] = c[0] * w.Spread<0>();
            c[1] = c[1] * w.Spread<1>();
            c[2] = c[2] * w.Spread<2>();
            c[3] = c[3] * w.Spread<3>();
        }
        unsigned bytes[4];
        float deep[4];
        Float4::ToBytes(c[0], c[1], c[2], c[3], keep == 15 ? target + i : bytes);
        z.Store(keep == 15 && m_State.Depth.Write ? depths + i : deep);
        for (int k = 0; k < 4 && keep != 15; k++) {
            if (keep >> k & 1) {
                target[i + k] = bytes[k];
                depths[i + k] = m_State.Depth.Write ? deep[k] : depths[i + k];
            }
        }
    }
}

void cSoftwareRaster::Piece(int y, int x0, int count) {
    const uint64_t all = cSoftwareMerge::AllOf(count);
    uint64_t keep = all;
    float z[cSoftwareShader::Span::MaxCount];
    float* depths = nullptr;
    if (m_State.Depths) {
        depths = m_State.Depths + size_t(y) * size_t(m_State.DepthPitch) + size_t(x0);
        const Float4 row = Float4::All(m_Z.Value + m_Z.Dy * CentreFrom(y, m_RefY)), dx = Float4::All(m_Z.Dx);
        const float first = CentreFrom(x0, m_RefX);
        for (int i = 0; i < count; i += 4) { // up to the end of the array
            (row + dx * (Float4::All(first + float(i)) + s_Steps)).Store(&z[i]);
        }
        keep = m_State.Depth.Test ? TestDepths(m_State.Depth.Func, z, depths, count) : all;
        if (keep == 0) {
            return;
        }
    }
    if (m_IsFlat && keep == all) {
        m_Merge.Fill(x0, y, count, m_Color);
    } else {
        if (m_IsFlat) {
            std::fill_n(m_Span.Colors, count, m_Color);
        } else {
            Interpolate(y, x0, count);
            keep = Shade(keep);
        }
        m_Merge.Write(x0, y, count, m_Span.Colors, keep);
    }
    if (depths && m_State.Depth.Write && keep == all) {
        std::copy_n(z, count, depths);
    } else if (depths && m_State.Depth.Write) {
        for (int i = 0; i < count; i++) {
            depths[i] = keep >> i & 1 ? z[i] : depths[i];
        }
    }
}

/// Colours of the span. @return the pixels that are kept, out of `keep`
uint64_t cSoftwareRaster::Shade(uint64_t keep) {
    if (m_Stage == cSoftwareShader::PixelStage::Color) {
        return keep;
    }
    if (m_Stage == cSoftwareShader::PixelStage::Plain) {
        m_State.Shader->Pixels(m_Span);
        return keep;
    }
    const uint64_t all = cSoftwareMerge::AllOf(m_Span.Count);
    std::fill_n(m_Span.Keep, m_Span.Count, true);
    for (uint64_t out = keep ^ all; out; out &= out - 1) {
        m_Span.Keep[std::countr_zero(out)] = false;
    }
    m_State.Shader->Pixels(m_Span);
    if (!std::memchr(m_Span.Keep, false, size_t(m_Span.Count))) {
        return all;
    }
    uint64_t left = 0;
    for (int i = 0; i < m_Span.Count; i++) {
        left |= uint64_t(m_Span.Keep[i]) << i;
    }
    return left;
}

} // namespace trellis
