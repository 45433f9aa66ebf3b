#include "persist/LoadedObjects.h"

#include "persist/SerObject.h"

#include "platform/Errors.h"

#include <atomic>
#include <exception>
#include <mutex>
#include <unordered_set>

#include <pthread.h>

namespace vx {

namespace {

// Owners are few and destructions many: a destructor looks no further than the count while no
// owner exists. The mutex guards the set and every owner's table, since a host may destroy
// objects on another thread than the one that loaded them.
std::atomic<int> g_nOwners{0};
std::mutex g_mutex;
std::unordered_set<CLoadedObjects *> &Owners() {
    static std::unordered_set<CLoadedObjects *> owners;
    return owners;
}

thread_local CLoadedObjects *t_pCollecting = nullptr;

// The work of one nested thread: what it runs, the collector it continues, what it raised.
struct SNestedWork {
    const std::function<void()> *work;
    CLoadedObjects *collecting;
    std::exception_ptr error;
};

void *RunNestedWork(void *p) {
    auto *nested = static_cast<SNestedWork *>(p);
    t_pCollecting = nested->collecting;
    try {
        (*nested->work)();
    } catch (...) {
        nested->error = std::current_exception();
    }
    return nullptr;
}

} // namespace

CLoadedObjects::CLoadedObjects() {
    const std::lock_guard<std::mutex> lock(g_mutex);
    Owners().insert(this);
    ++g_nOwners;
}

CLoadedObjects::~CLoadedObjects() {
    FreeAll();
    const std::lock_guard<std::mutex> lock(g_mutex);
    Owners().erase(this);
    --g_nOwners;
}

CLoadedObjects::CCollector::CCollector(CLoadedObjects &owner) : m_pPrevious(t_pCollecting) {
    t_pCollecting = &owner;
}

CLoadedObjects::CCollector::~CCollector() {
    t_pCollecting = m_pPrevious;
}

void CLoadedObjects::Add(ISerObject *object) {
    const std::lock_guard<std::mutex> lock(g_mutex);
    m_alive[object] = m_order.size();
    m_order.push_back(object);
}

void CLoadedObjects::FreeAll() {
    for (size_t i = 0; i < m_order.size(); ++i) {
        ISerObject *object = m_order[i];
        {
            const std::lock_guard<std::mutex> lock(g_mutex);
            const auto it = m_alive.find(object);
            // Dead, or the address was reused by an object created later: that one is deleted
            // at its own place in the order.
            if (it == m_alive.end() || it->second != i) continue;
            m_alive.erase(it);
        }
        // Not under the lock: the destructor deletes what the object owns, and each of those
        // destructions reports itself.
        delete object;
    }
    const std::lock_guard<std::mutex> lock(g_mutex);
    m_order.clear();
    m_alive.clear();
}

void CLoadedObjects::Release(const ISerObject *object) {
    const std::lock_guard<std::mutex> lock(g_mutex);
    m_alive.erase(object);
}

void CLoadedObjects::ReleaseAll() {
    const std::lock_guard<std::mutex> lock(g_mutex);
    m_alive.clear();
    m_order.clear();
}

size_t CLoadedObjects::GetCount() const {
    const std::lock_guard<std::mutex> lock(g_mutex);
    return m_alive.size();
}

bool CLoadedObjects::Holds(const ISerObject *object) const {
    const std::lock_guard<std::mutex> lock(g_mutex);
    return m_alive.count(object) != 0;
}

void NoteLoadedObject(ISerObject *object) {
    if (t_pCollecting) t_pCollecting->Add(object);
}

void NoteSerObjectDestroyed(const ISerObject *object) {
    if (g_nOwners.load(std::memory_order_acquire) == 0) return;
    const std::lock_guard<std::mutex> lock(g_mutex);
    for (CLoadedObjects *owner : Owners())
        owner->m_alive.erase(object);
}

} // namespace vx

namespace vx {

void RunOnNestedStack(const std::function<void()> &work) {
    SNestedWork nested{&work, t_pCollecting, nullptr};
    pthread_attr_t attr;
    pthread_attr_init(&attr);
    pthread_attr_setstacksize(&attr, kNestedStackBytes);
    pthread_t thread;
    const int err = pthread_create(&thread, &attr, &RunNestedWork, &nested);
    pthread_attr_destroy(&attr);
    if (err != 0) throw CVXComError(E_OUTOFMEMORY, __FILE__, __LINE__);
    pthread_join(thread, nullptr);
    if (nested.error) std::rethrow_exception(nested.error);
}

} // namespace vx
