#include "exchange/part_file.hpp"

#include "base/platform.hpp"

#include <cerrno>
#include <cstring>

PartFile::PartFile(const std::string &name) : name_(name), part_(name + ".part") {
    (void)remove_at_end(part_); // a very long name is at the mercy of signals
}

PartFile::~PartFile() {
    if (file_ != nullptr)
        std::fclose(file_);
    if (!kept_)
        std::remove(part_.c_str());
    forget_at_end(part_);
}

std::FILE *PartFile::open(std::string &error) {
    file_ = std::fopen(part_.c_str(), "wb");
    if (file_ == nullptr)
        error = name_ + " cannot be written: " + std::strerror(errno);
    return file_;
}

bool PartFile::keep(std::string &error) {
    bool good = true;
    if (file_ != nullptr) {
        good = std::fflush(file_) == 0 && std::ferror(file_) == 0;
        const int fault = errno;
        const bool closed = std::fclose(file_) == 0;
        errno = good ? errno : fault;
        good = good && closed;
        file_ = nullptr;
    }
    good = good && std::rename(part_.c_str(), name_.c_str()) == 0;
    if (!good)
        error = name_ + " cannot be written: " + std::strerror(errno);
    kept_ = good;
    return good;
}
