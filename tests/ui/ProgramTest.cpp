#include "support/TestEnv.h"
#include "ui/SingleInstance.h"

#include <QLocalSocket>
#include <QProcess>
#include <QTest>
#include <cstdlib>

#include <gtest/gtest.h>

namespace qf::ui {
namespace {

using namespace Qt::StringLiterals;

// The built programs, run as a user runs them, in a home of their own.
class ProgramTest : public ::testing::Test {
protected:
    ProgramTest() { std::filesystem::create_directories(dir_ / "cards"); }

    static bool InstanceAnswers() {
        QLocalSocket socket;
        socket.connectToServer(SingleInstance::DefaultName());
        return socket.waitForConnected(100);
    }
    static int Run(const QString& program, const QStringList& args) {
        QProcess process;
        process.start(program, args);
        return process.waitForFinished(30000) ? process.exitCode() : -1;
    }

    qf::test::TempDir dir_;
    qf::test::EnvVar config_{"XDG_CONFIG_HOME", (dir_ / "config").string()};
    qf::test::EnvVar home_{"QUILLFEED_HOME", (dir_ / "home").string()};
    qf::test::EnvVar cards_{"QUILLFEED_CARDS", (dir_ / "cards").string()};
    qf::test::EnvVar display_{"QT_QPA_PLATFORM", std::string("offscreen")};
};

TEST_F(ProgramTest, SecondStartLeavesOneProgramThatHoldsTheData) {
    QProcess first;
    first.start(QF_GUI_PATH ""_L1, {});
    ASSERT_TRUE(first.waitForStarted());
    ASSERT_TRUE(QTest::qWaitFor(InstanceAnswers, 20000));

    EXPECT_EQ(Run(QF_GUI_PATH ""_L1, {}), 0);
    EXPECT_EQ(first.state(), QProcess::Running);
    // The running program keeps the data locked against a second writer.
    EXPECT_EQ(Run(QF_CLI_PATH ""_L1, {u"add"_s, u"http://127.0.0.1:9/feed"_s}), 1);

    first.terminate();
    ASSERT_TRUE(first.waitForFinished(20000));
    EXPECT_EQ(Run(QF_CLI_PATH ""_L1, {u"add"_s, u"http://127.0.0.1:9/feed"_s}), 0);
}

TEST_F(ProgramTest, InstallPutsProgramsAndDesktopFilesWhereFreedesktopLooks) {
    const auto prefix = dir_ / "prefix";
    const auto path = [&prefix](const char* file) {
        return QString::fromStdString((prefix / file).string());
    };
    ASSERT_EQ(Run(u"cmake"_s, {u"--install"_s, QF_BUILD_DIR ""_L1, u"--prefix"_s, path("")}), 0);
    for (const char* file : {"bin/quillfeed", "bin/quillfeed-cli", "share/quillfeed/Quillfeed.htm",
                             "share/icons/hicolor/scalable/apps/com.orvelcraft.Quillfeed.svg"}) {
        EXPECT_TRUE(std::filesystem::exists(prefix / file)) << file;
    }
    EXPECT_EQ(Run(u"desktop-file-validate"_s,
                  {path("share/applications/com.orvelcraft.Quillfeed.desktop")}),
              0);
    EXPECT_EQ(
        Run(u"appstreamcli"_s, {u"validate"_s, u"--no-net"_s,
                                path("share/metainfo/com.orvelcraft.Quillfeed.metainfo.xml")}),
        0);
    EXPECT_NE(qf::test::ReadFileBytes(prefix / "share/quillfeed/Quillfeed.htm")
                  .find("id=\"Main_Contents\""),
              std::string::npos);
}

} // namespace
} // namespace qf::ui
