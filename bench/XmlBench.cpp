// Documents beside pugixml and tinyxml2, on a text like a settings file: nested objects with short values, in a few KB
// and in 10 MB.
#include "Bench.h"

#include "reflection/cXml.h"

#include <pugixml.hpp>
#include <tinyxml2.h>

#include <random>
#include <string>

using trellis::cStr;
using trellis::cXml;

namespace {

/// One blank a level, as all three sides can write it. About one value in sixteen holds brackets.
class Generator {
public:
    std::string Text(int bytes) {
        m_Text = "<cSettings>\n";
        while (int(m_Text.size()) < bytes) {
            Object(1);
        }
        return m_Text + "</cSettings>\n";
    }

private:
    void Object(int depth) {
        static constexpr const char* s_Names[] = {"Transform", "ClearColor", "FullScreen",          "FieldOfView",
                                                  "X",         "Brightness", "TextureFilePathName", "MipMaps",
                                                  "Speed",     "On"};
        const std::string name = s_Names[Random(10)];
        m_Text += std::string(size_t(depth), ' ') + "<" + name + ">";
        if (depth < 5 && Random(4) == 0) {
            m_Text += "\n";
            for (int count = 1 + Random(8); count > 0; count--) {
                Object(depth + 1);
            }
            m_Text += std::string(size_t(depth), ' ');
        } else {
            Value();
        }
        m_Text += "</" + name + ">\n";
    }

    void Value() {
        switch (Random(16)) {
        case 0:
            m_Text += "hall &lt2nd floor&gt";
            break;
        case 1:
            m_Text += "Data/Textures/Stone Wall " + std::to_string(Random(1000)) + ".dds";
            break;
        case 2:
        case 3:
        case 4:
            m_Text += "0.250 1.000 " + std::to_string(Random(10)) + ".125";
            break;
        case 5:
        case 6:
        case 7:
        case 8:
            m_Text += Random(2) ? "true" : "false";
            break;
        default:
            m_Text += std::to_string(Random(100000));
        }
    }

    int Random(int n) { return int(m_Random() % unsigned(n)); }

    std::mt19937 m_Random{4711};
    std::string m_Text;
};

/// The peers want the entities' semicolons.
std::string WithSemicolons(std::string text) {
    for (size_t i = 0; (i = text.find('&', i)) != std::string::npos; i += 4) {
        text.insert(i + 3, ";");
    }
    return text;
}

// Each side: a document with Parse and Write, and a walk over names and bodies for the check.

struct Ours {
    static std::string Adapt(std::string text) { return text; }
    bool Parse(const std::string& text) { return Root.Load(text.c_str()) == int(text.size()) - 1; }
    size_t Write() {
        cStr out;
        Root.GetXMLSource(&out, 0);
        benchmark::DoNotOptimize(out.Data());
        return size_t(out.Length());
    }
    static void Walk(const cXml& node, std::string* out) {
        *out += std::string(node.GetQuoteName()) + "{" + node.Get_string();
        for (int i = 0; i < node.GetNSubQuotes(); i++) {
            Walk(*node.GetSubQuote(i), out);
        }
        *out += "}";
    }
    std::string Walk() const {
        std::string out;
        Walk(Root, &out);
        return out;
    }

    cXml Root;
};

struct Pugi {
    struct Memory : pugi::xml_writer {
        void write(const void* data, size_t size) override { Text.append(static_cast<const char*>(data), size); }
        std::string Text;
    };

    static std::string Adapt(std::string text) { return WithSemicolons(std::move(text)); }
    bool Parse(const std::string& text) { return Document.load_buffer(text.data(), text.size()); }
    size_t Write() {
        Memory memory;
        Document.save(memory, " ", pugi::format_indent | pugi::format_no_declaration, pugi::encoding_utf8);
        benchmark::DoNotOptimize(memory.Text.data());
        return memory.Text.size();
    }
    static void Walk(const pugi::xml_node& node, std::string* out) {
        *out += std::string(node.name()) + "{" + node.child_value();
        for (const auto& child : node.children()) {
            if (child.type() == pugi::node_element) {
                Walk(child, out);
            }
        }
        *out += "}";
    }
    std::string Walk() const {
        std::string out;
        Walk(Document.first_child(), &out);
        return out;
    }

    pugi::xml_document Document;
};

struct Tiny {
    static std::string Adapt(std::string text) { return WithSemicolons(std::move(text)); }
    bool Parse(const std::string& text) { return Document.Parse(text.data(), text.size()) == tinyxml2::XML_SUCCESS; }
    size_t Write() { // indents by four blanks, and has no choice of it
        tinyxml2::XMLPrinter printer(nullptr, true);
        Document.Print(&printer);
        benchmark::DoNotOptimize(printer.CStr());
        return size_t(printer.CStrSize()) - 1;
    }
    static void Walk(const tinyxml2::XMLElement& node, std::string* out) {
        *out += std::string(node.Name()) + "{" + (node.GetText() ? node.GetText() : "");
        for (const auto* child = node.FirstChildElement(); child; child = child->NextSiblingElement()) {
            Walk(*child, out);
        }
        *out += "}";
    }
    std::string Walk() const {
        std::string out;
        Walk(*Document.RootElement(), &out);
        return out;
    }

    tinyxml2::XMLDocument Document;
};

template <class Side> void BM_XmlParse(benchmark::State& state) { // a fresh tree each time, and its end
    const std::string text = Side::Adapt(Generator().Text(int(state.range(0))));
    for (auto _ : state) {
        Side side;
        benchmark::DoNotOptimize(side.Parse(text));
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * int64_t(text.size()));
}

template <class Side> void BM_XmlWrite(benchmark::State& state) {
    Side side;
    side.Parse(Side::Adapt(Generator().Text(int(state.range(0)))));
    size_t size = 0;
    for (auto _ : state) {
        size = side.Write();
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * int64_t(size));
}

void Sizes(benchmark::internal::Benchmark* b) {
    b->Arg(4 << 10)->Arg(10 << 20);
}

BENCHMARK_TEMPLATE(BM_XmlParse, Ours)->Apply(Sizes);
BENCHMARK_TEMPLATE(BM_XmlParse, Pugi)->Apply(Sizes);
BENCHMARK_TEMPLATE(BM_XmlParse, Tiny)->Apply(Sizes);
BENCHMARK_TEMPLATE(BM_XmlWrite, Ours)->Apply(Sizes);
BENCHMARK_TEMPLATE(BM_XmlWrite, Pugi)->Apply(Sizes);
BENCHMARK_TEMPLATE(BM_XmlWrite, Tiny)->Apply(Sizes);

const cBenchCheck s_Check("documents", [] {
    const std::string text = Generator().Text(100 << 10);
    Ours ours;
    Pugi pugi;
    Tiny tiny;
    if (!ours.Parse(text) || !pugi.Parse(WithSemicolons(text)) || !tiny.Parse(WithSemicolons(text))) {
        return false;
    }
    cStr written;
    ours.Root.GetXMLSource(&written, 0);
    Pugi::Memory memory;
    pugi.Document.save(memory, " ", pugi::format_indent | pugi::format_no_declaration, pugi::encoding_utf8);
    const std::string walk = ours.Walk();
    return walk == pugi.Walk() && walk == tiny.Walk() && written == text.c_str() && memory.Text == WithSemicolons(text);
});

} // namespace
