// Text into parts, numbers, path components and characters.
#include "foundation/cStr.h"

#include <gtest/gtest.h>

#include <bit>
#include <climits>
#include <random>
#include <string>
#include <string_view>
#include <vector>

using namespace trellis;

namespace {

// Lists and numbers

cStr Bars(const cList<cStr>& list) {
    return cStr::Join("|", list, 0, list.Count());
}

TEST(StrParse, Split) {
    constexpr struct {
        const char *Text, *Separators, *Tokens;
        int Count;
    } cases[] = {
        {"a,,b", ",", "a|b", 2},    {",a,", ",", "a", 1},          {"   ", " ", "", 0},
        {"abc", nullptr, "abc", 1}, {"a,b", "", "a,b", 1},         {"", ",", "", 0},
        {nullptr, ",", "", 0},      {"a; b,c", " ,;", "a|b|c", 3}, {"\xe4 \xf6", " ", "\xe4|\xf6", 2},
    };
    cList<cStr> list;
    list.Add("left from an earlier use, longer than a slot", 4);
    const char* const buffer = list[0].Text();
    for (const auto& c : cases) {
        cStr::Split(c.Text, &list, c.Separators);
        EXPECT_EQ(list.Count(), c.Count) << c.Tokens;
        EXPECT_STREQ(Bars(list), c.Tokens);
        EXPECT_EQ(list.Data()[0].Text(), buffer) << "slots are overwritten in place";
    }
    list.Clear();
    list.Add("x y");
    cStr::Split(list[0], &list, " ");
    EXPECT_STREQ(Bars(list), "x|y");
}

TEST(StrParse, Join) {
    cList<cStr> list;
    cStr::Split("a b c d", &list, " ");
    constexpr struct {
        const char* Separator;
        int Start, Count;
        const char* Text;
    } cases[] = {
        {", ", 0, 4, "a, b, c, d"}, {"", 1, 2, "bc"}, {nullptr, 0, 4, "abcd"}, {"-", 3, 1, "d"}, {"-", 2, 0, ""}};
    for (const auto& c : cases) {
        EXPECT_STREQ(cStr::Join(c.Separator, list, c.Start, c.Count), c.Text);
    }
    EXPECT_EQ(cStr::Join("-", list, 0, 0).Data(), nullptr);
    EXPECT_STREQ(cStr::Join("-", list), "a-b-c-d");
}

TEST(StrParse, ToInt) {
    constexpr struct {
        const char* Text;
        bool Ok;
        int Value;
    } cases[] = {
        {" \t 12abc", true, 12},
        {"-7", true, -7},
        {"+7", true, 7},
        {"+", false, 0},
        {"- 7", false, 0},
        {"", false, 0},
        {"+-7", false, 0},
        {"\n7", false, 0},
        {"x", false, 0},
        {"2147483647", true, INT_MAX},
        {"2147483648", true, INT_MIN},
        {"-2147483648", true, INT_MIN},
        {"4294967297", true, 1}, // wraps
    };
    for (const auto& c : cases) {
        int value = 99;
        EXPECT_EQ(cStr::ToInt(c.Text, &value), c.Ok) << c.Text;
        EXPECT_EQ(value, c.Value) << c.Text;
    }
}

TEST(StrParse, ToFloat) {
    const std::string zeros(130, '0');
    const std::string deep = "0." + zeros + "1", huge = "1" + zeros;
    const struct {
        const char* Text;
        bool Ok;
        float Value;
    } cases[] = {
        {"1.5", true, 1.5f},
        {"1,5", true, 1.5f}, // the comma is a point
        {" \t-0.25x", true, -0.25f},
        {".5", true, 0.5f},
        {"5.", true, 5},
        {"2d2", true, 200},
        {"33581335", true, 33581332}, // rounded at each digit; at once it would be 33581336
        {"2D2", true, 200},
        {"2e+2", true, 200},
        {"2E-2", true, 0.02f},
        {"2e", true, 2}, // no digits behind the letter: 0
        {"2e-", true, 2},
        {"2e x", true, 2},
        {"", false, 0},
        {".", false, 0},
        {"-", false, 0},
        {".e5", false, 0},
        {"\n1", false, 0},
        {"inf", false, 0},
        {"3.4e38", true, 3.4e38f},
        {"3.5e38", false, 0}, // infinite as a float
        {"-3.5e38", false, 0},
        {"0e128", true, 0}, // the last exponent, and one beyond
        {"0e129", false, 0},
        {"1e129", false, 0},
        {"0.0e129", true, 0}, // a fraction's digit takes one off
        {"1e-125", true, 0},  // underflows
        {"1e-126", false, 0},
        {"0.1e-125", false, 0},
        {"1e-45", true, 1.401298464e-45f}, // the smallest denormal
        {"1e4294967297", false, 0},
        {"1e-99999999999999999999", false, 0},
        {deep.c_str(), false, 0},
        {huge.c_str(), false, 0},
    };
    for (const auto& c : cases) {
        float value = 99;
        EXPECT_EQ(cStr::ToFloat(c.Text, &value), c.Ok) << c.Text;
        EXPECT_EQ(value, c.Value) << c.Text;
    }
}

TEST(StrParse, NumberLists) {
    constexpr int ints[] = {1, -20, 300};
    constexpr float floats[] = {0.5f, -1.25f};
    constexpr double doubles[] = {1.0 / 3, 2};
    EXPECT_STREQ(cStr::ToString(ints, 3, ", "), "1, -20, 300");
    EXPECT_STREQ(cStr::ToString(ints, 0, ", "), "");
    EXPECT_STREQ(cStr::ToString(floats, 2, 2, " "), "0.50 -1.25");
    EXPECT_STREQ(cStr::ToString(floats, 1, 0, " "), "0") << "ties go to even";
    EXPECT_STREQ(cStr::ToString(doubles, 2, 12, nullptr), "0.3333333333332.000000000000");

    cList<int> intList;
    intList.Add(99);
    EXPECT_TRUE(cStr::ToIntArray("1, 2;3\t-4", &intList));
    EXPECT_EQ(std::vector<int>(intList.begin(), intList.end()), std::vector({1, 2, 3, -4}));
    EXPECT_FALSE(cStr::ToIntArray("5 6 x 7", &intList));
    EXPECT_EQ(std::vector<int>(intList.begin(), intList.end()), std::vector({5, 6})) << "those ahead of the bad one";
    EXPECT_TRUE(cStr::ToIntArray(nullptr, &intList));
    EXPECT_EQ(intList.Count(), 0);
    cList<float> floatList;
    EXPECT_TRUE(cStr::ToFloatArray("1.5;2 3e1", &floatList));
    EXPECT_EQ(std::vector<float>(floatList.begin(), floatList.end()), std::vector({1.5f, 2.0f, 30.0f}));
}

TEST(StrParse, FixedFloatsAreThoseOfPrintf) {
    std::mt19937 random(3);
    for (int i = 0; i < 200000; i++) {
        uint32_t bits = random();
        if (i % 3) { // around the range that takes part, with ties among them
            bits = (bits & 0x807FF000u) | (110 + bits % 51) << 23;
        }
        const float value = std::bit_cast<float>(bits);
        const int decimals = i % 11;
        ASSERT_EQ(cStr::ToString(&value, 1, decimals), cStr::Format("%.*f", decimals, double(value))) << bits;
    }
}

// Paths

TEST(StrParse, PathComponents) {
    constexpr struct {
        const char *Text, *Extension, *Name, *Base, *Path, *NoExtension, *NoName, *NoPath;
    } cases[] = {
        {"d\\e/f.tar.gz", "gz", "f.tar.gz", "f", "d\\e/", "d\\e/f.tar", "d\\e", "f.tar.gz"},
        {"d/e\\f", "", "f", "f", "d/e\\", "d/e\\f", "d/e", "f"},
        {"a.b/c", "", "c", "c", "a.b/", "a.b/c", "a.b", "c"},
        {"a/b/", "", "b/", "b/", "a/b/", "a/b/", "a/b", ""}, // a trailing slash stays on the name
        {".rc", "rc", ".rc", "", "", "", "", ".rc"},
        {"a/b.", "", "b.", "b", "a/", "a/b", "a", "b."},
        {"a.b", "b", "a.b", "a", "", "a", "", "a.b"},
        {"/", "", "/", "/", "/", "/", "", ""}, // a single byte is its own name
        {"//", "", "/", "/", "//", "//", "/", ""},
        {"", "", "", "", "", "", "", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Text);
        const cStr s(c.Text);
        EXPECT_STREQ(s.GetFileExtension(), c.Extension);
        EXPECT_STREQ(s.GetFileName(), c.Name);
        EXPECT_STREQ(s.GetFileBase(), c.Base);
        EXPECT_STREQ(s.GetFilePath(), c.Path);
        cStr noExtension(s), noName(s), noPath(s);
        noExtension.RemoveFileExtension();
        noName.RemoveFileName();
        noPath.RemoveFilePath();
        EXPECT_STREQ(noExtension, c.NoExtension);
        EXPECT_STREQ(noName, c.NoName);
        EXPECT_STREQ(noPath, c.NoPath);
    }
    cStr null;
    null.RemoveFileExtension();
    null.RemoveFileName();
    null.RemoveFilePath();
    null.EnsureTrailingBackslash();
    EXPECT_STREQ(null.GetFileName(), "");
    EXPECT_STREQ(null.GetFilePath(), "");
}

struct PathEdit {
    const char* Name;
    void (cStr::*Function)(const char* argument);
    const char *Text, *Argument, *Expected;
};

constexpr PathEdit s_PathEdits[] = {
    {"default over one", &cStr::SetFileDefaultExtension, "f.y", "z", "f.y"},
    {"empty", &cStr::AppendPath, "a", "", "a"},
    {"replaces the extension", &cStr::SetFileExtension, "a/f.x.y", "z", "a/f.x.z"},
    {"takes the dot along", &cStr::SetFileExtension, "f.y", ".z", "f.z"},
    {"dot of a folder", &cStr::SetFileExtension, "a.b/f", "z", "a.b/f.z"},
    {"default over a bare dot", &cStr::SetFileDefaultExtension, "f.", "z", "f.z"},
    {"default over none", &cStr::SetFileDefaultExtension, "a.b/f", ".z", "a.b/f.z"},
    {"another path", &cStr::SetFilePath, "a/b/f.x", "p/q", "p/q\\f.x"},
    {"path without a name", &cStr::SetFilePath, "", "p/", "p/"},
    {"default path over none", &cStr::SetFileDefaultPath, "f", "p", "p\\f"},
    {"default path over one", &cStr::SetFileDefaultPath, "/f", "p", "/f"},
    {"one backslash joins", &cStr::AppendPath, "c:", "/x/y", "c:\\x\\y"},
    {"onto nothing", &cStr::AppendPath, "", "/x/y", "x\\y"},
    {"onto a slash, which stays", &cStr::AppendPath, "a/b/", "x", "a/b/x"},
    {"one slash is skipped, no more", &cStr::AppendPath, "a", "//x", "a\\\\x"},
    {"backslashes stay", &cStr::AppendPath, "a", "\\x\\y", "a\\x\\y"},
    {"null", &cStr::AppendPath, "a", nullptr, "a"},
    {"under the root", &cStr::RemoveFileAbsPath, "C:\\A\\f", "c:\\a", "f"},
    {"under the root with its slash", &cStr::RemoveFileAbsPath, "/r/f", "/r/", "f"},
    {"the root itself", &cStr::RemoveFileAbsPath, "/r", "/r", ""},
    {"text is cut, not components", &cStr::RemoveFileAbsPath, "/root/f", "/ro", "ot/f"},
    {"beside the root", &cStr::RemoveFileAbsPath, "c:/a/b", "C:\\x\\y", "..\\..\\a\\b"},
    {"the root, other slashes", &cStr::RemoveFileAbsPath, "c:/a/b", "c:\\a", "b"},
    {"above the root", &cStr::RemoveFileAbsPath, "c:\\a", "c:\\a\\b\\c", "..\\.."},
    {"another root", &cStr::RemoveFileAbsPath, "d:\\a", "c:\\a", "d:\\a"},
    {"no text", &cStr::RemoveFileAbsPath, nullptr, "c:\\a", ""},
};

TEST(StrParse, PathEdits) {
    for (const PathEdit& c : s_PathEdits) {
        cStr s(c.Text);
        (s.*c.Function)(c.Argument);
        EXPECT_STREQ(s, c.Expected) << c.Name;
        EXPECT_EQ(size_t(s.Length()), std::string_view(c.Expected).size()) << c.Name;
    }
    cStr s("a/b");
    s.AppendPath(s.Text() + 1);
    EXPECT_STREQ(s, "a/b\\b");
    s.SlashesToBackSlashes();
    EXPECT_STREQ(s, "a\\b\\b");
    s.BackSlashesToSlashes();
    EXPECT_STREQ(s, "a/b/b");
    for (int i = 0; i < 2; i++) {
        s.EnsureTrailingBackslash();
        EXPECT_STREQ(s, "a/b/b\\");
    }
}

// UTF-8

using Units = std::vector<unsigned short>;

/// Bytes of the well-formed sequence at the front (The Unicode Standard, table 3-7), 0 for none.
int WellFormed(std::string_view s, unsigned int* code) {
    constexpr unsigned int least[] = {0, 0, 0x80, 0x800, 0x10000};
    const unsigned int first = (unsigned char)s[0];
    const int n = first < 0x80 ? 1 : first < 0xC0 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF8 ? 4 : 0;
    if (n == 0 || int(s.size()) < n) {
        return 0;
    }
    *code = n == 1 ? first : first & (0x7Fu >> n);
    for (int i = 1; i < n; i++) {
        const unsigned int trail = (unsigned char)s[size_t(i)];
        if (trail >> 6 != 2) {
            return 0;
        }
        *code = *code << 6 | (trail & 0x3F);
    }
    const bool surrogate = *code >> 11 == 0x1B;
    return *code < least[n] || *code > 0x10FFFF || surrogate ? 0 : n;
}

/// @return whether all of it is well-formed; the units end ahead of the first sequence that is not
bool PlainDecode(std::string_view s, Units* units) {
    units->clear();
    while (!s.empty()) {
        unsigned int code = 0;
        const int n = WellFormed(s, &code);
        if (n == 0) {
            return false;
        }
        if (code >= 0x10000) {
            units->push_back((unsigned short)(0xD800 + ((code - 0x10000) >> 10)));
            code = 0xDC00 + ((code - 0x10000) & 0x3FF);
        }
        units->push_back((unsigned short)code);
        s.remove_prefix(size_t(n));
    }
    return true;
}

class Utf8 : public testing::Test {
protected:
    /// Compares with the plain decoder, and the length of the first sequence too.
    bool Agrees(std::string_view bytes) {
        m_Text.Copy(bytes.data(), 0, int(bytes.size()));
        const bool expected = PlainDecode(bytes, &m_Units);
        unsigned int code;
        const int n = WellFormed(bytes, &code);
        return m_Text.DecodeUTF8(&m_List) == expected &&
               std::equal(m_List.begin(), m_List.end(), m_Units.begin(), m_Units.end()) &&
               m_Text.CalcUTF8Length(0) == (n > 0 ? n : int(bytes.size()));
    }

    cStr m_Text;
    cList<unsigned short> m_List;
    Units m_Units;
};

TEST_F(Utf8, EveryCodePoint) {
    int wrong = 0;
    for (unsigned int code = 0; code < 0x120000; code++) { // surrogates and what lies beyond 10FFFF are refused
        char bytes[] = {'x', 0, 0, 0, 0, 'y'};
        int n = 1;
        if (code < 0x80) {
            bytes[n++] = char(code);
        } else {
            const int trails = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
            bytes[n++] = char((trails == 1 ? 0xC0 : trails == 2 ? 0xE0 : 0xF0) | (code >> (6 * trails)));
            for (int i = trails - 1; i >= 0; i--) {
                bytes[n++] = char(0x80 | ((code >> (6 * i)) & 0x3F));
            }
        }
        bytes[n] = 'y';
        wrong += !Agrees({bytes, size_t(n) + 1}) + !Agrees({bytes + 1, size_t(n)});
    }
    EXPECT_EQ(wrong, 0);
}

TEST_F(Utf8, EveryCombinationOfBoundaryBytes) {
    constexpr unsigned char edges[] = {0x00, 0x41, 0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC0, 0xC1, 0xC2, 0xDF,
                                       0xE0, 0xE1, 0xEC, 0xED, 0xEE, 0xEF, 0xF0, 0xF1, 0xF3, 0xF4, 0xF5, 0xFF};
    constexpr size_t n = std::size(edges);
    int wrong = 0;
    for (size_t i = 0; i < n * n * n * n; i++) {
        const char bytes[] = {char(edges[i % n]), char(edges[i / n % n]), char(edges[i / n / n % n]),
                              char(edges[i / n / n / n])};
        const size_t length = i < n ? 1 : i < n * n ? 2 : i < n * n * n ? 3 : 4;
        wrong += !Agrees({bytes, 4}) + !Agrees({bytes, length});
    }
    EXPECT_EQ(wrong, 0);
}

TEST_F(Utf8, Samples) {
    cStr s("a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80z"); // a, U+E4, U+20AC, U+1F600, z
    EXPECT_TRUE(s.DecodeUTF8(&m_List));
    EXPECT_EQ(Units(m_List.begin(), m_List.end()), Units({'a', 0xE4, 0x20AC, 0xD83D, 0xDE00, 'z'}));
    constexpr int lengths[] = {1, 2, 11 - 2, 3}; // at 0, 1, 2 (inside a character: to the end), 3
    for (int i = 0; i < 4; i++) {
        EXPECT_EQ(s.CalcUTF8Length(i), lengths[i]) << i;
    }
    EXPECT_EQ(s.CalcUTF8Length(s.Length() + 5), 0);
    s.Copy("ok\x80gone");
    EXPECT_FALSE(s.DecodeUTF8(&m_List));
    EXPECT_EQ(m_List.Count(), 2) << "what follows a rejected byte is dropped";
    EXPECT_TRUE(cStr().DecodeUTF8(&m_List));
    EXPECT_EQ(m_List.Count(), 0);
}

} // namespace
