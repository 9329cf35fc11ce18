#include "host/cWorkbenchObject.h"

#include "files/cIO.h"
#include "foundation/cLog.h"
#include "host/Daylight.h"
#include "mesh/cMaterials.h"
#include "render/cRender.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace trellis {

namespace {

/// By the table of materials, or else in daylight's own colours.
void DrawMesh(const cModel::Mesh& mesh) {
    const cMaterial* material = g_Materials.GetMaterial(mesh.MaterialID);
    if (material) {
        DrawInDaylight(mesh, material->GetDiffuseMapModulator(), material->GetDiffuseMapID());
    } else {
        DrawInDaylight(mesh, DaylightColorOf(mesh.MaterialName));
    }
}

/// A name of one word is looked for in the group "Common".
void FindMaterials(cModel* model) {
    model->GetMaterialsID();
    for (cModel::Mesh& mesh : model->Meshes) {
        if (mesh.MaterialID == -1) {
            mesh.MaterialID = g_Materials.GetMaterialID("Common/" + mesh.MaterialName);
        }
    }
}

} // namespace

void cWorkbenchObject::RegisterMembers() {
    cClassMembers members(this);
    members.Begin();
}

cMat4 cWorkbenchObject::GetPlace() {
    const cTransform* transform = GetTransform();
    return transform ? transform->GetMatrix() : cMat4::Identity;
}

// ---- Model

void cWorkbenchModel::RegisterMembers() {
    cClassMembers members(this);
    if (!members.Begin()) {
        return;
    }
    members.AddParent<cWorkbenchObject>();
    members.Add<_cModelFile>(ModelFile, "ModelFile");
    members.Add<_cAnimFile>(AnimFile, "AnimFile");
    members.Add<_cBool>(Play, "Play");
    members.AddObject(Transform, "Transform");
}

void cWorkbenchModel::CustomCtor() {
    m_LoadedModel.Clear();
    m_LoadedAnim.Clear();
    m_Model.Free();
    m_Posed.Free();
    m_HasAnim = false;
}

cStr cWorkbenchModel::ToString() {
    cStr name = ModelFile.GetFileName();
    name.RemoveFileExtension();
    return name;
}

bool cWorkbenchModel::IsEnabled(const char* member) {
    return m_HasAnim || std::strcmp(member, "Play") != 0;
}

void cWorkbenchModel::LoadModel() {
    m_LoadedModel = ModelFile;
    m_Model.Free();
    m_Posed.Free();
    if (ModelFile.IsEmpty()) {
        return;
    }
    if (!cIO::LoadModel(ModelFile, &m_Model) || m_Model.GetTriangleCount() == 0) {
        m_Model.Free();
        cLog::Warning("There is no model to be had from \"%s\".", ModelFile.Text());
        return;
    }
    FindMaterials(&m_Model);
    m_Posed = m_Model;
    if (!m_Model.Static) {
        m_Model.GoToBindPose(&m_Posed);
        m_Posed.Static = true;
    }
    m_Posed.UpdateBounds();
}

void cWorkbenchModel::LoadAnim() {
    m_LoadedAnim = AnimFile;
    m_HasAnim = !AnimFile.IsEmpty() && cIO::LoadAnim(AnimFile, &m_Anim);
    m_AnimSec = 0;
    if (!AnimFile.IsEmpty() && !m_HasAnim) {
        cLog::Warning("There is no animation to be had from \"%s\".", AnimFile.Text());
    }
}

void cWorkbenchModel::EnsureLoaded() {
    if (!(m_LoadedModel == ModelFile)) {
        LoadModel();
    }
    if (!(m_LoadedAnim == AnimFile)) {
        LoadAnim();
    }
}

void cWorkbenchModel::KeepLoaded() {
    m_LoadedModel = ModelFile;
    m_LoadedAnim = AnimFile;
}

bool cWorkbenchModel::Step(float sec) {
    EnsureLoaded();
    Transform.OnProcess();
    if (!Play || !m_HasAnim || m_Model.Static) {
        return false;
    }
    m_AnimSec = std::fmod(m_AnimSec + sec, std::max(float(m_Anim.GetDurationSec()), 0.01f));
    m_Anim.SetFrame(m_AnimSec, m_Model, &m_Joints);
    m_Model.SetAnim(m_Joints, &m_Posed);
    return true;
}

void cWorkbenchModel::Draw() {
    for (const cModel::Mesh& mesh : m_Posed.Meshes) {
        DrawMesh(mesh);
    }
}

bool cWorkbenchModel::Hit(const cSeg& ray, float* distance) {
    cMat4 inverse;
    if (!cMat4::Invert(GetPlace(), &inverse)) {
        return false;
    }
    const cVec3 from = ray.start * inverse, to = (ray.start + ray.direction) * inverse;
    return m_Posed.RayIntersection(from, to - from, distance);
}

// ---- Path

void cWorkbenchPath::RegisterMembers() {
    cClassMembers members(this);
    if (members.Begin()) {
        members.AddParent<cWorkbenchObject>();
        members.AddObject(Path, "Path");
    }
}

void cWorkbenchPath::CustomCtor() {
    const cVec3 points[] = {{9, 2, 0}, {0, 4, 9}, {-9, 6, 0}, {0, 7, -9}, {8, 9, -4}};
    Path.SetFromPoints(points, int(std::size(points)));
}

bool cWorkbenchPath::Step(float) {
    Path.Transform.OnProcess();
    Path.UpdateParent();
    return false;
}

void cWorkbenchPath::Draw() {
    if (Path.GetWidgetID() != -1) {
        return; // it shows itself
    }
    cVec3 from = Path.GetValueByTime(0);
    for (int i = 1; i <= s_Pieces; i++) {
        const cVec3 to = Path.GetValueByTime(float(i) / s_Pieces);
        cRender::DrawLine(from, to, cColor(0.15f, 0.2f, 0.55f));
        from = to;
    }
}

/// The curve is taken for as thick as a finger.
bool cWorkbenchPath::Hit(const cSeg& ray, float* distance) {
    constexpr float Reach = 0.15f;
    bool isHit = false;
    for (int i = 0; i <= s_Pieces; i++) {
        const cVec3 at = Path.GetValueByTime(float(i) / s_Pieces) * GetPlace();
        const float t = cVec3::Dot(at - ray.start, ray.direction);
        if (t > 0 && cSeg::Distance(cSeg::Ray, ray, at) < Reach && (!isHit || t < *distance)) {
            *distance = t;
            isHit = true;
        }
    }
    return isHit;
}

} // namespace trellis
