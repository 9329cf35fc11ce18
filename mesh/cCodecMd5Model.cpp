#include "mesh/cCodecMd5Model.h"

#include <algorithm>

#include "math/cMat3.h"
#include "mesh/cCodecMd5.h"
#include "mesh/cModel.h"

namespace trellis {

namespace {

using Lines = cCodecMd5_Lines;

// Bytes of the shortest lines that each kind of element takes.
constexpr int s_JointBytes = 16, s_MeshBytes = 6, s_VertexBytes = 15, s_TriangleBytes = 12, s_WeightBytes = 19;

// Sorting takes the square of this at its worst. A skeleton gives a vertex a handful.
constexpr int s_MaxWeights = 256;

/// A vertex's share of a joint.
struct cCodecMd5_JointValue {
    int Joint;
    float Value;

    static int Compare(const cCodecMd5_JointValue* a, const cCodecMd5_JointValue* b) { // the largest first
        return a->Value > b->Value ? -1 : a->Value < b->Value;
    }
};

struct Weight {
    int Joint;
    float Bias;
    cVec3 Position; // in the joint's space
};

struct Vertex {
    cVec2 TexCoord;
    int First, Count; // of its weights
    cVec3 Position;
};

class cCodecMd5_Mesh {
public:
    /// @return false for a bad line, and at the end of the file
    bool Load(Lines& lines) {
        return lines.ForBlock(cCodecMd5_BlanksAndMarks, [&] { return LoadLine(lines); });
    }

    /// Whether all that the mesh names is there. Lists may be sized behind the lines that name their elements.
    bool Check(int joints) const {
        for (const Vertex& vertex : Vertices) {
            if (vertex.First < 0 || vertex.Count < 0 || vertex.Count > s_MaxWeights ||
                vertex.First > Weights.Count() - vertex.Count) {
                return false;
            }
        }
        for (const cVec<int, 3>& triangle : Triangles) {
            for (int i = 0; i < 3; i++) {
                if (triangle[i] < 0 || triangle[i] >= Vertices.Count()) {
                    return false;
                }
            }
        }
        for (const Weight& weight : Weights) {
            if (weight.Joint < 0 || weight.Joint >= joints) {
                return false;
            }
        }
        return true;
    }

    cStr Shader;
    cList<Vertex> Vertices;
    cList<cVec<int, 3>> Triangles;
    cList<Weight> Weights;

private:
    bool LoadLine(Lines& lines) {
        if (lines.Is("shader")) {
            if (lines.Count() < 2) {
                return false;
            }
            Shader = lines[1];
        } else if (lines.Is("numverts")) {
            return lines.GetCount(s_VertexBytes, &Vertices);
        } else if (lines.Is("vert")) {
            Vertex* v = lines.GetElement(Vertices);
            return v && lines.Get(2, &v->TexCoord.x) && lines.Get(3, &v->TexCoord.y) && lines.Get(4, &v->First) &&
                   lines.Get(5, &v->Count);
        } else if (lines.Is("numtris")) {
            return lines.GetCount(s_TriangleBytes, &Triangles);
        } else if (lines.Is("tri")) {
            cVec<int, 3>* t = lines.GetElement(Triangles);
            return t && lines.Get(2, &(*t)[0]) && lines.Get(3, &(*t)[1]) && lines.Get(4, &(*t)[2]);
        } else if (lines.Is("numweights")) {
            return lines.GetCount(s_WeightBytes, &Weights);
        } else if (lines.Is("weight")) {
            Weight* w = lines.GetElement(Weights);
            return w && lines.Get(2, &w->Joint) && lines.Get(3, &w->Bias) && lines.Get(4, &w->Position);
        }
        return true; // of no use here
    }
};

class cCodecMd5_Model {
public:
    bool Load(const cFile& file) {
        Lines lines(file);
        int joints = 0, meshes = 0; // read so far
        while (lines.Next(cCodecMd5_Blanks)) {
            if (lines.Is("numJoints")) {
                if (!lines.GetCount(s_JointBytes, &Joints)) {
                    return false;
                }
            } else if (lines.Is("numMeshes")) {
                if (!lines.GetCount(s_MeshBytes, &Meshes)) {
                    return false;
                }
            } else if (lines.Is("joints")) {
                if (!LoadJoints(lines, &joints)) {
                    return false;
                }
            } else if (lines.Is("mesh")) {
                if (meshes >= Meshes.Count() || !Meshes[meshes++].Load(lines)) {
                    return false;
                }
            }
        }
        if (joints != Joints.Count() || meshes != Meshes.Count()) {
            return false; // the file was cut
        }
        for (const cModel::Joint& joint : Joints) {
            if (joint.Parent >= joints) {
                return false; // announced twice, the second time with fewer
            }
        }
        for (const cCodecMd5_Mesh& mesh : Meshes) {
            if (!mesh.Check(joints)) {
                return false;
            }
        }
        CalcPoints(Joints);
        return true;
    }

    /// Positions of the vertices out of those of their weights.
    void CalcPoints(const cList<cModel::Joint>& joints) {
        cList<cMat3> rotations;
        for (const cModel::Joint& joint : joints) {
            rotations.Add(joint.Orientation.ToMat3());
        }
        for (cCodecMd5_Mesh& mesh : Meshes) {
            for (Vertex& vertex : mesh.Vertices) {
                cVec3 sum = cVec3::Zero;
                for (int i = 0; i < vertex.Count; i++) {
                    const Weight& w = mesh.Weights[vertex.First + i];
                    sum += (w.Position * rotations[w.Joint] + joints[w.Joint].Position) * w.Bias;
                }
                vertex.Position = sum;
            }
        }
    }

    cList<cModel::Joint> Joints;
    cList<cCodecMd5_Mesh> Meshes;

private:
    /// @return false for a bad line, a joint past the list, and at the end of the file
    bool LoadJoints(Lines& lines, int* loaded) {
        return lines.ForBlock(cCodecMd5_BlanksAndMarks,
                              [&] { return *loaded < Joints.Count() && LoadJoint(lines, &Joints[(*loaded)++]); });
    }

    bool LoadJoint(const Lines& lines, cModel::Joint* out) const {
        cVec3 v;
        if (!lines.Get(1, &out->Parent) || out->Parent < -1 || out->Parent >= Joints.Count() ||
            !lines.Get(2, &out->Position) || !lines.Get(5, &v)) {
            return false;
        }
        out->Name = lines[0];
        out->Orientation = cCodecMd5_Orientation(v);
        return true;
    }
};

/// The four largest shares. Where there are more, the first is what the other three leave of 1.
///
/// @param shares  scratch
void SetWeights(const Vertex& vertex, const cList<Weight>& weights, cList<cCodecMd5_JointValue>* shares,
                cVertex::Anim* out) {
    shares->Clear();
    for (int i = 0; i < vertex.Count; i++) {
        const Weight& w = weights[vertex.First + i];
        shares->Add({w.Joint, w.Bias});
    }
    shares->Sort(cCodecMd5_JointValue::Compare);
    for (int i = 0; i < std::min(shares->Count(), 4); i++) {
        out->Indices[i] = float((*shares)[i].Joint);
        out->Weights[i] = (*shares)[i].Value;
    }
    if (shares->Count() > 4) {
        out->Weights[0] = 1.0f - out->Weights[1] - out->Weights[2] - out->Weights[3];
    }
}

} // namespace

bool cCodecMd5Model::Decode(const cFile& file, cModel* out) {
    out->Free();
    cCodecMd5_Model source;
    if (!source.Load(file)) {
        return false;
    }
    const cCodecMd5_Conversion conversion;
    out->Joints = std::move(source.Joints);
    for (cModel::Joint& joint : out->Joints) {
        joint.Position = conversion.Position(joint.Position);
        joint.Orientation = conversion.Orientation(joint.Orientation);
    }
    cList<cCodecMd5_JointValue> shares;
    out->Meshes.SetCount(source.Meshes.Count());
    for (int i = 0; i < source.Meshes.Count(); i++) {
        const cCodecMd5_Mesh& from = source.Meshes[i];
        cModel::Mesh& mesh = out->Meshes[i];
        mesh.MaterialName = from.Shader;
        for (const cVec<int, 3>& triangle : from.Triangles) {
            mesh.Indices.AddRange(triangle.ToPtr(), 3);
        }
        mesh.AnimVertices.SetCount(from.Vertices.Count());
        for (int k = 0; k < from.Vertices.Count(); k++) {
            cVertex::Anim& vertex = mesh.AnimVertices[k];
            vertex.Pos = conversion.Position(from.Vertices[k].Position);
            vertex.TexCoord = from.Vertices[k].TexCoord;
            SetWeights(from.Vertices[k], from.Weights, &shares, &vertex);
        }
    }
    out->Static = false;
    out->CalcNormals();
    out->CalcTangents();
    out->UpdateBounds();
    return true;
}

} // namespace trellis
