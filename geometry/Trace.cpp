#include "geometry/Trace.h"

#include <atomic>

namespace vx {

namespace {
std::atomic<GeometryTraceSink> g_traceSink{nullptr};
} // namespace

void SetGeometryTraceSink(GeometryTraceSink sink) {
    g_traceSink.store(sink);
}

void GeometryTrace(const char *text) {
    if (GeometryTraceSink sink = g_traceSink.load()) sink(text);
}

} // namespace vx
