#include <CorvantaSdkVideo/Editor/Waveform.hpp>

#include <CorvantaSdkVideo/Editor/EditorTasks.hpp>
#include <CorvantaSdkVideo/Editor/PictureFile.hpp>

#include <exception>
#include <utility>

namespace corvanta {

namespace {

constexpr std::int64_t pictureWidth = 1024;
constexpr std::int64_t pictureHeight = 128;

Task<QUrl> waveformOf(std::shared_ptr<CorvantaSdkVideoEditor> editor, URL video) {
    const PictureInTheMaking open;
    const std::optional<URL> file =
        co_await editor->getWaveformForVideo(std::move(video), pictureWidth, pictureHeight);
    co_return file ? takePicture(*file, "image/png") : QUrl();
}

} // namespace

void Waveform::make() {
    if (viewModel_.isReady() && viewModel_.hasSound() && !std::exchange(isMade_, true)) {
        startOnQtThread(draw(this, viewModel_.editor(), viewModel_.videoURL()));
    }
}

Task<> Waveform::draw(QPointer<Waveform> waveform, std::shared_ptr<CorvantaSdkVideoEditor> editor,
                      URL video) {
    QUrl picture;
    try {
        picture = co_await onEditorWorker(waveformOf(std::move(editor), std::move(video)));
    } catch (const std::exception&) {
        // The bar goes without.
    }
    if (waveform) {
        waveform->picture_ = picture;
        Q_EMIT waveform->pictureChanged();
    }
}

} // namespace corvanta
