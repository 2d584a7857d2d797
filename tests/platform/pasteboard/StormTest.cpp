#include "tests/platform/pasteboard/PasteboardTest.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QImage>
#include <QTimer>
#include <atomic>
#include <thread>

// Many changes at once, from threads that know nothing of each other.

namespace {

// Qt's own X11 event thread is not built for the thread sanitizer, and no window of Qt's is needed here.
const bool withoutQtOnX11 = qputenv("QT_QPA_PLATFORM", "offscreen");

class StormTest : public PasteboardTest {};

// Claims again and again, and answers nobody, on a connection of its own.
void claimOften(int times)
{
    xcb_connection_t *connection = xcb_connect(nullptr, nullptr);
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const xcb_window_t window = xcb_generate_id(connection);
    xcb_create_window(connection, 0, window, root, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, 0, 0, nullptr);
    auto *atom = xcb_intern_atom_reply(connection, xcb_intern_atom(connection, 0, 9, "CLIPBOARD"), nullptr);
    for (int i = 0; i < times; ++i) {
        xcb_set_selection_owner(connection, window, atom->atom, XCB_CURRENT_TIME);
        std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    }
    std::free(atom);
    xcb_disconnect(connection);
}

} // namespace

TEST_F(StormTest, AThousandClaimsAreCountedAndDoNotStallTheMainThread)
{
    const qint64 before = pasteboard->changeCount();
    std::atomic<bool> over = false;
    std::thread storm([&] {
        claimOften(1000);
        over = true;
    });
    qint64 longest = 0;
    QElapsedTimer sinceTurn;
    sinceTurn.start();
    QTimer beat;
    QObject::connect(&beat, &QTimer::timeout, &beat,
                     [&] { longest = std::max(longest, sinceTurn.restart()); });
    beat.start(1);
    EXPECT_TRUE(await([&] { return over.load(); }, 20000));
    storm.join();

    Owner last;
    last.offer("UTF8_STRING", "after the storm");
    last.claim();
    settle();
    EXPECT_EQ(bytes(PasteboardType::plainText), QByteArray("after the storm"));
    EXPECT_EQ(pasteboard->changeCount(), before + 1001);
    EXPECT_LT(std::max(longest, sinceTurn.elapsed()), 250);
}

TEST_F(StormTest, WritesInAStormEndWithTheRealOwnersContent)
{
    for (int round = 0; round < 5; ++round) {
        std::thread storm([] { claimOften(200); });
        for (int i = 0; i < 100; ++i)
            pasteboard->write({textItem(QByteArray::number(i))});
        storm.join();
        pasteboard->write({textItem("mine")});
        settle();
        EXPECT_EQ(bytes(PasteboardType::plainText), QByteArray("mine"));
        Requestor requestor;
        EXPECT_EQ(requestor.text(), QByteArray("mine"));
    }
}

TEST_F(StormTest, APictureUnderWayGivesWayToTheNextCopy)
{
    QImage image(1200, 1200, QImage::Format_RGB32);
    image.fill(Qt::darkGreen);
    QByteArray bitmap;
    QBuffer buffer(&bitmap);
    image.save(&buffer, "bmp");
    Owner first;
    first.offer("image/bmp", bitmap);
    Owner second;
    second.offer("UTF8_STRING", "second");
    const qint64 before = pasteboard->changeCount();
    for (int round = 0; round < 5; ++round) {
        first.claim();
        EXPECT_TRUE(await([&] { return first.wasAskedFor("image/bmp"); }));
        first.asked.clear();
        if (round % 2) {
            settle();
            EXPECT_EQ(types(), (QStringList{"image/bmp", "public.png"}));
        }
        second.claim();
        settle();
        EXPECT_EQ(types(), QStringList{"public.utf8-plain-text"});
    }
    EXPECT_EQ(pasteboard->changeCount(), before + 10);
}

TEST_F(StormTest, ManyPasteboardsComeAndGo)
{
    Owner owner;
    owner.offer("UTF8_STRING", "steady");
    owner.claim();
    for (int i = 0; i < 20; ++i) {
        auto another = X11Pasteboard::create(std::make_shared<ClassNames>());
        ASSERT_TRUE(another);
        another->readText([](const QString &) {});
        if (i % 2)
            another->write({textItem("x")});
        if (i % 3)
            another->ownPrimary();
    }
    settle();
}
