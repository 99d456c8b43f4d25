#include "platform/settings.h"

#include "platform/registry.h"
#include "tests/windows/support.h"

#include <gtest/gtest.h>

using namespace tonex;
using namespace tonex::windows_test;

namespace {

const std::wstring kApplicationKey = L"Software\\VB and VBA Program Settings\\Tonex tests";

} // namespace

TEST(Settings, LiveWhereTheSuitesProgramsKeepTheirs) {
    const TestKey key(kApplicationKey);
    ASSERT_TRUE(WriteSetting(L"Tonex tests", L"Tonex", L"File1", L"1,PC:A.SND,C:\\x\\A.SND"));
    EXPECT_EQ(UserText(kApplicationKey + L"\\Tonex", L"File1"), L"1,PC:A.SND,C:\\x\\A.SND");
    EXPECT_EQ(ReadSetting(L"Tonex tests", L"Tonex", L"File1", L"none"), L"1,PC:A.SND,C:\\x\\A.SND");
}

TEST(Settings, AMissingOneGivesTheDefault) {
    const TestKey key(kApplicationKey);
    EXPECT_EQ(ReadSetting(L"Tonex tests", L"Tonex", L"File1", L"none"), L"none");
    ASSERT_TRUE(WriteSetting(L"Tonex tests", L"Tonex", L"Other", L"x"));
    EXPECT_EQ(ReadSetting(L"Tonex tests", L"Tonex", L"File1", L"none"), L"none");
    EXPECT_EQ(ReadSetting(L"Tonex tests", L"Global", L"Other", L"none"), L"none");
}

TEST(Settings, AnEmptyTextIsNotMissing) {
    const TestKey key(kApplicationKey);
    ASSERT_TRUE(WriteSetting(L"Tonex tests", L"Tonex", L"File1", L""));
    EXPECT_EQ(ReadSetting(L"Tonex tests", L"Tonex", L"File1", L"none"), L"");
}

TEST(Settings, ANewTextTakesThePlaceOfTheOld) {
    const TestKey key(kApplicationKey);
    ASSERT_TRUE(WriteSetting(L"Tonex tests", L"Tonex", L"File1", std::wstring(3000, L'x')));
    EXPECT_EQ(ReadSetting(L"Tonex tests", L"Tonex", L"File1", L""), std::wstring(3000, L'x'));
    ASSERT_TRUE(WriteSetting(L"Tonex tests", L"Tonex", L"File1", L"\u30E1\u30ED"));
    EXPECT_EQ(ReadSetting(L"Tonex tests", L"Tonex", L"File1", L""), L"\u30E1\u30ED");
}

TEST(Settings, OnlyTextCounts) {
    const TestKey key(kApplicationKey);
    const DWORD number = 1;
    const TestKey section(kApplicationKey + L"\\Tonex");
    section.Set(L"number", REG_DWORD, &number, sizeof number);
    EXPECT_EQ(ReadSetting(L"Tonex tests", L"Tonex", L"number", L"none"), L"none");
    section.Set(L"open", REG_SZ, L"abc", 6); // stored without its NUL
    EXPECT_EQ(ReadSetting(L"Tonex tests", L"Tonex", L"open", L"none"), L"abc");
    section.Set(L"odd", REG_SZ, L"abc", 5); // half a character at the end
    EXPECT_EQ(ReadSetting(L"Tonex tests", L"Tonex", L"odd", L"none"), L"ab");
    section.Set(L"empty", REG_SZ, L"", 0);
    EXPECT_EQ(ReadSetting(L"Tonex tests", L"Tonex", L"empty", L"none"), L"");
}

TEST(Registry, AMissingKeyIsNull) {
    EXPECT_FALSE(OpenUserKey(L"Software\\Tonex tests\\none"));
}

TEST(Registry, AKeyIsOpenedForQueriesOnly) {
    const TestKey key(L"Software\\Tonex tests");
    key.SetText(L"InstallDir", L"C:\\Link\\");
    const RegistryKeyPtr opened = OpenUserKey(L"Software\\Tonex tests");
    ASSERT_TRUE(opened);
    EXPECT_EQ(QueryTextSize(*opened, L"InstallDir"), 9u);
    const HKEY handle = *reinterpret_cast<HKEY*>(opened.get()); // all that the record holds
    EXPECT_EQ(RegSetValueExW(handle, L"InstallDir", 0, REG_SZ, nullptr, 0), ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegDeleteValueW(handle, L"InstallDir"), ERROR_ACCESS_DENIED);
    wchar_t name[8];
    DWORD length = 8;
    EXPECT_EQ(RegEnumKeyExW(handle, 0, name, &length, nullptr, nullptr, nullptr, nullptr),
              ERROR_ACCESS_DENIED);
}

TEST(Registry, SizesCountTheEndingNul) {
    const TestKey key(L"Software\\Tonex tests");
    key.SetText(L"InstallDir", L"C:\\Link\\");
    key.SetText(L"empty", L"");
    const RegistryKeyPtr opened = OpenUserKey(L"Software\\Tonex tests");
    ASSERT_TRUE(opened);
    EXPECT_EQ(QueryTextSize(*opened, L"InstallDir"), 9u);
    EXPECT_EQ(QueryTextSize(*opened, L"empty"), 1u);
    EXPECT_EQ(QueryTextSize(*opened, L"none"), 0u);
}

TEST(Registry, OtherTypesThanTextHaveNoSize) {
    const TestKey key(L"Software\\Tonex tests");
    const DWORD number = 1;
    key.Set(L"number", REG_DWORD, &number, sizeof number);
    key.Set(L"bytes", REG_BINARY, L"abc", 8);
    key.Set(L"expand", REG_EXPAND_SZ, L"%x%", 8);
    const RegistryKeyPtr opened = OpenUserKey(L"Software\\Tonex tests");
    ASSERT_TRUE(opened);
    EXPECT_EQ(QueryTextSize(*opened, L"number"), 0u);
    EXPECT_EQ(QueryTextSize(*opened, L"bytes"), 0u);
    EXPECT_EQ(QueryTextSize(*opened, L"expand"), 4u);
    std::wstring buffer(10, L' ');
    EXPECT_FALSE(QueryText(*opened, L"number", buffer));
}

TEST(Registry, TextIsReadIntoABufferThatMayBeLarger) {
    const TestKey key(L"Software\\Tonex tests");
    key.SetText(L"InstallDir", L"C:\\Link\\");
    const RegistryKeyPtr opened = OpenUserKey(L"Software\\Tonex tests");
    ASSERT_TRUE(opened);
    std::wstring buffer(10, L' ');
    ASSERT_TRUE(QueryText(*opened, L"InstallDir", buffer));
    EXPECT_EQ(buffer, std::wstring(L"C:\\Link\\\0 ", 10));
    std::wstring small(8, L' ');
    EXPECT_FALSE(QueryText(*opened, L"InstallDir", small));
    EXPECT_FALSE(QueryText(*opened, L"none", buffer));
}
