#include "Norvane/SlimScrollBar.h"

#include "Norvane/Palette.h"

#include <QEvent>
#include <QGuiApplication>

SlimScrollBar::SlimScrollBar(QWidget *view) : QScrollBar(Qt::Vertical, view)
{
    // The sheet keeps the bar's own palette as it is: only the view is told of a change.
    view->installEventFilter(this);
    applyColours();
}

bool SlimScrollBar::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        applyColours();
    return QScrollBar::eventFilter(watched, event);
}

void SlimScrollBar::applyColours()
{
    const QColor handle = Palette::secondary(QGuiApplication::palette());
    const QString sheet =
        QStringLiteral(
            "QScrollBar:vertical { background: transparent; border: none; width: 11px; margin: 2px; }"
            "QScrollBar::handle:vertical { background: rgba(%1, %2, %3, 45%); border-radius: 3px;"
            " min-height: 28px; }"
            "QScrollBar::handle:vertical:hover { background: rgba(%1, %2, %3, 80%); }"
            "QScrollBar::add-line:vertical, QScrollBar::sub-line:vertical { height: 0; }"
            "QScrollBar::add-page:vertical, QScrollBar::sub-page:vertical { background: none; }")
            .arg(handle.red())
            .arg(handle.green())
            .arg(handle.blue());
    if (sheet != styleSheet())
        setStyleSheet(sheet);
}
