#include "storage/FileAt.h"

#include <cerrno>
#include <cstdint>
#include <sys/types.h>
#include <unistd.h>

namespace vx {

namespace {

// Runs call(done, offset) until n bytes are moved or it reports the end (0); retries on EINTR
// and raises other failures. The number of bytes moved.
template <class Call>
uint32_t nTransfer(const CFile &file, uint64_t nOffset, uint32_t n, const Call &call) {
    // An offset the system cannot take (beyond the signed 64-bit range) fails like a bad seek.
    if (nOffset > static_cast<uint64_t>(INT64_MAX) - n)
        throw CFileException(CFileException::badSeek, EINVAL, file.GetFilePath());
    auto offset = static_cast<off_t>(nOffset);
    uint32_t nDone = 0;
    while (nDone < n) {
        const ssize_t moved = call(nDone, offset);
        if (moved < 0) {
            if (errno == EINTR) continue;
            CFileException::ThrowOsError(errno, file.GetFilePath());
        }
        if (moved == 0) break;
        nDone += static_cast<uint32_t>(moved);
        offset += moved;
    }
    return nDone;
}

} // namespace

uint32_t ReadAt(CFile &file, uint64_t nOffset, void *p, uint32_t n) {
    auto *pBytes = static_cast<char *>(p);
    return nTransfer(file, nOffset, n, [&](uint32_t nDone, off_t offset) {
        return ::pread(file.GetHandle(), pBytes + nDone, n - nDone, offset);
    });
}

void WriteAt(CFile &file, uint64_t nOffset, const void *p, uint32_t n) {
    const auto *pBytes = static_cast<const char *>(p);
    const uint32_t nWritten = nTransfer(file, nOffset, n, [&](uint32_t nDone, off_t offset) {
        return ::pwrite(file.GetHandle(), pBytes + nDone, n - nDone, offset);
    });
    // A write that moves nothing and reports no error: the device takes no more.
    if (nWritten < n) throw CFileException(CFileException::diskFull, ENOSPC, file.GetFilePath());
}

} // namespace vx
