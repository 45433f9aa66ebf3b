// The tree a host may hand to the creator registry: creators ordered by class name,
// case-sensitive. The tree does not own the creators (they are statics of their classes).
#pragma once

#include "platform/VXExport.h"

#include "persist/RuntimeCreator.h"
#include "storage/PtrTree.h"

namespace vx VX_API {

class CRTCTree : public CPtrTree<CRuntimeCreator> {
public:
    CRTCTree() : CPtrTree<CRuntimeCreator>(false) {}
    int nComp(const CRuntimeCreator *a, const CRuntimeCreator *b) const override {
        return a->ClassName().Compare(b->ClassName());
    }
    // The creator of that name, or null.
    const CRuntimeCreator *ObjectCreator(const CVXString &name) const {
        const CRuntimeCreator probe(name);
        return Find(&probe);
    }
};

} // namespace VX_API
