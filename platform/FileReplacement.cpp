#include "platform/FileReplacement.h"

#include "platform/Errors.h"
#include "platform/File.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vx {

namespace {
constexpr int kMaxNameAttempts = 100;
constexpr mode_t kPermissionBits = 07777;
} // namespace

CFileReplacement::CFileReplacement(const CVXString &target) : m_target(target) {
    const std::string native = static_cast<const char *>(target);
    const size_t slash = native.rfind('/');
    const size_t nameAt = slash == std::string::npos ? 0 : slash + 1;
    m_dir = nameAt == 0 ? std::string(".") : native.substr(0, nameAt);
    const std::string prefix = native.substr(0, nameAt) + "." + native.substr(nameAt) + "." +
                               std::to_string(::getpid()) + ".";
    for (int attempt = 0;; ++attempt) {
        const std::string name = prefix + std::to_string(s_counter++) + ".tmp";
        // O_EXCL: the name is ours alone; 0666 lets the umask decide as for any new file.
        const int fd = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd >= 0) {
            ::close(fd);
            m_temp = name;
            return;
        }
        if (errno != EEXIST || attempt >= kMaxNameAttempts)
            CFileException::ThrowOsError(errno, CVXString(name.c_str()));
    }
}

CFileReplacement::~CFileReplacement() {
    if (!m_temp.empty()) ::unlink(m_temp.c_str());
}

void CFileReplacement::Commit() {
    struct stat st {};
    if (::stat(static_cast<const char *>(m_target), &st) == 0)
        ::chmod(m_temp.c_str(), st.st_mode & kPermissionBits);
    CFile::Rename(TempPath(), m_target);
    m_temp.clear();
    const int dirFd = ::open(m_dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (dirFd >= 0) {
        ::fsync(dirFd);
        ::close(dirFd);
    }
}

void WriteFileReplacing(const CVXString &path, const void *data, size_t size) {
    CFileReplacement replacement(path);
    CFile file(replacement.TempPath(),
               CFile::modeCreate | CFile::modeWrite | CFile::shareExclusive | CFile::typeBinary);
    const auto *bytes = static_cast<const unsigned char *>(data);
    // CFile::Write takes an unsigned count: large contents go in pieces.
    constexpr size_t kPiece = size_t{1} << 30;
    for (size_t done = 0; done < size; done += kPiece) {
        const size_t n = size - done < kPiece ? size - done : kPiece;
        file.Write(bytes + done, static_cast<unsigned int>(n));
    }
    file.Flush(); // to the disk before the rename, or a crash could leave an empty target
    file.Close();
    replacement.Commit();
}

} // namespace vx
