#include "spatial/cCollisionMesh.h"

#include <cstdlib>
#include <memory>
#include <optional>
#include <thread>

#include <gtest/gtest.h>

#include "Soups.h"
#include "math/cMat4.h"
#include "mesh/cModel.h"

namespace trellis {

namespace {

using Corners = std::vector<cVec3>; // three a triangle

void Add(cCollisionMesh* mesh, const Corners& corners, int data = 0, const cMat4& m = cMat4::Identity) {
    cModel model;
    model.Meshes.SetCount(1);
    for (const cVec3& corner : corners) {
        model.Meshes[0].Indices.Add(model.Meshes[0].BumpVertices.Add({corner, {}, {}, {}, {}}));
    }
    mesh->AddModel(model, m, data);
}

Corners Quad(const cVec3& a, const cVec3& b, const cVec3& c, const cVec3& d) {
    return {a, b, c, a, c, d};
}

/// The six sides of a box, seen from within or from outside.
Corners Box(const cVec3& low, const cVec3& high, bool isRoom) {
    Corners out;
    for (int axis = 0; axis < 3; axis++) {
        for (const bool isHigh : {false, true}) {
            const int u = (axis + 1) % 3, v = (axis + 2) % 3;
            cVec3 p[4] = {low, low, low, low};
            for (cVec3& q : p) {
                q[axis] = isHigh ? high[axis] : low[axis];
            }
            p[1][u] = p[2][u] = high[u];
            p[2][v] = p[3][v] = high[v];
            const Corners side = isHigh != isRoom ? Quad(p[0], p[1], p[2], p[3]) : Quad(p[3], p[2], p[1], p[0]);
            out.insert(out.end(), side.begin(), side.end());
        }
    }
    return out;
}

Corners Wall() { // looks along z
    return Quad({-10, -10, 0}, {10, -10, 0}, {10, 10, 0}, {-10, 10, 0});
}

int MoveCount() {
    const char* count = std::getenv("TRELLIS_COLLISION_MOVES");
    return count ? std::atoi(count) : 20000;
}

constexpr struct {
    const char* Name;
    cVec3 From, To;
    float Normal, Tangent;
    bool IsHit;
    cVec3 End, Velocity; // of one of 0, 0, -2
} s_Moves[] = {
    {"straight in stops short", {0, 0, 3}, {0, 0, -3}, 0, 1, true, {0, 0, 1.001f}, {0, 0, 0}},
    {"thrown back", {0, 0, 3}, {0, 0, -3}, 1, 1, true, {0, 0, 5.002f}, {0, 0, 2}},
    {"half thrown back", {0, 0, 3}, {0, 0, -3}, 0.5f, 1, true, {0, 0, 3.0015f}, {0, 0, 1}},
    {"slides", {0, 0, 2}, {4, 0, -2}, 0, 1, true, {4.0005f, 0, 1.001f}, {1.4142135f, 0, 0}},
    {"too short", {0, 0, 3}, {0, 0.0009f, 3}, 0, 1, false, {0, 0, 3}, {0, 0, -2}},
    {"short of the wall", {0, 0, 3}, {0, 0, 1.01f}, 0, 1, false, {0, 0, 1.01f}, {0, 0, -2}},
    {"from behind", {0, 0, -3}, {0, 0, 3}, 0, 1, false, {0, 0, 3}, {0, 0, -2}},
    {"away", {0, 0, 1}, {0, 0, 3}, 0, 1, false, {0, 0, 3}, {0, 0, -2}},
    {"along, deep in it", {-2, 5, 0.5f}, {-5, 5, 0.5f}, 0, 1, false, {-5, 5, 0.5f}, {0, 0, -2}},
    {"along, at its edge", {-13, 3, 0.6f}, {-9, 3, 0.6f}, 0, 0, true, {-10.8008f, 3, 0.6006f}, {0, 0, 0}},
    {"along, just beside it", {-13, 3, 1}, {-9, 3, 1}, 0, 1, false, {-9, 3, 1}, {0, 0, -2}},
    {"into a corner", {-13, -10, 0}, {-9, -10, 0}, 0, 0, true, {-11.001f, -10, 0}, {0, 0, 0}},
};

TEST(Collision, MovesByHand) {
    cCollisionMesh mesh;
    mesh.MaxIterations = 10;
    Add(&mesh, Wall(), 3);
    for (const bool isTree : {false, true}) {
        if (isTree) {
            mesh.BuildBsp();
        }
        for (const auto& c : s_Moves) {
            SCOPED_TRACE(c.Name);
            cVec3 to = c.To, velocity(0, 0, -2);
            int data = -1;
            EXPECT_EQ(mesh.Collide(c.From, &to, &velocity, c.Normal, c.Tangent, nullptr, nullptr, &data), c.IsHit);
            EXPECT_LT((to - c.End).Length(), 1e-4f) << to.x << ' ' << to.y << ' ' << to.z;
            EXPECT_LT((velocity - c.Velocity).Length(), 1e-4f) << velocity.x << ' ' << velocity.y << ' ' << velocity.z;
            EXPECT_EQ(data, c.IsHit ? 3 : -1);
            cVec3 again = c.To;
            EXPECT_EQ(mesh.Collide(c.From, &again, nullptr, c.Normal, c.Tangent, nullptr, nullptr, nullptr), c.IsHit);
            EXPECT_EQ(again, to);
        }
    }
}

TEST(Collision, NoIterationsLetOneContactPass) {
    cCollisionMesh mesh;
    Add(&mesh, Wall());
    Add(&mesh, Quad({3, -10, -10}, {3, -10, 10}, {3, 10, 10}, {3, 10, -10})); // looks along -x
    cVec3 to(4, 0, -2);
    EXPECT_TRUE(mesh.Collide({0, 0, 2}, &to, nullptr, 0, 1, nullptr, nullptr, nullptr));
    EXPECT_NEAR(to.x, 4.0005f, 1e-4f); // the slide is not tried any more
    mesh.MaxIterations = 1;
    to = {4, 0, -2};
    EXPECT_TRUE(mesh.Collide({0, 0, 2}, &to, nullptr, 0, 1, nullptr, nullptr, nullptr));
    EXPECT_NEAR(to.x, 1.999f, 1e-4f);
}

/// Into a wall and then into another: what is told is the first contact's, and the velocity goes through the radii.
TEST(Collision, TellsOfTheFirstContact) {
    cCollisionMesh mesh;
    mesh.Radii = {2, 1, 0.5f};
    mesh.MaxIterations = 10;
    Add(&mesh, Wall(), 3);
    Add(&mesh, Quad({5, -10, -10}, {5, -10, 10}, {5, 10, 10}, {5, 10, -10}), 4); // looks along -x
    cVec3 to(4, 0, -2), velocity(4, 0, -4), slide, hit;
    int data = 0;
    EXPECT_TRUE(mesh.Collide({0, 0, 2}, &to, &velocity, 0, 1, &slide, &hit, &data));
    EXPECT_NEAR(to.x, 5 - 2 * 1.001f, 1e-4f);
    EXPECT_EQ(data, 3);
    EXPECT_LT((hit - cVec3::AxisZ).Length(), 1e-5f);
    EXPECT_LT((slide - cVec3::AxisZ).Length(), 1e-5f);
    EXPECT_LT(velocity.Length(), 1e-4f); // along the one, and then into the other
    velocity = {4, 0, -4};
    to = {0.5f, 0, -2};
    EXPECT_TRUE(mesh.Collide({0, 0, 2}, &to, &velocity, 0, 1, nullptr, nullptr, nullptr));
    // As the way, it is turned to: (0.25, -8) in the sphere's space has a share of sqrt(0.25^2 / (0.25^2 + 8^2)) along.
    EXPECT_NEAR(velocity.x, 2 * std::sqrt(68.0f) * 0.25f / std::sqrt(64.0625f), 1e-4f);
}

TEST(Collision, TheEarlierOfEqualTriangles) {
    for (const bool isSwapped : {false, true}) {
        cCollisionMesh mesh;
        Add(&mesh, Wall(), isSwapped ? 2 : 1);
        Add(&mesh, Wall(), isSwapped ? 1 : 2);
        cVec3 to(1, 2, -3);
        int data = 0;
        EXPECT_TRUE(mesh.Collide({1, 2, 3}, &to, nullptr, 0, 1, nullptr, nullptr, &data));
        EXPECT_EQ(data, isSwapped ? 2 : 1);
    }
}

TEST(Collision, NormalsComeThroughTheRadii) {
    cCollisionMesh mesh;
    mesh.Radii = {1, 2, 0.5f};
    mesh.MaxIterations = 5;
    Add(&mesh, Quad({-10, -10, -10}, {-10, -10, 10}, {10, 10, 10}, {10, 10, -10})); // a slope up along x
    cVec3 to(0, -9, 0), slide, hit;
    EXPECT_TRUE(mesh.Collide({0, 9, 0}, &to, nullptr, 0, 0, &slide, &hit, nullptr));
    const cVec3 normal = cVec3::Normalize({-1, 1, 0});
    EXPECT_LT((hit - normal).Length(), 1e-5f);
    EXPECT_LT((slide - normal).Length(), 1e-3f);
    EXPECT_NEAR(to.y, std::sqrt(5.0f), 0.005f); // where y = x touches x^2 + y^2 / 4 = 1 around it

    cCollisionMesh flat; // of next to no width, by which a float cannot divide
    flat.Radii = {1e-40f, 1, 1};
    flat.MaxIterations = 5;
    Add(&flat, Quad({-1e-39f, -10, -10}, {-1e-39f, -10, 10}, {1e-39f, 10, 10}, {1e-39f, 10, -10}));
    to = {0, -9, 0};
    EXPECT_TRUE(flat.Collide({0, 9, 0}, &to, nullptr, 0, 0, nullptr, &hit, nullptr));
    EXPECT_LT((hit + cVec3::AxisX).Length(), 1e-5f);

    cCollisionMesh small; // has no normal
    Add(&small, {{0, 0, 0}, {0.0005f, 0, 0}, {0, 0, 0.0005f}});
    to = {0, 0, -5};
    EXPECT_TRUE(small.Collide({0, 0, 5}, &to, nullptr, 0, 0, &slide, &hit, nullptr));
    EXPECT_EQ(hit, cVec3::AxisY);
    EXPECT_GT(slide.z, 0.99f);
}

TEST(Collision, ModelsAreTransformedAndBadOnesLeftOut) {
    cCollisionMesh mesh;
    mesh.Radii = {2, 1, 4};
    cMat4 projective = cMat4::Scaling(2, 3, 4);
    projective.m[15] = 2; // w
    Add(&mesh, {{1, 0, 0}, {1, 2, 0}, {1, 0, 2}, {0, 0, 0}, {0.001f, 0, 0}, {0, 0.001f, 0}}, 9, projective);
    ASSERT_EQ(mesh.Triangles.Count(), 2);
    EXPECT_EQ(mesh.Triangles[0].Corners[1], cVec3(0.5f, 3, 0));
    EXPECT_EQ(mesh.Triangles[0].Plane, cPlane(cVec3::AxisX, -0.5f));
    EXPECT_EQ(mesh.Triangles[0].Data, 9);
    EXPECT_EQ(mesh.Triangles[1].Plane, cPlane(cVec3::Zero, 0.0f));
    cModel bad;
    bad.Meshes.SetCount(1);
    for (const int index : {0, -1, 7}) {
        bad.Meshes[0].Indices.Add(index);
    }
    mesh.AddModel(bad, cMat4::Identity, 1);
    EXPECT_EQ(mesh.Triangles.Count(), 2);
    cModel three;
    three.Meshes.SetCount(3);
    for (cModel::Mesh& m : three.Meshes) {
        for (const cVec3& corner : {cVec3::Zero, cVec3::AxisX, cVec3::AxisY}) {
            m.Indices.Add(m.BumpVertices.Add({corner, {}, {}, {}, {}}));
        }
    }
    cList<int> kinds;
    kinds.Add(5);
    kinds.Add(6);
    mesh.AddModel(three, cMat4::Identity, kinds);
    EXPECT_EQ(mesh.Triangles[2].Data, 5);
    EXPECT_EQ(mesh.Triangles[3].Data, 6);
    EXPECT_EQ(mesh.Triangles[4].Data, 0);
    mesh.Free();
    cVec3 to(5, 5, 5);
    mesh.Radii = {0.7f, 0.3f, 0.9f};
    to = {0.3f, 0.7f, 0.1f};
    EXPECT_FALSE(mesh.Collide(cVec3::Zero, &to, nullptr, 0, 1, nullptr, nullptr, nullptr));
    EXPECT_EQ(to, cVec3(0.3f, 0.7f, 0.1f)); // bit by bit, as nothing stands in the way
}

constexpr struct {
    const char* Name;
    cVec3 At, End;
} s_Fixes[] = {
    {"far away", {0, 0, 5}, {0, 0, 5}},
    {"just clear", {0, 0, 1.002f}, {0, 0, 1.002f}},
    {"too near", {1, 2, 0.5f}, {1, 2, 1.002f}},
    {"behind, to the front", {5, 2, -0.5f}, {5, 2, 1.002f}},
    {"at an edge", {-10.5f, 1, 0}, {-11.002f, 1, 0}},
    {"at a corner", {10.3f, -10.4f, 0}, {10.6012f, -10.8016f, 0}},
    {"on an edge, from where no way leads out", {10, 1, 0}, {10, 1, 0}},
};

TEST(Collision, FixByHand) {
    cCollisionMesh mesh;
    Add(&mesh, Wall());
    Add(&mesh, {{0.9f, 2, 0}, {1.1f, 2, 0}, {1, 2.0001f, 0}}, 1); // without a normal: by its edges only
    std::swap(mesh.Triangles[0], mesh.Triangles[2]);
    for (const auto& c : s_Fixes) {
        SCOPED_TRACE(c.Name);
        cVec3 at = c.At;
        mesh.MaxIterations = 0;
        EXPECT_FALSE(mesh.Fix(&at));
        EXPECT_EQ(at, c.At);
        mesh.MaxIterations = 5;
        EXPECT_FALSE(mesh.Fix(&at));
        EXPECT_LT((at - c.End).Length(), 1e-4f) << at.x << ' ' << at.y << ' ' << at.z;
    }
}

/// First contact of a unit sphere by stepping its distance forward, in double precision.
///
/// @return share of the way; 2 for none; nothing for what is a near thing
std::optional<double> SlowContact(const cVec3* corners, const Exact& from, const Exact& way) {
    const double length = Length(way);
    double t = 0, least = 1e9;
    for (int i = 0; i < 100000 && t <= 1; i++) {
        const double gap = DistanceTo(corners, from + way * t) - 1;
        least = std::min(least, gap);
        if (gap < 1e-7) {
            const double later = DistanceTo(corners, from + way * (t + 0.01 / length)) - 1;
            return later < -0.003 && t < 0.99 ? std::optional(t) : std::nullopt; // else it hardly touches
        }
        t += gap / length;
    }
    return least > 0.003 ? std::optional(2.0) : std::nullopt;
}

TEST(Collision, ContactsAreThoseOfASlowReference) {
    Random random(3);
    int hits = 0, misses = 0;
    for (int i = 0; i < 20000; i++) {
        const float size = i % 3 == 0 ? 0.1f : i % 3 == 1 ? 2.0f : 30.0f;
        cCollisionMesh mesh;
        Add(&mesh, {random.Point(size), random.Point(size), random.Point(size)});
        const cVec3 from = random.Point(6), to = random.Point(4);
        const cCollisionMesh::Triangle& triangle = mesh.Triangles[0];
        const float slope = cVec3::Dot(to - from, triangle.Plane.normal);
        if (slope > -0.01f || DistanceTo(triangle.Corners, from) < 1.05) {
            continue;
        }
        const auto slow = SlowContact(triangle.Corners, from, Exact(to) - from);
        if (!slow) {
            continue;
        }
        cVec3 end = to;
        const bool isHit = mesh.Collide(from, &end, nullptr, 0, 0, nullptr, nullptr, nullptr);
        EXPECT_EQ(isHit, *slow <= 1) << i;
        (isHit ? hits : misses)++;
        if (isHit) {
            EXPECT_LT(Length(from + (Exact(to) - from) * *slow - end), 0.004) << i;
        }
    }
    EXPECT_GT(hits, 1000);
    EXPECT_GT(misses, 1000);
}

/// A room with a block and stairs of five steps, each 0.4 high, up along x from the floor at y = 0.
void Furnish(cCollisionMesh* mesh) {
    Add(mesh, Box({-8, 0, -8}, {8, 8, 8}, true), 1);
    Add(mesh, Box({-5, -1, -5}, {-2, 4, -2}, false), 2);
    for (int i = 0; i < 5; i++) {
        Add(mesh, Box({float(i), -1, 2}, {8.5f, 0.4f * float(i + 1), 8.5f}, false), 3);
    }
}
bool IsInBlock(const cVec3& p) {
    return p.x > -5 && p.x < -2 && p.z > -5 && p.z < -2 && p.y < 4;
}
bool IsFree(const cVec3& p) {
    const float stairs = p.z > 2 && p.x > 0 ? 0.4f * std::min(std::floor(p.x) + 1, 5.0f) : 0;
    return std::fabs(p.x) < 8 && std::fabs(p.z) < 8 && p.y > stairs && p.y < 8 && !IsInBlock(p);
}

TEST(Collision, NothingGoesThroughAFrontFace) {
    for (const bool isTree : {false, true}) {
        for (const cVec3& radii : {cVec3(0.5f, 0.9f, 0.5f), cVec3(0.3f, 0.3f, 0.3f)}) {
            cCollisionMesh mesh;
            mesh.Radii = radii;
            mesh.MaxIterations = 100;
            Furnish(&mesh);
            if (isTree) {
                mesh.BuildBsp();
            }
            Random random(11);
            cVec3 at(0, 6, 0);
            for (int i = 0, moves = MoveCount() / 4; i < moves; i++) {
                cVec3 to = at + random.Point(i % 5 == 0 ? 20.0f : 1.5f);
                const bool isBouncing = i % 7 == 0;
                mesh.Collide(at, &to, nullptr, isBouncing ? 0.5f : 0.0f, 1, nullptr, nullptr, nullptr);
                ASSERT_TRUE(IsFree(to)) << isTree << ' ' << i << ": " << at.x << ' ' << at.y << ' ' << at.z << " to "
                                        << to.x << ' ' << to.y << ' ' << to.z;
                at = to;
            }
        }
    }
}

/// Ridges and pits with slopes up to 70 degrees, 20 by 20 cells of one unit, in a room of the same size.
class Hills {
public:
    Hills() {
        Random random(2);
        for (float& h : m_Heights) {
            h = random.In(0, 3);
        }
    }
    float HeightAt(const cVec3& p) const {
        const int i = std::clamp(int(p.x), 0, 19), j = std::clamp(int(p.z), 0, 19);
        const float u = p.x - float(i), v = p.z - float(j), a = At(i, j), d = At(i + 1, j + 1);
        return u > v ? a + (At(i + 1, j) - a) * u + (d - At(i + 1, j)) * v
                     : a + (At(i, j + 1) - a) * v + (d - At(i, j + 1)) * u;
    }
    void AddTo(cCollisionMesh* mesh) const {
        Add(mesh, Box({0, -1, 0}, {20, 9, 20}, true));
        for (int i = 0; i < 400; i++) {
            const int x = i % 20, z = i / 20;
            const cVec3 a = Corner(x, z), b = Corner(x + 1, z), c = Corner(x, z + 1), d = Corner(x + 1, z + 1);
            Add(mesh, {a, d, b, a, c, d}, i);
        }
    }

private:
    float At(int x, int z) const { return m_Heights[z * 21 + x]; }
    cVec3 Corner(int x, int z) const { return {float(x), At(x, z), float(z)}; }
    float m_Heights[21 * 21];
};

TEST(Collision, NothingSinksIntoHills) {
    const Hills hills;
    for (const bool isTree : {false, true}) {
        cCollisionMesh mesh;
        mesh.Radii = {0.4f, 0.8f, 0.4f};
        mesh.MaxIterations = 100;
        hills.AddTo(&mesh);
        if (isTree) {
            mesh.BuildBsp();
        }
        Random random(12);
        cVec3 at(10, 7, 10);
        for (int i = 0, moves = MoveCount() / (isTree ? 2 : 10); i < moves; i++) {
            cVec3 to = at + random.Point(2) - cVec3(0, 0.4f, 0);
            mesh.Collide(at, &to, nullptr, 0, 1, nullptr, nullptr, nullptr);
            ASSERT_TRUE(to.x > 0 && to.x < 20 && to.z > 0 && to.z < 20 && to.y < 9 && to.y > hills.HeightAt(to))
                << isTree << ' ' << i << ": " << at.x << ' ' << at.y << ' ' << at.z << " to " << to.x << ' ' << to.y
                << ' ' << to.z;
            at = to;
        }
    }
}

/// The distance kept from the wall pushes the sphere a little into the edge of the slopes, which must stop it still.
TEST(Collision, AnEdgePushedIntoIsMet) {
    const Corners wall = {{0, -1.25f, 0}, {50, -1.25f, 0}, {50, 11.25f, 0}};
    const Corners slopes = {{35, 2.3223f, 0},    {37.5f, 3.1746f, 2.5f}, {37.5f, 0.4498f, 0},
                            {37.5f, 0.4498f, 0}, {37.5f, 3.1746f, 2.5f}, {40, 0.6637f, 2.5f},
                            {37.5f, 0.4498f, 0}, {40, 0.6637f, 2.5f},    {40, 1.1237f, 0}};
    cCollisionMesh mesh;
    mesh.MaxIterations = 100;
    Add(&mesh, wall);
    Add(&mesh, slopes);
    cVec3 to(37.6827583f, 1.27815318f, -0.0990394503f);
    EXPECT_TRUE(mesh.Collide({38.0354347f, 2.79144907f, 1.001f}, &to, nullptr, 0, 1, nullptr, nullptr, nullptr));
    for (const cCollisionMesh::Triangle& triangle : mesh.Triangles) {
        EXPECT_GT(DistanceTo(triangle.Corners, to), 0.99);
    }
}

TEST(Collision, WalksAlongWallsIntoCornersAndDownStairs) {
    cCollisionMesh mesh;
    mesh.Radii = {0.5f, 0.5f, 0.5f};
    mesh.MaxIterations = 20;
    Furnish(&mesh);
    const auto walk = [&mesh](cVec3 at, const cVec3& step, int steps) {
        for (int i = 0; i < steps; i++) {
            cVec3 to = at + step;
            mesh.Collide(at, &to, nullptr, 0, 1, nullptr, nullptr, nullptr);
            at = to;
        }
        return at;
    };
    const auto expectNear = [](const cVec3& p, const cVec3& q) {
        EXPECT_LT((p - q).Length(), 0.01f) << p.x << ' ' << p.y << ' ' << p.z;
    };
    expectNear(walk({7, 5, 0}, {0.1f, 0, -0.1f}, 30), {7.4995f, 5, -3}); // along the wall
    expectNear(walk({6, 5, -6}, {0.1f, 0, -0.1f}, 60), {7.4995f, 5, -7.4995f});
    expectNear(walk({6, 5, -6}, {0.2f, 0.2f, -0.2f}, 60), {7.4995f, 7.4995f, -7.4995f});
    cVec3 at(7, 4, 5); // on foot down the stairs: each step is followed by a fall
    for (int i = 0; i < 120; i++) {
        at = walk(walk(at, {-0.1f, 0, 0}, 1), {0, -0.3f, 0}, 1);
        ASSERT_TRUE(IsFree(at)) << i;
    }
    EXPECT_NEAR(at.y, 0.5005f, 0.003f);
    EXPECT_LT(at.x, -3);
}

/// The sides of the gap touch all the way, which is no contact; its front edges touch as well, at one point each.
TEST(Collision, AGapAsWideAsTheEllipsoid) {
    for (const auto& [width, passes] : {std::pair(2.0f, true), std::pair(2.01f, true), std::pair(1.98f, false)}) {
        cCollisionMesh mesh;
        mesh.MaxIterations = 20;
        Add(&mesh, Box({width / 2, -9, -1}, {9, 9, 1}, false));
        Add(&mesh, Box({-9, -9, -1}, {-width / 2, 9, 1}, false));
        cVec3 to(0, 3, -5);
        mesh.Collide({0, 3, 5}, &to, nullptr, 0, 1, nullptr, nullptr, nullptr);
        EXPECT_EQ(to.z < -4.9f, passes) << width << ' ' << to.x << ' ' << to.z;
    }
}

struct Ends {
    cVec3 To, Velocity{1, 2, 3}, Slide, Hit, Fixed, Segment;
    int Data = -1;
    bool operator==(const Ends&) const = default;
};

/// What a query through a tree finds is what the list finds of the triangles whose planes are near, bit by bit.
TEST(Collision, TheTreeAndThreadsChangeNothing) {
    cCollisionMesh tree;
    tree.Radii = {0.4f, 0.8f, 0.4f};
    tree.MaxIterations = 20;
    Hills().AddTo(&tree);
    tree.BuildBsp();
    constexpr std::pair<float, float> Factors[] = {{0, 0}, {0, 1}, {1, 1}, {1.5f, 1}};
    const auto ends = [&](bool isTree) {
        Random random(13);
        std::vector<Ends> out;
        for (int i = 0; i < 2000; i++) {
            const cVec3 from(random.In(1, 19), random.In(4, 8), random.In(1, 19)), to = from + random.Point(6);
            const cVec3 low = from - cVec3(0, 3, 0);
            const auto inUnits = [&](const cVec3& p) {
                return cVec3(p.x / tree.Radii.x, p.y / tree.Radii.y, p.z / tree.Radii.z);
            };
            const auto listOf = [&](const cVec3& center, float radius) {
                auto mesh = std::make_unique<cCollisionMesh>();
                if (isTree) {
                    return mesh;
                }
                mesh->Radii = tree.Radii;
                mesh->MaxIterations = tree.MaxIterations;
                cList<cBsp::Triangle> found;
                tree.Bsp.GetTrianglesWithinRadius(center, radius, &found);
                for (const cBsp::Triangle& t : found) {
                    mesh->Triangles.Add({{t.Corners[0], t.Corners[1], t.Corners[2]}, t.Plane, t.Data});
                }
                return mesh;
            };
            const auto& [normal, tangent] = Factors[i % 4];
            Ends e{to, {1, 2, 3}, {}, {}, low, {}};
            const auto list = listOf(inUnits(from), (inUnits(to) - inUnits(from)).Length() + 1.001f);
            (isTree ? tree : *list).Collide(from, &e.To, &e.Velocity, normal, tangent, &e.Slide, &e.Hit, &e.Data);
            (isTree ? tree : *listOf(inUnits(low), 1.001f)).Fix(&e.Fixed);
            tree.Bsp.Intersects(inUnits(from), inUnits(to), &e.Segment, nullptr);
            out.push_back(e);
        }
        return out;
    };
    const std::vector<Ends> found = ends(true);
    EXPECT_TRUE(found == ends(false));
    EXPECT_GT(std::count_if(found.begin(), found.end(), [](const Ends& e) { return e.Data >= 0; }), 500);
    std::vector<Ends> again[4];
    std::vector<std::thread> threads;
    for (std::vector<Ends>& out : again) {
        threads.emplace_back([&] { out = ends(&out - again < 3); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const std::vector<Ends>& out : again) {
        EXPECT_TRUE(out == found);
    }
}

} // namespace

} // namespace trellis
