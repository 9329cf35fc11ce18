#include "tests/render/RecordingDevice.h"

#include "image/cImage.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace trellis {

RecordingDevice& RecordingDevice::Install(int type) {
    Uninstall();
    cRender::SetFactory([](int t) -> cRender::Stub* {
        auto* device = new RecordingDevice;
        device->Type = t;
        return device;
    });
    cRender::Init(type);
    auto& device = static_cast<RecordingDevice&>(*cRender::GetInstance());
    device.Take();
    return device;
}

void RecordingDevice::Uninstall() {
    cRender::SetViewer(nullptr);
    cRender::Free();
    cRender::SetFactory(nullptr);
}

std::string RecordingDevice::Take() {
    return std::exchange(m_Lines, {});
}

std::vector<RecordingDevice::Draw> RecordingDevice::TakeDraws() {
    return std::exchange(m_Draws, {});
}

bool RecordingDevice::Init(int type) {
    Line("Init", type);
    return !FailInit;
}

void RecordingDevice::SetClipRect(const cRect* rect) {
    if (rect->IsEmpty()) {
        Line("SetClipRect", "empty");
    } else {
        Line("SetClipRect", *rect);
    }
}

int RecordingDevice::GetTextureID(const char* filePn) {
    Lookups++;
    for (size_t i = 0; i < Textures.size(); i++) {
        if (Textures[i].Name == filePn) {
            return int(i);
        }
    }
    return -1;
}

int RecordingDevice::AddTexture(const char* filePn) {
    Line("AddTexture", filePn);
    Textures.push_back({filePn, 1, 1, 1, cFormat::Rgba8, 1, 0});
    return int(Textures.size()) - 1;
}

int RecordingDevice::AddTexture(const cImage& image) {
    Line("AddTexture", image.GetWidth(), image.GetHeight());
    Textures.push_back(
        {"", image.GetWidth(), image.GetHeight(), image.GetDepth(), image.GetFormat(), image.GetMipMapCount(), 0});
    return int(Textures.size()) - 1;
}

void RecordingDevice::UpdateTexture(int texture, const cList<cImage*>& images, const cList<cRect>& rects) {
    for (int i = 0; i < images.Count(); i++) {
        Line("UpdateTexture", texture, images[i]->GetWidth(), images[i]->GetHeight(), rects[i]);
    }
}

int RecordingDevice::GetShaderID(const char* name, int vertexFormat, const char* defines) {
    Lookups++;
    std::string full = name;
    if (defines) {
        full += std::string("{") + defines + "}";
        std::replace(full.begin(), full.end(), '\n', ';');
    }
    const int id = FindOrAdd(m_Shaders, full);
    m_ShaderFormats.resize(m_Shaders.size(), vertexFormat);
    return id;
}

int RecordingDevice::AddShader(const char* name, int vertexFormat, const char*) {
    m_Shaders.push_back(name);
    m_ShaderFormats.push_back(vertexFormat);
    return int(m_Shaders.size()) - 1;
}

int RecordingDevice::GetShaderConstID(int shader, const char* name) {
    Lookups++;
    return FindOrAdd(m_Consts, NameOf(m_Shaders, shader) + "." + name);
}

void RecordingDevice::SetShader(int shader) {
    m_Shader = shader;
    if (!Quiet) {
        Line("SetShader", NameOf(m_Shaders, shader));
    }
}

void RecordingDevice::SetTexture(int sampler, int texture) {
    if (!Quiet) {
        Line("SetTexture", NameOf(m_Consts, sampler), texture);
    }
}

int RecordingDevice::AddVertexFormat(const cVertex::Format& format) {
    int size = 0;
    for (const cVertex::Attrib& a : format) {
        size += a.Count * cVertexType::SizeOf(a.Type);
    }
    m_FormatSizes.push_back(size);
    return int(m_FormatSizes.size()) - 1;
}

int RecordingDevice::GetVertexSize(int format) const {
    return format >= 0 && format < int(m_FormatSizes.size()) ? m_FormatSizes[size_t(format)] : 0;
}

int RecordingDevice::AddVertexBuffer(const void*, unsigned bytes) {
    Line("AddVertexBuffer", int(bytes));
    return m_Buffers++;
}

int RecordingDevice::AddIndexBuffer(const void*, int count, int indexSize) {
    Line("AddIndexBuffer", count, indexSize);
    return m_Buffers++;
}

void RecordingDevice::DrawArrays(cTopology::Enum topology) {
    Line("DrawArrays", int(topology));
    AddDraw(topology, nullptr, 0, nullptr, 0, 4);
}

void RecordingDevice::DrawArrays(cTopology::Enum topology, const void* vertices, int count) {
    Line("DrawArrays", int(topology), count);
    AddDraw(topology, vertices, count, nullptr, 0, 4);
}

void RecordingDevice::DrawIndexed(cTopology::Enum topology) {
    Line("DrawIndexed", int(topology));
    AddDraw(topology, nullptr, 0, nullptr, 0, 4);
}

void RecordingDevice::DrawIndexed(cTopology::Enum topology, const void* vertices, int vertexCount, const void* indices,
                                  int indexCount, int indexSize) {
    Line("DrawIndexed", int(topology), vertexCount, indexCount);
    AddDraw(topology, vertices, vertexCount, indices, indexCount, indexSize);
}

int RecordingDevice::GetSamplerStateID(cFilter::Enum filter, cAddressMode::Enum u, cAddressMode::Enum v,
                                       cAddressMode::Enum w) {
    Lookups++;
    return filter << 6 | u << 4 | v << 2 | w;
}

int RecordingDevice::GetBlendStateID(cBlendFactor::Enum src, cBlendFactor::Enum dst, cBlendMode::Enum mode,
                                     unsigned writeMask) {
    Lookups++;
    return FindOrAdd(m_States, "blend(" + Text(int(src)) + "," + Text(int(dst)) + "," + Text(int(mode)) + "," +
                                   Text(int(writeMask)) + ")");
}

int RecordingDevice::GetDepthStateID(bool test, bool write, cDepthFunc::Enum func) {
    Lookups++;
    return FindOrAdd(m_States, "depth(" + Text(test) + "," + Text(write) + "," + Text(int(func)) + ")");
}

int RecordingDevice::AddRenderTarget(int width, int height, cFormat::Enum format, bool, int) {
    Line("AddRenderTarget", width, height, int(format));
    Textures.push_back({"", width, height, 1, format, 1, 1});
    return int(Textures.size()) - 1;
}

int RecordingDevice::AddRenderDepth(int target, cFormat::Enum format) {
    Line("AddRenderDepth", target, int(format));
    Textures.push_back({"", Find(target).Width, Find(target).Height, 1, format, 1, 1});
    return int(Textures.size()) - 1;
}

void RecordingDevice::SetRenderTarget(const int* targets, int count, int depth, const int* slices) {
    const auto list = [count](const int* v) {
        std::string s = v ? "[" : "null";
        for (int i = 0; v && i < count; i++) {
            s += (i > 0 ? "," : "") + Text(v[i]);
        }
        return v ? s + "]" : s;
    };
    Line("SetRenderTarget", list(targets), count, depth, list(slices));
}

std::string RecordingDevice::Text(float v) {
    char buffer[32];
    std::snprintf(buffer, sizeof(buffer), "%g", double(v));
    return buffer;
}

std::string RecordingDevice::Text(const cRect& r) {
    return Text(r.x0) + "," + Text(r.y0) + "," + Text(r.x1) + "," + Text(r.y1);
}

int RecordingDevice::FindOrAdd(Names& names, const std::string& name) {
    const auto at = std::find(names.begin(), names.end(), name);
    const int index = int(at - names.begin());
    if (at == names.end()) {
        names.push_back(name);
    }
    return index;
}

std::string RecordingDevice::NameOf(const Names& names, int id) {
    return id >= 0 && id < int(names.size()) ? names[size_t(id)] : std::to_string(id);
}

const RecordingDevice::Texture& RecordingDevice::Find(int texture) const {
    static const Texture s_None;
    return texture >= 0 && texture < int(Textures.size()) ? Textures[size_t(texture)] : s_None;
}

void RecordingDevice::AddDraw(cTopology::Enum topology, const void* vertices, int vertexCount, const void* indices,
                              int indexCount, int indexSize) {
    if (Quiet) {
        return;
    }
    Draw draw;
    draw.Topology = topology;
    draw.Shader = NameOf(m_Shaders, m_Shader);
    draw.VertexCount = vertexCount;
    if (vertices && m_Shader >= 0) {
        const size_t bytes = size_t(vertexCount) * size_t(GetVertexSize(m_ShaderFormats[size_t(m_Shader)]));
        draw.Vertices.assign(static_cast<const unsigned char*>(vertices),
                             static_cast<const unsigned char*>(vertices) + bytes);
    }
    for (int i = 0; i < indexCount; i++) {
        int index = 0;
        std::memcpy(&index, static_cast<const char*>(indices) + i * indexSize, size_t(indexSize));
        draw.Indices.push_back(index);
    }
    m_Draws.push_back(std::move(draw));
}

} // namespace trellis
