// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "XmlRecords.h"

#include <kiv/PixelType.h>

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <limits>
#include <string_view>
#include <type_traits>
#include <vector>

namespace kiv::cam::xml {

namespace {

constexpr std::array<std::pair<std::string_view, CVariant::EType>, 15> typeNames{{
    {"empty", CVariant::TYPE_EMPTY},
    {"bool", CVariant::TYPE_BOOL},
    {"int8", CVariant::TYPE_INT8},
    {"uint8", CVariant::TYPE_UINT8},
    {"int16", CVariant::TYPE_INT16},
    {"uint16", CVariant::TYPE_UINT16},
    {"int32", CVariant::TYPE_INT32},
    {"uint32", CVariant::TYPE_UINT32},
    {"int64", CVariant::TYPE_INT64},
    {"uint64", CVariant::TYPE_UINT64},
    {"float", CVariant::TYPE_FLOAT},
    {"double", CVariant::TYPE_DOUBLE},
    {"string", CVariant::TYPE_STRING},
    {"guid", CVariant::TYPE_GUID},
    {"enum", CVariant::TYPE_ENUM},
}};

bool isXmlCharacter(char16_t unit)
{
    // Surrogates come in pairs out of UTF-8 decoding, and the characters they make are allowed.
    return unit >= 0x20 ? unit != 0xFFFE && unit != 0xFFFF
                        : unit == '\t' || unit == '\n' || unit == '\r';
}

// The quick check of RepairText, for the usual text that needs nothing: one pass over the bytes,
// and Qt's check of the UTF-8 only for text that is not all ASCII.
bool isXmlText(std::string_view text)
{
    bool ascii = true;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte < 0x20 && !isXmlCharacter(byte))
            return false;
        if (byte < 0x80)
            continue;
        ascii = false;
        if (byte == 0xEF
            && (text.substr(i + 1, 2) == "\xBF\xBE" || text.substr(i + 1, 2) == "\xBF\xBF"))
            return false;
    }
    return ascii || QByteArrayView(text.data(), static_cast<qsizetype>(text.size())).isValidUtf8();
}

// The text of an attribute, repaired.
CString text(pugi::xml_attribute attribute)
{
    return RepairText(attribute.value());
}

bool fail(SError& error, pugi::xml_node node, std::string reason)
{
    error = {node, std::move(reason)};
    return false;
}

// Reads a number or a flag through CVariant, which checks the text and the type's range.
bool parseNumber(const char* source, CVariant::EType type, CVariant& value)
{
    value = CVariant(type);
    return value.Assign(CVariant(source));
}

// The fields of a camera record, in their declared order, handed to a visitor with their
// element names. Writing and reading walk the same list, so they cannot drift apart.
template <typename Camera, typename Visitor> void visitCamera(Camera& c, Visitor&& visit)
{
    visit("iconName", c.iconName);
    visit("name", c.name);
    visit("displayName", c.displayName);
    visit("baseModel", c.baseModel);
    visit("model", c.model);
    visit("serial", c.serial);
    visit("identity", c.identity);
    visit("controller", c.controller);
    visit("reduceFilter", c.reduceFilter);
    visit("comm", c.comm);
    visit("video", c.video);
    visit("dataType", c.dataType);
    visit("pixelType", c.pixelType);
    visit("adBits", c.adBits);
    visit("adBitShift", c.adBitShift);
    visit("adMask", c.adMask);
    visit("cropLeft", c.cropLeft);
    visit("cropTop", c.cropTop);
    visit("cropRight", c.cropRight);
    visit("cropBottom", c.cropBottom);
    visit("width", c.width);
    visit("height", c.height);
    visit("canConnect", c.canConnect);
    visit("errorSummary", c.errorSummary);
    visit("errorMessage", c.errorMessage);
    visit("vendor", c.vendor);
    visit("firmwareVersion", c.firmwareVersion);
    visit("emulated", c.emulated);
    visit("frameRate", c.frameRate);
    visit("hasNucMask", c.hasNucMask);
}

template <typename Device, typename Visitor> void visitDevice(Device& d, Visitor&& visit)
{
    visit("interfaceName", d.interfaceName);
    visit("deviceName", d.deviceName);
    visit("baseType", d.baseType);
    visit("iconName", d.iconName);
    visit("parameters", d.parameters);
    visit("canConnect", d.canConnect);
    visit("errorSummary", d.errorSummary);
    visit("errorMessage", d.errorMessage);
    visit("description", d.description);
}

template <typename T> constexpr CVariant::EType numberType()
{
    if constexpr (std::is_same_v<T, bool>)
        return CVariant::TYPE_BOOL;
    else if constexpr (std::is_same_v<T, std::uint16_t>)
        return CVariant::TYPE_UINT16;
    else if constexpr (std::is_same_v<T, std::uint32_t>)
        return CVariant::TYPE_UINT32;
    else if constexpr (std::is_same_v<T, long long>)
        return CVariant::TYPE_INT64;
    else
        return CVariant::TYPE_INT32;
}

// The texts that files hold almost always, read without CVariant: the words true and false, and
// decimal digits few enough to fit the type whatever they are. False for any other text.
bool readPlain(const char* source, bool& value)
{
    const std::string_view text(source);
    if (text != "true" && text != "false")
        return false;
    value = text == "true";
    return true;
}

template <typename Number> bool readPlain(const char* source, Number& value)
{
    constexpr int fitting = std::numeric_limits<Number>::digits10;
    unsigned long long magnitude = 0;
    int digits = 0;
    for (; source[digits] >= '0' && source[digits] <= '9'; ++digits) {
        if (digits == fitting)
            return false;
        magnitude = magnitude * 10 + static_cast<unsigned>(source[digits] - '0');
    }
    if (digits == 0 || source[digits] != '\0')
        return false;
    value = static_cast<Number>(magnitude);
    return true;
}

// Reads a whole number or a flag; what readPlain does not read, CVariant does, checking the text
// and the type's range (signs, hexadecimal, spaces, letter case). Both read a text alike.
template <typename Number> bool readNumber(const char* source, Number& value)
{
    if (readPlain(source, value))
        return true;
    CVariant number;
    if (!parseNumber(source, numberType<Number>(), number))
        return false;
    if constexpr (std::is_same_v<Number, bool>)
        value = number.ToBool();
    else
        value = static_cast<Number>(number.ToInt64());
    return true;
}

struct SWriter {
    pugi::xml_node parent;

    void operator()(const char* name, const CString& value)
    {
        parent.append_child(name).text().set(RepairText(value.view()).data());
    }
    void operator()(const char* name, const SDeviceInfo& device)
    {
        WriteDevice(parent.append_child(name), device);
    }
    void operator()(const char* name, const CParameters& parameters)
    {
        WriteParameters(parent.append_child(name), parameters);
    }
    void operator()(const char* name, double value)
    {
        parent.append_child(name).text().set(CVariant(value).ToString().data());
    }
    void operator()(const char* name, const SGuid& pixelType)
    {
        // Known pixel types are written by name, others by their identifier.
        const CString known = PixelTypeToString(pixelType);
        parent.append_child(name).text().set((known.empty() ? pixelType.ToString() : known).data());
    }
    template <typename Number> void operator()(const char* name, const Number& value)
    {
        CVariant number(numberType<Number>());
        number.Assign(CVariant(static_cast<long long>(value)));
        parent.append_child(name).text().set(number.ToString().data());
    }
};

// The named children of an element, listed in one pass over them and found by name with a
// comparison of lengths first: a record's reader asks for each of its fields, and pugixml's own
// lookup compares the whole name of every child before it, for every field.
class CChildren {
public:
    explicit CChildren(pugi::xml_node element)
    {
        const auto children = element.children();
        m_children.reserve(
            static_cast<std::size_t>(std::distance(children.begin(), children.end())));
        for (const pugi::xml_node child : children) {
            if (*child.name())
                m_children.push_back({child.name(), child});
        }
    }

    // The first child of that name, as pugi::xml_node::child gives it; null when none.
    pugi::xml_node find(std::string_view name) const
    {
        for (const SChild& child : m_children) {
            if (child.name == name)
                return child.node;
        }
        return {};
    }

private:
    struct SChild {
        std::string_view name;
        pugi::xml_node node;
    };
    std::vector<SChild> m_children;
};

// The attributes of a <parameter>, found in one pass over them; the first of a name counts, as
// with pugi::xml_node::attribute.
struct SParameterAttributes {
    pugi::xml_attribute name;
    pugi::xml_attribute displayName;
    pugi::xml_attribute description;
    pugi::xml_attribute editLevel;
    pugi::xml_attribute type;
    pugi::xml_attribute value;

    explicit SParameterAttributes(pugi::xml_node node)
    {
        for (const pugi::xml_attribute attribute : node.attributes()) {
            const std::string_view key = attribute.name();
            pugi::xml_attribute* slot = key == "name" ? &name
                : key == "displayName"                ? &displayName
                : key == "description"                ? &description
                : key == "editLevel"                  ? &editLevel
                : key == "type"                       ? &type
                : key == "value"                      ? &value
                                                      : nullptr;
            if (slot && !*slot)
                *slot = attribute;
        }
    }
};

struct SReader {
    pugi::xml_node parent;
    SError& error;
    CChildren children{parent};
    bool ok = true;

    // The child element of that name, or null when the record keeps its field as it is.
    pugi::xml_node find(const char* name) const
    {
        return ok ? children.find(name) : pugi::xml_node();
    }

    void operator()(const char* name, CString& value)
    {
        if (const pugi::xml_node node = find(name))
            value = RepairText(node.text().get());
    }
    void operator()(const char* name, SDeviceInfo& device)
    {
        if (const pugi::xml_node node = find(name))
            ok = ReadDevice(node, device, error);
    }
    void operator()(const char* name, CParameters& parameters)
    {
        if (const pugi::xml_node node = find(name))
            ok = ReadParameters(node, parameters, error);
    }
    void operator()(const char* name, SGuid& pixelType)
    {
        const pugi::xml_node node = find(name);
        if (!node)
            return;
        const CString value(node.text().get());
        SGuid parsed = ParsePixelType(value);
        bool valid = !parsed.isNull();
        if (!valid)
            parsed = SGuid::Parse(value, &valid);
        if (valid)
            pixelType = parsed;
        else
            ok = fail(error, node, "unknown pixel type \"" + std::string(value.view()) + "\"");
    }
    // A rate: a finite number, 0 or more.
    void operator()(const char* name, double& value)
    {
        const pugi::xml_node node = find(name);
        if (!node)
            return;
        CVariant number;
        if (!parseNumber(node.text().get(), CVariant::TYPE_DOUBLE, number)
            || !std::isfinite(number.ToDouble()) || number.ToDouble() < 0)
            ok = fail(error, node, std::string("malformed value \"") + node.text().get() + "\"");
        else
            value = number.ToDouble();
    }
    void operator()(const char* name, EDataType& dataType)
    {
        std::int32_t value = dataType;
        (*this)(name, value);
        if (ok && (value < DATA_TYPE_UNKNOWN || value > DATA_TYPE_FLOAT64))
            ok = fail(error, children.find(name), "unknown data type");
        else if (ok)
            dataType = static_cast<EDataType>(value);
    }
    template <typename Number> void operator()(const char* name, Number& value)
    {
        const pugi::xml_node node = find(name);
        if (node && !readNumber(node.text().get(), value))
            ok = fail(error, node, std::string("malformed value \"") + node.text().get() + "\"");
    }
};

// Reads in place: a record is not copied to be restored on failure, since every reader drops a
// record it could not read whole.
template <typename Record, typename Visit>
bool readRecord(pugi::xml_node element, Record& record, SError& error, Visit visit)
{
    SReader reader{element, error};
    visit(record, reader);
    return reader.ok;
}

} // namespace

CString RepairText(std::string_view text)
{
    if (isXmlText(text))
        return CString(text);
    // Qt's UTF-8 decoding replaces what is ill-formed.
    QString decoded = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    for (QChar& unit : decoded) {
        if (!isXmlCharacter(unit.unicode()))
            unit = QChar::ReplacementCharacter;
    }
    const QByteArray repaired = decoded.toUtf8();
    return CString(
        std::string_view(repaired.constData(), static_cast<std::size_t>(repaired.size())));
}

void WriteParameters(pugi::xml_node element, const CParameters& parameters)
{
    for (unsigned i = 0; i < parameters.count(); ++i) {
        const CParameters::CEntry& entry = parameters[i];
        pugi::xml_node node = element.append_child("parameter");
        node.append_attribute("name") = RepairText(entry.name.view()).data();
        node.append_attribute("displayName") = RepairText(entry.displayName.view()).data();
        node.append_attribute("description") = RepairText(entry.description.view()).data();
        node.append_attribute("editLevel") = static_cast<int>(entry.editLevel);
        const CVariant& value = entry.value();
        for (const auto& [typeName, type] : typeNames) {
            if (type == value.getType())
                node.append_attribute("type") = std::string(typeName).c_str();
        }
        node.append_attribute("value") = RepairText(value.ToString().view()).data();
        for (int item = 0; item < value.GetEnumCount(); ++item) {
            pugi::xml_node itemNode = node.append_child("item");
            itemNode.append_attribute("name") = RepairText(value.GetEnumName(item).view()).data();
            itemNode.append_attribute("value") = value.GetEnumValue(item);
        }
    }
}

void WriteDevice(pugi::xml_node element, const SDeviceInfo& device)
{
    visitDevice(device, SWriter{element});
}

void WriteCamera(pugi::xml_node element, const SCameraInfo& camera)
{
    visitCamera(camera, SWriter{element});
}

bool ReadParameters(pugi::xml_node element, CParameters& parameters, SError& error)
{
    CParameters read;
    for (const pugi::xml_node node : element.children("parameter")) {
        const SParameterAttributes attributes(node);
        CString name = text(attributes.name);
        if (name.empty())
            return fail(error, node, "parameter without a name");
        const std::string_view typeName = attributes.type.value();
        CVariant::EType type = CVariant::TYPE_EMPTY;
        bool known = false;
        for (const auto& [candidate, candidateType] : typeNames) {
            if (candidate == typeName) {
                type = candidateType;
                known = true;
            }
        }
        if (!known)
            return fail(error, node, "unknown parameter type \"" + std::string(typeName) + "\"");
        int editLevel = CParameters::EDIT_ALWAYS;
        if (const pugi::xml_attribute source = attributes.editLevel;
            source && !readNumber(source.value(), editLevel))
            return fail(
                error, node, std::string("malformed edit level \"") + source.value() + "\"");
        if (editLevel < CParameters::EDIT_ALWAYS || editLevel > CParameters::EDIT_NEVER)
            return fail(error, node, "edit level outside 0 to 4");

        CVariant value(type);
        if (type == CVariant::TYPE_ENUM) {
            TArray<CVariant::SEnumItem> items;
            for (const pugi::xml_node item : node.children("item")) {
                long long itemValue = 0;
                if (!readNumber(item.attribute("value").value(), itemValue))
                    return fail(error, item, "enumeration item without a whole-number value");
                items.add({text(item.attribute("name")), itemValue});
            }
            if (items.empty())
                return fail(error, node, "enumeration without items");
            value = CVariant::Enum(items, items[0].value);
        }
        if (const pugi::xml_attribute source = attributes.value;
            source && type != CVariant::TYPE_EMPTY && !value.Assign(CVariant(text(source)))) {
            return fail(error, node,
                std::string("value \"") + source.value() + "\" does not fit type "
                    + std::string(typeName));
        }
        read.Add({std::move(name), text(attributes.displayName), text(attributes.description),
            static_cast<CParameters::EEditLevel>(editLevel), std::move(value)});
    }
    parameters = std::move(read);
    return true;
}

bool ReadDevice(pugi::xml_node element, SDeviceInfo& device, SError& error)
{
    return readRecord(element, device, error,
        [](SDeviceInfo& read, SReader& reader) { visitDevice(read, reader); });
}

bool ReadCamera(pugi::xml_node element, SCameraInfo& camera, SError& error)
{
    return readRecord(element, camera, error,
        [](SCameraInfo& read, SReader& reader) { visitCamera(read, reader); });
}

int LineAt(std::ptrdiff_t offset, const char* text, std::size_t size)
{
    if (offset < 0 || static_cast<std::size_t>(offset) > size)
        return 0;
    return 1 + static_cast<int>(std::count(text, text + offset, '\n'));
}

int LineOf(pugi::xml_node node, const char* text, std::size_t size)
{
    return LineAt(node.offset_debug(), text, size);
}

} // namespace kiv::cam::xml
