// The list file, the one process-wide object: all that a run says goes there.
#pragma once

#include "base/types.hpp"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

// Version and release date of the program, as the list file shows them.
std::string program_version();

// Opens the list file `name` (an old one gets ".bak" behind its name) and writes the head block. Its own
// failures go to the alert routine.
[[nodiscard]] Status LISOPN(const std::string &name);
// Closes the list file and forgets the first fault, so that another one can be opened (a run has only one).
void close_list();

// One line of the list file, as it stands: its first character is the carriage control, a blank.
void list_line(std::string_view line);

// The message routine of faults: an empty line, a blank and the text with the value directly behind it, an
// empty line. A value of 0 is left out. Returns Status::failed, so that a routine can end with it.
Status MSGOUT(std::string_view text, int value = 0);
// The same form for warnings and for what is not a fault.
void message(std::string_view text, int value = 0);
// A line behind a message that tells more: file, line, what was found. Left out when it is empty.
void message_detail(std::string_view text);
// A fault message followed by its detail.
Status MSGOUT_with(std::string_view text, int value, std::string_view detail);

// A warning that stands once more at the end of the list file and on standard error, however often
// it is given.
void warn_at_end(std::string_view text);

// Shows a text to the user outside the list file: on standard error.
void ALERT(std::string_view text);

// The first fault message of the run; empty when there was none.
std::string first_fault();

// Tells the stop routine that the results are complete in this file.
void results_complete(const std::string &name);

// What a process of a run tells, for the list file of another one.
struct ListReport {
    std::vector<std::string> lines, end_warnings;
    std::string first_fault, first_detail;
    bool complete = false; // results_complete was called
};
// From here on messages are kept for the list file of another process: this one has none, and shows nothing.
void keep_lines();
// Hands the lines of the messages and the warnings out, and forgets them.
ListReport take_report();
// Adds the report of another process to this list file; its first fault is that of the run if there was none.
void add_report(const ListReport &report);

// The stop routine calls `end` last, with what the process has to tell, and lets it end the process.
void end_by(std::function<void(const ListReport &)> end);
// A line that the list file gets when a signal ends the process.
void line_at_signal(std::string_view line);

// Closes all, removes the named scratch files and ends the process. It does not return. Standard error shows
// the first fault with its detail; on a terminal also where the results are.
[[noreturn]] void STOPRN(int code);
