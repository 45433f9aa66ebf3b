#include "storage/VXStringMap.h"

#include <memory>

namespace vx {

bool CVXStringMap::Add(const CVXString &key, const CVXString &value) {
    auto pItem = std::make_unique<CVXStringMapItem>(key, value);
    if (!bInsert(pItem.get())) return false; // the new item goes, the old one stays
    pItem.release();
    return true;
}

CVXString CVXStringMap::Find(const CVXString &key) const {
    const CVXStringMapItem probe(key);
    const CVXStringMapItem *pItem = CPtrTree::Find(&probe);
    return pItem ? pItem->m_szValue : CVXString();
}

bool CVXStringMap::Remove(const CVXString &key) {
    const CVXStringMapItem probe(key);
    return bDelete(&probe);
}

} // namespace vx
