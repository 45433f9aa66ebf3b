// The trees, the cached file and the file-backed array against their peers in the same run:
// CPtrTree and CPtrSplayTree2 against std::set over the same object pointers (1,000,000 keys);
// CULongArrayFile against an in-memory std::vector and against pread/pwrite of the same 4 bytes
// (10,000,000 elements); CCachedFile against pread/pwrite of the same bytes, with a working set
// that fits the cache and one that does not. The ratios (ours over peer) are printed at the end.
//
// Array and file benchmarks time one access per iteration, so a short --benchmark_min_time
// gives a fair figure without touching every element.
#include "BenchRatio.h"
#include "storage/CachedFile.h"
#include "storage/PtrSplayTree2.h"
#include "storage/PtrTree.h"
#include "storage/ULongArrayFile.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <map>
#include <memory>
#include <numeric>
#include <random>
#include <set>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using namespace vx;

// Keys of the tree benchmarks. The splay tree runs its repair, a walk of the whole tree, at
// every hundredth insertion whatever the shape, so building it costs O(n^2 / 100): at a million
// keys that is a quarter of an hour per pass, so it is measured at a tenth of that.
constexpr int64_t kTreeKeys = 1000000;
constexpr int64_t kSplayTreeKeys = 100000;
constexpr uint64_t kArrayElements = 10000000;
constexpr size_t kAccessPattern = 1 << 20; // random indices, reused cyclically
constexpr uint32_t kPageSize = 4096;
constexpr uint16_t kCachePages = 64;
constexpr uint64_t kFitPages = 32;     // a working set inside the cache
constexpr uint64_t kSpillPages = 4096; // 16 MiB: far beyond it
constexpr uint32_t kChunk = 256;       // bytes per file access

// ---- trees ----

// n distinct keys in random order, and the same keys in another random order for look-ups.
struct CTreeKeys {
    explicit CTreeKeys(size_t n) : keys(n), probes(n) {
        std::iota(keys.begin(), keys.end(), 0u);
        std::mt19937 rng(1);
        std::shuffle(keys.begin(), keys.end(), rng);
        for (size_t i = 0; i < n; ++i)
            probes[i] = &keys[i];
        std::shuffle(probes.begin(), probes.end(), rng);
    }
    std::vector<uint32_t> keys;
    std::vector<const uint32_t *> probes;
};

const CTreeKeys &TreeKeys(const benchmark::State &state) {
    static std::map<int64_t, std::unique_ptr<CTreeKeys>> cache;
    auto &pKeys = cache[state.range(0)];
    if (!pKeys) pKeys = std::make_unique<CTreeKeys>(static_cast<size_t>(state.range(0)));
    return *pKeys;
}

int CompareKeys(const void *a, const void *b) {
    const uint32_t x = *static_cast<const uint32_t *>(a), y = *static_cast<const uint32_t *>(b);
    return x < y ? -1 : (x > y ? 1 : 0);
}

class CKeyTree : public CPtrTree<uint32_t> {
public:
    CKeyTree() : CPtrTree<uint32_t>(false) {}
    int nComp(const uint32_t *a, const uint32_t *b) const override { return CompareKeys(a, b); }
};

class CKeySplayTree : public CPtrSplayTree2 {
public:
    int nComp(const void *a, const void *b) override { return CompareKeys(a, b); }
};

struct DerefLess {
    bool operator()(const uint32_t *a, const uint32_t *b) const { return *a < *b; }
};
using KeySet = std::set<const uint32_t *, DerefLess>;

template <class Insert>
void InsertAll(const benchmark::State &state, const Insert &insert) {
    for (const uint32_t &key : TreeKeys(state).keys)
        insert(&key);
}

// One pass inserts all keys into a new container.
template <class Container, class Insert>
void InsertPasses(benchmark::State &state, const Insert &insert) {
    for (auto _ : state) {
        Container c;
        InsertAll(state, [&](const uint32_t *p) { insert(c, p); });
        benchmark::DoNotOptimize(&c);
    }
}

void BM_TreeInsert_PtrTree(benchmark::State &state) {
    InsertPasses<CKeyTree>(state, [](CKeyTree &t, const uint32_t *p) { t.bInsert(p); });
}

void BM_TreeInsert_SplayTree2(benchmark::State &state) {
    InsertPasses<CKeySplayTree>(
        state, [](CKeySplayTree &t, const uint32_t *p) { t.Insert(const_cast<uint32_t *>(p)); });
}

void BM_TreeInsert_StdSet(benchmark::State &state) {
    InsertPasses<KeySet>(state, [](KeySet &set, const uint32_t *p) { set.insert(p); });
}

// One pass looks every key up once, in the probe order.
template <class Tree, class Lookup>
void LookupAll(benchmark::State &state, Tree &tree, const Lookup &lookup) {
    for (auto _ : state) {
        size_t found = 0;
        for (const uint32_t *probe : TreeKeys(state).probes)
            found += lookup(tree, probe) ? 1 : 0;
        benchmark::DoNotOptimize(found);
    }
}

// Building the pointer tree takes a while, so both of its look-up benchmarks share one.
CKeyTree &SharedPtrTree(const benchmark::State &state) {
    static std::map<int64_t, std::unique_ptr<CKeyTree>> cache;
    auto &pTree = cache[state.range(0)];
    if (!pTree) {
        pTree = std::make_unique<CKeyTree>();
        InsertAll(state, [&](const uint32_t *p) { pTree->bInsert(p); });
    }
    return *pTree;
}

void BM_TreeLookup_PtrTreeFind(benchmark::State &state) {
    LookupAll(state, SharedPtrTree(state),
              [](const CKeyTree &t, const uint32_t *p) { return t.Find(p); });
}

void BM_TreeLookup_PtrTreeSplaying(benchmark::State &state) {
    LookupAll(state, SharedPtrTree(state),
              [](CKeyTree &t, const uint32_t *p) { return t.pLookup(p); });
}

void BM_TreeLookup_SplayTree2(benchmark::State &state) {
    CKeySplayTree tree;
    InsertAll(state, [&](const uint32_t *p) { tree.Insert(const_cast<uint32_t *>(p)); });
    LookupAll(state, tree, [](CKeySplayTree &t, const uint32_t *p) { return t.Lookup(p); });
}

void BM_TreeLookup_StdSet(benchmark::State &state) {
    KeySet set;
    InsertAll(state, [&](const uint32_t *p) { set.insert(p); });
    LookupAll(state, set, [](const KeySet &s, const uint32_t *p) { return s.count(p) != 0; });
}

// ---- file-backed array ----

// Random element indices (or page numbers) below n, reused cyclically.
std::vector<uint64_t> RandomIndices(uint64_t n, unsigned seed) {
    std::mt19937_64 rng(seed);
    std::uniform_int_distribution<uint64_t> pick(0, n - 1);
    std::vector<uint64_t> indices(kAccessPattern);
    for (auto &i : indices)
        i = pick(rng);
    return indices;
}

const std::vector<uint64_t> &RandomElements() {
    static const std::vector<uint64_t> indices = RandomIndices(kArrayElements, 2);
    return indices;
}

// The index of the n-th access: in order, or from the random pattern.
uint64_t IndexAt(uint64_t n, bool bRandom) {
    return bRandom ? RandomElements()[n % kAccessPattern] : n % kArrayElements;
}

// A temporary file of the given size whose name is gone at once; closed by the destructor.
class CRawFile {
public:
    explicit CRawFile(uint64_t nBytes) {
        const char *dir = std::getenv("TMPDIR");
        std::string name = std::string(dir && *dir ? dir : "/tmp") + "/vx_storage_benchXXXXXX";
        m_fd = mkstemp(name.data());
        if (m_fd < 0) std::abort();
        unlink(name.c_str());
        if (ftruncate(m_fd, static_cast<off_t>(nBytes)) != 0) std::abort();
    }
    ~CRawFile() { close(m_fd); }
    CRawFile(const CRawFile &) = delete;
    CRawFile &operator=(const CRawFile &) = delete;
    int fd() const { return m_fd; }

private:
    int m_fd;
};

// The peer's access: one pread or pwrite of the same bytes.
void RawAccess(int fd, void *p, size_t n, uint64_t offset, bool bWrite) {
    const ssize_t done = bWrite ? pwrite(fd, p, n, static_cast<off_t>(offset))
                                : pread(fd, p, n, static_cast<off_t>(offset));
    benchmark::DoNotOptimize(done);
}

// One access per iteration: the n-th goes to the place at(n).
template <class Place, class Access>
void Accesses(benchmark::State &state, const Place &at, const Access &access) {
    benchmark::DoNotOptimize(at(0)); // builds the access pattern before the clock runs
    uint64_t n = 0;
    for (auto _ : state)
        access(at(n++));
}

// The element of the n-th access.
auto ElementAt(bool bRandom) {
    return [bRandom](uint64_t n) { return IndexAt(n, bRandom); };
}

void ArrayFile(benchmark::State &state, bool bRandom, bool bWrite) {
    CULongArrayFile array(kArrayElements);
    Accesses(state, ElementAt(bRandom), [&](uint64_t i) {
        if (bWrite)
            array.SetAt(i, static_cast<uint32_t>(i));
        else
            benchmark::DoNotOptimize(array.GetAt(i));
    });
}

void Vector(benchmark::State &state, bool bRandom, bool bWrite) {
    std::vector<uint32_t> values(kArrayElements);
    Accesses(state, ElementAt(bRandom), [&](uint64_t i) {
        if (bWrite)
            values[i] = static_cast<uint32_t>(i);
        else
            benchmark::DoNotOptimize(values[i]);
        benchmark::ClobberMemory();
    });
}

void PreadPwrite(benchmark::State &state, bool bRandom, bool bWrite) {
    CRawFile file(kArrayElements * sizeof(uint32_t));
    Accesses(state, ElementAt(bRandom), [&](uint64_t i) {
        auto value = static_cast<uint32_t>(i);
        RawAccess(file.fd(), &value, sizeof value, i * sizeof value, bWrite);
    });
}

// ---- cached file ----

const std::vector<uint64_t> &RandomPages(uint64_t nPages) {
    static const std::vector<uint64_t> fit = RandomIndices(kFitPages, 3);
    static const std::vector<uint64_t> spill = RandomIndices(kSpillPages, 4);
    return nPages == kFitPages ? fit : spill;
}

// The offset of the n-th access: a random page, and a place in it that keeps the chunk inside.
uint64_t PageOffsetAt(uint64_t n, uint64_t nPages) {
    return RandomPages(nPages)[n % kAccessPattern] * kPageSize + (n * kChunk) % kPageSize;
}

auto PageAt(uint64_t nPages) {
    return [nPages](uint64_t n) { return PageOffsetAt(n, nPages); };
}

void CachedFile(benchmark::State &state, uint64_t nPages, bool bWrite) {
    CCachedFile file(kCachePages);
    if (!file.OpenTemp(CVXString(), kPageSize)) std::abort();
    file.SetLength(nPages * kPageSize);
    char chunk[kChunk] = {};
    Accesses(state, PageAt(nPages), [&](uint64_t offset) {
        file.Seek(offset);
        if (bWrite)
            file.Write(chunk, kChunk);
        else
            file.Read(chunk, kChunk);
        benchmark::DoNotOptimize(chunk);
    });
    file.Close();
}

void PagesPreadPwrite(benchmark::State &state, uint64_t nPages, bool bWrite) {
    CRawFile file(nPages * kPageSize);
    char chunk[kChunk] = {};
    Accesses(state, PageAt(nPages),
             [&](uint64_t offset) { RawAccess(file.fd(), chunk, kChunk, offset, bWrite); });
}

// The peers of each family, and the access kinds each is measured with.
using AccessRun = void (*)(benchmark::State &, bool bRandom, bool bWrite);
struct CNamedRun {
    const char *name;
    AccessRun run;
};
const CNamedRun kArrayRuns[] = {
    {"ULongArrayFile", ArrayFile}, {"Vector", Vector}, {"PreadPwrite", PreadPwrite}};
const char *const kArrayKinds[] = {"SeqRead", "SeqWrite", "RandomRead", "RandomWrite"};

using PageRun = void (*)(benchmark::State &, uint64_t nPages, bool bWrite);
struct CNamedPageRun {
    const char *name;
    PageRun run;
};
const CNamedPageRun kPageRuns[] = {{"CachedFile", CachedFile}, {"PreadPwrite", PagesPreadPwrite}};
const char *const kPageKinds[] = {"FitRead", "FitWrite", "SpillRead", "SpillWrite"};

std::string ArrayName(int kind, const char *peer) {
    return std::string("BM_Array") + kArrayKinds[kind] + "_" + peer;
}
std::string PageName(int kind, const char *peer) {
    return std::string("BM_Pages") + kPageKinds[kind] + "_" + peer;
}

void RegisterFileBenchmarks() {
    for (int kind = 0; kind < 4; ++kind) {
        const bool bRandom = kind >= 2, bWrite = kind % 2 == 1;
        for (const CNamedRun &r : kArrayRuns)
            benchmark::RegisterBenchmark(
                ArrayName(kind, r.name).c_str(),
                [r, bRandom, bWrite](benchmark::State &state) { r.run(state, bRandom, bWrite); });
        const uint64_t nPages = kind < 2 ? kFitPages : kSpillPages;
        for (const CNamedPageRun &r : kPageRuns)
            benchmark::RegisterBenchmark(
                PageName(kind, r.name).c_str(),
                [r, nPages, bWrite](benchmark::State &state) { r.run(state, nPages, bWrite); });
    }
}

void PrintRatios(const vxbench::CRatioReporter &rep) {
    constexpr double kTreeTarget = 1.5;
    const struct {
        const char *what;
        const char *ours;
        const char *peer;
    } trees[] = {
        {"CPtrTree insert vs std::set", "BM_TreeInsert_PtrTree", "BM_TreeInsert_StdSet"},
        {"CPtrTree Find vs std::set", "BM_TreeLookup_PtrTreeFind", "BM_TreeLookup_StdSet"},
        {"CPtrTree pLookup (splays) vs std::set", "BM_TreeLookup_PtrTreeSplaying",
         "BM_TreeLookup_StdSet"},
        {"CPtrSplayTree2 insert vs std::set", "BM_TreeInsert_SplayTree2", "BM_TreeInsert_StdSet"},
        {"CPtrSplayTree2 Lookup vs std::set", "BM_TreeLookup_SplayTree2", "BM_TreeLookup_StdSet"},
    };
    for (const auto &t : trees)
        for (int64_t n : {kSplayTreeKeys, kTreeKeys}) {
            const std::string count = std::to_string(n);
            std::string what = t.what;
            what.append(", ").append(count).append(" keys");
            rep.PrintRatio(what.c_str(), std::string(t.ours).append("/").append(count),
                           std::string(t.peer).append("/").append(count), kTreeTarget);
        }
    for (int kind = 0; kind < 4; ++kind) {
        const std::string what = std::string("CULongArrayFile ") + kArrayKinds[kind];
        rep.PrintRatio((what + " vs std::vector").c_str(), ArrayName(kind, "ULongArrayFile"),
                       ArrayName(kind, "Vector"));
        rep.PrintRatio((what + " vs pread/pwrite").c_str(), ArrayName(kind, "ULongArrayFile"),
                       ArrayName(kind, "PreadPwrite"));
    }
    for (int kind = 0; kind < 4; ++kind)
        rep.PrintRatio(
            (std::string("CCachedFile ") + kPageKinds[kind] + " vs pread/pwrite").c_str(),
            PageName(kind, "CachedFile"), PageName(kind, "PreadPwrite"));
}

} // namespace

BENCHMARK(BM_TreeInsert_PtrTree)->Arg(kTreeKeys)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TreeInsert_SplayTree2)->Arg(kSplayTreeKeys)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TreeInsert_StdSet)->Arg(kSplayTreeKeys)->Arg(kTreeKeys)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TreeLookup_PtrTreeFind)->Arg(kTreeKeys)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TreeLookup_PtrTreeSplaying)->Arg(kTreeKeys)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TreeLookup_SplayTree2)->Arg(kSplayTreeKeys)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TreeLookup_StdSet)->Arg(kSplayTreeKeys)->Arg(kTreeKeys)->Unit(benchmark::kMillisecond);

int main(int argc, char **argv) {
    RegisterFileBenchmarks();
    benchmark::Initialize(&argc, argv);
    vxbench::CRatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("\n");
    PrintRatios(reporter);
    benchmark::Shutdown();
    return 0;
}
