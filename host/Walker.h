// An ellipsoid that walks through a level, and the line of the way that it has gone.
#pragma once

#include "foundation/cList.h"
#include "mesh/cVertex.h"
#include "spatial/cCollisionMesh.h"

namespace trellis {

class Walker {
public:
    static constexpr float Radius = 0.5f, HalfHeight = 0.9f, Speed = 4; ///< Units, and units a second.

    Walker();

    /// @param start  the middle of the ellipsoid, which then falls
    void SetLevel(const cModel& level, const cVec3& start);

    /// Walks, climbs what is low, slides along what is not, and falls.
    ///
    /// @param push  where to, along the ground; longer ones count as of length 1
    void Step(const cVec3& push, float sec);

    void Draw() const; ///< In the world: the ellipsoid, its steps as shadows, the way of its feet.

    cVec3 Position;

private:
    void Fall(float sec);

    static constexpr int MostPlaces = 4096; // the way's end, once it is longer

    cCollisionMesh m_Mesh;
    cVec3 m_Falling;
    cList<cVertex::PositionColored> m_Way; // of the feet
};

} // namespace trellis
