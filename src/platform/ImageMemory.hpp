#pragma once
// Memory for image-sized buffers: the canvas's pixels and the working buffers
// of the stb decoder, resizer and encoder all come from here. A run spends a
// large share of its time on the first write to fresh 4 KiB pages, so large
// blocks are mapped on 2 MiB boundaries and offered to the kernel for huge
// pages (one fault where there were 512), and a released large block is kept
// for the next request it fits instead of being handed back and faulted in
// again. Where huge pages are not offered, the mapping works as a plain one.
//
// Each function behaves like its C library namesake: null (never an
// exception) when memory runs out, and release(nullptr) does nothing. Blocks
// from here go back only through release().

#include <cstddef>

namespace plakard::imageMemory {

void* allocate(std::size_t size) noexcept;

// A block whose first `size` bytes are zero. A fresh mapping already is, so
// those pages stay untouched until drawn on.
void* allocateZeroed(std::size_t size) noexcept;

// The block grown or shrunk to `newSize`, keeping its first
// min(`usedSize`, `newSize`) bytes; `usedSize` bytes at most are copied.
void* reallocate(void* block, std::size_t usedSize, std::size_t newSize) noexcept;

void release(void* block) noexcept;

}  // namespace plakard::imageMemory
