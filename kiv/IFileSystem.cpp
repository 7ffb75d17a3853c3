#include "IFileSystem.h"

namespace kiv {

IFileSystem::~IFileSystem() = default;

} // namespace kiv
