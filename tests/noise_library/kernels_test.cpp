#include "utils/matrix_functions.hpp"
#include "utils/row_kernel.hpp"
#include "utils/vector_functions.hpp"
#include "utils/window_functions.hpp"

#include <bit>
#include <gmock/gmock.h>
#include <random>

namespace {

using namespace TALVO::UTIL_FUNCTIONS;
using testing::FloatEq;
using testing::FloatNear;
using testing::Pointwise;

std::vector<float> randomVector(std::size_t size, std::mt19937& random) {
    std::normal_distribution<float> values(0.0f, 3.0f);
    std::vector<float> v(size);
    for (float& value : v)
        value = values(random);
    return v;
}

/// The order that is promised, one rounding after each product and each sum.
std::vector<float> inRowOrder(std::vector<float> const& v, Matrix const& m, std::vector<float> out) {
    for (std::size_t r = 0; r < m.rowSize(); ++r)
        for (std::size_t c = 0; c < m.colSize(); ++c) {
            float volatile const product = v[r] * m.row(r)[c];
            out[c] += product;
        }
    return out;
}

TEST(MatMulPlusB, IsTheSameAtEveryRegisterWidthAndInEveryForm) {
    std::mt19937 random(2);
    for (auto const& [rows, cols] : {std::pair<std::size_t, std::size_t>{1, 1},
                                     {3, 5},
                                     {4, 64},
                                     {7, 65},
                                     {8, 63},
                                     {16, 128},
                                     {37, 200},
                                     {768, 256},
                                     {33, 1},
                                     {1, 300}}) {
        SCOPED_TRACE(testing::Message() << rows << " by " << cols);
        auto const v = randomVector(rows, random);
        auto const bias = randomVector(cols, random);
        Matrix const m(rows, cols, randomVector(rows * cols, random));
        auto const expected = inRowOrder(v, m, bias);
        for (RowKernelVariant const& variant : rowKernelVariants()) {
            std::vector<float> out = bias;
            variant.run(v.data(), rows, m.row(0), cols, out.data());
            EXPECT_EQ(out, expected) << variant.name;
        }
        std::vector<float> out;
        matMulPlusB(v, m, bias, out);
        EXPECT_EQ(out, expected);
        matMulPlusB(v.data(), v.size(), m, bias, out);
        EXPECT_EQ(out, expected);
        for (Matrix const& b : {Matrix(1, cols, bias), Matrix(cols, 1, bias)}) {
            matMulPlusB(v, m, b, out);
            EXPECT_EQ(out, expected);
        }

        std::vector<float> rounded = m.data();
        for (float& value : rounded)
            value = std::bit_cast<float>(std::bit_cast<std::uint32_t>(value) & 0xffff0000u);
        Matrix compact(rows, cols, rounded);
        auto const expectedOfRounded = inRowOrder(v, compact, bias);
        compact.keepBfloat16();
        ASSERT_EQ(compact.bfloat16().size(), rows * cols);
        for (RowKernelVariant const& variant : rowKernelVariants()) {
            out = bias;
            variant.runBfloat16(v.data(), rows, compact.bfloat16().data(), cols, out.data());
            EXPECT_EQ(out, expectedOfRounded) << variant.name;
        }
        matMulPlusB(v, compact, bias, out);
        EXPECT_EQ(out, expectedOfRounded);
        compact.row(0)[0] += 1;
        matMulPlusB(v, compact, bias, out);
        EXPECT_EQ(out, inRowOrder(v, compact, bias)) << "the copy is out of date";
        Matrix fine = m;
        fine.row(rows - 1)[cols - 1] = 0.1f;
        fine.keepBfloat16();
        EXPECT_TRUE(fine.bfloat16().empty());

        // The matrix-first forms give the same products of the transposed matrix, added in the same order.
        Matrix transposed(cols, rows);
        for (std::size_t r = 0; r < rows; ++r)
            for (std::size_t c = 0; c < cols; ++c)
                transposed.row(c)[r] = m.row(r)[c];
        matMulPlusB(transposed, v, bias, out);
        EXPECT_EQ(out, expected);
        matMulPlusB(transposed, v.data(), v.size(), bias, out);
        EXPECT_EQ(out, expected);
        matMulPlusB(transposed, v, Matrix(1, cols, bias), out);
        EXPECT_EQ(out, expected);
    }
}

using Generator = void (*)(std::size_t, float*, std::size_t);

std::vector<float> windowOf(Generator generate, std::size_t size) {
    std::vector<float> window(size, 9.0f);
    generate(size, window.data(), window.size());
    return window;
}

TEST(Windows, HaveTheirShapes) {
    EXPECT_THAT(windowOf(generateTriangularWindowVector, 5),
                Pointwise(FloatEq(), {0.0f, 0.4f, 1.0f, 0.6f, 0.0f}));
    EXPECT_THAT(windowOf(generateTriangularWindowVector, 4), Pointwise(FloatEq(), {0.0f, 0.5f, 1.0f, 0.5f}));
    EXPECT_THAT(windowOf(generateHanningWindowVector, 5),
                Pointwise(FloatNear(1e-7f), {0.0f, 0.5f, 1.0f, 0.5f, 0.0f}));
    EXPECT_THAT(windowOf(generateHammingWindowVector, 5),
                Pointwise(FloatNear(1e-7f), {0.08f, 0.54f, 1.0f, 0.54f, 0.08f}));
    auto const vorbis = windowOf(generateVorbisWindowVector, 512);
    for (std::size_t i = 0; i < 256; ++i)
        EXPECT_NEAR(vorbis[i] * vorbis[i] + vorbis[i + 256] * vorbis[i + 256], 1.0f, 1e-6f);
}

} // namespace
