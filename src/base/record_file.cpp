#include "base/record_file.hpp"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Stream buffer of a scratch file: large enough that a system call is spread over many records, small enough
// to stay in the second-level cache between the kernel's copy into it and ours out of it.
constexpr std::size_t SWEEP_BUFFER = std::size_t{256} << 10;

int unnamed_file() {
#ifdef O_TMPFILE
    const int descriptor = ::open(".", O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (descriptor >= 0)
        return descriptor;
#endif
    // Not every file system has unnamed files.
    char name[] = "SCRATCHXXXXXX";
    const int named = mkstemp(name);
    if (named >= 0)
        unlink(name);
    return named;
}

} // namespace

bool RecordFile::complain() {
    error_ = "unit " + std::to_string(unit_) + ": " +
             (errno != 0 ? std::strerror(errno) : "unexpected end of file");
    return false;
}

bool RecordFile::create(const std::string &path) {
    close();
    errno = 0;
    file_ = std::fopen(path.c_str(), "w+b");
    writing_ = true;
    return file_ != nullptr || complain();
}

bool RecordFile::open(const std::string &path) {
    close();
    errno = 0;
    file_ = std::fopen(path.c_str(), "rb");
    writing_ = false;
    return file_ != nullptr || complain();
}

// Takes over a descriptor of a file that is to be swept from end to end.
bool RecordFile::adopt(int descriptor) {
    if (descriptor < 0)
        return complain();
    file_ = fdopen(descriptor, "r+b");
    if (file_ == nullptr) {
        const int reason = errno;
        ::close(descriptor);
        errno = reason;
        return complain();
    }
    buffer_.reset(new (std::nothrow) char[SWEEP_BUFFER]);
    if (buffer_)
        std::setvbuf(file_, buffer_.get(), _IOFBF, SWEEP_BUFFER);
    (void)posix_fadvise(descriptor, 0, 0, POSIX_FADV_SEQUENTIAL); // only advice
    writing_ = false;
    return true;
}

bool RecordFile::open_or_create(const std::string &path) {
    close();
    errno = 0;
    return adopt(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
}

bool RecordFile::open_scratch() {
    close();
    errno = 0;
    return adopt(unnamed_file());
}

// Cuts the file off where it stands. A device has no length to cut.
bool RecordFile::start_writing() {
    const off_t place = ftello(file_);
    if (place < 0 || fseeko(file_, place, SEEK_SET) != 0)
        return false;
    writing_ = ftruncate(fileno(file_), place) == 0 || errno == EINVAL;
    return writing_;
}

bool RecordFile::write(std::initializer_list<Bytes> parts) {
    std::uint64_t total = 0;
    for (const Bytes &part : parts)
        total += part.size;
    errno = 0;
    if (file_ == nullptr || total > UINT32_MAX) {
        errno = file_ == nullptr ? EBADF : EFBIG;
        return complain();
    }
    const std::uint32_t frame = static_cast<std::uint32_t>(total);
    bool good = (writing_ || start_writing()) && std::fwrite(&frame, 1, sizeof frame, file_) == sizeof frame;
    for (const Bytes &part : parts)
        good = good && (part.size == 0 || std::fwrite(part.data, 1, part.size, file_) == part.size);
    good = good && std::fwrite(&frame, 1, sizeof frame, file_) == sizeof frame;
    return good || complain();
}

std::int64_t RecordFile::next_length() {
    std::uint32_t frame = 0;
    errno = 0;
    if (file_ == nullptr || writing_ || std::fread(&frame, 1, sizeof frame, file_) != sizeof frame)
        return -1;
    if (std::fseek(file_, -static_cast<long>(sizeof frame), SEEK_CUR) != 0)
        return -1;
    return frame;
}

bool RecordFile::read(std::initializer_list<Target> parts) {
    std::uint64_t total = 0;
    for (const Target &part : parts)
        total += part.size;
    std::uint32_t before = 0;
    std::uint32_t after = 0;
    errno = 0;
    bool good = file_ != nullptr && !writing_ &&
                std::fread(&before, 1, sizeof before, file_) == sizeof before && before == total;
    for (const Target &part : parts)
        good = good && (part.size == 0 || std::fread(part.data, 1, part.size, file_) == part.size);
    good = good && std::fread(&after, 1, sizeof after, file_) == sizeof after && after == before;
    return good || complain();
}

bool RecordFile::rewind() {
    errno = 0;
    if (file_ == nullptr || std::fflush(file_) != 0 || std::fseek(file_, 0, SEEK_SET) != 0)
        return complain();
    writing_ = false;
    return true;
}

std::int64_t RecordFile::place() {
    return file_ == nullptr ? -1 : ftello(file_);
}

std::int64_t RecordFile::bytes_left() {
    struct stat found;
    const std::int64_t here = place();
    return here < 0 || fstat(fileno(file_), &found) != 0 ? -1 : found.st_size - here;
}

bool RecordFile::go_to(std::int64_t place) {
    errno = 0;
    if (file_ == nullptr || place < 0 || std::fflush(file_) != 0 || fseeko(file_, place, SEEK_SET) != 0)
        return complain();
    writing_ = false;
    return true;
}

bool RecordFile::flush() {
    errno = 0;
    return (file_ != nullptr && std::fflush(file_) == 0) || complain();
}

bool RecordFile::close() {
    if (file_ == nullptr)
        return true;
    errno = 0;
    const bool good = std::fclose(file_) == 0;
    file_ = nullptr;
    buffer_.reset();
    return good || complain();
}
