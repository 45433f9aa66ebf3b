#include "text/TextFile.h"

#include "platform/CodePage.h"

#include <cstdio>
#include <string>
#include <sys/file.h>

namespace vx {

namespace {

constexpr unsigned char szBomUtf8[] = {0xEF, 0xBB, 0xBF};
constexpr unsigned char szBomUtf16[] = {0xFF, 0xFE};

// Sharing flags of the original platform's shared open.
constexpr int nShDenyAll = 0x10;
constexpr int nShDenyWrite = 0x20;
constexpr int nShDenyRead = 0x30;

// The parts of a mode text that matter here.
struct COpenMode {
    char cKind = 0; // 'r', 'w' or 'a'
    bool bPlus = false;
};

// Reads the mode text before ", ccs=": a kind letter, then "+", "t", "b", "c", "n", "x" in any
// order. Anything else is refused.
bool ParseMode(const CVXString &mode, COpenMode &out) {
    const int len = mode.GetLength();
    if (len == 0 || (mode[0] != u'r' && mode[0] != u'w' && mode[0] != u'a')) return false;
    out.cKind = static_cast<char>(mode[0]);
    for (int i = 1; i < len; ++i) {
        const char16_t ch = mode[i];
        if (ch == u'+')
            out.bPlus = true;
        else if (ch != u't' && ch != u'b' && ch != u'c' && ch != u'n' && ch != u'x')
            return false;
    }
    return true;
}

const char *StdioMode(const COpenMode &m) {
    switch (m.cKind) {
    case 'r':
        return m.bPlus ? "r+e" : "re";
    case 'w':
        return m.bPlus ? "w+e" : "we";
    default:
        return m.bPlus ? "a+e" : "ae";
    }
}

bool IsUnicode(int encoding) {
    return encoding != CTextFile::encNone;
}
bool IsUtf16(int encoding) {
    return encoding == CTextFile::encUnicode || encoding == CTextFile::encUTF16LE;
}

bool LockForShare(std::FILE *f, int share) {
    int op = 0;
    if (share == nShDenyAll)
        op = LOCK_EX;
    else if (share == nShDenyWrite || share == nShDenyRead)
        op = LOCK_SH;
    return op == 0 || flock(fileno(f), op | LOCK_NB) == 0;
}

// A byte-order mark at the start of the stream decides the encoding; the position is left
// behind it, or at the start when there is none.
int DetectEncoding(std::FILE *f, int requested) {
    unsigned char head[3] = {};
    const size_t n = std::fread(head, 1, sizeof head, f);
    if (n == 3 && head[0] == szBomUtf8[0] && head[1] == szBomUtf8[1] && head[2] == szBomUtf8[2])
        return CTextFile::encUTF8;
    if (n >= 2 && head[0] == szBomUtf16[0] && head[1] == szBomUtf16[1]) {
        std::fseek(f, 2, SEEK_SET);
        return CTextFile::encUTF16LE;
    }
    std::fseek(f, 0, SEEK_SET);
    return requested;
}

void WriteBom(std::FILE *f, int encoding) {
    if (IsUtf16(encoding))
        std::fwrite(szBomUtf16, 1, sizeof szBomUtf16, f);
    else if (encoding == CTextFile::encUTF8)
        std::fwrite(szBomUtf8, 1, sizeof szBomUtf8, f);
}

bool IsEmptyFile(std::FILE *f) {
    std::fseek(f, 0, SEEK_END);
    return std::ftell(f) == 0;
}

std::string Encode(const CVXString &text, int encoding) {
    const char16_t *w = text;
    const size_t len = static_cast<size_t>(text.GetLength());
    if (encoding == CTextFile::encUTF8) return WideToUtf8(w, len);
    if (!IsUtf16(encoding)) return WideToCodePage(w, len);
    std::string bytes;
    bytes.reserve(2 * len);
    for (size_t i = 0; i < len; ++i) {
        bytes.push_back(static_cast<char>(w[i] & 0xFF));
        bytes.push_back(static_cast<char>(w[i] >> 8));
    }
    return bytes;
}

// One line of UTF-16LE units up to and without the line feed; false at the end with nothing.
bool ReadUnitsLine(std::FILE *f, std::u16string &line) {
    int lo;
    bool any = false;
    while ((lo = std::getc(f)) != EOF) {
        const int hi = std::getc(f);
        any = true;
        if (hi == EOF) break; // an odd last byte is no unit
        const char16_t unit = static_cast<char16_t>(lo | (hi << 8));
        if (unit == u'\n') return true;
        line.push_back(unit);
    }
    return any;
}

bool ReadBytesLine(std::FILE *f, std::string &line) {
    int ch;
    bool any = false;
    while ((ch = std::getc(f)) != EOF) {
        any = true;
        if (ch == '\n') return true;
        line.push_back(static_cast<char>(ch));
    }
    return any;
}

} // namespace

struct CTextFile::CStream {
    std::FILE *m_pFile = nullptr;
    int m_nEncoding = encNone;

    ~CStream() { Close(); }
    void Close() {
        if (m_pFile) std::fclose(m_pFile);
        m_pFile = nullptr;
        m_nEncoding = encNone;
    }
};

CTextFile::CTextFile() : m_pStream(std::make_shared<CStream>()) {}

CTextFile::~CTextFile() = default;

CVXString CTextFile::BuildMode(const CVXString &mode, int encoding) {
    static constexpr const char16_t *szNames[] = {nullptr, u"UNICODE", u"UTF-8", u"UTF-16LE"};
    if (encoding < encNone || encoding > encUTF16LE) return CVXString();
    if (encoding == encNone) return mode;
    return mode + u", ccs=" + szNames[encoding];
}

bool CTextFile::Open(const CVXString &path, const CVXString &mode, int encoding, int share) {
    Close();
    m_pStream = std::make_shared<CStream>(); // copies keep the closed stream of before
    const CVXString full = BuildMode(mode, encoding);
    COpenMode m;
    if (full.IsEmpty() || !ParseMode(mode, m)) return false;
    std::FILE *f = std::fopen(static_cast<const char *>(path), StdioMode(m));
    if (!f) return false;
    if (!LockForShare(f, share)) {
        std::fclose(f);
        return false;
    }
    int used = encoding;
    if (m.cKind == 'r')
        used = DetectEncoding(f, encoding);
    else if (IsUnicode(encoding) && (m.cKind == 'w' || IsEmptyFile(f)))
        WriteBom(f, encoding);
    m_pStream->m_pFile = f;
    m_pStream->m_nEncoding = used;
    return true;
}

bool CTextFile::IsOpen() const {
    return m_pStream->m_pFile != nullptr;
}

void CTextFile::Flush() {
    if (m_pStream->m_pFile) std::fflush(m_pStream->m_pFile);
}

void CTextFile::Close() {
    m_pStream->Close();
}

int CTextFile::GetEncoding() const {
    return m_pStream->m_nEncoding;
}

void CTextFile::WriteString(const CVXString &text) {
    if (!m_pStream->m_pFile || text.IsEmpty()) return;
    const std::string bytes = Encode(text, m_pStream->m_nEncoding);
    std::fwrite(bytes.data(), 1, bytes.size(), m_pStream->m_pFile);
}

bool CTextFile::ReadString(CVXString &line) {
    line.Empty();
    std::FILE *f = m_pStream->m_pFile;
    if (!f) return false;
    std::u16string wide;
    if (IsUtf16(m_pStream->m_nEncoding)) {
        if (!ReadUnitsLine(f, wide)) return false;
    } else {
        std::string bytes;
        if (!ReadBytesLine(f, bytes)) return false;
        wide = m_pStream->m_nEncoding == encUTF8 ? Utf8ToWide(bytes.data(), bytes.size())
                                                 : CodePageToWide(bytes.data(), bytes.size());
    }
    if (!wide.empty() && wide.back() == u'\r') wide.pop_back();
    line = CVXString(wide.c_str());
    return true;
}

} // namespace vx
