#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorImplementation.hpp>
#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorViewModel.hpp>
#include <platform/AssetReader.hpp>
#include <platform/FFmpegKit.hpp>
#include <platform/SharedCorvantaSdkCommon.hpp>

#include <QEventLoop>
#include <QGuiApplication>
#include <QTimer>
#include <QVideoSink>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>

#include <sys/resource.h>

namespace corvanta {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr int screenWidth = 375;

void run(const std::string& command) {
    if (std::system(command.c_str()) != 0) {
        std::fprintf(stderr, "failed: %s\n", command.c_str());
        std::exit(EXIT_FAILURE);
    }
}

// Ten minutes of 1080p with sound, a key frame every second, at 4 Mbit/s.
const std::string& tenMinuteClip() {
    static const std::string path = [] {
        const fs::path folder = fs::temp_directory_path() / "corvanta-editor-benchmark";
        fs::create_directories(folder);
        const std::string minute = (folder / "minute.mp4").string();
        const std::string clip = (folder / "ten-minutes.mp4").string();
        run("ffmpeg -v error -y -f lavfi -i testsrc2=s=1920x1080:r=30:d=60 -f lavfi -i sine=d=60 "
            "-c:v libx264 -preset ultrafast -b:v 4M -bf 0 -g 30 -pix_fmt yuv420p -c:a aac " +
            minute);
        run("ffmpeg -v error -y -stream_loop 9 -i " + minute + " -c copy " + clip);
        return clip;
    }();
    return path;
}

class SilentPlayer : public MediaPlayer {
  public:
    void play() override {}
    void pause() override {}
    void seek(double) override {}
    float volume() const override { return 1; }
    void setVolume(float) override {}
    void setVideoSink(QVideoSink*) override {}
};

std::unique_ptr<MediaPlayer> silentPlayer(const URL&) { return std::make_unique<SilentPlayer>(); }

// Without `makePlayer`, with the one that people see.
std::unique_ptr<CorvantaSdkVideoEditorViewModel>
openEditor(const MakeMediaPlayer& makePlayer = silentPlayer) {
    return std::make_unique<CorvantaSdkVideoEditorViewModel>(
        std::make_shared<CorvantaSdkVideoEditorImplementation>(), VideosInformationGenerator(),
        std::make_shared<CorvantaCredentialsManagerImp>(),
        CorvantaSdkVideoFile(URL::fromFilePath(tenMinuteClip())), std::nullopt,
        [](const CorvantaSdkVideoEditorResult&) {}, makePlayer);
}

bool isComplete(const CorvantaSdkVideoEditorViewModel& model) {
    return std::ranges::none_of(model.thumbnails(), [](const QImage& image) { return image.isNull(); });
}

double threadSeconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

long voluntaryWaits() {
    rusage usage{};
    getrusage(RUSAGE_THREAD, &usage);
    return usage.ru_nvcsw;
}

// The longest time that the event loop took between two turns, while it was never without work. A turn in
// which the thread waited for something counts with the time on the wall, any other with the time that the
// processor spent on it, so that other programs on the machine don't count.
class Heartbeat {
  public:
    Heartbeat() {
        QObject::connect(&timer_, &QTimer::timeout, [this] { beat(); });
        timer_.start(0);
    }

    double longestSeconds() const { return longest_; }

  private:
    struct Moment {
        Clock::time_point wall = Clock::now();
        double thread = threadSeconds();
        long waits = voluntaryWaits();
    };

    void beat() {
        const Moment now;
        const double wall = std::chrono::duration<double>(now.wall - last_.wall).count();
        longest_ = std::max(longest_, now.waits == last_.waits ? now.thread - last_.thread : wall);
        last_ = now;
    }

    QTimer timer_;
    Moment last_;
    double longest_ = 0;
};

void eightBareRuns(benchmark::State& state) {
    const double duration = AssetReader(URL::fromFilePath(tenMinuteClip())).duration();
    const std::string image =
        (fs::temp_directory_path() / "corvanta-editor-benchmark/thumbnail.jpg").string();
    for (auto _ : state) {
        for (int index = 0; index < CorvantaSdkVideoEditorViewModel::thumbnailCount; ++index) {
            run("ffmpeg -nostdin -v quiet -y -sseof -" + std::to_string(duration - index * duration / 8) +
                " -i " + tenMinuteClip() + " -vframes 1 -vf scale=45:64 " + image + " >/dev/null 2>&1");
        }
    }
}
BENCHMARK(eightBareRuns)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(5);

// The probe and the eight thumbnails, as the screen sees them.
void openedEditor(benchmark::State& state) {
    for (auto _ : state) {
        const auto model = openEditor();
        QEventLoop loop;
        QObject::connect(model.get(), &CorvantaSdkVideoEditorViewModel::thumbnailsChanged, &loop, [&] {
            if (isComplete(*model)) {
                loop.quit();
            }
        });
        const auto start = Clock::now();
        Clock::time_point readAt;
        QObject::connect(model.get(), &CorvantaSdkVideoEditorViewModel::stopAtChanged,
                         [&] { readAt = Clock::now(); });
        model->setupTrimmer(QSizeF(screenWidth, 600));
        loop.exec();
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - readAt).count());
        state.counters["probe_ms"] = std::chrono::duration<double, std::milli>(readAt - start).count();
    }
}
BENCHMARK(openedEditor)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(5);

// How long the thread of the screen stands still while the editor opens and its frame is dragged.
void longestBlock(benchmark::State& state) {
    for (auto _ : state) {
        QEventLoop loop;
        const Heartbeat heartbeat;
        const auto model = openEditor();
        const QRectF strip(0, 0, screenWidth - 32, 64);
        QTimer drags;
        double x = 20;
        QObject::connect(&drags, &QTimer::timeout, [&] {
            x = x > 320 ? 20 : x + 1;
            model->applyTrimming(QPointF(x, 30), strip);
        });
        drags.start(1);
        QObject::connect(model.get(), &CorvantaSdkVideoEditorViewModel::thumbnailsChanged, &loop, [&] {
            if (isComplete(*model)) {
                loop.quit();
            }
        });
        model->setupTrimmer(QSizeF(screenWidth, 600));
        loop.exec();
        state.SetIterationTime(heartbeat.longestSeconds());
    }
}
BENCHMARK(longestBlock)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(5);

// The same event loop, with nothing in it: what the machine itself holds it up.
void longestBlockOfAnIdleLoop(benchmark::State& state) {
    for (auto _ : state) {
        QEventLoop loop;
        const Heartbeat heartbeat;
        QTimer::singleShot(2000, &loop, &QEventLoop::quit);
        loop.exec();
        state.SetIterationTime(heartbeat.longestSeconds());
    }
}
BENCHMARK(longestBlockOfAnIdleLoop)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(5);

// How long a picture stands while the start of the range is dragged over the whole strip, sixty points a
// second, for three seconds.
void pictureWhileDragging(benchmark::State& state) {
    const bool plays = state.range(0) != 0;
    for (auto _ : state) {
        const auto model = openEditor({});
        QVideoSink sink;
        model->videoPlayer().setVideoSink(&sink);
        QEventLoop loop;
        int pictures = 0;
        QObject::connect(&sink, &QVideoSink::videoFrameChanged, &loop, [&] {
            ++pictures;
            loop.quit();
        });
        QObject::connect(model.get(), &CorvantaSdkVideoEditorViewModel::stopAtChanged, &loop,
                         &QEventLoop::quit);
        model->setupTrimmer(QSizeF(screenWidth, 600));
        while (pictures == 0 || model->videoDuration() == 0) {
            loop.exec();
        }
        if (plays) {
            model->handleAction();
        }
        QObject::disconnect(&sink, nullptr, &loop, nullptr);
        QObject::connect(&sink, &QVideoSink::videoFrameChanged, &loop, [&] { ++pictures; });
        pictures = 0;
        constexpr double seconds = 3;
        const QRectF strip(0, 0, screenWidth - 32, 64);
        const auto start = Clock::now();
        QTimer drags;
        QObject::connect(&drags, &QTimer::timeout, [&] {
            const double share = std::chrono::duration<double>(Clock::now() - start).count() / seconds;
            if (share >= 1) {
                loop.quit();
            }
            model->applyTrimming(QPointF(16 + 250 * share, 30), strip);
        });
        drags.start(16);
        loop.exec();
        state.SetIterationTime(seconds / std::max(pictures, 1));
        model->videoPlayer().setVideoSink(nullptr);
    }
}
BENCHMARK(pictureWhileDragging)
    ->ArgName("plays")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(3);

} // namespace
} // namespace corvanta

int main(int argumentCount, char** arguments) {
    benchmark::Initialize(&argumentCount, arguments);
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    const QGuiApplication application(argumentCount, arguments);
    const auto folder = corvanta::fs::temp_directory_path() / "corvanta-editor-benchmark";
    setenv("XDG_DATA_HOME", folder.c_str(), 1);
    corvanta::SharedCorvantaSdkCommonKt::sdk_common().setAuth(
        std::make_shared<corvanta::SharedCorvantaSdkFixedAuth>(true));
    struct NoLog : corvanta::SharedCorvantaSdkLogSink {
        void addLog(const corvanta::SharedCorvantaSdkLog&) override {}
    };
    corvanta::SharedCorvantaSdkCommonKt::sdk_common().setLog(std::make_shared<NoLog>());
    corvanta::FFmpegKitConfig::setLogLevel("quiet");
    corvanta::tenMinuteClip();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    corvanta::fs::remove_all(folder);
}
