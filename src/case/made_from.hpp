// What the files of a run's folder were made from, so that only what changed is made again.
#pragma once

#include <map>
#include <string>

// CASE.run/made_from.txt: for each thing made, the lines that it depends on.
class MadeFrom {
  public:
    explicit MadeFrom(const std::string &folder);
    // The thing was made from these lines and is still there: a file or folder of the run's folder, with the
    // size and time it had.
    bool holds(const std::string &thing, const std::string &lines) const;
    // It has been made. False, with the reason in `error`: the record cannot be written.
    [[nodiscard]] bool set(const std::string &thing, const std::string &lines, std::string &error);
    // It is about to be made: what the record says of it does not hold from here on.
    [[nodiscard]] bool forget(const std::string &thing, std::string &error);
    // A note of the record, or "".
    std::string note(const std::string &name) const;
    [[nodiscard]] bool set_note(const std::string &name, const std::string &text, std::string &error);

  private:
    bool save(std::string &error) const;
    std::string stamp(const std::string &thing) const;
    std::string folder_;
    std::map<std::string, std::string> lines_;
};

// A line for a file that something depends on: its name and hash, or size and time where it has none.
std::string hash_line(const std::string &name);
// The text of a file; "" when it is not there.
std::string text_of(const std::string &name);
// Writes a file when its text is another one; it is whole or not there. False with the reason in `error`.
[[nodiscard]] bool write_text(const std::string &name, const std::string &text, std::string &error);
