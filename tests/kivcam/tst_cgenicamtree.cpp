// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// The checks a GenICam write passes before it goes to the camera, and the fitting of window
// values to a feature's rules: pure functions of a feature row, tested without a camera. Reading
// a real tree is tested with the emulated GenICam camera (tst_cgenicamcontroller).

#include <kivcam/genicam/CGenICamTree.h>

#include <QtTest>

using namespace kiv;
using namespace kiv::cam;

namespace {

SGenICamFeature integer(const char* name, std::int64_t min, std::int64_t max, std::int64_t inc)
{
    SGenICamFeature row;
    row.name = name;
    row.type = SGenICamFeature::INTEGER;
    row.access = SGenICamFeature::READ_WRITE;
    row.intMin = min;
    row.intMax = max;
    row.intInc = inc;
    row.value = CString(std::to_string(min));
    return row;
}

SGenICamFeature floating(const char* name, double min, double max, double inc, const char* unit)
{
    SGenICamFeature row;
    row.name = name;
    row.type = SGenICamFeature::FLOAT;
    row.access = SGenICamFeature::READ_WRITE;
    row.floatMin = min;
    row.floatMax = max;
    row.floatInc = inc;
    row.unit = unit;
    return row;
}

QByteArray message(const SGenICamFeature& row, const char* text)
{
    CString said;
    if (CGenICamTree::Check(row, text, said))
        return QByteArray("accepted");
    return QByteArray(said.data());
}

} // namespace

class tst_CGenICamTree : public QObject {
    Q_OBJECT

private slots:
    void integersKeepRangeAndIncrement()
    {
        const SGenICamFeature width = integer("Width", 16, 1024, 16);
        QCOMPARE(message(width, "96"), QByteArray("accepted"));
        QCOMPARE(message(width, "1024"), QByteArray("accepted"));
        QCOMPARE(message(width, "+16"), QByteArray("accepted"));
        // Aravis itself would take 100 and let the camera round it, or not.
        QCOMPARE(message(width, "100"),
            QByteArray("Width: 100 is not a valid step: the value must be 16 plus a multiple of "
                       "16, such as 96 or 112."));
        QCOMPARE(
            message(width, "1040"), QByteArray("Width: 1040 is outside the range 16 to 1024."));
        QCOMPARE(message(width, "0"), QByteArray("Width: 0 is outside the range 16 to 1024."));
        QCOMPARE(message(width, "12px"), QByteArray("Width: \"12px\" is not a whole number."));
        QCOMPARE(message(width, ""), QByteArray("Width: \"\" is not a whole number."));
        QCOMPARE(message(width, "99999999999999999999"),
            QByteArray("Width: \"99999999999999999999\" is not a whole number."));
    }

    void aStepIsCountedFromTheMinimum()
    {
        const SGenICamFeature offset = integer("OffsetX", 2, 100, 4);
        QCOMPARE(message(offset, "6"), QByteArray("accepted"));
        QVERIFY(message(offset, "8").contains("must be 2 plus a multiple of 4, such as 6 or 10"));
    }

    void floatsKeepRangeStepAndUnit()
    {
        const SGenICamFeature exposure = floating("ExposureTime", 10, 1e6, 0, "us");
        QCOMPARE(message(exposure, "12.5"), QByteArray("accepted"));
        QCOMPARE(message(exposure, "5"),
            QByteArray("ExposureTime: 5 us is outside the range 10 to 1000000 us."));
        QCOMPARE(message(exposure, "nan"), QByteArray("ExposureTime: \"nan\" is not a number."));
        QCOMPARE(message(exposure, "inf"), QByteArray("ExposureTime: \"inf\" is not a number."));
        QCOMPARE(message(exposure, "1,5"), QByteArray("ExposureTime: \"1,5\" is not a number."));
        const SGenICamFeature gain = floating("Gain", 0, 24, 0.5, "dB");
        QCOMPARE(message(gain, "1.5"), QByteArray("accepted"));
        QCOMPARE(message(gain, "1.25"),
            QByteArray("Gain: 1.25 is not a valid step: the value must be 0 plus a multiple of "
                       "0.5."));
    }

    void enumerationsTakeTheEntriesAvailableNow()
    {
        SGenICamFeature format;
        format.name = "PixelFormat";
        format.type = SGenICamFeature::ENUMERATION;
        format.access = SGenICamFeature::READ_WRITE;
        format.entries = {"Mono8", "Mono16"};
        QCOMPARE(message(format, "Mono16"), QByteArray("accepted"));
        QCOMPARE(message(format, "Mono12"),
            QByteArray("PixelFormat: \"Mono12\" is not one of the entries available now (Mono8, "
                       "Mono16)."));
        QCOMPARE(message(format, "mono8"),
            QByteArray("PixelFormat: \"mono8\" is not one of the entries available now (Mono8, "
                       "Mono16)."));
    }

    void booleansStringsAndCommands()
    {
        SGenICamFeature flag;
        flag.name = "ReverseX";
        flag.type = SGenICamFeature::BOOLEAN;
        flag.access = SGenICamFeature::READ_WRITE;
        for (const char* yes : {"true", "false", "1", "0"})
            QCOMPARE(message(flag, yes), QByteArray("accepted"));
        QCOMPARE(message(flag, "yes"), QByteArray("ReverseX: \"yes\" is neither true nor false."));

        SGenICamFeature name;
        name.name = "DeviceUserID";
        name.type = SGenICamFeature::STRING;
        name.access = SGenICamFeature::READ_WRITE;
        name.intMax = 4;
        QCOMPARE(message(name, "Cam1"), QByteArray("accepted"));
        QCOMPARE(message(name, "Camera"),
            QByteArray("DeviceUserID: the text is 6 bytes long; the camera takes at most 4."));

        SGenICamFeature start;
        start.name = "AcquisitionStart";
        start.type = SGenICamFeature::COMMAND;
        start.access = SGenICamFeature::WRITE_ONLY;
        QCOMPARE(message(start, "anything"), QByteArray("accepted"));
    }

    void whatCannotBeWrittenSaysWhy()
    {
        SGenICamFeature width = integer("Width", 16, 1024, 16);
        width.access = SGenICamFeature::READ_ONLY;
        width.accessReason = "Locked with the camera's current settings (for example while it "
                             "acquires).";
        QCOMPARE(message(width, "96"),
            QByteArray("Width cannot be written now. Locked with the camera's current settings "
                       "(for example while it acquires)."));
        SGenICamFeature category;
        category.name = "ImageFormatControl";
        category.type = SGenICamFeature::CATEGORY;
        category.access = SGenICamFeature::READ_WRITE;
        QCOMPARE(message(category, "1"),
            QByteArray("ImageFormatControl is a category, which cannot be written here."));
    }

    void fitSnapsDownAndClamps_data()
    {
        QTest::addColumn<qint64>("value");
        QTest::addColumn<qint64>("fitted");
        QTest::newRow("on a step") << qint64(96) << qint64(96);
        QTest::newRow("between steps") << qint64(100) << qint64(96);
        QTest::newRow("below") << qint64(-5) << qint64(16);
        QTest::newRow("above") << qint64(5000) << qint64(1008);
        QTest::newRow("maximum off the steps") << qint64(1020) << qint64(1008);
    }

    void fitSnapsDownAndClamps()
    {
        QFETCH(qint64, value);
        QFETCH(qint64, fitted);
        // A maximum that is itself off the steps: the largest step below it.
        QCOMPARE(CGenICamTree::Fit(integer("Width", 16, 1020, 16), value), fitted);
    }

    void changedRowsAreThoseWhoseStateDiffers()
    {
        TArray<SGenICamFeature> before = {integer("Width", 16, 1024, 16),
            integer("OffsetX", 0, 0, 4), integer("Height", 2, 768, 2)};
        before[1].row = 1;
        TArray<SGenICamFeature> after = before;
        after[1].intMax = 512;
        TArray<SGenICamFeature> changed = CGenICamTree::Changed(before, after);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(QByteArray(changed[0].name.data()), QByteArray("OffsetX"));
        QCOMPARE(changed[0].intMax, std::int64_t{512});
        after[0].entries.add("x");
        after[2].access = SGenICamFeature::READ_ONLY;
        QCOMPARE(CGenICamTree::Changed(before, after).count(), 3);
        QCOMPARE(CGenICamTree::Changed(before, before).count(), 0);
        // Another tree altogether: every row.
        QCOMPARE(CGenICamTree::Changed(before, {}).count(), 0);
        QCOMPARE(CGenICamTree::Changed({}, before).count(), 3);
    }
};

QTEST_GUILESS_MAIN(tst_CGenICamTree)
#include "tst_cgenicamtree.moc"
