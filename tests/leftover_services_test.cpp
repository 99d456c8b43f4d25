// Temporary files that outlive their use: what is kept in mind, what a later run deletes, and what it leaves.
#include "preview/leftover_services.h"

#include "preview/synthesis.h"
#include "score/file_services.h"
#include "tests/desktop/desktop.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tonex::leftover_services_test {

namespace {

using Paths = std::vector<std::wstring>;

constexpr const wchar_t* kWav = L"C:\\Temp\\$$123456.wav";

struct Leftovers : ::testing::Test {
    desktop::Desktop& desk = desktop::Reset();
    Paths leftovers;

    void Put(const std::wstring& path, std::uint64_t age = 0, std::vector<std::uint8_t> bytes = {1}) {
        desk.files[path] = {std::move(bytes), 32, age};
    }
    /// What the editor writes in front of so many samples.
    static std::vector<std::uint8_t> Wav(std::uint32_t samples) {
        const auto header = WavHeader(samples);
        return {header.begin(), header.end()};
    }
    bool Stays(const std::wstring& path) const { return desk.files.contains(path); }
};

} // namespace

TEST_F(Leftovers, AFileThatGoesIsNotKeptInMind) {
    Put(kWav);
    DeleteTemporaryFile(kWav, leftovers);
    EXPECT_FALSE(Stays(kWav));
    EXPECT_TRUE(leftovers.empty());
    DeleteTemporaryFile(kWav, leftovers);
    EXPECT_TRUE(leftovers.empty());
}

TEST_F(Leftovers, AFileThatIsHeldIsKeptInMindUntilItGoes) {
    Put(kWav);
    desk.refused = {"RemoveFile"};
    DeleteTemporaryFile(kWav, leftovers);
    EXPECT_EQ(leftovers, Paths{kWav});
    DeleteLeftovers(leftovers);
    EXPECT_EQ(leftovers, Paths{kWav});
    desk.refused.clear();
    DeleteLeftovers(leftovers);
    EXPECT_TRUE(leftovers.empty());
    EXPECT_FALSE(Stays(kWav));
}

TEST_F(Leftovers, TryingAgainDoesNotWait) {
    Put(kWav);
    leftovers = {kWav};
    desk.refused = {"RemoveFile"};
    DeleteLeftovers(leftovers);
    EXPECT_FALSE(desktop::Asked("PauseBriefly"));
}

TEST_F(Leftovers, AFileThatSomebodyElseDeletedIsForgotten) {
    leftovers = {kWav};
    DeleteLeftovers(leftovers);
    EXPECT_TRUE(leftovers.empty());
}

TEST_F(Leftovers, AFolderThatCanNotBeAskedForgetsNothing) {
    Put(kWav);
    desk.refused = {"RemoveFile", "FileExists"};
    DeleteTemporaryFile(kWav, leftovers);
    DeleteLeftovers(leftovers);
    EXPECT_EQ(leftovers, Paths{kWav});
}

TEST_F(Leftovers, ASoundIsSweptWhenNoPlayerCanNeedItAnyMore) {
    const auto age_of_three_seconds = static_cast<std::uint64_t>(3 + 1 + 2 * kPlayerPatience);
    Put(kWav, age_of_three_seconds, Wav(3 * kSampleRate));
    SweepTemporaryFiles(L"C:\\Temp\\");
    EXPECT_TRUE(Stays(kWav));
    Put(kWav, age_of_three_seconds + 1, Wav(3 * kSampleRate));
    SweepTemporaryFiles(L"C:\\Temp\\");
    EXPECT_FALSE(Stays(kWav));
}

TEST_F(Leftovers, WhatIsNoWholeSoundIsSweptAfterADay) {
    auto open_header = Wav(3);
    open_header[4] = 'S'; // the sizes of a conversion that was killed
    auto faster = Wav(3);
    faster[25] = 0; // another sample rate: another program's file
    for (const auto& bytes : {std::vector<std::uint8_t>(), open_header, faster}) {
        for (const wchar_t* path : {kWav, L"C:\\Temp\\$$123456.snd", L"C:\\Temp\\Snd1A2B.tmp"}) {
            Put(path, kAbandonedAge, bytes);
            SweepTemporaryFiles(L"C:\\Temp");
            EXPECT_TRUE(Stays(path));
            Put(path, kAbandonedAge + 1, bytes);
            SweepTemporaryFiles(L"C:\\Temp");
            EXPECT_FALSE(Stays(path));
        }
    }
}

TEST_F(Leftovers, OnlyNamesOfOurOwnShapeAreSwept) {
    const Paths others = {L"C:\\Temp\\$$99999X.wav", L"C:\\Temp\\$$250000.snd", L"C:\\Temp\\Sndbox.tmp",
                          L"C:\\Temp\\Snd12345.tmp", L"C:\\Temp\\~sndbox.tmp",  L"C:\\Other\\Snd1.tmp"};
    for (const std::wstring& path : others)
        Put(path, 9 * kAbandonedAge);
    Put(L"C:\\Temp\\~snd7.tmp", 9 * kAbandonedAge);
    SweepTemporaryFiles(L"C:\\Temp\\");
    for (const std::wstring& path : others)
        EXPECT_TRUE(Stays(path));
    EXPECT_EQ(desk.files.size(), others.size());
}

} // namespace tonex::leftover_services_test
