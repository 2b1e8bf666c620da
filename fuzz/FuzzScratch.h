#pragma once

// A private scratch folder for fuzz targets whose code under test reads files.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace qf::fuzz {

inline const std::filesystem::path& ScratchFolder() {
    static const std::filesystem::path folder = [] {
        auto path = std::filesystem::temp_directory_path() /
                    ("quillfeed-fuzz-" + std::to_string(::getpid()));
        std::filesystem::create_directories(path);
        return path;
    }();
    return folder;
}

// Makes the folder and removes it when the fuzzer ends. The folder is made before the clean-up is
// registered, so that it outlives the clean-up. Call from LLVMFuzzerInitialize.
inline void PrepareScratchFolder() {
    ScratchFolder();
    std::atexit([] {
        std::error_code ignored;
        std::filesystem::remove_all(ScratchFolder(), ignored);
    });
}

// Writes the fuzzer's input to `name` in the scratch folder and answers its path.
inline std::filesystem::path WriteScratchFile(const char* name, const uint8_t* data,
                                              std::size_t size) {
    const std::filesystem::path path = ScratchFolder() / name;
    std::ofstream(path, std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    return path;
}

} // namespace qf::fuzz
