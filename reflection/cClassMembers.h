// What a reflected class needs to declare itself and to list its members. The tutorial stands in cClass.h.
#pragma once

#include "reflection/Kinds.h"
#include "reflection/_cButton.h"
#include "reflection/_cIndex.h"
#include "reflection/cClass.h"

#include <type_traits>
#include <typeinfo>

namespace trellis {

template <class T> void cClass_RegClass(T* object, const char* label) {
    cClass_RegClassBC(object, label, object->GetClassName(), false);
}

template <class T> void cClass_RegClassAuto(T* object, const char* label) {
    cClass_RegClassBC(object, label, object->GetClassName(), true);
}

/// Registers a class with its first object: what lives can be saved, and what is saved must be found again.
template <class T> void cClass_RegisterOnce(T* object) {
    static bool s_Begun = false;
    if (!s_Begun) {
        s_Begun = true; // ahead of the prototype, which is an object of T as well
        cClass_RegClassAuto(object, nullptr);
    }
}

/// The prototype of T, which is registered if need be. The pointer only names the type and may be null.
template <class T> cClass* cClass_GetClassMember(T*, const char* name) {
    if (cClass* prototype = cClass_GetClassFromPalette(name)) {
        return prototype;
    }
    T* model = new T;
    cClass_RegClass(model, nullptr);
    delete model;
    cClass* prototype = cClass_GetClassFromPalette(name);
    return prototype ? prototype : new T;
}

/// The line of a member whose class is an object class.
template <class T> void cClass_RegAuto(cClass* owner, T& member, const char* name, void* extra, unsigned mask) {
    cClass* prototype = cClass_GetClassMember(&member, member.GetClassName());
    owner->RegisterOneMember(prototype->new_element(), static_cast<cClass*>(&member), name, extra,
                             owner->GetClassName(), true, mask);
}

/// Writer of a member table; lives on the stack of `RegisterMembers`. The one-shot modes of `cClass` apply to the line
/// that follows them.
class cClassMembers {
public:
    explicit cClassMembers(cClass* owner) : m_Owner(owner) {}

    /// Links the member objects to their parent, on every call. @return false when the table stands already
    bool Begin();

    template <class Base> void AddParent() {
        cClass_RegParent(m_Owner, cClass_GetClassMember(static_cast<Base*>(nullptr), Base::ClassName));
    }

    /// @tparam Kind  a kind of the palette, for a value of its size; skipped without a word when it is not registered
    template <class Kind, class T> void Add(T& member, const char* name, void* extra = nullptr) {
        static_assert(sizeof(T) == Kind::DataSize, "the kind describes a value of another size");
        AddKind(cClass_GetClassFromPalette(Kind::ClassName), &member, name, extra);
    }

    /// A slider with its ends, which the member keeps for good.
    template <class Kind, class T> void AddRanged(T& member, const char* name, T low, T high) {
        Add<Kind>(member, name, cClass_MakeRange(low, high));
    }

    void AddEnum(int& member, const char* name, cEnum* values);
    void AddSeparator(const char* heading);

    /// @param name  by convention spelled like the member: "&cLamp::Switch"
    template <class T> void AddButton(void (T::*function)(), const char* name) {
        m_Owner->RegisterOneMember(new _cButton<T>(function), m_Owner, name, nullptr, m_Owner->GetClassName(), false,
                                   ~0u);
    }

    template <class T> void AddObject(T& member, const char* name, void* extra = nullptr) {
        cClass_RegAuto(m_Owner, member, name, extra, ~0u);
    }

private:
    void AddKind(cClass* prototype, void* member, const char* name, void* extra);

    cClass* m_Owner;
};

/// The tail of `new_element`: an object is the parent of its member objects from the start.
template <class T> T* cClass_Linked(T* object) {
    if (cOneClassStorage* storage = object->GetClassStorage()) {
        storage->LinkMemberObjects(object);
    }
    return object;
}

/// Whether a class takes its elements as `cClass` gives them: a member function names the class that declares it.
template <class T>
inline constexpr bool cClass_IsPlain = std::is_same_v<decltype(&T::GetAmountOfElements), int (cClass::*)()>&&
    std::is_same_v<decltype(&T::GetElementID), const char* (cClass::*)(int)>&&
        std::is_same_v<decltype(&T::GetElementClass), cClass* (cClass::*)(int)>&&
            std::is_same_v<decltype(&T::GetElementPtr), void* (cClass::*)(int, void*)>&&
                std::is_same_v<decltype(&T::GetElementExtraPtr), void* (cClass::*)(int)>&&
                    std::is_same_v<decltype(&T::GetRealMaskedPosition), int (cClass::*)(int)>&&
                        std::is_same_v<decltype(&T::ExpandWith), int (cClass::*)(const char*, void*)>;

} // namespace trellis

/// Declares what an object class supplies; the first line of the class body. `RegisterMembers` is left to be defined.
#define TRELLIS_CLASS(Class) TRELLIS_CLASS_NAMED(Class, #Class)

/// The same for a class whose tag in files is not its C++ name.
#define TRELLIS_CLASS_NAMED(Class, Name)                                                                               \
public:                                                                                                                \
    static constexpr const char* ClassName = Name;                                                                     \
    Class() {                                                                                                          \
        CallCtor(static_cast<trellis::cClass*>(this));                                                                 \
        trellis::cClass_RegisterOnce(this);                                                                            \
    }                                                                                                                  \
    ~Class() override {                                                                                                \
        CallDtor(static_cast<trellis::cClass*>(this));                                                                 \
    }                                                                                                                  \
    const char* GetClassName() override {                                                                              \
        return ClassName;                                                                                              \
    }                                                                                                                  \
    void RegisterMembers() override;                                                                                   \
    bool CheckDirectCasting() override {                                                                               \
        return true;                                                                                                   \
    }                                                                                                                  \
    trellis::cClass* new_element() override {                                                                          \
        return trellis::cClass_Linked(new Class);                                                                      \
    }                                                                                                                  \
    trellis::cOneClassStorage* GetClassStorage() override {                                                            \
        static trellis::cOneClassStorage* OCS = nullptr;                                                               \
        return trellis::cClass_CachedStorage(&OCS, this);                                                              \
    }                                                                                                                  \
    bool HasPlainElements() override { /* not for a class derived without the macro, which may replace functions */    \
        return trellis::cClass_IsPlain<Class> && typeid(*this) == typeid(Class);                                       \
    }                                                                                                                  \
                                                                                                                       \
private:
