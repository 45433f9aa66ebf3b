// The string resources: a compiled-in table from id to text in the three languages 1033
// (English), 1043 (Dutch) and 2052 (Chinese). The language is one process-wide setting, taken
// from VXCOMMON_LANG when the table is first used, else 1033.
#pragma once

#include "platform/VXExport.h"

namespace vx VX_API {

class CVXString;

enum : int { LANG_ENGLISH_US = 1033, LANG_DUTCH = 1043, LANG_CHINESE = 2052 };

void SetResourceLanguage(int langId);
int GetResourceLanguage();

// The text of resource `id` in the current language (falling back to English when the current
// language has none); false and an empty `out` when the id is unknown.
bool LoadResourceString(unsigned int id, CVXString &out);
// The same for an explicit language.
bool LoadResourceString(unsigned int id, int langId, CVXString &out);

// One row of a resource table: the id and its text in the three languages.
struct SResourceText {
    unsigned int id;
    const char16_t *english; // 1033
    const char16_t *dutch;   // 1043
    const char16_t *chinese; // 2052
};

// Adds a table of rows (kept by pointer: static storage) to the look-up. Subsystems with texts
// of their own register them; a later table does not override an id already present.
void RegisterResourceTable(const SResourceText *rows, unsigned int count);

// The ids the library itself uses.
enum : unsigned int {
    IDS_UNKNOWN = 34,          // "Unknown"
    IDS_INVALID_NUMBER = 35,   // "Invalid number"
    IDS_GRS80_RDNAPTRANS = 56, // present in the table, no user in the library
    IDS_FILE_OPEN_FAILED = 57, // "File %1 kan niet worden geopend,\noorzaak: %2"
    IDS_FILE_IN_USE = 58,      // "%1 in gebruik"
    // Texts this port adds for questions the original left to its hosts' dialogs.
    IDS_FILE_EXISTS_OVERWRITE = 9001 // "File %1 already exists. Overwrite it?"
};

} // namespace VX_API
