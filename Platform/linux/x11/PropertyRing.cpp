#include "Platform/linux/x11/PropertyRing.h"

#include "Platform/linux/x11/WindowProperties.h"

#include <algorithm>

namespace {

constexpr int ringSize = 64;
constexpr std::chrono::seconds lateAnswerTime(30);

} // namespace

PropertyRing::PropertyRing(PasteboardConnection &connection) : x(connection)
{
    std::vector<QByteArray> names;
    names.reserve(ringSize);
    for (int i = 0; i < ringSize; ++i)
        names.push_back("_NORVANE_ANSWER_" + QByteArray::number(i));
    for (const xcb_atom_t atom : internAtoms(x.raw(), names))
        ring.push_back({atom});
}

xcb_atom_t PropertyRing::take(TimePoint now)
{
    for (const bool patient : {true, false}) {
        for (int i = 0; i < ringSize; ++i) {
            Slot &slot = ring[nextSlot];
            nextSlot = (nextSlot + 1) % ring.size();
            if (slot.taken || (patient && now < slot.quietUntil))
                continue;
            slot.taken = true;
            xcb_delete_property(x.raw(), x.window(), slot.property);
            return slot.property;
        }
    }
    return XCB_ATOM_NONE;
}

void PropertyRing::giveBack(xcb_atom_t property, bool answered, TimePoint now)
{
    const auto slot =
        std::find_if(ring.begin(), ring.end(), [&](const Slot &each) { return each.property == property; });
    if (slot == ring.end())
        return;
    slot->taken = false;
    slot->quietUntil = answered ? TimePoint() : now + lateAnswerTime;
    xcb_delete_property(x.raw(), x.window(), property);
}

void PropertyRing::discard(xcb_atom_t property)
{
    const bool unused = std::any_of(
        ring.begin(), ring.end(), [&](const Slot &each) { return each.property == property && !each.taken; });
    if (unused)
        xcb_delete_property(x.raw(), x.window(), property);
}
