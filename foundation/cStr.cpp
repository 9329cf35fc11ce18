#include "foundation/cStr.h"

#include "foundation/cImmortal.h"
#include "foundation/cThread.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace trellis {

namespace {

constinit cImmortal<cBlockCache::FreeStack> s_FreeStrings;
constinit cImmortal<cList<char*>> s_Blocks;

constinit cImmortal<cStr> s_Empty;
struct MakeEmpty {
    MakeEmpty() {
        s_Empty.Value.Resize(1, false);
        cPool::Free(cPool::Alloc(1), 1); // makes the pool's mutex, too, while there is one thread
    }
};
[[maybe_unused]] MakeEmpty s_MakeEmpty
    __attribute__((init_priority(200))); // ahead of every other text made at start-up

constexpr auto MakeUTF8Table() {
    std::array<unsigned char, 256 + 9 * 12> table{};
    constexpr struct {
        int First, Last, Class;
    } ranges[] = {{0x80, 0x8F, 1},  {0x90, 0x9F, 9}, {0xA0, 0xBF, 7}, {0xC0, 0xC1, 8}, {0xC2, 0xDF, 2},
                  {0xE0, 0xE0, 10}, {0xE1, 0xEC, 3}, {0xED, 0xED, 4}, {0xEE, 0xEF, 3}, {0xF0, 0xF0, 11},
                  {0xF1, 0xF3, 6},  {0xF4, 0xF4, 5}, {0xF5, 0xFF, 8}};
    for (const auto& r : ranges) {
        for (int i = r.First; i <= r.Last; i++) {
            table[size_t(i)] = (unsigned char)r.Class;
        }
    }
    // clang-format off
    constexpr unsigned char transitions[9][12] = {
        { 0, 12, 24, 36, 60, 96, 84, 12, 12, 12, 48, 72}, // 0: between characters
        {12, 12, 12, 12, 12, 12, 12, 12, 12, 12, 12, 12}, // 12: rejected
        {12,  0, 12, 12, 12, 12, 12,  0, 12,  0, 12, 12}, // 24: one more
        {12, 24, 12, 12, 12, 12, 12, 24, 12, 24, 12, 12}, // 36: two more
        {12, 12, 12, 12, 12, 12, 12, 24, 12, 12, 12, 12}, // 48: behind E0, nothing overlong
        {12, 24, 12, 12, 12, 12, 12, 12, 12, 24, 12, 12}, // 60: behind ED, no surrogates
        {12, 12, 12, 12, 12, 12, 12, 36, 12, 36, 12, 12}, // 72: behind F0, nothing overlong
        {12, 36, 12, 12, 12, 12, 12, 36, 12, 36, 12, 12}, // 84: three more
        {12, 36, 12, 12, 12, 12, 12, 12, 12, 12, 12, 12}, // 96: behind F4, up to 10FFFF
    };
    // clang-format on
    for (int i = 0; i < 9 * 12; i++) {
        table[size_t(256 + i)] = transitions[i / 12][i % 12];
    }
    return table;
}

char Fold(char c) {
    return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c;
}

int RoundUp(int need) {
    return (need + 31) & ~31;
}

int SignedByte(char c) {
    return static_cast<signed char>(c);
}

int Sign(int v) {
    return (v > 0) - (v < 0);
}

} // namespace

constinit const char cStr::def_str = 0;
constinit const cStr& cStr::Empty = s_Empty.Value;
constinit cBlockCache::FreeStack& cStr::free_strings = s_FreeStrings.Value;
constinit cList<char*>& cStr::pool = s_Blocks.Value;
pthread_mutex_t cStr::TRELLIS_CSTR_MUTEX;
constinit bool cStr::TRELLIS_CSTR_MUTEX_CREATED = false;
constinit const std::array<unsigned char, 256 + 9 * 12> cStr::UTF8_Table = MakeUTF8Table();

// The small-string store

/// Makes the mutex at the first call, which static initialisation makes on its one thread.
class cStr::StoreLock {
public:
    StoreLock() {
        if (!TRELLIS_CSTR_MUTEX_CREATED) {
            cThread::CreateMutex(TRELLIS_CSTR_MUTEX);
            TRELLIS_CSTR_MUTEX_CREATED = true;
        }
        cThread::LockMutex(TRELLIS_CSTR_MUTEX);
    }
    ~StoreLock() { cThread::UnlockMutex(TRELLIS_CSTR_MUTEX); }
    StoreLock(const StoreLock&) = delete;
    StoreLock& operator=(const StoreLock&) = delete;
};

char* cStr::GetSlotSlow() {
    const StoreLock lock;
    if (free_strings.IsEmpty()) {
        // Room for every slot there is, so that giving one back never allocates: `freestr` runs in destructors.
        free_strings.EnsureCapacity((pool.Count() + 1) * SlotsPerBlock, false);
        pool.EnsureCapacity(pool.Count() + 1, false);
        auto* block = new char[size_t(SlotSize) * SlotsPerBlock];
        for (int i = 0; i < SlotsPerBlock; i++) {
            block[i * SlotSize] = FreeMark;
            free_strings.Add(reinterpret_cast<unsigned char*>(block + i * SlotSize));
        }
        pool.Add(block);
    }
    return reinterpret_cast<char*>(cBlockCache::Refill(cBlockCache::SmallString, &free_strings));
}

void cStr::FreeSlotSlow(char* p) {
    const StoreLock lock;
    cBlockCache::Spill(cBlockCache::SmallString, reinterpret_cast<unsigned char*>(p), &free_strings);
}

void cStr::TakeBackSlots(unsigned char** items, int count) {
    const StoreLock lock;
    free_strings.AddRange(items, count);
}

// Buffer

void cStr::Resize(int n, bool keep) {
    if (n > 0x7FFFFFFF - 31) {
        throw std::bad_alloc(); // rounding up would pass the int
    }
    const bool slot =
        !str && n < SlotSize; // a need of exactly 20 bytes goes to the pool, although a slot would hold it
    const int newCapacity = slot ? SlotSize : RoundUp(std::max(n, 1));
    char* buffer = slot ? getstr() : reinterpret_cast<char*>(cPool::Alloc(newCapacity));
    buffer[0] = 0;
    if (str) {
        if (keep) {
            const int kept = std::min(length, newCapacity - 1);
            std::memcpy(buffer, str, size_t(kept));
            buffer[kept] = 0;
        }
        ReleaseBuffer(str, capacity);
    }
    str = buffer;
    capacity = newCapacity;
}

void cStr::Reserve(long long need, bool keep) {
    if (need > capacity) {
        Resize(int(std::min(need, 0x7FFFFFFFLL)), keep);
    }
}

void cStr::ReserveMore(int count) {
    const long long need = 1LL + length + count;
    if (need > capacity) {
        Reserve(std::max(need, std::min(need + capacity, 1LL << 30)), true); // a length past an int throws
    }
}

/// The first buffer, straight from the allocators, as most texts begin here.
inline void cStr::ReserveFirst(int count) {
    if (count < SlotSize - 1) {
        str = getstr();
        capacity = SlotSize;
    } else if (count <= 0x7FFFFFFF - 32) {
        const int newCapacity = RoundUp(count + 1);
        str = reinterpret_cast<char*>(cPool::Alloc(newCapacity));
        capacity = newCapacity;
    } else {
        throw std::bad_alloc(); // lengths are ints
    }
}

void cStr::InitCopy(const cStr& other) {
    const int need = other.length + 1;
    if (need < SlotSize) {
        str = getstr();
        capacity = SlotSize;
        if (other.capacity == SlotSize) {
            std::memcpy(str, other.str, SlotSize); // a constant size: two moves in place of a call
        } else {
            std::memcpy(str, other.str, size_t(need));
        }
    } else {
        capacity = RoundUp(need);
        str = reinterpret_cast<char*>(cPool::Alloc(capacity));
        std::memcpy(str, other.str, size_t(need));
    }
    length = other.length;
    str[length] = 0;
}

void cStr::Clear() {
    if (str) {
        str[0] = 0;
    }
    length = 0;
}

void cStr::SetLength(int n, char c) {
    if (n < 1) {
        Free();
        return;
    }
    Reserve(1LL + n, false);
    std::memset(str, c, size_t(n));
    str[n] = 0;
    length = n;
}

// Assignment and editing

void cStr::Copy(const char* s) {
    Copy(s, 0, s ? int(std::strlen(s)) : 0);
}

void cStr::Copy(const char* s, int start, int count) {
    if (!s) {
        Clear();
        return;
    }
    if (Owns(s)) {
        std::memmove(str, s + start, size_t(count));
        str[start + count] = 0; // not at `count`: callers that copy from themselves pass the offset in `s`
        length = count;
        return;
    }
    if (!str) {
        ReserveFirst(count);
    } else {
        Reserve(1LL + count, false);
    }
    std::memcpy(str, s + start, size_t(count));
    str[count] = 0;
    length = count;
}

void cStr::Append(const char* s) {
    if (s) {
        Append(s, 0, int(std::strlen(s)));
    }
}

void cStr::Append(const char* s, int start, int count) {
    if (!s || count < 0) {
        return;
    }
    if (1LL + length + count <= capacity) [[likely]] {
        std::memmove(str + length, s + start, size_t(count));
        length += count;
        str[length] = 0;
        return;
    }
    if (!str) {
        ReserveFirst(count);
        std::memcpy(str, s + start, size_t(count));
        length = count;
        str[count] = 0;
        return;
    }
    const ptrdiff_t own = Owns(s) ? s - str : -1; // the buffer may move
    Reserve(1LL + length + count, true);
    std::memmove(str + length, (own >= 0 ? str + own : s) + start, size_t(count));
    length += count;
    str[length] = 0;
}

void cStr::Append(const cStr& s, int start, int count) {
    Append(s.str, start, count);
}

void cStr::Append(char c, int count) {
    if (count < 0) {
        return;
    }
    Reserve(1LL + length + count, true);
    std::memset(str + length, c, size_t(count));
    length += count;
    str[length] = 0;
}

void cStr::AppendFormat(const char* format, ...) {
    va_list args;
    va_start(args, format);
    Append(Formatv(format, args));
    va_end(args);
}

char* cStr::OpenGap(int index, int count) {
    Reserve(1LL + std::max(index, length) + count, true);
    if (index <= length) {
        std::memmove(str + index + count, str + index, size_t(length - index + 1));
    }
    length += count;
    return str + index;
}

void cStr::Insert(int index, const char* s) {
    if (s) {
        Insert(index, s, 0, int(std::strlen(s)));
    }
}

void cStr::Insert(int index, const char* s, int start, int count) {
    if (!s || count < 0) {
        return;
    }
    if (Owns(s)) {
        const cStr copy(s + start, 0, count);
        std::memcpy(OpenGap(index, count), copy.str, size_t(count));
    } else {
        std::memcpy(OpenGap(index, count), s + start, size_t(count));
    }
}

void cStr::Insert(int index, const cStr& s, int start, int count) {
    Insert(index, s.str, start, count);
}

void cStr::Insert(int index, char c, int count) {
    if (count >= 0) {
        std::memset(OpenGap(index, count), c, size_t(count));
    }
}

void cStr::Remove(int index, int count) {
    if (str) {
        std::memmove(str + index, str + index + count, size_t(length - index - count + 1));
        length -= count;
    }
}

cStr operator+(const cStr& a, const cStr& b) {
    cStr sum;
    sum.Reserve(1LL + a.length + b.length, false);
    sum.Append(a);
    sum.Append(b);
    return sum;
}

cStr cStr::Mid(int start, int count) const {
    cStr part;
    part.Copy(Text(), start, count);
    return part;
}

// Comparison

int cStr::Compare(const char* a, const char* b, int n) {
    if (!a || !b) {
        return a == b ? 1 : 0; // searches for "no text" rely on null differing from null
    }
    if (n < 0 ? std::strcmp(a, b) == 0 : std::strncmp(a, b, size_t(n)) == 0) {
        return 0;
    }
    while (*a == *b) {
        a++;
        b++;
    }
    return Sign(SignedByte(*a) - SignedByte(*b));
}

int cStr::CompareNoCase(const char* a, const char* b, int n) {
    for (; n != 0; a++, b++, n -= n > 0) {
        const int difference = SignedByte(Fold(*a)) - SignedByte(Fold(*b));
        if (difference != 0 || *a == 0) {
            return Sign(difference);
        }
    }
    return 0;
}

bool cStr::EqualsNoCase(const cStr* a, const cStr* b) {
    return CompareNoCase(a->Text(), b->Text()) == 0;
}

// Search and replace

int cStr::IndexOf(const char* s, int start, int count, bool noCase) const {
    if (!str || !s) {
        return -1;
    }
    const int n = int(std::strlen(s));
    const int end = count < 0 ? length : start + count;
    for (int i = start; i < end; i++) {
        if ((noCase ? CompareNoCase(str + i, s, n) : Compare(str + i, s, n)) == 0) {
            return i;
        }
    }
    return -1;
}

void cStr::Replace(char a, char b, int start, int count) {
    if (str) {
        std::replace(str + start, str + start + count, a, b);
    }
}

int cStr::Replace(const char* a, const char* b, int start, int count, bool noCase) {
    return ReplaceMatches(a, b, start, count, noCase, length + 1);
}

bool cStr::ReplaceFirst(const char* a, const char* b, int start, int count, bool noCase) {
    return ReplaceMatches(a, b, start, count, noCase, 1) > 0;
}

int cStr::ReplaceMatches(const char* a, const char* b, int start, int count, bool noCase, int most) {
    if (count < 1) {
        return 0;
    }
    const int end = start + count;
    const int lengthA = int(std::strlen(a));
    const int lengthB = b ? int(std::strlen(b)) : 0;
    const auto matches = [=](const char* at) {
        return (noCase ? CompareNoCase(at, a, lengthA) : Compare(at, a, lengthA)) == 0;
    };
    int found = 0;
    for (int i = start; i < end && found < most;) {
        const bool hit = matches(str + i);
        found += hit;
        i += hit ? lengthA : 1;
    }
    if (found == 0) {
        str[end] = 0; // the same truncation of a partial range as below
        return 0;
    }
    const cStr copy(*this);
    const long long newLength = length + (long long)found * (lengthB - lengthA);
    Reserve(newLength + 1, false);
    std::memcpy(str, copy.str, size_t(start));
    char* out = str + start;
    int from = start;
    for (int left = found; from < end;) {
        if (left > 0 && matches(copy.str + from)) {
            if (lengthB > 0) {
                std::memcpy(out, b, size_t(lengthB));
            }
            out += lengthB;
            from += lengthA;
            left--;
        } else {
            *out++ = copy.str[from++];
        }
    }
    std::memcpy(out, copy.str + from, size_t(length - from));
    length = int(newLength);
    str[length] = 0;
    *out = 0; // at the tail's first byte, not behind the tail: a partial range ends the C string there
    return found;
}

void cStr::ReplaceAny(const char* set, char c, int start, int count) {
    for (; set && *set; set++) {
        Replace(*set, c, start, count);
    }
}

void cStr::TrimStart(const char* set) {
    if (!str || !set || !*set) {
        return;
    }
    int n = 0;
    while (n < length && std::strchr(set, str[n]) && str[n]) {
        n++;
    }
    Remove(0, n);
}

void cStr::TrimEnd(const char* set) {
    if (!str || !set || !*set) {
        return;
    }
    while (length > 0 && str[length - 1] && std::strchr(set, str[length - 1])) {
        length--;
    }
    str[length] = 0;
}

cStr cStr::ToUpper() const {
    cStr upper(*this);
    for (int i = 0; i < upper.length; i++) {
        char& c = upper.str[i];
        c = c >= 'a' && c <= 'z' ? char(c - 'a' + 'A') : c;
    }
    return upper;
}

// Lists

void cStr::Split(const char* text, cList<cStr>* out, const char* separators) {
    const cStr copy(text); // `text` may belong to a string in `out`
    out->Clear();
    if (copy.IsEmpty()) {
        return;
    }
    if (!separators || !*separators) {
        out->Add(copy);
        return;
    }
    for (const char* s = copy.str;;) {
        s += std::strspn(s, separators);
        if (!*s) {
            return;
        }
        const int n = int(std::strcspn(s, separators));
        out->SetCount(out->Count() + 1);
        (*out)[out->Count() - 1].Copy(s, 0, n);
        s += n;
    }
}

cStr cStr::Join(const char* sep, const cList<cStr>& list, int start, int count) {
    cStr joined;
    const int end = count < 0 ? list.Count() : start + count;
    for (int i = start; i < end; i++) {
        if (i > start) {
            joined.Append(sep);
        }
        joined.Append(list[i]);
    }
    return joined;
}

cStr cStr::Format(const char* format, ...) {
    va_list args;
    va_start(args, format);
    cStr text = Formatv(format, args);
    va_end(args);
    return text;
}

// The full buffer has a frame of its own: few texts need it, and a short thread's stack would grow for it.
[[gnu::noinline]] static cStr FormatLong(const char* format, va_list args) {
    char buffer[cStr::FormatSize];
    return std::vsnprintf(buffer, sizeof(buffer), format, args) < 0 ? "" : buffer;
}

cStr cStr::Formatv(const char* format, va_list args) {
    char buffer[512];
    va_list again;
    va_copy(again, args);
    const int length = std::vsnprintf(buffer, sizeof(buffer), format, args);
    cStr text = length >= 0 && length < int(sizeof(buffer)) ? cStr(buffer) : FormatLong(format, again);
    va_end(again);
    return text;
}

// UTF-8

bool cStr::DecodeUTF8(cList<unsigned short>* out) const {
    out->SetCount(length); // at most
    unsigned short* p = out->Data();
    unsigned int state = 0;
    unsigned int code = 0;
    for (int i = 0; i < length; i++) {
        const unsigned int byte = static_cast<unsigned char>(str[i]);
        if (state == 0 && byte < 0x80) {
            *p++ = static_cast<unsigned short>(byte);
            continue;
        }
        const unsigned int kind = UTF8_Table[byte];
        code = state == 0 ? (255u >> kind) & byte : (code << 6) + (byte & 63u);
        state = UTF8_Table[256 + state + kind];
        if (state != 0) {
            continue;
        }
        if (code > 0xFFFF) {
            *p++ = (unsigned short)((code >> 10) + 0xD7C0);
            *p++ = (unsigned short)((code & 0x3FF) + 0xDC00);
        } else {
            *p++ = (unsigned short)code;
        }
    }
    out->SetCount(int(p - out->Data()));
    return state == 0;
}

int cStr::CalcUTF8Length(int start) const {
    unsigned int state = 0;
    int i = start;
    while (i < length) {
        state = UTF8_Table[256 + state + UTF8_Table[static_cast<unsigned char>(str[i++])]];
        if (state == 0) {
            break;
        }
    }
    return i > start ? i - start : 0;
}

} // namespace trellis
