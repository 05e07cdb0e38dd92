// Text in and out: free-form reading of numbers, fixed-column writing.
#pragma once

#include "base/array.hpp"
#include "base/types.hpp"

#include <string>
#include <string_view>

// Reads a text file line by line or as free-form numbers. A free-form read starts on a new line, takes
// values separated by blanks or commas, runs on over as many lines as it needs and drops the rest of its
// last line. Exponents may be written with D, a value may be repeated as r*v, lines may end with CR LF. What
// is not a finite number of the wanted type is a fault. All reads return false on a fault and leave its
// words in fault().
class FreeReader {
  public:
    // Loads an existing file; false when it cannot be opened. A byte order mark in front is dropped.
    [[nodiscard]] bool open(const std::string &path);
    // Reads from a text in memory; `name` stands for the file in fault(), `first_line` is the number of its
    // first line there.
    void open_text(const std::string &name, std::string text, int first_line = 1);

    // The next line, at most `columns` characters of it; false at the end of the file.
    [[nodiscard]] bool line(std::string &text, std::size_t columns);
    template <class... T> [[nodiscard]] bool read(T &...values) {
        begin();
        const bool good = (value(values) && ...);
        finish();
        return good;
    }
    // Reads n values of one kind as one free-form read.
    template <class T> [[nodiscard]] bool read_array(T *values, std::int64_t n) {
        begin();
        bool good = true;
        for (std::int64_t i = 0; good && i < n; ++i)
            good = value(values[i]);
        finish();
        return good;
    }

    // Number of items of the next line as a blank followed by a non-blank in columns 1 to 200 counts them;
    // the line is read again afterwards. An item in column 1 does not count.
    int NITEMS() const;
    // True when only blank lines are left.
    bool at_end() const;
    // True when the last fault was the end of the file.
    bool ended() const { return ended_; }
    // File, line and what was found, for the line behind a message.
    const std::string &fault() const { return fault_; }
    // Number of the line that the next read starts on.
    int line_number() const { return line_; }
    // "file, line n" of the first value of the last read.
    std::string place() const { return name_ + ", line " + std::to_string(first_line_); }
    // True when the last read took values of more than one line.
    bool spread() const { return last_line_ != first_line_; }
    // What stood behind the last value on its line, without blanks in front; and whether that begins
    // with a number.
    const std::string &rest() const { return rest_; }
    bool number_follows() const;

  private:
    void begin();
    void finish();
    bool token(std::string_view &text);
    bool value(int &v);
    bool value(f32 &v);
    bool refuse(std::string_view found, const char *wanted);

    std::string name_;
    std::string text_;
    std::size_t at_ = 0;
    int line_ = 1;
    bool ended_ = false;
    bool separator_used_ = false;
    int repeats_ = 0;
    std::string_view repeated_;
    std::string fault_;
    int first_line_ = 0, last_line_ = 0; // of the last read
    std::string rest_;
};

// Fixed columns. A value that does not fit fills its columns with asterisks.
std::string int_in(int width, std::int64_t value);
std::string fixed(int width, int decimals, double value);
std::string sci(int width, int decimals, double value);
// Text cut or padded with blanks to the width.
std::string text_in(std::size_t width, std::string_view text);
// Text of at least the width: padded, never cut (file names).
std::string text_at_least(std::size_t width, std::string_view text);
// Without the blanks at the end.
std::string trimmed(std::string_view text);
