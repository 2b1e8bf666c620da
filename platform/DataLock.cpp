#include "platform/DataLock.h"

#include "platform/Folders.h"
#include "platform/FsPath.h"
#include "platform/Text.h"
#include "platform/UserFolders.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>

namespace qf {

namespace {

std::u16string FailureText(std::string_view what, const std::filesystem::path& path, int error) {
    return Utf8ToUtf16(std::string(what) + " '" + path.string() + "': " + std::strerror(error));
}

} // namespace

DataLock::DataLock() {
    const auto path = DataLockFilePath();
    if (!path) {
        errorText_ = u"Cannot lock the data: no home folder is known.";
        return;
    }
    CreateParentDirectory(FromFsPath(*path));
    // Opening the file anew gives this object its own open file description, so a second lock
    // in the same process conflicts just as one in another process does.
    fd_.Reset(::open(path->c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    if (!fd_.valid()) {
        errorText_ = FailureText("Cannot open the lock file", *path, errno);
        return;
    }
    if (::flock(fd_.get(), LOCK_EX | LOCK_NB) != 0) {
        const int error = errno;
        fd_.Reset();
        errorText_ = error == EWOULDBLOCK ? std::u16string(kDataInUseText)
                                          : FailureText("Cannot lock the file", *path, error);
    }
}

} // namespace qf
