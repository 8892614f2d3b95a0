#include <gtest/gtest.h>

#ifdef KADRONA_TEST_WIDGETS
#include <QApplication>
using TestApplication = QApplication;
#else
#include <QGuiApplication>
using TestApplication = QGuiApplication;
#endif

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    TestApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
