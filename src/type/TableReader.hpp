#pragma once
// Bounds-checked reading of a font's tables, for the checks that run before
// stb_truetype reads the same bytes unchecked.

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace plakard {

struct Table {
    std::uint64_t offset = 0;
    std::uint64_t length = 0;
    bool present = false;
};

// Reads big-endian numbers from tables; a read or a check outside the table
// marks the font bad for good and reads as 0, so a walk can go on without
// testing every step and is judged once at the end.
class Reader {
public:
    Reader(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    bool ok() const { return ok_; }
    void fail() { ok_ = false; }

    // The table as stb finds it: the first directory entry with the tag; an
    // entry with offset 0 counts as missing, as it does for stb.
    Table table(int fontStart, const char* tag) {
        const std::uint64_t directory = static_cast<std::uint64_t>(fontStart);
        const std::uint32_t count = read16(directory + 4);
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::uint64_t record = directory + 12 + 16 * std::uint64_t{i};
            if (std::memcmp(data_ + record, tag, 4) != 0) continue;
            Table found{read32(record + 8), read32(record + 12), true};
            if (found.offset == 0) return {};
            if (found.offset + found.length > size_) fail();
            return found;
        }
        return {};
    }

    bool need(const Table& table, std::uint64_t at, std::uint64_t count) {
        if (at > table.length || count > table.length - at) fail();
        return ok_;
    }
    std::uint32_t u8(const Table& table, std::uint64_t at) { return need(table, at, 1) ? data_[table.offset + at] : 0; }
    std::uint32_t u16(const Table& table, std::uint64_t at) {
        return need(table, at, 2) ? read16(table.offset + at) : 0;
    }
    std::uint32_t u32(const Table& table, std::uint64_t at) {
        return need(table, at, 4) ? read32(table.offset + at) : 0;
    }

private:
    std::uint32_t read16(std::uint64_t at) const { return (std::uint32_t{data_[at]} << 8) | data_[at + 1]; }
    std::uint32_t read32(std::uint64_t at) const { return (read16(at) << 16) | read16(at + 2); }

    const std::uint8_t* data_;
    std::size_t size_;
    bool ok_ = true;
};

}  // namespace plakard
