#include "link/paths.h"

namespace tonex {
namespace {

constexpr std::size_t kExtensionLength = 4;

std::size_t NameStart(std::wstring_view path) {
    const std::size_t backslash = path.rfind(L'\\');
    return backslash == std::wstring_view::npos ? 0 : backslash + 1;
}

} // namespace

std::wstring FileNameOfPath(std::wstring_view path) {
    return std::wstring(path.substr(NameStart(path)));
}

std::wstring FolderOfPath(std::wstring_view path) {
    return std::wstring(path.substr(0, NameStart(path)));
}

std::wstring UpperCase(std::wstring_view text) {
    std::wstring upper(text);
    for (wchar_t& letter : upper) {
        if (letter >= L'a' && letter <= L'z') letter = static_cast<wchar_t>(letter - L'a' + L'A');
    }
    return upper;
}

bool HasExtension(std::wstring_view name, std::wstring_view extension) {
    if (name.size() > kExtensionLength) name.remove_prefix(name.size() - kExtensionLength);
    return UpperCase(name) == UpperCase(extension);
}

std::wstring WithoutQuotes(std::wstring_view path) {
    if (path.ends_with(L'"')) path.remove_suffix(1);
    if (path.starts_with(L'"')) path.remove_prefix(1);
    return std::wstring(path);
}

std::wstring WithoutTrailingBackslash(std::wstring_view path) {
    if (path.ends_with(L'\\')) path.remove_suffix(1);
    return std::wstring(path);
}

} // namespace tonex
