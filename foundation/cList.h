// Growable array, one pointer wide: an empty list is a zero word. Indexes are trusted, sizes are ints, nothing shrinks.
//
//     cList --> | Count | Capacity | T[Capacity] |      one heap block; all Capacity slots hold live objects
#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstring>
#include <functional>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

namespace trellis {

/// Counters for reports. They are updated from all threads by separate loads and stores, so they may drift.
namespace cList_Debug {

inline std::atomic<int> ContainersCount{0};     ///< Containers alive, over all element types.
inline std::atomic<int> CtorContainersCount{0}; ///< Always zero; reports print it beside the other.

inline void AddContainers(int n) {
    ContainersCount.store(ContainersCount.load(std::memory_order_relaxed) + n, std::memory_order_relaxed);
}

} // namespace cList_Debug

/// The default equality of searches; takes pointers, as `cStr::EqualsNoCase` does.
template <class T> struct cList_DefEquals {
    bool operator()(const T* a, const T* b) const { return *a == *b; }
};

/// The heap block behind a list. All `Capacity` slots are constructed with it and destructed with it.
template <class T> struct cList_Container {
    int Count;
    int Capacity;

    T* Items() { return reinterpret_cast<T*>(this + 1); }
    const T* Items() const { return reinterpret_cast<const T*>(this + 1); }

    /// Makes a container of `capacity` >= 1 slots whose first `count` hold the values at `from`; the others are
    /// value-initialised (zero for plain types).
    ///
    /// @param from  `count` elements, or null with count 0; copied, or moved from when `move` is set and a move cannot
    ///              throw, so that a throw leaves them as they are
    static cList_Container* Create(int capacity, T* from, int count, bool move) {
        static_assert(alignof(T) <= sizeof(cList_Container), "elements stand directly behind the two words");
        std::unique_ptr<unsigned char[]> block(new unsigned char[BlockSize(capacity)]);
        auto* c = new (block.get()) cList_Container{count, capacity};
        if constexpr (std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>) {
            if (count > 0) {
                std::memcpy(static_cast<void*>(c->Items()), from, size_t(count) * sizeof(T));
            }
            std::uninitialized_value_construct_n(c->Items() + count, capacity - count);
            block.release();
            return c;
        } else {
            std::uninitialized_value_construct_n(c->Items(), capacity);
            block.release();
            std::unique_ptr<cList_Container, void (*)(cList_Container*)> guard(c, DestroyUncounted);
            if constexpr (std::is_nothrow_move_assignable_v<T>) {
                if (move) {
                    std::move(from, from + count, c->Items());
                    return guard.release();
                }
            }
            std::copy_n(from, count, c->Items());
            return guard.release();
        }
    }

    static void DestroyUncounted(cList_Container* c) {
        std::destroy_n(c->Items(), c->Capacity);
        delete[] reinterpret_cast<unsigned char*>(c);
    }

private:
    static size_t BlockSize(int capacity) {
        const unsigned long long bytes = (unsigned long long)capacity * sizeof(T) + sizeof(cList_Container);
        if (bytes > PTRDIFF_MAX) {
            throw std::bad_array_new_length(); // what `new T[capacity]` does
        }
        return size_t(bytes);
    }
};

/// The framework's one array type.
///
/// Growth by one takes the capacity through 8, 13, 20, 31, ...: the need plus half the former capacity, at least 8.
/// Slots between `Count()` and `Capacity()` stay alive: a `cStr` that falls out of the count keeps its buffer until it
/// is overwritten or the list is freed. An argument may be an element of the same list.
///
/// A list is not thread-safe.
template <class T, class Container = cList_Container<T>> class cList {
public:
    /// Ordering for `Sort`: answers whether `a` may stand behind `b`. A false sends `a` ahead of `b`.
    struct CompareFunctor {
        virtual ~CompareFunctor() = default;
        virtual bool operator()(const T& a, const T& b) const = 0;
    };

    constexpr cList() = default;
    cList(const cList& other) : cList() { Copy(other); } // delegates, so that a throw destructs what is there
    constexpr cList(cList&& other) noexcept : m_Container(std::exchange(other.m_Container, nullptr)) {}
    ~cList() { Free(); }

    cList& operator=(const cList& other) {
        Copy(other);
        return *this;
    }
    cList& operator=(cList&& other) noexcept {
        std::swap(m_Container, other.m_Container);
        return *this;
    }

    /// Destructs every slot and releases the block; back to the empty word.
    void Free() {
        Container* c = std::exchange(m_Container, nullptr);
        Release(c);
    }

    /// Appends `count` copies of `v`.
    ///
    /// @return index of the last element, -1 when there is none
    int Add(const T& v, int count = 1) {
        Container* c = m_Container;
        if (count == 1 && c && c->Count < c->Capacity) [[likely]] {
            const int index = c->Count;
            c->Items()[index] = v;
            c->Count = index + 1;
            return index;
        }
        // Small plain values go by value: their address would force each caller to keep them in memory.
        if constexpr (std::is_trivially_copyable_v<T> && sizeof(T) <= 2 * sizeof(void*)) {
            return AddSlow<T>(v, count);
        } else {
            return AddSlow<const T&>(v, count);
        }
    }

    /// Appends the `count` elements at `v`, which may be elements of this list. The result is as of `Add`.
    int AddRange(const T* v, int count) {
        if (count > 0) {
            const Hold old = GrowFor(count, v);
            std::copy_n(v, count, m_Container->Items() + m_Container->Count);
            m_Container->Count += count;
        }
        return Count() - 1;
    }

    /// Moves the elements from `index` on up by `count` and writes copies of `v` into the gap.
    ///
    /// @param index  in [0, Count()]
    void Insert(int index, const T& v, int count = 1) {
        if (count < 1) {
            return;
        }
        const T* value = &v;
        const Hold old = GrowFor(count, value);
        T* items = m_Container->Items();
        const int tail = m_Container->Count - index;
        if (!old && Contains(items + index, tail, value)) {
            value += count; // it moves up together with the tail
        }
        MoveUp(items + index, tail, count);
        std::fill_n(items + index, count, *value);
        m_Container->Count += count;
    }

    /// Makes room for `n` elements by the growth rule; never shrinks.
    ///
    /// @param keepOld  true hands a replaced container back with its elements intact, for the caller to `Release`
    ///                 once nothing refers to them any more
    /// @return the replaced container, or null when nothing was reallocated or the old one is released already
    Container* EnsureCapacity(int n, bool keepOld) {
        const int capacity = GrownCapacity(n);
        return capacity == Capacity() ? nullptr : Reallocate(capacity, Count(), keepOld);
    }

    /// Sets the capacity to exactly `n`; elements past it are dropped, and `n` below 1 frees the list.
    /// The result is as of `EnsureCapacity`.
    Container* Resize(int n, bool keepOld) {
        if (n < 1) {
            Free();
            return nullptr;
        }
        return n == Capacity() ? nullptr : Reallocate(n, Count() < n ? Count() : n, keepOld);
    }

    /// Destructs and releases a container that `EnsureCapacity` or `Resize` gave back; null is allowed.
    static void Release(Container* c) {
        if (c) {
            Container::DestroyUncounted(c);
            cList_Debug::AddContainers(-1);
        }
    }

    /// Makes this list equal to `other`, reusing the block where it is large enough. `other` must not belong to an
    /// element of this list.
    void Copy(const cList& other) {
        if (this == &other) {
            return;
        }
        const int count = other.Count();
        if (count > Capacity()) {
            Container* fresh = Container::Create(GrownCapacity(count), const_cast<T*>(other.Data()), count, false);
            cList_Debug::AddContainers(1);
            const Hold old(std::exchange(m_Container, fresh)); // an element of it may own `other`
        } else if (m_Container) {
            std::copy_n(other.Data(), count, m_Container->Items());
            m_Container->Count = count;
        }
    }

    /// Count to 0; frees nothing and destructs nothing.
    void Clear() {
        if (m_Container) {
            m_Container->Count = 0;
        }
    }

    /// Sets the count, growing the list if needed. Slots that come into the count keep what they last held.
    void SetCount(int n) {
        if (n > Capacity()) [[unlikely]] {
            EnsureCapacity(n, false);
        }
        if (m_Container) {
            m_Container->Count = n;
        }
    }

    /// Removes `count` elements, keeping the order of the rest.
    void RemoveAt(int index, int count = 1) {
        if (count < 1) {
            return; // moving elements onto themselves would lose them
        }
        T* items = m_Container->Items();
        if constexpr (std::is_trivially_copyable_v<T>) {
            const int tail = m_Container->Count - index - count;
            std::memmove(static_cast<void*>(items + index), items + index + count, size_t(tail) * sizeof(T));
        } else {
            std::move(items + index + count, items + m_Container->Count, items + index);
        }
        m_Container->Count -= count;
    }

    /// Shell sort, ascending by `compare` (negative, 0, positive, as for qsort). Not stable, no allocation.
    void Sort(int (*compare)(const T*, const T*)) {
        ShellSort([compare](const T& key, const T& other) { return compare(&key, &other) < 0; });
    }

    /// Shell sort by a functor; see `CompareFunctor` for its sense. Not stable, no allocation.
    void Sort(const CompareFunctor& f) {
        ShellSort([&f](const T& key, const T& other) { return !f(key, other); });
    }

    /// @param equals  called with two pointers to elements
    /// @return index of the first element equal to `v`, or -1
    template <class Equals = cList_DefEquals<T>> int IndexOf(const T& v, Equals equals = {}) const {
        const T* items = Data();
        for (int i = 0, n = Count(); i < n; i++) {
            if (equals(&items[i], &v)) {
                return i;
            }
        }
        return -1;
    }

    int Count() const { return m_Container ? m_Container->Count : 0; }
    int Capacity() const { return m_Container ? m_Container->Capacity : 0; }
    bool IsEmpty() const { return Count() == 0; }

    T& operator[](int index) { return m_Container->Items()[index]; }
    const T& operator[](int index) const { return m_Container->Items()[index]; }

    /// The elements as an array; null while the list has no container.
    T* Data() { return m_Container ? m_Container->Items() : nullptr; }
    const T* Data() const { return m_Container ? m_Container->Items() : nullptr; }

    T* begin() { return Data(); }
    T* end() { return m_Container ? m_Container->Items() + m_Container->Count : nullptr; }
    const T* begin() const { return Data(); }
    const T* end() const { return m_Container ? m_Container->Items() + m_Container->Count : nullptr; }

private:
    struct ReleaseLater {
        void operator()(Container* c) const { Release(c); }
    };
    using Hold = std::unique_ptr<Container, ReleaseLater>; // keeps an argument alive that lies in the old block

    static bool Contains(const T* items, int count, const T* v) {
        return count > 0 && !std::less<const T*>()(v, items) && std::less<const T*>()(v, items + count);
    }

    /// The capacity that the growth rule gives for `need`; the present one when it is enough.
    int GrownCapacity(int need) const {
        const int capacity = Capacity();
        if (capacity >= need) {
            return capacity;
        }
        const long long grown = (long long)need + capacity / 2;
        if (grown > 0x7FFFFFFF) {
            throw std::bad_array_new_length();
        }
        return grown < 8 ? 8 : int(grown);
    }

    [[gnu::noinline]] Container* Reallocate(int capacity, int count, bool keepOld) {
        Container* old = m_Container;
        m_Container = Container::Create(capacity, old ? old->Items() : nullptr, count, !keepOld);
        cList_Debug::AddContainers(1);
        if (keepOld) {
            return old;
        }
        Release(old);
        return nullptr;
    }

    /// Room for `count` more. The old block lives as long as the result; its elements are moved out of it unless
    /// `v` points at one of them, and what they own stays alive in the new block either way.
    Hold GrowFor(int count, const T* v) {
        if (count > 0x7FFFFFFF - Count()) {
            throw std::bad_array_new_length();
        }
        const int capacity = GrownCapacity(Count() + count);
        if (capacity == Capacity()) {
            return nullptr;
        }
        Container* old = m_Container;
        const bool move = !old || !Contains(old->Items(), old->Count, v);
        m_Container = Container::Create(capacity, old ? old->Items() : nullptr, Count(), move);
        cList_Debug::AddContainers(1);
        return Hold(old);
    }

    template <class Arg> [[gnu::noinline]] int AddSlow(Arg v, int count) {
        if (count > 0) {
            const Hold old = GrowFor(count, &v);
            std::fill_n(m_Container->Items() + m_Container->Count, count, v);
            m_Container->Count += count;
        }
        return Count() - 1;
    }

    static void MoveUp(T* from, int count, int by) {
        if constexpr (std::is_trivially_copyable_v<T>) {
            std::memmove(static_cast<void*>(from + by), from, size_t(count) * sizeof(T));
        } else {
            std::move_backward(from, from + count, from + count + by);
        }
    }

    template <class GoesFirst> void ShellSort(GoesFirst goesFirst) {
        const int count = Count();
        T* items = Data();
        for (int gap = count / 2; gap > 0; gap /= 2) {
            for (int i = gap; i < count; i++) {
                T key = items[i];
                int j = i - gap;
                for (; j >= 0 && goesFirst(key, items[j]); j -= gap) {
                    items[j + gap] = std::move(items[j]);
                }
                items[j + gap] = std::move(key);
            }
        }
    }

    Container* m_Container = nullptr;
};

} // namespace trellis
