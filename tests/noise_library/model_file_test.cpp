#include "noise_library/support/model_file.hpp"
#include "utils/control_file.hpp"
#include "utils/crypto.hpp"
#include "weights/weight.hpp"

#include <gmock/gmock.h>
#include <random>

namespace {

using namespace TALVO;
using CONTAINERS::Matrix;
using noise_test::ModelFile;
using testing::ElementsAre;
using testing::HasSubstr;
using UTILS::Path;
using UTILS::TalvoException;
using WEIGHTS::Weight;

std::string messageOf(std::function<void()> const& call) {
    try {
        call();
    } catch (TalvoException const& error) {
        return error.what();
    }
    return "no exception";
}

ModelFile everyType() {
    return ModelFile()
        .set("float", 1.5f)
        .set("int", -7)
        .set("string", std::string("a\0b", 3))
        .set("vector", std::vector<float>{1, 2})
        .set("matrix", Matrix(2, 1, {3, 4}))
        .set("vectors", std::vector<std::vector<float>>{{5}, {}, {6, 7}})
        .set("matrices", std::vector<Matrix>{Matrix(1, 1, {8}), Matrix()});
}

class ModelFileTest : public testing::Test {
  protected:
    /// What reading a file of that name and content gives: "" for success, else the error.
    std::string read(std::string const& name, std::string const& content) {
        weight_ = Weight();
        Path const path(folder_.write(name, content).wstring());
        return weight_.read(path) ? "" : weight_.error();
    }

    noise_test::TemporaryFolder folder_;
    Weight weight_;
};

TEST_F(ModelFileTest, ReadsEveryTypeInBothForms) {
    for (auto const& [name, content] :
         {std::pair{"m.nmw", everyType().plain()}, {"m.tw", everyType().enciphered()}}) {
        ASSERT_EQ(read(name, content), "");
        EXPECT_EQ(weight_.getReference<float>("float"), 1.5f);
        EXPECT_EQ(weight_.getReference<int>("int"), -7);
        EXPECT_EQ(weight_.getReference<std::string>("string"), std::string("a\0b", 3));
        EXPECT_THAT(weight_.getReference<std::vector<float>>("vector"), ElementsAre(1, 2));
        EXPECT_EQ(weight_.getReference<Matrix>("matrix").rowSize(), 2u);
        EXPECT_THAT(weight_.getReference<std::vector<std::vector<float>>>("vectors"),
                    ElementsAre(ElementsAre(5), ElementsAre(), ElementsAre(6, 7)));
        EXPECT_EQ(weight_.getReference<std::vector<Matrix>>("matrices").at(0).data().at(0), 8.0f);
        EXPECT_THAT(messageOf([&] { weight_.getReference<float>("int"); }),
                    testing::AllOf(HasSubstr("file weights/weight Line"),
                                   HasSubstr("Function getReference\n"),
                                   HasSubstr("ERROR DATA With Key: intdoesn't exists")));
    }
}

TEST_F(ModelFileTest, KeepsTheFirstOfARepeatedKeyAndSkipsUnknownTypesAsGarbage) {
    std::string const first = ModelFile().set("key", 1).plain();
    std::string const second = ModelFile().set("key", 2).plain();
    ASSERT_EQ(read("m.nmw", first + second), "");
    EXPECT_EQ(weight_.getReference<int>("key"), 1);

    std::string unknown = ModelFile().set("odd", 1).plain();
    unknown[unknown.size() - 8] = 7; // the type; what was the value reads as the next key's length
    for (auto const& [name, content] :
         {std::pair{"m.nmw", first + unknown}, {"m.tw", noise_test::encipher(first + unknown)}}) {
        ASSERT_EQ(read(name, content), "");
        EXPECT_EQ(weight_.getReference<int>("key"), 1);
        EXPECT_EQ(weight_.find<int>("odd"), nullptr);
    }
}

TEST_F(ModelFileTest, TellsWhyAFileCantBeRead) {
    std::string const good = everyType().enciphered();
    std::string badMagic = good;
    badMagic[3] = 'x';
    struct Case {
        char const* name;
        std::string content;
        char const* error;
    };
    for (Case const& c :
         {Case{"m.tw", good.substr(0, 31), "Corrupted weight file!"},
          {"m.tw", badMagic, "Corrupted weight header!"},
          {"m.TW", good, "Invalid weight file!"},
          {"m", good, "Invalid weight file!"},
          {"m.nmw", "", ""},
          {"m.nmw",
           ModelFile().set("m", Matrix()).plain() + std::string("\1\0\0\0k\4\0\0\0\1\0\0\0\0\0\0\0", 17),
           "Corrupted weight file!"}})
        EXPECT_EQ(read(c.name, c.content), c.error) << c.name;
    EXPECT_FALSE(weight_.find<Matrix>("m")) << "a corrupted file leaves nothing behind";

    Weight weight;
    EXPECT_FALSE(weight.read(Path(L"/nowhere/m.tw")));
    EXPECT_EQ(weight.error(), "Can't open weight file!");
    EXPECT_FALSE(weight.read(Path(L"/nowhere/m.nmw")));
    EXPECT_EQ(weight.error(), "Corrupted weight file!");
}

TEST_F(ModelFileTest, ALengthBeyondTheFileIsAShortReadThatAllocatesNothing) {
    std::string const good = ModelFile().set("good", 1).plain();
    std::string const huge = "\xFF\xFF\xFF\xFF";
    std::string const key = std::string("\1\0\0\0k", 5);
    auto const type = [](char number) { return std::string{number, 0, 0, 0}; };
    for (std::string const& bad :
         {huge, key + type(2) + huge, key + type(3) + huge, key + type(4) + huge + huge, key + type(5) + huge,
          key + type(6) + huge, key + type(5) + type(1) + huge, key + type(6) + type(1) + huge + huge})
        for (auto const& [name, content] :
             {std::pair{"m.nmw", good + bad}, {"m.tw", noise_test::encipher(good + bad)}}) {
            EXPECT_EQ(read(name, content), "");
            EXPECT_EQ(weight_.getReference<int>("good"), 1);
            EXPECT_THROW(weight_.getReference<std::string>("k"), TalvoException);
        }
    // Padding that is longer than the block leaves no records.
    std::string padded = noise_test::encipher(good);
    std::vector<unsigned> inner{0, 0xFFFFFFFF};
    UTILS::Crypto(UTILS::Crypto::TEA).encrypt(inner.data(), 2);
    padded.replace(16, 8, std::string(reinterpret_cast<char const*>(inner.data()), 8));
    EXPECT_EQ(read("m.tw", padded), "");
    EXPECT_EQ(weight_.find<int>("good"), nullptr);
}

TEST_F(ModelFileTest, StandsTruncationsAndBitFlips) {
    ModelFile const model = noise_test::makeModel("0.0.6");
    std::mt19937 random(11);
    for (int turn = 0; turn < 1000; ++turn) {
        bool const plain = turn % 2 == 0;
        std::string content = plain ? everyType().plain() : everyType().enciphered();
        if (turn % 4 < 2)
            content.resize(random() % content.size());
        else
            for (unsigned flips = 1 + random() % 4; flips > 0; --flips)
                content[random() % content.size()] ^= static_cast<char>(1u << random() % 8);
        std::string const error = read(plain ? "m.nmw" : "m.tw", content);
        EXPECT_THAT(error, testing::AnyOf("", "Corrupted weight file!", "Corrupted weight header!"));
    }
    // A file that was cut off keeps the records before the cut.
    std::string const whole = model.plain();
    ASSERT_EQ(read("m.nmw", whole.substr(0, whole.size() - 1)), "");
    EXPECT_NE(weight_.find<std::vector<float>>("BaesGRU"), nullptr);
}

TEST(ControlFile, SplitsLinesIntoKeyAndValueAndStopsAtOneWithoutAValue) {
    using testing::Pair;
    noise_test::TemporaryFolder const folder;
    std::vector<std::pair<std::string, std::string>> pairs;
    auto const read = [&](std::string const& content) {
        pairs.clear();
        Path path(folder.write("c.cfg", content).wstring());
        return UTILS::readControlFile(pairs, path);
    };
    EXPECT_TRUE(read("# comment\r\n\n \t\nB 2\r\n  KEY\t a  b c \r\nA 1\nA 3"));
    EXPECT_THAT(pairs, ElementsAre(Pair("B", "2"), Pair("KEY", "a  b c"), Pair("A", "1"), Pair("A", "3")));
    for (std::string const alone : {"alone", "alone  "}) {
        EXPECT_FALSE(read("A 1\n" + alone + "\nB 2\n"));
        EXPECT_THAT(pairs, ElementsAre(Pair("A", "1")));
    }
}

} // namespace
