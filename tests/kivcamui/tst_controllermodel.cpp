// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kivcamui/plugin/ControllerModel.h>
#include <kivcamui/plugin/InitPlugin.h>

#include <QMetaProperty>
#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQmlExpression>
#include <QSignalSpy>
#include <QTest>
#include <QtQml/qqml.h>

namespace {

// A panel model with a mask that can be switched on and off, as a plugin's would be.
class MaskedModel : public ControllerModel {
    Q_OBJECT

public:
    using ControllerModel::ControllerModel;

    unsigned char hasNucMask() override { return m_mask; }
    void setMask(unsigned char mask)
    {
        m_mask = mask;
        emit hasNucMaskChanged();
    }

private:
    unsigned char m_mask = 1;
};

// Evaluates a QML expression with the model as "model" in its scope.
QVariant evaluate(QQmlEngine& engine, QObject* model, const QString& expression)
{
    QQmlContext context(engine.rootContext());
    context.setContextProperty("model", model);
    QQmlExpression qml(&context, nullptr, expression);
    const QVariant value = qml.evaluate();
    return qml.hasError() ? QVariant(qml.error().toString()) : value;
}

} // namespace

class tst_ControllerModel : public QObject {
    Q_OBJECT

private slots:
    void parentIsPassedOn()
    {
        QObject parent;
        auto* model = new ControllerModel(&parent);
        QCOMPARE(model->parent(), &parent);
        QCOMPARE(parent.children(), QObjectList{model});
        ControllerModel orphan(nullptr);
        QCOMPARE(orphan.parent(), nullptr);
    }
    void baseHasNoMask()
    {
        ControllerModel model(nullptr);
        QCOMPARE(model.hasNucMask(), uchar(0));
        QCOMPARE(model.property("hasNucMask").toUInt(), 0u);
    }
    void hasNucMaskIsAReadOnlyUcharWithItsSignal()
    {
        const QMetaObject& meta = ControllerModel::staticMetaObject;
        QCOMPARE(meta.className(), "ControllerModel");
        QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
        QCOMPARE(meta.propertyCount() - meta.propertyOffset(), 1);
        const QMetaProperty property = meta.property(meta.indexOfProperty("hasNucMask"));
        QVERIFY(property.isValid());
        QCOMPARE(property.metaType(), QMetaType::fromType<uchar>());
        QVERIFY(!property.isWritable());
        QVERIFY(property.hasNotifySignal());
        QCOMPARE(property.notifySignal().methodSignature(), QByteArray("hasNucMaskChanged()"));
    }
    void baseNeverEmits()
    {
        // Everything a host can do with the base leaves its mask, and says nothing...
        ControllerModel model(nullptr);
        QSignalSpy changed(&model, &ControllerModel::hasNucMaskChanged);
        QVERIFY(changed.isValid());
        QVERIFY(!model.setProperty("hasNucMask", 1));
        QQmlEngine engine;
        QVERIFY(evaluate(engine, &model, "model.hasNucMask = 1").toString().contains("read-only"));
        QCOMPARE(evaluate(engine, &model, "model.hasNucMask"), QVariant(0));
        QCOMPARE(model.hasNucMask(), uchar(0));
        QCOMPARE(changed.size(), 0);
        // ...while the same signal, emitted by a subclass, is heard through the base's.
        MaskedModel masked(nullptr);
        QSignalSpy maskChanged(
            static_cast<ControllerModel*>(&masked), &ControllerModel::hasNucMaskChanged);
        masked.setMask(0);
        QCOMPARE(maskChanged.size(), 1);
    }
    void qmlReadsThePlainModelAsFalsy()
    {
        QQmlEngine engine;
        ControllerModel model(nullptr);
        QCOMPARE(evaluate(engine, &model, "model.hasNucMask"), QVariant(0));
        QCOMPARE(evaluate(engine, &model, "model.hasNucMask ? \"yes\" : \"no\""), QVariant("no"));
        QCOMPARE(evaluate(engine, &model, "typeof model.hasNucMask"), QVariant("number"));
    }
    void qmlSeesTheOverrideThroughTheBaseProperty()
    {
        QQmlEngine engine;
        MaskedModel model(nullptr);
        QCOMPARE(model.property("hasNucMask").toUInt(), 1u);
        QCOMPARE(evaluate(engine, &model, "model.hasNucMask"), QVariant(1));
        QCOMPARE(evaluate(engine, &model, "!!model.hasNucMask"), QVariant(true));
        // Through the base class's pointer, as the factory hands it out.
        ControllerModel* base = &model;
        QCOMPARE(base->hasNucMask(), uchar(1));
    }
    void qmlBindingFollowsTheSignal()
    {
        QQmlEngine engine;
        MaskedModel model(nullptr);
        engine.rootContext()->setContextProperty("model", &model);
        QQmlComponent component(&engine);
        component.setData(
            "import QtQml\nQtObject { property bool mask: !!model.hasNucMask }", QUrl());
        std::unique_ptr<QObject> object(component.create());
        QVERIFY2(object, qPrintable(component.errorString()));
        QCOMPARE(object->property("mask").toBool(), true);
        model.setMask(0);
        QCOMPARE(object->property("mask").toBool(), false);
        model.setMask(255);
        QCOMPARE(object->property("mask").toBool(), true);
    }
    void isNotAQmlType()
    {
        kivcamuiInitPlugin();
        QCOMPARE(qmlTypeId("kivcamui", 1, 0, "ControllerModel"), -1);
        QQmlEngine engine;
        QQmlComponent component(&engine);
        component.setData("import kivcamui 1.0\nControllerModel {}", QUrl());
        QVERIFY(component.isError());
        QVERIFY2(component.errorString().contains("ControllerModel is not a type"),
            qPrintable(component.errorString()));
    }
};

QTEST_MAIN(tst_ControllerModel)
#include "tst_controllermodel.moc"
