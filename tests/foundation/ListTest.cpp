#include "foundation/cList.h"

#include "HeapLimit.h"
#include "foundation/cStr.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

using namespace trellis;

namespace {

static_assert(sizeof(cList<int>) == sizeof(void*));

/// Counts its live objects; the construction or assignment at which the fuse burns down throws.
struct Probe {
    static inline int s_Alive = 0;
    static inline int s_Fuse = -1; // -1: none

    int Value;

    Probe(int value = 0) : Value(value) {
        Burn();
        s_Alive++;
    }
    Probe(const Probe& other) : Probe(other.Value) {}
    Probe& operator=(const Probe& other) {
        Burn();
        Value = other.Value;
        return *this;
    }
    ~Probe() { s_Alive--; }

    operator int() const { return Value; }

    static void Burn() {
        if (s_Fuse >= 0 && s_Fuse-- == 0) {
            throw std::bad_alloc();
        }
    }
};

template <class T> std::vector<int> Values(const cList<T>& list) {
    return {list.begin(), list.end()};
}

template <class T> void Fill(cList<T>* list, const std::vector<int>& values) {
    for (const int v : values) {
        list->Add(v);
    }
}

TEST(List, CapacityIsNeedPlusHalfTheFormerAtLeastEight) {
    constexpr int expected[] = {8, 13, 20, 31, 47, 71, 107};
    cList<int> list;
    size_t step = 0;
    for (int i = 0; i < 80; i++) {
        const int before = list.Capacity();
        EXPECT_EQ(list.Add(i), i);
        if (list.Capacity() != before) {
            EXPECT_EQ(i, before) << "grew with room left";
            EXPECT_EQ(list.Capacity(), expected[step++]);
        }
    }
    cList<int> nine;
    nine.Add(1, 9);
    EXPECT_EQ(nine.Capacity(), 9);
    EXPECT_EQ(nine.Add(1, 2), 10);
    EXPECT_EQ(nine.Capacity(), 11 + 9 / 2);
}

TEST(List, AddOfNothingAllocatesNothing) {
    const int containers = cList_Debug::ContainersCount;
    cList<int> list;
    const int v = 7;
    EXPECT_EQ(list.Add(v, 0), -1);
    EXPECT_EQ(list.AddRange(&v, 0), -1);
    list.Insert(0, v, 0);
    list.EnsureCapacity(0, false);
    const cList<int> copy(list);
    EXPECT_EQ(copy.Capacity() + list.Capacity(), 0);
    EXPECT_EQ(cList_Debug::ContainersCount, containers);
    list.Add(v, 3);
    EXPECT_EQ(list.Add(v, 0), 2);
}

TEST(List, EnsureCapacityHandsTheOldContainerBackAlive) {
    const char* const text = "a text that is longer than a slot";
    cList<cStr> list;
    EXPECT_EQ(list.EnsureCapacity(3, true), nullptr) << "there was none";
    list.Add(text);
    EXPECT_EQ(list.EnsureCapacity(8, true), nullptr) << "large enough";
    auto* old = list.EnsureCapacity(9, true);
    ASSERT_NE(old, nullptr);
    EXPECT_EQ(list.Capacity(), 13);
    EXPECT_TRUE(old->Items()[0] == text);
    EXPECT_TRUE(list[0] == text);
    cList<cStr>::Release(old);
    EXPECT_EQ(list.EnsureCapacity(14, false), nullptr);
    EXPECT_TRUE(list[0] == text);
}

TEST(List, ResizeIsExact) {
    constexpr struct {
        const char* Name;
        int Size, Capacity, Count;
    } cases[] = {
        {"below the count drops the end", 3, 3, 3},
        {"one more than the capacity", 9, 9, 5},
        {"the capacity already", 8, 8, 5},
        {"none frees", 0, 0, 0},
        {"below none frees", -1, 0, 0},
    };
    const std::vector<int> values = {10, 11, 12, 13, 14};
    for (const auto& c : cases) {
        for (const bool keepOld : {false, true}) {
            SCOPED_TRACE(c.Name);
            cList<Probe> list;
            Fill(&list, values);
            auto* old = list.Resize(c.Size, keepOld);
            EXPECT_EQ(old != nullptr, keepOld && c.Size > 0 && c.Capacity != 8);
            cList<Probe>::Release(old);
            EXPECT_EQ(list.Capacity(), c.Capacity);
            EXPECT_EQ(Probe::s_Alive, c.Capacity) << "every slot is alive, and no other";
            EXPECT_EQ(Values(list), std::vector<int>(values.begin(), values.begin() + c.Count));
        }
    }
}

TEST(List, SlotsBehindTheCountStayAlive) {
    cList<cStr> list;
    list.Add("a text that is longer than a slot");
    const char* const buffer = list[0].Text();
    list.Clear();
    EXPECT_EQ(list.Count(), 0);
    EXPECT_EQ(list.Data()[0].Text(), buffer);
    list.Add("another text longer than a slot");
    EXPECT_EQ(list[0].Text(), buffer) << "overwritten in place";

    cList<int> ints;
    Fill(&ints, {1, 2});
    EXPECT_EQ(ints.Data()[7], 0) << "plain slots start at zero";
    ints.Clear();
    ints.SetCount(2);
    EXPECT_EQ(Values(ints), std::vector({1, 2}));
}

TEST(List, CopyReusesTheBlock) {
    cList<cStr> source, list;
    source.Add("x", 9);
    list.Copy(source);
    EXPECT_EQ(list.Capacity(), 9);
    const cStr* const items = list.Data();
    source.RemoveAt(2, 7);
    list = source;
    EXPECT_EQ(list.Data(), items);
    EXPECT_EQ(list.Count(), 2);
    list.Copy(list);
    EXPECT_EQ(list.Count(), 2);
    list.Copy(cList<cStr>());
    EXPECT_EQ(list.Count(), 0);
    EXPECT_EQ(list.Capacity(), 9) << "an empty source leaves the capacity";
}

TEST(List, RemoveOfNothingTouchesNothing) {
    cList<std::string> list; // its assignment to itself by move would empty a text
    list.Add(std::string(40, 'x'), 3);
    list.RemoveAt(1, 0);
    EXPECT_EQ(list.Count(), 3);
    EXPECT_EQ(list[1], std::string(40, 'x'));
}

// Sorting

struct Tagged {
    int Key;
    char Tag;
};

int CompareKeys(const Tagged* a, const Tagged* b) {
    return a->Key - b->Key;
}

struct MayStandBehind : cList<Tagged>::CompareFunctor {
    bool Equal;
    explicit MayStandBehind(bool equal) : Equal(equal) {}
    bool operator()(const Tagged& a, const Tagged& b) const override { return Equal ? a.Key >= b.Key : a.Key > b.Key; }
};

std::string Tags(const cList<Tagged>& list) {
    std::string tags;
    for (const auto& t : list) {
        tags += t.Tag;
    }
    return tags;
}

TEST(List, SortIsShellsAndNotStable) {
    // By hand, gap 2 then 1: the first pass carries c over a, and so puts b ahead of a.
    constexpr Tagged items[] = {{2, 'a'}, {2, 'b'}, {1, 'c'}, {3, 'd'}};
    cList<Tagged> list;
    list.AddRange(items, 4);
    cList<Tagged> equal = list, unequal = list;
    list.Sort(CompareKeys);
    EXPECT_EQ(Tags(list), "cbad");
    equal.Sort(MayStandBehind(true));
    EXPECT_EQ(Tags(equal), "cbad");
    unequal.Sort(MayStandBehind(false)); // a false for equal keys sends the later one ahead: a passes b again
    EXPECT_EQ(Tags(unequal), "cabd");
}

TEST(List, SortOrders) {
    std::mt19937 random(2);
    for (int n = 0; n < 300; n += n < 3 ? 1 : 7) {
        cList<cStr> list;
        std::vector<std::string> expected;
        for (int i = 0; i < n; i++) {
            expected.push_back(std::to_string(random() % 500 + 1000) + std::string(random() % 2 * 30, '-'));
            list.Add(expected.back().c_str());
        }
        std::sort(expected.begin(), expected.end());
        list.Sort([](const cStr* a, const cStr* b) { return cStr::Compare(*a, *b); });
        for (int i = 0; i < n; i++) {
            ASSERT_STREQ(list[i], expected[size_t(i)].c_str());
        }
    }
}

// Failures of the heap

template <class Operation> void ExpectKept(const char* name, Operation operation) {
    SCOPED_TRACE(name);
    const std::vector<int> values = {1, 2, 3, 4, 5, 6, 7, 8}; // fills the first container
    const int containers = cList_Debug::ContainersCount;
    bool thrown = true;
    for (int fuse = 0; thrown; fuse++) {
        cList<Probe> list;
        Fill(&list, values);
        Probe::s_Fuse = fuse;
        try {
            operation(&list);
            thrown = false;
        } catch (const std::bad_alloc&) {
            EXPECT_EQ(Values(list), values) << "at " << fuse;
        }
        Probe::s_Fuse = -1;
        list.Free();
        ASSERT_EQ(Probe::s_Alive, 0) << "at " << fuse;
        ASSERT_EQ(cList_Debug::ContainersCount, containers) << "at " << fuse;
    }
}

TEST(List, ElementsThatThrowLeaveTheList) {
    ExpectKept("Add", [](cList<Probe>* list) { list->Add((*list)[2]); });
    ExpectKept("Add of many", [](cList<Probe>* list) { list->Add((*list)[2], 5); });
    ExpectKept("AddRange", [](cList<Probe>* list) { list->AddRange(list->Data() + 1, 6); });
    ExpectKept("EnsureCapacity", [](cList<Probe>* list) { list->EnsureCapacity(9, false); });
    ExpectKept("Resize", [](cList<Probe>* list) { list->Resize(30, false); });
    ExpectKept("Resize, smaller", [](cList<Probe>* list) { list->Resize(4, false); });
    ExpectKept("copy of it", [](cList<Probe>* list) { cList<Probe> copy(*list); });
    ExpectKept("copy from it", [](cList<Probe>* list) {
        cList<Probe> other;
        other.Add((*list)[0]);
        other.Copy(*list);
    });
}

TEST(List, HeapThatRefusesLeavesTheContainer) {
    cList<int> list, large;
    Fill(&list, {1, 2, 3, 4, 5});
    large.Add(7, 1000);
    const int containers = cList_Debug::ContainersCount;
    {
        const cHeapLimit limit(1000);
        EXPECT_THROW(list.EnsureCapacity(1000, false), std::bad_alloc);
        EXPECT_THROW(list.Resize(1000, true), std::bad_alloc);
        EXPECT_THROW(list.Add(list[0], 1000), std::bad_alloc);
        EXPECT_THROW(list.Insert(1, list[0], 1000), std::bad_alloc);
        EXPECT_THROW(list.Copy(large), std::bad_alloc);
    }
    EXPECT_THROW(list.EnsureCapacity(0x7FFFFFFF, false), std::bad_alloc) << "the growth rule passes the int";
    EXPECT_THROW(list.Add(list[0], 0x7FFFFFFF), std::bad_alloc) << "the count passes the int";
    EXPECT_EQ(Values(list), std::vector({1, 2, 3, 4, 5}));
    EXPECT_EQ(list.Capacity(), 8);
    EXPECT_EQ(cList_Debug::ContainersCount, containers);
}

// Against the standard vector

template <class T> T Make(unsigned int n) {
    if constexpr (std::is_same_v<T, int>) {
        return int(n);
    } else {
        return T(std::string(n % 50, char('a' + n % 26)).c_str());
    }
}

template <class T> class ListModel : public testing::Test {};
using ModelTypes = testing::Types<int, std::string, cStr>;
TYPED_TEST_SUITE(ListModel, ModelTypes);

TYPED_TEST(ListModel, RandomEditsMatchAVector) {
    using T = TypeParam;
    using Model = std::vector<std::conditional_t<std::is_same_v<T, int>, int, std::string>>;
    const T warm[] = {Make<T>(25), Make<T>(49)}; // the pool's own lists count as well, once it has made them
    static_cast<void>(warm);
    const int containers = cList_Debug::ContainersCount;
    {
        std::mt19937 random(1);
        const auto below = [&](int n) { return int(random() % unsigned(n)); };
        cList<T> list;
        Model model;
        for (int round = 0; round < 20000; round++) {
            const int n = list.Count();
            const int at = below(n + 1);
            const int count = below(4);
            const bool alias = n > 0 && below(2) == 0; // the argument is an element of the list
            const int element = alias ? below(n) : 0;
            const unsigned fresh = random();
            const T outside = Make<T>(fresh);
            const T& value = alias ? list[element] : outside;
            const auto expected = alias ? model[size_t(element)] : Make<typename Model::value_type>(fresh);
            switch (below(n > 60 ? 12 : 9)) {
            case 0:
            case 1:
                EXPECT_EQ(list.Add(value), n);
                model.push_back(expected);
                break;
            case 2:
                list.Add(value, count);
                model.insert(model.end(), size_t(count), expected);
                break;
            case 3:
            case 4:
                list.Insert(at, value, count);
                model.insert(model.begin() + at, size_t(count), expected);
                break;
            case 5: {
                const Model range(model.begin() + at, model.end());
                list.AddRange(list.Data() + at, n - at > 20 ? 20 : n - at);
                model.insert(model.end(), range.begin(), range.begin() + std::min<ptrdiff_t>(20, ssize(range)));
                break;
            }
            case 6:
                list.EnsureCapacity(n + below(40), false);
                break;
            case 7:
                if (n > 0) {
                    list.Resize(n + below(3), false);
                }
                break;
            case 8: {
                cList<T> copy(list), target;
                target.Add(outside, below(30));
                target = copy;
                list = std::move(target);
                break;
            }
            case 9:
                list.Clear();
                model.clear();
                break;
            default: {
                const int removed = below(n - at + 1);
                list.RemoveAt(at, removed);
                model.erase(model.begin() + at, model.begin() + at + removed);
            }
            }
            ASSERT_EQ(list.Count(), int(model.size())) << "round " << round;
            ASSERT_LE(list.Count(), list.Capacity());
            for (int i = 0; i < list.Count(); i++) {
                if constexpr (std::is_same_v<T, int>) {
                    ASSERT_EQ(list[i], model[size_t(i)]) << "round " << round;
                } else {
                    ASSERT_TRUE(list[i] == model[size_t(i)].c_str()) << "round " << round << ", element " << i;
                }
            }
        }
    }
    EXPECT_EQ(cList_Debug::ContainersCount, containers);
}

} // namespace
