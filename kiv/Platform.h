// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/CStringW.h>
#include <kiv/kiv_export.h>

#include <cstdint>
#include <string>

// The thin layer over the operating system: dynamic loading of libraries by full path, the file
// of a loaded module, careful file reading, durable renames, and debug output. Everything
// platform-specific in the project is here, but for the real transports' UDP socket
// (kivcam/network/CUdpSocket) and serial port opening (kivcam/serial/CSerialDevice).
namespace kiv::platform {

// Loads a library by its full path and resolves all its symbols at once; null on failure.
KIV_EXPORT void* OpenLibrary(const CStringW& path);
// The address of an exported symbol of a loaded library; null when it has none of that name.
KIV_EXPORT void* FindSymbol(void* library, const char* name);
KIV_EXPORT void CloseLibrary(void* library);

// The full path of the loaded module (library or executable) that holds address; the
// executable's own path when that cannot be told.
KIV_EXPORT CStringW ModulePath(const void* address);

// Reads a whole regular file of at most maxSize bytes into content. Only regular files are
// read: the path is checked before it is opened, and the file opened is checked again, so that
// a FIFO, a device (a serial port included), a directory or a socket is refused at once, never
// opened to wait for data or read without end. A file larger than maxSize is refused before it is
// read, and so is one that grows beyond it while it is read. On failure content is empty and
// error says why in a few words.
KIV_EXPORT bool ReadRegularFile(
    const CStringW& path, std::uint64_t maxSize, std::string& content, CString& error);

// Writes the entry list of a folder to disk, so that a file renamed into it, or created in it,
// survives a power cut. True also where the file system has nothing of the kind to write.
KIV_EXPORT bool SyncFolder(const CStringW& folder);

// The name of the group that owns a file, or its number where the group has no name; empty when
// the file cannot be seen. For messages that tell a user which group to join.
KIV_EXPORT CString OwningGroup(const CString& path);

// Debug output: a line for developers, written to standard error unless a handler is set.
using DebugOutputHandler = void (*)(const char* text);
KIV_EXPORT void DebugOutput(const char* text);
// Sends debug output to handler instead (null: back to standard error); gives the previous one.
KIV_EXPORT DebugOutputHandler SetDebugOutputHandler(DebugOutputHandler handler);

} // namespace kiv::platform
