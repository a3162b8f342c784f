#include "platform/ImageMemory.hpp"

#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <vector>

// AddressSanitizer watches heap blocks only: under it every block comes from
// malloc, so the decoders' out-of-bounds accesses are still caught.
#if defined(__SANITIZE_ADDRESS__)
#define PLAKARD_HEAP_ONLY 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define PLAKARD_HEAP_ONLY 1
#endif
#endif

namespace plakard::imageMemory {

namespace {

constexpr std::size_t hugePage = std::size_t{2} << 20;
// Smaller blocks (rows, tables, compressed streams) are cheap from malloc.
constexpr std::size_t mappedFrom = std::size_t{1} << 20;
// Released mappings kept for reuse; a run has only a handful of image-sized
// buffers, and more would only hold memory nobody asks for again.
constexpr std::size_t cachedAtMost = 4;

struct Mapping {
    void* start;
    std::size_t length;
};

struct Mappings {
    std::mutex lock;
    std::vector<Mapping> live;
    std::vector<Mapping> cached;
};

Mappings& mappings() {
    static Mappings* all = new Mappings;  // never destroyed: blocks may outlive static destructors
    return *all;
}

bool mapsLargeBlocks() {
#ifdef PLAKARD_HEAP_ONLY
    return false;
#else
    return true;
#endif
}

// A fresh mapping of `length` bytes (a multiple of hugePage) starting on a
// hugePage boundary, so that the kernel can back it with huge pages.
void* mapAligned(std::size_t length) {
    void* raw = mmap(nullptr, length + hugePage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (raw == MAP_FAILED) return nullptr;
    const auto address = reinterpret_cast<std::uintptr_t>(raw);
    const std::uintptr_t aligned = (address + hugePage - 1) & ~(hugePage - 1);
    if (aligned > address) munmap(raw, aligned - address);
    const std::size_t tail = address + hugePage - aligned;
    if (tail > 0) munmap(reinterpret_cast<void*>(aligned + length), tail);
    void* block = reinterpret_cast<void*>(aligned);
    madvise(block, length, MADV_HUGEPAGE);  // a hint: refused where huge pages are off
    return block;
}

bool track(std::vector<Mapping>& list, Mapping mapping) {
    try {
        list.push_back(mapping);
        return true;
    } catch (...) {
        return false;
    }
}

// A mapped block of at least `size` bytes; `fresh` says whether it is
// untouched (and so all zero) or reused.
void* obtainMapped(std::size_t size, bool& fresh) {
    if (size > SIZE_MAX - hugePage) return nullptr;
    const std::size_t length = (size + hugePage - 1) & ~(hugePage - 1);
    Mappings& all = mappings();
    std::lock_guard<std::mutex> guard(all.lock);
    // The smallest kept block that fits, unless it would waste more than it holds.
    auto best = all.cached.end();
    for (auto it = all.cached.begin(); it != all.cached.end(); ++it) {
        if (it->length >= length && it->length / 2 <= length && (best == all.cached.end() || it->length < best->length))
            best = it;
    }
    if (best != all.cached.end()) {
        const Mapping reused = *best;
        if (!track(all.live, reused)) return nullptr;
        all.cached.erase(best);
        fresh = false;
        return reused.start;
    }
    // Kept blocks smaller than this request are stale (the run's buffers
    // have grown past them): they go back rather than add to the peak.
    std::erase_if(all.cached, [&](const Mapping& m) {
        if (m.length >= length) return false;
        munmap(m.start, m.length);
        return true;
    });
    void* block = mapAligned(length);
    if (!block && !all.cached.empty()) {
        // Out of address space or memory: what is kept goes back first.
        for (const Mapping& m : all.cached) munmap(m.start, m.length);
        all.cached.clear();
        block = mapAligned(length);
    }
    if (!block) return nullptr;
    if (!track(all.live, {block, length})) {
        munmap(block, length);
        return nullptr;
    }
    fresh = true;
    return block;
}

// The length of a live mapped block, or 0 for a block from malloc. Mapped
// blocks start on a hugePage boundary, which a malloc block of this size
// never does, so most lookups stop at the first test.
std::size_t mappedLength(void* block) {
    if (reinterpret_cast<std::uintptr_t>(block) % hugePage != 0) return 0;
    Mappings& all = mappings();
    std::lock_guard<std::mutex> guard(all.lock);
    for (const Mapping& m : all.live) {
        if (m.start == block) return m.length;
    }
    return 0;
}

}  // namespace

void* allocate(std::size_t size) noexcept {
    if (!mapsLargeBlocks() || size < mappedFrom) return std::malloc(size > 0 ? size : 1);
    bool fresh = false;
    return obtainMapped(size, fresh);
}

void* allocateZeroed(std::size_t size) noexcept {
    if (!mapsLargeBlocks() || size < mappedFrom) return std::calloc(size > 0 ? size : 1, 1);
    bool fresh = false;
    void* block = obtainMapped(size, fresh);
    if (block && !fresh) std::memset(block, 0, size);
    return block;
}

void* reallocate(void* block, std::size_t usedSize, std::size_t newSize) noexcept {
    if (!block) return allocate(newSize);
    const std::size_t length = mappedLength(block);
    if (length == 0 && (!mapsLargeBlocks() || newSize < mappedFrom))
        return std::realloc(block, newSize > 0 ? newSize : 1);
    if (length >= newSize) return block;
    void* grown = allocate(newSize);
    if (!grown) return nullptr;
    std::memcpy(grown, block, std::min(usedSize, newSize));
    release(block);
    return grown;
}

void release(void* block) noexcept {
    if (!block) return;
    if (reinterpret_cast<std::uintptr_t>(block) % hugePage != 0) {
        std::free(block);
        return;
    }
    Mappings& all = mappings();
    std::lock_guard<std::mutex> guard(all.lock);
    const auto it = std::find_if(all.live.begin(), all.live.end(), [&](const Mapping& m) { return m.start == block; });
    if (it == all.live.end()) {
        std::free(block);  // a malloc block that happens to sit on the boundary
        return;
    }
    const Mapping released = *it;
    all.live.erase(it);
    if (!track(all.cached, released)) munmap(released.start, released.length);
    if (all.cached.size() > cachedAtMost) {
        const auto smallest = std::min_element(all.cached.begin(), all.cached.end(),
                                               [](const Mapping& a, const Mapping& b) { return a.length < b.length; });
        munmap(smallest->start, smallest->length);
        all.cached.erase(smallest);
    }
}

}  // namespace plakard::imageMemory
