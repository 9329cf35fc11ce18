#include "spatial/cBsp.h"

#include "files/cFile.h"
#include "foundation/cPool.h"
#include "math/cMat4.h"
#include "spatial/cBsp_Chooser.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>
#include <vector>

namespace trellis {

namespace {

using Node = cBsp::Node;
using Triangle = cBsp::Triangle;

/// The first entries stand in the object itself, which serves all trees but the odd ones.
template <class T> class Stack {
public:
    void Push(const T& item) {
        if (m_Count < Inner) {
            m_Inner[m_Count] = item;
        } else {
            m_More.push_back(item);
        }
        m_Count++;
    }
    T Pop() {
        m_Count--;
        if (m_Count < Inner) {
            return m_Inner[m_Count];
        }
        const T item = m_More.back();
        m_More.pop_back();
        return item;
    }
    bool IsEmpty() const { return m_Count == 0; }

private:
    static constexpr int Inner = 64;
    T m_Inner[Inner];
    int m_Count = 0;
    std::vector<T> m_More;
};

Node* NewNode() {
    return new (cPool::Alloc(int(sizeof(Node)))) Node();
}

/// Each node before its front, and then its back child.
template <class N, class Visit> void ForEach(N* root, Visit visit) {
    Stack<N*> backs;
    N* node = root;
    while (node || !backs.IsEmpty()) {
        node = node ? node : backs.Pop();
        N* front = node->Front;
        if (node->Back) {
            backs.Push(node->Back);
        }
        visit(node);
        node = front;
    }
}

/// Where the line through two points on different sides meets a plane. @param distance  of `p`
cVec3 PlaneHit(const cPlane& plane, const cVec3& p, float distance, const cVec3& q) {
    const cVec3 way = q - p;
    return p - way * (distance / cVec3::Dot(plane.normal, way));
}

/// A segment against boxes. What it says no to is beside it, with room for how crossing points are rounded.
class Passing {
public:
    Passing(const cVec3& from, const cVec3& direction) {
        float size = 0;
        for (int i = 0; i < 3; i++) {
            size += std::fabs(from[i]) + std::fabs(direction[i]);
        }
        for (int i = 0; i < 3; i++) {
            // A way along an axis goes very slowly across it: a division by 0 would make 0 / 0 on a side of a box.
            const float room = size * 1e-6f, d = direction[i], perUnit = std::fabs(d) > 1e-30f ? 1 / d : 1e30f;
            const float low = from[i] + room, high = from[i] - room;
            m_Axes[i] = perUnit < 0 ? Axis{1, 0, high, low, perUnit} : Axis{0, 1, low, high, perUnit};
        }
    }
    /// @param box  its least and its greatest corner
    bool MayMeet(const cVec3* box) const {
        float enter = 0, leave = 1;
        for (int i = 0; i < 3; i++) {
            const Axis& axis = m_Axes[i];
            enter = std::max(enter, (box[axis.Near][i] - axis.NearFrom) * axis.PerUnit);
            leave = std::min(leave, (box[axis.Far][i] - axis.FarFrom) * axis.PerUnit);
        }
        return !(enter > leave);
    }

private:
    struct Axis {
        int Near, Far; // which corner's side is met first
        float NearFrom, FarFrom, PerUnit;
    };
    Axis m_Axes[3];
};

} // namespace

// ---- Triangles

void cBsp::Triangle::CalcPlanes() {
    constexpr float LeastSq = 1.0000001e-6f;
    const cVec3 &a = Corners[0], &b = Corners[1], &c = Corners[2];
    const cVec3 normal = cVec3::Cross(b - a, c - a);
    Plane = normal.LengthSq() < LeastSq ? cPlane(cVec3::Zero, 0.0f) : cPlane(cVec3::Normalize(normal), a);
    const cVec3& n = Plane.normal;
    EdgePlanes[0] = cPlane(cVec3::Cross(c - a, n), a);
    EdgePlanes[1] = cPlane(cVec3::Cross(n, b - a), a);
    EdgePlanes[2] = cPlane(cVec3::Cross(n, c - b), b);
}

bool cBsp::Triangle::IsAbove(const cVec3& p) const {
    return EdgePlanes[0].SignedDistance(p) >= 0 && EdgePlanes[1].SignedDistance(p) >= 0 &&
           EdgePlanes[2].SignedDistance(p) >= 0;
}

void cBsp::Triangle::Split(Triangle* out, int& frontCount, int& backCount, const cPlane& plane, float epsilon) const {
    float d[3];
    for (int i = 0; i < 3; i++) {
        d[i] = plane.SignedDistance(Corners[i]);
    }
    const auto next = [](int i) { return i == 2 ? 0 : i + 1; };
    const auto isOn = [&](int i) { return d[i] >= -epsilon && d[i] <= epsilon; };
    // A corner on the plane is itself where the edge ends: from a little in front the crossing would be far outside of
    // the triangle, and from a little behind the pieces would leave a part of it out.
    const auto hit = [&](int from, int to) {
        return isOn(from) ? Corners[from]
               : isOn(to) ? Corners[to]
                          : PlaneHit(plane, Corners[from], d[from], Corners[to]);
    };
    Triangle* piece = out;
    const auto add = [&](const cVec3& a, const cVec3& b, const cVec3& c) {
        *piece = {{a, b, c}, Data, {}, {}};
        piece++->CalcPlanes();
    };
    int i = 0; // the first in front, so that those in front come in one run
    while (i < 2 && !(d[i] > epsilon && d[(i + 2) % 3] <= epsilon)) {
        i++;
    }
    const cVec3 enter = hit((i + 2) % 3, i);
    for (; d[next(i)] > epsilon && piece == out; i = next(i)) {
        add(enter, Corners[i], Corners[next(i)]);
    }
    const cVec3 leave = hit(i, next(i));
    add(enter, Corners[i], leave);
    frontCount = int(piece - out);

    i = next(i);
    i = d[i] < -epsilon ? i : next(i); // one on the plane is where it leaves
    for (; d[next(i)] < -epsilon && piece - out < 2; i = next(i)) {
        add(leave, Corners[i], Corners[next(i)]);
    }
    add(leave, Corners[i], enter);
    backCount = int(piece - out) - frontCount;
}

// ---- The tree

void cBsp::Free() {
    Node* node = std::exchange(m_Root, nullptr);
    while (node) {
        // Turned until nothing is in front of the top: a list of what is still to be visited would take memory, and
        // its want may be why the tree goes.
        if (Node* front = node->Front) {
            node->Front = std::exchange(front->Back, node);
            node = front;
            continue;
        }
        Node* back = node->Back;
        node->~Node();
        cPool::Free(reinterpret_cast<unsigned char*>(node), int(sizeof(Node)));
        node = back;
    }
    m_Steps.clear();
    Triangles.Free();
}

void cBsp::AddTriangle(const cVec3& p0, const cVec3& p1, const cVec3& p2, int data) {
    Triangle& triangle = Triangles[Triangles.Add({{p0, p1, p2}, data, {}, {}})];
    triangle.CalcPlanes();
}

void cBsp::Build(float splitCost, float balanceCost, float epsilon) {
    if (Triangles.IsEmpty()) {
        return;
    }
    struct Job {
        Node** Slot;
        cList<Triangle> Triangles;
    };
    std::vector<Job> jobs;
    Job first{&m_Root, std::move(Triangles)};
    Triangles = {};
    Free();
    jobs.push_back(std::move(first));
    cBsp_Chooser chooser(splitCost, balanceCost, epsilon);
    while (!jobs.empty()) {
        Job job = std::move(jobs.back());
        jobs.pop_back();
        const int best = chooser.Choose(job.Triangles);
        Node* node = *job.Slot = NewNode();
        static_cast<Triangle&>(*node) = job.Triangles[best];
        Job front{&node->Front, {}}, back{&node->Back, {}};
        for (int i = 0; i < job.Triangles.Count(); i++) {
            if (i == best) {
                continue;
            }
            const Triangle& triangle = job.Triangles[i];
            bool isFront = false, isBack = false;
            for (const cVec3& corner : triangle.Corners) {
                const float d = node->Plane.SignedDistance(corner);
                isFront = isFront || d > epsilon;
                isBack = isBack || d < -epsilon;
            }
            if (!isBack) {
                front.Triangles.Add(triangle);
            } else if (!isFront) {
                back.Triangles.Add(triangle);
            } else {
                Triangle pieces[3];
                int fronts, backs;
                triangle.Split(pieces, fronts, backs, node->Plane, epsilon);
                front.Triangles.AddRange(pieces, fronts);
                back.Triangles.AddRange(pieces + fronts, backs);
            }
        }
        job.Triangles.Free();
        for (Job* child : {&front, &back}) {
            if (!child->Triangles.IsEmpty()) {
                jobs.push_back(std::move(*child));
            }
        }
    }
    MakeSteps();
}

void cBsp::MakeSteps() {
    struct Job {
        const Node* At;
        int Parent;
    };
    m_Steps.clear();
    Stack<Job> backs;
    Job job{m_Root, -1};
    while (job.At || !backs.IsEmpty()) {
        job = job.At ? job : backs.Pop();
        const int index = int(m_Steps.size());
        if (job.Parent >= 0) {
            Step& parent = m_Steps[size_t(job.Parent)];
            (parent.Source->Front == job.At ? parent.Front : parent.Back) = index;
        }
        Step step{job.At->Plane, {cVec3::Infinity, -cVec3::Infinity}, -1, -1, job.At};
        for (const cVec3& corner : job.At->Corners) {
            step.Box[0] = cVec3::Zip(step.Box[0], corner, [](float a, float b) { return b < a ? b : a; });
            step.Box[1] = cVec3::Zip(step.Box[1], corner, [](float a, float b) { return b > a ? b : a; });
        }
        const auto room = [](float v) { return 0.001f + std::fabs(v) * 0.0001f; };
        step.Box[0] -= cVec3::Map(step.Box[0], room);
        step.Box[1] += cVec3::Map(step.Box[1], room);
        m_Steps.push_back(step);
        if (job.At->Back) {
            backs.Push({job.At->Back, index});
        }
        job = {job.At->Front, index};
    }
    for (size_t i = m_Steps.size(); i-- > 0;) { // children stand behind their parents
        Step& step = m_Steps[i];
        for (const int child : {step.Back, step.Front}) {
            if (child >= 0) {
                const Step& other = m_Steps[size_t(child)];
                step.Box[0] = cVec3::Zip(step.Box[0], other.Box[0], [](float a, float b) { return b < a ? b : a; });
                step.Box[1] = cVec3::Zip(step.Box[1], other.Box[1], [](float a, float b) { return b > a ? b : a; });
            }
        }
    }
}

void cBsp::GetAllTriangles(cList<Triangle>* out) const {
    out->Clear();
    ForEach(static_cast<const Node*>(m_Root), [out](const Node* node) { out->Add(*node); });
}

void cBsp::Transform(const cMat4& m) {
    ForEach(m_Root, [&m](Node* node) {
        for (cVec3& corner : node->Corners) {
            corner = corner * m;
        }
        node->CalcPlanes();
    });
    MakeSteps();
}

// ---- Queries

bool cBsp::Intersects(const cVec3& from, const cVec3& to, cVec3* point, const Triangle** triangle) const {
    struct Visited {
        const Step* At;
        float Distance; // of the start
    };
    const cVec3 direction = to - from;
    const Passing passing(from, direction);
    Stack<Visited> way; // whose near side has been or is being searched
    int next = m_Steps.empty() ? -1 : 0;
    while (next >= 0 || !way.IsEmpty()) {
        if (next >= 0) {
            const Step& step = m_Steps[size_t(next)];
            if (!passing.MayMeet(step.Box)) {
                next = -1;
                continue;
            }
            const float distance = step.Plane.SignedDistance(from);
            way.Push({&step, distance});
            next = distance <= 0 ? step.Back : step.Front;
            continue;
        }
        const Visited last = way.Pop();
        const float end = last.At->Plane.SignedDistance(to);
        if (!(last.Distance <= 0 ? end > 0 : end < 0)) {
            // It does not reach the plane, nor what is behind; but one without area divides nothing, and has all in
            // front.
            if (end == 0 && last.At->Plane.normal == cVec3::Zero) {
                next = last.At->Front;
            }
            continue;
        }
        const cVec3 p = from - direction * (last.Distance / cVec3::Dot(last.At->Plane.normal, direction));
        if (last.At->Source->IsAbove(p)) {
            if (point) {
                *point = p;
            }
            if (triangle) {
                *triangle = last.At->Source;
            }
            return true;
        }
        next = last.Distance <= 0 ? last.At->Front : last.At->Back;
    }
    return false;
}

void cBsp::GetTrianglesNear(const cVec3& center, float radius, const cVec3& low, const cVec3& high,
                            cList<const Triangle*>* out) const {
    out->Clear();
    const auto isNear = [&](const cVec3& least, const cVec3& most) {
        return (least.x <= high.x) & (most.x >= low.x) & (least.y <= high.y) & (most.y >= low.y) & (least.z <= high.z) &
               (most.z >= low.z);
    };
    Stack<int> backs;
    int next = m_Steps.empty() ? -1 : 0;
    while (next >= 0 || !backs.IsEmpty()) {
        const Step& step = m_Steps[size_t(next >= 0 ? next : backs.Pop())];
        next = -1;
        if (!isNear(step.Box[0], step.Box[1])) {
            continue;
        }
        const float d = step.Plane.SignedDistance(center);
        if (d < radius && d > -radius) {
            const cVec3* c = step.Source->Corners;
            const auto least = [](float a, float b) { return std::min(a, b); };
            const auto most = [](float a, float b) { return std::max(a, b); };
            if (isNear(cVec3::Zip(cVec3::Zip(c[0], c[1], least), c[2], least),
                       cVec3::Zip(cVec3::Zip(c[0], c[1], most), c[2], most))) {
                out->Add(step.Source);
            }
        }
        if (step.Back >= 0 && !(d >= radius)) {
            backs.Push(step.Back);
        }
        next = !(d <= -radius) ? step.Front : -1;
    }
}

void cBsp::GetTrianglesWithinRadius(const cVec3& center, float radius, cList<Triangle>* out) const {
    out->Clear();
    Stack<const Node*> backs;
    const Node* node = m_Root;
    while (node || !backs.IsEmpty()) {
        node = node ? node : backs.Pop();
        const float d = node->Plane.SignedDistance(center);
        if (d < radius && d > -radius) {
            out->Add(*node);
        }
        if (node->Back && !(d >= radius)) { // a plane of broken corners divides nothing, and hides nothing
            backs.Push(node->Back);
        }
        node = !(d <= -radius) ? node->Front : nullptr;
    }
}

// ---- Files

bool cBsp::Load(const cFile& file) {
    Free();
    const bool isWhole = LoadNodes(file);
    MakeSteps();
    return isWhole;
}

bool cBsp::LoadNodes(const cFile& file) {
    Stack<Node**> slots;
    slots.Push(&m_Root);
    while (!slots.IsEmpty()) {
        Node node{};
        unsigned char flags;
        for (cVec3& corner : node.Corners) {
            if (!file.ReadVec3(&corner)) {
                return false;
            }
        }
        if (!file.ReadInt(&node.Data) || file.ReadBytes(&flags, 1) != 1) {
            return false;
        }
        node.CalcPlanes();
        Node* made = *slots.Pop() = NewNode();
        *made = node;
        if (flags & 2) {
            slots.Push(&made->Front);
        }
        if (flags & 1) { // read next
            slots.Push(&made->Back);
        }
    }
    return true;
}

bool cBsp::Save(cFile* file) const {
    Stack<const Node*> fronts;
    const Node* node = m_Root;
    while (node || !fronts.IsEmpty()) {
        node = node ? node : fronts.Pop();
        for (const cVec3& corner : node->Corners) {
            file->WriteVec3(corner);
        }
        file->WriteInt(node->Data);
        const auto flags = static_cast<unsigned char>((node->Back ? 1 : 0) | (node->Front ? 2 : 0));
        file->WriteBytes(&flags, 1);
        if (node->Front) {
            fronts.Push(node->Front);
        }
        node = node->Back;
    }
    return true;
}

} // namespace trellis
