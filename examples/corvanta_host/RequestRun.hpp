#pragma once

#include "Console.hpp"

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>
#include <nlohmann/json_fwd.hpp>

#include <memory>
#include <string>
#include <vector>

using RequestPointer = std::shared_ptr<corvanta::CorvantaSdkVideoRequest>;

/// Processes a request with a progress bar and prints where its result lies. Ctrl-C cancels it. What a failed
/// or cancelled run has begun to write is removed.
void runRequest(Console& console, const RequestPointer& request, const std::string& outputPath);

/// A request as one JSON object, and as one line of a table.
nlohmann::ordered_json toJson(const corvanta::CorvantaSdkVideoRequest& request);
std::string toLine(const corvanta::CorvantaSdkVideoRequest& request);
