// The progress bar on the terminal.
#pragma once

#include <cstddef>
#include <string>

namespace lmf::host {

/// A bar on standard error that is drawn only where that is a terminal, and taken away at the end.
struct Progress {
    size_t total = 0;
    bool shown = false;

    /// Starts a bar for this many pictures; one picture gets none.
    explicit Progress(size_t pictures);
    ~Progress();

    /// Draws the bar for the picture number `index`, counted from 0.
    void Show(size_t index, const std::string &name) const;

    /// Takes the bar away, so that a message can stand in its place.
    void Clear() const;
};

/// Gives a name as it may be shown on a terminal: control bytes become question marks.
std::string Printable(const std::string &name);

} // namespace lmf::host
