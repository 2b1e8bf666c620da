#pragma once

#include "platform/Clock.h"

#include <filesystem>
#include <optional>
#include <string>

namespace qf::test {

// A fresh folder under the system's temporary folder, removed with everything in it.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

private:
    std::filesystem::path path_;
};

// Sets (or, with nullopt, unsets) an environment variable for the life of the object.
class EnvVar {
public:
    EnvVar(std::string name, const std::optional<std::string>& value);
    ~EnvVar();
    EnvVar(const EnvVar&) = delete;
    EnvVar& operator=(const EnvVar&) = delete;

private:
    std::string name_;
    std::optional<std::string> old_;
};

// A clock pinned to a given UTC time and zone, installed as the process-wide clock while it
// lives.
class FakeClock : public Clock {
public:
    explicit FakeClock(SystemTime nowUtc, TimeZoneInfo zone = {});
    ~FakeClock() override;
    FakeClock(const FakeClock&) = delete;
    FakeClock& operator=(const FakeClock&) = delete;

    SystemTime nowUtc() const override { return now_; }
    TimeZoneInfo timeZone() const override { return zone_; }
    void set(SystemTime nowUtc) { now_ = nowUtc; }
    void setZone(TimeZoneInfo zone) { zone_ = zone; }

private:
    SystemTime now_;
    TimeZoneInfo zone_;
};

// Reads a whole file as bytes; empty when it cannot be read.
std::string ReadFileBytes(const std::filesystem::path& path);
// Writes bytes to a file, creating or replacing it.
void WriteFileBytes(const std::filesystem::path& path, const std::string& bytes);

} // namespace qf::test
