#include "mesh/cModel.h"

#include "mesh/cRawMesh_Tangents.h"

#include <algorithm>
#include <bit>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace trellis {

namespace {

/// Calls `f(mesh, vertices)` for each mesh, with its list of the model's kind.
template <class Model, class F> void ForEachVertexList(Model& model, F f) {
    for (auto& mesh : model.Meshes) {
        if (model.Static) {
            f(mesh, mesh.BumpVertices);
        } else {
            f(mesh, mesh.AnimVertices);
        }
    }
}

/// Meshes that go give up their buffers. Those that come are empty: a slot may still hold what a mesh was that has been
/// removed, and ids of buffers that belong to nobody or to the mesh that moved up.
void SetMeshCount(cList<cModel::Mesh>* meshes, int count) {
    const int old = meshes->Count();
    for (int i = count; i < old; i++) {
        (*meshes)[i].FreeRenderBuffers();
    }
    meshes->SetCount(count);
    for (int i = old; i < count; i++) {
        (*meshes)[i] = cModel::Mesh();
    }
}

template <class T> void TransformVertices(cList<T>* vertices, const cMat4& m, const cMat3& normalMatrix) {
    for (T& v : *vertices) {
        v.Pos = v.Pos * m;
        v.Normal = cVec3::Normalize(v.Normal * normalMatrix);
        v.Tangent = cVec3::Normalize(v.Tangent * normalMatrix);
        v.BiTangent = cVec3::Normalize(v.BiTangent * normalMatrix);
    }
}

/// The triangles of one mesh against one ray. Of four at a time those that the ray misses are told first, in the very
/// operations of `cVec3::RayTri`, which then sees the others.
class RayTracer {
public:
    RayTracer(const cVec3& origin, const cVec3& direction) : m_Origin(origin), m_Direction(direction) {}

    void Trace(const cList<cVertex::Bump>& vertices, const cList<int>& indices) {
        const cVertex::Bump* v = vertices.Data();
        const int* index = indices.Data();
        const int count = indices.Count() / 3;
        int i = 0;
#if defined(__SSE2__)
        const Fours origin = Fours::All(m_Origin);
        const Fours direction = Fours::All(m_Direction);
        for (; i + 4 <= count; i += 4, index += 12) {
            unsigned candidates = Candidates(origin, direction, v, index);
            for (; candidates; candidates &= candidates - 1) {
                TraceOne(v, index + std::countr_zero(candidates) * 3);
            }
        }
#endif
        for (; i < count; i++, index += 3) {
            TraceOne(v, index);
        }
    }

    float Nearest = cMath::FloatMaxValue;
    bool Hit = false;

private:
    void TraceOne(const cVertex::Bump* v, const int* index) {
        float t;
        if (cVec3::RayTri(m_Origin, m_Direction, v[index[0]].Pos, v[index[1]].Pos, v[index[2]].Pos, &t) && t >= 0) {
            Hit = true;
            Nearest = std::min(Nearest, t);
        }
    }

#if defined(__SSE2__)
    struct Fours { // four vectors
        static Fours All(const cVec3& p) { return {_mm_set1_ps(p.x), _mm_set1_ps(p.y), _mm_set1_ps(p.z)}; }
        static Fours Positions(const cVertex::Bump* v, const int* index) { // of every third index; w is another field's
            const __m128 p0 = _mm_loadu_ps(reinterpret_cast<const float*>(v + index[0]));
            const __m128 p1 = _mm_loadu_ps(reinterpret_cast<const float*>(v + index[3]));
            const __m128 p2 = _mm_loadu_ps(reinterpret_cast<const float*>(v + index[6]));
            const __m128 p3 = _mm_loadu_ps(reinterpret_cast<const float*>(v + index[9]));
            const __m128 xy01 = _mm_unpacklo_ps(p0, p1), xy23 = _mm_unpacklo_ps(p2, p3);
            const __m128 z01 = _mm_unpackhi_ps(p0, p1), z23 = _mm_unpackhi_ps(p2, p3);
            return {_mm_movelh_ps(xy01, xy23), _mm_movehl_ps(xy23, xy01), _mm_movelh_ps(z01, z23)};
        }
        static Fours Sub(const Fours& a, const Fours& b) {
            return {_mm_sub_ps(a.x, b.x), _mm_sub_ps(a.y, b.y), _mm_sub_ps(a.z, b.z)};
        }
        static Fours Cross(const Fours& a, const Fours& b) {
            return {_mm_sub_ps(_mm_mul_ps(a.y, b.z), _mm_mul_ps(a.z, b.y)),
                    _mm_sub_ps(_mm_mul_ps(a.z, b.x), _mm_mul_ps(a.x, b.z)),
                    _mm_sub_ps(_mm_mul_ps(a.x, b.y), _mm_mul_ps(a.y, b.x))};
        }
        static __m128 Dot(const Fours& a, const Fours& b) {
            return _mm_add_ps(_mm_add_ps(_mm_mul_ps(a.x, b.x), _mm_mul_ps(a.y, b.y)), _mm_mul_ps(a.z, b.z));
        }

        __m128 x, y, z;
    };

    /// @return a bit for each of four triangles that the ray's line meets
    static unsigned Candidates(const Fours& origin, const Fours& direction, const cVertex::Bump* v, const int* index) {
        const __m128 zero = _mm_setzero_ps(), one = _mm_set1_ps(1);
        const Fours a = Fours::Positions(v, index);
        const Fours ab = Fours::Sub(Fours::Positions(v, index + 1), a);
        const Fours ac = Fours::Sub(Fours::Positions(v, index + 2), a);
        const Fours p = Fours::Cross(direction, ac);
        const __m128 determinant = Fours::Dot(ab, p);
        const __m128 size = _mm_andnot_ps(_mm_set1_ps(-0.0f), determinant);
        const __m128 scale = _mm_div_ps(one, determinant);
        const Fours fromA = Fours::Sub(origin, a);
        const __m128 weightB = _mm_mul_ps(Fours::Dot(fromA, p), scale);
        // A weight above 1 stays there when one that is not negative is added, so most fours end here.
        __m128 meets = _mm_and_ps(_mm_cmpgt_ps(size, _mm_set1_ps(0.000001f)),
                                  _mm_and_ps(_mm_cmpge_ps(weightB, zero), _mm_cmple_ps(weightB, one)));
        if (_mm_movemask_ps(meets) == 0) {
            return 0;
        }
        const __m128 weightC = _mm_mul_ps(Fours::Dot(direction, Fours::Cross(fromA, ab)), scale);
        meets =
            _mm_and_ps(meets, _mm_and_ps(_mm_cmpge_ps(weightC, zero), _mm_cmple_ps(_mm_add_ps(weightB, weightC), one)));
        return unsigned(_mm_movemask_ps(meets));
    }
#endif

    const cVec3 m_Origin;
    const cVec3 m_Direction;
};

} // namespace

void cModel::Mesh::Copy(const Mesh& other) {
    if (this == &other) {
        return;
    }
    FreeRenderBuffers();
    Name = other.Name;
    MaterialName = other.MaterialName;
    MaterialID = other.MaterialID;
    Indices.Copy(other.Indices);
    BumpVertices.Copy(other.BumpVertices);
    AnimVertices.Copy(other.AnimVertices);
}

void cModel::Free() {
    FreeRenderBuffers();
    Static = true;
    Joints.Free();
    BindPoseInv.Free();
    Meshes.Free();
    Bounds = cBounds::Empty;
}

void cModel::Copy(const cModel& other) {
    if (this == &other) {
        return;
    }
    FreeRenderBuffers();
    Static = other.Static;
    Joints.Copy(other.Joints);
    BindPoseInv.Copy(other.BindPoseInv);
    SetMeshCount(&Meshes, other.Meshes.Count());
    for (int i = 0; i < Meshes.Count(); i++) {
        Meshes[i].Copy(other.Meshes[i]);
    }
    Bounds = other.Bounds;
}

int cModel::GetVertexCount() const {
    int count = 0;
    ForEachVertexList(*this, [&count](const Mesh&, const auto& vertices) { count += vertices.Count(); });
    return count;
}

int cModel::GetTriangleCount() const {
    int count = 0;
    for (const Mesh& mesh : Meshes) {
        count += mesh.Indices.Count() / 3;
    }
    return count;
}

void cModel::UpdateBounds() {
    cVec3 low = cBounds::Empty.min;
    cVec3 high = cBounds::Empty.max;
    ForEachVertexList(*this, [&](const Mesh&, const auto& vertices) {
        for (const auto& v : vertices) {
            low = cVec3::Min(low, v.Pos);
            high = cVec3::Max(high, v.Pos);
        }
    });
    Bounds = cBounds(low, high);
}

void cModel::CalcNormals() {
    ForEachVertexList(*this, [](const Mesh& mesh, auto& vertices) {
        for (auto& v : vertices) {
            v.Normal = cVec3::Zero;
        }
        for (int i = 0; i + 2 < mesh.Indices.Count(); i += 3) {
            auto& a = vertices[mesh.Indices[i]];
            auto& b = vertices[mesh.Indices[i + 1]];
            auto& c = vertices[mesh.Indices[i + 2]];
            const cVec3 n = cVec3::Cross(b.Pos - a.Pos, c.Pos - a.Pos);
            a.Normal += n;
            b.Normal += n;
            c.Normal += n;
        }
        for (auto& v : vertices) {
            cRawMesh_FinishVector(&v.Normal);
        }
    });
}

void cModel::CalcTangents() {
    ForEachVertexList(*this, [](const Mesh& mesh, auto& vertices) {
        for (auto& v : vertices) {
            v.Tangent = v.BiTangent = cVec3::Zero;
        }
        for (int i = 0; i + 2 < mesh.Indices.Count(); i += 3) {
            auto& a = vertices[mesh.Indices[i]];
            auto& b = vertices[mesh.Indices[i + 1]];
            auto& c = vertices[mesh.Indices[i + 2]];
            cRawMesh::TangentBasis basis;
            if (!cRawMesh_WeighTangents(a.Pos, b.Pos, c.Pos, a.TexCoord, b.TexCoord, c.TexCoord, &basis)) {
                continue;
            }
            for (auto* v : {&a, &b, &c}) {
                v->Tangent += basis.Tangent;
                v->BiTangent += basis.BiTangent;
            }
        }
        for (auto& v : vertices) {
            cRawMesh_FinishVector(&v.Tangent);
            cRawMesh_FinishVector(&v.BiTangent);
        }
    });
}

void cModel::Transform(const cMat4& m) {
    const cMat3 normalMatrix = m.ToNormalMatrix();
    const cQuat rotation = m.ToQuat();
    for (Mesh& mesh : Meshes) { // a skinned model's posed vertices, too
        TransformVertices(&mesh.BumpVertices, m, normalMatrix);
        TransformVertices(&mesh.AnimVertices, m, normalMatrix);
    }
    for (Joint& joint : Joints) {
        joint.Position = joint.Position * m;
        joint.Orientation = rotation * joint.Orientation;
    }
    UpdateBounds();
}

bool cModel::RayIntersection(const cVec3& origin, const cVec3& direction, float* distance) const {
    if (!Static) {
        return false;
    }
    RayTracer tracer(origin, direction);
    for (const Mesh& mesh : Meshes) {
        tracer.Trace(mesh.BumpVertices, mesh.Indices);
    }
    *distance = tracer.Nearest;
    return tracer.Hit;
}

const cList<cMat4>& cModel::GetBindPoseInv() const {
    if (BindPoseInv.Count() != Joints.Count()) {
        BindPoseInv.Clear();
        for (const Joint& joint : Joints) {
            BindPoseInv.Add(cMat4::Translation(-joint.Position) * joint.Orientation.Conjugate().ToMat4());
        }
    }
    return BindPoseInv;
}

void cModel::GoToBindPose(cModel* out) const {
    if (Static) {
        return;
    }
    SetMeshCount(&out->Meshes, Meshes.Count());
    for (int i = 0; i < Meshes.Count(); i++) {
        const cList<cVertex::Anim>& from = Meshes[i].AnimVertices;
        cList<cVertex::Bump>& to = out->Meshes[i].BumpVertices;
        to.SetCount(from.Count());
        std::copy(from.begin(), from.end(), to.begin()); // the part that both kinds share
    }
}

} // namespace trellis
