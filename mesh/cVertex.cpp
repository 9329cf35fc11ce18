#include "mesh/cVertex.h"

#include "render/cRender.h"

#include <initializer_list>

namespace trellis {

namespace {

struct Row {
    const char* Name;
    cVertexUsage::Enum Usage;
    cVertexType::Enum Type;
    int Count;
};

constexpr Row s_Pos = {"Pos", cVertexUsage::Position, cVertexType::Float, 3};
constexpr Row s_Color = {"Color", cVertexUsage::Custom, cVertexType::Byte, 4};
constexpr Row s_Normal = {"Normal", cVertexUsage::Normal, cVertexType::Float, 3};
constexpr Row s_TexCoord = {"TexCoord", cVertexUsage::TexCoord, cVertexType::Float, 2};
constexpr Row s_Tangent = {"Tangent", cVertexUsage::Tangent, cVertexType::Float, 3};
constexpr Row s_BiTangent = {"BiTangent", cVertexUsage::BiTangent, cVertexType::Float, 3};

constexpr Row CustomFloats(const char* name, int count) {
    return {name, cVertexUsage::Custom, cVertexType::Float, count};
}

cVertex::Format FormatOf(std::initializer_list<Row> rows) {
    cVertex::Format format;
    for (const Row& row : rows) {
        format.Add(row.Name, row.Usage, row.Type, row.Count);
    }
    return format;
}

template <class... Vertices> void RegisterAll() {
    ((Vertices::FormatID = cRender::AddVertexFormat(Vertices::GetFormat())), ...);
}

} // namespace

bool cVertex::Attrib::IsValid() const {
    const bool isFloat = Type == cVertexType::Float;
    switch (Usage) {
    case cVertexUsage::Custom:
        return isFloat ? Count >= 1 && Count <= 4 : Type == cVertexType::Byte && Count == 4;
    case cVertexUsage::Position:
        return isFloat && (Count == 3 || Count == 4);
    case cVertexUsage::Normal:
    case cVertexUsage::Tangent:
    case cVertexUsage::BiTangent:
        return isFloat && Count == 3;
    case cVertexUsage::TexCoord:
        return isFloat && Count >= 2 && Count <= 4;
    case cVertexUsage::BlendIndices:
    case cVertexUsage::BlendWeights:
        return isFloat && Count == 4;
    }
    return false;
}

void cVertex::Format::Add(const char* name, cVertexUsage::Enum usage, cVertexType::Enum type, int count) {
    Add(Attrib{name, usage, type, count});
}

bool cVertex::Format::HasUsage(cVertexUsage::Enum usage, int* offset, int* count) const {
    int bytes = 0;
    for (const Attrib& attrib : *this) {
        if (attrib.Usage == usage) {
            if (offset) {
                *offset = bytes;
            }
            if (count) {
                *count = attrib.Count;
            }
            return true;
        }
        bytes += cVertexType::SizeOf(attrib.Type) * attrib.Count;
    }
    return false;
}

cVertex::Format cVertex::PositionColored::GetFormat() {
    return FormatOf({s_Pos, s_Color});
}

cVertex::Format cVertex::PositionColoredTextured::GetFormat() {
    return FormatOf({s_Pos, s_Color, s_TexCoord});
}

cVertex::Format cVertex::PositionColoredTextured2::GetFormat() {
    return FormatOf(
        {s_Pos, s_Color, {"TexCoord0", cVertexUsage::TexCoord, cVertexType::Float, 2}, CustomFloats("TexCoord1", 2)});
}

cVertex::Format cVertex::Particle::GetFormat() {
    return FormatOf({s_Pos, s_Color, s_TexCoord, CustomFloats("RightUp", 2), CustomFloats("Forward", 3)});
}

cVertex::Format cVertex::PositionNormal::GetFormat() {
    return FormatOf({s_Pos, s_Normal});
}

cVertex::Format cVertex::PositionNormalColored::GetFormat() {
    return FormatOf({s_Pos, s_Normal, s_Color});
}

cVertex::Format cVertex::PositionNormalTextured::GetFormat() {
    return FormatOf({s_Pos, s_Normal, s_TexCoord});
}

cVertex::Format cVertex::PositionOnly::GetFormat() {
    return FormatOf({s_Pos});
}

cVertex::Format cVertex::PositionRhw::GetFormat() {
    return FormatOf({{"Pos", cVertexUsage::Position, cVertexType::Float, 4}});
}

cVertex::Format cVertex::PositionTextured::GetFormat() {
    return FormatOf({s_Pos, s_TexCoord});
}

cVertex::Format cVertex::Bump::GetFormat() {
    return FormatOf({s_Pos, s_Normal, s_TexCoord, s_Tangent, s_BiTangent});
}

cVertex::Format cVertex::Anim::GetFormat() {
    Format format = Bump::GetFormat();
    format.Add("Indices", cVertexUsage::BlendIndices, cVertexType::Float, 4);
    format.Add("Weights", cVertexUsage::BlendWeights, cVertexType::Float, 4);
    return format;
}

cVertex::Format cVertex::ShadowVolume::GetFormat() {
    return FormatOf({CustomFloats("Pos0", 3), CustomFloats("Pos1", 3), CustomFloats("Pos2", 3),
                     CustomFloats("Indices0", 4), CustomFloats("Weights0", 4), CustomFloats("Indices1", 4),
                     CustomFloats("Weights1", 4), CustomFloats("Indices2", 4), CustomFloats("Weights2", 4)});
}

void cVertex::Register() {
    // Devices number the formats as they come: this order keeps the numbers the same everywhere.
    RegisterAll<PositionColored, PositionColoredTextured, PositionColoredTextured2, Particle, PositionNormal,
                PositionNormalColored, PositionNormalTextured, PositionOnly, PositionRhw, PositionTextured, Bump, Anim,
                ShadowVolume>();
}

} // namespace trellis
