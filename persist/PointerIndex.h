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
    struct SSlot {
        const void *key;
        uint32_t index;
    };
    size_t Slot(const void *key) const {
        // Fibonacci hashing of the address: objects sit at least 16 bytes apart, so the low
        // bits say little and the multiplication spreads the rest over the top bits taken.
        const uint64_t h = (reinterpret_cast<uintptr_t>(key) >> 4) * 0x9E3779B97F4A7C15ull;
        return static_cast<size_t>(h >> m_nShift);
    }
    void Rehash(size_t capacity);

    std::unique_ptr<SSlot[]> m_pSlots;
    size_t m_nCapacity = 0; // a power of two, or 0 before the first entry
    size_t m_nSize = 0;
    unsigned m_nShift = 64;
};

} // namespace VX_API
