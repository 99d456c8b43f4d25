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

bool MatchesPattern(std::wstring_view name, std::wstring_view pattern, SameLetterRule same_letter) {
    std::size_t n = 0;
    std::size_t p = 0;
    std::size_t star = std::wstring_view::npos; // the last '*' met, and where the name went on behind its run
    std::size_t behind_run = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == L'*') {
            star = p++;
            behind_run = n;
        } else if (p < pattern.size() && (pattern[p] == L'?' || same_letter(pattern[p], name[n]))) {
            ++p;
            ++n;
        } else if (star != std::wstring_view::npos) {
            p = star + 1;
            n = ++behind_run;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of(L'*', p) == std::wstring_view::npos;
}

bool HasExtension(std::wstring_view name, std::wstring_view extension) {
    if (name.size() > kExtensionLength) name.remove_prefix(name.size() - kExtensionLength);
    return UpperCase(name) == UpperCase(extension);
}

std::wstring WithExtension(std::wstring_view path, std::wstring_view extension) {
    if (HasExtension(path, extension)) return std::wstring(path);
    while (path.ends_with(L'.') || path.ends_with(L' '))
        path.remove_suffix(1);
    return std::wstring(path) + std::wstring(extension);
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
