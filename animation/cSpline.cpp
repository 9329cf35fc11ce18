#include "animation/cSpline.h"

namespace trellis {

void cSpline::CustomCtor() {
    SetUniformSampledNodeCount = 10;
    SetAdaptiveSampledMaxErrSq = 100;
}

void cSpline::RegisterMembers() {
    cClassMembers members(this);
    if (!members.Begin()) {
        return;
    }
    members.AddButton(&cSpline::Edit, "&cSpline::Edit");
    members.AddObject(Transform, "Transform");
    members.AddButton(&cSpline::CenterTransform, "&cSpline::CenterTransform");
    members.AddObject(Nodes, "Nodes");
    members.Add<_cBool>(Closed, "Closed");
    members.AddSeparator("");
    members.AddButton(&cSpline::SetUniformSampled, "&cSpline::SetUniformSampled");
    members.Add<_cInt>(SetUniformSampledNodeCount, "SetUniformSampledNodeCount");
    members.AddButton(&cSpline::SetAdaptiveSampled, "&cSpline::SetAdaptiveSampled");
    members.Add<_cFloat>(SetAdaptiveSampledMaxErrSq, "SetAdaptiveSampledMaxErrSq");
}

cStr cSpline::ToString() {
    cClass* parent = GetParent();
    const char* list = parent ? parent->GetClassName() : nullptr;
    if (list && cStr::Compare(list, "cClassList.cSpline") == 0) {
        return cStr::Format("%d. Spline", IndexOfThis() + 1);
    }
    return "Spline";
}

void cSpline::Edit() {}
void cSpline::CenterTransform() {}
void cSpline::SetUniformSampled() {}
void cSpline::SetAdaptiveSampled() {}

} // namespace trellis
