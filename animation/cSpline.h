// An editable path of cubic Bezier segments in space.
#pragma once

#include "animation/cSpline_Node.h"
#include "reflection/cClassList.h"
#include "view/cTransform.h"

namespace trellis {

/// Its content and its form in files; the buttons have nothing to do until there are curves to work on.
class cSpline : public cClass {
    TRELLIS_CLASS(cSpline)

public:
    using cClass::ToString;

    void CustomCtor() override;
    cStr ToString() override; ///< "Spline", or "1. Spline" in a list of splines.

    void Edit();               ///< Shows and hides the tools.
    void CenterTransform();    ///< Moves the pivot to the middle of the box.
    void SetUniformSampled();  ///< Evenly spaced nodes in place of those that are there.
    void SetAdaptiveSampled(); ///< As few nodes as the error allows in place of those that are there.

    cTransform Transform;
    cClassList<cSpline_Node> Nodes;
    bool Closed; ///< The last node joins the first.
    int SetUniformSampledNodeCount;
    float SetAdaptiveSampledMaxErrSq; ///< Squared distance.
};

} // namespace trellis
