// Prints the tables of docs/accuracy.md and docs/effects.md: what is to be expected, what was rendered, and
// the error. harmonet_accuracy accuracy|live|levels

#include "bench/accuracy/Rows.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>

namespace
{

void PrintAccuracy()
{
    std::printf("| what | expected | rendered | error |\n|---|---|---|---|\n");
    Accuracy::PrintTimes();
    Accuracy::PrintRates();
    Accuracy::PrintPlaces();
    Accuracy::PrintFades();
    Accuracy::PrintEffects();
    Accuracy::PrintCodings();
}

} // namespace

int main(int argc, char** argv)
{
    // A user's own settings of OpenAL would show in what is rendered.
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_CONFIG_DIRS"}) {
        setenv(name, "/nonexistent", 1);
    }
    try {
        if (argc == 2 && std::strcmp(argv[1], "accuracy") == 0) {
            PrintAccuracy();
        }
        else if (argc == 2 && std::strcmp(argv[1], "live") == 0) {
            Accuracy::PrintLive();
        }
        else if (argc == 2 && std::strcmp(argv[1], "levels") == 0) {
            Accuracy::PrintLevels();
        }
        else {
            std::fprintf(stderr, "usage: harmonet_accuracy accuracy|live|levels\n");
            return 2;
        }
    }
    catch (const std::exception& error) {
        std::fprintf(stderr, "harmonet_accuracy: %s\n", error.what());
        return 1;
    }
    return 0;
}
