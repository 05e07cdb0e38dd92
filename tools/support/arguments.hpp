// What the command lines of all programs have in common.
#pragma once

#include <CLI/CLI.hpp>

#include <charconv>
#include <cmath>
#include <string>

// Option values above 0, told in words a user can read.
inline CLI::Validator positive_number() {
    return CLI::Validator(
        [](std::string &text) -> std::string {
            double value = 0;
            const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), value);
            const bool number = fault == std::errc() && end == text.data() + text.size();
            return number && value > 0 && std::isfinite(value) ? "" : text + " is not a positive number";
        },
        "POSITIVE");
}

// --version, defaults in the help text, and a wide enough help.
inline void set_up_program(CLI::App &app) {
    app.set_version_flag("--version", app.get_name() + " " VORDA_VERSION);
    app.option_defaults()->always_capture_default();
    app.get_formatter()->column_width(36);
}
