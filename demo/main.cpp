// The demo host: an imaging application's window around the library. A camera button in the
// toolbar opens the camera finder popup, "Find cameras..." the camera finder dialog; the chosen
// camera is connected by a StandaloneModel and its controller panel shown; "Custom camera..."
// assembles one by hand. Further pages show and edit the found cameras' descriptions, a sensor
// window, and the devices of chosen transports.
//   kivcamui-demo [--page live|cameras|editors|devices] [--screenshot FILE] [--pictures DIR]
//                 [--trace]
//     --page        the page shown first
//     --screenshot  saves the window once the first search has ended, then quits
//     --pictures    connects a camera and opens the popup, the "Can't Connect" dialog and the
//                   camera finder dialog, saving a picture of each in DIR, then quits; it keeps
//                   its last camera in a scratch folder, never in the user's
//     --trace       reports what happens on standard output, one line per event

#include "DemoHost.h"

#include <kivcamui/plugin/InitPlugin.h>

#include <QCommandLineParser>
#include <QDir>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QUrl>

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
    parser.process(app);

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
        parser.isSet(trace)});
    QQmlApplicationEngine engine;
    engine.setInitialProperties({{"host", QVariant::fromValue<QObject*>(&host)}});
    engine.load(QUrl("qrc:/demo/Main.qml"));
    if (engine.rootObjects().isEmpty())
        return 1;
    const int result = app.exec();
    host.trace("quit");
    return result;
}
