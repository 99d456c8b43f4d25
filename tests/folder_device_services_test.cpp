// The folder that stands for the organiser.
#include "link/folder_device_services.h"

#include "platform/link_library.h"
#include "platform/text.h"
#include "tests/desktop/desktop.h"

#include <gtest/gtest.h>

#include <array>

namespace tonex::folder_device_services_test {

namespace {

const FolderDevice kDevice = {L"C:\\Link\\pcferry\\cache"};
const std::wstring kSound = L"C:\\Link\\pcferry\\cache\\System\\sound\\";

desktop::Desktop& FreshDesktop() {
    desktop::Desktop& desk = desktop::Reset();
    desk.folders = {L"C:",
                    L"C:\\Link",
                    L"C:\\Link\\pcferry",
                    L"C:\\Link\\pcferry\\cache",
                    L"C:\\Link\\pcferry\\cache\\System",
                    L"C:\\Link\\pcferry\\cache\\System\\sound",
                    L"C:\\Temp"};
    return desk;
}

void AddFile(desktop::Desktop& desk, const std::wstring& path, const std::string& bytes) {
    desk.files[path].bytes.assign(bytes.begin(), bytes.end());
}

std::string BytesOf(desktop::Desktop& desk, const std::wstring& path) {
    const auto file = desk.files.find(path);
    if (file == desk.files.end()) return "(missing)";
    return {file->second.bytes.begin(), file->second.bytes.end()};
}

} // namespace

TEST(FolderDevice, LiesBelowTheInstallationFolder) {
    EXPECT_EQ(DeviceOfInstallation(L"C:\\Link").root, L"C:\\Link\\pcferry\\cache");
    EXPECT_EQ(DeviceOfInstallation(L"C:\\Link\\").root, L"C:\\Link\\pcferry\\cache");
    EXPECT_EQ(DeviceOfInstallation(L"").root, L"");
}

TEST(FolderDevice, CacheAndDevicePathsConvertIntoEachOther) {
    EXPECT_EQ(DevicePathOf(kDevice, kSound + L"TUNE.SND"), L"\\System\\sound\\TUNE.SND");
    EXPECT_EQ(CachePathOf(kDevice, L"\\System\\sound\\TUNE.SND"), kSound + L"TUNE.SND");
    EXPECT_EQ(DevicePathOf(kDevice, L"C:\\Link\\pcferry\\cache\\System\\sound"), L"\\System\\sound");
    EXPECT_EQ(CachePathOf(kDevice, L"\\System\\sound"), L"C:\\Link\\pcferry\\cache\\System\\sound");
    EXPECT_EQ(DevicePathOf(kDevice, L"C:\\Link\\pcferry\\cache"), L"\\");
    EXPECT_EQ(CachePathOf(kDevice, L"\\"), L"C:\\Link\\pcferry\\cache");
    EXPECT_EQ(CachePathOf(kDevice, L"System\\sound\\A.SND"), kSound + L"A.SND");
    EXPECT_EQ(CachePathOf(kDevice, L"\\System\\sound\\Sax.SND"), kSound + L"Sax.SND");
}

TEST(FolderDevice, LetterCaseOfTheFolderDoesNotMatter) {
    EXPECT_EQ(DevicePathOf(kDevice, L"c:\\LINK\\PcFerry\\Cache\\System\\a.snd"), L"\\System\\a.snd");
}

TEST(FolderDevice, PathsOutsideAreNotOnTheDevice) {
    for (const wchar_t* path :
         {L"", L"C:\\Link\\userdata\\sound\\A.SND", L"C:\\Link\\pcferry\\cache2\\A.SND",
          L"C:\\Link\\pcferry\\cach", L"D:\\Link\\pcferry\\cache\\A.SND",
          L"C:\\Link\\pcferry\\cache\\..\\A.SND", L"C:\\Link\\pcferry\\cache\\.\\A.SND"})
        EXPECT_EQ(DevicePathOf(kDevice, path), L"") << ::testing::PrintToString(std::wstring(path));
}

TEST(FolderDevice, DevicePathsNeverLeaveTheFolder) {
    for (const wchar_t* path :
         {L"", L"..\\A.SND", L"\\..\\..\\A.SND", L"\\System\\..\\..\\A.SND", L"C:\\A.SND", L"\\System\\*.SND",
          L"\\System\\?.SND", L"\\System\\<.SND", L"\\System\\>.SND", L"\\System\\|.SND", L"\\System\\\".SND",
          L"\\System/A.SND", L"\\System\\.."})
        EXPECT_EQ(CachePathOf(kDevice, path), L"") << ::testing::PrintToString(std::wstring(path));
}

TEST(FolderDevice, WithoutAnInstallationEverythingIsRefused) {
    FreshDesktop();
    const FolderDevice none;
    EXPECT_EQ(DevicePathOf(none, L"\\A.SND"), L"");
    EXPECT_EQ(CachePathOf(none, L"\\A.SND"), L"");
    EXPECT_FALSE(DeviceFileExists(none, L"\\A.SND"));
    EXPECT_FALSE(PutDeviceFile(none, L"\\A.SND", L"C:\\a.snd"));
    EXPECT_TRUE(DeviceFiles(none, L"\\", L"snd").empty());
}

TEST(FolderDevice, FilesExistHiddenOnesTooButNoFolders) {
    desktop::Desktop& desk = FreshDesktop();
    AddFile(desk, kSound + L"A.SND", "a");
    AddFile(desk, kSound + L"H.SND", "h");
    desk.files[kSound + L"H.SND"].attributes = 2;
    EXPECT_TRUE(DeviceFileExists(kDevice, L"\\System\\sound\\A.SND"));
    EXPECT_TRUE(DeviceFileExists(kDevice, L"\\System\\sound\\H.SND"));
    EXPECT_FALSE(DeviceFileExists(kDevice, L"\\System\\sound\\NONE.SND"));
    EXPECT_FALSE(DeviceFileExists(kDevice, L"\\System\\sound"));
}

TEST(FolderDevice, ListsNamesInOrderThatTheCodePageCanSpell) {
    desktop::Desktop& desk = FreshDesktop();
    for (const wchar_t* name : {L"B.snd", L"a.SND", L"c.wav", L"\u0416.snd", L"\u0E01.snd"})
        AddFile(desk, kSound + name, "x");
    // Code page 932 has Cyrillic letters and no Thai ones.
    ASSERT_EQ(desk.code_page, 932u);
    ASSERT_FALSE(FitsAnsi(L"\u0E01.snd"));
    std::vector<std::wstring> expected = {L"a.SND", L"B.snd"};
    if (FitsAnsi(L"\u0416.snd")) expected.push_back(L"\u0416.snd");
    EXPECT_EQ(DeviceFiles(kDevice, L"\\System\\sound", L"snd"), expected);
    EXPECT_TRUE(DeviceFiles(kDevice, L"\\missing", L"snd").empty());
}

TEST(FolderDevice, AFileIsPutThereWhole) {
    desktop::Desktop& desk = FreshDesktop();
    AddFile(desk, L"C:\\Temp\\Snd1.tmp", "melody");
    EXPECT_TRUE(PutDeviceFile(kDevice, L"\\System\\sound\\A.SND", L"C:\\Temp\\Snd1.tmp"));
    EXPECT_EQ(BytesOf(desk, kSound + L"A.SND"), "melody");
    EXPECT_EQ(BytesOf(desk, L"C:\\Temp\\Snd1.tmp"), "melody");
    EXPECT_TRUE(PutDeviceFile(kDevice, L"\\A", L"C:\\Temp\\Snd1.tmp"));
    EXPECT_EQ(BytesOf(desk, kDevice.root + L"\\A"), "melody") << "a name of one letter";
}

TEST(FolderDevice, AFileAboveAMegabyteIsNotPut) {
    desktop::Desktop& desk = FreshDesktop();
    for (const std::size_t more : {0u, 1u}) {
        AddFile(desk, L"C:\\Temp\\Snd1.tmp", std::string(1024 * 1024 + more, 'x'));
        EXPECT_EQ(PutDeviceFile(kDevice, L"\\System\\sound\\A.SND", L"C:\\Temp\\Snd1.tmp"), more == 0);
    }
}

TEST(FolderDevice, NothingIsPutWhenTheSourceIsMissingOrTheTargetIsNoFile) {
    desktop::Desktop& desk = FreshDesktop();
    AddFile(desk, kSound + L"A.SND", "old");
    AddFile(desk, L"C:\\Temp\\Snd1.tmp", "melody");
    EXPECT_FALSE(PutDeviceFile(kDevice, L"\\System\\sound\\A.SND", L"C:\\Temp\\none.tmp"));
    EXPECT_FALSE(PutDeviceFile(kDevice, L"\\", L"C:\\Temp\\Snd1.tmp"));
    EXPECT_FALSE(PutDeviceFile(kDevice, L"\\\\", L"C:\\Temp\\Snd1.tmp"));
    EXPECT_FALSE(PutDeviceFile(kDevice, L"", L"C:\\Temp\\Snd1.tmp"));
    EXPECT_FALSE(PutDeviceFile(kDevice, L"\\..\\..\\A.SND", L"C:\\Temp\\Snd1.tmp"));
    EXPECT_EQ(BytesOf(desk, kSound + L"A.SND"), "old");
    EXPECT_EQ(desk.files.size(), 2u);
}

TEST(FolderDevice, AnUploadIsAllOrNothingWhateverFails) {
    for (const bool for_good : {false, true}) {
        int failures = 0;
        for (int operation = 0; operation < 60; ++operation) {
            desktop::Desktop& desk = FreshDesktop();
            AddFile(desk, kSound + L"A.SND", "old");
            AddFile(desk, L"C:\\Temp\\Snd1.tmp", "melody");
            desk.fail_at = operation;
            desk.fail_for_good = for_good;
            desk.failing_is_busy = false;
            const bool put = PutDeviceFile(kDevice, L"\\System\\sound\\A.SND", L"C:\\Temp\\Snd1.tmp");
            failures += !put;
            EXPECT_EQ(BytesOf(desk, kSound + L"A.SND"), put ? "melody" : "old") << operation;
        }
        EXPECT_GT(failures, 2);
        EXPECT_LT(failures, 60);
    }
}

TEST(FolderDevice, AFullDiskRefusesTheUpload) {
    desktop::Desktop& desk = FreshDesktop();
    AddFile(desk, kSound + L"A.SND", "old");
    AddFile(desk, L"C:\\Temp\\Snd1.tmp", "melody");
    desk.disk_space = 3;
    EXPECT_FALSE(PutDeviceFile(kDevice, L"\\System\\sound\\A.SND", L"C:\\Temp\\Snd1.tmp"));
    EXPECT_EQ(BytesOf(desk, kSound + L"A.SND"), "old");
}

TEST(FolderDeviceBorder, TextIsWrittenWithItsNulOrNotAtAll) {
    FreshDesktop();
    std::array<char, 6> buffer;
    buffer.fill('#');
    EXPECT_EQ(WriteAnsi(buffer.data(), 5, L"abcd"), 4);
    EXPECT_EQ(std::string(buffer.data(), 6), std::string("abcd\0#", 6));
    buffer.fill('#');
    EXPECT_EQ(WriteAnsi(buffer.data(), 5, L"abcde"), 0);
    EXPECT_EQ(std::string(buffer.data(), 6), std::string("\0#####", 6));
    buffer.fill('#');
    EXPECT_EQ(WriteAnsi(buffer.data(), 0, L"a"), 0);
    EXPECT_EQ(WriteAnsi(buffer.data(), -1, L"a"), 0);
    EXPECT_EQ(WriteAnsi(nullptr, 5, L"a"), 0);
    EXPECT_EQ(buffer[0], '#');
    EXPECT_EQ(WriteAnsi(buffer.data(), 1, L""), 0);
    EXPECT_EQ(buffer[0], '\0');
}

TEST(FolderDeviceBorder, ConversionsGiveCountsAndZeroForWhatDoesNotConvert) {
    FreshDesktop();
    char buffer[kLinkBufferSize];
    EXPECT_EQ(FolderConvPathCacheToCorvane(kDevice, buffer, kLinkBufferSize,
                                           "C:\\Link\\pcferry\\cache\\System\\sound\\A.SND"),
              19);
    EXPECT_STREQ(buffer, "\\System\\sound\\A.SND");
    EXPECT_EQ(FolderConvPathCacheToCorvane(kDevice, buffer, kLinkBufferSize, "C:\\A.SND"), 0);
    EXPECT_EQ(FolderConvPathCacheToCorvane(kDevice, buffer, kLinkBufferSize, nullptr), 0);
    EXPECT_EQ(FolderConvPathCorvaneToCache(kDevice, buffer, kLinkBufferSize, "\\System\\sound\\A.SND"), 40);
    EXPECT_STREQ(buffer, "C:\\Link\\pcferry\\cache\\System\\sound\\A.SND");
    EXPECT_EQ(FolderConvPathCorvaneToCache(kDevice, buffer, 40, "\\System\\sound\\A.SND"), 0);
    EXPECT_EQ(FolderConvPathCorvaneToCache(kDevice, buffer, 41, "\\System\\sound\\A.SND"), 40);
}

TEST(FolderDeviceBorder, ABackslashAsSecondByteIsPartOfItsLetter) {
    desktop::Desktop& desk = FreshDesktop();
    const std::wstring name = L"\u30BD.SND"; // 83 5C in code page 932
    ASSERT_EQ(ToAnsi(name), "\x83\x5C.SND");
    AddFile(desk, kSound + name, "x");
    char buffer[kLinkBufferSize];
    const std::string device_path = "\\System\\sound\\\x83\x5C.SND";
    EXPECT_EQ(FolderIsExist(kDevice, device_path.c_str()), 1);
    EXPECT_EQ(FolderIsExist(kDevice, "\\System\\sound\\A.SND"), 0);
    EXPECT_EQ(FolderIsExist(kDevice, nullptr), 0);
    EXPECT_EQ(FolderGetFile(kDevice, buffer, device_path.c_str()), 0);
    EXPECT_EQ(FromAnsi(buffer), kSound + name);
    EXPECT_EQ(FolderConvPathCacheToCorvane(kDevice, buffer, kLinkBufferSize, ToAnsi(kSound + name).c_str()),
              20);
    EXPECT_EQ(buffer, device_path);
}

TEST(FolderDeviceBorder, TellsPcFilesFromDeviceFiles) {
    FreshDesktop();
    EXPECT_EQ(FolderIsOnPcFile(kDevice, "C:\\A.SND"), 1);
    EXPECT_NE(FolderIsOnPcFile(kDevice, ""), 0);
    EXPECT_NE(FolderIsOnPcFile(kDevice, nullptr), 0);
    EXPECT_EQ(FolderIsOnPcFile(kDevice, "C:\\Link\\pcferry\\cache\\System\\sound\\NOT THERE.SND"), 0);
}

TEST(FolderDeviceBorder, PuttingAFileGivesZeroAndElseOne) {
    desktop::Desktop& desk = FreshDesktop();
    AddFile(desk, L"C:\\Temp\\Snd1.tmp", "melody");
    EXPECT_EQ(FolderPutFile(kDevice, "\\System\\sound\\A.SND", "C:\\Temp\\Snd1.tmp"), 0);
    EXPECT_EQ(BytesOf(desk, kSound + L"A.SND"), "melody");
    EXPECT_EQ(FolderPutFile(kDevice, "\\System\\sound\\A.SND", "C:\\Temp\\none.tmp"), 1);
    EXPECT_EQ(FolderPutFile(kDevice, nullptr, "C:\\Temp\\Snd1.tmp"), 1);
}

TEST(FolderDeviceBorder, FetchingAMissingFileFails) {
    FreshDesktop();
    char buffer[kLinkBufferSize] = "";
    EXPECT_EQ(FolderGetFile(kDevice, buffer, "\\System\\sound\\A.SND"), 1);
    EXPECT_NE(FolderGetFile(kDevice, buffer, nullptr), 0);
    EXPECT_STREQ(buffer, "");
}

TEST(FolderDeviceBorder, FetchingFailsWhereThePathDoesNotFit) {
    desktop::Desktop& desk = FreshDesktop();
    char buffer[kLinkBufferSize];
    for (const bool fits : {true, false}) {
        const std::size_t length = kLinkBufferSize - (fits ? 1 : 0) - kSound.size();
        const std::wstring name(length, L'A');
        AddFile(desk, kSound + name, "x");
        const std::string path = ToAnsi(L"\\System\\sound\\" + name);
        EXPECT_EQ(FolderGetFile(kDevice, buffer, path.c_str()), fits ? 0 : 1);
        EXPECT_EQ(FromAnsi(buffer), fits ? kSound + name : L"");
    }
}

TEST(FolderDeviceBorder, AListThatDoesNotFitIsCutAfterAWholeName) {
    desktop::Desktop& desk = FreshDesktop();
    for (const wchar_t* name : {L"A.SND", L"B.SND", L"C.SND"})
        AddFile(desk, kSound + name, "x");
    std::array<char, 40> names;
    names.fill('#');
    EXPECT_EQ(FolderDirByExt(kDevice, "\\System\\sound", "snd", names.data(), 19), 3);
    EXPECT_EQ(std::string(names.data(), 20), std::string("A.SND\0B.SND\0C.SND\0\0#", 20));
    names.fill('#');
    EXPECT_EQ(FolderDirByExt(kDevice, "\\System\\sound", "snd", names.data(), 18), 2);
    EXPECT_EQ(std::string(names.data(), 13), std::string("A.SND\0B.SND\0\0", 13));
    EXPECT_EQ(names[18], '#');
    EXPECT_EQ(FolderDirByExt(kDevice, "\\System\\sound", "snd", names.data(), 1), 0);
    EXPECT_EQ(names[0], '\0');
    names.fill('#');
    EXPECT_EQ(FolderDirByExt(kDevice, "\\System\\sound", "snd", names.data(), 0), 0);
    EXPECT_EQ(names[0], '#');
    EXPECT_EQ(FolderDirByExt(kDevice, "\\System\\sound", "snd", nullptr, 40), 0);
}

} // namespace tonex::folder_device_services_test
