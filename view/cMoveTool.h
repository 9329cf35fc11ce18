// Arrows that move a position along an axis, and a disc that moves it in the plane of the screen.
#pragma once

#include "view/cManipulator.h"

namespace trellis {

class cMoveTool : public cManipulator {
public:
    cMoveTool() = default;
    explicit cMoveTool(cVec3* pos) { Bind(pos); }
    cMoveTool(cAngles* orient, cVec3* pos, cSpace::Enum space) { Bind(orient, pos, space); }

    void Bind(cVec3* pos); ///< In the world's axes.
    using cManipulator::Bind;
    void OnRender() override;

    cVec3 StartPos = cVec3::Zero; ///< In the world.

protected:
    float Length() const override { return 92; }
    float RadiusPixels() const override { return 13; }
    Mode::Enum Pick(const cSeg& ray) override;
    bool Hit(Mode::Enum mode, const cSeg& ray, cVec3* hit) const override;
    void Unbind() override {}
    bool BeginDrag() override;
    void Drag(const cVec3& hit) override;
};

} // namespace trellis
