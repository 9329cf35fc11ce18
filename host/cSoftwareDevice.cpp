#include "host/cSoftwareDevice.h"

#include "image/cImage.h"
#include "math/cColor.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace trellis {

namespace {

/// First pixel whose centre is not below a place.
int FirstPixel(float at, int limit) {
    return at > 0 ? at < float(limit) ? int(std::ceil(at - 0.5f)) : limit : 0;
}

void Narrow(cSoftwareRaster::Bounds* bounds, const cRect& r) {
    bounds->X0 = std::max(bounds->X0, FirstPixel(r.x0, bounds->X1));
    bounds->Y0 = std::max(bounds->Y0, FirstPixel(r.y0, bounds->Y1));
    bounds->X1 = std::min(bounds->X1, FirstPixel(r.x1, bounds->X1));
    bounds->Y1 = std::min(bounds->Y1, FirstPixel(r.y1, bounds->Y1));
}

} // namespace

cSoftwareDevice::cSoftwareDevice(int width, int height, int threads)
    : m_Width(width), m_Height(height), m_Queue(threads) {
    cSoftwareShader::RegisterBuiltIn();
    m_Viewport = cRect(0, 0, float(width), float(height));
    m_ClipRect = cRect::Empty;
}

cSoftwareDevice::~cSoftwareDevice() = default;

bool cSoftwareDevice::SetSize(int width, int height) {
    cSoftwareTexture color, depth;
    if (!color.InitColor(cFormat::Rgba8, width, height, 1) || !depth.InitDepth(cFormat::Depth24, width, height)) {
        return false;
    }
    m_Queue.Flush();
    std::swap(m_BackBuffer, color);
    std::swap(m_BackDepth, depth);
    m_Width = width;
    m_Height = height;
    return true;
}

bool cSoftwareDevice::Init(int) {
    return SetSize(m_Width, m_Height);
}

const cImage& cSoftwareDevice::GetBackBuffer() const {
    m_Queue.Flush();
    return m_BackBuffer.GetPixels();
}

void cSoftwareDevice::Free() {
    m_Queue.Flush();
    SetRenderTarget(nullptr, 0, -1, nullptr);
    m_Shader = m_VertexBuffer = m_IndexBuffer = -1;
    m_Textures.clear();
    m_Shaders.clear();
    m_VertexBuffers.clear();
    m_IndexBuffers.clear();
    m_Formats.clear();
    m_Consts.Free();
    m_Samplers.Free();
    m_SamplerStates.Free();
    m_BlendStates.Free();
    m_DepthStates.Free();
    m_State = cSoftwareRaster::State();
    m_BackBuffer = cSoftwareTexture();
    m_BackDepth = cSoftwareTexture();
}

const cStr& cSoftwareDevice::GetVendor() const {
    static const cStr s_Vendor("Software");
    return s_Vendor;
}

bool cSoftwareDevice::SupportsFormat(cFormat::Enum format) const {
    return format > cFormat::None && format <= cFormat::Dxt5;
}

// State

void cSoftwareDevice::SetViewport(const cRect* rect) {
    if (rect) {
        m_Viewport = *rect;
    }
}

void cSoftwareDevice::SetClipRect(const cRect* rect) {
    m_ClipRect = rect ? *rect : cRect::Empty;
}

void cSoftwareDevice::SetBlendState(int state) {
    m_State.Blend = state >= 0 && state < m_BlendStates.Count() ? m_BlendStates[state] : cSoftwareBlend();
}

void cSoftwareDevice::SetDepthState(int state) {
    m_State.Depth = state >= 0 && state < m_DepthStates.Count() ? m_DepthStates[state] : cSoftwareDepth();
}

template <class T> int cSoftwareDevice::IdOf(cList<T>& states, const T& state) {
    const int index = states.IndexOf(state);
    return index >= 0 ? index : states.Add(state);
}

int cSoftwareDevice::GetBlendStateID(cBlendFactor::Enum src, cBlendFactor::Enum dst, cBlendMode::Enum mode,
                                     unsigned writeMask) {
    const auto isFactor = [](int factor) { return factor >= 0 && factor < cBlendFactor::Count; };
    if (!isFactor(src) || !isFactor(dst) || mode < 0 || mode >= cBlendMode::Count) {
        return -1;
    }
    return IdOf(m_BlendStates, cSoftwareBlend{true, src, dst, mode, writeMask & 15});
}

int cSoftwareDevice::GetDepthStateID(bool test, bool write, cDepthFunc::Enum func) {
    if (func < 0 || func >= cDepthFunc::Count) {
        return -1;
    }
    return IdOf(m_DepthStates, cSoftwareDepth{test, write, func});
}

int cSoftwareDevice::GetSamplerStateID(cFilter::Enum filter, cAddressMode::Enum u, cAddressMode::Enum v,
                                       cAddressMode::Enum w) {
    const auto isMode = [](int mode) { return mode >= 0 && mode < cAddressMode::Count; };
    if (filter < 0 || filter >= cFilter::Count || !isMode(u) || !isMode(v) || !isMode(w)) {
        return -1;
    }
    return IdOf(m_SamplerStates, cSoftwareSampler::State{filter, u, v, w});
}

// Targets

void cSoftwareDevice::SetRenderTarget(const int* targets, int count, int depth, const int* slices) {
    m_TargetCount = targets ? std::clamp(count, 0, s_MaxTargets) : 0;
    for (int i = 0; i < m_TargetCount; i++) {
        m_Targets[i] = targets[i];
        m_Slices[i] = slices ? slices[i] : 0;
    }
    m_TargetDepth = depth;
}

cSoftwareTexture* cSoftwareDevice::TargetAt(int i) {
    if (m_TargetCount == 0) {
        return i == 0 ? &m_BackBuffer : nullptr;
    }
    Texture* texture = i < m_TargetCount ? At(m_Textures, m_Targets[i]) : nullptr;
    return texture ? &texture->Data : nullptr;
}

/// Surface, depths and bounds of the state. @return false without a surface
bool cSoftwareDevice::SetTargets() {
    cSoftwareTexture* color = TargetAt(0);
    if (!color) {
        return false;
    }
    m_State.Surface = color->GetSurface(m_TargetCount == 0 ? 0 : m_Slices[0]);
    if (m_State.Surface.IsEmpty()) {
        return false;
    }
    Texture* depthTexture = At(m_Textures, m_TargetDepth);
    cSoftwareTexture* depth = m_TargetCount == 0 ? &m_BackDepth : depthTexture ? &depthTexture->Data : nullptr;
    m_State.Clip = {0, 0, m_State.Surface.Width, m_State.Surface.Height};
    m_State.Depths = depth ? depth->GetDepthPixels() : nullptr;
    if (m_State.Depths) {
        m_State.DepthPitch = depth->GetWidth();
        m_State.Clip.X1 = std::min(m_State.Clip.X1, depth->GetWidth());
        m_State.Clip.Y1 = std::min(m_State.Clip.Y1, depth->GetHeight());
    }
    if (!m_ClipRect.IsEmpty()) {
        Narrow(&m_State.Clip, m_ClipRect);
    }
    return true;
}

void cSoftwareDevice::Clear(bool color, bool depth, const cColor& colorValue, float depthValue) {
    if (!SetTargets()) {
        return;
    }
    cSoftwareQueue::Fill fill{
        color, depth && m_State.Depths, {colorValue.r, colorValue.g, colorValue.b, colorValue.a}, depthValue};
    m_Queue.Clear(m_State, fill);
    fill.IsDepth = false;
    for (int i = 1; color && i < m_TargetCount; i++) {
        cSoftwareRaster::State state = m_State;
        cSoftwareTexture* target = TargetAt(i);
        state.Surface = target ? target->GetSurface(m_Slices[i]) : cSoftwareSurface();
        state.Clip.X1 = std::min(state.Clip.X1, state.Surface.Width);
        state.Clip.Y1 = std::min(state.Clip.Y1, state.Surface.Height);
        if (!state.Surface.IsEmpty()) {
            m_Queue.Clear(state, fill);
        }
    }
}

void cSoftwareDevice::ScreenShot(cImage* out) {
    m_Queue.Flush();
    m_BackBuffer.Save(out);
}

// Drawing

/// @param isAlone  receives whether the call reads a texture that it may draw into
/// @return whether there is all that a draw call needs
bool cSoftwareDevice::Prepare(const Shader* shader, bool* isAlone) {
    if (!shader || !SetTargets()) {
        return false;
    }
    constexpr float limit = cSoftwareRaster::MaxPlace;
    const cRect& v = m_Viewport;
    if (!(v.x0 >= -limit && v.x0 <= limit && v.y0 >= -limit && v.y0 <= limit && v.x1 > v.x0 && v.y1 > v.y0 &&
          v.x1 - v.x0 <= limit && v.y1 - v.y0 <= limit)) {
        return false;
    }
    m_State.View = {v.x0, v.y0, v.x1 - v.x0, v.y1 - v.y0};
    Narrow(&m_State.Clip, v);
    if (m_State.Clip.X0 >= m_State.Clip.X1 || m_State.Clip.Y0 >= m_State.Clip.Y1) {
        return false;
    }
    for (cSoftwareShader::Sampler& sampler : shader->Program->Samplers) {
        const Texture* texture = At(m_Textures, sampler.Texture);
        if (!texture || texture->Data.IsEmpty()) {
            return false;
        }
        sampler.Slot->Texture = &texture->Data;
        sampler.Slot->Mode = texture->Mode;
        *isAlone |= sampler.Texture == m_TargetDepth ||
                    std::find(m_Targets, m_Targets + m_TargetCount, sampler.Texture) != m_Targets + m_TargetCount;
    }
    shader->Program->SetAutoConsts(m_Viewport);
    return true;
}

/// The shader with its constants of now, which stay until the queue has been drawn.
const cSoftwareShader* cSoftwareDevice::KeepValues(Shader* shader) {
    const cSoftwareShader& program = *shader->Program;
    if (program.GetPixelStage() == cSoftwareShader::PixelStage::Color) {
        return &program; // has no stage left to run
    }
    if (shader->Round != m_Queue.GetRound()) {
        shader->Round = m_Queue.GetRound();
        shader->Used = 0;
    }
    if (shader->Used > 0 && shader->Copies[shader->Used - 1]->HasValuesOf(program)) {
        return shader->Copies[shader->Used - 1].get();
    }
    if (shader->Used == shader->Copies.size()) {
        shader->Copies.push_back(shader->Make(shader->Layout, shader->Defines));
    }
    cSoftwareShader* copy = shader->Copies[shader->Used++].get();
    copy->CopyValuesOf(program);
    return copy;
}

/// @param index  gives the number of the vertex at a place of the sequence
template <class Index> void cSoftwareDevice::Assemble(cTopology::Enum topology, int count, int vertices, Index index) {
    const auto isVertex = [vertices](int at) { return at >= 0 && at < vertices; };
    switch (topology) {
    case cTopology::Points:
        for (int i = 0; i < count; i++) {
            if (const int a = index(i); isVertex(a)) {
                m_Queue.Point(a);
            }
        }
        break;
    case cTopology::LineList:
        for (int i = 0; i + 1 < count; i += 2) {
            const int a = index(i), b = index(i + 1);
            if (isVertex(a) && isVertex(b)) {
                m_Queue.Line(a, b, false);
            }
        }
        break;
    case cTopology::LineStrip:
        for (int i = 0, joined = false; i + 1 < count; i++) {
            const int a = index(i), b = index(i + 1);
            joined = isVertex(a) && isVertex(b) && m_Queue.Line(a, b, joined); // a joint would be blended twice
        }
        break;
    case cTopology::TriangleList:
        for (int i = 0; i + 2 < count; i += 3) {
            const int a = index(i), b = index(i + 1), c = index(i + 2);
            if (isVertex(a) && isVertex(b) && isVertex(c)) {
                m_Queue.Triangle(a, b, c);
            }
        }
        break;
    }
}

/// @param indices  null for the vertices in their order
void cSoftwareDevice::Draw(cTopology::Enum topology, const void* vertices, int vertexCount, const void* indices,
                           int indexCount, int indexSize) {
    Shader* shader = At(m_Shaders, m_Shader);
    bool isAlone = false;
    if (!vertices || vertexCount < 1 || !Prepare(shader, &isAlone)) {
        return;
    }
    m_Queue.MakeRoom(m_State, vertexCount, isAlone);
    m_State.Shader = KeepValues(shader);
    shader->Program->Vertices(static_cast<const unsigned char*>(vertices), vertexCount,
                              m_Queue.Begin(m_State, topology, vertexCount));
    m_Queue.Project();
    if (!indices) {
        Assemble(topology, vertexCount, vertexCount, [](int i) { return i; });
    } else if (indexSize == 2) {
        Assemble(topology, indexCount, vertexCount, [indices](int i) {
            unsigned short v;
            std::memcpy(&v, static_cast<const unsigned char*>(indices) + size_t(i) * sizeof v, sizeof v);
            return int(v);
        });
    } else {
        Assemble(topology, indexCount, vertexCount, [indices](int i) {
            int v;
            std::memcpy(&v, static_cast<const unsigned char*>(indices) + size_t(i) * sizeof v, sizeof v);
            return v;
        });
    }
    if (isAlone) {
        m_Queue.Flush();
    }
}

void cSoftwareDevice::DrawArrays(cTopology::Enum topology, const void* vertices, int count) {
    Draw(topology, vertices, count, nullptr, 0, 0);
}

void cSoftwareDevice::DrawIndexed(cTopology::Enum topology, const void* vertices, int vertexCount, const void* indices,
                                  int indexCount, int indexSize) {
    if (indices && (indexSize == 2 || indexSize == 4)) {
        Draw(topology, vertices, vertexCount, indices, indexCount, indexSize);
    }
}

void cSoftwareDevice::DrawArrays(cTopology::Enum topology) {
    const Buffer* vertices = At(m_VertexBuffers, m_VertexBuffer);
    const Shader* shader = At(m_Shaders, m_Shader);
    const int size = shader ? GetVertexSize(shader->Format) : 0;
    if (vertices && size > 0) {
        DrawArrays(topology, vertices->Bytes.data(), int(vertices->Bytes.size() / size_t(size)));
    }
}

void cSoftwareDevice::DrawIndexed(cTopology::Enum topology) {
    const Buffer *vertices = At(m_VertexBuffers, m_VertexBuffer), *indices = At(m_IndexBuffers, m_IndexBuffer);
    const Shader* shader = At(m_Shaders, m_Shader);
    const int size = shader ? GetVertexSize(shader->Format) : 0;
    if (vertices && indices && size > 0) {
        DrawIndexed(topology, vertices->Bytes.data(), int(vertices->Bytes.size() / size_t(size)), indices->Bytes.data(),
                    int(indices->Bytes.size() / size_t(indices->IndexSize)), indices->IndexSize);
    }
}

} // namespace trellis
