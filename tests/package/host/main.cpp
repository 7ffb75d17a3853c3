// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// A host built against the installed kivcamui package. It registers the library, then its
// Main.qml finds the emulated cameras, connects each in turn through a StandaloneModel and
// loads its controller panel. It reports on standard output, one line each:
//   library <the libkivcamui.so it runs with>
//   cameras <count>
//   panel <camera identity, blanks as _> <panel file> [<the panel's summary property>]
//   done
// and exits with 0; or says "failed <why>" and exits with 1. Qt's own messages go to standard
// error.

#include <kiv/Platform.h>
#include <kivcamui/plugin/InitPlugin.h>

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QUrl>

#include <cstdio>

namespace {

// What QML logs with console.info is the report; everything else is Qt's.
void report(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    const bool reportLine = type == QtInfoMsg && qstrcmp(context.category, "qml") == 0;
    std::fprintf(reportLine ? stdout : stderr, "%s\n", qPrintable(message));
    std::fflush(reportLine ? stdout : stderr);
}

} // namespace

int main(int argc, char** argv)
{
    qInstallMessageHandler(report);
    QGuiApplication app(argc, argv);
    kivcamuiInitPlugin();
    const kiv::CStringW library
        = kiv::platform::ModulePath(reinterpret_cast<const void*>(&kivcamuiInitPlugin));
    std::printf("library %ls\n", library.c_str());
    std::fflush(stdout);

    QQmlApplicationEngine engine;
    engine.load(QUrl(QStringLiteral("qrc:/host/Main.qml")));
    if (engine.rootObjects().isEmpty())
        return 1;
    return app.exec();
}
