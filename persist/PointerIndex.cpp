#include "persist/PointerIndex.h"

#include <algorithm>
#include <bit>

namespace vx {

namespace {

// The table is never more than half full, which keeps the runs of linear probing short.
constexpr size_t kMaxLoadDivisor = 2;
constexpr size_t kMinCapacity = 64;

} // namespace

void CPointerIndexMap::Set(const void *key, uint32_t index) {
    if ((m_nSize + 1) * kMaxLoadDivisor > m_nCapacity)
        Rehash(std::max(kMinCapacity, m_nCapacity * 2));
    size_t i = Slot(key);
    while (m_pSlots[i].key != nullptr && m_pSlots[i].key != key)
        i = (i + 1) & (m_nCapacity - 1);
    if (m_pSlots[i].key == nullptr) {
        m_pSlots[i].key = key;
        ++m_nSize;
    }
    m_pSlots[i].index = index;
}

void CPointerIndexMap::Reserve(size_t count) {
    const size_t wanted = std::bit_ceil(std::max(kMinCapacity, count * kMaxLoadDivisor));
    if (wanted > m_nCapacity) Rehash(wanted);
}

void CPointerIndexMap::Clear() {
    m_pSlots.reset();
    m_nCapacity = 0;
    m_nSize = 0;
    m_nShift = kAddressBits;
}

void CPointerIndexMap::Rehash(size_t capacity) {
    std::unique_ptr<SSlot[]> old = std::move(m_pSlots);
    const size_t oldCapacity = m_nCapacity;
    m_pSlots = std::make_unique<SSlot[]>(capacity); // value-initialised: every key null
    m_nCapacity = capacity;
    m_nShift = kAddressBits - static_cast<unsigned>(std::countr_zero(capacity));
    for (size_t j = 0; j < oldCapacity; ++j) {
        if (old[j].key == nullptr) continue;
        size_t i = Slot(old[j].key);
        while (m_pSlots[i].key != nullptr)
            i = (i + 1) & (m_nCapacity - 1);
        m_pSlots[i] = old[j];
    }
}

} // namespace vx
