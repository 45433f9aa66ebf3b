#include "foundation/VXFile.h"

#include "platform/CodePage.h"
#include "platform/Resources.h"
#include "platform/UserPrompt.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <fnmatch.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

namespace vx {

namespace {

std::string SystemPath(const CVXString &path) {
    return static_cast<const char *>(path);
}

CVXString FromSystem(const std::string &path) {
    return CVXString(path.c_str());
}

CVXString ErrorText(const CFileException &e) {
    return CVXString(e.m_lOsError ? std::strerror(e.m_lOsError) : e.what());
}

std::string TempFolder() {
    const char *dir = std::getenv("TMPDIR");
    return dir && *dir ? dir : "/tmp";
}

// The file names of a folder that match a mask, sorted. "*.*" matches names without a dot too,
// as it always did.
std::vector<std::string> MatchingFiles(const CVXString &folder, const CVXString &mask) {
    std::vector<std::string> names;
    std::string pattern = SystemPath(mask);
    // assign, not = "*": g++ 12 warns falsely on that form
    if (pattern == "*.*") pattern.assign(1, '*');
    std::error_code ec;
    for (const auto &entry : fs::directory_iterator(SystemPath(folder), ec)) {
        if (!entry.is_regular_file(ec)) continue;
        const std::string name = entry.path().filename().string();
        if (fnmatch(pattern.c_str(), name.c_str(), 0) == 0) names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string WithoutTrailingSeparators(std::string s) {
    while (s.size() > 1 && (s.back() == '/' || s.back() == '\\'))
        s.pop_back();
    return s;
}

} // namespace

// ---- CVXFile ----

CVXFile::CVXFile(const CVXString &path, unsigned int flags) {
    CFileException e;
    if (!CFile::Open(path, flags, &e)) throw e;
}

bool CVXFile::Open(const CVXString &path, unsigned int flags, CFileException *error) {
    if (error) return CFile::Open(path, flags, error);
    CFileException e;
    if (CFile::Open(path, flags, &e)) return true;
    HandleOpenError(path, flags, &e);
}

bool CVXFile::bTestError(const CFileException &error) {
    return error.m_cause == CFileException::accessDenied ||
           error.m_cause == CFileException::sharingViolation ||
           error.m_cause == CFileException::lockViolation;
}

bool CVXFile::OpenShare(const CVXString &path, unsigned int flags, CFileException *error) {
    for (;;) {
        CFileException e;
        if (CFile::Open(path, flags, &e)) return true;
        if (!bTestError(e)) HandleOpenError(path, flags, &e);
        CVXString text;
        const CVXString reason = ErrorText(e);
        AfxFormatString2(text, IDS_FILE_OPEN_FAILED, path, reason);
        if (GetUserPrompt().AskRetryCancel(text) != IUserPrompt::IDRETRY) {
            if (error) *error = e;
            return false;
        }
    }
}

bool CVXFile::OpenTemp() {
    CVXString name;
    if (!OpenTemp(name)) return false;
    ::unlink(SystemPath(name).c_str());
    return true;
}

bool CVXFile::OpenTemp(CVXString &name) {
    CreateTempNaam(name);
    CFileException e;
    return CFile::Open(name, modeReadWrite | modeCreate | shareExclusive, &e);
}

bool CVXFile::bLockRange(uint64_t position, uint64_t count) {
    try {
        LockRange(position, count);
        return true;
    } catch (const CFileException &) {
        return false;
    }
}

bool CVXFile::bIsReadable(const CVXString &path) {
    CFile f;
    CFileException e;
    if (!f.Open(path, modeRead | shareDenyWrite, &e)) return false;
    f.Abort();
    return true;
}

bool CVXFile::bIsCreatable(const CVXString &path) {
    if (bExists(path, 0)) return true;
    CFile f;
    CFileException e;
    if (!f.Open(path, modeCreate | shareExclusive | modeWrite, &e)) return false;
    f.Abort();
    bDelete(path);
    return true;
}

void CVXFile::RemoveIfExists(const CVXString &path) {
    if (bExists(path, 0)) bDelete(path);
}

bool CVXFile::bHandleSharingViolation(const CVXString &path) {
    CVXString text;
    AfxFormatString1(text, IDS_FILE_IN_USE, path);
    return GetUserPrompt().AskRetryCancel(text) == IUserPrompt::IDRETRY;
}

void CVXFile::HandleOpenError(const CVXString &path, unsigned int, const CFileException *error) {
    if (error) {
        CFileException e = *error;
        if (e.m_strFileName.IsEmpty()) e = CFileException(e.m_cause, e.m_lOsError, path);
        throw e;
    }
    throw CFileException(CFileException::genericException, 0, path);
}

void CVXFile::HandleFileError(const CFileException *error) {
    if (error) throw *error;
    throw CFileException(CFileException::genericException);
}

void CDumpFile::WriteText(const CVXString &text) {
    const char *narrow = text;
    Write(narrow, static_cast<unsigned int>(std::strlen(narrow)));
}

// ---- file system ----

bool bExists(const CVXString &path, int mode) {
    return ::access(SystemPath(path).c_str(), mode) == 0;
}

bool bCreateDir(const CVXString &path) {
    return ::mkdir(SystemPath(path).c_str(), 0777) == 0;
}

bool bDelete(const CVXString &path) {
    return std::remove(SystemPath(path).c_str()) == 0;
}

void CreateTempNaam(CVXString &out) {
    std::string templ = TempFolder() + "/~kvXXXXXX";
    const int fd = ::mkstemp(templ.data());
    if (fd < 0) {
        out.Empty();
        return;
    }
    ::close(fd);
    out = FromSystem(templ);
}

CVXString DLLPath() {
    const char *env = std::getenv("VXCOMMON_DATA");
    if (env && *env) return CVXString(env);
    Dl_info info{};
    if (dladdr(reinterpret_cast<void *>(&DLLPath), &info) == 0 || !info.dli_fname)
        return CVXString(".");
    const char *slash = std::strrchr(info.dli_fname, '/');
    return slash ? FromSystem(std::string(info.dli_fname, slash)) : CVXString(".");
}

// ---- path text ----

void GetFileName(CVXString &out, const CVXString &path) {
    const int len = path.GetLength();
    int start = len;
    while (start > 0 && path[start - 1] != u'\\' && path[start - 1] != u'/')
        --start;
    out = path.Mid(start);
}

void RemoveExtension(CVXString &text) {
    const int dot = text.ReverseFind(u'.');
    const int slash = text.ReverseFind(u'\\');
    if (dot >= 0 && dot > slash) text = text.Left(dot);
}

void StripBackslash(CVXString &text) {
    const int len = text.GetLength();
    if (len > 0 && (text[len - 1] == u'/' || text[len - 1] == u'\\')) text = text.Left(len - 1);
}

void MaakFileNaam(CVXString &out, const CVXString &folder, const CVXString &name) {
    // A forward slash at the end of the folder is not recognised here: kept, the helper is a
    // text function of backslash paths.
    if (folder.GetLength() == 3)
        out = folder + name;
    else
        out = folder + u"\\" + name;
}

namespace {
void OverwriteLastTwo(CVXString &text, char16_t a, char16_t b) {
    const int len = text.GetLength();
    if (len < 2) return;
    text.SetAtU(len - 2, a);
    text.SetAtU(len - 1, b);
}
} // namespace

void TIFF2TFW(CVXString &text) {
    OverwriteLastTwo(text, u'f', u'w');
}

void TFW2TIFF(CVXString &text) {
    OverwriteLastTwo(text, u'i', u'f');
}

// ---- folders ----

std::vector<CVXString> GetFileNames(const CVXString &folder, const CVXString &mask,
                                    bool bFullPath) {
    const std::string base = WithoutTrailingSeparators(SystemPath(folder));
    std::vector<CVXString> names;
    for (const std::string &name : MatchingFiles(folder, mask))
        names.push_back(FromSystem(bFullPath ? base + "/" + name : name));
    return names;
}

int CopyFiles(const CVXString &from, const CVXString &to, const CVXString &mask) {
    int copied = 0;
    std::error_code ec;
    for (const std::string &name : MatchingFiles(from, mask)) {
        fs::copy_file(fs::path(SystemPath(from)) / name, fs::path(SystemPath(to)) / name,
                      fs::copy_options::overwrite_existing, ec);
        if (!ec) ++copied;
    }
    return copied;
}

int DeleteFiles(const CVXString &folder, const CVXString &mask) {
    int deleted = 0;
    std::error_code ec;
    for (const std::string &name : MatchingFiles(folder, mask))
        if (fs::remove(fs::path(SystemPath(folder)) / name, ec)) ++deleted;
    return deleted;
}

bool bCopyFolder(const CVXString &from, const CVXString &to) {
    std::error_code ec;
    fs::copy(SystemPath(from), SystemPath(to),
             fs::copy_options::recursive | fs::copy_options::overwrite_existing, ec);
    return !ec;
}

bool RemoveDirectoryRecursive(const CVXString &path) {
    std::error_code ec;
    const auto removed = fs::remove_all(SystemPath(path), ec);
    return !ec && removed > 0;
}

void GetLastDir(CVXString &out, const CVXString &path) {
    CVXString trimmed(path);
    while (trimmed.GetLength() > 1 &&
           (trimmed[trimmed.GetLength() - 1] == u'/' || trimmed[trimmed.GetLength() - 1] == u'\\'))
        trimmed = trimmed.Left(trimmed.GetLength() - 1);
    GetFileName(out, trimmed);
}

int nCompareDir(const CVXString &a, const CVXString &b) {
    const CVXString x(WithoutTrailingSeparators(SystemPath(a)).c_str());
    const CVXString y(WithoutTrailingSeparators(SystemPath(b)).c_str());
    return x.Compare(y);
}

void SetPathFromDisk(CVXString &path, const CVXString &) {
    std::error_code ec;
    const fs::path cwd = fs::current_path(ec);
    if (!ec) path = FromSystem(cwd.string());
}

bool bAskIfExists(const CVXString &path) {
    if (!bExists(path, 0)) return true;
    CVXString text;
    AfxFormatString1(text, IDS_FILE_EXISTS_OVERWRITE, path);
    return GetUserPrompt().AskRetryCancel(text) == IUserPrompt::IDRETRY;
}

} // namespace vx
