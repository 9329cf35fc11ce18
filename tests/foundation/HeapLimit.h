// Makes the heap refuse large arrays: while one lives, array new throws std::bad_alloc above a size.
#pragma once

#include <cstddef>

class cHeapLimit {
public:
    explicit cHeapLimit(size_t bytes) { s_Bytes = bytes; }
    ~cHeapLimit() { s_Bytes = size_t(-1); }
    cHeapLimit(const cHeapLimit&) = delete;
    cHeapLimit& operator=(const cHeapLimit&) = delete;

    static inline size_t s_Bytes = size_t(-1); ///< Set on the main thread while no other runs.
};
