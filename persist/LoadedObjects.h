// CLoadedObjects: an owner of every object that loads from archives created, so that a host can
// free a loaded graph as a whole, and a failed load loses nothing.
//
// The library's collections never delete their elements, and the classes that own theirs
// (a point sequence, a transformation table) delete only those. A graph read from an archive
// therefore cannot be freed by deleting its root. While a CLoadedObjects::CCollector lives, every
// object that the binary or XML archive creates on that thread joins the owner; the owner notices
// when any of them is destroyed (by its owning container or by the archive after a failure), and
// FreeAll deletes those still alive, in the order they were created. A container is created
// before the objects it reads, so it is deleted first and deletes what it owns; what nobody owns
// is deleted by the owner. Each object is deleted exactly once.
//
// A host that keeps a loaded object beyond the owner's life takes it out with Release.
#pragma once

#include "platform/VXExport.h"

#include <cstddef>
#include <functional>
#include <unordered_map>
#include <utility>
#include <vector>

namespace vx VX_API {

class ISerObject;

class CLoadedObjects {
public:
    CLoadedObjects();
    // Frees the objects still alive.
    ~CLoadedObjects();
    CLoadedObjects(const CLoadedObjects &) = delete;
    CLoadedObjects &operator=(const CLoadedObjects &) = delete;

    // While a collector lives, the objects that archives create on this thread join `owner`.
    // Collectors nest: the innermost one collects.
    class CCollector {
    public:
        explicit CCollector(CLoadedObjects &owner);
        ~CCollector();
        CCollector(const CCollector &) = delete;
        CCollector &operator=(const CCollector &) = delete;

    private:
        CLoadedObjects *m_pPrevious;
    };

    // Deletes every object still alive, in the order of creation, and forgets them all.
    void FreeAll();
    // The owner lets go of `object` (and of nothing else): the caller owns it from now on.
    void Release(const ISerObject *object);
    // The owner lets go of everything.
    void ReleaseAll();
    // The number of objects the owner holds and that are still alive.
    size_t GetCount() const;
    bool Holds(const ISerObject *object) const;

private:
    friend void NoteLoadedObject(ISerObject *object);
    friend void NoteSerObjectDestroyed(const ISerObject *object);
    void Add(ISerObject *object);

    // The objects in the order of creation; an address may recur when memory is reused.
    std::vector<ISerObject *> m_order;
    // The live objects, each with its place in m_order.
    std::unordered_map<const ISerObject *, size_t> m_alive;
};

// Called by the archives for each object they create: it joins this thread's collector, if any.
void NoteLoadedObject(ISerObject *object);
// Called by every ISerObject destructor: the object leaves any owner that holds it.
void NoteSerObjectDestroyed(const ISerObject *object);

// Loads nest as deep as the document's objects do, and a level takes several frames (more
// still under the sanitizers), so a thread's own stack (often 1 MiB for a worker) would not hold
// the archives' nesting limit. The archives therefore read the fields of an object at a depth
// that is a multiple of kLevelsPerStack on a new thread with a stack of kNestedStackBytes, and
// wait for it: the caller's stack holds at most kLevelsPerStack levels. The thread collects
// into the caller's CLoadedObjects; an exception of `work` travels on in the caller. A thread
// that cannot be made raises CVXComError (E_OUTOFMEMORY).
constexpr int kLevelsPerStack = 100;
constexpr size_t kNestedStackBytes = size_t(8) << 20;
// Runs `work` on a new thread with a stack of kNestedStackBytes and waits for it.
void RunOnNestedStack(const std::function<void()> &work);
// Every object read passes here: at the other levels `work` runs directly, without being
// wrapped in a std::function.
template <class F>
void RunNestedLoad(int depth, F &&work) {
    if (depth == 0 || depth % kLevelsPerStack != 0)
        work();
    else
        RunOnNestedStack(std::function<void()>(std::forward<F>(work)));
}

} // namespace VX_API
