// Pictures that are passed on row by row instead of being held whole.
#pragma once

#include <cstdint>
#include <type_traits>

namespace lmf {

/// What rows without a picture are rows of.
struct RowFormat {
    int32_t width = 0;  ///< pixels
    int32_t height = 0; ///< rows
    uint32_t bits = 0;  ///< a pixel: 8, 24 or 32
};

/// Borrows a callable of the form void(int32_t y, uint8_t *row): something that writes or reads row y, counted from the
/// top. It must outlive what it is passed to, as a lambda written into the call does.
class RowFunction {
public:
    template <typename Work>
    requires(!std::is_same_v<std::remove_cvref_t<Work>, RowFunction>) RowFunction(Work &&callable)
        : work(const_cast<void *>(static_cast<const void *>(&callable))), call([](void *target, int32_t y, uint8_t *row) {
              (*static_cast<std::remove_reference_t<Work> *>(target))(y, row);
          }) {}

    void operator()(int32_t y, uint8_t *row) const { call(work, y, row); }

private:
    void *work;
    void (*call)(void *target, int32_t y, uint8_t *row);
};

} // namespace lmf
