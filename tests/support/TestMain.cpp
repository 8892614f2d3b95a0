#include <gtest/gtest.h>

#ifdef KADRONA_VISIBLE_THREADS
#include "tests/support/VisibleThreads.h"
#endif

#ifdef KADRONA_TEST_WIDGETS
#include <QApplication>
using TestApplication = QApplication;
#else
#include <QGuiApplication>
using TestApplication = QGuiApplication;
#endif

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
#ifdef KADRONA_VISIBLE_THREADS
    kadrona::testing::UseVisibleThreads();
#endif
    TestApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
