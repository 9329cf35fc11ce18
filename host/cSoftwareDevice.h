// A graphics device that renders on the processor into images. A host passes it to the front end:
//
//     cRender::SetFactory([](int) -> cRender::Stub* { return new cSoftwareDevice(1280, 720); });
//
// Row 0 of the back buffer, of targets and of textures is the bottom one.
#pragma once

#include "host/cSoftwareQueue.h"
#include "math/cRect.h"
#include "render/cRender_Stub.h"

#include <memory>
#include <vector>

namespace trellis {

/// Ids count up and are not used again, so that one that has been freed stays unknown. What is found by name or by path
/// is counted: it is gone when it has been freed as often as it was asked for. Shaders are C++ functions; see
/// `cSoftwareShader::Register`.
///
/// Only the first of several colour targets is drawn into, as there is no shader that has more than one colour; `Clear`
/// clears all of them. Textures are read at level 0, and every filter but `Nearest` is bilinear. Belongs to the
/// rendering thread.
class cSoftwareDevice : public cRender_Stub {
public:
    /// @param threads  that draw, this one included; 0 for one for each processor
    cSoftwareDevice(int width, int height, int threads = 0);
    ~cSoftwareDevice() override;
    cSoftwareDevice(const cSoftwareDevice&) = delete;
    cSoftwareDevice& operator=(const cSoftwareDevice&) = delete;

    /// Makes the back buffer anew, black, in front of everything else. The viewport stays as it was set.
    ///
    /// @return false for a side outside 1 to `cSoftwareTexture::MaxSide`; the back buffer then stays as it was
    bool SetSize(int width, int height);
    const cImage& GetBackBuffer() const; ///< `Rgba8`; until the next call that draws.

    int GetType() const override { return 3; }
    bool Init(int type) override;
    void Free() override;
    void SetViewport(const cRect* rect) override;
    void SetClipRect(const cRect* rect) override;
    const cStr& GetVendor() const override;
    int GetMRTCount() const override { return 1; }
    bool SupportsFormat(cFormat::Enum format) const override; ///< All but depths to be read and Pvr.
    bool SupportsNonPowerOfTwo() const override { return true; }
    void ScreenShot(cImage* out) override;
    bool GetDeviceRecentReset() const override { return false; }

    int GetTextureID(const char* filePn) override; ///< -1 when it cannot be loaded.
    void ReloadTextures() override;                ///< Those of files.
    void ReloadTexture(int texture) override;
    void ReloadTexture(const char* filePn) override;
    void UnloadTextures() override; ///< Drops the pixels of those of files until they are reloaded.
    int AddTexture(const char* filePn) override;
    int AddTexture(const cImage& image) override;
    void UpdateTexture(int texture, const cList<cImage*>& images, const cList<cRect>& rects) override;
    void FreeTexture(int texture) override;
    const char* GetTextureFilePn(int texture) const override; ///< "" for none.
    // 0 for an unknown texture, except that its depth is 1.
    int GetTextureWidth(int texture) const override;
    int GetTextureHeight(int texture) const override;
    int GetTextureDepth(int texture) const override;
    int GetTextureFormat(int texture) const override;
    int GetTextureMipMapCount(int texture) const override;
    int GetTextureRenderTargetUsage(int texture) const override; ///< 1 for colour, 2 for depth.

    int GetShaderID(const char* name, int vertexFormat, const char* defines) override;
    int AddShader(const char* name, int vertexFormat, const char* defines) override;
    int GetShaderConstID(int shader, const char* name) override;
    void SetShader(int shader) override { m_Shader = shader; }
    void FreeShader(int shader) override;
    void ReloadShaders() override {} ///< There is no source to read again.

    int AddVertexFormat(const cVertex::Format& format) override;
    int GetVertexSize(int format) const override;
    int AddVertexBuffer(const void* vertices, unsigned bytes) override;
    int AddIndexBuffer(const void* indices, int count, int indexSize) override;
    void FreeVertexBuffer(int buffer) override;
    void FreeIndexBuffer(int buffer) override;
    void SetVertexBuffer(int buffer) override { m_VertexBuffer = buffer; }
    void SetIndexBuffer(int buffer) override { m_IndexBuffer = buffer; }

    // A primitive with an index outside the vertices is left out.
    void DrawArrays(cTopology::Enum topology) override;
    void DrawArrays(cTopology::Enum topology, const void* vertices, int count) override;
    void DrawIndexed(cTopology::Enum topology) override;
    void DrawIndexed(cTopology::Enum topology, const void* vertices, int vertexCount, const void* indices,
                     int indexCount, int indexSize) override;
    void SetWireframe(bool on) override { m_State.IsWireframe = on; }

    int GetSamplerStateID(cFilter::Enum filter, cAddressMode::Enum u, cAddressMode::Enum v,
                          cAddressMode::Enum w) override;
    void SetSamplerState(int texture, int samplerState) override; ///< -1: linear, clamped.
    int GetSamplerID(int shader, const char* name) override;
    void SetTexture(int sampler, int texture) override; ///< Without a texture its shader draws nothing.
    void SetShaderConst(int id, int v) override;
    void SetShaderConst(int id, float v) override;
    void SetShaderConst(int id, const cVec2& v) override;
    void SetShaderConst(int id, const cVec3& v) override;
    void SetShaderConst(int id, const cVec4& v) override;
    void SetShaderConst(int id, const cMat3& v) override;
    void SetShaderConst(int id, const cMat4& v) override;
    void SetShaderConst(int id, const float* v, int count) override;
    void SetShaderConst(int id, const cVec2* v, int count) override;
    void SetShaderConst(int id, const cVec3* v, int count) override;
    void SetShaderConst(int id, const cVec4* v, int count) override;
    void ApplyTransforms() override {} ///< Every draw call asks the front end anew.

    int GetBlendStateID(cBlendFactor::Enum src, cBlendFactor::Enum dst, cBlendMode::Enum mode,
                        unsigned writeMask) override;
    void SetBlendState(int state) override;
    int GetDepthStateID(bool test, bool write, cDepthFunc::Enum func) override; ///< Writing does without the test.
    void SetDepthState(int state) override;
    void SetCullMode(cCullMode::Enum mode) override { m_State.Cull = mode; }
    void Clear(bool color, bool depth, const cColor& colorValue, float depthValue) override; ///< Within the clip.
    void BeginFrame() override {}
    void EndFrame() override { m_Queue.Flush(); }
    void Finish() override { m_Queue.Flush(); }

    /// Floats are kept as such; byte formats in bytes. Channels that the format has not are 0, and alpha 1.
    ///
    /// @param isCube  six faces
    /// @param depth   else the slices of a volume; below 2: flat
    int AddRenderTarget(int width, int height, cFormat::Enum format, bool isCube, int depth) override;
    int AddRenderDepth(int target, cFormat::Enum format) override; ///< Follows the target's size.
    void SetRenderTarget(const int* targets, int count, int depth, const int* slices) override;
    void SetRenderTargetSize(int target, int width, int height) override; ///< Makes it anew, as after its creation.
    void SaveRenderTarget(int target, cImage* out) override;              ///< Empty for what is none.

private:
    static constexpr int s_MaxTargets = 8;

    struct Texture {
        cSoftwareTexture Data;
        cSoftwareSampler::State Mode;
        cStr FilePn;      // empty for one that is no file's
        int Owner = -1;   // of a depth target: the colour target whose size it has
        int Requests = 1; // how often it must be freed
    };
    struct Shader {
        std::unique_ptr<cSoftwareShader> Program;
        cSoftwareShader::Factory Make;
        cSoftwareShader::Layout Layout;                       // as the program got it
        std::vector<std::unique_ptr<cSoftwareShader>> Copies; // with the constants of calls that wait
        size_t Used = 0;                                      // of them, in this round of the queue
        unsigned Round = 0;
        cStr Name, Defines;
        int Format;
        int Requests = 1;
        bool IsShared; // found by `GetShaderID`
    };
    struct Slot { // of a constant or a sampler
        int Shader, Index;
    };
    struct Buffer {
        std::vector<unsigned char> Bytes;
        int IndexSize = 0;
    };
    template <class T> using Table = std::vector<std::unique_ptr<T>>;

    template <class T> static T* At(const Table<T>& table, int id) {
        return id >= 0 && size_t(id) < table.size() ? table[size_t(id)].get() : nullptr;
    }
    template <class T> static int Add(Table<T>& table, std::unique_ptr<T> item);
    template <class T> static void Release(Table<T>& table, int id);
    template <class T> static int IdOf(cList<T>& states, const T& state);

    const cSoftwareTexture* PixelsOf(int texture) const;
    int FindTexture(const char* filePn) const;
    static int SlotOf(cList<Slot>& slots, int shader, int index);
    bool Load(Texture& texture);
    void SetConst(int id, cSoftwareShader::Kind kind, const void* values, int count);

    cSoftwareTexture* TargetAt(int i); // null past the last one
    bool SetTargets();
    bool Prepare(const Shader* shader, bool* isAlone);
    const cSoftwareShader* KeepValues(Shader* shader);
    const cSoftwareShader::Layout& LayoutOf(int vertexFormat) const;
    void Draw(cTopology::Enum topology, const void* vertices, int vertexCount, const void* indices, int indexCount,
              int indexSize);
    template <class Index> void Assemble(cTopology::Enum topology, int count, int vertices, Index index);

    cSoftwareTexture m_BackBuffer, m_BackDepth;
    int m_Width, m_Height;

    Table<Texture> m_Textures;
    Table<Shader> m_Shaders;
    Table<Buffer> m_VertexBuffers, m_IndexBuffers;
    std::vector<cSoftwareShader::Layout> m_Formats;
    cList<Slot> m_Consts, m_Samplers; // by id
    cList<cSoftwareSampler::State> m_SamplerStates;
    cList<cSoftwareBlend> m_BlendStates;
    cList<cSoftwareDepth> m_DepthStates;

    // Current
    cSoftwareRaster::State m_State; // surface, depths and bounds are made for each draw call
    cRect m_Viewport, m_ClipRect;
    int m_Shader = -1, m_VertexBuffer = -1, m_IndexBuffer = -1;
    int m_Targets[s_MaxTargets], m_Slices[s_MaxTargets], m_TargetCount = 0, m_TargetDepth = -1;

    mutable cSoftwareQueue m_Queue; // what waits in it is a part of the picture already
};

} // namespace trellis
