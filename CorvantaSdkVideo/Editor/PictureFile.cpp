#include <CorvantaSdkVideo/Editor/PictureFile.hpp>

#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoUtils.hpp>
#include <platform/Directories.hpp>
#include <platform/NeverDestroyed.hpp>

#include <QByteArray>
#include <QCoreApplication>
#include <QFile>

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <mutex>

namespace corvanta {

namespace {

class PicturesInTheMaking {
  public:
    PicturesInTheMaking() {
        qAddPostRoutine([] { shared().waitForEnd(); });
    }

    static PicturesInTheMaking& shared() {
        static NeverDestroyed<PicturesInTheMaking> made;
        return *made;
    }

    void add(int change) {
        const std::lock_guard lock(mutex_);
        count_ += change;
        changed_.notify_all();
    }

  private:
    void waitForEnd() {
        std::unique_lock lock(mutex_);
        changed_.wait_for(lock, std::chrono::seconds(10), [this] { return count_ == 0; });
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    int count_ = 0;
};

} // namespace

PictureInTheMaking::PictureInTheMaking() { PicturesInTheMaking::shared().add(1); }

PictureInTheMaking::~PictureInTheMaking() { PicturesInTheMaking::shared().add(-1); }

void removeIfMade(const URL& picture) {
    const std::filesystem::path path = picture.path();
    if (path.parent_path() == Directories::documents().path()) {
        CorvantaSdkVideoUtils::deleteFileIfExists(picture);
    }
}

QUrl takePicture(const URL& picture, const char* mimeType) {
    QByteArray bytes;
    if (QFile file(QString::fromStdString(picture.path())); file.open(QIODevice::ReadOnly)) {
        bytes = file.readAll();
    }
    removeIfMade(picture);
    return bytes.isEmpty() ? QUrl()
                           : QUrl(QStringLiteral("data:") + QLatin1String(mimeType) +
                                  QStringLiteral(";base64,") + QString::fromLatin1(bytes.toBase64()));
}

} // namespace corvanta
