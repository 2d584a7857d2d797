#pragma once

#include "Platform/ClosureMenuItem.h"

#include <QMenu>
#include <vector>

// Who draws the menu: we do, or a tray that was told its rows over D-Bus.
enum class MenuHost { widget, exported };

// A title as the host must be given it to show just that text.
[[nodiscard]] QString literalMenuTitle(const QString &title, MenuHost host);

// A menu whose rows are made once and then only change their texts: trays that are told of new rows while
// they open a menu close it again. Rows are kept by group (what stands between two separators); one that is
// not needed is hidden. The keys of the rows choose them while the menu is open, and never else. Main thread.
class TrayMenu : public QMenu {
    Q_OBJECT

public:
    explicit TrayMenu(MenuHost host);
    ~TrayMenu() override;

    void setItems(const std::vector<ClosureMenuItem> &items);

    // Sets what the rows that are there can show of these: none appears, and one goes only when it has
    // nothing left to show.
    void setTexts(const std::vector<ClosureMenuItem> &items);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    struct Row {
        QAction *action = nullptr;
        ClosureMenuItem item; // what it shows and runs
    };
    struct Group {
        std::vector<std::unique_ptr<Row>> rows;
        QAction *separator = nullptr; // before the rows; none before the first group
        size_t shown = 0;             // rows
    };
    using Groups = std::vector<std::vector<ClosureMenuItem>>;

    [[nodiscard]] static Groups grouped(const std::vector<ClosureMenuItem> &items);
    void fill(Group &group, const std::vector<ClosureMenuItem> &items, QAction *before);
    [[nodiscard]] std::unique_ptr<Row> makeRow(QAction *before);
    void setRow(Row &row, const ClosureMenuItem &item);
    [[nodiscard]] QIcon iconOf(const ClosureMenuItem &item) const;

    MenuHost host;
    std::unique_ptr<QStyle> rowStyle;
    std::vector<Group> groups;
};
