// An ordered map from text to text for small keyed tables. Keys compare case-sensitively
// (CVXString::Compare). A missing key and an empty value look the same to Find.
#pragma once

#include "platform/VXExport.h"

#include "foundation/VXString.h"
#include "storage/PtrTree.h"

namespace vx VX_API {

class CVXStringMapItem {
public:
    CVXStringMapItem() = default;
    explicit CVXStringMapItem(const CVXString &key, const CVXString &value = CVXString())
        : m_szKey(key), m_szValue(value) {}

    CVXString m_szKey;
    CVXString m_szValue;
};

// The map owns its items. Copies are deep: each copy has items of its own.
class CVXStringMap : public CPtrTree<CVXStringMapItem> {
public:
    CVXStringMap() : CPtrTree<CVXStringMapItem>(true) {}
    CVXStringMap(const CVXStringMap &other) : CVXStringMap() { CloneFrom(other); }
    CVXStringMap &operator=(const CVXStringMap &other) {
        CloneFrom(other);
        return *this;
    }
    CVXStringMap(CVXStringMap &&) noexcept = default;
    CVXStringMap &operator=(CVXStringMap &&) noexcept = default;
    ~CVXStringMap() override = default;

    int nComp(const CVXStringMapItem *a, const CVXStringMapItem *b) const override {
        return a->m_szKey.Compare(b->m_szKey);
    }

    // False, with the map unchanged, when the key is present already.
    bool Add(const CVXString &key, const CVXString &value);
    // The value of the key; the empty string when the key is missing. Never restructures.
    CVXString Find(const CVXString &key) const;
    // Whether the key was there (and is now gone).
    bool Remove(const CVXString &key);
};

} // namespace VX_API
