// The assertion report: a broken invariant is logged under "Assertion failure" with the text
// "%s %s %d" (expression, source file, line) and the code goes on with the values at hand. It
// never aborts.
#pragma once

#include "platform/VXExport.h"

namespace vx VX_API {

// Reports a failed assertion and returns.
void AssertReport(const char *expression, const char *file, int line);

// Where reports go. The default sink writes the line to standard error; the logger installs
// itself here when it is initialised. Null restores the default.
using AssertSink = void (*)(const char *message);
void SetAssertSink(AssertSink sink);

} // namespace VX_API

// Checks an invariant; on failure reports it and continues.
#define VX_ASSERT(expr)                                                                            \
    ((expr) ? static_cast<void>(0) : ::vx::AssertReport(#expr, __FILE__, __LINE__))
// Reports with an explicit expression text (for invariants whose text is part of the contract).
#define VX_ASSERT_TEXT(expr, text)                                                                 \
    ((expr) ? static_cast<void>(0) : ::vx::AssertReport(text, __FILE__, __LINE__))
