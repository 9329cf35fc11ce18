// What a person works on in the workbench: a model with its place, an animation, a path. Saved as XML.
#pragma once

#include "animation/cAnim.h"
#include "animation/cSpline.h"
#include "math/cBounds.h"
#include "mesh/cModel.h"
#include "reflection/cClassMembers.h"
#include "view/cTransform.h"

namespace trellis {

class cWorkbenchScene : public cClass {
    TRELLIS_CLASS(cWorkbenchScene)

public:
    bool IsEnabled(const char* member) override; ///< The animation's rows need one.

    /// Once a frame: loads files whose names have changed, poses the model, holds the tools of place and path.
    ///
    /// @return whether the picture changes by itself
    bool Step(float sec);
    void Draw(bool grid) const;
    void EditPath();

    const cBounds& GetBounds() const { return m_Posed.Bounds; }
    cMat4 GetPlace() const;
    int GetTriangleCount() const { return m_Posed.GetTriangleCount(); }

    cStr ModelFile, AnimFile;
    bool Play;
    cTransform Transform;
    cSpline Path;

private:
    void LoadModel();
    void LoadAnim();

    cStr m_LoadedModel, m_LoadedAnim;
    cModel m_Model, m_Posed;
    cAnim m_Anim;
    cList<cAnim::Joint> m_Joints;
    float m_AnimSec = 0;
    bool m_HasAnim = false;
};

} // namespace trellis
