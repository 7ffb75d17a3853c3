// The demo host: a window that finds the emulated cameras and lets you look at and edit their
// descriptions and device parameters, on a second page, the selected camera's sensor window
// and its place on a display, on a third, the devices of chosen transports; and a button that
// assembles a camera by hand in the custom camera dialog.
//   kivcamui-demo [--page cameras|editors|devices|custom] [--screenshot FILE]
//     --page        the page shown first; custom opens the custom camera dialog
//     --screenshot  saves the window, with the first camera selected, once the first search
//                   has ended (with --page custom: the dialog assembling a custom camera, once
//                   its search has ended), then quits

#include <kivcam/CInterfaces.h>
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
    const QCommandLineOption screenshot(
        "screenshot", "Save the window to <file> and quit.", "file");
    parser.addOption(screenshot);
    const QCommandLineOption page("page",
        "Show <page> (cameras, editors or devices) first, or open the custom camera dialog "
        "(custom).",
        "page", "cameras");
    parser.addOption(page);
    parser.process(app);

    kivcamuiInitPlugin();
    QQuickStyle::setStyle("Fusion");

    QQmlApplicationEngine engine;
    const QString fontFile = QStandardPaths::locate(
        QStandardPaths::GenericDataLocation, "fonts/truetype/font-awesome/fontawesome-webfont.ttf");
    engine.rootContext()->setContextProperty(
        "iconFontUrl", fontFile.isEmpty() ? QUrl() : QUrl::fromLocalFile(fontFile));
    engine.rootContext()->setContextProperty("screenshotFile", parser.value(screenshot));
    engine.rootContext()->setContextProperty("startPage", parser.value(page));
    QStringList transports;
    for (int i = 0; i < kiv::cam::interfaces()->interfaceCount(); ++i)
        transports << QString::fromUtf8(kiv::cam::interfaces()->interfaceAt(i)->name.c_str());
    engine.rootContext()->setContextProperty("transportNames", transports);
    engine.load(QUrl("qrc:/demo/Main.qml"));
    if (engine.rootObjects().isEmpty())
        return 1;
    return app.exec();
}
