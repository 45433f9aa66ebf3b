// CCachedFile: a byte stream over a file, read and written through pages held in a CCache.
//
// A page is m_nPageSize bytes from the system allocator, keyed by the byte offset of its first
// byte (always a multiple of the page size). A page is read whole (a short read at the end of
// the file leaves the rest zero) and written back whole, so once a page has been written the
// file reaches at least to the end of that page, beyond the stream's length; reopening the file
// then gives that longer length. Writing to part of a page reads the page first, so the rest of
// it keeps its content.
//
// Close writes every dirty page back and closes the file. Neither Open nor the constructor sets
// the position: a Seek comes before the first Read or Write (a new object starts at 0). Pages
// already in the cache are not touched by SetLength.
#pragma once

#include "platform/VXExport.h"

#include "foundation/VXFile.h"
#include "foundation/VXString.h"
#include "storage/Cache.h"

#include <cstdint>

namespace vx VX_API {

class CCachedFile : public CCache {
public:
    // A closed file, with a cache of at most nMax pages (one more during a miss).
    explicit CCachedFile(uint16_t nMax) : CCache(nMax) {}
    // Writes the dirty pages back when Close was not called; a failure there cannot be
    // reported and is dropped. Call Close to know.
    ~CCachedFile() override;

    // Opens the file with the CFile flags; the length is the file's. A page size of 0 raises
    // CInvalidArgException; a failed open raises CFileException. An open file is closed first.
    bool Open(const CVXString &name, int nFlags, uint32_t nPageSize);
    // A new temporary file in dir ($TMPDIR or /tmp when dir is empty), removed when it is
    // closed; position 0. False when it cannot be created.
    bool OpenTemp(const CVXString &dir, uint32_t nPageSize);
    // Writes every dirty page back, then closes the file.
    void Close();

    // Sets the position; no bound is checked.
    void Seek(uint64_t nPos) noexcept { m_nPos = nPos; }
    uint64_t GetPosition() const noexcept { return m_nPos; }
    uint64_t GetLength() const noexcept { return m_nLength; }
    // Resizes the file; the length follows.
    void SetLength(uint64_t nLength);
    // Reads n bytes at the position through the cache and moves on. Bytes beyond the end of
    // the file read as zero.
    void Read(void *p, uint32_t n);
    // Writes n bytes at the position through the cache and moves on; the file grows first when
    // the bytes reach beyond its length.
    void Write(const void *p, uint32_t n);

protected:
    bool bLeesObject(uint64_t key, void **pp) override;
    void SchrijfObject(uint64_t key, void *p) override;
    void DeleteObject(void *p) override;

    CVXFile m_File;
    uint64_t m_nPos = 0;
    uint64_t m_nLength = 0;
    uint32_t m_nPageSize = 0;

private:
    // Checks the page size, closes an open file and takes the new size.
    void Reopening(uint32_t nPageSize);
    // The page with the key, from the cache.
    char *pPage(uint64_t key);
    // Calls fCopy(page key, offset in the page, bytes done, piece) for each piece of the n
    // bytes from nPos on.
    template <class Copy>
    void ForEachPiece(uint64_t nPos, uint32_t n, const Copy &fCopy);
};

} // namespace VX_API
