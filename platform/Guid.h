// Globally unique identifiers: random generation and the registry text form
// "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}".
#pragma once

#include "platform/VXExport.h"

#include "platform/VXString.h"
#include "platform/VXTypes.h"

namespace vx VX_API {

// The result of CLSIDFromString for a text that is not an identifier in registry form.
inline constexpr HRESULT CO_E_CLASSSTRING = static_cast<HRESULT>(0x800401F3u);

// A new random identifier (version 4, variant 1) from std::random_device. Returns S_OK, or
// E_POINTER for a null argument.
HRESULT CoCreateGuid(GUID *pGuid);

// The registry form with braces and upper-case hex digits.
CVXString StringFromCLSID(const GUID &guid);

// Parses exactly the registry form (braces, 8-4-4-4-12 hex digits of either case, nothing else).
// Returns S_OK and fills *pGuid, or CO_E_CLASSSTRING (E_POINTER for a null argument) and leaves
// *pGuid unchanged.
HRESULT CLSIDFromString(const char16_t *text, GUID *pGuid);

} // namespace VX_API
