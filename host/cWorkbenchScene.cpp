#include "host/cWorkbenchScene.h"

#include "files/cIO.h"
#include "host/Daylight.h"
#include "render/cRender.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace trellis {

void cWorkbenchScene::RegisterMembers() {
    cClassMembers members(this);
    if (!members.Begin()) {
        return;
    }
    members.Add<_cModelFile>(ModelFile, "ModelFile");
    members.AddObject(Transform, "Transform");
    members.AddSeparator("Animation");
    members.Add<_cAnimFile>(AnimFile, "AnimFile");
    members.Add<_cBool>(Play, "Play");
    members.AddSeparator("Path");
    members.AddObject(Path, "Path");
    members.AddButton(&cWorkbenchScene::EditPath, "&cWorkbenchScene::EditPath");
}

bool cWorkbenchScene::IsEnabled(const char* member) {
    return m_HasAnim || std::strcmp(member, "Play") != 0;
}

void cWorkbenchScene::EditPath() {
    if (Path.Nodes.Count() == 0) {
        const cVec3 points[] = {{9, 2, 0}, {0, 4, 9}, {-9, 6, 0}, {0, 7, -9}, {8, 9, -4}};
        Path.SetFromPoints(points, int(std::size(points)));
    }
    Path.Edit();
}

cMat4 cWorkbenchScene::GetPlace() const {
    const cVec3& t = Transform.Translate;
    return cMat4::Scaling(Transform.Scale) * Transform.Rotate.ToMat4() * cMat4::Translation(t.x, t.y, t.z);
}

/// What cannot be loaded leaves nothing, and a line in the log.
void cWorkbenchScene::LoadModel() {
    m_LoadedModel = ModelFile;
    m_Model.Free();
    m_Posed.Free();
    if (ModelFile.IsEmpty() || !cIO::LoadModel(ModelFile, &m_Model)) {
        return;
    }
    m_Posed = m_Model;
    if (!m_Model.Static) {
        m_Model.GoToBindPose(&m_Posed);
        m_Posed.Static = true;
    }
    m_Posed.UpdateBounds();
}

void cWorkbenchScene::LoadAnim() {
    m_LoadedAnim = AnimFile;
    m_HasAnim = !AnimFile.IsEmpty() && cIO::LoadAnim(AnimFile, &m_Anim);
    m_AnimSec = 0;
}

bool cWorkbenchScene::Step(float sec) {
    if (!(m_LoadedModel == ModelFile)) {
        LoadModel();
    }
    if (!(m_LoadedAnim == AnimFile)) {
        LoadAnim();
    }
    Transform.OnProcess();
    if (!Play || !m_HasAnim || m_Model.Static) {
        return false;
    }
    m_AnimSec = std::fmod(m_AnimSec + sec, std::max(float(m_Anim.GetDurationSec()), 0.01f));
    m_Anim.SetFrame(m_AnimSec, m_Model, &m_Joints);
    m_Model.SetAnim(m_Joints, &m_Posed);
    return true;
}

void cWorkbenchScene::Draw(bool grid) const {
    static const int s_Depth = cRender::GetDepthStateID(true, true, cDepthFunc::LessEqual);
    cRender::SetDepthState(s_Depth);
    cRender::SetBlendState(-1);
    cRender::SetCullMode(cCullMode::None);
    cRender::SetWorldMatrix(cMat4::Identity);
    if (grid) {
        cRender::DrawGrid({});
    }
    cRender::SetWorldMatrix(GetPlace());
    for (const cModel::Mesh& mesh : m_Posed.Meshes) {
        DrawInDaylight(mesh, DaylightColorOf(mesh.MaterialName));
    }
    cRender::SetWorldMatrix(cMat4::Identity);
}

} // namespace trellis
