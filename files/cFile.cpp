#include "files/cFile.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <new>

#include "math/cVec2.h"
#include "math/cVec3.h"

namespace trellis {

void cFile::Set(cList<unsigned char>* bytes, const char* name) {
    m_Name = name;
    m_Bytes.Free();
    m_Bytes = std::move(*bytes); // a swap: the caller gets the null list
    m_Position = 0;
}

void cFile::Copy(const void* data, int size, const char* name) {
    m_Name = name;
    m_Position = 0;
    m_Bytes.Clear(); // nothing is worth carrying across a reallocation
    if (data && size > 0) {
        m_Bytes.SetCount(size);
        std::memmove(m_Bytes.Data(), data, size_t(size)); // a piece of this file fits without a reallocation
    }
}

void cFile::Clear() {
    m_Bytes.Clear();
    m_Position = 0;
    m_Name.Clear();
}

bool cFile::ReadString(cStr* out, const char* delimiters) const {
    out->Clear();
    const int size = GetSize();
    if (m_Position >= size) {
        return false;
    }
    // Not strchr: it would take a zero byte of the file for the terminator of the set.
    bool isDelimiter[256] = {};
    for (const char* p = delimiters; p && *p; p++) {
        isDelimiter[(unsigned char)*p] = true;
    }
    const unsigned char* bytes = m_Bytes.Data();
    int start = m_Position;
    while (start < size && isDelimiter[bytes[start]]) {
        start++;
    }
    int end = start;
    while (end < size && !isDelimiter[bytes[end]]) {
        end++;
    }
    out->Copy(reinterpret_cast<const char*>(bytes), start, end - start);
    m_Position = end < size ? end + 1 : size;
    return true;
}

bool cFile::ReadVec2(cVec2* v) const {
    return ReadScalar(&v->x) && ReadScalar(&v->y);
}

bool cFile::ReadVec3(cVec3* v) const {
    return ReadScalar(&v->x) && ReadScalar(&v->y) && ReadScalar(&v->z);
}

void cFile::WriteBytes(const void* data, int size) {
    if (!data || size < 1) {
        return;
    }
    const int count = GetSize();
    if (m_Position == count && size <= m_Bytes.Capacity() - count) { // appending is the common case
        m_Position = count + size;
        m_Bytes.SetCount(m_Position);
        std::memcpy(m_Bytes.Data() + count, data, size_t(size));
        return;
    }
    if (size > std::numeric_limits<int>::max() - count) {
        throw std::bad_array_new_length(); // what the list throws where its capacity would pass the range
    }
    const auto* from = static_cast<const unsigned char*>(data);
    auto* old = m_Bytes.EnsureCapacity(count + size, true); // kept until the copy: `data` may lie in it
    m_Bytes.SetCount(count + size);
    unsigned char* to = m_Bytes.Data() + m_Position;
    const int tail = count - m_Position;
    std::memmove(to + size, to, size_t(tail));

    // Without a reallocation, bytes of this file from the cursor on have just moved up by `size`.
    const std::less<const unsigned char*> before;
    int head = size;
    if (!old && !before(from + size - 1, to) && before(from, to + tail)) {
        head = before(from, to) ? int(to - from) : 0;
    }
    std::memcpy(to, from, size_t(head));
    if (head < size) {
        std::memcpy(to + head, from + head + size, size_t(size - head));
    }
    m_Position += size;
    cList<unsigned char>::Release(old);
}

int cFile::ReplaceBytes(const void* data, int size) {
    const int left = GetSize() - m_Position;
    if (left < 1) {
        return -1;
    }
    const int n = data ? std::clamp(size, 0, left) : 0;
    if (n > 0) {
        std::memmove(m_Bytes.Data() + m_Position, data, size_t(n));
        m_Position += n;
    }
    return n;
}

void cFile::WriteString(const char* s) {
    if (s) {
        const size_t n = std::strlen(s);
        if (n > size_t(std::numeric_limits<int>::max())) {
            throw std::bad_array_new_length();
        }
        WriteBytes(s, int(n));
    }
}

void cFile::WriteVec3(const cVec3& v) {
    const float components[] = {v.x, v.y, v.z};
    WriteBytes(components, sizeof(components));
}

void cFile::SetPos(int position) const {
    m_Position = std::clamp(position, 0, GetSize());
}

void cFile::SetPosMutable(int position) {
    const int count = GetSize();
    if (position > count) {
        m_Bytes.SetCount(position);
        std::memset(m_Bytes.Data() + count, 0, size_t(position - count)); // the slots hold what they last held
    }
    m_Position = position < 0 ? 0 : position;
}

} // namespace trellis
