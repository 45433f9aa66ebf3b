// The stand-in for message boxes and dialogs: an interface the host may install. Without a host,
// messages go to the log, questions answer Cancel, and the user never asks to break off.
#pragma once

#include "platform/VXExport.h"

namespace vx VX_API {

class CVXString;

class IUserPrompt {
public:
    enum { IDCANCEL = 2, IDRETRY = 4 };
    enum Icon { IconInformation = 0x40, IconWarning = 0x30, IconError = 0x10, IconQuestion = 0x20 };
    virtual ~IUserPrompt() = default;
    // A box with Retry and Cancel: returns 4 (IDRETRY) or 2 (IDCANCEL).
    virtual int AskRetryCancel(const CVXString &text) = 0;
    virtual void ShowMessage(const CVXString &text, int icon) = 0;
    // Has the user asked to break off the current work? Polled by long operations.
    virtual bool BreakRequested() = 0;
};

// Installs the host's prompt; null restores the no-host default. The library does not own it.
void SetUserPrompt(IUserPrompt *prompt);
// The installed prompt, or the no-host default; never null.
IUserPrompt &GetUserPrompt();

// Where the no-host default sends its messages: the logger installs itself here when it is
// initialised (levels: 1 error, 2 warning). Until then they go to standard error.
inline constexpr int kLogError = 1;
inline constexpr int kLogWarning = 2;
inline constexpr int kLogInfo = 3;
using PromptLogSink = void (*)(int level, const CVXString &text);
void SetPromptLogSink(PromptLogSink sink);

// A message for the process log from code below the logger (the geometry's accuracy notes, for
// one). The logger installs itself as this sink too (lines without a source name); without it,
// errors and warnings go to standard error and information is dropped, as the logger's default
// verbosity would drop it.
void SetHostLogSink(PromptLogSink sink);
void LogToHost(int level, const CVXString &text);

} // namespace VX_API
