// The Effect and Adjust tabs as a model: each handler's effect on the list text and the controls.
#include "EffectsPanel.h"
#include "Effects_Mods.h"

#include <gtest/gtest.h>

using namespace morvane;

namespace {

int Button(const char* caption) {
    return static_cast<int>(EffectButtonCaptions().indexOf(caption));
}

} // namespace

TEST(EffectsPanel, AdjustSlidersWriteTheirTokensAndLabels) {
    EffectsPanel p;
    p.SetAdjust(0, -40);
    p.SetAdjust(1, 120);
    p.SetAdjust(2, 999); // clamped to the slider's range
    EXPECT_EQ(p.Txt_EffectsStr, "Brightness:-40,Contrast:120,Saturation:255");
    EXPECT_EQ(p.lbl_AdjustValue[1], "20"); // contrast reads around its neutral point
    EXPECT_TRUE(p.Dirty);
    p.SetAdjust(1, 100);
    EXPECT_EQ(p.Txt_EffectsStr, "Brightness:-40,Saturation:255,");
    EXPECT_EQ(p.lbl_AdjustValue[1], "0");

    // Flips toggle; pressed twice they leave nothing behind. Flip-VH does not count as FlipV.
    for (int i : {0, 1, 2})
        p.Cmd_Adjust_Click(i);
    EXPECT_EQ(p.Txt_EffectsStr, "Brightness:-40,Saturation:255,FlipV,FlipH,Flip-VH");
    for (int i : {0, 1})
        p.Cmd_Adjust_Click(i);
    EXPECT_EQ(p.Txt_EffectsStr, "Brightness:-40,Saturation:255,Flip-VH,");
    p.Dirty = false;
    p.Cmd_Adjust_Click(7); // an index without a flip only marks the change
    EXPECT_EQ(p.Txt_EffectsStr, "Brightness:-40,Saturation:255,Flip-VH,");
    EXPECT_TRUE(p.Dirty);

    p.Cmd_Reset(2);
    EXPECT_EQ(p.Txt_EffectsStr, "");
    EXPECT_EQ(p.Slider_Adjust, (std::array<int, 3>{0, 100, 0}));
}

TEST(EffectsPanel, ButtonsKeepOneEffectBesideTheAdjustments) {
    EffectsPanel p;
    p.SetAdjust(0, 10);
    p.EffectButton_Click(Button("Mosaic"));
    EXPECT_EQ(p.Txt_EffectsStr, "Brightness:10,Mosaic:5");
    EXPECT_TRUE(p.Pic_EffectValueBG_Visible);
    EXPECT_EQ(p.EffectValues_GroupBox_Caption, "Mosaic");
    p.EffectButton_Click(Button("Hue"));
    EXPECT_EQ(p.Txt_EffectsStr, "Brightness:10,Hue:180");
    EXPECT_EQ(p.SelectedButton(), Button("Hue"));
    EXPECT_EQ(p.ButtonBackColour[Button("Mosaic")], EffectsPanel::kUnselectedColour);
    EXPECT_EQ(p.EffectValues_Slider[0].RailImage, "img_sliderrail_3.jpg");

    p.SetEffectSlider(0, 90);
    EXPECT_EQ(p.Txt_EffectsStr, "Brightness:10,Hue:90,");
    EXPECT_EQ(p.lbl_EffectValue[0], "90");
    p.Cmd_Reset(3);
    EXPECT_EQ(p.Txt_EffectsStr, "Brightness:10,Hue:180,");

    // A button without values hides the value panel; "None" takes the effect out and adds nothing.
    p.EffectButton_Click(Button("Sepia"));
    EXPECT_EQ(p.Txt_EffectsStr, "Brightness:10,Sepia");
    EXPECT_FALSE(p.Pic_EffectValueBG_Visible);
    p.EffectButton_Click(Button("Color Filter"));
    EXPECT_FALSE(p.lbl_EffectValue0_Visible);
    p.EffectButton_Click(Button("None"));
    EXPECT_EQ(p.Txt_EffectsStr, "Brightness:10,");
    EXPECT_EQ(p.SelectedButton(), Button("None"));
    p.Cmd_Reset(3); // nothing to reset for "None"
    EXPECT_EQ(p.Txt_EffectsStr, "Brightness:10,");
}

TEST(EffectsPanel, ChoiceListReplacesTheWholeListAndLaysOutTheControls) {
    EffectsPanel p;
    p.SetAdjust(0, -40);
    p.Cmd_Adjust_Click(0);
    p.Cmb_Effects_Click("Waves", 320);
    EXPECT_EQ(p.Txt_EffectsStr, "Waves:0:1:0,");
    EXPECT_EQ(p.Slider_Adjust[0], -40); // the sliders keep their positions
    // Waves: slider 0, check box 0, slider 1; the controls not in use are hidden and "Not Ready".
    EXPECT_TRUE(p.EffectValues_Slider[0].Visible && p.EffectValues_CheckBox[0].Visible);
    EXPECT_TRUE(p.EffectValues_Slider[1].Visible && !p.EffectValues_CheckBox[1].Visible);
    EXPECT_EQ(p.EffectValues_ColorPicker[0].Tag, EffectsPanel::kNotReady);
    EXPECT_EQ(p.EffectValues_Slider[0].RailImage, "img_sliderrail_1.jpg");
    p.SetEffectSlider(1, 7);
    p.SetEffectCheckBox(0, 0);
    EXPECT_EQ(p.Txt_EffectsStr, "Waves:0:0:7,");
    p.SetEffectColor(0, 255); // not in use: ignored
    EXPECT_EQ(p.Txt_EffectsStr, "Waves:0:0:7,");

    p.Cmb_Effects_Click("BackDropRemoval", 320);
    EXPECT_TRUE(p.EffectValues_ColorPicker[0].Visible && p.EffectValues_ColorPicker[1].Visible);
    p.SetEffectColor(1, 255);
    EXPECT_EQ(p.Txt_EffectsStr, "BackDropRemoval:0:16777215:255,");
    p.Cmb_Effects_Click("Mirror", 320);
    EXPECT_EQ(p.EffectValues_Slider[0].Max, 320);
    EXPECT_EQ(p.Txt_EffectsStr, "Mirror:160,");
    p.Cmb_Effects_Click("Neon", 320); // in the list but unknown to the frames: a bare token
    EXPECT_EQ(p.Txt_EffectsStr, "Neon,");
    EXPECT_FALSE(p.EffectValues_GroupBox_Visible);
}

TEST(EffectsPanel, ApplyEffectsTextRestoresTheControls) {
    EffectsPanel p;
    // The window opens with the stored list in the text and the first button marked.
    p.Txt_EffectsStr = "Noise:20,Brightness:-40,Contrast:120,Mosaic:9,FlipV,Twirl:30";
    p.MarkButtonSelected(0);
    ASSERT_TRUE(p.Apply_EffectsText(p.Txt_EffectsStr));
    EXPECT_EQ(p.Slider_Adjust, (std::array<int, 3>{-40, 120, 0}));
    EXPECT_EQ(p.SelectedButton(), Button("Mosaic"));
    EXPECT_EQ(p.EffectValues_Slider[0].Value, 9);
    // Two button effects cannot stay together: the later one wins.
    EXPECT_EQ(p.Txt_EffectsStr, "Brightness:-40,Contrast:120,Mosaic:9,FlipV,Twirl:30,");

    // Only the first value comes back; the others are the controls' defaults once the effect is touched.
    EffectsPanel q;
    q.Txt_EffectsStr = "Glowing Edges:2:3,";
    ASSERT_TRUE(q.Apply_EffectsText(q.Txt_EffectsStr));
    EXPECT_EQ(q.Txt_EffectsStr, "Glowing Edges:2:2,");

    EffectsPanel empty;
    EXPECT_TRUE(empty.Apply_EffectsText(" , "));
    EXPECT_EQ(empty.SelectedButton(), -1);
    for (const char* bad : {"Brightness:abc,", "Hue,", "Mosaic:,"}) {
        EffectsPanel r;
        EXPECT_FALSE(r.Apply_EffectsText(bad)) << bad;
    }
}

TEST(EffectsPanel, PlayFilterKeepsTheTableTextAndGivesThePlayerItsOwn) {
    EffectsPanel p;
    EXPECT_EQ(p.Apply_PlayFilter("Sepia"), QString("lutyuv=y=1*clipval:u=90:v=145"));
    EXPECT_EQ(p.PlayFilter, "lutyuv=\"y=1*clipval:u=90:v=145\"");
    EXPECT_EQ(p.Apply_PlayFilter("No Effect"), std::nullopt);
    EXPECT_EQ(p.PlayFilter, "lutyuv=\"y=1*clipval:u=90:v=145\"");
}
