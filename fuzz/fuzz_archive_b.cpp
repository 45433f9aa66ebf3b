// libFuzzer target: the binary archive loading an arbitrary byte stream, object after object.
// A hostile stream may only end in CArchiveBException or CVXComError; the owner of the load
// frees every object it made, so the target runs with leak checking on.
#include "persist/ArchiveB.h"
#include "persist/LoadedObjects.h"
#include "persist/SerObject.h"
#include "platform/Errors.h"
#include "platform/File.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace {
constexpr int kMaxRoots = 64;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size > 1u << 20) return 0;
    std::vector<unsigned char> bytes(data, data + size);
    vx::CMemFile file(bytes.data(), static_cast<unsigned int>(bytes.size()));
    vx::CLoadedObjects owner;
    const vx::CLoadedObjects::CCollector collect(owner);
    try {
        vx::CArchiveB ar(&file, vx::CArchiveB::load);
        for (int i = 0; i < kMaxRoots && file.GetPosition() < file.GetLength(); ++i) {
            ar.ReadObject(nullptr);
            if (ar.IsBufferEmpty() && file.GetPosition() >= file.GetLength()) break;
        }
    } catch (const vx::CArchiveBException &) {
    } catch (const vx::CVXComError &) {
    }
    return 0;
}
