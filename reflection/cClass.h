// Root of everything that can be saved, loaded, copied, reset and edited without its type being known.
//
// An instance plays two roles. As a *descriptor* it is the thing whose virtual operations are called; as *data* it is
// what they act on, handed over as `void*`. For a value kind (`_cInt`, ...) the data is a plain value inside some
// object. For an object class the data is a `cClass` itself, and the operations go on to it, so that its real class
// decides. Reflective work belongs to one thread: registration, walks and files share plain globals.
#pragma once

#include "foundation/cStr.h"
#include "reflection/cClassExpParams.h"
#include "reflection/cClassGarbage.h"
#include "reflection/cOneClassMemberInfo.h"

namespace trellis {

class cClassCopyContext; // opaque; `FullCopy` passes it down
class cErrorPager;
class cFile;
class cXml;

/// To make a class reflected, derive it from `cClass`, declare it with `TRELLIS_CLASS`, and list its members once:
///
///     // cLamp.h
///     #include "reflection/cClassMembers.h"
///
///     class cLamp : public cClass {
///         TRELLIS_CLASS(cLamp)
///
///     public:
///         void CustomCtor() override { Power = 40; }   // defaults; what is not set here is zero
///         void Switch() { On = !On; }
///
///         bool On;
///         int Power;                                   // watts
///         cColorEdit Shade;                            // a reflected class as well
///     };
///
///     // cLamp.cpp
///     void cLamp::RegisterMembers() {
///         cClassMembers members(this);
///         if (!members.Begin()) {
///             return;                                  // the table stands already
///         }
///         members.Add<_cBool>(On, "On");
///         members.AddRanged<_cSliderI>(Power, "Power", 0, 100);
///         members.AddObject(Shade, "Shade");
///         members.AddButton(&cLamp::Switch, "&cLamp::Switch");
///     }
///
/// That is all. The object now resets itself at construction, saves itself with `WriteToFile` (only what differs from
/// a fresh object), reads itself with `ReadFromFile`, copies itself with `Clone`, and shows itself in the class
/// explorer. A few rules follow from the one table:
///
/// - Members are addressed relative to the object that `RegisterMembers` runs on. Do not copy a reflected object by
///   assignment; use `FullCopy` or `Clone`.
/// - A derived class lists its base first, by `members.AddParent<cBase>()`. Its construction resets the base's
///   members a second time, so its `CustomCtor` calls the base's.
/// - `CustomDtor` may run more than once for an object that is a member of another. It must leave the object such that
///   a second run does nothing.
/// - What stands behind a property that is read by value is not reset through it; `CustomCtor` does that, or saves take
///   its value for the default. What a pointer property or a static member leads to is reset with each new object, the
///   one that a save makes among them.
/// - A fresh instance comes and goes at each save; `CustomCtor` must not leave anything behind that outlives it.
/// - A class is known to files once an object of it has been made. One that a list may meet in a file before that is
///   registered at start-up: `cLamp lamp; cClass_RegClass(&lamp, "Lights");` also puts it in a folder of the add menu.
/// - Of two members with one name, the first is found and the second is out of reach for files.
///
/// The virtual functions stand in a fixed order, documented where a class is expected to replace them.
class cClass {
public:
    // Indexes from this value on are positions in the member table; lower ones count what the class mask shows.
    static constexpr int RawIndex = 0x1000000;

    // Flags of the `GetEditableElement*` family, and of expansion rules.
    static constexpr unsigned ShowProperties = 1; ///< Elements without elements of their own.
    static constexpr unsigned ShowNodes = 2;      ///< Elements with elements of their own.
    static constexpr unsigned ShowAdd = 4;        ///< The pseudo-element that stands for adding.
    static constexpr unsigned ShowAll = 7;
    static constexpr int ExpandWithBase = 1;     ///< The base class itself can be added.
    static constexpr int ExpandWithDerived = 2;  ///< Classes derived from it can be added.
    static constexpr int ExpandAnywhere = 0x100; ///< At every element, not at the pseudo-element only.

    /// Files whose elements are nested deeper are refused, and not written either: loading recurses with the file.
    static constexpr int MaxFileDepth = 1000;

    cClass() = default;
    cClass(const cClass&) = delete;
    cClass& operator=(const cClass&) = delete;

    virtual ~cClass() = default;

    /// Resets `data`: every member to its kind's zero, then `CustomCtor`. Makes the palette complete first.
    virtual void CallCtor(void* data);
    virtual void CallDtor(void* data); ///< `CustomDtor`, then the tear-down of every member.
    virtual void CustomCtor() {}       ///< A class sets its defaults here.
    virtual void CustomDtor() {}

    /// Adds one child node per member, and names the node unless it has a name.
    ///
    /// @param extra  for value kinds that have none of their own
    virtual void Save(cXml& node, void* data, void* extra);

    /// Reads the members that the node has children for; the others keep what they hold.
    ///
    /// @param pager  where complaints go, or null
    /// @return true for an object, whatever went wrong; a value kind says whether it could read its value
    virtual bool Load(cXml& node, void* data, cErrorPager* pager, void* extra);

    virtual const char* GetClassName() { return nullptr; }
    virtual void RegisterMembers() {}

    // Elements. An index outside the table gives 0, null or ""; where a class mask hides members, the first member.
    virtual int GetAmountOfElements();
    virtual const char* GetElementID(int i);
    virtual const char* GetElementView(int i, const char* context);
    virtual const char* GetThisElementView(const char* context);
    virtual cClass* GetElementClass(int i);

    /// Address of an element. A property that is read by value answers with one static slot, good until the next.
    virtual void* GetElementPtr(int i, void* data);
    virtual void* GetElementExtraPtr(int i);

    // For classes whose elements come and go.
    virtual void RemoveAt(int first, int count);
    virtual bool CheckDirectCasting() { return false; }   ///< True for object classes: data can be cast to `cClass*`.
    virtual int Add(cClass* element);                     ///< @return the position, or -1
    virtual int ExpandWith(const char* name, void* data); ///< Makes an element for a name. @return its index, or -1
    virtual int GetExpansionRules() { return 0; }
    virtual int IndexOf(const void* element);
    virtual const char* GetExpansionBaseClass() { return nullptr; }

    virtual bool ForceProperty(); ///< The object shows as a property row even where it has elements.
    virtual bool ForceSimplification() const { return false; }
    virtual bool MoveElement(int i, char delta);
    virtual bool AskParentForUsingExpansionClass(const char* member, const char* className);

    /// Copies `src` into the elements of `dst` that have the same name and kind, and runs their setters.
    ///
    /// @param dstClass  the destination's descriptor; for an object the destination itself
    virtual bool FullCopy(void* src, void* srcExtra, cClass* dstClass, void* dst, void* dstExtra,
                          cClassCopyContext* context);

    // Whole objects as files and texts, for object classes only; a value kind answers false. What cannot be parsed
    // leaves the object unchanged. Members that a file does not mention stay: read into a fresh object, a file is
    // faithful. The tag of the root is not compared with anything.
    virtual bool ReadFromFile(const char* path);
    virtual bool SafeReadFromFile(const char* path); ///< Without complaints about unknown elements and bad values.
    virtual bool WriteToFile(const char* path);

    /// Replaces the file by the object. Unless `ShouldSaveInShortForm` is false, what equals a fresh object is left
    /// out; elements of lists stay as empty tags.
    virtual bool WriteToFile(cFile* file);
    virtual bool ReadFromFile(const cFile& file);
    virtual bool WriteToString(cStr* text);
    virtual bool ReadFromString(const cStr& text);

    virtual const char* GetSource() { return nullptr; }

    // The view of an editor. `flags` select what counts; -1 for an element means the pseudo-element or none.
    virtual int GetAmountOfEditableElements(void* data, unsigned flags);
    virtual int GetIndexOfEditableElement(int n, void* data, unsigned flags); ///< Editable index to element index.
    virtual cClass* GetEditableElementClass(int n, void* data, unsigned flags);
    virtual void* GetEditableElementData(int n, void* data, unsigned flags);
    virtual void* GetEditableElementExtra(int n, void* data, unsigned flags);

    /// Lists the classes that can be added at an element. @return whether there is any
    virtual bool GetEditableElementExpansionList(cClassExpParams& params, int n, void* data, unsigned flags,
                                                 cClass* parent, const char* parentMember);
    virtual bool CheckIfElementIsNode(int i, void* data);
    virtual bool CheckIfEditableElementIsNode(int n, void* data, unsigned flags);
    virtual const char* GetEditableElementName(int n, void* data, unsigned flags);
    virtual const char* GetEditableElementView(int n, void* data, const char* context, unsigned flags);

    virtual void EvaluateFunction() {}
    virtual bool CheckIfFunction() { return false; }
    virtual void call(void* object, void* argument);
    virtual int GetSectionStatus() { return 0; }
    virtual void SetSectionStatus(int status);
    virtual bool CheckIfElementReadOnly(int n, void* data, unsigned flags);
    virtual bool CheckIfElementSimple(int n, void* data, unsigned flags);
    virtual bool CheckIfElementInvisible(int n, void* data, unsigned flags);

    virtual unsigned GetClassMask() { return ~0u; } ///< Only members whose mask meets it are elements; ~0: all.
    virtual int GetRealMaskedPosition(int i);       ///< Element index to position in the member table.

    // Names and numbers by which objects refer to each other, see `cClassPointersGarbage`.
    virtual cStr* GetObjectNamePointer() { return nullptr; }
    virtual bool CheckIfObjectIsGlobal() { return false; }
    virtual unsigned GetObjectGlobalID() { return ~0u; }
    virtual void SetObjectGlobalID(unsigned id);

    virtual cClass* GetParent() { return m_Parent; }
    virtual void SetParent(cClass* parent); ///< Links the member objects to this object, too.

    /// @return whether the kind describes a value of that C type name and size in bytes
    virtual bool CompatibleWith(const char* typeName, int size);
    virtual bool ShouldSaveInShortForm() { return true; }

    /// For the view "value": the text form of the value. @return 0
    virtual int GetClassPresentationMask(cStr& out, void* data, void* extra, const char* view, unsigned flags);

    virtual cStr
    ToString(bool* full); ///< `*full`: the text replaces the element's name in a row instead of following it.
    virtual cStr ToString() { return {}; }
    virtual void OnProcess() {} ///< Each frame while the object is being edited.
    virtual bool IsEnabled(const char* member);
    virtual bool IsReadOnly(const char* member);
    virtual bool OnChangeMember(cClass* elementClass, void* data, void* extra, const char* member);
    virtual void SetEnumName(const char* name);
    virtual cClass* new_element() { return new cClass; } ///< A fresh object of the same class.
    virtual cOneClassStorage* GetClassStorage();

    /// Whether the elements are the lines of the member table, with no function in between replaced. The engine then
    /// reads the table itself; `TRELLIS_CLASS` answers it.
    virtual bool HasPlainElements() { return false; }

    // Lines of the member table. `RegisterMembers` calls these, as a rule through `cClassMembers`.

    /// @param elementClass  descriptor, made for this member; the record owns it
    /// @param data          the member in this very object; the object's own address for a button; null for a heading
    void RegisterOneMember(cClass* elementClass, void* data, const char* name, void* extra, const char* hostClass,
                           bool autoFlag, unsigned mask);
    void RegisterOneMemberIntProperty(cClass* elementClass, int (*get)(void*), void (*set)(void*, int),
                                      const char* name, void* extra, const char* hostClass, unsigned mask);
    void RegisterOneMemberProperty(cClass* elementClass, void* (*get)(void*), void (*set)(void*, void*),
                                   const char* name, void* extra, const char* hostClass, unsigned mask);

    /// Finds an element, or lets the class make one (`ExpandWith`); `*extra` is then left alone. Exact names; the first
    /// of several wins. @return false for null and for an unknown name
    bool GetElementByName(const char* name, cClass** elementClass, void** data, void** extra, void* object);
    bool FindElementByName(const char* name, cClass** elementClass, void** data, void** extra, void* object);

    cOneClassMemberStorage* GetElementStorage(const char* name);
    cOneClassMemberStorage* GetElementCMS(int i);
    const char* GetElementHostClass(const char* name);
    const char* GetElementHostClass(int i);
    bool HasParentClass(const char* name); ///< Whether a member was declared by that class.

    cOneClassMemberInfo GetElementInfo(int i, void* data);
    cOneClassMemberInfo GetElementInfo(const char* name, void* data);

    // One element of this object as text; empty, or the fallback, where there is none or it does not parse.
    cStr GetStringField(const char* name);
    int GetIntField(const char* name, int fallback);
    float GetFloatField(const char* name, float fallback);

    cClass* GetRoot();        ///< The last ancestor; null without a parent, or where parents go in a ring.
    cClass* GetParent(int n); ///< The n-th ancestor; below 2 the parent.
    int IndexOfThis();        ///< Position in the parent, or -1.
    bool ContainsMember(cClass* member);
    static bool IsListName(const char* className);    ///< Of a list of any class: "cClassList." and its name.
    static bool IsPointerName(const char* className); ///< "cClassPtr." likewise. Null is neither.
    void CallOnProcess(void* data);
    void AndFlags(void* data, unsigned char flags); ///< On the object and everything in it.
    unsigned char GetFlags() const { return m_Flags; }
    void SetFlags(unsigned char flags) { m_Flags = flags; }

    cClass* Clone(); ///< A new object with the same content. The caller owns it.

    /// Removes the leaf children of `node`, a saved `data`, that equal those of a fresh object.
    void DeleteDefaultSubFields(cXml& node, void* data, void* extra);

    void LoadMember(cXml& node, void* data, int index, cErrorPager* pager,
                    void* extra);                              ///< One element, and its setter.
    void LoadMemberDirect(void* value, void* data, int index); ///< The setter alone.

    // One-shot modes: set to 1 on the line before a member, taken and cleared by the next registration.
    static inline unsigned char SimpleMode = 0;
    static inline unsigned char StaticMode = 0; ///< The member stands at a fixed address, not in the object.
    static inline unsigned char NoSaveMode = 0;
    static inline unsigned char InvisibleMode = 0;
    static inline unsigned char ReadOnlyMode = 0;

    static inline cClass* CurrentContext = nullptr;      ///< The object being walked.
    static inline bool SaveInShortForm = false;          ///< Cleared by saves; nothing here sets it.
    static inline const char* CurrentSaveFile = nullptr; ///< Path or "" while a file is loaded or saved, else null.

private:
    class Walk;

    cClass* Target(void* data); // the data for an object class, otherwise this
    cOneClassStorage* KnownStorage();
    cOneClassMemberStorage* Record(int i);
    bool IsShownAsNode(int i, void* data);
    void LoadTree(cXml& document, const char* path, bool report);

    cClass* m_Parent = nullptr;
    unsigned char m_Flags = 0;
};

// While set, `CallCtor` of a list or pointer member keeps what it holds and resets that instead.
extern bool cClassList_CtorNoClear;
extern bool cClassPtr_CtorNoClear;

/// Deletes, in step by position, what is equal in both trees and not the child of a list. Sets `*changed` when anything
/// went. A parent that has lost all children goes with the next call.
void cClass_ShortForm(cXml* saved, cXml* defaults, bool* changed);

bool cClass_ContainsMember(cClass* objectClass, void* data, cClass* member);

/// A warning of the engine; it never stops anything.
void cClassPrintError(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// Gives the prototype of a registered class, or null. It never creates anything.
cClass* cClass_GetClassFromPalette(const char* name);

/// Registers a class under `name`. The first prototype and the first label that is not empty stay.
///
/// @param object   a model; stays with the caller
/// @param label    folder of the add menu, or null
/// @param autoReg  names with a "." are then left out: those of generated classes
void cClass_RegClassBC(cClass* object, const char* label, const char* name, bool autoReg);

/// Inherits the parent's table into the child's; to be called before the child's own members.
void cClass_RegParent(cClass* child, cClass* parent);
void cClass_RegBase(cClass* child, cClass* parent); ///< The links by name alone, without the members.

inline void cClassTestClassStorage() {} ///< A place to watch storages from.

/// The storage of a class, looked up once.
inline cOneClassStorage* cClass_CachedStorage(cOneClassStorage** OCS, cClass* object) {
    cClassTestClassStorage();
    if (cClassGarbage::IsClosed()) {
        return nullptr;
    }
    if (!*OCS) {
        *OCS = TRELLIS_CGARB.GetClass(object->GetClassName());
    }
    return *OCS;
}

} // namespace trellis
