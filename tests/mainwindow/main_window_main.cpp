// Windows need an application object; the engine's events need its event loop.
extern "C" {
#include <libavutil/log.h>
}

#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    // Test discovery runs the executable outside CTest's environment, with no display.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    // The window checks for updates as it loads: never the real endpoint from a test.
    qputenv("MORVANE_UPDATE_URL", "http://127.0.0.1:9/update?p=PRODUCTNAME&v=VERSION");
    QApplication app(argc, argv);
    av_log_set_level(AV_LOG_ERROR);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
