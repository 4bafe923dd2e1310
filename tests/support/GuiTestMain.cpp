// The main of the window tests: one application object for all of a program's tests.

#include <QApplication>
#include <gtest/gtest.h>

int main(int argc, char* argv[]) {
    // The window tests run without a display unless a platform is chosen.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
