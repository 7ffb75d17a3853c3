// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kiv/CString.h>
#include <kivcam/genicam/CGenICamEmulatorDevice.h>
#include <kivcam/genicam/CGenICamEmulatorInterface.h>

#include <QByteArrayList>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <arv.h>
#include <cstdio>
#include <cstring>
#include <memory>
#include <sys/stat.h>
#include <vector>

using namespace kiv;
using namespace kiv::cam;

namespace {

// This test program started with this argument opens emulated cameras, prints what it finds of
// their GenICam file in the temporary folder, and exits; see genicamFileIsPrivateAndRemoved.
constexpr const char* fileReportArgument = "--report-genicam-file";

SDeviceInfo record(const char* serial)
{
    const CGenICamEmulatorInterface transport({}, CGenICamEmulatorInterface::CameraType("GenICam"));
    SDeviceInfo info = transport.defaultDevice;
    info.deviceName = serial;
    info.parameters[CGenICamEmulatorInterface::SerialParameter].setValue(CVariant(CString(serial)));
    return info;
}

QByteArray str(const CString& text)
{
    return QByteArray(text.c_str());
}

// The kind of a feature node, as SGenICamFeature names them.
QByteArray kindOf(ArvGcNode* node)
{
    if (ARV_IS_GC_CATEGORY(node))
        return "category";
    if (ARV_IS_GC_ENUMERATION(node))
        return "enumeration";
    if (ARV_IS_GC_BOOLEAN(node))
        return "boolean";
    if (ARV_IS_GC_COMMAND(node))
        return "command";
    if (ARV_IS_GC_FLOAT(node))
        return "float";
    if (ARV_IS_GC_INTEGER(node))
        return "integer";
    if (ARV_IS_GC_STRING(node))
        return "string";
    return "other";
}

int reportGenICamFile()
{
    CGenICamEmulatorDevice first;
    CGenICamEmulatorDevice second;
    if (!first.open(record("GC-0001"), false) || !second.open(record("GC-0002"), false)) {
        std::printf("error %s%s\n", first.errorMessage().data(), second.errorMessage().data());
        return 0;
    }
    QFile resource(":/kivcam/EmulatedCamera.xml");
    resource.open(QIODevice::ReadOnly);
    const QByteArray text = resource.readAll();
    const QFileInfoList files = QDir(QDir::tempPath()).entryInfoList(QDir::Files | QDir::Hidden);
    std::printf("files %d\n", static_cast<int>(files.size()));
    for (const QFileInfo& file : files) {
        QFile content(file.filePath());
        content.open(QIODevice::ReadOnly);
        struct stat status { };
        stat(QFile::encodeName(file.filePath()).constData(), &status);
        std::printf("file %s %o %s\n", qPrintable(file.fileName()), status.st_mode & 0777u,
            content.readAll() == text ? "same" : "other");
    }
    return 0;
}

// What a child process reports with TMPDIR set to folder.
QByteArrayList reportWith(const QString& folder)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("TMPDIR", folder);
    QProcess child;
    child.setProcessEnvironment(environment);
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    child.start(QCoreApplication::applicationFilePath(), {fileReportArgument});
    if (!child.waitForFinished(60000) || child.exitStatus() != QProcess::NormalExit
        || child.exitCode() != 0) {
        qWarning("the child process failed");
        return {};
    }
    return child.readAllStandardOutput().trimmed().split('\n');
}

// A stream of the fake camera, with the buffers it delivered.
class CStream {
public:
    CStream(ArvDevice* device, int buffers) : m_device(device)
    {
        GError* error = nullptr;
        m_stream = arv_device_create_stream(device, nullptr, nullptr, &error);
        if (!m_stream) {
            qWarning("no stream: %s", error ? error->message : "no reason given");
            g_clear_error(&error);
            return;
        }
        const gint64 payload = arv_device_get_integer_feature_value(device, "PayloadSize", nullptr);
        for (int i = 0; i < buffers; ++i)
            arv_stream_push_buffer(m_stream, arv_buffer_new(static_cast<size_t>(payload), nullptr));
        arv_device_execute_command(device, "AcquisitionStart", nullptr);
    }
    ~CStream()
    {
        arv_device_execute_command(m_device, "AcquisitionStop", nullptr);
        for (ArvBuffer* buffer : m_popped)
            g_object_unref(buffer);
        if (m_stream)
            g_object_unref(m_stream);
    }

    // The next buffer, kept until the stream goes; null after two seconds without one.
    ArvBuffer* pop()
    {
        ArvBuffer* buffer = m_stream ? arv_stream_timeout_pop_buffer(m_stream, 2000000) : nullptr;
        if (buffer)
            m_popped.push_back(buffer);
        return buffer;
    }

private:
    ArvDevice* m_device;
    ArvStream* m_stream = nullptr;
    std::vector<ArvBuffer*> m_popped;
};

} // namespace

// The emulated GenICam camera: Aravis's fake camera with the camera library's GenICam file.
class tst_CGenICamEmulatorDevice : public QObject {
    Q_OBJECT

    std::unique_ptr<CGenICamEmulatorDevice> m_device;

    ArvDevice* arv() const { return m_device->arvDevice(); }
    ArvGcFeatureNode* node(const char* name) const
    {
        return ARV_GC_FEATURE_NODE(arv_device_get_feature(arv(), name));
    }
    gint64 integer(const char* name) const
    {
        GError* error = nullptr;
        const gint64 value = arv_device_get_integer_feature_value(arv(), name, &error);
        if (error)
            qWarning("%s: %s", name, error->message);
        g_clear_error(&error);
        return value;
    }
    void setInteger(const char* name, gint64 value)
    {
        arv_device_set_integer_feature_value(arv(), name, value, nullptr);
    }
    QList<gint64> limits(const char* name) const
    {
        gint64 min = 0;
        gint64 max = 0;
        arv_device_get_integer_feature_bounds(arv(), name, &min, &max, nullptr);
        return {min, max, arv_device_get_integer_feature_increment(arv(), name, nullptr)};
    }
    QByteArrayList entries(const char* name) const
    {
        guint count = 0;
        const char** values = arv_device_dup_available_enumeration_feature_values_as_strings(
            arv(), name, &count, nullptr);
        QByteArrayList found;
        for (guint i = 0; i < count; ++i)
            found << values[i];
        g_free(values);
        return found;
    }
    bool locked(const char* name) const
    {
        return arv_gc_feature_node_is_locked(node(name), nullptr);
    }
    guint32 reg(guint64 address) const
    {
        guint32 value = 0;
        arv_device_read_register(arv(), address, &value, nullptr);
        return value;
    }
    // The names under a category, depth first, with the categories.
    QByteArrayList tree(const char* category) const
    {
        QByteArrayList names{category};
        for (const GSList* item = arv_gc_category_get_features(ARV_GC_CATEGORY(node(category)));
             item; item = item->next) {
            const char* name = static_cast<const char*>(item->data);
            if (ARV_IS_GC_CATEGORY(node(name)))
                names << tree(name);
            else
                names << name;
        }
        return names;
    }

private Q_SLOTS:
    void init()
    {
        m_device = std::make_unique<CGenICamEmulatorDevice>();
        QVERIFY2(m_device->open(record("GC-0001"), false), m_device->errorMessage().c_str());
    }
    void cleanup() { m_device.reset(); }

    void opens()
    {
        QVERIFY(m_device->isOpen());
        QVERIFY(arv());
        QVERIFY(m_device->hasControl());
        QCOMPARE(m_device->errorMessage(), CString());
        QCOMPARE(str(m_device->info().deviceName), QByteArray("GC-0001"));
        QCOMPARE(
            arv_device_get_string_feature_value(arv(), "DeviceSerialNumber", nullptr), "GC-0001");
        QCOMPARE(arv_device_get_string_feature_value(arv(), "DeviceVendorName", nullptr),
            CGenICamEmulatorInterface::VendorName);
        QCOMPARE(arv_device_get_string_feature_value(arv(), "DeviceModelName", nullptr),
            CGenICamEmulatorInterface::ModelName);
        QCOMPARE(arv_device_get_string_feature_value(arv(), "DeviceFirmwareVersion", nullptr),
            CGenICamEmulatorInterface::FirmwareVersion);
    }

    void categories()
    {
        const QByteArrayList root = tree("Root");
        for (const char* category : {"DeviceControl", "ImageFormatControl", "AcquisitionControl",
                 "AnalogControl", "TransportLayerControl", "TestControl"})
            QVERIFY2(root.contains(category), category);
        QCOMPARE(root.size(), QSet<QByteArray>(root.begin(), root.end()).size());
    }

    // Every feature under the root reads without an error, and there are some of every
    // visibility.
    void everyFeatureReads()
    {
        QSet<int> visibilities;
        QSet<QByteArray> kinds;
        for (const QByteArray& name : tree("Root")) {
            ArvGcFeatureNode* feature = node(name.constData());
            QVERIFY2(feature, name.constData());
            visibilities << arv_gc_feature_node_get_visibility(feature);
            kinds << kindOf(ARV_GC_NODE(feature));
            QVERIFY2(arv_gc_feature_node_is_available(feature, nullptr), name.constData());
            if (ARV_IS_GC_COMMAND(feature) || ARV_IS_GC_CATEGORY(feature))
                continue;
            GError* error = nullptr;
            const char* value = arv_gc_feature_node_get_value_as_string(feature, &error);
            QVERIFY2(!error, (name + ": " + (error ? error->message : "")).constData());
            QVERIFY2(value, name.constData());
        }
        QCOMPARE(visibilities,
            QSet<int>({ARV_GC_VISIBILITY_BEGINNER, ARV_GC_VISIBILITY_EXPERT, ARV_GC_VISIBILITY_GURU,
                ARV_GC_VISIBILITY_INVISIBLE}));
        QCOMPARE(kinds,
            QSet<QByteArray>(
                {"category", "integer", "float", "enumeration", "boolean", "command", "string"}));
    }

    void features_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QByteArray>("kind");
        QTest::addColumn<int>("visibility");
        QTest::addColumn<int>("access");
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<QByteArray>("unit");
        const int beginner = ARV_GC_VISIBILITY_BEGINNER;
        const int expert = ARV_GC_VISIBILITY_EXPERT;
        const int guru = ARV_GC_VISIBILITY_GURU;
        const int invisible = ARV_GC_VISIBILITY_INVISIBLE;
        const int ro = ARV_GC_ACCESS_MODE_RO;
        const int wo = ARV_GC_ACCESS_MODE_WO;
        const int rw = ARV_GC_ACCESS_MODE_RW;
        const auto row = [](const char* name, const char* kind, int visibility, int access,
                             const char* value, const char* unit = "") {
            QTest::newRow(name) << QByteArray(name) << QByteArray(kind) << visibility << access
                                << QByteArray(value) << QByteArray(unit);
        };
        row("DeviceVendorName", "string", beginner, ro, "kivcam");
        row("DeviceModelName", "string", beginner, ro, "Emulated GenICam");
        row("DeviceSerialNumber", "string", beginner, ro, "GC-0001");
        row("DeviceFirmwareVersion", "string", expert, ro, "1.0.0");
        row("DeviceUserID", "string", beginner, rw, "");
        row("SensorWidth", "integer", expert, ro, "1024", "px");
        row("SensorHeight", "integer", expert, ro, "768", "px");
        row("Width", "integer", beginner, rw, "512", "px");
        row("Height", "integer", beginner, rw, "512", "px");
        row("OffsetX", "integer", beginner, rw, "0", "px");
        row("OffsetY", "integer", beginner, rw, "0", "px");
        row("PixelFormat", "enumeration", beginner, rw, "Mono8");
        row("AcquisitionMode", "enumeration", beginner, rw, "Continuous");
        row("AcquisitionStart", "command", beginner, wo, "");
        row("AcquisitionStop", "command", beginner, wo, "");
        row("AcquisitionFrameRate", "float", beginner, rw, "25", "Hz");
        row("ExposureTime", "float", beginner, rw, "10000", "us");
        row("AcquisitionActive", "integer", invisible, ro, "0");
        row("GainSelector", "enumeration", expert, rw, "All");
        row("Gain", "float", beginner, rw, "0", "dB");
        row("PayloadSize", "integer", expert, ro, "262144", "B");
        row("TestPattern", "enumeration", beginner, rw, "Off");
        row("TestEnable", "boolean", expert, rw, "false");
        row("TestCounter", "integer", guru, rw, "0");
        row("TestCounterReset", "command", guru, wo, "");
    }
    void features()
    {
        QFETCH(QByteArray, name);
        QFETCH(QByteArray, kind);
        QFETCH(int, visibility);
        QFETCH(int, access);
        QFETCH(QByteArray, value);
        QFETCH(QByteArray, unit);
        ArvGcFeatureNode* feature = node(name.constData());
        QVERIFY(feature);
        QCOMPARE(kindOf(ARV_GC_NODE(feature)), kind);
        QCOMPARE(int(arv_gc_feature_node_get_visibility(feature)), visibility);
        QCOMPARE(int(arv_gc_feature_node_get_actual_access_mode(feature)), access);
        if (kind != "command")
            QCOMPARE(QByteArray(arv_gc_feature_node_get_value_as_string(feature, nullptr)), value);
        const char* actualUnit = kind == "float" ? arv_gc_float_get_unit(ARV_GC_FLOAT(feature))
            : kind == "integer"                  ? arv_gc_integer_get_unit(ARV_GC_INTEGER(feature))
                                                 : nullptr;
        QCOMPARE(QByteArray(actualUnit), unit);
    }

    void floatLimits()
    {
        double min = 0;
        double max = 0;
        arv_device_get_float_feature_bounds(arv(), "ExposureTime", &min, &max, nullptr);
        QCOMPARE(min, 10.0);
        QCOMPARE(max, 1000000.0);
        arv_device_get_float_feature_bounds(arv(), "AcquisitionFrameRate", &min, &max, nullptr);
        QCOMPARE(min, 1.0);
        QCOMPARE(max, 200.0);
        arv_device_get_float_feature_bounds(arv(), "Gain", &min, &max, nullptr);
        QCOMPARE(min, 0.0);
        QCOMPARE(max, 12.0);
        QCOMPARE(arv_device_get_float_feature_increment(arv(), "Gain", nullptr), 1.0);
    }

    // Floats reach the fake camera's registers through their converters.
    void floatsDriveTheCamera()
    {
        arv_device_set_float_feature_value(arv(), "AcquisitionFrameRate", 100, nullptr);
        QCOMPARE(reg(ARV_FAKE_CAMERA_REGISTER_ACQUISITION_FRAME_PERIOD_US), 10000u);
        QCOMPARE(arv_device_get_float_feature_value(arv(), "AcquisitionFrameRate", nullptr), 100.0);
        arv_device_set_float_feature_value(arv(), "ExposureTime", 2500, nullptr);
        QCOMPARE(reg(ARV_FAKE_CAMERA_REGISTER_EXPOSURE_TIME_US), 2500u);
    }

    // The region of interest: a size reaches at most to the sensor's edge from its offset, an
    // offset at most as far as leaves room for the size; offsets and sizes step differently.
    void coupledLimits()
    {
        QCOMPARE(limits("Width"), QList<gint64>({16, 1024, 16}));
        QCOMPARE(limits("Height"), QList<gint64>({2, 768, 2}));
        QCOMPARE(limits("OffsetX"), QList<gint64>({0, 512, 4}));
        QCOMPARE(limits("OffsetY"), QList<gint64>({0, 256, 2}));
        setInteger("Width", 1024);
        setInteger("Height", 768);
        QCOMPARE(limits("OffsetX"), QList<gint64>({0, 0, 4}));
        QCOMPARE(limits("OffsetY"), QList<gint64>({0, 0, 2}));
        setInteger("Width", 256);
        setInteger("OffsetX", 300);
        setInteger("Height", 100);
        setInteger("OffsetY", 500);
        QCOMPARE(limits("Width"), QList<gint64>({16, 724, 16}));
        QCOMPARE(limits("OffsetX"), QList<gint64>({0, 768, 4}));
        QCOMPARE(limits("Height"), QList<gint64>({2, 268, 2}));
        QCOMPARE(limits("OffsetY"), QList<gint64>({0, 668, 2}));
        QCOMPARE(reg(ARV_FAKE_CAMERA_REGISTER_X_OFFSET), 300u);
        QCOMPARE(reg(ARV_FAKE_CAMERA_REGISTER_HEIGHT), 100u);
    }

    void pixelFormats()
    {
        QCOMPARE(entries("PixelFormat"),
            QByteArrayList(
                {"Mono8", "Mono16", "BayerGR8", "BayerRG8", "BayerGB8", "BayerBG8", "RGB8"}));
        const QList<std::pair<const char*, guint32>> values{{"Mono8", ARV_PIXEL_FORMAT_MONO_8},
            {"Mono16", ARV_PIXEL_FORMAT_MONO_16}, {"BayerGR8", ARV_PIXEL_FORMAT_BAYER_GR_8},
            {"BayerRG8", ARV_PIXEL_FORMAT_BAYER_RG_8}, {"BayerGB8", ARV_PIXEL_FORMAT_BAYER_GB_8},
            {"BayerBG8", ARV_PIXEL_FORMAT_BAYER_BG_8}, {"RGB8", ARV_PIXEL_FORMAT_RGB_8_PACKED}};
        for (const auto& [format, value] : values) {
            arv_device_set_string_feature_value(arv(), "PixelFormat", format, nullptr);
            QCOMPARE(reg(ARV_FAKE_CAMERA_REGISTER_PIXEL_FORMAT), value);
            QCOMPARE(integer("PayloadSize"), 512 * 512 * ARV_PIXEL_FORMAT_BIT_PER_PIXEL(value) / 8);
        }
    }

    // TestPattern's entry "Gradient" is there only while the pixel format is Mono16.
    void entryComesAndGoes()
    {
        QCOMPARE(entries("TestPattern"), QByteArrayList({"Off", "Ramp"}));
        QVERIFY(
            !arv_device_is_enumeration_entry_available(arv(), "TestPattern", "Gradient", nullptr));
        arv_device_set_string_feature_value(arv(), "PixelFormat", "Mono16", nullptr);
        QCOMPARE(entries("TestPattern"), QByteArrayList({"Off", "Ramp", "Gradient"}));
        arv_device_set_string_feature_value(arv(), "TestPattern", "Gradient", nullptr);
        QCOMPARE(arv_device_get_string_feature_value(arv(), "TestPattern", nullptr), "Gradient");
        arv_device_set_string_feature_value(arv(), "PixelFormat", "RGB8", nullptr);
        QCOMPARE(entries("TestPattern"), QByteArrayList({"Off", "Ramp"}));
    }

    // The features that shape the pictures are locked while acquisition runs.
    void lockedWhileAcquiring()
    {
        const QByteArrayList shaping{"Width", "Height", "PixelFormat", "AcquisitionMode"};
        for (const QByteArray& name : shaping)
            QVERIFY2(!locked(name.constData()), name.constData());
        arv_device_execute_command(arv(), "AcquisitionStart", nullptr);
        QCOMPARE(integer("AcquisitionActive"), 1);
        for (const QByteArray& name : shaping)
            QVERIFY2(locked(name.constData()), name.constData());
        QVERIFY(!locked("OffsetX"));
        QVERIFY(!locked("Gain"));
        arv_device_execute_command(arv(), "AcquisitionStop", nullptr);
        QCOMPARE(integer("AcquisitionActive"), 0);
        for (const QByteArray& name : shaping)
            QVERIFY2(!locked(name.constData()), name.constData());
    }

    // GainSelector selects Gain: one gain per entry, "All" being the one the camera renders with.
    void selector()
    {
        ArvGcNode* selector = arv_device_get_feature(arv(), "GainSelector");
        QVERIFY(arv_gc_selector_is_selector(ARV_GC_SELECTOR(selector)));
        QByteArrayList selected;
        for (const GSList* item = arv_gc_selector_get_selected_features(ARV_GC_SELECTOR(selector));
             item; item = item->next)
            selected << arv_gc_feature_node_get_name(ARV_GC_FEATURE_NODE(item->data));
        QCOMPARE(selected, QByteArrayList({"Gain"}));
        QCOMPARE(entries("GainSelector"), QByteArrayList({"All", "DigitalAll"}));
        arv_device_set_float_feature_value(arv(), "Gain", 6, nullptr);
        QCOMPARE(reg(ARV_FAKE_CAMERA_REGISTER_GAIN_RAW), 6u);
        arv_device_set_string_feature_value(arv(), "GainSelector", "DigitalAll", nullptr);
        QCOMPARE(arv_device_get_float_feature_value(arv(), "Gain", nullptr), 0.0);
        arv_device_set_float_feature_value(arv(), "Gain", 3, nullptr);
        QCOMPARE(arv_device_get_float_feature_value(arv(), "Gain", nullptr), 3.0);
        QCOMPARE(reg(ARV_FAKE_CAMERA_REGISTER_GAIN_RAW), 6u);
        arv_device_set_string_feature_value(arv(), "GainSelector", "All", nullptr);
        QCOMPARE(arv_device_get_float_feature_value(arv(), "Gain", nullptr), 6.0);
    }

    void commandResetsCounter()
    {
        setInteger("TestCounter", 42);
        QCOMPARE(integer("TestCounter"), 42);
        arv_device_execute_command(arv(), "TestCounterReset", nullptr);
        QCOMPARE(integer("TestCounter"), 0);
    }

    void stringAndBoolean()
    {
        arv_device_set_string_feature_value(arv(), "DeviceUserID", "Bench camera", nullptr);
        QCOMPARE(
            arv_device_get_string_feature_value(arv(), "DeviceUserID", nullptr), "Bench camera");
        arv_device_set_boolean_feature_value(arv(), "TestEnable", true, nullptr);
        QVERIFY(arv_device_get_boolean_feature_value(arv(), "TestEnable", nullptr));
        arv_device_set_boolean_feature_value(arv(), "TestEnable", false, nullptr);
        QVERIFY(!arv_device_get_boolean_feature_value(arv(), "TestEnable", nullptr));
    }

    // The fake camera streams pictures of the size, place and format the features say.
    void streams_data()
    {
        QTest::addColumn<QByteArray>("format");
        QTest::addColumn<uint>("pixelFormat");
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("height");
        QTest::addColumn<int>("x");
        QTest::addColumn<int>("y");
        QTest::addColumn<int>("bytesPerPixel");
        QTest::newRow("Mono8, the default window")
            << QByteArray("Mono8") << uint{ARV_PIXEL_FORMAT_MONO_8} << 512 << 512 << 0 << 0 << 1;
        QTest::newRow("Mono16 window") << QByteArray("Mono16") << uint{ARV_PIXEL_FORMAT_MONO_16}
                                       << 256 << 128 << 64 << 32 << 2;
        QTest::newRow("RGB8 window")
            << QByteArray("RGB8") << uint{ARV_PIXEL_FORMAT_RGB_8_PACKED} << 64 << 32 << 4 << 2 << 3;
        QTest::newRow("BayerRG8, the whole sensor")
            << QByteArray("BayerRG8") << uint{ARV_PIXEL_FORMAT_BAYER_RG_8} << 1024 << 768 << 0 << 0
            << 1;
    }
    void streams()
    {
        QFETCH(QByteArray, format);
        QFETCH(uint, pixelFormat);
        QFETCH(int, width);
        QFETCH(int, height);
        QFETCH(int, x);
        QFETCH(int, y);
        QFETCH(int, bytesPerPixel);
        arv_device_set_string_feature_value(arv(), "PixelFormat", format.constData(), nullptr);
        setInteger("Width", width);
        setInteger("Height", height);
        setInteger("OffsetX", x);
        setInteger("OffsetY", y);
        arv_device_set_float_feature_value(arv(), "AcquisitionFrameRate", 200, nullptr);
        const gint64 payload = integer("PayloadSize");
        QCOMPARE(payload, gint64{width} * height * bytesPerPixel);
        CStream stream(arv(), 3);
        guint64 lastFrame = 0;
        for (int i = 0; i < 3; ++i) {
            ArvBuffer* buffer = stream.pop();
            QVERIFY(buffer);
            QCOMPARE(arv_buffer_get_status(buffer), ARV_BUFFER_STATUS_SUCCESS);
            QCOMPARE(arv_buffer_get_payload_type(buffer), ARV_BUFFER_PAYLOAD_TYPE_IMAGE);
            QCOMPARE(arv_buffer_get_image_width(buffer), width);
            QCOMPARE(arv_buffer_get_image_height(buffer), height);
            QCOMPARE(arv_buffer_get_image_x(buffer), x);
            QCOMPARE(arv_buffer_get_image_y(buffer), y);
            QCOMPARE(arv_buffer_get_image_pixel_format(buffer), pixelFormat);
            size_t size = 0;
            const auto* data = static_cast<const char*>(arv_buffer_get_image_data(buffer, &size));
            QCOMPARE(size, static_cast<size_t>(payload));
            QVERIFY2(QByteArray(data, static_cast<qsizetype>(size)).count('\0')
                    < static_cast<qsizetype>(size),
                "the camera rendered nothing");
            QVERIFY(arv_buffer_get_frame_id(buffer) != lastFrame);
            lastFrame = arv_buffer_get_frame_id(buffer);
        }
    }

    void openWithoutSerialFails_data()
    {
        QTest::addColumn<bool>("withParameter");
        QTest::newRow("no parameter") << false;
        QTest::newRow("empty parameter") << true;
    }
    void openWithoutSerialFails()
    {
        QFETCH(bool, withParameter);
        SDeviceInfo info = record("");
        info.deviceName = "Custom";
        if (!withParameter)
            info.parameters = CParameters();
        CGenICamEmulatorDevice device;
        QVERIFY(!device.open(info, false));
        QVERIFY(!device.isOpen());
        QVERIFY(!device.arvDevice());
        QCOMPARE(str(device.errorMessage()),
            QByteArray("The device \"Custom\" names no emulated GenICam camera: its parameter "
                       "\"Serial\" is missing or empty. Pick the camera from a search, or give "
                       "its serial number."));
    }

    void openWithLongSerialFails()
    {
        CGenICamEmulatorDevice device;
        QVERIFY(!device.open(record("GC-0001-AND-MORE"), false));
        QVERIFY(!device.isOpen());
        QVERIFY2(str(device.errorMessage()).contains("longer than 15 bytes"),
            device.errorMessage().c_str());
    }

    void openTwiceFails()
    {
        QVERIFY(!m_device->open(record("GC-0002"), true));
        QVERIFY(m_device->isOpen());
        QCOMPARE(str(m_device->info().deviceName), QByteArray("GC-0001"));
        QVERIFY(!m_device->errorMessage().empty());
    }

    // Each open makes a camera of its own, with the defaults; closing twice does nothing more.
    void closesAndReopens()
    {
        setInteger("Width", 128);
        for (int i = 0; i < 10; ++i) {
            m_device->close();
            QVERIFY(!m_device->isOpen());
            QVERIFY(!arv());
            m_device->close();
            QVERIFY(m_device->open(record(i % 2 ? "GC-0001" : "GC-0002"), i % 2 == 0));
            QCOMPARE(integer("Width"), 512);
            QCOMPARE(m_device->errorMessage(), CString());
        }
        CGenICamEmulatorDevice neverOpened;
        neverOpened.close();
        QVERIFY(!neverOpened.isOpen());
    }

    // The GenICam file is written once per process, readable by its user alone, and removed at
    // exit; a temporary folder that cannot be written to fails the open with a message.
    void genicamFileIsPrivateAndRemoved()
    {
        QTemporaryDir folder;
        QVERIFY(folder.isValid());
        const QByteArrayList lines = reportWith(folder.path());
        QCOMPARE(lines.size(), 2);
        QCOMPARE(lines[0], QByteArray("files 1"));
        QVERIFY2(lines[1].startsWith("file kivcam-emulated-camera-"), lines[1].constData());
        QVERIFY2(lines[1].endsWith(" 600 same"), lines[1].constData());
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList());
    }
    void unwritableTemporaryFolderFails()
    {
        QTemporaryDir parent;
        QVERIFY(parent.isValid());
        const QString missing = parent.filePath("no-such-folder");
        const QByteArrayList lines = reportWith(missing);
        QCOMPARE(lines.size(), 1);
        QVERIFY2(lines[0].startsWith("error The GenICam file of the emulated camera cannot be "
                                     "written to the temporary folder "
                     + missing.toUtf8()),
            lines[0].constData());
    }
};

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    if (argc == 2 && std::strcmp(argv[1], fileReportArgument) == 0)
        return reportGenICamFile();
    tst_CGenICamEmulatorDevice test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_cgenicamemulatordevice.moc"
