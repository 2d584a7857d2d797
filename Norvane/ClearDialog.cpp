#include "Norvane/ClearDialog.h"

#include "Vesmo/Localisation.h"

#include <QEvent>
#include <QMessageBox>
#include <QPushButton>

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
    box = new QMessageBox(QMessageBox::Warning, QStringLiteral("Norvane"), L("Svuotare la cronologia?"),
                          QMessageBox::NoButton, panel);
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
    box->open();
}

bool ClearDialog::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Hide && box && watched == box->parent())
        box->reject();
    return QObject::eventFilter(watched, event);
}
