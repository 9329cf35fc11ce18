#include "host/Daylight.h"

#include "host/cSoftwareShader.h"
#include "render/cRender.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace trellis {

namespace {

class Daylight : public cSoftwareShader {
public:
    explicit Daylight(const Layout& layout)
        : cSoftwareShader(1, PixelStage::Color), m_Size(layout.Size),
          m_Pos(layout.OffsetOf("Pos", cVertexType::Float, 3)),
          m_Normal(layout.OffsetOf("Normal", cVertexType::Float, 3)) {
        Declare("g_WorldViewProjectionMatrix", &m_Matrix);
        Declare("g_NormalMatrix", &m_NormalMatrix);
        Declare("c_Color", &m_Color);
    }
    static std::unique_ptr<cSoftwareShader> Make(const Layout& layout, const char*) {
        auto shader = std::make_unique<Daylight>(layout);
        return shader->m_Pos >= 0 && shader->m_Normal >= 0 ? std::move(shader) : nullptr;
    }

    void Vertices(const unsigned char* vertices, int count, Vertex* out) const override {
        const cVec3 sun = cVec3::Normalize({0.5f, 0.8f, 0.6f});
        for (int i = 0; i < count; i++, vertices += m_Size) {
            cVec3 pos, normal;
            std::memcpy(&pos, vertices + m_Pos, sizeof pos);
            std::memcpy(&normal, vertices + m_Normal, sizeof normal);
            normal = cVec3::Normalize(normal * m_NormalMatrix);
            const float light = 0.35f + 0.15f * normal.y + 0.6f * std::max(cVec3::Dot(normal, sun), 0.0f);
            out[i].Clip = cVec4(pos, 1) * m_Matrix;
            out[i].Varyings[0] = cVec4(std::min(m_Color.x * light, 1.0f), std::min(m_Color.y * light, 1.0f),
                                       std::min(m_Color.z * light, 1.0f), 1);
        }
    }

private:
    int m_Size, m_Pos, m_Normal;
    cMat4 m_Matrix = cMat4::Identity;
    cMat3 m_NormalMatrix = cMat3::Identity;
    cVec4 m_Color{1, 1, 1, 1};
};

constexpr struct {
    const char* Name;
    cColor Color;
} s_Materials[] = {
    {"white", {0.92f, 0.9f, 0.86f, 1}}, {"red", {0.75f, 0.16f, 0.12f, 1}},  {"iron", {0.25f, 0.27f, 0.3f, 1}},
    {"rock", {0.45f, 0.42f, 0.38f, 1}}, {"reed", {0.45f, 0.62f, 0.25f, 1}}, {"glass", {0.98f, 0.86f, 0.45f, 1}},
};

} // namespace

cColor DaylightColorOf(const char* material) {
    for (const auto& m : s_Materials) {
        if (std::strcmp(material, m.Name) == 0) {
            return m.Color;
        }
    }
    return {0.7f, 0.7f, 0.72f, 1};
}

void RegisterDaylight() {
    cSoftwareShader::Register("Daylight", Daylight::Make);
}

void DrawInDaylight(const cModel::Mesh& mesh, const cColor& color) {
    static const int s_Shader = cRender::GetShaderID("Daylight", cVertex::Bump::FormatID);
    static const int s_Color = cRender::GetShaderConstID(s_Shader, "c_Color");
    cRender::SetShader(s_Shader);
    cRender::SetShaderConst(s_Color, color);
    cRender::ApplyTransforms();
    cRender::DrawIndexed(cTopology::TriangleList, mesh.BumpVertices.Data(), mesh.BumpVertices.Count(),
                         mesh.Indices.Data(), mesh.Indices.Count(), 4);
}

} // namespace trellis
