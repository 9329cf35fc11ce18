#include "reflection/cXml.h"

#include <memory>
#include <random>
#include <string>
#include <string_view>

#include "files/cFile.h"
#include "foundation/cLog.h"
#include "reflection/TextSearch.h"
#include "tests/files/Folders.h"

namespace trellis {
namespace {

/// name=body(child)(child)
std::string Dump(const cXml& node) {
    std::string text = std::string(node.GetQuoteName()) + "=" + node.Get_string();
    for (int i = 0; i < node.GetNSubQuotes(); i++) {
        text += node.GetSubQuote(i) ? "(" + Dump(*node.GetSubQuote(i)) + ")" : "(null)";
    }
    return text;
}

std::string Write(const cXml& node, int depth = 0, int limit = INT_MAX) {
    cStr out;
    node.GetXMLSource(&out, depth, limit);
    return std::string(out.Text(), size_t(out.Length()));
}

/// From a heap block without slack, so that a read past the text's end shows.
int LoadExact(cXml* node, std::string_view text) {
    const auto block = std::make_unique<char[]>(text.size() + 1);
    text.copy(block.get(), text.size());
    return node->Load(block.get());
}

/// What was read is written such that it reads back as it was.
void ExpectRoundTrip(const cXml& node) {
    const std::string text = Write(node);
    cXml again;
    ASSERT_EQ(LoadExact(&again, text), int(text.size()) - 1) << text; // all but the last line end
    EXPECT_TRUE(Dump(again) == Dump(node)) << text;
    EXPECT_TRUE(Write(again) == text) << text;
}

TEST(Xml, Load) {
    constexpr struct {
        const char* Name;
        std::string_view Text;
        int Result;
        const char* Tree = nullptr;
    } cases[] = {
        {"plain", "<a>b</a>", 8, "a=b"},
        {"junk in front counts, junk behind does not", "junk><a></a>junk<", 12, "a="},
        {"empty", "", 0, "="},
        {"end tag first", " </a>", -1},
        {"end tag that is shorter", "<ab></a>", -1},
        {"end tag that begins with the name", "<a></ab>", 8, "a="},
        {"attributes are part of the name", "<a b=1>x</a b=1>", 16, "a b=1=x"},
        {"empty-element tag", "<a/>", -1},
        {"slash in a name", "<a/></a/>", 9, "a/="},
        {"declaration", "<?xml version=\"1.0\"?><a></a>", -1},
        {"bracket in a name", "<a<b>x</a<b>", 12, "a<b=x"},
        {"no name", "<>x</y>", 7, "=x"},
        {"zero byte in a tag", std::string_view("<a\0></a\0>", 9), -1},
        {"children", "<a><b>1</b><c><d>2</d></c></a>", 30, "a=(b=1)(c=(d=2))"},
        {"trimmed body", "<a> \t\r\n b c\r\n</a>", 17, "a=b c"},
        {"indented child", "<a>\n <b>1</b>\n</a>", 18, "a=(b=1)"},
        {"body in front of a child", "<a>\n x\n <b></b>\n <c></c>\n</a>", 29, "a=x(b=)(c=)"},
        {"text behind a child takes as much of the head", "<a>x<b></b>y</a>", 16, "a=x(b=)"},
        {"and cuts a longer body", "<a>xy<b></b>z</a>", 17, "a=x(b=)"},
        {"and reaches into the child's tag", "<a><b>1</b>  <c>2</c></a>", 25, "a=<b(b=1)(c=2)"},
        {"and is trimmed there", "<a><b> 1</b>1234</a>", 20, "a=<b>(b=1)"},
        {"brackets", "<a>1&lt2&gt</a>", 15, "a=1<2>"},
        {"the semicolon is text", "<a>&lt;</a>", 11, "a=<;"},
        {"other references, and cut ones", "<a>&amp &Lt &l &</a>", 20, "a=&amp &Lt &l &"},
        {"what a replacement leaves is not looked at again", "<a>&&ltlt</a>", 13, "a=&<lt"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Name);
        cXml node;
        ASSERT_EQ(LoadExact(&node, c.Text), c.Result);
        if (c.Result > 0) {
            EXPECT_EQ(Dump(node), c.Tree);
            ExpectRoundTrip(node);
        }
    }
}

TEST(Xml, LoadIntoAUsedNode) {
    cXml node("old");
    node.Assign_string("1&lt2");
    EXPECT_EQ(node.Load(nullptr), 0);
    EXPECT_EQ(Dump(node), "old=1<2");
    node.Assign_string("3&gt2");
    EXPECT_EQ(node.Load(""), 0);
    EXPECT_EQ(Dump(node), "old=3>2");

    // Only the name is cleared. A body that nothing replaces is unescaped with the rest.
    node.Assign_string("&lt");
    node.AddSubQuote("c", 1);
    EXPECT_EQ(node.Load("<a><b></b></a>"), 14);
    EXPECT_EQ(Dump(node), "a=<(c=1)(b=)");
    EXPECT_EQ(node.Load("junk"), -1);
    EXPECT_STREQ(node.GetQuoteName(), "");
    EXPECT_EQ(node.Load("<a><d>1</d><e>"), -1); // what was read stays
    EXPECT_EQ(Dump(node), "a=<(c=1)(b=)(d=1)(e=)");
}

TEST(Xml, Nodes) {
    const int used = cPool_Debug::UsedCount;
    {
        cXml node("n");
        EXPECT_EQ(node.AddSubQuote("ab", -7), 1);
        EXPECT_EQ(node.AddSubQuote(nullptr), 2);
        EXPECT_EQ(node.AddSubQuote("a", "first"), 3);
        EXPECT_EQ(node.AddSubQuote("a", "second"), 4);
        EXPECT_EQ(node.AddSubQuote("e", nullptr), 5);
        EXPECT_STREQ(node.GetSubQuote("a")->Get_string(), "first");
        EXPECT_EQ(node.GetSubQuote("A"), nullptr);
        EXPECT_EQ(node.GetSubQuote(-1), nullptr);
        EXPECT_EQ(node.GetSubQuote(5), nullptr);
        EXPECT_EQ(Write(node), "<n>\n <ab>-7</ab>\n <a>first</a>\n <a>second</a>\n <e></e>\n</n>\n");
        node.DelSubQuote(2);
        const std::unique_ptr<cXml> kept(node.GetSubQuote(0));
        node.RemoveSubQuote(0);
        EXPECT_EQ(Dump(node), "n=(null)(a=second)(e=)");
        EXPECT_STREQ(kept->Get_string(), "-7");
        node.Assign_string("x>");
        EXPECT_EQ(Write(node, 2), "  <n>\n   x&gt\n   <a>second</a>\n   <e></e>\n  </n>\n");
        for (int i = 0; i < 3; i++) {
            node.DelSubQuote(0);
        }
        EXPECT_EQ(Write(node), "<n>x&gt</n>\n"); // an empty list is no list
        node.Load("<n><a><b></b><c></c></a></n>");
        node.SetList(true);
        node.ClearAll();
        EXPECT_EQ(Dump(node), "=");
        EXPECT_FALSE(node.IsList());
    }
    EXPECT_EQ(cPool_Debug::UsedCount, used);
}

// Short and long texts go different ways.
TEST(Xml, BracketsAndDifferencesEverywhere) {
    for (int length = 1; length < 70; length++) {
        const std::string name(size_t(length), 'n');
        for (int at = 0; at < length; at++) {
            std::string body(size_t(length), 'b');
            body[size_t(at)] = '<';
            cXml node(name.c_str());
            node.Assign_string(body.c_str());
            body.replace(size_t(at), 1, "&lt");
            EXPECT_EQ(Write(node, at), std::string(size_t(at), ' ') + "<" + name + ">" + body + "</" + name + ">\n");
            ExpectRoundTrip(node);

            std::string end = name;
            end[size_t(at)] = 'm';
            EXPECT_EQ(LoadExact(&node, "<" + name + ">b</" + end + ">"), -1);
        }
    }
}

TEST(Xml, PlainLeavesOfEveryLength) {
    const struct {
        int Depth, Name, Body; // factors of the length
    } forms[] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    for (int length = 1; length < 9000; length += length < 70 || (length > 500 && length < 520) ? 1 : 29) {
        for (const auto& form : forms) {
            const std::string name(size_t(form.Name * length), 'n');
            const std::string body(size_t(form.Body * length), 'b');
            cXml node(name.c_str());
            node.Assign_string(body.c_str());
            EXPECT_TRUE(Write(node, form.Depth * length) ==
                        std::string(size_t(form.Depth * length), ' ') + "<" + name + ">" + body + "</" + name + ">\n")
                << length;
        }
    }
}

void Grow(cXml* node, int depth, std::mt19937* random) {
    const auto below = [random](unsigned int n) { return int((*random)() % n); };
    const auto text = [&](std::string_view letters, int length) {
        std::string s;
        while (int(s.size()) < length) {
            s += letters[size_t(below(unsigned(letters.size())))];
        }
        return s;
    };
    node->SetQuoteName(text("abc/< =&\n", below(30)).insert(0, below(2) ? "x" : "").c_str());
    if (node->GetQuoteName()[0] == '/') {
        node->SetQuoteName("");
    }
    // No blank at either end, and no "&lt": those do not survive.
    node->Assign_string(below(3) ? ("x" + text("ab <>;&\n", below(20) ? below(40) : below(9000)) + ">").c_str() : "");
    for (int count = depth > 0 ? below(6) : 0; count > 0; count--) {
        Grow(node->GetSubQuote(node->AddSubQuote("", 0) - 1), depth - 1, random);
    }
}

TEST(Xml, VectorSearchesFindWhatPlainOnesFind) {
    namespace search = text_search;
    for (int length = 0; length < 40; length++) {
        for (int at = 0; at <= length; at++) {                              // the needle, or nowhere
            const auto text = std::make_unique<char[]>(size_t(length) + 1); // no slack for reads past the end
            std::fill_n(text.get(), length, 'x');
            text[size_t(at)] = at < length ? '<' : 0;
            text[size_t(length)] = 0;
            const char* end = text.get() + length;
            ASSERT_EQ(search::Find(text.get(), end, '<'), search::plain::Find(text.get(), end, '<')) << length;
            const cStr body(text.get());
            for (int from = 0; from <= length; from++) {
                ASSERT_EQ(search::FindEither(body, from, '>', '<'), search::plain::FindEither(body, from, '>', '<'));
            }
            const std::string twice = std::string(size_t(length), 'x') + text.get();
            const auto pair = std::make_unique<char[]>(twice.size());
            std::copy(twice.begin(), twice.end(), pair.get());
            for (int count = 0; count <= length + 1; count++) {
                const char *a = pair.get(), *b = a + length, *pairEnd = a + twice.size();
                ASSERT_EQ(search::SameBytes(a, b, count, pairEnd), search::plain::SameBytes(a, b, count, pairEnd))
                    << length << " " << at << " " << count;
            }
        }
    }
}

TEST(Xml, RandomTreesRoundTrip) {
    std::mt19937 random(1);
    for (int i = 0; i < 300; i++) {
        cXml node;
        Grow(&node, i % 5, &random);
        ExpectRoundTrip(node);
        const std::string whole = Write(node);
        const std::string part = Write(node, 0, int(whole.size() / 2));
        EXPECT_TRUE(part.size() >= whole.size() / 2 && part.size() <= whole.size() / 2 + 4096);
        EXPECT_TRUE(whole.starts_with(part));
    }
}

TEST(Xml, PrefixesAndFlippedBytes) {
    const std::string text =
        "<Lamp>\n hall &lt2nd&gt\n <Transform>\n  <Scale>1.0 2.0</Scale>\n </Transform>\n <A></A>\n</Lamp>";
    for (size_t length = 1; length < text.size(); length++) {
        cXml node;
        EXPECT_EQ(LoadExact(&node, text.substr(0, length)), -1) << length;
    }
    for (size_t i = 0; i < text.size(); i++) {
        for (int byte = 0; byte < 256; byte++) {
            std::string flipped = text;
            flipped[i] = char(byte);
            cXml node;
            if (LoadExact(&node, flipped) > 0) {
                ExpectRoundTrip(node);
            }
        }
    }
}

TEST(Xml, AMillionLevels) {
    constexpr int count = 1000000;
    std::string text;
    for (int i = 0; i < 2 * count; i++) {
        text += i < count ? "<a>" : "</a>";
    }
    const int used = cPool_Debug::UsedCount;
    {
        cXml node;
        EXPECT_EQ(node.Load(text.c_str(), count), int(text.size()));
        EXPECT_EQ(Write(node, 0, 50).substr(0, 15), "<a>\n <a>\n  <a>\n");
        EXPECT_EQ(cXml().Load(text.c_str(), count - 1), -1);
        EXPECT_EQ(cXml().Load("<a></a>", 0), -1);
    }
    EXPECT_EQ(cPool_Debug::UsedCount, used);
}

class XmlFiles : public Folders {};

TEST_F(XmlFiles, ThereAndBack) {
    cXml node("a");
    node.AddSubQuote("big", std::string(3 << 20, 'x').c_str()); // more than what is reserved
    cLog::GetLogMutable().Clear();
    EXPECT_TRUE(node.WriteToFile("a.xml"));
    cXml again;
    EXPECT_TRUE(again.ReadFromFile("a.xml"));
    EXPECT_STREQ(cLog::GetLog(), " # Saving xml file \"a.xml\"...\r\n # Loading xml file \"a.xml\"...\r\n");
    EXPECT_TRUE(again.WriteToFile("b.xml")); // where the text that was read stood
    EXPECT_TRUE(Get(Folders::Write("b.xml")) == trellis::Write(node));
    EXPECT_FALSE(again.ReadFromFile("none.xml"));

    cFile file;
    EXPECT_FALSE(again.ReadFromFile(file));
    file.WriteString("old");
    again.ClearAll();
    again.SetQuoteName("b");
    again.WriteToFile(&file);
    EXPECT_EQ(file.GetSize(), 8);           // replaced
    EXPECT_FALSE(again.ReadFromFile(file)); // the cursor is at the end
    file.SetPos(0);
    file.WriteString("</a>");
    EXPECT_TRUE(again.ReadFromFile(file)); // from the cursor on
    EXPECT_STREQ(again.GetQuoteName(), "b");
}

} // namespace
} // namespace trellis
