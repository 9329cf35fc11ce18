// Rings that turn an orientation about an axis, and a sphere that turns it freely.
#pragma once

#include "view/cManipulator.h"

namespace trellis {

class cRotateTool : public cManipulator {
public:
    cRotateTool() = default;
    explicit cRotateTool(cAngles* orient) { Bind(orient); }
    cRotateTool(cAngles* orient, cVec3* pos, cSpace::Enum space) { Bind(orient, pos, space); }

    void Bind(cAngles* orient); ///< About the parent's origin, in the world's axes.
    using cManipulator::Bind;
    void OnRender() override;

    cAngles StartAngles{0, 0, 0};
    cVec3 StartCenter = cVec3::Zero;

protected:
    float Length() const override { return RadiusPixels(); }
    float RadiusPixels() const override { return 78; }
    Mode::Enum Pick(const cSeg& ray) override;
    bool Hit(Mode::Enum mode, const cSeg& ray, cVec3* hit) const override;
    void Unbind() override {}
    bool BeginDrag() override;
    void Drag(const cVec3& hit) override;

private:
    bool m_HasTurned = false; // in this drag
    bool HitSphere(const cSeg& ray, cVec3* hit) const;
    float DistanceToRing(const cSeg& ray, const cVec3& axis, cVec3 hit) const;
};

} // namespace trellis
