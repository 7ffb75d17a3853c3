// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// Prints what the camera library sees as plain text: the machine's serial ports and network
// adapters, GigE Vision cameras on the adapters KIVCAM_GIGE_INTERFACES allows, USB3 Vision
// cameras, and the emulated transports unless --no-emulators is given; with --features, the
// feature tree of each GenICam camera found (it connects to the camera to read it):
//   kivcam-list
//   kivcam-list --no-emulators
//   kivcam-list --features
//   KIVCAM_GIGE_INTERFACES=eth1 kivcam-list
//   KIVCAM_EMULATOR_WORLD=my-world.xml kivcam-list

#include <kiv/CString.h>
#include <kiv/PixelType.h>
#include <kiv/strprintf.h>
#include <kivcam/CCameraFinder.h>
#include <kivcam/CCameras.h>
#include <kivcam/CControllerFactory.h>
#include <kivcam/CInterfaces.h>
#include <kivcam/IGenICamController.h>
#include <kivcam/gige/CGigEConfig.h>

#include <cstdio>
#include <cstring>

using namespace kiv;
using namespace kiv::cam;

namespace {

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
    std::printf("%scannot connect: %s\n", indent, summary.data());
    if (!message.empty())
        std::printf("%s  %s\n", indent, message.data());
}

void printParameters(const char* indent, const CParameters& parameters)
{
    for (unsigned i = 0; i < parameters.count(); ++i) {
        const CParameters::CEntry& entry = parameters[i];
        CString choices;
        for (int item = 0; item < entry.value().GetEnumCount(); ++item)
            choices += (item ? CString("|") : CString(" of ")) + entry.value().GetEnumName(item);
        std::printf("%s%s = %s%s  (\"%s\", edit level %d)\n", indent, entry.name.data(),
            entry.value().ToString().data(), choices.data(), entry.displayName.data(),
            static_cast<int>(entry.editLevel));
    }
}

void printDevice(const SDeviceInfo& device)
{
    std::printf("    %s / %s  [base type %s, icon %s]\n", device.interfaceName.data(),
        device.deviceName.data(), device.baseType.data(), device.iconName.data());
    if (!device.description.empty())
        std::printf("      %s\n", device.description.data());
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
        std::printf("    %s  \"%s\"  family %s, controller %s\n", type->name.data(),
            type->displayName.data(), type->iconName.data(), type->controller.data());
        std::printf("      models: %s\n", joined(type->models).data());
        std::printf("      base types: %s\n", joined(type->baseTypes).data());
        std::printf("      %ux%u %s, %d bits, vendor %s\n", unsigned{info.width},
            unsigned{info.height}, PixelTypeToString(info.pixelType).data(), info.adBits,
            info.vendor.data());
    }
}

void printControllers()
{
    TArray<CString> names;
    controllerFactory()->getControllerNames(names);
    std::printf("\nControllers (%d)\n", names.count());
    for (const CString& name : names)
        std::printf("    %s\n", name.data());
}

void printInterfaces()
{
    CInterfaces* catalogue = interfaces();
    std::printf("\nInterfaces (%d)\n", catalogue->interfaceCount());
    for (int i = 0; i < catalogue->interfaceCount(); ++i) {
        const TSharedPtr<IInterface> transport = catalogue->interfaceAt(i);
        std::printf("    %s  \"%s\"  icon %s, base type %s%s%s%s\n", transport->name.data(),
            transport->displayName.data(), transport->icon.data(), transport->baseType.data(),
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

const char* typeName(SGenICamFeature::EType type)
{
    static const char* const names[]
        = {"category", "integer", "float", "enumeration", "boolean", "command", "string", "other"};
    return names[type];
}

void printFeature(const SGenICamFeature& row)
{
    static const char* const visibilities[] = {"Beginner", "Expert", "Guru", "Invisible"};
    static const char* const access[] = {"not available", "RO", "WO", "RW"};
    const int indent = 8 + 2 * row.depth;
    if (row.type == SGenICamFeature::CATEGORY) {
        std::printf("%*s%s  \"%s\"\n", indent, "", row.name.data(), row.displayName.data());
        return;
    }
    // Limits matter for what can be written.
    CString limits;
    if (row.isWritable() && row.type == SGenICamFeature::INTEGER)
        limits = strprintf("  [%lld..%lld step %lld]", static_cast<long long>(row.intMin),
            static_cast<long long>(row.intMax), static_cast<long long>(row.intInc));
    else if (row.isWritable() && row.type == SGenICamFeature::FLOAT)
        limits = strprintf("  [%g..%g%s]", row.floatMin, row.floatMax,
            row.floatInc > 0 ? strprintf(" step %g", row.floatInc).data() : "");
    else if (row.type == SGenICamFeature::ENUMERATION)
        limits = "  of " + joined(row.entries);
    std::printf("%*s%s = %s%s%s  (%s, %s, %s)%s%s\n", indent, "", row.name.data(), row.value.data(),
        row.unit.empty() ? "" : " ", row.unit.data(), typeName(row.type),
        visibilities[row.visibility], access[row.access], limits.data(),
        row.accessReason.empty() ? "" : ("  -- " + row.accessReason).data());
    if (!row.error.empty())
        std::printf("%*s  cannot be read: %s\n", indent, "", row.error.data());
}

// Connects to a camera the way a host does, and prints its feature tree.
void printFeatures(const SCameraInfo& camera)
{
    const TSharedPtr<ICamera> type = cameras()->cameraByName(camera.name);
    const TSharedPtr<IInterface> transport
        = interfaces()->interfaceByName(camera.comm.interfaceName);
    if (!type || !transport || !camera.canConnect)
        return;
    const TSharedPtr<IController> controller
        = controllerFactory()->createController(type->controller);
    auto* genicam = dynamic_cast<IGenICamController*>(controller.get());
    if (!genicam)
        return;
    const TSharedPtr<IDevice> device = transport->createDevice();
    if (!device || !device->open(camera.comm, true)) {
        std::printf("      features: the camera cannot be opened: %s\n",
            device ? device->errorMessage().data() : "no device");
        return;
    }
    if (!genicam->connect(device, camera)) {
        std::printf(
            "      features: the camera cannot be connected: %s\n", genicam->errorMessage().data());
    } else {
        const TArray<SGenICamFeature> rows = genicam->features();
        std::printf("      features (%d rows):\n", rows.count());
        for (const SGenICamFeature& row : rows)
            printFeature(row);
        genicam->disconnect();
    }
    device->close();
}

void printCameras(bool features)
{
    CCameraFinder finder;
    const bool ok = finder.Find(CCameraFinder::FIND_COMM);
    std::printf("\nCameras (%llu)%s\n", static_cast<unsigned long long>(finder.size()),
        ok ? "" : "  -- a transport's scan failed");
    for (std::uint64_t i = 0; i < finder.size(); ++i) {
        const SCameraInfo camera = finder.at(i);
        std::printf("    %s %s  \"%s\"  model %s, controller %s%s\n", camera.name.data(),
            camera.serial.data(), camera.displayName.data(), camera.model.data(),
            camera.controller.data(), camera.emulated ? ", emulated" : "");
        std::printf("      control: %s / %s\n", camera.comm.interfaceName.data(),
            camera.comm.deviceName.data());
        if (camera.video.empty())
            std::printf("      video: none (control only)\n");
        else
            std::printf("      video: %s / %s\n", camera.video.interfaceName.data(),
                camera.video.deviceName.data());
        printReasons("      ", camera.canConnect, camera.errorSummary, camera.errorMessage);
        if (features)
            printFeatures(camera);
    }
}

} // namespace

int main(int argc, char** argv)
{
    bool emulators = true;
    bool features = false;
    bool usage = false;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--no-emulators") == 0)
            emulators = false;
        else if (std::strcmp(argv[i], "--features") == 0)
            features = true;
        else
            usage = true;
    }
    if (usage) {
        std::fprintf(stderr,
            "usage: kivcam-list [--no-emulators] [--features]\n"
            "--features connects to each GenICam camera found and prints its feature tree.\n"
            "Set KIVCAM_GIGE_INTERFACES to the network adapters GigE Vision discovery may use\n"
            "(\"eth1,eth2\", or \"*\" for all); it broadcasts on them.\n"
            "Set KIVCAM_EMULATOR_WORLD to list another emulator world.\n");
        return 2;
    }
    interfaces()->setEnableEmulators(emulators);
    CCameraFinder::setEnableEmulators(emulators);
    printCameraTypes();
    printControllers();
    printInterfaces();
    printDevices();
    printCameras(features);
    if (!CGigEConfig::Enabled())
        std::printf("\nGigE Vision discovery is off: set KIVCAM_GIGE_INTERFACES to the network "
                    "adapters it may use.\n");
    return 0;
}
