// The vertex layouts that everything is drawn with, and what describes them to a device.
#pragma once

#include "foundation/cList.h"
#include "foundation/cStr.h"
#include "math/cVec2.h"
#include "math/cVec3.h"
#include "math/cVec4.h"
#include "mesh/cVertexType.h"
#include "mesh/cVertexUsage.h"

namespace trellis {

/// `T v;` leaves the fields of a vertex alone, `T()` is zero. A colour is packed as by `cColor::ToDword`: red in the
/// low byte, then green, blue, alpha. Blend indices are whole numbers in floats.
class cVertex {
public:
    struct Attrib {
        cStr Name;
        cVertexUsage::Enum Usage = cVertexUsage::Custom;
        cVertexType::Enum Type = cVertexType::Float;
        int Count = 0; ///< Components.

        /// Whether devices can be asked for this combination of usage, type and count.
        bool IsValid() const;
    };

    /// The attributes in memory order, without gaps.
    class Format : public cList<Attrib> {
    public:
        using cList<Attrib>::Add;
        void Add(const char* name, cVertexUsage::Enum usage, cVertexType::Enum type, int count);

        /// Finds the first attribute of a usage.
        ///
        /// @param offset  receives its distance from the start of the vertex, bytes; may be null
        /// @param count   receives its number of components; may be null
        /// @return false, and nothing is stored, when there is none
        bool HasUsage(cVertexUsage::Enum usage, int* offset, int* count) const;
    };

    struct PositionColored {
        cVec3 Pos;
        unsigned int Color;
        static Format GetFormat();
        static inline int FormatID = -1;
    };

    struct PositionColoredTextured {
        cVec3 Pos;
        unsigned int Color;
        cVec2 TexCoord;
        static Format GetFormat();
        static inline int FormatID = -1;
    };

    struct PositionColoredTextured2 {
        cVec3 Pos;
        unsigned int Color;
        cVec2 TexCoord0;
        cVec2 TexCoord1;
        static Format GetFormat();
        static inline int FormatID = -1;
    };

    struct Particle {
        cVec3 Pos;
        unsigned int Color;
        cVec2 TexCoord;
        cVec2 RightUp;
        cVec3 Forward;
        static Format GetFormat();
        static inline int FormatID = -1;
    };

    struct PositionNormal {
        cVec3 Pos;
        cVec3 Normal;
        static Format GetFormat();
        static inline int FormatID = -1;
    };

    struct PositionNormalColored {
        cVec3 Pos;
        cVec3 Normal;
        unsigned int Color;
        static Format GetFormat();
        static inline int FormatID = -1;
    };

    struct PositionNormalTextured {
        cVec3 Pos;
        cVec3 Normal;
        cVec2 TexCoord;
        static Format GetFormat();
        static inline int FormatID = -1;
    };

    struct PositionOnly {
        cVec3 Pos;
        static Format GetFormat();
        static inline int FormatID = -1;
    };

    struct PositionRhw {
        cVec4 Pos;
        static Format GetFormat();
        static inline int FormatID = -1;
    };

    struct PositionTextured {
        cVec3 Pos;
        cVec2 TexCoord;
        static Format GetFormat();
        static inline int FormatID = -1;
    };

    struct Bump {
        cVec3 Pos;
        cVec3 Normal;
        cVec2 TexCoord;
        cVec3 Tangent;
        cVec3 BiTangent;
        static Format GetFormat(); ///< Needs no renderer, as the others.
        static inline int FormatID = -1;
    };

    struct Anim : Bump { // the 14 floats of the bind pose stand in front
        cVec4 Indices;
        cVec4 Weights;
        static Format GetFormat();
        static inline int FormatID = -1;
    };

    struct ShadowVolume {
        cVec3 Pos0, Pos1, Pos2;
        cVec4 Indices0, Weights0;
        cVec4 Indices1, Weights1;
        cVec4 Indices2, Weights2;
        static Format GetFormat();
        static inline int FormatID = -1;
    };

    /// Tells the device of every format, once, when rendering starts; the ids are its answers.
    static void Register();
};

static_assert(sizeof(cVertex::Bump) == 56 && sizeof(cVertex::Anim) == 88 && sizeof(cVertex::ShadowVolume) == 132,
              "the formats tell of no gaps");

} // namespace trellis
