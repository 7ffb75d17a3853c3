// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// Writes what the QML types registered at run time look like, read from the registration and the
// types' meta-objects, so that neither can drift from the code:
//
//   qml-types --markdown FILE    the reference of the module kivcamui 1.0 (docs/qml-types.md)
//   qml-types --check FILE       fails, saying how to regenerate it, when FILE is not that text
//   qml-types --qmltypes FOLDER  FOLDER/<module>/qmldir and <module>.qmltypes for the modules
//                                kivcamui 1.0, kivui 1.0 and the controller UI plugins'
//                                kivcamuiEmulator 1.0 and kivcamuiGenICam 1.0, the type
//                                information qmllint needs
//
// The modules are registered as a host registers them: kivcamuiInitPlugin(), then the controller
// UI plugins beside the library, loaded by the controller model factory.

#include <kivcamui/device/DeviceParameter.h>
#include <kivcamui/device/InterfaceModel.h>
#include <kivcamui/plugin/ControllerModel.h>
#include <kivcamui/plugin/IControllerModelFactory.h>
#include <kivcamui/plugin/InitPlugin.h>
#include <kivui/ObjectListModel.h>

#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QMetaMethod>
#include <QMetaObject>
#include <QMetaProperty>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QSaveFile>
#include <QTextStream>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

// A type as QML sees it. A registered type has a name in its module; a type that QML reaches
// only as a property value or a result has none.
struct SQmlType {
    QString module;
    QString name;
    const QMetaObject* meta = nullptr;
    bool creatable = false;
    QString reason; // why QML cannot create it
};

// The registered names of each module, in registration order. Qt has no public way to list the
// types of a module, so they are named here, and each must be registered under its name.
struct SModule {
    QString uri;
    QStringList names;
    QStringList dependencies;
};

const QList<SModule> modules{
    {"kivcamui",
        {"StandaloneModel", "CameraFinderModel", "CameraInfo", "WindowEditor", "DisplayEditor",
            "DeviceFinderModel", "DeviceInfo", "CustomCameraSelectorModel", "CameraModel"},
        {"QtQuick", "kivui"}},
    {"kivui", {"DialogButtonBoxHelper"}, {"QtQml"}},
    {"kivcamuiEmulator", {"FrameView", "EmulatorControllerModel"}, {"QtQuick", "kivcamui"}},
    {"kivcamuiGenICam", {"FrameView", "GenICamControllerModel", "GenICamFeatureModel", "LivePicture"},
        {"QtQuick", "kivcamui"}},
};

const QString regenerate = QStringLiteral("cmake --build build --target qml-types && "
                                          "build/bin/qml-types --markdown docs/qml-types.md");

[[noreturn]] void fail(const QString& message)
{
    std::fprintf(stderr, "qml-types: %s\n", qPrintable(message));
    std::exit(1);
}

// A type of a module, not (yet) registered.
SQmlType typeOf(const QString& module, const QMetaObject* meta)
{
    SQmlType type;
    type.module = module;
    type.meta = meta;
    return type;
}

// The types QML reaches without their being registered, by module.
QList<SQmlType> reachedTypes()
{
    return {typeOf("kivcamui", &ControllerModel::staticMetaObject),
        typeOf("kivcamui", &DeviceParameter::staticMetaObject),
        typeOf("kivcamui", &InterfaceModel::staticMetaObject),
        typeOf("kivui", &ObjectListModel::staticMetaObject)};
}

// The probe's property of the type of a name.
QString probeProperty(const QString& name)
{
    return name.at(0).toLower() + name.mid(1);
}

// The registered types of a module, with the classes the QML engine has registered under their
// names: a QML object with a property of each type tells its meta-type. Whether a type is
// creatable, and why not, is what compiling a QML object of that type says.
QList<SQmlType> registeredTypes(QQmlEngine& engine, const SModule& module)
{
    const QString import = "import " + module.uri + " 1.0\n";
    QString probeSource = import + "import QtQml\nQtObject {\n";
    for (const QString& name : module.names)
        probeSource += "    property " + name + " " + probeProperty(name) + "\n";
    probeSource += "}\n";
    QQmlComponent probeComponent(&engine);
    probeComponent.setData(probeSource.toUtf8(), QUrl());
    const std::unique_ptr<QObject> probe(probeComponent.create());
    if (!probe)
        fail("the module " + module.uri + " is not registered: " + probeComponent.errorString());

    QList<SQmlType> types;
    for (const QString& name : module.names) {
        const QMetaObject* probeMeta = probe->metaObject();
        const QMetaType metaType
            = probeMeta->property(probeMeta->indexOfProperty(probeProperty(name).toUtf8()))
                  .metaType();
        SQmlType type = typeOf(module.uri, metaType.metaObject());
        type.name = name;
        if (!type.meta)
            fail(module.uri + " " + name + " is not an object type");
        QQmlComponent component(&engine);
        component.setData((import + name + " {}\n").toUtf8(), QUrl());
        type.creatable = !component.isError();
        if (!type.creatable)
            type.reason = component.errors().constFirst().description();
        types.append(type);
    }
    return types;
}

// Qt's own classes begin with a Q and a capital.
bool isQtClass(const QMetaObject* meta)
{
    const QByteArray name = meta->className();
    return name.size() > 1 && name.at(0) == 'Q' && QChar(name.at(1)).isUpper();
}

// The first of Qt's classes that the type derives from: the members of the classes below it are
// the type's own.
const QMetaObject* qtBase(const QMetaObject* meta)
{
    while (meta && !isQtClass(meta))
        meta = meta->superClass();
    return meta;
}

QString access(const QMetaProperty& property)
{
    QString text = property.isWritable() ? "read/write" : "read";
    if (property.isConstant())
        text += ", constant";
    return text;
}

QString signature(const QMetaMethod& method, bool withResult)
{
    QStringList parameters;
    const QList<QByteArray> types = method.parameterTypes();
    const QList<QByteArray> names = method.parameterNames();
    for (qsizetype i = 0; i < types.size(); ++i)
        parameters << QString::fromUtf8(
            types.at(i) + (names.at(i).isEmpty() ? "" : " " + names.at(i)));
    QString text = method.name() + "(" + parameters.join(", ") + ")";
    if (withResult)
        text = QString::fromUtf8(method.typeName()) + " " + text;
    return text;
}

// Signals, and the methods QML may call: invokables and public slots.
QList<QMetaMethod> methods(const QMetaObject* meta, int offset, QMetaMethod::MethodType type)
{
    QList<QMetaMethod> list;
    for (int i = offset; i < meta->methodCount(); ++i) {
        const QMetaMethod method = meta->method(i);
        const bool callable = method.methodType() == QMetaMethod::Method
            || method.methodType() == QMetaMethod::Slot;
        const bool wanted = type == QMetaMethod::Signal
            ? method.methodType() == QMetaMethod::Signal
            : callable && method.access() == QMetaMethod::Public;
        if (wanted)
            list.append(method);
    }
    return list;
}

// A list of signals (without result) or invokables (with it), when there are any.
void writeMarkdownMethods(QTextStream& out, const char* heading, const QList<QMetaMethod>& list)
{
    if (list.isEmpty())
        return;
    out << heading << ":\n\n";
    for (const QMetaMethod& method : list)
        out << "- `" << signature(method, method.methodType() != QMetaMethod::Signal) << "`\n";
    out << "\n";
}

void writeMarkdownType(QTextStream& out, const SQmlType& type)
{
    const QMetaObject* meta = type.meta;
    const QMetaObject* base = qtBase(meta);
    out << "## " << (type.name.isEmpty() ? QString::fromUtf8(meta->className()) : type.name)
        << "\n\n";
    out << "C++ class `" << meta->className() << "`, based on `" << base->className() << "`. ";
    if (type.name.isEmpty())
        out << "Not registered: QML reaches it as a property value or a result.\n\n";
    else if (type.creatable)
        out << "Creatable in QML.\n\n";
    else
        out << "Not creatable in QML: \"" << type.reason << "\".\n\n";

    if (meta->enumeratorCount() > base->enumeratorCount()) {
        out << "| enumeration | values |\n|---|---|\n";
        for (int i = base->enumeratorCount(); i < meta->enumeratorCount(); ++i) {
            const QMetaEnum enumeration = meta->enumerator(i);
            QStringList values;
            for (int k = 0; k < enumeration.keyCount(); ++k)
                values << QString("`%1` = %2").arg(enumeration.key(k)).arg(enumeration.value(k));
            out << "| `" << enumeration.name() << "` | " << values.join(", ") << " |\n";
        }
        out << "\n";
    }
    if (meta->propertyCount() > base->propertyCount()) {
        out << "| property | type | access | notify |\n|---|---|---|---|\n";
        for (int i = base->propertyCount(); i < meta->propertyCount(); ++i) {
            const QMetaProperty property = meta->property(i);
            const QMetaMethod notify = property.notifySignal();
            out << "| `" << property.name() << "` | `" << property.typeName() << "` | "
                << access(property) << " | "
                << (notify.isValid() ? "`" + notify.name() + "`" : "\u2013") << " |\n";
        }
        out << "\n";
    }
    writeMarkdownMethods(out, "Signals", methods(meta, base->methodCount(), QMetaMethod::Signal));
    writeMarkdownMethods(
        out, "Invokables", methods(meta, base->methodCount(), QMetaMethod::Method));
}

QString markdown(const QList<SQmlType>& registered, const QList<SQmlType>& reached)
{
    QString text;
    QTextStream out(&text);
    out << "# QML types of kivcamui 1.0\n\n"
        << "The types that `kivcamuiInitPlugin()` registers in the module `kivcamui` 1.0, in the "
           "order of registration, then the types that QML reaches only as property values and "
           "results. Members inherited from Qt's classes are left out.\n\n"
        << "This file is generated from the meta-objects by `tools/qml-types`; a test checks it. "
           "Regenerate it after changing a type:\n\n"
        << "```sh\n"
        << regenerate << "\n```\n\n";
    for (const SQmlType& type : registered)
        writeMarkdownType(out, type);
    for (const SQmlType& type : reached)
        writeMarkdownType(out, type);
    out.flush();
    return text.trimmed() + "\n";
}

// The types of Qt that the QML type information of Qt 6.4 does not describe, written as what
// QML makes of them: numbers, or an opaque value.
const QHash<QByteArray, QByteArray> undescribedTypes{{"uchar", "int"}, {"ushort", "int"},
    {"uint", "double"}, {"qlonglong", "double"}, {"qulonglong", "double"}, {"QImage", "QVariant"}};

// qmltypes: the type of a member as a type name and whether it is a pointer to it.
QString typeEntry(QByteArray name)
{
    const bool pointer = name.endsWith('*');
    if (pointer)
        name.chop(1);
    name = undescribedTypes.value(name, name);
    return "type: \"" + QString::fromUtf8(name) + "\"" + (pointer ? "; isPointer: true" : "");
}

QString propertyTypeEntry(const QMetaProperty& property, const QMetaObject* owner)
{
    if (!property.isEnumType())
        return typeEntry(property.typeName());
    // An enumeration of the class itself goes by its name, one of another class with its scope.
    const QMetaEnum enumeration = property.enumerator();
    const QByteArray scope = enumeration.scope();
    return typeEntry(scope == owner->className() ? QByteArray(enumeration.name())
                                                 : scope + "::" + enumeration.name());
}

void writeMethod(QTextStream& out, const QMetaMethod& method, const char* kind)
{
    out << "        " << kind << " {\n            name: \"" << method.name() << "\"\n";
    if (method.returnMetaType().id() != QMetaType::Void)
        out << "            " << typeEntry(method.typeName()) << "\n";
    const QList<QByteArray> types = method.parameterTypes();
    const QList<QByteArray> names = method.parameterNames();
    for (qsizetype i = 0; i < types.size(); ++i)
        out << "            Parameter { name: \"" << names.at(i) << "\"; " << typeEntry(types.at(i))
            << " }\n";
    out << "        }\n";
}

// One component: the class's own members, over its base class.
void writeComponent(QTextStream& out, const SQmlType& type)
{
    const QMetaObject* meta = type.meta;
    const QMetaObject* super = meta->superClass();
    out << "    Component {\n"
        << "        name: \"" << meta->className() << "\"\n"
        << "        accessSemantics: \"reference\"\n"
        << "        prototype: \"" << super->className() << "\"\n";
    if (!type.name.isEmpty()) {
        out << "        exports: [\"" << type.module << "/" << type.name << " 1.0\"]\n"
            << "        exportMetaObjectRevisions: [256]\n";
        if (!type.creatable)
            out << "        isCreatable: false\n";
    }
    const int attached = meta->indexOfClassInfo("QML.Attached");
    if (attached >= 0)
        out << "        attachedType: \"" << meta->classInfo(attached).value() << "\"\n";
    for (int i = meta->enumeratorOffset(); i < meta->enumeratorCount(); ++i) {
        const QMetaEnum enumeration = meta->enumerator(i);
        QStringList keys;
        for (int k = 0; k < enumeration.keyCount(); ++k)
            keys << "\"" + QString::fromUtf8(enumeration.key(k)) + "\"";
        out << "        Enum {\n            name: \"" << enumeration.name()
            << "\"\n            values: [" << keys.join(", ") << "]\n        }\n";
    }
    for (int i = meta->propertyOffset(); i < meta->propertyCount(); ++i) {
        const QMetaProperty property = meta->property(i);
        out << "        Property {\n            name: \"" << property.name() << "\"\n"
            << "            " << propertyTypeEntry(property, meta) << "\n";
        if (!property.isWritable())
            out << "            isReadonly: true\n";
        if (property.hasNotifySignal())
            out << "            notify: \"" << property.notifySignal().name() << "\"\n";
        out << "            index: " << i - meta->propertyOffset() << "\n        }\n";
    }
    for (const QMetaMethod& method : methods(meta, meta->methodOffset(), QMetaMethod::Signal))
        writeMethod(out, method, "Signal");
    for (const QMetaMethod& method : methods(meta, meta->methodOffset(), QMetaMethod::Method))
        writeMethod(out, method, "Method");
    out << "    }\n";
}

// Fails at the first line where the file differs from the reference, saying how to regenerate it.
void check(const QString& path, const QString& reference)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        fail("cannot read " + path);
    const QStringList committed = QString::fromUtf8(file.readAll()).split('\n');
    const QStringList generated = reference.split('\n');
    for (qsizetype i = 0; i < qMax(committed.size(), generated.size()); ++i) {
        const QString was = committed.value(i, "(end of file)");
        const QString is = generated.value(i, "(end of file)");
        if (was != is)
            fail(QString("%1 is not what the types say; first difference, line %2:\n"
                         "  file:      %3\n  generated: %4\nRegenerate it: %5")
                     .arg(path)
                     .arg(i + 1)
                     .arg(was, is, regenerate));
    }
}

void writeFile(const QString& path, const QString& text)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0 || !file.commit())
        fail("cannot write " + path + ": " + file.errorString());
}

// FOLDER/<uri>/qmldir and <uri>.qmltypes, with a component for each type of the module and for
// each of its base classes that is not Qt's.
void writeQmltypes(const QString& folder, const SModule& module, const QList<SQmlType>& types)
{
    QList<SQmlType> components;
    QList<const QMetaObject*> written;
    for (const SQmlType& type : types) {
        if (type.module != module.uri)
            continue;
        components.append(type);
        written.append(type.meta);
    }
    for (qsizetype i = 0; i < components.size(); ++i) {
        const QMetaObject* super = components.at(i).meta->superClass();
        if (!isQtClass(super) && !written.contains(super)) {
            components.append(typeOf(module.uri, super));
            written.append(super);
        }
    }

    QString text;
    QTextStream out(&text);
    out << "import QtQuick.tooling 1.2\n\n"
        << "// Generated by tools/qml-types from the registration of the module.\n\n"
        << "Module {\n";
    for (const SQmlType& component : components)
        writeComponent(out, component);
    out << "}\n";
    out.flush();

    QString qmldir = "module " + module.uri + "\ntypeinfo " + module.uri + ".qmltypes\n";
    for (const QString& dependency : module.dependencies)
        qmldir += "depends " + dependency + "\n";

    const QDir moduleFolder(QDir(folder).filePath(module.uri));
    if (!moduleFolder.mkpath("."))
        fail("cannot make " + moduleFolder.path());
    writeFile(moduleFolder.filePath("qmldir"), qmldir);
    writeFile(moduleFolder.filePath(module.uri + ".qmltypes"), text);
}

} // namespace

int main(int argc, char** argv)
{
    // Nothing is shown; the types only need a GUI application.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription("Writes the reference and the qmltypes of the QML modules.");
    parser.addHelpOption();
    const QCommandLineOption markdownOption("markdown", "Write the reference to <file>.", "file");
    const QCommandLineOption checkOption(
        "check", "Check that <file> is the reference as it is generated.", "file");
    const QCommandLineOption qmltypesOption(
        "qmltypes", "Write qmldir and qmltypes files into <folder>.", "folder");
    parser.addOptions({markdownOption, checkOption, qmltypesOption});
    parser.process(app);
    if (!parser.isSet(markdownOption) && !parser.isSet(checkOption)
        && !parser.isSet(qmltypesOption))
        parser.showHelp(2);

    kivcamuiInitPlugin();
    kiv::cam::ui::controllerModelFactory();

    QQmlEngine engine;
    QList<SQmlType> types;
    for (const SModule& module : modules)
        types += registeredTypes(engine, module);
    const QList<SQmlType> reached = reachedTypes();
    QList<SQmlType> documented;
    for (const SQmlType& type : types) {
        if (type.module == "kivcamui")
            documented.append(type);
    }
    const QString reference = markdown(documented, reached);

    if (parser.isSet(markdownOption))
        writeFile(parser.value(markdownOption), reference);
    if (parser.isSet(checkOption))
        check(parser.value(checkOption), reference);
    if (parser.isSet(qmltypesOption)) {
        for (const SModule& module : modules)
            writeQmltypes(parser.value(qmltypesOption), module, types + reached);
    }
    return 0;
}
