// Binary sequential files: each record is framed by its 4-byte little-endian length before and after it.
#pragma once

#include "base/types.hpp"

#include <cstddef>
#include <cstdio>
#include <initializer_list>
#include <memory>
#include <string>

// A run of bytes that goes into a record or is taken from one.
struct Bytes {
    const void *data = nullptr;
    std::size_t size = 0;
};
template <class T> Bytes bytes_of(const T *data, std::int64_t n) {
    return {data, static_cast<std::size_t>(n) * sizeof(T)};
}
template <class T> Bytes bytes_of(const T &value) {
    return {&value, sizeof(T)};
}

// One open file of records, known by its unit number. Every call returns false when the system refuses, a
// short disk included; error() then tells why. Closing is implied. The file is sequential: a record that is
// written is the last one, what was behind it is cut off.
class RecordFile {
  public:
    explicit RecordFile(int unit) : unit_(unit) {}
    RecordFile(const RecordFile &) = delete;
    RecordFile &operator=(const RecordFile &) = delete;
    ~RecordFile() { close(); }

    // A new file of that name, emptied if it exists.
    [[nodiscard]] bool create(const std::string &path);
    // An existing file, to be read.
    [[nodiscard]] bool open(const std::string &path);
    // A named file at its first record, to be read or written over; made when it does not exist.
    [[nodiscard]] bool open_or_create(const std::string &path);
    // An unnamed file in the folder of the run, gone with its close.
    [[nodiscard]] bool open_scratch();
    bool is_open() const { return file_ != nullptr; }

    // One record of all parts in order.
    [[nodiscard]] bool write(std::initializer_list<Bytes> parts);
    // Reads the next record into the parts; false at the end of the file or when its length differs.
    struct Target {
        void *data;
        std::size_t size;
    };
    [[nodiscard]] bool read(std::initializer_list<Target> parts);
    // Length of the next record without reading it; -1 at the end of the file or for a broken frame.
    [[nodiscard]] std::int64_t next_length();
    [[nodiscard]] bool rewind();
    // Where the next record starts [bytes from the front], -1 when the system refuses; and back to such a
    // place, to read from there or to write over what follows.
    [[nodiscard]] std::int64_t place();
    [[nodiscard]] bool go_to(std::int64_t place);
    // Bytes from there to the end of the file; -1 when the system does not tell.
    [[nodiscard]] std::int64_t bytes_left();
    // Writes out what is buffered; false when the disk has no room for it.
    [[nodiscard]] bool flush();
    // False when the last buffered bytes could not be written.
    bool close();

    int unit() const { return unit_; }
    const std::string &error() const { return error_; }

  private:
    bool complain();
    bool adopt(int descriptor);
    bool start_writing();
    int unit_;
    std::FILE *file_ = nullptr;
    std::unique_ptr<char[]> buffer_; // of the stream, when it is made for long sweeps
    bool writing_ = false;           // the end of the file is where it stands
    std::string error_;
};
