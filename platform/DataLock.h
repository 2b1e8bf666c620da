#pragma once

#include "platform/FileDescriptor.h"

#include <string>
#include <string_view>

namespace qf {

// What a second writer is told.
inline constexpr std::u16string_view kDataInUseText =
    u"The data is in use by another Quillfeed program.";

// Keeps a second program from writing the same settings and data while this one runs: an
// advisory lock on the lock file beside the settings file, held for the life of the object.
// Taking it never waits; the lock file is created when missing, the data folder never is.
class DataLock {
public:
    DataLock();
    DataLock(DataLock&&) noexcept = default;
    DataLock& operator=(DataLock&&) noexcept = default;

    bool held() const { return fd_.valid(); }
    // Why the lock is not held, as a sentence for the user; empty while it is held.
    const std::u16string& errorText() const { return errorText_; }

private:
    // Closing the only descriptor of the lock file's open file description drops the lock.
    FileDescriptor fd_;
    std::u16string errorText_;
};

} // namespace qf
