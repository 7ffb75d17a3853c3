// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "SCameraInfo.h"

#include "FalseOnThrow.h"
#include "XmlRecords.h"

#include <kiv/Platform.h>

#include <QFileInfo>
#include <QSaveFile>
#include <QString>

#include <algorithm>
#include <sstream>
#include <string>

namespace kiv::cam {

namespace {

// The root element and format version of a camera description file.
constexpr const char* rootName = "camera";
constexpr int formatVersion = 1;

// Fills camera from the text of a description; the text is parsed in place.
bool loadText(std::string& text, SCameraInfo& camera)
{
    pugi::xml_document document;
    if (!document.load_buffer_inplace(text.data(), text.size()))
        return false;
    const pugi::xml_node root = document.document_element();
    if (std::string_view(root.name()) != rootName)
        return false;
    SCameraInfo read;
    xml::SError error;
    if (!xml::ReadCamera(root, read, error))
        return false;
    camera = std::move(read);
    return true;
}

// The description of camera as the text of a file.
std::string describe(const SCameraInfo& camera)
{
    pugi::xml_document document;
    pugi::xml_node root = document.append_child(rootName);
    root.append_attribute("version") = formatVersion;
    xml::WriteCamera(root, camera);
    std::ostringstream text;
    document.save(text, "  ", pugi::format_default, pugi::encoding_utf8);
    return text.str();
}

// QSaveFile writes beside the target and renames over it only once everything is written and
// flushed. Unbuffered, so that a short write (a full disk) shows in write()'s count: a buffered
// QSaveFile commits a truncated file without noticing. Then the folder is synced, or a power cut
// could still undo the rename.
bool writeDurably(const CStringW& path, const std::string& bytes)
{
    const QString name = QString::fromStdWString(path.c_str());
    QSaveFile file(name);
    return file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)
        && file.write(bytes.data(), static_cast<qint64>(bytes.size()))
        == static_cast<qint64>(bytes.size())
        && file.commit()
        && platform::SyncFolder(CStringW(QFileInfo(name).absolutePath().toStdWString().c_str()));
}

} // namespace

bool SCameraInfo::Load(const CStringW& path)
{
    return FalseOnThrow([&] {
        std::string text;
        CString error;
        return platform::ReadRegularFile(path, maxFileSize, text, error) && loadText(text, *this);
    });
}

bool SCameraInfo::Load(TSharedPtr<IFile> file)
{
    return FalseOnThrow([&] {
        if (!file || file->Size() - std::min(file->Tell(), file->Size()) > maxFileSize)
            return false;
        // The size of a file is only what it says: never read more than the bound allows.
        std::string text;
        char chunk[4096];
        while (const std::uint64_t count = file->Read(chunk, sizeof chunk)) {
            if (text.size() + count > maxFileSize)
                return false;
            text.append(chunk, count);
        }
        return loadText(text, *this);
    });
}

bool SCameraInfo::Save(const CStringW& path) const
{
    return !path.empty() && FalseOnThrow([&] { return writeDurably(path, describe(*this)); });
}

} // namespace kiv::cam
