#pragma once

#include "support/ChildProcess.h"
#include "support/TestEnv.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace qf::test {

// Each test is a fresh user of the command line: its own settings, lock and data folders, no
// storage cards, and dates shown in UTC.
class CliFixture : public ::testing::Test {
protected:
    ProgramResult Cli(const std::vector<std::string>& arguments) const {
        return ChildProcess(QF_CLI_PATH, arguments).Wait();
    }

    TempDir dir;
    EnvVar config{"XDG_CONFIG_HOME", (dir / "config").string()};
    EnvVar data{"QUILLFEED_HOME", (dir / "data").string()};
    EnvVar cards{"QUILLFEED_CARDS", (dir / "no-cards").string()};
    EnvVar zone{"TZ", "UTC"};
};

} // namespace qf::test
