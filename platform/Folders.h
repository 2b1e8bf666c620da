#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qf {

// Folder operations on program paths (see FsPath.h). Failures are answered as false or as an
// empty list; nothing here is shown to the user.

// One entry of a folder ("." and ".." left out). Only a real folder is a directory: a symbolic
// link is a file whatever it points to, so nothing that walks a folder ever leaves it.
struct DirectoryEntry {
    std::u16string name;
    bool isDirectory = false;
    bool isSymbolicLink = false;
};

// Creates the folder and, when they are missing, its parents. A folder that already exists, and
// any failure other than a missing parent, counts as success.
bool CreateDirectoryPath(std::u16string_view path);
// Creates the folder that holds `filePath`, and its parents (as CreateDirectoryPath). A path
// without a folder part has nothing to create.
bool CreateParentDirectory(std::u16string_view filePath);
// Removes the folder only when it is empty.
bool RemoveEmptyDirectory(std::u16string_view path);
// Removes the folder and every folder below it that is empty once its own sub-folders are gone;
// folders that still hold files stay. Always answers true.
bool RemoveDirectoryTree(std::u16string_view path);
// The entries of a folder, in no particular order; empty when it cannot be listed.
std::vector<DirectoryEntry> ListDirectory(std::u16string_view path);
// Moves everything in `source` into `destination`, creating it and its sub-folders as needed:
// files are copied (replacing files of the same name) and the original deleted once the copy
// is safe; symbolic links are moved as links. Failures leave that entry where it was and go on.
void MoveDirectoryContents(std::u16string_view source, std::u16string_view destination);

} // namespace qf
