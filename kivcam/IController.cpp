#include "IController.h"

namespace kiv::cam {

IController::~IController() = default;

} // namespace kiv::cam
