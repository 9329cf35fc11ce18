// List of objects that is an object itself: saved, loaded, copied, reset and edited like any member.
#pragma once

#include "foundation/cImmortal.h"
#include "reflection/cClassMembers.h"

#include <cassert>
#include <type_traits>

namespace trellis {

// What does not depend on the element's class.
void cClassList_Init(); ///< Completes the palette, as constructing any reflected object does.
int cClassList_ExpandWith(cClass* descriptor, const char* name, cClass* list);
bool cClassList_FullCopy(cClass* src, void* srcExtra, cClass* dst, void* dstExtra, cClassCopyContext* context);

/// Owns its elements, which must be on the heap and in one list only, and is their parent.
///
/// T is the class that the list is meant for; it is declared with `TRELLIS_CLASS` and may itself hold a
/// `cClassList<T>`. A file names the class of each element by its tag, though, and any registered object class will
/// do. So a slot is a `T*` by type only: ask `Get` for a T, or `GetObject` for whatever there is. An element may be
/// null. Positions outside the list are refused.
template <class T> class cClassList : public cClass, public cList<T*, cList_Container<T*>> {
    using Slots = cList<T*, cList_Container<T*>>;

public:
    cClassList() { cClassList_Init(); }

    // Never the gentle reset of `CallCtor`: a list that ends while a save has its flag set would leave its elements
    // behind.
    ~cClassList() override { DeleteAll(); }

    /// @return null also where the element is no T
    T* Get(int i) const { return dynamic_cast<T*>(GetObject(i)); }

    cClass* GetObject(int i) const {
        return i >= 0 && i < this->Count() ? reinterpret_cast<cClass*>(Slots::operator[](i)) : nullptr;
    }

    /// Empties the list; while `cClassList_CtorNoClear` is set, keeps the elements and resets each.
    void CallCtor(void* data) override {
        auto* list = static_cast<cClass*>(data);
        if (list != this) {
            list->CallCtor(list);
            return;
        }
        cClassList_Init();
        if (!cClassList_CtorNoClear) {
            DeleteAll();
            return;
        }
        for (int i = 0; i < this->Count(); i++) {
            if (cClass* element = GetObject(i)) {
                element->CallCtor(element);
            }
        }
    }

    /// "cClassList." and T's name. Immortal, since prototypes of the palette ask for it while the process exits.
    const char* GetClassName() override {
        static cImmortal<cStr> s_Name(cStr::Format("cClassList.%s", T::ClassName));
        return s_Name.Value.Text();
    }

    int GetAmountOfElements() override { return this->Count(); }

    /// The element's class name, which is its tag; "NULL" for a null element.
    const char* GetElementID(int i) override {
        if (i < 0 || i >= this->Count()) {
            return "";
        }
        cClass* element = GetObject(i);
        const char* name = element ? element->GetClassName() : "NULL";
        return name ? name : "";
    }

    cClass* GetElementClass(int i) override { return GetObject(i); } ///< The element itself.

    void* GetElementPtr(int i, void* data) override {
        return data ? static_cast<cClass*>(data)->GetElementClass(i) : nullptr;
    }

    /// Deletes the elements of the range, as far as it lies in the list, and closes the gap.
    ///
    /// @param count  below 0 nothing is deleted, and the list gets that many null elements at its end, as far as it
    ///               has the capacity for them
    void RemoveAt(int first, int count = 1) override {
        if (count < 0) {
            Lengthen(-(long long)count);
            return;
        }
        const int from = std::max(first, 0);
        const int removed = int(std::min<long long>((long long)first + count, this->Count())) - from;
        if (removed < 1) {
            return;
        }
        Slots doomed; // out of the list first: a destructor may look into its parent
        doomed.AddRange(Slots::Data() + from, removed);
        Slots::RemoveAt(from, removed);
        DeleteElements(doomed);
    }

    bool CheckDirectCasting() override { return true; }

    /// Appends an element, which may be null. @return its position
    int Add(cClass* element) override {
        if (element) {
            element->SetParent(this);
        }
        // The slot's type is a promise that not every element keeps; nothing but the address may be taken from it.
        return Slots::Add(reinterpret_cast<T*>(element));
    }

    /// Makes an element of the object class of that name, at the end of the list at `data`.
    ///
    /// @return its position; -1 for a class that is not registered, and for a value kind
    int ExpandWith(const char* name, void* data) override {
        GetExpansionBaseClass(); // registers T, the likeliest name
        return cClassList_ExpandWith(this, name, static_cast<cClass*>(data));
    }

    int GetExpansionRules() override { return ExpandWithDerived; } ///< T itself is not offered.

    int IndexOf(const void* element) override {
        for (int i = 0; i < this->Count(); i++) {
            if (GetObject(i) == element) {
                return i;
            }
        }
        return -1;
    }

    /// T's name. The first call registers T. Not for the constructor to do: it runs while T's own table is written,
    /// where T holds such a list.
    const char* GetExpansionBaseClass() override {
        static bool s_Begun = false;
        if (!s_Begun) {
            s_Begun = true; // ahead of the model, whose construction may come back here
            static T s_Model;
            // `cClass` is the first base of every reflected class; slots are converted by address.
            static_assert(std::is_base_of_v<cClass, T>);
            assert(static_cast<void*>(static_cast<cClass*>(&s_Model)) == static_cast<void*>(&s_Model));
            cClass_RegClass(&s_Model, nullptr);
        }
        return T::ClassName;
    }

    /// Swaps two elements. @return false when there are no such two; a `delta` of 0 is always right
    bool MoveElement(int i, char delta) override {
        const long long other = (long long)i + (signed char)delta;
        if (other == i) {
            return true;
        }
        if (i < 0 || i >= this->Count() || other < 0 || other >= this->Count()) {
            return false;
        }
        std::swap(Slots::operator[](i), Slots::operator[](int(other)));
        return true;
    }

    /// Replaces the content of the list `dst` by copies, each of its element's real class; null elements are left
    /// out. Neither list may lie inside the other.
    bool FullCopy(void* src, void* srcExtra, cClass*, void* dst, void* dstExtra, cClassCopyContext* context) override {
        return cClassList_FullCopy(static_cast<cClass*>(src), srcExtra, static_cast<cClass*>(dst), dstExtra, context);
    }

    cClass* new_element() override { return new cClassList; }

    cOneClassStorage* GetClassStorage() override {
        static cOneClassStorage* OCS = nullptr;
        return cClass_CachedStorage(&OCS, this);
    }

private:
    // These would lose elements, own them twice, or hand out what is no T as one.
    using Slots::AddRange;
    using Slots::begin;
    using Slots::Clear;
    using Slots::Copy;
    using Slots::Data;
    using Slots::end;
    using Slots::EnsureCapacity;
    using Slots::Free;
    using Slots::Insert;
    using Slots::Resize;
    using Slots::SetCount;
    using Slots::Sort;
    using Slots::operator[];

    static void DeleteElements(const Slots& elements) {
        for (T* element : elements) {
            delete reinterpret_cast<cClass*>(element);
        }
    }

    void DeleteAll() {
        const Slots doomed(std::move(static_cast<Slots&>(*this))); // a destructor may look into its parent
        DeleteElements(doomed);
    }

    // Removing a negative count lengthens the list: callers of the reflected interface find the count subtracted,
    // whatever its sign. Slots behind the end may hold what was removed before, so they are
    // cleared, and there are no more of them than the block has.
    void Lengthen(long long count) {
        const int before = this->Count();
        Slots::SetCount(int(std::min<long long>(before + count, this->Capacity())));
        std::fill(Slots::begin() + before, Slots::end(), nullptr);
    }
};

} // namespace trellis
