#include "IInterface.h"

namespace kiv::cam {

IInterface::~IInterface() = default;

} // namespace kiv::cam
