// In-memory file: the whole content in one byte list, behind one cursor. Numbers are in the byte order of the machine,
// which is little-endian; nothing is swapped.
#pragma once

#include "foundation/cList.h"
#include "foundation/cStr.h"

#include <cstring>
#include <utility>

namespace trellis {

class cVec2;
class cVec3;

/// What every codec reads and writes; `cIO` fills one from disk or saves it.
///
/// Reading is a const operation, so a decoder takes `const cFile&`: only the cursor moves, and that is mutable. Writing
/// *inserts* at the cursor and pushes the rest along; to come back to a header use `SetPosMutable` and `ReplaceBytes`.
/// The cursor is always in [0, GetSize()]. Sizes past the range of int end as the allocator's exception.
///
/// A file belongs to one thread.
class cFile {
public:
    cFile() = default;
    cFile(const cFile&) = default;
    cFile& operator=(const cFile&) = default;
    cFile(cFile&& other) noexcept
        : m_Name(std::move(other.m_Name)), m_Bytes(std::move(other.m_Bytes)),
          m_Position(std::exchange(other.m_Position, 0)) {}
    cFile& operator=(cFile&& other) noexcept { // a swap, as of its members: the cursor goes with its bytes
        std::swap(m_Name, other.m_Name);
        std::swap(m_Bytes, other.m_Bytes);
        std::swap(m_Position, other.m_Position);
        return *this;
    }

    /// Takes over the storage of `*bytes`, which is null afterwards, and rewinds.
    void Set(cList<unsigned char>* bytes, const char* name);

    /// Replaces the content by a copy and rewinds. A size below 1 or null data gives an empty file.
    void Copy(const void* data, int size, const char* name);

    void Clear(); ///< Empty, rewound and without a name; keeps the storage.

    /// Reads what is left of `size` bytes.
    ///
    /// @return number of bytes read; -1 at the end of the file
    int ReadBytes(void* out, int size) const {
        const int left = m_Bytes.Count() - m_Position;
        if (left < 1) {
            return -1;
        }
        const int n = size < 0 ? 0 : size < left ? size : left;
        if (n > 0) {
            std::memcpy(out, m_Bytes.Data() + m_Position, size_t(n));
            m_Position += n;
        }
        return n;
    }

    /// Reads the token between runs of delimiters and steps over the one delimiter behind it.
    ///
    /// @param delimiters  null or empty: the rest of the file is the token
    /// @return false at the end of the file. True with an empty token when nothing but delimiters was left.
    bool ReadString(cStr* out, const char* delimiters) const;

    // On false nothing is stored and the cursor stays.
    bool ReadShort(short* v) const { return ReadScalar(v); }
    bool ReadWord(unsigned short* v) const { return ReadScalar(v); }
    bool ReadInt(int* v) const { return ReadScalar(v); }
    bool ReadFloat(float* v) const { return ReadScalar(v); }

    // On false the components in front of the missing one are stored, and the cursor is behind them.
    bool ReadVec2(cVec2* v) const;
    bool ReadVec3(cVec3* v) const;

    /// Inserts at the cursor and advances it. The bytes may be bytes of this file.
    void WriteBytes(const void* data, int size);

    /// Overwrites from the cursor on, never growing the file.
    ///
    /// @return number of bytes written; -1 at the end of the file
    int ReplaceBytes(const void* data, int size);

    void WriteString(const char* s); ///< Without the terminator; null writes nothing.
    void WriteShort(short v) { WriteScalar(v); }
    void WriteWord(unsigned short v) { WriteScalar(v); }
    void WriteInt(int v) { WriteScalar(v); }
    void WriteFloat(float v) { WriteScalar(v); }
    void WriteVec3(const cVec3& v);

    int GetPos() const { return m_Position; }
    void SetPos(int position) const; ///< Held inside [0, GetSize()].

    /// Moves the cursor, and grows the file by zero bytes when that is past its end. Negative counts as 0.
    void SetPosMutable(int position);

    int GetSize() const { return m_Bytes.Count(); }
    const cList<unsigned char>& GetBytes() const { return m_Bytes; }

    const cStr& GetName() const { return m_Name; } ///< Path of the file; where `cIO::SaveFile` saves by default.
    void SetName(const char* name) { m_Name = name; }

private:
    template <class T> bool ReadScalar(T* v) const {
        if (m_Bytes.Count() - m_Position < int(sizeof(T))) {
            return false;
        }
        std::memcpy(v, m_Bytes.Data() + m_Position, sizeof(T));
        m_Position += int(sizeof(T));
        return true;
    }
    // Appending is the common case, and a constant size makes it two moves.
    template <class T> void WriteScalar(T v) {
        const int end = m_Bytes.Count();
        if (m_Position == end && int(sizeof(T)) <= m_Bytes.Capacity() - end) [[likely]] {
            m_Position = end + int(sizeof(T));
            m_Bytes.SetCount(m_Position);
            std::memcpy(m_Bytes.Data() + end, &v, sizeof(T));
        } else {
            WriteBytes(&v, sizeof(T));
        }
    }

    cStr m_Name;
    cList<unsigned char> m_Bytes;
    mutable int m_Position = 0;
};

} // namespace trellis
