#pragma once

#include <CLI/App.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>

#include <optional>
#include <string>
#include <vector>

/// The options of a command that say how it encodes.
class EncodingOptions {
  public:
    explicit EncodingOptions(CLI::App& command);
    EncodingOptions(const EncodingOptions&) = delete;
    EncodingOptions& operator=(const EncodingOptions&) = delete;

    /// Nothing if none is on the command line. Throws UsageError for values that can't be used.
    std::optional<corvanta::CorvantaSdkVideoEncoding> chosen() const;

  private:
    corvanta::CorvantaSdkVideoEncoding encoding_;
    std::string codec_;
    std::string quality_;
    std::string preset_;
    std::string audioBitRate_;
};

/// Throws Refusal if these files can't be encoded so.
void requireEncodable(const corvanta::CorvantaSdkVideoEncoding& encoding,
                      const std::vector<corvanta::CorvantaSdkVideoInformation>& files);
