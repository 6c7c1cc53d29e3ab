#include "image/texture/tile.h"

#include "common/multiversion.h"
#include "image/core/byte_pass.h"

namespace lmf {

namespace {

LMF_MULTIVERSION
void AddOffsets(uint8_t *__restrict to, const uint8_t *__restrict from, const int16_t *__restrict offsets,
                size_t count) {
    for (size_t i = 0; i < count; i++) {
        const auto sum = static_cast<int16_t>(from[i] + offsets[i]);
        to[i] = static_cast<uint8_t>(sum < 0 ? 0 : sum > 255 ? 255 : sum);
    }
}

} // namespace

DibHandle AddTile(const ReadView &source, const ReadView &tile, const ToneOffsets &offsets) {
    BytePass pass(source);
    if (!pass) return nullptr;
    const auto channels = static_cast<size_t>(pass.Channels());
    const size_t rowBytes = static_cast<size_t>(source.width) * channels;
    const size_t tileBytes = static_cast<size_t>(tile.width) * channels;
    BlockArray<int16_t> row(tileBytes);
    if (!row) return nullptr;
    for (int32_t y = 0; y < source.height; y++) {
        const uint8_t *tones = tile.Row(y % tile.height);
        for (size_t i = 0; i < tileBytes; i++) row.data[i] = offsets.at[tones[i / channels]];
        for (size_t i = 0; i < rowBytes; i += tileBytes)
            AddOffsets(pass.To().Row(y) + i, pass.From().Row(y) + i, row.data, std::min(tileBytes, rowBytes - i));
    }
    return pass.Finish();
}

} // namespace lmf
