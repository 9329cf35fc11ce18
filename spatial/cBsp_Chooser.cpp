#include "spatial/cBsp_Chooser.h"

#include <algorithm>
#include <cfloat>
#include <cstdlib>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace trellis {

void cBsp_Chooser::Take(const cList<cBsp::Triangle>& triangles) {
    m_Count = triangles.Count();
    m_SplitCosts.resize(1);
    for (int i = 0; i < m_Count; i++) {
        m_SplitCosts.push_back(m_SplitCosts.back() + m_SplitCost);
    }
    for (int corner = 0; corner < 3; corner++) {
        for (int axis = 0; axis < 3; axis++) {
            std::vector<float>& out = m_Coordinates[corner * 3 + axis];
            out.resize(size_t(m_Count));
            for (int i = 0; i < m_Count; i++) {
                out[size_t(i)] = triangles[i].Corners[corner][axis];
            }
        }
    }
}

int cBsp_Chooser::Choose(const cList<cBsp::Triangle>& triangles) {
    Take(triangles);
    int best = 0;
    float bestScore = FLT_MAX;
    for (int i = 0; i < m_Count; i++) {
        const float score = Score(triangles[i].Plane, bestScore);
        if (score < bestScore) {
            bestScore = score;
            best = i;
        }
    }
    return best;
}

float cBsp_Chooser::ScoreOf(int splits, int balance) const {
    return float(std::abs(balance)) * m_BalanceCost + m_SplitCosts[size_t(splits)];
}

/// Whether the score cannot come below `best` with that many triangles left. Costs below 0 leave that open.
bool cBsp_Chooser::IsHopeless(int splits, int balance, int left, float best) const {
    return m_SplitCost >= 0 && m_BalanceCost >= 0 && ScoreOf(splits, std::max(std::abs(balance) - left, 0)) >= best;
}

void cBsp_Chooser::Classify(const cPlane& plane, int i, int* splits, int* balance) const {
    bool isFront = false, isBack = false;
    for (int corner = 0; corner < 3; corner++) {
        const std::vector<float>* c = m_Coordinates + corner * 3;
        const float d = plane.SignedDistance({c[0][size_t(i)], c[1][size_t(i)], c[2][size_t(i)]});
        isFront = isFront || d > m_Epsilon;
        isBack = isBack || d < -m_Epsilon;
    }
    *splits += isFront && isBack;
    *balance += !isBack ? 1 : !isFront ? -1 : 0; // what lies on the plane counts as in front
}

float cBsp_Chooser::ScorePlain(const cPlane& plane, float best) const {
    int splits = 0, balance = 0;
    for (int i = 0; i < m_Count; i++) {
        Classify(plane, i, &splits, &balance);
        if (IsHopeless(splits, balance, m_Count - 1 - i, best)) {
            return best;
        }
    }
    return ScoreOf(splits, balance);
}

#ifdef __SSE2__

float cBsp_Chooser::Score(const cPlane& plane, float best) const {
    constexpr int Block = 64; // triangles between two looks at the score
    const __m128 nx = _mm_set1_ps(plane.normal.x), ny = _mm_set1_ps(plane.normal.y), nz = _mm_set1_ps(plane.normal.z);
    const __m128 d = _mm_set1_ps(plane.d), over = _mm_set1_ps(m_Epsilon), under = _mm_set1_ps(-m_Epsilon);
    int splits = 0, balance = 0, i = 0;
    const int whole = m_Count & ~3;
    while (i < whole) {
        __m128i split = _mm_setzero_si128(), front = split, back = split; // minus the counts
        for (const int end = std::min(i + Block, whole); i < end; i += 4) {
            __m128 isFront = _mm_setzero_ps(), isBack = isFront;
            for (int corner = 0; corner < 3; corner++) {
                const std::vector<float>* c = m_Coordinates + corner * 3;
                // As cPlane::SignedDistance, in its order.
                const __m128 xy = _mm_add_ps(_mm_mul_ps(nx, _mm_loadu_ps(&c[0][size_t(i)])),
                                             _mm_mul_ps(ny, _mm_loadu_ps(&c[1][size_t(i)])));
                const __m128 distance = _mm_add_ps(_mm_add_ps(xy, _mm_mul_ps(nz, _mm_loadu_ps(&c[2][size_t(i)]))), d);
                isFront = _mm_or_ps(isFront, _mm_cmpgt_ps(distance, over));
                isBack = _mm_or_ps(isBack, _mm_cmplt_ps(distance, under));
            }
            split = _mm_add_epi32(split, _mm_castps_si128(_mm_and_ps(isFront, isBack)));
            front = _mm_add_epi32(front, _mm_cmpeq_epi32(_mm_castps_si128(isBack), _mm_setzero_si128()));
            back = _mm_add_epi32(back, _mm_castps_si128(_mm_andnot_ps(isFront, isBack)));
        }
        const auto sum = [](__m128i v) {
            alignas(16) int lanes[4];
            _mm_store_si128(reinterpret_cast<__m128i*>(lanes), v);
            return -(lanes[0] + lanes[1] + lanes[2] + lanes[3]);
        };
        splits += sum(split);
        balance += sum(front) - sum(back);
        if (IsHopeless(splits, balance, m_Count - i, best)) {
            return best;
        }
    }
    for (; i < m_Count; i++) {
        Classify(plane, i, &splits, &balance);
    }
    return ScoreOf(splits, balance);
}

#else

float cBsp_Chooser::Score(const cPlane& plane, float best) const {
    return ScorePlain(plane, best);
}

#endif

} // namespace trellis
