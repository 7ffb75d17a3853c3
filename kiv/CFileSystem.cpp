// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CFileSystem.h"

#include "Path.h"

#include <QDir>
#include <QString>

namespace kiv {

IFileSystem::CDirectoryListing CFileSystem::listDirectory(
    const CStringW& folder, const CStringW& pattern)
{
    CDirectoryListing listing;
    // An empty folder name would be the current folder to QDir; it names no folder here.
    if (folder.empty())
        return listing;
    const QDir dir(QString::fromStdWString(folder.c_str()));
    const QFileInfoList files = dir.entryInfoList(
        QDir::Files | QDir::Hidden | QDir::System, QDir::Name | QDir::IgnoreCase);
    for (const QFileInfo& file : files) {
        const CStringW name(file.fileName().toStdWString().c_str());
        if (path::WildcardMatch(pattern, name))
            listing.add({name, CStringW(file.absoluteFilePath().toStdWString().c_str())});
    }
    return listing;
}

CFileSystem* fileSystem()
{
    static CFileSystem instance;
    return &instance;
}

} // namespace kiv
