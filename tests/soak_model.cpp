// The simple second model of the editor, for tests that drive the real window: reads a command a line, does
// it, and prints as a line of JSON what the window has to show then.
//
//   key PITCH | length INDEX | character C | select COLUMN FAR_END | copy | delete | insert | paste | undo |
//   clear octave DIRECTION | halftone DIRECTION | reload
//
// "length" counts the buttons as the editor does: notes from 1, rests from 101. "reload" is what saving and
// opening again leaves.
#include "tests/random_editor_model.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

using tonex::testing::Model;

struct Order {
    const char* word;
    void (*run)(Model&, int a, int b);
};

constexpr Order kOrders[] = {
    {"key", [](Model& model, int a, int) { model.Key(a); }},
    {"length", [](Model& model, int a, int) { model.LengthButton(a); }},
    {"character", [](Model& model, int a, int) { model.Character(static_cast<wchar_t>(a)); }},
    {"select", [](Model& model, int a, int b) { model.Select(a, b); }},
    {"copy", [](Model& model, int, int) { model.CopyColumns(); }},
    {"delete", [](Model& model, int, int) { model.Delete(); }},
    {"insert", [](Model& model, int, int) { model.Insert(); }},
    {"paste", [](Model& model, int, int) { model.Paste(); }},
    {"undo", [](Model& model, int, int) { model.Undo(); }},
    {"clear", [](Model& model, int, int) { model.Clear(); }},
    {"octave", [](Model& model, int a, int) { model.Octave(a); }},
    {"halftone", [](Model& model, int a, int) { model.HalfTone(a); }},
    {"reload", [](Model& model, int, int) { model.Reload(model.Size()); }},
};

bool Run(Model& model, const char* line) {
    char word[16] = "";
    int a = 0, b = 0;
    std::sscanf(line, "%15s %d %d", word, &a, &b);
    for (const Order& order : kOrders) {
        if (std::strcmp(order.word, word) != 0) continue;
        order.run(model, a, b);
        return true;
    }
    return false;
}

void Print(const Model& model) {
    std::printf("{\"col\":%d,\"far\":%d,\"length\":%d,\"entries\":[", model.col, model.far, model.length);
    const char* between = "";
    for (const tonex::Entry& entry : model.entries) {
        std::printf("%s[%d,%d]", between, entry.code, entry.pitch);
        between = ",";
    }
    std::printf("]}\n");
    std::fflush(stdout);
}

} // namespace

int main() {
    Model model;
    char line[80];
    while (std::fgets(line, sizeof line, stdin) != nullptr) {
        if (!Run(model, line)) {
            std::fprintf(stderr, "soak_model: unknown command %s", line);
            return 2;
        }
        Print(model);
    }
    return 0;
}
