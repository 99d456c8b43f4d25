#include "platform/link_library.h"

#include "link/install_entry_services.h"
#include "tests/windows/support.h"

#include <gtest/gtest.h>

#include <objbase.h>

#include <array>
#include <cstring>

using namespace tonex;
using namespace tonex::windows_test;

namespace {

constexpr const wchar_t* kEntry = L"Software\\QMT\\Corvane-e\\PC";
const std::wstring kSoundFolder = L"\\pcferry\\cache\\System\\sound";

// An installation of the link software: its registry entry and folders, and the libraries that a test puts
// there. The libraries are let go at the end, so that the next test finds none loaded.
struct Installation {
    TestFolder folder;
    TestKey entry{kEntry};

    Installation() {
        entry.SetText(L"InstallDir", folder.path);
        for (const wchar_t* part :
             {L"pcferry", L"pcferry\\cache", L"pcferry\\cache\\System", L"pcferry\\cache\\System\\sound"})
            MakeFolder(folder / part);
    }
    ~Installation() {
        for (const wchar_t* name : {L"CorCalen.dll", L"Corfldlg.dll"})
            for (int i = 0; i < 20 && GetModuleHandleW(name); ++i)
                FreeLibrary(GetModuleHandleW(name));
    }

    // From the build's folder of libraries, below which the other kinds lie.
    void Install(const std::wstring& kind, const std::wstring& name) const {
        const std::wstring program = TestProgram();
        const std::wstring beside = program.substr(0, program.rfind(L'\\'));
        const std::wstring source = beside + L"\\..\\..\\link\\" + kind + name;
        ASSERT_TRUE(CopyFileW(source.c_str(), (folder / name).c_str(), TRUE)) << "no library was built";
    }
    void InstallBoth(const std::wstring& kind = L"") const {
        Install(kind, L"CorCalen.dll");
        Install(kind, L"Corfldlg.dll");
    }

    std::wstring CachePath(const std::wstring& name) const {
        return folder.path + kSoundFolder + L"\\" + name;
    }
    std::string AnsiCachePath(const std::string& name) const {
        const std::wstring path = CachePath(L"");
        return std::string(path.begin(), path.end()) + name;
    }
};

template <typename Function> std::wstring FileNameOfModule(Function function) {
    MEMORY_BASIC_INFORMATION memory = {};
    VirtualQuery(reinterpret_cast<const void*>(function), &memory, sizeof memory);
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(static_cast<HMODULE>(memory.AllocationBase), path, MAX_PATH);
    const std::wstring text = path;
    return text.substr(text.rfind(L'\\') + 1);
}

void ExpectWhole(const LinkLibrary& library) {
    EXPECT_TRUE(library.Cor_IsOnPcFile);
    EXPECT_TRUE(library.Cor_IsExist);
    EXPECT_TRUE(library.Cor_ConvPathCacheToCorvane);
    EXPECT_TRUE(library.Cor_ConvPathCorvaneToCache);
    EXPECT_TRUE(library.Cor_PIMOpenFileDialog);
    EXPECT_TRUE(library.Cor_PIMSaveFileDialog);
    EXPECT_TRUE(library.Cor_GetFile);
    EXPECT_TRUE(library.Cor_PutFile);
    EXPECT_TRUE(library.Cor_DirByExt);
    EXPECT_TRUE(library.Cor_SetupDisconnection);
    EXPECT_TRUE(library.Cor_DoDisconnect);
}

// The entries that are called without a procedure of the editor in between.
std::array<std::wstring, 8> ModulesOf(const LinkLibrary& library) {
    return {FileNameOfModule(library.Cor_IsOnPcFile),
            FileNameOfModule(library.Cor_IsExist),
            FileNameOfModule(library.Cor_ConvPathCacheToCorvane),
            FileNameOfModule(library.Cor_ConvPathCorvaneToCache),
            FileNameOfModule(library.Cor_DirByExt),
            FileNameOfModule(library.Cor_DoDisconnect),
            FileNameOfModule(library.Cor_GetFile),
            FileNameOfModule(library.Cor_PutFile)};
}

const std::array<std::wstring, 8> kAllFromLibraries = {L"CorCalen.dll", L"CorCalen.dll", L"CorCalen.dll",
                                                       L"CorCalen.dll", L"CorCalen.dll", L"CorCalen.dll",
                                                       L"Corfldlg.dll", L"Corfldlg.dll"};

std::array<std::wstring, 8> AllFromEditor() {
    const std::wstring program = TestProgram();
    std::array<std::wstring, 8> modules;
    modules.fill(program.substr(program.rfind(L'\\') + 1));
    return modules;
}

// What every library must do with a melody on the device.
void UseDevice(const LinkLibrary& library, const Installation& installation) {
    WriteBytes(installation.CachePath(L"TUNE.SND"), "tune");
    WriteBytes(installation.folder / L"pc.snd", "from the PC");
    const std::string cache = installation.AnsiCachePath("TUNE.SND");
    const std::wstring wide_pc = installation.folder / L"pc.snd";
    const std::string pc(wide_pc.begin(), wide_pc.end());

    EXPECT_EQ(library.Cor_IsOnPcFile(cache.c_str()), 0);
    EXPECT_NE(library.Cor_IsOnPcFile(pc.c_str()), 0);
    EXPECT_NE(library.Cor_IsExist("\\System\\sound\\TUNE.SND"), 0);
    EXPECT_EQ(library.Cor_IsExist("\\System\\sound\\NONE.SND"), 0);

    char buffer[kLinkBufferSize];
    std::memset(buffer, '#', sizeof buffer);
    EXPECT_EQ(library.Cor_ConvPathCacheToCorvane(buffer, kLinkBufferSize, cache.c_str()), 22);
    EXPECT_STREQ(buffer, "\\System\\sound\\TUNE.SND");
    EXPECT_EQ(library.Cor_ConvPathCacheToCorvane(buffer, kLinkBufferSize, pc.c_str()), 0);
    EXPECT_EQ(library.Cor_ConvPathCorvaneToCache(buffer, kLinkBufferSize, "\\System\\sound\\TUNE.SND"),
              static_cast<int>(cache.size()));
    EXPECT_EQ(buffer, cache);
    EXPECT_EQ(library.Cor_ConvPathCorvaneToCache(buffer, 10, "\\System\\sound\\TUNE.SND"), 0);

    buffer[0] = '\0';
    EXPECT_EQ(library.Cor_GetFile(buffer, "\\System\\sound\\TUNE.SND", -1), 0);
    EXPECT_EQ(buffer, cache);
    EXPECT_NE(library.Cor_GetFile(buffer, "\\System\\sound\\NONE.SND", -1), 0);

    EXPECT_EQ(library.Cor_PutFile("\\System\\sound\\NEW.SND", pc.c_str(), 0), 0);
    EXPECT_EQ(ReadBytes(installation.CachePath(L"NEW.SND")), "from the PC");
    EXPECT_NE(library.Cor_PutFile("\\System\\sound\\TUNE.SND", "C:\\missing\\none.tmp", 0), 0);
    EXPECT_EQ(ReadBytes(installation.CachePath(L"TUNE.SND")), "tune");

    char names[100];
    EXPECT_EQ(library.Cor_DirByExt("\\system\\sound", "snd", names, sizeof names), 2);
    EXPECT_EQ(std::string(names, 18), std::string("NEW.SND\0TUNE.SND\0\0", 18));
    EXPECT_EQ(library.Cor_DoDisconnect(), 0);
}

// A buffer of the size that the editor passes, with marks on both sides that nothing may write on.
struct GuardedBuffer {
    std::array<char, kLinkBufferSize + 32> room;
    GuardedBuffer() { room.fill('#'); }
    char* Text() { return room.data() + 16; }
    bool Guarded() const {
        for (int i = 0; i < 16; ++i)
            if (room[static_cast<std::size_t>(i)] != '#' ||
                room[room.size() - 1 - static_cast<std::size_t>(i)] != '#')
                return false;
        return true;
    }
};

} // namespace

TEST(LinkLibrary, WithoutTheMakersLibrariesTheFolderStandsForTheDevice) {
    const Installation installation;
    const LinkLibrary library = LoadLinkLibrary(installation.folder.path);
    ExpectWhole(library);
    EXPECT_EQ(ModulesOf(library), AllFromEditor());
    UseDevice(library, installation);
}

TEST(LinkLibrary, WithoutAnInstallationNothingIsOnTheDevice) {
    const LinkLibrary library = LoadLinkLibrary(L"");
    ExpectWhole(library);
    char buffer[kLinkBufferSize];
    EXPECT_NE(library.Cor_IsOnPcFile("C:\\a.snd"), 0);
    EXPECT_EQ(library.Cor_ConvPathCacheToCorvane(buffer, kLinkBufferSize, "C:\\a.snd"), 0);
    EXPECT_EQ(library.Cor_ConvPathCorvaneToCache(buffer, kLinkBufferSize, "\\System\\sound\\A.SND"), 0);
    EXPECT_NE(library.Cor_PutFile("\\System\\sound\\A.SND", "C:\\a.snd", 0), 0);
    EXPECT_EQ(library.Cor_DoDisconnect(), 0);
}

TEST(LinkLibrary, InstalledLibrariesFillTheTable) {
    const Installation installation;
    installation.InstallBoth();
    const LinkLibrary library = LoadLinkLibrary(installation.folder.path);
    ExpectWhole(library);
    EXPECT_EQ(ModulesOf(library), kAllFromLibraries);
    UseDevice(library, installation);
}

TEST(LinkLibrary, TheMakersLibrariesFindAnApartment) {
    const Installation installation;
    installation.InstallBoth();
    LoadLinkLibrary(installation.folder.path);
    const auto enter =
        LibraryFunction<HRESULT(WINAPI*)(void*, DWORD)>(SystemLibrary(L"ole32.dll"), "CoInitializeEx");
    EXPECT_EQ(enter(nullptr, COINIT_MULTITHREADED), RPC_E_CHANGED_MODE);
}

TEST(LinkLibrary, TheLibrariesReadTheEntryAsTheEditorDoes) {
    const Installation installation;
    installation.InstallBoth();
    WriteBytes(installation.CachePath(L"A.SND"), "x");
    const LinkLibrary library = LoadLinkLibrary(installation.folder.path);
    const auto knows = [&] { return library.Cor_IsExist("\\System\\sound\\A.SND") != 0; };
    const std::wstring text = installation.folder.path + L"\\";
    const auto store = [&](DWORD type, std::size_t characters) {
        installation.entry.Set(L"InstallDir", type, text.c_str(), characters * sizeof(wchar_t));
    };
    store(REG_EXPAND_SZ, text.size() + 1);
    EXPECT_TRUE(knows());
    store(REG_BINARY, text.size() + 1);
    EXPECT_FALSE(knows());
    store(REG_SZ, text.size()); // without its NUL: what the system makes of it counts for both
    EXPECT_EQ(knows(), GetInstallDir() == installation.folder.path);
}

TEST(LinkLibrary, DecoratedNamesAreFoundToo) {
    const Installation installation;
    installation.InstallBoth(L"decorated\\");
    const LinkLibrary library = LoadLinkLibrary(installation.folder.path);
    EXPECT_EQ(ModulesOf(library), kAllFromLibraries);
    UseDevice(library, installation);
}

TEST(LinkLibrary, MissingFunctionsAndAMissingLibraryAreFilledIn) {
    const Installation installation;
    installation.Install(L"partial\\", L"CorCalen.dll");
    const LinkLibrary library = LoadLinkLibrary(installation.folder.path);
    ExpectWhole(library);
    EXPECT_EQ(FileNameOfModule(library.Cor_IsOnPcFile), L"CorCalen.dll");
    EXPECT_EQ(FileNameOfModule(library.Cor_DoDisconnect), L"CorCalen.dll");
    EXPECT_EQ(FileNameOfModule(library.Cor_IsExist), AllFromEditor()[0]);
    EXPECT_EQ(FileNameOfModule(library.Cor_PutFile), AllFromEditor()[0]);
    UseDevice(library, installation);
}

TEST(LinkLibrary, AFileThatIsNoLibraryIsPassedOverWithoutAQuestion) {
    const Installation installation;
    WriteBytes(installation.folder / L"CorCalen.dll", "This is no library.");
    WriteBytes(installation.folder / L"Corfldlg.dll", "");
    const LinkLibrary library = LoadLinkLibrary(installation.folder.path);
    ExpectWhole(library);
    EXPECT_EQ(ModulesOf(library), AllFromEditor());
}

TEST(LinkLibrary, ALibraryBesideADocumentIsNeverLoaded) {
    const Installation planted, installation;
    planted.InstallBoth();
    const CurrentFolder current(planted.folder.path);
    for (const std::wstring& folder : {installation.folder.path, std::wstring(L""), std::wstring(L".")}) {
        EXPECT_EQ(ModulesOf(LoadLinkLibrary(folder)), AllFromEditor());
        EXPECT_FALSE(GetModuleHandleW(L"CorCalen.dll"));
        EXPECT_FALSE(GetModuleHandleW(L"Corfldlg.dll"));
    }
    wchar_t after[MAX_PATH];
    GetCurrentDirectoryW(MAX_PATH, after);
    EXPECT_EQ(planted.folder.path, after);
}

TEST(LinkLibrary, LibrariesWhereTheSystemFindsThemAreLoaded) {
    const Installation elsewhere, installation;
    elsewhere.InstallBoth();
    wchar_t path[4096] = L"";
    GetEnvironmentVariableW(L"PATH", path, 4096);
    const Environment search(L"PATH", elsewhere.folder.path + L";" + path);
    EXPECT_EQ(ModulesOf(LoadLinkLibrary(installation.folder.path)), kAllFromLibraries);
}

TEST(LinkLibrary, AnUploadMakesTheFolderThatIsMissing) {
    const Installation installation;
    RemoveDirectoryW((installation.folder.path + kSoundFolder).c_str());
    RemoveDirectoryW((installation.folder / L"pcferry\\cache\\System").c_str());
    const LinkLibrary library = LoadLinkLibrary(installation.folder.path);
    WriteBytes(installation.folder / L"pc.snd", "x");
    const std::wstring wide = installation.folder / L"pc.snd";
    EXPECT_EQ(library.Cor_PutFile("\\System\\sound\\A.SND", std::string(wide.begin(), wide.end()).c_str(), 0),
              0);
    EXPECT_EQ(ReadBytes(installation.CachePath(L"A.SND")), "x");
}

TEST(LinkLibrary, AnUploadOverAReadOnlyFileReplacesItAndOverAHeldOneLeavesIt) {
    const Installation installation;
    const LinkLibrary library = LoadLinkLibrary(installation.folder.path);
    WriteBytes(installation.folder / L"pc.snd", "new");
    WriteBytes(installation.CachePath(L"A.SND"), "old");
    SetFileAttributesW(installation.CachePath(L"A.SND").c_str(), FILE_ATTRIBUTE_READONLY);
    const std::wstring wide = installation.folder / L"pc.snd";
    const std::string pc(wide.begin(), wide.end());
    const HANDLE held = CreateFileW(installation.CachePath(L"A.SND").c_str(), GENERIC_READ, 0, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    EXPECT_NE(library.Cor_PutFile("\\System\\sound\\A.SND", pc.c_str(), 0), 0);
    CloseHandle(held);
    EXPECT_EQ(ReadBytes(installation.CachePath(L"A.SND")), "old");
    EXPECT_EQ(library.Cor_PutFile("\\System\\sound\\A.SND", pc.c_str(), 0), 0);
    EXPECT_EQ(ReadBytes(installation.CachePath(L"A.SND")), "new");
}

// The faults that the libraries of this project can be asked for.
TEST(LinkFaults, EachOneDoesWhatItIsNamedFor) {
    const Installation installation;
    installation.InstallBoth();
    const LinkLibrary library = LoadLinkLibrary(installation.folder.path);
    WriteBytes(installation.CachePath(L"A.SND"), "x");
    const std::string cache = installation.AnsiCachePath("A.SND");
    const char* device = "\\System\\sound\\A.SND";
    char buffer[kLinkBufferSize];
    char names[50];
    const auto with = [](const wchar_t* fault, auto call) {
        const Environment environment(L"TONEX_LINK_FAULT", fault);
        return call();
    };
    const auto convert = [&] {
        return library.Cor_ConvPathCacheToCorvane(buffer, kLinkBufferSize, cache.c_str());
    };
    const auto put = [&] { return library.Cor_PutFile("\\System\\sound\\B.SND", cache.c_str(), 0); };

    EXPECT_NE(with(L"pcfile", [&] { return library.Cor_IsOnPcFile(cache.c_str()); }), 0);
    EXPECT_EQ(with(L"cachefile", [&] { return library.Cor_IsOnPcFile("C:\\a.snd"); }), 0);
    EXPECT_EQ(with(L"unknown", [&] { return library.Cor_IsExist(device); }), 0);
    EXPECT_EQ(with(L"conv0", convert), 0);
    EXPECT_EQ(with(L"convnegative", convert), -1);
    EXPECT_EQ(with(L"convbig", convert), 32767);
    EXPECT_NE(with(L"getfile", [&] { return library.Cor_GetFile(buffer, device, -1); }), 0);
    EXPECT_NE(with(L"putfile", put), 0);
    EXPECT_EQ(ReadBytes(installation.CachePath(L"B.SND")), "(missing)");
    EXPECT_NE(with(L"conv0,putfile", put), 0);
    EXPECT_EQ(with(L"conv0", put), 0);
    EXPECT_EQ(
        with(L"dir", [&] { return library.Cor_DirByExt("\\System\\sound", "snd", names, sizeof names); }), 0);
    EXPECT_EQ(with(L"disconnect", [&] { return library.Cor_DoDisconnect(); }), 5);
    with(L"setup", [&] {
        library.Cor_SetupDisconnection(); // would wait for a box otherwise
        return 0;
    });
}

TEST(LinkFaults, DialogsAnswerByThemselves) {
    const Installation installation;
    installation.InstallBoth();
    const LinkLibrary library = LoadLinkLibrary(installation.folder.path);
    char buffer[kLinkBufferSize];
    {
        const Environment environment(L"TONEX_LINK_FAULT", L"open,save");
        EXPECT_NE(library.Cor_PIMOpenFileDialog("\\System\\sound", "snd", buffer, kLinkBufferSize), 0);
        EXPECT_STREQ(buffer, "\\System\\sound\\LINK.SND");
        EXPECT_NE(library.Cor_PIMSaveFileDialog("\\System\\sound\\A", "snd", buffer, kLinkBufferSize), 0);
        EXPECT_STREQ(buffer, "\\System\\sound\\LINK.SND");
    }
    {
        const Environment environment(L"TONEX_LINK_FAULT", L"open,dbcs");
        EXPECT_NE(library.Cor_PIMOpenFileDialog("\\System\\sound", "snd", buffer, kLinkBufferSize), 0);
        EXPECT_STREQ(buffer, "\\System\\sound\\\x83\x5C\x83\x8D.SND");
    }
    const Environment environment(L"TONEX_LINK_FAULT", L"opencancel,savecancel");
    EXPECT_EQ(library.Cor_PIMOpenFileDialog("\\System\\sound", "snd", buffer, kLinkBufferSize), 0);
    EXPECT_EQ(library.Cor_PIMSaveFileDialog("\\System\\sound\\A", "snd", buffer, kLinkBufferSize), 0);
}

TEST(LinkFaults, BuffersAreFilledToTheLastCharacterAndNoFurther) {
    const Installation installation;
    installation.InstallBoth();
    const LinkLibrary library = LoadLinkLibrary(installation.folder.path);
    WriteBytes(installation.CachePath(L"A.SND"), "x");
    const std::string cache = installation.AnsiCachePath("A.SND");
    const char* device = "\\System\\sound\\A.SND";
    for (const wchar_t* fault : {L"full", L"nonul"}) {
        const Environment environment(L"TONEX_LINK_FAULT", std::wstring(fault) + L",open");
        GuardedBuffer converted, chosen, fetched;
        EXPECT_EQ(library.Cor_ConvPathCacheToCorvane(converted.Text(), kLinkBufferSize, cache.c_str()),
                  std::wstring(fault) == L"full" ? kLinkBufferSize : 19);
        EXPECT_NE(library.Cor_PIMOpenFileDialog("\\System\\sound", "snd", chosen.Text(), kLinkBufferSize), 0);
        EXPECT_EQ(library.Cor_GetFile(fetched.Text(), device, -1), 0);
        for (GuardedBuffer* buffer : {&converted, &chosen, &fetched}) {
            EXPECT_FALSE(std::memchr(buffer->Text(), 0, kLinkBufferSize));
            EXPECT_TRUE(buffer->Guarded());
        }
        EXPECT_EQ(std::string(converted.Text(), 19), device);
    }
}

TEST(LinkFaults, CallsAreRecorded) {
    const Installation installation;
    installation.InstallBoth();
    const Environment record(L"TONEX_LINK_LOG", installation.folder / L"calls.txt");
    const LinkLibrary library = LoadLinkLibrary(installation.folder.path);
    library.Cor_IsExist("\\System\\sound\\A.SND");
    library.Cor_DoDisconnect();
    EXPECT_EQ(ReadBytes(installation.folder / L"calls.txt"),
              "Cor_IsExist \\System\\sound\\A.SND -> 0\r\nCor_DoDisconnect -> 0\r\n");
}
