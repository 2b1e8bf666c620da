#include "platform/Files.h"

#include "platform/AtomicFile.h"
#include "platform/CodePage.h"
#include "platform/FileDescriptor.h"
#include "platform/FsPath.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qf {

namespace {

constexpr int32_t kDefaultCodePage = 0;
constexpr std::size_t kReadBlock = 16384;

// Opens a regular file for reading. A FIFO or device is refused without waiting for a writer.
FileDescriptor OpenRegularFile(std::u16string_view path) {
    FileDescriptor fd(::open(ToFsPath(path).c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat info {};
    if (!fd.valid() || ::fstat(fd.get(), &info) != 0 || !S_ISREG(info.st_mode)) {
        return FileDescriptor();
    }
    return fd;
}

std::optional<std::string> ReadAll(int fd) {
    std::string bytes;
    char block[kReadBlock];
    for (;;) {
        const ssize_t count = ::read(fd, block, sizeof block);
        if (count == 0) {
            return bytes;
        }
        if (count < 0) {
            if (errno == EINTR) {
                continue;
            }
            return std::nullopt;
        }
        bytes.append(block, static_cast<std::size_t>(count));
    }
}

} // namespace

bool FileExists(std::u16string_view path) {
    struct stat info {};
    return !path.empty() && ::stat(ToFsPath(path).c_str(), &info) == 0;
}

std::optional<std::string> ReadFileBytes(std::u16string_view path) {
    const FileDescriptor fd = OpenRegularFile(path);
    if (!fd.valid()) {
        return std::nullopt;
    }
    return ReadAll(fd.get());
}

std::optional<std::u16string> ReadFileAsText(std::u16string_view path) {
    const auto bytes = ReadFileBytes(path);
    if (!bytes || bytes->empty()) {
        return std::nullopt;
    }
    const std::string_view text(*bytes);
    return DecodeCodePage(text.substr(0, text.find('\0')), kDefaultCodePage);
}

bool DeleteFile(std::u16string_view path) {
    return !path.empty() && ::unlink(ToFsPath(path).c_str()) == 0;
}

bool CopyFile(std::u16string_view source, std::u16string_view destination) {
    const auto bytes = ReadFileBytes(source);
    return bytes && WriteFileAtomically(ToFsPath(destination), *bytes);
}

} // namespace qf
