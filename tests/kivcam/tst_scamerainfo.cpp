// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "../HostileFiles.h"

#include <kiv/CException.h>
#include <kiv/CMemFile.h>
#include <kiv/PixelType.h>
#include <kivcam/SCameraInfo.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <dlfcn.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using kiv::CString;
using kiv::CStringW;
using kiv::CVariant;
using kiv::cam::CParameters;
using kiv::cam::SCameraInfo;
using kiv::cam::SDeviceInfo;

// Every folder synced, with what it held then: the fsync of this program, exported, stands in
// for the C library's for the libraries too; it records the folders and passes on.
struct SFolderSync {
    QString folder;
    QStringList entries;
};
static QList<SFolderSync> folderSyncs;

extern "C" __attribute__((visibility("default"))) int fsync(int descriptor)
{
    struct stat status { };
    if (fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode)) {
        const QString folder
            = QFileInfo(QStringLiteral("/proc/self/fd/%1").arg(descriptor)).symLinkTarget();
        folderSyncs.append({folder, QDir(folder).entryList(QDir::Files | QDir::Hidden)});
    }
    static const auto next = reinterpret_cast<int (*)(int)>(dlsym(RTLD_NEXT, "fsync"));
    return next(descriptor);
}

namespace {

QByteArray bytes(const CString& text)
{
    return QByteArray(text.c_str());
}

CStringW widePath(const QString& path)
{
    return CStringW(path.toStdWString().c_str());
}

SDeviceInfo device(const char* interfaceName, const char* deviceName)
{
    SDeviceInfo info;
    info.interfaceName = interfaceName;
    info.deviceName = deviceName;
    info.baseType = "CameraLink";
    info.iconName = "FrameGrabber";
    info.canConnect = false;
    info.errorSummary = "Busy";
    info.errorMessage = "The port is used by another program.";
    info.description = "Grabber <0> & \"port\"";
    kiv::TArray<CVariant::SEnumItem> rates;
    rates.add({"9600", 9600});
    rates.add({"115200", 115200});
    info.parameters.Add({"BaudRate", "Baud rate", "Serial speed", CParameters::EDIT_CUSTOM,
        CVariant::Enum(rates, 115200)});
    info.parameters.Add({"Control", "Control", "", CParameters::EDIT_ALWAYS, CVariant("Port 0")});
    CVariant timeout(CVariant::TYPE_UINT32);
    timeout.Assign(CVariant(2500));
    info.parameters.Add({"Timeout", "", "", CParameters::EDIT_INTERNAL, timeout});
    info.parameters.Add({"Gain", "", "", CParameters::EDIT_NEVER, CVariant(1.5)});
    info.parameters.Add({"Invert", "", "", CParameters::EDIT_CUSTOM_SELECT, CVariant(true)});
    return info;
}

SCameraInfo populated()
{
    SCameraInfo camera;
    camera.iconName = "Kelvin";
    camera.name = "Kelvin640";
    camera.displayName = "Kelvin 640 \u00b5m";
    camera.baseModel = "Kelvin";
    camera.model = "Kelvin 640 LW";
    camera.serial = "K640-0042";
    camera.identity = "Lab bench <north>";
    camera.controller = "Generic";
    camera.reduceFilter = "Linear16";
    camera.comm = device("EmuCameraLink", "Grabber 0 / Port 0");
    camera.video = device("EmuFrameGrabber", "Grabber 0");
    camera.pixelType = kiv::ParsePixelType("Mono14");
    camera.dataType = kiv::DATA_TYPE_UINT16;
    camera.adBits = 14;
    camera.adBitShift = -2;
    camera.adMask = 0x3FFF;
    camera.cropLeft = 70000; // the record holds 32 bits
    camera.cropTop = 2;
    camera.cropRight = 3;
    camera.cropBottom = 4;
    camera.width = 640;
    camera.height = 512;
    camera.canConnect = false;
    camera.errorSummary = "Firmware too old";
    camera.errorMessage = "Update the camera firmware to 2.0 or later.";
    camera.vendor = "Northlight Imaging";
    camera.firmwareVersion = "1.9.3";
    camera.emulated = true;
    camera.frameRate = 29.97;
    camera.hasNucMask = true;
    return camera;
}

void compareDevices(const SDeviceInfo& a, const SDeviceInfo& b)
{
    QCOMPARE(bytes(a.interfaceName), bytes(b.interfaceName));
    QCOMPARE(bytes(a.deviceName), bytes(b.deviceName));
    QCOMPARE(bytes(a.baseType), bytes(b.baseType));
    QCOMPARE(bytes(a.iconName), bytes(b.iconName));
    QCOMPARE(a.canConnect, b.canConnect);
    QCOMPARE(bytes(a.errorSummary), bytes(b.errorSummary));
    QCOMPARE(bytes(a.errorMessage), bytes(b.errorMessage));
    QCOMPARE(bytes(a.description), bytes(b.description));
    QCOMPARE(a.parameters.count(), b.parameters.count());
    for (unsigned i = 0; i < a.parameters.count(); ++i) {
        const CParameters::CEntry& x = a.parameters[i];
        const CParameters::CEntry& y = b.parameters[i];
        QCOMPARE(bytes(x.name), bytes(y.name));
        QCOMPARE(bytes(x.displayName), bytes(y.displayName));
        QCOMPARE(bytes(x.description), bytes(y.description));
        QCOMPARE(x.editLevel, y.editLevel);
        QCOMPARE(x.value().getType(), y.value().getType());
        QCOMPARE(bytes(x.value().ToString()), bytes(y.value().ToString()));
        QCOMPARE(x.value().GetEnumCount(), y.value().GetEnumCount());
        for (int item = 0; item < x.value().GetEnumCount(); ++item) {
            QCOMPARE(bytes(x.value().GetEnumName(item)), bytes(y.value().GetEnumName(item)));
            QCOMPARE(x.value().GetEnumValue(item), y.value().GetEnumValue(item));
        }
    }
}

void compareCameras(const SCameraInfo& a, const SCameraInfo& b)
{
    QCOMPARE(bytes(a.iconName), bytes(b.iconName));
    QCOMPARE(bytes(a.name), bytes(b.name));
    QCOMPARE(bytes(a.displayName), bytes(b.displayName));
    QCOMPARE(bytes(a.baseModel), bytes(b.baseModel));
    QCOMPARE(bytes(a.model), bytes(b.model));
    QCOMPARE(bytes(a.serial), bytes(b.serial));
    QCOMPARE(bytes(a.identity), bytes(b.identity));
    QCOMPARE(bytes(a.controller), bytes(b.controller));
    QCOMPARE(bytes(a.reduceFilter), bytes(b.reduceFilter));
    compareDevices(a.comm, b.comm);
    compareDevices(a.video, b.video);
    QCOMPARE(a.dataType, b.dataType);
    QVERIFY(a.pixelType == b.pixelType);
    QCOMPARE(a.adBits, b.adBits);
    QCOMPARE(a.adBitShift, b.adBitShift);
    QCOMPARE(a.adMask, b.adMask);
    QCOMPARE(a.cropLeft, b.cropLeft);
    QCOMPARE(a.cropTop, b.cropTop);
    QCOMPARE(a.cropRight, b.cropRight);
    QCOMPARE(a.cropBottom, b.cropBottom);
    QCOMPARE(a.width, b.width);
    QCOMPARE(a.height, b.height);
    QCOMPARE(a.canConnect, b.canConnect);
    QCOMPARE(bytes(a.errorSummary), bytes(b.errorSummary));
    QCOMPARE(bytes(a.errorMessage), bytes(b.errorMessage));
    QCOMPARE(bytes(a.vendor), bytes(b.vendor));
    QCOMPARE(bytes(a.firmwareVersion), bytes(b.firmwareVersion));
    QCOMPARE(a.emulated, b.emulated);
    QCOMPARE(a.frameRate, b.frameRate);
    QCOMPARE(a.hasNucMask, b.hasNucMask);
}

// Text of each kind that XML cannot carry as it is: ill-formed UTF-8 (a stray continuation
// byte, a truncated sequence, an overlong form, an encoded surrogate, a byte that never occurs)
// and characters XML does not allow (controls, U+FFFE).
const char* const illFormed = "a\x80"
                              "b\xE2\x82"
                              "c\xC0\x80"
                              "d\xED\xA0\x80"
                              "e\xFF"
                              "f\x01"
                              "g\x1F"
                              "h\xEF\xBF\xBE"
                              "i";

// The same text repaired: what is read from it, and what is written for it.
QByteArray repaired(const char* text)
{
    QString decoded = QString::fromUtf8(text);
    for (QChar& unit : decoded) {
        if (unit.unicode() < 0x20 && unit != '\t' && unit != '\n' && unit != '\r')
            unit = QChar::ReplacementCharacter;
        if (unit.unicode() == 0xFFFE)
            unit = QChar::ReplacementCharacter;
    }
    return decoded.toUtf8();
}

// A file that fails the way a full memory does.
class COutOfMemoryFile : public kiv::IFile {
public:
    std::uint64_t Read(void*, std::uint64_t) override { kiv::ThrowBadAllocException(); }
    std::uint64_t Write(const void*, std::uint64_t) override { return 0; }
    bool Seek(std::int64_t, ESeekOrigin) override { return false; }
    std::uint64_t Tell() const override { return 0; }
    std::uint64_t Size() const override { return 10; }
};

bool loadText(SCameraInfo& camera, const QByteArray& text)
{
    QByteArray copy = text;
    kiv::TSharedPtr<kiv::CMemFile> file = kiv::CMemFile::Create();
    file->Attach(reinterpret_cast<unsigned char*>(copy.data()), copy.size(), false);
    return camera.Load(kiv::TSharedPtr<kiv::IFile>(file));
}

} // namespace

class tst_SCameraInfo : public QObject {
    Q_OBJECT

    QTemporaryDir m_folder;

private slots:
    void roundTripKeepsEveryField()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath("camera.xml");
        const SCameraInfo original = populated();
        QVERIFY(original.Save(widePath(path)));
        SCameraInfo loaded;
        QVERIFY(loaded.Load(widePath(path)));
        compareCameras(loaded, original);
    }
    void unknownPixelTypeRoundTripsAsIdentifier()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath("camera.xml");
        SCameraInfo original = populated();
        bool ok = false;
        original.pixelType = kiv::SGuid::Parse("{01234567-89ab-cdef-0123-456789abcdef}", &ok);
        QVERIFY(ok);
        QVERIFY(original.Save(widePath(path)));
        SCameraInfo loaded;
        QVERIFY(loaded.Load(widePath(path)));
        QVERIFY(loaded.pixelType == original.pixelType);
    }
    void savedFileIsReadableXml()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath("camera.xml");
        QVERIFY(populated().Save(widePath(path)));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray text = file.readAll();
        QVERIFY(text.startsWith("<?xml"));
        QVERIFY(text.contains("<camera version=\"1\">"));
        QVERIFY(text.contains("<pixelType>Mono14</pixelType>"));
        QVERIFY(text.contains("<name>Kelvin640</name>"));
        QVERIFY(text.contains("<frameRate>29.97</frameRate>"));
        QVERIFY(text.contains("<hasNucMask>true</hasNucMask>"));
    }
    // Files written before the frame rate and the NUC were recorded still load, without them.
    void rateAndNucMayBeAbsent()
    {
        SCameraInfo camera;
        QVERIFY(loadText(camera, "<camera><name>Nova</name><frameRate>60</frameRate></camera>"));
        QCOMPARE(camera.frameRate, 60.0);
        QVERIFY(!camera.hasNucMask);
        QVERIFY(loadText(camera, "<camera><name>Nova</name><hasNucMask>1</hasNucMask></camera>"));
        QCOMPARE(camera.frameRate, 0.0);
        QVERIFY(camera.hasNucMask);
    }
    void loadsFromMemory()
    {
        SCameraInfo camera;
        QVERIFY(loadText(camera,
            "<camera><name>Nova</name><width>320</width>"
            "<comm><deviceName>COM3</deviceName></comm></camera>"));
        QCOMPARE(bytes(camera.name), QByteArray("Nova"));
        QCOMPARE(camera.width, 320);
        QCOMPARE(bytes(camera.comm.deviceName), QByteArray("COM3"));
        QVERIFY(camera.video.empty());
    }
    void numbersAreReadInEveryFormTheyMayTake()
    {
        SCameraInfo camera;
        QVERIFY(loadText(camera,
            "<camera><width>0x140</width><height>65535</height><adBits> 14 </adBits>"
            "<adBitShift>+2</adBitShift><adMask>0x3FFF</adMask><cropLeft>007</cropLeft>"
            "<cropTop>4294967295</cropTop><cropRight>-0</cropRight><canConnect>TRUE</canConnect>"
            "<emulated>1</emulated><hasNucMask>false</hasNucMask><dataType>2</dataType>"
            "<comm><canConnect>0</canConnect><parameters>"
            "<parameter name=\"A\" type=\"enum\" editLevel=\"0x2\" value=\"-1\">"
            "<item name=\"minus\" value=\"-1\"/><item name=\"big\" "
            "value=\"123456789012345678\"/><item name=\"huge\" value=\"0x7FFFFFFFFFFFFFFF\"/>"
            "</parameter><parameter name=\"B\" type=\"int32\" editLevel=\" 3\" "
            "value=\"2147483647\"/></parameters></comm></camera>"));
        QCOMPARE(camera.width, 320);
        QCOMPARE(camera.height, 65535);
        QCOMPARE(camera.adBits, 14);
        QCOMPARE(camera.adBitShift, 2);
        QCOMPARE(camera.adMask, 0x3FFFu);
        QCOMPARE(camera.cropLeft, 7u);
        QCOMPARE(camera.cropTop, 4294967295u);
        QCOMPARE(camera.cropRight, 0u);
        QVERIFY(camera.canConnect);
        QVERIFY(camera.emulated);
        QVERIFY(!camera.hasNucMask);
        QCOMPARE(int(camera.dataType), 2);
        QVERIFY(!camera.comm.canConnect);
        const CParameters::CEntry& a = camera.comm.parameters[0u];
        QCOMPARE(a.editLevel, CParameters::EDIT_CUSTOM_SELECT);
        QCOMPARE(a.value().ToInt64(), -1);
        QCOMPARE(a.value().GetEnumValue(1), 123456789012345678LL);
        QCOMPARE(a.value().GetEnumValue(2), 0x7FFFFFFFFFFFFFFFLL);
        const CParameters::CEntry& b = camera.comm.parameters[1u];
        QCOMPARE(b.editLevel, CParameters::EDIT_INTERNAL);
        QCOMPARE(b.value().ToInt64(), 2147483647);
    }
    void loadReplacesEveryField()
    {
        SCameraInfo camera = populated();
        QVERIFY(loadText(camera, "<camera><name>Nova</name></camera>"));
        compareCameras(camera, [] {
            SCameraInfo expected;
            expected.name = "Nova";
            return expected;
        }());
    }
    void unknownElementsAndAttributesAreIgnored()
    {
        SCameraInfo camera;
        QVERIFY(loadText(camera,
            "<camera version=\"7\" future=\"yes\"><name>Nova</name>"
            "<hologram depth=\"3\">yes</hologram></camera>"));
        QCOMPARE(bytes(camera.name), QByteArray("Nova"));
    }
    void badInputIsRefusedAndChangesNothing_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("blank") << QByteArray("  \n");
        QTest::newRow("not xml") << QByteArray("camera: yes");
        QTest::newRow("truncated") << QByteArray("<camera><name>Nova</name><width>32");
        QTest::newRow("other root") << QByteArray("<world><name>Nova</name></world>");
        QTest::newRow("bad number") << QByteArray("<camera><width>wide</width></camera>");
        QTest::newRow("out of range") << QByteArray("<camera><width>70000</width></camera>");
        QTest::newRow("negative unsigned") << QByteArray("<camera><cropTop>-1</cropTop></camera>");
        QTest::newRow("bad flag") << QByteArray("<camera><canConnect>maybe</canConnect></camera>");
        QTest::newRow("bad rate") << QByteArray("<camera><frameRate>fast</frameRate></camera>");
        QTest::newRow("negative rate") << QByteArray("<camera><frameRate>-1</frameRate></camera>");
        QTest::newRow("rate not a number")
            << QByteArray("<camera><frameRate>nan</frameRate></camera>");
        QTest::newRow("infinite rate") << QByteArray("<camera><frameRate>inf</frameRate></camera>");
        QTest::newRow("bad NUC flag")
            << QByteArray("<camera><hasNucMask>sometimes</hasNucMask></camera>");
        QTest::newRow("unknown pixel type")
            << QByteArray("<camera><pixelType>Mono99</pixelType></camera>");
        QTest::newRow("unknown data type")
            << QByteArray("<camera><dataType>99</dataType></camera>");
        QTest::newRow("parameter type")
            << QByteArray("<camera><comm><parameters><parameter name=\"A\" type=\"colour\"/>"
                          "</parameters></comm></camera>");
        QTest::newRow("parameter value")
            << QByteArray("<camera><comm><parameters><parameter name=\"A\" type=\"uint8\" "
                          "value=\"300\"/></parameters></comm></camera>");
        QTest::newRow("enum value")
            << QByteArray("<camera><comm><parameters><parameter name=\"A\" type=\"enum\" "
                          "value=\"7\"><item name=\"one\" value=\"1\"/></parameter></parameters>"
                          "</comm></camera>");
        QTest::newRow("edit level")
            << QByteArray("<camera><comm><parameters><parameter name=\"A\" type=\"string\" "
                          "editLevel=\"5\"/></parameters></comm></camera>");
        QTest::newRow("nameless parameter")
            << QByteArray("<camera><comm><parameters><parameter type=\"string\"/></parameters>"
                          "</comm></camera>");
    }
    void badInputIsRefusedAndChangesNothing()
    {
        QFETCH(QByteArray, text);
        SCameraInfo camera = populated();
        QVERIFY(!loadText(camera, text));
        compareCameras(camera, populated());

        QTemporaryDir dir;
        QFile file(dir.filePath("bad.xml"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(text);
        file.close();
        QVERIFY(!camera.Load(widePath(file.fileName())));
        compareCameras(camera, populated());
    }
    void missingFileIsRefused()
    {
        QTemporaryDir dir;
        SCameraInfo camera = populated();
        QVERIFY(!camera.Load(widePath(dir.filePath("missing.xml"))));
        QVERIFY(!camera.Load(CStringW()));
        QVERIFY(!camera.Load(kiv::TSharedPtr<kiv::IFile>()));
        compareCameras(camera, populated());
    }
    void saveToUnwritablePlaceFails()
    {
        QTemporaryDir dir;
        QVERIFY(!populated().Save(widePath(dir.filePath("no/such/folder/camera.xml"))));
        QVERIFY(!populated().Save(CStringW()));
        QVERIFY(!populated().Save(widePath(dir.path()))); // a folder, not a file
    }
    void failedSaveLeavesTheOldFileIntact()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath("lastCamera.xml");
        SCameraInfo old = populated();
        old.identity = "old";
        QVERIFY(old.Save(widePath(path)));
        QFile oldFile(path);
        QVERIFY(oldFile.open(QIODevice::ReadOnly));
        const QByteArray before = oldFile.readAll();
        oldFile.close();

        // Let the write run out of room half way: the file-size limit makes it fail the way a
        // full disk would.
        SCameraInfo large = populated();
        large.identity = CString(std::string(before.size() * 4, 'x'));
        const auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
        rlimit previous{};
        QCOMPARE(getrlimit(RLIMIT_FSIZE, &previous), 0);
        rlimit limited = previous;
        limited.rlim_cur = static_cast<rlim_t>(before.size() + 16);
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &limited), 0);
        const bool saved = large.Save(widePath(path));
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &previous), 0);
        std::signal(SIGXFSZ, previousHandler);

        QVERIFY(!saved);
        QVERIFY(oldFile.open(QIODevice::ReadOnly));
        QCOMPARE(oldFile.readAll(), before);
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList{"lastCamera.xml"});
        SCameraInfo reloaded;
        QVERIFY(reloaded.Load(widePath(path)));
        QCOMPARE(bytes(reloaded.identity), QByteArray("old"));
    }
    void notARegularFileIsRefusedAtOnce_data() { hostile::addPathRows(m_folder); }
    void notARegularFileIsRefusedAtOnce()
    {
        // A FIFO used to block in open() for ever, and /dev/zero to be read until memory ran out.
        QFETCH(QString, path);
        SCameraInfo camera = populated();
        QVERIFY(!camera.Load(widePath(path)));
        compareCameras(camera, populated());
    }
    void descriptionAtTheBoundLoadsAndLargerIsRefused()
    {
        const QByteArray head = "<camera><name>Nova</name><!--";
        const QByteArray tail = "--></camera>";
        QByteArray text = head
            + QByteArray(
                static_cast<qsizetype>(SCameraInfo::maxFileSize) - head.size() - tail.size(), 'x')
            + tail;
        QCOMPARE(static_cast<std::uint64_t>(text.size()), SCameraInfo::maxFileSize);
        const QString path = m_folder.filePath("bound.xml");
        for (const bool fits : {true, false}) {
            if (!fits)
                text.insert(head.size(), 'x');
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
            file.close();
            SCameraInfo camera;
            QCOMPARE(camera.Load(widePath(path)), fits);
            QCOMPARE(loadText(camera, text), fits);
            QCOMPARE(bytes(camera.name), fits ? QByteArray("Nova") : QByteArray());
        }
    }
    void outOfMemoryGivesFalse()
    {
        SCameraInfo camera = populated();
        QVERIFY(!camera.Load(kiv::TSharedPtr<kiv::IFile>(new COutOfMemoryFile)));
        compareCameras(camera, populated());
    }
    void illFormedTextIsRepairedOnLoad()
    {
        const QByteArray bad(illFormed);
        SCameraInfo camera;
        QVERIFY(loadText(camera,
            "<camera><identity>" + bad + "</identity><comm><parameters><parameter name=\"" + bad
                + "\" description=\"" + bad + "\" type=\"string\" value=\"" + bad
                + "\"/><parameter name=\"E\" type=\"enum\" value=\"" + bad + "\"><item name=\""
                + bad + "\" value=\"1\"/></parameter></parameters></comm></camera>"));
        const QByteArray expected = repaired(illFormed);
        QCOMPARE(bytes(camera.identity), expected);
        const CParameters& parameters = camera.comm.parameters;
        QCOMPARE(parameters.count(), 2u);
        QCOMPARE(bytes(parameters[0u].name), expected);
        QCOMPARE(bytes(parameters[0u].description), expected);
        QCOMPARE(bytes(parameters[0u].value().ToString()), expected);
        QCOMPARE(bytes(parameters[1u].value().GetEnumName(0)), expected);
        QCOMPARE(bytes(parameters[1u].value().ToString()), expected);
    }
    void saveWritesWellFormedXmlWhateverTheText()
    {
        // Another XML parser must read every saved file, with the texts repaired.
        const QString python = QStandardPaths::findExecutable("python3");
        if (python.isEmpty())
            QSKIP("no python3 on the PATH to read the saved file with a second XML parser");
        SCameraInfo camera = populated();
        const CString bad{std::string_view(illFormed)};
        const CString withZero(std::string_view("zero\0byte", 9));
        camera.identity = bad;
        camera.displayName = withZero;
        camera.comm.parameters.Add({bad, bad, bad, CParameters::EDIT_ALWAYS, CVariant(bad)});
        kiv::TArray<CVariant::SEnumItem> items;
        items.add({bad, 1});
        camera.comm.parameters.Add(
            {"Enum", "", "", CParameters::EDIT_ALWAYS, CVariant::Enum(items, 1)});
        const QString path = m_folder.filePath("repaired.xml");
        QVERIFY(camera.Save(widePath(path)));

        QProcess reader;
        reader.start(python,
            {"-c",
                "import sys, xml.etree.ElementTree as E\n"
                "root = E.parse(sys.argv[1]).getroot()\n"
                "texts = [root.findtext('identity'), root.findtext('displayName')]\n"
                "for p in root.find('comm').iter('parameter'):\n"
                "    texts += [p.get('name'), p.get('value')]\n"
                "sys.stdout.buffer.write('\\n'.join(texts).encode('utf-8'))\n",
                path});
        QVERIFY(reader.waitForFinished(60000));
        QVERIFY2(reader.exitStatus() == QProcess::NormalExit && reader.exitCode() == 0,
            reader.readAllStandardError().constData());
        const QByteArray expected = repaired(illFormed);
        QCOMPARE(reader.readAllStandardOutput().split('\n'),
            (QByteArrayList{expected,
                "zero\xEF\xBF\xBD"
                "byte",
                "BaudRate", "115200", "Control", "Port 0", "Timeout", "2500", "Gain", "1.5",
                "Invert", "true", expected, expected, "Enum", expected}));

        SCameraInfo reloaded;
        QVERIFY(reloaded.Load(widePath(path)));
        QCOMPARE(bytes(reloaded.identity), expected);
    }
    void saveSyncsTheFolderAfterTheRename()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath("camera.xml");
        folderSyncs.clear();
        QVERIFY(populated().Save(widePath(path)));
        // Synced when the folder held the new file under its name, and no temporary file.
        QCOMPARE(folderSyncs.size(), 1);
        QCOMPARE(folderSyncs[0].folder, QFileInfo(dir.path()).canonicalFilePath());
        QCOMPARE(folderSyncs[0].entries, QStringList{"camera.xml"});
    }
    void copyCarriesAllFields()
    {
        const SCameraInfo original = populated();
        SCameraInfo copy(original);
        compareCameras(copy, original);
        SCameraInfo assigned;
        assigned = original;
        compareCameras(assigned, original);
    }
};

QTEST_APPLESS_MAIN(tst_SCameraInfo)
#include "tst_scamerainfo.moc"
