// What the command lines of all programs have in common.
#pragma once

#include <CLI/CLI.hpp>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <new>
#include <string>

// Option values above 0, or 0 as well, told in words a user can read.
inline CLI::Validator number_from_0(bool zero_counts) {
    return CLI::Validator(
        [=](std::string &text) -> std::string {
            double value = 0;
            const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), value);
            const bool number = fault == std::errc() && end == text.data() + text.size();
            if (number && std::isfinite(value) && (value > 0 || (zero_counts && value == 0)))
                return "";
            return text + (zero_counts ? " is neither 0 nor a positive number" : " is not a positive number");
        },
        zero_counts ? "NUMBER >= 0" : "POSITIVE");
}
inline CLI::Validator positive_number() {
    return number_from_0(false);
}

// The program's main, with a message where memory ends. Returns what it returns, 1 then.
inline int guarded(int argc, char **argv, const char *name, int (*program)(int, char **)) {
    try {
        return program(argc, argv);
    } catch (const std::bad_alloc &) {
        std::fprintf(stderr, "%s: RAM too small\n", name);
    } catch (const std::exception &fault) { // of a library
        std::fprintf(stderr, "%s: %s\n", name, fault.what());
    }
    return 1;
}

// --version, defaults in the help text, and a wide enough help.
inline void set_up_program(CLI::App &app) {
    app.set_version_flag("--version", app.get_name() + " " VORDA_VERSION);
    app.option_defaults()->always_capture_default();
    app.get_formatter()->column_width(36);
}
