#include "platform/AtomicFile.h"

#include "platform/FileDescriptor.h"
#include "platform/TempFile.h"
#include "platform/Text.h"

#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace qf {

namespace {

bool WriteAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(fd, bytes.data(), bytes.size());
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

void SyncFolder(const std::filesystem::path& folder) {
    FileDescriptor dir(::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY));
    if (dir.valid()) {
        ::fsync(dir.get());
    }
}

} // namespace

bool WriteFileAtomically(const std::filesystem::path& path, std::string_view bytes,
                         bool ownerOnly) {
    std::string temp = path.string() + std::string(kPartSuffix) + "XXXXXX";
    FileDescriptor fd(::mkstemp(temp.data()));
    if (!fd.valid()) {
        return false;
    }
    // mkstemp makes the file readable by its owner only, which suits a store that holds channel
    // passwords; a file that already exists keeps the permissions its owner gave it.
    struct stat old {};
    if (!ownerOnly && ::stat(path.c_str(), &old) == 0) {
        ::fchmod(fd.get(), old.st_mode & 07777);
    }
    const bool written = WriteAll(fd.get(), bytes) && ::fsync(fd.get()) == 0;
    if (!fd.Close() || !written || ::rename(temp.c_str(), path.c_str()) != 0) {
        ::unlink(temp.c_str());
        return false;
    }
    SyncFolder(path.parent_path());
    return true;
}

} // namespace qf
