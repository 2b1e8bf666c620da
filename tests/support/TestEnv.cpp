#include "support/TestEnv.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace qf::test {

TempDir::TempDir() {
    std::string pattern =
        (std::filesystem::temp_directory_path() / "quillfeed-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("cannot create a temporary folder");
    }
    path_ = pattern;
}

TempDir::~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

EnvVar::EnvVar(std::string name, const std::optional<std::string>& value) : name_(std::move(name)) {
    if (const char* old = std::getenv(name_.c_str())) {
        old_ = old;
    }
    if (value) {
        ::setenv(name_.c_str(), value->c_str(), 1);
    } else {
        ::unsetenv(name_.c_str());
    }
}

EnvVar::~EnvVar() {
    if (old_) {
        ::setenv(name_.c_str(), old_->c_str(), 1);
    } else {
        ::unsetenv(name_.c_str());
    }
}

FakeClock::FakeClock(SystemTime nowUtc, TimeZoneInfo zone) : now_(nowUtc), zone_(zone) {
    Clock::setInstance(this);
}

FakeClock::~FakeClock() {
    Clock::setInstance(nullptr);
}

std::string ReadFileBytes(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void WriteFileBytes(const std::filesystem::path& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << bytes;
}

} // namespace qf::test
