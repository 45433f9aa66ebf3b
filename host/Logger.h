// NLogger: the library's one log, a text file per process kept in a ring of ten files per
// machine.
//
// Initialize picks the file: in the log directory the files named after the host with one
// character and an extension are listed; with none the number is 0, with one it is 1, with
// several the newest one's digit plus one (9 turns to 0). The file "<dir>/<host><n>.log" is then
// written from the start in UTF-8. Lines are written when their severity is at or below the
// verbosity (1 at start); Critical and Error lines are flushed at once. Before Initialize and
// after a failed open nothing is written. Initialize also routes the assertion report and the
// messages of the no-host user prompt into the log.
#pragma once

#include "platform/VXExport.h"

#include "platform/VXString.h"

namespace vx VX_API {
namespace NLogger {

enum Severity : int { Critical = 0, Error = 1, Warning = 2, Info = 3 };

// Opens the next file of the ring in `dir`; an empty `dir` means $TMPDIR, or /tmp without it.
void Initialize(const CVXString &dir);

int Verbosity();
void Verbosity(int nLevel);

// The path of the open log file; empty when the log is silent.
CVXString GetLogPath();

// " text\n".
void LogMessage(Severity severity, const CVXString &text);
// "<date and time> <source> <severity word> <text>\n".
void LogMessage(const CVXString &source, Severity severity, const CVXString &text);
void LogMessageNoNL(Severity severity, const CVXString &text);
void LogMessageNoNL(const CVXString &source, Severity severity, const CVXString &text);

template <class... Args>
void FormatMessage(Severity severity, const char16_t *format, const Args &...args) {
    CVXString text;
    text.Format(format, args...);
    LogMessage(severity, text);
}
template <class... Args>
void FormatMessage(const CVXString &source, Severity severity, const char16_t *format,
                   const Args &...args) {
    CVXString text;
    text.Format(format, args...);
    LogMessage(source, severity, text);
}
template <class... Args>
void FormatMessageNoNL(Severity severity, const char16_t *format, const Args &...args) {
    CVXString text;
    text.Format(format, args...);
    LogMessageNoNL(severity, text);
}
template <class... Args>
void FormatMessageNoNL(const CVXString &source, Severity severity, const char16_t *format,
                       const Args &...args) {
    CVXString text;
    text.Format(format, args...);
    LogMessageNoNL(source, severity, text);
}

// The word a severity writes: "Critical", "Error", "Warning", "Info".
const char16_t *SeverityWord(Severity severity);

} // namespace NLogger
} // namespace VX_API
