// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// The test host of the controller UI plugin scan. The scan runs once per process, in the folder
// of the loaded libkivcamui.so, so each scenario of tst_icontrollermodelfactory runs this host
// in a process of its own, with a copy of the library and the scenario's files in a folder of
// their own. The host runs the scan and prints, as one JSON object on standard output:
//   library        the libkivcamui.so it actually used
//   messages       the debug lines of the scan, in order
//   loaded         the files of the library's folder that are loaded when the scan is over
//   plugins        for each loaded test plugin that counts: its initialisations, and whether the
//                  factory it got from inside its entry (and from a second thread) is the one
//   sameInstance   whether a second call gives the same factory
//   workingFolder  the working folder before and after the scan
//   panel          the panel the registered creators give for a controller ("" for none)

#include <kiv/Platform.h>
#include <kivcamui/plugin/IControllerModelFactory.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <dlfcn.h>

using kiv::cam::ui::controllerModelFactory;
using kiv::cam::ui::IControllerModelFactory;

namespace {

QJsonArray messages;

void capture(const char* text)
{
    messages.append(QString::fromUtf8(text));
}

QString toQString(const kiv::CStringW& text)
{
    return QString::fromWCharArray(text.c_str(), text.length());
}

// What a loaded plugin that counts tells about its initialisation.
QJsonObject pluginReport(void* library, IControllerModelFactory* factory)
{
    using Count = int (*)();
    using Pointer = void* (*)();
    const auto initCalls = reinterpret_cast<Count>(dlsym(library, "kivTestInitCalls"));
    const auto seen = reinterpret_cast<Pointer>(dlsym(library, "kivTestFactorySeen"));
    const auto seenFromThread
        = reinterpret_cast<Pointer>(dlsym(library, "kivTestFactorySeenFromThread"));
    if (!initCalls || !seen || !seenFromThread)
        return {};
    return {{"initCalls", initCalls()}, {"sawInstance", seen() == factory},
        {"sawInstanceFromThread", seenFromThread() == factory}};
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    kiv::platform::SetDebugOutputHandler(capture);

    const QString folderBefore = QDir::currentPath();
    IControllerModelFactory* factory = controllerModelFactory();
    const QString folderAfter = QDir::currentPath();
    IControllerModelFactory* again = controllerModelFactory();

    const QString library = toQString(
        kiv::platform::ModulePath(reinterpret_cast<const void*>(&controllerModelFactory)));
    QJsonArray loaded;
    QJsonObject plugins;
    const QFileInfoList files = QFileInfo(library).dir().entryInfoList(QDir::Files, QDir::Name);
    for (const QFileInfo& file : files) {
        // Asks for a loaded library without loading it.
        void* handle = dlopen(QFile::encodeName(file.absoluteFilePath()), RTLD_NOW | RTLD_NOLOAD);
        if (!handle)
            continue;
        loaded.append(file.fileName());
        const QJsonObject plugin = pluginReport(handle, factory);
        if (!plugin.isEmpty())
            plugins.insert(file.fileName(), plugin);
        dlclose(handle);
    }

    QObject* model = nullptr;
    QString qml;
    const bool created = factory->CreateModel({}, nullptr, &model, &qml);
    delete model;

    const QJsonObject report{{"library", library}, {"messages", messages}, {"loaded", loaded},
        {"plugins", plugins}, {"sameInstance", factory == again},
        {"workingFolder", QJsonArray{folderBefore, folderAfter}},
        {"panel", created ? qml : QString()}};
    QFile out;
    if (!out.open(stdout, QIODevice::WriteOnly))
        return 1;
    out.write(QJsonDocument(report).toJson());
    return 0;
}
