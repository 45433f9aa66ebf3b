// CArchiveB: the binary archive. A buffered, one-direction stream over a file that turns a graph
// of ISerObject objects and plain values into bytes and back.
//
// The format has no header, magic or trailer; numbers are little-endian without alignment.
// Objects are written once, a second mention is a back-reference; each class is named once and
// referred to by index afterwards. Classes and objects share one numbering that starts at 1
// (0 is the null object); a new object takes its index before its fields are written or read,
// so an object can refer to itself or to its parent.
//
// Object tags (16 bits): 0x0000 null; 0x0001..0x7FFE a reference to that object; 0x7FFF a big
// tag followed by a u32 (high bit set: a class index, then the object's fields; clear: an object
// reference); 0x8001..0xFFFE a new object of class (tag & 0x7FFF); 0xFFFF a new class definition
// and a new object of it.
//
// A hostile stream raises CArchiveBException and never makes the archive allocate beyond what
// the rest of the stream could hold: counts and string lengths are checked against the bytes
// left before anything is sized by them, and objects nest at most kMaxDepth deep.
#pragma once

#include "platform/VXExport.h"

#include "persist/PointerIndex.h"
#include "platform/File.h"
#include "platform/VXString.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <exception>
#include <map>
#include <string>
#include <vector>

namespace vx VX_API {

class ISerObject;
class CRuntimeCreator;

class CArchiveBException : public std::exception {
public:
    enum Cause {
        endOfFile = 0,
        readOnly = 1,
        writeOnly = 2,
        badIndex = 3,
        badClass = 4,
        genericException = 5,
        badSchema = 6
    };
    explicit CArchiveBException(int cause, const CVXString &fileName = CVXString());
    // The same with the system's reason (a full disk, an I/O error) added to the text.
    CArchiveBException(int cause, const CVXString &fileName, const std::string &reason);
    const char *what() const noexcept override { return m_what.c_str(); }
    // The system's reason given at construction, empty when none.
    const std::string &Reason() const noexcept { return m_reason; }

    int m_cause;
    CVXString m_strFileName;

private:
    std::string m_what;
    std::string m_reason;
};

class CArchiveB {
public:
    enum Mode : unsigned int { store = 0, load = 1, bNoFlushOnDelete = 2 };
    // The deepest nesting of objects a loaded stream may have.
    static constexpr int kMaxDepth = 2000;
    // The buffer of an archive that is given no size, as the public signature has it.
    static constexpr int kDefaultBufferSize = 4096;
    // The buffer the library's own whole-file loads and saves use. Larger than a page on
    // purpose: each refill or flush is a call into the system, and at 4 KiB those calls took a
    // third of the time of writing a million points; 64 KiB was the fastest of 16, 32 and 64 KiB
    // measured. Hosts that make their own archives may pass it too.
    static constexpr int kLargeBufferSize = 64 * 1024;

    CArchiveB(CFile *file, unsigned int mode, int bufferSize = kDefaultBufferSize,
              void *buffer = nullptr);
    ~CArchiveB();
    CArchiveB(const CArchiveB &) = delete;
    CArchiveB &operator=(const CArchiveB &) = delete;

    bool IsLoading() const { return (m_nMode & load) != 0; }
    bool IsStoring() const { return (m_nMode & load) == 0; }
    bool IsBufferEmpty() const { return m_lpBufCur == m_lpBufMax; }
    CFile *GetFile() const { return m_pFile; }

    void Flush();
    void Close();
    void Abort();

    // Reads up to `size` bytes; a short count at the end of the file is no failure here.
    unsigned int Read(void *buffer, unsigned int size);
    // Reads exactly `size` bytes or raises endOfFile.
    void EnsureRead(void *buffer, unsigned int size);
    void Write(const void *buffer, unsigned int size);
    // Keeps what is unread, moves it to the start and fills; endOfFile if `size` more bytes
    // cannot be had.
    void FillBuffer(unsigned int size);

    // Plain values, little-endian.
    CArchiveB &operator<<(char v) { return Put(v); }
    CArchiveB &operator<<(signed char v) { return Put(v); }
    CArchiveB &operator<<(unsigned char v) { return Put(v); }
    CArchiveB &operator<<(bool v) { return Put(static_cast<unsigned char>(v ? 1 : 0)); }
    CArchiveB &operator<<(int16_t v) { return Put(v); }
    CArchiveB &operator<<(uint16_t v) { return Put(v); }
    CArchiveB &operator<<(char16_t v) { return Put(v); }
    CArchiveB &operator<<(int32_t v) { return Put(v); }
    CArchiveB &operator<<(uint32_t v) { return Put(v); }
    CArchiveB &operator<<(int64_t v) { return Put(v); }
    CArchiveB &operator<<(uint64_t v) { return Put(v); }
    CArchiveB &operator<<(float v) { return Put(v); }
    CArchiveB &operator<<(double v) { return Put(v); }
    CArchiveB &operator<<(const CVXString &text);

    CArchiveB &operator>>(char &v) { return Get(v); }
    CArchiveB &operator>>(signed char &v) { return Get(v); }
    CArchiveB &operator>>(unsigned char &v) { return Get(v); }
    CArchiveB &operator>>(bool &v) {
        unsigned char b;
        Get(b);
        v = b != 0;
        return *this;
    }
    CArchiveB &operator>>(int16_t &v) { return Get(v); }
    CArchiveB &operator>>(uint16_t &v) { return Get(v); }
    CArchiveB &operator>>(char16_t &v) { return Get(v); }
    CArchiveB &operator>>(int32_t &v) { return Get(v); }
    CArchiveB &operator>>(uint32_t &v) { return Get(v); }
    CArchiveB &operator>>(int64_t &v) { return Get(v); }
    CArchiveB &operator>>(uint64_t &v) { return Get(v); }
    CArchiveB &operator>>(float &v) { return Get(v); }
    CArchiveB &operator>>(double &v) { return Get(v); }
    CArchiveB &operator>>(CVXString &text);

    // Counts: below 0xFFFF one u16, otherwise 0xFFFF and a u32.
    void WriteCount(uint32_t n);
    uint32_t ReadCount();
    // A count of elements about to be read, each taking at least `minBytesPerElement` bytes of
    // the stream: raises endOfFile when the rest of the stream cannot hold them. Loaders call
    // it before they size anything by the count.
    uint32_t ReadCount(unsigned int minBytesPerElement);
    void CheckAvailable(uint64_t bytes);

    // The units of a text with no length and no mark; ReadString reads such text by lines.
    void WriteString(const CVXString &text);
    bool ReadString(CVXString &text);

    void WriteObject(const ISerObject *object);
    ISerObject *ReadObject(const CRuntimeCreator *requested);
    void WriteClass(const CRuntimeCreator *creator);
    const CRuntimeCreator *ReadClass(const CRuntimeCreator *requested, unsigned int *schema,
                                     uint32_t *tag);
    void SerializeClass(const CRuntimeCreator *creator);
    void MapObject(const ISerObject *object);
    // Storing: room for `count` more objects in the pointer map, before a run of them is
    // written, so that the map does not grow step by step. A hint: nothing is written.
    void ReserveObjects(uint32_t count);

    // Loading: a mark of the objects read from now on (see IsLoadedSince).
    uint32_t GetLoadMark() const { return m_nMapCount; }
    // Loading: true when this archive created `object` after `mark` was taken; false for an
    // object from before the mark (a back-reference) or one the archive did not create. A
    // container that owns its elements takes ownership only of the objects it read itself, so
    // that a hostile stream cannot make an object owned twice, nor a container own itself or
    // one of the objects that contain it.
    bool IsLoadedSince(const ISerObject *object, uint32_t mark) const;

    // The schema of the object being read; resets it, so a second call gives 0xFFFFFFFF.
    unsigned int GetObjectSchema();
    void SetObjectSchema(unsigned int schema) { m_nObjectSchema = schema; }
    void SetStoreParams(unsigned int hashSize = 2053, unsigned int blockSize = 128);
    void SetLoadParams(unsigned int growBy = 1024);
    void EnsureSchemaMapExists();

    const CVXString &GetFileName() const { return m_strFileName; }

private:
    enum LoadArrayObjType : uint8_t { typeUndefined = 0, typeClass = 1, typeObject = 2 };
    struct LoadEntry {
        const void *pointer;
        LoadArrayObjType kind;
        bool created; // made by ReadObject, not entered by MapObject
    };

    template <class T>
    CArchiveB &Put(T v) {
        if (!IsStoring()) Throw(CArchiveBException::readOnly);
        // Compared as a distance: the pointers are null before a memory file lends its buffer.
        if (m_lpBufMax - m_lpBufCur < static_cast<std::ptrdiff_t>(sizeof(T))) Flush();
        std::memcpy(m_lpBufCur, &v, sizeof(T));
        m_lpBufCur += sizeof(T);
        return *this;
    }
    template <class T>
    CArchiveB &Get(T &v) {
        if (!IsLoading()) Throw(CArchiveBException::writeOnly);
        const std::ptrdiff_t held = m_lpBufMax - m_lpBufCur;
        if (held < static_cast<std::ptrdiff_t>(sizeof(T)))
            FillBuffer(static_cast<unsigned int>(static_cast<std::ptrdiff_t>(sizeof(T)) - held));
        std::memcpy(&v, m_lpBufCur, sizeof(T));
        m_lpBufCur += sizeof(T);
        return *this;
    }

    [[noreturn]] void Throw(int cause) const;
    // The numbering is made at the first object or class of an archive.
    void EnsureMap() {
        if (!m_bMapMade) MakeMap();
    }
    void MakeMap();
    uint64_t BytesLeft() const;
    void WriteLength(uint64_t n);
    uint64_t ReadStringLength(unsigned &unitSize);
    void StartDirectWrite();
    void FillDirect(unsigned int size);
    // Runs a call on the file; its CFileException becomes this archive's exception.
    template <class F>
    auto OnFile(F call) -> decltype(call());

    // Fields in the order of the original layout.
    int m_bForceFlat = 1;
    int m_bDirectBuffer = 0;
    int m_bBlocking = 0;
    unsigned int m_nObjectSchema = 0xFFFFFFFFu;
    CVXString m_strFileName;
    unsigned int m_nMode;
    bool m_bUserBuf = false;
    int m_nBufSize;
    CFile *m_pFile;
    unsigned char *m_lpBufCur = nullptr;
    unsigned char *m_lpBufMax = nullptr;
    unsigned char *m_lpBufStart = nullptr;
    uint32_t m_nMapCount = 1;
    bool m_bMapMade = false;
    CPointerIndexMap m_storeMap; // storing: pointer to index
    // Storing: the class written last and its index, since runs of one class are the rule.
    const CRuntimeCreator *m_pLastClass = nullptr;
    uint32_t m_nLastClassIndex = 0;
    std::vector<LoadEntry> m_loadArray; // loading: index to pointer
    // Loading: created object to index, for IsLoadedSince. Only containers that own their
    // elements ask, so it is brought up to date when asked rather than for every object read.
    mutable CPointerIndexMap m_loadIndex;
    mutable uint32_t m_nLoadIndexed = 1; // the entries of m_loadArray below it are in m_loadIndex
    std::map<const CRuntimeCreator *, unsigned int> *m_pSchemaMap = nullptr;
    unsigned int m_nGrowSize;
    unsigned int m_nHashSize = 137;
    int m_nDepth = 0;
};

} // namespace VX_API
