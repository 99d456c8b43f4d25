// The tests of the Windows layer, and the processes that they start.
#include "tests/windows/support.h"

#include <gtest/gtest.h>

#include <shellapi.h>

#include <string_view>

int main(int count, char** arguments) {
    int wide_count = 0;
    wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &wide_count);
    if (wide_count > 1 && std::wstring_view(wide[1]).starts_with(L"child-"))
        return tonex::windows_test::RunAsChild(wide_count, wide);
    tonex::SecureLibrarySearch();
    testing::InitGoogleTest(&count, arguments);
    return RUN_ALL_TESTS();
}
