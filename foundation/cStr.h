// The framework's text type: a mutable, null-terminated byte string. UTF-8 where an encoding matters; in paths the
// framework joins with a backslash on every platform, and a "slash" is either kind unless one is named.
#pragma once

#include "foundation/cList.h"
#include "foundation/cPool.h"

#include <array>
#include <cstdarg>
#include <cstring>
#include <pthread.h>

namespace trellis {

/// A byte string with its length kept beside it.
///
///     str | length | capacity        a new string is three zero words and owns nothing
///
/// A capacity of 20 or less is a slot of the small-string store, a larger one a block of `cPool`; nothing shrinks but
/// by `Free`. A null buffer reads as "". Ranges `(start, count)` and indexes are trusted; the text appended, inserted
/// or assigned may lie in the string itself. A string is not thread-safe; the two allocators behind it are.
class cStr {
public:
    constexpr cStr() = default;
    cStr(const char* s) { Copy(s); }
    cStr(const char* s, int start, int count) { Copy(s, start, count); }
    cStr(const cStr& other) { // a null buffer is copied as a null buffer
        if (other.str) {
            InitCopy(other);
        }
    }
    constexpr cStr(cStr&& other) noexcept
        : str(std::exchange(other.str, nullptr)), length(std::exchange(other.length, 0)),
          capacity(std::exchange(other.capacity, 0)) {}
    ~cStr() { Free(); }

    cStr& operator=(const cStr& other) {
        if (this != &other) {
            Copy(other.str, 0, other.length);
        }
        return *this;
    }
    cStr& operator=(cStr&& other) noexcept {
        std::swap(str, other.str);
        std::swap(length, other.length);
        std::swap(capacity, other.capacity);
        return *this;
    }
    cStr& operator=(const char* s) {
        Copy(s);
        return *this;
    }

    /// Releases the buffer; back to three zero words.
    void Free() {
        if (str) {
            ReleaseBuffer(str, capacity);
            str = nullptr;
            capacity = 0;
        }
        length = 0;
    }
    void Clear(); ///< Empties the text and keeps the buffer.

    /// Reallocates for `n` bytes, terminator included, whatever the present capacity is. The length is left as it was.
    ///
    /// @param keep  carries the old text over; otherwise the new text is unspecified
    void Resize(int n, bool keep);

    /// Makes room for `count` more bytes and keeps the text. When it has to grow it doubles, which the other operations
    /// do not: for texts that are made of many pieces.
    void ReserveMore(int count);

    /// Makes the text `n` times `c`; `n` below 1 frees the string.
    void SetLength(int n, char c = ' ');

    /// Replaces the text. A null `s` empties it and keeps what buffer there is; an empty one makes a buffer.
    void Copy(const char* s);

    /// Replaces the text by `count` bytes from `s + start`.
    ///
    /// Out of this string's own buffer the terminator lands at `start + count`, so pass the offset in `s`, and 0.
    void Copy(const char* s, int start, int count);

    void Append(const char* s);
    void Append(const char* s, int start, int count); ///< A null `s` is ignored.
    void Append(const cStr& s) { Append(s, 0, s.length); }
    void Append(const cStr& s, int start, int count);
    void Append(char c, int count = 1);
    void AppendFormat(const char* format, ...) __attribute__((format(printf, 2, 3))); ///< At most 9998 bytes.

    /// Moves the tail up and copies `count` bytes from `s + start` in at `index`. Behind the end nothing moves, and the
    /// bytes land past the terminator. A null `s` is ignored.
    void Insert(int index, const char* s);
    void Insert(int index, const char* s, int start, int count);
    void Insert(int index, const cStr& s) { Insert(index, s, 0, s.length); }
    void Insert(int index, const cStr& s, int start, int count);
    void Insert(int index, char c, int count = 1);
    void Remove(int index, int count = 1);

    friend cStr operator+(const cStr& a, const cStr& b);
    cStr& operator+=(const cStr& s) {
        Append(s);
        return *this;
    }

    /// Orderings of C strings, over at most `n` bytes (-1: no limit). They give -1, 0 or 1 and compare bytes as signed
    /// chars, so that bytes from 128 on sort below ASCII.
    static int Compare(const char* a, const char* b, int n = -1);       ///< Both null: 1. One null: 0.
    static int CompareNoCase(const char* a, const char* b, int n = -1); ///< A to Z folded; null is not allowed.

    /// Ordering of paths for listings: at the first level that differs, files come before folders. Case and the kind
    /// of slash do not count. With a limit, a match of `n` bytes must end at a component to give 0.
    static int ComparePath(const char* a, const char* b, int n = -1);
    static bool EqualsNoCase(const cStr* a, const cStr* b);

    friend bool operator==(const cStr& a, const cStr& b) {
        return a.length == b.length && std::memcmp(a.Text(), b.Text(), size_t(a.length)) == 0;
    }
    friend bool operator==(const cStr& a, const char* b) { return Compare(a.Text(), b ? b : "") == 0; }

    /// @param count  offsets looked at, -1 for the rest; the match itself may reach past the range
    /// @return first offset where `s` stands, -1 for none
    int IndexOf(const char* s, int start = 0, int count = -1, bool noCase = false) const;

    void Replace(char a, char b) { Replace(a, b, 0, length); }
    void Replace(char a, char b, int start, int count);

    /// Replaces the matches of `a` that begin in the range; a null or empty `b` deletes them. `a` is not empty, and
    /// neither lies in this string.
    ///
    /// Made for whole strings. In a partial range the terminator lands at the end of the range, on the tail's first
    /// byte, while the length still counts the tail.
    /// @return number of replacements; 0 for a count below 1
    int Replace(const char* a, const char* b) { return Replace(a, b, 0, length); }
    int Replace(const char* a, const char* b, int start, int count, bool noCase = false);

    /// The same for the first match alone. @return whether there was one
    bool ReplaceFirst(const char* a, const char* b) { return ReplaceFirst(a, b, 0, length); }
    bool ReplaceFirst(const char* a, const char* b, int start, int count, bool noCase = false);

    /// Every occurrence of a character of `set` becomes `c`.
    void ReplaceAny(const char* set, char c) { ReplaceAny(set, c, 0, length); }
    void ReplaceAny(const char* set, char c, int start, int count);

    void TrimStart(const char* set);
    void TrimEnd(const char* set);
    cStr ToUpper() const; ///< a to z raised; other bytes stay.

    /// The tokens of `text` between runs of `separators`, so that no token is empty. With no separators the whole text
    /// is the one token.
    static void Split(const char* text, cList<cStr>* out, const char* separators);

    /// The `count` items from `start` (-1: the rest) with `sep` between them; an empty range gives a null buffer.
    static cStr Join(const char* sep, const cList<cStr>& list, int start = 0, int count = -1);

    /// printf into a new string, cut at 9998 bytes.
    static cStr Format(const char* format, ...) __attribute__((format(printf, 1, 2)));
    static cStr Formatv(const char* format, va_list args) __attribute__((format(printf, 1, 0)));

    /// Decimal number behind tabs and blanks, with an optional sign; what follows it is ignored. Wraps modulo 2^32.
    ///
    /// @return false when there is no digit; `*out` is then 0
    static bool ToInt(const char* s, int* out);

    /// Decimal number with an optional fraction behind '.' or ',' and an exponent behind one of "eEdD".
    ///
    /// @return false without a digit, for a total exponent outside [-125, 128] or an infinite result; `*out` is then 0
    static bool ToFloat(const char* s, float* out);

    static cStr ToString(const int* v, int n = 1, const char* sep = " ");
    static cStr ToString(const float* v, int n, int precision, const char* sep = " ");
    static cStr ToString(const double* v, int n, int precision, const char* sep = " ");

    /// Numbers between any of " ,;\t". At the first bad token the result is false and the values so far are in `out`.
    static bool ToIntArray(const char* s, cList<int>* out);
    static bool ToFloatArray(const char* s, cList<float>* out);

    cStr GetFileExtension() const; ///< Behind the last '.' of the last component, without the dot.
    cStr GetFileName() const;      ///< Last component; a trailing slash stays on it: "a/b/" gives "b/".
    cStr GetFileBase() const;      ///< File name up to its first '.'.
    cStr GetFilePath() const;      ///< Up to the last slash and with it.
    void RemoveFileExtension();
    void RemoveFileName();                  ///< Cuts at the last slash, the slash too: "a/b" becomes "a".
    void RemoveFilePath();                  ///< Keeps what follows the last slash.
    void SetFileExtension(const char* ext); ///< With or without its dot.
    void SetFileDefaultExtension(const char* ext);
    void SetFilePath(const char* path);
    void SetFileDefaultPath(const char* path);

    /// Joins with one backslash; slashes of `s` become backslashes, the present text stays. Null or empty: no change.
    void AppendPath(const char* s);

    /// Makes an absolute path relative to `root`, by ".." where needed; on another root it stays as it is.
    void RemoveFileAbsPath(const char* root);
    void EnsureTrailingBackslash(); ///< An empty string stays empty.
    void SlashesToBackSlashes();
    void BackSlashesToSlashes();

    /// UTF-16 of the text.
    ///
    /// @return false for ill-formed UTF-8; `out` then ends before it
    bool DecodeUTF8(cList<unsigned short>* out) const;

    /// Bytes of a UTF-8 sequence by its first one, 1 to 4; 1 for what begins none.
    static constexpr int UTF8LengthOf(char first) {
        const auto byte = static_cast<unsigned char>(first);
        return byte < 0xC0 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
    }

    /// Bytes of the sequence at `start`; an ill-formed one counts to the end of the text.
    int CalcUTF8Length(int start) const;

    operator const char*() const { return Text(); } ///< Never null.
    explicit operator bool() const = delete;        ///< Would be true for any text; ask `IsEmpty`.
    const char* Text() const { return str ? str : &def_str; }
    char* Data() { return str; } ///< Null without a buffer.
    int Length() const { return length; }
    int Capacity() const { return capacity; }
    bool IsEmpty() const { return length == 0; }
    char& operator[](int index) { return str[index]; } ///< For a string with a buffer.
    char operator[](int index) const { return Text()[index]; }

    /// A free slot of 20 bytes from the small-string store, and its return.
    static char* getstr() {
        if (unsigned char* p = cBlockCache::Take(cBlockCache::SmallString)) [[likely]] {
            return reinterpret_cast<char*>(p);
        }
        return GetSlotSlow();
    }
    static void freestr(char* p) {
        p[0] = FreeMark;
        if (!cBlockCache::Give(cBlockCache::SmallString, reinterpret_cast<unsigned char*>(p))) [[unlikely]] {
            FreeSlotSlow(p);
        }
    }

    static constexpr int SlotSize = 20;       ///< The whole of the ownership rule: more comes from the pool.
    static constexpr int SlotsPerBlock = 256; ///< Slots that one visit to the heap brings.
    static constexpr char FreeMark = 31;      ///< First byte of a free slot.
    static constexpr int FormatSize = 9999;   ///< Buffer of the printf family, terminator included.

    static const char def_str; ///< The empty C string.
    static const cStr& Empty;  ///< Empty, with a buffer.

    static cBlockCache::FreeStack& free_strings; ///< Shared part of the stack of free slots, the top at the end.
    static cList<char*>& pool;                   ///< Every block of slots; kept to the end of the process.
    static pthread_mutex_t TRELLIS_CSTR_MUTEX;   ///< Guards the two lists.
    static bool TRELLIS_CSTR_MUTEX_CREATED;

    /// Classes of the 256 bytes, then the transitions, states premultiplied by 12 (0 accepts, 12 rejects and stays):
    /// Björn Höhrmann's "Flexible and Economical UTF-8 Decoder".
    static const std::array<unsigned char, 256 + 9 * 12> UTF8_Table;

private:
    friend class cBlockCache;
    class StoreLock;

    static char* GetSlotSlow();
    static void FreeSlotSlow(char* p);
    static void TakeBackSlots(unsigned char** items, int count);

    static void ReleaseBuffer(char* buffer, int capacity) {
        if (capacity > SlotSize) {
            cPool::Free(reinterpret_cast<unsigned char*>(buffer), capacity);
        } else {
            freestr(buffer);
        }
    }
    void InitCopy(const cStr& other);
    void ReserveFirst(int count);
    void Reserve(long long need, bool keep);
    char* OpenGap(int index, int count);
    bool Owns(const char* s) const { return str && !std::less<>()(s, str) && !std::less<>()(str + length, s); }
    int LastSlash() const;
    int ExtensionDot() const;
    int ReplaceMatches(const char* a, const char* b, int start, int count, bool noCase, int most);
    cStr Mid(int start, int count) const;

    char* str = nullptr;
    int length = 0;
    int capacity = 0;
};

} // namespace trellis
