// The player's command line. Pure text.
#pragma once

#include <string_view>

namespace tonex {

/// "sndrec32 /play /close C:\My sounds\a.wav". The path may stand in double quotes or without them, blanks
/// and all; options may stand in front of it or behind it, in any letter case, with "/" or "-".
struct PlayerCommand {
    bool play = false;
    bool close = false;   ///< end when the sound ends
    bool unknown = false; ///< an option that the player does not have
    std::wstring_view path;
};

namespace command_line_detail {

constexpr bool IsBlank(wchar_t c) {
    return c == L' ' || c == L'\t';
}

// The library's substr can throw, which would bring its whole error handling into a small program.
constexpr std::wstring_view First(std::wstring_view text, std::size_t count) {
    return {text.data(), count};
}
constexpr std::wstring_view From(std::wstring_view text, std::size_t start) {
    text.remove_prefix(start);
    return text;
}

constexpr std::wstring_view TrimFront(std::wstring_view text) {
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    return text;
}

constexpr std::wstring_view TrimBack(std::wstring_view text) {
    while (!text.empty() && IsBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

/// Compares without regard to the case of ASCII letters; `lower` is in lower case.
constexpr bool SameLetters(std::wstring_view text, std::wstring_view lower) {
    if (text.size() != lower.size()) return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const wchar_t c = text[i] >= L'A' && text[i] <= L'Z' ? static_cast<wchar_t>(text[i] + 32) : text[i];
        if (c != lower[i]) return false;
    }
    return true;
}

constexpr std::size_t WordLength(std::wstring_view text) {
    std::size_t length = 0;
    while (length < text.size() && !IsBlank(text[length]))
        ++length;
    return length;
}

constexpr bool LooksLikeOption(std::wstring_view word) {
    return word.size() > 1 && (word.front() == L'/' || word.front() == L'-');
}

/// Takes an option of the player; false when it has none of that name.
constexpr bool TakeOption(std::wstring_view word, PlayerCommand& command) {
    word.remove_prefix(1);
    if (SameLetters(word, L"play")) return command.play = true;
    if (SameLetters(word, L"close")) return command.close = true;
    return false;
}

constexpr std::wstring_view TakeOptions(std::wstring_view text, PlayerCommand& command) {
    text = TrimFront(text);
    while (!text.empty()) {
        const std::wstring_view word = First(text, WordLength(text));
        if (!LooksLikeOption(word)) break;
        if (!TakeOption(word, command)) command.unknown = true;
        text = TrimFront(From(text, word.size()));
    }
    return text;
}

/// A path without quotes runs to the end of the line, but for known options that stand there.
constexpr std::wstring_view TakeOptionsBehind(std::wstring_view text, PlayerCommand& command) {
    text = TrimBack(text);
    while (true) {
        std::size_t word_start = text.size();
        while (word_start > 0 && !IsBlank(text[word_start - 1]))
            --word_start;
        if (word_start == 0) return text;
        const std::wstring_view word = From(text, word_start);
        if (!LooksLikeOption(word) || !TakeOption(word, command)) return text;
        text = TrimBack(First(text, word_start));
    }
}

} // namespace command_line_detail

/// The arguments behind the program's own name.
constexpr std::wstring_view ArgumentsOf(std::wstring_view line) {
    using namespace command_line_detail;
    line = TrimFront(line);
    if (!line.empty() && line.front() == L'"') {
        const std::size_t quote = line.find(L'"', 1);
        return quote == std::wstring_view::npos ? std::wstring_view{} : From(line, quote + 1);
    }
    return From(line, WordLength(line));
}

/// Reads the arguments behind the program's own name.
constexpr PlayerCommand ParsePlayerArguments(std::wstring_view arguments) {
    using namespace command_line_detail;
    PlayerCommand command;
    std::wstring_view rest = TakeOptions(arguments, command);
    if (rest.empty() || rest.front() != L'"') {
        command.path = TakeOptionsBehind(rest, command);
        return command;
    }
    rest.remove_prefix(1);
    const std::size_t quote = rest.find(L'"');
    command.path = quote == std::wstring_view::npos ? rest : First(rest, quote);
    if (quote == std::wstring_view::npos) return command;
    if (!TakeOptions(From(rest, quote + 1), command).empty()) command.unknown = true;
    return command;
}

} // namespace tonex
