#include "foundation/cHash.h"
#include "foundation/cStrHash.h"
#include "math/cVec3.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <vector>

namespace trellis {
namespace {

std::vector<int> Chain(const cHash& hash, int key) {
    std::vector<int> chain;
    for (int i = hash.First(key); i != -1; i = hash.Next(i)) {
        chain.push_back(i);
    }
    return chain;
}

TEST(Hash, AnswersNothingWithoutTables) {
    cHash hash(16, 8);
    for (const int key : {0, 1, 15, 16, -1, 2147483647}) {
        EXPECT_EQ(hash.First(key), -1);
    }
    EXPECT_EQ(hash.CalcSpread(), 100);
    hash.Remove(3, 3);
    hash.Add(3, 0);
    EXPECT_EQ(hash.First(3), 0);
    hash.Free();
    EXPECT_EQ(hash.First(3), -1);
}

TEST(Hash, IndexGrowsInSteps) {
    constexpr struct { int Ask, Size; } cases[] = {{1000, 1024}, {1024, 1024}, {1025, 2048}, {2049, 3072}};
    cHash hash(16, 1024);
    hash.Add(1, 7);
    for (const auto& c : cases) {
        hash.ResizeIndex(c.Ask);
        EXPECT_EQ(hash.GetIndexSize(), c.Size);
    }
    hash.Add(1, 3000);
    EXPECT_EQ(Chain(hash, 1), (std::vector{3000, 7}));
    cHash untouched(16, 8);
    untouched.ResizeIndex(9);
    EXPECT_EQ(untouched.GetIndexSize(), 1024) << "only recorded";
    EXPECT_EQ(untouched.First(0), -1);
}

TEST(Hash, MatchesAModel) {
    cHash hash(64, 4);
    std::multimap<int, int> model;
    std::mt19937 random(3);
    for (int i = 0; i < 2000; i++) {
        const int key = int(random() % 500);
        hash.Add(key, i);
        model.emplace(key & 63, i);
        hash.Remove(key + 1, i); // not in that chain
        if (i % 3 == 0) {
            const auto victim = model.lower_bound(int(random() % 64));
            if (victim != model.end()) {
                hash.Remove(victim->first, victim->second);
                model.erase(victim);
            }
        }
    }
    for (int key = 0; key < 64; key++) {
        std::vector<int> expected;
        const auto [first, last] = model.equal_range(key);
        for (auto it = first; it != last; ++it) {
            expected.insert(expected.begin(), it->second);
        }
        EXPECT_EQ(Chain(hash, key), expected) << key;
    }
}

TEST(Hash, SpreadForgivesADeviationOfOne) {
    cHash hash(4, 64);
    hash.Add(0, 0);
    EXPECT_EQ(hash.CalcSpread(), 100) << "a single entry";
    hash.Add(0, 1);
    EXPECT_EQ(hash.CalcSpread(), 50); // average 0; one chain is off by 2: error 1 of 2
    hash.Add(1, 2);
    hash.Add(2, 3);
    EXPECT_EQ(hash.CalcSpread(), 100); // 2 1 1 0 around 1
    for (int i = 4; i < 16; i++) {
        hash.Add(0, i);
    }
    EXPECT_EQ(hash.CalcSpread(), 100 - (9 + 2 + 2 + 3) * 100 / 16); // 14 1 1 0 around 4
    cHash crowded(4, 64);
    for (int i = 0; i < 12; i++) {
        crowded.Add(0, i);
    }
    EXPECT_EQ(crowded.CalcSpread(), 100 - (8 + 2 + 2 + 2) * 100 / 12) << "below 0";
}

TEST(Hash, Keys) {
    const cHash hash(1 << 30, 1);
    EXPECT_EQ(hash.GenerateKey("", false), 0);
    EXPECT_EQ(hash.GenerateKey("ab", false), 97 * 119 + 98 * 120);
    EXPECT_EQ(hash.GenerateKey("AB", true), 97 * 119 + 98 * 120);
    EXPECT_NE(hash.GenerateKey("AB", false), hash.GenerateKey("AB", true));
    EXPECT_EQ(hash.GenerateKey("\xFF", false), int((0u - 119) & ((1u << 30) - 1))) << "bytes are signed";
    EXPECT_EQ(hash.GenerateKey(cVec3(1.9f, -2.9f, 10)), 9) << "truncated, each";
    EXPECT_EQ(cHash(8, 1).GenerateKey(cVec3(3e9f, 0, 9)), 1) << "beyond an int is its minimum";
}

TEST(StrHash, KeepsNamesSorted) {
    cStrHash names;
    names.Add(nullptr, 1);
    EXPECT_EQ(names.GetNames().Count(), 0);
    const char* words[] = {"pear", "Apple", "fig", "quince", "apple", "\xC3\xA4pfel"};
    for (int i = 0; i < 6; i++) {
        names.Add(words[i], i * 10);
    }
    for (int i = 0; i < 6; i++) {
        EXPECT_EQ(names.Find(words[i]), i * 10);
    }
    EXPECT_STREQ(names.GetNames()[0].Name, "\xC3\xA4pfel") << "bytes from 128 on sort below ASCII";
    EXPECT_STREQ(names.GetNames()[1].Name, "Apple");
    for (int i = 0; i < 3; i++) {
        names.Add("twin", i);
    }
    const cList<cStrHash::NameIndex>& all = names.GetNames();
    int first = 0;
    while (cStr::Compare(all[first].Name.Text(), "twin") != 0) {
        first++;
    }
    EXPECT_EQ(names.Find("twin"), all[first].Index) << "the first in the list";
    EXPECT_EQ(names.Find("figs"), -1);
    EXPECT_EQ(names.Find(""), -1);
    EXPECT_EQ(names.Find(nullptr), -1);
}

} // namespace
} // namespace trellis
