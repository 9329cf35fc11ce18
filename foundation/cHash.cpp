#include "foundation/cHash.h"

#include "math/cMath.h"
#include "math/cVec3.h"

#include <algorithm>
#include <cassert>
#include <climits>
#include <cstdlib>
#include <memory>

namespace trellis {

constinit int cHash::INVALID_INDEX[1] = {-1};

void cHash::Init(int hashSize_, int indexSize_) {
    hash = INVALID_INDEX;
    indexChain = INVALID_INDEX;
    hashSize = hashSize_;
    indexSize = indexSize_;
    granularity = 1024;
    hashMask = hashSize_ - 1;
    lookupMask = 0;
}

void cHash::Allocate(int hashSize_, int indexSize_) {
    Free();
    std::unique_ptr<int[]> heads(new int[size_t(hashSize_)]);
    indexChain = new int[size_t(indexSize_)];
    hash = heads.release();
    std::fill_n(hash, hashSize_, -1);
    std::fill_n(indexChain, indexSize_, -1);
    hashSize = hashSize_;
    indexSize = indexSize_;
    hashMask = hashSize_ - 1;
    lookupMask = -1;
}

void cHash::Free() {
    if (hash != INVALID_INDEX) {
        delete[] hash;
        hash = INVALID_INDEX;
    }
    if (indexChain != INVALID_INDEX) {
        delete[] indexChain;
        indexChain = INVALID_INDEX;
    }
    lookupMask = 0;
}

void cHash::ResizeIndex(int n) {
    if (n <= indexSize) {
        return;
    }
    assert(n <= INT_MAX - granularity);
    const int rounded = (n + granularity - 1) / granularity * granularity;
    if (indexChain != INVALID_INDEX) {
        int* larger = new int[size_t(rounded)];
        std::fill(std::copy_n(indexChain, indexSize, larger), larger + rounded, -1);
        delete[] indexChain;
        indexChain = larger;
    }
    indexSize = rounded;
}

void cHash::Add(int key, int index) {
    assert(index >= 0 && index < INT_MAX);
    ResizeIndex(index + 1);
    if (hash == INVALID_INDEX) {
        Allocate(hashSize, indexSize);
    }
    int& head = hash[key & hashMask];
    indexChain[index] = head;
    head = index;
}

void cHash::Remove(int key, int index) {
    if (hash == INVALID_INDEX) {
        return;
    }
    int* link = &hash[key & hashMask];
    while (*link != -1 && *link != index) {
        link = &indexChain[*link];
    }
    if (*link == index) {
        *link = indexChain[index];
        indexChain[index] = -1;
    }
}

int cHash::CalcSpread() const {
    if (hash == INVALID_INDEX) {
        return 100;
    }
    const auto countChain = [this](int i) {
        int count = 0;
        for (int index = hash[i]; index != -1; index = indexChain[index]) {
            count++;
        }
        return count;
    };
    int total = 0;
    for (int i = 0; i < hashSize; i++) {
        total += countChain(i);
    }
    if (total <= 1) {
        return 100;
    }
    const int average = total / hashSize;
    long long error = 0;
    for (int i = 0; i < hashSize; i++) {
        const int e = std::abs(countChain(i) - average);
        error += e > 1 ? e - 1 : 0;
    }
    return 100 - int(error * 100 / total);
}

int cHash::GenerateKey(const char* s, bool noCase) const {
    unsigned int sum = 0; // wraps
    unsigned int multiplier = 119;
    for (; *s; s++, multiplier++) {
        const bool fold = noCase && *s >= 'A' && *s <= 'Z';
        const int byte = static_cast<signed char>(fold ? *s - 'A' + 'a' : *s);
        sum += unsigned(byte) * multiplier;
    }
    return int(sum) & hashMask;
}

int cHash::GenerateKey(const cVec3& v) const {
    const auto truncated = [](float f) { return unsigned(cMath::TruncateToInt(f)); };
    return int(truncated(v.x) + truncated(v.y) + truncated(v.z)) & hashMask;
}

} // namespace trellis
