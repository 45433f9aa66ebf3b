#include "platform/Assert.h"

#include <atomic>
#include <cstdio>

namespace vx {

namespace {
void StderrSink(const char *message) {
    std::fprintf(stderr, "%s\n", message);
}

std::atomic<AssertSink> g_sink{&StderrSink};
} // namespace

void SetAssertSink(AssertSink sink) {
    g_sink.store(sink ? sink : &StderrSink);
}

void AssertReport(const char *expression, const char *file, int line) {
    char text[1024];
    std::snprintf(text, sizeof text, "Assertion failure %s %s %d", expression ? expression : "",
                  file ? file : "", line);
    g_sink.load()(text);
}

} // namespace vx
