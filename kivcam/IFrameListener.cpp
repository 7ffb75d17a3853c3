#include "IFrameListener.h"

namespace kiv::cam {

IFrameListener::~IFrameListener() = default;

} // namespace kiv::cam
