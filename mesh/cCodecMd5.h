// What the readers of MD5 text share: lines, orientations, and the way into our space.
#pragma once

#include <algorithm>
#include <cmath>

#include "files/cFile.h"
#include "math/cMat4.h"
#include "math/cQuat.h"

namespace trellis {

constexpr const char* cCodecMd5_Blanks = " \t";
constexpr const char* cCodecMd5_BlanksAndMarks = " ()\t\""; // inside of the blocks

/// The tokens of a file, line by line.
class cCodecMd5_Lines {
public:
    explicit cCodecMd5_Lines(const cFile& file) : m_File(file), m_BytesLeft(file.GetSize()) {}

    /// @return false at the end of the file
    bool Next(const char* delimiters) {
        if (!m_File.ReadString(&m_Line, "\r\n")) {
            return false;
        }
        cStr::Split(m_Line, &m_Tokens, delimiters);
        return true;
    }
    int Count() const { return m_Tokens.Count(); }
    const cStr& operator[](int i) const { return m_Tokens[i]; }
    bool Is(const char* word) const { return Count() > 0 && m_Tokens[0] == word; }

    // False for a token that is not there or no number.
    bool Get(int i, int* out) const { return i < Count() && cStr::ToInt(m_Tokens[i], out); }
    bool Get(int i, float* out) const { return i < Count() && cStr::ToFloat(m_Tokens[i], out); }
    bool Get(int i, cVec3* out) const { return Get(i, &out->x) && Get(i + 1, &out->y) && Get(i + 2, &out->z); }

    /// Sizes a list by the second token. All elements of a file together must fit into it.
    ///
    /// @param size  bytes that each element takes at least
    template <class T> bool GetCount(int size, cList<T>* list) {
        int count;
        if (!Get(1, &count) || count < 0 || (long long)count * size > m_BytesLeft) {
            return false;
        }
        m_BytesLeft -= (long long)count * size;
        list->SetCount(count);
        return true;
    }

    /// The second token as an index into a list.
    template <class T> T* GetElement(cList<T>& list) const {
        int i;
        return Get(1, &i) && i >= 0 && i < list.Count() ? &list[i] : nullptr;
    }

    /// Calls `line()` for each line up to "}" that says something. @return false when it does, and at the end of the
    /// file
    bool ForBlock(const char* delimiters, auto line) {
        while (Next(delimiters)) {
            if (Is("}")) {
                return true;
            }
            if (Count() > 0 && !Is("{") && !line()) {
                return false;
            }
        }
        return false;
    }

private:
    const cFile& m_File;
    long long m_BytesLeft; // for elements that have not been announced yet
    cStr m_Line;
    cList<cStr> m_Tokens;
};

/// Of the two quaternions of a rotation the format stores the one of a negative w.
inline cQuat cCodecMd5_Orientation(const cVec3& v) {
    return cQuat(v, -std::sqrt(std::clamp(1.0f - v.LengthSq(), 0.0f, 1.0f)));
}

/// Units are halved, and Z upward becomes Y upward.
struct cCodecMd5_Conversion {
    cVec3 Position(const cVec3& p) const {
        const cVec4 v = cVec4(p, 1.0f) * Whole;
        const cVec3 q(v.x, v.y, v.z);
        return v.w == 1.0f ? q : q / v.w;
    }
    cQuat Orientation(const cQuat& q) const { return Rotation * q; }

    const cMat4 Turn = cMat4::RotationX(-90);
    const cMat4 Whole = Turn * cMat4::Scaling(0.5f, 0.5f, 0.5f);
    const cQuat Rotation = Turn.ToQuat();
};

} // namespace trellis
