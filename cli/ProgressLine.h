#pragma once

#include "net/RefreshObserver.h"

#include <chrono>
#include <mutex>
#include <string>
#include <string_view>

namespace qf::cli {

// The line on standard error that shows how far a refresh is, redrawn in place, and the result
// lines on standard output that scroll above it. The line is drawn only when standard error is a
// terminal. Any thread may report; one lock keeps the two streams from tearing each other.
class ProgressLine {
public:
    ProgressLine();
    ~ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    // The channel `position` of `count` that the command itself is on, for reports that carry
    // no place of their own.
    void SetPlace(int32_t position, int32_t count);
    // Redraws the line, at most a few times a second unless the stage changed.
    void Report(const RefreshProgress& progress);
    // Prints a result line to standard output above the progress line.
    void PrintResult(std::string_view line);
    // Clears the line for good, before the command's last messages.
    void Finish();

private:
    void ClearLocked();
    void DrawLocked();

    std::mutex mutex_;
    bool shown_;
    bool drawn_ = false;
    std::string text_;
    int32_t position_ = 0;
    int32_t count_ = 0;
    std::u16string_view lastStage_;
    std::chrono::steady_clock::time_point lastDraw_{};
};

} // namespace qf::cli
