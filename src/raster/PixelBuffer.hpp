#pragma once
// The bytes of a canvas. Reads like a std::vector of bytes (data, size,
// indexing, iteration, equality), but its memory comes from imageMemory, so
// it can take over a buffer the decoder allocated instead of copying it, and
// it can start uninitialised where every byte is about to be written anyway.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace plakard {

class PixelBuffer {
public:
    using value_type = std::uint8_t;
    using size_type = std::size_t;
    using iterator = std::uint8_t*;
    using const_iterator = const std::uint8_t*;

    PixelBuffer() noexcept = default;
    explicit PixelBuffer(const std::vector<std::uint8_t>& bytes);
    PixelBuffer(const PixelBuffer& other);
    PixelBuffer(PixelBuffer&& other) noexcept;
    PixelBuffer& operator=(const PixelBuffer& other);
    PixelBuffer& operator=(PixelBuffer&& other) noexcept;
    ~PixelBuffer();

    // `size` bytes of unspecified value, or all zero. Throw std::bad_alloc.
    static PixelBuffer uninitialised(std::size_t size);
    static PixelBuffer zeroed(std::size_t size);
    // Takes over `size` bytes at `block`, which came from imageMemory.
    static PixelBuffer adopted(std::uint8_t* block, std::size_t size) noexcept;

    std::uint8_t* data() noexcept { return bytes_; }
    const std::uint8_t* data() const noexcept { return bytes_; }
    std::size_t size() const noexcept { return size_; }
    bool empty() const noexcept { return size_ == 0; }
    std::uint8_t& operator[](std::size_t i) noexcept { return bytes_[i]; }
    const std::uint8_t& operator[](std::size_t i) const noexcept { return bytes_[i]; }
    iterator begin() noexcept { return bytes_; }
    iterator end() noexcept { return bytes_ + size_; }
    const_iterator begin() const noexcept { return bytes_; }
    const_iterator end() const noexcept { return bytes_ + size_; }

    friend bool operator==(const PixelBuffer& a, const PixelBuffer& b) noexcept;

private:
    PixelBuffer(std::uint8_t* bytes, std::size_t size) noexcept : bytes_(bytes), size_(size) {}

    std::uint8_t* bytes_ = nullptr;
    std::size_t size_ = 0;
};

}  // namespace plakard
