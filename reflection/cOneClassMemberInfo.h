// One element of an object, with the object it belongs to.
#pragma once

namespace trellis {

class cClass;
class cErrorPager;
class cOneClassMemberStorage;
class cXml;

/// Filled by `cClass::GetElementInfo`. Valid while the object lives; for a property, until the next one is asked for.
class cOneClassMemberInfo {
public:
    cOneClassMemberInfo() = default;
    cOneClassMemberInfo(cClass* parentClass, void* parent, cClass* elementClass, void* data, void* extra,
                        cOneClassMemberStorage* storage)
        : m_ParentClass(parentClass), m_Parent(parent), m_Class(elementClass), m_Data(data), m_Extra(extra),
          m_Storage(storage) {}

    cClass* GetParentClass() const { return m_ParentClass; }
    void* GetParentPtr() const { return m_Parent; }
    cClass* GetClass() const { return m_Class; } ///< Null when there is no such element.
    void* GetData() const { return m_Data; }
    void* GetExtra() const { return m_Extra; }

    // An element without a record (of a list) has the name "", every mask, and no flag.
    unsigned GetMask() const;
    const char* Name() const;
    bool IsInvisible() const;
    bool IsReadOnly() const;
    bool IsStatic() const;
    bool IsNotSavable() const;
    bool IsDirectCasting() const;

    /// Saves the element's value into the node.
    void Save(cXml* node) const;

    /// Loads the element and runs its setter. @param pager  null: a silent one
    void Load(cXml* node, cErrorPager* pager) const;

    void AcceptAfterWrite() const; ///< Runs the setter on the value that stands at the element's address.

private:
    cClass* m_ParentClass = nullptr;
    void* m_Parent = nullptr;
    cClass* m_Class = nullptr;
    void* m_Data = nullptr;
    void* m_Extra = nullptr;
    cOneClassMemberStorage* m_Storage = nullptr;
};

} // namespace trellis
