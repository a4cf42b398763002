#include "platform/qt/application.h"

#include <gmock/gmock.h>

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleMock(&argc, argv);
    const quoravel::App app(argc, argv);
    return RUN_ALL_TESTS();
}
