#include "platform/UserPrompt.h"

#include "platform/VXString.h"

#include <atomic>
#include <cstdio>

namespace vx {

namespace {

std::atomic<PromptLogSink> g_logSink{nullptr};
std::atomic<PromptLogSink> g_hostLogSink{nullptr};

void LogWithoutHost(int level, const CVXString &text) {
    if (PromptLogSink sink = g_logSink.load())
        sink(level, text);
    else
        std::fprintf(stderr, "%s\n", static_cast<const char *>(text));
}

// Without a host: messages go to the log, questions answer Cancel, nobody breaks off.
class CNoHostPrompt : public IUserPrompt {
public:
    int AskRetryCancel(const CVXString &text) override {
        LogWithoutHost(kLogWarning, text);
        return IDCANCEL;
    }
    void ShowMessage(const CVXString &text, int icon) override {
        LogWithoutHost(icon == IconError ? kLogError : kLogWarning, text);
    }
    bool BreakRequested() override { return false; }
};

CNoHostPrompt g_noHost;
std::atomic<IUserPrompt *> g_prompt{nullptr};

} // namespace

void SetUserPrompt(IUserPrompt *prompt) {
    g_prompt.store(prompt);
}

IUserPrompt &GetUserPrompt() {
    IUserPrompt *p = g_prompt.load();
    return p ? *p : g_noHost;
}

void SetPromptLogSink(PromptLogSink sink) {
    g_logSink.store(sink);
}

void SetHostLogSink(PromptLogSink sink) {
    g_hostLogSink.store(sink);
}

void LogToHost(int level, const CVXString &text) {
    if (PromptLogSink sink = g_hostLogSink.load())
        sink(level, text);
    else if (level <= kLogWarning)
        std::fprintf(stderr, "%s\n", static_cast<const char *>(text));
}

} // namespace vx
