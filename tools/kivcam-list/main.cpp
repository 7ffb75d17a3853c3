// Prints what the camera library sees, emulated transports included, as plain text:
//   kivcam-list
//   KIVCAM_EMULATOR_WORLD=my-world.xml kivcam-list

#include <kiv/CString.h>
#include <kiv/PixelType.h>
#include <kivcam/CCameraFinder.h>
#include <kivcam/CCameras.h>
#include <kivcam/CControllerFactory.h>
#include <kivcam/CInterfaces.h>

#include <cstdio>

using namespace kiv;
using namespace kiv::cam;

namespace {

const char* s(const CString& text)
{
    return text.empty() ? "" : text.c_str();
}

CString joined(const TArray<CString>& items)
{
    CString text;
    for (const CString& item : items)
        text += (text.empty() ? CString() : CString(", ")) + item;
    return text;
}

void printReasons(
    const char* indent, bool canConnect, const CString& summary, const CString& message)
{
    if (canConnect)
        return;
    std::printf("%scannot connect: %s\n", indent, s(summary));
    if (!message.empty())
        std::printf("%s  %s\n", indent, s(message));
}

void printParameters(const char* indent, const CParameters& parameters)
{
    for (unsigned i = 0; i < parameters.count(); ++i) {
        const CParameters::CEntry& entry = parameters[i];
        CString choices;
        for (int item = 0; item < entry.value().GetEnumCount(); ++item)
            choices += (item ? CString("|") : CString(" of ")) + entry.value().GetEnumName(item);
        std::printf("%s%s = %s%s  (\"%s\", edit level %d)\n", indent, s(entry.name),
            s(entry.value().ToString()), s(choices), s(entry.displayName),
            static_cast<int>(entry.editLevel));
    }
}

void printDevice(const SDeviceInfo& device)
{
    std::printf("    %s / %s  [base type %s, icon %s]\n", s(device.interfaceName),
        s(device.deviceName), s(device.baseType), s(device.iconName));
    if (!device.description.empty())
        std::printf("      %s\n", s(device.description));
    printParameters("      ", device.parameters);
    printReasons("      ", device.canConnect, device.errorSummary, device.errorMessage);
}

void printCameraTypes()
{
    CCameras* catalogue = cameras();
    std::printf("Camera types (%d)\n", catalogue->cameraCount());
    for (int i = 0; i < catalogue->cameraCount(); ++i) {
        const TSharedPtr<ICamera> type = catalogue->cameraAt(i);
        const SCameraInfo& info = type->defaultInfo;
        std::printf("    %s  \"%s\"  family %s, controller %s\n", s(type->name),
            s(type->displayName), s(type->iconName), s(type->controller));
        std::printf("      models: %s\n", s(joined(type->models)));
        std::printf("      base types: %s\n", s(joined(type->baseTypes)));
        std::printf("      %ux%u %s, %d bits, vendor %s\n", unsigned{info.width},
            unsigned{info.height}, s(PixelTypeToString(info.pixelType)), info.adBits,
            s(info.vendor));
    }
}

void printControllers()
{
    TArray<CString> names;
    controllerFactory()->getControllerNames(names);
    std::printf("\nControllers (%d)\n", names.count());
    for (const CString& name : names)
        std::printf("    %s\n", s(name));
}

void printInterfaces()
{
    CInterfaces* catalogue = interfaces();
    std::printf("\nInterfaces (%d)\n", catalogue->interfaceCount());
    for (int i = 0; i < catalogue->interfaceCount(); ++i) {
        const TSharedPtr<IInterface> transport = catalogue->interfaceAt(i);
        std::printf("    %s  \"%s\"  icon %s, base type %s%s%s%s\n", s(transport->name),
            s(transport->displayName), s(transport->icon), s(transport->baseType),
            transport->comm ? ", control" : "", transport->video ? ", video" : "",
            transport->isEmulator ? ", emulator" : "");
        std::printf("      default device:\n");
        printParameters("        ", transport->defaultDevice.parameters);
    }
}

void printDevices()
{
    TArray<SDeviceInfo> devices;
    const bool ok = interfaces()->findDevices(devices, CInterfaces::FIND_PRESENT);
    std::printf("\nDevices (%d)%s\n", devices.count(), ok ? "" : "  -- a transport's scan failed");
    for (const SDeviceInfo& device : devices)
        printDevice(device);
}

void printCameras()
{
    CCameraFinder finder;
    const bool ok = finder.Find(CCameraFinder::FIND_COMM);
    std::printf("\nCameras (%llu)%s\n", static_cast<unsigned long long>(finder.size()),
        ok ? "" : "  -- a transport's scan failed");
    for (std::uint64_t i = 0; i < finder.size(); ++i) {
        const SCameraInfo camera = finder.at(i);
        std::printf("    %s %s  \"%s\"  model %s, controller %s%s\n", s(camera.name),
            s(camera.serial), s(camera.displayName), s(camera.model), s(camera.controller),
            camera.emulated ? ", emulated" : "");
        std::printf(
            "      control: %s / %s\n", s(camera.comm.interfaceName), s(camera.comm.deviceName));
        if (camera.video.empty())
            std::printf("      video: none (control only)\n");
        else
            std::printf("      video: %s / %s\n", s(camera.video.interfaceName),
                s(camera.video.deviceName));
        printReasons("      ", camera.canConnect, camera.errorSummary, camera.errorMessage);
    }
}

} // namespace

int main(int argc, char**)
{
    if (argc > 1) {
        std::fprintf(stderr,
            "usage: kivcam-list\n"
            "Set KIVCAM_EMULATOR_WORLD to list another emulator world.\n");
        return 2;
    }
    interfaces()->setEnableEmulators(true);
    CCameraFinder::setEnableEmulators(true);
    printCameraTypes();
    printControllers();
    printInterfaces();
    printDevices();
    printCameras();
    return 0;
}
