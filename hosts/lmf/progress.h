// The progress bar on the terminal.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace lmf::host {

/// A line on standard error that is drawn only where that is a terminal, and taken away at the end: for several
/// pictures a bar with the part done and the time left, for one the time gone, since a filter tells of nothing before
/// its end.
class Progress {
public:
    /// Starts a line for this many pictures; 0: none is drawn.
    explicit Progress(size_t pictures);
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;
    ~Progress();

    /// Whether there is a line at all.
    [[nodiscard]] bool Shown() const { return shown; }

    /// Draws the line with so many pictures done and the name of one that is being worked on.
    void Show(size_t done, const std::string &name);

    /// Takes the line away, so that a message can stand in its place.
    void Clear() const;

private:
    size_t total;
    bool shown;
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};

/// Gives a name as it may be shown on a terminal: control bytes become question marks.
std::string Printable(const std::string &name);

} // namespace lmf::host
