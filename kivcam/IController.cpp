#include "IController.h"

namespace kiv::cam {

IController::~IController() = default;

IFrameSource* IController::frameSource()
{
    return nullptr;
}

} // namespace kiv::cam
