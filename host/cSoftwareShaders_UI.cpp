// The shaders of the interface: gradients, textures, icons and text, in points of the screen.
#include "host/cSoftwareShaders.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace trellis {

namespace {

float Clamp01(float v) {
    return std::clamp(v, 0.0f, 1.0f);
}

/// Whether the defines hold a name as a line of its own: "SRC_1D" is not in "#define SRC_1DX".
bool Defines(const char* defines, const char* name) {
    cList<cStr> tokens;
    cStr::Split(defines, &tokens, " \t\r\n");
    return tokens.IndexOf(name) != -1;
}

/// Vertices by world and screen. What rides in z is no depth.
class InterfaceShader : public cSoftwareShader {
public:
    bool IsUsable() const { return m_Pos >= 0; }

protected:
    InterfaceShader(const Layout& layout, int varyings, PixelStage stage)
        : cSoftwareShader(varyings, stage), m_Size(layout.Size), m_Pos(layout.OffsetOf("Pos", cVertexType::Float, 3)) {
        Declare("g_WorldMatrix", &m_World);
        Declare("g_ScreenMatrix", &m_Screen);
    }

    /// @param each  called with the position, the bytes and the varyings of every vertex
    template <class F> void Transform(const unsigned char* vertices, int count, Vertex* out, F each) const {
        const cMat4 m = m_World * m_Screen;
        for (int i = 0; i < count; i++, vertices += m_Size) {
            cVec3 pos;
            std::memcpy(&pos, vertices + m_Pos, sizeof(pos));
            out[i].Clip = cVec4(pos.x, pos.y, 0, 1) * m;
            each(pos, vertices, out[i].Varyings);
        }
    }

private:
    int m_Size, m_Pos;
    cMat4 m_World, m_Screen;
};

/// Shaders whose pixels depend on where they are: the varying is the position in points, before the world matrix, so
/// that a swollen button is the same shape, only larger.
class PositionShader : public InterfaceShader {
public:
    explicit PositionShader(const Layout& layout) : InterfaceShader(layout, 1, PixelStage::Own) {}
    void Vertices(const unsigned char* vertices, int count, Vertex* out) const override {
        Transform(vertices, count, out,
                  [](const cVec3& pos, const unsigned char*, cVec4* v) { v[0] = cVec4(pos.x, pos.y, 0, 0); });
    }
};

class Dither : public PositionShader {
public:
    Dither(const Layout& layout, const char*) : PositionShader(layout) {
        Declare("c_Orig", &m_Orig);
        Declare("c_Color0", &m_Colors[0]);
        Declare("c_Color1", &m_Colors[1]);
    }
    void Pixels(Span& span) const override {
        for (int i = 0; i < span.Count; i++) {
            const cVec4& at = span.Varyings[0][i];
            const float sum = std::floor(at.x - m_Orig.x) + std::floor(at.y - m_Orig.y);
            span.Colors[i] = m_Colors[std::fmod(sum, 2.0f) != 0];
        }
    }

private:
    cVec2 m_Orig{0, 0};
    cVec4 m_Colors[2] = {};
};

class RadialGradient : public PositionShader {
public:
    RadialGradient(const Layout& layout, const char* defines)
        : PositionShader(layout), m_Horizontal(Defines(defines, "HORIZONTAL")) {
        Declare("c_SegFrom", &m_SegFrom);
        Declare("c_SegTo", &m_SegTo);
        Declare("c_CenterColor", &m_CenterColor);
        Declare("c_BoundColor", &m_BoundColor);
        Declare("c_SegRadius", &m_SegRadius);
        Declare("c_GradRadius", &m_GradRadius);
        Declare("c_Power", &m_Power);
        Declare("c_CaveFrom", &m_CaveFrom);
        Declare("c_CaveTo", &m_CaveTo);
        Declare("c_FlatFrom", &m_Unused[0]);
        Declare("c_FlatTo", &m_Unused[1]);
        Declare("c_HalfFrom", &m_Unused[2]);
        Declare("c_HalfTo", &m_Unused[3]);
        Declare("c_HalfFlat", &m_HalfFlat);
    }
    void Pixels(Span& span) const override {
        if (m_HalfFlat > 0) {
            Cave(span);
        } else {
            Segment(span);
        }
    }

private:
    static float Distance(const cVec2& a, const cVec2& b) { return std::hypot(b.x - a.x, b.y - a.y); }

    /// The amount of the second colour at an even share of the way. @param width  of the way, above 0 to be one
    float Mix(float way, float width) const {
        const float t = width > 0 ? Clamp01(way / width) : way > 0 ? 1.0f : 0.0f;
        return m_Power == 1 ? t : std::pow(t, m_Power);
    }

    void Segment(Span& span) const {
        const cVec2 along = m_SegTo - m_SegFrom;
        const float lengthSq = m_Horizontal ? along.x * along.x : cVec2::Dot(along, along);
        for (int i = 0; i < span.Count; i++) {
            const cVec2 at(span.Varyings[0][i].x, span.Varyings[0][i].y);
            const cVec2 from = at - m_SegFrom;
            const float along1 = m_Horizontal ? from.x * along.x : cVec2::Dot(from, along);
            const float t = lengthSq > 0 ? Clamp01(along1 / lengthSq) : 0;
            const cVec2 foot = m_Horizontal ? cVec2(m_SegFrom.x + along.x * t, m_SegFrom.y) : m_SegFrom + along * t;
            const float d = Distance(at, foot);
            const float mix = Mix(d - m_SegRadius, m_GradRadius - m_SegRadius);
            span.Colors[i] = m_CenterColor + (m_BoundColor - m_CenterColor) * mix;
            span.Colors[i].w *= Clamp01(m_GradRadius - d + 0.5f);
        }
    }

    void Cave(Span& span) const {
        for (int i = 0; i < span.Count; i++) {
            const cVec2 at(span.Varyings[0][i].x, span.Varyings[0][i].y);
            const float d = std::min(Distance(at, m_CaveFrom), Distance(at, m_CaveTo)) - m_SegRadius;
            span.Colors[i] = m_BoundColor + (m_CenterColor - m_BoundColor) * Mix(d, m_GradRadius);
            span.Colors[i].w *= Clamp01(d + 0.5f);
        }
    }

    bool m_Horizontal;
    cVec2 m_SegFrom{0, 0}, m_SegTo{0, 0}, m_CaveFrom{0, 0}, m_CaveTo{0, 0};
    cVec2 m_Unused[4] = {}; // the circles say all of the shape
    cVec4 m_CenterColor{}, m_BoundColor{};
    float m_SegRadius = 0, m_GradRadius = 0, m_Power = 1;
    float m_HalfFlat = 0;
};

/// Shaders with a texture: the first varying is the colour, the second u, v and the slice.
class TextureShader : public InterfaceShader {
public:
    TextureShader(const Layout& layout, const char* sampler)
        : InterfaceShader(layout, 2, PixelStage::Plain), m_Color(layout.OffsetOf("Color", cVertexType::Byte, 4)),
          m_TexCoord(layout.OffsetOf("TexCoord", cVertexType::Float, 2)) {
        Declare(sampler, &m_Sampler);
    }
    bool IsUsable() const { return InterfaceShader::IsUsable() && m_Color >= 0 && m_TexCoord >= 0; }

    void Vertices(const unsigned char* vertices, int count, Vertex* out) const override {
        Transform(vertices, count, out, [this](const cVec3& pos, const unsigned char* bytes, cVec4* v) {
            v[0] = cSoftwareShaders::ReadColor(bytes + m_Color);
            float uv[2];
            std::memcpy(uv, bytes + m_TexCoord, sizeof(uv));
            v[1] = cVec4(uv[0], uv[1], pos.z, 0);
        });
    }

protected:
    cSoftwareSampler m_Sampler;

private:
    int m_Color, m_TexCoord;
};

class Icon : public TextureShader {
public:
    Icon(const Layout& layout, const char*) : TextureShader(layout, "s_Decal") {
        Declare("c_Disabled", &m_Disabled);
        Declare("c_Hot", &m_Hot);
        Declare("c_Alpha", &m_Alpha);
    }
    void Pixels(Span& span) const override {
        m_Sampler.Sample(span.Varyings[1], span.Count, span.Colors);
        for (int i = 0; i < span.Count; i++) {
            cVec4& c = span.Colors[i];
            c = cVec4(c.x * span.Varyings[0][i].x, c.y * span.Varyings[0][i].y, c.z * span.Varyings[0][i].z,
                      c.w * span.Varyings[0][i].w * m_Alpha);
            if (m_Disabled > 0) {
                const float gray = 0.299f * c.x + 0.587f * c.y + 0.114f * c.z;
                c = cVec4(gray, gray, gray, c.w / 2);
            }
            if (m_Hot > 0) {
                c = cVec4(c.x + (1 - c.x) / 4, c.y + (1 - c.y) / 4, c.z + (1 - c.z) / 4, c.w);
            }
        }
    }

private:
    float m_Disabled = 0, m_Hot = 0, m_Alpha = 1;
};

class Textured : public TextureShader {
public:
    Textured(const Layout& layout, const char* defines)
        : TextureShader(layout, "s_Src"), m_Cube(Defines(defines, "SRC_CUBE")),
          m_Overrides(Defines(defines, "OVERRIDE_ALPHA")), m_AlphaAsColor(Defines(defines, "ALPHA_CHANNEL_AS_COLOR")) {
        Declare("c_Alpha", &m_Alpha);
        Declare("c_FaceIndex", &m_Face);
    }
    void Pixels(Span& span) const override {
        if (m_Cube) {
            m_Sampler.SampleSlice(m_Face, span.Varyings[1], span.Count, span.Colors);
        } else {
            m_Sampler.Sample(span.Varyings[1], span.Count, span.Colors);
        }
        for (int i = 0; i < span.Count; i++) {
            cVec4& c = span.Colors[i];
            if (m_AlphaAsColor) {
                c = cVec4(c.w, c.w, c.w, 1);
            }
            if (m_Overrides) {
                c.w = m_Alpha;
            }
        }
    }

private:
    bool m_Cube, m_Overrides, m_AlphaAsColor;
    float m_Alpha = 1;
    int m_Face = 0;
};

class Font : public TextureShader {
public:
    Font(const Layout& layout, const char*) : TextureShader(layout, "s_Glyphs") {}
    void Pixels(Span& span) const override {
        m_Sampler.Sample(span.Varyings[1], span.Count, span.Colors);
        for (int i = 0; i < span.Count; i++) {
            const float ink = span.Colors[i].x * span.Colors[i].w;
            span.Colors[i] = span.Varyings[0][i];
            span.Colors[i].w *= ink;
        }
    }
};

template <class T> std::unique_ptr<cSoftwareShader> Make(const cSoftwareShader::Layout& layout, const char* defines) {
    auto shader = std::make_unique<T>(layout, defines);
    return shader->IsUsable() ? std::move(shader) : nullptr;
}

} // namespace

void cSoftwareShaders::RegisterInterface(void (*add)(const char* name, cSoftwareShader::Factory factory)) {
    add("DitherUI", Make<Dither>);
    add("RadialGradientUI", Make<RadialGradient>);
    add("IconUI", Make<Icon>);
    add("TexturedUI", Make<Textured>);
    add("Font", Make<Font>);
}

} // namespace trellis
