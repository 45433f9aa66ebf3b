// Helpers shared by the unit tests: scratch directories and byte files.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vxtest {

// A fresh directory under $TMPDIR (or /tmp), removed with everything in it at destruction.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir &) = delete;
    TempDir &operator=(const TempDir &) = delete;
    const std::string &path() const { return m_path; }
    // path() + "/" + name
    std::string file(const std::string &name) const { return m_path + "/" + name; }

private:
    std::string m_path;
};

std::vector<uint8_t> ReadBytes(const std::string &path);
void WriteBytes(const std::string &path, const std::vector<uint8_t> &bytes);
// "01 ff 7a" style, for readable failure messages.
std::string Hex(const std::vector<uint8_t> &bytes);

// Sets an environment variable for the lifetime of the object, restoring the old value after.
class ScopedEnv {
public:
    ScopedEnv(const char *name, const char *value);
    ~ScopedEnv();
    ScopedEnv(const ScopedEnv &) = delete;
    ScopedEnv &operator=(const ScopedEnv &) = delete;

private:
    std::string m_name;
    std::string m_old;
    bool m_hadOld;
};

} // namespace vxtest
