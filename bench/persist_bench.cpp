// The archives against their peers: the binary archive against plain fwrite/fread of the same
// bytes, the XML archive against pugixml parsing and saving the same document. The ratios (ours
// over peer, per pass) are printed at the end.
#include "BenchRatio.h"
#include "geometry/VXCoord.h"
#include "persist/ArchiveB.h"
#include "persist/ArchiveX.h"
#include "persist/SerCollections.h"
#include "platform/CodePage.h"
#include "platform/File.h"

#include <benchmark/benchmark.h>
#include <pugixml.hpp>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace vx;

constexpr int kBinaryCount = 1000000;
constexpr int kXmlCount = 100000;

std::string TempPath(const char *name) {
    const char *dir = std::getenv("TMPDIR");
    return std::string(dir && *dir ? dir : "/tmp") + "/" + name;
}

// An array of n points with distinct coordinates; it owns nothing, so Free deletes the points.
std::unique_ptr<CSerObArray> MakePoints(int n) {
    auto array = std::make_unique<CSerObArray>();
    array->SetSize(n);
    for (int i = 0; i < n; ++i)
        array->SetAt(i, new CVXCoord(1000.0 + i * 0.125, 2000.0 - i * 0.25, i * 0.01, 0));
    return array;
}

void Free(ISerObject *object) {
    auto *array = dynamic_cast<CSerObArray *>(object);
    if (array)
        for (int i = 0; i < array->GetSize(); ++i)
            delete array->GetAt(i);
    delete object;
}

struct PointsHolder {
    explicit PointsHolder(int n) : points(MakePoints(n)) {}
    ~PointsHolder() {
        for (int i = 0; i < points->GetSize(); ++i)
            delete points->GetAt(i);
    }
    std::unique_ptr<CSerObArray> points;
};

const PointsHolder &BinaryPoints() {
    static const PointsHolder holder(kBinaryCount);
    return holder;
}
const PointsHolder &XmlPoints() {
    static const PointsHolder holder(kXmlCount);
    return holder;
}

void WriteBinary(const std::string &path, const CSerObArray &points) {
    CFile file(CVXString(path.c_str()), CFile::modeCreate | CFile::modeWrite);
    CArchiveB ar(&file, CArchiveB::store, CArchiveB::kLargeBufferSize);
    ar.WriteObject(&points);
    ar.Close();
    file.Close();
}

std::vector<char> FileBytes(const std::string &path) {
    std::vector<char> bytes;
    if (FILE *f = std::fopen(path.c_str(), "rb")) {
        char chunk[65536];
        size_t n;
        while ((n = std::fread(chunk, 1, sizeof chunk, f)) > 0)
            bytes.insert(bytes.end(), chunk, chunk + n);
        std::fclose(f);
    }
    return bytes;
}

void BM_BinaryWrite_Archive(benchmark::State &state) {
    const std::string path = TempPath("vx_persist_bench.bin");
    for (auto _ : state)
        WriteBinary(path, *BinaryPoints().points);
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(FileBytes(path).size()));
}

void BM_BinaryWrite_Raw(benchmark::State &state) {
    const std::string path = TempPath("vx_persist_bench.bin");
    WriteBinary(path, *BinaryPoints().points);
    const std::vector<char> bytes = FileBytes(path);
    const std::string raw = TempPath("vx_persist_bench.raw");
    for (auto _ : state) {
        FILE *f = std::fopen(raw.c_str(), "wb");
        std::fwrite(bytes.data(), 1, bytes.size(), f);
        std::fclose(f);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(bytes.size()));
}

void BM_BinaryRead_Archive(benchmark::State &state) {
    const std::string path = TempPath("vx_persist_bench.bin");
    WriteBinary(path, *BinaryPoints().points);
    for (auto _ : state) {
        CFile file(CVXString(path.c_str()), CFile::modeRead);
        CArchiveB ar(&file, CArchiveB::load, CArchiveB::kLargeBufferSize);
        ISerObject *object = ar.ReadObject(nullptr);
        benchmark::DoNotOptimize(object);
        state.PauseTiming();
        Free(object);
        state.ResumeTiming();
    }
}

void BM_BinaryRead_Raw(benchmark::State &state) {
    const std::string path = TempPath("vx_persist_bench.bin");
    WriteBinary(path, *BinaryPoints().points);
    const size_t size = FileBytes(path).size();
    std::vector<char> buffer(size);
    for (auto _ : state) {
        FILE *f = std::fopen(path.c_str(), "rb");
        benchmark::DoNotOptimize(std::fread(buffer.data(), 1, size, f));
        std::fclose(f);
    }
}

CVXString SaveXml(const CSerObArray &points) {
    CArchiveX ar(false);
    ar.Save(u"Root", &points);
    return ar.XML();
}

std::string XmlUtf8() {
    const CVXString text = SaveXml(*XmlPoints().points);
    return WideToUtf8(text, static_cast<size_t>(text.GetLength()));
}

void BM_XmlSave_Archive(benchmark::State &state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(SaveXml(*XmlPoints().points));
}

void BM_XmlSave_Pugixml(benchmark::State &state) {
    const std::string text = XmlUtf8();
    pugi::xml_document doc;
    doc.load_buffer(text.data(), text.size());
    for (auto _ : state) {
        struct Sink : pugi::xml_writer {
            std::string out;
            void write(const void *data, size_t size) override {
                out.append(static_cast<const char *>(data), size);
            }
        } sink;
        doc.save(sink);
        benchmark::DoNotOptimize(sink.out.data());
    }
}

void BM_XmlLoad_Archive(benchmark::State &state) {
    const CVXString text = SaveXml(*XmlPoints().points);
    for (auto _ : state) {
        CArchiveX ar(true);
        ar.XML(text);
        ISerObject *object = nullptr;
        ar.Load(u"Root", object);
        benchmark::DoNotOptimize(object);
        state.PauseTiming();
        Free(object);
        state.ResumeTiming();
    }
}

void BM_XmlLoad_Pugixml(benchmark::State &state) {
    const std::string text = XmlUtf8();
    for (auto _ : state) {
        pugi::xml_document doc;
        benchmark::DoNotOptimize(doc.load_buffer(text.data(), text.size()));
    }
}

BENCHMARK(BM_BinaryWrite_Archive)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BinaryWrite_Raw)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BinaryRead_Archive)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BinaryRead_Raw)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_XmlSave_Archive)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_XmlSave_Pugixml)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_XmlLoad_Archive)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_XmlLoad_Pugixml)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv) {
    benchmark::Initialize(&argc, argv);
    vxbench::CRatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("\n");
    reporter.PrintRatio("binary write", "BM_BinaryWrite_Archive", "BM_BinaryWrite_Raw", 3);
    reporter.PrintRatio("binary read", "BM_BinaryRead_Archive", "BM_BinaryRead_Raw", 3);
    reporter.PrintRatio("XML save", "BM_XmlSave_Archive", "BM_XmlSave_Pugixml", 2);
    reporter.PrintRatio("XML load", "BM_XmlLoad_Archive", "BM_XmlLoad_Pugixml", 2);
    std::remove(TempPath("vx_persist_bench.bin").c_str());
    std::remove(TempPath("vx_persist_bench.raw").c_str());
    benchmark::Shutdown();
    return 0;
}
