#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace qf {

// What follows a file's name while it is being written; a name holding it after a run is a
// left-over of a run that ended abruptly.
inline constexpr std::string_view kPartSuffix = ".part-";

// A new file under a unique name in the folder of another file, where a download lands before it
// replaces that file. The file goes with the object unless it was moved into place.
class TempFile {
public:
    // Creates an empty file named after `path` with a unique suffix; nullopt when the folder does
    // not take one.
    static std::optional<TempFile> CreateBeside(std::u16string_view path);

    TempFile(TempFile&& other) noexcept;
    TempFile& operator=(TempFile&& other) noexcept;
    TempFile(const TempFile&) = delete;
    TempFile& operator=(const TempFile&) = delete;
    ~TempFile();

    const std::u16string& path() const { return path_; }

    // Renames the file over `target` in one step, so that readers of `target` see the old file
    // or the new one, never a part. Afterwards the object holds nothing.
    bool MoveOver(std::u16string_view target);

private:
    explicit TempFile(std::u16string path) : path_(std::move(path)) {}
    void Remove();

    std::u16string path_;
};

} // namespace qf
