#include "host/cSoftwareShader.h"

#include "foundation/cTimer.h"
#include "math/cRect.h"
#include "render/cRender.h"
#include "view/cViewer.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <iterator>

namespace trellis {

namespace {

using Kind = cSoftwareShader::Kind;

// clang-format off
constexpr Kind s_AutoKinds[] = { // by cRender::AutoConst
    Kind::Float, Kind::Float, Kind::Float, Kind::Float, // viewport
    Kind::Mat4, Kind::Mat4,                             // world
    Kind::Vec3,                                         // viewer
    Kind::Mat4, Kind::Mat4, Kind::Mat4, Kind::Mat4,     // view and projection
    Kind::Mat4, Kind::Mat4,                             // screen
    Kind::Mat3, Kind::Mat3,                             // normals
    Kind::Float, Kind::Float,                           // times
    Kind::Mat4, Kind::Mat4, Kind::Mat4, Kind::Mat4,     // textures
};
// clang-format on
static_assert(std::size(s_AutoKinds) == cRender::AutoConst::Count, "constant added without its kind");

constexpr int s_Floats[] = {1, 1, 2, 3, 4, 9, 16}; // by kind; an int is as large
static_assert(std::size(s_Floats) == size_t(Kind::Mat4) + 1, "kind added without its size");

struct Entry {
    const char* Name;
    cSoftwareShader::Factory Make;
};
cList<Entry>& Registry() {
    static cList<Entry> s_Entries;
    return s_Entries;
}

template <class List> int IndexOfName(const List& list, const char* name) {
    for (int i = 0; i < list.Count(); i++) {
        if (cStr::Compare(list[i].Name, name) == 0) {
            return i;
        }
    }
    return -1;
}

template <class T> void Store(void* out, const T& value) {
    *static_cast<T*>(out) = value;
}

/// Points of a viewport, from its lower left corner, to clip space.
cMat4 ScreenOf(const cRect& viewport) {
    return {2 / viewport.Width(), 0, 0, 0, 0, 2 / viewport.Height(), 0, 0, 0, 0, 1, 0, -1, -1, 0, 1};
}

cMat4 InverseOf(const cMat4& m) {
    cMat4 inverse = cMat4::Identity;
    cMat4::Invert(m, &inverse);
    return inverse;
}

void StoreAuto(cRender::AutoConst::Enum index, const cRect& viewport, void* out) {
    using Auto = cRender::AutoConst;
    const cViewer* viewer = cRender::GetViewer();
    const auto matrix = [viewer](cMat4 cViewer::*member) { return viewer ? viewer->*member : cMat4::Identity; };
    switch (index) {
    case Auto::ViewportWidth:
        return Store(out, viewport.Width());
    case Auto::ViewportHeight:
        return Store(out, viewport.Height());
    case Auto::ViewportInvWidth:
        return Store(out, 1 / viewport.Width());
    case Auto::ViewportInvHeight:
        return Store(out, 1 / viewport.Height());
    case Auto::WorldMatrix:
        return Store(out, cRender::GetWorldMatrix());
    case Auto::WorldMatrixInverse:
        return Store(out, cRender::GetWorldMatrixInverse());
    case Auto::ViewerPos:
        return Store(out, viewer ? viewer->Position : cVec3::Zero);
    case Auto::WorldViewMatrix:
        return Store(out, cRender::GetWorldMatrix() * matrix(&cViewer::View));
    case Auto::ViewProjectionMatrix:
        return Store(out, matrix(&cViewer::ViewProjection));
    case Auto::WorldViewProjectionMatrix:
        return Store(out, cRender::GetWorldMatrix() * matrix(&cViewer::ViewProjection));
    case Auto::ProjectionMatrix:
        return Store(out, matrix(&cViewer::Projection));
    case Auto::ScreenMatrix:
        return Store(out, viewer ? viewer->Screen : ScreenOf(viewport));
    case Auto::ScreenMatrixInverse:
        return Store(out, viewer ? viewer->ScreenInverse : InverseOf(ScreenOf(viewport)));
    case Auto::NormalMatrix:
        return Store(out, cRender::GetNormalMatrix());
    case Auto::NormalViewMatrix:
        return Store(out, cRender::GetNormalMatrix() * matrix(&cViewer::View).ToMat3());
    case Auto::TimeSec:
        return Store(out, cTimer::GetTimeSec());
    case Auto::FrameTimeSec:
        return Store(out, cTimer::GetFrameTimeSec());
    case Auto::TextureMatrix0:
    case Auto::TextureMatrix1:
    case Auto::TextureMatrix2:
    case Auto::TextureMatrix3:
        return Store(out, cRender::GetTextureMatrix(index - Auto::TextureMatrix0));
    case Auto::Count:
        break;
    }
}

} // namespace

cSoftwareShader::Layout::Layout(const cVertex::Format& format) : Format(format) {
    for (const cVertex::Attrib& attrib : format) {
        Size += cVertexType::SizeOf(attrib.Type) * attrib.Count;
    }
}

int cSoftwareShader::Layout::OffsetOf(const char* name, cVertexType::Enum type, int count) const {
    int offset = 0;
    for (const cVertex::Attrib& attrib : Format) {
        if (attrib.Name == name && attrib.Type == type && attrib.Count == count) {
            return offset;
        }
        offset += cVertexType::SizeOf(attrib.Type) * attrib.Count;
    }
    return -1;
}

void cSoftwareShader::Pixels(Span& span) const {
    std::copy_n(span.Varyings[0], span.Count, span.Colors);
}

void cSoftwareShader::Register(const char* name, Factory factory) {
    const int index = IndexOfName(Registry(), name);
    if (index >= 0) {
        Registry()[index].Make = factory;
    } else {
        Registry().Add({name, factory});
    }
}

cSoftwareShader::Factory cSoftwareShader::Find(const char* name) {
    const int index = IndexOfName(Registry(), name);
    return index >= 0 ? Registry()[index].Make : nullptr;
}

size_t cSoftwareShader::SizeOf(const Const& c) {
    return size_t(c.Count) * size_t(s_Floats[int(c.Type)]) * sizeof(float);
}

void cSoftwareShader::Declare(const char* name, Kind kind, void* values, int count) {
    const int autoIndex = cRender::AutoConst::FromString(name);
    assert(autoIndex < 0 || (s_AutoKinds[autoIndex] == kind && count == 1));
    m_Consts.Add({name, values, count, autoIndex, kind});
}

void cSoftwareShader::Declare(const char* name, cSoftwareSampler* sampler) {
    Samplers.Add({name, sampler});
}

int cSoftwareShader::FindConst(const char* name) const {
    return IndexOfName(m_Consts, name);
}

int cSoftwareShader::FindSampler(const char* name) const {
    return IndexOfName(Samplers, name);
}

void cSoftwareShader::SetConst(int index, Kind kind, const void* values, int count) {
    const Const& target = m_Consts[index];
    count = std::min(count, target.Count);
    if (!values || count < 1) {
        return;
    }
    if (target.Type == kind) {
        std::memcpy(target.Values, values, size_t(count) * size_t(s_Floats[int(kind)]) * sizeof(float));
    } else if (target.Type == Kind::Float && kind == Kind::Int) {
        *static_cast<float*>(target.Values) = float(*static_cast<const int*>(values));
    } else if (target.Type == Kind::Int && kind == Kind::Float && count == 1) {
        *static_cast<int*>(target.Values) = cMath::TruncateToInt(*static_cast<const float*>(values));
    }
}

bool cSoftwareShader::HasValuesOf(const cSoftwareShader& other) const {
    for (int i = 0; i < m_Consts.Count(); i++) {
        if (std::memcmp(m_Consts[i].Values, other.m_Consts[i].Values, SizeOf(m_Consts[i])) != 0) {
            return false;
        }
    }
    for (int i = 0; i < Samplers.Count(); i++) {
        if (*Samplers[i].Slot != *other.Samplers[i].Slot) {
            return false;
        }
    }
    return true;
}

void cSoftwareShader::CopyValuesOf(const cSoftwareShader& other) {
    for (int i = 0; i < m_Consts.Count(); i++) {
        std::memcpy(m_Consts[i].Values, other.m_Consts[i].Values, SizeOf(m_Consts[i]));
    }
    for (int i = 0; i < Samplers.Count(); i++) {
        *Samplers[i].Slot = *other.Samplers[i].Slot;
    }
}

void cSoftwareShader::SetAutoConsts(const cRect& viewport) {
    for (const Const& c : m_Consts) {
        if (c.Auto >= 0) {
            StoreAuto(cRender::AutoConst::Enum(c.Auto), viewport, c.Values);
        }
    }
}

} // namespace trellis
