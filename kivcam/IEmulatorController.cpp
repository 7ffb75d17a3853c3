#include "IEmulatorController.h"

namespace kiv::cam {

IEmulatorController::~IEmulatorController() = default;

} // namespace kiv::cam
