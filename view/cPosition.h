// A point that is edited in the view.
#pragma once

#include "math/cMat4.h"
#include "math/cVec3.h"
#include "reflection/cClassMembers.h"

namespace trellis {

class cMoveTool;

/// Files know it as "Position". The tool belongs to the widget manager, and goes with the point.
class cPosition : public cClass {
    TRELLIS_CLASS_NAMED(cPosition, "Position")

public:
    void CustomDtor() override { FreeTools(); }
    void OnProcess() override; ///< Once a frame: the tool follows the parent.

    void Move(); ///< Shows the tool, or takes it away.
    void CreateTools();
    void FreeTools();
    void SetParentTransform(const cMat4& parent) { m_Parent = parent; }
    bool HasTools() const { return m_MoveTool; }

    cVec3 Position;

private:
    cMoveTool* m_MoveTool = nullptr; // null again when the manager has freed it
    cMat4 m_Parent = cMat4::Identity;
};

} // namespace trellis
