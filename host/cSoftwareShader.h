// Base class of the software device's shaders, which are C++ functions, and the registry that the device finds them in.
//
//     vertex bytes --Vertices--> clip position, varyings --raster--> spans of pixels --Pixels--> colours
#pragma once

#include "foundation/cList.h"
#include "foundation/cStr.h"
#include "host/cSoftwareTexture.h"
#include "math/cMat4.h"
#include "mesh/cVertex.h"

#include <memory>

namespace trellis {

class cRect;

/// One build of a shader: for one vertex format and one set of defines. A derived class declares its constants and
/// samplers in its constructor; they are members of it, and have their values when the two stages are called. The
/// stages change no member, write no memory but their results, and throw nothing: `Pixels` runs on several threads at
/// once, and later than the call that it belongs to, on another instance of the shader, which has the constants of that
/// call.
class cSoftwareShader {
public:
    static constexpr int MaxVaryings = 4;

    /// Colours, coordinates and so on in fours; unused ones need no value.
    struct Vertex {
        cVec4 Clip; ///< -w to w in x and y, to w in z; see cRender.h.
        cVec4 Varyings[MaxVaryings];
    };

    /// Pixels beside each other.
    struct Span {
        static constexpr int MaxCount = 64;

        int X, Y, Count; ///< The first pixel of the target, and how many.
        alignas(16) cVec4 Varyings[MaxVaryings][MaxCount];
        alignas(16) cVec4 Colors[MaxCount]; ///< To be written: red, green, blue, alpha from 0 to 1.
        bool Keep[MaxCount];                ///< May be cleared, to leave a pixel out.
    };

    /// Vertex format with its offsets. -1 stands for an attribute that is missing.
    struct Layout {
        cVertex::Format Format;
        int Size = 0; ///< Bytes of a vertex; 0 for no format.

        explicit Layout(const cVertex::Format& format);
        Layout() = default;
        int OffsetOf(const char* name, cVertexType::Enum type, int count) const;
    };

    /// What the device may do without asking.
    enum class PixelStage : unsigned char {
        Own,   ///< Nothing: every pixel goes through `Pixels`.
        Plain, ///< Colours follow from the varyings alone, `Keep` is left alone: equal varyings are shaded once.
        Color, ///< The colour is the first varying, `Pixels` need not be called.
    };

    /// Makes a shader for a vertex format, and as often as it is asked. @param defines  never null
    /// @return null when it cannot
    using Factory = std::unique_ptr<cSoftwareShader> (*)(const Layout& layout, const char* defines);

    /// Adds or replaces a shader; the name must be a literal. Devices register the built-in ones by themselves, unless
    /// there is one of that name.
    static void Register(const char* name, Factory factory);
    static Factory Find(const char* name); ///< Null for an unknown name.
    static void RegisterBuiltIn();

    virtual ~cSoftwareShader() = default;

    /// @param vertices  `count` of them, back to back, in the layout's format; at any address
    virtual void Vertices(const unsigned char* vertices, int count, Vertex* out) const = 0;
    virtual void Pixels(Span& span) const; ///< Unless there is an own one, the colour is the first varying.

    int GetVaryingCount() const { return m_VaryingCount; }
    PixelStage GetPixelStage() const { return m_PixelStage; }

    // Constants, for the device

    enum class Kind : unsigned char { Int, Float, Vec2, Vec3, Vec4, Mat3, Mat4 };

    int FindConst(const char* name) const;   ///< -1 for none.
    int FindSampler(const char* name) const; ///< -1 for none.

    /// Sets up to `count` values from the first on. Ints and floats are converted into each other; other differences
    /// of kind set nothing.
    void SetConst(int index, Kind kind, const void* values, int count);
    /// Fills what `cRender::AutoConst` names, from the front end and its viewer. Without a viewer the world is clip
    /// space, and points are pixels of the viewport.
    void SetAutoConsts(const cRect& viewport);

    // Values, between two of the same factory, format and defines

    bool HasValuesOf(const cSoftwareShader& other) const; ///< The same constants and what samplers read, bit by bit.
    void CopyValuesOf(const cSoftwareShader& other);

    struct Sampler {
        cStr Name;
        cSoftwareSampler* Slot; ///< In the shader.
        int Texture = -1;
    };
    cList<Sampler> Samplers;

protected:
    /// @param varyings  in [0, MaxVaryings]; at least 1 for `PixelStage::Color`
    cSoftwareShader(int varyings, PixelStage stage) : m_VaryingCount(varyings), m_PixelStage(stage) {}

    // Names beginning with "g_" are the device's, and must be of the right kind.
    void Declare(const char* name, int* v, int count = 1) { Declare(name, Kind::Int, v, count); }
    void Declare(const char* name, float* v, int count = 1) { Declare(name, Kind::Float, v, count); }
    void Declare(const char* name, cVec2* v, int count = 1) { Declare(name, Kind::Vec2, v, count); }
    void Declare(const char* name, cVec3* v, int count = 1) { Declare(name, Kind::Vec3, v, count); }
    void Declare(const char* name, cVec4* v, int count = 1) { Declare(name, Kind::Vec4, v, count); }
    void Declare(const char* name, cMat3* v) { Declare(name, Kind::Mat3, v, 1); }
    void Declare(const char* name, cMat4* v) { Declare(name, Kind::Mat4, v, 1); }
    void Declare(const char* name, cSoftwareSampler* sampler);

private:
    struct Const {
        cStr Name;
        void* Values; // in the shader
        int Count;
        int Auto; // -1 for one that is set by hand
        Kind Type;
    };

    void Declare(const char* name, Kind kind, void* values, int count);
    static size_t SizeOf(const Const& c);

    cList<Const> m_Consts;
    int m_VaryingCount;
    PixelStage m_PixelStage;
};

} // namespace trellis
