// libFuzzer target: any bytes handed to SCameraInfo::Load as a camera description must give
// true or false, never a crash, a leak or undefined behaviour.

#include <kiv/CMemFile.h>
#include <kivcam/SCameraInfo.h>

#include <cstddef>
#include <cstdint>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::vector<unsigned char> bytes(data, data + size);
    kiv::TSharedPtr<kiv::CMemFile> file = kiv::CMemFile::Create();
    file->Attach(bytes.data(), bytes.size(), false);
    kiv::cam::SCameraInfo camera;
    if (camera.Load(kiv::TSharedPtr<kiv::IFile>(file))) {
        // What loads must also survive a copy.
        const kiv::cam::SCameraInfo copy = camera;
        (void)copy;
    }
    return 0;
}
