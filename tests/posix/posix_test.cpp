#include "platform/clock.h"
#include "platform/files.h"
#include "platform/posix/utf8.h"
#include "platform/temporary_files.h"
#include "platform/text.h"
#include "score/file_services.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <random>
#include <set>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tonex {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// A folder of the test's own, emptied and removed at its end.
struct PosixFiles : testing::Test {
    std::wstring folder;

    void SetUp() override {
        char name[] = "/tmp/posix_testXXXXXX";
        ASSERT_NE(mkdtemp(name), nullptr);
        folder = TextOfBytes(name) + L"/";
    }
    void TearDown() override {
        for (const std::wstring& name : ListFiles(folder, L"*"))
            RemoveFile(folder + name);
        rmdir((BytesOfText(folder) + "sub").c_str());
        EXPECT_EQ(rmdir(BytesOfText(folder).c_str()), 0);
    }

    std::wstring Make(const std::wstring& name, const Bytes& bytes = {1, 2, 3}) {
        OutputFilePtr file = CreateOutput(folder + name);
        EXPECT_NE(file, nullptr);
        EXPECT_TRUE(WriteOutput(*file, bytes.data(), bytes.size()));
        EXPECT_TRUE(CloseOutput(std::move(file)));
        return folder + name;
    }
    std::wstring MakeFolder() {
        EXPECT_EQ(mkdir((BytesOfText(folder) + "sub").c_str(), 0777), 0);
        return folder + L"sub";
    }
    Bytes Read(const std::wstring& path) {
        Bytes bytes;
        EXPECT_TRUE(ReadWholeFile(path, bytes, 1000000));
        return bytes;
    }
    std::set<std::wstring> Names() {
        const auto names = ListFiles(folder, L"*");
        return {names.begin(), names.end()};
    }
};

TEST(PosixText, Utf8BothWays) {
    const std::pair<std::wstring, std::string> texts[] = {
        {L"", ""},
        {L"tune.snd", "tune.snd"},
        {L"\u00e9\u07ff", "\xC3\xA9\xDF\xBF"},
        {L"\u0800\u30e1\uffff", "\xE0\xA0\x80\xE3\x83\xA1\xEF\xBF\xBF"},
        {L"\U00010000\U0001D11E\U0010FFFF", "\xF0\x90\x80\x80\xF0\x9D\x84\x9E\xF4\x8F\xBF\xBF"},
        // Stray bytes: a lone continuation, overlong forms, half a surrogate pair, beyond the last, cut.
        {L"a\xDC80"
         L"b",
         "a\x80"
         "b"},
        {L"\xDCC0\xDCAF", "\xC0\xAF"},
        {L"\xDCE0\xDC9F\xDCBF", "\xE0\x9F\xBF"},
        {L"\xDCED\xDCA0\xDC80", "\xED\xA0\x80"},
        {L"\xDCF4\xDC90\xDC80\xDC80", "\xF4\x90\x80\x80"},
        {L"\xDCF5\xDCFF", "\xF5\xFF"},
        {L"x\xDCE3\xDC83", "x\xE3\x83"},
    };
    for (const auto& [text, bytes] : texts) {
        EXPECT_EQ(TextOfBytes(bytes), text) << bytes;
        EXPECT_EQ(BytesOfText(text), bytes) << bytes;
        EXPECT_EQ(ToAnsi(text), bytes);
        EXPECT_EQ(FromAnsi(bytes), text);
    }
}

TEST(PosixText, WhatIsNoCharacterIsReplaced) {
    EXPECT_EQ(BytesOfText(std::wstring(1, static_cast<wchar_t>(0xD800))), "\xEF\xBF\xBD");
    EXPECT_EQ(BytesOfText(std::wstring(1, static_cast<wchar_t>(0xDC7F))), "\xEF\xBF\xBD");
    EXPECT_EQ(BytesOfText(std::wstring(1, static_cast<wchar_t>(0x110000))), "\xEF\xBF\xBD");
}

TEST(PosixText, AnyBytesComeBackAsTheyWere) {
    std::mt19937 random(3);
    for (int round = 0; round < 5000; ++round) {
        std::string bytes(random() % 12, '\0');
        for (char& byte : bytes)
            byte = static_cast<char>(random() % 2 == 0 ? random() : 0x80 + random() % 0x70);
        EXPECT_EQ(BytesOfText(TextOfBytes(bytes)), bytes);
    }
}

TEST_F(PosixFiles, WrittenAppendedPatchedReadBack) {
    const std::wstring path = folder + L"\u97f3\u7b26 \xDCFF.snd";
    OutputFilePtr file = CreateOutput(path);
    ASSERT_NE(file, nullptr);
    const Bytes first{1, 2, 3, 4};
    const Bytes patch{9, 8};
    EXPECT_TRUE(WriteOutput(*file, first.data(), first.size()));
    EXPECT_TRUE(PatchOutput(*file, 1, patch.data(), patch.size()));
    EXPECT_FALSE(PatchOutput(*file, 3, patch.data(), patch.size())) << "only what was written may be patched";
    EXPECT_FALSE(PatchOutput(*file, UINT64_MAX, patch.data(), patch.size()));
    EXPECT_TRUE(WriteOutput(*file, patch.data(), patch.size())) << "the append position is unchanged";
    EXPECT_TRUE(FlushOutput(*file));
    EXPECT_TRUE(CloseOutput(std::move(file)));
    EXPECT_EQ(Read(path), (Bytes{1, 9, 8, 4, 9, 8}));
    EXPECT_TRUE(FileExists(path));
    EXPECT_FALSE(CloseOutput(nullptr));
}

TEST_F(PosixFiles, ReadingStopsAtTheLimit) {
    Bytes large(200000);
    for (std::size_t i = 0; i < large.size(); ++i)
        large[i] = static_cast<std::uint8_t>(i * 7);
    const std::wstring path = Make(L"large", large);
    for (const std::size_t limit : {0UL, 1UL, 65536UL, 65537UL, 199999UL, 200000UL, 200001UL}) {
        Bytes bytes{5};
        EXPECT_TRUE(ReadWholeFile(path, bytes, limit));
        const std::size_t expected = std::min(limit, large.size());
        EXPECT_EQ(bytes, Bytes(large.begin(), large.begin() + static_cast<std::ptrdiff_t>(expected)));
    }
}

TEST_F(PosixFiles, NothingIsThere) {
    for (const std::wstring& path :
         {folder + L"missing", folder + L"missing/x", std::wstring(), std::wstring(L"a\0b", 3)}) {
        Bytes bytes{1};
        EXPECT_FALSE(FileExists(path));
        EXPECT_FALSE(FolderExists(path));
        EXPECT_FALSE(AttributesOf(path).has_value());
        EXPECT_FALSE(SetAttributesOf(path, 0));
        EXPECT_FALSE(RemoveFile(path));
        EXPECT_FALSE(ReadWholeFile(path, bytes, 10));
        EXPECT_FALSE(AgeOfFile(path).has_value());
        EXPECT_FALSE(RenameOver(path, folder + L"x"));
        EXPECT_TRUE(ListFiles(path, L"*").empty());
    }
    EXPECT_EQ(CreateOutput(folder + L"missing/x"), nullptr);
    EXPECT_EQ(CreateOutput(L""), nullptr);
}

TEST_F(PosixFiles, AFileIsCreatedOnce) {
    const std::wstring path = Make(L"once");
    EXPECT_EQ(CreateOutput(path), nullptr);
    EXPECT_EQ(Read(path), (Bytes{1, 2, 3}));
}

TEST_F(PosixFiles, AttributesFollowFromModeAndName) {
    const std::wstring plain = Make(L"plain");
    const std::wstring hidden = Make(L".hidden");
    const std::wstring sub = MakeFolder();
    EXPECT_EQ(AttributesOf(plain), kAttributeArchive);
    EXPECT_EQ(AttributesOf(hidden), kAttributeArchive | kAttributeHidden);
    EXPECT_EQ(AttributesOf(sub), kAttributeDirectory);
    EXPECT_EQ(AttributesOf(L"/"), kAttributeDirectory);

    EXPECT_TRUE(FileExists(plain));
    EXPECT_TRUE(FileExists(hidden));
    EXPECT_FALSE(FileExists(sub));
    EXPECT_TRUE(FolderExists(sub));
    EXPECT_TRUE(FolderExists(sub + L"/"));
    EXPECT_FALSE(FolderExists(plain));
    EXPECT_FALSE(FolderExists(hidden));

    EXPECT_TRUE(SetAttributesOf(plain, kAttributeReadOnly));
    EXPECT_EQ(AttributesOf(plain), kAttributeArchive | kAttributeReadOnly);
    EXPECT_TRUE(SetAttributesOf(plain, kAttributeArchive));
    EXPECT_EQ(AttributesOf(plain), kAttributeArchive);
}

TEST_F(PosixFiles, RenamedOverInOneStep) {
    const std::wstring from = Make(L"from", {7});
    const std::wstring to = Make(L"to", {1, 2});
    EXPECT_TRUE(RenameOver(from, to));
    EXPECT_EQ(Read(to), Bytes{7});
    EXPECT_EQ(Names(), std::set<std::wstring>{L"to"});

    const std::wstring sub = MakeFolder();
    EXPECT_FALSE(RenameOver(to, sub)) << "a folder is not replaced";
    EXPECT_EQ(Read(to), Bytes{7});
    Bytes bytes;
    EXPECT_FALSE(ReadWholeFile(sub, bytes, 10));
    EXPECT_FALSE(RemoveFile(sub));
}

TEST_F(PosixFiles, ListingByPattern) {
    for (const wchar_t* name : {L"a.snd", L"B.SND", L"a.txt", L"snd", L".x.snd", L"~snd1.tmp"})
        Make(name);
    MakeFolder();
    const auto listed = [&](const wchar_t* pattern) {
        const auto names = ListFiles(folder, pattern);
        return std::set<std::wstring>(names.begin(), names.end());
    };
    EXPECT_EQ(listed(L"*.snd"), (std::set<std::wstring>{L"a.snd", L"B.SND", L".x.snd"}));
    EXPECT_EQ(listed(L"?.snd"), (std::set<std::wstring>{L"a.snd", L"B.SND"}));
    EXPECT_EQ(listed(L"~snd*.tmp"), std::set<std::wstring>{L"~snd1.tmp"});
    EXPECT_EQ(listed(L"snd"), std::set<std::wstring>{L"snd"});
    EXPECT_EQ(listed(L"*a*t*"), std::set<std::wstring>{L"a.txt"});
    EXPECT_EQ(listed(L"sub"), std::set<std::wstring>{});
    EXPECT_EQ(listed(L"*").size(), 6U);
}

TEST_F(PosixFiles, AgeInSeconds) {
    const std::wstring path = Make(L"aged");
    EXPECT_LE(AgeOfFile(path).value(), 60U);
    const timespec times[2] = {{1000, 0}, {time(nullptr) - 5000, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, BytesOfText(path).c_str(), times, 0), 0);
    EXPECT_NEAR(static_cast<double>(AgeOfFile(path).value()), 5000.0, 60.0);
    const timespec ahead[2] = {{1000, 0}, {time(nullptr) + 5000, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, BytesOfText(path).c_str(), ahead, 0), 0);
    EXPECT_EQ(AgeOfFile(path), 0U);
}

TEST_F(PosixFiles, TemporaryFilesAreEmptyAndUnique) {
    std::set<std::wstring> paths;
    for (int i = 0; i < 20; ++i) {
        const std::wstring path = CreateTemporaryFile(folder, L"Sndxyz");
        EXPECT_EQ(path.rfind(folder + L"Snd", 0), 0U);
        EXPECT_NE(path[folder.size() + 3], L'x') << "three letters of the prefix";
        EXPECT_TRUE(path.ends_with(L".tmp"));
        EXPECT_EQ(Read(path), Bytes{});
        paths.insert(path);
    }
    EXPECT_EQ(paths.size(), 20U);
    EXPECT_EQ(CreateTemporaryFile(folder + L"missing", L"Snd"), L"");
}

TEST(PosixTemporaryFolder, IsNamedByTheEnvironmentAndEndsInASlash) {
    ASSERT_EQ(setenv("TMPDIR", "/var/tmp", 1), 0);
    EXPECT_EQ(TemporaryFolder(), L"/var/tmp/");
    ASSERT_EQ(setenv("TMPDIR", ("/" + std::string(253, 'x')).c_str(), 1), 0);
    EXPECT_EQ(TemporaryFolder().size(), 255U);
    ASSERT_EQ(setenv("TMPDIR", ("/" + std::string(254, 'x')).c_str(), 1), 0);
    EXPECT_EQ(TemporaryFolder(), L"") << "does not fit a buffer of 256 characters";
    ASSERT_EQ(unsetenv("TMPDIR"), 0);
    EXPECT_EQ(TemporaryFolder(), L"/tmp/");
}

TEST(PosixNumbers, AreUnique) {
    std::set<std::uint32_t> numbers;
    for (int i = 0; i < 100; ++i)
        numbers.insert(UniqueNumber());
    EXPECT_GE(numbers.size(), 99U);
}

TEST(PosixClock, TellsATimeOfDay) {
    const TimeOfDay now = CurrentTime();
    EXPECT_TRUE(now.hour >= 0 && now.hour <= 23);
    EXPECT_TRUE(now.minute >= 0 && now.minute <= 59);
    EXPECT_TRUE(now.second >= 0 && now.second <= 59);
}

TEST_F(PosixFiles, AFileIsSavedWholeInItsOwnFolder) {
    const std::wstring path = folder + L"saved.snd";
    EXPECT_TRUE(SaveWholeFile(path, Bytes{1, 2, 3}));
    EXPECT_TRUE(SaveWholeFile(path, Bytes{4, 5}));
    EXPECT_EQ(Read(path), (Bytes{4, 5}));
    EXPECT_EQ(Names(), std::set<std::wstring>{L"saved.snd"});

    EXPECT_TRUE(SetAttributesOf(path, kAttributeReadOnly));
    EXPECT_TRUE(SaveWholeFile(path, Bytes{6}));
    EXPECT_EQ(Read(path), Bytes{6});
    EXPECT_FALSE(SaveWholeFile(folder + L"missing/saved.snd", Bytes{1}));
}

TEST_F(PosixFiles, AWriteThatDoesNotFitIsReported) {
    rlimit old{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
    rlimit small = old;
    small.rlim_cur = 10;
    const std::wstring path = Make(L"kept.snd", {1, 2, 3});
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    OutputFilePtr file = CreateOutput(folder + L"full");
    const Bytes bytes(11, 0);
    const bool written = WriteOutput(*file, bytes.data(), bytes.size());
    CloseOutput(std::move(file));
    const bool saved = SaveWholeFile(path, bytes);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &old), 0);
    std::signal(SIGXFSZ, handler);
    EXPECT_FALSE(written) << "a short count is no success";
    EXPECT_FALSE(saved);
    EXPECT_EQ(Read(path), (Bytes{1, 2, 3}));
    EXPECT_EQ(Names(), (std::set<std::wstring>{L"full", L"kept.snd"}));
}

} // namespace
} // namespace tonex
