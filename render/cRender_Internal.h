// What the sources of the rendering's front end share among themselves.
#pragma once

#include "foundation/cList.h"
#include "mesh/cVertex.h"

namespace trellis {

class cColor;
class cRect;

/// Arguments of a `PushRenderTarget`, for the pop that comes back to it.
struct cRender_RenderTarget {
    cList<int> Targets;
    int Depth = -1;
    cList<int> Slices; ///< One for each target, or none.
};

extern cList<cRender_RenderTarget> cRender_RenderTargetsStack;

/// The state that everything of the interface is drawn with: blended by alpha, no depth, both sides, a shader.
void cRender_SetShapeState(int shader);

/// Indexes of a quad whose corners go left-top, left-bottom, right-bottom, right-top.
inline constexpr int cRender_QuadIndices[6] = {0, 1, 2, 0, 2, 3};

/// Writes those corners' positions.
template <class T> void cRender_SetQuad(T* vertices, const cRect& rect, float z = 0) {
    vertices[0].Pos = {rect.x0, rect.y1, z};
    vertices[1].Pos = {rect.x0, rect.y0, z};
    vertices[2].Pos = {rect.x1, rect.y0, z};
    vertices[3].Pos = {rect.x1, rect.y1, z};
}

/// Appends a quad to scratch lists. @param quad  its six indexes, from 0
template <class T> T* cRender_AddQuad(cList<T>* vertices, cList<int>* indices, const int* quad = cRender_QuadIndices) {
    const int first = vertices->Count(), firstIndex = indices->Count();
    vertices->SetCount(first + 4);
    indices->SetCount(firstIndex + 6);
    int* index = indices->Data() + firstIndex;
    for (int i = 0; i < 6; i++) {
        index[i] = first + quad[i];
    }
    return vertices->Data() + first;
}

} // namespace trellis
