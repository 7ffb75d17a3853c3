#include <kiv/PixelType.h>
#include <kivreduce/CFilterFactory.h>

#include <QTest>

using kiv::CString;
using kiv::reduce::filterFactory;

class tst_CFilterFactory : public QObject {
    Q_OBJECT

private slots:
    void singleInstance() { QCOMPARE(filterFactory(), filterFactory()); }
    void filterFor_data()
    {
        QTest::addColumn<QByteArray>("pixelType");
        QTest::addColumn<QByteArray>("filter");
        QTest::newRow("Mono8") << QByteArray("Mono8") << QByteArray("Passthrough8");
        QTest::newRow("Mono12Packed") << QByteArray("Mono12Packed") << QByteArray("Linear16");
        QTest::newRow("Mono14") << QByteArray("Mono14") << QByteArray("Linear16");
        QTest::newRow("Mono16") << QByteArray("Mono16") << QByteArray("Linear16");
        QTest::newRow("Mono16s") << QByteArray("Mono16s") << QByteArray("Signed16");
        QTest::newRow("Mono32f") << QByteArray("Mono32f") << QByteArray("Float32");
        QTest::newRow("RGB8") << QByteArray("RGB8") << QByteArray("Colour");
        QTest::newRow("BayerRG16") << QByteArray("BayerRG16") << QByteArray("Colour");
    }
    void filterFor()
    {
        QFETCH(QByteArray, pixelType);
        QFETCH(QByteArray, filter);
        const CString name = filterFactory()->defaultFilterFor(
            kiv::ParsePixelType(CString(pixelType.constData())));
        QCOMPARE(QByteArray(name.c_str()), filter);
    }
    void everyPixelTypeHasAListedFilter()
    {
        kiv::TArray<CString> pixelTypes;
        kiv::GetPixelTypeNames(pixelTypes);
        kiv::TArray<CString> filters;
        filterFactory()->getFilterNames(filters);
        QCOMPARE(filters.count(), 5);
        for (const CString& pixelType : pixelTypes)
            QVERIFY(filters.contains(
                filterFactory()->defaultFilterFor(kiv::ParsePixelType(pixelType))));
    }
    void unknownPixelTypeHasNoFilter()
    {
        QVERIFY(filterFactory()->defaultFilterFor(kiv::SGuid()).empty());
    }
};

QTEST_APPLESS_MAIN(tst_CFilterFactory)
#include "tst_cfilterfactory.moc"
