#include "storage/ULongArrayFile.h"

#include "platform/Errors.h"
#include "storage/FileAt.h"

#include <cerrno>
#include <limits>
#include <string>

namespace vx {

namespace {

constexpr uint64_t kElementBytes = sizeof(uint32_t);
// The greatest element count whose byte count a file can have.
constexpr uint64_t kMaxElements = static_cast<uint64_t>(INT64_MAX) / kElementBytes;

uint64_t ByteOffset(uint64_t i) {
    if (i > kMaxElements)
        throw CInvalidArgException("CULongArrayFile: index " + std::to_string(i) +
                                   " lies beyond what a file can hold");
    return i * kElementBytes;
}

} // namespace

CULongArrayFile::CULongArrayFile(uint64_t n) : CCache(kCacheSize) {
    if (!m_File.OpenTemp())
        throw CFileException(CFileException::OsErrorToException(errno), errno,
                             CVXString(u"temporary file"));
    Resize(n);
    SetToZero(0);
}

CULongArrayFile::~CULongArrayFile() {
    DiscardCache();
}

void CULongArrayFile::Resize(uint64_t n) {
    m_File.SetLength(ByteOffset(n));
    m_lSize = n;
}

uint32_t CULongArrayFile::GetAt(uint64_t i) {
    // bLeesObject never answers false: it reads or raises.
    return *static_cast<const uint32_t *>(pGetObject(i, false));
}

void CULongArrayFile::SetAt(uint64_t i, uint32_t value) {
    ByteOffset(i); // an index no file can reach fails here, not at the write-back
    SetObject(i, new uint32_t(value), false); // the cache owns it from here on
}

void CULongArrayFile::SetAtGrow(uint64_t i, uint32_t value) {
    // The array grows before the value goes in, so the zeroing cannot take the value away.
    if (i >= m_lSize) {
        const uint64_t nOld = m_lSize;
        ByteOffset(i); // checked first, so that i + 1 cannot wrap
        Resize(i + 1);
        SetToZero(nOld);
    }
    SetAt(i, value);
}

uint64_t CULongArrayFile::lAdd(uint32_t value) {
    Resize(m_lSize + 1);
    SetAt(m_lSize - 1, value);
    return m_lSize - 1;
}

void CULongArrayFile::SetToZero(uint64_t i) {
    DumpCache(); // nothing in the cache may overwrite the zeros later
    if (i >= m_lSize) return;
    m_File.SetLength(ByteOffset(i));
    m_File.SetLength(ByteOffset(m_lSize));
}

bool CULongArrayFile::bLeesObject(uint64_t key, void **pp) {
    auto pValue = std::make_unique<uint32_t>(0); // a read short of the end leaves it 0
    ReadAt(m_File, ByteOffset(key), pValue.get(), kElementBytes);
    *pp = pValue.release();
    return true;
}

void CULongArrayFile::SchrijfObject(uint64_t key, void *p) {
    WriteAt(m_File, ByteOffset(key), p, kElementBytes);
}

void CULongArrayFile::DeleteObject(void *p) {
    delete static_cast<uint32_t *>(p);
}

// ---- CULongArrayFileArray ----

uint16_t CULongArrayFileArray::Add(CULongArrayFile *p) {
    // Refused before it is taken over: the caller then still owns it.
    if (m_arrays.size() > std::numeric_limits<uint16_t>::max())
        throw CInvalidArgException("CULongArrayFileArray: no 16-bit index left");
    m_arrays.emplace_back(p);
    return static_cast<uint16_t>(m_arrays.size() - 1);
}

void CULongArrayFileArray::Check(uint16_t n) const {
    if (n >= m_arrays.size())
        throw CInvalidArgException("CULongArrayFileArray: index " + std::to_string(n) +
                                   " out of range");
}

CULongArrayFile *CULongArrayFileArray::GetAt(uint16_t n) const {
    Check(n);
    return m_arrays[n].get();
}

void CULongArrayFileArray::SetAt(uint16_t n, CULongArrayFile *p) {
    Check(n);
    if (m_arrays[n].get() != p) m_arrays[n].reset(p);
}

void CULongArrayFileArray::RemoveAt(uint16_t n) {
    Check(n);
    m_arrays.erase(m_arrays.begin() + n);
}

} // namespace vx
