#include "cli/ProgressLine.h"

#include "platform/Text.h"

#include <cstdio>
#include <unistd.h>

namespace qf::cli {

namespace {

constexpr auto kRedrawInterval = std::chrono::milliseconds(100);
// Carriage return, then erase to the end of the line.
constexpr char kClearLine[] = "\r\x1b[K";

std::string Kilobytes(int64_t bytes) {
    constexpr int64_t kKilobyte = 1024;
    return std::to_string((bytes + kKilobyte - 1) / kKilobyte) + " KB";
}

std::string LineText(const RefreshProgress& progress, int32_t position, int32_t count) {
    std::string text;
    if (count > 0) {
        text += "[" + std::to_string(position) + "/" + std::to_string(count) + "] ";
    }
    text += Utf16ToUtf8(progress.title) + ": " + Utf16ToUtf8(progress.stageText);
    if (progress.bytesSoFar > 0) {
        text += " " + Kilobytes(progress.bytesSoFar);
        if (progress.totalBytes > 0) {
            text += " of " + Kilobytes(progress.totalBytes);
        }
    }
    return text;
}

} // namespace

ProgressLine::ProgressLine() : shown_(::isatty(STDERR_FILENO) == 1) {}

ProgressLine::~ProgressLine() {
    Finish();
}

void ProgressLine::Finish() {
    const std::lock_guard lock(mutex_);
    ClearLocked();
    shown_ = false;
}

void ProgressLine::SetPlace(int32_t position, int32_t count) {
    const std::lock_guard lock(mutex_);
    position_ = position;
    count_ = count;
}

void ProgressLine::Report(const RefreshProgress& progress) {
    const std::lock_guard lock(mutex_);
    if (!shown_) {
        return;
    }
    const auto now = std::chrono::steady_clock::now();
    if (progress.stageText == lastStage_ && now - lastDraw_ < kRedrawInterval) {
        return;
    }
    lastStage_ = progress.stageText;
    lastDraw_ = now;
    const bool ownPlace = progress.count > 0;
    text_ = LineText(progress, ownPlace ? progress.position : position_,
                     ownPlace ? progress.count : count_);
    DrawLocked();
}

void ProgressLine::PrintResult(std::string_view line) {
    const std::lock_guard lock(mutex_);
    ClearLocked();
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
    DrawLocked();
}

void ProgressLine::DrawLocked() {
    if (!shown_ || text_.empty()) {
        return;
    }
    std::fprintf(stderr, "%s%s", kClearLine, text_.c_str());
    std::fflush(stderr);
    drawn_ = true;
}

void ProgressLine::ClearLocked() {
    if (drawn_) {
        std::fputs(kClearLine, stderr);
        std::fflush(stderr);
        drawn_ = false;
    }
}

} // namespace qf::cli
