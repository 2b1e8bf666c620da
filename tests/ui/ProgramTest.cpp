#include "support/TestEnv.h"
#include "ui/SingleInstance.h"

#include <QLocalSocket>
#include <QProcess>
#include <QTest>
#include <cstdlib>

#include <gtest/gtest.h>

namespace qf::ui {
namespace {

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
    first.start(QStringLiteral(QF_GUI_PATH), {});
    ASSERT_TRUE(first.waitForStarted());
    ASSERT_TRUE(QTest::qWaitFor(InstanceAnswers, 20000));

    EXPECT_EQ(Run(QStringLiteral(QF_GUI_PATH), {}), 0);
    EXPECT_EQ(first.state(), QProcess::Running);
    // The running program keeps the data locked against a second writer.
    EXPECT_EQ(Run(QStringLiteral(QF_CLI_PATH),
                  {QStringLiteral("add"), QStringLiteral("http://127.0.0.1:9/feed")}),
              1);

    first.terminate();
    ASSERT_TRUE(first.waitForFinished(20000));
    EXPECT_EQ(Run(QStringLiteral(QF_CLI_PATH),
                  {QStringLiteral("add"), QStringLiteral("http://127.0.0.1:9/feed")}),
              0);
}

TEST_F(ProgramTest, InstallPutsProgramsAndDesktopFilesWhereFreedesktopLooks) {
    const auto prefix = dir_ / "prefix";
    ASSERT_EQ(Run(QStringLiteral("cmake"),
                  {QStringLiteral("--install"), QStringLiteral(QF_BUILD_DIR),
                   QStringLiteral("--prefix"), QString::fromStdString(prefix.string())}),
              0);
    for (const char* file : {"bin/quillfeed", "bin/quillfeed-cli", "share/quillfeed/Quillfeed.htm",
                             "share/icons/hicolor/scalable/apps/com.orvelcraft.Quillfeed.svg"}) {
        EXPECT_TRUE(std::filesystem::exists(prefix / file)) << file;
    }
    const auto desktop = prefix / "share/applications/com.orvelcraft.Quillfeed.desktop";
    const auto metainfo = prefix / "share/metainfo/com.orvelcraft.Quillfeed.metainfo.xml";
    EXPECT_EQ(
        Run(QStringLiteral("desktop-file-validate"), {QString::fromStdString(desktop.string())}),
        0);
    EXPECT_EQ(
        Run(QStringLiteral("appstreamcli"), {QStringLiteral("validate"), QStringLiteral("--no-net"),
                                             QString::fromStdString(metainfo.string())}),
        0);
    EXPECT_NE(qf::test::ReadFileBytes(prefix / "share/quillfeed/Quillfeed.htm")
                  .find("id=\"Main_Contents\""),
              std::string::npos);
}

} // namespace
} // namespace qf::ui
