// CPointerIndexMap: from an object's address to its index in an archive's numbering.
//
// An archive looks up every object it writes and enters each new one, a million times for a
// million points: a node-based hash map spends most of that in allocating and freeing nodes.
// This one keeps keys and indices side by side in one open-addressed table (linear probing,
// power-of-two size, at most half full) that grows by doubling, so an entry costs no allocation
// of its own and a look-up touches one or two adjacent slots.
//
// Null is no key: the archives give the null object index 0 without asking the map, and 0 is
// what Find answers for an address that is not there.
#pragma once

#include "platform/VXExport.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace vx VX_API {

class CPointerIndexMap {
public:
    CPointerIndexMap() = default;
    CPointerIndexMap(const CPointerIndexMap &) = delete;
    CPointerIndexMap &operator=(const CPointerIndexMap &) = delete;

    // The index entered for `key`, or 0 when there is none.
    uint32_t Find(const void *key) const {
        if (m_nCapacity == 0) return 0;
        for (size_t i = Slot(key);; i = (i + 1) & (m_nCapacity - 1)) {
            if (m_pSlots[i].key == key) return m_pSlots[i].index;
            if (m_pSlots[i].key == nullptr) return 0;
        }
    }
    // Enters `key` (not null) with `index`, replacing the index it had.
    void Set(const void *key, uint32_t index);
    // Room for `count` entries in all without growing again.
    void Reserve(size_t count);
    size_t Size() const { return m_nSize; }
    // Forgets every entry and gives back the table.
    void Clear();

private:
    static constexpr uint64_t kFibonacci = 0x9E3779B97F4A7C15ull; // 2^64 / golden ratio
    static constexpr unsigned kAddressBits = 64;
    struct SSlot {
        const void *key;
        uint32_t index;
    };
    size_t Slot(const void *key) const {
        // Fibonacci hashing: the product spreads every bit of the address over the top bits,
        // which are taken. A hash that kept neighbouring objects in neighbouring slots was
        // tried: it saved cache misses on runs of large objects but piled small ones (an array
        // of 8-byte objects, or blocks that alias) into long probe runs, quadratic in time.
        const uint64_t h = static_cast<uint64_t>(reinterpret_cast<uintptr_t>(key)) * kFibonacci;
        return static_cast<size_t>(h >> m_nShift);
    }
    void Rehash(size_t capacity);

    std::unique_ptr<SSlot[]> m_pSlots;
    size_t m_nCapacity = 0; // a power of two, or 0 before the first entry
    size_t m_nSize = 0;
    unsigned m_nShift = kAddressBits; // kAddressBits - log2(m_nCapacity)
};

} // namespace VX_API
