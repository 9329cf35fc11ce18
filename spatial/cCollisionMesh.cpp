#include "spatial/cCollisionMesh.h"

#include "math/cMat4.h"
#include "math/cSeg.h"
#include "math/cSolver.h"
#include "math/cVec4.h"
#include "mesh/cModel.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace trellis {

namespace {

constexpr float s_Eps = 0.001f; // the distance that is kept
constexpr float s_Reach = 1 + s_Eps;

cVec3 Multiply(const cVec3& a, const cVec3& b) {
    return {a.x * b.x, a.y * b.y, a.z * b.z};
}

cVec3 Divide(const cVec3& a, const cVec3& b) {
    return {a.x / b.x, a.y / b.y, a.z / b.z};
}

/// A normal goes through a scaling by its inverse. In doubles, which hold the squares of whatever radii can give.
cVec3 NormalToWorld(const cVec3& n, const cVec3& radii) {
    const double x = double(n.x) / radii.x, y = double(n.y) / radii.y, z = double(n.z) / radii.z;
    const double length = std::sqrt(x * x + y * y + z * z);
    if (!(length > 0 && std::isfinite(length))) {
        return cVec3::AxisY;
    }
    return {float(x / length), float(y / length), float(z / length)};
}

/// What all contacts together may add to a way.
float PushesOf(int maxIterations) {
    return 2 * s_Eps * (float(std::max(maxIterations, 0)) + 2);
}

/// Whether a corner or an edge is within the sphere by no more than keeping the distance from others has pushed it
/// there, and comes nearer. It is met at once: the equation only knows where the sphere would have left it behind.
///
/// @param depth  1 - distance^2
bool IsTouching(float depth, float approach, float maxValue, float* root) {
    if (!(depth >= 0 && depth < 6 * s_Eps && approach > 0 && maxValue > 0)) {
        return false;
    }
    *root = 0;
    return true;
}

} // namespace

void cCollisionMesh::Free() {
    Triangles.Free();
    Bsp.Free();
}

cCollisionMesh::Triangle cCollisionMesh::MakeTriangle(const cVec3& a, const cVec3& b, const cVec3& c, int data) {
    constexpr float LeastSq = 1.0000001e-6f;
    const cVec3 normal = cVec3::Cross(b - a, c - a);
    return {
        {a, b, c}, normal.LengthSq() < LeastSq ? cPlane(cVec3::Zero, 0.0f) : cPlane(cVec3::Normalize(normal), a), data};
}

void cCollisionMesh::AddModel(const cModel& model, const cMat4& transform, const cList<int>& data) {
    for (int m = 0; m < model.Meshes.Count(); m++) {
        const cModel::Mesh& mesh = model.Meshes[m];
        const int kind = m < data.Count() ? data[m] : 0, vertices = mesh.BumpVertices.Count();
        for (int i = 0; i + 2 < mesh.Indices.Count(); i += 3) {
            cVec3 corners[3];
            bool isWhole = true;
            for (int k = 0; k < 3; k++) {
                const int index = mesh.Indices[i + k];
                isWhole = isWhole && index >= 0 && index < vertices;
                if (isWhole) {
                    const cVec3& p = mesh.BumpVertices[index].Pos;
                    const cVec4 q = cVec4(p.x, p.y, p.z, 1) * transform;
                    const cVec3 placed(q.x, q.y, q.z);
                    corners[k] = Divide(q.w == 1 ? placed : placed / q.w, Radii);
                }
            }
            if (isWhole) {
                Triangles.Add(MakeTriangle(corners[0], corners[1], corners[2], kind));
            }
        }
    }
}

void cCollisionMesh::AddModel(const cModel& model, const cMat4& transform, int data) {
    cList<int> kinds;
    kinds.Add(data, model.Meshes.Count());
    AddModel(model, transform, kinds);
}

void cCollisionMesh::BuildBsp() {
    Bsp.Free(); // a tree of triangles that are gone would stay, as one of none is never built
    for (const Triangle& t : Triangles) {
        Bsp.AddTriangle(t.Corners[0], t.Corners[1], t.Corners[2], t.Data);
    }
    Bsp.Build(3, 1, s_Eps);
}

/// What a query looks through; good until the thread's next one.
const cList<cCollisionMesh::Triangle>& cCollisionMesh::Gather(const cVec3& center, float radius, const cVec3& low,
                                                              const cVec3& high) const {
    if (Bsp.IsEmpty()) {
        return Triangles;
    }
    static thread_local cList<const cBsp::Triangle*> s_Found;
    static thread_local cList<Triangle> s_Near;
    s_Near.Clear();
    Bsp.GetTrianglesNear(center, radius, low, high, &s_Found);
    for (const cBsp::Triangle* t : s_Found) {
        s_Near.Add({{t->Corners[0], t->Corners[1], t->Corners[2]}, t->Plane, t->Data});
    }
    return s_Near;
}

// ---- Moving

bool cCollisionMesh::Collide(const cVec3& from, cVec3* to, cVec3* velocity, float normalFactor, float tangentFactor,
                             cVec3* slideNormal, cVec3* hitNormal, int* hitData) const {
    CollisionArgs args;
    args.Position = Divide(from, Radii);
    args.Destination = Divide(*to, Radii);
    args.Velocity = velocity ? Divide(*velocity, Radii) : cVec3::Zero;
    args.NormalFactor = normalFactor;
    args.TangentFactor = tangentFactor;
    ProcessCollision(args);
    if (args.Iterations == 0) { // what was free to go is not rounded by the radii
        if (args.Destination == args.Position) {
            *to = from;
        }
        return false;
    }
    *to = Multiply(args.Destination, Radii);
    if (velocity) {
        *velocity = Multiply(args.Velocity, Radii);
    }
    if (slideNormal) {
        *slideNormal = NormalToWorld(args.FirstSlideNormal, Radii);
    }
    if (hitNormal) {
        *hitNormal = NormalToWorld(args.FirstHitNormal, Radii);
    }
    if (hitData) {
        *hitData = args.FirstHitData;
    }
    return true;
}

void cCollisionMesh::ProcessCollision(CollisionArgs& args) const {
    cVec3& pos = args.Position;
    cVec3& to = args.Destination;
    const cVec3 start = pos;
    const float radius = (to - pos).Length() + s_Reach;
    while (args.Iterations <= MaxIterations) { // asked before it is counted: 0 lets one contact pass
        args.Movement = to - pos;
        const float length = args.Movement.Length();
        if (!(length >= s_Eps)) {
            to = pos;
            return;
        }
        args.Direction = args.Movement / length;
        const auto room = [](float v) { return 1.01f + std::fabs(v) * 0.0001f; };
        const cVec3 low = cVec3::Zip(pos, to, [](float a, float b) { return std::min(a, b); });
        const cVec3 high = cVec3::Zip(pos, to, [](float a, float b) { return std::max(a, b); });
        args.Low = low - cVec3::Map(low, room);
        args.High = high + cVec3::Map(high, room);
        if (args.Iterations == 0) {
            args.Triangles = &Gather(start, radius, args.Low, args.High);
        } else if (args.Iterations == 1) { // once for all slides, which are taken to stay near the first way
            // Together they are no longer than that but for the distances kept, by which each of them may be pushed off
            // and its rest made longer.
            const bool isGrowing = !(std::fabs(args.NormalFactor) <= 1 && std::fabs(args.TangentFactor) <= 1);
            const cVec3 reach =
                cVec3::One * (isGrowing ? cMath::FloatMaxValue / 4 : 1.01f * (radius + PushesOf(MaxIterations)));
            args.Triangles = &Gather(start, radius, start - reach, start + reach);
        }
        args.Found = false;
        for (const Triangle& triangle : *args.Triangles) {
            TestTriangle(args, triangle);
        }
        if (!args.Found) {
            return;
        }
        const cVec3 contact = pos + args.Direction * args.Nearest, away = contact - args.Intersection;
        const cVec3 n = away.LengthSq() > 0 ? cVec3::Normalize(away) : away;
        if (args.Iterations++ == 0) {
            args.FirstSlideNormal = n;
            args.FirstHitNormal = args.HitNormal;
            args.FirstHitData = args.HitData;
        }
        pos = contact + n * s_Eps;
        const cVec3 mirrored = args.Direction - n * (2 * cVec3::Dot(args.Direction, n));
        const cVec3 across = n * cVec3::Dot(mirrored, n), along = mirrored - across;
        const auto turned = [&](float amount) {
            return along * (amount * args.TangentFactor) + across * (amount * args.NormalFactor);
        };
        to = pos + turned((to - pos).Length());
        args.Velocity = turned(args.Velocity.Length());
        if (!((to - pos).Length() >= s_Eps)) {
            to = pos;
            return;
        }
    }
}

/// The swept sphere against a triangle (Fauerby, "Improved Collision Detection and Response").
void cCollisionMesh::TestTriangle(CollisionArgs& args, const Triangle& triangle) {
    const cVec3 &pos = args.Position, &movement = args.Movement;
    const cPlane& plane = triangle.Plane;
    const cVec3 *c = triangle.Corners, &low = args.Low, &high = args.High;
    for (int i = 0; i < 3; i++) {
        if ((c[0][i] < low[i] && c[1][i] < low[i] && c[2][i] < low[i]) ||
            (c[0][i] > high[i] && c[1][i] > high[i] && c[2][i] > high[i])) {
            return; // beside the way
        }
    }
    if (!(cVec3::Dot(args.Direction, plane.normal) <= 0)) {
        return; // from behind
    }
    float t = 1; // of the earliest contact, as a share of the movement
    cVec3 at;
    bool found = false;
    const float distance = plane.SignedDistance(pos), toward = cVec3::Dot(plane.normal, movement);
    if (toward != 0) {
        float t0 = (-1 - distance) / toward, t1 = (1 - distance) / toward;
        if (t0 > t1) {
            std::swap(t0, t1);
        }
        if (t0 > 1 || t1 < 0) {
            return;
        }
        t0 = std::max(t0, 0.0f);
        const cVec3 touched = pos - plane.normal + movement * t0;
        if (cVec3::PointInTriangle(touched, triangle.Corners[0], triangle.Corners[1], triangle.Corners[2])) {
            found = true; // before that the sphere can touch nothing of the triangle
            t = t0;
            at = touched;
        }
    } else if (std::fabs(distance) >= 1) {
        return;
    }
    if (!found) {
        const float a = cVec3::Dot(movement, movement);
        float root;
        for (const cVec3& corner : triangle.Corners) {
            const float b = 2 * cVec3::Dot(movement, pos - corner), outside = (corner - pos).LengthSq() - 1;
            if (IsTouching(-outside, -b, t, &root) || cSolver::GetLowestPositiveRoot2(a, b, outside, t, &root)) {
                found = true;
                t = root;
                at = corner;
            }
        }
        for (int i = 0; i < 3; i++) {
            const cVec3 &p = triangle.Corners[i], e = triangle.Corners[(i + 1) % 3] - p, base = p - pos;
            const float ee = e.LengthSq(), ev = cVec3::Dot(e, movement), eb = cVec3::Dot(e, base);
            const float ea = ee * -a + ev * ev, b = ee * 2 * cVec3::Dot(movement, base) - 2 * ev * eb,
                        inside = ee * (1 - base.LengthSq()) + eb * eb;
            if (IsTouching(inside / ee, b, t, &root) || cSolver::GetLowestPositiveRoot2(ea, b, inside, t, &root)) {
                const float f = (ev * root - eb) / ee;
                if (f >= 0 && f <= 1) {
                    found = true;
                    t = root;
                    at = p + e * f;
                }
            }
        }
    }
    if (!found) {
        return;
    }
    const float way = t * movement.Length();
    if (!args.Found || way < args.Nearest) { // of equals the earlier triangle stays
        args.Found = true;
        args.Nearest = way;
        args.Intersection = at;
        args.HitNormal = plane.normal;
        args.HitData = triangle.Data;
    }
}

// ---- Pushing out

bool cCollisionMesh::FixTriangle(const Triangle& triangle, cVec3* position) {
    const cVec3& n = triangle.Plane.normal;
    const float distance = triangle.Plane.SignedDistance(*position);
    if (!(std::fabs(distance) < s_Reach)) {
        return false;
    }
    const cVec3 below = *position - n * distance;
    // A triangle too small for a normal has edges only: its face would move nothing, and keep the others from it.
    if (n != cVec3::Zero &&
        cVec3::PointInTriangle(below, triangle.Corners[0], triangle.Corners[1], triangle.Corners[2])) {
        *position = below + n * (s_Reach + s_Eps); // to the front, also from behind
        return true;
    }
    bool changed = false;
    for (int i = 0; i < 3; i++) {
        cSeg edge;
        edge.SetFromEnds(triangle.Corners[i], triangle.Corners[(i + 1) % 3], s_Eps);
        if (edge.IsZero()) {
            continue;
        }
        const cVec3 nearest = edge.GetPoint(edge.ProjectPoint(cSeg::Segment, *position)), away = *position - nearest;
        if (away.Length() < s_Reach && away.LengthSq() > 0) { // on the edge itself no way leads out
            *position = nearest + cVec3::Normalize(away) * (s_Reach + s_Eps);
            changed = true;
        }
    }
    return changed;
}

bool cCollisionMesh::ProcessFix(const CollisionArgs& args, cVec3* position) {
    return std::any_of(args.Triangles->begin(), args.Triangles->end(),
                       [position](const Triangle& triangle) { return FixTriangle(triangle, position); });
}

bool cCollisionMesh::Fix(cVec3* position) const {
    CollisionArgs args;
    cVec3 at = Divide(*position, Radii);
    args.Triangles = &Gather(at, s_Reach, cVec3::Infinity * -1.0f, cVec3::Infinity);
    int pass = 0;
    while (pass < MaxIterations && ProcessFix(args, &at)) {
        pass++;
    }
    if (pass > 0) {
        *position = Multiply(at, Radii);
    }
    return false;
}

} // namespace trellis
