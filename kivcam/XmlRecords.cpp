#include "XmlRecords.h"

#include <kiv/PixelType.h>

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>
#include <type_traits>

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

// The quick check of RepairText, for the usual text that needs nothing.
bool isXmlText(std::string_view text)
{
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if ((byte < 0x20 && !isXmlCharacter(byte))
            || (byte == 0xEF
                && (text.substr(i + 1, 2) == "\xBF\xBE" || text.substr(i + 1, 2) == "\xBF\xBF")))
            return false;
    }
    return QByteArrayView(text.data(), static_cast<qsizetype>(text.size())).isValidUtf8();
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
    else
        return CVariant::TYPE_INT32;
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

struct SReader {
    pugi::xml_node parent;
    SError& error;
    bool ok = true;

    // The child element of that name, or null when the record keeps its field as it is.
    pugi::xml_node find(const char* name) const
    {
        return ok ? parent.child(name) : pugi::xml_node();
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
            ok = fail(error, parent.child(name), "unknown data type");
        else if (ok)
            dataType = static_cast<EDataType>(value);
    }
    template <typename Number> void operator()(const char* name, Number& value)
    {
        const pugi::xml_node node = find(name);
        if (!node)
            return;
        CVariant number;
        if (!parseNumber(node.text().get(), numberType<Number>(), number))
            ok = fail(error, node, std::string("malformed value \"") + node.text().get() + "\"");
        else if constexpr (std::is_same_v<Number, bool>)
            value = number.ToBool();
        else
            value = static_cast<Number>(number.ToInt64());
    }
};

// Reads into a copy, so that a record is either read whole or left as it was.
template <typename Record, typename Visit>
bool readRecord(pugi::xml_node element, Record& record, SError& error, Visit visit)
{
    Record read = record;
    SReader reader{element, error};
    visit(read, reader);
    if (reader.ok)
        record = read;
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
        const CString name = text(node.attribute("name"));
        if (name.empty())
            return fail(error, node, "parameter without a name");
        const char* typeName = node.attribute("type").value();
        CVariant::EType type = CVariant::TYPE_EMPTY;
        bool known = false;
        for (const auto& [candidate, candidateType] : typeNames) {
            if (candidate == typeName) {
                type = candidateType;
                known = true;
            }
        }
        if (!known)
            return fail(error, node, std::string("unknown parameter type \"") + typeName + "\"");
        CVariant level(CVariant::TYPE_INT32);
        if (const pugi::xml_attribute source = node.attribute("editLevel");
            source && !parseNumber(source.value(), CVariant::TYPE_INT32, level))
            return fail(
                error, node, std::string("malformed edit level \"") + source.value() + "\"");
        const int editLevel = static_cast<int>(level.ToInt64());
        if (editLevel < CParameters::EDIT_ALWAYS || editLevel > CParameters::EDIT_NEVER)
            return fail(error, node, "edit level outside 0 to 4");

        CVariant value(type);
        if (type == CVariant::TYPE_ENUM) {
            TArray<CVariant::SEnumItem> items;
            for (const pugi::xml_node item : node.children("item")) {
                CVariant itemValue;
                if (!parseNumber(item.attribute("value").value(), CVariant::TYPE_INT64, itemValue))
                    return fail(error, item, "enumeration item without a whole-number value");
                items.add({text(item.attribute("name")), itemValue.ToInt64()});
            }
            if (items.empty())
                return fail(error, node, "enumeration without items");
            value = CVariant::Enum(items, items[0].value);
        }
        if (const pugi::xml_attribute source = node.attribute("value");
            source && type != CVariant::TYPE_EMPTY && !value.Assign(CVariant(text(source)))) {
            return fail(error, node,
                std::string("value \"") + source.value() + "\" does not fit type " + typeName);
        }
        read.Add({name, text(node.attribute("displayName")), text(node.attribute("description")),
            static_cast<CParameters::EEditLevel>(editLevel), value});
    }
    parameters = read;
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
