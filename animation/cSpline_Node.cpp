#include "animation/cSpline_Node.h"

#include "math/cMat4.h"
#include "render/cRender.h"
#include "ui/cWidgets.h"
#include "view/cMoveTool.h"

namespace trellis {

namespace {

/// Turns `*to` about `center` to the side opposite of `from`.
void Mirror(const cVec3& center, const cVec3& from, cVec3* to) {
    const float length = cVec3::Distance(center, from);
    if (length > 0) {
        *to = center + (center - from) * (cVec3::Distance(center, *to) / length);
    }
}

} // namespace

void cSpline_Node::CustomCtor() {
    Set({-10, 10, 0}, {0, 10, 0}, {10, 10, 0});
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

void cSpline_Node::Set(const cVec3& cv0, const cVec3& ep, const cVec3& cv1) {
    m_FormerCV0 = CV0 = cv0;
    m_FormerEP = EP = ep;
    m_FormerCV1 = CV1 = cv1;
}

// ---- Editing

void cSpline_Node::CreateTools() {
    cVec3* const points[PointCount] = {&CV0, &EP, &CV1};
    bool hadTools = false;
    for (int i = 0; i < PointCount; i++) {
        if (m_Tools[i]) {
            hadTools = true;
            continue;
        }
        m_Tools[i] = new cMoveTool(points[i]);
        m_Tools[i]->Link(&m_Tools[i]);
        m_ToolIDs[i] = cWidgets::AddWidget(m_Tools[i], cManipulator::Layer);
    }
    if (!hadTools) {
        Set(CV0, EP, CV1);
    }
}

// What is loaded or copied is no drag.

bool cSpline_Node::Load(cXml& node, void* data, cErrorPager* pager, void* extra) {
    const bool isLoaded = cClass::Load(node, data, pager, extra);
    if (data == static_cast<cClass*>(this)) { // else it has gone on to the object
        Set(CV0, EP, CV1);
    }
    return isLoaded;
}

bool cSpline_Node::FullCopy(void* src, void* srcExtra, cClass* dstClass, void* dst, void* dstExtra,
                            cClassCopyContext* context) {
    const bool isCopied = cClass::FullCopy(src, srcExtra, dstClass, dst, dstExtra, context);
    if (auto* node = dynamic_cast<cSpline_Node*>(static_cast<cClass*>(dst))) {
        node->Set(node->CV0, node->EP, node->CV1);
    }
    return isCopied;
}

void cSpline_Node::FreeTools() {
    for (cMoveTool*& tool : m_Tools) {
        cManipulator::Free(tool);
        tool = nullptr;
    }
}

int cSpline_Node::GetToolID(Point point) const {
    return m_Tools[point] ? m_ToolIDs[point] : -1;
}

void cSpline_Node::UpdateParent(const cMat4& parent, const cMat4* inverse) {
    for (cMoveTool* tool : m_Tools) {
        if (tool && inverse) {
            tool->SetParent(parent, *inverse);
        } else if (tool) {
            tool->SetParent(parent);
        }
    }
}

void cSpline_Node::Follow() {
    if (!m_Tools[End]) {
        return;
    }
    if (EP != m_FormerEP) {
        const cVec3 step = EP - m_FormerEP;
        CV0 += step;
        CV1 += step;
    } else if (!cWidgets::IsCaptured(m_Tools[End])) {
        const bool isInMoved = CV0 != m_FormerCV0, isOutMoved = CV1 != m_FormerCV1;
        if (isInMoved && !isOutMoved) {
            Mirror(EP, CV0, &CV1);
        } else if (isOutMoved && !isInMoved) {
            Mirror(EP, CV1, &CV0);
        }
    }
    Set(CV0, EP, CV1);
}

void cSpline_Node::Render(const cMat4& toWorld) {
    Follow();
    if (!cRender::GetInstance() || !cRender::GetViewer()) {
        return;
    }
    cRender::DrawLine(CV0, EP, cColor::Blue);
    cRender::DrawLine(EP, CV1, cColor::Blue);
    static const int s_Font = cRender::GetFontID("Calibri 11");
    cVec3 at = EP;
    cVec3::TransformCoordinate(&at, 1, toWorld);
    cRender::DrawString(s_Font, cStr::Format("EP %d", IndexOfThis() + 1).Text(), at, cColor::Green);
}

} // namespace trellis
