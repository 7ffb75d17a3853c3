#include "SCameraInfo.h"

#include "XmlRecords.h"

#include <QSaveFile>
#include <QString>

#include <sstream>
#include <vector>

namespace kiv::cam {

namespace {

// The root element and format version of a camera description file.
constexpr const char* rootName = "camera";
constexpr int formatVersion = 1;

bool loadDocument(const pugi::xml_document& document, SCameraInfo& camera)
{
    const pugi::xml_node root = document.document_element();
    if (std::string_view(root.name()) != rootName)
        return false;
    SCameraInfo read;
    xml::SError error;
    if (!xml::ReadCamera(root, read, error))
        return false;
    camera = read;
    return true;
}

} // namespace

bool SCameraInfo::Load(const CStringW& path)
{
    if (path.empty())
        return false;
    pugi::xml_document document;
    return document.load_file(path.c_str()) && loadDocument(document, *this);
}

bool SCameraInfo::Load(TSharedPtr<IFile> file)
{
    if (!file)
        return false;
    std::vector<char> bytes;
    char chunk[4096];
    while (const std::uint64_t count = file->Read(chunk, sizeof chunk))
        bytes.insert(bytes.end(), chunk, chunk + count);
    pugi::xml_document document;
    return document.load_buffer(bytes.data(), bytes.size()) && loadDocument(document, *this);
}

bool SCameraInfo::Save(const CStringW& path) const
{
    if (path.empty())
        return false;
    pugi::xml_document document;
    pugi::xml_node root = document.append_child(rootName);
    root.append_attribute("version") = formatVersion;
    xml::WriteCamera(root, *this);
    std::ostringstream text;
    document.save(text, "  ", pugi::format_default, pugi::encoding_utf8);
    const std::string bytes = text.str();

    // QSaveFile writes beside the target and renames over it only once everything is written.
    // Unbuffered, so that a short write (a full disk) shows in write()'s count: a buffered
    // QSaveFile commits a truncated file without noticing.
    QSaveFile file(QString::fromStdWString(path.c_str()));
    return file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)
        && file.write(bytes.data(), static_cast<qint64>(bytes.size()))
        == static_cast<qint64>(bytes.size())
        && file.commit();
}

} // namespace kiv::cam
