// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kiv/CException.h>
#include <kivcam/CParameters.h>

#include <QTest>

using kiv::CString;
using kiv::CVariant;
using kiv::cam::CParameters;

namespace {

CVariant baudRates(long long value)
{
    kiv::TArray<CVariant::SEnumItem> items;
    for (long long rate : {9600, 19200, 115200})
        items.add({CString(std::to_string(rate)), rate});
    return CVariant::Enum(items, value);
}

CParameters sample()
{
    CParameters parameters;
    parameters.Add({"Control", "Control channel", "Where commands go", CParameters::EDIT_ALWAYS,
        CVariant("COM1")});
    parameters.Add(
        {"BaudRate", "Baud rate", "Serial speed", CParameters::EDIT_CUSTOM, baudRates(9600)});
    CVariant timeout(CVariant::TYPE_UINT16);
    timeout.Assign(CVariant(500));
    parameters.Add({"Timeout", "Timeout", "Milliseconds", CParameters::EDIT_INTERNAL, timeout});
    return parameters;
}

} // namespace

class tst_CParameters : public QObject {
    Q_OBJECT

private slots:
    void editLevelsAreNumberedZeroToFour()
    {
        QCOMPARE(int(CParameters::EDIT_ALWAYS), 0);
        QCOMPARE(int(CParameters::EDIT_CUSTOM), 1);
        QCOMPARE(int(CParameters::EDIT_CUSTOM_SELECT), 2);
        QCOMPARE(int(CParameters::EDIT_INTERNAL), 3);
        QCOMPARE(int(CParameters::EDIT_NEVER), 4);
    }
    void entriesKeepTheirOrderAndFields()
    {
        const CParameters parameters = sample();
        QCOMPARE(parameters.count(), 3u);
        QCOMPARE(QByteArray(parameters[0u].name.c_str()), QByteArray("Control"));
        QCOMPARE(QByteArray(parameters[1u].displayName.c_str()), QByteArray("Baud rate"));
        QCOMPARE(QByteArray(parameters[1u].description.c_str()), QByteArray("Serial speed"));
        QCOMPARE(parameters[2u].editLevel, CParameters::EDIT_INTERNAL);
        QCOMPARE(QByteArray(parameters[CString("Timeout")].value().ToString().c_str()),
            QByteArray("500"));
    }
    void existsAndLookupByName()
    {
        CParameters parameters = sample();
        QVERIFY(parameters.Exists("BaudRate"));
        QVERIFY(!parameters.Exists("baudrate"));
        QVERIFY(!parameters.Exists(CString()));
        QCOMPARE(&parameters[CString("BaudRate")], &parameters[1u]);
    }
    void textOfAnEntryOrEmpty()
    {
        const CParameters parameters = sample();
        QCOMPARE(QByteArray(parameters.TextOf("Control").c_str()), QByteArray("COM1"));
        QCOMPARE(QByteArray(parameters.TextOf("BaudRate").c_str()), QByteArray("9600"));
        QCOMPARE(QByteArray(parameters.TextOf("Timeout").c_str()), QByteArray("500"));
        QVERIFY(parameters.TextOf("control").empty());
        QVERIFY(parameters.TextOf(CString()).empty());
    }
    void unknownNameAndIndexThrow()
    {
        CParameters parameters = sample();
        QVERIFY_THROWS_EXCEPTION(kiv::COutOfRangeException, parameters[CString("Missing")]);
        QVERIFY_THROWS_EXCEPTION(kiv::COutOfRangeException, parameters[3u]);
    }
    void addingTheSameNameReplacesInPlace()
    {
        CParameters parameters = sample();
        parameters.Add({"BaudRate", "Speed", "", CParameters::EDIT_NEVER, baudRates(115200)});
        QCOMPARE(parameters.count(), 3u);
        QCOMPARE(QByteArray(parameters[1u].displayName.c_str()), QByteArray("Speed"));
        QCOMPARE(parameters[1u].value().ToInt64(), 115200);
    }
    void setValueConvertsIntoTheEntryType()
    {
        CParameters parameters = sample();
        CParameters::CEntry& rate = parameters[CString("BaudRate")];
        QCOMPARE(
            QByteArray(rate.setValue(CVariant("19200")).ToString().c_str()), QByteArray("19200"));
        QCOMPARE(rate.value().getType(), CVariant::TYPE_ENUM);
        QCOMPARE(rate.setValue(CVariant(115200)).ToInt64(), 115200);
    }
    void setValueRefusesWhatDoesNotFit()
    {
        CParameters parameters = sample();
        CParameters::CEntry& rate = parameters[CString("BaudRate")];
        QCOMPARE(rate.setValue(CVariant(1234)).ToInt64(), 9600);
        QCOMPARE(rate.setValue(CVariant("fast")).ToInt64(), 9600);
        CParameters::CEntry& timeout = parameters[CString("Timeout")];
        QCOMPARE(timeout.setValue(CVariant("70000")).ToInt64(), 500);
        QCOMPARE(timeout.setValue(CVariant("-1")).ToInt64(), 500);
        QCOMPARE(timeout.setValue(CVariant("65535")).ToInt64(), 65535);
    }
    void manyEntriesAreFoundByName()
    {
        // A hundred thousand entries, each found in its place; adding them one by one used to
        // take quadratic time.
        CParameters parameters;
        constexpr unsigned count = 100000;
        for (unsigned i = 0; i < count; ++i)
            parameters.Add({CString(std::to_string(i)), "", "", CParameters::EDIT_ALWAYS,
                CVariant(static_cast<int>(i))});
        parameters.Add({"77777", "again", "", CParameters::EDIT_NEVER, CVariant(1)});
        QCOMPARE(parameters.count(), count);
        for (unsigned i = 0; i < count; i += 997) {
            const CString name(std::to_string(i));
            QVERIFY(parameters.Exists(name));
            QCOMPARE(&parameters[name], &parameters[i]);
        }
        QCOMPARE(QByteArray(parameters[77777u].displayName.c_str()), QByteArray("again"));
        QVERIFY(!parameters.Exists(CString(std::to_string(count))));
    }
    void entryRenamedInPlaceIsNotFoundUnderItsOldName()
    {
        CParameters parameters = sample();
        parameters[CString("BaudRate")].name = "Speed";
        QVERIFY(!parameters.Exists("BaudRate"));
        QVERIFY_THROWS_EXCEPTION(kiv::COutOfRangeException, parameters[CString("BaudRate")]);
        parameters.Add({"BaudRate", "", "", CParameters::EDIT_ALWAYS, baudRates(19200)});
        QCOMPARE(parameters.count(), 4u);
        QCOMPARE(&parameters[CString("BaudRate")], &parameters[3u]);
        QCOMPARE(QByteArray(parameters[1u].name.c_str()), QByteArray("Speed"));
    }
    void lookupsHoldWhileACollectionGrows()
    {
        // Small collections look their few names through, larger ones keep an index: an entry
        // is found in its place, and a renamed one under neither name, at every size.
        CParameters parameters;
        for (unsigned count = 1; count <= 40; ++count) {
            parameters.Add({CString(std::to_string(count - 1)), "", "", CParameters::EDIT_ALWAYS,
                CVariant(static_cast<int>(count))});
            if (count == 5)
                parameters[CString("2")].name = "renamed";
            const bool renamed = count >= 5;
            for (unsigned i = 0; i < count; ++i) {
                const CString name(std::to_string(i));
                const bool found = i != 2 || !renamed;
                QCOMPARE(parameters.Exists(name), found);
                if (found)
                    QCOMPARE(&parameters[name], &parameters[i]);
            }
            QVERIFY(!parameters.Exists("renamed"));
            const CParameters copy = parameters;
            QCOMPARE(copy.count(), count);
            QCOMPARE(&copy[CString("0")], &copy[0u]);
        }
        // Added again under the old name, it is a new entry that the name finds.
        parameters.Add({"2", "again", "", CParameters::EDIT_ALWAYS, CVariant(0)});
        QCOMPARE(parameters.count(), 41u);
        QCOMPARE(&parameters[CString("2")], &parameters[40u]);
        parameters.Add({"2", "replaced", "", CParameters::EDIT_ALWAYS, CVariant(0)});
        QCOMPARE(parameters.count(), 41u);
        QCOMPARE(QByteArray(parameters[40u].displayName.c_str()), QByteArray("replaced"));
    }
    void copiesFindTheirOwnEntries()
    {
        const CParameters original = sample();
        CParameters copy = original;
        QCOMPARE(&copy[CString("Timeout")], &copy[2u]);
        CParameters assigned;
        assigned.Add({"Other", "", "", CParameters::EDIT_ALWAYS, CVariant(1)});
        assigned = original;
        QVERIFY(!assigned.Exists("Other"));
        QCOMPARE(&assigned[CString("Control")], &assigned[0u]);
    }
    void copiesAreIndependent()
    {
        CParameters original = sample();
        CParameters copy = original;
        copy[CString("Control")].setValue(CVariant("COM7"));
        QCOMPARE(QByteArray(original[CString("Control")].value().ToString().c_str()),
            QByteArray("COM1"));
        QCOMPARE(
            QByteArray(copy[CString("Control")].value().ToString().c_str()), QByteArray("COM7"));
    }
};

QTEST_APPLESS_MAIN(tst_CParameters)
#include "tst_cparameters.moc"
