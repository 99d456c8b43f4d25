#include "platform/files.h"

#include "link/folder_device_services.h"
#include "platform/refusal.h"
#include "platform/temporary_files.h"
#include "score/file_services.h"
#include "tests/windows/support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <set>

using namespace tonex;
using namespace tonex::windows_test;

namespace {

std::vector<std::uint8_t> Bytes(const std::string& text) {
    return {text.begin(), text.end()};
}

bool Write(OutputFile& file, const std::string& text) {
    return WriteOutput(file, reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
}

bool Patch(OutputFile& file, std::uint64_t offset, const std::string& text) {
    return PatchOutput(file, offset, reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
}

// A file that no other handle may replace or read.
struct HeldFile {
    explicit HeldFile(const std::wstring& path)
        : handle(CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr)) {}
    ~HeldFile() { CloseHandle(handle); }
    HANDLE handle;
};

} // namespace

TEST(FileExists, FindsAnOrdinaryFileInAnyLetterCase) {
    const TestFolder folder;
    WriteBytes(folder / L"Tune.snd", "x");
    EXPECT_TRUE(FileExists(folder / L"TUNE.SND"));
}

TEST(FileExists, FindsReadOnlyArchivedHiddenAndSystemFiles) {
    const TestFolder folder;
    WriteBytes(folder / L"a.snd", "x");
    for (const DWORD attributes :
         {FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_ARCHIVE, FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM}) {
        SetFileAttributesW((folder / L"a.snd").c_str(), attributes);
        ASSERT_EQ(GetFileAttributesW((folder / L"a.snd").c_str()) & attributes, attributes);
        EXPECT_TRUE(FileExists(folder / L"a.snd"));
    }
}

TEST(FileExists, AFolderAndADriveRootAreNoFiles) {
    const TestFolder folder;
    MakeFolder(folder / L"sound");
    EXPECT_FALSE(FileExists(folder / L"sound"));
    EXPECT_FALSE(FileExists(L"C:\\"));
}

TEST(FolderExists, FindsAFolderWithOrWithoutABackslash) {
    const TestFolder folder;
    MakeFolder(folder / L"sound");
    EXPECT_TRUE(FolderExists(folder / L"sound"));
    EXPECT_TRUE(FolderExists(folder / L"sound\\"));
}

TEST(FolderExists, AFileOfThatNameIsNone) {
    const TestFolder folder;
    WriteBytes(folder / L"a.snd", "x");
    EXPECT_FALSE(FolderExists(folder / L"a.snd"));
}

TEST(FullPath, IsCompletedFromTheCurrentFolder) {
    wchar_t before[MAX_PATH];
    GetCurrentDirectoryW(MAX_PATH, before);
    const TestFolder folder;
    MakeFolder(folder / L"sound");
    ASSERT_TRUE(SetCurrentDirectoryW((folder / L"sound").c_str()));
    EXPECT_EQ(FullPathOf(L"REL.SND"), folder / L"sound\\REL.SND");
    EXPECT_EQ(FullPathOf(L"..\\REL.SND"), folder / L"REL.SND");
    EXPECT_EQ(FullPathOf(L"C:\\a\\B.SND"), L"C:\\a\\B.SND");
    const std::wstring name(300, L'a');
    EXPECT_EQ(FullPathOf(name), folder / (L"sound\\" + name));
    EXPECT_EQ(FullPathOf(L""), L"");
    SetCurrentDirectoryW(before);
}

TEST(FolderExists, AFileIsNotAFolderBecauseABackslashFollows) {
    const TestFolder folder;
    WriteBytes(folder / L"a.snd", "x");
    EXPECT_FALSE(FolderExists(folder / L"a.snd\\"));
}

TEST(FolderExists, FindsADriveRoot) {
    EXPECT_TRUE(FolderExists(L"C:\\"));
    EXPECT_TRUE(FolderExists(L"\\")) << "of the current drive";
    EXPECT_FALSE(FileExists(L"\\"));
    EXPECT_FALSE(FolderExists(L"Q:\\"));
}

TEST(FileExists, WildcardsFindNothing) {
    const TestFolder folder;
    WriteBytes(folder / L"a.snd", "x");
    for (const wchar_t* name : {L"*.snd", L"?.snd", L"*", L"a.s<", L"a.sn>", L"a\"snd"}) {
        EXPECT_FALSE(FileExists(folder / name)) << name;
        EXPECT_FALSE(FolderExists(folder / name)) << name;
    }
}

TEST(FileExists, ErrorsFindNothing) {
    const TestFolder folder;
    for (const std::wstring& path : {std::wstring(), folder / L"missing.snd", folder / L"missing\\a.snd",
                                     std::wstring(L"Q:\\a.snd"), std::wstring(40000, L'a')}) {
        EXPECT_FALSE(FileExists(path));
        EXPECT_FALSE(FolderExists(path));
    }
}

TEST(FileAttributes, AreSetAndRead) {
    const TestFolder folder;
    const std::wstring path = folder / L"a.snd";
    WriteBytes(path, "x");
    ASSERT_TRUE(SetAttributesOf(path, kAttributeReadOnly | kAttributeHidden));
    EXPECT_EQ(AttributesOf(path).value() & 7, kAttributeReadOnly | kAttributeHidden);
    ASSERT_TRUE(SetAttributesOf(path, kAttributeArchive));
    EXPECT_EQ(AttributesOf(path).value() & 7, 0u);
    ASSERT_TRUE(SetAttributesOf(path, kAttributeReadOnly));
    ASSERT_TRUE(SetAttributesOf(path, 0));
    EXPECT_EQ(AttributesOf(path).value() & 7, 0u);
    EXPECT_TRUE(AttributesOf(folder.path).value() & kAttributeDirectory);
}

TEST(FileAttributes, OfAMissingFileAreNothing) {
    const TestFolder folder;
    EXPECT_FALSE(AttributesOf(folder / L"a.snd"));
    EXPECT_FALSE(SetAttributesOf(folder / L"a.snd", 0));
}

TEST(RemoveFile, DeletesAFileOnceAndNeverAReadOnlyOne) {
    const TestFolder folder;
    const std::wstring path = folder / L"a.snd";
    WriteBytes(path, "x");
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_FALSE(RemoveFile(path));
    EXPECT_EQ(ReadBytes(path), "x");
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_TRUE(RemoveFile(path));
    EXPECT_EQ(ReadBytes(path), "(missing)");
    EXPECT_FALSE(RemoveFile(path));
    EXPECT_FALSE(RemoveFile(folder.path));
}

TEST(ReadWholeFile, ReadsUpToTheLimit) {
    const TestFolder folder;
    WriteBytes(folder / L"a", "0123456789");
    std::vector<std::uint8_t> bytes = {1, 2, 3};
    for (const std::size_t limit : {std::size_t{0}, std::size_t{1}, std::size_t{9}, std::size_t{10}}) {
        ASSERT_TRUE(ReadWholeFile(folder / L"a", bytes, limit));
        EXPECT_EQ(bytes, Bytes(std::string("0123456789").substr(0, limit)));
    }
    ASSERT_TRUE(ReadWholeFile(folder / L"a", bytes, 11));
    EXPECT_EQ(bytes, Bytes("0123456789"));
    ASSERT_TRUE(ReadWholeFile(folder / L"a", bytes, static_cast<std::size_t>(-1)));
    EXPECT_EQ(bytes, Bytes("0123456789"));
}

TEST(ReadWholeFile, ReadsEmptyAndLongFiles) {
    const TestFolder folder;
    std::vector<std::uint8_t> bytes = {1};
    WriteBytes(folder / L"empty", "");
    ASSERT_TRUE(ReadWholeFile(folder / L"empty", bytes, 100));
    EXPECT_TRUE(bytes.empty());
    std::string longer;
    for (int i = 0; i < 300'000; ++i)
        longer += static_cast<char>(i * 7 + i / 256);
    WriteBytes(folder / L"long", longer);
    ASSERT_TRUE(ReadWholeFile(folder / L"long", bytes, 1'000'000));
    EXPECT_EQ(bytes, Bytes(longer));
    ASSERT_TRUE(ReadWholeFile(folder / L"long", bytes, 299'999));
    EXPECT_EQ(bytes, Bytes(longer.substr(0, 299'999)));
}

TEST(ReadWholeFile, FailsForMissingFilesFoldersAndFilesHeldByOthers) {
    const TestFolder folder;
    std::vector<std::uint8_t> bytes = {1};
    EXPECT_FALSE(ReadWholeFile(folder / L"a", bytes, 10));
    EXPECT_TRUE(bytes.empty());
    EXPECT_FALSE(ReadWholeFile(folder.path, bytes, 10));
    EXPECT_FALSE(ReadWholeFile(L"", bytes, 10));
    WriteBytes(folder / L"a", "x");
    const HeldFile held(folder / L"a");
    EXPECT_FALSE(ReadWholeFile(folder / L"a", bytes, 10));
}

TEST(Output, WritesPatchesAndGoesOnAppending) {
    const TestFolder folder;
    OutputFilePtr file = CreateOutput(folder / L"a");
    ASSERT_TRUE(file);
    EXPECT_TRUE(Write(*file, "0123456789"));
    EXPECT_TRUE(Patch(*file, 2, "AB"));
    EXPECT_TRUE(Write(*file, "end"));
    EXPECT_TRUE(Patch(*file, 12, "X"));
    EXPECT_TRUE(Write(*file, ""));
    EXPECT_TRUE(FlushOutput(*file));
    EXPECT_TRUE(CloseOutput(std::move(file)));
    EXPECT_EQ(ReadBytes(folder / L"a"), "01AB456789enX");
}

TEST(Output, IsCreatedOnlyWhereNothingIs) {
    const TestFolder folder;
    WriteBytes(folder / L"a", "old");
    EXPECT_FALSE(CreateOutput(folder / L"a"));
    EXPECT_EQ(ReadBytes(folder / L"a"), "old");
    EXPECT_FALSE(CreateOutput(folder / L"missing\\a"));
    EXPECT_FALSE(CreateOutput(folder.path));
    EXPECT_FALSE(CreateOutput(folder / L"a*b"));
}

TEST(Output, DroppedWithoutClosingLeavesNoHandleOpen) {
    const TestFolder folder;
    OutputFilePtr file = CreateOutput(folder / L"a");
    ASSERT_TRUE(file);
    EXPECT_FALSE(RemoveFile(folder / L"a")); // still open
    file.reset();
    EXPECT_TRUE(RemoveFile(folder / L"a"));
    EXPECT_FALSE(CloseOutput(nullptr));
}

TEST(FileIsBusy, TellsAHeldFileFromWhatWillNeverSucceed) {
    const TestFolder folder;
    const std::wstring held_path = folder / L"held", there = folder / L"there";
    WriteBytes(held_path, "x");
    WriteBytes(there, "x");
    const HeldFile held(held_path);
    std::vector<std::uint8_t> bytes;
    EXPECT_FALSE(RemoveFile(held_path));
    EXPECT_TRUE(FileIsBusy());
    EXPECT_FALSE(ReadWholeFile(held_path, bytes, 9));
    EXPECT_TRUE(FileIsBusy());
    EXPECT_FALSE(RenameOver(there, held_path));
    EXPECT_TRUE(FileIsBusy());
    for (const std::wstring& path :
         {folder / L"missing", folder / L"missing\\a", folder / L"a*", std::wstring()}) {
        EXPECT_FALSE(RemoveFile(path));
        EXPECT_FALSE(FileIsBusy());
        EXPECT_FALSE(FileExists(path));
        EXPECT_FALSE(FileIsBusy());
        EXPECT_FALSE(ReadWholeFile(path, bytes, 9));
        EXPECT_FALSE(FileIsBusy());
        EXPECT_FALSE(AttributesOf(path));
        EXPECT_FALSE(FileIsBusy());
    }
    EXPECT_FALSE(CreateOutput(there));
    EXPECT_FALSE(FileIsBusy());
    EXPECT_FALSE(CreateOutput(folder / L"missing\\a"));
    EXPECT_FALSE(FileIsBusy());
}

TEST(RenameOver, ReplacesTheTarget) {
    const TestFolder folder;
    WriteBytes(folder / L"new", "new");
    WriteBytes(folder / L"old", "old");
    EXPECT_TRUE(RenameOver(folder / L"new", folder / L"old"));
    EXPECT_EQ(ReadBytes(folder / L"old"), "new");
    EXPECT_EQ(ReadBytes(folder / L"new"), "(missing)");
    EXPECT_TRUE(RenameOver(folder / L"old", folder / L"third"));
    EXPECT_EQ(ReadBytes(folder / L"third"), "new");
}

TEST(RenameOver, WhenRefusedBothFilesAreAsTheyWere) {
    const TestFolder folder;
    WriteBytes(folder / L"new", "new");
    WriteBytes(folder / L"old", "old");
    MakeFolder(folder / L"sub");
    EXPECT_FALSE(RenameOver(folder / L"missing", folder / L"old"));
    EXPECT_FALSE(RenameOver(folder / L"new", folder / L"sub"));
    EXPECT_FALSE(RenameOver(folder / L"new", folder / L"none\\old"));
    {
        const HeldFile held(folder / L"old");
        EXPECT_FALSE(RenameOver(folder / L"new", folder / L"old"));
    }
    EXPECT_EQ(ReadBytes(folder / L"new"), "new");
    EXPECT_EQ(ReadBytes(folder / L"old"), "old");
    EXPECT_TRUE(IsFolder(folder / L"sub"));
}

TEST(ListFiles, GivesMatchingFilesAndNoFolders) {
    const TestFolder folder;
    for (const wchar_t* name : {L"a.snd", L"B.SND", L"c.sndx", L"d.wav", L"~snd12.tmp", L".snd"})
        WriteBytes(folder / name, "x");
    WriteBytes(folder / L"hidden.snd", "x");
    SetFileAttributesW((folder / L"hidden.snd").c_str(), FILE_ATTRIBUTE_HIDDEN);
    MakeFolder(folder / L"folder.snd");
    const auto list = [&](const std::wstring& where, const std::wstring& pattern) {
        std::vector<std::wstring> names = ListFiles(where, pattern);
        std::sort(names.begin(), names.end());
        return names;
    };
    const std::vector<std::wstring> sounds = {L".snd", L"B.SND", L"a.snd", L"hidden.snd"};
    EXPECT_EQ(list(folder.path, L"*.snd"), sounds);
    EXPECT_EQ(list(folder.path + L"\\", L"*.snd"), sounds);
    EXPECT_EQ(list(folder.path, L"~snd*.tmp"), std::vector<std::wstring>{L"~snd12.tmp"});
    EXPECT_EQ(list(folder.path, L"?.SND"), (std::vector<std::wstring>{L"B.SND", L"a.snd"}));
    EXPECT_TRUE(list(folder.path, L"*.mid").empty());
    EXPECT_TRUE(list(folder / L"missing", L"*.snd").empty());
}

TEST(AgeOfFile, CountsSecondsSinceTheLastWrite) {
    const TestFolder folder;
    EXPECT_FALSE(AgeOfFile(folder / L"a"));
    EXPECT_FALSE(AgeOfFile(folder.path));
    WriteBytes(folder / L"a", "x");
    ASSERT_TRUE(AgeOfFile(folder / L"a"));
    EXPECT_LE(*AgeOfFile(folder / L"a"), 10u);

    const auto move_last_write = [&](LONGLONG seconds) {
        FILETIME now;
        GetSystemTimeAsFileTime(&now);
        ULARGE_INTEGER time;
        time.LowPart = now.dwLowDateTime;
        time.HighPart = now.dwHighDateTime;
        time.QuadPart += static_cast<ULONGLONG>(seconds * 10'000'000);
        const FILETIME then = {time.LowPart, time.HighPart};
        const HANDLE file = CreateFileW((folder / L"a").c_str(), FILE_WRITE_ATTRIBUTES, 0, nullptr,
                                        OPEN_EXISTING, 0, nullptr);
        EXPECT_TRUE(SetFileTime(file, nullptr, nullptr, &then));
        CloseHandle(file);
    };
    move_last_write(-100'000);
    EXPECT_GE(*AgeOfFile(folder / L"a"), 100'000u);
    EXPECT_LE(*AgeOfFile(folder / L"a"), 100'010u);
    move_last_write(100'000); // written in the future: a clock was set back
    EXPECT_EQ(*AgeOfFile(folder / L"a"), 0u);
}

TEST(UniqueNumber, DiffersBetweenCalls) {
    std::set<std::uint32_t> numbers;
    for (int i = 0; i < 1000; ++i)
        numbers.insert(UniqueNumber());
    EXPECT_EQ(numbers.size(), 1000u);
}

TEST(UniqueNumber, DiffersBetweenProcesses) {
    // Four processes that do nothing but make a number: equal ones would mean that they begin alike.
    std::set<DWORD> numbers;
    for (int i = 0; i < 4; ++i) {
        Child child(L"child-number");
        numbers.insert(child.ExitCode());
    }
    EXPECT_EQ(numbers.size(), 4u);
    EXPECT_FALSE(numbers.contains(0xDEAD));
}

TEST(TemporaryFolder, EndsWithABackslashAndIsThere) {
    const std::wstring folder = TemporaryFolder();
    ASSERT_FALSE(folder.empty());
    EXPECT_EQ(folder.back(), L'\\');
    EXPECT_TRUE(IsFolder(folder.substr(0, folder.size() - 1)));
}

TEST(TemporaryFolder, FitsTheBufferWithItsNulOrIsEmpty) {
    const std::wstring start = L"C:\\" + std::wstring(90, L'a') + L"\\" + std::wstring(90, L'b') + L"\\";
    const auto with_length = [&](std::size_t length) {
        const std::wstring name = start + std::wstring(length - start.size() - 1, L'c') + L"\\";
        const Environment tmp(L"TMP", name), temp(L"TEMP", name);
        return TemporaryFolder().size();
    };
    EXPECT_EQ(with_length(200), 200u);
    EXPECT_EQ(with_length(255), 255u);
    EXPECT_EQ(with_length(256), 0u);
    EXPECT_EQ(with_length(258), 0u);
    EXPECT_EQ(with_length(300), 0u);
}

TEST(TemporaryFile, IsMadeWithPrefixAndANumber) {
    const TestFolder folder;
    const std::wstring first = CreateTemporaryFile(folder.path + L"\\", L"Snd");
    const std::wstring second = CreateTemporaryFile(folder.path + L"\\", L"Snd");
    EXPECT_NE(first, second);
    for (const std::wstring& path : {first, second}) {
        ASSERT_GT(path.size(), folder.path.size() + 8);
        EXPECT_EQ(path.substr(0, folder.path.size() + 4), folder.path + L"\\Snd");
        EXPECT_EQ(path.substr(path.size() - 4), L".tmp");
        EXPECT_EQ(ReadBytes(path), "");
    }
}

TEST(ShortName, SpellsAFolderInAnotherScript) {
    const TestFolder folder;
    const std::wstring other = folder / L"\x5F20\x4E09\x97F3";
    MakeFolder(other);
    ASSERT_FALSE(FitsAnsi(other));
    const std::wstring name = ShortNameOf(other + L"\\");
    EXPECT_TRUE(FitsAnsi(name));
    EXPECT_EQ(name.back(), L'\\');
    const std::wstring path = CreateTemporaryFile(name, L"Snd");
    ASSERT_FALSE(path.empty());
    EXPECT_TRUE(SaveWholeFile(path, Bytes("melody")));
    const std::vector<std::wstring> found = ListFiles(other, L"*");
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(ReadBytes(other + L"\\" + found[0]), "melody");
    EXPECT_TRUE(RemoveFile(path));
    EXPECT_EQ(ListFiles(other, L"*").size(), 0u);
}

TEST(ShortName, OfAMissingFolderIsTheNameItWasGiven) {
    const TestFolder folder;
    EXPECT_EQ(ShortNameOf(folder / L"missing\\"), folder / L"missing\\");
}

TEST(TemporaryFile, OfAMissingFolderIsEmpty) {
    const TestFolder folder;
    EXPECT_EQ(CreateTemporaryFile(folder / L"missing\\", L"Snd"), L"");
}

TEST(SaveWholeFileOnDisk, ReplacesAReadOnlyHiddenFileAndLeavesNothingElse) {
    const TestFolder folder;
    WriteBytes(folder / L"a.snd", "old");
    SetFileAttributesW((folder / L"a.snd").c_str(), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
    EXPECT_TRUE(SaveWholeFile(folder / L"a.snd", Bytes("new")));
    EXPECT_EQ(ReadBytes(folder / L"a.snd"), "new");
    EXPECT_EQ(ListFiles(folder.path, L"*"), std::vector<std::wstring>{L"a.snd"});
}

TEST(SaveWholeFileOnDisk, AFileHeldByAnotherStaysWholeAndNothingIsLeftBehind) {
    const TestFolder folder;
    WriteBytes(folder / L"a.snd", "old");
    SetFileAttributesW((folder / L"a.snd").c_str(), FILE_ATTRIBUTE_READONLY);
    {
        const HeldFile held(folder / L"a.snd");
        EXPECT_FALSE(SaveWholeFile(folder / L"a.snd", Bytes("new")));
    }
    EXPECT_EQ(ReadBytes(folder / L"a.snd"), "old");
    EXPECT_TRUE(AttributesOf(folder / L"a.snd").value() & kAttributeReadOnly);
    EXPECT_EQ(ListFiles(folder.path, L"*"), std::vector<std::wstring>{L"a.snd"});
}

TEST(SaveWholeFileOnDisk, AFileThatIsHeldForMomentsIsReplacedAfterAll) {
    const TestFolder folder;
    WriteBytes(folder / L"a.snd", "old");
    auto held = std::make_unique<HeldFile>(folder / L"a.snd");
    const Hands scanner([&] {
        Sleep(600);
        held.reset();
    });
    EXPECT_TRUE(SaveWholeFile(folder / L"a.snd", Bytes("new")));
    EXPECT_EQ(ReadBytes(folder / L"a.snd"), "new");
    EXPECT_EQ(ListFiles(folder.path, L"*"), std::vector<std::wstring>{L"a.snd"});
}

TEST(SaveWholeFileOnDisk, IntoAMissingFolderFails) {
    const TestFolder folder;
    EXPECT_FALSE(SaveWholeFile(folder / L"missing\\a.snd", Bytes("new")));
}
