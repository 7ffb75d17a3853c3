#pragma once

#include <kiv/CStringW.h>
#include <kiv/kiv_export.h>

// The thin layer over the operating system: dynamic loading of libraries by full path, the file
// of a loaded module, and debug output. Everything platform-specific in the project is here.
namespace kiv::platform {

// Loads a library by its full path and resolves all its symbols at once; null on failure.
KIV_EXPORT void* OpenLibrary(const CStringW& path);
// The address of an exported symbol of a loaded library; null when it has none of that name.
KIV_EXPORT void* FindSymbol(void* library, const char* name);
KIV_EXPORT void CloseLibrary(void* library);

// The full path of the loaded module (library or executable) that holds address; the
// executable's own path when that cannot be told.
KIV_EXPORT CStringW ModulePath(const void* address);

// Debug output: a line for developers, written to standard error unless a handler is set.
using DebugOutputHandler = void (*)(const char* text);
KIV_EXPORT void DebugOutput(const char* text);
// Sends debug output to handler instead (null: back to standard error); gives the previous one.
KIV_EXPORT DebugOutputHandler SetDebugOutputHandler(DebugOutputHandler handler);

} // namespace kiv::platform
