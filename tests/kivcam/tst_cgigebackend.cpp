// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kivcam/CBackend.h>
#include <kivcam/CCameras.h>
#include <kivcam/CControllerFactory.h>
#include <kivcam/CInterfaces.h>

#include <QProcess>
#include <QtTest>

#include <cstdio>
#include <cstdlib>

using namespace kiv;
using namespace kiv::cam;

namespace {

QByteArray str(const CString& text)
{
    return QByteArray(text.c_str());
}

QByteArrayList transportNames()
{
    QByteArrayList names;
    for (int i = 0; i < interfaces()->interfaceCount(); ++i)
        names << str(interfaces()->interfaceAt(i)->name);
    return names;
}

} // namespace

class tst_CGigEBackend : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // The test's own copy with the real transports switched off prints what it sees.
        if (qEnvironmentVariableIsSet("TST_PRINT_TRANSPORTS")) {
            std::printf("transports: %s\n", transportNames().join(' ').constData());
            std::exit(0);
        }
    }

    void givesTheTransportTheGenericTypeAndItsController()
    {
        QVERIFY(transportNames().contains("GigE"));
        const TSharedPtr<ICamera> type = cameras()->cameraByName("GigE Vision camera");
        QVERIFY(type);
        QCOMPARE(str(type->displayName), QByteArray("GigE Vision camera"));
        QCOMPARE(str(type->controller), QByteArray("GenICam"));
        QVERIFY(type->IsSupportedBaseDeviceType("GigE-Vision"));
        QCOMPARE(str(type->defaultInfo.name), QByteArray("GigE Vision camera"));
        QCOMPARE(type->defaultInfo.adBits, 8);
        TArray<CString> controllers;
        controllerFactory()->getControllerNames(controllers);
        QVERIFY(controllers.contains(CString("GenICam")));
        QVERIFY(controllerFactory()->createController("GenICam"));
        QVERIFY(!CBackend::all().empty());
    }

    void realTransportsCanBeSwitchedOff()
    {
        QVERIFY(transportNames().contains("Serial"));
        QVERIFY(transportNames().contains("Network"));
        QProcess copy;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("TST_PRINT_TRANSPORTS", "1");
        environment.insert("KIVCAM_DISABLE_REAL_TRANSPORTS", "1");
        copy.setProcessEnvironment(environment);
        copy.start(QCoreApplication::applicationFilePath(), {});
        QVERIFY(copy.waitForFinished(30000));
        const QByteArray output = copy.readAllStandardOutput();
        const qsizetype line = output.indexOf("transports: ");
        QVERIFY2(line >= 0, output.constData());
        const QByteArray printed = output.mid(line, output.indexOf('\n', line) - line);
        QVERIFY2(printed.startsWith("transports: Emu"), printed.constData());
        for (const char* real : {" GigE", " Network", " Serial"})
            QVERIFY2(!printed.contains(real), printed.constData());
    }
};

QTEST_GUILESS_MAIN(tst_CGigEBackend)
#include "tst_cgigebackend.moc"
