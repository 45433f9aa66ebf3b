// Helpers for tests of serial forms: a binary archive over a memory file, both directions.
#pragma once

#include "platform/VXString.h"
#include "persist/ArchiveB.h"
#include "platform/File.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace vxtest {

using Bytes = std::vector<uint8_t>;

// The bytes that `write` puts into a storing archive.
template <class F>
Bytes Store(F write) {
    vx::CMemFile file;
    {
        vx::CArchiveB ar(&file, vx::CArchiveB::store);
        write(ar);
    }
    return Bytes(file.GetData(), file.GetData() + file.GetLength());
}

// Runs `read` on a loading archive over a copy of the bytes.
template <class F>
void Load(const Bytes &bytes, F read, int bufferSize = 4096) {
    vx::CMemFile file;
    if (!bytes.empty()) file.Write(bytes.data(), static_cast<unsigned int>(bytes.size()));
    file.SeekToBegin();
    vx::CArchiveB ar(&file, vx::CArchiveB::load, bufferSize);
    read(ar);
}

inline Bytes Ascii(const char *s) {
    return Bytes(s, s + std::strlen(s));
}

inline std::string Narrow(const vx::CVXString &s) {
    return static_cast<const char *>(s);
}

} // namespace vxtest
