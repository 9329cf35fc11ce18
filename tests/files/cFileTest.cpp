#include "files/cFile.h"

#include <algorithm>
#include <limits>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "math/cVec2.h"
#include "math/cVec3.h"

namespace trellis {
namespace {

/// A file over a heap block without slack, so that a read past its end shows.
cFile FileOf(std::string_view text, int room = 0) {
    cList<unsigned char> bytes;
    bytes.Resize(std::max(room, int(text.size())), false);
    for (const char c : text) {
        bytes.Add((unsigned char)c);
    }
    cFile file;
    file.Set(&bytes, "test");
    return file;
}

std::string TextOf(const cFile& file) {
    const auto* bytes = reinterpret_cast<const char*>(file.GetBytes().Data());
    return bytes ? std::string(bytes, size_t(file.GetSize())) : "";
}

using namespace std::string_view_literals;

TEST(cFile, NumbersAreLittleEndianAndCutOnesAreRefused) {
    // 1.0f is 3F800000, 2.0f is 40000000, -0.5f is BF000000.
    constexpr auto bytes = "\x00\x00\x80\x3F\x00\x00\x00\x40\x00\x00\x00\xBF"sv;
    for (int size = 0; size <= int(bytes.size()); size++) {
        SCOPED_TRACE(size);
        const cFile file = FileOf(bytes.substr(0, size_t(size)));
        short s = 7;
        EXPECT_EQ(file.ReadShort(&s), size >= 2);
        EXPECT_EQ(s, size >= 2 ? 0 : 7);
        unsigned short w = 7;
        EXPECT_EQ(file.ReadWord(&w), size >= 4);
        EXPECT_EQ(w, size >= 4 ? 0x3F80 : 7);
        EXPECT_EQ(file.GetPos(), size >= 4 ? 4 : size >= 2 ? 2 : 0);

        file.SetPos(0);
        float f = 7;
        EXPECT_EQ(file.ReadFloat(&f), size >= 4);
        EXPECT_EQ(f, size >= 4 ? 1.0f : 7.0f);

        file.SetPos(0);
        cVec2 v2 = {7, 7};
        EXPECT_EQ(file.ReadVec2(&v2), size >= 8);
        EXPECT_EQ(v2.y, size >= 8 ? 2.0f : 7.0f);

        // What came before the missing component is stored, and the cursor is behind it.
        file.SetPos(0);
        cVec3 v3 = {7, 7, 7};
        EXPECT_EQ(file.ReadVec3(&v3), size >= 12);
        EXPECT_EQ(v3.x, size >= 4 ? 1.0f : 7.0f);
        EXPECT_EQ(v3.y, size >= 8 ? 2.0f : 7.0f);
        EXPECT_EQ(v3.z, size >= 12 ? -0.5f : 7.0f);
        EXPECT_EQ(file.GetPos(), size / 4 * 4);
    }
}

TEST(cFile, WritersInsert) {
    const struct {
        const char* Name;
        std::string_view Before;
        int Pos;
        void (*Write)(cFile*);
        std::string_view After;
        int PosAfter;
    } cases[] = {
        {"int on a fresh file", "", 0, [](cFile* f) { f->WriteInt(1); }, "\x01\0\0\0"sv, 4},
        {"short in the middle", "1234", 2, [](cFile* f) { f->WriteShort(-2); }, "12\xFE\xFF\x33\x34", 4},
        {"word at the start", "1234", 0, [](cFile* f) { f->WriteWord(0x8001); }, "\x01\x80\x31\x32\x33\x34", 2},
        {"float", "", 0, [](cFile* f) { f->WriteFloat(1); }, "\0\0\x80\x3F"sv, 4},
        {"vector", "z", 0,
         [](cFile* f) {
             f->WriteVec3({1, 2, -0.5f});
         },
         "\0\0\x80\x3F\0\0\0\x40\0\0\0\xBFz"sv, 12},
        {"string without its terminator", "abcd", 4, [](cFile* f) { f->WriteString("xy"); }, "abcdxy", 6},
        {"null string", "abcd", 1, [](cFile* f) { f->WriteString(nullptr); }, "abcd", 1},
        {"negative count", "abcd", 4, [](cFile* f) { f->WriteBytes("x", -1); }, "abcd", 4},
        {"replacing", "abcd", 1, [](cFile* f) { EXPECT_EQ(f->ReplaceBytes("xy", 2), 2); }, "axyd", 3},
        {"replacing past the end", "abcd", 2, [](cFile* f) { EXPECT_EQ(f->ReplaceBytes("12345678", 8), 2); }, "ab12",
         4},
        {"replacing at the end", "abcd", 4, [](cFile* f) { EXPECT_EQ(f->ReplaceBytes("x", 1), -1); }, "abcd", 4},
        {"cursor past the end", "abcd", 0, [](cFile* f) { f->SetPosMutable(6); }, "abcd\0\0"sv, 6},
        {"cursor below 0", "abcd", 3, [](cFile* f) { f->SetPosMutable(-5); }, "abcd", 0},
        {"reader's cursor past the end", "abcd", 0, [](cFile* f) { f->SetPos(9); }, "abcd", 4},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Name);
        cFile file = FileOf(c.Before);
        file.SetPos(c.Pos);
        c.Write(&file);
        EXPECT_EQ(TextOf(file), c.After);
        EXPECT_EQ(file.GetPos(), c.PosAfter);
    }
}

TEST(cFile, BytesOfTheFileItselfCanBeWritten) {
    // Every range, at every cursor, with and without room for it.
    const std::string text = "abcdef";
    for (const int room : {6, 64}) {
        for (int pos = 0; pos <= 6; pos++) {
            for (int from = 0; from < 6; from++) {
                for (int size = 1; from + size <= 6; size++) {
                    cFile file = FileOf(text, room);
                    file.SetPos(pos);
                    file.WriteBytes(file.GetBytes().Data() + from, size);
                    EXPECT_EQ(TextOf(file), std::string(text).insert(size_t(pos), text, size_t(from), size_t(size)))
                        << room << " " << pos << " " << from << " " << size;
                }
            }
        }
    }
    cFile file = FileOf(text);
    file.Copy(file.GetBytes().Data() + 2, 3, file.GetName());
    EXPECT_EQ(TextOf(file), "cde");
    EXPECT_STREQ(file.GetName(), "test");
}

TEST(cFile, ReadBytesGivesWhatIsLeft) {
    const cFile file = FileOf("abcde");
    char out[9] = {};
    EXPECT_EQ(file.ReadBytes(out, 3), 3);
    EXPECT_EQ(file.ReadBytes(out + 3, -1), 0);
    EXPECT_EQ(file.ReadBytes(out + 3, 5), 2);
    EXPECT_STREQ(out, "abcde");
    EXPECT_EQ(file.ReadBytes(out, 1), -1);
    EXPECT_EQ(file.ReadBytes(out, 0), -1);
    EXPECT_EQ(file.GetPos(), 5);
    EXPECT_EQ(cFile().ReadBytes(out, 1), -1);
}

TEST(cFile, ReadString) {
    const struct {
        const char* Name;
        std::string_view Text;
        const char* Delimiters;
        std::vector<std::string> Tokens;
    } cases[] = {
        {"runs count as one", "  ab,cd", " ,", {"ab", "cd"}},
        {"one delimiter is stepped over", "a\r\n\r\nb\r\n", "\r\n", {"a", "b", ""}},
        {"a delimiter right at the end", "a ", " ", {"a"}},
        {"nothing but delimiters", "   ", " ", {""}},
        {"empty set", " a b", "", {" a b"}},
        {"null set", " a b", nullptr, {" a b"}},
        {"a zero byte is no delimiter", "a\0b c"sv, " ", {{"a\0b", 3}, "c"}},
        {"bytes above 127",
         "a\xFF"
         "b\x80",
         "\xFF",
         {"a", "b\x80"}},
        {"empty file", "", " ", {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Name);
        const cFile file = FileOf(c.Text);
        std::vector<std::string> tokens;
        cStr token("old");
        while (file.ReadString(&token, c.Delimiters)) {
            tokens.emplace_back(token.Text(), size_t(token.Length()));
        }
        EXPECT_EQ(tokens, c.Tokens);
        EXPECT_TRUE(token.IsEmpty());
    }
}

TEST(cFile, SetTakesTheStorageOver) {
    cFile file = FileOf("old");
    file.SetPos(2);
    cList<unsigned char> bytes;
    bytes.Add('n', 5);
    const unsigned char* storage = bytes.Data();
    file.Set(&bytes, "name");
    EXPECT_EQ(file.GetBytes().Data(), storage);
    EXPECT_EQ(bytes.Data(), nullptr);
    EXPECT_EQ(file.GetPos(), 0);
    file.SetPos(3);
    const cFile moved = std::move(file);
    EXPECT_EQ(moved.GetPos() + file.GetPos(), 3);
    file.WriteInt(2);
    EXPECT_EQ(file.GetSize(), 4);
    file.Set(&bytes, nullptr);
    EXPECT_EQ(bytes.Data(), nullptr);
    EXPECT_EQ(file.GetSize(), 0);
    EXPECT_STREQ(file.GetName(), "");
}

TEST(cFile, GrowthBySetPosIsZeroWhereOldBytesWere) {
    cFile file = FileOf("abcdefgh");
    file.Clear();
    EXPECT_EQ(file.GetPos() + file.GetSize(), 0);
    file.WriteString("a");
    file.SetPosMutable(8);
    EXPECT_EQ(TextOf(file), "a\0\0\0\0\0\0\0"sv);

    file.Copy("abc", 0, "n"); // a size below 1 empties, and rewinds
    EXPECT_EQ(file.GetPos() + file.GetSize(), 0);
    file.Copy("abc", 3, "n");
    file.Copy(nullptr, 3, "n");
    EXPECT_EQ(file.GetSize(), 0);
}

TEST(cFile, AppendingSeldomReallocates) {
    cFile file;
    int moves = 0;
    const unsigned char* data = nullptr;
    for (int i = 0; i < 100000; i++) {
        file.WriteInt(i);
        moves += file.GetBytes().Data() != data;
        data = file.GetBytes().Data();
    }
    EXPECT_LE(moves, 30); // need + capacity / 2, from 8: log1.5(400000 / 8) is 27
    file.SetPos(4 * 77777);
    int v = 0;
    EXPECT_TRUE(file.ReadInt(&v));
    EXPECT_EQ(v, 77777);
    EXPECT_THROW(file.WriteBytes(data, std::numeric_limits<int>::max()), std::bad_alloc);
    EXPECT_EQ(file.GetSize(), 400000);
}

} // namespace
} // namespace trellis
