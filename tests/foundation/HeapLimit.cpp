#include "HeapLimit.h"

#include <cstdlib>
#include <new>

void* operator new[](size_t bytes) {
    void* p = bytes > cHeapLimit::s_Bytes ? nullptr : std::malloc(bytes ? bytes : 1);
    if (!p) {
        throw std::bad_alloc();
    }
    return p;
}

void operator delete[](void* p) noexcept {
    std::free(p);
}

void operator delete[](void* p, size_t) noexcept {
    std::free(p);
}
