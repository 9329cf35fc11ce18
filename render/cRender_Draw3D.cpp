// Shapes in the world. Each but the camera is one draw of the device, from lists that are kept from call to call.
#include "foundation/cImmortal.h"
#include "math/cBounds.h"
#include "math/cFrustum.h"
#include "math/cQuat.h"
#include "render/cRender.h"
#include "render/cRender_Internal.h"
#include "view/cViewer.h"

#include <algorithm>
#include <cmath>

namespace trellis {

namespace {

using Vertex = cVertex::PositionColored;

constinit cImmortal<cList<Vertex>> s_VertexStore;
constinit cImmortal<cList<int>> s_IndexStore;
constinit cList<Vertex>& s_Vertices = s_VertexStore.Value;
constinit cList<int>& s_Indices = s_IndexStore.Value;

int ClampSegments(int segments) {
    return std::clamp(segments, 3, 256);
}

void SetColored() {
    static const int s_ID = cRender::GetShaderID("Colored", Vertex::FormatID);
    cRender::SetShader(s_ID);
}

void Add(const cVec3& p, unsigned int color) {
    s_Vertices.Add({p, color});
}

void AddLine(const cVec3& a, const cVec3& b, unsigned int color) {
    Add(a, color);
    Add(b, color);
}

/// The lists as they stand, and then empties them.
void DrawLists(cTopology::Enum topology) {
    if (s_Indices.IsEmpty()) {
        cRender::DrawArrays(topology, s_Vertices.Data(), s_Vertices.Count());
    } else {
        cRender::DrawIndexed(topology, s_Vertices.Data(), s_Vertices.Count(), s_Indices.Data(), s_Indices.Count(), 4);
    }
    s_Vertices.Clear();
    s_Indices.Clear();
}

// Points of the unit circle, the first one again at the end, and the triangles of its disc, whose middle is vertex 0
// and whose rim follows; made anew only for another number of segments.
constinit cImmortal<cList<cVec2>> s_CircleVertexStore;
constinit cImmortal<cList<int>> s_CircleIndexStore;
constinit cList<cVec2>& cRender_CircleVB = s_CircleVertexStore.Value;
constinit cList<int>& cRender_CircleIB = s_CircleIndexStore.Value;

const cVec2* UnitCircle(int segments) {
    if (cRender_CircleVB.Count() != segments + 1) {
        cRender_CircleVB.SetCount(segments + 1);
        cRender_CircleIB.Clear();
        for (int i = 0; i <= segments; i++) {
            cMath::SinCos(360.0f * float(i % segments) / float(segments), &cRender_CircleVB[i].y,
                          &cRender_CircleVB[i].x);
        }
        for (int i = 0; i < segments; i++) {
            const int triangle[3] = {0, 1 + i, 1 + (i + 1) % segments};
            cRender_CircleIB.AddRange(triangle, 3);
        }
    }
    return cRender_CircleVB.Data();
}

/// Of unit length, also where the square is no float.
cVec3 Unit(const cVec3& v, const cVec3& otherwise) {
    const float most = std::max({std::fabs(v.x), std::fabs(v.y), std::fabs(v.z)});
    return most > 0 && std::isfinite(most) ? cVec3::Normalize(v / most) : otherwise;
}

void AddCircle(const cVec3& center, const cVec3& right, const cVec3& up, unsigned int color, int segments) {
    const cVec2* circle = UnitCircle(segments);
    for (int i = 0; i <= segments; i++) {
        Add(center + right * circle[i].x + up * circle[i].y, color);
    }
}

void DrawCircleAround(const cVec3& center, float radius, const cVec3& normal, const cColor& color, int segments) {
    cVec3 right, up;
    normal.ToPerps(right, up);
    SetColored();
    AddCircle(center, right * radius, up * radius, color.ToDword(), ClampSegments(segments));
    DrawLists(cTopology::LineStrip);
}

/// The eight corners, numbered as those of a frustum: the near face, counterclockwise, and then the far one.
void AddCorners(cList<Vertex>* out, const cVec3& center, const cVec3 (&half)[3], const Vertex& like) {
    constexpr int Signs[8][3] = {{-1, -1, 1},  {1, -1, 1},  {1, 1, 1},  {-1, 1, 1},
                                 {-1, -1, -1}, {1, -1, -1}, {1, 1, -1}, {-1, 1, -1}};
    for (const auto& sign : Signs) {
        Vertex v = like;
        v.Pos = center + half[0] * float(sign[0]) + half[1] * float(sign[1]) + half[2] * float(sign[2]);
        out->Add(v);
    }
}

/// Twelve edges between corners in the first eight places, as a line list.
void DrawEdges(unsigned int color) {
    const cVec3 corners[8] = {s_Vertices[0].Pos, s_Vertices[1].Pos, s_Vertices[2].Pos, s_Vertices[3].Pos,
                              s_Vertices[4].Pos, s_Vertices[5].Pos, s_Vertices[6].Pos, s_Vertices[7].Pos};
    s_Vertices.Clear();
    for (const int corner : cFrustum::Segments) {
        Add(corners[corner], color);
    }
    SetColored();
    DrawLists(cTopology::LineList);
}

void DrawFrustum(const cFrustum& frustum, const cColor& color, cTopology::Enum topology, const int* indices,
                 int count) {
    for (const cVec3& corner : frustum.corners) {
        Add(corner, color.ToDword());
    }
    s_Indices.AddRange(indices, count);
    DrawLists(topology);
}

/// Of the end circles of a cone, by their unit axis.
struct ConeFrame {
    cVec3 Right, Up;

    ConeFrame(const cVec3& apex, const cVec3& base) { Unit(apex - base, cVec3::AxisY).ToPerps(Right, Up); }
    cVec3 At(const cVec2& circle, float radius) const { return (Right * circle.x + Up * circle.y) * radius; }
};

} // namespace

void cRender::DrawCrossHair(const cVec3& at, float size, const cColor& color) {
    const unsigned int packed = color.ToDword();
    for (const cVec3& axis : {cVec3::AxisX, cVec3::AxisY, cVec3::AxisZ}) {
        AddLine(at - axis * (size * 0.5f), at + axis * (size * 0.5f), packed);
    }
    SetColored();
    DrawLists(cTopology::LineList);
}

// ---- Boxes

void cRender::DrawCubeWire(const cVec3& center, float size, const cColor& color) {
    const float h = size * 0.5f;
    AddCorners(&s_Vertices, center, {{h, 0, 0}, {0, h, 0}, {0, 0, h}}, Vertex());
    DrawEdges(color.ToDword());
}

void cRender::DrawBounds(const cBounds& bounds, const cColor& color) {
    if (bounds.IsEmpty()) {
        return;
    }
    const cVec3 low = bounds.min, half = (cVec3(bounds.max) - low) * 0.5f;
    AddCorners(&s_Vertices, low + half, {{half.x, 0, 0}, {0, half.y, 0}, {0, 0, half.z}}, Vertex());
    DrawEdges(color.ToDword());
}

void cRender::DrawCubeSolid(const cVec3& center, float size, const cColor& color) {
    DrawCubeSolid(center, size, color, cQuat::Identity);
}

void cRender::DrawCubeSolid(const cVec3& center, float size, const cColor& color, const cQuat& orient) {
    const float h = size * 0.5f;
    const auto turned = [&orient](const cVec3& v) { return cQuat::Rotate(v, orient); };
    AddCorners(&s_Vertices, center, {turned({h, 0, 0}), turned({0, h, 0}), turned({0, 0, h})},
               {cVec3::Zero, color.ToDword()});
    s_Indices.AddRange(cFrustum::Triangles, 36);
    SetColored();
    DrawLists(cTopology::TriangleList);
}

void cRender::DrawCubesCurShader(const cVec3* centers, const float* sizes, int count, const cColor& color) {
    if (count < 1) {
        return;
    }
    const Vertex like{cVec3::Zero, color.ToDword()};
    for (int i = 0; i < count; i++) {
        const int first = s_Vertices.Count();
        const float h = sizes[i] * 0.5f;
        AddCorners(&s_Vertices, centers[i], {{h, 0, 0}, {0, h, 0}, {0, 0, h}}, like);
        for (const int corner : cFrustum::Triangles) {
            s_Indices.Add(first + corner);
        }
    }
    DrawLists(cTopology::TriangleList);
}

void cRender::DrawFrustumWire(const cFrustum& frustum, const cColor& color) {
    SetColored();
    DrawFrustumWireCurShader(frustum, color);
}

void cRender::DrawFrustumWireCurShader(const cFrustum& frustum, const cColor& color) {
    DrawFrustum(frustum, color, cTopology::LineList, cFrustum::Segments, 24);
}

void cRender::DrawFrustumSolidCurShader(const cFrustum& frustum, const cColor& color) {
    DrawFrustum(frustum, color, cTopology::TriangleList, cFrustum::Triangles, 36);
}

// ---- Round shapes

void cRender::DrawCircle(const cVec2& center, float radius, float from, float to, const cColor& color, int segments) {
    static const int s_ID = GetShaderID("LinesPointsUI", Vertex::FormatID);
    segments = ClampSegments(segments);
    for (int i = 0; i <= segments; i++) {
        float s, c;
        cMath::SinCos(from + (to - from) * float(i) / float(segments), &s, &c);
        Add({center.x + radius * c, center.y + radius * s, 0}, color.ToDword());
    }
    cRender_SetShapeState(s_ID);
    DrawLists(cTopology::LineStrip);
}

void cRender::DrawCircle(const cVec3& center, float radius, const cColor& color, const cVec3* normal) {
    constexpr int Segments = 64;
    DrawCircleAround(center, radius, normal ? Unit(*normal, cVec3::AxisY) : cVec3::AxisY, color, Segments);
}

void cRender::DrawFacingCircle(const cVec3& center, float radius, const cVec3& toEye, const cColor& color,
                               int segments) {
    DrawCircleAround(center, radius, Unit(toEye, cVec3::AxisZ), color, segments);
}

void cRender::DrawSphereWire(const cVec3& center, float radius, const cColor& color) {
    DrawSphereWire(center, radius, color, 8, 16, cVec3::AxisY);
}

void cRender::DrawSphereWire(const cVec3& center, float radius, const cColor& color, int latitudes, int longitudes,
                             const cVec3& axis) {
    // The points of a unit sphere about the Z axis: the two poles, and a row of `longitudes` for each latitude.
    static constinit cImmortal<cList<cVec3>> s_PointStore;
    static constinit cImmortal<cList<int>> s_LineStore;
    static int s_Latitudes, s_Longitudes;
    cList<cVec3>& points = s_PointStore.Value;
    cList<int>& lines = s_LineStore.Value;
    latitudes = std::clamp(latitudes, 1, 256);
    longitudes = ClampSegments(longitudes);
    if (latitudes != s_Latitudes || longitudes != s_Longitudes) {
        s_Latitudes = latitudes;
        s_Longitudes = longitudes;
        points.Clear();
        lines.Clear();
        points.Add({0, 0, 1});
        points.Add({0, 0, -1});
        const cVec2* circle = UnitCircle(longitudes);
        for (int row = 0; row < latitudes; row++) {
            float s, c;
            cMath::SinCos(180.0f * float(row + 1) / float(latitudes + 1), &s, &c);
            const int first = points.Count();
            for (int k = 0; k < longitudes; k++) {
                points.Add({circle[k].x * s, circle[k].y * s, c});
                const int above = row == 0 ? 0 : first + k - longitudes;
                const int segments[4] = {first + k, first + (k + 1) % longitudes, above, first + k};
                lines.AddRange(segments, 4);
                if (row == latitudes - 1) {
                    const int last[2] = {first + k, 1};
                    lines.AddRange(last, 2);
                }
            }
        }
    }
    const cVec3 pole = Unit(axis, cVec3::AxisY);
    cVec3 right, up;
    pole.ToPerps(right, up);
    const unsigned int packed = color.ToDword();
    for (const cVec3& p : points) {
        Add(center + (right * p.x + up * p.y + pole * p.z) * radius, packed);
    }
    SetColored();
    DrawIndexed(cTopology::LineList, s_Vertices.Data(), s_Vertices.Count(), lines.Data(), lines.Count(), 4);
    s_Vertices.Clear();
}

void cRender::DrawConeSolid(const cVec3& apex, const cVec3& base, float apexRadius, float baseRadius,
                            const cColor& color, int segments) {
    segments = ClampSegments(segments);
    const cVec2* circle = UnitCircle(segments);
    const ConeFrame frame(apex, base);
    const unsigned int packed = color.ToDword();
    Add(apex, packed);
    Add(base, packed);
    for (int i = 0; i < segments; i++) {
        Add(apex + frame.At(circle[i], apexRadius), packed);
        Add(base + frame.At(circle[i], baseRadius), packed);
        const int a = 2 + 2 * i, b = a + 1, nextA = 2 + 2 * ((i + 1) % segments), nextB = nextA + 1;
        const int triangles[12] = {a, b, nextA, nextA, b, nextB, 0, a, nextA, 1, nextB, b};
        s_Indices.AddRange(triangles, 12);
    }
    SetColored();
    DrawLists(cTopology::TriangleList);
}

void cRender::DrawConeWire(const cVec3& apex, const cVec3& base, float apexRadius, float baseRadius,
                           const cColor& color, int segments, int sides) {
    segments = ClampSegments(segments);
    sides = std::clamp(sides, 0, segments);
    const cVec2* circle = UnitCircle(segments);
    const ConeFrame frame(apex, base);
    const unsigned int packed = color.ToDword();
    for (int i = 0; i < segments; i++) {
        AddLine(apex + frame.At(circle[i], apexRadius), apex + frame.At(circle[i + 1], apexRadius), packed);
        AddLine(base + frame.At(circle[i], baseRadius), base + frame.At(circle[i + 1], baseRadius), packed);
    }
    for (int side = 0; side < sides; side++) {
        const cVec2& at = circle[side * segments / sides];
        AddLine(apex + frame.At(at, apexRadius), base + frame.At(at, baseRadius), packed);
    }
    SetColored();
    DrawLists(cTopology::LineList);
}

void cRender::DrawSector(const cVec3& center, float radius, const cVec3& from, const cVec3& to, const cColor& color,
                         int segments) {
    const cVec3 right = Unit(from, cVec3::Zero), end = Unit(to, cVec3::Zero), normal = cVec3::Cross(right, end);
    if (!(normal.LengthSq() > 0)) {
        return;
    }
    segments = ClampSegments(segments);
    const cVec3 up = cVec3::Normalize(cVec3::Cross(normal, right));
    const float angle = std::atan2(cVec3::Dot(end, up), cVec3::Dot(end, right)) * cMath::DegsPerRad;
    const unsigned int packed = color.ToDword();
    Add(center, packed);
    for (int i = 0; i <= segments; i++) {
        float s, c;
        cMath::SinCos(angle * float(i) / float(segments), &s, &c);
        Add(center + (right * c + up * s) * radius, packed);
        if (i > 0) {
            const int triangle[3] = {0, i, i + 1};
            s_Indices.AddRange(triangle, 3);
        }
    }
    SetColored();
    DrawLists(cTopology::TriangleList);
}

void cRender::FillCirclesCurShader(const cVec3* centers, const float* radii, int count, const cVec3& normal,
                                   int segments) {
    if (count < 1) {
        return;
    }
    segments = ClampSegments(segments);
    const cVec2* circle = UnitCircle(segments);
    cVec3 right, up;
    Unit(normal, cVec3::AxisZ).ToPerps(right, up);
    const unsigned int white = cColor::White.ToDword();
    for (int i = 0; i < count; i++) {
        const int first = s_Vertices.Count();
        Add(centers[i], white);
        for (int k = 0; k < segments; k++) {
            Add(centers[i] + (right * circle[k].x + up * circle[k].y) * radii[i], white);
        }
        for (const int index : cRender_CircleIB) {
            s_Indices.Add(first + index);
        }
    }
    DrawLists(cTopology::TriangleList);
}

void cRender::DrawBillboardQuadsSolid(const cVec3* centers, int count, float size, const cColor& color) {
    if (count < 1) {
        return;
    }
    const cViewer* viewer = GetViewer();
    const cVec3 right = (viewer ? viewer->Right : cVec3::AxisX) * (size * 0.5f);
    const cVec3 up = (viewer ? viewer->Up : cVec3::AxisY) * (size * 0.5f);
    const unsigned int packed = color.ToDword();
    for (int i = 0; i < count; i++) {
        Vertex* corners = cRender_AddQuad(&s_Vertices, &s_Indices);
        corners[0] = {centers[i] - right + up, packed};
        corners[1] = {centers[i] - right - up, packed};
        corners[2] = {centers[i] + right - up, packed};
        corners[3] = {centers[i] + right + up, packed};
    }
    SetColored();
    DrawLists(cTopology::TriangleList);
}

// ---- Camera and grid

void cRender::DrawCamera(const cColor& color) {
    // A body, the cone of the lens in front of it, and an arrow that tells what is up.
    static constexpr cVec3 Body[24] = {
        {-0.2f, -0.2f, 0.6f}, {0.2f, -0.2f, 0.6f},  {0.2f, -0.2f, 0.6f},  {0.2f, 0.2f, 0.6f},  {0.2f, 0.2f, 0.6f},
        {-0.2f, 0.2f, 0.6f},  {-0.2f, 0.2f, 0.6f},  {-0.2f, -0.2f, 0.6f}, {-0.2f, -0.2f, 0},   {0.2f, -0.2f, 0},
        {0.2f, -0.2f, 0},     {0.2f, 0.2f, 0},      {0.2f, 0.2f, 0},      {-0.2f, 0.2f, 0},    {-0.2f, 0.2f, 0},
        {-0.2f, -0.2f, 0},    {-0.2f, -0.2f, 0.6f}, {-0.2f, -0.2f, 0},    {0.2f, -0.2f, 0.6f}, {0.2f, -0.2f, 0},
        {0.2f, 0.2f, 0.6f},   {0.2f, 0.2f, 0},      {-0.2f, 0.2f, 0.6f},  {-0.2f, 0.2f, 0},
    };
    static constexpr cVec3 Lens[16] = {
        {0, 0, 0},
        {-0.3f, -0.2f, -0.4f},
        {0, 0, 0},
        {0.3f, -0.2f, -0.4f},
        {0, 0, 0},
        {0.3f, 0.2f, -0.4f},
        {0, 0, 0},
        {-0.3f, 0.2f, -0.4f},
        {-0.3f, -0.2f, -0.4f},
        {0.3f, -0.2f, -0.4f},
        {0.3f, -0.2f, -0.4f},
        {0.3f, 0.2f, -0.4f},
        {0.3f, 0.2f, -0.4f},
        {-0.3f, 0.2f, -0.4f},
        {-0.3f, 0.2f, -0.4f},
        {-0.3f, -0.2f, -0.4f},
    };
    static constexpr cVec3 Top[6] = {
        {-0.1f, 0.22f, -0.4f}, {0.1f, 0.22f, -0.4f}, {0.1f, 0.22f, -0.4f},
        {0, 0.36f, -0.4f},     {0, 0.36f, -0.4f},    {-0.1f, 0.22f, -0.4f},
    };
    const unsigned int packed = color.ToDword();
    SetColored();
    const auto draw = [packed](const auto& points) {
        for (const cVec3& p : points) {
            Add(p, packed);
        }
        DrawLists(cTopology::LineList);
    };
    draw(Body);
    draw(Lens);
    draw(Top);
}

void cRender::GridArgs::SetDefaults() {
    Size = 20;
    Height = 20;
    CellSize = 5;
    SubDivisions = 5;
    ShowAxes = ShowLines = ShowSubLines = true;
    ShowPlanes = false;
    Transform = cMat4::Identity;
}

namespace {

constexpr float LeastCell = 0.001f;

void RepairGrid(float* size, float* cellSize, int* subDivisions) {
    if (!(*size >= 1) || !std::isfinite(*size)) {
        *size = 20;
    }
    if (!(*cellSize >= LeastCell) || !std::isfinite(*cellSize)) {
        *cellSize = 5;
    }
    if (*subDivisions <= 0) {
        *subDivisions = 1;
    }
}

/// Four lines, two along each axis, at a distance from the middle.
void AddGridLines(float size, float at, unsigned int color) {
    AddLine({at, 0, -size}, {at, 0, size}, color);
    AddLine({-at, 0, -size}, {-at, 0, size}, color);
    AddLine({-size, 0, at}, {size, 0, at}, color);
    AddLine({-size, 0, -at}, {size, 0, -at}, color);
}

} // namespace

void cRender::GridArgs::Validate() {
    if (!(Height >= LeastCell) || !std::isfinite(Height)) {
        Height = 20;
    }
    RepairGrid(&Size, &CellSize, &SubDivisions);
}

void cRender::DrawGrid(const GridArgs& args) {
    constexpr float MostLines = 10'000; // on either side; a screen has no room for more
    float size = args.Size, cell = args.CellSize;
    int subDivisions = args.SubDivisions;
    RepairGrid(&size, &cell, &subDivisions);
    const auto count = [&](float step) { return int(std::min(std::floor(size / step + 0.5f), MostLines)); };

    // From the least to the most important, which then covers the others.
    if (args.ShowSubLines) {
        const float step = cell / float(subDivisions);
        const int n = count(step);
        for (int i = 1; i <= n; i++) {
            if (i % subDivisions != 0) {
                AddGridLines(size, float(i) * step, cColor::Gray.ToDword());
            }
        }
    }
    if (args.ShowAxes) {
        const unsigned int black = cColor::Black.ToDword();
        AddLine({-size, 0, 0}, {size, 0, 0}, black);
        AddLine({0, 0, -size}, {0, 0, size}, black);
        AddLine({0, 0, 0}, {0, args.Height, 0}, black);
    }
    if (args.ShowLines) {
        const float whole = size / cell * 1.00001f; // 13 cells of 0.1 are 1.3
        const int n = int(std::min(std::floor(whole), MostLines));
        for (int i = 1; i <= n; i++) {
            AddGridLines(size, float(i) * cell, cColor::DimGray.ToDword());
        }
    }
    if (s_Vertices.IsEmpty()) {
        return;
    }
    static const int s_ID = GetShaderID("Grid", Vertex::FormatID);
    static const int s_Matrix = GetShaderConstID(s_ID, "c_WorldViewProjectionMatrix");
    const cViewer* viewer = GetViewer();
    SetShader(s_ID);
    SetShaderConst(s_Matrix, viewer ? args.Transform * viewer->ViewProjection : args.Transform);
    DrawLists(cTopology::LineList);
}

} // namespace trellis
