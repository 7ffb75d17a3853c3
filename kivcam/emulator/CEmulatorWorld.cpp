// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CEmulatorWorld.h"

#include <kiv/CVariant.h>
#include <kiv/PixelType.h>
#include <kiv/Platform.h>
#include <kiv/strprintf.h>
#include <kivcam/XmlRecords.h>

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QtGlobal>

#include <algorithm>
#include <iterator>
#include <new>
#include <string>
#include <string_view>

namespace kiv::cam {

namespace {

// The longest scan or connect delay a world may ask for, so that no scan blocks for long.
constexpr int maxDelay = 10000;

void report(const CString& source, int line, const std::string& reason)
{
    platform::DebugOutput(
        strprintf("kivcam: %s:%d: %s\n", source.data(), line, reason.c_str()).data());
}

// The item of that name, through the index of its list; null when there is none.
template <typename T>
const T* findByName(const TArray<T>& items, const CNameIndex& index, const CString& name)
{
    const int position = index.find(name.view());
    return position < 0 ? nullptr : &items[position];
}

// The text of an attribute, repaired where it is not valid UTF-8.
CString attributeText(pugi::xml_node node, const char* name)
{
    return xml::RepairText(node.attribute(name).value());
}

CString childText(pugi::xml_node node, const char* name)
{
    return xml::RepairText(node.child(name).text().get());
}

// The text of a world file, or of a resource of the library's own.
bool readFile(const CString& path, std::string& text, CString& error)
{
    if (!path.view().starts_with(":/"))
        return platform::ReadRegularFile(CStringW(path), CEmulatorWorld::maxFileSize, text, error);
    QFile resource(QString::fromUtf8(path.view().data(), static_cast<qsizetype>(path.length())));
    if (!resource.open(QIODevice::ReadOnly)) {
        error = resource.errorString().toUtf8().constData();
        return false;
    }
    const QByteArray bytes = resource.readAll();
    text.assign(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    return true;
}

} // namespace

class CEmulatorWorld::CReader {
public:
    CReader(CEmulatorWorld& world, xml::SError& error) : m_world(world), m_error(error) { }

    bool read(pugi::xml_node root)
    {
        if (std::string_view(root.name()) != "world")
            return fail(
                root, std::string("the root element is <") + root.name() + ">, not <world>");
        for (const pugi::xml_node node : root.children("controller")) {
            if (!readController(node))
                return false;
        }
        for (const pugi::xml_node node : root.children("cameraType")) {
            if (!readCameraType(node))
                return false;
        }
        for (const pugi::xml_node node : root.children("interface")) {
            if (!readInterface(node))
                return false;
        }
        for (const pugi::xml_node node : root.children("genicam")) {
            if (!readGenICamCamera(node))
                return false;
        }
        // Cameras come last: they name camera types and video devices anywhere in the world.
        int index = 0;
        for (const pugi::xml_node node : root.children("interface")) {
            if (!readCameras(node, *m_world.m_interfaces[index++]))
                return false;
        }
        return true;
    }

private:
    bool fail(pugi::xml_node node, std::string reason)
    {
        m_error = {node, std::move(reason)};
        return false;
    }

    // A required key attribute, a name unless told otherwise, unique in its list: taken into
    // the list's index at position.
    bool readName(pugi::xml_node node, CNameIndex& index, int position, CString& name,
        const char* attribute = "name")
    {
        name = attributeText(node, attribute);
        if (name.empty())
            return fail(node, std::string("<") + node.name() + "> without a " + attribute);
        if (!index.insert(name.view(), position))
            return fail(node,
                std::string("a second <") + node.name() + "> with the " + attribute + " \""
                    + name.data() + "\"");
        return true;
    }

    // An optional attribute, checked by CVariant for its text and its type's range.
    bool readAttribute(pugi::xml_node node, const char* name, CVariant& value)
    {
        const pugi::xml_attribute attribute = node.attribute(name);
        if (!attribute || value.Assign(CVariant(attribute.value())))
            return true;
        return fail(node,
            std::string("malformed value \"") + attribute.value() + "\" of attribute " + name);
    }

    bool readFlag(pugi::xml_node node, const char* name, bool& flag)
    {
        CVariant value(flag);
        if (!readAttribute(node, name, value))
            return false;
        flag = value.ToBool();
        return true;
    }

    bool readDelay(pugi::xml_node node, const char* name, int& delay)
    {
        CVariant value(static_cast<unsigned>(delay));
        if (!readAttribute(node, name, value))
            return false;
        if (value.ToInt64() > maxDelay)
            return fail(node, std::string(name) + " above " + std::to_string(maxDelay) + " ms");
        delay = static_cast<int>(value.ToInt64());
        return true;
    }

    // A record that gives a pixel type but no data type gets the data type of that pixel type.
    bool readCamera(pugi::xml_node node, SCameraInfo& camera)
    {
        if (!xml::ReadCamera(node, camera, m_error))
            return false;
        if (node.child("pixelType") && !node.child("dataType"))
            camera.dataType = PixelTypeToDataType(camera.pixelType);
        return true;
    }

    bool readController(pugi::xml_node node)
    {
        SController controller;
        if (!readName(
                node, m_world.m_controllerIndex, m_world.m_controllers.count(), controller.name)
            || !readFlag(node, "connectFails", controller.connectFails)
            || !readDelay(node, "connectDelay", controller.connectDelay))
            return false;
        m_world.m_controllers.add(controller);
        return true;
    }

    bool readGenICamCamera(pugi::xml_node node)
    {
        SGenICamCamera camera;
        if (!readName(node, m_world.m_genicamIndex, m_world.m_genicamCameras.count(), camera.serial,
                "serial"))
            return false;
        if (camera.serial.length() > maxGenICamSerialLength)
            return fail(node,
                std::string("the serial \"") + camera.serial.data() + "\" is longer than "
                    + std::to_string(maxGenICamSerialLength) + " bytes");
        camera.identity = attributeText(node, "identity");
        m_world.m_genicamCameras.add(std::move(camera));
        return true;
    }

    bool readCameraType(pugi::xml_node node)
    {
        const TSharedPtr<ICamera> type = MakeShared<ICamera>();
        if (!readName(node, m_world.m_cameraTypeIndex, m_world.m_cameraTypes.count(), type->name))
            return false;
        type->iconName = attributeText(node, "iconName");
        type->displayName
            = node.attribute("displayName") ? attributeText(node, "displayName") : type->name;
        type->controller = attributeText(node, "controller");
        type->description = childText(node, "description");
        for (const pugi::xml_node model : node.children("model"))
            type->models.add(xml::RepairText(model.text().get()));
        for (const pugi::xml_node baseType : node.children("baseType"))
            type->baseTypes.add(xml::RepairText(baseType.text().get()));

        SCameraInfo& info = type->defaultInfo;
        info.iconName = type->iconName;
        info.displayName = type->displayName;
        info.controller = type->controller;
        if (!readCamera(node.child("defaultInfo"), info))
            return false;
        info.name = type->name;
        m_world.m_cameraTypes.add(type);
        return true;
    }

    bool readInterface(pugi::xml_node node)
    {
        const TSharedPtr<CEmulatorInterface> transport = MakeShared<CEmulatorInterface>();
        if (!readName(
                node, m_world.m_interfaceIndex, m_world.m_interfaces.count(), transport->name))
            return false;
        transport->icon = attributeText(node, "icon");
        transport->displayName
            = node.attribute("displayName") ? attributeText(node, "displayName") : transport->name;
        transport->baseType = attributeText(node, "baseType");
        transport->description = childText(node, "description");
        transport->isEmulator = true;
        if (!readFlag(node, "comm", transport->comm) || !readFlag(node, "video", transport->video)
            || !readFlag(node, "emulator", transport->isEmulator)
            || !readFlag(node, "scanFails", transport->scanFails)
            || !readDelay(node, "scanDelay", transport->scanDelay)
            || !xml::ReadDevice(node.child("defaultDevice"), transport->defaultDevice, m_error))
            return false;
        transport->complete(transport->defaultDevice);

        for (const pugi::xml_node deviceNode : node.children("device")) {
            SEmulatedDevice device;
            if (!xml::ReadDevice(deviceNode, device.info, m_error)
                || !readFlag(deviceNode, "openFails", device.openFails))
                return false;
            if (device.info.deviceName.empty())
                return fail(deviceNode, "<device> without deviceName");
            const CString name = device.info.deviceName;
            if (!transport->addDevice(std::move(device)))
                return fail(
                    deviceNode, std::string("a second device named \"") + name.data() + "\"");
        }
        m_world.m_interfaces.add(transport);
        return true;
    }

    bool readCameras(pugi::xml_node node, CEmulatorInterface& transport)
    {
        int count = 0;
        for (const pugi::xml_node deviceNode : node.children("device")) {
            const auto cameras = deviceNode.children("camera");
            count += static_cast<int>(std::distance(cameras.begin(), cameras.end()));
        }
        transport.reserveCameras(count);
        int index = 0;
        for (const pugi::xml_node deviceNode : node.children("device")) {
            const SDeviceInfo& comm = transport.devices()[index++].info;
            for (const pugi::xml_node cameraNode : deviceNode.children("camera")) {
                if (!readAttachedCamera(cameraNode, transport, comm))
                    return false;
            }
        }
        return true;
    }

    bool readAttachedCamera(
        pugi::xml_node node, CEmulatorInterface& transport, const SDeviceInfo& comm)
    {
        const CString typeName = attributeText(node, "type");
        const TSharedPtr<ICamera> type = m_world.cameraType(typeName);
        if (!type)
            return fail(node, std::string("unknown camera type \"") + typeName.data() + "\"");
        SEmulatedCamera camera;
        camera.info = type->defaultInfo;
        if (!readCamera(node, camera.info) || !readFlag(node, "connectFails", camera.connectFails)
            || !readDelay(node, "lostAfter", camera.lostAfter)
            || !findVideo(node, camera.info.video))
            return false;
        camera.info.name = type->name;
        camera.info.comm = comm;
        camera.info.emulated = transport.isEmulator;
        transport.addCamera(std::move(camera));
        return true;
    }

    // The device named by the video attribute, "<interface>/<device>"; none without it.
    bool findVideo(pugi::xml_node node, SDeviceInfo& video)
    {
        const CString attribute = attributeText(node, "video");
        const std::string_view reference = attribute.view();
        video = {};
        if (reference.empty())
            return true;
        const std::size_t slash = reference.find('/');
        if (slash != std::string_view::npos) {
            const TSharedPtr<CEmulatorInterface> transport
                = m_world.interfaceByName(CString(reference.substr(0, slash)));
            if (const SEmulatedDevice* device
                = transport ? transport->device(CString(reference.substr(slash + 1))) : nullptr) {
                video = device->info;
                return true;
            }
        }
        return fail(node, "unknown video device \"" + std::string(reference) + "\"");
    }

    CEmulatorWorld& m_world;
    xml::SError& m_error;
};

TSharedPtr<const CEmulatorWorld> CEmulatorWorld::Load(
    const char* text, std::size_t size, const CString& source)
{
    try {
        pugi::xml_document document;
        const pugi::xml_parse_result parsed = document.load_buffer(text, size);
        if (!parsed) {
            const std::ptrdiff_t offset
                = std::clamp<std::ptrdiff_t>(parsed.offset, 0, static_cast<std::ptrdiff_t>(size));
            report(source, xml::LineAt(offset, text, size), parsed.description());
            return MakeShared<CEmulatorWorld>();
        }
        const TSharedPtr<CEmulatorWorld> world = MakeShared<CEmulatorWorld>();
        xml::SError error;
        if (!CReader(*world, error).read(document.document_element())) {
            report(source, xml::LineOf(error.node, text, size), error.reason);
            return MakeShared<CEmulatorWorld>();
        }
        return world;
    } catch (const std::bad_alloc&) {
        report(source, 0, "out of memory");
    } catch (const std::exception& failure) {
        report(source, 0, failure.what());
    }
    return MakeShared<CEmulatorWorld>();
}

TSharedPtr<const CEmulatorWorld> CEmulatorWorld::LoadFile(const CString& path)
{
    std::string text;
    CString error;
    if (!readFile(path, text, error)) {
        report(path, 0, std::string("cannot read the world: ") + error.data());
        return MakeShared<CEmulatorWorld>();
    }
    return Load(text.data(), text.size(), path);
}

TSharedPtr<const CEmulatorWorld> CEmulatorWorld::Current()
{
    static const TSharedPtr<const CEmulatorWorld> world = [] {
        const QByteArray file = qgetenv("KIVCAM_EMULATOR_WORLD");
        return LoadFile(file.isEmpty() ? CString(":/kivcam/DefaultWorld.xml")
                                       : CString(file.constData(), static_cast<int>(file.size())));
    }();
    return world;
}

TSharedPtr<ICamera> CEmulatorWorld::cameraType(const CString& name) const
{
    const TSharedPtr<ICamera>* type = findByName(m_cameraTypes, m_cameraTypeIndex, name);
    return type ? *type : TSharedPtr<ICamera>();
}

const CEmulatorWorld::SController* CEmulatorWorld::controller(const CString& name) const
{
    return findByName(m_controllers, m_controllerIndex, name);
}

TSharedPtr<CEmulatorInterface> CEmulatorWorld::interfaceByName(const CString& name) const
{
    const TSharedPtr<CEmulatorInterface>* transport
        = findByName(m_interfaces, m_interfaceIndex, name);
    return transport ? *transport : TSharedPtr<CEmulatorInterface>();
}

const SEmulatedCamera* CEmulatorWorld::cameraOn(
    const SDeviceInfo& device, const CString& serial) const
{
    const TSharedPtr<CEmulatorInterface> transport = interfaceByName(device.interfaceName);
    return transport ? transport->cameraOn(device.deviceName, serial) : nullptr;
}

} // namespace kiv::cam
