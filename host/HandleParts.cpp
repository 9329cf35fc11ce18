#include "host/HandleParts.h"

#include "render/cRender.h"
#include "ui/cWidgets.h"
#include "view/cMoveTool.h"
#include "view/cRotateTool.h"
#include "view/cScaleTool.h"
#include "view/cViewer.h"

namespace trellis {

namespace {

/// Where to take hold of a handle of that kind, in the world.
bool HandleOf(const cManipulator& tool, const std::string& handle, cVec3* position) {
    const bool isRing = dynamic_cast<const cRotateTool*>(&tool);
    if (handle == "free") {
        const cViewer& v = *cRender::GetViewer();
        const cVec3 aside = (v.Right + v.Up) * -0.5f;
        *position = isRing ? tool.Center + cVec3::Normalize(tool.Plane.normal + aside) * tool.Radius
                           : tool.Center + aside * (tool.HasFreeInner ? 2 * tool.Radius : tool.Radius * 0.5f);
        return true;
    }
    const int axis = handle == "x" ? 0 : handle == "y" ? 1 : handle == "z" ? 2 : -1;
    if (axis == -1) {
        return false;
    }
    const cSeg& along = tool.Axes[axis];
    const cVec3& n = tool.Plane.normal; // a ring is taken where it is nearest
    *position = isRing
                    ? tool.Center + cVec3::Normalize(n - along.direction * cVec3::Dot(n, along.direction)) * tool.Radius
                    : along.GetPoint(0.8f);
    return true;
}

} // namespace

bool FindHandle(const std::string& name, cVec2* position) {
    const std::string kind = name.substr(0, name.find('/')), handle = name.substr(name.find('/') + 1);
    for (cWidget* widget : cWidgets::GetLayer(cManipulator::Layer)) {
        auto* tool = widget ? dynamic_cast<cManipulator*>(widget) : nullptr;
        const char* its = dynamic_cast<cMoveTool*>(widget)     ? "move"
                          : dynamic_cast<cRotateTool*>(widget) ? "rotate"
                                                               : "scale";
        cVec3 world;
        if (tool && kind == its && tool->CalcFrame() && HandleOf(*tool, handle, &world)) {
            cRender::GetViewer()->WorldToClosestScreenPoint(world, position);
            return true;
        }
    }
    return false;
}

} // namespace trellis
