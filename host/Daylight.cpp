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
    explicit Daylight(const Layout& layout) : Daylight(layout, 1, PixelStage::Color) {}
    static std::unique_ptr<cSoftwareShader> Make(const Layout& layout, const char*) {
        auto shader = std::make_unique<Daylight>(layout);
        return shader->m_Pos >= 0 && shader->m_Normal >= 0 ? std::move(shader) : nullptr;
    }

    void Vertices(const unsigned char* vertices, int count, Vertex* out) const override {
        Light(vertices, count, out, [](const unsigned char*, Vertex*) {});
    }

protected:
    Daylight(const Layout& layout, int varyings, PixelStage stage)
        : cSoftwareShader(varyings, stage), m_Size(layout.Size), m_Pos(layout.OffsetOf("Pos", cVertexType::Float, 3)),
          m_Normal(layout.OffsetOf("Normal", cVertexType::Float, 3)) {
        Declare("g_WorldViewProjectionMatrix", &m_Matrix);
        Declare("g_NormalMatrix", &m_NormalMatrix);
        Declare("c_Color", &m_Color);
    }

    /// @param more  called with the bytes of each vertex, for further varyings
    template <class F> void Light(const unsigned char* vertices, int count, Vertex* out, F more) const {
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
            more(vertices, &out[i]);
        }
    }

private:
    int m_Size, m_Pos, m_Normal;
    cMat4 m_Matrix = cMat4::Identity;
    cMat3 m_NormalMatrix = cMat3::Identity;
    cVec4 m_Color{1, 1, 1, 1};
};

/// Times a picture.
class TexturedDaylight : public Daylight {
public:
    explicit TexturedDaylight(const Layout& layout)
        : Daylight(layout, 2, PixelStage::Plain), m_TexCoord(layout.OffsetOf("TexCoord", cVertexType::Float, 2)) {
        Declare("s_Diffuse", &m_Diffuse);
    }
    static std::unique_ptr<cSoftwareShader> Make(const Layout& layout, const char* defines) {
        auto shader = std::make_unique<TexturedDaylight>(layout);
        return shader->m_TexCoord >= 0 && Daylight::Make(layout, defines) ? std::move(shader) : nullptr;
    }

    void Vertices(const unsigned char* vertices, int count, Vertex* out) const override {
        Light(vertices, count, out, [this](const unsigned char* bytes, Vertex* v) {
            float uv[2];
            std::memcpy(uv, bytes + m_TexCoord, sizeof uv);
            v->Varyings[1] = cVec4(uv[0], uv[1], 0, 0);
        });
    }
    void Pixels(Span& span) const override {
        m_Diffuse.Sample(span.Varyings[1], span.Count, span.Colors);
        for (int i = 0; i < span.Count; i++) {
            span.Colors[i] = span.Colors[i] * span.Varyings[0][i];
        }
    }

private:
    int m_TexCoord;
    cSoftwareSampler m_Diffuse;
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
    cSoftwareShader::Register("TexturedDaylight", TexturedDaylight::Make);
}

void DrawInDaylight(const cModel::Mesh& mesh, const cColor& color, int texture) {
    struct Look {
        explicit Look(const char* name) : Shader(cRender::GetShaderID(name, cVertex::Bump::FormatID)) {
            Color = cRender::GetShaderConstID(Shader, "c_Color");
        }
        int Shader, Color;
    };
    static const Look s_Plain("Daylight"), s_Textured("TexturedDaylight");
    static const int s_Diffuse = cRender::GetSamplerID(s_Textured.Shader, "s_Diffuse");
    const Look& look = texture == -1 ? s_Plain : s_Textured;
    cRender::SetShader(look.Shader);
    cRender::SetShaderConst(look.Color, color);
    if (texture != -1) {
        cRender::SetTexture(s_Diffuse, texture);
    }
    cRender::ApplyTransforms();
    cRender::DrawIndexed(cTopology::TriangleList, mesh.BumpVertices.Data(), mesh.BumpVertices.Count(),
                         mesh.Indices.Data(), mesh.Indices.Count(), 4);
}

} // namespace trellis
