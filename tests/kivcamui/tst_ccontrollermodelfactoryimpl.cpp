// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kivcamui/plugin/CControllerModelFactoryImpl.h>
#include <kivcamui/plugin/ControllerModel.h>

#include <QTest>

using kiv::CString;
using kiv::TSharedPtr;
using kiv::cam::IController;
using kiv::cam::IDevice;
using kiv::cam::SCameraInfo;
using kiv::cam::ui::CControllerModelFactoryImpl;

namespace {

class CTestController : public IController {
public:
    explicit CTestController(const char* name) : m_name(name) { }
    bool connect(TSharedPtr<IDevice>, SCameraInfo) override { return false; }
    void disconnect() override { }
    bool isConnected() const override { return false; }
    CString name() const override { return m_name; }

private:
    CString m_name;
};

// What the creators saw, in the order they were asked.
struct SCall {
    QByteArray creator;
    IController* controller;
    int references; // the controller's reference count during the call
    QObject* parent;
    QObject** model;
    QString* qml;
};
QList<SCall> calls;

void record(const char* creator, const TSharedPtr<IController>& controller, QObject* parent,
    QObject** model, QString* qml)
{
    calls.append({creator, controller.get(), controller.useCount(), parent, model, qml});
}

bool declines(TSharedPtr<IController> controller, QObject* parent, QObject** model, QString* qml)
{
    record("declines", controller, parent, model, qml);
    return false;
}

// Accepts the controllers named "first".
bool acceptsFirst(
    TSharedPtr<IController> controller, QObject* parent, QObject** model, QString* qml)
{
    record("acceptsFirst", controller, parent, model, qml);
    if (!controller || controller->name() != CString("first"))
        return false;
    *model = new ControllerModel(parent);
    *qml = QStringLiteral("qrc:/first/Panel.qml");
    return true;
}

bool acceptsAll(TSharedPtr<IController> controller, QObject* parent, QObject** model, QString* qml)
{
    record("acceptsAll", controller, parent, model, qml);
    *model = new ControllerModel(parent);
    *qml = QStringLiteral("qrc:/all/Panel.qml");
    return true;
}

// Keeps a reference of the controller beyond the call.
TSharedPtr<IController> kept;
bool keeps(TSharedPtr<IController> controller, QObject* parent, QObject** model, QString* qml)
{
    record("keeps", controller, parent, model, qml);
    kept = controller;
    return false;
}

// Registers acceptsAll in the registry it is asked by, while it is being asked.
CControllerModelFactoryImpl* registering = nullptr;
bool registersAnother(
    TSharedPtr<IController> controller, QObject* parent, QObject** model, QString* qml)
{
    record("registersAnother", controller, parent, model, qml);
    registering->RegisterCreator(acceptsAll);
    return false;
}

QByteArrayList creatorsCalled()
{
    QByteArrayList names;
    for (const SCall& call : std::as_const(calls))
        names << call.creator;
    return names;
}

TSharedPtr<IController> makeController(const char* name)
{
    return TSharedPtr<IController>(new CTestController(name));
}

} // namespace

class tst_CControllerModelFactoryImpl : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        calls.clear();
        kept.reset();
    }

    void createModelWithNoCreatorsLeavesTheOutputsAlone()
    {
        CControllerModelFactoryImpl factory;
        QObject parent;
        QObject* model = &parent;
        QString qml = QStringLiteral("previous");
        const TSharedPtr<IController> controller = makeController("first");
        QVERIFY(!factory.CreateModel(controller, &parent, &model, &qml));
        QCOMPARE(model, &parent);
        QCOMPARE(qml, QStringLiteral("previous"));
        QVERIFY(parent.children().isEmpty());
        // CreateModel's own reference is gone.
        QCOMPARE(controller.useCount(), 1);
    }
    void registerReturnsTrueOnce()
    {
        CControllerModelFactoryImpl factory;
        QVERIFY(factory.RegisterCreator(declines));
        QVERIFY(!factory.RegisterCreator(declines));
        QVERIFY(factory.RegisterCreator(acceptsAll));
        QVERIFY(!factory.RegisterCreator(declines));
        QVERIFY(!factory.RegisterCreator(acceptsAll));
    }
    void nullCreatorIsRefused()
    {
        CControllerModelFactoryImpl factory;
        QVERIFY(!factory.RegisterCreator(nullptr));
        QObject* model = nullptr;
        QString qml;
        QVERIFY(!factory.CreateModel(makeController("first"), nullptr, &model, &qml));
    }
    void duplicateIsAskedOncePerCreateModel()
    {
        CControllerModelFactoryImpl factory;
        factory.RegisterCreator(declines);
        factory.RegisterCreator(declines);
        QObject* model = nullptr;
        QString qml;
        QVERIFY(!factory.CreateModel(makeController("first"), nullptr, &model, &qml));
        QCOMPARE(creatorsCalled(), QByteArrayList{"declines"});
        QVERIFY(!factory.CreateModel(makeController("first"), nullptr, &model, &qml));
        QCOMPARE(creatorsCalled(), (QByteArrayList{"declines", "declines"}));
    }
    void creatorsAreAskedInRegistrationOrderUntilOneAccepts()
    {
        CControllerModelFactoryImpl factory;
        factory.RegisterCreator(declines);
        factory.RegisterCreator(acceptsFirst);
        factory.RegisterCreator(acceptsAll);

        QObject parent;
        QObject* model = nullptr;
        QString qml;
        const TSharedPtr<IController> first = makeController("first");
        QVERIFY(factory.CreateModel(first, &parent, &model, &qml));
        QCOMPARE(creatorsCalled(), (QByteArrayList{"declines", "acceptsFirst"}));
        QCOMPARE(qml, QStringLiteral("qrc:/first/Panel.qml"));
        QVERIFY(qobject_cast<ControllerModel*>(model));
        QCOMPARE(model->parent(), &parent);
        // Every creator got the same controller, parent and output addresses.
        for (const SCall& call : std::as_const(calls)) {
            QCOMPARE(call.controller, first.get());
            QCOMPARE(call.parent, &parent);
            QCOMPARE(call.model, &model);
            QCOMPARE(call.qml, &qml);
        }

        calls.clear();
        QVERIFY(factory.CreateModel(makeController("second"), &parent, &model, &qml));
        QCOMPARE(creatorsCalled(), (QByteArrayList{"declines", "acceptsFirst", "acceptsAll"}));
        QCOMPARE(qml, QStringLiteral("qrc:/all/Panel.qml"));
        QCOMPARE(parent.children().size(), 2);
    }
    void noneAcceptingLeavesTheOutputsAlone()
    {
        CControllerModelFactoryImpl factory;
        factory.RegisterCreator(declines);
        factory.RegisterCreator(acceptsFirst);
        QObject parent;
        QObject* model = &parent;
        QString qml = QStringLiteral("previous");
        QVERIFY(!factory.CreateModel(makeController("other"), &parent, &model, &qml));
        QCOMPARE(creatorsCalled(), (QByteArrayList{"declines", "acceptsFirst"}));
        QCOMPARE(model, &parent);
        QCOMPARE(qml, QStringLiteral("previous"));
        QVERIFY(parent.children().isEmpty());
    }
    void emptyControllerIsPassedOn()
    {
        CControllerModelFactoryImpl factory;
        factory.RegisterCreator(acceptsFirst);
        factory.RegisterCreator(acceptsAll);
        QObject parent;
        QObject* model = nullptr;
        QString qml;
        QVERIFY(factory.CreateModel({}, &parent, &model, &qml));
        QCOMPARE(creatorsCalled(), (QByteArrayList{"acceptsFirst", "acceptsAll"}));
        QCOMPARE(calls.at(1).controller, nullptr);
        QCOMPARE(qml, QStringLiteral("qrc:/all/Panel.qml"));
    }
    void eachCreatorHasItsOwnReference_data()
    {
        QTest::addColumn<bool>("accepted");
        QTest::newRow("accepted") << true;
        QTest::newRow("declined") << false;
    }
    void eachCreatorHasItsOwnReference()
    {
        QFETCH(bool, accepted);
        CControllerModelFactoryImpl factory;
        factory.RegisterCreator(declines);
        factory.RegisterCreator(acceptsFirst);
        QObject parent;
        QObject* model = nullptr;
        QString qml;
        const TSharedPtr<IController> controller = makeController(accepted ? "first" : "other");
        QCOMPARE(factory.CreateModel(controller, &parent, &model, &qml), accepted);
        // The caller's, CreateModel's own, and the creator's.
        QCOMPARE(calls.size(), 2);
        QCOMPARE(calls.at(0).references, 3);
        QCOMPARE(calls.at(1).references, 3);
        QCOMPARE(controller.useCount(), 1);
    }
    void referenceHandedOverIsDropped()
    {
        CControllerModelFactoryImpl factory;
        factory.RegisterCreator(acceptsAll);
        TSharedPtr<IController> controller = makeController("first");
        const TSharedPtr<IController> watch = controller;
        QObject parent;
        QObject* model = nullptr;
        QString qml;
        QVERIFY(factory.CreateModel(std::move(controller), &parent, &model, &qml));
        QCOMPARE(calls.at(0).references, 3);
        QCOMPARE(watch.useCount(), 1);
    }
    void creatorMayKeepAReference()
    {
        CControllerModelFactoryImpl factory;
        factory.RegisterCreator(keeps);
        factory.RegisterCreator(declines);
        QObject* model = nullptr;
        QString qml;
        const TSharedPtr<IController> controller = makeController("first");
        QVERIFY(!factory.CreateModel(controller, nullptr, &model, &qml));
        QCOMPARE(calls.at(0).references, 3);
        QCOMPARE(calls.at(1).references, 4);
        QCOMPARE(controller.useCount(), 2);
        kept.reset();
        QCOMPARE(controller.useCount(), 1);
    }
    void creatorRegisteredDuringCreateModelIsAskedToo()
    {
        CControllerModelFactoryImpl factory;
        registering = &factory;
        factory.RegisterCreator(registersAnother);
        QObject parent;
        QObject* model = nullptr;
        QString qml;
        QVERIFY(factory.CreateModel(makeController("first"), &parent, &model, &qml));
        QCOMPARE(creatorsCalled(), (QByteArrayList{"registersAnother", "acceptsAll"}));
        QVERIFY(!factory.RegisterCreator(acceptsAll));
        registering = nullptr;
    }
};

QTEST_GUILESS_MAIN(tst_CControllerModelFactoryImpl)
#include "tst_ccontrollermodelfactoryimpl.moc"
