#include "Norvane/PopupPanel.h"

#include "Norvane/ClipIcons.h"
#include "Norvane/ClipViews.h"
#include "Norvane/FilterControl.h"
#include "Norvane/Palette.h"
#include "Norvane/PanelEdges.h"
#include "Norvane/PanelPlacement.h"
#include "Norvane/PreviewPane.h"
#include "Norvane/SearchField.h"
#include "Norvane/store/ClipSearch.h"
#include "Vesmo/Localisation.h"

#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QSplitter>
#include <QToolButton>
#include <QVBoxLayout>

using Metrics::scaled;

namespace {

constexpr qreal panelRadius = 12;
constexpr int listWidth = 280, previewWidth = 180; // at least
constexpr int narrowPreview = 60;
constexpr int dividerWidth = 5;
constexpr double listShare = 0.55;

QStringList filterLabels()
{
    QStringList labels;
    for (int i = 0; i < clipFilterCount; ++i)
        labels << title(static_cast<ClipFilter>(i));
    return labels;
}

// A one-pixel line across the panel.
class Separator : public QWidget {
public:
    explicit Separator(QWidget *parent) : QWidget(parent)
    {
        setFixedHeight(1);
        setAttribute(Qt::WA_TransparentForMouseEvents);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter(this).fillRect(rect(), Palette::separator(palette()));
    }
};

// A thin line that is wider to the mouse than to the eye.
class DividerHandle : public QSplitterHandle {
public:
    using QSplitterHandle::QSplitterHandle;

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter(this).fillRect(width() / 2, 0, 1, height(), Palette::separator(palette()));
    }
};

class DividedViews : public QSplitter {
public:
    explicit DividedViews(QWidget *parent) : QSplitter(Qt::Horizontal, parent)
    {
        setHandleWidth(dividerWidth);
    }

protected:
    QSplitterHandle *createHandle() override { return new DividerHandle(orientation(), this); }
};

} // namespace

PopupPanel::PopupPanel(Pasteboard &pasteboard, const Preferences &prefs, ClipListModel &model,
                       ClipIcons &givenIcons)
    : icons(givenIcons)
{
    setObjectName(QStringLiteral("history"));
    setWindowTitle(QStringLiteral("Norvane"));
    setMinimumSize(PanelPlacement::minimumSize.toSize());

    searchField = new SearchField(pasteboard, icons, this);
    searchField->setPlaceholderText(L("Cerca negli appunti…"));
    searchField->setAccessibleName(L("Cerca negli appunti…"));
    filterControl = new FilterControl(filterLabels(), this);
    filterControl->setAccessibleName(L("Filtro"));
    tableView = new ClipTableView(model, icons, this);
    tableView->setAccessibleName(L("Cronologia"));
    previewPane = new PreviewPane(pasteboard, prefs, this);
    hintLabel = new QLabel(this);
    countLabel = new QLabel(this);

    tableView->setMinimumWidth(listWidth);
    previewPane->setMinimumWidth(previewWidth);
    split = new DividedViews(this);
    split->setChildrenCollapsible(false);
    split->addWidget(tableView);
    split->addWidget(previewPane);
    split->setStretchFactor(0, 0); // resizing changes the preview's width first
    split->setStretchFactor(1, 1);

    auto *top = new QHBoxLayout;
    top->setContentsMargins(scaled(12), scaled(12), scaled(12), 0);
    top->setSpacing(scaled(10));
    top->addWidget(searchField, 1);
    top->addWidget(filterControl);

    hintLabel->setFont(Metrics::font(11));
    hintLabel->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    hintLabel->setTextFormat(Qt::PlainText);
    countLabel->setFont(Metrics::font(11));
    countLabel->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    countLabel->setTextFormat(Qt::PlainText);
    menuButton = new QToolButton(this);
    menuButton->setAutoRaise(true);
    menuButton->setFocusPolicy(Qt::NoFocus);
    menuButton->setFixedSize(scaled(20), scaled(16));
    menuButton->setIconSize(QSize(scaled(12), scaled(12)));
    menuButton->setAccessibleName(L("Menu"));
    menuButton->hide();
    auto *bottom = new QHBoxLayout;
    bottom->setContentsMargins(scaled(14), scaled(6), scaled(14), scaled(8));
    bottom->setSpacing(scaled(10));
    bottom->addWidget(hintLabel, 1);
    bottom->addWidget(countLabel);
    bottom->addWidget(menuButton);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(top);
    layout->addSpacing(scaled(10));
    layout->addWidget(new Separator(this));
    layout->addWidget(split, 1);
    layout->addWidget(new Separator(this));
    layout->addLayout(bottom);

    for (QObject *view : {static_cast<QObject *>(searchField), static_cast<QObject *>(tableView),
                          static_cast<QObject *>(&previewPane->text())})
        view->installEventFilter(this);
    new PanelEdges(this);
    applyColours();
}

void PopupPanel::setHint(const QString &text)
{
    hint = text;
    hintLabel->setAccessibleName(text);
    elideHint();
}

void PopupPanel::setPreviewShown(bool shown)
{
    previewPane->setVisible(shown);
    layout()->activate();
    if (shown && split->sizes().value(1) < std::max(narrowPreview, previewWidth)) {
        const int listPart = static_cast<int>(listShare * split->width());
        split->setSizes({listPart, split->width() - listPart});
    }
}

bool PopupPanel::offerKey(QObject *watched, QKeyEvent *event)
{
    if (keyHandler && keyHandler(event))
        return true;
    return watched == searchField && fieldHandler && fieldHandler(event);
}

bool PopupPanel::eventFilter(QObject *watched, QEvent *event)
{
    // Tab would move the focus and shortcuts of the toolkit would act before a view sees the key.
    if (event->type() == QEvent::ShortcutOverride) {
        event->accept();
        return false;
    }
    if (event->type() == QEvent::KeyPress)
        return offerKey(watched, static_cast<QKeyEvent *>(event));
    return QWidget::eventFilter(watched, event);
}

void PopupPanel::keyPressEvent(QKeyEvent *event)
{
    if (keyHandler && keyHandler(event))
        return;
    if (event->key() == Qt::Key_Escape && onCancel)
        onCancel();
    else
        QWidget::keyPressEvent(event);
}

void PopupPanel::paintEvent(QPaintEvent *)
{
    const QColor background = palette().color(QPalette::Active, QPalette::Window);
    const bool drawsCorners = testAttribute(Qt::WA_TranslucentBackground) && mask().isEmpty();
    QPainter painter(this);
    if (!drawsCorners)
        painter.fillRect(rect(), background);
    painter.setRenderHint(QPainter::Antialiasing);
    if (drawsCorners) { // the whole area first: the line is translucent, and half of it lies outside its
                        // middle
        painter.setPen(Qt::NoPen);
        painter.setBrush(background);
        painter.drawRoundedRect(rect(), panelRadius, panelRadius);
    }
    painter.setPen(Palette::separator(palette()));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), panelRadius, panelRadius);
}

void PopupPanel::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    elideHint();
}

void PopupPanel::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        applyColours();
    QWidget::changeEvent(event);
}

void PopupPanel::applyColours()
{
    for (QLabel *label : {hintLabel, countLabel}) {
        QPalette colours;
        colours.setColor(QPalette::WindowText, Palette::secondary(palette()));
        label->setPalette(colours);
    }
    menuButton->setIcon(
        icons.symbol(QStringLiteral("menu"), scaled(12), Palette::secondary(palette()), devicePixelRatioF()));
}

void PopupPanel::elideHint()
{
    layout()->activate();
    hintLabel->setText(hintLabel->fontMetrics().elidedText(hint, Qt::ElideRight, hintLabel->width()));
}
