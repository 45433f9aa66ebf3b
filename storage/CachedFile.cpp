#include "storage/CachedFile.h"

#include "platform/Errors.h"
#include "storage/FileAt.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <unistd.h>

namespace vx {

namespace {

// Name prefix of temporary files, the same as CreateTempNaam's.
constexpr const char *kTempPrefix = "/~kvXXXXXX";

// A new temporary file in the folder, open for reading and writing, its name removed at once:
// the file lives while it is open.
bool bOpenTempIn(CVXFile &file, const CVXString &dir) {
    std::string name = std::string(static_cast<const char *>(dir)) + kTempPrefix;
    const int fd = ::mkstemp(name.data());
    if (fd < 0) return false;
    ::close(fd);
    CFileException error;
    const bool bOpened =
        file.Open(CVXString(name.c_str()), CFile::modeReadWrite | CFile::shareExclusive, &error);
    ::unlink(name.c_str());
    return bOpened;
}

} // namespace

CCachedFile::~CCachedFile() {
    try {
        if (m_File.IsOpen()) DumpCache();
    } catch (...) { // nothing can report it here
    }
    DiscardCache();
}

void CCachedFile::Reopening(uint32_t nPageSize) {
    if (nPageSize == 0) throw CInvalidArgException("CCachedFile: the page size must not be 0");
    if (m_File.IsOpen()) Close(); // its pages go back with the old page size
    m_nPageSize = nPageSize;
}

bool CCachedFile::Open(const CVXString &name, int nFlags, uint32_t nPageSize) {
    Reopening(nPageSize);
    if (!m_File.Open(name, static_cast<unsigned int>(nFlags))) return false;
    m_nLength = m_File.GetLength();
    return true;
}

bool CCachedFile::OpenTemp(const CVXString &dir, uint32_t nPageSize) {
    Reopening(nPageSize);
    if (!(dir.IsEmpty() ? m_File.OpenTemp() : bOpenTempIn(m_File, dir))) return false;
    m_nLength = m_File.GetLength();
    m_nPos = 0;
    return true;
}

void CCachedFile::Close() {
    DumpCache();
    m_File.Close();
}

void CCachedFile::SetLength(uint64_t nLength) {
    m_File.SetLength(nLength);
    m_nLength = nLength;
}

char *CCachedFile::pPage(uint64_t key) {
    // bLeesObject never answers false: it reads or raises.
    return static_cast<char *>(pGetObject(key, false));
}

template <class Copy>
void CCachedFile::ForEachPiece(uint64_t nPos, uint32_t n, const Copy &fCopy) {
    uint64_t nOffset = nPos % m_nPageSize;
    uint64_t key = nPos - nOffset;
    uint32_t nDone = 0;
    while (n - nDone > m_nPageSize - nOffset) { // what is left does not fit in this page
        const auto nPiece = static_cast<uint32_t>(m_nPageSize - nOffset);
        fCopy(key, nOffset, nDone, nPiece);
        nDone += nPiece;
        key += m_nPageSize;
        nOffset = 0;
    }
    fCopy(key, nOffset, nDone, n - nDone);
}

void CCachedFile::Read(void *p, uint32_t n) {
    auto *pBytes = static_cast<char *>(p);
    const uint64_t nStart = m_nPos;
    m_nPos += n; // first, as the stream always did
    ForEachPiece(nStart, n, [&](uint64_t key, uint64_t nOffset, uint32_t nDone, uint32_t nPiece) {
        std::memcpy(pBytes + nDone, pPage(key) + nOffset, nPiece);
    });
}

void CCachedFile::Write(const void *p, uint32_t n) {
    const auto *pBytes = static_cast<const char *>(p);
    if (m_nPos > UINT64_MAX - n)
        throw CFileException(CFileException::badSeek, EINVAL, m_File.GetFilePath());
    if (m_nPos + n > m_nLength) SetLength(m_nPos + n);
    ForEachPiece(m_nPos, n, [&](uint64_t key, uint64_t nOffset, uint32_t nDone, uint32_t nPiece) {
        char *pDest = pPage(key);
        bSetDirty(key);
        std::memcpy(pDest + nOffset, pBytes + nDone, nPiece);
    });
    m_nPos += n;
}

bool CCachedFile::bLeesObject(uint64_t key, void **pp) {
    // Cleared, so that what lies behind a short read at the end of the file is zero.
    void *pBlock = std::calloc(1, m_nPageSize);
    if (!pBlock) throw std::bad_alloc();
    try {
        ReadAt(m_File, key, pBlock, m_nPageSize);
    } catch (...) {
        std::free(pBlock);
        throw;
    }
    *pp = pBlock;
    return true;
}

void CCachedFile::SchrijfObject(uint64_t key, void *p) {
    WriteAt(m_File, key, p, m_nPageSize); // always the whole page
}

void CCachedFile::DeleteObject(void *p) {
    std::free(p);
}

} // namespace vx
