// Writing a file so that nothing is lost: the new contents go to a temporary file beside the
// target, every write is checked, the file is synchronised to the disk and only then renamed
// over the target. A failure at any point (a full disk, a kill) leaves the target as it was.
#pragma once

#include "platform/VXExport.h"

#include "platform/VXString.h"

#include <atomic>
#include <cstddef>
#include <string>

namespace vx VX_API {

// A new file beside the target that takes the target's place only when it is complete. The
// name starts with a dot and ends in ".tmp", so that a directory listing shows what a kill left
// behind; the file is removed when the replacement is not committed.
class CFileReplacement {
public:
    // Creates the temporary file; CFileException when the directory does not allow it.
    explicit CFileReplacement(const CVXString &target);
    ~CFileReplacement();
    CFileReplacement(const CFileReplacement &) = delete;
    CFileReplacement &operator=(const CFileReplacement &) = delete;

    CVXString TempPath() const { return CVXString(m_temp.c_str()); }

    // Renames the complete (and synchronised) file over the target, keeping the permission bits
    // of a target that exists, then synchronises the directory so that the rename itself
    // survives a crash. CFileException when the rename fails.
    void Commit();

private:
    static inline std::atomic<unsigned> s_counter{0};
    CVXString m_target;
    std::string m_dir;
    std::string m_temp;
};

// Replaces the file at `path` by `size` bytes from `data` in the way above; CFileException
// names the file and the cause of a failure.
void WriteFileReplacing(const CVXString &path, const void *data, size_t size);

} // namespace VX_API
