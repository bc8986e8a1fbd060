#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char** argv) {
    // The windows are drawn offscreen however the binary is started (CTest's test listing runs
    // it without the test environment, and a developer's shell may have no display).
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
