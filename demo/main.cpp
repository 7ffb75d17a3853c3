// The demo host: a window that finds the emulated cameras and lets you look at and edit their
// descriptions and device parameters.
//   kivcamui-demo [--screenshot FILE]   with --screenshot, saves the window once the first
//                                       search has ended, then quits

#include <kivcamui/plugin/InitPlugin.h>

#include <QCommandLineParser>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQmlContext>
#include <QQuickStyle>
#include <QStandardPaths>
#include <QUrl>

int main(int argc, char** argv)
{
    QGuiApplication app(argc, argv);
    app.setOrganizationName("kivcamui");
    app.setApplicationName("kivcamui-demo");

    QCommandLineParser parser;
    parser.addHelpOption();
    const QCommandLineOption screenshot("screenshot", "Save the window to <file> and quit.", "file");
    parser.addOption(screenshot);
    parser.process(app);

    kivcamuiInitPlugin();
    QQuickStyle::setStyle("Fusion");

    QQmlApplicationEngine engine;
    const QString fontFile =
        QStandardPaths::locate(QStandardPaths::GenericDataLocation,
                               "fonts/truetype/font-awesome/fontawesome-webfont.ttf");
    engine.rootContext()->setContextProperty("iconFontUrl",
                                             fontFile.isEmpty() ? QUrl() : QUrl::fromLocalFile(fontFile));
    engine.rootContext()->setContextProperty("screenshotFile", parser.value(screenshot));
    engine.load(QUrl("qrc:/demo/Main.qml"));
    if (engine.rootObjects().isEmpty())
        return 1;
    return app.exec();
}
