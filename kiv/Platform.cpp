#include "Platform.h"

#include <atomic>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <unistd.h>

namespace kiv::platform {

namespace {

std::atomic<DebugOutputHandler> debugOutputHandler{nullptr};

CStringW executablePath()
{
    char buffer[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", buffer, sizeof buffer);
    return length > 0 ? CStringW(buffer, static_cast<int>(length)) : CStringW();
}

} // namespace

void* OpenLibrary(const CStringW& path)
{
    const CString file = path.ToUtf8();
    if (file.empty())
        return nullptr;
    return dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
}

void* FindSymbol(void* library, const char* name)
{
    return library && name ? dlsym(library, name) : nullptr;
}

void CloseLibrary(void* library)
{
    if (library)
        dlclose(library);
}

CStringW ModulePath(const void* address)
{
    Dl_info info{};
    // The executable itself is reported under the name it was started by, which need not be a
    // full path; /proc/self/exe always is.
    if (dladdr(address, &info) && info.dli_fname && info.dli_fname[0] == '/') {
        char resolved[PATH_MAX];
        if (realpath(info.dli_fname, resolved))
            return CStringW(resolved);
    }
    return executablePath();
}

void DebugOutput(const char* text)
{
    if (!text)
        return;
    if (const DebugOutputHandler handler = debugOutputHandler.load()) {
        handler(text);
        return;
    }
    std::fputs(text, stderr);
    std::fflush(stderr);
}

DebugOutputHandler SetDebugOutputHandler(DebugOutputHandler handler)
{
    return debugOutputHandler.exchange(handler);
}

} // namespace kiv::platform
