// The shaders that every device knows.
#include "host/cSoftwareShaders.h"

namespace trellis {

namespace {

/// Position and colour of a vertex, for the shaders that let the colour through.
class ColorShader : public cSoftwareShader {
public:
    explicit ColorShader(const Layout& layout)
        : cSoftwareShader(1, PixelStage::Color), m_Size(layout.Size),
          m_Pos(layout.OffsetOf("Pos", cVertexType::Float, 3)),
          m_Color(layout.OffsetOf("Color", cVertexType::Byte, 4)) {}

    bool IsUsable() const { return m_Pos >= 0 && m_Color >= 0; }

protected:
    void Transform(const unsigned char* vertices, int count, const cMat4& m, Vertex* out) const {
        for (int i = 0; i < count; i++, vertices += m_Size) {
            cVec3 pos;
            std::memcpy(&pos, vertices + m_Pos, sizeof pos);
            out[i].Clip = cVec4(pos, 1) * m;
            out[i].Varyings[0] = cSoftwareShaders::ReadColor(vertices + m_Color);
        }
    }

private:
    int m_Size, m_Pos, m_Color;
};

/// In the world.
class Colored : public ColorShader {
public:
    explicit Colored(const Layout& layout) : Colored(layout, "g_WorldViewProjectionMatrix") {}
    void Vertices(const unsigned char* vertices, int count, Vertex* out) const override {
        Transform(vertices, count, m_Matrix, out);
    }

protected:
    Colored(const Layout& layout, const char* matrix) : ColorShader(layout) { Declare(matrix, &m_Matrix); }

private:
    cMat4 m_Matrix = cMat4::Identity;
};

/// The same by a matrix that is set by hand.
class Grid : public Colored {
public:
    explicit Grid(const Layout& layout) : Colored(layout, "c_WorldViewProjectionMatrix") {}
};

/// In points of the screen.
class ColoredUI : public ColorShader {
public:
    explicit ColoredUI(const Layout& layout) : ColorShader(layout) {
        Declare("g_WorldMatrix", &m_World);
        Declare("g_ScreenMatrix", &m_Screen);
    }
    void Vertices(const unsigned char* vertices, int count, Vertex* out) const override {
        Transform(vertices, count, m_World * m_Screen, out);
    }

private:
    cMat4 m_World, m_Screen;
};

template <class T> std::unique_ptr<cSoftwareShader> Make(const cSoftwareShader::Layout& layout, const char*) {
    auto shader = std::make_unique<T>(layout);
    if (!shader->IsUsable()) {
        return nullptr;
    }
    return shader;
}

} // namespace

void cSoftwareShader::RegisterBuiltIn() {
    const auto add = [](const char* name, Factory factory) {
        if (!Find(name)) {
            Register(name, factory);
        }
    };
    add("Colored", Make<Colored>);
    add("Grid", Make<Grid>);
    add("LinesPointsUI", Make<ColoredUI>);
    add("SolidUI", Make<ColoredUI>);
    cSoftwareShaders::RegisterInterface(add);
}

} // namespace trellis
