// Draws the textures of Canvas and the relief of Jigsaw, and prints them as a C++ source that holds their bytes.
//   draw_textures OUT.cpp
#include <algorithm>
#include <cstring>
#include <fstream>
#include <string>

#include <zlib.h>

#include "canvas_textures.h"
#include "image/texture/cpx.h"
#include "jigsaw_relief.h"

namespace lmf::drawing {
namespace {

using Bytes = std::vector<uint8_t>;

void Append(Bytes *bytes, const void *data, size_t size) {
    const auto *first = static_cast<const uint8_t *>(data);
    bytes->insert(bytes->end(), first, first + size);
}

/// A packed bitmap of 8 bits with the grey ramp, from rows from the top whose length needs no padding.
Bytes PackBitmap(int32_t width, int32_t height, const Bytes &tones) {
    DibHeader header{};
    header.biSize = sizeof header;
    header.biWidth = width;
    header.biHeight = height;
    header.biPlanes = 1;
    header.biBitCount = 8;
    header.biSizeImage = static_cast<uint32_t>(tones.size());
    header.biClrUsed = header.biClrImportant = 256;
    Bytes bitmap;
    Append(&bitmap, &header, sizeof header);
    for (int32_t i = 0; i < 256; i++) {
        const auto level = static_cast<uint8_t>(i);
        const uint8_t entry[4] = {level, level, level, 0};
        Append(&bitmap, entry, sizeof entry);
    }
    for (int32_t y = height; y-- > 0;)
        Append(&bitmap, tones.data() + static_cast<ptrdiff_t>(y) * width, static_cast<size_t>(width));
    return bitmap;
}

Bytes PackContainer(const Bytes &picture) {
    uLongf size = compressBound(picture.size());
    Bytes stream(size);
    if (compress2(stream.data(), &size, picture.data(), picture.size(), Z_BEST_COMPRESSION) != Z_OK) return {};
    CpxHeader header{};
    std::memcpy(header.magic, kCpxMagic, sizeof header.magic);
    header.pictureSize = static_cast<uint32_t>(picture.size());
    header.compressedSize = static_cast<uint32_t>(size);
    header.one = 1;
    Bytes container;
    Append(&container, &header, sizeof header);
    Append(&container, stream.data(), size);
    return container;
}

Bytes DrawAllTextures() {
    Bytes tones;
    for (const Texture &texture : kTextures) {
        const Bytes drawn = DrawTexture(texture);
        Append(&tones, drawn.data(), drawn.size());
    }
    return tones;
}

/// Prints a function that gives the bytes. They stand in string literals: compilers read these many times faster than
/// lists of numbers.
void PrintFunction(std::ofstream &out, const char *name, const Bytes &bytes) {
    constexpr size_t kLine = 4096;
    out << "std::span<const uint8_t> " << name << "() {\n    static constexpr uint8_t kBytes[] = {";
    for (size_t start = 0; start < bytes.size(); start += kLine) {
        std::string line;
        for (size_t i = start; i < std::min(start + kLine, bytes.size()); i++) {
            line += '\\';
            for (int32_t shift : {6, 3, 0}) line += static_cast<char>('0' + (bytes[i] >> shift & 7));
        }
        out << "\n        \"" << line << '"';
    }
    out << "};\n    return {kBytes, " << bytes.size() << "};\n}\n\n";
}

} // namespace
} // namespace lmf::drawing

int main(int count, char **arguments) {
    using namespace lmf;
    using namespace lmf::drawing;
    if (count != 2) return 1;
    const Bytes container = PackContainer(PackBitmap(kSide, kSide * kTextureCount, DrawAllTextures()));
    if (container.empty()) return 2;
    std::ofstream out(arguments[1], std::ios::binary);
    out << "#include \"image/texture/textures.h\"\n\nnamespace lmf {\n\n";
    PrintFunction(out, "CanvasTextureContainer", container);
    PrintFunction(out, "JigsawReliefBitmap", PackBitmap(kReliefWidth, kReliefHeight, DrawRelief()));
    out << "} // namespace lmf\n";
    return out.flush() ? 0 : 3;
}
