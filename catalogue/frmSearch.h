// The preset search window: a small modal dialog that filters the preset table while the user types
// and hands the chosen hit to the browser.
//
// Controls (objectNames as here): Txt_Search, the query box, with Cmd_Search inside it (the clear
// button, disabled while the box is empty); View_Found, the hits with the columns "Preset", "Maker",
// "Keyword"; lbl_TotalPreset, the count; Cmd_Panels_0 accepts and Cmd_Panels_1 closes; Timer_OK_Button
// keeps the enabling in step.
//
// Accepting (button 0, Enter on the hits or in the box, a double click on a hit) reads the three cells
// of the hit, trimmed, calls select with them and closes the window, whatever select answers (it tells
// the user itself when it fails). Escape and button 1 close without a selection.
//
// The window holds a reference to the preset table, which must outlive it. Main thread only.
#pragma once

#include "CatalogueTable.h"

#include <QDialog>
#include <QString>

#include <array>
#include <functional>

class QLabel;
class QLineEdit;
class QPushButton;
class QTableView;
class QTimer;
class QToolButton;

namespace morvane {

class frmSearch : public QDialog {
    Q_OBJECT
public:
    using SelectFunction =
        std::function<bool(const QString& name, const QString& maker, const QString& keyword)>;

    frmSearch(const CatalogueTable& presetTable, SelectFunction select, QWidget* parent = nullptr);

    // The hits of the current query, as the view shows them.
    const CatalogueTable& found() const { return m_found; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void setupConnections();
    void Txt_Search_Change();
    void Timer_OK_Button_Timer();
    void Accept_Row(int row);
    int selectedRow() const;

    const CatalogueTable& m_presetTable;
    SelectFunction m_select;
    CatalogueTable m_found;
    class Model;
    Model* m_model = nullptr;

    QLineEdit* Txt_Search = nullptr;
    QToolButton* Cmd_Search = nullptr;
    QTableView* View_Found = nullptr;
    QLabel* lbl_TotalPreset = nullptr;
    std::array<QPushButton*, 2> Cmd_Panels{};
    QTimer* Timer_OK_Button = nullptr;
    int m_searchPicture = -1; // the picture Cmd_Search shows: 0 empty box, 1 text; set only when it changes
    bool m_accepting = false;
};

} // namespace morvane
