// The class palette: every class name that was ever looked up, with its storage.
#pragma once

#include "foundation/cStrHash.h"
#include "reflection/cOneClassStorage.h"

namespace trellis {

/// Use the one instance, `TRELLIS_CGARB`. It belongs to the thread that does the reflective work.
///
/// The destructor runs behind those of all ordinary globals. It deletes every prototype while all storages stand, then
/// the records, then the storages. Objects that are destroyed later still run their own tear-down.
class cClassGarbage {
public:
    constexpr cClassGarbage() = default;
    ~cClassGarbage();
    cClassGarbage(const cClassGarbage&) = delete;
    cClassGarbage& operator=(const cClassGarbage&) = delete;

    /// The storage of a name; an unknown one (null counts as "") gets an empty storage. Null only after the end.
    cOneClassStorage* GetClass(const char* name);

    cOneClassStorage* FindClass(const char* name) const; ///< Null for an unknown name.
    cOneClassStorage* CreateClassStorage(const char* name);

    int GetClassCount() const { return m_Classes.Count(); }
    cOneClassStorage* GetClass(int index) const { return m_Classes[index]; } ///< In the order of creation.

    static bool IsClosing() { return s_Closing; } ///< The destructor runs or has run: nothing is registered any more.
    static bool IsClosed() { return s_Closed; }   ///< The prototypes are gone, and the tables are going.

private:
    static bool s_Closing;
    static bool s_Closed;

    cList<cOneClassStorage*> m_Classes;
    cStrHash m_Names; // index in m_Classes
};

extern cClassGarbage TRELLIS_CGARB;

} // namespace trellis
