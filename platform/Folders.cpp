#include "platform/Folders.h"

#include "platform/Files.h"
#include "platform/FsPath.h"

#include <cerrno>
#include <dirent.h>
#include <memory>
#include <sys/stat.h>

namespace qf {

namespace {

constexpr char16_t kSeparator = u'/';

struct DirCloser {
    void operator()(DIR* dir) const { ::closedir(dir); }
};

bool MoveSymbolicLink(std::u16string_view source, std::u16string_view destination) {
    std::error_code error;
    const auto target = std::filesystem::read_symlink(ToFsPath(source), error);
    if (error) {
        return false;
    }
    const auto to = ToFsPath(destination);
    const auto existing = std::filesystem::symlink_status(to, error);
    if (std::filesystem::exists(existing) && !std::filesystem::is_directory(existing)) {
        std::filesystem::remove(to, error);
    }
    std::filesystem::create_symlink(target, to, error);
    return !error && DeleteFile(source);
}

} // namespace

bool CreateDirectoryPath(std::u16string_view path) {
    if (path.empty()) {
        return false;
    }
    const auto folder = ToFsPath(path);
    if (::mkdir(folder.c_str(), 0777) == 0 || errno != ENOENT) {
        return true;
    }
    const auto cut = path.rfind(kSeparator);
    if (cut == std::u16string_view::npos) {
        return false;
    }
    // The parent's own answer does not matter: the second attempt tells whether it worked.
    CreateDirectoryPath(path.substr(0, cut));
    return ::mkdir(folder.c_str(), 0777) == 0;
}

bool CreateParentDirectory(std::u16string_view filePath) {
    const auto cut = filePath.rfind(kSeparator);
    return cut == std::u16string_view::npos || cut == 0 ||
           CreateDirectoryPath(filePath.substr(0, cut));
}

bool RemoveEmptyDirectory(std::u16string_view path) {
    return !path.empty() && ::rmdir(ToFsPath(path).c_str()) == 0;
}

bool RemoveDirectoryTree(std::u16string_view path) {
    for (const DirectoryEntry& entry : ListDirectory(path)) {
        if (entry.isDirectory) {
            RemoveDirectoryTree(JoinPath(path, entry.name));
        }
    }
    RemoveEmptyDirectory(path);
    return true;
}

std::vector<DirectoryEntry> ListDirectory(std::u16string_view path) {
    std::vector<DirectoryEntry> entries;
    const auto folder = ToFsPath(path);
    const std::unique_ptr<DIR, DirCloser> dir(::opendir(folder.c_str()));
    if (!dir) {
        return entries;
    }
    while (const dirent* item = ::readdir(dir.get())) {
        const std::string_view name = item->d_name;
        if (name == "." || name == "..") {
            continue;
        }
        struct stat info {};
        if (::lstat((folder / name).c_str(), &info) != 0) {
            continue;
        }
        entries.push_back({FromFsPath(std::filesystem::path(name)), S_ISDIR(info.st_mode),
                           S_ISLNK(info.st_mode)});
    }
    return entries;
}

void MoveDirectoryContents(std::u16string_view source, std::u16string_view destination) {
    if (!FileExists(destination)) {
        CreateDirectoryPath(destination);
    }
    for (const DirectoryEntry& entry : ListDirectory(source)) {
        const std::u16string from = JoinPath(source, entry.name);
        const std::u16string to = JoinPath(destination, entry.name);
        if (entry.isDirectory) {
            MoveDirectoryContents(from, to);
        } else if (entry.isSymbolicLink) {
            MoveSymbolicLink(from, to);
        } else if (CopyFile(from, to)) {
            // Only a file that safely arrived is deleted, so a full card loses nothing.
            DeleteFile(from);
        }
    }
}

} // namespace qf
