// The stack of render targets: each runs with its own viewport and no clip, and the outer ones come back exactly.
#include "render/cRender.h"
#include "render/cRender_Internal.h"
#include "view/cViewer.h"

#include <algorithm>

namespace trellis {

constinit cList<cRender_RenderTarget> cRender_RenderTargetsStack;

namespace {

void SetTarget(const cRender_RenderTarget& t) {
    cRender_Instance->SetRenderTarget(t.Targets.IsEmpty() ? nullptr : t.Targets.Data(), t.Targets.Count(), t.Depth,
                                      t.Slices.IsEmpty() ? nullptr : t.Slices.Data());
}

} // namespace

void cRender::PushRenderTarget(const int* targets, int count, int depth, const int* slices, bool copyAspect) {
    cRender_RenderTarget target;
    target.Depth = depth;
    if (count > 0) {
        target.Targets.AddRange(targets, count);
        if (slices) {
            target.Slices.AddRange(slices, count);
        }
    }
    cRender_RenderTargetsStack.Add(target);
    static int s_DeepestStack = -1; // for a debugger's eyes
    s_DeepestStack = std::max(s_DeepestStack, cRender_RenderTargetsStack.Count());

    cRender_Instance->SetRenderTarget(targets, count, depth, slices);

    if (cViewer* viewer = GetViewer()) {
        viewer->PushState();
        if (copyAspect) {
            viewer->Aspect = viewer->GetAspect();
            viewer->Update(false);
        }
        const int first = count > 0 ? targets[0] : -1;
        const int width = cRender_Instance->GetTextureWidth(first);
        const int height = cRender_Instance->GetTextureHeight(first);
        viewer->Viewport = cRect(0, 0, float(width), float(height));
        viewer->Update(false);
        SetViewer(viewer);
    }

    PushClipRect();
    SetClipRect(cRect::Empty);
}

void cRender::PopRenderTarget() {
    if (cRender_RenderTargetsStack.IsEmpty()) {
        return;
    }
    cRender_RenderTargetsStack.RemoveAt(cRender_RenderTargetsStack.Count() - 1);
    if (cRender_RenderTargetsStack.IsEmpty()) {
        cRender_Instance->SetRenderTarget(nullptr, 0, -1, nullptr);
    } else {
        SetTarget(cRender_RenderTargetsStack[cRender_RenderTargetsStack.Count() - 1]);
    }

    if (cViewer* viewer = GetViewer()) {
        viewer->PopState();
        cRender_Instance->SetViewport(&viewer->Viewport);
        cRender_Instance->ApplyTransforms();
    }
    PopClipRect();
}

int cRender::AddRenderTarget(int width, int height, cFormat::Enum format, int samplerState, bool a, int b) {
    const int target = cRender_Instance->AddRenderTarget(width, height, format, a, b);
    cRender_Instance->SetSamplerState(target, samplerState);
    return target;
}

} // namespace trellis
