// Sorted list of names with their indexes, for small tables that are built once.
#pragma once

#include "foundation/cStr.h"

namespace trellis {

class cStrHash {
public:
    struct NameIndex {
        cStr Name;
        int Index;

        static int Compare(const NameIndex* a, const NameIndex* b) {
            return cStr::Compare(a->Name.Text(), b->Name.Text());
        }
    };

    /// Enters a name and sorts the whole list. A null name is ignored.
    void Add(const char* name, int index);

    /// @return the index of the name, the first in the sorted list when it was entered more than once; -1 for none
    int Find(const char* name) const;

    void Clear() { m_Names.Clear(); } ///< Keeps the storage.
    void Free() { m_Names.Free(); }
    const cList<NameIndex>& GetNames() const { return m_Names; } ///< In the order of `cStr::Compare`.

private:
    cList<NameIndex> m_Names;
};

} // namespace trellis
