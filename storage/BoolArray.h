// Bit arrays: CBoolArray in memory and CBoolArrayFile on a CULongArrayFile.
//
// Both pack bit i into 32-bit word i/32 at bit position i mod 32 (the lowest bit is position
// 0), and both keep one word more than the size needs: n bits take n/32 + 1 words, so 32 bits
// take two. They differ on purpose in ResetGrow past the end: the file array grows its size,
// the memory array does nothing (a bit beyond the end reads clear anyway).
#pragma once

#include "platform/VXExport.h"

#include "platform/Object.h"
#include "storage/ULongArrayFile.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace vx VX_API {

namespace bitword {
constexpr uint32_t kBits = 32;
constexpr uint64_t Word(uint64_t i) noexcept {
    return i / kBits;
}
constexpr uint32_t Mask(uint64_t i) noexcept {
    return uint32_t{1} << (i % kBits);
}
// The words that n bits are given: one more than strictly needed whenever n is a multiple of 32.
constexpr uint64_t WordsFor(uint64_t n) noexcept {
    return n / kBits + 1;
}
} // namespace bitword

class CBoolArray : public CObject {
public:
    // nBits clear bits. A negative count raises CInvalidArgException.
    explicit CBoolArray(int64_t nBits = 0);
    CBoolArray(const CBoolArray &) = delete;
    CBoolArray &operator=(const CBoolArray &) = delete;
    ~CBoolArray() override = default;

    int64_t GetSize() const noexcept { return m_nSize; }
    int64_t RawSize() const noexcept { return m_nRaw; }
    const uint32_t *GetData() const noexcept { return m_pData.get(); }
    uint32_t *GetData() noexcept { return m_pData.get(); }

    // Discards all content: n/32 + 1 new words, all clear, and the size n.
    void SetSize(int64_t n);

    // The size is not checked: every bit of the allocated words can be reached. A bit outside
    // them raises CInvalidArgException instead of touching foreign memory.
    void Set(int64_t i) { m_pData[nWordOf(i)] |= bitword::Mask(static_cast<uint64_t>(i)); }
    void Reset(int64_t i) { m_pData[nWordOf(i)] &= ~bitword::Mask(static_cast<uint64_t>(i)); }
    bool bSet(int64_t i) const {
        return (m_pData[nWordOf(i)] & bitword::Mask(static_cast<uint64_t>(i))) != 0;
    }
    // Grows to i + 1 bits first when i is not below the size.
    void SetGrow(int64_t i);
    // Past the end nothing happens at all: such a bit is clear anyway.
    void ResetGrow(int64_t i) {
        if (i < m_nSize) Reset(i);
    }
    // False past the end; it never grows, whatever its name suggests.
    bool bSetGrow(int64_t i) const { return i < m_nSize && bSet(i); }

private:
    // The index of the word of bit i, checked against the allocated words.
    size_t nWordOf(int64_t i) const;
    // Keeps the content. Takes new memory of exactly n/32 + 1 words when that is more than
    // there is: no growth factor, each step past a word boundary reallocates.
    void Grow(int64_t n);

    int64_t m_nSize = 0;
    int64_t m_nRaw = 0;
    std::unique_ptr<uint32_t[]> m_pData;
};

class CBoolArrayFile : public CULongArrayFile {
public:
    // nBits clear bits in nBits/32 + 1 words.
    explicit CBoolArrayFile(uint64_t nBits)
        : CULongArrayFile(bitword::WordsFor(nBits)), m_nBits(nBits) {}

    uint64_t GetSize() const noexcept { return m_nBits; }

    // Read the word, change the bit, write the word. No range check.
    void Set(uint64_t i) { SetAt(bitword::Word(i), GetAt(bitword::Word(i)) | bitword::Mask(i)); }
    void Reset(uint64_t i) { SetAt(bitword::Word(i), GetAt(bitword::Word(i)) & ~bitword::Mask(i)); }
    bool bSet(uint64_t i) { return (GetAt(bitword::Word(i)) & bitword::Mask(i)) != 0; }
    // When the bit's word lies beyond the array it is added first; a bit at or past the size
    // makes the size i + 1. Resetting grows as well, here.
    void SetGrow(uint64_t i);
    void ResetGrow(uint64_t i);
    // False past the end; it never grows, whatever its name suggests.
    bool bSetGrow(uint64_t i) { return i < m_nBits && bSet(i); }

protected:
    uint64_t m_nBits;

private:
    void GrowFor(uint64_t i);
};

} // namespace VX_API
