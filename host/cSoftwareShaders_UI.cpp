// The shaders of the interface: gradients, textures, icons and text, in points of the screen.
#include "host/Float4.h"
#include "host/cSoftwareShaders.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace trellis {

namespace {

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
    explicit PositionShader(const Layout& layout) : InterfaceShader(layout, 1, PixelStage::Plain) {}
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
        const Float4 origin = Float4::Load(cVec4(m_Orig.x, m_Orig.y, 0, 0));
        for (int i = 0; i < span.Count; i++) {
            int x, y;
            (Float4::Load(span.Varyings[0][i]) - origin).Split(&x, &y);
            span.Colors[i] = m_Colors[(x + y) & 1];
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
        const bool isCave = m_HalfFlat > 0;
        const Float4 base = Float4::Load(isCave ? m_BoundColor : m_CenterColor);
        const Float4 rest = Float4::Load(isCave ? m_CenterColor : m_BoundColor) - base;
        const Float4 half = Float4::All(0.5f), inner = Float4::All(m_SegRadius), outer = Float4::All(m_GradRadius);
        Float4 last = Float4::All(NAN);
        float mix[4], share[4];
        for (int i = 0; i < span.Count; i += 4) { // up to the end of the arrays
            Float4 x, y;
            Float4::Columns(&span.Varyings[0][i], &x, &y);
            const Float4 d = isCave ? CaveDistance(x, y) : SegmentDistance(x, y);
            if (Float4::Equal(d, last) != 15) { // along a bar they stay the same
                const Float4 fromInner = d - inner;
                Amount(fromInner, isCave ? m_GradRadius : m_GradRadius - m_SegRadius).Store(mix);
                ((isCave ? fromInner : outer - d) + half).Clamped().Store(share);
                last = d;
            }
            for (int k = 0; k < 4; k++) {
                (base + rest * Float4::All(mix[k])).Store(&span.Colors[i + k]);
                span.Colors[i + k].w *= share[k];
            }
        }
    }

private:
    Float4 SegmentDistance(Float4 x, Float4 y) const {
        const cVec2 along = m_SegTo - m_SegFrom;
        const Float4 fromX = Float4::All(m_SegFrom.x), fromY = Float4::All(m_SegFrom.y);
        const Float4 alongX = Float4::All(along.x), alongY = Float4::All(along.y);
        const float lengthSq = m_Horizontal ? along.x * along.x : cVec2::Dot(along, along);
        const Float4 shadow = (x - fromX) * alongX;
        Float4 t = Float4::All(0);
        if (lengthSq > 0) {
            t = ((m_Horizontal ? shadow : shadow + (y - fromY) * alongY) / Float4::All(lengthSq)).Clamped();
        }
        return Float4::Length(fromX + alongX * t - x, (m_Horizontal ? fromY : fromY + alongY * t) - y);
    }
    Float4 CaveDistance(Float4 x, Float4 y) const {
        const auto to = [&](const cVec2& p) { return Float4::Length(Float4::All(p.x) - x, Float4::All(p.y) - y); };
        return Float4::Min(to(m_CaveTo), to(m_CaveFrom));
    }

    /// Of the second colour, at an even share of the way. @param width  of the way, above 0 to be one
    Float4 Amount(Float4 way, float width) const {
        const Float4 t = (width > 0 ? way / Float4::All(width) : way * Float4::All(INFINITY)).Clamped();
        const int isBetween = Float4::Less(Float4::All(0), t) & Float4::Less(t, Float4::All(1));
        if (m_Power == 1 || (m_Power > 0 && !isBetween)) {
            return t;
        }
        if (m_Power == 2) {
            return t * t;
        }
        if (m_Power == 0.5f) {
            return Float4::Sqrt(t);
        }
        if (m_Power > 0 && m_Power <= Float4Plain::s_MaxPower) {
            return Float4::Pow(t, m_Power);
        }
        float v[4];
        t.Store(v);
        return Float4::Load(
            cVec4(std::pow(v[0], m_Power), std::pow(v[1], m_Power), std::pow(v[2], m_Power), std::pow(v[3], m_Power)));
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
