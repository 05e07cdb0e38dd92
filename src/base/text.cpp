#include "base/text.hpp"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>

namespace {

bool is_blank(char c) {
    return c == ' ' || c == '\t' || c == '\r';
}

std::string stars_unless(int width, const std::string &text) {
    const std::size_t w = static_cast<std::size_t>(width);
    if (text.size() > w)
        return std::string(w, '*');
    return std::string(w - text.size(), ' ') + text;
}

std::string formatted(const char *format, int decimals, double value) {
    char buffer[400];
    std::snprintf(buffer, sizeof buffer, format, decimals, value);
    return buffer;
}

} // namespace

bool FreeReader::open(const std::string &path) {
    std::unique_ptr<std::FILE, int (*)(std::FILE *)> file(std::fopen(path.c_str(), "rb"), std::fclose);
    if (!file) {
        fault_ = path + ": " + std::strerror(errno);
        return false;
    }
    std::string text;
    char buffer[1 << 16];
    while (const std::size_t n = std::fread(buffer, 1, sizeof buffer, file.get()))
        text.append(buffer, n);
    if (std::ferror(file.get()) != 0) {
        fault_ = path + ": " + std::strerror(errno);
        return false;
    }
    if (text.compare(0, 3, "\xEF\xBB\xBF") == 0)
        text.erase(0, 3); // some editors start a text with a byte order mark
    open_text(path, std::move(text));
    return true;
}

void FreeReader::open_text(const std::string &name, std::string text, int first_line) {
    name_ = name;
    text_ = std::move(text);
    at_ = 0;
    line_ = first_line;
    ended_ = false;
    fault_.clear();
}

bool FreeReader::line(std::string &text, std::size_t columns) {
    if (at_ >= text_.size()) {
        ended_ = true;
        fault_ = name_ + " ends before line " + std::to_string(line_);
        return false;
    }
    std::size_t end = text_.find('\n', at_);
    if (end == std::string::npos)
        end = text_.size();
    text = text_.substr(at_, end - at_);
    if (!text.empty() && text.back() == '\r')
        text.pop_back();
    if (text.size() > columns)
        text.resize(columns);
    at_ = end < text_.size() ? end + 1 : end;
    ++line_;
    return true;
}

int FreeReader::NITEMS() const {
    int count = 0;
    bool blank = false;
    for (std::size_t i = at_; i < text_.size() && i < at_ + 200 && text_[i] != '\n'; ++i) {
        const bool now_blank = is_blank(text_[i]);
        if (blank && !now_blank)
            ++count;
        blank = now_blank;
    }
    return count;
}

bool FreeReader::at_end() const {
    for (std::size_t i = at_; i < text_.size(); ++i) {
        if (!is_blank(text_[i]) && text_[i] != '\n')
            return false;
    }
    return true;
}

void FreeReader::begin() {
    repeats_ = 0;
    ended_ = false;
    separator_used_ = true; // a comma before the first value stands for an empty one
    first_line_ = 0;
}

bool FreeReader::number_follows() const {
    const std::size_t sign = rest_.find_first_not_of("+-.");
    return sign != std::string::npos && sign < 3 && rest_[sign] >= '0' && rest_[sign] <= '9';
}

void FreeReader::finish() {
    const std::size_t end = text_.find('\n', at_);
    last_line_ = line_;
    const std::size_t first = std::min(text_.find_first_not_of(" \t\r,", at_), text_.size());
    rest_ = first < std::min(end, text_.size())
                ? trimmed(text_.substr(first, std::min(end, text_.size()) - first))
                : "";
    if (end == std::string::npos) {
        at_ = text_.size();
    } else {
        at_ = end + 1;
        ++line_;
    }
}

bool FreeReader::token(std::string_view &text) {
    if (repeats_ > 0) {
        --repeats_;
        text = repeated_;
        return true;
    }
    while (at_ < text_.size() && (is_blank(text_[at_]) || text_[at_] == '\n' || text_[at_] == ',')) {
        if (text_[at_] == ',') {
            if (separator_used_)
                return refuse(",", "a value");
            separator_used_ = true;
        } else if (text_[at_] == '\n') {
            // The next line may still be part of this read; finish() ends the line that the last value is on.
            ++line_;
        }
        ++at_;
    }
    if (at_ >= text_.size()) {
        ended_ = true;
        fault_ = name_ + " ends in line " + std::to_string(line_) + ", more values are expected";
        return false;
    }
    const std::size_t first = at_;
    if (first_line_ == 0)
        first_line_ = line_;
    while (at_ < text_.size() && !is_blank(text_[at_]) && text_[at_] != '\n' && text_[at_] != ',')
        ++at_;
    separator_used_ = false;
    text = std::string_view(text_).substr(first, at_ - first);
    const std::size_t star = text.find('*');
    if (star != std::string_view::npos && star > 0) {
        int count = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + star, count);
        if (error != std::errc() || end != text.data() + star || count < 1 || star + 1 == text.size())
            return refuse(text, "a number");
        repeated_ = text = text.substr(star + 1);
        repeats_ = count - 1;
    }
    return true;
}

bool FreeReader::refuse(std::string_view found, const char *wanted) {
    fault_ = name_ + ", line " + std::to_string(line_) + ": found \"" + std::string(found.substr(0, 40)) +
             "\" where " + wanted + " is expected";
    return false;
}

bool FreeReader::value(int &v) {
    std::string_view text;
    if (!token(text))
        return false;
    std::string_view digits = text;
    if (digits.size() > 1 && digits[0] == '+' && digits[1] != '-')
        digits.remove_prefix(1);
    int read = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), read);
    if (error != std::errc() || end != digits.data() + digits.size())
        return refuse(text, "an integer");
    v = read;
    return true;
}

bool FreeReader::value(f32 &v) {
    std::string_view text;
    if (!token(text))
        return false;
    std::string number(text);
    if (number.size() > 1 && number[0] == '+' && number[1] != '-')
        number.erase(0, 1);
    for (char &c : number) {
        if (c == 'd' || c == 'D')
            c = 'e';
    }
    const char *first = number.data();
    const char *last = first + number.size();
    f32 read = 0;
    auto result = std::from_chars(first, last, read);
    if (result.ec == std::errc::result_out_of_range) {
        double wide = 0; // too small for f32 is 0, too large is no number of ours
        result = std::from_chars(first, last, wide);
        read = std::fabs(wide) < 1 ? static_cast<f32>(wide) : HUGE_VALF;
    }
    if (result.ec != std::errc() || result.ptr != last || !std::isfinite(read))
        return refuse(text, "a number");
    v = read;
    return true;
}

std::string int_in(int width, std::int64_t value) {
    return stars_unless(width, std::to_string(value));
}

std::string fixed(int width, int decimals, double value) {
    return stars_unless(width, formatted("%.*f", decimals, value));
}

std::string sci(int width, int decimals, double value) {
    return stars_unless(width, formatted("%.*E", decimals, value));
}

std::string text_in(std::size_t width, std::string_view text) {
    std::string out(text.substr(0, width));
    out.resize(width, ' ');
    return out;
}

std::string text_at_least(std::size_t width, std::string_view text) {
    return text.size() < width ? text_in(width, text) : std::string(text);
}

std::string trimmed(std::string_view text) {
    const std::size_t last = text.find_last_not_of(" \t\r");
    return std::string(last == std::string_view::npos ? std::string_view() : text.substr(0, last + 1));
}
