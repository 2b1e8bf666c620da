#include "ui/Resources.h"

#include <QApplication>

#include <gtest/gtest.h>

// The screens' tests need one QApplication for the whole run; they draw offscreen so that they
// run without a display.
int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    qf::ui::InitResources();
    return RUN_ALL_TESTS();
}
