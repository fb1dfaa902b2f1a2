#include <gtest/gtest.h>

#include <QApplication>
#include <QTemporaryDir>
#include <cstdio>

#include "host/plugin_file.h"

/// Runs the tests of windows with no screen, away from the user's own settings, the plug-in loaded.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const QTemporaryDir home;
    for (const char* variable : {"HOME", "XDG_CONFIG_HOME", "XDG_STATE_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"}) {
        qputenv(variable, home.path().toLocal8Bit());
    }
    if (!qEnvironmentVariableIsSet("TAVRIK_PLUGIN")) qputenv("TAVRIK_PLUGIN", TAVRIK_PLUGIN_FILE);
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    QApplication::setOrganizationName("Norvane");
    QApplication::setApplicationName("Tavrik tests");
    std::string problem;
    if (!tavrik_host::LoadTavrikPlugin(problem)) {
        std::fprintf(stderr, "%s\n", problem.c_str());
        return 1;
    }
    return RUN_ALL_TESTS();
}
