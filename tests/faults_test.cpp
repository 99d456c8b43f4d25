// Every operation of every way that a melody goes fails: once, with all that follow, always with its kind,
// and by a machine that stops. After each the old file is whole or the new one, the melody is in the editor,
// the user was told what happened and no file of ours lies about.
#include "app/window_routes.h"
#include "link/device_commands.h"
#include "link/discovery_commands.h"
#include "link/folder_device_services.h"
#include "platform/files.h"
#include "preview/preview_commands.h"
#include "score/document_commands.h"
#include "score/rows.h"
#include "score/snd_file.h"
#include "tests/desktop/desktop.h"
#include "tests/set_up_window.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace tonex::faults_test {

using namespace tonex::testing;

namespace {

using Bytes = std::vector<std::uint8_t>;
using Texts = std::vector<std::wstring>;
using Paths = std::set<std::wstring, desktop::PathLess>;

constexpr const wchar_t* kTune = L"C:\\Songs\\TUNE.SND";
constexpr const wchar_t* kCompleted = L"C:\\Songs\\TUNE.snd"; ///< the same file, its extension added
constexpr const wchar_t* kOther = L"C:\\Songs\\OTHER.SND";
constexpr const wchar_t* kCacheTune = L"C:\\Link\\pcferry\\cache\\System\\sound\\TUNE.SND";
constexpr const char* kDeviceTune = "\\System\\sound\\TUNE.SND";
constexpr const wchar_t* kLastFile = L"Corvane\\Tonex\\File1";
const Bytes kOldBytes = {7, 0, 8, 0, 255, 255, 0, 0, 60, 0, 40, 10, 255, 255}; // one note at 60
constexpr int kNotes = 3;

enum class Fault {
    Busy,         ///< another program holds the file at the operation, and all others go well
    Refused,      ///< the operation fails for good, and all others go well
    FromThenOn,   ///< it and all that follow
    KindAlways,   ///< all operations of its name
    MachineStops, ///< the power goes off at it
};

/// A window on a fresh desktop with the link software, ready for a walk.
struct Scene {
    std::unique_ptr<sndmain> owner = SetUpWindow();
    sndmain& window = *owner;
    desktop::Desktop& desk = desktop::Current();
    bool went_on = true; ///< what the walk's command answered, if it answers
    Paths before;        ///< the files in front of the walk

    Bytes new_bytes;               ///< the file of the melody that walks save
    decltype(Score::sound) melody; ///< that melody

    Scene() {
        desktop::InstallLinkSoftware();
        DiscoverLinkSoftware(window);
        desk.folders.insert(L"C:\\Songs");
        FillScore(window, kNotes);
        melody = window.score.sound;
        new_bytes = EncodeSnd(window.tables, 120, BuildSaveList(window.score)).bytes;
        ClearAll(window);
    }
    void Compose(const wchar_t* path, std::int16_t location) {
        FillScore(window, kNotes);
        window.score.changed = true;
        window.document.current_path = path;
        window.document.location_flag = location;
    }
    bool Holds(const wchar_t* path, const Bytes& bytes) const {
        const auto found = desk.files.find(path);
        return found != desk.files.end() && found->second.bytes == bytes;
    }
};

/// What the user was told of the melody: without questions, and without what a start says of a sound folder
/// that it does not find.
Texts Told(const Scene& scene) {
    Texts texts;
    for (const desktop::Message& message : scene.desk.messages)
        if (message.buttons == MessageButtons::Ok && !message.text.starts_with(L"Directory does not exist."))
            texts.push_back(message.text);
    return texts;
}

// ---- what must be true after a walk, whatever failed ----

/// The old file or the new one; told once, and the flag on, exactly when it is not the new one.
void CheckSaved(const Scene& scene, bool done) {
    EXPECT_EQ(scene.window.score.sound, scene.melody);
    EXPECT_EQ(scene.window.score.changed, !done);
    EXPECT_EQ(Told(scene), done ? Texts{} : Texts{L"Write error!"});
}

void CheckOldOrNew(const Scene& scene, const wchar_t* path) {
    EXPECT_TRUE(scene.Holds(path, kOldBytes) || scene.Holds(path, scene.new_bytes));
}

void CheckSavedOver(Scene& scene) {
    CheckOldOrNew(scene, kTune);
    CheckSaved(scene, scene.Holds(kTune, scene.new_bytes));
    EXPECT_EQ(scene.window.document.current_path, kTune);
}

void CheckSavedAsNew(Scene& scene) {
    const bool there = scene.desk.files.contains(kTune);
    EXPECT_TRUE(!there || scene.Holds(kTune, scene.new_bytes));
    CheckSaved(scene, there);
    EXPECT_EQ(scene.window.document.current_path, there ? kCompleted : kOther);
    EXPECT_TRUE(scene.Holds(kOther, kOldBytes)) << "the file it was loaded from";
}

void CheckSavedAsOver(Scene& scene) {
    CheckOldOrNew(scene, kTune);
    CheckSaved(scene, scene.Holds(kTune, scene.new_bytes));
    EXPECT_TRUE(scene.Holds(kOther, kOldBytes)) << "the file it was loaded from";
}

void CheckUploaded(Scene& scene) {
    const auto& uploads = scene.desk.link.uploads;
    const bool done = uploads.contains(kDeviceTune);
    if (done) {
        EXPECT_EQ(uploads.at(kDeviceTune), scene.new_bytes);
    }
    EXPECT_EQ(uploads.size(), done ? 1u : 0u);
    CheckSaved(scene, done);
}

/// The prompt's Yes: the command goes on only when the melody is safe.
void CheckClosed(Scene& scene) {
    CheckSavedOver(scene);
    EXPECT_EQ(scene.went_on, scene.Holds(kTune, scene.new_bytes));
}

/// Loaded, or told and empty; a file that is only read stays what it is.
void CheckLoaded(const Scene& scene, const wchar_t* path, bool silent = false) {
    EXPECT_TRUE(scene.Holds(path, kOldBytes));
    EXPECT_FALSE(scene.window.score.changed);
    const bool loaded = scene.window.score.end_count == 2;
    if (!loaded) {
        EXPECT_EQ(scene.window.score.end_count, 1);
        EXPECT_EQ(scene.window.document.current_path, L"");
    } else {
        EXPECT_EQ(scene.window.document.current_path, path);
    }
    const Texts told = Told(scene);
    if (!silent || !told.empty()) {
        EXPECT_EQ(told, loaded ? Texts{} : Texts{L"Read error!"});
    }
}

void CheckOpened(Scene& scene) {
    CheckLoaded(scene, kOther);
}
void CheckOpenedOnDevice(Scene& scene) {
    CheckLoaded(scene, kCacheTune);
}
/// A last document that is not found is no error: the editor starts with an empty score.
void CheckReopened(Scene& scene) {
    CheckLoaded(scene, kOther, true);
}

/// Save first, then open: the melody is on the disk, or still in the editor.
void CheckSavedThenOpened(Scene& scene) {
    CheckOldOrNew(scene, kTune);
    EXPECT_TRUE(scene.Holds(kOther, kOldBytes));
    if (scene.Holds(kTune, kOldBytes)) {
        CheckSaved(scene, false);
    } else {
        CheckLoaded(scene, kOther);
    }
}

/// Played once or told; nothing of the document moves.
void CheckPreviewed(Scene& scene) {
    const bool played = desktop::Asked("StartCommandLine");
    EXPECT_EQ(Told(scene), played ? Texts{} : Texts{L"Write error!"});
    EXPECT_EQ(scene.window.score.sound, scene.melody);
    EXPECT_TRUE(scene.window.score.changed);
    EXPECT_TRUE(scene.window.Enabled);
    EXPECT_FALSE(scene.window.preview_busy);
    EXPECT_FALSE(scene.window.FrmWavConvert.Loaded);
    EXPECT_EQ(scene.desk.open_processes, 0);
    EXPECT_TRUE(scene.Holds(kTune, kOldBytes));
}

void CheckPut(Scene& scene) {
    CheckOldOrNew(scene, kCacheTune);
    EXPECT_EQ(scene.went_on, scene.Holds(kCacheTune, scene.new_bytes));
    EXPECT_TRUE(scene.Holds(L"C:\\Songs\\SOURCE.SND", scene.new_bytes));
}

// ---- the walks ----

struct Walk {
    const char* name;
    void (*prepare)(Scene&);
    void (*answer)(Scene&); ///< queues what the user answers, before each time
    void (*run)(Scene&);
    void (*check)(Scene&);
};

void NoAnswer(Scene&) {}
void AnswerTune(Scene& scene) {
    scene.desk.save_choices = {kTune};
}
void AnswerWithoutExtension(Scene& scene) {
    scene.desk.save_choices = {L"C:\\Songs\\TUNE", kCompleted}; // asked again when it is taken
}
void AnswerDeviceTune(Scene& scene) {
    scene.desk.link.save_choices = {kDeviceTune};
}
void AnswerOther(Scene& scene) {
    scene.desk.open_choices = {kOther};
}
void AnswerOpenDeviceTune(Scene& scene) {
    scene.desk.link.open_choices = {kDeviceTune};
}
void AnswerYes(Scene& scene) {
    scene.desk.answers = {MessageAnswer::Yes};
}
void AnswerYesThenOther(Scene& scene) {
    AnswerYes(scene);
    AnswerOther(scene);
}

/// A guarded old file, and beside it what a killed save left long ago.
void MelodyOfTheDisk(Scene& scene) {
    scene.desk.files[L"C:\\Songs\\~snd5.tmp"] = {{1}, kAttributeArchive, 90000};
    scene.Compose(kTune, kOnPc);
    scene.desk.files[kTune] = {kOldBytes, kAttributeReadOnly | kAttributeHidden};
}
void MelodyOfAnotherFile(Scene& scene) {
    scene.Compose(kOther, kOnPc);
    scene.desk.files[kOther] = {kOldBytes};
}
void MelodyOfAnotherFileOverThird(Scene& scene) {
    MelodyOfAnotherFile(scene);
    scene.desk.files[kTune] = {kOldBytes};
}
void MelodyOfTheDevice(Scene& scene) {
    scene.Compose(kCacheTune, kOnDevice);
    scene.desk.files[kCacheTune] = {kOldBytes, kAttributeReadOnly};
}
void TwoFiles(Scene& scene) {
    MelodyOfTheDisk(scene);
    scene.desk.files[kOther] = {kOldBytes};
}
void FileToOpen(Scene& scene) {
    scene.desk.files[kOther] = {kOldBytes};
}
void FileOnTheDevice(Scene& scene) {
    scene.desk.files[kCacheTune] = {kOldBytes};
}
void LastDocument(Scene& scene) {
    FileToOpen(scene);
    scene.desk.settings[kLastFile] = std::wstring(L"1,PC:OTHER.SND,") + kOther;
}
void FileToPut(Scene& scene) {
    scene.desk.files[kCacheTune] = {kOldBytes, kAttributeReadOnly};
    scene.desk.files[L"C:\\Songs\\SOURCE.SND"] = {scene.new_bytes};
}

/// A start goes through a fresh record.
void Start(Scene& scene, const std::wstring& command_line) {
    *scene.owner = sndmain{};
    EXPECT_EQ(StartUp(scene.window, command_line), StartResult::Run);
}

const Walk kWalks[] = {
    {"save", MelodyOfTheDisk, NoAnswer, [](Scene& s) { mnuFileOverWrite_Click(s.window); }, CheckSavedOver},
    {"save as a new file", MelodyOfAnotherFile, AnswerWithoutExtension,
     [](Scene& s) { mnuFileSaveWithName_Click(s.window); }, CheckSavedAsNew},
    {"save as over another", MelodyOfAnotherFileOverThird, AnswerTune,
     [](Scene& s) { mnuFileSaveWithName_Click(s.window); }, CheckSavedAsOver},
    {"save to the device", MelodyOfTheDevice, NoAnswer,
     [](Scene& s) { mnuFileOverWriteZ730_Click(s.window); }, CheckUploaded},
    {"save to the device as", MelodyOfTheDevice, AnswerDeviceTune,
     [](Scene& s) { mnuFileSaveWithNameZ730_Click(s.window); }, CheckUploaded},
    {"close", MelodyOfTheDisk, AnswerYes, [](Scene& s) { s.went_on = CloseAllowed(s.window); }, CheckClosed},
    {"open", FileToOpen, AnswerOther, [](Scene& s) { mnuFileOpen_Click(s.window); }, CheckOpened},
    {"save, then open", TwoFiles, AnswerYesThenOther, [](Scene& s) { mnuFileOpen_Click(s.window); },
     CheckSavedThenOpened},
    {"open on the device", FileOnTheDevice, AnswerOpenDeviceTune,
     [](Scene& s) { mnuFileOpenZ730_Click(s.window); }, CheckOpenedOnDevice},
    {"drop", FileToOpen, NoAnswer, [](Scene& s) { OpenDroppedFile(s.window, kOther); }, CheckOpened},
    {"start with a file", FileToOpen, NoAnswer, [](Scene& s) { Start(s, kOther); }, CheckReopened},
    {"start with the last document", LastDocument, NoAnswer, [](Scene& s) { Start(s, L""); }, CheckReopened},
    {"preview", MelodyOfTheDisk, NoAnswer, [](Scene& s) { mnuPreview_Click(s.window); }, CheckPreviewed},
    {"put into the device's folder", FileToPut, NoAnswer,
     [](Scene& s) {
         s.went_on = PutDeviceFile({L"C:\\Link\\pcferry\\cache"}, L"\\System\\sound\\TUNE.SND",
                                   L"C:\\Songs\\SOURCE.SND");
     },
     CheckPut},
};

Paths FilesOf(const desktop::Desktop& desk) {
    Paths paths;
    for (const auto& [path, file] : desk.files)
        paths.insert(path);
    return paths;
}

/// The scene in front of a walk, the operations not yet counted.
std::unique_ptr<Scene> Prepare(const Walk& walk) {
    auto scene = std::make_unique<Scene>();
    walk.prepare(*scene);
    walk.answer(*scene);
    scene->before = FilesOf(scene->desk);
    scene->before.insert({kTune, kCacheTune});
    scene->desk.file_operations = 0;
    scene->desk.operation_names.clear();
    scene->desk.log.clear();
    return scene;
}

/// Names of a walk's operations on a sound disk, in order.
std::vector<std::string> OperationsOf(const Walk& walk) {
    const auto scene = Prepare(walk);
    walk.run(*scene);
    EXPECT_EQ(Told(*scene), Texts{}) << walk.name;
    walk.check(*scene);
    return scene->desk.operation_names;
}

void Inject(desktop::Desktop& desk, Fault fault, int operation, const std::string& name) {
    switch (fault) {
    case Fault::Busy: desk.fail_at = operation; break;
    case Fault::Refused:
        desk.fail_at = operation;
        desk.failing_is_busy = false;
        break;
    case Fault::FromThenOn:
        desk.fail_at = operation;
        desk.fail_for_good = true;
        break;
    case Fault::KindAlways: desk.refused = {name}; break;
    case Fault::MachineStops: desk.stop_at = operation; break;
    }
}

void Mend(desktop::Desktop& desk) {
    desk.fail_at = desk.stop_at = -1;
    desk.fail_for_good = false;
    desk.failing_is_busy = true;
    desk.refused.clear();
    desk.messages.clear();
    desk.log.clear();
    desk.link.uploads.clear();
    desk.polls_until_exit = 1;
}

/// Files that were not there before.
void CheckNothingBeside(const Scene& scene) {
    for (const auto& [path, file] : scene.desk.files)
        EXPECT_TRUE(scene.before.contains(path)) << desktop::Utf8(path) << " was left";
}

/// A file that can not be seen or deleted explains itself.
void CheckNothingLeft(const Scene& scene, Fault fault, const std::string& name) {
    const bool explained =
        fault == Fault::FromThenOn || name == "FileExists" || (fault != Fault::Busy && name == "RemoveFile");
    if (!explained) CheckNothingBeside(scene);
}

/// The walk again, on a sound disk.
void CheckNextTime(const Walk& walk, Scene& scene) {
    Mend(scene.desk);
    walk.answer(scene);
    walk.run(scene);
    walk.check(scene);
    EXPECT_EQ(Told(scene), Texts{}) << "the next time must go well";
    EXPECT_TRUE(scene.went_on) << "the next time must go well";
    // A preview's files that could not be deleted are by now; what a save could not delete goes by its age.
    for (const auto& [path, file] : scene.desk.files)
        EXPECT_EQ(path.find(L"$$"), std::wstring::npos) << desktop::Utf8(path) << " was left for good";
}

/// Gives how often the user was told.
int FailAt(const Walk& walk, Fault fault, int operation, const std::string& name) {
    SCOPED_TRACE(std::string(walk.name) + ", fault " + std::to_string(static_cast<int>(fault)) +
                 " at operation " + std::to_string(operation) + ", " + name);
    const auto scene = Prepare(walk);
    Inject(scene->desk, fault, operation, name);
    walk.run(*scene);
    walk.check(*scene);
    CheckNothingLeft(*scene, fault, name);
    const int told = static_cast<int>(Told(*scene).size());
    CheckNextTime(walk, *scene);
    return told;
}

/// Every file in front of the walk is as it was, is whole and new, or is a copy that an upload takes away
/// first.
void StopAt(const Walk& walk, int operation, const std::string& name) {
    SCOPED_TRACE(std::string(walk.name) + ", the machine stops at operation " + std::to_string(operation) +
                 ", " + name);
    const auto scene = Prepare(walk);
    const auto files = scene->desk.files;
    Inject(scene->desk, Fault::MachineStops, operation, name);
    EXPECT_THROW(walk.run(*scene), desktop::MachineStopped);
    for (const auto& [path, file] : files) {
        if (file.age_seconds > 0) continue; // left long ago and swept
        const bool is_copy = path == kCacheTune && walk.check == CheckUploaded;
        const auto found = scene->desk.files.find(path);
        ASSERT_TRUE(found != scene->desk.files.end() || is_copy) << desktop::Utf8(path);
        if (found == scene->desk.files.end()) continue;
        EXPECT_TRUE(found->second.bytes == file.bytes || found->second.bytes == scene->new_bytes)
            << desktop::Utf8(path);
    }
}

struct Count {
    int points = 0; ///< ways in which something failed
    int told = 0;   ///< of them, how many the user heard of: the others were of no matter or mended
};

/// Fails all operations of a walk in all ways.
Count FailEverywhere(const Walk& walk) {
    const std::vector<std::string> names = OperationsOf(walk);
    Count count;
    for (int i = 0; i < static_cast<int>(names.size()); ++i) {
        const std::string& name = At(names, i);
        count.told += FailAt(walk, Fault::Busy, i, name) + FailAt(walk, Fault::Refused, i, name) +
                      FailAt(walk, Fault::FromThenOn, i, name);
        StopAt(walk, i, name);
        count.points += 4;
    }
    for (const std::string& name : std::set<std::string>(names.begin(), names.end())) {
        count.told += FailAt(walk, Fault::KindAlways, -1, name);
        ++count.points;
    }
    return count;
}

} // namespace

TEST(FaultsTest, EveryOperationOfEveryWayFailsAndNothingIsLost) {
    Count all;
    for (const Walk& walk : kWalks) {
        const Count count = FailEverywhere(walk);
        std::cout << walk.name << ": " << count.points << " points, " << count.told << " told\n";
        EXPECT_GT(count.points, 3) << walk.name;
        EXPECT_TRUE(count.told > 0 || walk.check == CheckPut) << walk.name << ": nothing failed";
        all.points += count.points;
        all.told += count.told;
    }
    std::cout << all.points << " points of failure, the user was told " << all.told << " times\n";
    EXPECT_GT(all.points, 200);
}

} // namespace tonex::faults_test
