// A node of a spline: an end point between two control points.
#pragma once

#include "math/cVec3.h"
#include "reflection/cClassMembers.h"

namespace trellis {

class cMat4;
class cMoveTool;

/// Points are in the spline's own space. The tools belong to the widget manager, and go with the node.
class cSpline_Node : public cClass {
    TRELLIS_CLASS(cSpline_Node)

public:
    using cClass::ToString;

    enum Point : int { ControlIn, End, ControlOut, PointCount };

    void CustomCtor() override; ///< At 10 above the origin, the curve running along X.
    void CustomDtor() override { FreeTools(); }
    cStr ToString() override; ///< "1. Node", counted in the list it stands in.

    bool Load(cXml& node, void* data, cErrorPager* pager, void* extra) override;
    bool FullCopy(void* src, void* srcExtra, cClass* dstClass, void* dst, void* dstExtra,
                  cClassCopyContext* context) override;

    void Set(const cVec3& cv0, const cVec3& ep, const cVec3& cv1); ///< As they are: nothing is dragged along.

    void CreateTools(); ///< Those that are missing.
    void FreeTools();
    int GetToolID(Point point) const;                             ///< Of its widget; -1: there is none.
    void UpdateParent(const cMat4& parent, const cMat4* inverse); ///< Null: there is no inverse.

    /// Once a frame: takes up what the tools have moved, and draws the node under the world matrix.
    ///
    /// "EP" drags both control points with it. A control point that has been moved turns the other to the opposite
    /// side, at that one's own distance, unless "EP" is held.
    void Render(const cMat4& toWorld);

    cVec3 CV0; ///< Control point of the segment that comes in.
    cVec3 EP;  ///< End point, which the curve goes through.
    cVec3 CV1; ///< Control point of the segment that goes out.

private:
    void Follow();

    cMoveTool* m_Tools[PointCount] = {}; // null again when the manager has freed them
    int m_ToolIDs[PointCount] = {-1, -1, -1};
    // Of the previous frame.
    cVec3 m_FormerCV0 = cVec3::Zero, m_FormerEP = cVec3::Zero, m_FormerCV1 = cVec3::Zero;
};

} // namespace trellis
