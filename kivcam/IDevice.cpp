#include "IDevice.h"

namespace kiv::cam {

IDevice::~IDevice() = default;

CString IDevice::errorMessage() const
{
    return {};
}

} // namespace kiv::cam
