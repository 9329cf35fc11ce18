// The kind of a member that is an operation of the object.
#pragma once

#include "reflection/Kinds.h"

namespace trellis {

/// A member function of T, for a button. T is derived from `cClass`. All share one name, and one storage with it; made
/// with `new` by the class that registers it, not out of the palette.
template <class T> class _cButton : public cKind<_cButton<T>> {
public:
    static constexpr const char* ClassName = "_cButton";

    explicit _cButton(void (T::*function)() = nullptr) : m_Function(function) {}

    cClass* new_element() override { return new _cButton(m_Function); }
    bool CheckIfFunction() override { return true; }
    void Save(cXml&, void*, void*) override {}
    bool Load(cXml&, void*, cErrorPager*, void*) override { return true; }
    bool FullCopy(void*, void*, cClass*, void*, void*, cClassCopyContext*) override { return true; }

    /// @param object  the object's `cClass`, as member tables address it; null: nothing is called
    void call(void* object, void*) override {
        if (object && m_Function) {
            (static_cast<T*>(static_cast<cClass*>(object))->*m_Function)();
        }
    }

private:
    void (T::*m_Function)();
};

} // namespace trellis
