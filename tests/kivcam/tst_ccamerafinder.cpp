#include "TestBackend.h"

#include <kiv/CException.h>
#include <kivcam/CCameraFinder.h>

#include <QTest>

using kiv::CString;
using kiv::TArray;
using kiv::cam::CCameraFinder;
using kiv::cam::SCameraInfo;
using test::SScanControl;

namespace {

QByteArrayList serials(const CCameraFinder& finder)
{
    QByteArrayList found;
    for (std::uint64_t i = 0; i < finder.size(); ++i)
        found << QByteArray(finder.at(i).serial.c_str());
    return found;
}

SCameraInfo bySerial(const CCameraFinder& finder, const char* serial)
{
    for (std::uint64_t i = 0; i < finder.size(); ++i) {
        if (finder.at(i).serial == CString(serial))
            return finder.at(i);
    }
    return {};
}

} // namespace

class tst_CCameraFinder : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        CCameraFinder::setEnableEmulators(false);
        SScanControl::failBroken = false;
        SScanControl::rendezvous = false;
    }
    void emptyUntilFound()
    {
        const CCameraFinder finder;
        QCOMPARE(finder.size(), 0u);
        QVERIFY_THROWS_EXCEPTION(kiv::COutOfRangeException, finder.at(0));
    }
    void emulatorsAreOffAtStart() { QVERIFY(!CCameraFinder::enableEmulators()); }
    void controlFlagFindsEveryRealCamera()
    {
        CCameraFinder finder;
        QVERIFY(finder.Find(CCameraFinder::FIND_COMM));
        QCOMPARE(serials(finder), (QByteArrayList{"A-1", "A-2", "G-1", "C-1", "B-1", "B-2"}));
        QVERIFY_THROWS_EXCEPTION(kiv::COutOfRangeException, finder.at(finder.size()));
    }
    void noFlagsFindsLikeTheControlFlag()
    {
        CCameraFinder finder;
        QVERIFY(finder.Find(0));
        QCOMPARE(finder.size(), 6u);
    }
    void completeFlagKeepsCamerasWithVideo()
    {
        CCameraFinder finder;
        QVERIFY(finder.Find(CCameraFinder::FIND_COMPLETE));
        QCOMPARE(serials(finder), (QByteArrayList{"B-1", "B-2"}));
    }
    void emulatedCamerasNeedEmulators()
    {
        CCameraFinder finder;
        QVERIFY(finder.Find(CCameraFinder::FIND_COMM | CCameraFinder::FIND_EMULATORS_ONLY));
        QCOMPARE(finder.size(), 0u);
        CCameraFinder::setEnableEmulators(true);
        QVERIFY(finder.Find(CCameraFinder::FIND_COMM));
        QCOMPARE(finder.size(), 7u);
        QVERIFY(finder.Find(CCameraFinder::FIND_COMM | CCameraFinder::FIND_EMULATORS_ONLY));
        QCOMPARE(serials(finder), QByteArrayList{"E-1"});
        QVERIFY(finder.at(0).emulated);
    }
    void namesKeepOnlyThoseTypes()
    {
        CCameraFinder finder;
        QVERIFY(finder.Find({"TypeB", "Nothing"}, CCameraFinder::FIND_COMM));
        QCOMPARE(serials(finder), (QByteArrayList{"B-1", "B-2"}));
        QVERIFY(finder.Find(TArray<CString>{}, CCameraFinder::FIND_COMM));
        QCOMPARE(finder.size(), 0u);
    }
    void eachFindReplacesTheResults()
    {
        CCameraFinder finder;
        QVERIFY(finder.Find(CCameraFinder::FIND_COMM));
        QVERIFY(finder.Find(CCameraFinder::FIND_COMPLETE));
        QCOMPARE(finder.size(), 2u);
    }
    void connectableCameraGetsItsTypesController()
    {
        CCameraFinder finder;
        QVERIFY(finder.Find(CCameraFinder::FIND_COMM));
        const SCameraInfo ready = bySerial(finder, "A-1");
        QVERIFY(ready.canConnect);
        QVERIFY(ready.errorSummary.empty());
        QCOMPARE(QByteArray(ready.controller.c_str()), QByteArray("Generic"));
        QCOMPARE(QByteArray(bySerial(finder, "B-1").controller.c_str()), QByteArray("Special"));
        QVERIFY(bySerial(finder, "B-1").canConnect);
    }
    void explainsWhyACameraCannotConnect_data()
    {
        QTest::addColumn<QByteArray>("serial");
        QTest::addColumn<QByteArray>("summary");
        QTest::addColumn<QByteArray>("message");
        QTest::newRow("transport's verdict") << QByteArray("B-2") << QByteArray("Firmware too old")
                                             << QByteArray("Update the firmware.");
        QTest::newRow("device unusable")
            << QByteArray("A-2") << QByteArray("Port busy")
            << QByteArray("The device \"COM2\" of \"TestSerial\" cannot be used. Another program "
                          "holds the port.");
        QTest::newRow("unknown type") << QByteArray("G-1") << QByteArray("Unknown camera type")
                                      << QByteArray("The camera type \"Ghost\" is not installed.");
        QTest::newRow("missing controller")
            << QByteArray("C-1") << QByteArray("No controller")
            << QByteArray("No controller named \"Missing\" is installed for this camera.");
    }
    void explainsWhyACameraCannotConnect()
    {
        QFETCH(QByteArray, serial);
        QFETCH(QByteArray, summary);
        QFETCH(QByteArray, message);
        CCameraFinder finder;
        QVERIFY(finder.Find(CCameraFinder::FIND_COMM));
        const SCameraInfo camera = bySerial(finder, serial.constData());
        QVERIFY(!camera.canConnect);
        QCOMPARE(QByteArray(camera.errorSummary.c_str()), summary);
        QCOMPARE(QByteArray(camera.errorMessage.c_str()), message);
    }
    void failedTransportScanKeepsTheOthers()
    {
        SScanControl::failBroken = true;
        CCameraFinder finder;
        QVERIFY(!finder.Find(CCameraFinder::FIND_COMM));
        QCOMPARE(finder.size(), 6u);
    }
    void transportsAreSearchedAtTheSameTime()
    {
        SScanControl::waiting = 0;
        SScanControl::rendezvous = true;
        CCameraFinder finder;
        QVERIFY(finder.Find(CCameraFinder::FIND_COMM));
        QCOMPARE(finder.size(), 6u);
    }
};

QTEST_APPLESS_MAIN(tst_CCameraFinder)
#include "tst_ccamerafinder.moc"
