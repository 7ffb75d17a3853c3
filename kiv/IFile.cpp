#include "IFile.h"

namespace kiv {

IFile::~IFile() = default;

} // namespace kiv
