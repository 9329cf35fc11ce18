#include "foundation/cStrHash.h"

namespace trellis {

void cStrHash::Add(const char* name, int index) {
    if (!name) {
        return;
    }
    m_Names.Add({name, index});
    m_Names.Sort(NameIndex::Compare);
}

int cStrHash::Find(const char* name) const {
    if (!name) {
        return -1;
    }
    int low = 0;
    int high = m_Names.Count();
    while (low < high) {
        const int middle = low + (high - low) / 2;
        const int order = cStr::Compare(m_Names[middle].Name.Text(), name);
        if (order == 0) {
            return m_Names[middle].Index;
        }
        (order < 0 ? low : high) = order < 0 ? middle + 1 : middle;
    }
    return -1;
}

} // namespace trellis
