#pragma once

#include <kivui/ObjectListModel.h>

#include <QByteArray>
#include <QStringList>
#include <QTest>

// What the tests of the discovery models share.

// Runs one search of a model to its end.
template <typename Model> bool scanToEnd(Model& model)
{
    model.scan();
    return QTest::qWaitFor([&] { return !model.scanning(); }, 30000);
}

// Records what a search announces, in its order: the list's resets and insertions ("rows 0-3"),
// the model's scanning signals with the size of the list then ("idle with 4") and its scanned
// signal. order must outlive the model, whose list announces its end.
template <typename Model>
void recordAnnouncements(Model& model, ObjectListModel& list, QStringList& order)
{
    QObject::connect(&list, &QAbstractItemModel::modelReset, &model, [&] { order << "reset"; });
    QObject::connect(&list, &QAbstractItemModel::rowsInserted, &model,
        [&](const QModelIndex&, int first, int last) {
            order << QStringLiteral("rows %1-%2").arg(first).arg(last);
        });
    QObject::connect(&model, &Model::scanningChanged, &model, [&] {
        order << QStringLiteral("%1 with %2")
                     .arg(model.scanning() ? "scanning" : "idle")
                     .arg(list.size());
    });
    QObject::connect(&model, &Model::scannedChanged, &model, [&] { order << "scanned"; });
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
