#include "IFrameSource.h"

namespace kiv::cam {

IFrameSource::~IFrameSource() = default;

} // namespace kiv::cam
