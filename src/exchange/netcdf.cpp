// NetCDF-4 files of all results. Complex values are the conjugates of ours: the programs that read these
// files have the time factor exp(-i omega t).
#include "exchange/export.hpp"
#include "exchange/named_arrays.hpp"
#include "exchange/part_file.hpp"

#ifdef VORDA_WITH_NETCDF
#include <netcdf.h>
#include <netcdf_mem.h>

#include <algorithm>
#include <cstdlib>

namespace {

// A file in memory, since the library does not survive a full disk; the first fault stays.
class NetcdfFile {
  public:
    NetcdfFile() {
        constexpr std::size_t SIZE = 1 << 20; // to begin with
        open_ = took(nc_create_mem("memory", NC_NETCDF4, SIZE, &file_));
    }
    NetcdfFile(const NetcdfFile &) = delete;
    NetcdfFile &operator=(const NetcdfFile &) = delete;
    ~NetcdfFile() {
        (void)close();
        std::free(image_.memory);
    }

    void define(const NamedArrays &all) {
        for (const auto &[name, length] : all.dimensions)
            if (length > 0)
                dimension(name, length);
        for (const auto &[name, text] : all.texts)
            attribute(NC_GLOBAL, name, text);
        attribute(NC_GLOBAL, "Conventions", "CF-1.8");
        for (const NamedArray &array : all.arrays)
            variables_.push_back(variable(array));
        took(nc_enddef(file_));
    }
    void fill(const NamedArrays &all) {
        for (std::size_t k = 0; k < all.arrays.size(); ++k) {
            const auto &values = all.arrays[k].values;
            if (const auto *numbers = std::get_if<std::vector<double>>(&values)) {
                if (!numbers->empty())
                    took(nc_put_var_double(file_, variables_[k], numbers->data()));
                continue;
            }
            const auto &words = std::get<std::vector<std::string>>(values);
            std::string text;
            for (const std::string &word : words)
                text += word + std::string(longest(words) - word.size(), '\0');
            took(nc_put_var_text(file_, variables_[k], text.data()));
        }
    }
    bool close() {
        if (open_)
            took(nc_close_memio(file_, &image_));
        open_ = false;
        return good_;
    }
    // What stands in the file, when it is closed.
    void write(std::FILE *out) const { std::fwrite(image_.memory, 1, image_.size, out); }
    const std::string &fault() const { return fault_; }

  private:
    bool took(int status) {
        if (status != NC_NOERR && fault_.empty())
            fault_ = nc_strerror(status);
        good_ = good_ && status == NC_NOERR;
        return good_;
    }
    static std::size_t longest(const std::vector<std::string> &words) {
        std::size_t n = 1;
        for (const std::string &word : words)
            n = std::max(n, word.size());
        return n;
    }
    int dimension(const std::string &name, std::size_t length) {
        int id = 0;
        if (nc_inq_dimid(file_, name.c_str(), &id) != NC_NOERR)
            took(nc_def_dim(file_, name.c_str(), length, &id));
        return id;
    }
    void attribute(int of, const std::string &name, const std::string &text) {
        took(nc_put_att_text(file_, of, name.c_str(), text.size(), text.data()));
    }
    int variable(const NamedArray &array) {
        std::vector<int> over;
        for (const std::string &name : array.dimensions)
            over.push_back(dimension(name, 1));
        const auto *words = std::get_if<std::vector<std::string>>(&array.values);
        if (words != nullptr) { // fixed-length characters, which more programs read than strings
            const std::size_t n = longest(*words);
            over.push_back(dimension("string" + std::to_string(n), n));
        }
        int id = 0;
        took(nc_def_var(file_, array.name.c_str(), words != nullptr ? NC_CHAR : NC_DOUBLE,
                        static_cast<int>(over.size()), over.data(), &id));
        attribute(id, "long_name", array.meaning);
        if (words != nullptr)
            attribute(id, "_Encoding", "utf-8");
        else
            attribute(id, "units", array.unit);
        return id;
    }

    int file_ = 0;
    NC_memio image_{};
    bool open_ = false, good_ = true;
    std::string fault_;
    std::vector<int> variables_;
};

// Arrays over an axis without entries, as without headings, are not written.
void leave_out_empty(NamedArrays &all) {
    std::erase_if(all.arrays, [&](const NamedArray &array) {
        return std::any_of(array.dimensions.begin(), array.dimensions.end(),
                           [&](const std::string &name) { return all.length(name) == 0; });
    });
}

} // namespace

bool write_netcdf(const DataSet &data, ExportRequest &request, std::string &error) {
    NamedArrays all = named_arrays(data, TimeFactor::minus);
    leave_out_empty(all);
    NetcdfFile file;
    if (file.fault().empty()) {
        file.define(all);
        file.fill(all);
    }
    if (!file.close()) {
        error = request.out + " cannot be written: " + file.fault();
        return false;
    }
    PartFile part(request.out);
    std::FILE *out = part.open(error);
    if (out == nullptr)
        return false;
    file.write(out);
    request.written.push_back(request.out);
    return part.keep(error);
}

#else
bool write_netcdf(const DataSet &, ExportRequest &, std::string &error) {
    error = message_without_library(".nc");
    return false;
}
#endif
