#include "files/cFile.h"
#include "render/cFont.h"
#include "tests/files/Folders.h"
#include "tests/render/Allocations.h"
#include "tests/render/RecordingDevice.h"
#include "view/cViewer.h"

#include <cmath>

using namespace trellis;

namespace {

/// Codes 32 to 126; 'A' advances by 10 and has its ink from (1, 2) to (7, 10) below the pen, the others by 6.
cFont TestFont() {
    cFont font;
    font.Ascent = 12;
    font.LineGap = 3;
    font.Height = 16;
    font.Padding = 1;
    for (int code = 126; code >= 32; code--) {
        const bool isA = code == 'A';
        font.Glyphs.Add({static_cast<unsigned short>(code), 0, 0.5f, 0.25f, 0, 0, 1, isA ? 8.0f : 4.0f,
                         isA ? 10.0f : 6.0f, isA ? 10.0f : 6.0f, 0});
    }
    return font;
}

cFile FileOf(const cFont& font) {
    cFile file;
    font.Write(&file);
    file.SetPos(0);
    return file;
}

class Text : public Folders {
protected:
    Text() {
        const cFile file = FileOf(TestFont());
        Put(Read("Fonts/Test 9.cFont"),
            std::string(reinterpret_cast<const char*>(file.GetBytes().Data()), size_t(file.GetSize())));
        Device.Textures = {{"Fonts/Test 9.bmp", 64, 64, 1, 0, 1, 0}};
        Font = cRender::GetFontID("Test 9");
        Device.Take();
    }
    ~Text() override { RecordingDevice::Uninstall(); }

    RecordingDevice& Device = RecordingDevice::Install();
    int Font;
};

} // namespace

TEST(Font, FileForm) {
    const cFont font = TestFont();
    const cFile file = FileOf(font);
    EXPECT_EQ(file.GetSize(), 19 + 95 * 42 + 4);
    EXPECT_EQ(file.GetBytes()[0], 'c');
    EXPECT_EQ(file.GetBytes()[1], 'f');
    cFont back;
    ASSERT_TRUE(back.Read(file));
    EXPECT_EQ(back.Ascent, 12);
    EXPECT_EQ(back.LineGap, 3);
    EXPECT_EQ(back.Height, 16);
    EXPECT_EQ(back.Padding, 1);
    ASSERT_EQ(back.Glyphs.Count(), 95);
    EXPECT_EQ(back.Glyphs[0].Code, 32) << "written in order";
    EXPECT_EQ(back.Glyphs['A' - 32].AdvanceX, 10);
    EXPECT_EQ(back.Find('~')->V0, 0.5f);
    EXPECT_EQ(back.Find(127), nullptr);
    EXPECT_EQ(back.FindOrPlaceholder(127)->Code, '?');

    cFile copy = file;
    for (int length = 0; length < file.GetSize(); length++) {
        copy.Copy(file.GetBytes().Data(), length, "");
        EXPECT_FALSE(back.Read(copy)) << length;
    }
}

TEST(Font, DamagedFiles) {
    const cFile good = FileOf(TestFont());
    constexpr struct {
        const char* Name;
        int At;
        unsigned char Bytes[4];
        int Count;
    } s_Rows[] = {{"magic", 0, {'c', 'g'}, 2},
                  {"version", 2, {1}, 1},
                  {"one glyph too many", 15, {96, 0, 0, 0}, 4},
                  {"65537", 15, {1, 0, 1, 0}, 4},
                  {"negative", 15, {255, 255, 255, 255}, 4}};
    for (const auto& row : s_Rows) {
        cFile file = good;
        file.SetPos(row.At);
        file.ReplaceBytes(row.Bytes, row.Count);
        file.SetPos(0);
        cFont font;
        EXPECT_FALSE(font.Read(file)) << row.Name;
    }
    cFile claims;
    claims.Copy("cf\0\1\0\0\0\1\0\0\0\1\0\0\0\1\0\0\0", 19, "");
    cFont font;
    EXPECT_FALSE(font.Read(claims));
}

TEST_F(Text, FontsAreLoadedOnce) {
    EXPECT_GE(Font, 0);
    std::filesystem::remove(Read("Fonts/Test 9.cFont"));
    EXPECT_EQ(cRender::GetFontID("Test 9"), Font);
    EXPECT_EQ(cRender::GetFontTextureID(Font), 0);
    EXPECT_EQ(cRender::GetFont(Font)->Height, 16);
    for (int id : {-1, Font + 100}) {
        EXPECT_EQ(cRender::GetFont(id), nullptr);
        EXPECT_EQ(cRender::GetFontTextureID(id), -1);
    }

    EXPECT_EQ(cRender::GetFontID(nullptr), -1);
    EXPECT_EQ(cRender::GetFontID(""), -1);
    Put(Read("Fonts/Bad 9.cFont"), "cf");
    cLog::GetLogMutable().Clear();
    EXPECT_EQ(cRender::GetFontID("Bad 9"), -1);
    const std::string log = cLog::GetLog().Text();
    EXPECT_NE(log.find(" - Loading font \"Bad 9\"..."), std::string::npos);
    EXPECT_NE(log.find("Font format file \"Fonts/Bad 9.cFont\" has wrong size."), std::string::npos);

    const cFile file = FileOf(TestFont());
    Put(Read("Fonts/Lone 9.cFont"),
        std::string(reinterpret_cast<const char*>(file.GetBytes().Data()), size_t(file.GetSize())));
    EXPECT_EQ(cRender::GetFontID("Lone 9"), -1) << "without its picture";
    Device.Textures.push_back({"Fonts/Lone 9.bmp", 64, 64, 1, 0, 1, 0});
    EXPECT_EQ(cRender::GetFontID("Lone 9"), Font + 1) << "nothing was added before";
}

TEST_F(Text, AStringIsOneDraw) {
    cRender::SetWireframe(true);
    Device.Take();
    cRender::DrawString(Font, "A B", 10.4f, 50.6f, cColor::Red);
    EXPECT_EQ(Device.Take(), "SetWireframe 0\nSetBlendState blend(4,5,0,15)\nSetShader Font\nSetSamplerState 0 85\n"
                             "SetTexture Font.s_Glyphs 0\nDrawIndexed 3 8 12\nSetWireframe 1\n");
    const auto draw = Device.TakeDraws().at(0);
    const auto* v = draw.As<cVertex::PositionColoredTextured>();
    EXPECT_EQ(v[0].Pos, cVec3(10, 50, 0)) << "the pen on a whole pixel, one down";
    EXPECT_EQ(v[2].Pos, cVec3(18, 40, 0));
    EXPECT_EQ(v[4].Pos, cVec3(26, 50, 0)) << "behind the advances of A and the blank";
    EXPECT_EQ(v[0].TexCoord, cVec2(0, 0.5f));
    EXPECT_EQ(v[2].TexCoord, cVec2(0.25f, 0));
    EXPECT_EQ(v[0].Color, cColor(1, 0, 0).ToDword());
}

TEST_F(Text, BoxesByFlags) {
    using F = cRender::DrawStringFlags;
    // "AB " at (100, 200): cells 10 + 6 + 6 wide and 16 high; ink from 1 to 13 in x and from 2 to 10 down.
    constexpr struct {
        int Flags;
        cRect Box;
    } s_Rows[] = {
        {0, {100, 184, 122, 200}},
        {F::CenterX, {89, 184, 111, 200}},
        {F::RightX, {78, 184, 100, 200}},
        {F::CenterX | F::RightX, {89, 184, 111, 200}}, // the first bit wins
        {F::CenterY, {100, 192, 122, 208}},
        {F::BaselineY, {100, 196, 122, 212}},
        {F::BottomY, {100, 200, 122, 216}},
        {F::CenterX | F::CenterY, {89, 192, 111, 208}},
        {F::TightBox, {100, 192, 112, 200}},
        {F::TightBox | F::RightX | F::BottomY, {88, 200, 100, 208}},
        {F::TightBox | F::CenterX | F::CenterY, {94, 196, 106, 204}},
    };
    for (const auto& row : s_Rows) {
        SCOPED_TRACE(row.Flags);
        Device.TakeDraws();
        const cRect drawn = cRender::DrawString(Font, "AB ", 100, 200, row.Flags, nullptr);
        EXPECT_EQ(drawn, row.Box);
        const auto draw = Device.TakeDraws().at(0);
        // However it is aligned, the quad of A stands where the box has its ink.
        const cVec3 corner = draw.As<cVertex::PositionColoredTextured>()[0].Pos;
        const bool tight = row.Flags & F::TightBox;
        EXPECT_EQ(corner, tight ? cVec3(row.Box.x0 - 1, row.Box.y1 + 1, 0) : cVec3(row.Box.x0, row.Box.y1 - 1, 0));
        EXPECT_EQ(cRender::DrawString(Font, "AB ", 100, 200, row.Flags | F::MeasureOnly, nullptr), row.Box);
        EXPECT_TRUE(Device.TakeDraws().empty());
    }
    EXPECT_EQ(cRender::MeasureStringCells(Font, "AB "), cRect(0, -16, 22, 0));
    EXPECT_EQ(cRender::MeasureStringTightRect(Font, "AB "), cRect(0, -8, 12, 0));
}

TEST_F(Text, WhatCannotBeWritten) {
    Device.Take();
    EXPECT_EQ(cRender::DrawString(Font, "", 0, 0), cRect::Empty);
    EXPECT_EQ(cRender::DrawString(Font, nullptr, 0, 0, 0, nullptr), cRect::Empty);
    EXPECT_EQ(cRender::DrawString(-1, "A", 0, 0), cRect::Empty);
    EXPECT_EQ(cRender::DrawString(Font, "\xFF", 0, 0), cRect::Empty);
    EXPECT_EQ(cRender::MeasureStringTightRect(Font, "  "), cRect::Empty);
    EXPECT_EQ(Device.Take(), "");

    cRender::DrawString(Font, "\xC3\xA4", 0, 0); // not in the font
    EXPECT_EQ(Device.TakeDraws().at(0).VertexCount, 4) << "the placeholder";
    cStr text = "a\xC3\xA4"
                "b\xE2\x82\xAC"
                "c\n\xFFz";
    cRender::EnsurePrintable(Font, &text);
    EXPECT_STREQ(text, "abcz");
    cStr pasted;
    pasted.SetLength(1000000, 'a');
    cRender::EnsurePrintable(Font, &pasted); // within the time that the test has
    EXPECT_EQ(pasted.Length(), 1000000);
    cStr untouched = "\xC3\xA4";
    cRender::EnsurePrintable(-1, &untouched);
    EXPECT_STREQ(untouched, "\xC3\xA4");
}

TEST_F(Text, NothingIsAllocatedInTheSteadyState) {
    Device.Quiet = true;
    const auto write = [this] {
        cRender::DrawString(Font, "a text that is longer than a short one", 0, 0);
        cRender::MeasureStringCells(Font, "a text that is longer than a short one");
    };
    write();
    const int allocations = AllocationCount();
    write();
    EXPECT_EQ(AllocationCount(), allocations);
}

TEST_F(Text, PointsOfTheWorld) {
    cViewer viewer;
    viewer.Viewport = cRect(100, 100, 300, 200);
    viewer.Update(false);
    EXPECT_EQ(cRender::DrawString(Font, "A", cVec3(0, 0, -5)), cRect::Empty) << "no viewer";
    cRender::SetViewer(&viewer);
    EXPECT_EQ(cRender::DrawString(Font, "A", cVec3(0, 0, -5)), cRect(100, 34, 110, 50)) << "in points of the viewport";
    Device.TakeDraws();
    EXPECT_EQ(cRender::DrawString(Font, "A", cVec3(0, 0, 5)), cRect::Empty);
    EXPECT_EQ(cRender::DrawString(Font, "A", cVec3::Zero), cRect::Empty);
    EXPECT_TRUE(Device.TakeDraws().empty());
}
