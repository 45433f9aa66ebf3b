// CAsciiFile: a line-counting reader and writer of 8-bit text files; CAsciiMemFile: the same
// text written to memory.
//
// Lines are read whole, whatever their length, and converted through the process code page; a
// last line without a line feed is a line. The file is in text mode: "\r\n" ends a line and a
// "\n" written becomes "\r\n".
#pragma once

#include "platform/VXExport.h"

#include "platform/File.h"
#include "platform/VXString.h"

#include <cstdint>

namespace vx VX_API {

class CAsciiFile : public CStdioFile {
public:
    CAsciiFile() = default;
    // Opens for reading, sharing with everybody; raises CFileException on failure.
    explicit CAsciiFile(const CVXString &path);
    // Opens with the given flags in text mode; raises CFileException on failure.
    CAsciiFile(const CVXString &path, unsigned int nOpenFlags);

    // Keeps the name, sets the line number to 0 and opens. Text mode unless typeBinary is
    // asked for (the default of the original platform). Failure is reported in pError.
    bool Open(const CVXString &path, unsigned int nOpenFlags,
              CFileException *pError = nullptr) override;

    // True when the file called szGetNaam() exists and nobody may write it (no write
    // permission bit set); false for a file that does not exist.
    bool bIsReadOnly() const;
    // Back to the start; the line number becomes 0.
    void SeekToBegin();
    // One line without its line end; false (and an empty line) at the end of the file. A read
    // error raises CFileException.
    bool ReadString(CVXString &line);
    // Adds 1 to the line number, also for the read that finds the end, and reads the next line
    // into szGetRegel().
    virtual bool bLeesRegel();
    // The 8-bit form of the text; no line end is added. A failure raises CFileException.
    void WriteString(const CVXString &text);
    template <class... Args>
    void WriteFormat(const char16_t *format, const Args &...args) {
        CVXString text;
        text.Format(format, args...);
        WriteString(text);
    }

    const CVXString &szGetNaam() const { return m_szNaam; }
    const CVXString &szGetRegel() const { return m_szRegel; }
    // The number of the last line read, 1 for the first; 0 before the first.
    uint32_t lGetRegel() const { return m_lRegel; }

private:
    CVXString m_szNaam;
    CVXString m_szRegel;
    uint32_t m_lRegel = 0;
};

class CAsciiMemFile : public CMemFile {
public:
    using CMemFile::CMemFile;

    // Writes the 8-bit form of the text, as many bytes as the text has 16-bit units: a code
    // page with several bytes for a unit loses the bytes beyond that count. (Where the 8-bit
    // form is shorter, only the form is written.)
    void WriteString(const CVXString &text);
    template <class... Args>
    void WriteFormat(const char16_t *format, const Args &...args) {
        CVXString text;
        text.Format(format, args...);
        WriteString(text);
    }
};

// Writes the 8-bit form of `text` to `file` with the byte count of its 16-bit units, as
// CAsciiMemFile::WriteString does (shared with the message list).
void WriteUnitCount(CFile &file, const CVXString &text);

} // namespace VX_API
