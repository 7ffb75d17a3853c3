// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

// What the benchmarks of the discovery models share: an application that times every event the
// GUI thread handles, the GUI thread's own CPU time, a visible window with a ListView over a
// model's list, one whole cycle of searches, and a parent process that runs every configuration
// in a child of its own (the emulator reads its world once per process).

#include <kivui/ObjectListModel.h>

#include <QEvent>
#include <QEventLoop>
#include <QGuiApplication>
#include <QMap>
#include <QMetaEnum>
#include <QProcess>
#include <QQmlApplicationEngine>
#include <QQmlContext>
#include <QStringList>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <functional>

namespace bench {

inline double threadCpuMs()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

inline double wallMs()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

// Times the outermost delivery of every event of the GUI thread, in wall-clock time and in the
// thread's own CPU time: the longest is the longest the GUI thread was unavailable to anything
// else, and what it was busy with. The CPU time is what a loaded machine does not inflate.
class MeteredApplication : public QGuiApplication {
public:
    using QGuiApplication::QGuiApplication;

    bool notify(QObject* receiver, QEvent* event) override
    {
        // Events of other threads (an object moved by a pool thread hears of it there) and
        // events delivered from within an event are not timed on their own.
        if (m_depth > 0 || QThread::currentThread() != thread())
            return QGuiApplication::notify(receiver, event);
        ++m_depth;
        const QEvent::Type type = event->type();
        const double start = wallMs();
        const double startCpu = threadCpuMs();
        const bool handled = QGuiApplication::notify(receiver, event);
        const double spent = wallMs() - start;
        const double spentCpu = threadCpuMs() - startCpu;
        --m_depth;
        if (spent > m_longest) {
            m_longest = spent;
            m_longestType = type;
        }
        if (spentCpu > m_longestCpu) {
            m_longestCpu = spentCpu;
            m_longestCpuType = type;
        }
        return handled;
    }

    void reset()
    {
        m_longest = m_longestCpu = 0;
        m_longestType = m_longestCpuType = QEvent::None;
    }
    double longest() const { return m_longest; }
    QByteArray longestType() const { return name(m_longestType); }
    double longestCpu() const { return m_longestCpu; }
    QByteArray longestCpuType() const { return name(m_longestCpuType); }

private:
    static QByteArray name(QEvent::Type type)
    {
        return QMetaEnum::fromType<QEvent::Type>().valueToKey(type);
    }

    int m_depth = 0;
    double m_longest = 0;
    double m_longestCpu = 0;
    QEvent::Type m_longestType = QEvent::None;
    QEvent::Type m_longestCpuType = QEvent::None;
};

// Runs the event loop until done() holds, or for ms milliseconds when done is empty.
inline void runUntil(const std::function<bool()>& done, int ms = 60000)
{
    QEventLoop loop;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        if (done && done())
            loop.quit();
    });
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    if (done)
        poll.start(5);
    loop.exec();
}

// A window of 400 x 600 pixels with a ListView over the list `list` of the model, each row
// showing `row`, a QML expression over `item`.
inline bool showList(
    QQmlApplicationEngine& engine, QObject* model, const QByteArray& list, const QByteArray& row)
{
    engine.rootContext()->setContextProperty("discovery", model);
    engine.loadData("import QtQuick\n"
                    "Window { width: 400; height: 600; visible: true\n"
                    "  ListView { anchors.fill: parent; model: discovery."
        + list
        + "\n"
          "    delegate: Text { required property var model; height: 20\n"
          "      readonly property var item: model.item\n"
          "      text: "
        + row + " } } }");
    return !engine.rootObjects().isEmpty();
}

struct SFigures {
    double worstMs = 0; // the longest event, wall-clock
    QByteArray worstEvent;
    double worstCpuMs = 0; // the longest event in the thread's CPU time
    QByteArray worstCpuEvent;
    double cpuMs = 0; // the GUI thread's CPU time over the whole cycle
};

// One whole cycle on the GUI thread: a search started with the results of an earlier one on
// screen, its results shown, a second search, its results shown. The earlier search, not
// measured, warms the view up: what it costs once per process (the first delegates, the glyphs
// of their texts) is not what a search costs. Every scan() is called from an event of its own,
// as a click would call it.
template <typename Model> SFigures cycle(MeteredApplication& app, Model& model)
{
    const auto search = [&] {
        QTimer::singleShot(0, &model, [&] { model.scan(); });
        runUntil([&] { return model.scanned() && !model.scanning(); });
        runUntil({}, 300); // the results shown and settled
    };
    runUntil({}, 300); // the window shown and settled
    search();
    app.reset();
    const double cpu = threadCpuMs();
    search();
    search();
    return {app.longest(), app.longestType(), app.longestCpu(), app.longestCpuType(),
        threadCpuMs() - cpu};
}

// One line per model, world and count, read back by the parent: name, world, count, then the
// figures.
inline void report(const char* model, const char* world, int count, const SFigures& figures)
{
    std::printf("%s %s %d %f %s %f %s %f\n", model, world, count, figures.worstMs,
        figures.worstEvent.constData(), figures.worstCpuMs, figures.worstCpuEvent.constData(),
        figures.cpuMs);
    std::fflush(stdout);
}

// Shows the list of the model named listName in a window, runs a cycle, and reports it under
// name; false when the window cannot be made or the list does not end with expected items.
template <typename Model>
bool measure(MeteredApplication& app, const char* name, Model& model, const ObjectListModel& list,
    const QByteArray& listName, const QByteArray& row, int expected, const char* world, int count)
{
    QQmlApplicationEngine engine;
    if (!showList(engine, &model, listName, row))
        return false;
    const SFigures figures = cycle(app, model);
    if (list.size() != expected)
        return false;
    report(name, world, count, figures);
    return true;
}

// The parent: runs this program three times per configuration, with the arguments "child", the
// world's kind and the count, and prints the best of the three runs of each model: its longest
// event, and its GUI thread's CPU time over the cycle, in all and per item. The marginal cost of
// an item, the difference between the two counts' cycles divided by the difference of the
// counts, leaves out what a cycle costs whatever the count (drawing the view, its delegates).
inline int runChildren(const QString& program, const char* things)
{
    constexpr int runs = 3;
    const int counts[] = {1000, 10000};
    for (const char* world : {"bare", "rich"}) {
        // model -> count -> best figures
        QMap<QString, QMap<int, SFigures>> best;
        QStringList models;
        for (const int count : counts) {
            for (int run = 0; run < runs; ++run) {
                QProcess child;
                QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
                if (!environment.contains("QT_QPA_PLATFORM"))
                    environment.insert("QT_QPA_PLATFORM", "offscreen");
                if (!environment.contains("QT_QUICK_BACKEND"))
                    environment.insert("QT_QUICK_BACKEND", "software");
                child.setProcessEnvironment(environment);
                child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
                child.start(program, {"child", world, QString::number(count)});
                if (!child.waitForFinished(600000) || child.exitCode() != 0) {
                    std::fprintf(stderr, "the %s world of %d failed\n", world, count);
                    return 1;
                }
                for (const QByteArray& line : child.readAllStandardOutput().split('\n')) {
                    const QList<QByteArray> fields = line.split(' ');
                    if (fields.size() != 8)
                        continue;
                    const QString model = QString::fromUtf8(fields[0]);
                    if (!models.contains(model))
                        models << model;
                    const SFigures figures{fields[3].toDouble(), fields[4], fields[5].toDouble(),
                        fields[6], fields[7].toDouble()};
                    SFigures& kept = best[model][count];
                    if (run == 0 || figures.worstMs < kept.worstMs) {
                        kept.worstMs = figures.worstMs;
                        kept.worstEvent = figures.worstEvent;
                    }
                    if (run == 0 || figures.worstCpuMs < kept.worstCpuMs) {
                        kept.worstCpuMs = figures.worstCpuMs;
                        kept.worstCpuEvent = figures.worstCpuEvent;
                    }
                    if (run == 0 || figures.cpuMs < kept.cpuMs)
                        kept.cpuMs = figures.cpuMs;
                }
            }
        }
        for (const QString& model : std::as_const(models)) {
            for (const int count : counts) {
                const SFigures& figures = best[model][count];
                std::printf("%-26s %-4s %6d %ss: worst event %7.2f ms (%s), in CPU %7.2f ms "
                            "(%s); GUI CPU %7.1f ms, %6.2f us per %s\n",
                    qPrintable(model), world, count, things, figures.worstMs,
                    figures.worstEvent.constData(), figures.worstCpuMs,
                    figures.worstCpuEvent.constData(), figures.cpuMs, figures.cpuMs * 1e3 / count,
                    things);
            }
            const double marginal = (best[model][counts[1]].cpuMs - best[model][counts[0]].cpuMs)
                * 1e3 / (counts[1] - counts[0]);
            std::printf("%-26s %-4s marginal GUI CPU %.2f us per %s\n", qPrintable(model), world,
                marginal, things);
        }
        std::fflush(stdout);
    }
    return 0;
}

// A benchmark's main: as a child (arguments "child", "bare" or "rich", and the count), the world
// that writeWorld writes into a folder of its own is the emulator's, and measure() gives true when
// all went well; as the parent, the children run.
inline int main(int argc, char** argv, const char* things,
    QString (*writeWorld)(const QTemporaryDir& folder, bool rich, int count),
    const std::function<bool(MeteredApplication& app, const char* world, int count)>& measure)
{
    if (argc == 4 && std::strcmp(argv[1], "child") == 0) {
        const int count = std::atoi(argv[3]);
        QTemporaryDir folder;
        qputenv("KIVCAM_EMULATOR_WORLD",
            writeWorld(folder, std::strcmp(argv[2], "rich") == 0, count).toUtf8());
        MeteredApplication app(argc, argv);
        return measure(app, argv[2], count) ? 0 : 1;
    }
    QCoreApplication app(argc, argv);
    return runChildren(QCoreApplication::applicationFilePath(), things);
}

} // namespace bench
