#include "exchange/vtu_file.hpp"

#include "exchange/part_file.hpp"

#include <bit>

namespace {

using Attributes = std::vector<std::pair<std::string, std::string>>;

std::string escaped(const std::string &text) {
    std::string out;
    for (const char c : text)
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        default: // control characters are not allowed in XML
            out += static_cast<unsigned char>(c) < ' ' ? ' ' : c;
        }
    return out;
}

std::string head(const char *type, const Attributes &attributes) {
    std::string text = "<?xml version=\"1.0\"?>\n<VTKFile type=\"";
    text += type;
    text += "\" version=\"1.0\" byte_order=\"";
    text += std::endian::native == std::endian::little ? "LittleEndian" : "BigEndian";
    text += "\" header_type=\"UInt64\"";
    for (const auto &[name, value] : attributes)
        text += "\n  " + name + "=\"" + escaped(value) + '"';
    return text + ">\n";
}

// The arrays in the order of the file, each at its place in the appended data.
class Appended {
  public:
    // The element that stands for n values.
    template <class T>
    std::string element(const std::string &name, const std::string &unit, int components, const T *values,
                        std::size_t n) {
        constexpr const char *TYPE = std::is_same_v<T, float>          ? "Float32"
                                     : std::is_same_v<T, double>       ? "Float64"
                                     : std::is_same_v<T, std::uint8_t> ? "UInt8"
                                                                       : "Int32";
        std::string text = "        <DataArray type=\"" + std::string(TYPE) + "\" Name=\"" + escaped(name) +
                           (components == 1 ? "" : "\" NumberOfComponents=\"" + std::to_string(components)) +
                           "\" format=\"appended\" offset=\"" + std::to_string(offset_) + '"';
        blocks_.push_back({values, n * sizeof(T)});
        offset_ += sizeof(std::uint64_t) + n * sizeof(T);
        if (unit.empty())
            return text + "/>\n";
        return text + "><InformationKey name=\"UNITS_LABEL\" location=\"vtkDataArray\">" + escaped(unit) +
               "</InformationKey></DataArray>\n";
    }
    std::string elements(const char *tag, const std::vector<VtuArray> &arrays) {
        std::string text = "      <" + std::string(tag) + ">\n";
        for (const VtuArray &array : arrays)
            text += std::visit(
                [&](const auto &values) {
                    return element(array.name, array.unit, array.components, values.data(), values.size());
                },
                array.values);
        return text + "      </" + tag + ">\n";
    }
    // Each block behind its length in bytes.
    void write(std::FILE *out) const {
        for (const Block &block : blocks_) {
            const std::uint64_t length = block.size;
            std::fwrite(&length, sizeof length, 1, out);
            if (block.size > 0)
                std::fwrite(block.data, 1, block.size, out);
        }
    }

  private:
    struct Block {
        const void *data;
        std::size_t size;
    };
    std::vector<Block> blocks_;
    std::size_t offset_ = 0;
};

std::vector<std::uint8_t> types_of(const std::vector<std::int32_t> &ends) {
    constexpr std::uint8_t TRIANGLE = 5, POLYGON = 7, QUADRILATERAL = 9;
    std::vector<std::uint8_t> types;
    std::int32_t before = 0;
    for (const std::int32_t end : ends) {
        types.push_back(end - before == 3 ? TRIANGLE : end - before == 4 ? QUADRILATERAL : POLYGON);
        before = end;
    }
    return types;
}

} // namespace

bool write_vtu(const std::string &name, const VtuFile &file, std::string &error) {
    const std::vector<std::uint8_t> types = types_of(file.ends);
    Appended data;
    std::string text = head("UnstructuredGrid", file.attributes);
    text += "  <UnstructuredGrid>\n    <Piece NumberOfPoints=\"" + std::to_string(file.points.size() / 3) +
            "\" NumberOfCells=\"" + std::to_string(file.ends.size()) + "\">\n";
    text += data.elements("PointData", file.on_points);
    text += data.elements("CellData", file.on_cells);
    text += "      <Points>\n" +
            data.element("Points", file.point_unit, 3, file.points.data(), file.points.size()) +
            "      </Points>\n      <Cells>\n" +
            data.element("connectivity", "", 1, file.corners.data(), file.corners.size()) +
            data.element("offsets", "", 1, file.ends.data(), file.ends.size()) +
            data.element("types", "", 1, types.data(), types.size());
    text += "      </Cells>\n    </Piece>\n  </UnstructuredGrid>\n  <AppendedData encoding=\"raw\">\n_";
    PartFile part(name);
    std::FILE *out = part.open(error);
    if (out == nullptr)
        return false;
    std::fwrite(text.data(), 1, text.size(), out);
    data.write(out);
    std::fputs("\n  </AppendedData>\n</VTKFile>\n", out);
    return part.keep(error);
}

bool write_pvd(const std::string &name, const Attributes &attributes, const std::vector<PvdStep> &steps,
               std::string &error) {
    std::string text = head("Collection", attributes) + "  <Collection>\n";
    for (const PvdStep &step : steps) {
        char time[32];
        std::snprintf(time, sizeof time, "%.9g", step.time);
        text += "    <DataSet timestep=\"" + std::string(time) + "\" part=\"" + std::to_string(step.part) +
                "\" file=\"" + escaped(step.file) + "\"/>\n";
    }
    return write_whole(name, text + "  </Collection>\n</VTKFile>\n", error);
}
