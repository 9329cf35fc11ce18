#include "foundation/cStr.h"

#include "HeapLimit.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <utility>

using namespace trellis;

namespace {

std::string Bytes(const cStr& s) {
    return {s.Text(), size_t(s.Length())};
}

// Buffers

TEST(Str, ANewOneOwnsNothingAndReadsEmpty) {
    cStr s;
    EXPECT_EQ(s.Data(), nullptr);
    EXPECT_STREQ(s, "");
    EXPECT_EQ(s.Text(), &cStr::def_str);
    EXPECT_EQ(s.Capacity() + s.Length(), 0);
    EXPECT_EQ(std::as_const(s)[0], '\0');
    s.Clear();
    s.Copy(nullptr);
    s.TrimEnd(" ");
    s.TrimStart(" ");
    s.Remove(0, 0);
    s.SetLength(0, 'x');
    EXPECT_EQ(cStr(s).Data(), nullptr);
    EXPECT_EQ(s.Data(), nullptr);
    s.Copy(""); // reads alike and has a buffer
    EXPECT_NE(s.Data(), nullptr);
    EXPECT_EQ(s.Capacity(), 20);
    s.SetLength(0, 'x');
    EXPECT_EQ(s.Data(), nullptr);
    EXPECT_EQ(s.Capacity() + s.Length(), 0);
    EXPECT_NE(const_cast<cStr&>(cStr::Empty).Data(), nullptr);
    EXPECT_STREQ(cStr::Empty, "");
}

TEST(Str, NineteenBytesFromNothingTakeThePool) { // although a slot would hold them with their terminator
    constexpr struct {
        int Length, FromNothing, FromSlot;
    } cases[] = {{1, 20, 20},  {18, 20, 20}, {19, 32, 20}, {20, 32, 32},
                 {31, 32, 32}, {32, 64, 64}, {63, 64, 64}, {64, 96, 96}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Length);
        const std::string text(size_t(c.Length), 'x');
        for (const bool slot : {false, true}) {
            cStr copied, appended, filled, inserted, set;
            for (cStr* s : {&copied, &appended, &filled, &inserted, &set}) {
                if (slot) {
                    s->Copy("");
                }
            }
            copied.Copy(text.c_str());
            appended.Append(text.c_str());
            filled.Append('x', c.Length);
            inserted.Insert(0, text.c_str());
            set.SetLength(c.Length, 'x');
            for (const cStr* s : {&copied, &appended, &filled, &inserted, &set}) {
                EXPECT_EQ(s->Capacity(), slot ? c.FromSlot : c.FromNothing);
                EXPECT_EQ(Bytes(*s), text);
                EXPECT_STREQ(*s, text.c_str());
            }
            EXPECT_EQ(cStr(copied).Capacity(), c.FromNothing);
        }
    }
}

TEST(Str, ResizeReallocatesWhateverTheCapacity) {
    constexpr struct {
        const char* Name;
        const char* Before; // null: no buffer
        int N, Capacity;
    } cases[] = {
        {"a slot from nothing", nullptr, 19, 20},
        {"a need of twenty from nothing", nullptr, 20, 32},
        {"one byte in place of a slot", "abc", 1, 32},
        {"the next step", "abc", 33, 64},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Name);
        cStr s(c.Before);
        const int length = s.Length();
        s.Resize(c.N, true);
        EXPECT_EQ(s.Capacity(), c.Capacity);
        EXPECT_EQ(s.Length(), length);
        EXPECT_STREQ(s, c.Before ? c.Before : "");
    }
    cStr dropped("abc");
    dropped.Resize(40, false);
    EXPECT_EQ(dropped.Length(), 3) << "left as it was";
}

TEST(Str, AHeapThatRefusesLeavesTheText) {
    for (const int length : {5, 40}) {
        cStr s;
        s.Append('x', length);
        const int capacity = s.Capacity();
        {
            const cHeapLimit limit(1000);
            EXPECT_THROW(s.Append('y', 2000), std::bad_alloc);
            EXPECT_THROW(s.Resize(2000, true), std::bad_alloc);
            EXPECT_THROW(s.SetLength(2000, 'z'), std::bad_alloc);
            EXPECT_THROW(s.SetLength(0x7FFFFFFF, 'z'), std::bad_alloc) << "lengths are ints";
        }
        EXPECT_EQ(s.Capacity(), capacity) << "it says where the buffer goes back to";
        EXPECT_EQ(Bytes(s), std::string(size_t(length), 'x'));
    }
}

TEST(Str, SelfCopyPutsTheTerminatorAtStartPlusCount) {
    cStr s("abcdefgh");
    s.Copy(s.Text(), 2, 3);
    EXPECT_EQ(s.Length(), 3);
    EXPECT_STREQ(s, "cdede") << "longer than the length says";
    s = "abcdefgh";
    s.Copy(s.Text() + 2, 0, 3); // how callers do it
    EXPECT_EQ(s.Length(), 3);
    EXPECT_STREQ(s, "cde");
    s.Copy(s.Text() + 3); // the terminator itself still lies inside
    EXPECT_EQ(s.Length(), 0);
}

TEST(Str, InsertPastTheEndWritesPastTheTail) {
    cStr s("abc");
    s.Insert(0, "xy", 0, -1); // nothing
    s.Insert(5, "xy");
    EXPECT_EQ(s.Length(), 5);
    EXPECT_EQ(std::memcmp(s.Text(), "abc\0", 4), 0) << "nothing moved";
    EXPECT_EQ(std::memcmp(s.Text() + 5, "xy", 2), 0);
}

// Comparison

int Flat(const char* a, const char* b, int n) {
    return cStr::Compare(a, b, n);
}
int NoCase(const char* a, const char* b, int n) {
    return cStr::CompareNoCase(a, b, n);
}
int Path(const char* a, const char* b, int n) {
    return cStr::ComparePath(a, b, n);
}

struct Comparison {
    const char* Name;
    int (*Function)(const char*, const char*, int);
    const char *A, *B;
    int N, Result;
};

constexpr Comparison s_Comparisons[] = {
    {"both null", Flat, nullptr, nullptr, -1, 1}, // searches rely on null differing from null
    {"second null", Flat, "x", nullptr, -1, 0},
    {"far apart is 1", Flat, "z", "a", -1, 1},
    {"differs at the limit", Flat, "abc", "abd", 3, -1},
    {"differs behind the limit", Flat, "abc", "abd", 2, 0},
    {"limit of none", Flat, "a", "b", 0, 0},
    {"common end ahead of the limit", Flat, "ab", "ab", 9, 0},
    {"bytes from 128 sort below ASCII", Flat, "\x80", "a", -1, -1},
    {"bytes from 128 sort below the end", Flat, "\xff", "", -1, -1},
    {"case folded", NoCase, "aBz", "AbZ", -1, 0},
    {"folded difference", NoCase, "_", "A", -1, -1}, // _ lies between the cases
    {"no folding beyond Z", NoCase, "[", "{", -1, -1},
    {"no folding beyond ASCII", NoCase, "\xc4", "\xe4", -1, -1},
    {"high bytes stay signed", NoCase, "\x80", "A", -1, -1},
    {"folded, end ahead of the limit", NoCase, "AB", "ab", 9, 0},
    {"slashes and case are alike", Path, "a/b", "A\\b", -1, 0},
    {"file before folder", Path, "x", "a/y", -1, -1},
    {"two files", Path, "b", "a", -1, 1},
    {"two folders", Path, "A/z", "b/a", -1, -1},
    {"the level decides", Path, "a/x", "a/b/c", -1, -1},
    {"backslash in the second marks a folder", Path, "x", "a\\y", -1, -1},
    {"backslash in the first does not", Path, "a\\y", "x", -1, -1}, // both orders say -1
    {"folder named as the file begins", Path, "a/b", "ab", -1, 1},
    {"limit at a component", Path, "abc/d", "abc", 3, 0},
    {"limit at two components", Path, "abc\\d", "ABC/x", 3, 0},
    {"first goes on", Path, "abcd", "abc", 3, 1},
    {"second goes on", Path, "abc", "abcd", 3, -1},
    {"both go on", Path, "abcz", "abcd", 3, -1},
};

TEST(Str, Comparisons) {
    for (const Comparison& c : s_Comparisons) {
        EXPECT_EQ(c.Function(c.A, c.B, c.N), c.Result) << c.Name;
    }
    const cStr a("Ab"), b("aB"), longer("abc");
    EXPECT_TRUE(cStr::EqualsNoCase(&a, &b));
    EXPECT_FALSE(cStr::EqualsNoCase(&a, &longer));
    EXPECT_TRUE(cStr() == cStr(""));
    EXPECT_FALSE(a == b);
}

// Search and replace

TEST(Str, IndexOf) {
    constexpr struct {
        const char *Text, *What;
        int Start, Count;
        bool NoCase;
        int Result;
    } cases[] = {
        {"abcabc", "ca", 0, 6, false, 2},  {"abcabc", "ca", 0, 3, false, 2}, // reaches past the range
        {"abcabc", "ca", 0, 2, false, -1}, {"abcabc", "abc", 1, 5, false, 3}, {"abcabc", "abcd", 0, 6, false, -1},
        {"abcABC", "BC", 0, 6, false, 4},  {"abcABC", "BC", 0, 6, true, 1},   {"", "a", 0, 0, false, -1},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(cStr(c.Text).IndexOf(c.What, c.Start, c.Count, c.NoCase), c.Result) << c.Text << ' ' << c.What;
    }
    EXPECT_EQ(cStr().IndexOf("a"), -1);
    EXPECT_EQ(cStr("xa").IndexOf("a"), 1);
}

TEST(Str, Replace) {
    constexpr struct {
        const char *Name, *Text, *A, *B;
        int Start, Count;
        bool NoCase;
        int Result;
        const char* Expected; // as a C string
        int Length;
    } cases[] = {
        {"grows", "aXbXc", "X", "--", 0, 5, false, 2, "a--b--c", 7},
        {"grows out of the slot", "XXXXXXXXXX", "X", "abc", 0, 10, false, 10, "abcabcabcabcabcabcabcabcabcabc", 30},
        {"shrinks", "a--b--c", "--", "X", 0, 7, false, 2, "aXbXc", 5},
        {"null deletes", "a\rb\r", "\r", nullptr, 0, 4, false, 2, "ab", 2},
        {"matches do not overlap", "aaaaa", "aa", "b", 0, 5, false, 2, "bba", 3},
        {"the replacement is not searched", "ab", "a", "aa", 0, 2, false, 1, "aab", 3},
        {"case folded", "aAa", "A", "x", 0, 3, true, 3, "xxx", 3},
        {"from the middle to the end", "aaaa", "a", "b", 2, 2, false, 2, "aabb", 4},
        {"a partial range ends the C string", "xaxaxa", "a", "b", 0, 4, false, 2, "xbxb", 6},
        {"a partial range without a match, too", "xaxaxa", "z", "b", 0, 4, false, 0, "xaxa", 6},
        {"the last match reaches past the range", "abcabc", "ca", "-", 0, 3, false, 1, "ab-", 5},
        {"no range", "aaa", "a", "b", 0, 0, false, 0, "aaa", 3},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Name);
        cStr s(c.Text);
        EXPECT_EQ(s.Replace(c.A, c.B, c.Start, c.Count, c.NoCase), c.Result);
        EXPECT_STREQ(s, c.Expected);
        EXPECT_EQ(s.Length(), c.Length);
    }
    cStr partial("xaxaxa");
    partial.Replace("a", "b", 0, 4);
    EXPECT_EQ(std::memcmp(partial.Text(), "xbxb\0a", 7), 0) << "the tail is there but for its first byte";
    cStr nothing;
    EXPECT_EQ(nothing.Replace("a", "b"), 0);
    EXPECT_EQ(partial.Replace("x", "y", 0, -1), 0) << "a count below 1 is no range, not the whole of it";
    nothing.Append("");
    EXPECT_EQ(nothing.Capacity(), 20) << "a need of 1 takes a slot";
}

TEST(Str, ReplaceVariants) {
    cStr s("aXbX");
    EXPECT_TRUE(s.ReplaceFirst("x", "--", 0, 4, true));
    EXPECT_STREQ(s, "a--bX");
    EXPECT_FALSE(s.ReplaceFirst("x", "-"));
    EXPECT_EQ(Bytes(s), "a--bX");
    s.Replace('-', '+', 0, 2);
    EXPECT_STREQ(s, "a+-bX");
    s.ReplaceAny("ab", '_', 0, 4);
    EXPECT_STREQ(s, "_+-_X");
    EXPECT_STREQ(cStr("a`z{A\xe4").ToUpper(), "A`Z{A\xe4");
}

TEST(Str, Trim) {
    constexpr struct {
        const char *Text, *Set, *Start, *End;
    } cases[] = {
        {" \tab \t", " \t", "ab \t", " \tab"},
        {"", " ", "", ""},
        {"xax", "ax", "", ""},
        {" a ", nullptr, " a ", " a "},
    };
    for (const auto& c : cases) {
        cStr start(c.Text), end(c.Text);
        start.TrimStart(c.Set);
        end.TrimEnd(c.Set);
        EXPECT_STREQ(start, c.Start);
        EXPECT_STREQ(end, c.End);
        EXPECT_EQ(size_t(start.Length()), std::strlen(c.Start));
        EXPECT_EQ(size_t(end.Length()), std::strlen(c.End));
    }
}

TEST(Str, Format) {
    EXPECT_STREQ(cStr::Format("%s-%03d", "a", 7), "a-007");
    const std::string longText(12000, 'x');
    for (const int length : {9997, 9998, 9999, 12000}) {
        const cStr s = cStr::Format("%.*s", length, longText.c_str());
        EXPECT_EQ(s.Length(), length < 9998 ? length : 9998);
        cStr appended("ab");
        appended.AppendFormat("%.*s", length, longText.c_str());
        EXPECT_EQ(appended.Length(), s.Length() + 2);
    }
}

// Against the standard string

int UsedSlots() {
    return cStr::pool.Count() * cStr::SlotsPerBlock - cStr::free_strings.Count() -
           cBlockCache::CountCached(cBlockCache::SmallString);
}

TEST(Str, RandomEditsMatchAStandardString) {
    const int used = cPool_Debug::UsedCount;
    const int slots = UsedSlots();
    {
        std::mt19937 random(1);
        const auto below = [&](int n) { return int(random() % unsigned(n)); };
        cStr s;
        std::string model;
        for (int round = 0; round < 100000; round++) {
            const int n = s.Length();
            const int at = below(n + 1);
            const int count = below(n - at + 1);
            std::string text(size_t(below(below(8) ? 12 : 60)), 'a');
            for (char& c : text) {
                c = char('a' + below(4));
            }
            switch (below(n > 200 ? 19 : 16)) {
            case 0:
                s.Append(text.c_str());
                model += text;
                break;
            case 1:
                s.Append(text.c_str(), int(text.size()) / 3, int(text.size()) / 2);
                model += text.substr(text.size() / 3, text.size() / 2);
                break;
            case 2:
                s.Append(s);
                model += std::string(model);
                break;
            case 3:
                s.Append(s, at, count);
                model += model.substr(size_t(at), size_t(count));
                break;
            case 4:
                s.Append('b', 3);
                model.append(3, 'b');
                break;
            case 5:
                s.Insert(at, text.c_str());
                model.insert(size_t(at), text);
                break;
            case 6:
                s.Insert(at, s, at, count);
                model.insert(size_t(at), model.substr(size_t(at), size_t(count)));
                break;
            case 7:
                s.Insert(at, 'c', 2);
                model.insert(size_t(at), 2, 'c');
                break;
            case 8:
                s.Remove(at, count);
                model.erase(size_t(at), size_t(count));
                break;
            case 9:
                EXPECT_EQ(s.IndexOf(text.c_str()),
                          n == 0 ? -1 : int(model.find(text) < size_t(n) ? model.find(text) : size_t(-1)));
                break;
            case 10: {
                const std::string a(1 + size_t(below(2)), 'a');
                s.Replace(a.c_str(), text.c_str());
                for (size_t i = 0; (i = model.find(a, i)) != std::string::npos; i += text.size()) {
                    model.replace(i, a.size(), text);
                }
                break;
            }
            case 11:
                s.TrimEnd("ab");
                model.erase(model.find_last_not_of("ab") + 1);
                s.TrimStart("cd");
                model.erase(0, model.find_first_not_of("cd"));
                break;
            case 12: {
                cStr copy(s), target("what was here before, of some length");
                target = copy;
                s = below(2) ? std::move(target) : target + cStr();
                break;
            }
            case 13:
                if (n > 0) {
                    s.Copy(s.Text() + at, 0, count);
                    model = model.substr(size_t(at), size_t(count));
                }
                break;
            case 14:
                s.Resize(n + 1 + below(40), true);
                break;
            case 15:
                EXPECT_EQ(cStr::Compare(s, text.c_str()), (model > text) - (model < text));
                break;
            case 16:
                s.Free();
                model.clear();
                break;
            case 17:
                s.SetLength(at, 'd');
                model.assign(size_t(at), 'd');
                break;
            default:
                s.Copy(text.c_str());
                model = text;
            }
            ASSERT_EQ(Bytes(s), model) << "round " << round;
            ASSERT_STREQ(s, model.c_str()) << "round " << round;
            if (s.Data()) {
                ASSERT_LT(s.Length(), s.Capacity());
                ASSERT_TRUE(s.Capacity() == 20 || s.Capacity() % 32 == 0) << s.Capacity();
            }
        }
    }
    EXPECT_EQ(cPool_Debug::UsedCount, used);
    EXPECT_EQ(UsedSlots(), slots);
}

} // namespace
