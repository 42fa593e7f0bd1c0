#include "talvo_audio_sdk/session_list.hpp"

#include <algorithm>

namespace TALVO::TALVO_AUDIO {

TalvoAudioSessionT* SessionList::add(std::unique_ptr<TalvoAudioSessionT> session) {
    auto free = std::ranges::find_if(places_, [](Place const& place) { return place.owned == nullptr; });
    if (free == places_.end()) {
        std::atomic<Place*>& link = places_.empty() ? first_ : places_.back().next;
        places_.emplace_back();
        free = std::prev(places_.end());
        link.store(&*free, std::memory_order_release);
    }
    free->owned = std::move(session);
    free->type.store(free->owned->getType(), std::memory_order_relaxed);
    free->visible.store(free->owned.get(), std::memory_order_release);
    return free->owned.get();
}

bool SessionList::remove(void const* session) {
    auto const place = std::ranges::find_if(
        places_, [session](Place const& p) { return p.owned != nullptr && p.owned.get() == session; });
    if (place == places_.end())
        return false;
    place->visible.store(nullptr, std::memory_order_release);
    place->owned.reset();
    return true;
}

void SessionList::clear() {
    for (Place& place : places_) {
        place.visible.store(nullptr, std::memory_order_release);
        place.owned.reset();
    }
}

TalvoAudioSessionType SessionList::typeOf(void const* session) const {
    Place const* const place = placeOf(session);
    return place == nullptr ? TalvoAudioSessionType::unknown : place->type.load(std::memory_order_relaxed);
}

SessionList::Place const* SessionList::placeOf(void const* session) const {
    if (session == nullptr)
        return nullptr;
    Place const* place = first_.load(std::memory_order_acquire);
    while (place != nullptr && place->visible.load(std::memory_order_acquire) != session)
        place = place->next.load(std::memory_order_acquire);
    return place;
}

} // namespace TALVO::TALVO_AUDIO
