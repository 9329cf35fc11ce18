// Hash index over integers: from a key to chains of indexes into an array that its user owns.
#pragma once

namespace trellis {

class cVec3;

/// Stores no keys and no values: a lookup gives the candidates, and the user compares.
///
///     for (int i = hash.First(key); i != -1; i = hash.Next(i)) { if (items[i] == wanted) ... }
///
/// Until the first `Allocate` or `Add` both tables are one shared -1, so that a lookup needs no test.
class cHash {
public:
    cHash(int hashSize_ = 1024, int indexSize_ = 1024) { Init(hashSize_, indexSize_); }
    ~cHash() { Free(); }
    cHash(const cHash&) = delete;
    cHash& operator=(const cHash&) = delete;

    /// Stores the sizes and allocates nothing. On an index that holds tables call `Free` first.
    ///
    /// @param hashSize_  a power of two
    void Init(int hashSize_, int indexSize_);
    void Allocate(int hashSize_, int indexSize_); ///< Anew and empty.
    void Free();                                  ///< Back to the state after `Init`.

    /// Room for indexes below `n`, rounded up to the granularity; never shrinks.
    void ResizeIndex(int n);

    void Add(int key, int index); ///< At the head of the key's chain. `index` >= 0, in one chain at a time.
    void Remove(int key, int index);
    int First(int key) const { return hash[key & hashMask & lookupMask]; } ///< -1 for none.
    int Next(int index) const { return indexChain[index & lookupMask]; }   ///< -1 at the end.

    /// How even the chains are, from 100 (perfect) down, below 0 where crowded chains outweigh the total. A deviation
    /// of one entry from the average is free.
    int CalcSpread() const;

    /// Sum of signed bytes times 119, 120, ...; in [0, hash size). Stored keys depend on both numbers and on the sign.
    int GenerateKey(const char* s, bool noCase) const;
    int GenerateKey(const cVec3& v) const; ///< Of the truncated coordinates, so that neighbours share a key.

    int GetHashSize() const { return hashSize; }
    int GetIndexSize() const { return indexSize; }

    static int INVALID_INDEX[1]; ///< -1.

private:
    int* hash = INVALID_INDEX;
    int* indexChain = INVALID_INDEX;
    int hashSize = 0;
    int indexSize = 0;
    int granularity = 0;
    int hashMask = 0;
    int lookupMask = 0; // 0 while nothing is allocated, -1 afterwards
};

} // namespace trellis
