// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// The controller UI plugin scan of controllerModelFactory(). It runs once per process in the
// folder of the loaded libkivcamui.so, so each scenario gets a folder of its own holding a real
// copy of the library, laid out as installed (libkivcamui.so.1.0.0 with its links
// libkivcamui.so.1 and libkivcamui.so), and the scenario's files, and runs the scan host there,
// with that folder first on LD_LIBRARY_PATH (the host's run path yields to it) and the
// scenario's KIVCAMUI_WHITELIST and KIVCAMUI_BLACKLIST. The host reports what the scan did (see
// plugins/scanhost.cpp).

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#if !defined(KIVCAMUI_LIBRARY) || !defined(SCAN_HOST) || !defined(GOOD_PLUGIN)                     \
    || !defined(FAILING_PLUGIN) || !defined(NO_ENTRY_PLUGIN)
#error "the build names the library, the scan host and the test plugins"
#endif

namespace {

// A file of a scenario's folder: a name and what it holds.
enum EContent { GOOD, FAILING, NO_ENTRY, TEXT };
using Files = QList<std::pair<QString, EContent>>;

} // namespace

Q_DECLARE_METATYPE(Files)

namespace {

const QString good = QStringLiteral("libkivcamuiTestGood.so");
const QString failing = QStringLiteral("libkivcamuiTestFailing.so");
const QString noEntry = QStringLiteral("libkivcamuiTestNoEntry.so");
const QString text = QStringLiteral("libkivcamuiTestText.so");
const QString library = QStringLiteral("libkivcamui.so");
// The library's file, and the link by which programs load it (its SONAME).
const QString libraryFile = QStringLiteral("libkivcamui.so.1.0.0");
const QString librarySoname = QStringLiteral("libkivcamui.so.1");
const QString goodPanel = QStringLiteral("qrc:/kivcamuiTestGood/Panel.qml");

// One of each kind, and a library whose name the scan does not look at.
const Files everyKind{{good, GOOD}, {failing, FAILING}, {noEntry, NO_ENTRY}, {text, TEXT},
    {QStringLiteral("kivcamuiTestOther.so"), GOOD}};

QString failedToInitialize(const QString& name)
{
    return "Failed to initialize plugin: " + name + "\n";
}
QString missingInit(const QString& name)
{
    return "Warning missing init function for plugin: " + name + "\n";
}
QString failedToLoad(const QString& name)
{
    return "Failed to load library: " + name + "\n";
}

bool place(const QDir& folder, const QString& name, EContent content)
{
    const QString target = folder.filePath(name);
    switch (content) {
    case GOOD:
        return QFile::copy(GOOD_PLUGIN, target);
    case FAILING:
        return QFile::copy(FAILING_PLUGIN, target);
    case NO_ENTRY:
        return QFile::copy(NO_ENTRY_PLUGIN, target);
    case TEXT: {
        QFile file(target);
        return file.open(QIODevice::WriteOnly) && file.write("not a library\n") > 0;
    }
    }
    return false;
}

QStringList strings(const QJsonValue& value)
{
    QStringList list;
    for (const QJsonValue& item : value.toArray())
        list << item.toString();
    return list;
}

} // namespace

class tst_IControllerModelFactory : public QObject {
    Q_OBJECT

private:
    QJsonObject m_report;

    // Runs the scan host on a fresh copy of the library and the files; a null pattern leaves its
    // variable unset. Fills m_report.
    void scan(const Files& files, const QString& whitelist, const QString& blacklist)
    {
        // Beside the test, not in the system's temporary folder, which may forbid running code.
        const QTemporaryDir scratch(
            QDir(QCoreApplication::applicationDirPath()).filePath("plugin-scan-XXXXXX"));
        QVERIFY(scratch.isValid());
        const QDir folder(scratch.path());
        QVERIFY(QFile::copy(KIVCAMUI_LIBRARY, folder.filePath(libraryFile)));
        QVERIFY(QFile::link(folder.filePath(libraryFile), folder.filePath(librarySoname)));
        QVERIFY(QFile::link(folder.filePath(librarySoname), folder.filePath(library)));
        for (const auto& [name, content] : files)
            QVERIFY2(place(folder, name, content), qPrintable(name));

        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove("KIVCAMUI_WHITELIST");
        environment.remove("KIVCAMUI_BLACKLIST");
        if (!whitelist.isNull())
            environment.insert("KIVCAMUI_WHITELIST", whitelist);
        if (!blacklist.isNull())
            environment.insert("KIVCAMUI_BLACKLIST", blacklist);
        const QString searchPath = environment.value("LD_LIBRARY_PATH");
        environment.insert("LD_LIBRARY_PATH",
            searchPath.isEmpty() ? folder.path() : folder.path() + ":" + searchPath);

        QProcess host;
        host.setProcessEnvironment(environment);
        host.setWorkingDirectory(folder.path());
        host.start(SCAN_HOST, {});
        QVERIFY2(host.waitForFinished(120000), "the scan host hangs");
        const QByteArray errors = host.readAllStandardError();
        QVERIFY2(
            host.exitStatus() == QProcess::NormalExit && host.exitCode() == 0, errors.constData());
        QJsonParseError parseError;
        m_report = QJsonDocument::fromJson(host.readAllStandardOutput(), &parseError).object();
        QVERIFY2(parseError.error == QJsonParseError::NoError, errors.constData());

        // Always the copy, never the library of the build.
        QCOMPARE(m_report["library"].toString(),
            QFileInfo(folder.filePath(library)).canonicalFilePath());
        QVERIFY(m_report["sameInstance"].toBool());
        const QStringList workingFolder = strings(m_report["workingFolder"]);
        QCOMPARE(workingFolder.size(), 2);
        QCOMPARE(workingFolder.at(1), workingFolder.at(0));
        QVERIFY(strings(m_report["loaded"]).contains(library));
    }

    QStringList messages() const { return strings(m_report["messages"]); }
    // The loaded files of the folder but the library itself (by any of its names), sorted.
    QStringList loadedPlugins() const
    {
        QStringList loaded = strings(m_report["loaded"]);
        loaded.removeIf([](const QString& name) { return name.startsWith(library); });
        loaded.sort();
        return loaded;
    }
    QString panel() const { return m_report["panel"].toString(); }

private slots:
    void cleanup() { m_report = {}; }

    void scan_data()
    {
        QTest::addColumn<Files>("files");
        QTest::addColumn<QString>("whitelist");
        QTest::addColumn<QString>("blacklist");
        QTest::addColumn<QStringList>("messages");
        QTest::addColumn<QStringList>("loaded");
        QTest::addColumn<QString>("panel");

        const QStringList everyMessage{
            failedToInitialize(failing), missingInit(noEntry), failedToLoad(text)};
        // In listing order (by name, letter case ignored), with file names, never paths.
        QTest::newRow("every kind") << everyKind << QString() << QString() << everyMessage
                                    << QStringList{good, noEntry} << goodPanel;
        QTest::newRow("only the library")
            << Files{} << QString() << QString() << QStringList{} << QStringList{} << QString();
        QTest::newRow("the library in other letter cases")
            << Files{{"LIBKIVCAMUI.SO", GOOD}, {"LibKivCamUi.so", GOOD}} << QString() << QString()
            << QStringList{} << QStringList{} << QString();
        QTest::newRow("whitelist") << everyKind << "libkivcamuiTestG*" << QString() << QStringList{}
                                   << QStringList{good} << goodPanel;
        QTest::newRow("whitelist ignores case")
            << everyKind << "LIBKIVCAMUITESTGOOD.SO" << QString() << QStringList{}
            << QStringList{good} << goodPanel;
        QTest::newRow("blacklist") << everyKind << QString() << "*Text*"
                                   << QStringList{failedToInitialize(failing), missingInit(noEntry)}
                                   << QStringList{good, noEntry} << goodPanel;
        // NoEntry matches both, Good only the whitelist, the others neither.
        QTest::newRow("both") << everyKind << "libkivcamuiTest?o*.so"
                              << "*Entry*" << QStringList{} << QStringList{good} << goodPanel;
        QTest::newRow("empty whitelist admits nothing")
            << everyKind << "" << QString() << QStringList{} << QStringList{} << QString();
        QTest::newRow("empty blacklist excludes nothing")
            << everyKind << QString() << "" << everyMessage << QStringList{good, noEntry}
            << goodPanel;

        // A pattern with separators in it is one pattern, matched against the whole name.
        const QString a = QStringLiteral("libkivcamuiTestA.so");
        const QString b = QStringLiteral("libkivcamuiTestB.so");
        const QString ab = QStringLiteral("libkivcamuiTestA;B.so");
        const Files separated{{a, GOOD}, {b, GOOD}, {ab, GOOD}};
        QTest::newRow("whitelist with a separator")
            << separated << ab << QString() << QStringList{} << QStringList{ab} << goodPanel;
        QTest::newRow("whitelist of names with a separator")
            << separated << a + ";" + b << QString() << QStringList{} << QStringList{} << QString();
        QTest::newRow("blacklist of names with separators")
            << separated << QString() << a + ";" + b + "," + ab << QStringList{}
            << QStringList{a, ab, b} << goodPanel;

        // Only names that end in ".so" are plugins: the library's versioned file and links, and
        // those of any other versioned library, are not.
        QTest::newRow("versioned names")
            << Files{{good, GOOD}, {"libkivcamuiTestA.so.1", GOOD}} << QString() << QString()
            << QStringList{} << QStringList{good} << goodPanel;

        const QString umlaut = QStringLiteral("libkivcamuiTest\u00c4.so");
        QTest::newRow("name outside ASCII")
            << Files{{umlaut, TEXT}} << QString() << QString() << QStringList{failedToLoad(umlaut)}
            << QStringList{} << QString();
    }
    void scan()
    {
        QFETCH(Files, files);
        QFETCH(QString, whitelist);
        QFETCH(QString, blacklist);
        scan(files, whitelist, blacklist);
        if (QTest::currentTestFailed())
            return;
        QTEST(messages(), "messages");
        QTEST(loadedPlugins(), "loaded");
        QTEST(panel(), "panel");
    }

    void eachGoodPluginIsInitialisedOnceAndSeesTheInstance()
    {
        const QString a = QStringLiteral("libkivcamuiTestA.so");
        scan({{good, GOOD}, {a, GOOD}}, QString(), QString());
        const QJsonObject plugins = m_report["plugins"].toObject();
        QCOMPARE(plugins.keys(), (QStringList{a, good}));
        for (const QJsonValue plugin : plugins) {
            // Its own call of controllerModelFactory() did not start a second scan, which would
            // have initialised it again; the call from another thread did not wait for the scan.
            QCOMPARE(plugin["initCalls"].toInt(), 1);
            QVERIFY(plugin["sawInstance"].toBool());
            QVERIFY(plugin["sawInstanceFromThread"].toBool());
        }
        QCOMPARE(panel(), goodPanel);
    }
    void failingPluginIsUnloadedAndTheOneWithoutEntryIsNot()
    {
        scan({{failing, FAILING}, {noEntry, NO_ENTRY}}, QString(), QString());
        QCOMPARE(messages(), (QStringList{failedToInitialize(failing), missingInit(noEntry)}));
        QCOMPARE(loadedPlugins(), QStringList{noEntry});
        QCOMPARE(panel(), QString());
    }
};

QTEST_GUILESS_MAIN(tst_IControllerModelFactory)
#include "tst_icontrollermodelfactory.moc"
