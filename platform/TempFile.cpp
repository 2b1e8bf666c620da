#include "platform/TempFile.h"

#include "platform/FileDescriptor.h"
#include "platform/FsPath.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace qf {

namespace {

// mkstemp replaces the six X with a unique suffix.
constexpr std::string_view kUniqueTemplate = "XXXXXX";

} // namespace

std::optional<TempFile> TempFile::CreateBeside(std::u16string_view path) {
    std::string name =
        ToFsPath(path).string() + std::string(kPartSuffix) + std::string(kUniqueTemplate);
    const FileDescriptor fd(::mkstemp(name.data()));
    if (!fd.valid()) {
        return std::nullopt;
    }
    return TempFile(FromFsPath(name));
}

TempFile::TempFile(TempFile&& other) noexcept : path_(std::exchange(other.path_, {})) {}

TempFile& TempFile::operator=(TempFile&& other) noexcept {
    if (this != &other) {
        Remove();
        path_ = std::exchange(other.path_, {});
    }
    return *this;
}

TempFile::~TempFile() {
    Remove();
}

bool TempFile::MoveOver(std::u16string_view target) {
    if (path_.empty() || std::rename(ToFsPath(path_).c_str(), ToFsPath(target).c_str()) != 0) {
        return false;
    }
    path_.clear();
    return true;
}

void TempFile::Remove() {
    if (!path_.empty()) {
        std::remove(ToFsPath(path_).c_str());
        path_.clear();
    }
}

} // namespace qf
