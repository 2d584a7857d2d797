#include "tests/platform/desktop/DesktopHarness.h"

#include "Platform/linux/x11/WindowProperties.h"
#include "Platform/linux/x11/XcbXkb.h"

#include <QGuiApplication>
#include <QVBoxLayout>
#include <gtest/gtest.h>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

Hand::Hand() : connection(XcbConnection::open()) {}

Hand::~Hand()
{
    settle();
}

void Hand::press(int key, unsigned delay)
{
    xcb_test_fake_input(connection->raw(), firstKeyEvent, static_cast<uint8_t>(key), delay, 0, 0, 0,
                        keyboard);
    connection->flush();
}

void Hand::release(int key, unsigned delay)
{
    const auto event = static_cast<uint8_t>(firstKeyEvent + 1);
    xcb_test_fake_input(connection->raw(), event, static_cast<uint8_t>(key), delay, 0, 0, 0, keyboard);
    connection->flush();
}

void Hand::useAnotherKeyboard()
{
    const auto *input = connection->extension(xcb_input_id);
    const XcbReply<xcb_input_xi_query_device_reply_t> devices(xcb_input_xi_query_device_reply(
        connection->raw(), xcb_input_xi_query_device(connection->raw(), XCB_INPUT_DEVICE_ALL), nullptr));
    ASSERT_TRUE(input && devices);
    for (auto each = xcb_input_xi_query_device_infos_iterator(devices.get()); each.rem > 0;
         xcb_input_xi_device_info_next(&each)) {
        const std::string name(xcb_input_xi_device_info_name(each.data),
                               static_cast<size_t>(xcb_input_xi_device_info_name_length(each.data)));
        if (each.data->type == XCB_INPUT_DEVICE_TYPE_SLAVE_KEYBOARD &&
            name.find("XTEST") == std::string::npos) {
            keyboard = static_cast<uint8_t>(each.data->deviceid);
            firstKeyEvent = static_cast<uint8_t>(input->first_event + XCB_INPUT_DEVICE_KEY_PRESS);
        }
    }
    ASSERT_NE(keyboard, 0) << "no keyboard but that of the test extension";
}

void Hand::tap(int key)
{
    press(key);
    release(key);
}

void Hand::chord(std::initializer_list<int> keys)
{
    for (const int key : keys)
        press(key);
    for (auto key = std::rbegin(keys); key != std::rend(keys); ++key)
        release(*key);
}

void Hand::click(QPoint place)
{
    pressButton(1, place);
}

void Hand::wheel(QPoint place)
{
    pressButton(5, place);
}

void Hand::pressButton(uint8_t button, QPoint place)
{
    xcb_test_fake_input(connection->raw(), XCB_MOTION_NOTIFY, 0, 0, connection->root(),
                        static_cast<int16_t>(place.x()), static_cast<int16_t>(place.y()), 0);
    xcb_test_fake_input(connection->raw(), XCB_BUTTON_PRESS, button, 0, 0, 0, 0, 0);
    xcb_test_fake_input(connection->raw(), XCB_BUTTON_RELEASE, button, 0, 0, 0, 0, 0);
    connection->flush();
}

void Hand::setFocus(quint32 window)
{
    const XcbReply<xcb_generic_error_t> refused(xcb_request_check(
        connection->raw(),
        xcb_set_input_focus_checked(connection->raw(), XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME)));
    EXPECT_FALSE(refused) << "X error " << int(refused ? refused->error_code : 0);
}

quint32 Hand::focus()
{
    const XcbReply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(connection->raw(), xcb_get_input_focus(connection->raw()), nullptr));
    return reply ? reply->focus : 0;
}

bool Hand::isDown(int key)
{
    const XcbReply<xcb_query_keymap_reply_t> keys(
        xcb_query_keymap_reply(connection->raw(), xcb_query_keymap(connection->raw()), nullptr));
    return keys && (keys->keys[key / 8] >> (key % 8) & 1) != 0;
}

void Hand::unlock()
{
    const XcbReply<xcb_xkb_use_extension_reply_t> usable(xcb_xkb_use_extension_reply(
        connection->raw(), xcb_xkb_use_extension(connection->raw(), 1, 0), nullptr));
    xcb_xkb_latch_lock_state(connection->raw(), XCB_XKB_ID_USE_CORE_KBD, 0xff, 0, 1, 0, 0, 0, 0);
    settle();
}

int Hand::modifiers()
{
    const XcbReply<xcb_query_pointer_reply_t> pointer(xcb_query_pointer_reply(
        connection->raw(), xcb_query_pointer(connection->raw(), connection->root()), nullptr));
    return pointer ? pointer->mask & 0xff : -1;
}

void Hand::makeDock(QWidget &widget)
{
    const auto window = static_cast<quint32>(widget.winId());
    QGuiApplication::sync();
    const xcb_atom_t dock = connection->atom("_NET_WM_WINDOW_TYPE_DOCK");
    xcb_change_property(connection->raw(), XCB_PROP_MODE_REPLACE, window,
                        connection->atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM, 32, 1, &dock);
    settle();
}

void Hand::settle()
{
    static_cast<void>(focus());
}

Neighbour::Neighbour()
{
    QObject::connect(&process, &QProcess::readyReadStandardOutput, &process, [this] { read(); });
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QStringLiteral(NEIGHBOUR), QStringList());
    EXPECT_TRUE(QTest::qWaitFor([this] { return window != 0 && focused; }, 15000)) << "no neighbour";
}

Neighbour::~Neighbour()
{
    process.closeWriteChannel();
    if (process.state() != QProcess::NotRunning && !process.waitForFinished(5000))
        process.kill();
}

QPoint Neighbour::middle() const
{
    Hand hand;
    xcb_connection_t *connection = hand.server().raw();
    const XcbReply<xcb_get_geometry_reply_t> size(
        xcb_get_geometry_reply(connection, xcb_get_geometry(connection, window), nullptr));
    if (!size)
        return {};
    const XcbReply<xcb_translate_coordinates_reply_t> place(
        xcb_translate_coordinates_reply(connection,
                                        xcb_translate_coordinates(connection, window, hand.server().root(),
                                                                  static_cast<int16_t>(size->width / 2),
                                                                  static_cast<int16_t>(size->height / 2)),
                                        nullptr));
    return place ? QPoint(place->dst_x, place->dst_y) : QPoint();
}

void Neighbour::kill()
{
    process.kill();
    process.waitForFinished(5000);
}

void Neighbour::read()
{
    while (process.canReadLine()) {
        const QString line = QString::fromUtf8(process.readLine()).chopped(1);
        const QString rest = line.section(QLatin1Char(' '), 1);
        if (line.startsWith(u"window "))
            window = rest.toUInt();
        else if (line.startsWith(u"text"))
            text = rest;
        else if (line == u"focused" || line == u"unfocused")
            focused = line == u"focused";
        else if (line == u"owned")
            owned = true;
        else if (line.startsWith(u"report "))
            lastReport = Report{rest.section(QLatin1Char(' '), 0, 0).toInt(),
                                rest.section(QLatin1Char(' '), 1).toInt()};
    }
}

void Neighbour::order(const QByteArray &line)
{
    process.write(line + '\n');
}

bool Neighbour::waitForText(const QString &wanted)
{
    return QTest::qWaitFor([&] { return text == wanted; }, 5000);
}

bool Neighbour::waitForFocus(bool wanted)
{
    return QTest::qWaitFor([&] { return focused == wanted; }, 5000);
}

bool Neighbour::own(const QByteArray &content)
{
    owned = false;
    order("own " + content);
    return QTest::qWaitFor([this] { return owned; }, 5000);
}

Neighbour::Report Neighbour::report()
{
    lastReport.reset();
    order("report");
    static_cast<void>(QTest::qWaitFor([this] { return lastReport.has_value(); }, 5000));
    return lastReport.value_or(Report());
}

Panel::Panel() : field(new QLineEdit)
{
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(field);
    field->setFocus();
}

bool runsUnderWindowManager()
{
    return !qEnvironmentVariableIsEmpty("NORVANE_WM");
}

Layout::Layout(const QStringList &arguments)
{
    EXPECT_EQ(QProcess::execute(QStringLiteral("setxkbmap"), arguments), 0);
}

Layout::~Layout()
{
    Hand().unlock();
    QProcess::execute(QStringLiteral("setxkbmap"), {QStringLiteral("us")});
}

Lock::Lock(Hand &whose, int which) : hand(whose), key(which)
{
    hand.tap(key);
    hand.settle();
}

Lock::~Lock()
{
    hand.unlock();
}
