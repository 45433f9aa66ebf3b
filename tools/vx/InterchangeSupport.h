// What the interchange commands of vx (import, export, draw, clip) share: their options, their
// output (standard output or a file replaced atomically), and a progress bar on a terminal.
#pragma once

#include "Command.h"

#include "Lines.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace vx {
class CAsciiProgress;
class CTerminalProgress;
} // namespace vx

namespace vxtool {

// The exit code when output could not be written (a closed pipe, a full disk).
inline constexpr int kOutputFailed = 1;

struct Options {
    std::vector<std::string> positional;
    std::map<std::string, std::string> values; // "--to" -> "wkt"
    bool Has(const char *name) const { return values.count(name) != 0; }
    const std::string &Value(const char *name) const { return values.at(name); }
};

// Splits the arguments into positional ones and the options named in `valued`, each of which
// takes the next argument as its value. Returns 0, or the exit code of a usage failure (an
// unknown option, a missing value, a wrong count of positional arguments).
int ParseOptions(const Args &args, const std::vector<std::string> &valued, size_t positional,
                 const char *usage, Options &out);

// Writes the text to standard output (an empty path) or to the file, which is replaced only
// when the new text is complete. Returns 0, or kOutputFailed after a message.
int EmitText(const std::string &text, const std::string &path);

// Titles of the progress bars (string resources of the tool, in the library's three languages).
enum : unsigned int { IDS_VX_EXPORT = 9702, IDS_VX_DRAW = 9703 };

// A progress bar over a number of lines, drawn on standard error only when that is a terminal.
class CLineProgress {
public:
    CLineProgress(unsigned int titleId, size_t lines);
    ~CLineProgress();
    CLineProgress(const CLineProgress &) = delete;
    CLineProgress &operator=(const CLineProgress &) = delete;

    // The callback that moves the bar one line on.
    vxinterchange::LineDone Step();

private:
    std::unique_ptr<vx::CTerminalProgress> m_sink;
    std::unique_ptr<vx::CAsciiProgress> m_progress;
    size_t m_lines;
    size_t m_done = 0;
};

} // namespace vxtool
