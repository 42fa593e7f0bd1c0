#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorViewModel.hpp>

#include <CorvantaSdkVideo/Editor/EditorTasks.hpp>
#include <CorvantaSdkVideo/Editor/QtExecutor.hpp>
#include <CorvantaSdkVideo/Shared/CorvantaSdkVideoUtils.hpp>
#include <platform/Cancellation.hpp>

#include <boost/asio/post.hpp>

#include <exception>
#include <filesystem>
#include <utility>

namespace corvanta {

namespace {

Task<CorvantaSdkVideoEditorResult> edited(std::shared_ptr<CorvantaSdkVideoEditor> editor,
                                          CorvantaSdkVideoEditorInput input) {
    co_return co_await editor->edit(std::move(input));
}

bool isThere(const URL& file) {
    std::error_code unknown;
    return std::filesystem::exists(file.path(), unknown);
}

} // namespace

// A copied picture gets one turn, recorded in the opposite sense to that of a probe; any other cut keeps the
// file's own one under it.
void CorvantaSdkVideoEditorViewModel::trimVideo(CorvantaSdkVideoCut cut, Handler handler) {
    const bool copies = cut == CorvantaSdkVideoCut::copied;
    startEdit({.videoURL = videoURL_,
               .outputURL = outputURL_,
               .startPosition = trimmerStart(),
               .endPosition = stopAt(),
               .rotationAngle = copies ? videoRotation() - currentRotation() : videoRotation(),
               .volumen = videoPlayer_->volume(),
               .cut = cut},
              std::move(handler));
}

void CorvantaSdkVideoEditorViewModel::startEdit(CorvantaSdkVideoEditorInput input, Handler handler) {
    if (isTrimming() || isClosing_ || hasEnded()) {
        return;
    }
    isTrimming_ = true;
    editProgress_ = 0;
    // Comes on any thread; the view model is looked at on its own.
    input.onProgress = [model = QPointer(this)](const CorvantaSdkVideoProgress& progress) {
        boost::asio::post(QtExecutor(), [model, fraction = progress.fraction] {
            if (model && model->isTrimming()) {
                model->editProgress_ = fraction;
            }
        });
    };
    stopEdit_ = startStoppableOnQtThread(runEdit(this, editor_, std::move(input), std::move(handler)));
}

void CorvantaSdkVideoEditorViewModel::cancelEdit() {
    if (stopEdit_) {
        stopEdit_();
    }
}

Task<> CorvantaSdkVideoEditorViewModel::runEdit(QPointer<ViewModel> model,
                                                std::shared_ptr<CorvantaSdkVideoEditor> editor,
                                                CorvantaSdkVideoEditorInput input, Handler handler) {
    const URL output = input.outputURL;
    const bool wasThere = isThere(output);
    std::optional<CorvantaSdkVideoEditorResult> result;
    std::string details;
    bool isCancelled = false;
    try {
        result = co_await onEditorWorker(edited(std::move(editor), std::move(input)));
    } catch (const std::exception& error) {
        // Whatever the cause was, the user reads one text.
        details = detailsOf(error);
        isCancelled = isCancellation(error);
    }
    if (isCancelled && !wasThere) {
        CorvantaSdkVideoUtils::deleteFileIfExists(output);
    }
    if (!model) {
        co_return;
    }
    if (result) {
        model->end(*result, handler);
    } else if (!isCancelled) {
        model->error_ = CorvantaSdkVideoError(CorvantaSdkVideoError::trimFailed, details);
    }
    if (model) {
        model->stopEdit_ = {};
        model->isTrimming_ = false;
    }
}

} // namespace corvanta
