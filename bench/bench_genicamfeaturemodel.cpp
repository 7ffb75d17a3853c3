// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// The GUI thread's cost of the GenICam panel's feature tree: building the model for a tree of
// 1,000 features (from a controller of the benchmark's own), the tree replaced as a connect
// replaces it, and a change of 50 rows as a write announces it. Each figure is the best and the
// median of 25 runs, in wall-clock time and in the GUI thread's CPU time.

#include "GenICamFeatureModel.h"

#include <kivcam/IGenICamController.h>

#include <QCoreApplication>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

using namespace kiv;
using namespace kiv::cam;
using kiv::cam::ui::GenICamFeatureModel;

namespace {

constexpr int categories = 50;
constexpr int featuresPerCategory = 20;
constexpr int changedRows = 50;
constexpr int runs = 25;

double nowMs(clockid_t clock)
{
    timespec now{};
    clock_gettime(clock, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

// Holds a tree and tells its one listener; every request is answered at once, unmade.
class CTreeController : public IGenICamController {
public:
    bool connect(TSharedPtr<IDevice>, SCameraInfo) override { return true; }
    void disconnect() override { }
    bool isConnected() const override { return true; }
    CString name() const override { return "Bench"; }
    TArray<SGenICamFeature> features() const override
    {
        const std::lock_guard lock(m_mutex);
        return rows;
    }
    bool feature(const CString&, SGenICamFeature&) const override { return false; }
    void setFeature(const CString&, const CString&, Done done) override { done({}); }
    void execute(const CString&, Done done) override { done({}); }
    void refresh(Done done) override { done({}); }
    void setSensorWindow(const SSensorWindow&, Done done) override { done({}); }
    SSensorWindow sensorWindow() const override { return {}; }
    void startAcquisition(Done done) override { done({}); }
    void stopAcquisition(Done done) override { done({}); }
    bool isAcquiring() const override { return true; }
    bool hasControl() const override { return true; }
    CString errorMessage() const override { return {}; }
    void subscribe(IGenICamListener* added) override { listener = added; }
    void unsubscribe(IGenICamListener*) override { listener = nullptr; }

    TArray<SGenICamFeature> rows;
    IGenICamListener* listener = nullptr;

private:
    mutable std::mutex m_mutex;
};

// 50 categories of 20 features each, of every type and level, with texts of a real camera's
// length.
TArray<SGenICamFeature> tree()
{
    TArray<SGenICamFeature> rows;
    for (int category = 0; category < categories; ++category) {
        SGenICamFeature head;
        head.row = rows.count();
        head.name = CString(("Category" + std::to_string(category)).c_str());
        head.displayName = CString(("Category number " + std::to_string(category)).c_str());
        head.type = SGenICamFeature::CATEGORY;
        head.access = SGenICamFeature::READ_ONLY;
        rows.add(head);
        for (int feature = 0; feature < featuresPerCategory; ++feature) {
            const std::string number = std::to_string(category * featuresPerCategory + feature);
            SGenICamFeature row;
            row.row = rows.count();
            row.parent = head.row;
            row.depth = 1;
            row.name = CString(("Feature" + number).c_str());
            row.displayName = CString(("Feature number " + number).c_str());
            row.description = "What the feature does, in a sentence or two, as cameras describe "
                              "their features to the people who set them.";
            row.type = SGenICamFeature::EType(1 + feature % 6);
            row.visibility = SGenICamFeature::EVisibility(feature % 4);
            row.access = SGenICamFeature::READ_WRITE;
            row.value = CString(number.c_str());
            row.intMax = 4096;
            row.floatMax = 1e6;
            row.unit = "us";
            if (row.type == SGenICamFeature::ENUMERATION) {
                row.entries = {"Mono8", "Mono10", "Mono12", "Mono16"};
                row.entryDisplayNames = {"Mono 8", "Mono 10", "Mono 12", "Mono 16"};
            }
            rows.add(row);
        }
    }
    return rows;
}

struct STimes {
    std::vector<double> wall;
    std::vector<double> cpu;
};

// Times what the GUI thread does in step, after prepare (untimed).
void measure(STimes& times, const std::function<void()>& prepare, const std::function<void()>& step)
{
    prepare();
    const double wall = nowMs(CLOCK_MONOTONIC);
    const double cpu = nowMs(CLOCK_THREAD_CPUTIME_ID);
    step();
    times.cpu.push_back(nowMs(CLOCK_THREAD_CPUTIME_ID) - cpu);
    times.wall.push_back(nowMs(CLOCK_MONOTONIC) - wall);
}

void report(const char* what, STimes& times)
{
    for (std::vector<double>* figures : {&times.wall, &times.cpu})
        std::sort(figures->begin(), figures->end());
    std::printf("%-46s best %7.3f ms, median %7.3f ms; GUI CPU best %7.3f ms, median %7.3f ms\n",
        what, times.wall.front(), times.wall[times.wall.size() / 2], times.cpu.front(),
        times.cpu[times.cpu.size() / 2]);
    std::fflush(stdout);
}

// Calls the listener as the controller's worker calls it: from a thread of its own.
void fromWorker(const std::function<void()>& call)
{
    std::thread worker(call);
    worker.join();
}

void deliver()
{
    QCoreApplication::sendPostedEvents();
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    CTreeController controller;
    controller.rows = tree();
    std::printf("A tree of %d categories and %d features; 50 rows changed.\n", categories,
        categories * featuresPerCategory);

    for (const int level : {0, 2}) {
        for (const char* filter : {"", "number 9"}) {
            std::printf("Level %d, filter text \"%s\":\n", level, filter);
            STimes built, replaced, changed;
            for (int run = 0; run < runs; ++run) {
                GenICamFeatureModel* model = nullptr;
                measure(
                    built, [] {},
                    [&] {
                        model = new GenICamFeatureModel(&controller, nullptr);
                        model->setVisibility(level);
                        model->setFilterText(filter);
                    });
                measure(
                    replaced, [&] { fromWorker([&] { controller.listener->treeChanged(); }); },
                    deliver);
                // Every row's value and limits, as a refresh of the values changes them.
                TArray<SGenICamFeature> rows;
                for (int index = 1; rows.count() < changedRows; index += 7) {
                    SGenICamFeature row = controller.rows[index];
                    if (row.type == SGenICamFeature::CATEGORY)
                        continue;
                    row.value = CString(std::to_string(run + index).c_str());
                    row.intMax += run + 1;
                    rows.add(row);
                }
                measure(
                    changed,
                    [&] { fromWorker([&] { controller.listener->featuresChanged(rows); }); },
                    deliver);
                delete model;
            }
            report("  build (construct, set level and filter)", built);
            report("  tree replaced (treeChanged delivered)", replaced);
            report("  50 rows changed (featuresChanged delivered)", changed);
        }
    }
    return 0;
}
