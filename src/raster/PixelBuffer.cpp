#include "raster/PixelBuffer.hpp"

#include <cstring>
#include <new>
#include <utility>

#include "platform/ImageMemory.hpp"

namespace plakard {

namespace {

std::uint8_t* checked(void* block) {
    if (!block) throw std::bad_alloc();
    return static_cast<std::uint8_t*>(block);
}

}  // namespace

PixelBuffer PixelBuffer::uninitialised(std::size_t size) {
    return PixelBuffer(checked(imageMemory::allocate(size)), size);
}

PixelBuffer PixelBuffer::zeroed(std::size_t size) {
    return PixelBuffer(checked(imageMemory::allocateZeroed(size)), size);
}

PixelBuffer PixelBuffer::adopted(std::uint8_t* block, std::size_t size) noexcept { return PixelBuffer(block, size); }

PixelBuffer::PixelBuffer(const std::vector<std::uint8_t>& bytes) : PixelBuffer(uninitialised(bytes.size())) {
    if (!bytes.empty()) std::memcpy(bytes_, bytes.data(), bytes.size());
}

PixelBuffer::PixelBuffer(const PixelBuffer& other) {
    if (!other.bytes_) return;
    *this = uninitialised(other.size_);
    if (size_ > 0) std::memcpy(bytes_, other.bytes_, size_);
}

PixelBuffer::PixelBuffer(PixelBuffer&& other) noexcept
    : bytes_(std::exchange(other.bytes_, nullptr)), size_(std::exchange(other.size_, 0)) {}

PixelBuffer& PixelBuffer::operator=(const PixelBuffer& other) {
    if (this != &other) *this = PixelBuffer(other);
    return *this;
}

PixelBuffer& PixelBuffer::operator=(PixelBuffer&& other) noexcept {
    if (this != &other) {
        imageMemory::release(bytes_);
        bytes_ = std::exchange(other.bytes_, nullptr);
        size_ = std::exchange(other.size_, 0);
    }
    return *this;
}

PixelBuffer::~PixelBuffer() { imageMemory::release(bytes_); }

bool operator==(const PixelBuffer& a, const PixelBuffer& b) noexcept {
    return a.size_ == b.size_ && (a.size_ == 0 || std::memcmp(a.bytes_, b.bytes_, a.size_) == 0);
}

}  // namespace plakard
