// Document tree of the class engine: a small tag language with the look of XML.
//
// A node is a tag name, a text body and child nodes ("sub-quotes"). There are no attributes, declarations, comments,
// entities or empty-element tags; this class writes the format and reads it back:
//
//     <cLamp>                          one blank of indentation a level, LF at each line's end
//      <Name>hall &lt2nd floor&gt</Name>
//      <Transform>
//       <Scale>1.000 1.000 2.000</Scale>
//      </Transform>
//     </cLamp>
#pragma once

#include "foundation/cStr.h"

#include <climits>
#include <cstddef>

namespace trellis {

class cFile;

/// A node and everything below it. A node on the heap lives in `cPool` and belongs to its parent; a root is usually a
/// local value. Trees of any depth are parsed, written and destroyed without recursion. A tree belongs to one thread.
class cXml {
public:
    cXml() = default;
    explicit cXml(const char* name) : m_Name(name) {}
    explicit cXml(const cStr& name) : m_Name(name) {}
    ~cXml();
    cXml(const cXml&) = delete;
    cXml& operator=(const cXml&) = delete;

    static void* operator new(size_t size);
    static void operator delete(void* p, size_t size);

    static constexpr int AnyDepth = INT_MAX;

    /// Parses the first element of `text` into this node; whatever stands before it and behind it is ignored.
    ///
    /// - The tag name is all between "<" and ">": "<a b=1>" has the name "a b=1". An end tag need only begin with the
    ///   name: "</nameABC>" closes "<name>".
    /// - The body is trimmed; a body of blanks is none. Text behind a child is not kept, see the .cpp for what it does.
    /// - Children are appended to those that are there.
    ///
    /// @param text      null or empty: "&lt" and "&gt" in this node's body are replaced, and the result is 0
    /// @param maxDepth  elements nested deeper are refused; the root alone is depth 1
    /// @return bytes consumed, or -1; the tree then holds what was read, and is of no use
    int Load(const char* text, int maxDepth = AnyDepth);

    /// Reads from the file's cursor on. The text stays in the node. @return false for an empty file and where `Load`
    /// fails
    bool ReadFromFile(const cFile& file, int maxDepth = AnyDepth);
    bool ReadFromFile(const char* path,
                      int maxDepth = AnyDepth); ///< The same through `cIO::LoadFile`, with a log entry.

    void WriteToFile(cFile* file);      ///< Replaces the file's content.
    bool WriteToFile(const char* path); ///< The same through `cIO::SaveFile`, with a log entry.

    /// Appends the text form. In bodies "<" becomes "&lt" and ">" becomes "&gt", without semicolons, as in all files
    /// there are; "&" stays, so that a body "&lt" comes back as "<". Names are written as they are.
    ///
    /// @param depth  indentation of this node, in blanks
    /// @param limit  stop after that many bytes or a little later; what stands in `out` before counts
    void GetXMLSource(cStr* out, int depth, int limit = INT_MAX) const;

    const char* GetQuoteName() const { return m_Name.Text(); }
    const cStr& GetName() const { return m_Name; }
    void SetQuoteName(const char* name) { m_Name = name; }

    const char* Get_string() const {
        return m_Body.IsEmpty() ? &cStr::def_str : m_Body.Text();
    } ///< The body, unescaped.
    const cStr& GetBody() const { return m_Body; }
    void Assign_string(const char* body) { m_Body = body; }
    void Assign_string(const cStr& body) { m_Body = body; }
    void Assign_string(cStr&& body) { m_Body = std::move(body); }
    void Assign_int(int value);

    int GetNSubQuotes() const { return m_SubQuotes.Count(); }
    cXml* GetSubQuote(int index) const;        ///< Null outside [0, GetNSubQuotes()).
    cXml* GetSubQuote(const char* name) const; ///< The first of that name, or null.

    // These return the new count.
    int AddSubQuote(cXml* node); ///< Takes ownership. A null is kept as a place and skipped by the writer.
    int AddSubQuote(const char* name, int value);
    int AddSubQuote(const char* name, const char* value);

    void ReserveSubQuotes(int count) { m_SubQuotes.EnsureCapacity(count, false); } ///< Room for that many in all.

    void DelSubQuote(int index);    ///< Destroys the child too.
    void RemoveSubQuote(int index); ///< Hands the child over to the caller, who holds it already.

    void ClearAll(); ///< Empty; keeps the storage of its strings and list.

    bool IsList() const { return m_List; } ///< Set by `cClass::Save` on the node of a list member; never written.
    void SetList(bool list) { m_List = list; }

private:
    struct Level;
    class Writer;

    void DeleteChildren();
    void Unescape();

    cStr m_Name;
    cList<cXml*> m_SubQuotes; // owned
    cStr m_Body;
    cStr m_Source; // the document being read, or the text being written
    bool m_List = false;
};

} // namespace trellis
