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

PartFolder::PartFolder(const std::string &name) : folder_(name) {
    if (!folder_.has_filename()) // "out/"
        folder_ = folder_.parent_path();
    part_ = folder_.string() + ".part";
}

PartFolder::~PartFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(part_, ignored);
}

bool PartFolder::make(std::string &error) {
    std::error_code fault;
    std::filesystem::remove_all(part_, fault);
    if (std::filesystem::create_directory(part_, fault))
        return true;
    error = part_.string() + " cannot be made: " + fault.message();
    return false;
}

bool PartFolder::keep(const std::vector<std::string> &names, std::vector<std::string> &written,
                      std::string &error) {
    std::error_code fault;
    std::filesystem::create_directory(folder_, fault);
    for (const std::string &name : names)
        if (!fault) {
            std::filesystem::rename(part_ / name, folder_ / name, fault);
            written.push_back((folder_ / name).string());
        }
    if (!fault)
        return true;
    error = folder_.string() + " cannot be written: " + fault.message();
    return false;
}

bool write_whole(const std::string &name, const std::string &text, std::string &error) {
    PartFile part(name);
    std::FILE *out = part.open(error);
    if (out == nullptr)
        return false;
    std::fwrite(text.data(), 1, text.size(), out);
    return part.keep(error);
}
