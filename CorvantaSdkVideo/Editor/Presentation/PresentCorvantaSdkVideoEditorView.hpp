#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoEditorResult.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoFile.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoFileDescriptor.hpp>

#include <functional>

class QWindow;

namespace corvanta {

/// Opens the editor for `input` in a window over `presenter`: as large, in the same state, transient for it,
/// and holding back its input; a presenter that is just being shown is waited for. `onComplete` is called
/// once, on the Qt thread, when that window has closed: with the URL of the edited file, or without one if
/// the user has left. It is not called if the presenter has gone before; the editor goes with it.
///
/// `output` gives the URL with the extension "mp4". Needs a QGuiApplication, and the Qt thread.
///
/// False if the presenter has an editor already: that one comes to the front, and nothing else happens.
/// Throws std::invalid_argument without a presenter, PlayerUnavailable if this machine can't play videos, and
/// std::runtime_error if the screen's QML modules are missing.
bool presentCorvantaSdkVideoEditorView(QWindow* presenter, const CorvantaSdkVideoFile& input,
                                       const CorvantaSdkVideoFileDescriptor& output,
                                       std::function<void(const CorvantaSdkVideoEditorResult&)> onComplete);

} // namespace corvanta
