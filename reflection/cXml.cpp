#include "reflection/cXml.h"

#include <string.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <memory>

#include "files/cFile.h"
#include "files/cIO.h"
#include "foundation/cLog.h"
#include "reflection/TextSearch.h"

namespace trellis {

namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}

} // namespace

// Nodes

void* cXml::operator new(size_t size) {
    return cPool::Alloc(int(size));
}

void cXml::operator delete(void* p, size_t size) {
    cPool::Free(static_cast<unsigned char*>(p), int(size));
}

cXml::~cXml() {
    DeleteChildren();
}

/// Last child first, so that the pool hands the blocks out in their old order again. The way up needs no memory: while
/// the walk is below a node, the place of the child that it went into holds the node's own parent.
void cXml::DeleteChildren() {
    cXml* node = this;
    cXml* parent = nullptr;
    bool backFromChild = false;
    for (;;) {
        const int last = node->m_SubQuotes.Count() - 1;
        if (last < 0) {
            if (!parent) {
                return;
            }
            delete std::exchange(node, parent);
            backFromChild = true;
            continue;
        }
        cXml*& place = node->m_SubQuotes[last];
        if (std::exchange(backFromChild, false)) {
            parent = std::exchange(place, nullptr);
        }
        if (place && !place->m_SubQuotes.IsEmpty()) {
            cXml* child = std::exchange(place, parent);
            parent = std::exchange(node, child);
            continue;
        }
        // A tree that was read in one go lies in the pool like this, one node behind the other.
        __builtin_prefetch(reinterpret_cast<const void*>(uintptr_t(place) + 24 * sizeof(cXml)));
        delete place;
        node->m_SubQuotes.SetCount(last);
    }
}

void cXml::ClearAll() {
    m_Source.Clear();
    m_Name.Clear();
    m_Body.Clear();
    DeleteChildren();
    m_List = false;
}

void cXml::Assign_int(int value) {
    char digits[16];
    const auto end = std::to_chars(digits, std::end(digits), value);
    m_Body.Copy(digits, 0, int(end.ptr - digits));
}

cXml* cXml::GetSubQuote(int index) const {
    return index >= 0 && index < GetNSubQuotes() ? m_SubQuotes[index] : nullptr;
}

cXml* cXml::GetSubQuote(const char* name) const {
    if (!name) {
        name = "";
    }
    const size_t length = strlen(name);
    for (cXml* node : m_SubQuotes) {
        if (node && size_t(node->m_Name.Length()) == length && memcmp(node->m_Name.Text(), name, length) == 0) {
            return node;
        }
    }
    return nullptr;
}

int cXml::AddSubQuote(cXml* node) {
    std::unique_ptr<cXml> owned(node);
    m_SubQuotes.Add(node);
    owned.release();
    return GetNSubQuotes();
}

int cXml::AddSubQuote(const char* name, int value) {
    auto node = std::make_unique<cXml>(name);
    node->Assign_int(value);
    return AddSubQuote(node.release());
}

int cXml::AddSubQuote(const char* name, const char* value) {
    auto node = std::make_unique<cXml>(name);
    node->Assign_string(value);
    return AddSubQuote(node.release());
}

void cXml::DelSubQuote(int index) {
    delete GetSubQuote(index);
    RemoveSubQuote(index);
}

void cXml::RemoveSubQuote(int index) {
    if (index >= 0 && index < GetNSubQuotes()) {
        m_SubQuotes.RemoveAt(index);
    }
}

// Parsing

/// One pass "&lt" to "<" and "&gt" to ">" gives what two would: the first never makes a "&gt".
void cXml::Unescape() {
    const int length = m_Body.Length();
    const int first = text_search::FindEither(m_Body, 0, '&', '&');
    if (first == length) {
        return;
    }
    char* const body = m_Body.Data();
    int out = first;
    for (int i = first; i < length; i++) {
        const bool escape =
            body[i] == '&' && length - i >= 3 && (body[i + 1] == 'l' || body[i + 1] == 'g') && body[i + 2] == 't';
        body[out++] = !escape ? body[i] : body[i + 1] == 'l' ? '<' : '>';
        i += escape ? 2 : 0;
    }
    m_Body.Remove(out, length - out);
}

/// A node that is being read.
struct cXml::Level {
    void TakeBody(int gap);

    cXml* Node;
    const char* Content; // behind its tag
    int Lead;            // blanks at the start of the content, -1 before the first gap
};

/// The text in front of a "<" becomes the body, trimmed. It is taken from the *start of the content*, whichever gap
/// between tags was measured, and files rely on it: the writer puts a body first and makes no later gap longer than the
/// blanks in front of it, so a body survives the indentation of the children behind it. In text from elsewhere, what
/// follows a child is lost, and its length cuts the body anew: "<a>xy<b></b>z</a>" has the body "x".
inline void cXml::Level::TakeBody(int gap) {
    if (Lead < 0) {
        for (Lead = 0; Lead < gap && IsBlank(Content[Lead]);) {
            Lead++;
        }
    }
    if (gap > Lead) {
        while (IsBlank(Content[gap - 1])) {
            gap--;
        }
        Node->m_Body.Copy(Content + Lead, 0, gap - Lead);
    }
}

int cXml::Load(const char* text, int maxDepth) {
    if (!text || !*text) {
        Unescape();
        return 0;
    }
    const char* const end = text + strnlen(text, INT_MAX); // the result is an int
    m_Name.Clear();
    const char* open = text_search::Find(text, end, '<');
    if (!open || open[1] == '/' || maxDepth < 1) {
        return -1;
    }
    cList<Level> above;
    for (Level level = {this, nullptr, -1};;) {
        const char* close = text_search::Find(open + 1, end, '>');
        if (!close) {
            return -1;
        }
        level.Node->m_Name.Copy(open + 1, 0, int(close - open - 1));
        level.Content = close + 1;
        for (const char* p = level.Content;;) {
            open = text_search::Find(p, end, '<');
            if (!open) {
                return -1;
            }
            level.TakeBody(int(open - p));
            if (open[1] != '/') {
                break;
            }
            // An end tag need only begin with the name: it was always compared so, and what could be read must be.
            const int length = level.Node->m_Name.Length();
            if (!text_search::SameBytes(level.Content - 1 - length, open + 2, length, end)) {
                return -1;
            }
            close = open + 2 + length;
            if (close == end || *close != '>') {
                close = text_search::Find(close, end, '>');
                if (!close) {
                    return -1;
                }
            }
            level.Node->Unescape();
            p = close + 1;
            if (above.IsEmpty()) {
                return int(p - text);
            }
            level = above[above.Count() - 1];
            above.SetCount(above.Count() - 1);
        }
        if (above.Count() + 2 > maxDepth) {
            return -1;
        }
        above.Add(level);
        cXml* parent = level.Node;
        parent->m_SubQuotes.Add(nullptr);
        level = {new cXml, nullptr, -1};
        parent->m_SubQuotes[parent->m_SubQuotes.Count() - 1] = level.Node;
    }
}

// Writing

/// Collects small pieces in a buffer of its own: a string has no cheap way to grow by some bytes.
class cXml::Writer {
public:
    Writer(cStr* out, int limit) : m_Out(out), m_Limit(std::max(limit, 0)) {}

    void Run(const cXml& root, int depth);

private:
    static constexpr int Size = 4096;

    bool IsFull() const { return m_Out->Length() >= m_Limit - m_Used; }
    void Flush() {
        Append(m_Buffer, m_Used);
        m_Used = 0;
    }
    void Append(const char* s, int count);
    void Put(const char* s, int count);
    void PutIndentation(int depth);
    void PutEscaped(const cStr& body);
    void PutTag(const char* begin, const cStr& name, const char* end);
    void PutNode(const cXml& node, int depth);
    bool PutShortLeaf(const cXml& node, int depth);

    cStr* m_Out;
    int m_Limit;
    int m_Used = 0;
    char m_Buffer[Size];
};

void cXml::Writer::Append(const char* s, int count) {
    m_Out->ReserveMore(count); // doubling; a large document would otherwise be copied at every flush
    m_Out->Append(s, 0, count);
}

void cXml::Writer::Put(const char* s, int count) {
    if (IsFull()) {
        return;
    }
    count = std::min(count, m_Limit - m_Used - m_Out->Length());
    if (count > Size - m_Used) {
        Flush();
        if (count > Size) {
            Append(s, count);
            return;
        }
    }
    memcpy(m_Buffer + m_Used, s, size_t(count));
    m_Used += count;
}

void cXml::Writer::PutIndentation(int depth) {
    while (depth > 0 && !IsFull()) {
        if (m_Used == Size) {
            Flush();
        }
        const int count = std::min(depth, Size - m_Used);
        memset(m_Buffer + m_Used, ' ', size_t(count));
        m_Used += count;
        depth -= count;
    }
}

void cXml::Writer::PutEscaped(const cStr& body) {
    for (int i = 0; i < body.Length() && !IsFull(); i++) {
        const int bracket = text_search::FindEither(body, i, '<', '>');
        Put(body.Text() + i, bracket - i);
        if (bracket < body.Length()) {
            Put(body[bracket] == '<' ? "&lt" : "&gt", 3);
        }
        i = bracket;
    }
}

void cXml::Writer::PutTag(const char* begin, const cStr& name, const char* end) {
    Put(begin, int(strlen(begin)));
    Put(name.Text(), name.Length());
    Put(end, int(strlen(end)));
}

/// A leaf, or all of another node that stands in front of its children.
void cXml::Writer::PutNode(const cXml& node, int depth) {
    const bool leaf = node.m_SubQuotes.IsEmpty();
    PutIndentation(depth);
    PutTag("<", node.m_Name, leaf ? ">" : ">\n");
    if (leaf) {
        PutEscaped(node.m_Body);
        PutTag("</", node.m_Name, ">\n");
    } else if (!node.m_Body.IsEmpty()) {
        PutIndentation(depth + 1);
        PutEscaped(node.m_Body);
        Put("\n", 1);
    }
}

/// Most of a document is leaves with short texts: those need one look at the room, and copies of a constant size.
///
/// @return false for another node; nothing is written then
bool cXml::Writer::PutShortLeaf(const cXml& node, int depth) {
    constexpr int most = 512; // of each part
    const cStr& name = node.m_Name;
    const cStr& body = node.m_Body;
    if (!node.m_SubQuotes.IsEmpty() || unsigned(depth) > most || name.Length() > most || body.Length() > most ||
        text_search::FindEither(body, 0, '<', '>') < body.Length()) {
        return false;
    }
    if (Size - m_Used < 4 * most + 2 * text_search::Block) {
        Flush();
    }
    char* p = m_Buffer + m_Used;
    const auto put = [&p](const cStr& s) {
        if (s.Capacity() == cStr::SlotSize) {
            memcpy(p, s.Text(), cStr::SlotSize);
        } else {
            memcpy(p, s.Text(), size_t(s.Length()));
        }
        p += s.Length();
    };
    if (depth <= text_search::Block) {
        memset(p, ' ', text_search::Block);
    } else {
        memset(p, ' ', size_t(depth));
    }
    p += depth;
    *p++ = '<';
    put(name);
    *p++ = '>';
    put(body);
    *p++ = '<';
    *p++ = '/';
    put(name);
    *p++ = '>';
    *p++ = '\n';
    m_Used = int(p - m_Buffer);
    return true;
}

void cXml::Writer::Run(const cXml& root, int depth) {
    struct Parent {
        const cXml* Node;
        int Next; // child to come
    };
    cList<Parent> open;
    const cXml* node = &root;
    for (;;) {
        if (node && !PutShortLeaf(*node, depth)) {
            PutNode(*node, depth);
            if (!node->m_SubQuotes.IsEmpty()) {
                open.Add({node, 0});
                depth++;
            }
        }
        if (open.IsEmpty() || IsFull()) {
            break;
        }
        Parent& parent = open[open.Count() - 1];
        if (parent.Next < parent.Node->m_SubQuotes.Count()) {
            node = parent.Node->m_SubQuotes[parent.Next++];
        } else {
            node = nullptr;
            depth--;
            PutIndentation(depth);
            PutTag("</", parent.Node->m_Name, ">\n");
            open.SetCount(open.Count() - 1);
        }
    }
    Flush();
}

void cXml::GetXMLSource(cStr* out, int depth, int limit) const {
    Writer(out, limit).Run(*this, depth);
}

// Files

bool cXml::ReadFromFile(const cFile& file, int maxDepth) {
    // The whole length, also when the cursor is not at the start: the tail is then blanks.
    m_Source.SetLength(file.GetSize());
    file.ReadBytes(m_Source.Data(), file.GetSize());
    return !m_Source.IsEmpty() && Load(m_Source, maxDepth) != -1;
}

bool cXml::ReadFromFile(const char* path, int maxDepth) {
    cLog::Message(" # Loading xml file \"%s\"...", path ? path : "");
    cFile file;
    return cIO::LoadFile(path, &file) && ReadFromFile(file, maxDepth);
}

void cXml::WriteToFile(cFile* file) {
    constexpr int reserve = 0x100000; // a large document in one piece
    file->Clear();
    m_Source.Clear();
    if (m_Source.Capacity() <= reserve) {
        m_Source.Resize(reserve + 1, false);
    }
    GetXMLSource(&m_Source, 0);
    file->WriteBytes(m_Source.Text(), m_Source.Length());
    m_Source.Clear();
}

bool cXml::WriteToFile(const char* path) {
    cLog::Message(" # Saving xml file \"%s\"...", path ? path : "");
    cFile file;
    WriteToFile(&file);
    return cIO::SaveFile(path, file);
}

} // namespace trellis
