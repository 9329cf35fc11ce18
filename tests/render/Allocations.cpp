#include "tests/render/Allocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {
std::atomic<int> s_Count;
}

int AllocationCount() {
    return s_Count;
}

void* operator new(size_t bytes) {
    s_Count++;
    void* p = std::malloc(bytes ? bytes : 1);
    if (!p) {
        throw std::bad_alloc();
    }
    return p;
}

void* operator new[](size_t bytes) {
    return operator new(bytes);
}

void operator delete(void* p) noexcept {
    std::free(p);
}

void operator delete(void* p, size_t) noexcept {
    std::free(p);
}

void operator delete[](void* p) noexcept {
    std::free(p);
}

void operator delete[](void* p, size_t) noexcept {
    std::free(p);
}
