// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "Platform.h"

#include "strprintf.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <grp.h>
#include <new>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace kiv::platform {

namespace {

std::atomic<DebugOutputHandler> debugOutputHandler{nullptr};

CStringW executablePath()
{
    char buffer[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", buffer, sizeof buffer);
    return length > 0 ? CStringW(buffer, static_cast<int>(length)) : CStringW();
}

// A file descriptor, closed when it goes.
class CDescriptor {
public:
    explicit CDescriptor(int descriptor) : m_descriptor(descriptor) { }
    ~CDescriptor()
    {
        if (m_descriptor >= 0)
            close(m_descriptor);
    }
    CDescriptor(const CDescriptor&) = delete;
    CDescriptor& operator=(const CDescriptor&) = delete;

    int get() const { return m_descriptor; }

private:
    int m_descriptor;
};

CString systemError()
{
    return CString(std::strerror(errno));
}

bool isRegular(const struct stat& status, CString& error)
{
    if (!S_ISREG(status.st_mode))
        error = "not a regular file";
    return S_ISREG(status.st_mode);
}

CString tooLarge(std::uint64_t maxSize)
{
    return strprintf("larger than %llu bytes", static_cast<unsigned long long>(maxSize));
}

// Reads an open file to its end into content, which starts at the size the file had (and a byte
// more, to meet the end without growing) and grows as needed, up to maxSize + 1 bytes: a byte
// beyond maxSize shows that the file outgrew its bound.
bool readAll(
    int descriptor, std::uint64_t maxSize, std::uint64_t size, std::string& content, CString& error)
{
    const std::uint64_t limit = std::min<std::uint64_t>(maxSize, content.max_size() - 1) + 1;
    content.resize(static_cast<std::size_t>(std::min(size + 1, limit)));
    std::size_t count = 0;
    for (;;) {
        if (count == content.size()) {
            if (count >= limit) {
                error = tooLarge(maxSize);
                return false;
            }
            content.resize(static_cast<std::size_t>(std::min<std::uint64_t>(limit, count * 2)));
        }
        const ssize_t read = ::read(descriptor, content.data() + count, content.size() - count);
        if (read == 0)
            break;
        if (read < 0 && errno != EINTR) {
            error = systemError();
            return false;
        }
        count += read > 0 ? static_cast<std::size_t>(read) : 0;
    }
    content.resize(count);
    return true;
}

} // namespace

bool ReadRegularFile(
    const CStringW& path, std::uint64_t maxSize, std::string& content, CString& error)
{
    content.clear();
    const CString file = path.ToUtf8();
    struct stat status { };
    // Checked by name first, so that a device is not even opened: opening some (a serial port)
    // has effects of its own.
    if (file.empty() || stat(file.data(), &status) != 0) {
        error = file.empty() ? CString("no file name") : systemError();
        return false;
    }
    if (!isRegular(status, error))
        return false;
    // The name may have come to mean another file since: never wait in open, and check again.
    const CDescriptor descriptor(open(file.data(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (descriptor.get() < 0 || fstat(descriptor.get(), &status) != 0) {
        error = systemError();
        return false;
    }
    if (!isRegular(status, error))
        return false;
    const auto size = static_cast<std::uint64_t>(status.st_size);
    if (size > maxSize) {
        error = tooLarge(maxSize);
        return false;
    }
    try {
        if (readAll(descriptor.get(), maxSize, size, content, error))
            return true;
    } catch (const std::bad_alloc&) {
        error = "out of memory";
    }
    content.clear();
    content.shrink_to_fit();
    return false;
}

bool SyncFolder(const CStringW& folder)
{
    const CString name = folder.ToUtf8();
    const CDescriptor descriptor(
        name.empty() ? -1 : open(name.data(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor.get() < 0)
        return false;
    // EINVAL: the file system keeps no entry list that could be synced.
    return fsync(descriptor.get()) == 0 || errno == EINVAL;
}

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

CString OwningGroup(const CString& path)
{
    struct stat status { };
    if (::stat(path.data(), &status) != 0)
        return {};
    group entry{};
    group* found = nullptr;
    std::vector<char> buffer(16384);
    if (::getgrgid_r(status.st_gid, &entry, buffer.data(), buffer.size(), &found) != 0 || !found)
        return strprintf("%u", static_cast<unsigned>(status.st_gid));
    return CString(found->gr_name);
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
