// The 8-bit code page of file and interface text: one process-wide setting, default
// Windows-1252, converted with iconv. Single-byte code pages are converted through tables built
// with iconv when the setting changes; others go through iconv for each conversion.
#pragma once

#include "platform/VXExport.h"

#include <string>

namespace vx VX_API {

// Sets the code page by its iconv name ("WINDOWS-1252", "ISO-8859-15", "UTF-8", "GBK").
// An unknown name raises CInvalidArgException and keeps the old setting.
void SetCodePage(const char *iconvName);
const char *GetCodePage();

// 8-bit text of the code page to UTF-16. Undecodable bytes become U+FFFD.
std::u16string CodePageToWide(const char *text, size_t len);
// UTF-16 to the code page. Units the code page cannot hold become '?'.
std::string WideToCodePage(const char16_t *text, size_t len);
// One unit to one byte of a single-byte code page ('?' when it has none).
char WideCharToCodePage(char16_t ch);

// Always UTF-8, whatever the setting (for the places that say UTF-8).
std::u16string Utf8ToWide(const char *text, size_t len);
std::string WideToUtf8(const char16_t *text, size_t len);

} // namespace VX_API
