// A frameless, timed popup on top of every window: it animates in (fade, slide or unfold), stays its show
// delay, animates out the same way and hides. It never takes the keyboard and nothing ever waits on it:
// every step is a timer or an animation of the event loop. A click on a link reports its id; a click
// anywhere else closes it. The owner keeps one PopupWindow per use and may show it again at any time;
// showing while it is up starts over. Main thread only.
#pragma once

#include "Popup_Mods.h"

#include <QPixmap>
#include <QPropertyAnimation>
#include <QTimer>
#include <QWidget>

namespace morvane {

class PopupWindow : public QWidget {
    Q_OBJECT
    // 0 before the way in, 1 on screen in full; the animation drives it both ways.
    Q_PROPERTY(qreal progress READ progress WRITE setProgress)
public:
    explicit PopupWindow(QWidget* parent = nullptr);
    ~PopupWindow() override;

    // Applies the properties and starts the way in. Named apart from QWidget::show, which it uses.
    void showPopup(const PopupProps& props);
    // Hides at once, without the way out; nothing when hidden.
    void closePopup();

    int state() const { return m_state; } // Popup_Hidden or Popup_Showing
    bool isShowing() const { return m_state == Popup_Showing; }
    const PopupProps& props() const { return m_props; }

    qreal progress() const { return m_progress; }
    void setProgress(qreal progress);

signals:
    void linkActivated(int id);
    void closed(); // hidden, by time, by a click or by closePopup

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void animationDone();
    void stay();
    void startOut();
    int linkAt(QPoint pos) const;
    QPoint slideStart() const;

    PopupProps m_props;
    QPixmap m_picture;
    int m_state = Popup_Hidden;
    bool m_out = false; // the animation runs the way out
    int m_pressedLink = 0;
    qreal m_progress = 1;
    QPropertyAnimation m_animation;
    QTimer m_stay;
};

// The four uses. Each shows its popup and returns at once.

// At start: the program's start picture, drawn here and passed through Folder_Temp + "tmp0001.png";
// centred on the primary screen for 5 s. A failed write shows the picture from memory.
void Show_Splash(PopupWindow& popup);
// Once at start: the getting-started hint below the main window's toolbar (mainFrame: its frame
// geometry). The skin's "img_tag_gettingstarted.png" when the theme has one, a drawn hint otherwise.
void Show_TagHint(PopupWindow& popup, const QRect& mainFrame);
// The image overlay of the command channel. Closes the popup first; false, showing nothing, when the
// image cannot be read.
bool Show_TagPopup(PopupWindow& popup, const QString& imagePath, const QString& showDelay,
                   const QString& animateDelay, const QString& effect);
// At the end of a batch, in the screen's bottom-right corner; its link reports kOpenOutputLink.
void Show_DonePopup(PopupWindow& popup, int animateDelay, int showDelay, int transparency);

// The drawn pictures, also for tests.
QImage Splash_Picture(const QString& productName, const QString& version);
QImage TagHint_Picture();

} // namespace morvane
