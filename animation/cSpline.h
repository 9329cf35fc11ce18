// An editable path of cubic Bezier segments in space.
//
//     time     0 to 1 over the whole spline, at an even speed
//     length   along the curve from its start
//     place    a segment, and a parameter from 0 to 1 within it
#pragma once

#include "animation/cSegBezier.h"
#include "animation/cSpline_Node.h"
#include "math/cBounds.h"
#include "reflection/cClassList.h"
#include "ui/cWidget.h"
#include "view/cTransform.h"

namespace trellis {

/// Positions are in the spline's own space; the transform places it in the world, where it is drawn and edited.
///
/// Queries work on a cache of the segments, which the first of them fills. Whoever changes the nodes or `Closed` must
/// empty it (`Segments.Clear()`); the functions of this class do so. Once it is filled, several threads may query at
/// the same time. A spline without segments answers the zero place, zero vectors and lengths of 0; so does, for
/// vectors and lengths, a place that is not on it. Elements of `Nodes` that are no nodes are passed over.
class cSpline : public cClass, public cWidget {
    TRELLIS_CLASS(cSpline)

public:
    using cClass::ToString;

    struct Segment {
        cSegBezier<cVec3> Bezier;
        float EndTime;
        cVec3 Center; ///< Of a sphere around the four points.
        float Radius;
        float EndLength; ///< From the start of the spline.
    };
    struct Place {
        int Segment = 0;
        float t = 0;
    };
    struct ClosestPointRef {
        int Segment;
        float MinDistSq;                                                    ///< The segment is not closer than that.
        static int Cmp(const ClosestPointRef* a, const ClosestPointRef* b); ///< Ascending, as for qsort.
    };

    void CustomCtor() override;
    void CustomDtor() override { FreeTools(); }
    cStr ToString() override; ///< "Spline", or "1. Spline" in a list of splines.
    bool Load(cXml& node, void* data, cErrorPager* pager, void* extra) override;
    bool FullCopy(void* src, void* srcExtra, cClass* dstClass, void* dst, void* dstExtra,
                  cClassCopyContext* context) override;

    void EnsureCache() const; ///< Fills the cache if it is empty.
    void FillCache() const;   ///< From the nodes as they are now. Allocates nothing once there is the capacity.

    // Where segment `i` begins and ends; zeros for a segment that is not there.
    void GetSegmentTimeRange(int i, float* from, float* to) const;
    void GetSegmentLengthRange(int i, float* from, float* to) const;
    float GetTotalLength() const;
    const cBounds& GetBounds() const; ///< Of the nodes' points, and so a little large; empty without segments.

    // Times and lengths beyond the ends give the ends.
    Place GetPlaceByTime(float time) const;
    Place GetPlaceByLength(float length) const;         ///< Takes the speed within a segment for even.
    Place GetPlaceByLengthAccurate(float length) const; ///< Measures along the segment.
    cVec3 GetValue(const Place& place) const;
    cVec3 GetValueByTime(float time) const { return GetValue(GetPlaceByTime(time)); }
    cVec3 GetValueByLength(float length) const { return GetValue(GetPlaceByLength(length)); }
    cVec3 GetDerivativeLocal(const Place& place) const;  ///< With respect to `t`.
    cVec3 GetDerivativeGlobal(const Place& place) const; ///< With respect to the time.
    cVec3 GetDerivativeLocal(float time) const { return GetDerivativeLocal(GetPlaceByTime(time)); }
    cVec3 GetDerivativeGlobal(float time) const { return GetDerivativeGlobal(GetPlaceByTime(time)); }
    float GetTimeFromPlace(const Place& place) const;
    /// Good for the first segment only: later ones are ahead by the length of all before them.
    float GetLengthFromPlace(const Place& place) const;

    Place CalcClosestPointPlaceLinear(const cVec3& point) const; ///< Takes the segments for straight.
    Place CalcClosestPointPlaceAccurate(const cVec3& point, float maxErrSq) const;

    /// Nodes at the points, in place of those that are there; the curve runs smoothly through them (Catmull and Rom).
    /// For a closed spline the last point repeats the first.
    void SetFromPoints(const cVec3* points, int count);

    // Buttons. The two that sample ask first.
    void Edit();               ///< Shows and hides the tools.
    void CenterTransform();    ///< Moves the pivot to the middle of the box; the curve stays where it is.
    void SetUniformSampled();  ///< Evenly spaced nodes in place of those that are there.
    void SetAdaptiveSampled(); ///< Straight enough segments in place of those that are there; the spline is then open.

    /// Appends the pieces of a segment that are flat within the error, in their order; see `cSegBezier::IsFlat`.
    static void SetAdaptiveSampled_RecursiveAdd(cList<Segment>* list, const cSegBezier<cVec3>& segment, float t0,
                                                float t1, float maxErrSq);

    void CreateTools(); ///< What is missing of the tools.
    void FreeTools();
    int GetWidgetID() const { return m_Widget ? m_WidgetID : -1; } ///< -1 when it is not edited.
    void UpdateParent();                                           ///< The nodes' tools follow the transform.
    void OnRender() override;

    cTransform Transform;
    cClassList<cSpline_Node> Nodes;
    bool Closed; ///< The last node joins the first.
    int SetUniformSampledNodeCount;
    float SetAdaptiveSampledMaxErrSq; ///< Squared distance.

    mutable cList<Segment> Segments; ///< The cache. Empty: it has to be filled.

private:
    class Widget;

    void AddSegment(const cSpline_Node& from, const cSpline_Node& to) const;
    template <float Segment::*End> void GetRange(int i, float* from, float* to) const;
    template <float Segment::*End> Place GetPlaceBy(float value) const;
    const Segment* Find(const Place& place) const;
    void RemoveNodes();
    void AddNode(const cVec3& cv0, const cVec3& ep, const cVec3& cv1);
    int CountNodes() const;
    void DrawCurve() const;

    mutable cBounds m_Bounds = cBounds::Empty;
    Widget* m_Widget = nullptr; // the manager's; null again when it has been freed
    int m_WidgetID = -1;
};

} // namespace trellis
