// Helpers shared by the fuzz targets: the input as UTF-16 text, and a private directory for
// targets whose code under test reads files.
#pragma once

#include "platform/VXString.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>
#include <vector>

namespace vxfuzz {

// The bytes as UTF-16 units, two bytes each, low byte first (an odd last byte is dropped), so
// that every unit value, the zero unit and lone surrogates included, can be reached.
inline std::u16string Units(const uint8_t *data, size_t size) {
    std::u16string text;
    text.reserve(size / 2);
    for (size_t i = 0; i + 1 < size; i += 2)
        text.push_back(static_cast<char16_t>(data[i] | (data[i + 1] << 8)));
    return text;
}

// The text up to its first zero unit, as the C-string interfaces see it.
inline vx::CVXString Text(const std::u16string &units) {
    return vx::CVXString(units.c_str());
}

// A directory of this process, removed at exit with what the target wrote into it.
class CScratchDir {
public:
    CScratchDir() {
        const char *tmp = std::getenv("TMPDIR");
        std::string pattern = std::string(tmp && *tmp ? tmp : "/tmp") + "/vxfuzz.XXXXXX";
        if (!mkdtemp(pattern.data())) std::abort();
        m_path = pattern;
    }
    ~CScratchDir() {
        for (const std::string &f : m_files)
            std::remove(f.c_str());
        rmdir(m_path.c_str());
    }
    CScratchDir(const CScratchDir &) = delete;
    CScratchDir &operator=(const CScratchDir &) = delete;

    const std::string &Path() const { return m_path; }
    // Writes the bytes as the file `name` of the directory; aborts when that fails, since a
    // run that cannot write its input tests nothing.
    void Write(const std::string &name, const uint8_t *data, size_t size) {
        const std::string path = m_path + "/" + name;
        std::FILE *f = std::fopen(path.c_str(), "wb");
        if (!f || std::fwrite(data, 1, size, f) != size || std::fclose(f) != 0) std::abort();
        m_files.push_back(path);
    }

private:
    std::string m_path;
    std::vector<std::string> m_files;
};

} // namespace vxfuzz
