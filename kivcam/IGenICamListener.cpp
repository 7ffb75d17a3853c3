#include "IGenICamListener.h"

namespace kiv::cam {

IGenICamListener::~IGenICamListener() = default;

} // namespace kiv::cam
