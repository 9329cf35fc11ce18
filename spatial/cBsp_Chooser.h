// Choice of the triangle whose plane divides a list best.
#pragma once

#include "spatial/cBsp.h"

#include <vector>

namespace trellis {

/// The storage is kept from call to call.
class cBsp_Chooser {
public:
    cBsp_Chooser(float splitCost, float balanceCost, float epsilon)
        : m_SplitCost(splitCost), m_BalanceCost(balanceCost), m_Epsilon(epsilon) {}

    int Choose(const cList<cBsp::Triangle>& triangles); ///< @return the first of the least score; the list is not empty

    /// The score of a plane, or something at or above `best` once it cannot be below any more. The two forms, of which
    /// the second takes four triangles at a time, agree wherever the score is below `best`.
    float ScorePlain(const cPlane& plane, float best) const;
    float Score(const cPlane& plane, float best) const;

    void Take(const cList<cBsp::Triangle>& triangles); ///< What planes are scored over.

private:
    float ScoreOf(int splits, int balance) const;
    bool IsHopeless(int splits, int balance, int left, float best) const;
    void Classify(const cPlane& plane, int i, int* splits, int* balance) const;

    float m_SplitCost, m_BalanceCost, m_Epsilon;
    std::vector<float> m_SplitCosts{0.0f}; // of so many splits, added up one by one as costs are
    int m_Count = 0;
    std::vector<float> m_Coordinates[9]; // of corner 0: x, y, z; of corner 1, ...
};

} // namespace trellis
