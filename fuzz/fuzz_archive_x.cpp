// libFuzzer target: the XML archive loading arbitrary text (the bytes as UTF-8) and the root
// object from it. A hostile document may only end in CVXComError; the owner of the load frees
// every object it made, so the target runs with leak checking on.
#include "platform/VXString.h"
#include "persist/ArchiveX.h"
#include "persist/LoadedObjects.h"
#include "persist/SerObject.h"
#include "platform/CodePage.h"
#include "platform/Errors.h"

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size > 1u << 20) return 0;
    const std::string utf8(reinterpret_cast<const char *>(data), size);
    vx::CLoadedObjects owner;
    const vx::CLoadedObjects::CCollector collect(owner);
    try {
        vx::CArchiveX ar(true);
        ar.XML(vx::CVXString(vx::Utf8ToWide(utf8.data(), utf8.size()).c_str()));
        vx::ISerObject *root = nullptr;
        ar.Load(vx::CVXString(u"Root"), root);
    } catch (const vx::CVXComError &) {
    }
    return 0;
}
