// A graphics device that draws nothing and writes down every call, one line each, names in place of ids:
//
//     SetShader SolidUI
//     SetShaderConst TexturedUI.c_Alpha 0.5
//     DrawIndexed 3 4 6                       topology, vertices, indexes
//
// Queries and look-ups leave no line; they are counted.
#pragma once

#include "math/cColor.h"
#include "math/cMat4.h"
#include "math/cRect.h"
#include "render/cRender.h"

#include <map>
#include <string>
#include <vector>

namespace trellis {

class RecordingDevice : public cRender::Stub {
public:
    /// One draw call, with what it was given from client memory; empty for what came from buffers.
    struct Draw {
        cTopology::Enum Topology;
        std::string Shader;
        std::vector<unsigned char> Vertices;
        int VertexCount = 0;
        std::vector<int> Indices;

        template <class T> const T* As() const { return reinterpret_cast<const T*>(Vertices.data()); }
    };

    /// What a texture answers; -1 and unknown ids answer 0.
    struct Texture {
        std::string Name;
        int Width = 0, Height = 0, Depth = 0, Format = 0, Mips = 0, RenderTarget = 0;
    };

    /// Installs a fresh device as the front end's; the front end owns it. There is none after `Uninstall`.
    static RecordingDevice& Install(int type = 3);
    static void Uninstall();

    std::string Take();            ///< The lines since the last time, each with its end of line.
    std::vector<Draw> TakeDraws(); ///< The draw calls since the last time.

    int Type = 3;
    cStr Vendor = "Recorder";
    cMat4 LastMatrix{}; ///< That a constant was set to.
    bool FailInit = false;
    bool Quiet = false;             ///< Records nothing, and so allocates nothing.
    int Lookups = 0;                ///< Calls for ids of shaders, constants, samplers, states and textures.
    std::vector<Texture> Textures;  ///< By id. `GetTextureID` finds by name, and adds nothing.
    static inline int DeletedCount; ///< Devices.

    int GetType() const override { return Type; }
    bool Init(int type) override;
    void Free() override { Line("Free"); }
    void SetViewport(const cRect* rect) override { Line("SetViewport", *rect); }
    void SetClipRect(const cRect* rect) override;
    const cStr& GetVendor() const override { return Vendor; }
    int GetMRTCount() const override { return 4; }
    bool SupportsFormat(cFormat::Enum) const override { return true; }
    bool SupportsNonPowerOfTwo() const override { return true; }
    void ScreenShot(cImage*) override { Line("ScreenShot"); }
    bool GetDeviceRecentReset() const override { return false; }

    int GetTextureID(const char* filePn) override;
    void ReloadTextures() override { Line("ReloadTextures"); }
    void ReloadTexture(int texture) override { Line("ReloadTexture", texture); }
    void ReloadTexture(const char* filePn) override { Line("ReloadTexture", filePn); }
    void UnloadTextures() override { Line("UnloadTextures"); }
    int AddTexture(const char* filePn) override;
    int AddTexture(const cImage& image) override;
    void UpdateTexture(int texture, const cList<cImage*>& images, const cList<cRect>& rects) override;
    void FreeTexture(int texture) override { Line("FreeTexture", texture); }
    const char* GetTextureFilePn(int texture) const override { return Find(texture).Name.c_str(); }
    int GetTextureWidth(int texture) const override { return Find(texture).Width; }
    int GetTextureHeight(int texture) const override { return Find(texture).Height; }
    int GetTextureDepth(int texture) const override { return Find(texture).Depth; }
    int GetTextureFormat(int texture) const override { return Find(texture).Format; }
    int GetTextureMipMapCount(int texture) const override { return Find(texture).Mips; }
    int GetTextureRenderTargetUsage(int texture) const override { return Find(texture).RenderTarget; }

    int GetShaderID(const char* name, int vertexFormat, const char* defines) override;
    int AddShader(const char* name, int vertexFormat, const char* defines) override;
    int GetShaderConstID(int shader, const char* name) override;
    void SetShader(int shader) override;
    void FreeShader(int shader) override { Line("FreeShader", NameOf(m_Shaders, shader)); }
    void ReloadShaders() override { Line("ReloadShaders"); }

    int AddVertexFormat(const cVertex::Format& format) override;
    int GetVertexSize(int format) const override;
    int AddVertexBuffer(const void* vertices, unsigned bytes) override;
    int AddIndexBuffer(const void* indices, int count, int indexSize) override;
    void FreeVertexBuffer(int buffer) override { Line("FreeVertexBuffer", buffer); }
    void FreeIndexBuffer(int buffer) override { Line("FreeIndexBuffer", buffer); }
    void SetVertexBuffer(int buffer) override { Line("SetVertexBuffer", buffer); }
    void SetIndexBuffer(int buffer) override { Line("SetIndexBuffer", buffer); }
    void DrawArrays(cTopology::Enum topology) override;
    void DrawArrays(cTopology::Enum topology, const void* vertices, int count) override;
    void DrawIndexed(cTopology::Enum topology) override;
    void DrawIndexed(cTopology::Enum topology, const void* vertices, int vertexCount, const void* indices,
                     int indexCount, int indexSize) override;
    void SetWireframe(bool on) override { Line("SetWireframe", on); }

    int GetSamplerStateID(cFilter::Enum filter, cAddressMode::Enum u, cAddressMode::Enum v,
                          cAddressMode::Enum w) override;
    void SetSamplerState(int texture, int samplerState) override { Line("SetSamplerState", texture, samplerState); }
    int GetSamplerID(int shader, const char* name) override { return GetShaderConstID(shader, name); }
    void SetTexture(int sampler, int texture) override;
    void SetShaderConst(int id, int v) override { Const(id, v); }
    void SetShaderConst(int id, float v) override { Const(id, v); }
    void SetShaderConst(int id, const cVec2& v) override { Const(id, v.x, v.y); }
    void SetShaderConst(int id, const cVec3& v) override { Const(id, v.x, v.y, v.z); }
    void SetShaderConst(int id, const cVec4& v) override { Const(id, v.x, v.y, v.z, v.w); }
    void SetShaderConst(int id, const cMat3&) override { Const(id, "mat3"); }
    void SetShaderConst(int id, const cMat4& v) override {
        LastMatrix = v;
        Const(id, "mat4");
    }
    void SetShaderConst(int id, const float*, int count) override { Const(id, "float", count); }
    void SetShaderConst(int id, const cVec2*, int count) override { Const(id, "vec2", count); }
    void SetShaderConst(int id, const cVec3*, int count) override { Const(id, "vec3", count); }
    void SetShaderConst(int id, const cVec4*, int count) override { Const(id, "vec4", count); }
    void ApplyTransforms() override { Line("ApplyTransforms"); }
    int GetBlendStateID(cBlendFactor::Enum src, cBlendFactor::Enum dst, cBlendMode::Enum mode,
                        unsigned writeMask) override;
    void SetBlendState(int state) override { LineOf("SetBlendState", state); }
    int GetDepthStateID(bool test, bool write, cDepthFunc::Enum func) override;
    void SetDepthState(int state) override { LineOf("SetDepthState", state); }
    void SetCullMode(cCullMode::Enum mode) override { Line("SetCullMode", int(mode)); }
    void Clear(bool color, bool depth, const cColor& c, float depthValue) override {
        Line("Clear", color, depth, c.r, c.g, c.b, c.a, depthValue);
    }
    void BeginFrame() override { Line("BeginFrame"); }
    void EndFrame() override { Line("EndFrame"); }
    void Finish() override { Line("Finish"); }

    int AddRenderTarget(int width, int height, cFormat::Enum format, bool a, int b) override;
    int AddRenderDepth(int target, cFormat::Enum format) override;
    void SetRenderTarget(const int* targets, int count, int depth, const int* slices) override;
    void SetRenderTargetSize(int target, int width, int height) override {
        Line("SetRenderTargetSize", target, width, height);
    }
    void SaveRenderTarget(int target, cImage*) override { Line("SaveRenderTarget", target); }

    ~RecordingDevice() override { DeletedCount++; }

private:
    static std::string Text(int v) { return std::to_string(v); }
    static std::string Text(bool v) { return v ? "1" : "0"; }
    static std::string Text(float v);
    static std::string Text(const char* v) { return v ? v : "null"; }
    static std::string Text(const std::string& v) { return v; }
    static std::string Text(const cRect& r);

    template <class... Args> void Line(const char* name, const Args&... args) {
        if (Quiet) {
            return;
        }
        m_Lines += name;
        ((m_Lines += ' ', m_Lines += Text(args)), ...);
        m_Lines += '\n';
    }
    template <class... Args> void Const(int id, const Args&... args) {
        if (!Quiet) {
            Line("SetShaderConst", NameOf(m_Consts, id), args...);
        }
    }

    void LineOf(const char* name, int state) {
        if (!Quiet) {
            Line(name, NameOf(m_States, state));
        }
    }

    using Names = std::vector<std::string>;
    static int FindOrAdd(Names& names, const std::string& name);
    static std::string NameOf(const Names& names, int id);
    const Texture& Find(int texture) const;
    void AddDraw(cTopology::Enum topology, const void* vertices, int vertexCount, const void* indices, int indexCount,
                 int indexSize);

    std::string m_Lines;
    std::vector<Draw> m_Draws;
    // Ids outlive a device, as drawing functions keep what they have looked up.
    static inline Names m_Shaders, m_Consts, m_States;
    static inline std::vector<int> m_ShaderFormats; // by shader
    std::vector<int> m_FormatSizes;
    int m_Shader = -1;
    int m_Buffers = 0;
};

} // namespace trellis
