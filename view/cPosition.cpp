#include "view/cPosition.h"

#include "ui/cWidgets.h"
#include "view/cMoveTool.h"

namespace trellis {

void cPosition::RegisterMembers() {
    cClassMembers members(this);
    if (!members.Begin()) {
        return;
    }
    members.Add<_cFloat3>(Position, "Position");
    members.AddButton(&cPosition::Move, "&cPosition::Move");
}

void cPosition::Move() {
    if (HasTools()) {
        FreeTools();
        return;
    }
    if (g_ManipulatorsType == cManipulator::None) {
        g_ManipulatorsType = cManipulator::MoveType;
    }
    CreateTools();
}

void cPosition::CreateTools() {
    FreeTools();
    m_MoveTool = new cMoveTool(&Position);
    m_MoveTool->SetParent(m_Parent);
    m_MoveTool->Link(&m_MoveTool);
    cWidgets::AddWidget(m_MoveTool, cManipulator::Layer);
}

void cPosition::FreeTools() {
    cManipulator::Free(m_MoveTool);
    m_MoveTool = nullptr;
}

void cPosition::OnProcess() {
    if (HasTools()) {
        m_MoveTool->SetParent(m_Parent);
    }
}

} // namespace trellis
