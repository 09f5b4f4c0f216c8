// The real engine delivers its events as queued calls: they need an application object.
extern "C" {
#include <libavutil/log.h>
}

#include <QCoreApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    av_log_set_level(AV_LOG_ERROR);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
