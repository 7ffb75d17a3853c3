#include "IGenICamController.h"

namespace kiv::cam {

IGenICamController::~IGenICamController() = default;

} // namespace kiv::cam
