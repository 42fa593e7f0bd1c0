#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoEncoding.hpp>

#include <nlohmann/json.hpp>

namespace corvanta {

/// The stored form of an encoding: an object with what is set, under the names of the fields.
nlohmann::ordered_json toJson(const CorvantaSdkVideoEncoding& encoding);

/// Reads it back. Throws nlohmann::json::exception for a value of another type and for an unknown name.
CorvantaSdkVideoEncoding encodingFrom(const nlohmann::ordered_json& object);

} // namespace corvanta
