#include "exchange/provenance.hpp"

#include <chrono>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <memory>

#ifdef VORDA_WITH_CRYPTO
#include <openssl/evp.h>
#endif

namespace {

#ifdef VORDA_WITH_CRYPTO
std::string sha256_of(const std::string &name) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE *)> in(std::fopen(name.c_str(), "rb"), std::fclose);
    const std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX *)> hash(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    if (!in || !hash || EVP_DigestInit_ex(hash.get(), EVP_sha256(), nullptr) != 1)
        return "";
    std::vector<unsigned char> buffer(1 << 20);
    for (std::size_t n = 0; (n = std::fread(buffer.data(), 1, buffer.size(), in.get())) > 0;)
        if (EVP_DigestUpdate(hash.get(), buffer.data(), n) != 1)
            return "";
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    if (std::ferror(in.get()) != 0 || EVP_DigestFinal_ex(hash.get(), digest, &length) != 1)
        return "";
    std::string text;
    for (unsigned int k = 0; k < length; ++k) {
        char two[3];
        std::snprintf(two, sizeof two, "%02x", digest[k]);
        text += two;
    }
    return text;
}
#else
std::string sha256_of(const std::string &) {
    return "";
}
#endif

} // namespace

Provenance provenance_of(const std::string &program, const std::string &file, const std::string &command) {
    const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    std::tm utc{};
    char date[32] = "";
    if (gmtime_r(&now, &utc) != nullptr)
        std::strftime(date, sizeof date, "%Y-%m-%dT%H:%M:%SZ", &utc);
    return {program, std::filesystem::path(file).filename().string(), sha256_of(file), date, command};
}

std::vector<std::pair<std::string, std::string>> Provenance::texts() const {
    std::vector<std::pair<std::string, std::string>> all = {{"source", program}, {"input_file", file}};
    if (!sha256.empty())
        all.emplace_back("input_sha256", sha256);
    all.emplace_back("date_created", date);
    all.emplace_back("history", date + ": " + command);
    return all;
}
