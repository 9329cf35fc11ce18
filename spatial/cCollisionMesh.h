// Moves an ellipsoid through a soup of triangles, with sliding.
//
// All is kept in a space in which the ellipsoid is a sphere of radius 1: triangles are stored divided by the radii, and
// a query is divided on its way in and multiplied on its way out.
#pragma once

#include "foundation/cList.h"
#include "math/cPlane.h"
#include "math/cVec3.h"
#include "spatial/cBsp.h"

namespace trellis {

class cMat4;
class cModel;

/// Triangles are met from the front only, which is counterclockwise; those too small for a normal by their edges, from
/// all sides. Queries are const, use local storage only, and run on several threads at once.
class cCollisionMesh {
public:
    struct Triangle {
        cVec3 Corners[3];
        cPlane Plane;
        int Data; ///< The application's, a kind of surface perhaps.
    };

    void Free(); ///< The triangles and the tree.

    /// Adds the bump vertices' triangles of a model, so of a static one.
    ///
    /// @param data  for each mesh; what is missing is 0
    void AddModel(const cModel& model, const cMat4& transform, const cList<int>& data);
    void AddModel(const cModel& model, const cMat4& transform, int data);

    void BuildBsp(); ///< Queries then look through the tree instead of the list.

    /// Goes as far as it can, and slides along what it meets. The rest of the way behind the last slide that
    /// `MaxIterations` lets it take is not looked at any more.
    ///
    /// @param to              where it wants to be; receives where it comes
    /// @param velocity        is turned as the way is; may be null, as the results behind the factors
    /// @param normalFactor    share of the way that is thrown back: 0 slides, 1 bounces with a tangent factor of 1
    /// @param tangentFactor   share that goes on along what is met
    /// @param slideNormal     of the first contact, from where it touches
    /// @param hitNormal       of the first triangle that is met
    /// @return whether anything was met
    bool Collide(const cVec3& from, cVec3* to, cVec3* velocity, float normalFactor, float tangentFactor,
                 cVec3* slideNormal, cVec3* hitNormal, int* hitData) const;

    /// Pushes a position out of the triangles that it is in, always to their front, in at most `MaxIterations` passes.
    ///
    /// @return false
    bool Fix(cVec3* position) const;

    cVec3 Radii = cVec3::One; ///< To be set before any model is added.
    cList<Triangle> Triangles;
    cBsp Bsp;
    int MaxIterations = 0; ///< Of slides in `Collide`, of passes in `Fix`. The owner's to set.

private:
    /// The state of one `Collide`.
    struct CollisionArgs {
        cVec3 Position;
        cVec3 Destination;
        cVec3 Movement; ///< From the one to the other.
        cVec3 Velocity;
        cVec3 Direction; ///< Of the movement, of unit length.
        bool Found = false;
        cVec3 HitNormal = cVec3::Zero;
        int HitData = 0;
        float Nearest = 0; ///< Distance to the contact.
        cVec3 Intersection = cVec3::Zero;
        float NormalFactor, TangentFactor;
        int Iterations = 0;
        const cList<Triangle>* Triangles;
        cVec3 Low, High; ///< Around the movement of the sphere, with some room for rounding.

        // Of the first contact.
        cVec3 FirstSlideNormal = cVec3::Zero, FirstHitNormal = cVec3::Zero;
        int FirstHitData = 0;
    };

    static Triangle MakeTriangle(const cVec3& a, const cVec3& b, const cVec3& c, int data);
    const cList<Triangle>& Gather(const cVec3& center, float radius, const cVec3& low, const cVec3& high) const;
    static void TestTriangle(CollisionArgs& args, const Triangle& triangle);
    void ProcessCollision(CollisionArgs& args) const;
    static bool FixTriangle(const Triangle& triangle, cVec3* position);
    static bool ProcessFix(const CollisionArgs& args, cVec3* position);
};

} // namespace trellis
