// Which window of the desktop a second copy brings to the front.
#include "link/single_instance_services.h"
#include "tests/desktop/desktop.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tonex::single_instance_services_test {

namespace {

constexpr std::uintptr_t kOwner = 900;

/// The log after a search among these windows.
std::vector<std::string> Search(const std::vector<desktop::Window>& windows,
                                const std::wstring& title = L"Sound Editor") {
    desktop::Desktop& desk = desktop::Reset();
    desk.windows = windows;
    ActivatePreviousInstance(title);
    return desk.log;
}

using Log = std::vector<std::string>;

} // namespace

TEST(SingleInstance, FindsTheOwnedWindowWhoseCaptionBeginsWithTheTitle) {
    EXPECT_EQ(Search({{L"Sound Editor - Untitled", kOwner}}), (Log{"ReadCaption 1", "BringToForeground 1"}));
}

TEST(SingleInstance, AnUnownedWindowWithTheSameCaptionIsSkipped) {
    EXPECT_EQ(Search({{L"Sound Editor - Untitled", 0}}), (Log{"ReadCaption 1"}));
    EXPECT_EQ(Search({{L"Sound Editor - Untitled", 0}, {L"Sound Editor - PC:A.SND", kOwner}}),
              (Log{"ReadCaption 1", "ReadCaption 2", "BringToForeground 2"}));
}

TEST(SingleInstance, ACaptionShorterThanTheTitleIsSkippedWithoutReadingIt) {
    EXPECT_EQ(Search({{L"", kOwner}, {L"Sound Edit", kOwner}}), Log{});
}

TEST(SingleInstance, OneCharacterShortIsReadAndThenSkipped) {
    // The length compared counts the ending NUL; kept as it is.
    EXPECT_EQ(Search({{L"Sound Edito", kOwner}}), (Log{"ReadCaption 1"}));
}

TEST(SingleInstance, TheExactTitleIsFound) {
    EXPECT_EQ(Search({{L"Sound Editor", kOwner}}), (Log{"ReadCaption 1", "BringToForeground 1"}));
    EXPECT_EQ(Search({{L"S", kOwner}}, L"S"), (Log{"ReadCaption 1", "BringToForeground 1"}));
}

TEST(SingleInstance, TheTitleIsComparedWithItsLetterCase) {
    EXPECT_EQ(Search({{L"sound editor - Untitled", kOwner}, {L"My Sound Editor", kOwner}}),
              (Log{"ReadCaption 1", "ReadCaption 2"}));
}

TEST(SingleInstance, AMinimisedWindowIsRestoredFirst) {
    EXPECT_EQ(Search({{L"Notes", kOwner}, {L"Sound Editor - PC:A.SND", kOwner, true}}),
              (Log{"ReadCaption 2", "RestoreWindow 2", "BringToForeground 2"}));
}

TEST(SingleInstance, TheFirstInTheOrderOfWindowsIsTaken) {
    EXPECT_EQ(Search({{L"Sound Editor 1", kOwner}, {L"Sound Editor 2", kOwner}}),
              (Log{"ReadCaption 1", "BringToForeground 1"}));
}

TEST(SingleInstance, TheSchedulersAlarmWindowIsNotItsMainWindow) {
    const desktop::Window alarm{L"Veloxa Scheduler - Matching with Schedule alarm!", kOwner};
    const desktop::Window shouted{L"Veloxa Scheduler - MATCHING WITH SCHEDULE ALARM!", kOwner};
    const desktop::Window main{L"Veloxa Scheduler - Today", kOwner};
    EXPECT_EQ(Search({alarm, main}, L"Veloxa Scheduler"),
              (Log{"ReadCaption 1", "ReadCaption 2", "BringToForeground 2"}));
    EXPECT_EQ(Search({alarm, shouted}, L"Veloxa Scheduler"), (Log{"ReadCaption 1", "ReadCaption 2"}));
    const desktop::Window longer{L"Veloxa Scheduler - Matching with Schedule alarm! - Today", kOwner};
    EXPECT_EQ(Search({longer}, L"Veloxa Scheduler"), (Log{"ReadCaption 1", "BringToForeground 1"}));
}

TEST(SingleInstance, WithAnyOtherTitleNoCaptionIsExcluded) {
    const desktop::Window alarm{L"Veloxa Scheduler - Matching with Schedule alarm!", kOwner};
    EXPECT_EQ(Search({alarm}, L"Veloxa Sched"), (Log{"ReadCaption 1", "BringToForeground 1"}));
    EXPECT_EQ(Search({alarm}, L"Veloxa"), (Log{"ReadCaption 1", "BringToForeground 1"}));
}

TEST(SingleInstance, TheCaptionIsCutBeforeItsFirstNul) {
    const std::wstring cut = std::wstring(L"Sound\0Editor and more", 21);
    EXPECT_EQ(Search({{cut, kOwner}}, std::wstring(L"Sound\0Editor", 12)), (Log{"ReadCaption 1"}));
    EXPECT_EQ(Search({{std::wstring(L"Sound Editor\0 rest", 18), kOwner}}),
              (Log{"ReadCaption 1", "BringToForeground 1"}));
}

TEST(SingleInstance, TheTitlesLengthInBytesDecidesWhatIsRead) {
    // Four characters of two bytes each: a caption of six characters is too short to be read.
    EXPECT_EQ(Search({{L"音符編集xx", kOwner}}, L"音符編集"), Log{});
    EXPECT_EQ(Search({{L"音符編集xxx", kOwner}}, L"音符編集"), (Log{"ReadCaption 1", "BringToForeground 1"}));
}

TEST(SingleInstance, NothingHappensWhenNoWindowMatches) {
    EXPECT_EQ(Search({}), Log{});
    EXPECT_EQ(Search({{L"Another program's window", kOwner}}), (Log{"ReadCaption 1"}));
}

} // namespace tonex::single_instance_services_test
