// Walks the options of a command with getopt_long, whose own messages are turned into usage errors.
#pragma once

#include "Arguments.h"

#include <getopt.h>
#include <string>
#include <vector>

/// Calls `take(letter, value)` for each option and returns the other words. `table` ends in zeros; every
/// option has a letter of its own in `val`.
template <typename Take>
std::vector<std::string> Read_Options(int argc, char** argv, option const* table, Take&& take)
{
    opterr = 0;
    optind = 1;
    int letter;
    while ((letter = getopt_long(argc, argv, ":", table, nullptr)) != -1) {
        if (letter == ':') throw UsageError(std::string(argv[optind - 1]) + " needs a value");
        if (letter == '?') throw UsageError("there is no option " + std::string(argv[optind - 1]));
        take(letter, std::string(optarg ? optarg : ""));
    }
    return {argv + optind, argv + argc};
}
