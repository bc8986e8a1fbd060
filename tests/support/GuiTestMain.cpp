#include <gtest/gtest.h>

#include <QApplication>

// The main of every test binary that needs widgets. CTest lists the tests by running the binary
// outside the test's environment, so the offscreen platform is chosen here, not only in CTest.
int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
