#include "Norvane/FirstFrame.h"

#include "Norvane/ClipTitles.h"
#include "Norvane/FilterControl.h"
#include "Norvane/Theme.h"
#include "tests/windows/MemoryDesktop.h"

#include <QApplication>
#include <QLabel>
#include <QScreen>

namespace {

// Keeps the toolkit from painting anything after the first frame.
class NoSecondFrame : public QObject {
public:
    NoSecondFrame() { qApp->installEventFilter(this); }

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        return event->type() == QEvent::UpdateRequest || event->type() == QEvent::UpdateLater;
    }
};

class PaintWatch : public QObject {
public:
    explicit PaintWatch(QWidget *widget) : watched(widget) { qApp->installEventFilter(this); }
    bool painted = false;

protected:
    bool eventFilter(QObject *receiver, QEvent *event) override
    {
        painted |= receiver == watched && event->type() == QEvent::Paint;
        return false;
    }

private:
    QWidget *watched;
};

class FirstFrameTest : public MemoryPanel {
public:
    ~FirstFrameTest() override { QApplication::setPalette(QPalette()); }

protected:
    FirstFrameTest()
    {
        for (const char *text : {"uno", "due", "tre"})
            addText(text);
        popup.show(); // which lays it out
        popup.hide();
        EXPECT_TRUE(isPrepared());
    }

    // The picture is made when the changes have come to rest.
    bool isPrepared(int bound = 5000)
    {
        PaintWatch watch(panel.filterControl);
        return QTest::qWaitFor([&watch] { return watch.painted; }, bound);
    }

    QImage screen() { return panel.screen()->grabWindow(panel.winId()).toImage(); }

    // Opens the panel, and gives its first frame and what a whole painting of it shows.
    std::pair<QImage, QImage> open()
    {
        QImage first;
        {
            const NoSecondFrame onlyOne;
            popup.show();
            EXPECT_TRUE(QTest::qWaitForWindowExposed(&panel));
            QCoreApplication::processEvents();
            first = screen();
        }
        panel.repaint();
        return {first, screen()};
    }
};

} // namespace

TEST_F(FirstFrameTest, ShowsThePanelAsItIsWhateverChangedWhileItWasHidden)
{
    const std::pair<const char *, std::function<void()>> changes[] = {
        {"nothing", [] {}},
        {"a copy", [this] { addText("quattro"); }},
        {"a pin", [this] { store.setPinned(store.clips()[1], true); }},
        {"no preview", [this] { prefs.setShowPreview(false); }},
        {"the size", [this] { panel.resize(panel.width() + 60, panel.height() + 30); }},
        {"the menu's button", [this] { popup.setMenuButtonVisible(true); }},
        {"the colours", [] { QApplication::setPalette(Theme::darkPalette()); }},
    };
    for (const auto &[what, change] : changes) {
        for (const bool prepared : {false, true}) {
            change();
            if (prepared)
                static_cast<void>(isPrepared(400)); // some changes call for no picture
            const auto [first, whole] = open();
            ASSERT_FALSE(first.isNull());
            EXPECT_EQ(first, whole) << what << (prepared ? ", at rest" : ", just before");
            popup.hide();
            EXPECT_TRUE(isPrepared());
        }
    }
}

TEST_F(FirstFrameTest, ShowsTheAgesOfTheOpening)
{
    age = 44; // seconds: one more, and it is no longer "now"
    const ClipPointer clip = addText("vecchio");
    const QString before = detailText(*clip);
    EXPECT_TRUE(isPrepared());
    ASSERT_TRUE(QTest::qWaitFor([&] { return detailText(*clip) != before; }));
    const auto [first, whole] = open();
    EXPECT_EQ(first, whole);
}

TEST_F(FirstFrameTest, IsPaintedBeforeTheOpening)
{
    panel.countLabel->setText("changed behind its back");
    const auto [first, whole] = open();
    EXPECT_NE(first, whole);
}
