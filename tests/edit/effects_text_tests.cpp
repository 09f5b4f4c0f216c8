// The effect list text: putting tokens in and out, the values as numbers, the tables behind the
// controls and the play filters.
#include "Effect_Chain.h"
#include "Effects_Mods.h"

#include <gtest/gtest.h>

using namespace morvane;

TEST(EffectsText, UpdateEffectsText) {
    struct Case {
        const char* list;
        const char* token;
        const char* expected;
    };
    const Case cases[] = {
        {"", "Mosaic:5", "Mosaic:5,"},
        {"  ", "-Mosaic", ""},
        {"Mosaic:5,", "Hue:180", "Mosaic:5,Hue:180"}, // no final comma ...
        {"Mosaic:5,Hue:180", "Brightness:3",
         "Mosaic:5,Hue:180,Brightness:3"}, // ... the next update repairs it
        {"Mosaic:5,Hue:180", "-Mosaic", "Hue:180,"},
        {"Mosaic:5,", "-Hue", "Mosaic:5,"},
        {"Contrast:120,", "-Contrast:100", ""},
        {"Mosaic:5,Hue:180,", "Mosaic:9", "Mosaic:9,Hue:180,"}, // replaced in its place
        {"mosaic:5,", "MOSAIC:7", "MOSAIC:7,"},                 // names compare without case
        // Containment, not equality: the first element whose name the token holds is replaced.
        {"Blur,Hue:1,", "SmartBlur:20", "SmartBlur:20,Hue:1,"},
        {"FlipV,", "Flip-VH", "FlipV,Flip-VH"},
        {"Hue:1,Blur,", "-SmartBlur", "Hue:1,"},
        // Blanks and empty elements go when the list is rebuilt, elements after a match stay as they are.
        {"Hue:1, ,,Sepia ,", "-Hue", "Sepia ,"},
        {" , ,", "-Mosaic", " , ,"},
        {" Hue : 5 ,Sepia", "Hue:6", "Hue:6,Sepia,"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(Update_EffectsText(c.list, c.token), QString(c.expected)) << c.list << " + " << c.token;
}

TEST(EffectsText, ValuesRoundToNearestWithTiesToEven) {
    const std::pair<const char*, std::optional<int>> cases[] = {
        {"5", 5},
        {"-40", -40},
        {" 7 ", 7},
        {"2.5", 2},
        {"3.5", 4},
        {"-2.5", -2},
        {"0.49", 0},
        {"1e2", 100},
        {"", std::nullopt},
        {"abc", std::nullopt},
        {"5x", std::nullopt},
        {"0x10", std::nullopt},
        {"nan", std::nullopt},
        {"99999999999", std::nullopt},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(EffectValueOf(text), expected) << '"' << text << '"';
}

TEST(EffectsText, EveryRowIsAnEffectTheFramesKnow) {
    // The controls' table and the chain's must name the same effects, or a button would emit a token
    // that does nothing.
    const auto& chain = imaging::ChainEffectNames();
    ASSERT_EQ(EffectRows().size(), chain.size());
    for (const EffectRow& row : EffectRows())
        EXPECT_NE(std::find(chain.begin(), chain.end(), row.name.toStdString()), chain.end())
            << row.name.toStdString();
    // Every choice but the four without a row, and every button but "None", is in the table.
    QStringList missing;
    for (const QString& name : Cmb_EffectsList() + EffectButtonCaptions())
        if (!EffectRowOf(name)) missing << name;
    missing.removeDuplicates();
    EXPECT_EQ(missing, QStringList({"None", "Neon", "AlphaBlend", "BlendMode", "GlassBlendMode"}));
    EXPECT_EQ(Cmb_EffectsList().size(), 72);
    EXPECT_EQ(EffectButtonCaptions().size(), 18);

    const std::pair<const char*, const char*> tokens[] = {
        {"Sepia", "Sepia"},       {"Mosaic", "Mosaic:5"},
        {"Waves", "Waves:0:1:0"}, {"BackDropRemoval", "BackDropRemoval:0:16777215:0"},
        {"Mirror", "Mirror:160"}, {"Metal", "Metal:0:4"},
        {"Gold", "Gold:4:0"},     {"RandomicalPoints", "RandomicalPoints:5:16777215"},
    };
    for (const auto& [name, token] : tokens)
        EXPECT_EQ(DefaultEffectToken(name, 320), QString(token));
}

TEST(EffectsText, PlayFilters) {
    EXPECT_EQ(PlayFilterText("Grey Scale"), QString("lutyuv=\"u=128:v=128\""));
    EXPECT_EQ(PlayFilterText("  Rotate 90 "), QString("transpose=2,transpose=2"));
    EXPECT_EQ(PlayFilterText("None"), QString(""));
    EXPECT_EQ(PlayFilterText("No Effect"), std::nullopt); // what the save passes: the player is left alone
    EXPECT_EQ(PlayFilterText("grey scale"), std::nullopt);
}
