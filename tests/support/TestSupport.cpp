#include "support/TestSupport.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace vxtest {

TempDir::TempDir() {
    const char *base = std::getenv("TMPDIR");
    std::string templ = std::string(base && *base ? base : "/tmp") + "/vxtest-XXXXXX";
    if (!mkdtemp(templ.data())) throw std::runtime_error("cannot create a temporary directory");
    m_path = templ;
}

TempDir::~TempDir() {
    std::error_code ec;
    std::filesystem::remove_all(m_path, ec);
}

std::vector<uint8_t> ReadBytes(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), {});
}

void WriteBytes(const std::string &path, const std::vector<uint8_t> &bytes) {
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char *>(bytes.data()),
              static_cast<std::streamsize>(bytes.size()));
}

std::string Hex(const std::vector<uint8_t> &bytes) {
    std::string s;
    char buf[4];
    for (size_t i = 0; i < bytes.size(); ++i) {
        std::snprintf(buf, sizeof buf, i ? " %02x" : "%02x", bytes[i]);
        s += buf;
    }
    return s;
}

ScopedEnv::ScopedEnv(const char *name, const char *value) : m_name(name) {
    const char *old = std::getenv(name);
    m_hadOld = old != nullptr;
    if (old) m_old = old;
    if (value)
        setenv(name, value, 1);
    else
        unsetenv(name);
}

ScopedEnv::~ScopedEnv() {
    if (m_hadOld)
        setenv(m_name.c_str(), m_old.c_str(), 1);
    else
        unsetenv(m_name.c_str());
}

} // namespace vxtest
