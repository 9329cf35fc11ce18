#include "mesh/cModel.h"
#include "render/cRender.h"

namespace trellis {

void cModel::Mesh::FreeRenderBuffers() {
    if (VertexBufferID != -1) {
        cRender::FreeVertexBuffer(VertexBufferID);
        VertexBufferID = -1;
    }
    if (IndexBufferID != -1) {
        cRender::FreeIndexBuffer(IndexBufferID);
        IndexBufferID = -1;
    }
}

void cModel::FreeRenderBuffers() {
    for (Mesh& mesh : Meshes) {
        mesh.FreeRenderBuffers();
    }
}

void cModel::CreateRenderBuffers() {
    FreeRenderBuffers();
    if (!cRender::GetInstance()) {
        return; // programs without a picture load models, too
    }
    for (Mesh& mesh : Meshes) {
        if (mesh.Indices.IsEmpty()) {
            continue;
        }
        const void* vertices = mesh.BumpVertices.Data();
        unsigned bytes = unsigned(mesh.BumpVertices.Count()) * unsigned(sizeof(cVertex::Bump));
        if (!Static) {
            vertices = mesh.AnimVertices.Data();
            bytes = unsigned(mesh.AnimVertices.Count()) * unsigned(sizeof(cVertex::Anim));
        }
        mesh.VertexBufferID = cRender::AddVertexBuffer(vertices, bytes);
        mesh.IndexBufferID = cRender::AddIndexBuffer(mesh.Indices.Data(), mesh.Indices.Count(), int(sizeof(int)));
    }
}

void cModel::Draw(int meshIndex) const {
    if (meshIndex == -1) {
        for (int i = 0; i < Meshes.Count(); i++) {
            Draw(i);
        }
        return;
    }
    if (meshIndex < 0 || meshIndex >= Meshes.Count()) {
        return;
    }
    const Mesh& mesh = Meshes[meshIndex];
    const int indices = mesh.Indices.Count();
    const int bumps = mesh.BumpVertices.Count();
    const int anims = mesh.AnimVertices.Count();
    if (indices == 0 || (bumps == 0 && anims == 0)) {
        return;
    }
    if (mesh.VertexBufferID != -1 && mesh.IndexBufferID != -1) {
        cRender::SetVertexBuffer(mesh.VertexBufferID);
        cRender::SetIndexBuffer(mesh.IndexBufferID);
        cRender::DrawIndexed(cTopology::TriangleList);
        return;
    }
    // Bump vertices of a skinned model are its pose, which its anim vertices have yet to take.
    const void* vertices = bumps > 0 ? static_cast<const void*>(mesh.BumpVertices.Data()) : mesh.AnimVertices.Data();
    cRender::DrawIndexed(cTopology::TriangleList, vertices, bumps > 0 ? bumps : anims, mesh.Indices.Data(), indices,
                         int(sizeof(int)));
}

void cModel::DrawJoints(bool names) const {
    for (const Joint& joint : Joints) {
        if (joint.Parent >= 0) {
            cRender::DrawLine(joint.Position, Joints[joint.Parent].Position, cColor::White);
        }
    }
    if (!names) {
        return;
    }
    static const int font = cRender::GetFontID("Calibri 11");
    const cMat4 world = cRender::GetWorldMatrix();
    cRender::PushWorldMatrix();
    cRender::SetWorldMatrix(cMat4::Identity); // text takes points of the world
    for (const Joint& joint : Joints) {
        const cVec4 at = cVec4(joint.Position, 1) * world;
        const cVec3 place = at.ToVec3();
        cRender::DrawString(font, joint.Name, at.w != 1 ? place / at.w : place, cColor::Blue);
    }
    cRender::PopWorldMatrix();
}

void cModel::DrawTangentSpace(bool normals, bool tangents, float length) const {
    static const int shader = cRender::GetShaderID("Colored", cVertex::PositionColored::FormatID);
    static cList<cVertex::PositionColored> s_Lines; // kept for its storage

    s_Lines.Clear();
    const auto addLine = [length](const cVec3& from, const cVec3& direction, const cColor& color) {
        s_Lines.Add({from, color.ToDword()});
        s_Lines.Add({from + direction * length, color.ToDword()});
    };
    const auto addLines = [&](const auto& vertices) {
        for (const auto& v : vertices) {
            if (tangents) {
                addLine(v.Pos, v.Tangent, cColor::Red);
                addLine(v.Pos, v.BiTangent, cColor::Green);
            }
            if (normals) {
                addLine(v.Pos, v.Normal, cColor::Blue);
            }
        }
    };
    for (const Mesh& mesh : Meshes) {
        if (Static) {
            addLines(mesh.BumpVertices);
        } else {
            addLines(mesh.AnimVertices);
        }
    }
    if (!s_Lines.IsEmpty()) {
        cRender::SetShader(shader);
        cRender::DrawArrays(cTopology::LineList, s_Lines.Data(), s_Lines.Count());
    }
}

} // namespace trellis
