#include "IController.h"

namespace kiv::cam {

IController::~IController() = default;

IFrameSource* IController::frameSource()
{
    return nullptr;
}

CString IController::errorMessage() const
{
    return {};
}

} // namespace kiv::cam
