#pragma once

#include <QWidget>
#include <functional>

class ClipIcons;
class ClipListModel;
class ClipTableView;
class FilterControl;
class Pasteboard;
class Preferences;
class PreviewPane;
class QSplitter;
class SearchField;
class QLabel;
class QToolButton;

// The panel's window and its views: layout only. Main thread.
//
// Every key pressed in it is offered to `keyHandler` first, whichever view has the focus, then to the view's
// own handler, then to the view. Escape that nobody takes calls `onCancel`.
class PopupPanel : public QWidget {
    Q_OBJECT

public:
    PopupPanel(Pasteboard &pasteboard, const Preferences &prefs, ClipListModel &model, ClipIcons &icons);

    std::function<bool(QKeyEvent *)> keyHandler;
    std::function<bool(QKeyEvent *)> fieldHandler; // keys of the search field
    std::function<void()> onCancel;

    SearchField *searchField;
    FilterControl *filterControl;
    ClipTableView *tableView;
    PreviewPane *previewPane;
    QLabel *hintLabel;
    QLabel *countLabel;
    QToolButton *menuButton; // opens the status menu; hidden where the tray has it

    void setHint(const QString &hint);

    // Shows or hides the preview; one too narrow to be of use gets its share of the width.
    void setPreviewShown(bool shown);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    [[nodiscard]] bool offerKey(QObject *watched, QKeyEvent *event);
    void applyColours();
    void elideHint();

    ClipIcons &icons;
    QSplitter *split;
    QString hint;
};
