// The one graphics device, as the front end sees it: what a platform implements.
#pragma once

#include "foundation/cList.h"
#include "image/cFormat.h"
#include "mesh/cVertex.h"
#include "render/cAddressMode.h"
#include "render/cBlendFactor.h"
#include "render/cBlendMode.h"
#include "render/cCullMode.h"
#include "render/cDepthFunc.h"
#include "render/cFilter.h"
#include "render/cTopology.h"

namespace trellis {

class cColor;
class cFile;
class cImage;
class cMat3;
class cMat4;
class cRect;

/// Goes by the name `cRender::Stub`. The functions are reached through the front end's of the same names. Every id of
/// -1 must be borne, and a draw call without what it needs draws nothing.
class cRender_Stub {
public:
    virtual ~cRender_Stub() = default;
    virtual int GetType() const = 0; ///< 1 and 2 are hardware; the targets of 2 are stored upside down.
    virtual bool Init(int type) = 0;
    virtual void Free() = 0; ///< Releases everything, ahead of the destructor.
    virtual void SetViewport(const cRect* rect) = 0;
    virtual void SetClipRect(const cRect* rect) = 0; ///< In pixels; an empty one turns clipping off.
    virtual const cStr& GetVendor() const = 0;
    virtual int GetMRTCount() const = 0; ///< Colour targets at once.
    virtual bool SupportsFormat(cFormat::Enum format) const = 0;
    virtual bool SupportsNonPowerOfTwo() const = 0;
    virtual void ScreenShot(cImage* out) = 0; ///< The back buffer.
    virtual bool GetDeviceRecentReset() const = 0;

    virtual int GetTextureID(const char* filePn) = 0; ///< Finds or loads.
    virtual void ReloadTextures() = 0;
    virtual void ReloadTexture(int texture) = 0;
    virtual void ReloadTexture(const char* filePn) = 0;
    virtual void UnloadTextures() = 0;
    virtual int AddTexture(const char* filePn) = 0;
    virtual int AddTexture(const cImage& image) = 0;
    /// Replaces rectangles of level 0, each by the image of the same index.
    virtual void UpdateTexture(int texture, const cList<cImage*>& images, const cList<cRect>& rects) = 0;
    virtual void FreeTexture(int texture) = 0;
    virtual const char* GetTextureFilePn(int texture) const = 0;
    virtual int GetTextureWidth(int texture) const = 0;
    virtual int GetTextureHeight(int texture) const = 0;
    virtual int GetTextureDepth(int texture) const = 0; ///< 1 for a flat texture, 0 for a cube.
    virtual int GetTextureFormat(int texture) const = 0;
    virtual int GetTextureMipMapCount(int texture) const = 0;
    virtual int GetTextureRenderTargetUsage(int texture) const = 0; ///< Not 0 for a render target.

    /// @param defines  lines put in front of the source; null for none
    virtual int GetShaderID(const char* name, int vertexFormat, const char* defines) = 0; ///< Finds or builds.
    virtual int AddShader(const char* name, int vertexFormat, const char* defines) = 0;   ///< Always builds.
    virtual int GetShaderConstID(int shader, const char* name) = 0; ///< -1 when there is no such constant.
    virtual void SetShader(int shader) = 0;
    virtual void FreeShader(int shader) = 0;
    virtual void ReloadShaders() = 0;

    virtual int AddVertexFormat(const cVertex::Format& format) = 0;
    virtual int GetVertexSize(int format) const = 0; ///< Bytes.
    virtual int AddVertexBuffer(const void* vertices, unsigned bytes) = 0;
    virtual int AddIndexBuffer(const void* indices, int count, int indexSize) = 0;
    virtual void FreeVertexBuffer(int buffer) = 0;
    virtual void FreeIndexBuffer(int buffer) = 0;
    virtual void SetVertexBuffer(int buffer) = 0;
    virtual void SetIndexBuffer(int buffer) = 0;

    // Vertices are of the format that the current shader was made for. Indexes take 2 or 4 bytes.
    virtual void DrawArrays(cTopology::Enum topology) = 0; ///< The whole vertex buffer.
    virtual void DrawArrays(cTopology::Enum topology, const void* vertices, int count) = 0;
    virtual void DrawIndexed(cTopology::Enum topology) = 0; ///< Both buffers.
    virtual void DrawIndexed(cTopology::Enum topology, const void* vertices, int vertexCount, const void* indices,
                             int indexCount, int indexSize) = 0;
    virtual void SetWireframe(bool on) = 0;

    virtual int GetSamplerStateID(cFilter::Enum filter, cAddressMode::Enum u, cAddressMode::Enum v,
                                  cAddressMode::Enum w) = 0;
    virtual void SetSamplerState(int texture, int samplerState) = 0; ///< Stays with the texture.
    virtual int GetSamplerID(int shader, const char* name) = 0;
    virtual void SetTexture(int sampler, int texture) = 0;
    virtual void SetShaderConst(int id, int v) = 0;
    virtual void SetShaderConst(int id, float v) = 0;
    virtual void SetShaderConst(int id, const cVec2& v) = 0;
    virtual void SetShaderConst(int id, const cVec3& v) = 0;
    virtual void SetShaderConst(int id, const cVec4& v) = 0;
    virtual void SetShaderConst(int id, const cMat3& v) = 0;
    virtual void SetShaderConst(int id, const cMat4& v) = 0;
    virtual void SetShaderConst(int id, const float* v, int count) = 0;
    virtual void SetShaderConst(int id, const cVec2* v, int count) = 0;
    virtual void SetShaderConst(int id, const cVec3* v, int count) = 0;
    virtual void SetShaderConst(int id, const cVec4* v, int count) = 0;
    virtual void ApplyTransforms() = 0; ///< The viewer, world or texture matrices have changed.

    /// @param writeMask  red 1, green 2, blue 4, alpha 8
    virtual int GetBlendStateID(cBlendFactor::Enum src, cBlendFactor::Enum dst, cBlendMode::Enum mode,
                                unsigned writeMask) = 0;
    virtual void SetBlendState(int state) = 0; ///< -1 turns blending off.
    virtual int GetDepthStateID(bool test, bool write, cDepthFunc::Enum func) = 0;
    virtual void SetDepthState(int state) = 0; ///< -1: no test and no writing.
    virtual void SetCullMode(cCullMode::Enum mode) = 0;
    virtual void Clear(bool color, bool depth, const cColor& colorValue, float depthValue) = 0;
    virtual void BeginFrame() = 0;
    virtual void EndFrame() = 0;
    virtual void Finish() = 0;

    /// The last two arguments are the device's own.
    virtual int AddRenderTarget(int width, int height, cFormat::Enum format, bool, int) = 0;
    virtual int AddRenderDepth(int target, cFormat::Enum format) = 0; ///< Of the size of a colour target.
    /// @param targets  ids of colour targets; null and a count of 0 stand for the back buffer
    /// @param depth    -1 for none
    /// @param slices   for each target its slice or face; may be null
    virtual void SetRenderTarget(const int* targets, int count, int depth, const int* slices) = 0;
    virtual void SetRenderTargetSize(int target, int width, int height) = 0;
    virtual void SaveRenderTarget(int target, cImage* out) = 0;

    /// Loads a source and splits it at its markers, the case of which does not count. The line numbers are those of
    /// the markers in the file, for a compiler's messages. What `cRender::ReplaceInShaders` tells is replaced.
    ///
    /// @return false when there is no such file, or a program is missing
    static bool LoadShader(const char* filePn, cStr* vertexSrc, cStr* pixelSrc, int* vertexLine, int* pixelLine);

    /// Looks up the binary programs of a shader that was compiled beforehand. @return false when there are none
    virtual bool LoadShaderFromCache(const char* name, const char* defines, cFile* vertex, cFile* pixel) {
        (void)name, (void)defines, (void)vertex, (void)pixel;
        return false;
    }
};

} // namespace trellis
