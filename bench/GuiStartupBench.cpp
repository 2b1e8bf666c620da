// The time from the start of the GUI until the channels screen of a store with 1,000 channels in
// 20 categories is filled and the event loop is idle, and the peak memory of that run, with the
// window phone-sized (one screen at a time) and desktop-sized (three panes). Each iteration starts
// a fresh process (this program again, in its child role) offscreen.

#include "model/ChannelStore.h"
#include "platform/DataLock.h"
#include "platform/FsPath.h"
#include "platform/Text.h"
#include "store/ChannelStoreFile.h"
#include "ui/App.h"
#include "ui/ChannelListModel.h"
#include "ui/ChannelsScreen.h"
#include "ui/MainWindow.h"
#include "ui/Resources.h"
#include "ui/SingleInstance.h"

#include <QApplication>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <spawn.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include <benchmark/benchmark.h>

extern char** environ;

namespace {

constexpr int kCategories = 20;
constexpr int kChannelsPerCategory = 50;
constexpr const char* kChildFlag = "--startup-child";

using Clock = std::chrono::steady_clock;

void WriteStore(const std::filesystem::path& home) {
    qf::ChannelStore store;
    for (int c = 0; c < kCategories; ++c) {
        auto* category = store.AddCategory(std::make_unique<qf::Category>(
            qf::WString(qf::Utf8ToUtf16("Category " + std::to_string(c)))));
        for (int n = 0; n < kChannelsPerCategory; ++n) {
            auto channel = std::make_unique<qf::Channel>();
            const std::string name = "Channel " + std::to_string(c) + "." + std::to_string(n);
            channel->SetTitle(qf::WString(qf::Utf8ToUtf16(name + " &#8212; daily news")));
            channel->SetXmlUrl(qf::WString(qf::Utf8ToUtf16("http://127.0.0.1:9/" + name)));
            channel->SetItemCount(10 + n);
            channel->SetNewItemCount(n % 4);
            category->AddChannel(std::move(channel));
        }
    }
    std::filesystem::create_directories(home / "QFChannelsData");
    qf::SaveStore(store, qf::FromFsPath(home / "QFChannelsData" / "QFChannels.opml"));
}

// The child: the program's start-up, its window at the width and height it is given, up to an
// idle event loop; prints the milliseconds it took.
int RunChild(int argc, char** argv) {
    if (argc < 4) {
        return 1;
    }
    const int width = std::atoi(argv[2]);
    const int height = std::atoi(argv[3]);
    const auto start = Clock::now();
    QApplication application(argc, argv);
    qf::ui::InitResources();
    qf::ui::SingleInstance instance;
    if (instance.ActivateRunning()) {
        return 1;
    }
    const qf::DataLock lock;
    qf::ui::App app(qf::ui::DetectDeviceFamily());
    if (!lock.held() || !app.Start()) {
        return 1;
    }
    app.mainWindow()->resize(width, height);
    QTimer::singleShot(0, [&] {
        QCoreApplication::processEvents();
        const std::chrono::duration<double, std::milli> elapsed = Clock::now() - start;
        const auto* channels = app.mainWindow()->findChild<qf::ui::ChannelsScreen*>();
        std::printf("%f %d\n", elapsed.count(), channels ? channels->model()->rowCount() : 0);
        std::fflush(stdout);
        QCoreApplication::quit();
    });
    return QApplication::exec();
}

struct ChildRun {
    double milliseconds = 0;
    double peakMegabytes = 0;
};

ChildRun StartChild(int width, int height) {
    int pipeFds[2];
    if (pipe(pipeFds) != 0) {
        return {};
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipeFds[1], 1);
    posix_spawn_file_actions_addclose(&actions, pipeFds[0]);
    char self[] = "/proc/self/exe";
    char flag[64];
    std::strcpy(flag, kChildFlag);
    std::string widthText = std::to_string(width);
    std::string heightText = std::to_string(height);
    char* argv[] = {self, flag, widthText.data(), heightText.data(), nullptr};
    pid_t child = 0;
    ChildRun run;
    if (posix_spawn(&child, self, &actions, nullptr, argv, environ) == 0) {
        close(pipeFds[1]);
        char text[64] = {};
        const ssize_t got = read(pipeFds[0], text, sizeof text - 1);
        int status = 0;
        rusage usage{};
        wait4(child, &status, 0, &usage);
        double milliseconds = 0;
        int rows = 0;
        // A run that did not show every channel does not count.
        if (got > 0 && std::sscanf(text, "%lf %d", &milliseconds, &rows) == 2 &&
            rows == kCategories * kChannelsPerCategory) {
            run.milliseconds = milliseconds;
        }
        run.peakMegabytes = static_cast<double>(usage.ru_maxrss) / 1024.0;
    } else {
        close(pipeFds[1]);
    }
    close(pipeFds[0]);
    posix_spawn_file_actions_destroy(&actions);
    return run;
}

void BM_GuiStartupWith1000Channels(benchmark::State& state) {
    const auto root =
        std::filesystem::temp_directory_path() / ("qf-gui-bench-" + std::to_string(getpid()));
    std::filesystem::create_directories(root / "cards");
    setenv("XDG_CONFIG_HOME", (root / "config").c_str(), 1);
    setenv("QUILLFEED_HOME", (root / "home").c_str(), 1);
    setenv("QUILLFEED_CARDS", (root / "cards").c_str(), 1);
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    WriteStore(root / "home");
    double peak = 0;
    std::vector<double> times;
    for (auto _ : state) {
        const ChildRun run =
            StartChild(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
        if (run.milliseconds <= 0) {
            state.SkipWithError("the GUI did not start");
            break;
        }
        state.SetIterationTime(run.milliseconds / 1000.0);
        times.push_back(run.milliseconds);
        peak = std::max(peak, run.peakMegabytes);
    }
    // The median, which one slow start on a busy machine does not move as it moves the mean.
    if (!times.empty()) {
        std::nth_element(times.begin(),
                         times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2),
                         times.end());
        state.counters["median_ms"] = times[times.size() / 2];
    }
    state.counters["peak_MB"] = peak;
    std::filesystem::remove_all(root);
}
BENCHMARK(BM_GuiStartupWith1000Channels)
    ->ArgNames({"width", "height"})
    ->Args({480, 800})
    ->Args({1200, 800})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(10);

} // namespace

int main(int argc, char** argv) {
    if (argc > 1 && std::strcmp(argv[1], kChildFlag) == 0) {
        return RunChild(argc, argv);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
