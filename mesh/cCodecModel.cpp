#include "mesh/cCodecModel.h"

#include <algorithm>
#include <climits>
#include <cstring>

#include "files/cNativeFile.h"
#include "mesh/cModel.h"

namespace trellis {

namespace {

constexpr unsigned short s_Magic = 0x6D63;
constexpr unsigned char s_Version = 0;
constexpr float s_One = 32767.0f; // of a quantised value
constexpr int s_MaxVertices = 65536;

// The least that each takes in a file, and what a vertex takes.
constexpr int s_JointBytes = 22, s_MeshBytes = 12;
constexpr int s_BumpBytes = 38, s_AnimBytes = 50;

bool ReadJoint(const cFile& file, int joints, cModel::Joint* out) {
    short parent;
    cQuat& q = out->Orientation;
    if (!cNativeFile::ReadName(file, &out->Name) || !file.ReadShort(&parent) || parent < -1 || parent >= joints ||
        !file.ReadVec3(&out->Position) || !cNativeFile::ReadUnits(file, q.ToPtr(), 3)) {
        return false;
    }
    out->Parent = parent;
    q.w = cNativeFile::RestoreW(q);
    return true;
}

bool ReadIndices(const cFile& file, cList<int>* out) {
    int count;
    if (!file.ReadInt(&count) || !cNativeFile::IsCount(file, count, 2)) {
        return false;
    }
    out->SetCount(count);
    const unsigned char* p = file.GetBytes().Data() + file.GetPos();
    for (int i = 0; i < count; i++, p += 2) {
        (*out)[i] = p[0] | p[1] << 8;
    }
    file.SetPos(file.GetPos() + count * 2);
    return true;
}

const unsigned char* TakeFloats(const unsigned char* p, float* out, int count) {
    std::memcpy(out, p, size_t(count) * sizeof(float));
    return p + count * 4;
}

/// @tparam Count  known to the compiler, which then takes four at a time
template <int Count> const unsigned char* TakeQuantised(const unsigned char* p, float* out) {
    short v[Count];
    std::memcpy(v, p, sizeof(v));
    for (int i = 0; i < Count; i++) {
        out[i] = float(v[i]) / s_One;
    }
    return p + sizeof(v);
}

const unsigned char* TakeVertex(const unsigned char* p, cVertex::Bump* out) {
    p = TakeFloats(p, out->Pos.ToPtr(), 3);
    p = TakeFloats(p, out->TexCoord.ToPtr(), 2);
    float v[9]; // of the three vectors, which do not stand together in a vertex
    p = TakeQuantised<8>(p, v);
    p = TakeQuantised<1>(p, v + 8);
    out->Normal = {v[0], v[1], v[2]};
    out->Tangent = {v[3], v[4], v[5]};
    out->BiTangent = {v[6], v[7], v[8]};
    return p;
}

const unsigned char* TakeVertex(const unsigned char* p, cVertex::Anim* out) {
    p = TakeVertex(p, static_cast<cVertex::Bump*>(out));
    for (int i = 0; i < 4; i++) {
        out->Indices[i] = float(*p++);
    }
    return TakeQuantised<4>(p, out->Weights.ToPtr());
}

/// Joints of the model that a vertex counts on.
bool HasJoints(const cVertex::Bump&, int) {
    return true;
}
bool HasJoints(const cVertex::Anim& vertex, int joints) {
    for (int i = 0; i < 4; i++) {
        if (vertex.Weights[i] != 0 && vertex.Indices[i] >= float(joints)) {
            return false;
        }
    }
    return true;
}

template <class Vertex> bool ReadVertices(const cFile& file, int size, int joints, cList<Vertex>* out) {
    int count;
    if (!file.ReadInt(&count) || !cNativeFile::IsCount(file, count, size)) {
        return false;
    }
    out->SetCount(count);
    const unsigned char* p = file.GetBytes().Data() + file.GetPos();
    for (Vertex& vertex : *out) {
        p = TakeVertex(p, &vertex);
        if (!HasJoints(vertex, joints)) {
            return false;
        }
    }
    file.SetPos(file.GetPos() + count * size);
    return true;
}

bool ReadMesh(const cFile& file, const cModel& model, cModel::Mesh* out) {
    const int joints = model.Joints.Count();
    if (!cNativeFile::ReadName(file, &out->Name) || !cNativeFile::ReadName(file, &out->MaterialName) ||
        !ReadIndices(file, &out->Indices) ||
        !(model.Static ? ReadVertices(file, s_BumpBytes, joints, &out->BumpVertices)
                       : ReadVertices(file, s_AnimBytes, joints, &out->AnimVertices))) {
        return false;
    }
    int most = -1;
    for (const int index : out->Indices) {
        most = std::max(most, index);
    }
    return most < (model.Static ? out->BumpVertices.Count() : out->AnimVertices.Count());
}

bool cCodecModelDecode(const cFile& file, cModel* out) {
    unsigned short magic;
    unsigned char version, isStatic;
    short joints, meshes;
    if (!file.ReadWord(&magic) || magic != s_Magic || !cNativeFile::ReadByte(file, &version) || version != s_Version ||
        !file.ReadShort(&joints) || !cNativeFile::IsCount(file, joints, s_JointBytes)) {
        return false;
    }
    out->Joints.SetCount(joints);
    for (cModel::Joint& joint : out->Joints) {
        if (!ReadJoint(file, joints, &joint)) {
            return false;
        }
    }
    if (!file.ReadShort(&meshes) || !cNativeFile::ReadByte(file, &isStatic) || isStatic > 1 ||
        !cNativeFile::IsCount(file, meshes, s_MeshBytes)) {
        return false;
    }
    out->Static = isStatic == 1;
    out->Meshes.SetCount(meshes);
    for (cModel::Mesh& mesh : out->Meshes) {
        if (!ReadMesh(file, *out, &mesh)) {
            return false;
        }
    }
    cVec3 min, max;
    if (!file.ReadVec3(&min) || !file.ReadVec3(&max)) {
        return false;
    }
    out->Bounds = cBounds(min, max);
    return true;
}

bool WriteJoint(cFile* out, const cModel::Joint& joint, int joints) {
    if (joint.Parent < -1 || joint.Parent >= joints || !cNativeFile::WriteName(out, joint.Name)) {
        return false;
    }
    out->WriteShort(short(joint.Parent));
    out->WriteVec3(joint.Position);
    const cQuat q = cNativeFile::WithoutSign(joint.Orientation);
    cNativeFile::WriteUnits(out, q.ToPtr(), 3);
    return true;
}

bool WriteVertex(cFile* out, const cVertex::Bump& vertex) {
    out->WriteVec3(vertex.Pos);
    out->WriteFloat(vertex.TexCoord.x);
    out->WriteFloat(vertex.TexCoord.y);
    cNativeFile::WriteUnits(out, vertex.Normal.ToPtr(), 3);
    cNativeFile::WriteUnits(out, vertex.Tangent.ToPtr(), 3);
    cNativeFile::WriteUnits(out, vertex.BiTangent.ToPtr(), 3);
    return true;
}

bool WriteVertex(cFile* out, const cVertex::Anim& vertex) {
    WriteVertex(out, static_cast<const cVertex::Bump&>(vertex));
    unsigned char indices[4];
    for (int i = 0; i < 4; i++) {
        const int index = cMath::TruncateToInt(vertex.Indices[i]);
        if (index < 0 || index > UCHAR_MAX) {
            return false;
        }
        indices[i] = (unsigned char)index;
    }
    out->WriteBytes(indices, 4);
    cNativeFile::WriteUnits(out, vertex.Weights.ToPtr(), 4);
    return true;
}

template <class Vertex>
bool WriteGeometry(cFile* out, const cList<int>& indices, const cList<Vertex>& vertices, int joints) {
    if (vertices.Count() > s_MaxVertices) {
        return false;
    }
    out->WriteInt(indices.Count());
    for (const int index : indices) {
        if (index < 0 || index >= vertices.Count()) {
            return false;
        }
        out->WriteWord((unsigned short)index);
    }
    out->WriteInt(vertices.Count());
    for (const Vertex& vertex : vertices) {
        if (!HasJoints(vertex, joints) || !WriteVertex(out, vertex)) {
            return false;
        }
    }
    return true;
}

} // namespace

bool cCodecModel::Decode(const cFile& file, cModel* out) {
    out->Free();
    if (!cCodecModelDecode(file, out)) {
        out->Free();
        return false;
    }
    return true;
}

bool cCodecModel::Encode(const cModel& model, cFile* out) {
    const int joints = model.Joints.Count();
    if (joints > SHRT_MAX || model.Meshes.Count() > SHRT_MAX) {
        return false;
    }
    out->WriteWord(s_Magic);
    out->WriteBytes(&s_Version, 1);
    out->WriteShort(short(joints));
    for (const cModel::Joint& joint : model.Joints) {
        if (!WriteJoint(out, joint, joints)) {
            return false;
        }
    }
    out->WriteShort(short(model.Meshes.Count()));
    const unsigned char isStatic = model.Static;
    out->WriteBytes(&isStatic, 1);
    for (const cModel::Mesh& mesh : model.Meshes) {
        if (!cNativeFile::WriteName(out, mesh.Name) || !cNativeFile::WriteName(out, mesh.MaterialName) ||
            !(model.Static ? WriteGeometry(out, mesh.Indices, mesh.BumpVertices, joints)
                           : WriteGeometry(out, mesh.Indices, mesh.AnimVertices, joints))) {
            return false;
        }
    }
    const cBounds& box = model.Bounds;
    for (const float v : {box.min[0], box.min[1], box.min[2], box.max[0], box.max[1], box.max[2]}) {
        out->WriteFloat(v);
    }
    return true;
}

} // namespace trellis
