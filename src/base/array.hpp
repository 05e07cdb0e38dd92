// Arrays of rank 1 to 4 with the first index fastest and indices from 1, unless a Range says otherwise.
#pragma once

#include "base/pages.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <type_traits>
#include <utility>

// Index range of one dimension; a plain extent n stands for 1..n.
struct Range {
    std::int64_t first = 1;
    std::int64_t last = 0;
    constexpr Range() = default;
    constexpr Range(std::int64_t n) : last(n) {}
    constexpr Range(std::int64_t lo, std::int64_t hi) : first(lo), last(hi) {}
    constexpr std::int64_t size() const { return last < first ? 0 : last - first + 1; }
};

[[noreturn]] inline void index_error(std::int64_t index, Range range, int dimension) {
    std::fprintf(stderr, "array index %lld outside %lld..%lld in dimension %d\n",
                 static_cast<long long>(index), static_cast<long long>(range.first),
                 static_cast<long long>(range.last), dimension);
    std::abort();
}

// A pointer with extents, copied by value. It does not own what it shows.
template <class T, int R> class View {
    static_assert(R >= 1 && R <= 4);

  public:
    View() = default;
    View(T *data, const std::array<Range, R> &ranges) : data_(data), range_(ranges) {
        std::int64_t stride = 1;
        for (int d = 0; d < R; ++d) {
            stride_[d] = stride;
            origin_ -= stride * range_[d].first;
            stride *= range_[d].size();
        }
    }

    template <class... I> T &operator()(I... index) const {
        static_assert(sizeof...(I) == R);
        const std::int64_t at[R] = {static_cast<std::int64_t>(index)...};
#ifdef VORDA_CHECK_INDEX
        for (int d = 0; d < R; ++d) {
            if (at[d] < range_[d].first || at[d] > range_[d].last)
                index_error(at[d], range_[d], d + 1);
        }
#endif
        std::int64_t offset = origin_ + at[0];
        for (int d = 1; d < R; ++d)
            offset += stride_[d] * at[d];
        return data_[offset];
    }

    // The part with the last index fixed at k: contiguous.
    View<T, (R > 1 ? R - 1 : 1)> slice(std::int64_t k) const requires(R > 1) {
#ifdef VORDA_CHECK_INDEX
        if (k < range_[R - 1].first || k > range_[R - 1].last)
            index_error(k, range_[R - 1], R);
#endif
        std::array<Range, R - 1> ranges;
        for (int d = 0; d < R - 1; ++d)
            ranges[d] = range_[d];
        return {data_ + stride_[R - 1] * (k - range_[R - 1].first), ranges};
    }

    T *data() const {
        return data_;
    }
    std::int64_t dim(int d) const {
        return range_[d - 1].size();
    }
    Range range(int d) const {
        return range_[d - 1];
    }
    std::int64_t size() const {
        std::int64_t n = 1;
        for (const Range &r : range_)
            n *= r.size();
        return n;
    }
    void fill(T value) const {
        for (std::int64_t i = 0, n = size(); i < n; ++i)
            data_[i] = value;
    }
    operator View<const T, R>() const requires(!std::is_const_v<T>) {
        return {data_, range_};
    }

  private:
    T *data_ = nullptr;
    std::int64_t origin_ = 0; // offset of the (absent) element with all indices 0
    std::array<std::int64_t, R> stride_{};
    std::array<Range, R> range_{};
};

// Owner of an array. Empty until alloc() succeeds; moved, never copied by accident.
template <class T, int R> class Array {
    static_assert(std::is_trivially_copyable_v<T>);

  public:
    Array() = default;
    Array(const Array &) = delete;
    Array &operator=(const Array &) = delete;
    Array(Array &&other) noexcept { swap(other); }
    Array &operator=(Array &&other) noexcept {
        swap(other);
        return *this;
    }
    ~Array() { release(); }

    // Makes a zeroed array of the given extents (or Ranges), aligned to 64 bytes, from LARGE_BLOCK on to
    // 2 MiB; false when memory is refused. What was held before is released. Pages are touched only when
    // they are used.
    template <class... N> [[nodiscard]] bool alloc(N... extents) {
        static_assert(sizeof...(N) == R);
        return make({Range(extents)...}, true);
    }
    // The same for an array that is written before it is read: it holds anything.
    template <class... N> [[nodiscard]] bool alloc_unset(N... extents) {
        static_assert(sizeof...(N) == R);
        return make({Range(extents)...}, false);
    }

    // Changes the last extent to n and keeps what fits; new elements are 0.
    [[nodiscard]] bool resize_last(std::int64_t n) requires(R == 1 || R == 2 || R == 3) {
        Array other;
        bool made;
        if constexpr (R == 1)
            made = other.alloc(n);
        else if constexpr (R == 2)
            made = other.alloc(view_.range(1), n);
        else
            made = other.alloc(view_.range(1), view_.range(2), n);
        if (!made)
            return false;
        const std::int64_t keep = size() < other.size() ? size() : other.size();
        if (keep > 0)
            std::memcpy(other.data(), data(), static_cast<std::size_t>(keep) * sizeof(T));
        swap(other);
        return true;
    }

    void release() {
        if (mapped_ > 0 && block_ != nullptr)
            unmap_pages(block_, mapped_);
        else
            std::free(block_);
        block_ = nullptr;
        mapped_ = 0;
        view_ = View<T, R>();
    }

    bool empty() const { return block_ == nullptr; }
    template <class... I> T &operator()(I... index) { return view_(index...); }
    template <class... I> const T &operator()(I... index) const { return view_(index...); }
    View<T, R> view() { return view_; }
    View<const T, R> view() const { return view_; }
    operator View<T, R>() { return view_; }
    operator View<const T, R>() const { return view_; }
    auto slice(std::int64_t k) { return view_.slice(k); }
    auto slice(std::int64_t k) const { return View<const T, R>(view_).slice(k); }
    T *data() { return view_.data(); }
    const T *data() const { return view_.data(); }
    std::int64_t dim(int d) const { return view_.dim(d); }
    std::int64_t size() const { return block_ == nullptr ? 0 : view_.size(); }
    void fill(T value) { view_.fill(value); }

  private:
    bool make(const std::array<Range, R> &ranges, bool zeros) {
        release();
        std::uint64_t count = 1;
        for (const Range &r : ranges) {
            const std::uint64_t n = static_cast<std::uint64_t>(r.size());
            if (n != 0 && count > (std::uint64_t{1} << 46) / n)
                return false;
            count *= n;
        }
        const std::size_t bytes = count * sizeof(T);
        if (bytes >= LARGE_BLOCK)
            block_ = map_pages(mapped_ = bytes);
        else
            block_ = zeros ? std::calloc(bytes + alignment, 1) : std::malloc(bytes + alignment);
        if (block_ == nullptr)
            return false;
        const std::uintptr_t address = reinterpret_cast<std::uintptr_t>(block_);
        const std::size_t shift = (alignment - address % alignment) % alignment;
        view_ = View<T, R>(reinterpret_cast<T *>(static_cast<char *>(block_) + shift), ranges);
        return true;
    }
    void swap(Array &other) noexcept {
        std::swap(block_, other.block_);
        std::swap(mapped_, other.mapped_);
        std::swap(view_, other.view_);
    }
    static constexpr std::size_t alignment = 64;
    void *block_ = nullptr;
    std::size_t mapped_ = 0; // bytes of a block with pages of its own, else 0
    View<T, R> view_;
};
