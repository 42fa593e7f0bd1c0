#pragma once

#include "talvo_audio_sdk/session.hpp"

#include <atomic>
#include <deque>
#include <memory>

namespace TALVO::TALVO_AUDIO {

/// The open sessions. Changes are made under the library's mutex; frame calls walk the list beside
/// them without a lock. The places are chained by atomic links, stay where they are for good and are
/// used again, so that a walk never meets memory that was given back, and it never looks into a
/// session that it doesn't seek.
class SessionList {
  public:
    TalvoAudioSessionT* add(std::unique_ptr<TalvoAudioSessionT> session);
    /// False when the list doesn't hold it.
    bool remove(void const* session);
    bool holds(void const* session) const { return placeOf(session) != nullptr; }
    /// Unknown for what the list doesn't hold. The session itself isn't touched: it may be closed meanwhile.
    TalvoAudioSessionType typeOf(void const* session) const;
    void clear();

  private:
    struct Place {
        std::atomic<TalvoAudioSessionT*> visible = nullptr;
        std::atomic<Place*> next = nullptr;
        std::atomic<TalvoAudioSessionType> type = TalvoAudioSessionType::unknown;
        std::unique_ptr<TalvoAudioSessionT> owned;
    };

    Place const* placeOf(void const* session) const;

    std::deque<Place> places_;
    std::atomic<Place*> first_ = nullptr;
};

} // namespace TALVO::TALVO_AUDIO
