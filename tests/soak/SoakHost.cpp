#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoInterfaceImp.hpp>

#include "support/FailingVFS.hpp"
#include "support/Processes.hpp"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <deque>
#include <iostream>
#include <random>
#include <thread>

#include <fcntl.h>
#include <unistd.h>

/// Runs requests of all kinds on four threads while the store's disk fails, ffmpeg gets killed and requests
/// get cancelled. Ends when REQUESTS have run and SECONDS have passed; its status tells whether all went
/// right.
///
///     soak_host JOURNAL OUTPUT_FOLDER SECONDS REQUESTS CLIP...

namespace {

using namespace corvanta;
using namespace corvanta::test;
using Clock = std::chrono::steady_clock;
using Error = CorvantaSdkVideoError;
using RequestPointer = std::shared_ptr<CorvantaSdkVideoRequest>;
using Status = LocalVideoRequest::Status;

constexpr std::size_t allowedGrowth = std::size_t{32} << 20U;

class Random {
  public:
    int number(int least, int most) { return std::uniform_int_distribution(least, most)(engine_); }
    bool oneIn(int count) { return number(1, count) == 1; }

  private:
    std::mt19937 engine_{std::random_device{}()};
};

/// Cancels some of the requests that run, and kills some of the processes.
class Saboteur {
  public:
    void runs(RequestPointer request) {
        const std::lock_guard lock(mutex_);
        running_.push_back(std::move(request));
        changed_.notify_one();
    }

  private:
    void work(const std::stop_token& stop) {
        std::unique_lock lock(mutex_);
        while (changed_.wait(lock, stop, [this] { return !running_.empty(); })) {
            const RequestPointer request = std::move(running_.front());
            running_.pop_front();
            // At any moment of a run, not only at its start.
            changed_.wait_for(lock, stop, std::chrono::milliseconds(random_.number(0, 60)),
                              [] { return false; });
            lock.unlock();
            strike(*request);
            lock.lock();
        }
    }

    void strike(CorvantaSdkVideoRequest& request) {
        const auto children = childrenOf(getpid());
        if (random_.oneIn(4)) {
            try {
                request.cancel();
            } catch (const Error&) {
                // It has ended by itself.
            }
        } else if (random_.oneIn(4) && !children.empty()) {
            kill(children[static_cast<std::size_t>(random_.number(0, static_cast<int>(children.size()) - 1))],
                 SIGKILL);
        }
    }

    std::mutex mutex_;
    std::condition_variable_any changed_;
    std::deque<RequestPointer> running_;
    Random random_;
    std::jthread thread_{[this](const std::stop_token& stop) { work(stop); }};
};

class Soak {
  public:
    Soak(const char* journal, std::string folder, Clock::duration least, int requests,
         std::vector<CorvantaSdkVideoFile> clips)
        : journal_(open(journal, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600)),
          folder_(std::move(folder)), end_(Clock::now() + least), requests_(requests),
          clips_(std::move(clips)), store_(CorvantaSdkVideoInterfaceImp::coreDataStore()) {}

    void run() {
        Random random;
        // What is made once and kept is no leak.
        runOne(random);
        expect(store_->getRequests(Status::processing).empty(), "a run of a killed host goes on");
        const std::size_t descriptors = openDescriptors();
        resetPeakMemory();
        const std::size_t memory = peakMemory();
        { const std::array<std::jthread, 4> workers{worker(), worker(), worker(), worker()}; }
        saboteur_.reset();
        tellEnds();
        expect(eventually([] { return childrenOf(getpid()).empty(); }), "a child is left");
        expect(eventually([&] { return openDescriptors() <= descriptors; }), "a descriptor is left open");
        resetPeakMemory();
        expect(!memoryIsOurs || peakMemory() < memory + allowedGrowth, "the memory has grown");
    }

    int faults() const { return faults_; }

  private:
    std::jthread worker() {
        return std::jthread([this] {
            Random random;
            while (started_++ < requests_ || Clock::now() < end_) {
                runOne(random);
            }
        });
    }

    void runOne(Random& random) {
        disturbDisk(random);
        const RequestPointer request = build(random);
        const std::string id = uuidString(request->id);
        {
            const std::lock_guard lock(mutex_);
            made_.push_back(request->id);
        }
        if (isOnDisk(request->id)) {
            note("stored " + id);
        }
        int notices = 0;
        // The second notice of a run tells that ffmpeg has started.
        const auto subscription =
            CorvantaSdkVideo->streamRequest(request->id).subscribe([&](const auto& now) {
                if (now->status == CorvantaSdkVideoRequest::Status::processing && ++notices == 2) {
                    saboteur_->runs(request);
                }
            });
        std::optional<Error::Case> failure;
        try {
            runBlocking(request->process());
        } catch (const Error& error) {
            failure = error.kind();
        }
        disk_.heal();
        check(*request, failure);
        if (!failure && isOnDisk(request->id)) {
            note("complete " + id);
        }
    }

    void disturbDisk(Random& random) {
        if (random.oneIn(3)) {
            disk_.failAt(random.number(1, 30), random.oneIn(2) ? SQLITE_IOERR_WRITE : SQLITE_FULL,
                         random.oneIn(2) ? FailingVFS::Length::once : FailingVFS::Length::lasting);
        }
    }

    RequestPointer build(Random& random) {
        // Some outputs can't be written.
        const std::string name = folder_ + (random.oneIn(10) ? "/missing/" : "/") + uuidString(makeUUID());
        const auto output = CorvantaSdkVideoFileDescriptor::custom(name);
        switch (random.number(0, 2)) {
        case 0:
            return CorvantaSdkVideo->ConcatBuilder(clips_, output).build();
        case 1: {
            auto builder = CorvantaSdkVideo->MergeBuilder(clips_, output);
            builder.width = 160;
            builder.height = 128;
            return builder.build();
        }
        default:
            return CorvantaSdkVideo->EncodingBuilder(clips_.front(), output).build();
        }
    }

    // A change that returned is on disk, with all that came before it.
    bool isOnDisk(const UUID& id) const {
        try {
            store_->updateRequest(id, {{UpdateRequestData::Field::error("seen")}});
            return true;
        } catch (const std::exception&) {
            return false;
        }
    }

    // However a run ends, its row tells so, and an output that is promised is there.
    void check(const CorvantaSdkVideoRequest& request, std::optional<Error::Case> failure) {
        const auto row = store_->getRequest(request.id);
        expect(row.has_value(), "a row is lost");
        if (!row) {
            return;
        }
        if (!failure) {
            expect(row->status == Status::completed || row->status == Status::cancelled,
                   "a success is told otherwise");
            std::error_code missing;
            expect(std::filesystem::file_size(row->outputPath.path(), missing) > 1000 && !missing,
                   "an output is missing");
        } else if (*failure == Error::concatFailed || *failure == Error::mergeFailed ||
                   *failure == Error::encodingFailed) {
            expect(row->status == Status::error || row->status == Status::cancelled,
                   "a failure is told otherwise");
        } else {
            // A probe was killed: the run never began.
            expect(*failure == Error::getInformationFailed || *failure == Error::invalidInputFiles,
                   std::string("an unexpected failure: ") + Error(*failure).what());
            expect(row->status == Status::idle, "a run that didn't begin is told otherwise");
        }
    }

    void tellEnds() {
        expect(isOnDisk(made_.back()), "a healed disk doesn't take what was left");
        for (const UUID& id : made_) {
            if (const auto row = store_->getRequest(id); row) {
                note("ended " + uuidString(id) + ' ' + std::to_string(static_cast<int>(row->status)));
            }
        }
        expect(static_cast<int>(made_.size()) >= requests_, "requests have not run");
    }

    void note(const std::string& line) const {
        const std::string text = line + '\n';
        if (write(journal_, text.data(), text.size()) != std::ssize(text)) {
            std::abort();
        }
    }

    void expect(bool condition, const std::string& otherwise) {
        if (!condition) {
            ++faults_;
            std::cerr << otherwise + '\n';
        }
    }

    FailingVFS disk_;
    // One write per line, so that a line is there as a whole or not at all when the host is killed.
    const int journal_;
    const std::string folder_;
    const Clock::time_point end_;
    const int requests_;
    const std::vector<CorvantaSdkVideoFile> clips_;
    const std::shared_ptr<VideoStore> store_;
    std::atomic<int> started_ = 0;
    std::atomic<int> faults_ = 0;
    std::mutex mutex_;
    std::vector<UUID> made_;
    std::optional<Saboteur> saboteur_{std::in_place};
};

} // namespace

int main(int argumentCount, char** arguments) {
    SharedCorvantaSdkCommonKt::sdk_common().setAuth(std::make_shared<SharedCorvantaSdkFixedAuth>(true));
    FFmpegKitConfig::setLogLevel("quiet");
    std::vector<CorvantaSdkVideoFile> clips;
    for (int argument = 5; argument < argumentCount; ++argument) {
        clips.emplace_back(URL::fromFilePath(arguments[argument]));
    }
    Soak soak(arguments[1], arguments[2], std::chrono::seconds(std::stoi(arguments[3])),
              std::stoi(arguments[4]), std::move(clips));
    soak.run();
    return std::min(soak.faults(), 100);
}
