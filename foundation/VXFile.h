// The library's binary file, with a friendlier open that asks the user to retry on a sharing
// conflict, and the free functions on paths and folders.
//
// The path text helpers (MaakFileNaam, RemoveExtension, StripBackslash, TIFF2TFW, TFW2TIFF) are
// text functions and keep their backslash rules to the letter. Functions that reach the file
// system (bExists, GetFiles, CreateTempNaam...) take Linux paths with '/'.
#pragma once

#include "platform/VXExport.h"

#include "platform/File.h"
#include "platform/VXString.h"

#include <cstdint>
#include <vector>

namespace vx VX_API {

class CVXStringList;

class CVXFile : public CFile {
public:
    CVXFile() = default;
    // Opens the file; a failure raises CFileException.
    CVXFile(const CVXString &path, unsigned int flags);

    // With an exception object: a plain open, the failure goes back through it. Without one: a
    // failure goes to HandleOpenError, which raises.
    bool Open(const CVXString &path, unsigned int flags, CFileException *error = nullptr) override;
    // As Open, in a loop: access denied, sharing and lock violations ask the user (Retry or
    // Cancel) with resource 57; Cancel ends with false. Other failures go to HandleOpenError.
    // Without a host the question answers Cancel, so a caller without a user gets one try.
    bool OpenShare(const CVXString &path, unsigned int flags, CFileException *error = nullptr);
    // A new temporary file (name from CreateTempNaam), open for reading and writing. The form
    // without a name removes the name at once: the file lives while it is open.
    bool OpenTemp();
    bool OpenTemp(CVXString &name);
    // Locks a byte range; true on success.
    bool bLockRange(uint64_t position, uint64_t count);

    // Opens for reading with deny-write sharing and closes; true if that worked.
    static bool bIsReadable(const CVXString &path);
    // True if the file exists; otherwise creates it (flags 0x1011), closes and removes it.
    static bool bIsCreatable(const CVXString &path);
    static void RemoveIfExists(const CVXString &path);
    // Asks the user, with resource 58 filled with the path, whether to retry; true for Retry.
    static bool bHandleSharingViolation(const CVXString &path);
    // Report a failure by raising it.
    [[noreturn]] static void HandleOpenError(const CVXString &path, unsigned int flags,
                                             const CFileException *error);
    [[noreturn]] static void HandleFileError(const CFileException *error);

private:
    // True for the causes a retry may cure: access denied, sharing and lock violations.
    static bool bTestError(const CFileException &error);
};

// The platform's memory file under the library's name.
class CVXMemFile : public CMemFile {
public:
    using CMemFile::CMemFile;
};

// A file with one operation of its own: formatted text.
class CDumpFile : public CVXFile {
public:
    using CVXFile::CVXFile;
    // Prints the formatted text to the file in the code page.
    template <class... Args>
    void Format(const char16_t *format, const Args &...args) {
        CVXString text;
        text.Format(format, args...);
        WriteText(text);
    }

private:
    void WriteText(const CVXString &text);
};

// ---- file system ----
// access(path, mode) is 0: mode 0 exists, 2 writable, 4 readable, 6 both.
bool bExists(const CVXString &path, int mode = 0);
// mkdir of one level; an existing folder or a missing parent is a failure.
bool bCreateDir(const CVXString &path);
bool bDelete(const CVXString &path);
// A fresh name in $TMPDIR (else /tmp) beginning with "~kv"; the file is created empty so that
// the name stays taken.
void CreateTempNaam(CVXString &out);

// The directory the library's data files (the correction grids) are found in: the value of
// VXCOMMON_DATA when it is set, read at each call, else the directory of the library binary.
CVXString DLLPath();

// ---- path text ----
// The file name part: everything behind the last backslash or slash.
void GetFileName(CVXString &out, const CVXString &path);
// Cuts at the last "." when it lies behind the last backslash.
void RemoveExtension(CVXString &text);
// Removes one trailing "/" or backslash.
void StripBackslash(CVXString &text);
// A folder of exactly three characters is a drive root ending in its own backslash; in all
// other cases a backslash goes between folder and name.
void MaakFileNaam(CVXString &out, const CVXString &folder, const CVXString &name);
// Overwrite the last two characters with "fw", or write "if" back; nothing looks at them.
void TIFF2TFW(CVXString &text);
void TFW2TIFF(CVXString &text);

// ---- folders ----
// The names of the files in `folder` matching `mask` ("*.*" matches every name), sorted by
// name; with bFullPath the entries are folder + "/" + name.
std::vector<CVXString> GetFileNames(const CVXString &folder, const CVXString &mask,
                                    bool bFullPath = false);
// The same names added to the list. Defined with the string list (persist/VXStringList.cpp),
// which sits above this folder because it is serialisable.
void GetFiles(const CVXString &folder, const CVXString &mask, CVXStringList &list,
              bool bFullPath = false);
// Copies (or deletes) the files of a folder that match the mask; the number handled.
int CopyFiles(const CVXString &from, const CVXString &to, const CVXString &mask);
int DeleteFiles(const CVXString &folder, const CVXString &mask);
// Copies a whole tree; false if anything could not be copied.
bool bCopyFolder(const CVXString &from, const CVXString &to);
// Removes a folder with everything in it; false if it could not.
bool RemoveDirectoryRecursive(const CVXString &path);
// The last folder name of a path ("a/b/c/" and "a/b/c" give "c").
void GetLastDir(CVXString &out, const CVXString &path);
// Compares two folder paths, trailing separators ignored: 0 when they name the same folder text.
int nCompareDir(const CVXString &a, const CVXString &b);
// There are no drives here: the path becomes the current working directory.
void SetPathFromDisk(CVXString &path, const CVXString &drive);
// True when the file does not exist, or when the user agrees (Retry) to overwrite it.
bool bAskIfExists(const CVXString &path);

} // namespace VX_API
