// Handles with cubes that scale along an axis, and one in the middle for all axes at once.
#pragma once

#include "view/cManipulator.h"

namespace trellis {

/// In the orientation's axes, always. No component goes below 0.1.
class cScaleTool : public cManipulator {
public:
    cScaleTool() = default;
    cScaleTool(cVec3* scale, cAngles* orient, cVec3* pos) { Bind(scale, orient, pos); }

    void Bind(cVec3* scale, cAngles* orient, cVec3* pos);
    void OnRender() override;

    cVec3* Scale = nullptr;
    cVec3 StartScale = cVec3::One;

protected:
    float Length() const override { return 64; }
    float RadiusPixels() const override { return 10; }
    bool IsLocal() const override { return true; }
    Mode::Enum Pick(const cSeg& ray) override;
    bool Hit(Mode::Enum mode, const cSeg& ray, cVec3* hit) const override;
    void Unbind() override { Scale = nullptr; }
    bool BeginDrag() override;
    void Drag(const cVec3& hit) override;

private:
    cSeg FreeLine() const;
    float DistanceOf(const cVec3& p) const; // from the centre

    float m_StartDistance = 1;
    cSeg Along() const; // what the present mode measures along
};

} // namespace trellis
