// Textures, shaders and buffers of the device: what has an id and a life.
#include "files/cIO.h"
#include "host/cSoftwareDevice.h"

#include <algorithm>
#include <climits>
#include <cmath>

namespace trellis {

template <class T> int cSoftwareDevice::Add(Table<T>& table, std::unique_ptr<T> item) {
    if (table.size() >= size_t(INT_MAX)) {
        return -1;
    }
    table.push_back(std::move(item));
    return int(table.size()) - 1;
}

template <class T> void cSoftwareDevice::Release(Table<T>& table, int id) {
    if (T* item = At(table, id); item && --item->Requests == 0) {
        table[size_t(id)].reset();
    }
}

// Textures

bool cSoftwareDevice::Load(Texture& texture) {
    cImage image;
    return cIO::LoadImage(texture.FilePn, &image) && texture.Data.Init(image);
}

int cSoftwareDevice::FindTexture(const char* filePn) const {
    for (size_t i = 0; i < m_Textures.size(); i++) {
        if (const Texture* texture = m_Textures[i].get();
            texture && !texture->FilePn.IsEmpty() && cStr::ComparePath(texture->FilePn, filePn) == 0) {
            return int(i);
        }
    }
    return -1;
}

int cSoftwareDevice::GetTextureID(const char* filePn) {
    if (!filePn || !*filePn) {
        return -1;
    }
    const int id = FindTexture(filePn);
    if (id < 0) {
        return AddTexture(filePn);
    }
    m_Textures[size_t(id)]->Requests++;
    return id;
}

int cSoftwareDevice::AddTexture(const char* filePn) {
    if (!filePn || !*filePn) {
        return -1;
    }
    auto texture = std::make_unique<Texture>();
    texture->FilePn = filePn;
    return Load(*texture) ? Add(m_Textures, std::move(texture)) : -1;
}

int cSoftwareDevice::AddTexture(const cImage& image) {
    auto texture = std::make_unique<Texture>();
    return texture->Data.Init(image) ? Add(m_Textures, std::move(texture)) : -1;
}

void cSoftwareDevice::ReloadTextures() {
    m_Queue.Flush();
    for (const auto& texture : m_Textures) {
        if (texture && !texture->FilePn.IsEmpty()) {
            Load(*texture);
        }
    }
}

void cSoftwareDevice::ReloadTexture(int id) {
    m_Queue.Flush();
    if (Texture* texture = At(m_Textures, id); texture && !texture->FilePn.IsEmpty()) {
        Load(*texture);
    }
}

void cSoftwareDevice::ReloadTexture(const char* filePn) {
    if (filePn) {
        ReloadTexture(FindTexture(filePn));
    }
}

void cSoftwareDevice::UnloadTextures() {
    m_Queue.Flush();
    for (const auto& texture : m_Textures) {
        if (texture && !texture->FilePn.IsEmpty()) {
            texture->Data.Free();
        }
    }
}

void cSoftwareDevice::UpdateTexture(int id, const cList<cImage*>& images, const cList<cRect>& rects) {
    m_Queue.Flush();
    Texture* texture = At(m_Textures, id);
    for (int i = 0; texture && i < std::min(images.Count(), rects.Count()); i++) {
        const int x = cMath::TruncateToInt(rects[i].x0), y = cMath::TruncateToInt(rects[i].y0); // as images are cut
        if (images[i] && x != INT_MIN && y != INT_MIN) {
            texture->Data.Update(*images[i], x, y);
        }
    }
}

void cSoftwareDevice::FreeTexture(int id) {
    m_Queue.Flush();
    Release(m_Textures, id);
}

const cSoftwareTexture* cSoftwareDevice::PixelsOf(int id) const {
    const Texture* texture = At(m_Textures, id);
    return texture ? &texture->Data : nullptr;
}

const char* cSoftwareDevice::GetTextureFilePn(int id) const {
    const Texture* texture = At(m_Textures, id);
    return texture ? texture->FilePn.Text() : "";
}

int cSoftwareDevice::GetTextureWidth(int id) const {
    const cSoftwareTexture* texture = PixelsOf(id);
    return texture ? texture->GetWidth() : 0;
}

int cSoftwareDevice::GetTextureHeight(int id) const {
    const cSoftwareTexture* texture = PixelsOf(id);
    return texture ? texture->GetHeight() : 0;
}

int cSoftwareDevice::GetTextureDepth(int id) const {
    const cSoftwareTexture* texture = PixelsOf(id);
    return texture ? texture->GetDepth() : 1; // 0 would be a cube
}

int cSoftwareDevice::GetTextureFormat(int id) const {
    const cSoftwareTexture* texture = PixelsOf(id);
    return texture ? texture->GetFormat() : cFormat::None;
}

int cSoftwareDevice::GetTextureMipMapCount(int id) const {
    const cSoftwareTexture* texture = PixelsOf(id);
    return texture ? texture->GetMipMapCount() : 0;
}

int cSoftwareDevice::GetTextureRenderTargetUsage(int id) const {
    const cSoftwareTexture* texture = PixelsOf(id);
    return texture ? int(texture->GetUsage()) : 0;
}

void cSoftwareDevice::SetSamplerState(int id, int samplerState) {
    if (Texture* texture = At(m_Textures, id)) {
        const bool isKnown = samplerState >= 0 && samplerState < m_SamplerStates.Count();
        texture->Mode = isKnown ? m_SamplerStates[samplerState] : cSoftwareSampler::State();
    }
}

// Render targets

int cSoftwareDevice::AddRenderTarget(int width, int height, cFormat::Enum format, bool isCube, int depth) {
    auto texture = std::make_unique<Texture>();
    return texture->Data.InitColor(format, width, height, isCube ? 0 : std::max(depth, 1))
               ? Add(m_Textures, std::move(texture))
               : -1;
}

int cSoftwareDevice::AddRenderDepth(int target, cFormat::Enum format) {
    const Texture* owner = At(m_Textures, target);
    if (!owner || owner->Data.GetUsage() != cSoftwareTexture::Usage::Color) {
        return -1;
    }
    auto texture = std::make_unique<Texture>();
    texture->Owner = target;
    return texture->Data.InitDepth(format, owner->Data.GetWidth(), owner->Data.GetHeight())
               ? Add(m_Textures, std::move(texture))
               : -1;
}

void cSoftwareDevice::SetRenderTargetSize(int target, int width, int height) {
    m_Queue.Flush();
    Texture* texture = At(m_Textures, target);
    if (!texture || texture->Data.GetUsage() != cSoftwareTexture::Usage::Color ||
        !cSoftwareTexture::IsSize(width, height)) {
        return;
    }
    cSoftwareTexture fresh;
    if (!fresh.InitColor(texture->Data.GetFormat(), width, height, texture->Data.GetDepth())) {
        return;
    }
    texture->Data = std::move(fresh);
    for (const auto& other : m_Textures) {
        if (other && other->Owner == target) {
            other->Data.InitDepth(other->Data.GetFormat(), width, height);
        }
    }
}

void cSoftwareDevice::SaveRenderTarget(int target, cImage* out) {
    m_Queue.Flush();
    const cSoftwareTexture* texture = PixelsOf(target);
    if (texture && texture->GetUsage() != cSoftwareTexture::Usage::Image) {
        texture->Save(out);
    } else {
        out->Free();
    }
}

// Shaders

const cSoftwareShader::Layout& cSoftwareDevice::LayoutOf(int vertexFormat) const {
    static const cSoftwareShader::Layout s_NoFormat;
    const bool isKnown = vertexFormat >= 0 && size_t(vertexFormat) < m_Formats.size();
    return isKnown ? m_Formats[size_t(vertexFormat)] : s_NoFormat;
}

int cSoftwareDevice::AddShader(const char* name, int vertexFormat, const char* defines) {
    const cSoftwareShader::Factory factory = name ? cSoftwareShader::Find(name) : nullptr;
    if (!factory) {
        return -1;
    }
    auto shader = std::make_unique<Shader>();
    shader->Make = factory;
    shader->Layout = LayoutOf(vertexFormat);
    shader->Program = factory(shader->Layout, defines ? defines : "");
    shader->Name = name;
    shader->Defines = defines ? defines : "";
    shader->Format = vertexFormat;
    shader->IsShared = false;
    return shader->Program ? Add(m_Shaders, std::move(shader)) : -1;
}

int cSoftwareDevice::GetShaderID(const char* name, int vertexFormat, const char* defines) {
    for (size_t i = 0; name && i < m_Shaders.size(); i++) {
        if (Shader* shader = m_Shaders[i].get(); shader && shader->IsShared && shader->Format == vertexFormat &&
                                                 shader->Name == name && shader->Defines == defines) {
            shader->Requests++;
            return int(i);
        }
    }
    const int id = AddShader(name, vertexFormat, defines);
    if (id >= 0) {
        m_Shaders[size_t(id)]->IsShared = true;
    }
    return id;
}

void cSoftwareDevice::FreeShader(int id) {
    m_Queue.Flush();
    Release(m_Shaders, id);
}

int cSoftwareDevice::SlotOf(cList<Slot>& slots, int shader, int index) {
    if (index < 0) {
        return -1;
    }
    for (int i = 0; i < slots.Count(); i++) {
        if (slots[i].Shader == shader && slots[i].Index == index) {
            return i;
        }
    }
    return slots.Add({shader, index});
}

int cSoftwareDevice::GetShaderConstID(int id, const char* name) {
    const Shader* shader = name ? At(m_Shaders, id) : nullptr;
    return shader ? SlotOf(m_Consts, id, shader->Program->FindConst(name)) : -1;
}

int cSoftwareDevice::GetSamplerID(int id, const char* name) {
    const Shader* shader = name ? At(m_Shaders, id) : nullptr;
    return shader ? SlotOf(m_Samplers, id, shader->Program->FindSampler(name)) : -1;
}

void cSoftwareDevice::SetTexture(int sampler, int texture) {
    if (sampler >= 0 && sampler < m_Samplers.Count()) {
        const Slot& slot = m_Samplers[sampler];
        if (const Shader* shader = At(m_Shaders, slot.Shader)) {
            shader->Program->Samplers[slot.Index].Texture = texture;
        }
    }
}

void cSoftwareDevice::SetConst(int id, cSoftwareShader::Kind kind, const void* values, int count) {
    if (id >= 0 && id < m_Consts.Count()) {
        const Slot& slot = m_Consts[id];
        if (const Shader* shader = At(m_Shaders, slot.Shader)) {
            shader->Program->SetConst(slot.Index, kind, values, count);
        }
    }
}

void cSoftwareDevice::SetShaderConst(int id, int v) {
    SetConst(id, cSoftwareShader::Kind::Int, &v, 1);
}
void cSoftwareDevice::SetShaderConst(int id, float v) {
    SetConst(id, cSoftwareShader::Kind::Float, &v, 1);
}
void cSoftwareDevice::SetShaderConst(int id, const cVec2& v) {
    SetConst(id, cSoftwareShader::Kind::Vec2, &v, 1);
}
void cSoftwareDevice::SetShaderConst(int id, const cVec3& v) {
    SetConst(id, cSoftwareShader::Kind::Vec3, &v, 1);
}
void cSoftwareDevice::SetShaderConst(int id, const cVec4& v) {
    SetConst(id, cSoftwareShader::Kind::Vec4, &v, 1);
}
void cSoftwareDevice::SetShaderConst(int id, const cMat3& v) {
    SetConst(id, cSoftwareShader::Kind::Mat3, &v, 1);
}
void cSoftwareDevice::SetShaderConst(int id, const cMat4& v) {
    SetConst(id, cSoftwareShader::Kind::Mat4, &v, 1);
}
void cSoftwareDevice::SetShaderConst(int id, const float* v, int count) {
    SetConst(id, cSoftwareShader::Kind::Float, v, count);
}
void cSoftwareDevice::SetShaderConst(int id, const cVec2* v, int count) {
    SetConst(id, cSoftwareShader::Kind::Vec2, v, count);
}
void cSoftwareDevice::SetShaderConst(int id, const cVec3* v, int count) {
    SetConst(id, cSoftwareShader::Kind::Vec3, v, count);
}
void cSoftwareDevice::SetShaderConst(int id, const cVec4* v, int count) {
    SetConst(id, cSoftwareShader::Kind::Vec4, v, count);
}

// Vertices

int cSoftwareDevice::AddVertexFormat(const cVertex::Format& format) {
    m_Formats.emplace_back(format);
    return int(m_Formats.size()) - 1;
}

int cSoftwareDevice::GetVertexSize(int format) const {
    return format >= 0 && size_t(format) < m_Formats.size() ? m_Formats[size_t(format)].Size : 0;
}

int cSoftwareDevice::AddVertexBuffer(const void* vertices, unsigned bytes) {
    if (!vertices || bytes == 0 || bytes > unsigned(INT_MAX)) {
        return -1;
    }
    const auto* from = static_cast<const unsigned char*>(vertices);
    auto buffer = std::make_unique<Buffer>();
    buffer->Bytes.assign(from, from + bytes);
    return Add(m_VertexBuffers, std::move(buffer));
}

int cSoftwareDevice::AddIndexBuffer(const void* indices, int count, int indexSize) {
    if (!indices || count < 1 || (indexSize != 2 && indexSize != 4) || count > INT_MAX / indexSize) {
        return -1;
    }
    const auto* from = static_cast<const unsigned char*>(indices);
    auto buffer = std::make_unique<Buffer>();
    buffer->Bytes.assign(from, from + size_t(count) * size_t(indexSize));
    buffer->IndexSize = indexSize;
    return Add(m_IndexBuffers, std::move(buffer));
}

void cSoftwareDevice::FreeVertexBuffer(int id) {
    if (At(m_VertexBuffers, id)) {
        m_VertexBuffers[size_t(id)].reset();
    }
}

void cSoftwareDevice::FreeIndexBuffer(int id) {
    if (At(m_IndexBuffers, id)) {
        m_IndexBuffers[size_t(id)].reset();
    }
}

} // namespace trellis
