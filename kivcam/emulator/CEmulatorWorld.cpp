#include "CEmulatorWorld.h"

#include <kiv/CVariant.h>
#include <kiv/PixelType.h>
#include <kiv/Platform.h>
#include <kiv/strprintf.h>
#include <kivcam/XmlRecords.h>

#include <QFile>
#include <QString>

#include <algorithm>
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

CString nameOfController(const CEmulatorWorld::SController& controller)
{
    return controller.name;
}

CString nameOfType(const TSharedPtr<ICamera>& type)
{
    return type->name;
}

CString nameOfInterface(const TSharedPtr<CEmulatorInterface>& transport)
{
    return transport->name;
}

template <typename T>
const T* findByName(const TArray<T>& items, const CString& name, CString (*nameOf)(const T&))
{
    const T* found = std::find_if(
        items.begin(), items.end(), [&](const T& item) { return nameOf(item) == name; });
    return found == items.end() ? nullptr : found;
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

    // A required name attribute, unique among names.
    template <typename T>
    bool readName(
        pugi::xml_node node, const TArray<T>& others, CString (*nameOf)(const T&), CString& name)
    {
        name = node.attribute("name").value();
        if (name.empty())
            return fail(node, std::string("<") + node.name() + "> without a name");
        if (findByName(others, name, nameOf))
            return fail(
                node, std::string("a second <") + node.name() + "> named \"" + name.data() + "\"");
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
        if (!readName(node, m_world.m_controllers, nameOfController, controller.name)
            || !readFlag(node, "connectFails", controller.connectFails)
            || !readDelay(node, "connectDelay", controller.connectDelay))
            return false;
        m_world.m_controllers.add(controller);
        return true;
    }

    bool readCameraType(pugi::xml_node node)
    {
        const TSharedPtr<ICamera> type = MakeShared<ICamera>();
        if (!readName(node, m_world.m_cameraTypes, nameOfType, type->name))
            return false;
        type->iconName = node.attribute("iconName").value();
        type->displayName = node.attribute("displayName").as_string(type->name.data());
        type->controller = node.attribute("controller").value();
        type->description = node.child("description").text().get();
        for (const pugi::xml_node model : node.children("model"))
            type->models.add(CString(model.text().get()));
        for (const pugi::xml_node baseType : node.children("baseType"))
            type->baseTypes.add(CString(baseType.text().get()));

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
        if (!readName(node, m_world.m_interfaces, nameOfInterface, transport->name))
            return false;
        transport->icon = node.attribute("icon").value();
        transport->displayName = node.attribute("displayName").as_string(transport->name.data());
        transport->baseType = node.attribute("baseType").value();
        transport->description = node.child("description").text().get();
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
            if (transport->device(device.info.deviceName))
                return fail(deviceNode,
                    std::string("a second device named \"") + device.info.deviceName.data() + "\"");
            transport->addDevice(device);
        }
        m_world.m_interfaces.add(transport);
        return true;
    }

    bool readCameras(pugi::xml_node node, CEmulatorInterface& transport)
    {
        int index = 0;
        for (const pugi::xml_node deviceNode : node.children("device")) {
            const SDeviceInfo comm = transport.devices()[index++].info;
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
        const char* typeName = node.attribute("type").value();
        const TSharedPtr<ICamera> type = m_world.cameraType(typeName);
        if (!type)
            return fail(node, std::string("unknown camera type \"") + typeName + "\"");
        SEmulatedCamera camera;
        camera.info = type->defaultInfo;
        if (!readCamera(node, camera.info) || !readFlag(node, "connectFails", camera.connectFails)
            || !findVideo(node, camera.info.video))
            return false;
        camera.info.name = type->name;
        camera.info.comm = comm;
        camera.info.emulated = transport.isEmulator;
        transport.addCamera(camera);
        return true;
    }

    // The device named by the video attribute, "<interface>/<device>"; none without it.
    bool findVideo(pugi::xml_node node, SDeviceInfo& video)
    {
        const std::string_view reference = node.attribute("video").value();
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
}

TSharedPtr<const CEmulatorWorld> CEmulatorWorld::LoadFile(const CString& path)
{
    QFile file(QString::fromUtf8(path.view().data(), static_cast<qsizetype>(path.view().size())));
    if (!file.open(QIODevice::ReadOnly)) {
        report(path, 0, "cannot read the world: " + file.errorString().toStdString());
        return MakeShared<CEmulatorWorld>();
    }
    const QByteArray bytes = file.readAll();
    return Load(bytes.constData(), static_cast<std::size_t>(bytes.size()), path);
}

TSharedPtr<ICamera> CEmulatorWorld::cameraType(const CString& name) const
{
    const TSharedPtr<ICamera>* type = findByName(m_cameraTypes, name, nameOfType);
    return type ? *type : TSharedPtr<ICamera>();
}

const CEmulatorWorld::SController* CEmulatorWorld::controller(const CString& name) const
{
    return findByName(m_controllers, name, nameOfController);
}

TSharedPtr<CEmulatorInterface> CEmulatorWorld::interfaceByName(const CString& name) const
{
    const TSharedPtr<CEmulatorInterface>* transport
        = findByName(m_interfaces, name, nameOfInterface);
    return transport ? *transport : TSharedPtr<CEmulatorInterface>();
}

bool CEmulatorWorld::cameraConnectFails(const SCameraInfo& camera) const
{
    const TSharedPtr<CEmulatorInterface> transport = interfaceByName(camera.comm.interfaceName);
    return transport && transport->cameraConnectFails(camera.comm.deviceName, camera.serial);
}

} // namespace kiv::cam
