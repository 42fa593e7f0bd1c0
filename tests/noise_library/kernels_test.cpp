#include "utils/matrix_functions.hpp"
#include "utils/row_kernel.hpp"
#include "utils/vector_functions.hpp"
#include "utils/window_functions.hpp"

#include <bit>
#include <gmock/gmock.h>
#include <random>

namespace {

using namespace TALVO::UTIL_FUNCTIONS;
using testing::ElementsAre;
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

TEST(MatMulPlusB, MultipliesMatricesWhoseSecondIsSquare) {
    Matrix const m1(1, 2, {1, 2});
    Matrix const m2(2, 2, {3, 4, 5, 6});
    Matrix out;
    matMulPlusB(m1, m2, Matrix(1, 2, {100, 200}), out);
    EXPECT_THAT(out.data(), ElementsAre(113, 216));
    // A second matrix that is higher than wide loses the products behind its column count.
    Matrix narrow;
    matMulPlusB(Matrix(1, 3, {1, 2, 4}), Matrix(3, 1, {1, 1, 1}), Matrix(1, 1, {0.5f}), narrow);
    EXPECT_THAT(narrow.data(), ElementsAre(1.5f));
}

TEST(MatMulPlusBDeathTest, EndsOnSizesThatDontFit) {
    Matrix const m(2, 3);
    std::vector<float> out;
    EXPECT_DEATH(matMulPlusB(std::vector<float>(3), m, std::vector<float>(3), out),
                 "mat.rowSize\\(\\)==vec.size\\(\\) && vec.size\\(\\)!=0 && b.size\\(\\)==mat.colSize\\(\\)");
    EXPECT_DEATH(matMulPlusB(m, std::vector<float>(3), std::vector<float>(3), out),
                 "b.size\\(\\)==out.size\\(\\)");
    EXPECT_DEATH(matMulPlusB(std::vector<float>(2), m, Matrix(2, 2), out),
                 "\\(b.rowSize\\(\\)==1 && b.colSize\\(\\)==out.size\\(\\)\\)");
    Matrix product;
    EXPECT_DEATH(matMulPlusB(m, m, m, product), "m1.colSize\\(\\)==m2.rowSize\\(\\) && m1.colSize\\(\\)!=0");
}

TEST(VectorFunctions, ComputeElementByElement) {
    std::vector<float> const a{1, -2, 3};
    std::vector<float> const b{4, 5, -6};
    std::vector<float> out;
    vectorMultVector(a, b, out);
    EXPECT_THAT(out, ElementsAre(4, -10, -18));
    vectorPlusVector(a, b, out);
    EXPECT_THAT(out, ElementsAre(5, 3, -3));
    vectorMinusVector(a, b, out);
    EXPECT_THAT(out, ElementsAre(-3, -7, 9));
    vectorSquare(a, out);
    EXPECT_THAT(out, ElementsAre(1, 4, 9));
    vectorMultScalar(a, -0.5f, out);
    EXPECT_THAT(out, ElementsAre(-0.5f, 1, -1.5f));
    affectV1ByReluAddV2(a, b, out);
    EXPECT_THAT(out, ElementsAre(5, 5, -3));
    vectorSymetricSumWithCoefficient(a, {0, 1, 0.5f}, b, out);
    EXPECT_THAT(out, ElementsAre(4, -2, -1.5f));
    vectorSymetricSumWithCoefficient(a, {0.25f}, b, out);
    EXPECT_THAT(out, ElementsAre(3.25f, 3.25f, -3.75f));
    affectVectorBySigmoid({0.0f, -2000.0f, 2000.0f}, out);
    EXPECT_THAT(out, ElementsAre(0.5f, 0.0f, 1.0f));
    EXPECT_FLOAT_EQ(vectorRMS(std::vector<float>{3, -4}), std::sqrt(12.5f) + 1e-6f);
    EXPECT_FLOAT_EQ(vectorRMS(std::vector<float>{0}), 1e-6f);
    std::vector<std::complex<float>> spectrum;
    vectorMultVector({{1, 2}, {-3, 4}}, {2, 0.5f}, spectrum);
    EXPECT_THAT(spectrum, ElementsAre(std::complex<float>(2, 4), std::complex<float>(-1.5f, 2)));
}

TEST(VectorFunctionsDeathTest, EndOnSizesThatDontFit) {
    std::vector<float> const one{1};
    std::vector<float> const two{1, 2};
    std::vector<float> out;
    std::vector<std::complex<float>> complexOut;
    std::vector<float> both = two;
    EXPECT_DEATH(vectorMultVector(one, two, out), "v1.size\\(\\)==v2.size\\(\\)");
    EXPECT_DEATH(vectorPlusVector(one, both, both), "v1Size==v2Size && v1Size==outSize && v1Size!=0");
    EXPECT_DEATH(affectV1ByReluAddV2(one, two, out), "v1Size == v2Size && v1Size == outSize && v1Size != 0");
    EXPECT_DEATH(vectorSquare(nullptr, 1, out.data(), 1), "v1_ptr != nullptr && out_ptr != nullptr");
    EXPECT_DEATH(vectorSymetricSumWithCoefficient({1, 2, 3}, two, {1, 2, 3}, out),
                 "v1.size\\(\\)==gamma.size\\(\\)");
    EXPECT_DEATH(vectorMultVector({{1, 2}}, two, complexOut), "cvec1.size\\(\\)==vec2.size");
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
