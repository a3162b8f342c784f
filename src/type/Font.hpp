#pragma once
// One loaded font face, shared and immutable for the whole run. The font
// libraries' records of it point into the face's own copy of the file, so a
// Font is never copied or moved once loaded; it is handed around by shared
// pointer. Lines are set in it through type/LineLayout.hpp.

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace plakard {

// How much of a face's outlines loading checks. A face the user chose is
// checked whole, so a damaged one is refused before anything is drawn. A face
// found to fill in characters is checked glyph by glyph as lines use them: a
// CJK collection holds 65,535 outlines, and a page draws a few dozen.
enum class OutlineCheck { whole, asUsed };

class Font {
public:
    // Reads, checks and initialises a face. Throws "cannot read font <abs>: ...",
    // "<name> is too small to be a font" or
    // "<name> is not a TrueType or OpenType font, or is truncated".
    // `faceIndex` picks a member of a font collection (.ttc); a plain font
    // file has only face 0.
    static std::shared_ptr<const Font> load(const std::filesystem::path& path, int faceIndex = 0,
                                            OutlineCheck check = OutlineCheck::whole);

    // The same checks on a file's bytes already in memory; `fileName` is the
    // name messages use.
    static std::shared_ptr<const Font> fromData(std::span<const std::uint8_t> bytes, const std::string& fileName,
                                                int faceIndex = 0, OutlineCheck check = OutlineCheck::whole);

    Font(const Font&) = delete;
    Font& operator=(const Font&) = delete;
    ~Font();

    double ascentUnits = 0;
    double descentUnits = 0;
    double unitsPerEm = 0;
    std::string name;

    // The file's bytes with stb_truetype's and HarfBuzz's records of them,
    // made once at load; defined in type/FontFace.hpp, for type/ alone.
    struct Face;
    const Face& face() const { return *face_; }

private:
    Font();
    // Takes the bytes as the face's own, uncopied.
    static std::shared_ptr<const Font> fromBytes(std::vector<std::uint8_t> bytes, const std::string& fileName,
                                                 int faceIndex, OutlineCheck check);
    std::unique_ptr<Face> face_;
};

}  // namespace plakard
