// CTextFile: a thin wrapper of a C stream that writes and reads text in one of four encodings.
//
// The encodings are applied by the class itself, with the rules of the C library of the
// original platform: a stream opened for writing ("w", or "a" on an empty file) in a Unicode
// encoding starts with a byte-order mark; a stream opened for reading takes its encoding from
// the byte-order mark when there is one (UTF-8 or UTF-16LE), and from the requested encoding
// otherwise. Line ends are written as given ("\n" stays "\n"); reading removes "\n" and a "\r"
// before it.
//
// Copies share one stream. Close() closes it for all copies; the last copy to go closes it too.
#pragma once

#include "platform/VXExport.h"

#include "platform/VXString.h"

#include <memory>

namespace vx VX_API {

class CTextFile {
public:
    enum Encoding { encNone = 0, encUnicode = 1, encUTF8 = 2, encUTF16LE = 3 };

    CTextFile();
    CTextFile(const CTextFile &) = default;
    CTextFile &operator=(const CTextFile &) = default;
    ~CTextFile();

    // The mode text of the open: `mode` as it is for encoding 0, else with ", ccs=" and
    // "UNICODE", "UTF-8" or "UTF-16LE" behind it; empty for an encoding outside 0..3.
    static CVXString BuildMode(const CVXString &mode, int encoding);

    // Closes an open stream, then opens `path`. `mode` starts with r, w or a, optionally
    // followed by "+" and the letters t, b, c (which change nothing here). `share` is the
    // sharing flag of the original platform (0x10 deny all, 0x20 deny write, 0x30 deny read,
    // 0x40 deny none), emulated with advisory locks as CFile does. False, with nothing open,
    // for an encoding outside 0..3, a bad mode, a file that cannot be opened or a conflicting
    // lock.
    bool Open(const CVXString &path, const CVXString &mode, int encoding, int share);
    bool IsOpen() const;
    void Flush();
    void Close();
    // The encoding the stream uses (after a byte-order mark decided it); encNone when closed.
    int GetEncoding() const;

    // Writes the text in the stream's encoding, in one write, so that lines from several
    // threads do not mix. Failures are not reported.
    void WriteString(const CVXString &text);
    template <class... Args>
    void WriteFormat(const char16_t *format, const Args &...args) {
        CVXString text;
        text.Format(format, args...);
        WriteString(text);
    }
    // Reads one line without its line end; false at the end of the stream with nothing read.
    bool ReadString(CVXString &line);

private:
    struct CStream;
    std::shared_ptr<CStream> m_pStream;
};

} // namespace VX_API
