#pragma once

#include "Platform/linux/x11/PasteboardConnection.h"

// The properties of our window into which other programs put their answers.
//
// A name is used by one conversion at a time and comes back only after all others, so that an answer that
// comes after its time-out meets no other conversion. What arrives under a name that is not in use is deleted
// at once: a late INCR owner is drained that way and ends cleanly.
class PropertyRing {
public:
    explicit PropertyRing(PasteboardConnection &connection);

    // A name that is not in use; XCB_ATOM_NONE when all are.
    xcb_atom_t take(TimePoint now);

    // Gives a name back. `answered` is false when something may still arrive under it.
    void giveBack(xcb_atom_t property, bool answered, TimePoint now);

    // Deletes what arrived under a name that is not in use. Other names are left alone.
    void discard(xcb_atom_t property);

private:
    struct Slot {
        xcb_atom_t property = XCB_ATOM_NONE;
        bool taken = false;
        TimePoint quietUntil{};
    };

    PasteboardConnection &x;
    std::vector<Slot> ring;
    size_t nextSlot = 0;
};
