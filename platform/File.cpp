#include "platform/File.h"

#include "platform/CodePage.h"
#include "platform/Errors.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vx {

namespace {

const char *CauseText(int cause) {
    static const char *const texts[] = {"no error",
                                        "unspecified error",
                                        "file not found",
                                        "bad path",
                                        "too many open files",
                                        "access denied",
                                        "invalid file",
                                        "cannot remove the current directory",
                                        "directory full",
                                        "bad seek",
                                        "hardware I/O error",
                                        "sharing violation",
                                        "lock violation",
                                        "disk full",
                                        "end of file"};
    return cause >= 0 && cause <= CFileException::endOfFile ? texts[cause] : "unknown cause";
}

// The open(2) flags for the access, creation and truncation bits of an open mode. Truncation
// waits until the sharing lock is held, so it is not among them.
int OpenFlagsOf(unsigned int nOpenFlags) {
    int flags = O_CLOEXEC;
    switch (nOpenFlags & 3u) {
    case CFile::modeRead:
        flags |= O_RDONLY;
        break;
    case CFile::modeWrite:
        flags |= O_WRONLY;
        break;
    default:
        flags |= O_RDWR;
        break;
    }
    if (nOpenFlags & CFile::modeCreate) flags |= O_CREAT;
    return flags;
}

// The flock operation that emulates the sharing mode, or 0 for none. No share bits (the old
// compatibility mode) and shareDenyRead are exclusive, as on the original platform; flock cannot
// express "deny readers only".
int SharingLockOf(unsigned int nOpenFlags) {
    switch (nOpenFlags & 0x70u) {
    case CFile::shareDenyNone:
        return 0;
    case CFile::shareDenyWrite:
        return LOCK_SH | LOCK_NB;
    default:
        return LOCK_EX | LOCK_NB;
    }
}

// Writes all n bytes to the descriptor; returns false with errno set on failure.
bool WriteAll(int fd, const char *data, size_t n) {
    while (n > 0) {
        const ssize_t done = ::write(fd, data, n);
        if (done < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        data += done;
        n -= static_cast<size_t>(done);
    }
    return true;
}

// The descriptor is closed whatever close(2) says; EINTR is no failure on Linux.
int CloseDescriptor(int fd) {
    const int rc = ::close(fd);
    return rc == 0 || errno == EINTR ? 0 : errno;
}

} // namespace

// ---------------------------------------------------------------------------------------------
// CFileException

CFileException::CFileException(int cause, int32_t lOsError, const CVXString &strFileName)
    : m_cause(cause), m_lOsError(lOsError), m_strFileName(strFileName) {
    m_what = "CFileException: ";
    m_what += CauseText(cause);
    if (lOsError != 0) {
        m_what += " (";
        m_what += std::strerror(lOsError);
        m_what += ")";
    }
    if (!strFileName.IsEmpty()) {
        m_what += ": ";
        m_what += static_cast<const char *>(strFileName);
    }
}

int CFileException::OsErrorToException(int32_t lOsError) {
    switch (lOsError) {
    case 0:
        return none;
    case ENOENT:
        return fileNotFound;
    case ENOTDIR:
    case ENAMETOOLONG:
    case ELOOP:
    case EXDEV:
        return badPath;
    case EMFILE:
    case ENFILE:
        return tooManyOpenFiles;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
    case EEXIST:
    case ETXTBSY:
        return accessDenied;
    case EBADF:
        return invalidFile;
    case EBUSY:
    case ENOTEMPTY:
        return removeCurrentDir;
    case EINVAL:
    case ESPIPE:
    case EOVERFLOW:
        return badSeek;
    case EIO:
        return hardIO;
    case EWOULDBLOCK:
        return sharingViolation;
    case EDEADLK:
    case ENOLCK:
        return lockViolation;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return diskFull;
    default:
        return genericException;
    }
}

void CFileException::ThrowOsError(int32_t lOsError, const CVXString &strFileName) {
    throw CFileException(OsErrorToException(lOsError), lOsError, strFileName);
}

// ---------------------------------------------------------------------------------------------
// CFile

CFile::CFile(const CVXString &path, unsigned int nOpenFlags) {
    CFileException error;
    if (!Open(path, nOpenFlags, &error)) throw error;
}

CFile::~CFile() {
    if (m_hFile >= 0) ::close(m_hFile);
}

bool CFile::Open(const CVXString &path, unsigned int nOpenFlags, CFileException *pError) {
    auto fail = [&](int cause, int err) {
        if (pError) *pError = CFileException(cause, err, path);
        return false;
    };
    if (m_hFile >= 0) return fail(CFileException::genericException, 0);
    if ((nOpenFlags & 3u) == 3u) return fail(CFileException::genericException, EINVAL);
    const int fd = ::open(static_cast<const char *>(path), OpenFlagsOf(nOpenFlags), 0666);
    if (fd < 0) return fail(CFileException::OsErrorToException(errno), errno);
    // A directory opens for reading on Linux; as a file it is refused.
    struct stat st {};
    if (::fstat(fd, &st) == 0 && S_ISDIR(st.st_mode)) {
        ::close(fd);
        return fail(CFileException::accessDenied, EISDIR);
    }
    const int lock = SharingLockOf(nOpenFlags);
    if (lock != 0 && ::flock(fd, lock) != 0) {
        const int err = errno;
        ::close(fd);
        return fail(err == EWOULDBLOCK ? CFileException::sharingViolation
                                       : CFileException::OsErrorToException(err),
                    err);
    }
    const bool bTruncate = (nOpenFlags & modeCreate) && !(nOpenFlags & modeNoTruncate);
    if (bTruncate && ::ftruncate(fd, 0) != 0) {
        const int err = errno;
        ::close(fd);
        return fail(CFileException::OsErrorToException(err), err);
    }
    m_hFile = fd;
    m_strFileName = path;
    return true;
}

void CFile::ThrowLastError() const {
    CFileException::ThrowOsError(errno, m_strFileName);
}

int CFile::Handle() const {
    if (m_hFile < 0) throw CFileException(CFileException::invalidFile, EBADF, m_strFileName);
    return m_hFile;
}

unsigned int CFile::Read(void *lpBuf, unsigned int nCount) {
    // One read, as the original platform did: a regular file delivers all it has, a pipe or a
    // device what is there.
    const int fd = Handle();
    for (;;) {
        const ssize_t n = ::read(fd, lpBuf, nCount);
        if (n >= 0) return static_cast<unsigned int>(n);
        if (errno != EINTR) ThrowLastError();
    }
}

void CFile::Write(const void *lpBuf, unsigned int nCount) {
    if (!WriteAll(Handle(), static_cast<const char *>(lpBuf), nCount)) ThrowLastError();
}

uint64_t CFile::Seek(int64_t lOff, unsigned int nFrom) {
    static const int whence[] = {SEEK_SET, SEEK_CUR, SEEK_END};
    if (nFrom > end) throw CFileException(CFileException::badSeek, EINVAL, m_strFileName);
    const off_t pos = ::lseek(Handle(), static_cast<off_t>(lOff), whence[nFrom]);
    if (pos < 0) ThrowLastError();
    return static_cast<uint64_t>(pos);
}

uint64_t CFile::GetLength() const {
    struct stat st {};
    if (::fstat(Handle(), &st) != 0) ThrowLastError();
    return static_cast<uint64_t>(st.st_size);
}

void CFile::SetLength(uint64_t nNewLen) {
    if (nNewLen > static_cast<uint64_t>(INT64_MAX))
        throw CFileException(CFileException::badSeek, EINVAL, m_strFileName);
    if (::ftruncate(Handle(), static_cast<off_t>(nNewLen)) != 0) ThrowLastError();
}

uint64_t CFile::GetPosition() const {
    const off_t pos = ::lseek(Handle(), 0, SEEK_CUR);
    if (pos < 0) ThrowLastError();
    return static_cast<uint64_t>(pos);
}

void CFile::Flush() {
    // Pipes and terminals cannot be synchronised; that is no failure of the file.
    if (::fsync(Handle()) != 0 && errno != EINVAL && errno != EROFS) ThrowLastError();
}

void CFile::Close() {
    if (m_hFile < 0) return;
    const int err = CloseDescriptor(m_hFile);
    m_hFile = -1;
    if (err != 0) CFileException::ThrowOsError(err, m_strFileName);
}

void CFile::Abort() {
    if (m_hFile >= 0) ::close(m_hFile);
    m_hFile = -1;
}

void CFile::LockRange(uint64_t dwPos, uint64_t dwCount) {
    const int fd = Handle();
    struct flock lock {};
    lock.l_type =
        static_cast<short>((::fcntl(fd, F_GETFL) & O_ACCMODE) == O_RDONLY ? F_RDLCK : F_WRLCK);
    lock.l_whence = SEEK_SET;
    lock.l_start = static_cast<off_t>(dwPos);
    lock.l_len = static_cast<off_t>(dwCount);
    if (::fcntl(fd, F_SETLK, &lock) != 0)
        throw CFileException(CFileException::lockViolation, errno, m_strFileName);
}

void CFile::UnlockRange(uint64_t dwPos, uint64_t dwCount) {
    struct flock lock {};
    lock.l_type = F_UNLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = static_cast<off_t>(dwPos);
    lock.l_len = static_cast<off_t>(dwCount);
    if (::fcntl(Handle(), F_SETLK, &lock) != 0)
        throw CFileException(CFileException::lockViolation, errno, m_strFileName);
}

unsigned int CFile::GetBufferPtr(unsigned int, unsigned int, void **, void **) {
    return 0;
}

CVXString CFile::GetFileName() const {
    const int slash = m_strFileName.ReverseFind(u'/');
    return slash < 0 ? m_strFileName : m_strFileName.Mid(slash + 1);
}

void CFile::Remove(const CVXString &path) {
    if (::unlink(static_cast<const char *>(path)) != 0) CFileException::ThrowOsError(errno, path);
}

void CFile::Rename(const CVXString &oldPath, const CVXString &newPath) {
    if (::rename(static_cast<const char *>(oldPath), static_cast<const char *>(newPath)) != 0)
        CFileException::ThrowOsError(errno, oldPath);
}

// ---------------------------------------------------------------------------------------------
// CStdioFile

namespace {
constexpr size_t kStdioBufferSize = 4096;
} // namespace

CStdioFile::CStdioFile(const CVXString &path, unsigned int nOpenFlags) {
    CFileException error;
    if (!Open(path, nOpenFlags, &error)) throw error;
}

CStdioFile::~CStdioFile() {
    if (m_hFile >= 0 && !m_writeBuf.empty())
        WriteAll(m_hFile, m_writeBuf.data(), m_writeBuf.size());
}

bool CStdioFile::Open(const CVXString &path, unsigned int nOpenFlags, CFileException *pError) {
    if (!CFile::Open(path, nOpenFlags, pError)) return false;
    m_bText = (nOpenFlags & typeText) != 0;
    m_writeBuf.clear();
    m_readBuf.clear();
    m_nReadPos = 0;
    return true;
}

void CStdioFile::FlushBuffer() const {
    if (m_writeBuf.empty()) return;
    if (!WriteAll(Handle(), m_writeBuf.data(), m_writeBuf.size())) ThrowLastError();
    m_writeBuf.clear();
}

void CStdioFile::DropReadAhead() {
    const size_t nUnread = m_readBuf.size() - m_nReadPos;
    m_readBuf.clear();
    m_nReadPos = 0;
    if (nUnread > 0) CFile::Seek(-static_cast<int64_t>(nUnread), current);
}

bool CStdioFile::FillBuffer() {
    m_readBuf.resize(kStdioBufferSize);
    const unsigned int n = CFile::Read(m_readBuf.data(), kStdioBufferSize);
    m_readBuf.resize(n);
    m_nReadPos = 0;
    return n > 0;
}

bool CStdioFile::ReadString(CVXString &line) {
    FlushBuffer();
    std::string bytes;
    bool bAny = false;
    for (;;) {
        if (m_nReadPos >= m_readBuf.size() && !FillBuffer()) break;
        bAny = true;
        const size_t nl = m_readBuf.find('\n', m_nReadPos);
        const size_t stop = nl == std::string::npos ? m_readBuf.size() : nl;
        bytes.append(m_readBuf, m_nReadPos, stop - m_nReadPos);
        m_nReadPos = nl == std::string::npos ? stop : nl + 1;
        if (nl != std::string::npos) break;
    }
    if (!bAny) return false;
    if (m_bText && !bytes.empty() && bytes.back() == '\r') bytes.pop_back();
    const std::u16string wide = CodePageToWide(bytes.data(), bytes.size());
    line = CVXString(wide.c_str());
    return true;
}

void CStdioFile::WriteString(const CVXString &text) {
    const char16_t *wide = text;
    std::string bytes = WideToCodePage(wide, static_cast<size_t>(text.GetLength()));
    if (m_bText) {
        std::string withCr;
        withCr.reserve(bytes.size());
        for (char ch : bytes) {
            if (ch == '\n') withCr += '\r';
            withCr += ch;
        }
        bytes.swap(withCr);
    }
    Write(bytes.data(), static_cast<unsigned int>(bytes.size()));
}

unsigned int CStdioFile::Read(void *lpBuf, unsigned int nCount) {
    FlushBuffer();
    const size_t nBuffered = std::min<size_t>(nCount, m_readBuf.size() - m_nReadPos);
    if (nBuffered > 0) std::memcpy(lpBuf, m_readBuf.data() + m_nReadPos, nBuffered);
    m_nReadPos += nBuffered;
    const unsigned int nRest = nCount - static_cast<unsigned int>(nBuffered);
    return static_cast<unsigned int>(nBuffered) +
           (nRest > 0 ? CFile::Read(static_cast<char *>(lpBuf) + nBuffered, nRest) : 0);
}

void CStdioFile::Write(const void *lpBuf, unsigned int nCount) {
    Handle();
    if (nCount == 0) return;
    DropReadAhead();
    m_writeBuf.append(static_cast<const char *>(lpBuf), nCount);
    if (m_writeBuf.size() >= kStdioBufferSize) FlushBuffer();
}

uint64_t CStdioFile::Seek(int64_t lOff, unsigned int nFrom) {
    FlushBuffer();
    if (nFrom == current) lOff -= static_cast<int64_t>(m_readBuf.size() - m_nReadPos);
    m_readBuf.clear();
    m_nReadPos = 0;
    return CFile::Seek(lOff, nFrom);
}

uint64_t CStdioFile::GetLength() const {
    FlushBuffer();
    return CFile::GetLength();
}

void CStdioFile::SetLength(uint64_t nNewLen) {
    FlushBuffer();
    DropReadAhead();
    CFile::SetLength(nNewLen);
}

uint64_t CStdioFile::GetPosition() const {
    return CFile::GetPosition() + m_writeBuf.size() - (m_readBuf.size() - m_nReadPos);
}

void CStdioFile::Flush() {
    FlushBuffer();
    CFile::Flush();
}

void CStdioFile::Close() {
    if (m_hFile < 0) return;
    try {
        FlushBuffer();
    } catch (...) {
        Abort();
        throw;
    }
    m_readBuf.clear();
    m_nReadPos = 0;
    CFile::Close();
}

void CStdioFile::Abort() {
    m_writeBuf.clear();
    m_readBuf.clear();
    m_nReadPos = 0;
    CFile::Abort();
}

// ---------------------------------------------------------------------------------------------
// CMemFile

CMemFile::CMemFile(unsigned int nGrowBytes) : m_nGrowBytes(nGrowBytes) {}

CMemFile::CMemFile(unsigned char *lpBuffer, unsigned int nBufferSize, unsigned int nGrowBytes) {
    Attach(lpBuffer, nBufferSize, nGrowBytes);
}

CMemFile::~CMemFile() {
    Release();
}

void CMemFile::Release() noexcept {
    if (m_bAutoDelete) std::free(m_lpBuffer);
    m_lpBuffer = nullptr;
    m_nBufferSize = m_nFileSize = m_nPosition = 0;
    m_bAutoDelete = true;
}

void CMemFile::Attach(unsigned char *lpBuffer, unsigned int nBufferSize, unsigned int nGrowBytes) {
    Release();
    m_lpBuffer = lpBuffer;
    m_nBufferSize = lpBuffer ? nBufferSize : 0;
    m_nFileSize = nGrowBytes == 0 ? m_nBufferSize : 0;
    m_nGrowBytes = nGrowBytes;
    m_bAutoDelete = false;
}

unsigned char *CMemFile::Detach() {
    unsigned char *buffer = m_lpBuffer;
    m_lpBuffer = nullptr;
    m_bAutoDelete = true;
    Release();
    return buffer;
}

bool CMemFile::Open(const CVXString &path, unsigned int, CFileException *pError) {
    // A memory file has no path to open.
    if (pError) *pError = CFileException(CFileException::genericException, 0, path);
    return false;
}

// Makes the buffer hold at least nNewLen bytes, rounded up to the grow step.
void CMemFile::GrowFile(uint64_t nNewLen) {
    if (nNewLen <= m_nBufferSize) return;
    if (m_nGrowBytes == 0) throw CFileException(CFileException::diskFull, 0, m_strFileName);
    const uint64_t nNewSize = (nNewLen + m_nGrowBytes - 1) / m_nGrowBytes * m_nGrowBytes;
    unsigned char *pNew = nullptr;
    if (m_bAutoDelete) {
        pNew = static_cast<unsigned char *>(std::realloc(m_lpBuffer, nNewSize));
    } else {
        pNew = static_cast<unsigned char *>(std::malloc(nNewSize));
        if (pNew && m_nFileSize > 0) std::memcpy(pNew, m_lpBuffer, m_nFileSize);
    }
    if (!pNew) throw std::bad_alloc();
    m_lpBuffer = pNew;
    m_nBufferSize = nNewSize;
    m_bAutoDelete = true;
}

unsigned int CMemFile::Read(void *lpBuf, unsigned int nCount) {
    if (m_nPosition >= m_nFileSize) return 0;
    const uint64_t n = std::min<uint64_t>(nCount, m_nFileSize - m_nPosition);
    if (n > 0) std::memcpy(lpBuf, m_lpBuffer + m_nPosition, n);
    m_nPosition += n;
    return static_cast<unsigned int>(n);
}

void CMemFile::Write(const void *lpBuf, unsigned int nCount) {
    if (nCount == 0) return;
    GrowFile(m_nPosition + nCount);
    // A gap left by a seek past the end reads as zeros.
    if (m_nPosition > m_nFileSize)
        std::memset(m_lpBuffer + m_nFileSize, 0, m_nPosition - m_nFileSize);
    std::memcpy(m_lpBuffer + m_nPosition, lpBuf, nCount);
    m_nPosition += nCount;
    m_nFileSize = std::max(m_nFileSize, m_nPosition);
}

uint64_t CMemFile::Seek(int64_t lOff, unsigned int nFrom) {
    int64_t base = 0;
    if (nFrom == current)
        base = static_cast<int64_t>(m_nPosition);
    else if (nFrom == end)
        base = static_cast<int64_t>(m_nFileSize);
    else if (nFrom != begin)
        throw CFileException(CFileException::badSeek, EINVAL, m_strFileName);
    if ((lOff < 0 && base + lOff < 0) || (lOff > 0 && base > INT64_MAX - lOff))
        throw CFileException(CFileException::badSeek, EINVAL, m_strFileName);
    m_nPosition = static_cast<uint64_t>(base + lOff);
    return m_nPosition;
}

void CMemFile::SetLength(uint64_t nNewLen) {
    GrowFile(nNewLen);
    if (nNewLen > m_nFileSize) std::memset(m_lpBuffer + m_nFileSize, 0, nNewLen - m_nFileSize);
    m_nFileSize = nNewLen;
    m_nPosition = std::min(m_nPosition, nNewLen);
}

void CMemFile::Close() {
    Release();
}

void CMemFile::Abort() {
    Release();
}

unsigned int CMemFile::GetBufferPtr(unsigned int nCommand, unsigned int nCount, void **ppBufStart,
                                    void **ppBufMax) {
    if (nCommand == bufferCheck) return bufferDirect;
    if (nCommand == bufferCommit) {
        if (m_nPosition + nCount > m_nBufferSize)
            throw CInvalidArgException("commit beyond the buffer");
        m_nPosition += nCount;
        m_nFileSize = std::max(m_nFileSize, m_nPosition);
        return 0;
    }
    if (nCommand != bufferRead && nCommand != bufferWrite)
        throw CInvalidArgException("unknown buffer command");
    if (!ppBufStart || !ppBufMax) throw CInvalidArgException("null buffer pointer");
    uint64_t nAvail = 0;
    if (nCommand == bufferWrite) {
        GrowFile(m_nPosition + nCount);
        if (m_nPosition > m_nFileSize)
            std::memset(m_lpBuffer + m_nFileSize, 0, m_nPosition - m_nFileSize);
        nAvail = std::min<uint64_t>(nCount, m_nBufferSize - m_nPosition);
    } else if (m_nPosition < m_nFileSize) {
        nAvail = std::min<uint64_t>(nCount, m_nFileSize - m_nPosition);
    }
    unsigned char *start = m_lpBuffer ? m_lpBuffer + std::min(m_nPosition, m_nBufferSize) : nullptr;
    *ppBufStart = start;
    *ppBufMax = start ? start + nAvail : nullptr;
    if (nCommand == bufferRead) m_nPosition += nAvail;
    return static_cast<unsigned int>(nAvail);
}

} // namespace vx
