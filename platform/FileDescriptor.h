#pragma once

#include <unistd.h>
#include <utility>

namespace qf {

// Owns a POSIX file descriptor and closes it when it goes out of scope.
class FileDescriptor {
public:
    explicit FileDescriptor(int fd = -1) : fd_(fd) {}
    ~FileDescriptor() { Reset(); }
    FileDescriptor(FileDescriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        if (this != &other) {
            Reset(std::exchange(other.fd_, -1));
        }
        return *this;
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    int get() const { return fd_; }
    bool valid() const { return fd_ >= 0; }
    void Reset(int fd = -1) {
        if (fd_ >= 0) {
            ::close(fd_);
        }
        fd_ = fd;
    }
    // Closes now and tells whether the close succeeded: a file just written may report a lost
    // write only here.
    bool Close() { return ::close(std::exchange(fd_, -1)) == 0; }

private:
    int fd_;
};

} // namespace qf
