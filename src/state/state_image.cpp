#include "state/state_image.hpp"

#include "state/messages.hpp"
#include "state/state_fields.hpp"

#include <cstring>
#include <tuple>

namespace {

template <class T> constexpr bool is_plain = std::is_trivially_copyable_v<T>;

class Writer {
  public:
    explicit Writer(Image &image) : image_(image) {}
    template <class... F> void operator()(const F &...field) { (put(field), ...); }
    template <class... R> void records(const R &...record) { (each_field(record, *this), ...); }

  private:
    void bytes(const void *data, std::size_t n) {
        const char *const from = static_cast<const char *>(data);
        image_.insert(image_.end(), from, from + n);
    }
    template <class T>
    requires is_plain<T>
    void put(const T &value) { bytes(&value, sizeof value); }
    void put(const std::string &text) {
        put(text.size());
        bytes(text.data(), text.size());
    }
    void put(const std::vector<std::string> &list) {
        put(list.size());
        for (const std::string &text : list)
            put(text);
    }
    template <class T, int R> void put(const Array<T, R> &array) {
        put(array.empty());
        for (int d = 1; d <= R; ++d)
            put(array.view().range(d));
        if (array.size() > 0)
            bytes(array.data(), static_cast<std::size_t>(array.size()) * sizeof(T));
    }
    Image &image_;
};

class Reader {
  public:
    explicit Reader(const Image &image) : at_(image.data()), left_(image.size()) {}
    template <class... F> void operator()(F &...field) { (take(field), ...); }
    template <class... R> void records(R &...record) { (each_field(record, *this), ...); }
    bool all_read() const { return good_ && left_ == 0; }

  private:
    bool bytes(void *data, std::size_t n) {
        good_ = good_ && n <= left_;
        if (!good_)
            return false;
        if (n > 0)
            std::memcpy(data, at_, n);
        at_ += n;
        left_ -= n;
        return true;
    }
    template <class T>
    requires is_plain<T>
    void take(T &value) { (void)bytes(&value, sizeof value); }
    void take(std::string &text) {
        std::size_t n = 0;
        take(n);
        text.resize(good_ && n <= left_ ? n : 0);
        (void)bytes(text.data(), n);
    }
    void take(std::vector<std::string> &list) {
        std::size_t n = 0;
        take(n);
        list.clear();
        for (; good_ && list.size() < n;)
            take(list.emplace_back());
    }
    template <class T, int R> void take(Array<T, R> &array) {
        bool empty = true;
        std::array<Range, R> range;
        take(empty);
        for (Range &r : range)
            take(r);
        array.release();
        if (!good_ || empty)
            return;
        good_ = std::apply([&](auto... r) { return array.alloc(r...); }, range);
        (void)bytes(array.data(), static_cast<std::size_t>(array.size()) * sizeof(T));
    }
    const char *at_;
    std::size_t left_;
    bool good_ = true;
};

// All records of the image of a run, in order.
template <class Run, class Archive> void each_record(Run &run, Archive &archive) {
    archive.records(run.opt, run.files, run.bodies, run.mesh, run.waterline, run.strips, run.dipoles, run.sym,
                    run.periods, run.surface, run.flow);
}

template <class... R> std::uint64_t hash_of_records(const R &...record) {
    Image image;
    Writer writer(image);
    writer.records(record...);
    return hash_of(image.data(), image.size());
}

} // namespace

Image image_of(const RunState &run) {
    Image image;
    Writer writer(image);
    each_record(run, writer);
    return image;
}

bool from_image(const Image &image, RunState &run) {
    Reader reader(image);
    each_record(run, reader);
    return reader.all_read();
}

Image image_of(const SteadyFlow &flow) {
    Image image;
    Writer writer(image);
    writer.records(flow);
    return image;
}

bool from_image(const Image &image, SteadyFlow &flow) {
    Reader reader(image);
    reader.records(flow);
    return reader.all_read();
}

// Words of 8 bytes into a product with an odd constant whose high half is folded back, so that every bit
// reaches all others.
std::uint64_t hash_of(const void *data, std::size_t bytes, std::uint64_t seed) {
    constexpr std::uint64_t FACTOR = 0x9E3779B97F4A7C15u;
    std::uint64_t h = (seed ^ bytes) * FACTOR;
    for (const char *at = static_cast<const char *>(data); bytes > 0;) {
        std::uint64_t word = 0;
        const std::size_t n = bytes < sizeof word ? bytes : sizeof word;
        std::memcpy(&word, at, n);
        at += n;
        bytes -= n;
        h = (h ^ word) * FACTOR;
        h ^= h >> 32;
    }
    return h;
}

InputHash input_hash(const RunState &run) {
    Options opt = run.opt;
    opt.NTRD = 0;
    opt.KFLAG.fill(false); // where a value stood does not matter
    const std::string version = program_version();
    const std::uint64_t in_core = run.memory.INCORE ? 1 : 0;
    return {
        hash_of(version.data(), version.size()), hash_of_records(opt) ^ in_core, hash_of_records(run.files),
        hash_of_records(run.bodies, run.mesh, run.waterline, run.strips, run.dipoles, run.sym, run.surface),
        hash_of_records(run.periods)};
}
