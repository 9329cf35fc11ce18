// Table through which objects refer to each other by class and name instead of by address.
#pragma once

#include "foundation/cStr.h"

namespace trellis {

class cClass;

/// One referenced object, or one reference to an object that is not there. It is
///
///     live        Object is set
///     unresolved  no Object, PendingName is set: somebody asked for a name that is not there
///     orphaned    no Object, RefCount > 0: the object went, references remain
///     free        no Object, RefCount 0: waits for a new meaning under the same ID
struct cOneClassPointer {
    unsigned ID = 0; ///< (branch << 24) + position in the branch's list; for good.
    int RefCount = 0;
    cClass* Object = nullptr;
    cClass* Root = nullptr;      ///< Of the object or of the referrer, at the time; may be gone since.
    cClass* Referrer = nullptr;  ///< Who first asked for an unresolved name; may be gone since.
    cStr* NamePointer = nullptr; ///< The live object's own name.
    cStr PendingName;
    cStr PendingClass;
};

/// Use the one instance, `CPGARB`, on the thread that does the reflective work.
///
/// A reference is an ID. It stays valid while it is held: its record says null once the object is gone. A name is
/// looked up by a walk over the objects of its branch. Nothing resolves a pending name when its object comes: ask
/// again.
///
/// Records are deleted when the process exits. From then on every call is harmless and every ID is `NoID`.
class cClassPointersGarbage {
public:
    static constexpr unsigned NoID = ~0u;
    static constexpr int BranchCount = 256;

    constexpr cClassPointersGarbage() = default;
    ~cClassPointersGarbage();
    cClassPointersGarbage(const cClassPointersGarbage&) = delete;
    cClassPointersGarbage& operator=(const cClassPointersGarbage&) = delete;

    /// Gives the object an ID, sets it in the object, and returns it: `NoID` for an object without a name.
    unsigned AddClass(cClass* object);

    /// To be called before the object or its name goes. Nothing for an object that has no record.
    void DeleteClass(cClass* object);

    /// Adds a reference by name. An object under the referrer's root, or a global one, is the first choice, one under
    /// a foreign root the second. Referrers to a missing object share one record.
    ///
    /// @param referrer  may be null, which counts as one without a parent
    /// @return the ID, to be given back to `DelRef`
    unsigned AddRef(const char* className, const char* objectName, cClass* referrer);

    void AddRef(unsigned id); ///< One more on an ID that is held; `NoID`, unknown and free ones are ignored.
    void DelRef(unsigned id); ///< The same are ignored, and so is one drop too many.

    cOneClassPointer* GetPointer(unsigned id) const; ///< The record of an ID, or null.

    /// Sum of the bytes times 1, 2, ..., modulo 256; 0 for null.
    static int GetBranch(const char* className);

    cList<cOneClassPointer*>* GetCPointer(const char* className) { return &m_Branches[GetBranch(className)]; }

private:
    cOneClassPointer* RecordOf(cClass* object) const;
    cOneClassPointer* Take(int branch);
    void Recycle(cOneClassPointer* record);
    void Release(cOneClassPointer* record);

    static inline bool s_Closed = false;

    cList<cOneClassPointer*> m_Branches[BranchCount]; // owned
    cList<cOneClassPointer*> m_Free[BranchCount];
};

extern cClassPointersGarbage CPGARB;

} // namespace trellis
