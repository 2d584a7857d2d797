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

    // Setting these would change texts only: no row appears or goes.
    [[nodiscard]] bool hasShapeOf(const std::vector<ClosureMenuItem> &items) const;

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    struct Group {
        std::vector<QAction *> rows;
        QAction *separator = nullptr; // before the rows; none before the first group
        qsizetype shown = 0;
    };
    using Groups = std::vector<std::vector<ClosureMenuItem>>;

    [[nodiscard]] static Groups grouped(const std::vector<ClosureMenuItem> &items);
    void fill(Group &group, const std::vector<ClosureMenuItem> &items, QAction *before);
    [[nodiscard]] QAction *makeRow(QAction *before);
    void setRow(QAction *row, const ClosureMenuItem &item);
    [[nodiscard]] QIcon iconOf(const ClosureMenuItem &item) const;

    MenuHost host;
    std::unique_ptr<QStyle> rowStyle;
    std::vector<Group> groups;
    QHash<const QAction *, std::function<void()>> handlers;
};
