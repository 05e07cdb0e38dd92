// All results as JSON: dimensions, and under each name the unit, the dimensions and the values as nested
// lists, the last dimension innermost. JSON has no infinity: "inf" stands for it, null for no value.
#include "exchange/export.hpp"
#include "exchange/named_arrays.hpp"
#include "exchange/part_file.hpp"

#include <nlohmann/json.hpp>

#include <cmath>

namespace {

using Json = nlohmann::ordered_json;

Json number(double value) {
    if (std::isnan(value))
        return nullptr;
    if (std::isinf(value))
        return value > 0 ? "inf" : "-inf";
    return value;
}
Json number(const std::string &word) {
    return word;
}

// The values from `at` on, over the dimensions from `depth` on.
template <class T>
Json nested(const NamedArrays &all, const NamedArray &array, const std::vector<T> &values, std::size_t depth,
            std::size_t &at) {
    if (depth == array.dimensions.size())
        return number(values[at++]);
    Json list = Json::array();
    for (std::size_t k = 0; k < all.length(array.dimensions[depth]); ++k)
        list.push_back(nested(all, array, values, depth + 1, at));
    return list;
}

} // namespace

bool write_json(const DataSet &data, ExportRequest &request, std::string &error) {
    const NamedArrays all = named_arrays(data, TimeFactor::plus);
    Json file;
    for (const auto &[name, text] : all.texts)
        file[name] = text;
    for (const auto &[name, length] : all.dimensions)
        file["dimensions"][name] = length;
    for (const NamedArray &array : all.arrays) {
        Json &entry = file["variables"][array.name];
        entry["meaning"] = array.meaning;
        if (!array.unit.empty())
            entry["unit"] = array.unit;
        entry["dimensions"] = array.dimensions;
        std::size_t at = 0;
        entry["values"] =
            std::visit([&](const auto &values) { return nested(all, array, values, 0, at); }, array.values);
    }
    const std::string text = file.dump(1, ' ', false, Json::error_handler_t::replace) + "\n";
    PartFile part(request.out);
    std::FILE *out = part.open(error);
    if (out == nullptr)
        return false;
    std::fwrite(text.data(), 1, text.size(), out);
    request.written.push_back(request.out);
    return part.keep(error);
}
