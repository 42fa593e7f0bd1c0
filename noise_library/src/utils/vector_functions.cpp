#include "utils/vector_functions.hpp"

#include "utils/assertion.hpp"

#include <cmath>

namespace TALVO::UTIL_FUNCTIONS {

void vectorMultVector(float const* v1_ptr, std::size_t v1Size, float const* v2_ptr, std::size_t v2Size,
                      float* out_ptr, std::size_t outSize) {
    TALVO_ASSERT(v1_ptr != nullptr && v2_ptr != nullptr && out_ptr != nullptr,
                 "v1_ptr!=nullptr && v2_ptr!=nullptr && out_ptr!=nullptr");
    TALVO_ASSERT(v1Size == v2Size && v1Size == outSize && v1Size != 0,
                 "v1Size==v2Size && v1Size==outSize && v1Size!=0");
    for (std::size_t i = 0; i < outSize; ++i)
        out_ptr[i] = v1_ptr[i] * v2_ptr[i];
}

void vectorMultVector(std::vector<float> const& v1, std::vector<float> const& v2, std::vector<float>& out) {
    TALVO_ASSERT(v1.size() == v2.size(), "v1.size()==v2.size()");
    out.resize(v1.size());
    vectorMultVector(v1.data(), v1.size(), v2.data(), v2.size(), out.data(), out.size());
}

void vectorMultVector(std::vector<std::complex<float>> const& cvec1, std::vector<float> const& vec2,
                      std::vector<std::complex<float>>& out) {
    TALVO_ASSERT(cvec1.size() == vec2.size(), "cvec1.size()==vec2.size()");
    out.resize(cvec1.size());
    for (std::size_t i = 0; i < out.size(); ++i)
        out[i] = cvec1[i] * vec2[i];
}

void vectorMultScalar(float const* inData, std::size_t inSize, float scalar, float* outData,
                      std::size_t outSize) {
    TALVO_ASSERT(inSize == outSize && inData != nullptr && outData != nullptr,
                 "inSize==outSize && inData!=nullptr && outData!= nullptr");
    for (std::size_t i = 0; i < outSize; ++i)
        outData[i] = inData[i] * scalar;
}

void vectorMultScalar(std::vector<float> const& v1, float scalar, std::vector<float>& out) {
    TALVO_ASSERT(v1.size() != 0, "v1.size()!=0");
    out.resize(v1.size());
    vectorMultScalar(v1.data(), v1.size(), scalar, out.data(), out.size());
}

void vectorPlusVector(float const* v1_ptr, std::size_t v1Size, float const* v2_ptr, std::size_t v2Size,
                      float* out_ptr, std::size_t outSize) {
    TALVO_ASSERT(v1_ptr != nullptr && v2_ptr != nullptr && out_ptr != nullptr,
                 "v1_ptr!=nullptr && v2_ptr!=nullptr && out_ptr!=nullptr");
    TALVO_ASSERT(v1Size == v2Size && v1Size == outSize && v1Size != 0,
                 "v1Size==v2Size && v1Size==outSize && v1Size!=0");
    for (std::size_t i = 0; i < outSize; ++i)
        out_ptr[i] = v1_ptr[i] + v2_ptr[i];
}

void vectorPlusVector(std::vector<float> const& v1, std::vector<float> const& v2, std::vector<float>& out) {
    std::size_t const v2Size = v2.size(); // v2 may be the output
    out.resize(v1.size());
    vectorPlusVector(v1.data(), v1.size(), v2.data(), v2Size, out.data(), out.size());
}

void vectorMinusVector(float const* v1_ptr, std::size_t v1Size, float const* v2_ptr, std::size_t v2Size,
                       float* out_ptr, std::size_t outSize) {
    TALVO_ASSERT(v1_ptr != nullptr && v2_ptr != nullptr && out_ptr != nullptr,
                 "v1_ptr!=nullptr && v2_ptr!=nullptr && out_ptr!=nullptr");
    TALVO_ASSERT(v1Size == v2Size && v1Size == outSize && v1Size != 0,
                 "v1Size==v2Size && v1Size==outSize && v1Size!=0");
    for (std::size_t i = 0; i < outSize; ++i)
        out_ptr[i] = v1_ptr[i] - v2_ptr[i];
}

void vectorMinusVector(std::vector<float> const& v1, std::vector<float> const& v2, std::vector<float>& out) {
    std::size_t const v2Size = v2.size(); // v2 may be the output
    out.resize(v1.size());
    vectorMinusVector(v1.data(), v1.size(), v2.data(), v2Size, out.data(), out.size());
}

void vectorSquare(float const* v1_ptr, std::size_t v1Size, float* out_ptr, std::size_t outSize) {
    TALVO_ASSERT(v1_ptr != nullptr && out_ptr != nullptr, "v1_ptr != nullptr && out_ptr != nullptr");
    TALVO_ASSERT(v1Size == outSize && v1Size != 0, "v1Size == outSize && v1Size != 0");
    for (std::size_t i = 0; i < outSize; ++i)
        out_ptr[i] = v1_ptr[i] * v1_ptr[i];
}

void vectorSquare(std::vector<float> const& v1, std::vector<float>& out) {
    out.resize(v1.size());
    vectorSquare(v1.data(), v1.size(), out.data(), out.size());
}

float vectorRMS(float const* v1_ptr, std::size_t v1Size) {
    TALVO_ASSERT(v1_ptr != nullptr, "v1_ptr != nullptr && out_ptr != nullptr");
    TALVO_ASSERT(v1Size != 0, "v1Size == outSize && v1Size != 0");
    double sum = 0.0;
    for (std::size_t i = 0; i < v1Size; ++i)
        sum += static_cast<double>(v1_ptr[i] * v1_ptr[i]);
    return static_cast<float>(std::sqrt(sum / static_cast<double>(v1Size)) + 1e-6);
}

float vectorRMS(std::vector<float> const& v1) { return vectorRMS(v1.data(), v1.size()); }

void vectorSymetricSumWithCoefficient(std::vector<float> const& v1, std::vector<float> const& gamma,
                                      std::vector<float> const& v2, std::vector<float>& out) {
    TALVO_ASSERT(v1.size() == v2.size(), "v1.size()==v2.size()");
    TALVO_ASSERT(gamma.size() == 1 || v1.size() == gamma.size(), "v1.size()==gamma.size()");
    out.resize(v1.size());
    bool const single = gamma.size() == 1;
    for (std::size_t i = 0; i < out.size(); ++i) {
        float const g = gamma[single ? 0 : i];
        out[i] = (1.0f - g) * v2[i] + v1[i] * g;
    }
}

void affectVectorBySigmoid(float const* v1_ptr, std::size_t v1Size, float* out_ptr, std::size_t outSize) {
    TALVO_ASSERT(v1_ptr != nullptr && out_ptr != nullptr, "v1_ptr!=nullptr && out_ptr!=nullptr");
    TALVO_ASSERT(v1Size == outSize && v1Size != 0, "v1Size == outSize && v1Size != 0");
    for (std::size_t i = 0; i < outSize; ++i)
        out_ptr[i] = static_cast<float>(1.0 / (1.0 + std::exp(-static_cast<double>(v1_ptr[i]))));
}

void affectVectorBySigmoid(std::vector<float> const& v1, std::vector<float>& out) {
    out.resize(v1.size());
    affectVectorBySigmoid(v1.data(), v1.size(), out.data(), out.size());
}

void affectV1ByReluAddV2(float const* v1_ptr, std::size_t v1Size, float const* v2_ptr, std::size_t v2Size,
                         float* out_ptr, std::size_t outSize) {
    TALVO_ASSERT(v1_ptr != nullptr && v2_ptr != nullptr && out_ptr != nullptr,
                 "v1_ptr!=nullptr && v2_ptr!=nullptr && out_ptr!=nullptr");
    TALVO_ASSERT(v1Size == v2Size && v1Size == outSize && v1Size != 0,
                 "v1Size == v2Size && v1Size == outSize && v1Size != 0");
    for (std::size_t i = 0; i < outSize; ++i)
        out_ptr[i] = (v1_ptr[i] > 0.0f ? v1_ptr[i] : 0.0f) + v2_ptr[i];
}

void affectV1ByReluAddV2(std::vector<float> const& v1, std::vector<float> const& v2,
                         std::vector<float>& out) {
    std::size_t const v2Size = v2.size(); // v2 may be the output
    out.resize(v1.size());
    affectV1ByReluAddV2(v1.data(), v1.size(), v2.data(), v2Size, out.data(), out.size());
}

} // namespace TALVO::UTIL_FUNCTIONS
