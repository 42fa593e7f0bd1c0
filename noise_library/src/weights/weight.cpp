#include "weights/weight.hpp"

#include "utils/crypto.hpp"
#include "utils/matrix.hpp"
#include "utils/printed_line.hpp"
#include "utils/serializer_fstream.hpp"
#include "utils/serializer_sstream.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <vector>

namespace TALVO::WEIGHTS {
namespace {

constexpr std::size_t headerSize = 16;
constexpr std::array<char, 4> magic{'T', 'M', 'W', '\0'};

template <class T>
bool readInto(CONTAINERS::AnyMap& data, std::string const& key, UTILS::Serializer& stream) {
    T value{};
    if (!(stream >> value))
        return false;
    data.insert<T>(key, std::move(value), CONTAINERS::AnyMap::KEEP);
    return true;
}

/// The record stream of a deciphered block of that many bytes. Padding longer than the block leaves
/// no records, as a file that was cut off would.
std::string recordsOf(std::vector<unsigned int> const& block, std::size_t size) {
    std::uint32_t const pad = block[1];
    if (pad > size - headerSize)
        return {};
    std::string records(size - headerSize - pad, '\0');
    std::memcpy(records.data(), reinterpret_cast<char const*>(block.data()) + headerSize, records.size());
    return records;
}

} // namespace

bool Weight::read(UTILS::Path const& path) {
    data_.clear();
    std::wstring const extension = path.getFileExtension();
    bool read = false;
    if (extension == L"tw")
        read = readEnciphered(path);
    else if (extension == L"nmw")
        read = readPlain(path);
    else
        error_ = "Invalid weight file!";
    if (!read)
        return false;
    if (data_.empty())
        UTILS::printLine("Warning Nothing added from weight");
    error_.clear();
    return true;
}

bool Weight::readEnciphered(UTILS::Path const& path) {
    std::ifstream file;
    path.openIfstream(file, std::ios_base::binary);
    if (!file.is_open()) {
        error_ = "Can't open weight file!";
        return false;
    }
    file.seekg(0, std::ios_base::end);
    std::streamoff const fileSize = file.tellg();
    file.seekg(0);
    if (fileSize < static_cast<std::streamoff>(2 * headerSize)) {
        error_ = "Corrupted weight file!";
        return false;
    }
    std::array<char, headerSize> header{};
    if (!file.read(header.data(), header.size()) || !std::equal(magic.begin(), magic.end(), header.begin())) {
        error_ = "Corrupted weight header!";
        return false;
    }
    std::size_t const size = static_cast<std::size_t>(fileSize) - headerSize;
    std::size_t const wordCount = size / sizeof(unsigned int);
    // An odd count makes the cipher reach one word further, and bytes may be left behind the words.
    std::vector<unsigned int> block(wordCount + 2);
    if (!file.read(reinterpret_cast<char*>(block.data()), static_cast<std::streamsize>(size))) {
        error_ = "Corrupted weight file!";
        return false;
    }
    file.close();
    UTILS::Crypto crypto(UTILS::Crypto::TEA);
    crypto.decrypt(block.data(), static_cast<unsigned int>(wordCount));
    UTILS::SerializerSstream stream(recordsOf(block, size));
    return readRecords(stream, true);
}

bool Weight::readPlain(UTILS::Path const& path) {
    UTILS::SerializerFstream stream(UTILS::SerializeMode::Read, path.getFileNameWStr().c_str());
    return readRecords(stream, false);
}

bool Weight::readRecords(UTILS::Serializer& stream, bool enciphered) {
    while (!stream.eof()) {
        std::string key;
        stream >> key;
        if (!stream.good()) {
            if (stream.eof())
                return true;
            data_.clear();
            error_ = "Corrupted weight file!";
            return false;
        }
        int type = 0;
        if (stream >> type && !read_value(key, type, stream) && enciphered)
            error_ = "Failed to read -- key: " + key + ", type: " + std::to_string(type);
    }
    return true;
}

bool Weight::read_value(std::string const& key, int type, UTILS::Serializer& stream) {
    switch (type) {
    case 0:
        return readInto<float>(data_, key, stream);
    case 1:
        return readInto<int>(data_, key, stream);
    case 2:
        return readInto<std::string>(data_, key, stream);
    case 3:
        return readInto<std::vector<float>>(data_, key, stream);
    case 4:
        return readInto<CONTAINERS::Matrix>(data_, key, stream);
    case 5:
        return readInto<std::vector<std::vector<float>>>(data_, key, stream);
    case 6:
        return readInto<std::vector<CONTAINERS::Matrix>>(data_, key, stream);
    default:
        return false;
    }
}

std::string Weight::getWeightVersion() const {
    auto const version = find<std::string>("Version");
    if (version == nullptr)
        TALVO_THROW("there are no Weight version in Weight ");
    return *version;
}

std::pair<int, int> Weight::getWeightInfo() const {
    constexpr std::array rates{8000, 16000, 32000};
    constexpr std::array<std::int64_t, 6> durations{10, 15, 20, 30, 32, 40};
    auto const rate = find<int>("SampleRate");
    auto const length = find<int>("FrameLength");
    if (rate != nullptr && length != nullptr && std::ranges::find(rates, *rate) != rates.end()) {
        std::int64_t const duration = std::int64_t{*length} * 1000 / *rate;
        if (std::ranges::find(durations, duration) != durations.end())
            return {*rate, static_cast<int>(duration)};
    }
    TALVO_THROW("there are no needing Weight information in Weight ");
}

} // namespace TALVO::WEIGHTS
