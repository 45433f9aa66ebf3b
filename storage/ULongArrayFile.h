// CULongArrayFile: an array of 32-bit numbers in a temporary file, with 64-bit indices, for
// more data than a program wants in memory. CULongArrayFileArray: an owning array of them.
//
// Element i lies at byte offset 4·i of the file, in the machine's byte order, with no header.
// The file is created anew, private to the object, and its name is removed at once: nothing of
// it survives the object. Each cached object is one heap number and the cache holds 1000 of
// them, so the design favours a few hot words over throughput.
//
// Zeroing (SetToZero, and through it construction and growth) bypasses the cache: the file is
// cut at the first element to clear and grown back, and the system hands out zeros for the
// grown part without writing them (on a sparse-capable file system it stores nothing at all).
// So an array of more than 2^32 elements costs nothing until it is written.
#pragma once

#include "platform/VXExport.h"

#include "foundation/VXFile.h"
#include "platform/Object.h"
#include "storage/Cache.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace vx VX_API {

class CULongArrayFile : public CCache {
public:
    // Entries of the cache: each one number.
    static constexpr uint16_t kCacheSize = 1000;

    // A temporary file of n zeroed elements. Raises CFileException when the file cannot be
    // made, and CInvalidArgException for a size whose byte count a file cannot have.
    explicit CULongArrayFile(uint64_t n);
    // The file goes with the object, so the cached numbers are dropped without a write-back.
    ~CULongArrayFile() override;

    uint64_t lGetSize() const noexcept { return m_lSize; }
    // No range check: beyond the end of the file the value reads as 0.
    uint32_t GetAt(uint64_t i);
    // Into the cache, dirty.
    void SetAt(uint64_t i, uint32_t value);
    // As SetAt; an index at or past the end first grows the array to i + 1 elements, the new
    // ones zero.
    void SetAtGrow(uint64_t i, uint32_t value);
    // Appends; the index of the new element.
    uint64_t lAdd(uint32_t value);
    // Zeroes the elements from i to the end directly in the file. The cache is written back
    // and emptied first, so a value set before and still cached is written and then zeroed.
    void SetToZero(uint64_t i);

protected:
    bool bLeesObject(uint64_t key, void **pp) override;
    void SchrijfObject(uint64_t key, void *p) override;
    void DeleteObject(void *p) override;

    CVXFile m_File;
    uint64_t m_lSize = 0;

private:
    // The file to n elements, then the size.
    void Resize(uint64_t n);
};

// An array of CULongArrayFile with 16-bit indices that owns its elements: RemoveAt, RemoveAll,
// SetAt (for the element it replaces) and the destructor delete them. An index out of range
// raises CInvalidArgException, as in every collection of the library.
class CULongArrayFileArray : public CObject {
public:
    CULongArrayFileArray() = default;
    CULongArrayFileArray(const CULongArrayFileArray &) = delete;
    CULongArrayFileArray &operator=(const CULongArrayFileArray &) = delete;
    ~CULongArrayFileArray() override = default;

    // Takes the array over; its index. A 65537th element raises CInvalidArgException and is
    // not taken over.
    uint16_t Add(CULongArrayFile *p);
    CULongArrayFile *GetAt(uint16_t n) const;
    void SetAt(uint16_t n, CULongArrayFile *p);
    void RemoveAt(uint16_t n);
    void RemoveAll() noexcept { m_arrays.clear(); }
    int32_t GetSize() const noexcept { return static_cast<int32_t>(m_arrays.size()); }

private:
    void Check(uint16_t n) const;
    std::vector<std::unique_ptr<CULongArrayFile>> m_arrays;
};

} // namespace VX_API
