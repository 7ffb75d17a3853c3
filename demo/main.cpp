// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// The demo host: an imaging application's window around the library. A camera button in the
// toolbar opens the camera finder popup, "Find cameras..." the camera finder dialog; the chosen
// camera is connected by a StandaloneModel and its controller panel shown; "Custom camera..."
// assembles one by hand. Further pages show and edit the found cameras' descriptions, a sensor
// window, and the devices of chosen transports.
//   kivcamui-demo [--page live|cameras|editors|devices] [--screenshot FILE] [--pictures DIR]
//                 [--trace] [--size WIDTHxHEIGHT] [--description-file FILE]
//     --page        the page shown first
//     --screenshot  saves the window once the first search has ended, then quits
//     --pictures    connects a camera and opens the popup, the "Can't Connect" dialog and the
//                   camera finder dialog, saving a picture of each in DIR, then quits; it keeps
//                   its last camera in a scratch folder, never in the user's
//     --trace       reports what happens on standard output, one line per event
//     --size        the window's first size (800x500 at least)
//     --description-file  "Save..." and "Load..." on the Cameras page use FILE instead of asking
//                   (for tests, which cannot drive a file dialog)

#include "DemoHost.h"

#include <kivcamui/plugin/InitPlugin.h>

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QUrl>

#include <cstdio>
#include <memory>

int main(int argc, char** argv)
{
    QGuiApplication app(argc, argv);
    app.setOrganizationName("kivcamui");
    app.setApplicationName("kivcamui-demo");

    QCommandLineParser parser;
    parser.addHelpOption();
    const QCommandLineOption page(
        "page", "Show <page> (live, cameras, editors or devices) first.", "page", "live");
    parser.addOption(page);
    const QCommandLineOption screenshot(
        "screenshot", "Save the window to <file> once the cameras are found, and quit.", "file");
    parser.addOption(screenshot);
    const QCommandLineOption pictures(
        "pictures", "Save pictures of the main views in <folder>, and quit.", "folder");
    parser.addOption(pictures);
    const QCommandLineOption trace("trace", "Report every event on standard output.");
    parser.addOption(trace);
    const QCommandLineOption size(
        "size", "Open the window at <size> (WIDTHxHEIGHT, 800x500 at least).", "size", "1200x840");
    parser.addOption(size);
    const QCommandLineOption descriptionFile("description-file",
        "Save and load the Cameras page's description in <file> instead of asking.", "file");
    parser.addOption(descriptionFile);
    parser.process(app);

    const QStringList sizeParts = parser.value(size).split('x');
    const QSize windowSize
        = sizeParts.size() == 2 ? QSize(sizeParts[0].toInt(), sizeParts[1].toInt()) : QSize();
    if (windowSize.width() < 800 || windowSize.height() < 500) {
        std::fprintf(stderr,
            "The window size \"%s\" is not valid: give it as WIDTHxHEIGHT, "
            "at least 800x500, for example --size 1024x640.\n",
            qPrintable(parser.value(size)));
        return 2;
    }

    // The pictures start from a first run: no last camera, and none left behind.
    std::unique_ptr<QTemporaryDir> scratch;
    if (parser.isSet(pictures)) {
        QDir().mkpath(parser.value(pictures));
        scratch = std::make_unique<QTemporaryDir>();
        qputenv("XDG_DATA_HOME", QFile::encodeName(scratch->path()));
    }
    // The popup keeps the last camera in StandaloneModel's configDir, the application's local
    // data folder, which only the host creates.
    QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation));

    kivcamuiInitPlugin();
    QQuickStyle::setStyle("Fusion");

    DemoHost host({parser.value(page), parser.value(screenshot),
        parser.isSet(pictures) ? QDir(parser.value(pictures)).absolutePath() : QString(),
        parser.isSet(trace), windowSize,
        parser.isSet(descriptionFile)
            ? QUrl::fromLocalFile(QFileInfo(parser.value(descriptionFile)).absoluteFilePath())
            : QUrl()});
    QQmlApplicationEngine engine;
    engine.setInitialProperties({{"host", QVariant::fromValue<QObject*>(&host)}});
    engine.load(QUrl("qrc:/demo/Main.qml"));
    if (engine.rootObjects().isEmpty())
        return 1;
    const int result = app.exec();
    host.trace("quit");
    return result;
}
