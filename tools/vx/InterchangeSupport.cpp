#include "InterchangeSupport.h"

#include "LineFiles.h"

#include "platform/Resources.h"
#include "text/AsciiMeldingen.h"
#include "text/Progress.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <exception>

#include <unistd.h>

namespace vxtool {

namespace {

const vx::SResourceText kTexts[] = {
    {IDS_VX_EXPORT, u"Exporting lines", u"Lijnen exporteren", u"正在导出线"},
    {IDS_VX_DRAW, u"Drawing lines", u"Lijnen tekenen", u"正在绘制线"},
};

void RegisterTexts() {
    static const bool registered = [] {
        vx::RegisterResourceTable(kTexts, sizeof kTexts / sizeof kTexts[0]);
        return true;
    }();
    static_cast<void>(registered);
}

bool IsOption(const std::string &arg) {
    return arg.size() > 2 && arg.compare(0, 2, "--") == 0;
}

} // namespace

int ParseOptions(const Args &args, const std::vector<std::string> &valued, size_t positional,
                 const char *usage, Options &out) {
    for (size_t i = 0; i < args.size(); ++i) {
        if (!IsOption(args[i])) {
            out.positional.push_back(args[i]);
            continue;
        }
        if (std::find(valued.begin(), valued.end(), args[i]) == valued.end())
            return Fail("unknown option '" + args[i] + "'\n" + usage);
        if (i + 1 == args.size()) return Fail("option '" + args[i] + "' needs a value\n" + usage);
        out.values[args[i]] = args[i + 1];
        ++i;
    }
    if (out.positional.size() != positional) return Fail(usage);
    return 0;
}

int EmitText(const std::string &text, const std::string &path) {
    if (!path.empty()) {
        try {
            vxinterchange::WriteTextFile(path, text);
        } catch (const std::exception &e) {
            Fail(e.what());
            return kOutputFailed;
        }
        return 0;
    }
    const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    if (!written || std::fflush(stdout) != 0) {
        Fail(std::string("cannot write the output: ") + std::strerror(errno));
        return kOutputFailed;
    }
    return 0;
}

CLineProgress::CLineProgress(unsigned int titleId, size_t lines) : m_lines(lines) {
    if (!::isatty(STDERR_FILENO)) return;
    RegisterTexts();
    m_sink = std::make_unique<vx::CTerminalProgress>(stderr);
    vx::SetProgressSink(m_sink.get());
    m_progress = std::make_unique<vx::CAsciiProgress>(titleId);
    m_progress->Progress().SetParml(static_cast<int32_t>(std::min<size_t>(lines, INT32_MAX)));
}

CLineProgress::~CLineProgress() {
    if (!m_sink) return;
    m_progress.reset(); // closes the display through the sink
    vx::SetProgressSink(nullptr);
}

vxinterchange::LineDone CLineProgress::Step() {
    if (!m_progress) return {};
    return [this] {
        ++m_done;
        m_progress->Progress().SetPosl(static_cast<int32_t>(std::min(m_done, m_lines)));
    };
}

} // namespace vxtool
