#include "IFrameSource.h"

namespace kiv::cam {

IFrameSource::~IFrameSource() = default;

SFrameStatistics IFrameSource::statistics() const
{
    return {};
}

} // namespace kiv::cam
