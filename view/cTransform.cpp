#include "view/cTransform.h"

#include "math/cQuat.h"
#include "ui/cWidgets.h"
#include "view/cMoveTool.h"
#include "view/cRotateTool.h"
#include "view/cScaleTool.h"

namespace trellis {

void cTransform::RegisterMembers() {
    cClassMembers members(this);
    if (!members.Begin()) {
        return;
    }
    members.Add<_cFloat3>(Scale, "Scale");
    members.Add<_cFloat3>(Rotate, "Rotate");
    members.Add<_cFloat3>(Translate, "Translate");
}

cMat4 cTransform::GetMatrix() const {
    return cMat4::Scaling(Scale) * cMat4(Rotate.ToQuat().ToMat3(), Translate);
}

void cTransform::CreateTools() {
    FreeTools();
    const auto wants = [](int type) {
        return g_ManipulatorsType == type || g_ManipulatorsType == cManipulator::Universal;
    };
    const auto add = [this](auto* tool, auto** slot) {
        tool->SetParent(m_Parent);
        tool->Link(slot);
        *slot = tool;
        cWidgets::AddWidget(tool, cManipulator::Layer);
        return tool;
    };
    // The rear first: among all three the ring lies behind, the cubes in front.
    if (wants(cManipulator::RotateType)) {
        add(new cRotateTool(&Rotate, &Translate, g_ManipulatorsLocal), &m_RotateTool);
    }
    if (wants(cManipulator::MoveType)) {
        add(new cMoveTool(&Rotate, &Translate, g_ManipulatorsLocal), &m_MoveTool)->HasFreeInner =
            g_ManipulatorsType == cManipulator::Universal;
    }
    if (wants(cManipulator::ScaleType)) {
        add(new cScaleTool(&Scale, &Rotate, &Translate), &m_ScaleTool);
    }
}

void cTransform::FreeTools() {
    cManipulator::Free(m_MoveTool);
    cManipulator::Free(m_RotateTool);
    cManipulator::Free(m_ScaleTool);
    m_MoveTool = nullptr;
    m_RotateTool = nullptr;
    m_ScaleTool = nullptr;
}

void cTransform::OnProcess() {
    for (cManipulator* tool : {static_cast<cManipulator*>(m_MoveTool), static_cast<cManipulator*>(m_RotateTool),
                               static_cast<cManipulator*>(m_ScaleTool)}) {
        if (tool) {
            tool->SetParent(m_Parent);
        }
    }
}

} // namespace trellis
