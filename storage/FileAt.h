// Positional reads and writes on an open CFile (pread/pwrite on its descriptor): the file-backed
// caches reach any offset in one system call, and the file pointer is left alone. Failures raise
// CFileException as CFile's own operations do (diskFull for a full device or a file size limit).
#pragma once

#include "platform/VXExport.h"

#include "platform/File.h"

#include <cstdint>

namespace vx VX_API {

// Reads up to n bytes at the offset; fewer only at the end of the file. The number read.
uint32_t ReadAt(CFile &file, uint64_t nOffset, void *p, uint32_t n);
// Writes all n bytes at the offset, growing the file when needed.
void WriteAt(CFile &file, uint64_t nOffset, const void *p, uint32_t n);

} // namespace VX_API
