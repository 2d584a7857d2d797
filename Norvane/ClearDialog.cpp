#include "Norvane/ClearDialog.h"

#include "Norvane/Palette.h"
#include "Vesmo/Localisation.h"

#include <QEvent>
#include <QGridLayout>
#include <QMessageBox>
#include <QPainter>
#include <QPushButton>

namespace {

constexpr qreal textWidth = 300; // points

// Draws its own edge where no window manager does.
class Question : public QMessageBox {
public:
    explicit Question(QWidget *panel)
        : QMessageBox(QMessageBox::Warning, QStringLiteral("Norvane"), L("Svuotare la cronologia?"), NoButton,
                      panel)
    {
    }

protected:
    void paintEvent(QPaintEvent *event) override
    {
        QMessageBox::paintEvent(event);
        if (!windowFlags().testFlag(Qt::BypassWindowManagerHint))
            return;
        QPainter painter(this);
        painter.setPen(Palette::secondary(palette()));
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
};

// The box would be as wide as its title needs, and break the sentence into a column.
void widen(QMessageBox *box)
{
    auto *grid = qobject_cast<QGridLayout *>(box->layout());
    if (grid)
        grid->addItem(new QSpacerItem(Metrics::scaled(textWidth), 0), grid->rowCount(), 0, 1,
                      grid->columnCount());
}

} // namespace

ClearDialog::~ClearDialog()
{
    delete box;
}

void ClearDialog::ask(QWidget *panel)
{
    if (!box)
        open(panel);
    box->raise();
    box->activateWindow();
}

void ClearDialog::open(QWidget *panel)
{
    box = new Question(panel);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setTextFormat(Qt::PlainText);
    box->setInformativeText(L("Gli elementi fissati restano. Non si può annullare."));
    const auto *clear = box->addButton(L("Svuota"), QMessageBox::DestructiveRole);
    auto *cancel = box->addButton(L("Annulla"), QMessageBox::RejectRole);
    box->setDefaultButton(cancel);
    box->setEscapeButton(cancel);
    if (panel) {
        // A window that the window manager places would lie beneath the panel.
        box->setWindowFlag(Qt::BypassWindowManagerHint);
        panel->installEventFilter(this);
    }
    connect(box, &QMessageBox::finished, this, [this, clear] {
        const bool confirmed = box && box->clickedButton() == clear;
        box = nullptr; // deletes itself; the next question is a new one
        if (confirmed && onConfirm)
            onConfirm();
    });
    widen(box);
    box->open();
}

bool ClearDialog::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Hide && box && watched == box->parent())
        box->reject();
    return QObject::eventFilter(watched, event);
}
