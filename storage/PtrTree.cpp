#include "storage/PtrTree.h"

#include <cmath>

namespace vx {

namespace treedetail {

bool bBalanced(uint32_t nSize, uint32_t nDepth) {
    // log2 through log10 and this constant, as the rule has always been computed: a size of 1
    // allows no depth at all and a size of 0 gives -infinity, so both are never balanced.
    constexpr double kLog10Of2 = 0.3010299956639812;
    return static_cast<double>(nDepth) < 2.0 * std::log10(static_cast<double>(nSize)) / kLog10Of2;
}

} // namespace treedetail

template class CSimpleTree<uint16_t>;
template class CSimpleTree<uint32_t>;

} // namespace vx
