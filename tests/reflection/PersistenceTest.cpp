#include "tests/reflection/Lamp.h"

#include "files/cFile.h"
#include "foundation/cLog.h"
#include "reflection/cErrorPager.h"
#include "reflection/cXml.h"

#include <gtest/gtest.h>

using namespace trellis;

namespace {

std::string Written(cClass& object) {
    cStr text;
    EXPECT_TRUE(object.WriteToString(&text));
    return text.Text();
}

std::string LogOf(cClass& object, const char* text, bool expected = true) {
    cLog::GetLogMutable().Clear();
    EXPECT_EQ(object.ReadFromString(text), expected);
    EXPECT_EQ(cClass::CurrentSaveFile, nullptr);
    return cLog::GetLog().Text();
}

} // namespace

TEST(Persistence, WhatEqualsAFreshObjectIsLeftOut) {
    cLamp lamp;
    EXPECT_EQ(Written(lamp), "<cLamp></cLamp>\n");
    lamp.On = true;
    lamp.Shade.Color = cColor(0.2f, 0.2f, 0.2f, 1.0f);
    cLamp::Trace.clear();
    const std::string text = Written(lamp);
    EXPECT_EQ(text,
              "<cLamp>\n <On>true</On>\n <Shade>\n  <Color>0.200 0.200 0.200 1.000</Color>\n </Shade>\n</cLamp>\n");
    EXPECT_EQ(cLamp::Trace, "+p40d0-+-") << "made, given the object's shape, reset to its defaults, destroyed";
    lamp.Height = 1.4999f; // as text the default
    EXPECT_EQ(Written(lamp), text);

    cLamp other;
    other.Power = 1;
    EXPECT_EQ(LogOf(other, text.c_str()), "");
    EXPECT_TRUE(other.On);
    EXPECT_EQ(other.Power, 1) << "what the file leaves out stays";

    cXml node;
    lamp.Save(node, &lamp, nullptr);
    EXPECT_EQ(node.GetNSubQuotes(), 7) << "all but the heading and the static counter";
    EXPECT_STREQ(node.GetQuoteName(), "cLamp");
    EXPECT_STREQ(node.GetSubQuote("&cLamp::Blink")->Get_string(), "");
    lamp.DeleteDefaultSubFields(node, &lamp, nullptr);
    EXPECT_EQ(node.GetNSubQuotes(), 2) << "by name: On, and Shade, which has children";
}

TEST(Persistence, ListsKeepEmptyTagsAndMixedClasses) {
    cRoom room;
    EXPECT_EQ(Written(room), "<cRoom></cRoom>\n") << "an empty list goes";
    room.Lights.Add(new cLight);
    auto* lamp = new cLamp;
    lamp->Height = 2.0f;
    room.Lights.Add(lamp);
    const std::string text = Written(room);
    EXPECT_EQ(text, "<cRoom>\n <Lights>\n  <cLight></cLight>\n  <cLamp>\n   <Height>2.000</Height>\n  </cLamp>\n"
                    " </Lights>\n</cRoom>\n");
    cRoom other;
    other.Lights.Add(new cLight);
    EXPECT_EQ(LogOf(other, text.c_str()), "");
    ASSERT_EQ(other.Lights.Count(), 2) << "what the list held is discarded";
    EXPECT_STREQ(other.Lights.GetElementID(1), "cLamp");
    EXPECT_EQ(other.Lights.GetObject(1)->cClass::GetParent(), &other.Lights);
    EXPECT_EQ(Written(other), text);
    LogOf(other, "<cRoom><Name>x</Name></cRoom>");
    EXPECT_EQ(other.Lights.Count(), 2) << "not mentioned";
    LogOf(other, "<cRoom><Lights></Lights></cRoom>");
    EXPECT_EQ(other.Lights.Count(), 0);
}

TEST(Persistence, ComplaintsAreLoggedAndLoadingGoesOn) {
    constexpr struct {
        const char* Name;
        const char* Text;
        const char* Message;
        int Power;
    } s_Cases[] = {
        {"another root", "<x><Power>3</Power></x>", "", 3},
        {"the last of two", "<x><Power>3</Power><Power>4</Power></x>", "", 4},
        {"unknown", "<x><Zap>1</Zap><Power>5</Power></x>", "Unknown identifier Zap of class cLight.\n", 5},
        {"a kind is no place for children", "<x><Power>6<Zap></Zap></Power></x>", "", 6},
        {"not a number", "<x><Power>abc</Power></x>", "unable to read dword from XML: abc\n", 0},
    };
    for (const auto& c : s_Cases) {
        SCOPED_TRACE(c.Name);
        cLight light;
        const std::string log = LogOf(light, c.Text);
        EXPECT_EQ(light.Power, c.Power);
        cStr message(c.Message);
        message.Replace("\n", "\r\n");
        if (message.IsEmpty()) {
            EXPECT_EQ(log, "");
        } else {
            const std::string head = std::string("Class engine warning!\r\n\r\n") + message.Text() + "XML source: <";
            EXPECT_EQ(log.substr(0, head.size()), head);
        }
        cXml node;
        ASSERT_GT(node.Load(c.Text), 0);
        cErrorPager silent;
        cLog::GetLogMutable().Clear();
        EXPECT_TRUE(light.Load(node, &light, &silent, nullptr));
        EXPECT_TRUE(cLog::GetLog().IsEmpty() && silent.Text.IsEmpty());
    }
}

TEST(Persistence, WhatCannotBeParsedLeavesTheObject) {
    cRoom room;
    room.Name = "kept";
    room.Lights.Add(new cLight);
    cStr deep;
    for (int i = 0; i < cClass::MaxFileDepth / 2; i++) {
        deep.Append("<Lights><cLight>");
    }
    for (const char* text : {"", "junk", "<cRoom>", "<cRoom><Name>x</Name>", "</cRoom>", deep.Text()}) {
        SCOPED_TRACE(cStr(text, 0, std::min<int>(20, int(std::strlen(text)))).Text());
        EXPECT_EQ(LogOf(room, text, false), "");
        EXPECT_EQ(room.Name, "kept");
        EXPECT_EQ(room.Lights.Count(), 1);
    }
    _cInt kind;
    cStr text;
    EXPECT_FALSE(kind.ReadFromString("<a></a>"));
    EXPECT_FALSE(kind.WriteToString(&text)) << "a kind is no object";
    EXPECT_FALSE(room.ReadFromFile("/no/such/file.xml"));
}

TEST(Persistence, LongSourcesAreCutInTheLog) {
    const size_t head = std::strlen("Class engine warning!\r\n\r\nUnknown identifier Z of class cLight.\r\n"
                                    "XML source: \r\n");
    const int tags = int(std::strlen("<x>\n <Z></Z>\n</x>\n"));
    for (const int length : {500, 501}) {
        SCOPED_TRACE(length);
        cLight light;
        cStr text("<x><Z>");
        text.Append('y', length - tags);
        text.Append("</Z></x>");
        const std::string log = LogOf(light, text);
        // Two or, where the last is cut off, all three line ends take two bytes in the log.
        EXPECT_EQ(log.size(), head + (length == 500 ? 500 + 3 : 500 + 2 + 3));
        EXPECT_EQ(log.find("...") != std::string::npos, length == 501);
    }
}

TEST(Persistence, FilesOfUnknownTagsTakeTheirTimeOnce) {
    cRoom room;
    cStr text("<x><Lights>");
    for (int i = 0; i < 20000; i++) {
        text.Append("<cLight></cLight><Zap></Zap>"); // quadratic, this is minutes
    }
    text.Append("</Lights></x>");
    LogOf(room, text);
    EXPECT_EQ(room.Lights.Count(), 20000);
    cLog::GetLogMutable().Free();
}

TEST(Persistence, FilesByPathAndWhatTheySayOfThemselves) {
    class cWatch : public cLight {
    public:
        bool Load(cXml& node, void* data, cErrorPager* pager, void* extra) override {
            Path = CurrentSaveFile ? CurrentSaveFile : "null";
            return cLight::Load(node, data, pager, extra);
        }
        std::string Path;
    } light;
    const std::string path = testing::TempDir() + "persistence.xml";
    cLight saved;
    saved.Room = "NULL"; // ordinary text
    ASSERT_TRUE(saved.WriteToFile(path.c_str()));
    cLog::GetLogMutable().Clear();
    EXPECT_TRUE(light.ReadFromFile(path.c_str()));
    EXPECT_EQ(light.Room, "NULL");
    EXPECT_EQ(light.Path, "");
    EXPECT_EQ(cLog::GetLog(), cStr::Format("Loading Xml file \"%s\"...\r\n", path.c_str()));
    cLog::GetLogMutable().Clear();
    EXPECT_TRUE(light.SafeReadFromFile(path.c_str()));
    EXPECT_EQ(light.Path, path);
    EXPECT_EQ(cLog::GetLog(), cStr::Format(" # Loading xml file \"%s\"...\r\n", path.c_str()));
    EXPECT_EQ(cClass::CurrentSaveFile, nullptr);
    std::remove(path.c_str());
}

/// Holds lists of itself, and one light by default.
class cNest : public cClass {
    TRELLIS_CLASS(cNest)

public:
    void CustomCtor() override {
        if (Lights.GetAmountOfElements() == 0) {
            Lights.Add(new cLight);
        }
    }
    cClassList<cNest> Nests;
    cClassList<cLight> Lights;
};

void cNest::RegisterMembers() {
    cClassMembers members(this);
    if (members.Begin()) {
        members.AddObject(Nests, "Nests");
        members.AddObject(Lights, "Lights");
    }
}

TEST(Persistence, ListsAsRootsAndListsEmptiedAndListsTooDeep) {
    cClassList<cLight> list;
    list.Add(new cLight);
    list.Add(new cLight);
    list.Get(1)->Power = 3;
    const std::string text = Written(list);
    EXPECT_EQ(text, "<cClassList.cLight>\n <cLight></cLight>\n <cLight>\n  <Power>3</Power>\n </cLight>\n"
                    "</cClassList.cLight>\n");
    cClassList<cLight> back;
    EXPECT_EQ(LogOf(back, text.c_str()), "");
    EXPECT_EQ(back.Count(), 2);

    cNest nest;
    nest.Lights.RemoveAt(0);
    EXPECT_EQ(Written(nest), "<cNest>\n <Lights></Lights>\n</cNest>\n") << "not the default";

    for (const int levels : {498, 499}) { // two elements each, and three for the root and the innermost light

        cNest root;
        cNest* at = &root;
        for (int i = 0; i < levels; i++) {
            auto* inner = new cNest;
            at->Nests.Add(inner);
            at = inner;
        }
        cStr deep;
        const bool fits = 2 * levels + 3 <= cClass::MaxFileDepth;
        EXPECT_EQ(root.WriteToString(&deep), fits);
        EXPECT_EQ(cNest().ReadFromString(deep), fits);
    }
}

TEST(Persistence, NullElementsDoNotShiftTheOthersDefaults) {
    cRoom room;
    room.Lights.Add(nullptr);
    auto* lamp = new cLamp;
    lamp->Power = 40;
    room.Lights.Add(lamp);
    room.Lights.Add(new cColorEdit);
    const std::string text = Written(room);
    EXPECT_NE(text.find("<NULL>NULL</NULL>\n  <cLamp>"), std::string::npos) << text;
    cRoom back;
    back.ReadFromString(text.c_str());
    ASSERT_EQ(back.Lights.Count(), 2);
    EXPECT_EQ(back.Lights.Get(0)->Power, 40);
}
