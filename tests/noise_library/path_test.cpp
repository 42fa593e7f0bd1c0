#include "utils/path.hpp"
#include "utils/talvo_exception.hpp"

#include <gmock/gmock.h>

namespace {

using namespace TALVO::UTILS;

TEST(Path, Normalizes) {
    struct Case {
        wchar_t const *path, *normal;
        bool absolute;
    };
    for (Case const& c : {Case{L"", L"", false},
                          {L"a/../b", L"a/../b", false},
                          {L"a\\b", L"a/b", false},
                          {L"/", L"/", true},
                          {L"/a/b.tw", L"/a/b.tw", true},
                          {L"/a/b/", L"/a/b/", true},
                          {L"//a///b//", L"/a/b/", true},
                          {L"/./a/./b/.", L"/a/b/", true},
                          {L"/a/b/../c.tw", L"/a/c.tw", true},
                          {L"/a/..", L"/", true},
                          {L"/a/b/..", L"/a/", true},
                          {L"/../../a", L"/a", true},
                          {L"/a/../../b", L"/b", true},
                          {L"/..a/b..", L"/..a/b..", true},
                          {L"\\a\\..\\b", L"/b", true}}) {
        Path path(c.path);
        EXPECT_EQ(path.normalize(), c.absolute);
        EXPECT_EQ(path.getFileNameWStr(), c.normal);
    }
}

TEST(Path, TellsStemAndExtension) {
    struct Case {
        wchar_t const *path, *stem;
        wchar_t const *extensionOfName, *textBehindDot;
    };
    for (Case const& c : {Case{L"/m/voice.v2.tw", L"voice.v2", L"tw", L"tw"},
                          {L"voice.nmw", L"voice", L"nmw", L"nmw"},
                          {L"/m.d/voice", L"voice", L"", L"d/voice"},
                          {L"voice", L"voice", L"", L""},
                          {L"/m/.tw", L"", L"tw", L"tw"},
                          {L"/m/voice.", L"voice", L"", L""},
                          {L"", L"", L"", L""}}) {
        EXPECT_EQ(getFileName(c.path), c.stem);
        EXPECT_EQ(Path(c.path).getFileExtension(), c.extensionOfName);
        EXPECT_EQ(getFileExtension(c.path), c.textBehindDot);
    }
}

TEST(Path, ConvertsToUtf8AndRefusesWhatIsNone) {
    std::wstring const wide = L"aé漢\U0001F600\u007f\u0080\u07ff\u0800\uffff\U0010ffff";
    EXPECT_EQ(Path::convertWString2MBString(L"é漢\U0001F600"), "\xC3\xA9\xE6\xBC\xA2\xF0\x9F\x98\x80");
    EXPECT_EQ(Path::convertMBString2WString(Path::convertWString2MBString(wide)), wide);
    for (char const* bad : {"\x80", "\xC3", "\xC3(", "\xC0\xAF", "\xE0\x80\xAF", "\xED\xA0\x80",
                            "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "a\xE6\xBC"})
        EXPECT_THROW(Path::convertMBString2WString(bad), TalvoException);
    for (wchar_t const bad : {wchar_t(0xD800), wchar_t(0x110000), wchar_t(-1)})
        EXPECT_THROW(Path::convertWString2MBString(std::wstring(1, bad)), TalvoException);
}

} // namespace
