#include "animation/cSpline_Node.h"

namespace trellis {

void cSpline_Node::CustomCtor() {
    CV0 = {-10, 10, 0};
    EP = {0, 10, 0};
    CV1 = {10, 10, 0};
}

void cSpline_Node::RegisterMembers() {
    cClassMembers members(this);
    if (!members.Begin()) {
        return;
    }
    members.Add<_cFloat3>(CV0, "CV0");
    members.Add<_cFloat3>(EP, "EP");
    members.Add<_cFloat3>(CV1, "CV1");
}

cStr cSpline_Node::ToString() {
    return cStr::Format("%d. Node", IndexOfThis() + 1);
}

} // namespace trellis
