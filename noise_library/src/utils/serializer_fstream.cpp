#include "utils/serializer_fstream.hpp"

#include "utils/path.hpp"

namespace TALVO::UTILS {

SerializerFstream::SerializerFstream(SerializeMode mode, wchar_t const* path)
    : Serializer(input_), mode_(mode) {
    if (mode == SerializeMode::Write) {
        Path(path).openOfstream(output_, std::ios_base::binary);
        return;
    }
    Path(path).openIfstream(input_, std::ios_base::binary | std::ios_base::ate);
    if (auto const end = input_.tellg(); end > 0)
        setSize(static_cast<std::uint64_t>(end));
    input_.seekg(0);
}

void SerializerFstream::checkMode() const {
    TALVO_ASSERT(mode_ == SerializeMode::Read, "mode_ == SerializeMode::Read");
}

} // namespace TALVO::UTILS
