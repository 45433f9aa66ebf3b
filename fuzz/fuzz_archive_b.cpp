// libFuzzer target: the binary archive loading an arbitrary byte stream. Every object the stream
// yields is deleted; a hostile stream may only end in CArchiveBException or CVXComError.
#include "persist/ArchiveB.h"
#include "persist/SerObject.h"
#include "platform/Errors.h"
#include "platform/File.h"

#include <cstddef>
#include <cstdint>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size > 1u << 20) return 0;
    std::vector<unsigned char> bytes(data, data + size);
    vx::CMemFile file(bytes.data(), static_cast<unsigned int>(bytes.size()));
    std::vector<vx::ISerObject *> roots;
    try {
        vx::CArchiveB ar(&file, vx::CArchiveB::load);
        // Back-references return objects already read: collect each root once.
        for (int i = 0; i < 64 && file.GetPosition() < file.GetLength(); ++i) {
            vx::ISerObject *object = ar.ReadObject(nullptr);
            bool seen = object == nullptr;
            for (vx::ISerObject *r : roots)
                seen = seen || r == object;
            if (!seen) roots.push_back(object);
            if (ar.IsBufferEmpty() && file.GetPosition() >= file.GetLength()) break;
        }
    } catch (const vx::CArchiveBException &) {
    } catch (const vx::CVXComError &) {
    }
    for (vx::ISerObject *r : roots)
        delete r;
    return 0;
}
