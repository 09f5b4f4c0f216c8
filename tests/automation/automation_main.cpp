// The suites need an event loop, and a runtime folder of their own that a second process inherits.
// Started as "--hand-over NAME [TEXT]" the binary is a second start of the program instead: it hands
// TEXT to the running instance and exits 0, or exits 3 when none answers.
#include "Instance_Channel.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() >= 3 && arguments.at(1) == QLatin1String("--hand-over")) {
        morvane::Instance_Channel channel(nullptr);
        return channel.Find_PrevInstance(arguments.at(2), arguments.value(3)) ? 0 : 3;
    }
    QTemporaryDir runtime;
    qputenv("XDG_RUNTIME_DIR", runtime.path().toUtf8());
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
