#include "platform/Resources.h"

#include "platform/VXString.h"

#include <atomic>
#include <cstdlib>
#include <mutex>
#include <vector>

namespace vx {

namespace {

// The texts of the foundation. Where the library has only one text for an id, that text stands
// in all three languages.
const SResourceText kFoundationTexts[] = {
    {IDS_UNKNOWN, u"Unknown", u"Onbekend", u"未知的"},
    {IDS_INVALID_NUMBER, u"Invalid number", u"Incorrect getal", u"无效的数字"},
    {IDS_GRS80_RDNAPTRANS, u"GRS80 RDNAPTRANS", u"GRS80 RDNAPTRANS", u"GRS80 RDNAPTRANS"},
    {IDS_FILE_OPEN_FAILED, u"File %1 kan niet worden geopend,\noorzaak: %2",
     u"File %1 kan niet worden geopend,\noorzaak: %2",
     u"File %1 kan niet worden geopend,\noorzaak: %2"},
    {IDS_FILE_IN_USE, u"%1 in gebruik", u"%1 in gebruik", u"%1 in gebruik"},
    {IDS_FILE_EXISTS_OVERWRITE, u"File %1 already exists. Overwrite it?",
     u"Bestand %1 bestaat al. Overschrijven?", u"文件 %1 已存在。是否覆盖？"},
};

struct Table {
    const SResourceText *rows;
    unsigned int count;
};

std::mutex g_mutex;
std::vector<Table> &Tables() {
    static std::vector<Table> tables{{kFoundationTexts, std::size(kFoundationTexts)}};
    return tables;
}

constexpr int kLanguageUnset = 0;
std::atomic<int> g_language{kLanguageUnset};

bool IsKnownLanguage(int id) {
    return id == LANG_ENGLISH_US || id == LANG_DUTCH || id == LANG_CHINESE;
}

// The language from VXCOMMON_LANG, read when the table is first used; 1033 otherwise.
int LanguageFromEnvironment() {
    const char *env = std::getenv("VXCOMMON_LANG");
    const int id = env ? std::atoi(env) : 0;
    return IsKnownLanguage(id) ? id : LANG_ENGLISH_US;
}

const char16_t *TextIn(const SResourceText &row, int lang) {
    switch (lang) {
    case LANG_DUTCH:
        return row.dutch ? row.dutch : row.english;
    case LANG_CHINESE:
        return row.chinese ? row.chinese : row.english;
    default:
        return row.english;
    }
}

} // namespace

void SetResourceLanguage(int langId) {
    g_language.store(IsKnownLanguage(langId) ? langId : LANG_ENGLISH_US);
}

int GetResourceLanguage() {
    int lang = g_language.load();
    if (lang == kLanguageUnset) {
        lang = LanguageFromEnvironment();
        int expected = kLanguageUnset;
        if (!g_language.compare_exchange_strong(expected, lang)) lang = expected;
    }
    return lang;
}

void RegisterResourceTable(const SResourceText *rows, unsigned int count) {
    std::lock_guard<std::mutex> lock(g_mutex);
    Tables().push_back({rows, count});
}

bool LoadResourceString(unsigned int id, int langId, CVXString &out) {
    std::lock_guard<std::mutex> lock(g_mutex);
    for (const Table &t : Tables()) {
        for (unsigned int i = 0; i < t.count; ++i) {
            if (t.rows[i].id == id) {
                out = TextIn(t.rows[i], langId);
                return true;
            }
        }
    }
    out.Empty();
    return false;
}

bool LoadResourceString(unsigned int id, CVXString &out) {
    return LoadResourceString(id, GetResourceLanguage(), out);
}

} // namespace vx
