// Files: the unbuffered binary file over a POSIX descriptor, the buffered text file and the file
// in memory, with the file exception that carries a cause, the system error and the path.
//
// Paths reach the system through the 8-bit view of CVXString (the process code page). The
// sharing modes of the original platform have no Linux counterpart; they are emulated with
// advisory flock locks that every CFile takes: shareExclusive (and no share mode at all) takes
// an exclusive lock, shareDenyWrite a shared one, shareDenyNone none. A conflicting open fails
// with sharingViolation. Programs that do not use CFile are not held back by these locks.
#pragma once

#include "platform/VXExport.h"

#include "platform/VXString.h"

#include <cstdint>
#include <exception>
#include <string>

namespace vx VX_API {

class CFileException : public std::exception {
public:
    enum Cause {
        none = 0,
        genericException = 1,
        fileNotFound = 2,
        badPath = 3,
        tooManyOpenFiles = 4,
        accessDenied = 5,
        invalidFile = 6,
        removeCurrentDir = 7,
        directoryFull = 8,
        badSeek = 9,
        hardIO = 10,
        sharingViolation = 11,
        lockViolation = 12,
        diskFull = 13,
        endOfFile = 14
    };

    explicit CFileException(int cause = none, int32_t lOsError = 0,
                            const CVXString &strFileName = CVXString());

    // The cause that a system error number (errno) stands for.
    static int OsErrorToException(int32_t lOsError);
    // Raises the exception for errno value lOsError on the file.
    [[noreturn]] static void ThrowOsError(int32_t lOsError, const CVXString &strFileName);

    const char *what() const noexcept override { return m_what.c_str(); }

    int m_cause;
    int32_t m_lOsError;
    CVXString m_strFileName;

private:
    std::string m_what;
};

class CFile {
public:
    enum OpenFlags : unsigned int {
        modeRead = 0x0000,
        modeWrite = 0x0001,
        modeReadWrite = 0x0002,
        shareCompat = 0x0000,
        shareExclusive = 0x0010,
        shareDenyWrite = 0x0020,
        shareDenyRead = 0x0030,
        shareDenyNone = 0x0040,
        modeCreate = 0x1000,
        modeNoTruncate = 0x2000,
        typeText = 0x4000,
        typeBinary = 0x8000
    };
    enum SeekPosition : unsigned int { begin = 0, current = 1, end = 2 };
    // Commands of GetBufferPtr (direct access to a memory file's buffer).
    enum BufferCommand : unsigned int {
        bufferRead = 0,
        bufferWrite = 1,
        bufferCommit = 2,
        bufferCheck = 3
    };
    // The answer of GetBufferPtr(bufferCheck) for a file with a direct buffer.
    enum BufferFlags : unsigned int { bufferDirect = 0x01 };

    CFile() = default;
    // Opens the file; raises CFileException on failure.
    CFile(const CVXString &path, unsigned int nOpenFlags);
    CFile(const CFile &) = delete;
    CFile &operator=(const CFile &) = delete;
    // Closes an open file, ignoring errors.
    virtual ~CFile();

    // Opens the file. On failure returns false and, when given, fills *pError.
    virtual bool Open(const CVXString &path, unsigned int nOpenFlags,
                      CFileException *pError = nullptr);
    // Reads up to nCount bytes; returns the number read, 0 at the end of the file.
    virtual unsigned int Read(void *lpBuf, unsigned int nCount);
    // Writes all nCount bytes or raises (diskFull when the device is full).
    virtual void Write(const void *lpBuf, unsigned int nCount);
    // Moves the file pointer; returns the new position from the start.
    virtual uint64_t Seek(int64_t lOff, unsigned int nFrom);
    void SeekToBegin() { Seek(0, begin); }
    uint64_t SeekToEnd() { return Seek(0, end); }
    virtual uint64_t GetLength() const;
    virtual void SetLength(uint64_t nNewLen);
    virtual uint64_t GetPosition() const;
    virtual void Flush();
    // Closes the file; raises CFileException when the system reports an error.
    virtual void Close();
    // Closes the file, ignoring errors.
    virtual void Abort();
    // Locks or unlocks a byte range (POSIX record locks); a held range raises lockViolation.
    virtual void LockRange(uint64_t dwPos, uint64_t dwCount);
    virtual void UnlockRange(uint64_t dwPos, uint64_t dwCount);
    // Direct buffer access: 0 for a file without a direct buffer (see CMemFile).
    virtual unsigned int GetBufferPtr(unsigned int nCommand, unsigned int nCount = 0,
                                      void **ppBufStart = nullptr, void **ppBufMax = nullptr);

    // The full path as given to Open, and its last component.
    const CVXString &GetFilePath() const noexcept { return m_strFileName; }
    CVXString GetFileName() const;
    bool IsOpen() const noexcept { return m_hFile >= 0; }
    int GetHandle() const noexcept { return m_hFile; }

    static void Remove(const CVXString &path);
    static void Rename(const CVXString &oldPath, const CVXString &newPath);

protected:
    // Raises CFileException for the current errno on this file.
    [[noreturn]] void ThrowLastError() const;
    // The descriptor, or raises invalidFile when the file is not open.
    int Handle() const;

    int m_hFile = -1;
    CVXString m_strFileName;
};

// A buffered file with text lines. With typeText the file has Windows line ends: "\r\n" reads
// as the end of a line and a "\n" written becomes "\r\n"; without it lines end at "\n" and bytes
// pass unchanged. Lines are 8-bit text in the process code page.
class CStdioFile : public CFile {
public:
    CStdioFile() = default;
    CStdioFile(const CVXString &path, unsigned int nOpenFlags);
    ~CStdioFile() override;

    bool Open(const CVXString &path, unsigned int nOpenFlags,
              CFileException *pError = nullptr) override;
    // Reads the next line without its line end; false at the end of the file.
    bool ReadString(CVXString &line);
    // Writes the text; line ends are in the text.
    void WriteString(const CVXString &text);

    unsigned int Read(void *lpBuf, unsigned int nCount) override;
    void Write(const void *lpBuf, unsigned int nCount) override;
    uint64_t Seek(int64_t lOff, unsigned int nFrom) override;
    uint64_t GetLength() const override;
    void SetLength(uint64_t nNewLen) override;
    uint64_t GetPosition() const override;
    void Flush() override;
    void Close() override;
    void Abort() override;

private:
    // Writes the buffered bytes to the descriptor.
    void FlushBuffer() const;
    // Gives the unread bytes of the read buffer back by moving the descriptor's position.
    void DropReadAhead();
    bool FillBuffer();

    bool m_bText = false;
    mutable std::string m_writeBuf;
    mutable std::string m_readBuf;
    mutable size_t m_nReadPos = 0;
};

// A file in a growable memory buffer. With a grow step of 0 the buffer is fixed and writing
// beyond it raises diskFull.
class CMemFile : public CFile {
public:
    explicit CMemFile(unsigned int nGrowBytes = 1024);
    // Works on the caller's buffer (see Attach).
    CMemFile(unsigned char *lpBuffer, unsigned int nBufferSize, unsigned int nGrowBytes = 0);
    ~CMemFile() override;

    // Takes the caller's buffer. With nGrowBytes 0 the file is the whole buffer, fixed in size;
    // otherwise the file starts empty and, when it outgrows the buffer, moves to a buffer of its
    // own (the caller's buffer is never freed or reallocated by the file).
    void Attach(unsigned char *lpBuffer, unsigned int nBufferSize, unsigned int nGrowBytes = 0);
    // Hands the buffer back and leaves the file empty. A buffer the file allocated itself was
    // allocated with malloc and the caller frees it with free.
    unsigned char *Detach();

    // The contents, GetLength() bytes.
    const unsigned char *GetData() const noexcept { return m_lpBuffer; }

    bool Open(const CVXString &path, unsigned int nOpenFlags,
              CFileException *pError = nullptr) override;
    unsigned int Read(void *lpBuf, unsigned int nCount) override;
    void Write(const void *lpBuf, unsigned int nCount) override;
    uint64_t Seek(int64_t lOff, unsigned int nFrom) override;
    uint64_t GetLength() const override { return m_nFileSize; }
    void SetLength(uint64_t nNewLen) override;
    uint64_t GetPosition() const override { return m_nPosition; }
    void Flush() override {}
    void Close() override;
    void Abort() override;
    void LockRange(uint64_t, uint64_t) override {}
    void UnlockRange(uint64_t, uint64_t) override {}
    // bufferCheck answers bufferDirect. bufferRead gives the next min(nCount, rest) bytes and
    // moves the position past them; bufferWrite makes room for nCount bytes at the position
    // and gives it; bufferCommit moves the position by nCount bytes written there. Returns the
    // number of bytes between *ppBufStart and *ppBufMax (0 for bufferCommit).
    unsigned int GetBufferPtr(unsigned int nCommand, unsigned int nCount = 0,
                              void **ppBufStart = nullptr, void **ppBufMax = nullptr) override;

private:
    void GrowFile(uint64_t nNewLen);
    void Release() noexcept;

    unsigned char *m_lpBuffer = nullptr;
    uint64_t m_nBufferSize = 0;
    uint64_t m_nFileSize = 0;
    uint64_t m_nPosition = 0;
    unsigned int m_nGrowBytes = 1024;
    bool m_bAutoDelete = true;
};

} // namespace VX_API
