#include "persist/ArchiveB.h"

#include "persist/LoadedObjects.h"
#include "persist/RuntimeCreator.h"
#include "persist/SerObject.h"
#include "platform/Bstr.h"
#include "platform/CodePage.h"
#include "platform/Errors.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <memory>

namespace vx {

static_assert(std::endian::native == std::endian::little,
              "the stored formats are little-endian and written without byte swapping");

namespace {

const char *CauseText(int cause) {
    static const char *const texts[] = {
        "end of file", "archive is loading",      "archive is storing", "bad object or class index",
        "bad class",   "generic archive failure", "bad schema"};
    return cause >= 0 && cause < 7 ? texts[cause] : "unknown archive failure";
}

constexpr uint16_t kNullTag = 0x0000;
constexpr uint16_t kBigTag = 0x7FFF;
constexpr uint16_t kNewClassTag = 0xFFFF;
constexpr uint16_t kClassTag = 0x8000;
constexpr uint32_t kBigClassTag = 0x80000000u;
constexpr uint32_t kMaxShortIndex = 0x7FFF;

// Restores the object schema and the nesting depth when an object's fields are done or fail.
class ObjectScope {
public:
    ObjectScope(unsigned int &schema, unsigned int newSchema, int &depth)
        : m_schema(schema), m_saved(schema), m_depth(depth) {
        m_schema = newSchema;
        ++m_depth;
    }
    ~ObjectScope() {
        m_schema = m_saved;
        --m_depth;
    }
    ObjectScope(const ObjectScope &) = delete;
    ObjectScope &operator=(const ObjectScope &) = delete;

private:
    unsigned int &m_schema;
    unsigned int m_saved;
    int &m_depth;
};

} // namespace

CArchiveBException::CArchiveBException(int cause, const CVXString &fileName)
    : m_cause(cause), m_strFileName(fileName) {
    m_what = std::string("binary archive: ") + CauseText(cause);
    if (!fileName.IsEmpty())
        m_what += std::string(" (") + static_cast<const char *>(fileName) + ")";
}

CArchiveBException::CArchiveBException(int cause, const CVXString &fileName,
                                       const std::string &reason)
    : CArchiveBException(cause, fileName) {
    m_reason = reason;
    m_what += ": " + reason;
}

// ---- construction ----

CArchiveB::CArchiveB(CFile *file, unsigned int mode, int bufferSize, void *buffer)
    : m_nMode(mode), m_nBufSize(bufferSize), m_pFile(file), m_nGrowSize((mode & load) ? 64 : 16) {
    if (m_nBufSize < 128) {
        m_nBufSize = 128;
        buffer = nullptr;
    }
    if (file) m_strFileName = file->GetFilePath();
    if (file && (file->GetBufferPtr(CFile::bufferCheck) & CFile::bufferDirect)) {
        // The file lends its own memory: no buffer of ours.
        m_bDirectBuffer = 1;
        m_bUserBuf = true;
        if (IsStoring()) StartDirectWrite();
        return;
    }
    if (buffer) {
        m_bUserBuf = true;
        m_lpBufStart = static_cast<unsigned char *>(buffer);
    } else {
        m_lpBufStart = new unsigned char[static_cast<size_t>(m_nBufSize)];
    }
    m_lpBufCur = m_lpBufStart;
    m_lpBufMax = IsStoring() ? m_lpBufStart + m_nBufSize : m_lpBufStart;
}

CArchiveB::~CArchiveB() {
    if (m_pFile && !(m_nMode & bNoFlushOnDelete)) {
        // A destructor cannot report: a caller who must know calls Close itself.
        try {
            Close();
        } catch (...) {
            Abort();
        }
    } else {
        Abort();
    }
    if (!m_bUserBuf) delete[] m_lpBufStart;
    delete m_pSchemaMap;
}

void CArchiveB::Throw(int cause) const {
    // At the end of the file the exception carries no file name.
    throw CArchiveBException(cause,
                             cause == CArchiveBException::endOfFile ? CVXString() : m_strFileName);
}

// ---- buffer ----

// A failing write (a full disk, a quota, an I/O error) must reach the caller as the archive's
// own exception, so that a caller that catches CArchiveBException never takes a truncated file
// for a saved one.
template <class F>
auto CArchiveB::OnFile(F call) -> decltype(call()) {
    try {
        return call();
    } catch (const CFileException &e) {
        const char *reason = e.m_lOsError != 0 ? std::strerror(e.m_lOsError) : e.what();
        throw CArchiveBException(CArchiveBException::genericException, m_strFileName, reason);
    }
}

void CArchiveB::StartDirectWrite() {
    void *start = nullptr, *max = nullptr;
    OnFile([&] {
        return m_pFile->GetBufferPtr(CFile::bufferWrite, static_cast<unsigned int>(m_nBufSize),
                                     &start, &max);
    });
    m_lpBufStart = m_lpBufCur = static_cast<unsigned char *>(start);
    m_lpBufMax = static_cast<unsigned char *>(max);
}

void CArchiveB::Flush() {
    if (!m_pFile) return;
    if (IsLoading()) {
        // Give back what is unread, so the file stands just behind the last byte consumed.
        const int64_t unread = m_lpBufMax - m_lpBufCur;
        if (unread > 0) OnFile([&] { return m_pFile->Seek(-unread, CFile::current); });
        m_lpBufCur = m_lpBufMax;
        return;
    }
    if (m_bDirectBuffer) {
        OnFile([&] {
            return m_pFile->GetBufferPtr(CFile::bufferCommit,
                                         static_cast<unsigned int>(m_lpBufCur - m_lpBufStart));
        });
        StartDirectWrite();
        return;
    }
    if (m_lpBufCur != m_lpBufStart)
        OnFile([&] {
            m_pFile->Write(m_lpBufStart, static_cast<unsigned int>(m_lpBufCur - m_lpBufStart));
        });
    m_lpBufCur = m_lpBufStart;
}

void CArchiveB::Close() {
    Flush();
    m_pFile = nullptr;
}

void CArchiveB::Abort() {
    m_pFile = nullptr;
    m_storeMap.Clear();
    m_pLastClass = nullptr;
    m_loadArray.clear();
    m_loadIndex.Clear();
    m_nLoadIndexed = 1;
    m_bMapMade = false;
}

uint64_t CArchiveB::BytesLeft() const {
    uint64_t left = static_cast<uint64_t>(m_lpBufMax - m_lpBufCur);
    if (m_pFile) {
        const uint64_t len = m_pFile->GetLength(), pos = m_pFile->GetPosition();
        if (len > pos) left += len - pos;
    }
    return left;
}

void CArchiveB::CheckAvailable(uint64_t bytes) {
    if (bytes > BytesLeft()) Throw(CArchiveBException::endOfFile);
}

void CArchiveB::FillDirect(unsigned int size) {
    // The memory file lends the bytes behind the ones it lent before, in one block.
    void *start = nullptr, *max = nullptr;
    const size_t unread = static_cast<size_t>(m_lpBufMax - m_lpBufCur);
    const unsigned int want = std::max(size, static_cast<unsigned int>(m_nBufSize));
    const unsigned int got = m_pFile->GetBufferPtr(CFile::bufferRead, want, &start, &max);
    if (m_lpBufCur == m_lpBufMax || static_cast<unsigned char *>(start) != m_lpBufMax) {
        // Nothing unread, or a new block: what was unread is lost unless it is contiguous.
        if (m_lpBufCur != m_lpBufMax) Throw(CArchiveBException::genericException);
        m_lpBufStart = m_lpBufCur = static_cast<unsigned char *>(start);
    }
    m_lpBufMax = static_cast<unsigned char *>(start) + got;
    if (static_cast<size_t>(m_lpBufMax - m_lpBufCur) < unread + size)
        Throw(CArchiveBException::endOfFile);
}

void CArchiveB::FillBuffer(unsigned int size) {
    if (!IsLoading()) Throw(CArchiveBException::writeOnly);
    if (!m_pFile) Throw(CArchiveBException::endOfFile);
    if (m_bDirectBuffer) {
        FillDirect(size);
        return;
    }
    const size_t unread = static_cast<size_t>(m_lpBufMax - m_lpBufCur);
    if (unread + size > static_cast<size_t>(m_nBufSize))
        Throw(CArchiveBException::genericException);
    std::memmove(m_lpBufStart, m_lpBufCur, unread);
    m_lpBufCur = m_lpBufStart;
    m_lpBufMax = m_lpBufStart + unread;
    unsigned char *const end = m_lpBufStart + m_nBufSize;
    while (static_cast<size_t>(m_lpBufMax - m_lpBufCur) < unread + size && m_lpBufMax < end) {
        const unsigned int got = OnFile(
            [&] { return m_pFile->Read(m_lpBufMax, static_cast<unsigned int>(end - m_lpBufMax)); });
        if (got == 0) break;
        m_lpBufMax += got;
    }
    if (static_cast<size_t>(m_lpBufMax - m_lpBufCur) < unread + size)
        Throw(CArchiveBException::endOfFile);
}

unsigned int CArchiveB::Read(void *buffer, unsigned int size) {
    if (!IsLoading()) Throw(CArchiveBException::writeOnly);
    auto *out = static_cast<unsigned char *>(buffer);
    unsigned int total = 0;
    for (;;) {
        const unsigned int n =
            std::min(size - total, static_cast<unsigned int>(m_lpBufMax - m_lpBufCur));
        if (n != 0) std::memcpy(out + total, m_lpBufCur, n);
        m_lpBufCur += n;
        total += n;
        if (total == size || !m_pFile) return total;
        if (m_bDirectBuffer) {
            void *start = nullptr, *max = nullptr;
            const unsigned int got =
                m_pFile->GetBufferPtr(CFile::bufferRead, size - total, &start, &max);
            if (got == 0) return total;
            m_lpBufStart = m_lpBufCur = static_cast<unsigned char *>(start);
            m_lpBufMax = m_lpBufCur + got;
            continue;
        }
        // Whole multiples of the buffer go straight into the target.
        const unsigned int rest = size - total;
        const unsigned int direct = rest - rest % static_cast<unsigned int>(m_nBufSize);
        while (total < size - (rest - direct)) {
            const unsigned int got =
                OnFile([&] { return m_pFile->Read(out + total, size - (rest - direct) - total); });
            if (got == 0) return total;
            total += got;
        }
        if (total == size) return total;
        const unsigned int got = OnFile(
            [&] { return m_pFile->Read(m_lpBufStart, static_cast<unsigned int>(m_nBufSize)); });
        m_lpBufCur = m_lpBufStart;
        m_lpBufMax = m_lpBufStart + got;
        if (got == 0) return total;
    }
}

void CArchiveB::EnsureRead(void *buffer, unsigned int size) {
    if (Read(buffer, size) != size) Throw(CArchiveBException::endOfFile);
}

void CArchiveB::Write(const void *buffer, unsigned int size) {
    if (!IsStoring()) Throw(CArchiveBException::readOnly);
    const auto *in = static_cast<const unsigned char *>(buffer);
    unsigned int n = std::min(size, static_cast<unsigned int>(m_lpBufMax - m_lpBufCur));
    if (n != 0) std::memcpy(m_lpBufCur, in, n);
    m_lpBufCur += n;
    in += n;
    size -= n;
    if (size == 0) return;
    Flush();
    if (m_bDirectBuffer) {
        while (size > 0) {
            n = std::min(size, static_cast<unsigned int>(m_lpBufMax - m_lpBufCur));
            std::memcpy(m_lpBufCur, in, n);
            m_lpBufCur += n;
            in += n;
            size -= n;
            if (size) Flush();
        }
        return;
    }
    // Whole multiples of the buffer go straight to the file.
    const unsigned int direct = size - size % static_cast<unsigned int>(m_nBufSize);
    if (direct) OnFile([&] { m_pFile->Write(in, direct); });
    std::memcpy(m_lpBufCur, in + direct, size - direct);
    m_lpBufCur += size - direct;
}

// ---- counts and strings ----

void CArchiveB::WriteCount(uint32_t n) {
    if (n < 0xFFFF) {
        *this << static_cast<uint16_t>(n);
    } else {
        *this << static_cast<uint16_t>(0xFFFF) << n;
    }
}

uint32_t CArchiveB::ReadCount() {
    uint16_t w;
    *this >> w;
    if (w != 0xFFFF) return w;
    uint32_t n;
    *this >> n;
    return n;
}

uint32_t CArchiveB::ReadCount(unsigned int minBytesPerElement) {
    const uint32_t n = ReadCount();
    CheckAvailable(static_cast<uint64_t>(n) * minBytesPerElement);
    return n;
}

void CArchiveB::WriteLength(uint64_t n) {
    if (n < 0xFF) {
        *this << static_cast<uint8_t>(n);
        return;
    }
    *this << static_cast<uint8_t>(0xFF);
    if (n < 0xFFFE) {
        *this << static_cast<uint16_t>(n);
        return;
    }
    *this << static_cast<uint16_t>(0xFFFF);
    if (n < 0xFFFFFFFFu) {
        *this << static_cast<uint32_t>(n);
        return;
    }
    *this << static_cast<uint32_t>(0xFFFFFFFFu) << n;
}

CArchiveB &CArchiveB::operator<<(const CVXString &text) {
    // Every string carries the mark of wide text, also the empty one: FF FE FF 00.
    *this << static_cast<uint8_t>(0xFF) << static_cast<uint16_t>(0xFFFE);
    const uint32_t len = static_cast<uint32_t>(text.GetLength());
    WriteLength(len);
    Write(static_cast<const char16_t *>(text), len * 2);
    return *this;
}

// Reads more than is ever written: old archives hold 8-bit strings with a plain length byte.
uint64_t CArchiveB::ReadStringLength(unsigned &unitSize) {
    unitSize = 1;
    uint8_t b;
    *this >> b;
    if (b < 0xFF) return b;
    uint16_t w;
    *this >> w;
    if (w == 0xFFFE) {
        unitSize = 2;
        *this >> b;
        if (b < 0xFF) return b;
        *this >> w;
    }
    if (w < 0xFFFF) return w;
    uint32_t d;
    *this >> d;
    if (d < 0xFFFFFFFFu) return d;
    uint64_t q;
    *this >> q;
    if (q >= 0x80000000u) Throw(CArchiveBException::genericException);
    return q;
}

CArchiveB &CArchiveB::operator>>(CVXString &text) {
    unsigned unitSize;
    const uint64_t len = ReadStringLength(unitSize);
    CheckAvailable(len * unitSize);
    if (len == 0) {
        text.Empty();
        return *this;
    }
    if (unitSize == 1) {
        std::string bytes(static_cast<size_t>(len), '\0');
        EnsureRead(bytes.data(), static_cast<unsigned int>(len));
        const std::u16string wide = CodePageToWide(bytes.data(), bytes.size());
        BSTR b = SysAllocStringLen(wide.data(), static_cast<uint32_t>(wide.size()));
        text = CVXString(b, false);
    } else {
        BSTR b = SysAllocStringLen(nullptr, static_cast<uint32_t>(len));
        CVXString owner(b, false); // frees the buffer if the read fails
        EnsureRead(b, static_cast<unsigned int>(len * 2));
        text = owner;
    }
    return *this;
}

void CArchiveB::WriteString(const CVXString &text) {
    Write(static_cast<const char16_t *>(text), static_cast<unsigned int>(text.GetLength()) * 2);
}

bool CArchiveB::ReadString(CVXString &text) {
    std::u16string line;
    bool ended = false;
    try {
        for (;;) {
            char16_t unit;
            *this >> unit;
            if (unit == u'\n') {
                ended = true;
                break;
            }
            if (unit == u'\r') {
                ended = true;
                *this >> unit; // CR LF counts as one ending: the next unit goes unseen
                break;
            }
            line.push_back(unit);
        }
    } catch (const CArchiveBException &e) {
        if (e.m_cause != CArchiveBException::endOfFile) throw;
    }
    text = CVXString(line.c_str());
    return ended || !line.empty();
}

// ---- objects and classes ----

void CArchiveB::MakeMap() {
    m_bMapMade = true;
    m_nMapCount = 1;
    if (IsStoring()) {
        // The null object is index 0 without an entry: WriteObject answers it first.
        m_storeMap.Reserve(m_nHashSize);
    } else {
        m_loadArray.reserve(m_nGrowSize);
        m_loadArray.push_back({nullptr, typeUndefined, false});
    }
}

void CArchiveB::MapObject(const ISerObject *object) {
    EnsureMap();
    if (!object) return;
    if (IsStoring())
        m_storeMap.Set(object, m_nMapCount++);
    else {
        m_loadArray.push_back({object, typeObject, false});
        ++m_nMapCount;
    }
}

void CArchiveB::WriteClass(const CRuntimeCreator *creator) {
    if (!creator) Throw(CArchiveBException::badClass);
    if (IsLoading()) Throw(CArchiveBException::genericException);
    EnsureMap();
    const uint32_t i = creator == m_pLastClass ? m_nLastClassIndex : m_storeMap.Find(creator);
    m_pLastClass = creator;
    if (i != 0) {
        m_nLastClassIndex = i;
        if (i < kMaxShortIndex)
            *this << static_cast<uint16_t>(i | kClassTag);
        else
            *this << kBigTag << (i | kBigClassTag);
        return;
    }
    *this << kNewClassTag;
    creator->Store(*this);
    m_nLastClassIndex = m_nMapCount;
    m_storeMap.Set(creator, m_nMapCount++);
}

void CArchiveB::ReserveObjects(uint32_t count) {
    if (IsStoring()) m_storeMap.Reserve(m_storeMap.Size() + count);
}

void CArchiveB::WriteObject(const ISerObject *object) {
    if (IsLoading()) Throw(CArchiveBException::readOnly);
    EnsureMap();
    if (!object) {
        *this << kNullTag;
        return;
    }
    if (const uint32_t i = m_storeMap.Find(object)) {
        if (i < kMaxShortIndex)
            *this << static_cast<uint16_t>(i);
        else
            *this << kBigTag << i;
        return;
    }
    WriteClass(object->RuntimeCreator());
    m_storeMap.Set(object, m_nMapCount++);
    const_cast<ISerObject *>(object)->SerializeB(*this);
}

const CRuntimeCreator *CArchiveB::ReadClass(const CRuntimeCreator *, unsigned int *schema,
                                            uint32_t *tag) {
    if (IsStoring()) Throw(CArchiveBException::genericException);
    EnsureMap();
    uint16_t w;
    *this >> w;
    uint32_t t;
    if (w == kBigTag)
        *this >> t;
    else
        t = (static_cast<uint32_t>(w & kClassTag) << 16) | (w & kMaxShortIndex);

    if (!(t & kBigClassTag)) { // an object reference
        if (!tag) Throw(CArchiveBException::badIndex);
        *tag = t;
        return nullptr;
    }

    const CRuntimeCreator *creator = nullptr;
    unsigned int classSchema;
    if (w == kNewClassTag) {
        unsigned int stored = 0;
        creator = CRuntimeCreator::Load(*this, &stored);
        if (!creator) Throw(CArchiveBException::badClass);
        classSchema = creator->Schema() & ~VERSIONABLE_SCHEMA;
        if (classSchema != stored) {
            if (!(creator->Schema() & VERSIONABLE_SCHEMA)) Throw(CArchiveBException::badSchema);
            EnsureSchemaMapExists();
            (*m_pSchemaMap)[creator] = stored;
            classSchema = stored;
        }
        m_loadArray.push_back({creator, typeClass, false});
        ++m_nMapCount;
    } else {
        const uint32_t index = t & ~kBigClassTag;
        if (index == 0 || index >= m_nMapCount || m_loadArray[index].kind != typeClass)
            Throw(CArchiveBException::badIndex);
        creator = static_cast<const CRuntimeCreator *>(m_loadArray[index].pointer);
        classSchema = creator->Schema() & ~VERSIONABLE_SCHEMA;
        if (m_pSchemaMap) {
            const auto it = m_pSchemaMap->find(creator);
            if (it != m_pSchemaMap->end()) classSchema = it->second;
        }
    }
    if (schema)
        *schema = classSchema;
    else
        m_nObjectSchema = classSchema;
    if (tag) *tag = t;
    return creator;
}

ISerObject *CArchiveB::ReadObject(const CRuntimeCreator *requested) {
    if (IsStoring()) Throw(CArchiveBException::writeOnly);
    unsigned int schema = 0;
    uint32_t tag = 0;
    const CRuntimeCreator *creator = ReadClass(requested, &schema, &tag);
    if (!creator) {
        if (tag >= m_nMapCount || m_loadArray[tag].kind == typeClass)
            Throw(CArchiveBException::badIndex);
        auto *object = static_cast<ISerObject *>(const_cast<void *>(m_loadArray[tag].pointer));
        // Identity, not kind: a derived class is not what was asked for.
        if (object && requested && object->RuntimeCreator() != requested)
            Throw(CArchiveBException::badClass);
        return object;
    }
    if (m_nDepth >= kMaxDepth) Throw(CArchiveBException::genericException);
    std::unique_ptr<ISerObject> object(creator->CreateObject());
    if (!object) throw CVXComError(E_OUTOFMEMORY, __FILE__, __LINE__);
    m_loadArray.push_back({object.get(), typeObject, true});
    ++m_nMapCount;
    NoteLoadedObject(object.get());
    {
        ObjectScope scope(m_nObjectSchema, schema, m_nDepth);
        RunNestedLoad(m_nDepth, [&] { object->SerializeB(*this); });
    }
    return object.release();
}

bool CArchiveB::IsLoadedSince(const ISerObject *object, uint32_t mark) const {
    for (; m_nLoadIndexed < m_loadArray.size(); ++m_nLoadIndexed) {
        const LoadEntry &entry = m_loadArray[m_nLoadIndexed];
        if (entry.created) m_loadIndex.Set(entry.pointer, m_nLoadIndexed);
    }
    const uint32_t index = object ? m_loadIndex.Find(object) : 0;
    return index != 0 && index >= mark;
}

void CArchiveB::SerializeClass(const CRuntimeCreator *creator) {
    if (IsStoring())
        WriteClass(creator);
    else
        ReadClass(creator, nullptr, nullptr);
}

unsigned int CArchiveB::GetObjectSchema() {
    const unsigned int schema = m_nObjectSchema;
    m_nObjectSchema = 0xFFFFFFFFu;
    return schema;
}

void CArchiveB::SetStoreParams(unsigned int hashSize, unsigned int blockSize) {
    m_nHashSize = hashSize;
    m_nGrowSize = blockSize;
}

void CArchiveB::SetLoadParams(unsigned int growBy) {
    m_nGrowSize = growBy;
}

void CArchiveB::EnsureSchemaMapExists() {
    if (!m_pSchemaMap) m_pSchemaMap = new std::map<const CRuntimeCreator *, unsigned int>;
}

} // namespace vx
