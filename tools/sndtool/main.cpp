// The command line of sndtool.
#include "tools/sndtool/console.h"
#include "tools/sndtool/exchange.h"
#include "tools/sndtool/inputs.h"
#include "tools/sndtool/sndtool.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>

namespace tonex {

namespace {

struct Options {
    Arguments files;
    std::string output;
    bool as_json = false;
    bool fit = false;
    ImportWish import_wish;
    ExportWish export_wish;
};

constexpr const char* kFooter =
    "A file named - is standard input or output.\n"
    "Exit status: 0 good, 1 bad input or an output that can not be written, 2 wrong usage.";

/// Put in front of a name that the parser would take for something else; no name starts with it.
constexpr char kNameMark = '\x01';

/// Marks the names that the parser would misread: what stands behind "--", and what is in brackets, which it
/// takes for a list.
std::vector<std::string> MarkNames(const std::vector<std::string>& given) {
    std::vector<std::string> marked;
    bool names_only = false;
    for (const std::string& argument : given) {
        if (!names_only && argument == "--") {
            names_only = true;
            continue;
        }
        const bool bracketed = argument.starts_with('[') && argument.ends_with(']');
        const bool dashed = names_only && argument.size() > 1 && argument[0] == '-';
        marked.push_back(bracketed || dashed ? kNameMark + argument : argument);
    }
    return marked;
}

void UnmarkNames(std::string& text) {
    std::erase(text, kNameMark);
}

std::string RefuseEmpty(const std::string& name) {
    return name.empty() ? "a name is empty" : "";
}

/// What "import" takes beside the files.
void DescribeImport(CLI::App& import, ImportWish& wish) {
    import.add_flag("--list", wish.list, "Only list tunes, or tracks and channels");
    import.add_option("--track", wish.track, "Track, or tune of a text, counted from 1")
        ->check(CLI::Range(1, 1000));
    import.add_option("--channel", wish.channel, "Channel, 1 to 16")->check(CLI::Range(1, 16));
    import.add_option("--from", wish.from, "Begin there, seconds")->check(CLI::Range(0.0, 1e6));
    import.add_option("--to", wish.to, "End there, seconds")->check(CLI::Range(0.0, 1e9));
    import
        .add_option("--transpose", wish.transpose,
                    "Half tones, or fit: the fewest that bring it onto the piano")
        ->option_text("N|fit");
    import.add_option("--octave", wish.octave, "Octaves up, or down when negative")->check(CLI::Range(-9, 9));
    import.add_option("--speed", wish.speed, "So many times as fast")->check(CLI::Range(0.1, 10.0));
    import.add_flag("--exact", wish.exact, "Lengths by the clock instead of as they are written");
    import.add_flag("--as-written", wish.as_written, "Keep tempo and lengths, however unevenly they play");
    import.add_flag("--fit", wish.fit, "Take the part that fits");
    import.add_flag("--strict", wish.strict, "Refuse what would be heard to be bent (J above 1)");
    import.add_flag("--json", wish.as_json, "Report as JSON on standard output");
}

/// What "export" takes beside the files.
void DescribeExport(CLI::App& command, ExportWish& wish) {
    command.add_option("--to", wish.format, "rtttl or mid")->required();
    command.add_flag("--nominal", wish.nominal, "MIDI: the written lengths instead of what is played");
    command.add_flag("--strict", wish.strict, "Refuse what would be heard to be bent (J above 1)");
    command.add_flag("--json", wish.as_json, "Report as JSON on standard output");
}

void DescribeCommands(CLI::App& app, Options& options) {
    app.allow_windows_style_options(false); // a path may start with a slash
    app.require_subcommand(1);
    app.set_version_flag("--version", "sndtool " TONEX_VERSION);
    app.footer(kFooter);

    const auto files = [&](CLI::App* command, const char* name, const char* help) {
        command->add_option(name, options.files, help)->required()->check(RefuseEmpty)->option_text("...");
    };
    const auto output = [&](CLI::App* command, const char* help) {
        command->add_option("-o,--output", options.output, help)->check(RefuseEmpty)->option_text("OUT|DIR");
    };

    CLI::App* info = app.add_subcommand("info", "Tell tempo, timing mode, entries, notes and duration");
    files(info, "FILE", "SND files");
    info->add_flag("--json", options.as_json, "As JSON: an array with one object a file");

    CLI::App* check = app.add_subcommand("check", "Check that files are as the editor writes them");
    files(check, "FILE", "SND files");

    CLI::App* wav = app.add_subcommand("wav", "Convert SND files to WAV files");
    files(wav, "IN.snd", "SND files");
    output(wav, "File, folder or -; without it IN.wav beside each file");

    CLI::App* text = app.add_subcommand("text", "Print a SND file as melody text");
    text->add_option("IN.snd", options.files, "SND file")->required()->check(RefuseEmpty)->option_text(" ");

    CLI::App* build = app.add_subcommand("build", "Build SND files from melody text");
    files(build, "IN.txt", "Melody text");
    output(build, "File, folder or -; without it IN.snd beside each file");
    build->add_flag("--fit", options.fit, "Write the part that fits the play block and report the rest");

    CLI::App* import = app.add_subcommand("import", "Make SND files from ring tones (RTTTL) and MIDI files");
    files(import, "IN", "RTTTL texts or MIDI files");
    output(import, "File, folder or -; without it IN.snd, or each tune's name, beside each file");
    DescribeImport(*import, options.import_wish);

    CLI::App* export_command = app.add_subcommand("export", "Write SND files as ring tones or MIDI files");
    files(export_command, "IN.snd", "SND files");
    output(export_command, "File, folder or -; without it IN.rtttl or IN.mid beside each file");
    DescribeExport(*export_command, options.export_wish);
}

/// Tells of a first word that is no command. True when it is one, or an option.
bool StartsWithCommand(const CLI::App& app, const std::vector<std::string>& arguments) {
    if (arguments.empty()) return true;
    std::string word = arguments.front();
    if (app.get_option_no_throw(word) != nullptr) return true;
    std::string commands;
    for (const CLI::App* command : app.get_subcommands(nullptr)) {
        if (command->get_name() == word) return true;
        commands += " " + command->get_name();
    }
    UnmarkNames(word);
    WriteErrorText("sndtool: \"" + word + "\" is no command or option; the commands are" + commands + "\n");
    return false;
}

/// Tells of a name that a command has no use for. True when there is none.
bool NamesAreFew(const std::string& command, const Arguments& files) {
    if (command != "text" || files.size() <= 1) return true;
    WriteErrorText("sndtool: text prints one file; \"" + files[1] + "\" is one too many\n");
    return false;
}

/// Answers --help and --version, or tells what is wrong with the command line.
int AnswerParseEnd(const CLI::App& app, const CLI::ParseError& end) {
    std::ostringstream out;
    std::ostringstream err;
    const int code = app.exit(end, out, err);
    std::string message = err.str();
    UnmarkNames(message);
    if (!message.empty()) WriteErrorText("sndtool: " + message);
    if (code != 0) return kExitWrongUsage;
    if (WriteText(out.str())) return kExitGood;
    ComplainOfStandardOutput();
    return kExitBadInput;
}

int RunCommand(const CLI::App& app, const Options& options) {
    const std::string command = app.get_subcommands().front()->get_name();
    if (!NamesAreFew(command, options.files)) return kExitWrongUsage;
    if (command == "info") return InfoCommand(options.files, options.as_json);
    if (command == "check") return CheckCommand(options.files);
    if (command == "wav") return WavCommand(options.files, options.output);
    if (command == "text") return TextCommand(options.files.front());
    if (command == "import") return ImportCommand(options.files, options.output, options.import_wish);
    if (command == "export") return ExportCommand(options.files, options.output, options.export_wish);
    return BuildCommand(options.files, options.output, options.fit);
}

int RunSndtool(int count, char** given) {
    std::vector<std::string> arguments = MarkNames(StartConsole(count, given));
    Options options;
    CLI::App app("Sound Editor's companion: looks at, checks, converts and builds melody files (SND)",
                 "sndtool");
    DescribeCommands(app, options);
    if (!StartsWithCommand(app, arguments)) return kExitWrongUsage;
    try {
        std::reverse(arguments.begin(), arguments.end()); // the parser takes them from the back
        app.parse(std::move(arguments));
    } catch (const CLI::ParseError& end) {
        return AnswerParseEnd(app, end);
    }
    for (std::string& file : options.files)
        UnmarkNames(file);
    UnmarkNames(options.output);
    return RunCommand(app, options);
}

} // namespace

} // namespace tonex

int main(int count, char** arguments) {
    try {
        return tonex::RunSndtool(count, arguments);
    } catch (const std::exception& error) {
        tonex::WriteErrorText(std::string("sndtool: ") + error.what() + "\n");
        return tonex::kExitBadInput;
    }
}
