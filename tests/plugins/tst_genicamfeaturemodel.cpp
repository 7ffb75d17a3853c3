// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// The GenICam panel's feature tree: against a controller of the test's own for exact cases, and
// against the GenICam controller on the emulated GenICam camera (in this process, no network).

#include "GenICamFeatureModel.h"

#include <kivcam/genicam/CGenICamController.h>
#include <kivcam/genicam/CGenICamEmulatorDevice.h>

#include <QAbstractItemModelTester>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QSignalSpy>
#include <QtTest>

#include <atomic>
#include <memory>
#include <mutex>

using namespace kiv;
using namespace kiv::cam;
using kiv::cam::ui::GenICamFeatureModel;

namespace {

using Model = GenICamFeatureModel;

// A controller that holds the tree it is given, tells its listener when the test says so, and
// keeps the requests made of it until the test answers them.
class CFakeController : public IGenICamController {
public:
    struct SRequest {
        CString name;
        CString value;
        bool command = false;
        Done done;
    };

    explicit CFakeController(TArray<SGenICamFeature> rows) : m_rows(std::move(rows)) { }

    bool connect(TSharedPtr<IDevice>, SCameraInfo) override { return true; }
    void disconnect() override { setTree({}); }
    bool isConnected() const override { return true; }
    CString name() const override { return "Fake"; }
    TArray<SGenICamFeature> features() const override
    {
        const std::lock_guard lock(m_mutex);
        return m_rows;
    }
    bool feature(const CString&, SGenICamFeature&) const override { return false; }
    void setFeature(const CString& name, const CString& value, Done done) override
    {
        requests.add({name, value, false, std::move(done)});
    }
    void execute(const CString& name, Done done) override
    {
        requests.add({name, {}, true, std::move(done)});
    }
    void refresh(Done) override { }
    void setSensorWindow(const SSensorWindow&, Done) override { }
    SSensorWindow sensorWindow() const override { return {}; }
    void startAcquisition(Done) override { }
    void stopAcquisition(Done) override { }
    bool isAcquiring() const override { return false; }
    bool hasControl() const override { return true; }
    CString errorMessage() const override { return {}; }
    void subscribe(IGenICamListener* listener) override { m_listener = listener; }
    void unsubscribe(IGenICamListener* listener) override
    {
        if (m_listener == listener)
            m_listener = nullptr;
    }

    // A new tree, as a connect brings one.
    void setTree(TArray<SGenICamFeature> rows)
    {
        {
            const std::lock_guard lock(m_mutex);
            m_rows = std::move(rows);
        }
        if (m_listener)
            m_listener->treeChanged();
    }
    // Rows that changed, as a write announces them.
    void change(const TArray<SGenICamFeature>& rows)
    {
        {
            const std::lock_guard lock(m_mutex);
            for (const SGenICamFeature& row : rows)
                m_rows[row.row] = row;
        }
        if (m_listener)
            m_listener->featuresChanged(rows);
    }
    SGenICamFeature row(int index) const
    {
        const std::lock_guard lock(m_mutex);
        return m_rows[index];
    }
    bool subscribed() const { return m_listener != nullptr; }

    TArray<SRequest> requests;

private:
    mutable std::mutex m_mutex;
    TArray<SGenICamFeature> m_rows;
    IGenICamListener* m_listener = nullptr;
};

// Adds rows depth first, each under the category given (-1: the root).
struct STreeBuilder {
    int add(const char* name, SGenICamFeature::EType type, int parent,
        SGenICamFeature::EVisibility visibility = SGenICamFeature::BEGINNER)
    {
        SGenICamFeature row;
        row.row = rows.count();
        row.parent = parent;
        row.depth = parent < 0 ? 0 : rows[parent].depth + 1;
        row.name = name;
        row.displayName = CString("Display ") + name;
        row.type = type;
        row.visibility = visibility;
        row.access = type == SGenICamFeature::CATEGORY ? SGenICamFeature::READ_ONLY
                                                       : SGenICamFeature::READ_WRITE;
        rows.add(row);
        return row.row;
    }
    TArray<SGenICamFeature> rows;
};

// CatA: A1 (Beginner), A2 (Expert), A3 (Guru), A4 (Invisible); CatB: SubB: B1 (Expert);
// CatEmpty: E1 (Invisible).
TArray<SGenICamFeature> smallTree()
{
    STreeBuilder tree;
    const int a = tree.add("CatA", SGenICamFeature::CATEGORY, -1);
    tree.add("A1", SGenICamFeature::INTEGER, a);
    tree.add("A2", SGenICamFeature::FLOAT, a, SGenICamFeature::EXPERT);
    tree.add("A3", SGenICamFeature::STRING, a, SGenICamFeature::GURU);
    tree.add("A4", SGenICamFeature::INTEGER, a, SGenICamFeature::INVISIBLE);
    const int b = tree.add("CatB", SGenICamFeature::CATEGORY, -1);
    const int sub = tree.add("SubB", SGenICamFeature::CATEGORY, b);
    tree.add("B1", SGenICamFeature::COMMAND, sub, SGenICamFeature::EXPERT);
    const int empty = tree.add("CatEmpty", SGenICamFeature::CATEGORY, -1);
    tree.add("E1", SGenICamFeature::INTEGER, empty, SGenICamFeature::INVISIBLE);
    TArray<SGenICamFeature>& rows = tree.rows;
    rows[1].value = "5";
    rows[1].intMin = 0;
    rows[1].intMax = 100;
    rows[1].intInc = 5;
    rows[1].unit = "px";
    rows[2].floatMin = 0.5;
    rows[2].floatMax = 2.5;
    return rows;
}

// Checks the model throughout its life, stopping the test at the first fault.
void watch(Model& model)
{
    new QAbstractItemModelTester(
        &model, QAbstractItemModelTester::FailureReportingMode::Fatal, &model);
}

// A model over a tree of the fake controller.
struct SFakeSession {
    explicit SFakeSession(TArray<SGenICamFeature> rows = smallTree()) : controller(std::move(rows))
    {
        watch(model);
    }
    CFakeController controller;
    Model model{&controller, nullptr};
};

// The tree as the view sees it: each shown row's name, indented by its depth.
QStringList outline(const QAbstractItemModel& model, const QModelIndex& parent = {})
{
    QStringList lines;
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        int depth = 0;
        for (QModelIndex up = index.parent(); up.isValid(); up = up.parent())
            ++depth;
        lines << QString(depth, ' ') + index.data(Model::NameRole).toString();
        lines << outline(model, index);
    }
    return lines;
}

QModelIndex find(const QAbstractItemModel& model, const char* name)
{
    const QModelIndexList found = model.match(model.index(0, 0), Model::NameRole,
        QString::fromUtf8(name), 1, Qt::MatchExactly | Qt::MatchRecursive);
    return found.isEmpty() ? QModelIndex() : found.first();
}

SGenICamResult refusal(const char* message)
{
    SGenICamResult result;
    result.message = message;
    return result;
}

// The roles of the dataChanged signals a spy caught, one list per signal, for the row given.
QList<QList<int>> rolesOf(const QSignalSpy& spy, const QModelIndex& index)
{
    QList<QList<int>> roles;
    for (const QList<QVariant>& signal : spy) {
        if (signal[0].toModelIndex() == index && signal[1].toModelIndex() == index)
            roles << signal[2].value<QList<int>>();
    }
    return roles;
}

SDeviceInfo emulatedRecord(const char* serial)
{
    SDeviceInfo device;
    device.interfaceName = "GenICamEmulator";
    device.parameters.Add(CParameters::CEntry(
        "Serial", "Serial number", "", CParameters::EDIT_NEVER, CVariant(serial)));
    return device;
}

// Waits on the test's thread, events running, for a request to the controller to be answered.
template <typename Request> bool answered(Request request)
{
    auto done = std::make_shared<std::atomic<int>>(0);
    request([done](const SGenICamResult& result) { *done = result.ok ? 1 : 2; });
    return QTest::qWaitFor([&] { return *done != 0; }, 20000) && *done == 1;
}

} // namespace

class tst_GenICamFeatureModel : public QObject {
    Q_OBJECT

private:
    // The GenICam controller on a fresh emulated camera, connected.
    bool connectEmulated(CGenICamController& controller)
    {
        TSharedPtr<IDevice> device(new CGenICamEmulatorDevice);
        if (!device->open(emulatedRecord("GC-M1"), true))
            return false;
        SCameraInfo camera;
        camera.model = "Emulated GenICam";
        return controller.connect(device, camera);
    }

private slots:
    void filtersByVisibility()
    {
        SFakeSession session;
        CFakeController& controller = session.controller;
        Model& model = session.model;
        QVERIFY(controller.subscribed());
        QCOMPARE(model.visibility(), 0);
        QCOMPARE(outline(model), (QStringList{"CatA", " A1"}));
        QCOMPARE(model.featureCount(), 1);
        QCOMPARE(model.hiddenCount(), 3); // A2, A3, B1; never A4 nor E1

        QSignalSpy visibility(&model, &Model::visibilityChanged);
        QSignalSpy counts(&model, &Model::countsChanged);
        QSignalSpy reset(&model, &Model::modelReset);
        model.setVisibility(1);
        QCOMPARE(outline(model), (QStringList{"CatA", " A1", " A2", "CatB", " SubB", "  B1"}));
        QCOMPARE(model.featureCount(), 3);
        QCOMPARE(model.hiddenCount(), 1);
        QCOMPARE(visibility.count(), 1);
        QCOMPARE(counts.count(), 1);
        QCOMPARE(reset.count(), 1);
        model.setVisibility(2);
        QCOMPARE(
            outline(model), (QStringList{"CatA", " A1", " A2", " A3", "CatB", " SubB", "  B1"}));
        QCOMPARE(model.featureCount(), 4);
        QCOMPARE(model.hiddenCount(), 0);
        // Invisible is not a level one can choose; the same level again changes nothing.
        model.setVisibility(3);
        QCOMPARE(model.visibility(), 2);
        QCOMPARE(visibility.count(), 2);
        QCOMPARE(reset.count(), 2);
        model.setVisibility(-1);
        QCOMPARE(model.visibility(), 0);
        QCOMPARE(outline(model), (QStringList{"CatA", " A1"}));
    }

    void filtersByText()
    {
        SFakeSession session;
        Model& model = session.model;
        model.setVisibility(2);
        QSignalSpy text(&model, &Model::filterTextChanged);
        // A feature's name, letter case ignored: its categories come with it.
        model.setFilterText("a2");
        QCOMPARE(text.count(), 1);
        QCOMPARE(outline(model), (QStringList{"CatA", " A2"}));
        QCOMPARE(model.featureCount(), 1);
        // The display name counts too.
        model.setFilterText("DISPLAY B1");
        QCOMPARE(outline(model), (QStringList{"CatB", " SubB", "  B1"}));
        // A category's name brings all its features at the level, those of its subcategories too.
        model.setFilterText("catb");
        QCOMPARE(outline(model), (QStringList{"CatB", " SubB", "  B1"}));
        model.setFilterText("cata");
        QCOMPARE(outline(model), (QStringList{"CatA", " A1", " A2", " A3"}));
        model.setVisibility(0);
        QCOMPARE(outline(model), (QStringList{"CatA", " A1"}));
        QCOMPARE(model.hiddenCount(), 2); // A2 and A3 match but are above Beginner
        // A category whose features are all invisible never shows, named or not.
        model.setFilterText("CatEmpty");
        QCOMPARE(outline(model), QStringList());
        QCOMPARE(model.hiddenCount(), 0);
        model.setFilterText("no such thing");
        QCOMPARE(model.rowCount(), 0);
        QCOMPARE(model.featureCount(), 0);
        model.setFilterText("");
        QCOMPARE(outline(model), (QStringList{"CatA", " A1"}));
        QCOMPARE(text.count(), 7);
    }

    void rolesCarryTheRow()
    {
        SFakeSession session;
        Model& model = session.model;
        model.setVisibility(2);
        const QHash<int, QByteArray> names = model.roleNames();
        QCOMPARE(names.value(Model::DisplayNameRole), QByteArray("displayName"));
        QCOMPARE(names.value(Model::ReadErrorRole), QByteArray("readError"));
        QCOMPARE(names.value(Qt::DisplayRole), QByteArray("display"));
        QCOMPARE(names.size(), 18);

        const QModelIndex a1 = find(model, "A1");
        QVERIFY(a1.isValid());
        QCOMPARE(a1.data(Qt::DisplayRole).toString(), QString("Display A1"));
        QCOMPARE(a1.data(Model::TypeRole).toInt(), int(Model::INTEGER));
        QCOMPARE(a1.data(Model::ValueRole).toString(), QString("5"));
        QCOMPARE(a1.data(Model::MinimumRole), QVariant::fromValue(qint64(0)));
        QCOMPARE(a1.data(Model::MaximumRole), QVariant::fromValue(qint64(100)));
        QCOMPARE(a1.data(Model::IncrementRole), QVariant::fromValue(qint64(5)));
        QCOMPARE(a1.data(Model::UnitRole).toString(), QString("px"));
        QCOMPARE(a1.data(Model::WritableRole).toBool(), true);
        QCOMPARE(a1.data(Model::BusyRole).toBool(), false);
        const QModelIndex a2 = find(model, "A2");
        QCOMPARE(a2.data(Model::MinimumRole), QVariant(0.5));
        QCOMPARE(a2.data(Model::MaximumRole), QVariant(2.5));
        QCOMPARE(a2.data(Model::VisibilityRole).toInt(), int(SGenICamFeature::EXPERT));
        const QModelIndex a3 = find(model, "A3");
        QCOMPARE(a3.data(Model::TypeRole).toInt(), int(Model::STRING));
        QVERIFY(!a3.data(Model::MinimumRole).isValid());
        QCOMPARE(find(model, "CatA").data(Model::TypeRole).toInt(), int(Model::CATEGORY));
        // The type names are QML's as well.
        const QMetaEnum types = QMetaEnum::fromType<Model::Type>();
        QCOMPARE(types.keyCount(), 8);
        QCOMPARE(types.keyToValue("ENUMERATION"), int(SGenICamFeature::ENUMERATION));
        QCOMPARE(types.keyToValue("OTHER"), int(SGenICamFeature::OTHER));
    }

    void changedRowsTellTheRolesThatChanged()
    {
        SFakeSession session;
        CFakeController& controller = session.controller;
        Model& model = session.model;
        QSignalSpy changed(&model, &Model::dataChanged);
        QSignalSpy reset(&model, &Model::modelReset);
        SGenICamFeature a1 = controller.row(1);
        a1.value = "10";
        controller.change({a1});
        // Handed over through the event loop, never at once.
        QCOMPARE(changed.count(), 0);
        QTRY_COMPARE(changed.count(), 1);
        const QModelIndex index = find(model, "A1");
        QCOMPARE(rolesOf(changed, index), QList<QList<int>>{{Model::ValueRole}});
        QCOMPARE(index.data(Model::ValueRole).toString(), QString("10"));

        changed.clear();
        a1.access = SGenICamFeature::READ_ONLY;
        a1.accessReason = "Locked while acquiring.";
        a1.intMax = 50;
        SGenICamFeature a2 = controller.row(2); // hidden at Beginner: kept, not signalled
        a2.value = "1.5";
        controller.change({a1, a2});
        QTRY_COMPARE(changed.count(), 1);
        QCOMPARE(rolesOf(changed, index),
            (QList<QList<int>>{
                {Model::WritableRole, Model::AccessReasonRole, Model::MaximumRole}}));
        QCOMPARE(reset.count(), 0);
        model.setVisibility(1);
        QCOMPARE(find(model, "A2").data(Model::ValueRole).toString(), QString("1.5"));

        // A row that changes its level changes what is shown: the model starts again.
        changed.clear();
        reset.clear();
        SGenICamFeature b1 = controller.row(7);
        b1.visibility = SGenICamFeature::GURU;
        controller.change({b1});
        QTRY_COMPARE(reset.count(), 1);
        QCOMPARE(outline(model), (QStringList{"CatA", " A1", " A2"}));
        QCOMPARE(model.hiddenCount(), 2);

        // Rows of another tree (their names differ) are left alone.
        reset.clear();
        SGenICamFeature stranger = controller.row(1);
        stranger.name = "Stranger";
        stranger.value = "99";
        controller.change({stranger});
        QTest::qWait(20);
        QCOMPARE(changed.count(), 0);
        QCOMPARE(find(model, "A1").data(Model::ValueRole).toString(), QString("10"));
    }

    void writesAreBusyUntilAnswered()
    {
        SFakeSession session;
        CFakeController& controller = session.controller;
        Model& model = session.model;
        QSignalSpy changed(&model, &Model::dataChanged);
        const QModelIndex a1 = find(model, "A1");
        model.setValue(a1, "7");
        QCOMPARE(controller.requests.count(), 1);
        QCOMPARE(controller.requests[0].name, CString("A1"));
        QCOMPARE(controller.requests[0].value, CString("7"));
        QVERIFY(a1.data(Model::BusyRole).toBool());
        QCOMPARE(rolesOf(changed, a1), QList<QList<int>>{{Model::BusyRole}});

        // Refused: the camera's words go into the row's error, and the row is no longer busy.
        changed.clear();
        controller.requests[0].done(refusal("A1: 7 is not a valid step of 5."));
        QTRY_COMPARE(changed.count(), 1);
        QCOMPARE(rolesOf(changed, a1), (QList<QList<int>>{{Model::BusyRole, Model::ErrorRole}}));
        QCOMPARE(a1.data(Model::ErrorRole).toString(), QString("A1: 7 is not a valid step of 5."));
        QVERIFY(!a1.data(Model::BusyRole).toBool());

        // Two at once: busy until the last is answered; the next success clears the error.
        changed.clear();
        model.setValue(a1, "10");
        model.setValue(a1, "15");
        QCOMPARE(rolesOf(changed, a1), QList<QList<int>>{{Model::BusyRole}});
        changed.clear();
        controller.requests[1].done(SGenICamResult{true, {}});
        QTRY_COMPARE(changed.count(), 1);
        QCOMPARE(rolesOf(changed, a1), QList<QList<int>>{{Model::ErrorRole}});
        QVERIFY(a1.data(Model::BusyRole).toBool());
        QCOMPARE(a1.data(Model::ErrorRole).toString(), QString());
        changed.clear();
        controller.requests[2].done(SGenICamResult{true, {}});
        QTRY_COMPARE(changed.count(), 1);
        QCOMPARE(rolesOf(changed, a1), QList<QList<int>>{{Model::BusyRole}});

        // A command goes to execute; a refusal without words still says what failed.
        model.setVisibility(1);
        const QModelIndex b1 = find(model, "B1");
        model.execute(b1);
        QCOMPARE(controller.requests.count(), 4);
        QVERIFY(controller.requests[3].command);
        QCOMPARE(controller.requests[3].name, CString("B1"));
        controller.requests[3].done(SGenICamResult{});
        QTRY_VERIFY(!b1.data(Model::BusyRole).toBool());
        QCOMPARE(
            b1.data(Model::ErrorRole).toString(), QString("The camera refused the request to B1."));
    }

    void answersAboutAnOldTreeAreDropped()
    {
        SFakeSession session;
        CFakeController& controller = session.controller;
        Model& model = session.model;
        model.setValue(find(model, "A1"), "7");
        controller.setTree(smallTree());
        QSignalSpy reset(&model, &Model::modelReset);
        QTRY_COMPARE(reset.count(), 1);
        QSignalSpy changed(&model, &Model::dataChanged);
        controller.requests[0].done(refusal("too late"));
        QTest::qWait(20);
        QCOMPARE(changed.count(), 0);
        QCOMPARE(find(model, "A1").data(Model::ErrorRole).toString(), QString());
        QVERIFY(!find(model, "A1").data(Model::BusyRole).toBool());
    }

    void destroyedWithAWriteUnderWay()
    {
        CFakeController controller(smallTree());
        auto model = std::make_unique<Model>(&controller, nullptr);
        model->setValue(find(*model, "A1"), "7");
        model->setValue(find(*model, "A1"), "8");
        // The first answer and the change it brings are posted, and never delivered.
        SGenICamFeature a1 = controller.row(1);
        a1.value = "7";
        controller.change({a1});
        controller.requests[0].done(refusal("A1: 7 is not a valid step of 5."));
        model.reset();
        QVERIFY(!controller.subscribed());
        // The second answer comes after.
        controller.requests[1].done(SGenICamResult{true, {}});
        QTest::qWait(20);
        QCOMPARE(controller.requests.count(), 2);
    }

    void aLargeTree()
    {
        STreeBuilder tree;
        for (int category = 0; category < 50; ++category) {
            const int parent
                = tree.add(QByteArray("Category" + QByteArray::number(category)).constData(),
                    SGenICamFeature::CATEGORY, -1);
            for (int feature = 0; feature < 20; ++feature)
                tree.add(
                    QByteArray("Feature" + QByteArray::number(category * 20 + feature)).constData(),
                    SGenICamFeature::INTEGER, parent, SGenICamFeature::EVisibility(feature % 3));
        }
        SFakeSession session(tree.rows);
        Model& model = session.model;
        QCOMPARE(model.rowCount(), 50);
        QCOMPARE(model.featureCount(), 50 * 7);
        QCOMPARE(model.hiddenCount(), 50 * 13);
        model.setVisibility(2);
        QCOMPARE(model.featureCount(), 1000);
        model.setFilterText("feature99");
        QCOMPARE(outline(model),
            (QStringList{"Category4", " Feature99", "Category49", " Feature990", " Feature991",
                " Feature992", " Feature993", " Feature994", " Feature995", " Feature996",
                " Feature997", " Feature998", " Feature999"}));
    }

    void showsInAQmlTreeView()
    {
        SFakeSession session;
        session.model.setVisibility(1);
        QQmlEngine engine;
        QQmlComponent component(&engine);
        component.setData("import QtQuick\n"
                          "Window { width: 300; height: 400; visible: true\n"
                          "  property alias tree: tree\n"
                          "  TreeView { id: tree; anchors.fill: parent\n"
                          "    delegate: Text { required property string displayName\n"
                          "      required property int depth; text: displayName } } }",
            QUrl());
        const std::unique_ptr<QObject> window(component.create());
        QVERIFY2(window, qPrintable(component.errorString()));
        QObject* tree = window->property("tree").value<QObject*>();
        tree->setProperty("model", QVariant::fromValue<QObject*>(&session.model));
        QTRY_COMPARE(tree->property("rows").toInt(), 2); // CatA, CatB
        QVERIFY(QMetaObject::invokeMethod(tree, "expandRecursively"));
        QTRY_COMPARE(tree->property("rows").toInt(), 6);
        // A change reaches the view's rows; a reset collapses them again.
        session.model.setFilterText("b1");
        QTRY_COMPARE(tree->property("rows").toInt(), 1);
    }

    void theEmulatedCameraByLevel()
    {
        CGenICamController controller;
        QVERIFY(connectEmulated(controller));
        Model model(&controller, nullptr);
        watch(model);
        const int beginner = model.featureCount();
        QVERIFY(beginner > 5);
        QVERIFY(model.hiddenCount() > 0);
        QVERIFY(find(model, "Width").isValid());
        QVERIFY(!find(model, "TestCounter").isValid());
        model.setVisibility(1);
        QVERIFY(model.featureCount() > beginner);
        model.setVisibility(2);
        QVERIFY(find(model, "TestCounter").isValid());
        QCOMPARE(model.hiddenCount(), 0);
        QVERIFY(!find(model, "AcquisitionActive").isValid());
        model.setFilterText("offset");
        QCOMPARE(outline(model), (QStringList{"ImageFormatControl", " OffsetX", " OffsetY"}));

        // A disconnect empties the tree.
        QSignalSpy reset(&model, &Model::modelReset);
        controller.disconnect();
        QTRY_COMPARE(reset.count(), 1);
        QCOMPARE(model.rowCount(), 0);
        QCOMPARE(model.featureCount(), 0);
    }

    void theEmulatedCameraWrites()
    {
        CGenICamController controller;
        QVERIFY(connectEmulated(controller));
        Model model(&controller, nullptr);
        watch(model);
        model.setVisibility(2);
        QSignalSpy changed(&model, &Model::dataChanged);

        // Accepted: the value follows, and only it changed.
        const QModelIndex exposure = find(model, "ExposureTime");
        model.setValue(exposure, "2000");
        QVERIFY(exposure.data(Model::BusyRole).toBool());
        QTRY_VERIFY_WITH_TIMEOUT(!exposure.data(Model::BusyRole).toBool(), 20000);
        QCOMPARE(exposure.data(Model::ValueRole).toDouble(), 2000.0);
        QCOMPARE(rolesOf(changed, exposure),
            (QList<QList<int>>{{Model::BusyRole}, {Model::ValueRole}, {Model::BusyRole}}));
        QCOMPARE(exposure.data(Model::ErrorRole).toString(), QString());

        // Refused by the check: the error says why, the value stays the camera's.
        model.setValue(exposure, "-5");
        QTRY_VERIFY_WITH_TIMEOUT(!exposure.data(Model::BusyRole).toBool(), 20000);
        QVERIFY2(exposure.data(Model::ErrorRole)
                     .toString()
                     .startsWith("ExposureTime: -5 us is outside the range"),
            qPrintable(exposure.data(Model::ErrorRole).toString()));
        QCOMPARE(exposure.data(Model::ValueRole).toDouble(), 2000.0);
        // Locked while acquiring.
        const QModelIndex width = find(model, "Width");
        QVERIFY(!width.data(Model::WritableRole).toBool());
        model.setValue(width, "256");
        QTRY_VERIFY_WITH_TIMEOUT(!width.data(Model::BusyRole).toBool(), 20000);
        QVERIFY2(width.data(Model::ErrorRole).toString().startsWith("Width cannot be written now"),
            qPrintable(width.data(Model::ErrorRole).toString()));
        QCOMPARE(width.data(Model::ValueRole).toString(), QString("512"));

        // Stopped, the width may change, and the room for the offset with it.
        QVERIFY(answered([&](auto done) { controller.stopAcquisition(done); }));
        QTRY_VERIFY_WITH_TIMEOUT(width.data(Model::WritableRole).toBool(), 20000);
        const QModelIndex offset = find(model, "OffsetX");
        const qint64 offsetMax = offset.data(Model::MaximumRole).toLongLong();
        model.setValue(width, "256");
        QTRY_VERIFY_WITH_TIMEOUT(!width.data(Model::BusyRole).toBool(), 20000);
        QCOMPARE(width.data(Model::ValueRole).toString(), QString("256"));
        QCOMPARE(width.data(Model::ErrorRole).toString(), QString());
        QCOMPARE(offset.data(Model::MaximumRole).toLongLong(), offsetMax + 256);
    }

    void theEmulatedCameraOutlivesTheModel()
    {
        CGenICamController controller;
        QVERIFY(connectEmulated(controller));
        {
            Model model(&controller, nullptr);
            model.setVisibility(2);
            model.setValue(find(model, "ExposureTime"), "3000");
            const QModelIndex reset = find(model, "TestCounterReset");
            QVERIFY(reset.isValid());
            model.execute(reset);
        }
        // The worker carries the writes out and answers nobody.
        QVERIFY(answered([&](auto done) { controller.refresh(done); }));
        QTest::qWait(20);
        SGenICamFeature exposure;
        QVERIFY(controller.feature("ExposureTime", exposure));
        QCOMPARE(QByteArray(exposure.value.data()).toDouble(), 3000.0);
    }
};

QTEST_MAIN(tst_GenICamFeatureModel)
#include "tst_genicamfeaturemodel.moc"
