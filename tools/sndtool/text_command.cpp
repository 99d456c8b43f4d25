#include "tools/sndtool/sndtool.h"

#include "score/melody_text.h"
#include "tools/sndtool/console.h"
#include "tools/sndtool/inputs.h"

namespace tonex {

int TextCommand(const std::string& file) {
    SndInput snd;
    std::string reason;
    if (!ReadSnd(file, snd, reason)) return kExitBadInput;
    int entry = -1;
    const auto text = FormatMelodyText({snd.tempo, snd.list}, entry);
    if (!text) {
        const std::string number = "entry " + std::to_string(entry + 1);
        const std::uint16_t code = At(snd.list, entry).code;
        ComplainOffset(file, CodeOffsetOf(snd, entry),
                       entry >= kMaxEntries ? number + ": a melody has at most " + std::to_string(kMaxEntries)
                                            : number + " has the unknown code " + std::to_string(code));
        return kExitBadInput;
    }
    if (WriteText(*text)) return kExitGood;
    ComplainOfStandardOutput();
    return kExitBadInput;
}

} // namespace tonex
