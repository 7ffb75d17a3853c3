#include "IDevice.h"

namespace kiv::cam {

IDevice::~IDevice() = default;

} // namespace kiv::cam
