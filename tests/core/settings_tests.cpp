#include "TempHome.h"

#include "Globals.h"
#include "Registry_Mod.h"

#include <QDate>
#include <QFile>

#include <gtest/gtest.h>

using namespace morvane;

class SettingsTest : public ::testing::Test {
protected:
    void SetUp() override {
        REGISTRY_PRODUCT = QStringLiteral("morvane-test/settings");
        // Values a previous load may have left behind must not leak into the next case.
        Close_Event = 9;
        Close_DontAsk = true;
        Update_Active = false;
        Update_LastTime = QDate(2000, 1, 1);
        Output_NameMode = 7;
        Theme_No = 7;
    }
    void store(const char* key, const char* value) {
        ASSERT_TRUE(Write_Setting(REGISTRY_PRODUCT, QLatin1String(key), QLatin1String(value)));
    }
    QString stored(const char* key) { return Read_Setting(REGISTRY_PRODUCT, QLatin1String(key)); }
    TempHome home;
};

TEST_F(SettingsTest, AbsentValuesLoadTheDefaults) {
    Load_Settings();
    EXPECT_EQ(Close_Event, 0);
    EXPECT_FALSE(Close_DontAsk);
    EXPECT_TRUE(Update_Active);
    EXPECT_EQ(Update_LastTime, QDate::currentDate());
    EXPECT_EQ(Output_NameMode, 1);
    EXPECT_EQ(Theme_No, 2);
    EXPECT_EQ(stored("CloseEvent"), "");
}

TEST_F(SettingsTest, LoadRulesForEachKey) {
    struct Case {
        const char* closeEvent;
        const char* dontAsk; // nullptr: absent
        int event;
        bool dontAskFlag;
    };
    const Case cases[] = {
        {"1", "0", 1, false},  {"1", nullptr, 1, true}, {"2", "-1", 2, true},   {"2", "yes", 2, true},
        {"0", "-1", 0, false}, {"5", "-1", 0, false},   {" 2 ", "0", 2, false}, {"x", nullptr, 0, false},
    };
    for (const Case& c : cases) {
        TempHome fresh;
        store("CloseEvent", c.closeEvent);
        if (c.dontAsk) store("CloseDontAskMe", c.dontAsk);
        Load_Settings();
        EXPECT_EQ(Close_Event, c.event) << c.closeEvent;
        EXPECT_EQ(Close_DontAsk, c.dontAskFlag) << c.closeEvent << " " << (c.dontAsk ? c.dontAsk : "absent");
    }

    store("UpdateActive", "0");
    store("OutputFileName", "0");
    store("ThemeNo", "1");
    store("UpdateLastTime", "2026-03-04");
    Load_Settings();
    EXPECT_FALSE(Update_Active);
    EXPECT_EQ(Output_NameMode, 0);
    EXPECT_EQ(Theme_No, 1);
    EXPECT_EQ(Update_LastTime, QDate(2026, 3, 4));

    store("UpdateActive", "no");
    store("OutputFileName", "2");
    store("ThemeNo", "7");
    store("UpdateLastTime", "next tuesday");
    Load_Settings();
    EXPECT_TRUE(Update_Active);
    EXPECT_EQ(Output_NameMode, 1);
    EXPECT_EQ(Theme_No, 2);
    EXPECT_EQ(Update_LastTime, QDate::currentDate());
}

TEST_F(SettingsTest, SaveWritesTextValuesThatLoadBack) {
    store("UpdateLastTime", "not a date");
    Load_Settings();
    Close_Event = 1;
    Close_DontAsk = true;
    Update_Active = false;
    Output_NameMode = 0;
    Theme_No = 1;
    Save_Settings();
    EXPECT_EQ(stored("CloseEvent"), "1");
    EXPECT_EQ(stored("CloseDontAskMe"), "-1");
    EXPECT_EQ(stored("UpdateActive"), "0");
    EXPECT_EQ(stored("UpdateLastTime"), QDate::currentDate().toString(Qt::ISODate));
    EXPECT_EQ(stored("OutputFileName"), "0");
    EXPECT_EQ(stored("ThemeNo"), "1");

    Close_Event = 0;
    Close_DontAsk = false;
    Save_Settings();
    EXPECT_EQ(stored("CloseDontAskMe"), "0");
    EXPECT_EQ(stored("UpdateActive"), "0");

    // Folders with commas, quotes and non-ASCII letters come back as they went in.
    const QString folder = QString::fromUtf8("/home/\xc3\xa9lise/Vid\xc3\xa9os, \"old\"/");
    ASSERT_TRUE(Write_Setting(REGISTRY_PRODUCT, "OutputPath", folder));
    EXPECT_EQ(stored("OutputPath"), folder);
}

TEST_F(SettingsTest, GarbageOrUnwritableStoreNeverBreaksTheProgram) {
    const QString path = Settings_FilePath(REGISTRY_PRODUCT);
    QDir().mkpath(QFileInfo(path).path());
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        QByteArray junk;
        for (int i = 0; i < 4096; ++i)
            junk.append(static_cast<char>((i * 131 + 7) % 256));
        file.write("[General\nCloseEvent=\"2\nThemeNo=a, b, c\n" + junk);
    }
    Load_Settings();
    EXPECT_EQ(Theme_No, 2); // a list is no text value
    EXPECT_GE(Close_Event, 0);
    EXPECT_LE(Close_Event, 2);

    // A folder where the file should be: reads give "", writes say false.
    QFile::remove(path);
    QDir().mkpath(path);
    EXPECT_EQ(stored("ThemeNo"), "");
    EXPECT_FALSE(Write_Setting(REGISTRY_PRODUCT, "ThemeNo", "1"));
    Load_Settings();
    EXPECT_EQ(Theme_No, 2);
    Save_Settings();
}
