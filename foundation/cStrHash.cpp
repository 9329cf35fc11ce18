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
    while (low < high) { // lower bound: of equal names the first answers
        const int middle = low + (high - low) / 2;
        if (cStr::Compare(m_Names[middle].Name.Text(), name) < 0) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    const bool found = low < m_Names.Count() && cStr::Compare(m_Names[low].Name.Text(), name) == 0;
    return found ? m_Names[low].Index : -1;
}

} // namespace trellis
