#include "persist/RuntimeCreator.h"

#include "persist/ArchiveB.h"
#include "persist/RTCTree.h"
#include "platform/Lists.h"
#include "platform/Object.h"

#include <mutex>

namespace vx {

namespace {

// The longest class name a binary archive can read back: names of 64 units or more are written
// but refused on loading.
constexpr unsigned int kMaxStoredName = 64;

// The two globals of the registry: the host's tree (null until SetRTCTree) and the list of
// creators waiting for it (block size 10, made at the first registration).
CRTCTree *&Tree() {
    static CRTCTree *tree = nullptr;
    return tree;
}

CBlockList<const CRuntimeCreator *> *&WaitingList() {
    static CBlockList<const CRuntimeCreator *> *list = nullptr;
    return list;
}

void Register(const CRuntimeCreator *creator) {
    if (Tree()) {
        Tree()->bInsert(const_cast<CRuntimeCreator *>(creator));
        return;
    }
    if (!WaitingList()) WaitingList() = new CBlockList<const CRuntimeCreator *>(10);
    WaitingList()->AddTail(creator);
}

const CRuntimeCreator *FindInWaitingList(const CVXString &name) {
    const auto *list = WaitingList();
    if (!list) return nullptr;
    for (POSITION pos = list->GetHeadPosition(); pos;) {
        const CRuntimeCreator *c = list->GetNext(pos);
        if (c->ClassName().Compare(name) == 0) return c;
    }
    return nullptr;
}

} // namespace

CRuntimeCreator::CRuntimeCreator(const std::type_info *type, CreatorFunction creator,
                                 uint32_t schema)
    : m_szClassName(BareClassName(*type).c_str()), m_pfnCreate(creator), m_nSchema(schema) {
    Register(this);
}

CRuntimeCreator::CRuntimeCreator(const CVXString &name)
    : m_szClassName(name), m_pfnCreate(nullptr), m_nSchema(0) {}

const CRuntimeCreator *CRuntimeCreator::RuntimeCreator(const CVXString &name) {
    static std::once_flag once;
    std::call_once(once, RegisterLibraryClasses);
    if (CRTCTree *tree = Tree()) return tree->ObjectCreator(name);
    return FindInWaitingList(name);
}

void SetRTCTree(CRTCTree *tree) {
    Tree() = tree;
    CBlockList<const CRuntimeCreator *> *&list = WaitingList();
    if (!list || !tree) return;
    while (!list->IsEmpty())
        tree->bInsert(const_cast<CRuntimeCreator *>(list->RemoveHead()));
    delete list;
    list = nullptr;
}

void CRuntimeCreator::Store(CArchiveB &ar) const {
    const char *name = m_szClassName;
    const uint16_t len = static_cast<uint16_t>(std::char_traits<char>::length(name));
    ar << static_cast<uint16_t>(m_nSchema & 0xFFFF) << len;
    ar.Write(name, len);
}

const CRuntimeCreator *CRuntimeCreator::Load(CArchiveB &ar, unsigned int *schema) {
    if (!schema) return nullptr;
    uint16_t storedSchema = 0, len = 0;
    ar >> storedSchema >> len;
    *schema = storedSchema;
    if (len >= kMaxStoredName) return nullptr;
    char name[kMaxStoredName + 1];
    if (ar.Read(name, len) != len) return nullptr;
    name[len] = '\0';
    return RuntimeCreator(CVXString(name));
}

} // namespace vx
