// Scale, rotation and translation that are edited in the view, applied in this order.
#pragma once

#include "math/cAngles.h"
#include "math/cMat4.h"
#include "math/cVec3.h"
#include "reflection/cClassMembers.h"

namespace trellis {

class cMoveTool;
class cRotateTool;
class cScaleTool;

/// The tools belong to the widget manager, and go with the transform.
class cTransform : public cClass {
    TRELLIS_CLASS(cTransform)

public:
    void CustomCtor() override { Scale = cVec3::One; } ///< Identity.
    void CustomDtor() override { FreeTools(); }
    void OnProcess() override; ///< Once a frame: the tools follow the parent.

    void CreateTools(); ///< Those that `g_ManipulatorsType` names, in place of the former ones.
    void FreeTools();
    void SetParentTransform(const cMat4& parent) { m_Parent = parent; }
    cMat4 GetMatrix() const; ///< Without the parent.

    cVec3 Scale;
    cAngles Rotate; ///< Degrees.
    cVec3 Translate;

private:
    // Null again when the manager has freed them.
    cMoveTool* m_MoveTool = nullptr;
    cRotateTool* m_RotateTool = nullptr;
    cScaleTool* m_ScaleTool = nullptr;
    cMat4 m_Parent = cMat4::Identity;
};

} // namespace trellis
