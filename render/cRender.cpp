#include "render/cRender.h"

#include "foundation/cLog.h"
#include "image/cImage.h"
#include "render/cRender_Internal.h"
#include "view/cViewer.h"

#include <cmath>
#include <memory>

namespace trellis {

namespace {

cRender::Stub* (*cRender_Factory)(int type);
cViewer* cRender_Viewer;
bool cRender_BeginFrame;
bool cRender_ExpandTexturesToPowerOfTwo = true;

bool cRender_Wireframe;
int cRender_CurDepthStateID = -1;
int cRender_CurBlendStateID = -1;
cCullMode::Enum cRender_CurCullMode = cCullMode::None;
constinit cRect cRender_CurClipRect = cRect::Empty;

constinit cMat4 cRender_WorldMatrix = cMat4::Identity;
constinit cMat4 cRender_WorldMatrixInverse = cMat4::Identity;
constinit cMat3 cRender_NormalMatrix = cMat3::Identity;
bool cRender_WorldMatrixInverseIsValid = true;
bool cRender_NormalMatrixIsValid = true;
constinit cMat4 cRender_TextureMatrix[4] = {cMat4::Identity, cMat4::Identity, cMat4::Identity, cMat4::Identity};

constinit cList<int> cRender_DepthStatesStack;
constinit cList<int> cRender_BlendStatesStack;
constinit cList<cCullMode::Enum> cRender_CullModesStack;
constinit cList<cRect> cRender_ClipRectsStack;
constinit cList<cMat4> cRender_WorldMatricesStack;

template <class T> void Pop(cList<T>& stack) {
    stack.SetCount(stack.Count() - 1);
}

/// The rule that all state with a single number follows.
template <class T> void Change(T& current, T value, void (cRender::Stub::*set)(T)) {
    if (current != value) {
        (cRender_Instance->*set)(value);
        current = value;
    }
}

template <class T> void PopInto(cList<T>& stack, T& current, void (cRender::Stub::*set)(T)) {
    if (!stack.IsEmpty()) {
        Change(current, stack[stack.Count() - 1], set);
        Pop(stack);
    }
}

/// Rectangles that are worked out anew in each frame must not reach the device because of their last bits.
bool IsSameClip(const cRect& a, const cRect& b) {
    if (a.IsEmpty() && b.IsEmpty()) {
        return true;
    }
    constexpr float Tolerance = 0.001f;
    return std::fabs(a.x0 - b.x0) <= Tolerance && std::fabs(a.y0 - b.y0) <= Tolerance &&
           std::fabs(a.x1 - b.x1) <= Tolerance && std::fabs(a.y1 - b.y1) <= Tolerance;
}

void WorldMatrixChanged() {
    cRender_WorldMatrixInverseIsValid = false;
    cRender_NormalMatrixIsValid = false;
    cRender_Instance->ApplyTransforms();
}

} // namespace

// ---- Life and frames

void cRender::SetFactory(Stub* (*factory)(int type)) {
    cRender_Factory = factory;
}

bool cRender::Init(int type) {
    if (cRender_Instance || !cRender_Factory) {
        return false;
    }
    std::unique_ptr<Stub> device(cRender_Factory(type));
    if (!device || !device->Init(type)) {
        return false;
    }
    cRender_Instance = device.release();
    cRender_BeginFrame = false;
    ResetStates();
    cLog::Message("Registering vertex formats...");
    cVertex::Register();
    return true;
}

void cRender::Free() {
    if (!cRender_Instance) {
        return;
    }
    cRender_Instance->Free();
    delete cRender_Instance;
    cRender_Instance = nullptr;
    cRender_DepthStatesStack.Clear();
    cRender_BlendStatesStack.Clear();
    cRender_CullModesStack.Clear();
    cRender_RenderTargetsStack.Clear();
    cRender_ClipRectsStack.Clear();
    cRender_WorldMatricesStack.Clear();
}

void cRender::ResetStates() {
    cRender_CurDepthStateID = -1;
    cRender_Instance->SetDepthState(cRender_CurDepthStateID);
    cRender_CurBlendStateID = -1;
    cRender_Instance->SetBlendState(cRender_CurBlendStateID);
    cRender_CurCullMode = cCullMode::None;
    cRender_Instance->SetCullMode(cRender_CurCullMode);

    cRender_WorldMatrix = cRender_WorldMatrixInverse = cMat4::Identity;
    cRender_NormalMatrix = cMat3::Identity;
    cRender_WorldMatrixInverseIsValid = cRender_NormalMatrixIsValid = true;
    for (cMat4& m : cRender_TextureMatrix) {
        m = cMat4::Identity;
    }

    cRender_Wireframe = false;
    cRender_Instance->SetWireframe(cRender_Wireframe);
    cRender_CurClipRect = cRect::Empty;
    cRender_Instance->SetClipRect(&cRender_CurClipRect);
}

void cRender::BeginFrame() {
    if (!cRender_BeginFrame) {
        cRender_BeginFrame = true;
        cRender_Instance->BeginFrame();
    }
}

void cRender::EndFrame() {
    if (cRender_BeginFrame) {
        cRender_BeginFrame = false;
        cRender_Instance->EndFrame();
    }
}

// ---- State

void cRender::SetViewer(cViewer* viewer) {
    cRender_Viewer = viewer;
    if (viewer) {
        cRender_Instance->SetViewport(&viewer->Viewport);
        cRender_Instance->ApplyTransforms();
    }
}

cViewer* cRender::GetViewer() {
    return cRender_Viewer;
}

void cRender::SetDepthState(int state) {
    Change(cRender_CurDepthStateID, state, &Stub::SetDepthState);
}

void cRender::SetBlendState(int state) {
    Change(cRender_CurBlendStateID, state, &Stub::SetBlendState);
}

void cRender::SetCullMode(cCullMode::Enum mode) {
    Change(cRender_CurCullMode, mode, &Stub::SetCullMode);
}

void cRender::SetWireframe(bool on) {
    Change(cRender_Wireframe, on, &Stub::SetWireframe);
}

bool cRender::GetWireframe() {
    return cRender_Wireframe;
}

void cRender::PushDepthState() {
    cRender_DepthStatesStack.Add(cRender_CurDepthStateID);
}

void cRender::PopDepthState() {
    PopInto(cRender_DepthStatesStack, cRender_CurDepthStateID, &Stub::SetDepthState);
}

void cRender::PushBlendState() {
    cRender_BlendStatesStack.Add(cRender_CurBlendStateID);
}

void cRender::PopBlendState() {
    PopInto(cRender_BlendStatesStack, cRender_CurBlendStateID, &Stub::SetBlendState);
}

void cRender::PushCullMode() {
    cRender_CullModesStack.Add(cRender_CurCullMode);
}

void cRender::PopCullMode() {
    PopInto(cRender_CullModesStack, cRender_CurCullMode, &Stub::SetCullMode);
}

void cRender::SetClipRect(const cRect& rect) {
    if (!IsSameClip(cRender_CurClipRect, rect)) {
        cRender_CurClipRect = rect;
        cRender_Instance->SetClipRect(&cRender_CurClipRect);
    }
}

const cRect& cRender::GetClipRect() {
    return cRender_CurClipRect;
}

void cRender::PushClipRect() {
    cRender_ClipRectsStack.Add(cRender_CurClipRect);
}

void cRender::PopClipRect() {
    if (!cRender_ClipRectsStack.IsEmpty()) {
        SetClipRect(cRender_ClipRectsStack[cRender_ClipRectsStack.Count() - 1]);
        Pop(cRender_ClipRectsStack);
    }
}

// ---- Transforms

void cRender::SetWorldMatrix(const cMat4& m) {
    cRender_WorldMatrix = m;
    WorldMatrixChanged();
}

const cMat4& cRender::GetWorldMatrix() {
    return cRender_WorldMatrix;
}

const cMat4& cRender::GetWorldMatrixInverse() {
    if (!cRender_WorldMatrixInverseIsValid) {
        if (!cMat4::Invert(cRender_WorldMatrix, &cRender_WorldMatrixInverse)) {
            cRender_WorldMatrixInverse = cMat4::Identity;
        }
        cRender_WorldMatrixInverseIsValid = true;
    }
    return cRender_WorldMatrixInverse;
}

const cMat3& cRender::GetNormalMatrix() {
    if (!cRender_NormalMatrixIsValid) {
        cRender_NormalMatrix = cRender_WorldMatrix.ToNormalMatrix();
        cRender_NormalMatrixIsValid = true;
    }
    return cRender_NormalMatrix;
}

void cRender::PushWorldMatrix() {
    cRender_WorldMatricesStack.Add(cRender_WorldMatrix);
}

void cRender::PopWorldMatrix() {
    if (!cRender_WorldMatricesStack.IsEmpty()) {
        SetWorldMatrix(cRender_WorldMatricesStack[cRender_WorldMatricesStack.Count() - 1]);
        Pop(cRender_WorldMatricesStack);
    }
}

void cRender::SetTextureMatrix(const cMat4& m, int stage) {
    if (stage >= 0 && stage < int(std::size(cRender_TextureMatrix))) {
        cRender_TextureMatrix[stage] = m;
        cRender_Instance->ApplyTransforms();
    }
}

const cMat4& cRender::GetTextureMatrix(int stage) {
    return cRender_TextureMatrix[stage >= 0 && stage < int(std::size(cRender_TextureMatrix)) ? stage : 0];
}

// ---- Resources: what the device's own functions do not do alone

bool cRender::GetExpandTexturesToPowerOfTwo() {
    return cRender_ExpandTexturesToPowerOfTwo;
}

void cRender::SetExpandTexturesToPowerOfTwo(bool on) {
    cRender_ExpandTexturesToPowerOfTwo = on;
}

int cRender::GetTextureID(const char* filePn, int samplerState) {
    const int texture = cRender_Instance->GetTextureID(filePn);
    cRender_Instance->SetSamplerState(texture, samplerState);
    return texture;
}

int cRender::AddTexture(const char* filePn, int samplerState) {
    const int texture = cRender_Instance->AddTexture(filePn);
    cRender_Instance->SetSamplerState(texture, samplerState);
    return texture;
}

int cRender::AddTexture(const cImage& image, int samplerState) {
    const int texture = cRender_Instance->AddTexture(image);
    cRender_Instance->SetSamplerState(texture, samplerState);
    return texture;
}

void cRender::UpdateTexture(int texture, const cImage& image, const cList<cRect>& rects) {
    cList<cImage*> images;
    for (const cRect& rect : rects) {
        images.Add(new cImage(image, rect));
    }
    cRender_Instance->UpdateTexture(texture, images, rects);
    for (cImage* cut : images) {
        delete cut;
    }
}

void cRender::SetTexture(int sampler, int texture, int samplerState) {
    cRender_Instance->SetSamplerState(texture, samplerState);
    cRender_Instance->SetTexture(sampler, texture);
}

void cRender::SetShaderConst(int id, const cColor* v, int count) {
    static_assert(sizeof(cColor) == sizeof(cVec4));
    cRender_Instance->SetShaderConst(id, reinterpret_cast<const cVec4*>(v), count);
}

// Owners of these may outlive the device at shutdown.

void cRender::FreeTexture(int texture) {
    if (cRender_Instance) {
        cRender_Instance->FreeTexture(texture);
    }
}

void cRender::FreeShader(int shader) {
    if (cRender_Instance) {
        cRender_Instance->FreeShader(shader);
    }
}

void cRender::FreeVertexBuffer(int buffer) {
    if (cRender_Instance) {
        cRender_Instance->FreeVertexBuffer(buffer);
    }
}

void cRender::FreeIndexBuffer(int buffer) {
    if (cRender_Instance) {
        cRender_Instance->FreeIndexBuffer(buffer);
    }
}

} // namespace trellis
