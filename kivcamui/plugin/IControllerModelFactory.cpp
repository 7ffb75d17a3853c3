// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "IControllerModelFactory.h"

#include "CControllerModelFactoryImpl.h"

#include <kiv/CCWDFixer.h>
#include <kiv/CFileSystem.h>
#include <kiv/Path.h>
#include <kiv/Platform.h>
#include <kiv/strprintf.h>

#include <atomic>
#include <cstdlib>

namespace kiv::cam::ui {

namespace {

// Set from 0 to 1 by the caller that runs the plugin scan, before the scan starts.
std::atomic<unsigned char> scanned{0};

void report(const char* format, const CStringW& fileName)
{
    platform::DebugOutput(strprintf(format, fileName.c_str()).data());
}

// Loads the controller UI plugins beside this library: every "libkivcamui*.so" but the library
// itself that the include pattern (KIVCAMUI_WHITELIST, default "*") admits and the exclude
// pattern (KIVCAMUI_BLACKLIST, default none) does not, each initialised through its
// kivInitPlugin(). A plugin whose entry is missing stays loaded; one whose entry fails is
// unloaded. Each variable's whole value is one pattern.
void scanPlugins()
{
    CStringW include(L"*");
    CStringW exclude;
    if (const char* value = std::getenv("KIVCAMUI_WHITELIST"))
        include = CStringW(value);
    if (const char* value = std::getenv("KIVCAMUI_BLACKLIST"))
        exclude = CStringW(value);

    // The folder of this library, wherever the host loaded it from.
    const CStringW folder = path::GetDirectory(
        platform::ModulePath(reinterpret_cast<const void*>(&controllerModelFactory)));
    // A plugin's initialisation may change the working folder; the host's is put back.
    const CCWDFixer cwdFixer;

    const IFileSystem::CDirectoryListing listing
        = fileSystem()->listDirectory(folder, CStringW(L"libkivcamui*.so"));
    for (const IFileSystem::SDirectoryEntry& entry : listing) {
        if (entry.name.EqualsNoCase(L"libkivcamui.so"))
            continue;
        if (!path::WildcardMatch(include, entry.name) || path::WildcardMatch(exclude, entry.name))
            continue;
        void* library = platform::OpenLibrary(entry.path);
        if (!library) {
            report("Failed to load library: %S\n", entry.name);
            continue;
        }
        using InitPlugin = bool (*)();
        const auto init
            = reinterpret_cast<InitPlugin>(platform::FindSymbol(library, "kivInitPlugin"));
        if (!init) {
            // Deliberately left loaded.
            report("Warning missing init function for plugin: %S\n", entry.name);
            continue;
        }
        if (!init()) {
            report("Failed to initialize plugin: %S\n", entry.name);
            platform::CloseLibrary(library);
        }
    }
}

} // namespace

IControllerModelFactory::IControllerModelFactory() = default;
IControllerModelFactory::IControllerModelFactory(const IControllerModelFactory&) = default;
IControllerModelFactory& IControllerModelFactory::operator=(const IControllerModelFactory&)
    = default;
IControllerModelFactory::~IControllerModelFactory() = default;

IControllerModelFactory* controllerModelFactory()
{
    static CControllerModelFactoryImpl instance;
    if (scanned.load() != 0)
        return &instance;
    // Whoever wins the flag scans; everybody else, a plugin's kivInitPlugin() during that scan
    // included, gets the registry at once, complete or not.
    unsigned char expected = 0;
    if (scanned.compare_exchange_strong(expected, 1))
        scanPlugins();
    return &instance;
}

} // namespace kiv::cam::ui
