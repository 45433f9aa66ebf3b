#include "text/AsciiFile.h"

#include "platform/CodePage.h"

#include <algorithm>
#include <string>
#include <sys/stat.h>

namespace vx {

CAsciiFile::CAsciiFile(const CVXString &path) : CAsciiFile(path, modeRead | shareDenyNone) {}

CAsciiFile::CAsciiFile(const CVXString &path, unsigned int nOpenFlags) {
    CFileException e;
    if (!Open(path, nOpenFlags | typeText, &e)) throw e;
}

bool CAsciiFile::Open(const CVXString &path, unsigned int nOpenFlags, CFileException *pError) {
    m_szNaam = path;
    m_lRegel = 0;
    if (!(nOpenFlags & typeBinary)) nOpenFlags |= typeText;
    return CStdioFile::Open(path, nOpenFlags, pError);
}

bool CAsciiFile::bIsReadOnly() const {
    struct stat st {};
    if (stat(static_cast<const char *>(m_szNaam), &st) != 0) return false;
    return (st.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
}

void CAsciiFile::SeekToBegin() {
    Seek(0, begin);
    m_lRegel = 0;
}

bool CAsciiFile::ReadString(CVXString &line) {
    line.Empty();
    return CStdioFile::ReadString(line);
}

bool CAsciiFile::bLeesRegel() {
    ++m_lRegel;
    return ReadString(m_szRegel);
}

void CAsciiFile::WriteString(const CVXString &text) {
    CStdioFile::WriteString(text);
}

void WriteUnitCount(CFile &file, const CVXString &text) {
    const std::string bytes = WideToCodePage(text, static_cast<size_t>(text.GetLength()));
    const size_t count = std::min(bytes.size(), static_cast<size_t>(text.GetLength()));
    if (count > 0) file.Write(bytes.data(), static_cast<unsigned int>(count));
}

void CAsciiMemFile::WriteString(const CVXString &text) {
    WriteUnitCount(*this, text);
}

} // namespace vx
