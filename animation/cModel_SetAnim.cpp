// Skinning. The matrices of a vertex's joints are mixed first, which takes half the work of mixing what each of them
// makes of its four vectors.
#include "animation/cAnim_Joint.h"
#include "mesh/cModel.h"

#include <bit>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace trellis {

namespace {

using Bump = cVertex::Bump;
using Joints = cList<cAnim_Joint>;

cVec3 Rotated(const float* m, const cVec3& v) {
    return {m[0] * v.x + m[1] * v.y + m[2] * v.z, m[4] * v.x + m[5] * v.y + m[6] * v.z,
            m[8] * v.x + m[9] * v.y + m[10] * v.z};
}

void SkinPlain(const cVertex::Anim* from, int count, const Joints& joints, Bump* to) {
    for (int i = 0; i < count; i++) {
        const cVertex::Anim& v = from[i];
        float m[12] = {};
        bool skinned = false;
        for (int k = 0; k < 4; k++) {
            const int index = cMath::TruncateToInt(v.Indices[k]);
            if (v.Weights[k] != 0.0f && index >= 0 && index < joints.Count()) {
                for (int e = 0; e < 12; e++) {
                    m[e] += joints[index].m[e] * v.Weights[k];
                }
                skinned = true;
            }
        }
        to[i] = v; // the part that both kinds share
        if (skinned) {
            to[i].Pos = Rotated(m, v.Pos) + cVec3(m[3], m[7], m[11]);
            to[i].Normal = Rotated(m, v.Normal);
            to[i].Tangent = Rotated(m, v.Tangent);
            to[i].BiTangent = Rotated(m, v.BiTangent);
        }
    }
}

#if defined(__SSE2__)

/// Element i of all four.
template <int i> __m128 Spread(__m128 v) {
    return _mm_shuffle_ps(v, v, _MM_SHUFFLE(i, i, i, i));
}

/// The same operations in the same order, on all rows at once.
void SkinFast(const cVertex::Anim* from, int count, const Joints& joints, Bump* to) {
    const __m128i jointCount = _mm_set1_epi32(joints.Count());
    const cAnim_Joint* const joint = joints.Data();
    for (int i = 0; i < count; i++) {
        const float* v = from[i].Pos.ToPtr();
        const __m128 weights = _mm_loadu_ps(from[i].Weights.ToPtr());
        const __m128i indices = _mm_cvttps_epi32(_mm_loadu_ps(from[i].Indices.ToPtr()));
        const __m128i inside =
            _mm_and_si128(_mm_cmpgt_epi32(indices, _mm_set1_epi32(-1)), _mm_cmplt_epi32(indices, jointCount));
        const __m128 counts = _mm_and_ps(_mm_cmpneq_ps(weights, _mm_setzero_ps()), _mm_castsi128_ps(inside));
        const unsigned taking = unsigned(_mm_movemask_ps(counts));
        if (taking == 0) {
            to[i] = from[i];
            continue;
        }
        alignas(16) int index[4];
        _mm_store_si128(reinterpret_cast<__m128i*>(index), indices);
        __m128 x = _mm_setzero_ps(), y = x, z = x, w = x; // rows, then columns
        const auto add = [&](int k, __m128 weight) {
            const float* m = joint[index[k]].m;
            x = _mm_add_ps(x, _mm_mul_ps(_mm_loadu_ps(m), weight));
            y = _mm_add_ps(y, _mm_mul_ps(_mm_loadu_ps(m + 4), weight));
            z = _mm_add_ps(z, _mm_mul_ps(_mm_loadu_ps(m + 8), weight));
        };
        if (taking == 15) {
            add(0, Spread<0>(weights));
            add(1, Spread<1>(weights));
            add(2, Spread<2>(weights));
            add(3, Spread<3>(weights));
        } else {
            for (unsigned rest = taking; rest; rest &= rest - 1) {
                const int k = std::countr_zero(rest);
                add(k, _mm_set1_ps(from[i].Weights[k]));
            }
        }
        _MM_TRANSPOSE4_PS(x, y, z, w);
        const auto rotated = [&](__m128 p) {
            return _mm_add_ps(_mm_add_ps(_mm_mul_ps(x, Spread<0>(p)), _mm_mul_ps(y, Spread<1>(p))),
                              _mm_mul_ps(z, Spread<2>(p)));
        };
        // Position 0, normal 3, texture coordinate 6, tangent 8, bitangent 11. Each store spoils the float behind its
        // vector, which comes after it.
        const __m128 position = _mm_add_ps(rotated(_mm_loadu_ps(v)), w);
        const __m128 normal = rotated(_mm_loadu_ps(v + 3));
        const __m128 tangent = rotated(_mm_loadu_ps(v + 8));
        const __m128 biTangent = rotated(_mm_loadu_ps(v + 11));
        float* out = to[i].Pos.ToPtr();
        _mm_storeu_ps(out, position);
        _mm_storeu_ps(out + 3, normal);
        to[i].TexCoord = from[i].TexCoord;
        _mm_storeu_ps(out + 8, tangent);
        _mm_storel_pi(reinterpret_cast<__m64*>(out + 11), biTangent);
        _mm_store_ss(out + 13, _mm_movehl_ps(biTangent, biTangent));
    }
}

#else

constexpr auto SkinFast = SkinPlain;

#endif

/// @param skin  one of the above
void Skin(const cModel& model, const Joints& joints, cModel* out, decltype(SkinPlain)* skin) {
    if (model.Static) {
        return;
    }
    if (out->Meshes.Count() != model.Meshes.Count()) {
        model.GoToBindPose(out); // sizes the lists
    }
    for (int i = 0; i < model.Meshes.Count(); i++) {
        const cModel::Mesh& from = model.Meshes[i];
        cModel::Mesh& to = out->Meshes[i];
        to.BumpVertices.SetCount(from.AnimVertices.Count());
        skin(from.AnimVertices.Data(), from.AnimVertices.Count(), joints, to.BumpVertices.Data());
        if (out != &model) {
            to.Indices.Copy(from.Indices);
        }
    }
}

} // namespace

void cModel::SetAnim(const cList<cAnim_Joint>& joints, cModel* out) const {
    Skin(*this, joints, out, SkinFast);
}

void cModel::SetAnimPlain(const cList<cAnim_Joint>& joints, cModel* out) const {
    Skin(*this, joints, out, SkinPlain);
}

} // namespace trellis
