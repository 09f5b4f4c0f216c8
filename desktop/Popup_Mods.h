// The program's popups as plain data: the splash at start, the getting-started hint, the image overlay
// that a second program asks for, and the note at the end of a batch. Each use is a pure function from
// screen and window rectangles to a PopupProps, which PopupWindow shows; nothing here touches a window,
// so tests check every use headless. Pure functions: any thread may call them.
#pragma once

#include <QColor>
#include <QImage>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <QString>

#include <vector>

namespace morvane {

enum PopupAnimation : int { Popup_None = 0, Popup_Fade = 1, Popup_Slide = 2, Popup_Unfold = 3 };

// What the owner sees: a popup is on screen (animating in, staying or animating out) or gone.
enum PopupState : int { Popup_Hidden = 0, Popup_Showing = 2 };

// Delays and transparency beyond these are clamped.
inline constexpr int kPopupMaxDelay = 600000; // ms, ten minutes
inline constexpr int kPopupOpaque = 255;

// A text or an icon in the popup, in window pixels (right and bottom exclusive). An item with an Id is
// a link: a click inside its rectangle reports the Id.
struct PopupItem {
    QString Text{};
    int Icon = 0;     // the list's state icon by number (Skin_StateIcon); 0 for a text item
    QSize IconSize{}; // an icon is drawn at Left, Top with this size, whatever the rectangle says
    int Left = 0;
    int Top = 0;
    int Right = 0;
    int Bottom = 0;
    QColor Color{}; // invalid: the theme's text colour
    int Id = 0;

    QRect rect() const { return {Left, Top, Right - Left, Bottom - Top}; }
    bool operator==(const PopupItem&) const = default;
};

struct PopupProps {
    int Transparency = kPopupOpaque; // 0 clear .. 255 opaque; the window's opacity is this / 255
    int ShowDelay = 0;               // ms on screen between the animations
    int AnimateDelay = 0;            // ms of each of the two animations
    int Animation = Popup_None;
    QSize Size;
    QPoint Position;
    QString Picture; // the background's file; read when Image is null
    QImage Image;    // the background itself; with neither, the theme's window colour and a frame
    std::vector<PopupItem> Items;
};

// 0..255.
int clampTransparency(int transparency);
// A delay typed as text ("5000", " 250 "): 0 for blanks, junk and negatives, kPopupMaxDelay at most.
int clampDelay(const QString& text);
// none 0, fade 1, slide 2, unfold 3, in any case; any other word keeps the previous animation.
int effectFromWord(int previous, const QString& word);

// The rectangle moved as little as needed to lie on the screen; a rectangle larger than the screen
// keeps its top-left corner on it.
QPoint keepOnScreen(const QRect& wanted, const QRect& screen);

// The start picture: 579 x 403, centred on the screen, no animation, 5 s.
QSize splashSize();
PopupProps splashProps(const QRect& screen, const QString& picturePath);

// The getting-started hint, 360 x 112, fading in below the main window's toolbar where Add Files is.
QSize tagHintSize();
PopupProps tagHintProps(const QRect& mainFrame, const QRect& screen, const QString& picturePath);

// The image overlay: the image at its own size, scaled down to fit the screen, centred on it. Delays from
// their texts; the effect word as effectFromWord over the previous popup's animation. An empty image
// size gives an empty Size: there is nothing to show.
PopupProps tagPopupProps(const PopupProps& previous, QSize imageSize, const QRect& screen,
                         const QString& showDelay, const QString& animateDelay, const QString& effect);

// The note at the end of a batch, 270 x 100 in the screen's bottom-right corner, sliding in: the done
// icon, "Conversion is completed !" and the link "Open output folder..." with id kOpenOutputLink.
inline constexpr int kOpenOutputLink = 6;
PopupProps donePopupProps(int animateDelay, int showDelay, int transparency, const QRect& screen);

} // namespace morvane
