// VX_API marks the library's exported surface. The library is built with hidden visibility, so
// that its internals (helpers shared between its sources, the internal headers) stay inside the
// shared object and it loads with fewer symbols to resolve. Every public header opens its
// namespace as `namespace vx VX_API {`, which exports what it declares; scripts/check_exports.sh
// checks that no public header forgets it.
#pragma once

#if defined(__GNUC__) || defined(__clang__)
#define VX_API __attribute__((visibility("default")))
#else
#define VX_API
#endif
