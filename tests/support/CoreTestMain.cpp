#include <gtest/gtest.h>

#include <QCoreApplication>

// The main of test binaries whose session classes need an event loop but no widgets.
int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
