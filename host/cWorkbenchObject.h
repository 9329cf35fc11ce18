// Things that stand in the scene of the workbench: a model, a path. Each draws itself, and can be hit by a ray.
#pragma once

#include "animation/cAnim.h"
#include "animation/cSpline.h"
#include "math/cBounds.h"
#include "math/cSeg.h"
#include "mesh/cModel.h"
#include "reflection/cClassMembers.h"
#include "view/cTransform.h"

namespace trellis {

class cWorkbenchObject : public cClass {
    TRELLIS_CLASS_NAMED(cWorkbenchObject, "Object")

public:
    /// Once a frame. @return whether the picture changes by itself
    virtual bool Step(float sec) {
        (void)sec;
        return false;
    }
    virtual void Draw() {}
    /// @param distance  receives the way along the ray, in lengths of its direction
    virtual bool Hit(const cSeg& ray, float* distance) {
        (void)ray, (void)distance;
        return false;
    }
    virtual cBounds GetBounds() { return cBounds::Empty; } ///< In the object's own space.
    virtual cTransform* GetTransform() { return nullptr; } ///< Of that space in the world; null for none.

    cMat4 GetPlace();
};

/// A file that cannot be loaded leaves nothing to see, and a sentence in the log.
class cWorkbenchModel : public cWorkbenchObject {
    TRELLIS_CLASS_NAMED(cWorkbenchModel, "Model")

public:
    void CustomCtor() override;
    using cClass::ToString;
    cStr ToString() override; ///< The name of the file, without folder and extension.
    bool IsEnabled(const char* member) override;

    bool Step(float sec) override;
    void Draw() override;
    bool Hit(const cSeg& ray, float* distance) override;
    cBounds GetBounds() override { return m_Posed.Bounds; }
    cTransform* GetTransform() override { return &Transform; }

    void EnsureLoaded(); ///< What the names say by now.
    void KeepLoaded();   ///< The names have changed, the files have not.
    int GetTriangleCount() const { return m_Posed.GetTriangleCount(); }

    cStr ModelFile, AnimFile;
    bool Play;
    cTransform Transform;

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

class cWorkbenchPath : public cWorkbenchObject {
    TRELLIS_CLASS_NAMED(cWorkbenchPath, "Path")

public:
    void CustomCtor() override; ///< A curve through a few points.
    bool Step(float sec) override;
    void Draw() override;
    bool Hit(const cSeg& ray, float* distance) override;
    cBounds GetBounds() override { return Path.GetBounds(); }
    cTransform* GetTransform() override { return &Path.Transform; }

    cSpline Path;

private:
    static constexpr int s_Pieces = 120;
};

} // namespace trellis
