#pragma once

#include <QByteArray>
#include <QTest>

// What the tests of the discovery models share.

// Runs one search of a model to its end.
template <typename Model> bool scanToEnd(Model& model)
{
    model.scan();
    return QTest::qWaitFor([&] { return !model.scanning(); }, 30000);
}

// A test of "KIVCAM_ENABLE_EMULATORS" read at construction: any content turns emulators on.
inline void addEmulatorEnvironmentRows()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<bool>("set");
    QTest::addColumn<bool>("enabled");
    QTest::newRow("absent") << QByteArray() << false << false;
    QTest::newRow("empty") << QByteArray() << true << false;
    QTest::newRow("zero") << QByteArray("0") << true << true;
    QTest::newRow("one") << QByteArray("1") << true << true;
}

// Sets or clears the variable as the current row says; gives whether emulators are to be on.
inline bool applyEmulatorEnvironment()
{
    QFETCH(QByteArray, value);
    QFETCH(bool, set);
    QFETCH(bool, enabled);
    if (set)
        qputenv("KIVCAM_ENABLE_EMULATORS", value);
    else
        qunsetenv("KIVCAM_ENABLE_EMULATORS");
    return enabled;
}
