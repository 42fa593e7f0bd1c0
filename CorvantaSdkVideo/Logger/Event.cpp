#include <CorvantaSdkVideo/Logger/Event.hpp>

#include <array>
#include <cstddef>

namespace corvanta {

std::string_view name(Event event) {
    static constexpr auto names = std::to_array<std::string_view>({
        "event_video_init",
        "event_video_edit_screen_init",
        "event_video_request_get_all",
        "event_video_clear_noise",
        "event_video_compare",
        "event_video_get_info",
        "event_video_create_thumbnail",
        "event_video_edit",
        "event_video_merge_build_create",
        "event_video_concat_build_create",
        "event_video_encode_build_create",
        "event_video_auth_validate",
        "event_video_request_insert",
        "event_video_request_update",
        "event_video_request_get_by_id",
        "event_video_request_process",
        "event_video_request_cancel",
        "event_video_merge_request",
        "event_video_merge_video_and_audio",
        "stream_request_with_status",
        "stream_request_with_id",
        "event_video_request_delete",
    });
    static_assert(names.size() == static_cast<std::size_t>(Event::deleteRequest) + 1);
    return names.at(static_cast<std::size_t>(event));
}

} // namespace corvanta
